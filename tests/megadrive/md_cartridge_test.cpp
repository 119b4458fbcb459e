#include "base/bytes.h"
#include "megadrive/md_cartridge_rig.h"

#include <algorithm>
#include <array>
#include <random>

namespace {

constexpr uint32_t kMega = 1 << 20;

constexpr std::string_view kVirtua = "Virtua Racing";

} // namespace

TEST(MdCartridge, WordHasTheEvenByteInItsHighHalf) {
    ImageRig image(0x10000);
    image.bytes[0x400] = 0x12;
    image.bytes[0x401] = 0x34;
    CartridgeRig rig(image);
    EXPECT_EQ(rig.Word(0x400), 0x1234);
    EXPECT_EQ(rig.Byte(0x400), 0x12);
    EXPECT_EQ(rig.Byte(0x401), 0x34);
    EXPECT_EQ(rig.cart->rom[0x200], 0x1234);
}

TEST(MdCartridge, SizeIsRoundedUpAndTheGapIsRepeatedWithIt) {
    const ImageRig image(kMega + kMega / 2);
    CartridgeRig rig(image);
    for (uint32_t copy = 0; copy < 8 * kMega; copy += 2 * kMega) {
        EXPECT_EQ(rig.Byte(copy + 0x10345), ImageRig::Told(0x10345)) << copy;
        EXPECT_EQ(rig.Byte(copy + 0x17FFFF), ImageRig::Told(0x17FFFF)) << copy;
        EXPECT_EQ(rig.Word(copy + 0x180000), 0xFFFF) << copy;
        EXPECT_EQ(rig.Word(copy + 0x1FFFFE), 0xFFFF) << copy;
    }
}

TEST(MdCartridge, SmallestStepOfRepetitionIs64KiB) {
    const ImageRig image(512);
    CartridgeRig rig(image);
    EXPECT_EQ(rig.Byte(0x001), ImageRig::Told(1));
    EXPECT_EQ(rig.Byte(0x201), 0xFF);
    EXPECT_EQ(rig.Byte(0x10001), ImageRig::Told(1));
    EXPECT_EQ(rig.Byte(0x7F0001), ImageRig::Told(1));
}

TEST(MdCartridge, LastCopyIsCutAtTheEndOfTheWindow) {
    // Five megabytes round up to eight, so there is one copy; nine are cut.
    CartridgeRig five{ImageRig(5 * kMega)};
    EXPECT_EQ(five.Byte(0x4FFFFF), ImageRig::Told(0x4FFFFF));
    EXPECT_EQ(five.Byte(0x500000), 0xFF);
    CartridgeRig nine{ImageRig(9 * kMega)};
    EXPECT_EQ(nine.Byte(0x7FFFFF), ImageRig::Told(0x7FFFFF));
    EXPECT_EQ(nine.cart->rom.size() * 2, kMdCartWindowBytes);
}

TEST(MdCartridge, OddSizeIsPairedWithAByteOfOnes) {
    ImageRig image(0x10001);
    image.bytes[0x10000] = 0x5A;
    CartridgeRig rig(image);
    EXPECT_EQ(rig.Word(0x10000), 0x5AFF);
    EXPECT_EQ(rig.Word(0x10002), 0xFFFF);
    // And it rounds up past the 64 KiB.
    EXPECT_EQ(rig.Word(0x30000), 0x5AFF);
}

TEST(MdCartridge, ImageShorterThanItsHeaderReadsAsOnes) {
    for (const size_t size : {0u, 1u, 0x150u, 0x183u, 0x1B1u, 0x1B5u}) {
        CartridgeRig rig{[&] {
            ImageRig image(0x200);
            image.bytes.resize(size);
            return image;
        }()};
        EXPECT_EQ(rig.cart->cartKind, kMdCartPlain) << size;
        EXPECT_EQ(rig.Byte(0x1FF), 0xFF) << size;
    }
}

