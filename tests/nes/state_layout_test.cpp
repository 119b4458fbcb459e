// Every byte of the pieces lies where docs/STATES.md says.
#include "nes/nes_boards.h"
#include "nes/nes_rig.h"

#include "support/machine_states.h"
#include "support/state_fields.h"
#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

void Add(StateFields& fields, const std::string& at, APU_ENVELOPE& envelope) {
    AppendFields(fields, at,
                 {
                     {"period",   envelope.period  },
                     {"constant", envelope.constant},
                     {"loop",     envelope.loop    },
                     {"start",    envelope.start   },
                     {"divider",  envelope.divider },
                     {"decay",    envelope.decay   }
    });
}

void Add(StateFields& fields, const std::string& at, APU_PULSE& pulse) {
    Add(fields, at + "envelope.", pulse.envelope);
    AppendFields(fields, at,
                 {
                     {"duty",         pulse.duty        },
                     {"position",     pulse.position    },
                     {"period",       pulse.period      },
                     {"counter",      pulse.counter     },
                     {"sweepEnable",  pulse.sweepEnable },
                     {"sweepNegate",  pulse.sweepNegate },
                     {"sweepReload",  pulse.sweepReload },
                     {"sweepPeriod",  pulse.sweepPeriod },
                     {"sweepShift",   pulse.sweepShift  },
                     {"sweepDivider", pulse.sweepDivider},
                     {"output",       pulse.output      }
    });
}

void Add(StateFields& fields, const std::string& at, APU_TRIANGLE& triangle) {
    AppendFields(fields, at,
                 {
                     {"control",      triangle.control     },
                     {"linearReload", triangle.linearReload},
                     {"linearPeriod", triangle.linearPeriod},
                     {"linear",       triangle.linear      },
                     {"position",     triangle.position    },
                     {"period",       triangle.period      },
                     {"counter",      triangle.counter     },
                     {"output",       triangle.output      }
    });
}

void Add(StateFields& fields, const std::string& at, APU_NOISE& noise) {
    Add(fields, at + "envelope.", noise.envelope);
    AppendFields(fields, at,
                 {
                     {"shortMode", noise.shortMode},
                     {"rate",      noise.rate     },
                     {"shift",     noise.shift    },
                     {"counter",   noise.counter  },
                     {"output",    noise.output   }
    });
}

void Add(StateFields& fields, const std::string& at, APU_SAMPLE& sample) {
    AppendFields(fields, at,
                 {
                     {"irqEnable",    sample.irqEnable   },
                     {"loop",         sample.loop        },
                     {"rate",         sample.rate        },
                     {"startAddress", sample.startAddress},
                     {"length",       sample.length      },
                     {"address",      sample.address     },
                     {"bytesLeft",    sample.bytesLeft   },
                     {"buffer",       sample.buffer      },
                     {"bufferEmpty",  sample.bufferEmpty },
                     {"shift",        sample.shift       },
                     {"bitsLeft",     sample.bitsLeft    },
                     {"silent",       sample.silent      },
                     {"level",        sample.level       },
                     {"counter",      sample.counter     },
                     {"output",       sample.output      }
    });
}

template <typename Records>
void AddEach(StateFields& fields, const std::string& at, Records& records) {
    for (size_t i = 0; i < records.size(); ++i) {
        Add(fields, at + "[" + std::to_string(i) + "].", records[i]);
    }
}

} // namespace

TEST(StateLayout, M6502) {
    M6502 cpu;
    StateFields fields{
        {"pc",              cpu.pc             },
        {"a",               cpu.a              },
        {"x",               cpu.x              },
        {"y",               cpu.y              },
        {"sp",              cpu.sp             },
        {"p",               cpu.p              },
        {"queue",           cpu.queue          },
        {"queueIndex",      cpu.queueIndex     },
        {"cycles",          cpu.cycles         },
        {"opcode",          cpu.opcode         },
        {"operandRegister", cpu.operandRegister},
        {"address",         cpu.address        },
        {"data",            cpu.data           },
        {"busValue",        cpu.busValue       },
        {"nmiLine",         cpu.nmiLine        },
        {"irqLines",        cpu.irqLines       },
        {"nmiSeen",         cpu.nmiSeen        },
        {"irqSeen",         cpu.irqSeen        }
    };
    const auto save = PieceSaver<::M6502>(cpu, M6502StateSize, M6502SaveState);
    ExpectFieldsAsListed("6502", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<::M6502>(cpu, M6502LoadState));
}

