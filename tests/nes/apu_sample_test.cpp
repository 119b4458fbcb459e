#include "nes/apu_rig.h"

namespace {

constexpr std::array<int, 16> kRates{428, 380, 340, 320, 286, 254, 226, 214,
                                     190, 160, 142, 128, 106, 84,  72,  54};

class SampleRig : public ApuRig {
public:
    SampleRig(int rate, int flags, int address, int length) {
        Write(0x4017, 0x40);
        Write(0x4010, flags | rate);
        Write(0x4012, address);
        Write(0x4013, length);
    }

    void Start() { Write(0x4015, 0x10); }

    // The level after each bit, from the first one played.
    std::vector<int> Levels(size_t bits) {
        std::vector<int> levels;
        while (apu->sample.silent) {
            Run(1);
        }
        const auto step = static_cast<uint64_t>(kRates[apu->sample.rate]);
        while (levels.size() < bits) {
            Run(step);
            levels.push_back(apu->sample.level);
        }
        return levels;
    }
};

} // namespace

TEST(ApuSample, RateIsCyclesABit) {
    for (int rate = 0; rate < 16; ++rate) {
        SampleRig rig(rate, 0x40, 0, 0);
        rig.memory[0xC000] = 0x55; // up, down, up, ...
        rig.Write(0x4011, 64);
        rig.Start();
        while (rig.apu->sample.silent) {
            rig.Run(1);
        }
        std::vector<uint64_t> changes;
        int before = rig.apu->sample.output;
        for (int i = 0; i < 3500; ++i) {
            rig.Run(1);
            if (rig.apu->sample.output != before) {
                before = rig.apu->sample.output;
                changes.push_back(rig.cycle);
            }
        }
        ASSERT_GE(changes.size(), 7u);
        for (size_t i = 1; i < changes.size(); ++i) {
            EXPECT_EQ(changes[i] - changes[i - 1],
                      static_cast<uint64_t>(kRates[static_cast<size_t>(rate)]));
        }
    }
}

TEST(ApuSample, BitsMoveTheLevelLowestFirst) {
    SampleRig rig(15, 0, 0, 0);
    rig.memory[0xC000] = 0b10110001;
    rig.Write(0x4011, 64);
    rig.Start();
    EXPECT_EQ(rig.Levels(8), (std::vector<int>{66, 64, 62, 60, 62, 64, 62, 64}));
}

TEST(ApuSample, LevelStopsAtItsLimits) {
    struct ROW {
        int start;
        uint8_t byte;
        std::vector<int> levels;
    };
    for (const ROW& row : {
             ROW{120, 0xFF, {122, 124, 126, 126, 126, 126, 126, 126}},
             ROW{121, 0xFF, {123, 125, 127, 127, 127, 127, 127, 127}},
             ROW{6,   0x00, {4, 2, 0, 0, 0, 0, 0, 0}                },
             ROW{5,   0x00, {3, 1, 1, 1, 1, 1, 1, 1}                },
    }) {
        SampleRig rig(15, 0x40, 0, 0);
        rig.memory[0xC000] = row.byte;
        rig.Write(0x4011, row.start);
        rig.Start();
        EXPECT_EQ(rig.Levels(8), row.levels) << row.start;
    }
}

TEST(ApuSample, StepOutputsThreeTimesTheLevelMinus192) {
    SampleRig rig(15, 0x40, 0, 0);
    rig.memory[0xC000] = 0xFF;
    rig.Start();
    rig.Levels(1);
    for (int bit = 0; bit < 80; ++bit) {
        EXPECT_EQ(rig.apu->sample.output, rig.apu->sample.level * 3 - 192);
        rig.Run(54);
    }
    rig.Align();
    EXPECT_EQ(rig.Raw(1).back(), (126 * 3 - 192) * 50);
}

TEST(ApuSample, DirectLevelIsThreeHigher) {
    for (int value = 0; value < 256; ++value) {
        ApuRig rig;
        rig.Write(0x4011, value);
        EXPECT_EQ(rig.Raw(1).front(), ((value & 0x7F) * 3 - 189) * 50) << value;
        EXPECT_EQ(rig.Raw(1000).back(),
                  ((value & 0x7F) * 3 - 189) * 50); // nothing plays: the level stays
    }
}

