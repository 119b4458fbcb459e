#include "facts/machine_facts.h"
#include "formats/hand_made.h"
#include "library/image_facts.h"

#include <gtest/gtest.h>

namespace {

// 32 KB of ones with a header as published; the sum of the bytes before it is 0x7FF0.
Bytes EightBit(uint8_t region, uint16_t stated) {
    Bytes image(0x8000, 1);
    PutText(image, 0x7FF0, "TMR SEGA");
    PutBytes(image, 0x7FF8,
             {0, 0, static_cast<uint8_t>(stated), static_cast<uint8_t>(stated >> 8), 0x12, 0x34,
              0x20, static_cast<uint8_t>(region << 4 | 0xC)});
    return image;
}

// 1 KB; the words after the header are 0x0102, 256 of them: 0x0102 * 256, cut to 16 bits, is 0x0200.
Bytes MegaDrive() {
    Bytes image(0x400);
    for (size_t i = 0x200; i < image.size(); i += 2) {
        image[i] = 1;
        image[i + 1] = 2;
    }
    PutText(image, 0x100, "SEGA MEGA DRIVE ");
    PutText(image, 0x120, "HOME   TITLE    ");
    PutText(image, 0x150, "OVERSEAS   TITLE      ");
    PutText(image, 0x180, "GM 00001234-00");
    PutBytes(image, 0x18E, {0x02, 0x00});
    PutBytes(image, 0x1A4, {0, 0, 0x03, 0xFF});
    PutText(image, 0x1F0, "JUE ");
    return image;
}

} // namespace

TEST(ImageFacts, MasterSystemHeaderHasRegionSerialAndChecksum) {
    const IMAGE_FACTS facts = ReadImageFacts(kSystemMasterSystem, EightBit(4, 0x7FF0));
    EXPECT_EQ(facts.regions, "export (Master System)");
    EXPECT_EQ(facts.serial, "23412") << "0x12 and 0x34 are the lower digits first, 2 comes before";
    ASSERT_TRUE(facts.checksum);
    EXPECT_EQ(facts.checksum->stated, 0x7FF0);
    EXPECT_EQ(facts.checksum->computed, 0x7FF0);
    EXPECT_FALSE(facts.battery) << "the header has no word for it";
    EXPECT_EQ(ReadImageFacts(kSystemMasterSystem, EightBit(4, 0x1234)).checksum->computed, 0x7FF0);
    EXPECT_EQ(ReadImageFacts(kSystemGameGear, EightBit(7, 0)).regions, "international (Game Gear)");
}

// Sizes beyond the image, and such as no game has, have no sum.
TEST(ImageFacts, ChecksumNeedsTheBytesOfItsSize) {
    Bytes image = EightBit(4, 0x7FF0);
    image[0x7FFF] = 0x4F; // 128 KB
    EXPECT_FALSE(ReadImageFacts(kSystemMasterSystem, image).checksum);
    image.resize(0x20000, 2); // the upper 96 KB count as well
    const auto checksum = ReadImageFacts(kSystemMasterSystem, image).checksum;
    ASSERT_TRUE(checksum);
    EXPECT_EQ(checksum->computed, static_cast<uint16_t>(0x7FF0 + 2 * 0x18000));
    image[0x7FFF] = 0x45;
    EXPECT_FALSE(ReadImageFacts(kSystemMasterSystem, image).checksum);
}

TEST(ImageFacts, OwnProgramsSayTheirTitle) {
    Bytes image(0x8000);
    PutText(image, 0x7FE0, "SDSC");
    PutBytes(image, 0x7FEC, {0x00, 0x10});
    PutText(image, 0x1000, "Paper Lamps");
    EXPECT_EQ(ReadImageFacts(kSystemMasterSystem, image).title, "Paper Lamps");
    PutBytes(image, 0x7FEC, {0xFF, 0xFF}); // none
    EXPECT_EQ(ReadImageFacts(kSystemMasterSystem, image).title, "");
    PutBytes(image, 0x7FEC, {0xF0, 0xFF}); // beyond the image
    EXPECT_EQ(ReadImageFacts(kSystemMasterSystem, image).title, "");
}

