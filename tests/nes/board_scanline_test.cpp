#include "nes/cartridge_rig.h"

namespace {

constexpr int kSelect = 0x8000;
constexpr int kData = 0x8001;
constexpr int kMirroring = 0xA000;
constexpr int kRamControl = 0xA001;
constexpr int kLatch = 0xC000;
constexpr int kReload = 0xC001;
constexpr int kIrqOff = 0xE000;
constexpr int kIrqOn = 0xE001;

constexpr int kLow = 0x0FFF;
constexpr int kHigh = 0x1000;

class ScanlineRig : public CartridgeRig {
public:
    explicit ScanlineRig(const IMAGE& image = {4, 8, 16, 0})
        : CartridgeRig(image) {}

    void Set(int number, int value, int selectBits = 0) {
        Write(kSelect, number | selectBits);
        Write(kData, value);
    }

    // One clock of the counter: low addresses until the filter is open, then a high one. Returns true if it raised
    // the line.
    bool Line() {
        const bool before = Irq();
        for (int i = 0; i < 20; ++i) {
            Hook(kLow);
        }
        Hook(kHigh);
        return !before && Irq();
    }

    // The numbers, from 1, of the lines that interrupt; each interrupt is acknowledged at once.
    std::vector<int> Interrupts(int lines) {
        std::vector<int> numbers;
        for (int line = 1; line <= lines; ++line) {
            if (Line()) {
                numbers.push_back(line);
                Write(kIrqOff, 0);
                Write(kIrqOn, 0);
            }
        }
        return numbers;
    }
};

} // namespace

TEST(ScanlineBoard, StartsWithTheLastFourProgramBanks) {
    const ScanlineRig rig; // 8 x 16 KB are 32 pages, wrapping
    EXPECT_EQ(rig.Program(), Pages(24, 8));
    EXPECT_EQ(rig.Characters(), Pages(0, 8));
}

TEST(ScanlineBoard, SixAndSevenSetTheFirstTwoProgramBanks) {
    ScanlineRig rig({4, 32, 16, 0}); // 64 banks of 8 KB
    for (int bank = 0; bank < 256; ++bank) {
        rig.Set(6, bank);
        rig.Set(7, 255 - bank);
        const int first = (bank & 63) * 2;
        const int second = (~bank & 63) * 2;
        ASSERT_EQ(rig.Program(), Join({Pages(first, 2), Pages(second, 2), Pages(124, 4)})) << bank;
        rig.Write(kSelect, 0x40);
        ASSERT_EQ(rig.Program(),
                  Join({Pages(124, 2), Pages(second, 2), Pages(first, 2), Pages(126, 2)}))
            << bank;
    }
}

TEST(ScanlineBoard, DataSetsCharactersOneOrTwoAtATime) {
    ScanlineRig rig({4, 8, 32, 0}); // 256 pages
    rig.Set(0, 0x11);
    rig.Set(1, 0x22);
    rig.Set(2, 0x33);
    rig.Set(3, 0x44);
    rig.Set(4, 0x55);
    rig.Set(5, 0xFF);
    EXPECT_EQ(rig.Characters(), (std::vector<int>{0x10, 0x11, 0x22, 0x23, 0x33, 0x44, 0x55, 0xFF}));
    rig.Write(kSelect, 0x80);
    EXPECT_EQ(rig.Characters(), (std::vector<int>{0x33, 0x44, 0x55, 0xFF, 0x10, 0x11, 0x22, 0x23}));
}

TEST(ScanlineBoard, RegistersAnswerInTheirWholePagePair) {
    ScanlineRig rig;
    rig.Write(0x9FFE, 6);
    rig.Write(0x9FFF, 5);
    EXPECT_EQ(rig.Program()[0], 10);
    rig.Write(0xBFFE, 0);
    EXPECT_EQ(rig.Mirroring(), "ABAB");
    rig.Write(0xDFFE, 1);
    rig.Write(0xFFFF, 0);
    EXPECT_EQ(rig.Interrupts(4), (std::vector<int>{2, 4}));
}