TEST(MdCartridge, DoubleTitleIsMappedAtZeroAndAtFourMegabytesOnly) {
    CartridgeRig rig{ImageRig(2 * kMega).Title("SONIC & KNUCKLES")};
    EXPECT_EQ(rig.Byte(0x12345), ImageRig::Told(0x12345));
    EXPECT_EQ(rig.Byte(0x412345), ImageRig::Told(0x12345));
    EXPECT_EQ(rig.Word(0x200000), 0xFFFF);
    EXPECT_EQ(rig.Word(0x212344), 0xFFFF);
    EXPECT_EQ(rig.Word(0x600000), 0xFFFF);
}

TEST(MdCartridge, DoubleTitleLargerThanHalfTheWindowIsOverlaidByItsCopy) {
    CartridgeRig rig{ImageRig(5 * kMega).Title("SONIC & KNUCKLES")};
    EXPECT_EQ(rig.Byte(0x412345), ImageRig::Told(0x12345));
    EXPECT_EQ(rig.Byte(0x7FFFFF), ImageRig::Told(0x3FFFFF));
}

TEST(MdCartridge, TitleHasItsBlanksFolded) {
    CartridgeRig rig{ImageRig(0x10000).Title("A  GAME     OF OURS")};
    EXPECT_EQ(rig.cart->title, "A GAME OF OURS");
    CartridgeRig blank{ImageRig(0x10000)};
    EXPECT_EQ(blank.cart->title, "");
    // Two titles that only match once the run between their words is one blank.
    CartridgeRig folded{ImageRig(0x10000).Title("SONIC &   KNUCKLES")};
    EXPECT_EQ(folded.Byte(0x10001), 0xFF);
    EXPECT_EQ(folded.Byte(0x400001), ImageRig::Told(1));
}

TEST(MdCartridge, ProductCodeIsReadInPlainOrder) {
    CartridgeRig rig{ImageRig(0x10000).Product(" T-12345 -00")};
    EXPECT_EQ(rig.cart->productCode, " T-12345 -00    ");
}

TEST(MdCartridge, SvpTitleIsSearchedNotCompared) {
    for (const std::string_view title : {"Virtua Racing", "THE Virtua Racing GAME"}) {
        const CartridgeRig rig{ImageRig(0x40000).Title(title)};
        EXPECT_EQ(rig.cart->cartKind, kMdCartSvp) << title;
        EXPECT_EQ(rig.cart->svpDmaQuirk, 1u);
        EXPECT_NE(rig.cart->svp, nullptr);
        EXPECT_TRUE(rig.Handled(0x3F0000));
        EXPECT_FALSE(rig.Handled(0x400000));
    }
    const CartridgeRig rig{ImageRig(0x40000).Title("VIRTUA RACING")};
    EXPECT_EQ(rig.cart->cartKind, kMdCartPlain);
    EXPECT_EQ(rig.cart->svpDmaQuirk, 0u);
}

TEST(MdCartridge, SvpTitleGoesBeforeTheRamMark) {
    const CartridgeRig rig{ImageRig(0x40000).Title(kVirtua).Ram(0x200000, 0x203FFF)};
    EXPECT_EQ(rig.cart->cartKind, kMdCartSvp);
    EXPECT_EQ(rig.cart->sram, nullptr);
}

TEST(MdCartridge, PlainPagesCoverTheWindowAndIgnoreWrites) {
    CartridgeRig rig{ImageRig(0x10000)};
    EXPECT_EQ(rig.cart->cartKind, kMdCartPlain);
    for (uint32_t page = 0; page < kMdCartPages; ++page) {
        EXPECT_EQ(rig.Handled(page << 16), page < 128) << page;
        EXPECT_EQ(rig.cart->readByte[page] != nullptr, page < 128) << page;
        EXPECT_EQ(rig.cart->writeByte[page] != nullptr, page < 128) << page;
        EXPECT_EQ(rig.cart->writeWord[page] != nullptr, page < 128) << page;
    }
    rig.PutByte(0x1001, 0);
    rig.PutWord(0x1002, 0);
    EXPECT_EQ(rig.Byte(0x1001), ImageRig::Told(0x1001));
    EXPECT_EQ(rig.Byte(0x1002), ImageRig::Told(0x1002));
    EXPECT_TRUE(MdCartSaveData(*rig.cart).empty());
}

