// Every byte of the pieces lies where docs/STATES.md says.
#include "megadrive/m68000.h"
#include "megadrive/md_cartridge_rig.h"
#include "megadrive/md_rig.h"
#include "megadrive/md_vdp.h"
#include "megadrive/svp_private.h"
#include "megadrive/ym2612.h"

#include "support/machine_states.h"
#include "support/state_fields.h"
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

void Add(StateFields& fields, const std::string& at, YM2612_RATE& rate) {
    AppendFields(fields, at,
                 {
                     {"shift",  rate.shift },
                     {"select", rate.select}
    });
}

void Add(StateFields& fields, const std::string& at, YM2612_PITCH& pitch) {
    AppendFields(fields, at,
                 {
                     {"blockFnum", pitch.blockFnum},
                     {"keyCode",   pitch.keyCode  },
                     {"fc",        pitch.fc       }
    });
}

void Add(StateFields& fields, const std::string& at, YM2612_SLOT& slot) {
    AppendFields(fields, at,
                 {
                     {"dt",        slot.dt       },
                     {"mul",       slot.mul      },
                     {"ar",        slot.ar       },
                     {"d1r",       slot.d1r      },
                     {"d2r",       slot.d2r      },
                     {"rr",        slot.rr       },
                     {"ksrShift",  slot.ksrShift },
                     {"ksr",       slot.ksr      },
                     {"phase",     slot.phase    },
                     {"phaseStep", slot.phaseStep},
                     {"state",     slot.state    },
                     {"tl",        slot.tl       },
                     {"volume",    slot.volume   },
                     {"sl",        slot.sl       },
                     {"volOut",    slot.volOut   }
    });
    Add(fields, at + "attack.", slot.attack);
    Add(fields, at + "decay.", slot.decay);
    Add(fields, at + "sustain.", slot.sustain);
    Add(fields, at + "release.", slot.release);
    AppendFields(fields, at,
                 {
                     {"ssg",         slot.ssg        },
                     {"ssgInverted", slot.ssgInverted},
                     {"keyOn",       slot.keyOn      },
                     {"amMask",      slot.amMask     }
    });
}

void Add(StateFields& fields, const std::string& at, MD_VDP_FIFO_ENTRY& entry) {
    AppendFields(fields, at,
                 {
                     {"word", entry.word},
                     {"code", entry.code}
    });
}

void Add(StateFields& fields, const std::string& at, YM2612_CHANNEL& channel);

template <typename Records>
void AddEach(StateFields& fields, const std::string& at, Records& records) {
    for (size_t i = 0; i < records.size(); ++i) {
        Add(fields, at + "[" + std::to_string(i) + "].", records[i]);
    }
}

void Add(StateFields& fields, const std::string& at, YM2612_CHANNEL& channel) {
    AddEach(fields, at + "slots", channel.slots);
    AppendFields(fields, at,
                 {
                     {"algorithm",    channel.algorithm   },
                     {"feedback",     channel.feedback    },
                     {"operator1Out", channel.operator1Out},
                     {"pms",          channel.pms         },
                     {"ams",          channel.ams         },
                     {"leftMask",     channel.leftMask    },
                     {"rightMask",    channel.rightMask   }
    });
    Add(fields, at + "pitch.", channel.pitch);
}

// The piece of a cartridge, whose size goes by its kind.
void ExpectCartridgeAsListed(const std::string& piece, MD_CARTRIDGE& cart,
                             const StateFields& fields) {
    const auto save = [&] {
        std::vector<uint8_t> bytes(MdCartStateSize(cart));
        EXPECT_EQ(MdCartSaveState(cart, bytes.data()).At(), bytes.data() + bytes.size());
        return bytes;
    };
    ExpectFieldsAsListed(piece, fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<MD_CARTRIDGE>(cart, MdCartLoadState));
}

} // namespace