TEST(ApuSample, NextBitAfterADirectLevelGoesFromIt) {
    SampleRig rig(15, 0x40, 0, 0);
    rig.memory[0xC000] = 0xFF;
    rig.Start();
    rig.Levels(4);
    rig.Write(0x4011, 0x80 | 40);
    EXPECT_EQ(rig.apu->sample.output, 40 * 3 - 189);
    rig.Run(54);
    EXPECT_EQ(rig.apu->sample.output, 42 * 3 - 192);
}

TEST(ApuSample, AddressAndLengthRegisters) {
    struct ROW {
        int address;
        int length;
        int first;
        int bytes;
    };
    for (const ROW row : {
             ROW{0x00, 0x00, 0xC000, 1   },
             ROW{0x01, 0x01, 0xC040, 17  },
             ROW{0x80, 0x02, 0xE000, 33  },
             ROW{0xFF, 0x03, 0xFFC0, 49  },
             ROW{0x00, 0xFF, 0xC000, 4081},
    }) {
        SampleRig rig(15, 0, row.address, row.length);
        rig.Start();
        rig.Run(54 * 8 * (static_cast<uint64_t>(row.bytes) + 2));
        std::vector<int> expected;
        for (int i = 0; i < row.bytes; ++i) {
            expected.push_back(row.first + i);
        }
        EXPECT_EQ(rig.fetched, expected) << row.address;
        EXPECT_EQ(rig.Status() & 0x10, 0);
    }
}

TEST(ApuSample, AddressWrapsToTheMiddleOfMemory) {
    SampleRig rig(15, 0, 0xFF, 5); // 81 bytes from 0xFFC0
    rig.Start();
    rig.Run(54 * 8 * 90);
    ASSERT_EQ(rig.fetched.size(), 81u);
    EXPECT_EQ(rig.fetched[63], 0xFFFF);
    EXPECT_EQ(rig.fetched[64], 0x8000);
    EXPECT_EQ(rig.fetched[80], 0x8010);
}

// The first byte is fetched with the write, each further one when a byte begins to play.
TEST(ApuSample, FetchesAsBytesBeginToPlay) {
    SampleRig rig(15, 0, 0, 1);
    rig.Start();
    EXPECT_EQ(rig.fetched.size(), 1u);
    while (rig.apu->sample.silent) {
        rig.Run(1);
    }
    EXPECT_EQ(rig.fetched.size(), 2u);
    for (size_t i = 2; i < 17; ++i) {
        rig.Run(54 * 8 - 1);
        EXPECT_EQ(rig.fetched.size(), i);
        rig.Run(1);
        EXPECT_EQ(rig.fetched.size(), i + 1);
    }
}

TEST(ApuSample, EveryFetchAsksForFourStalledCycles) {
    SampleRig rig(15, 0, 0, 1);
    EXPECT_EQ(rig.apu->stallCycles, 0u);
    rig.Start();
    EXPECT_EQ(rig.apu->stallCycles, 4u);
    rig.apu->stallCycles = 1; // partly done
    size_t fetched = rig.fetched.size();
    for (int cycle = 0; cycle < 54 * 8 * 20; ++cycle) {
        rig.apu->stallCycles = 1;
        ApuTick(*rig.apu);
        rig.apu->pairs->sampleCount = 0;
        EXPECT_EQ(rig.apu->stallCycles, rig.fetched.size() != fetched ? 4u : 1u);
        fetched = rig.fetched.size();
    }
    EXPECT_EQ(fetched, 17u);
}

TEST(ApuSample, LastByteIsPlayedAndThenTheLevelStays) {
    SampleRig rig(15, 0, 0, 0);
    rig.memory[0xC000] = 0xFF;
    rig.Start();
    EXPECT_EQ(rig.Status() & 0x10, 0); // fetched, none left
    EXPECT_EQ(rig.Levels(20), (std::vector<int>{2,  4,  6,  8,  10, 12, 14, 16, 16, 16,
                                                16, 16, 16, 16, 16, 16, 16, 16, 16, 16}));
}

