#include "base/bytes.h"
#include "nes/cartridge_rig.h"

#include "support/state_fields.h"

#include <algorithm>
#include <random>

namespace {

struct ROW {
    int board;
    uint32_t size; // of the piece, header included
};

constexpr uint32_t kHeader = 5;
constexpr uint32_t kRam = 8192;

constexpr std::array<ROW, 9> kRows{
    {{0, kHeader},
     {1, kHeader + 6 + 4 + 4 + 2 * kRam},
     {2, kHeader + 1 + 2 + 2 + kRam},
     {3, kHeader + 1 + 2 + 2 + kRam},
     {4, kHeader + 6 + 2 + 4 + 8 + 2 * kRam},
     {7, kHeader + 1 + 2 + 2 + kRam},
     {9, kHeader + 1 + 1 + 2 + 4},
     {66, kHeader + 1 + 2 + 2 + kRam},
     {73, kHeader + 1 + 2 + 2 + 1 + 2 * kRam}}
};

IMAGE ImageFor(int board) {
    return {board, 32, board == 9 ? 16 : 0, 0};
}

// Everything that the buses can read of a cartridge, its RAM included.
std::vector<int> Seen(CartridgeRig& rig) {
    std::vector<int> bytes;
    for (int address = 0x5000; address < 0x10000; address += 0x80) {
        bytes.push_back(rig.Read(address));
        bytes.push_back(rig.Read(address + 1));
    }
    for (int address = 0; address < 0x3F00; address += 0x40) {
        bytes.push_back(rig.PpuRead(address));
        bytes.push_back(rig.PpuRead(address + 1));
    }
    return bytes;
}

// Random registers and RAM.
void Play(CartridgeRig& rig, uint32_t seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < 400; ++i) {
        rig.cycles += static_cast<uint32_t>(1 + random() % 3);
        // Few reset writes, so that five-bit values complete.
        const auto value = static_cast<int>(random() & (random() % 16 == 0 ? 0xFF : 0x7F));
        rig.Write(static_cast<int>(0x6000 + random() % 0xA000), value);
        rig.PpuWrite(static_cast<int>(random() % 0x2000), static_cast<int>(random() & 0xFF));
        rig.Hook(static_cast<int>(random() % 0x4000));
        BoardCpuClock(*rig.cartridge);
    }
}

// Readable pages have data, and nametables belong to the machine.
void ExpectSoundTables(const CartridgeRig& rig) {
    for (const NES_CPU_PAGE& page : rig.cartridge->pages.cpu) {
        EXPECT_TRUE(page.data != nullptr || (!page.readable && !page.writable));
    }
    for (size_t i = 8; i < 16; ++i) {
        const uint8_t* data = rig.cartridge->pages.ppu[i].data;
        EXPECT_TRUE(std::any_of(rig.nametables.begin(), rig.nametables.end(),
                                [&](const auto& page) { return page.data() == data; }));
    }
}

} // namespace

TEST(BoardState, SizesAreTheSumOfTheFields) {
    for (const ROW& row : kRows) {
        const CartridgeRig rig(ImageFor(row.board));
        const std::vector<uint8_t> block = rig.Save();
        EXPECT_EQ(block.size(), row.size) << row.board;
        EXPECT_EQ(block[0], 1);
        EXPECT_EQ(LoadLittleEndian<uint32_t>(block.data() + 1), row.size);
    }
}

TEST(BoardState, LoadedBoardShowsWhatTheSavedOneShowed) {
    for (const ROW& row : kRows) {
        for (uint32_t seed = 1; seed <= 20; ++seed) {
            CartridgeRig saved(ImageFor(row.board));
            Play(saved, seed);
            const std::vector<uint8_t> block = saved.Save();
            CartridgeRig loaded(ImageFor(row.board));
            Play(loaded, seed + 1000);
            loaded.cartridge->plainRam = saved.cartridge->plainRam; // saved by the machine
            ASSERT_EQ(loaded.Load(block), block.size()) << row.board;
            EXPECT_EQ(loaded.Save(), block) << row.board;
            EXPECT_EQ(Seen(loaded), Seen(saved)) << row.board << " seed " << seed;

            // From here on both must behave the same.
            loaded.cycles = saved.cycles;
            loaded.irqLines = saved.irqLines;
            Play(loaded, seed + 2000);
            Play(saved, seed + 2000);
            EXPECT_EQ(loaded.Save(), saved.Save()) << row.board;
            EXPECT_EQ(loaded.irqLines, saved.irqLines) << row.board;
        }
    }
}

TEST(BoardState, WrongVersionOrLengthIsRefusedWithNothingChanged) {
    for (const ROW& row : kRows) {
        CartridgeRig rig(ImageFor(row.board));
        Play(rig, 7);
        const std::vector<uint8_t> before = rig.Save();
        CartridgeRig other(ImageFor(row.board));
        const std::vector<uint8_t> block = other.Save();
        for (const size_t byte : {0u, 1u, 2u, 3u, 4u}) {
            std::vector<uint8_t> wrong = block;
            wrong[byte] ^= 1;
            EXPECT_EQ(rig.Load(wrong), 0u) << row.board << " byte " << byte;
        }
        ExpectOtherVersionsRefused(
            [&] { return rig.Save(); },
            [&](const std::vector<uint8_t>& piece) { return rig.Load(piece); });
        std::vector<uint8_t> cut = block;
        cut.pop_back();
        EXPECT_EQ(rig.Load(cut), 0u);
        EXPECT_EQ(rig.Load({}), 0u);
        EXPECT_EQ(rig.Save(), before) << row.board;
        std::vector<uint8_t> more = block; // bytes after the piece are ignored
        more.push_back(0);
        EXPECT_EQ(rig.Load(more), block.size());
    }
}