TEST(MdCartridge, RamMarkMustBeWhole) {
    ImageRig image(0x10000);
    image.Ram(0x200000, 0x20FFFF).bytes[0x1B1] = 'B';
    EXPECT_EQ(CartridgeRig(image).cart->cartKind, kMdCartPlain);
    // Nor is it found with its letters in the other order.
    image.Text(0x1B0, "AR");
    EXPECT_EQ(CartridgeRig(image).cart->cartKind, kMdCartPlain);
}

TEST(MdCartridge, RamIsFreshAndReachesToTheAddressOfTheHeader) {
    CartridgeRig rig{ImageRig(0x80000).Ram(0x200000, 0x203FFF)};
    ASSERT_EQ(rig.cart->cartKind, kMdCartSram);
    EXPECT_EQ(rig.cart->sram->start, 0x200000u);
    EXPECT_EQ(rig.cart->sram->end, 0x204000u);
    EXPECT_EQ(rig.Word(0x200000), 0xFFFF);
    EXPECT_EQ(rig.Word(0x203FFE), 0xFFFF);
    EXPECT_EQ(rig.Byte(0x204001), rig.Rom(0x204001));
    EXPECT_EQ(rig.Byte(0x1FFFFF), rig.Rom(0x1FFFFF));
    EXPECT_NE(rig.Rom(0x204001), 0xFF);
    rig.PutWord(0x203FFE, 0x1234);
    rig.PutWord(0x204000, 0x5678);
    EXPECT_EQ(rig.Word(0x203FFE), 0x1234);
    EXPECT_EQ(rig.Byte(0x204000), rig.Rom(0x204000));
    // It doesn't repeat in the next 64 KiB.
    EXPECT_EQ(rig.Byte(0x210001), rig.Rom(0x210001));
}

TEST(MdCartridge, RamBytesAndWordsAgree) {
    CartridgeRig rig{ImageRig(0x80000).Ram(0x200000, 0x20FFFF)};
    rig.PutWord(0x200010, 0x1234);
    EXPECT_EQ(rig.Byte(0x200010), 0x12);
    EXPECT_EQ(rig.Byte(0x200011), 0x34);
    rig.PutByte(0x200011, 0x56);
    EXPECT_EQ(rig.Word(0x200010), 0x1256);
    // The low byte of a word lies first.
    EXPECT_EQ(rig.cart->sram->data[0x10], 0x56);
    EXPECT_EQ(rig.cart->sram->data[0x11], 0x12);
}

TEST(MdCartridge, RamOnOddBytesWorksByBytes) {
    CartridgeRig rig{ImageRig(0x80000).Ram(0x200001, 0x203FFF)};
    for (uint32_t i = 0; i < 0x2000; ++i) {
        rig.PutByte(0x200001 + 2 * i, static_cast<int>(i * 5 & 0xFF));
    }
    for (uint32_t i = 0; i < 0x2000; ++i) {
        ASSERT_EQ(rig.Byte(0x200001 + 2 * i), static_cast<int>(i * 5 & 0xFF)) << i;
    }
    // Counted from an odd address, the bytes at odd addresses are the high ones of their words.
    EXPECT_EQ(rig.cart->sram->data[1], 0);
    EXPECT_EQ(rig.cart->sram->data[3], 5);
    EXPECT_EQ(rig.cart->sram->data[0], 0xFF);
    // The address before the range is the ROM's.
    EXPECT_EQ(rig.Byte(0x200000), rig.Rom(0x200000));
    EXPECT_EQ(rig.Word(0x200000), rig.Rom(0x200000) << 8 | rig.Rom(0x200001));
    // A word doesn't reach the byte that its address names.
    rig.PutWord(0x200002, 0x1234);
    EXPECT_EQ(rig.cart->sram->data[1], 0x34);
    EXPECT_EQ(rig.cart->sram->data[2], 0x12);
    EXPECT_EQ(rig.Byte(0x200003), 5);
}