TEST(ImageFacts, MegaDriveHeaderHasTitleSerialRegionsAndChecksum) {
    Bytes image = MegaDrive();
    const IMAGE_FACTS facts = ReadImageFacts(kSystemMegaDrive, image);
    EXPECT_EQ(facts.title, "OVERSEAS TITLE");
    EXPECT_EQ(facts.serial, "GM 00001234-00");
    EXPECT_EQ(facts.regions, "Japan, USA, Europe");
    EXPECT_EQ(facts.battery, false);
    ASSERT_TRUE(facts.checksum);
    EXPECT_EQ(facts.checksum->stated, 0x0200);
    EXPECT_EQ(facts.checksum->computed, 0x0200);
    image.push_back(0xFF); // left over, after the end that the header states
    EXPECT_EQ(ReadImageFacts(kSystemMegaDrive, image).checksum->computed, 0x0200);
    image[0x3FF] = 3; // an error in the last word
    EXPECT_EQ(ReadImageFacts(kSystemMegaDrive, image).checksum->computed, 0x0201);
    PutText(image, 0x150, "                      ");
    EXPECT_EQ(ReadImageFacts(kSystemMegaDrive, image).title, "HOME TITLE");
}

TEST(ImageFacts, MegaDriveBatteryAndRegionDigit) {
    Bytes image = MegaDrive();
    PutText(image, 0x1B0, "RA");
    image[0x1B2] = 0xF8;
    EXPECT_EQ(ReadImageFacts(kSystemMegaDrive, image).battery, true);
    image[0x1B2] = 0xA0; // forgets its contents
    EXPECT_EQ(ReadImageFacts(kSystemMegaDrive, image).battery, false);
    const std::pair<const char*, const char*> rows[] = {
        {"4  ", "USA"               },
        {"5  ", "Japan, USA"        },
        {"8  ", "Europe"            },
        {"F  ", "Japan, USA, Europe"},
        {"E  ", "Europe"            },
        {"U  ", "USA"               },
        {"   ", ""                  },
    };
    for (const auto& [field, regions] : rows) {
        PutText(image, 0x1F0, field);
        EXPECT_EQ(ReadImageFacts(kSystemMegaDrive, image).regions, regions) << field;
    }
}

TEST(ImageFacts, NesHeaderTellsTheBoard) {
    Bytes image = Text("NES\x1A");
    image.insert(image.end(), {2, 0, 0x13, 0});
    image.resize(16 + 2 * 16384);
    const IMAGE_FACTS facts = ReadImageFacts(kSystemNes, image);
    EXPECT_EQ(facts.board, "mapper 1, vertical mirroring, 32 KB program, character RAM");
    EXPECT_EQ(facts.battery, true);
    EXPECT_EQ(facts.regions, "");
    EXPECT_FALSE(facts.checksum);
}

// No byte of a file may lead outside it.
TEST(ImageFacts, AnyBytesAreRead) {
    CRandom random(11);
    for (int round = 0; round < 2000; ++round) {
        Bytes image = random.Fill(random.Below(0x9000));
        for (const auto& [at, mark] : {
                 std::pair<size_t, const char*>(0, "NES\x1A"),
                 {0x100,  "SEGA"    },
                 {0x7FE0, "SDSC"    },
                 {0x7FF0, "TMR SEGA"},
                 {0x3FF0, "TMR SEGA"},
                 {0x1FF0, "TMR SEGA"}
        }) {
            if (random.Below(2) == 0 && at + 8 <= image.size()) {
                PutText(image, at, mark);
            }
        }
        for (const uint16_t system :
             {kSystemMasterSystem, kSystemGameGear, kSystemMegaDrive, kSystemNes, kSystemArcade}) {
            const IMAGE_FACTS facts = ReadImageFacts(system, image);
            EXPECT_LE(facts.title.size(), 255u);
        }
    }
}
