// Every byte of the pieces lies where docs/STATES.md says.
#include "sega8/game_gear.h"
#include "sega8/machine_rig.h"
#include "sega8/psg.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"
#include "sega8/vdp.h"
#include "sega8/ym2413.h"
#include "sega8/z80.h"

#include "support/machine_states.h"
#include "support/state_fields.h"
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

void Add(StateFields& fields, const std::string& at, YM_RATE& rate) {
    AppendFields(fields, at,
                 {
                     {"shift",  rate.shift },
                     {"select", rate.select}
    });
}

void Add(StateFields& fields, const std::string& at, YM_SLOT& slot) {
    AppendFields(fields, at,
                 {
                     {"ar",     slot.ar    },
                     {"dr",     slot.dr    },
                     {"rr",     slot.rr    },
                     {"ksr",    slot.ksr   },
                     {"ksl",    slot.ksl   },
                     {"kscale", slot.kscale},
                     {"mul",    slot.mul   },
                     {"phase",  slot.phase },
                     {"incr",   slot.incr  },
                     {"fbOut",  slot.fbOut },
                     {"egType", slot.egType},
                     {"state",  slot.state },
                     {"tl",     slot.tl    },
                     {"tll",    slot.tll   },
                     {"volume", slot.volume},
                     {"sl",     slot.sl    }
    });
    Add(fields, at + "attack.", slot.attack);
    Add(fields, at + "decay.", slot.decay);
    Add(fields, at + "release.", slot.release);
    Add(fields, at + "sustainRelease.", slot.sustainRelease);
    Add(fields, at + "dump.", slot.dump);
    AppendFields(fields, at,
                 {
                     {"key",       slot.key      },
                     {"amMask",    slot.amMask   },
                     {"vib",       slot.vib      },
                     {"wavetable", slot.wavetable}
    });
}

void Add(StateFields& fields, const std::string& at, YM_CHANNEL& channel);
void Add(StateFields& fields, const std::string& at, GEAR_CONSOLE& console);

template <typename Records>
void AddEach(StateFields& fields, const std::string& at, Records& records) {
    for (size_t i = 0; i < records.size(); ++i) {
        Add(fields, at + "[" + std::to_string(i) + "].", records[i]);
    }
}

void Add(StateFields& fields, const std::string& at, YM_CHANNEL& channel) {
    AppendFields(fields, at,
                 {
                     {"blockFnum", channel.blockFnum},
                     {"fc",        channel.fc       },
                     {"kslBase",   channel.kslBase  },
                     {"kcode",     channel.kcode    },
                     {"sustain",   channel.sustain  },
                     {"fb",        channel.fb       }
    });
    AddEach(fields, at + "slots", channel.slots);
}

void Add(StateFields& fields, const std::string& at, GEAR_CONSOLE& console) {
    AppendFields(fields, at,
                 {
                     {"irqOut",                        console.irqOut                       },
                     {"ioControl",                     console.ioControl                    },
                     {"memory.control",                console.memory.control               },
                     {"buttons",                       console.buttons                      },
                     {"link.lines",                    console.link.lines                   },
                     {"link.directions",               console.link.directions              },
                     {"link.sendByte",                 console.link.sendByte                },
                     {"link.receivedByte",             console.link.receivedByte            },
                     {"link.serial",                   console.link.serial                  },
                     {"link.panning",                  console.link.panning                 },
                     {"link.sendClocks",               console.link.sendClocks              },
                     {"link.errorClocks",              console.link.errorClocks             },
                     {"memory.cartridgeWords.slots",   console.memory.cartridgeWords.slots  },
                     {"memory.cartridgeWords.control", console.memory.cartridgeWords.control},
                     {"memory.biosWords.slots",        console.memory.biosWords.slots       },
                     {"memory.biosWords.control",      console.memory.biosWords.control     },
                     {"memory.workRam",                console.memory.workRam               },
                     {"memory.cartridgeRam",           console.memory.cartridgeRam          },
                     {"vram",                          console.vram                         }
    });
}