TEST(MdCartridge, RamLargerThanItsBlockRepeats) {
    CartridgeRig rig{ImageRig(0x80000).Ram(0x200000, 0x21FFFF)};
    rig.PutWord(0x200010, 0x1234);
    EXPECT_EQ(rig.Word(0x210010), 0x1234);
    rig.PutByte(0x210013, 0x77);
    EXPECT_EQ(rig.Byte(0x200013), 0x77);
    EXPECT_EQ(MdCartSaveData(*rig.cart).size(), kMdSramBytes);
}

TEST(MdCartridge, WordAcrossTheEndOfTheRamBlockLosesItsHighByte) {
    CartridgeRig rig{ImageRig(0x80000).Ram(0x200001, 0x21FFFF)};
    rig.PutWord(0x210000, 0x1234); // 0xFFFF bytes after the start
    EXPECT_EQ(rig.cart->sram->data[0xFFFF], 0x34);
    EXPECT_EQ(rig.cart->sram->data[0], 0xFF);
    EXPECT_EQ(rig.Word(0x210000), 0xFF34);
}

TEST(MdCartridge, UnusableRamRangeMatchesNoAddress) {
    constexpr std::array<std::array<uint32_t, 2>, 4> kRanges{
        {{0x203FFF, 0x200000},
         {0xFFFFFFFF, 0xFFFFFFFF},
         {0x20202020, 0x20202020},
         {0, 0xFFFFFFFF}}
    };
    for (const auto& range : kRanges) {
        CartridgeRig rig{ImageRig(0x80000).Ram(range[0], range[1])};
        ASSERT_EQ(rig.cart->cartKind, kMdCartSram);
        for (uint32_t address = 0; address < 0x800000; address += 0x8000) {
            rig.PutWord(address, 0x1234);
            rig.PutByte(address + 3, 0x12);
            ASSERT_EQ(rig.Byte(address + 1), rig.Rom(address + 1));
        }
        EXPECT_TRUE(MdCartSaveData(*rig.cart).empty());
    }
}

TEST(MdCartridge, SaveDataIsTheUsedRam) {
    struct ROW {
        uint32_t first;
        uint32_t last;
        size_t bytes;
        size_t reached; // by an access in the range
    };

    constexpr std::array<ROW, 9> kRows{
        {{0x200000, 0x203FFF, 0x4000, 0x4000},
         {0x200001, 0x203FFF, 0x4000, 0x4000}, // 0x3FFF addresses, whole words of them
         // The word at the last address is 0x3FFF after the start, its high byte 0x4000.
         {0x200001, 0x204000, 0x4002, 0x4001},
         {0x200001, 0x200002, 4, 3},
         {0x200001, 0x200001, 2, 1}, // one byte, and no word
         {0x200000, 0x203FFE, 0x4000, 0x4000},
         {0x200000, 0x20FFFF, 0x10000, 0x10000},
         {0x200000, 0x7FFFFF, 0x10000, 0x10000},
         {0x7FFF00, 0xFFFFFF, 0x100, 0x100}}
    };
    for (const ROW& row : kRows) {
        CartridgeRig rig{ImageRig(0x80000).Ram(row.first, row.last)};
        EXPECT_EQ(MdCartSaveData(*rig.cart).size(), row.bytes) << row.first << ' ' << row.last;
        // No access in the range leaves it.
        const uint32_t end = std::min(row.last + 1, 0x800000u);
        for (uint32_t address = row.first; address < end; ++address) {
            rig.PutByte(address, 0);
            if (address % 2 == 0) {
                rig.PutWord(address, 0);
            }
        }
        const auto& data = rig.cart->sram->data;
        const auto reachedEnd = data.begin() + static_cast<std::ptrdiff_t>(row.bytes);
        EXPECT_EQ(std::count(reachedEnd, data.end(), 0xFF), data.end() - reachedEnd);
        EXPECT_EQ(static_cast<size_t>(std::count(data.begin(), reachedEnd, 0)), row.reached);
    }
}

TEST(MdCartridge, RamKeepsItsContentsThroughReset) {
    CartridgeRig rig{ImageRig(0x80000).Ram(0x200000, 0x203FFF)};
    rig.PutWord(0x200000, 0x1234);
    MdCartReset(*rig.cart);
    EXPECT_EQ(rig.Word(0x200000), 0x1234);
}