TEST(ScanlineBoard, MirroringBitZero) {
    ScanlineRig rig({4, 8, 16, 1});
    for (const int value : {0, 1, 2, 3, 0xFE, 0xFF}) {
        rig.Write(kMirroring, value);
        EXPECT_EQ(rig.Mirroring(), (value & 1) != 0 ? "AABB" : "ABAB") << value;
    }
}

TEST(ScanlineBoard, FourScreensStay) {
    ScanlineRig rig({4, 8, 16, 8});
    for (const int value : {0, 1}) {
        rig.Write(kMirroring, value);
        EXPECT_EQ(rig.Mirroring(), "ABCD");
    }
}

TEST(ScanlineBoard, AnyWriteToTheControlOpensTheRam) {
    for (const int value : {0x00, 0x40, 0x80, 0xC0}) {
        ScanlineRig rig;
        rig.Write(0x6000, 1);
        EXPECT_EQ(rig.Read(0x6000), 0xFF);
        rig.Write(kRamControl, value);
        EXPECT_EQ(rig.Read(0x6000), 0);
        rig.Write(0x6000, 2);
        rig.Write(0x7FFF, 3);
        EXPECT_EQ(rig.Read(0x6000), 2) << value;
        EXPECT_EQ(rig.Read(0x7FFF), 3) << value;
    }
}

// Only a loaded state can put this in the register.
TEST(ScanlineBoard, ProtectedRamTakesNoWrites) {
    ScanlineRig rig;
    rig.Write(kRamControl, 0);
    rig.Write(0x6000, 2);
    std::vector<uint8_t> block = rig.Save();
    constexpr size_t kRamControlAt = 5 + 6;
    ASSERT_EQ(block[kRamControlAt], 0x80);
    block[kRamControlAt] = 0xC0;
    ASSERT_NE(rig.Load(block), 0u);
    rig.Write(0x6000, 9);
    EXPECT_EQ(rig.Read(0x6000), 2);
    block[kRamControlAt] = 0x40;
    ASSERT_NE(rig.Load(block), 0u);
    EXPECT_EQ(rig.Read(0x6000), 0xFF);
}

TEST(ScanlineBoard, GameWithoutCharactersBanksItsOwnRam) {
    ScanlineRig rig({4, 8, 0, 0});
    EXPECT_TRUE(rig.FillCharacterRam());
    rig.Set(2, 1);
    rig.Set(5, 8 + 2); // eight pages, wrapping
    EXPECT_EQ(rig.Characters(), (std::vector<int>{0, 1, 2, 3, 1, 5, 6, 2}));
}

// The first line loads the latch n; n more bring the counter to 0.
TEST(ScanlineBoard, InterruptsEveryLatchPlusOneLines) {
    for (const int latch : {1, 2, 7, 255}) {
        ScanlineRig rig;
        rig.Write(kLatch, latch);
        rig.Write(kIrqOn, 0);
        std::vector<int> expected;
        for (int line = latch + 1; line <= 1000; line += latch + 1) {
            expected.push_back(line);
        }
        EXPECT_EQ(rig.Interrupts(1000), expected) << latch;
    }
}

// The counter is always loaded with 0 and never falls to 0.
TEST(ScanlineBoard, LatchOfZeroNeverInterrupts) {
    ScanlineRig rig;
    rig.Write(kLatch, 0);
    rig.Write(kReload, 0);
    rig.Write(kIrqOn, 0);
    EXPECT_EQ(rig.Interrupts(100), std::vector<int>());
}

// A reload with 0 from another value counts as a fall to 0.
TEST(ScanlineBoard, ReloadToZeroInterruptsOnce) {
    ScanlineRig rig;
    rig.Write(kLatch, 5);
    rig.Write(kIrqOn, 0);
    rig.Interrupts(2);
    rig.Write(kLatch, 0);
    rig.Write(kReload, 0);
    EXPECT_EQ(rig.Interrupts(20), std::vector<int>{1});
}