// The first piece of a machine's state.
auto BoardSaver(CEmuSystem& machine) {
    return [&machine] {
        const SAVED saved = Save(machine);
        return saved.Cut(AllPieceSizes(saved)[0]);
    };
}

} // namespace

// What the boards keep to themselves.
struct MACHINE_FIELDS {
    static StateFields Of(CSMS& sms) {
        return {
            {"irqOut",                        sms.irqOut                       },
            {"fmAddress",                     sms.fmAddress                    },
            {"fmControl",                     sms.fmControl                    },
            {"pads.ioControl",                sms.pads.ioControl               },
            {"memory.control",                sms.memory.control               },
            {"frameToggle",                   sms.frameToggle                  },
            {"pads.portDc",                   sms.pads.portDc                  },
            {"pads.portDd",                   sms.pads.portDd                  },
            {"pads.deviceState",              sms.pads.deviceState             },
            {"pads.deviceX",                  sms.pads.deviceX                 },
            {"pads.deviceY",                  sms.pads.deviceY                 },
            {"pads.lastEdgeClock",            sms.pads.lastEdgeClock           },
            {"memory.cartridgeWords.slots",   sms.memory.cartridgeWords.slots  },
            {"memory.cartridgeWords.control", sms.memory.cartridgeWords.control},
            {"memory.biosWords.slots",        sms.memory.biosWords.slots       },
            {"memory.biosWords.control",      sms.memory.biosWords.control     },
            {"clockCount",                    sms.clockCount                   },
            {"memory.workRam",                sms.memory.workRam               },
            {"memory.cartridgeRam",           sms.memory.cartridgeRam          },
            {"vram",                          sms.vram                         }
        };
    }
    static StateFields Of(CGAMEGEAR& gear) {
        StateFields fields;
        AddEach(fields, "consoles", gear.consoles);
        return fields;
    }
    static StateFields Of(CSEGAE& arcade) {
        return {
            {"irqLine",            arcade.irqLine           },
            {"psgPhase",           arcade.psgPhase          },
            {"bankLatch",          arcade.bankLatch         },
            {"panel.analogSelect", arcade.panel.analogSelect},
            {"panel.steering",     arcade.panel.steering    },
            {"panel.throttle",     arcade.panel.throttle    },
            {"panel.dialSelect",   arcade.panel.dialSelect  },
            {"panel.dialSpeed",    arcade.panel.dialSpeed   },
            {"ram",                arcade.ram               },
            {"vram",               arcade.vram              }
        };
    }
};

TEST(StateLayout, Z80) {
    Z80 z80;
    Z80Init(z80, nullptr, nullptr, nullptr, nullptr, nullptr);
    StateFields fields{
        {"queue",            z80.queue           },
        {"queueIndex",       z80.queueIndex      },
        {"r7",               z80.r7              },
        {"r8",               z80.r8              },
        {"iff1",             z80.iff1            },
        {"iff2",             z80.iff2            },
        {"halted",           z80.halted          },
        {"im",               z80.im              },
        {"i",                z80.i               },
        {"pendingInterrupt", z80.pendingInterrupt},
        {"irqLine",          z80.irqLine         },
        {"nmiEdge",          z80.nmiEdge         },
        {"prefix",           z80.prefix          },
        {"busHold",          z80.busHold         },
        {"running",          z80.running         },
        {"enabled",          z80.enabled         },
        {"eiDelay",          z80.eiDelay         },
        {"opcode",           z80.opcode          },
        {"regIndex",         z80.regIndex        },
        {"temp",             z80.temp            },
        {"wz",               z80.wz              },
        {"regs",             z80.regs            }
    };
    fields[0].count = kZ80QueueSize; // the bytes after it are not saved
    const auto save = PieceSaver<::Z80>(z80, Z80StateSize, Z80SaveState);
    ExpectFieldsAsListed("Z80", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<::Z80>(z80, Z80LoadState));
}