TEST(MdCartridge, PlainPageIsRomAndNothingElse) {
    const auto plain = [](CartridgeRig& rig) {
        std::vector<uint32_t> pages;
        for (uint32_t page = 0; page < kMdCartPages; ++page) {
            const uint16_t* words = MdCartPlainPage(*rig.cart, page);
            if (words == nullptr) {
                pages.push_back(page);
            } else {
                EXPECT_EQ(words[1], MdCartRomWord(*rig.cart, page << 16 | 2)) << page;
            }
        }
        // Above the window no page is.
        EXPECT_GE(pages.size(), 128u);
        pages.resize(pages.size() - 128);
        return pages;
    };
    using Pages = std::vector<uint32_t>;
    CartridgeRig rom{ImageRig(0x80000)};
    EXPECT_EQ(plain(rom), Pages{});
    CartridgeRig ram{ImageRig(0x80000).Ram(0x200000, 0x210000)};
    EXPECT_EQ(plain(ram), (Pages{0x20, 0x21}));
    CartridgeRig edge{ImageRig(0x80000).Ram(0x200001, 0x20FFFF)};
    EXPECT_EQ(plain(edge), (Pages{0x20}));
    CartridgeRig none{ImageRig(0x80000).Ram(0x203FFF, 0x200000)};
    EXPECT_EQ(plain(none), Pages{});
    CartridgeRig near{ImageRig(0x80000).Ram(0, 0).Product(" T-81406")};
    EXPECT_EQ(plain(near), (Pages{0x20}));
    CartridgeRig far{ImageRig(0x80000).Ram(0, 0).Product(" T-120106")};
    EXPECT_EQ(plain(far), (Pages{0x30, 0x38}));
    CartridgeRig svp{ImageRig(0x80000).Title(kVirtua)};
    EXPECT_EQ(plain(svp), (Pages{0x30, 0x31, 0x39, 0x3A}));
}

TEST(MdCartridge, SetupForgetsTheCartridgeBefore) {
    CartridgeRig rig{ImageRig(0x80000).Title(kVirtua)};
    MdCartSetup(*rig.cart, ImageRig(0x80000).Ram(0x200000, 0x203FFF).bytes);
    EXPECT_EQ(rig.cart->cartKind, kMdCartSram);
    EXPECT_EQ(rig.cart->svp, nullptr);
    EXPECT_EQ(rig.cart->svpDmaQuirk, 0u);
    rig.PutWord(0x200000, 0x1234);
    MdCartSetup(*rig.cart, ImageRig(0x80000).bytes);
    EXPECT_EQ(rig.cart->cartKind, kMdCartPlain);
    EXPECT_EQ(rig.Byte(0x200001), ImageRig::Told(1));
}

TEST(MdCartridgeState, SizesAreTheSumOfTheFields) {
    const std::array<std::pair<ImageRig, size_t>, 4> rows{
        {{ImageRig(0x10000), 5},
         {ImageRig(0x10000).Ram(0x200000, 0x203FFF), 5 + 4 + 4 + 65536},
         {ImageRig(0x10000).Ram(0, 0).Product(" T-81406"), 5 + 23 + 65536},
         {ImageRig(0x10000).Title(kVirtua),
          5 + 3 * 4 + 16 * 4 + 6 * (2 + 4 + 4) + 512 * 2 + 30 * 4 + 8 + 2 * 131072}}
    };
    for (const auto& [image, size] : rows) {
        const CartridgeRig rig(image);
        const std::vector<uint8_t> block = rig.Save();
        EXPECT_EQ(block.size(), size);
        EXPECT_EQ(block[0], 1);
        EXPECT_EQ(LoadLittleEndian<uint32_t>(block.data() + 1), size);
    }
}