TEST(ScanlineBoard, ReloadTakesTheLatchOnTheNextLine) {
    ScanlineRig rig;
    rig.Write(kLatch, 10);
    rig.Write(kIrqOn, 0);
    rig.Interrupts(5); // 10 9 8 7 6
    rig.Write(kLatch, 3);
    EXPECT_EQ(rig.Interrupts(5), std::vector<int>()); // 5 4 3 2 1: a new latch alone does nothing
    rig.Write(kReload, 0);
    EXPECT_EQ(rig.Interrupts(4), std::vector<int>{4}); // 3 2 1 0
}

TEST(ScanlineBoard, DisabledCounterCountsSilently) {
    ScanlineRig rig;
    rig.Write(kLatch, 3);
    EXPECT_EQ(rig.Interrupts(2), std::vector<int>()); // 3 2
    rig.Write(kIrqOff, 0);
    rig.Line(); // 1
    EXPECT_FALSE(rig.Line());
    rig.Write(kIrqOn, 0);
    EXPECT_EQ(rig.Interrupts(4), std::vector<int>{4}); // 3 2 1 0
}

TEST(ScanlineBoard, EvenWriteToTheLastPagesTakesTheLineBack) {
    ScanlineRig rig;
    rig.irqLines = kNesIrqFrame;
    rig.Write(kLatch, 1);
    rig.Write(kIrqOn, 0);
    rig.Line();
    EXPECT_TRUE(rig.Line());
    rig.Write(kIrqOn, 0);
    EXPECT_TRUE(rig.Irq()); // the odd address leaves it
    rig.Write(kIrqOff, 0);
    EXPECT_EQ(rig.irqLines, kNesIrqFrame);
    EXPECT_FALSE(rig.Line());
    EXPECT_FALSE(rig.Line()); // no further interrupt
}

// A high address closes the filter for the next seven; the eighth counts again.
TEST(ScanlineBoard, HighAddressesTooCloseTogetherCountOnce) {
    for (int between = 0; between < 12; ++between) {
        ScanlineRig rig;
        rig.Write(kLatch, 1);
        rig.Write(kIrqOn, 0);
        rig.Hook(kHigh); // loads 1
        for (int i = 0; i < between; ++i) {
            rig.Hook(kLow);
        }
        rig.Hook(kHigh);
        EXPECT_EQ(rig.Irq(), between >= 7) << between;
    }
}

TEST(ScanlineBoard, SteadyHighAddressesKeepTheFilterClosed) {
    ScanlineRig rig;
    rig.Write(kLatch, 1);
    rig.Write(kIrqOn, 0);
    for (int i = 0; i < 1000; ++i) {
        rig.Hook(kHigh + i);
    }
    EXPECT_FALSE(rig.Irq());
}

TEST(ScanlineBoard, OnlyBitTwelveCounts) {
    ScanlineRig rig;
    rig.Write(kLatch, 1);
    rig.Write(kIrqOn, 0);
    for (const int address : {0x2000, 0x2FFF, 0x0FFF, 0x23C0}) {
        for (int i = 0; i < 50; ++i) {
            rig.Hook(address);
        }
    }
    EXPECT_FALSE(rig.Irq());
    for (const int address : {0x1000, 0x3000}) {
        for (int i = 0; i < 20; ++i) {
            rig.Hook(0x2000);
        }
        rig.Hook(address);
    }
    EXPECT_TRUE(rig.Irq());
}

TEST(ScanlineBoard, ResetReturnsRegistersAndKeepsRam) {
    ScanlineRig rig({4, 32, 16, 1});
    rig.Write(kRamControl, 0x80);
    rig.Write(0x6000, 0x42);
    rig.Set(6, 1, 0xC0);
    rig.Set(2, 9, 0xC0);
    rig.Write(kMirroring, 1);
    rig.Write(kLatch, 1);
    rig.Write(kIrqOn, 0);
    BoardReset(*rig.cartridge);
    EXPECT_EQ(rig.Program(), Pages(120, 8));
    EXPECT_EQ(rig.Characters(), Pages(0, 8));
    EXPECT_EQ(rig.Mirroring(), "ABAB");
    EXPECT_EQ(rig.Read(0x6000), 0xFF);
    EXPECT_EQ(rig.Interrupts(10), std::vector<int>());
    rig.Write(kRamControl, 0x80);
    EXPECT_EQ(rig.Read(0x6000), 0x42);
}