TEST(StateLayout, Vdp) {
    uint32_t irq = 0;
    uint32_t nmi = 0;
    std::vector<uint8_t> vram(kVdpVramBytes);
    VDP vdp;
    VdpInit(vdp, &irq, &nmi, false, 1);
    vdp.vram = vram.data();
    VdpReset(vdp);
    StateFields fields{
        {"regs",           vdp.regs          },
        {"cram",           vdp.cram          },
        {"cramLatch",      vdp.cramLatch     },
        {"addr",           vdp.addr          },
        {"code",           vdp.code          },
        {"latchFull",      vdp.latchFull     },
        {"latchByte",      vdp.latchByte     },
        {"readBuffer",     vdp.readBuffer    },
        {"pendingAccess",  vdp.pendingAccess },
        {"pendingCount",   vdp.pendingCount  },
        {"pendingValue",   vdp.pendingValue  },
        {"pendingAddress", vdp.pendingAddress},
        {"activeAccess",   vdp.activeAccess  },
        {"activeValue",    vdp.activeValue   },
        {"activeAddress",  vdp.activeAddress },
        {"dotCounter",     vdp.dotCounter    },
        {"line",           vdp.line          },
        {"frameDone",      vdp.frameDone     },
        {"pausePressed",   vdp.pausePressed  },
        {"pauseSeen",      vdp.pauseSeen     },
        {"hLatch",         vdp.hLatch        },
        {"status",         vdp.status        },
        {"lineInterrupt",  vdp.lineInterrupt },
        {"frameInterrupt", vdp.frameInterrupt},
        {"lineCounter",    vdp.lineCounter   },
        {"outputRow",      vdp.outputRow     },
        {"slotList",       vdp.slotList      },
        {"mode",           vdp.mode          },
        {"displayEnabled", vdp.displayEnabled},
        {"scrollX",        vdp.scrollX       },
        {"scrollY",        vdp.scrollY       },
        {"nameBase",       vdp.nameBase      },
        {"patternBase",    vdp.patternBase   },
        {"colourBase",     vdp.colourBase    },
        {"nextKind",       vdp.nextKind      },
        {"lastKind",       vdp.lastKind      },
        {"cycleIsByte",    vdp.cycleIsByte   },
        {"nextAddr",       vdp.nextAddr      },
        {"cycleAddr",      vdp.cycleAddr     },
        {"writeValue",     vdp.writeValue    },
        {"readData",       vdp.readData      },
        {"tileEntry",      vdp.tileEntry     },
        {"tileAddress",    vdp.tileAddress   },
        {"tileLow",        vdp.tileLow       },
        {"tileRow",        vdp.tileRow       },
        {"names",          vdp.names         },
        {"patternByte",    vdp.patternByte   },
        {"spriteIndex",    vdp.spriteIndex   },
        {"spriteTested",   vdp.spriteTested  },
        {"searchDone",     vdp.searchDone    },
        {"foundCount",     vdp.foundCount    },
        {"foundIndex",     vdp.foundIndex    },
        {"foundRow",       vdp.foundRow      },
        {"spriteCount",    vdp.spriteCount   },
        {"fetchIndex",     vdp.fetchIndex    },
        {"fetchAddress",   vdp.fetchAddress  },
        {"spriteX",        vdp.spriteX       },
        {"spriteFlags",    vdp.spriteFlags   },
        {"spriteData",     vdp.spriteData    },
        {"colourLine",     vdp.colourLine    },
        {"priorityLine",   vdp.priorityLine  },
        {"spriteLine",     vdp.spriteLine    }
    };
    const auto save = PieceSaver<VDP>(vdp, VdpStateSize, VdpSaveState);
    ExpectFieldsAsListed("8-bit VDP", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<VDP>(vdp, VdpLoadState));
}

TEST(StateLayout, Psg) {
    PSG psg;
    PsgInit(psg, 3579545, 1, false);
    PsgReset(psg);
    StateFields fields{
        {"clock",         psg.clock        },
        {"divider",       psg.divider      },
        {"attenuation",   psg.attenuation  },
        {"counter",       psg.counter      },
        {"output",        psg.output       },
        {"noiseOutput",   psg.noiseOutput  },
        {"period",        psg.period       },
        {"noiseControl",  psg.noiseControl },
        {"latchChannel",  psg.latchChannel },
        {"latchIsVolume", psg.latchIsVolume},
        {"lfsr",          psg.lfsr         },
        {"noiseToggle",   psg.noiseToggle  },
        {"stereo",        psg.stereo       },
        {"leftEnable",    psg.leftEnable   },
        {"rightEnable",   psg.rightEnable  },
        {"lfsrShift",     psg.lfsrShift    },
        {"lfsrTaps",      psg.lfsrTaps     }
    };
    const auto save = PieceSaver<PSG>(psg, PsgStateSize, PsgSaveState);
    ExpectFieldsAsListed("PSG", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<PSG>(psg, PsgLoadState));
}