TEST(MdCartridgeState, RamPieceHasTheEndThenTheStartThenTheBytes) {
    CartridgeRig rig{ImageRig(0x10000).Ram(0x200000, 0x203FFF)};
    rig.PutWord(0x200002, 0x1234);
    const std::vector<uint8_t> block = rig.Save();
    EXPECT_EQ(LoadLittleEndian<uint32_t>(block.data() + 5), 0x204000u);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(block.data() + 9), 0x200000u);
    EXPECT_EQ(block[13 + 2], 0x34);
    EXPECT_EQ(block[13 + 3], 0x12);
}

TEST(MdCartridgeState, LoadedRamIsTheSavedOne) {
    CartridgeRig saved{ImageRig(0x10000).Ram(0x200000, 0x203FFF)};
    saved.PutWord(0x200002, 0x1234);
    CartridgeRig loaded{ImageRig(0x10000).Ram(0x200000, 0x203FFF)};
    loaded.PutWord(0x200004, 0x5678);
    EXPECT_EQ(loaded.Load(saved.Save()), 5u + 8 + 65536);
    EXPECT_EQ(loaded.Word(0x200002), 0x1234);
    EXPECT_EQ(loaded.Word(0x200004), 0xFFFF);
}

TEST(MdCartridgeState, WrongVersionOrLengthIsRefusedWithNothingChanged) {
    const std::array<ImageRig, 4> images{
        {ImageRig(0x10000), ImageRig(0x10000).Ram(0x200000, 0x203FFF),
         ImageRig(0x10000).Ram(0, 0).Product(" T-81406"), ImageRig(0x10000).Title(kVirtua)}
    };
    for (const ImageRig& image : images) {
        CartridgeRig rig(image);
        const std::vector<uint8_t> before = rig.Save();
        std::vector<uint8_t> other(before.size(), 0x55);
        std::copy_n(before.begin(), 5, other.begin());
        for (size_t byte = 0; byte < 5; ++byte) {
            std::vector<uint8_t> wrong = other;
            wrong[byte] ^= 2;
            EXPECT_EQ(rig.Load(wrong), 0u);
        }
        for (const size_t size : {size_t{0}, size_t{4}, before.size() - 1}) {
            const std::vector<uint8_t> cut(other.begin(),
                                           other.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_EQ(rig.Load(cut), 0u);
        }
        EXPECT_EQ(rig.Save(), before);
    }
}

TEST(MdCartridgeState, AnyBytesAreSafe) {
    std::mt19937 random(5);
    const std::array<ImageRig, 3> images{
        {ImageRig(0x10000).Ram(0x200001, 0x21FFFF), ImageRig(0x10000).Ram(0, 0).Product(" T-81406"),
         ImageRig(0x10000).Ram(0, 0).Product(" T-120146-50")}
    };
    for (const ImageRig& image : images) {
        CartridgeRig rig(image);
        for (int trial = 0; trial < 100; ++trial) {
            std::vector<uint8_t> block = rig.Save();
            const uint8_t fill = trial == 0 ? 0xFF : 0;
            std::generate(block.begin() + 5, block.begin() + 64, [&] {
                return static_cast<uint8_t>((static_cast<uint32_t>(random()) & 0xFF) | fill);
            });
            ASSERT_EQ(rig.Load(block), block.size());
            for (int i = 0; i < 200; ++i) {
                const uint32_t page = i % 3 == 0 ? 0x300000 : 0x200000;
                rig.PutWord(page, static_cast<int>(random() & 0xFFFF));
                rig.PutByte(page | 1, static_cast<int>(random() & 0xFF));
                static_cast<void>(rig.Word(i % 2 == 0 ? 0x200000 : 0x380000));
            }
            // What the header said still holds.
            ASSERT_EQ(MdCartPlainPage(*rig.cart, 0x7F),
                      rig.cart->rom.data() + size_t{0x7F} * 0x8000);
            if (rig.cart->sram != nullptr) {
                EXPECT_EQ(rig.cart->sram->start, 0x200001u);
                EXPECT_EQ(rig.cart->sram->end, 0x220000u);
            } else {
                EXPECT_EQ(rig.cart->eeprom->sdaInBit, 0);
                EXPECT_EQ(rig.cart->eeprom->sizeMask, rig.cart->eeprom->pageMask);
            }
        }
    }
}
