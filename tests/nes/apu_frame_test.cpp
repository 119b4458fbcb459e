#include "nes/apu_rig.h"

namespace {

struct EVENTS {
    std::vector<uint64_t> quarters;
    std::vector<uint64_t> halves;
    std::vector<uint64_t> irqs;
};

// The cycles, counted from now, in which the sequencer acts. An envelope of period 0 changes with every quarter
// frame, a long length with every half frame.
EVENTS Watch(ApuRig& rig, uint64_t cycles) {
    rig.Write(0x4015, 0x01);
    rig.Writes({
        {0x400C, 0x20}, // a looping envelope
        {0x4000, 0x00}
    });
    EVENTS events;
    for (uint64_t cycle = 1; cycle <= cycles; ++cycle) {
        rig.apu->length[0] = 200;
        rig.irqLines &= ~kNesIrqFrame;
        const auto envelope = rig.apu->noise.envelope;
        rig.Run(1);
        if (envelope.decay != rig.apu->noise.envelope.decay ||
            envelope.divider != rig.apu->noise.envelope.divider) {
            events.quarters.push_back(cycle);
        }
        if (rig.apu->length[0] != 200) {
            events.halves.push_back(cycle);
        }
        if ((rig.irqLines & kNesIrqFrame) != 0) {
            events.irqs.push_back(cycle);
        }
    }
    return events;
}

// Half frames until the channel's length counter is 0, by the status register.
int CountLength(ApuRig& rig, int bit) {
    int halves = 0;
    while ((rig.Status() >> bit & 1) != 0 && halves < 1000) {
        rig.HalfFrame();
        ++halves;
    }
    return halves;
}

constexpr std::array<int, 4> kLengthRegisters{0x4003, 0x4007, 0x400B, 0x400F};
constexpr std::array<int, 4> kHaltRegisters{0x4000, 0x4004, 0x4008, 0x400C};
constexpr std::array<int, 4> kHaltBits{0x20, 0x20, 0x80, 0x20};

} // namespace

// 7459, + 7456, + 7458, then + 7457 + 1 + 1, and 7457 to the first step of the next sequence: 29,830 in all.
TEST(ApuFrame, FourStepTimes) {
    ApuRig rig;
    const EVENTS events = Watch(rig, 29'830 * 2 + 10'000);
    EXPECT_EQ(events.quarters, (std::vector<uint64_t>{7459, 14915, 22373, 29831, 37289, 44745,
                                                      52203, 59661, 67119}));
    EXPECT_EQ(events.halves, (std::vector<uint64_t>{14915, 29831, 44745, 59661}));
    EXPECT_EQ(events.irqs, (std::vector<uint64_t>{29830, 29831, 29832, 59660, 59661, 59662}));
}