TEST(StateLayout, Ppu) {
    const auto chip = std::make_unique<PPU>();
    PPU& ppu = *chip;
    NES_PAGES pages;
    uint32_t nmi = 0;
    PpuInit(ppu, &pages);
    PpuReset(ppu, true, &nmi);
    StateFields fields{
        {"control",       ppu.control      },
        {"mask",          ppu.mask         },
        {"status",        ppu.status       },
        {"vramAddress",   ppu.vramAddress  },
        {"tempAddress",   ppu.tempAddress  },
        {"fineX",         ppu.fineX        },
        {"firstWrite",    ppu.firstWrite   },
        {"oamAddress",    ppu.oamAddress   },
        {"openBus",       ppu.openBus      },
        {"readBuffer",    ppu.readBuffer   },
        {"ioState",       ppu.ioState      },
        {"ioAddress",     ppu.ioAddress    },
        {"ioValue",       ppu.ioValue      },
        {"randomState",   ppu.randomState  },
        {"dot",           ppu.dot          },
        {"line",          ppu.line         },
        {"lineLength",    ppu.lineLength   },
        {"oddFrame",      ppu.oddFrame     },
        {"frameDone",     ppu.frameDone    },
        {"drawnDots",     ppu.drawnDots    },
        {"evaluatedDots", ppu.evaluatedDots},
        {"fetchAddress",  ppu.fetchAddress },
        {"tile",          ppu.tile         },
        {"attribute",     ppu.attribute    },
        {"lowPlane",      ppu.lowPlane     },
        {"background",    ppu.background   },
        {"evaluation",    ppu.evaluation   },
        {"spriteIndex",   ppu.spriteIndex  },
        {"spriteByte",    ppu.spriteByte   },
        {"skipBytes",     ppu.skipBytes    },
        {"foundCount",    ppu.foundCount   },
        {"foundZero",     ppu.foundZero    },
        {"spriteCount",   ppu.spriteCount  },
        {"zeroNote",      ppu.zeroNote     },
        {"oam",           ppu.oam          },
        {"secondaryOam",  ppu.secondaryOam },
        {"palette",       ppu.palette      },
        {"spriteLine",    ppu.spriteLine   },
        {"nametables",    ppu.nametables   }
    };
    const auto save = PieceSaver<PPU>(ppu, PpuStateSize, PpuSaveState);
    ExpectFieldsAsListed("PPU", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<PPU>(ppu, PpuLoadState));
}

TEST(StateLayout, Apu) {
    const auto chip = std::make_unique<APU>();
    APU& apu = *chip;
    uint32_t irqLines = 0;
    ApuInit(
        apu, [](void*, uint16_t) { return uint8_t{0}; }, nullptr);
    ApuReset(apu, true, &irqLines);
    StateFields fields{
        {"sampleClock",      apu.sampleClock     },
        {"frameCounter",     apu.frameCounter    },
        {"frameStep",        apu.frameStep       },
        {"fiveSteps",        apu.fiveSteps       },
        {"irqInhibit",       apu.irqInhibit      },
        {"length",           apu.length          },
        {"halted",           apu.halted          },
        {"enabled",          apu.enabled         },
        {"pendingLength",    apu.pendingLength   },
        {"lengthBeforeLoad", apu.lengthBeforeLoad},
        {"pendingLengths",   apu.pendingLengths  },
        {"stallCycles",      apu.stallCycles     }
    };
    AddEach(fields, "pulses", apu.pulses);
    Add(fields, "triangle.", apu.triangle);
    Add(fields, "noise.", apu.noise);
    Add(fields, "sample.", apu.sample);
    fields.emplace_back("irqLines", irqLines, kNesIrqFrame | kNesIrqSample);
    const auto save = PieceSaver<APU>(apu, ApuStateSize, ApuSaveState);
    ExpectFieldsAsListed("APU", fields, save);
    ExpectOtherVersionsRefused(save, PieceLoader<APU>(apu, ApuLoadState));
}

TEST(StateLayout, NesConsole) {
    const auto machine = StartNes(NesProgram().Stop(), ImageOf(kNesBoardCases[1]));
    auto& nes =
        const_cast<NES_CONSOLE&>(machine->Console()); // a test may, the machine's users may not
    StateFields fields{
        {"workRam",           nes.workRam          },
        {"pads[0].buttons",   nes.pads[0].buttons  },
        {"pads[1].buttons",   nes.pads[1].buttons  },
        {"pads[0].readIndex", nes.pads[0].readIndex},
        {"pads[1].readIndex", nes.pads[1].readIndex}
    };
    const auto pieceOf = [&](size_t index) {
        const SAVED saved = Save(*machine);
        const std::vector<uint32_t> sizes = AllPieceSizes(saved);
        const uint32_t at =
            std::accumulate(sizes.begin(), sizes.begin() + static_cast<ptrdiff_t>(index), 0U);
        return std::vector<uint8_t>(saved.blob.get() + at, saved.blob.get() + at + sizes[index]);
    };
    ExpectFieldsAsListed("NES console", fields, [&] { return pieceOf(0); });
    ExpectFieldsAsListed("Plain RAM",
                         {
                             {"plainRam", nes.cartridge.plainRam}
    },
                         [&] { return pieceOf(5); });
}

TEST(StateLayout, TheNesIsMadeOfItsPieces) {
    for (const NES_BOARD_CASE& what : kNesBoardCases) {
        SCOPED_TRACE(what.name);
        const bool hasRam = what.board == 0 && what.characterBanks == 0;
        const int sameAs = what.board == 3 || what.board == 7 || what.board == 66 ? 2 : what.board;
        ExpectPiecesAsListed("NES", Save(*StartNes(NesProgram().Stop(), ImageOf(what))),
                             {
                                 {"board",     "Board " + std::to_string(sameAs)},
                                 {"plain RAM", hasRam ? "Plain RAM" : ""        }
        });
    }
}