TEST(StateLayout, Ym2413) {
    const auto chip = std::make_unique<YM2413>();
    YM2413& ym = *chip;
    YmInit(ym, 3579545);
    YmReset(ym);
    StateFields fields{
        {"instVol",    ym.instVol   },
        {"instrument", ym.instrument},
        {"rhythm",     ym.rhythm    },
        {"egCounter",  ym.egCounter },
        {"egTimer",    ym.egTimer   },
        {"lfoAmCnt",   ym.lfoAmCnt  },
        {"lfoPmCnt",   ym.lfoPmCnt  },
        {"lfoAm",      ym.lfoAm     },
        {"lfoPm",      ym.lfoPm     },
        {"noiseRng",   ym.noiseRng  },
        {"noiseP",     ym.noiseP    },
        {"tick",       ym.tick      },
        {"outMelody",  ym.outMelody },
        {"outRhythm",  ym.outRhythm }
    };
    AddEach(fields, "channels", ym.channels);
    const auto save = PieceSaver<YM2413>(ym, YmStateSize, YmSaveState);
    ExpectFieldsAsListed("YM2413", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<YM2413>(ym, YmLoadState));
}

TEST(StateLayout, MasterSystemBoard) {
    CGameFile game = SmsGame(Program().Image());
    const auto sms = StartMachine<CSMS>(SMS_OPTIONS{}, game);
    StateFields fields = MACHINE_FIELDS::Of(*sms);
    fields[0].bits = 0xFF; // of the line's word one byte is kept
    ExpectFieldsAsListed("Master System board", fields, BoardSaver(*sms));
}

TEST(StateLayout, GameGearBoard) {
    CGameFile game = GearGame(Program().Image());
    const auto gear = StartMachine<CGAMEGEAR>(GEAR_OPTIONS{}, game);
    ExpectFieldsAsListed("Game Gear board", MACHINE_FIELDS::Of(*gear), BoardSaver(*gear));
}

TEST(StateLayout, SystemEBoard) {
    CGameFile game = ArcadeGame(Program().Image(), 4);
    const auto arcade = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
    StateFields fields = MACHINE_FIELDS::Of(*arcade);
    for (StateField& field : fields) {
        if (field.name == "bankLatch") {
            field.follow = {"slots", "latch"};
        }
    }
    ExpectFieldsAsListed("System E board", fields, BoardSaver(*arcade));
    arcade->WritePort(0xF7, 0xE5);
    const std::vector<uint8_t> piece = BoardSaver(*arcade)();
    for (const STATE_ROW& row : ReadStateTable("System E board").rows) {
        const std::vector<uint32_t> values = row.name == "slots"   ? std::vector<uint32_t>{0, 1, 7}
                                             : row.name == "latch" ? std::vector<uint32_t>{0xE5}
                                                                   : std::vector<uint32_t>{};
        for (size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(LoadLittleEndian<uint32_t>(&piece[row.offset + 4 * i]), values[i])
                << row.name;
        }
    }
}

TEST(StateLayout, MachinesAreMadeOfTheirPieces) {
    CGameFile cartridge = SmsGame(Program().Image());
    ExpectPiecesAsListed("Master System", Save(*StartMachine<CSMS>(SMS_OPTIONS{}, cartridge)));
    CGameFile card = GearGame(Program().Image());
    ExpectPiecesAsListed("Game Gear", Save(*StartMachine<CGAMEGEAR>(GEAR_OPTIONS{}, card)));
    CGameFile board = ArcadeGame(Program().Image(), 3);
    ExpectPiecesAsListed("System E",
                         Save(*StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, board)));
}