TEST(ApuSample, LoopStartsAgainWithoutAnInterrupt) {
    SampleRig rig(15, 0xC0, 2, 1);
    rig.Start();
    rig.Run(54 * 8 * 40);
    ASSERT_GE(rig.fetched.size(), 35u);
    for (size_t i = 0; i < rig.fetched.size(); ++i) {
        EXPECT_EQ(rig.fetched[i], 0xC080 + static_cast<int>(i % 17));
    }
    EXPECT_EQ(rig.irqLines, 0u);
    EXPECT_EQ(rig.Status() & 0x90, 0x10);
}

TEST(ApuSample, LoopTakesTheRegistersOfItsRestart) {
    SampleRig rig(15, 0x40, 2, 1);
    rig.Start();
    rig.Write(0x4012, 4);
    rig.Write(0x4013, 0);
    rig.Run(54 * 8 * 20);
    EXPECT_EQ(rig.fetched[16], 0xC090);
    EXPECT_EQ(rig.fetched[17], 0xC100);
    EXPECT_EQ(rig.fetched[18], 0xC100);
}

TEST(ApuSample, InterruptComesWithTheLastFetch) {
    SampleRig rig(15, 0x80, 0, 1);
    rig.irqLines = kNesIrqBoard;
    rig.Start();
    while (rig.fetched.size() < 17) {
        EXPECT_EQ(rig.irqLines, kNesIrqBoard);
        rig.Run(1);
    }
    EXPECT_EQ(rig.irqLines, kNesIrqBoard | kNesIrqSample);
    EXPECT_EQ(rig.Status() & 0x90, 0x80);
    EXPECT_EQ(rig.irqLines, kNesIrqBoard); // cleared by the read
    EXPECT_EQ(rig.Status() & 0x90, 0);
}

TEST(ApuSample, InterruptIsTakenBackByItsEnableBitAndByTheStatusRegister) {
    for (const bool byStatus : {false, true}) {
        SampleRig rig(15, 0x80, 0, 0);
        rig.Start();
        EXPECT_EQ(rig.irqLines, kNesIrqSample);
        rig.Write(0x4010, 0x8F); // still enabled: the flag stays
        EXPECT_EQ(rig.irqLines, kNesIrqSample);
        rig.Write(byStatus ? 0x4015 : 0x4010, 0x0F);
        EXPECT_EQ(rig.irqLines, 0u);
    }
}

TEST(ApuSample, NoInterruptWithoutItsBit) {
    SampleRig rig(15, 0, 0, 1);
    rig.Start();
    rig.Run(54 * 8 * 30);
    EXPECT_EQ(rig.irqLines, 0u);
}

TEST(ApuSample, StatusReadClearsBothInterrupts) {
    SampleRig rig(15, 0x80, 0, 0);
    rig.Write(0x4017, 0x00);
    rig.Run(29'900);
    rig.Start();
    EXPECT_EQ(rig.irqLines, kNesIrqFrame | kNesIrqSample);
    EXPECT_EQ(rig.Status() & 0xC0, 0xC0);
    EXPECT_EQ(rig.irqLines, 0u);
}

TEST(ApuSample, DisablingStopsAfterTheByteThatIsWaiting) {
    SampleRig rig(15, 0x40, 0, 1);
    rig.memory.fill(0xFF);
    rig.Start();
    rig.Levels(4);
    rig.Write(0x4015, 0);
    EXPECT_EQ(rig.Status() & 0x10, 0);
    rig.Run(54 * 8 * 10);
    EXPECT_EQ(rig.fetched.size(), 2u);
    EXPECT_EQ(rig.apu->sample.level, 32); // two bytes of eight steps
    EXPECT_TRUE(rig.apu->sample.silent);
}

TEST(ApuSample, EnablingWhileBytesAreLeftDoesNotRestart) {
    SampleRig rig(15, 0, 0, 1);
    rig.Start();
    rig.Run(54 * 8 * 5);
    const size_t before = rig.fetched.size();
    rig.Start();
    EXPECT_EQ(rig.fetched.size(), before);
    rig.Run(54 * 8 * 30);
    EXPECT_EQ(rig.fetched.size(), 17u);
    EXPECT_EQ(rig.fetched.back(), 0xC010);
    rig.Start();
    EXPECT_EQ(rig.fetched.size(), 18u);
    EXPECT_EQ(rig.fetched.back(), 0xC000);
}
