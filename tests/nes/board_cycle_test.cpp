#include "nes/cartridge_rig.h"

namespace {

constexpr int kControl = 0xC000;
constexpr int kAcknowledge = 0xD000;

class CycleRig : public CartridgeRig {
public:
    CycleRig()
        : CartridgeRig({73, 8, 0, 0}) {}

    void SetLatch(int value) {
        for (int digit = 0; digit < 4; ++digit) {
            Write(0x8000 + digit * 0x1000, value >> (digit * 4));
        }
    }

    // Cycles until the line rises, 0 if not within `limit`.
    int CyclesToIrq(int limit) {
        for (int cycle = 1; cycle <= limit; ++cycle) {
            BoardCpuClock(*cartridge);
            if (Irq()) {
                return cycle;
            }
        }
        return 0;
    }
};

} // namespace

TEST(CycleBoard, BankAndTheLastOne) {
    CycleRig rig;
    EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(28, 4)}));
    for (int bank = 0; bank < 20; ++bank) {
        rig.Write(0xF000 + bank, bank);
        EXPECT_EQ(rig.Program(), Join({Pages(bank % 8 * 4, 4), Pages(28, 4)})) << bank;
    }
    rig.Write(0xE000, 3); // not a register
    EXPECT_EQ(rig.Program(), Join({Pages(19 % 8 * 4, 4), Pages(28, 4)}));
}

TEST(CycleBoard, HasCharacterRam) {
    CycleRig rig;
    EXPECT_TRUE(rig.FillCharacterRam());
}

// From n the counter reaches 0xFFFF after 0xFFFF - n cycles and interrupts on the next.
TEST(CycleBoard, InterruptsWhenTheCounterIsFull) {
    for (const int latch : {0xFFFF, 0xFFFE, 0xFF00, 0xEDCB, 0x0000}) {
        CycleRig rig;
        rig.SetLatch(latch);
        rig.Write(kControl, 2);
        EXPECT_EQ(rig.CyclesToIrq(100'000), 0x10000 - latch) << latch;
        rig.Write(kAcknowledge, 0); // stops counting: bit 0 is clear
        EXPECT_FALSE(rig.Irq());
        EXPECT_EQ(rig.CyclesToIrq(100'000), 0) << latch;
    }
}

TEST(CycleBoard, CounterReloadsAndGoesOn) {
    CycleRig rig;
    rig.SetLatch(0xFF00);
    rig.Write(kControl, 3);
    EXPECT_EQ(rig.CyclesToIrq(1000), 256);
    for (int i = 0; i < 100; ++i) {
        BoardCpuClock(*rig.cartridge); // keeps counting while the interrupt is pending
    }
    rig.Write(kAcknowledge, 0);
    EXPECT_FALSE(rig.Irq());
    EXPECT_EQ(rig.CyclesToIrq(1000), 156);
}

TEST(CycleBoard, LatchIsWrittenDigitByDigit) {
    CycleRig rig;
    rig.SetLatch(0xFFFF);
    rig.Write(0x9FFF, 0xF0); // second digit; the upper four bits are ignored
    rig.Write(kControl, 2);
    EXPECT_EQ(rig.CyclesToIrq(1000), 0x10000 - 0xFF0F);
}

TEST(CycleBoard, NewLatchWaitsForTheReload) {
    CycleRig rig;
    rig.SetLatch(0xFFF0);
    rig.Write(kControl, 3);
    rig.SetLatch(0xFFE0);
    EXPECT_EQ(rig.CyclesToIrq(1000), 16);
    rig.Write(kAcknowledge, 0);
    EXPECT_EQ(rig.CyclesToIrq(1000), 32);
}

TEST(CycleBoard, ControlWithoutCountingLeavesTheCounter) {
    CycleRig rig;
    rig.SetLatch(0xFFF0);
    rig.Write(kControl, 3);
    for (int i = 0; i < 6; ++i) {
        BoardCpuClock(*rig.cartridge);
    }
    rig.Write(kControl, 1);
    EXPECT_EQ(rig.CyclesToIrq(1000), 0);
    rig.Write(kAcknowledge, 0); // bit 0 starts counting again without a load
    EXPECT_EQ(rig.CyclesToIrq(1000), 10);
}

TEST(CycleBoard, ControlTakesTheLineBack) {
    CycleRig rig;
    rig.irqLines = kNesIrqSample;
    rig.SetLatch(0xFFFF);
    rig.Write(kControl, 2);
    EXPECT_EQ(rig.CyclesToIrq(10), 1);
    rig.Write(kControl, 0);
    EXPECT_EQ(rig.irqLines, kNesIrqSample);
}

TEST(CycleBoard, EightBitModeNeverInterrupts) {
    for (const int latch : {0xFFFF, 0x00FF, 0xFFFE, 0x0000}) {
        CycleRig rig;
        rig.SetLatch(latch);
        rig.Write(kControl, 6);
        EXPECT_EQ(rig.CyclesToIrq(200'000), 0) << latch;
    }
}

TEST(CycleBoard, ResetStopsTheCounter) {
    CycleRig rig;
    rig.SetLatch(0xFFF0);
    rig.Write(kControl, 3);
    rig.Write(0xF000, 5);
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.Program(), Join({Pages(0, 4), Pages(28, 4)}));
    EXPECT_EQ(rig.CyclesToIrq(70'000), 0);
    rig.Write(kControl, 2); // the latch is 0 again
    EXPECT_EQ(rig.CyclesToIrq(70'000), 0x10000);
}