TEST(StateLayout, M68000) {
    M68K_STATE cpu;
    StateFields fields{
        {"cpuType",       cpu.cpuType      },
        {"prevPc",        cpu.prevPc       },
        {"pc",            cpu.pc           },
        {"vbr",           cpu.vbr          },
        {"sfc",           cpu.sfc          },
        {"dfc",           cpu.dfc          },
        {"cacr",          cpu.cacr         },
        {"caar",          cpu.caar         },
        {"ir",            cpu.ir           },
        {"fpiar",         cpu.fpiar        },
        {"fpsr",          cpu.fpsr         },
        {"fpcr",          cpu.fpcr         },
        {"t1",            cpu.t1           },
        {"t0",            cpu.t0           },
        {"s",             cpu.s            },
        {"m",             cpu.m            },
        {"x",             cpu.x            },
        {"n",             cpu.n            },
        {"notZ",          cpu.notZ         },
        {"v",             cpu.v            },
        {"c",             cpu.c            },
        {"intMask",       cpu.intMask      },
        {"intLevel",      cpu.intLevel     },
        {"stopped",       cpu.stopped      },
        {"prefetchAddr",  cpu.prefetchAddr },
        {"prefetchData",  cpu.prefetchData },
        {"srMask",        cpu.srMask       },
        {"instrMode",     cpu.instrMode    },
        {"runMode",       cpu.runMode      },
        {"cycBranchByte", cpu.cycBranchByte},
        {"cycBranchWord", cpu.cycBranchWord},
        {"cycLoopRound",  cpu.cycLoopRound },
        {"cycLoopEnd",    cpu.cycLoopEnd   },
        {"cycSetTrue",    cpu.cycSetTrue   },
        {"cycMovemWord",  cpu.cycMovemWord },
        {"cycMovemLong",  cpu.cycMovemLong },
        {"cycShift",      cpu.cycShift     },
        {"cycReset",      cpu.cycReset     },
        {"intCycles",     cpu.intCycles    },
        {"cyclesLeft",    cpu.cyclesLeft   },
        {"spare0",        cpu.spare0       },
        {"spare1",        cpu.spare1       },
        {"aerrAddress",   cpu.aerrAddress  },
        {"aerrMode",      cpu.aerrMode     },
        {"aerrCode",      cpu.aerrCode     },
        {"irqLines",      cpu.irqLines     },
        {"nmiPending",    cpu.nmiPending   },
        {"spare2",        cpu.spare2       },
        {"fp",            cpu.fp           },
        {"stackSlots",    cpu.stackSlots   },
        {"regs",          cpu.regs         }
    };
    const auto save = PieceSaver<M68K_STATE>(cpu, M68kStateSize, M68kSave);
    ExpectFieldsAsListed("68000", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<M68K_STATE>(cpu, M68kLoad));
}