TEST(BoardState, TamperedStatesAreSafe) {
    std::mt19937 random(1);
    for (const ROW& row : kRows) {
        CartridgeRig rig(ImageFor(row.board));
        for (int trial = 0; trial < 20; ++trial) {
            std::vector<uint8_t> block = rig.Save();
            for (size_t i = kHeader; i < block.size(); ++i) {
                block[i] = static_cast<uint8_t>(random());
            }
            ASSERT_EQ(rig.Load(block), block.size());
            Play(rig, static_cast<uint32_t>(trial));
            ExpectSoundTables(rig);
        }
    }
}

TEST(BoardState, SimpleBoardsHoldValuePageAndAddress) {
    for (const int board : {2, 3, 7, 66}) {
        CartridgeRig rig(ImageFor(board));
        rig.PpuWrite(0x0000, 0x77);
        rig.PpuWrite(0x1FFF, 0x78);
        rig.Write(0xCABC, 0x31);
        const std::vector<uint8_t> block = rig.Save();
        ExpectValuesAsListed("Board 2", block,
                             {
                                 {"value",        {0x31} },
                                 {"page",         {0x0C} },
                                 {"address",      {0xABC}},
                                 {"characterRam", {0x77} }
        });
        EXPECT_EQ(block.back(), 0x78);
    }
}

TEST(BoardState, ShiftBoardFieldOrder) {
    CartridgeRig rig({1, 32, 0, 0});
    const auto set = [&](int address, int value) {
        for (int bit = 0; bit < 5; ++bit) {
            rig.cycles += 2;
            rig.Write(address, value >> bit & 1);
        }
    };
    rig.Write(0x6000, 0x11);
    rig.PpuWrite(0x0000, 0x22);
    set(0x8000, 0x0D);
    set(0xE000, 0x03);
    set(0xA000, 0x05);
    set(0xC000, 0x06);
    rig.cycles = 0x12345678;
    rig.Write(0xA000, 0); // a bit of 0 and one of 1
    rig.cycles += 2;
    rig.Write(0xA000, 1);
    const std::vector<uint8_t> block = rig.Save();
    ExpectValuesAsListed("Board 1", block,
                         {
                             {"registers",    {0x0D, 0x05, 0x06, 0x03}},
                             {"shift",        {2}                     },
                             {"count",        {2}                     },
                             {"lastRegister", {2}                     }, // the second of characters
                             {"lastCycle",    {0x1234567A}            },
                             {"programRam",   {0x11}                  },
                             {"characterRam", {0x22}                  }
    });
}

TEST(BoardState, ScanlineBoardFieldOrder) {
    CartridgeRig rig({4, 32, 0, 1});
    rig.Write(0xA001, 0);
    rig.Write(0x6000, 0x11);
    rig.PpuWrite(0x0000, 0x22);
    for (int i = 0; i < 6; ++i) {
        rig.Write(0x8000, i + 2);
        rig.Write(0x8001, 0x20 + i);
    }
    rig.Write(0xA000, 3);
    rig.Write(0xC000, 9);
    rig.Write(0xE001, 0);
    rig.Hook(0x1000); // loads the counter, closes the filter
    for (int i = 0; i < 20; ++i) {
        rig.Hook(0x0000);
    }
    rig.Hook(0x1000); // 8
    rig.Hook(0x0000);
    rig.Write(0xC000, 0x44);
    rig.Write(0xC001, 0);
    const std::vector<uint8_t> block = rig.Save();
    ExpectValuesAsListed("Board 4", block,
                         {
                             {"irqEnable",    {1}                                 },
                             {"counter",      {8}                                 },
                             {"latch",        {0x44}                              },
                             {"reload",       {1}                                 },
                             {"filter",       {7}                                 },
                             {"bankSelect",   {7}                                 },
                             {"ramControl",   {0x80}                              },
                             {"mirroring",    {3}                                 },
                             {"program",      {0x24, 0x25, 0x3E, 0x3F}            },
                             {"character",    {0, 1, 2, 3, 0x20, 0x21, 0x22, 0x23}},
                             {"programRam",   {0x11}                              },
                             {"characterRam", {0x22}                              }
    });
}

TEST(BoardState, LatchedBoardFieldOrder) {
    CartridgeRig rig({9, 8, 16, 0});
    rig.Write(0xA000, 5);
    rig.Write(0xF000, 0);
    rig.Write(0xB000, 1);
    rig.Write(0xC000, 2);
    rig.Write(0xD000, 3);
    rig.Write(0xE000, 4);
    (void)rig.PpuRead(0x1FE8);
    const std::vector<uint8_t> block = rig.Save();
    ExpectValuesAsListed("Board 9", block,
                         {
                             {"program",   {5}         },
                             {"mirroring", {0}         },
                             {"latches",   {0, 1}      },
                             {"character", {1, 2, 3, 4}}
    });
}

TEST(BoardState, CycleBoardFieldOrder) {
    CartridgeRig rig({73, 8, 0, 0});
    for (int digit = 0; digit < 4; ++digit) {
        rig.Write(0x8000 + digit * 0x1000, digit + 1);
    }
    rig.Write(0xC000, 7);
    rig.Write(0xF000, 0x15);
    BoardCpuClock(*rig.cartridge);
    rig.Write(0x8000, 9);
    rig.PpuWrite(0, 0x33);
    const std::vector<uint8_t> block = rig.Save();
    ExpectValuesAsListed("Board 73", block,
                         {
                             {"control",      {7}     },
                             {"counter",      {0x4322}},
                             {"latch",        {0x4329}},
                             {"bank",         {0x15}  },
                             {"programRam",   {}      },
                             {"characterRam", {0x33}  }
    });
}