// At once, + 7458, + 7456, + 7458, + 7456 for the idle step, + 7454: 37,282 in all.
TEST(ApuFrame, FiveStepTimes) {
    ApuRig rig;
    rig.Write(0x4017, 0x80);
    const EVENTS events = Watch(rig, 37'282 * 2 + 100);
    EXPECT_EQ(events.quarters,
              (std::vector<uint64_t>{2, 7460, 14916, 22374, 37284, 44742, 52198, 59656, 74566}));
    EXPECT_EQ(events.halves, (std::vector<uint64_t>{2, 14916, 37284, 52198, 74566}));
    EXPECT_EQ(events.irqs, std::vector<uint64_t>());
}

TEST(ApuFrame, WriteAtAnOddCycleActsOneLater) {
    for (uint64_t before = 0; before < 16; ++before) {
        const uint64_t late = before & 1;
        ApuRig rig;
        rig.Run(before);
        rig.Write(0x4017, 0x00);
        EVENTS events = Watch(rig, 31'000);
        EXPECT_EQ(events.quarters,
                  (std::vector<uint64_t>{7460 + late, 14916 + late, 22374 + late, 29832 + late}));
        EXPECT_EQ(events.irqs, (std::vector<uint64_t>{29831 + late, 29832 + late, 29833 + late}));

        ApuRig five;
        five.Run(before);
        five.Write(0x4017, 0x80);
        events = Watch(five, 100);
        EXPECT_EQ(events.halves, std::vector<uint64_t>{2 + late});
    }
}

TEST(ApuFrame, FourWritesRestartTheSequenceEachTime) {
    ApuRig rig;
    for (const uint64_t gap : {6000u, 7001u, 7400u}) {
        rig.Write(0x4017, 0x40);
        const EVENTS events = Watch(rig, gap);
        EXPECT_EQ(events.quarters, std::vector<uint64_t>());
    }
    rig.Align();
    rig.Write(0x4017, 0x40);
    const EVENTS events = Watch(rig, 60'000);
    EXPECT_EQ(events.quarters.front(), 7460u);
    EXPECT_EQ(events.irqs, std::vector<uint64_t>());
}

TEST(ApuFrame, InhibitBitTakesTheInterruptBack) {
    ApuRig rig;
    rig.irqLines = kNesIrqBoard;
    rig.Run(29'830);
    EXPECT_EQ(rig.irqLines, kNesIrqBoard | kNesIrqFrame);
    rig.Write(0x4017, 0x00); // inhibit bit clear: the flag stays
    EXPECT_EQ(rig.irqLines, kNesIrqBoard | kNesIrqFrame);
    rig.Write(0x4017, 0x80);
    EXPECT_EQ(rig.irqLines, kNesIrqBoard | kNesIrqFrame);
    rig.Write(0x4017, 0x40);
    EXPECT_EQ(rig.irqLines, kNesIrqBoard);
}

TEST(ApuFrame, StatusReadClearsTheInterrupt) {
    ApuRig rig;
    rig.Run(29'832 + 100);
    EXPECT_EQ(rig.Status() & 0x40, 0x40);
    EXPECT_EQ(rig.irqLines & kNesIrqFrame, 0u);
    EXPECT_EQ(rig.Status() & 0x40, 0);
    rig.Run(29'000);
    EXPECT_EQ(rig.Status() & 0x40, 0);
}

// The flag is set in three consecutive cycles.
TEST(ApuFrame, StatusReadInTheCycleOfTheRiseClearsIt) {
    ApuRig rig;
    rig.Run(29'829);
    EXPECT_EQ(rig.Status() & 0x40, 0);
    for (int cycle = 0; cycle < 3; ++cycle) {
        rig.Run(1);
        EXPECT_EQ(rig.Status() & 0x40, 0x40) << cycle;
        EXPECT_EQ(rig.irqLines, 0u);
    }
    rig.Run(29'000);
    EXPECT_EQ(rig.irqLines, 0u);
}

TEST(ApuFrame, EveryLengthEntryOnEveryChannel) {
    for (size_t channel = 0; channel < 4; ++channel) {
        for (int entry = 0; entry < 32; ++entry) {
            ApuRig rig;
            rig.Write(0x4015, 1 << channel);
            rig.Write(kLengthRegisters[channel], entry << 3 | 7);
            rig.Run(1);
            EXPECT_EQ(CountLength(rig, static_cast<int>(channel)),
                      kLengths[static_cast<size_t>(entry)])
                << channel << " entry " << entry;
        }
    }
}

TEST(ApuFrame, LengthIsOnlyLoadedWhileEnabled) {
    for (size_t channel = 0; channel < 4; ++channel) {
        ApuRig rig;
        rig.Write(0x4015, ~(1 << channel) & 0x0F);
        rig.Write(kLengthRegisters[channel], 0x08);
        rig.Run(2);
        EXPECT_EQ(rig.Status() & 0x0F, 0);
        rig.Write(0x4015, 0x0F);
        rig.Run(2);
        EXPECT_EQ(rig.Status() & 0x0F, 0);
    }
}

TEST(ApuFrame, DisablingClearsTheLength) {
    for (size_t channel = 0; channel < 4; ++channel) {
        ApuRig rig;
        rig.Write(0x4015, 0x0F);
        for (const int address : kLengthRegisters) {
            rig.Write(address, 0x08);
        }
        rig.Run(1);
        EXPECT_EQ(rig.Status() & 0x0F, 0x0F);
        rig.Write(0x4015, ~(1 << channel) & 0x0F);
        EXPECT_EQ(rig.Status() & 0x0F, ~(1 << channel) & 0x0F);
        rig.Write(0x4015, 0x0F);
        rig.Run(1);
        EXPECT_EQ(rig.Status() & 0x0F, ~(1 << channel) & 0x0F);
    }
}

TEST(ApuFrame, HaltedLengthDoesNotCount) {
    for (size_t channel = 0; channel < 4; ++channel) {
        ApuRig rig;
        rig.Write(0x4015, 0x0F);
        rig.Write(kHaltRegisters[channel], kHaltBits[channel]);
        rig.Write(kLengthRegisters[channel], 3 << 3); // 2 half frames
        rig.Run(1);
        for (int i = 0; i < 10; ++i) {
            rig.HalfFrame();
        }
        EXPECT_EQ(rig.Status() & 0x0F, 1 << channel);
        rig.Write(kHaltRegisters[channel], 0);
        EXPECT_EQ(CountLength(rig, static_cast<int>(channel)), 2) << channel;
    }
}

// A load waits for the next cycle; until then the counter keeps its value.
TEST(ApuFrame, LengthLoadWaitsForTheNextCycle) {
    ApuRig rig;
    rig.Write(0x4015, 0x01);
    rig.Write(0x4003, 0x08);
    EXPECT_EQ(rig.Status() & 1, 0);
    rig.Run(1);
    EXPECT_EQ(rig.Status() & 1, 1);
}

// A half frame in the same cycle as the load: on a running counter the clock wins; a counter that is 0 or halted
// isn't clocked, so the load wins.
TEST(ApuFrame, ClockInTheSameCycleWinsOverALengthLoad) {
    for (size_t channel = 0; channel < 4; ++channel) {
        for (const bool halted : {false, true}) {
            ApuRig rig;
            rig.Write(0x4015, 0x0F);
            rig.Write(kHaltRegisters[channel], halted ? kHaltBits[channel] : 0);
            rig.Write(kLengthRegisters[channel], 0 << 3); // 10
            rig.Run(1);
            rig.Align();
            rig.Write(0x4017, 0x80); // clocks in the second cycle from now
            rig.Run(1);
            rig.Write(kLengthRegisters[channel], 5 << 3); // 4
            rig.Run(1);
            EXPECT_EQ(rig.apu->length[channel], halted ? 4 : 9) << channel;
            rig.Run(100);
            EXPECT_EQ(rig.apu->length[channel], halted ? 4 : 9) << channel;
        }
        ApuRig empty;
        empty.Write(0x4015, 0x0F);
        empty.Write(0x4017, 0x80);
        empty.Run(1);
        empty.Write(kLengthRegisters[channel], 5 << 3);
        empty.Run(1);
        EXPECT_EQ(empty.apu->length[channel], 4) << channel;
    }
}

TEST(ApuFrame, LengthLoadOneCycleEarlierIsClocked) {
    ApuRig rig;
    rig.Write(0x4015, 0x01);
    rig.Write(0x4003, 0 << 3);
    rig.Run(1);
    rig.Align();
    rig.Write(0x4017, 0x80);
    rig.Write(0x4003, 5 << 3);
    rig.Run(2);
    EXPECT_EQ(rig.apu->length[0], 3);
}

TEST(ApuFrame, OtherAddressesAreIgnored) {
    ApuRig rig;
    std::vector<uint8_t> before(ApuStateSize());
    std::vector<uint8_t> after(ApuStateSize());
    ApuSaveState(*rig.apu, before.data());
    for (const int address : {0x4009, 0x400D, 0x4014, 0x4016, 0x4018, 0x401F}) {
        rig.Write(address, 0xFF);
    }
    ApuSaveState(*rig.apu, after.data());
    EXPECT_EQ(before, after);
}

TEST(ApuFrame, ResetStopsEverythingAndClearsTheLines) {
    ApuRig rig;
    rig.Write(0x4015, 0x0F);
    rig.Writes({
        {0x4000, 0xBF},
        {0x4002, 0x80},
        {0x4003, 0x08},
        {0x400C, 0x3F},
        {0x400F, 0x08},
        {0x4017, 0x80}
    });
    rig.Run(50'000);
    for (const bool hard : {true, false}) {
        rig.irqLines = kNesIrqFrame | kNesIrqSample | kNesIrqBoard;
        ApuReset(*rig.apu, hard, &rig.irqLines);
        EXPECT_EQ(rig.irqLines, kNesIrqBoard);
        EXPECT_EQ(rig.Status(), 0);
        rig.irqLines = 0;
        const EVENTS events = Watch(rig, 8000);
        EXPECT_EQ(events.quarters, std::vector<uint64_t>{7459});
        rig.Write(0x4015, 0);
        rig.Raw(100);
        for (const int sample : rig.Raw(100)) {
            ASSERT_EQ(sample, 0);
        }
    }
}