TEST(StateLayout, MdVdp) {
    const auto chip = std::make_unique<MD_VDP>();
    MD_VDP& vdp = *chip;
    uint32_t zInt = 0;
    uint32_t stall = 0;
    MdVdpInit(
        vdp, nullptr, [](void*, uint32_t, uint32_t) {}, [](void*, uint32_t) { return uint16_t{0}; },
        &zInt, &stall, kMdVdp60Hz);
    StateFields fields{
        {"outX",          vdp.outX              },
        {"planeAX",       vdp.planeAX           },
        {"planeBX",       vdp.planeBX           },
        {"planeWidth",    vdp.planeWidth        },
        {"windowWidth",   vdp.windowWidth       },
        {"planeHeight",   vdp.planeHeight       },
        {"planeABase",    vdp.planeABase        },
        {"planeBBase",    vdp.planeBBase        },
        {"windowBase",    vdp.windowBase        },
        {"hscrollBase",   vdp.hscrollBase       },
        {"spriteBase",    vdp.spriteBase        },
        {"backdropX",     vdp.backdropX         },
        {"border",        vdp.border            },
        {"activeHeight",  vdp.activeHeight      },
        {"h40",           vdp.h40               },
        {"shadowMode",    vdp.shadowMode        },
        {"rowOffset",     vdp.rowOffset         },
        {"stepDebt",      vdp.stepDebt          },
        {"frameDone",     vdp.frameDone         },
        {"hCount",        vdp.hCount            },
        {"tileColumn",    vdp.tileColumn        },
        {"planeAColumn",  vdp.planeAColumn      },
        {"planeBColumn",  vdp.planeBColumn      },
        {"vCount",        vdp.vCount            },
        {"line",          vdp.line              },
        {"scan.visible",  vdp.spriteScan.visible},
        {"scan.seen",     vdp.spriteScan.seen   },
        {"scan.index",    vdp.spriteScan.index  },
        {"scan.step",     vdp.spriteScan.step   },
        {"scan.dots",     vdp.spriteScan.dots   },
        {"scan.flags",    vdp.spriteScan.flags  },
        {"cramDot",       vdp.cramDot           },
        {"vramHalf",      vdp.vramHalf          },
        {"fifoCount",     vdp.fifoCount         },
        {"hScrollA",      vdp.hScrollA          },
        {"hScrollB",      vdp.hScrollB          },
        {"field",         vdp.field             },
        {"address",       vdp.address           },
        {"addressHigh",   vdp.addressHigh       },
        {"code",          vdp.code              },
        {"pendingSecond", vdp.pendingSecond     },
        {"status",        vdp.status            },
        {"hPending",      vdp.hPending          },
        {"vPending",      vdp.vPending          },
        {"dmaState",      vdp.dmaState          },
        {"dmaLength",     vdp.dmaLength         },
        {"dmaSource",     vdp.dmaSource         },
        {"dmaBase",       vdp.dmaBase           },
        {"dmaFillValue",  vdp.dmaFillValue      },
        {"dmaHalf",       vdp.dmaHalf           },
        {"dmaCode",       vdp.dmaCode           },
        {"dmaPending",    vdp.dmaPending        },
        {"interlace2",    vdp.interlace2        },
        {"hCounter",      vdp.hCounter          },
        {"vsram",         vdp.vsram             },
        {"vsramLine",     vdp.vsramLine         },
        {"cram",          vdp.cram              },
        {"regs",          vdp.regs              },
        {"spriteDots",    vdp.spriteDots        },
        {"vram",          vdp.vram              },
        {"lineFlags",     vdp.lineFlags         },
        {"layerCode",     vdp.layerCode         },
        {"shadowOp",      vdp.shadowOp          },
        {"planeALine",    vdp.planeALine        },
        {"planeBLine",    vdp.planeBLine        },
        {"spriteLine",    vdp.spriteLine        },
        {"windowLine",    vdp.windowLine        },
        {"backdropLine",  vdp.backdropLine      },
        {"windowColumn",  vdp.windowColumn      }
    };
    AddEach(fields, "fifo", vdp.fifo);
    const auto save = PieceSaver<MD_VDP>(vdp, MdVdpStateSize, MdVdpSaveState);
    ExpectFieldsAsListed("16-bit VDP", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<MD_VDP>(vdp, MdVdpLoadState));
}

TEST(StateLayout, Ym2612) {
    const auto chip = std::make_unique<YM2612>();
    YM2612& ym = *chip;
    Ym2612SetClock(ym, 7670454);
    Ym2612Reset(ym);
    StateFields fields{
        {"address",         ym.address        },
        {"irq",             ym.irq            },
        {"irqMask",         ym.irqMask        },
        {"status",          ym.status         },
        {"timerA",          ym.timerA         },
        {"timerACount",     ym.timerACount    },
        {"timerB",          ym.timerB         },
        {"timerBCount",     ym.timerBCount    },
        {"mode",            ym.mode           },
        {"fnHighLatch",     ym.fnHighLatch    },
        {"channel3Latch",   ym.channel3Latch  },
        {"lfoCounter",      ym.lfoCounter     },
        {"lfoIncrement",    ym.lfoIncrement   },
        {"lfoAm",           ym.lfoAm          },
        {"lfoPm",           ym.lfoPm          },
        {"egCounter",       ym.egCounter      },
        {"egTimer",         ym.egTimer        },
        {"egTimerAdd",      ym.egTimerAdd     },
        {"egTimerOverflow", ym.egTimerOverflow},
        {"csmKey",          ym.csmKey         },
        {"dacOut",          ym.dacOut         },
        {"dacEnabled",      ym.dacEnabled     },
        {"tickCount",       ym.tickCount      },
        {"channelOut",      ym.channelOut     }
    };
    AddEach(fields, "channels", ym.channels);
    AddEach(fields, "channel3", ym.channel3);
    const auto save = PieceSaver<YM2612>(ym, Ym2612StateSize, Ym2612SaveState);
    ExpectFieldsAsListed("YM2612", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<YM2612>(ym, Ym2612LoadState));
}

TEST(StateLayout, MegaDriveBoard) {
    const auto machine = StartMd(MdProgram().Stop());
    MEGA_DRIVE& md = machine->Console();
    StateFields fields{
        {"m68kBusCycles",   md.m68kBusCycles  },
        {"z80Clock",        md.z80Clock       },
        {"z80Bank",         md.z80Bank        },
        {"io.padTh",        md.io.padTh       },
        {"io.padLastWrite", md.io.padLastWrite},
        {"io.padEdges",     md.io.padEdges    },
        {"workRam",         md.workRam        },
        {"z80Ram",          md.z80Ram         },
        {"io.ioPorts",      md.io.ioPorts     }
    };
    ExpectFieldsAsListed("Mega Drive board", fields, [&] {
        const SAVED saved = Save(*machine);
        return saved.Cut(AllPieceSizes(saved)[0]);
    });
}

TEST(StateLayout, Cartridges) {
    MD_CARTRIDGE plain;
    ExpectCartridgeAsListed("Plain cartridge", plain, {});

    MD_CARTRIDGE ram;
    ram.cartKind = kMdCartSram;
    ram.sram = std::make_unique<MD_SRAM>();
    MD_SRAM& sram = *ram.sram;
    ExpectCartridgeAsListed("Battery RAM", ram,
                            {
                                {"end",   sram.end  },
                                {"start", sram.start},
                                {"data",  sram.data }
    });

    MD_CARTRIDGE serial;
    serial.cartKind = kMdCartEeprom;
    serial.eeprom = std::make_unique<MD_EEPROM>();
    MD_EEPROM& eeprom = *serial.eeprom;
    ExpectCartridgeAsListed("EEPROM", serial,
                            {
                                {"sda",         eeprom.sda        },
                                {"scl",         eeprom.scl        },
                                {"oldSda",      eeprom.oldSda     },
                                {"oldScl",      eeprom.oldScl     },
                                {"cycle",       eeprom.cycle      },
                                {"rw",          eeprom.rw         },
                                {"slave",       eeprom.slave      },
                                {"wordAddress", eeprom.wordAddress},
                                {"state",       eeprom.state      },
                                {"addressBits", eeprom.addressBits},
                                {"sizeMask",    eeprom.sizeMask   },
                                {"pageMask",    eeprom.pageMask   },
                                {"sdaInBit",    eeprom.sdaInBit   },
                                {"sdaOutBit",   eeprom.sdaOutBit  },
                                {"sclBit",      eeprom.sclBit     },
                                {"shift",       eeprom.shift      },
                                {"data",        eeprom.data       }
    });
}

TEST(StateLayout, SignalProcessor) {
    const auto processor = std::make_unique<MD_SVP>();
    MD_SVP& svp = *processor;
    const std::vector<uint16_t> rom(kSvpRomWords);
    SvpReset(svp, rom.data());
    StateFields fields{
        {"budget",    svp.budget   },
        {"emuStatus", svp.emuStatus},
        {"pc",        svp.pc       },
        {"gr",        svp.gr       },
        {"ram",       svp.ram      },
        {"r",         svp.r        },
        {"iramRom",   svp.iramRom  },
        {"dram",      svp.dram     }
    };
    for (size_t i = 0; i < kSvpStackDepth; ++i) {
        AppendFields(fields, "levels[" + std::to_string(i) + "].",
                     {
                         {"stack",     svp.stack[i]    },
                         {"pmacRead",  svp.pmacRead[i] },
                         {"pmacWrite", svp.pmacWrite[i]}
        });
    }
    const auto save = PieceSaver<MD_SVP>(svp, SvpStateSize, SvpSaveState);
    ExpectFieldsAsListed("Signal processor", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<MD_SVP>(svp, SvpLoadState));
}

TEST(StateLayout, TheMegaDriveIsMadeOfItsPieces) {
    ExpectPiecesAsListed("Mega Drive", Save(*StartMd(MdProgram().Stop())),
                         {
                             {"cartridge", "Plain cartridge"}
    });
    MdProgram program;
    program.Text(0x1B0, "RA")
        .Bytes(0x1B2, {0xF8, 0x20})
        .PutLong(0x1B4, 0x200001)
        .PutLong(0x1B8, 0x203FFF);
    ExpectPiecesAsListed("Mega Drive", Save(*StartMd(program.Stop())),
                         {
                             {"cartridge", "Battery RAM"}
    });
}
