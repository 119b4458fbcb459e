#include "formats/hand_made.h"
#include "library/image_identity.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

constexpr uint16_t kMasterSystem = 1;
constexpr uint16_t kGameGear = 2;
constexpr uint16_t kMegaDrive = 4;
constexpr uint16_t kNes = 5;

// 16 bytes as published: the mark, 7 bytes of checksum, product and version, then region and size.
Bytes EightBit(size_t size, size_t headerAt, uint8_t region) {
    Bytes image(size, 0xFF);
    PutText(image, headerAt, "TMR SEGA");
    image[headerAt + 15] = static_cast<uint8_t>((region << 4) | 0xC);
    return image;
}

Bytes MegaDrive(size_t size, std::string_view mark = "SEGA MEGA DRIVE ") {
    Bytes image(size, 0x4E);
    PutText(image, 0x100, mark);
    return image;
}

void ExpectIdentity(std::string_view name, const Bytes& file, uint16_t system, IdentifiedBy by) {
    const IMAGE_IDENTITY identity = IdentifyImage(name, file);
    EXPECT_EQ(identity.system, system) << name;
    EXPECT_EQ(identity.by, by) << name;
}

} // namespace

TEST(ImageIdentity, RegionOfTheHeaderTellsMasterSystemFromGameGear) {
    const std::tuple<uint8_t, uint16_t> rows[] = {
        {3,  kMasterSystem},
        {4,  kMasterSystem},
        {5,  kGameGear    },
        {6,  kGameGear    },
        {7,  kGameGear    },
        {0,  0            },
        {2,  0            },
        {8,  0            },
        {15, 0            },
    };
    for (const auto& [region, system] : rows) {
        EXPECT_EQ(SystemOfContents(EightBit(0x8000, 0x7FF0, region)), system) << int{region};
    }
}

TEST(ImageIdentity, HeaderMayEndTheFirst8Or16Or32KB) {
    for (const size_t headerAt : {size_t{0x1FF0}, size_t{0x3FF0}, size_t{0x7FF0}}) {
        EXPECT_EQ(SystemOfContents(EightBit(headerAt + 16, headerAt, 6)), kGameGear) << headerAt;
        EXPECT_EQ(SystemOfContents(EightBit(0x40000, headerAt, 4)), kMasterSystem) << headerAt;
        Bytes cut = EightBit(headerAt + 16, headerAt, 6);
        cut.pop_back();
        EXPECT_EQ(SystemOfContents(cut), 0) << headerAt;
    }
    EXPECT_EQ(SystemOfContents(EightBit(0x8000, 0x0FF0, 4)), 0);
}

TEST(ImageIdentity, NesFileBeginsWithItsMark) {
    EXPECT_EQ(SystemOfContents(Text("NES\x1A") + Bytes(12)), kNes);
    EXPECT_EQ(SystemOfContents(Text("NES\x1A")), kNes);
    EXPECT_EQ(SystemOfContents(Text("NES ") + Bytes(12)), 0);
    EXPECT_EQ(SystemOfContents(Text("NES")), 0);
    EXPECT_EQ(SystemOfContents({}), 0);
}

TEST(ImageIdentity, MegaDriveNamesItsMakerAt100) {
    EXPECT_EQ(SystemOfContents(MegaDrive(0x200)), kMegaDrive);
    EXPECT_EQ(SystemOfContents(MegaDrive(0x20000, " SEGA GENESIS")), kMegaDrive);
    EXPECT_EQ(SystemOfContents(MegaDrive(0x200, "SEGO MEGA DRIVE")), 0);
    EXPECT_EQ(SystemOfContents(Slice(MegaDrive(0x200), 0, 0x103)), 0);
    EXPECT_EQ(SystemOfContents(Bytes(16) + MegaDrive(0x200)), 0);
}

// Each block of 16 KB holds its odd bytes and then its even ones.
TEST(ImageIdentity, InterleavedDumpIsOfTheMegaDrive) {
    const Bytes image = MegaDrive(0x8000);
    Bytes dump(512);
    for (size_t block = 0; block < image.size(); block += 16384) {
        for (const size_t first : {size_t{1}, size_t{0}}) {
            for (size_t i = first; i < 16384; i += 2) {
                dump.push_back(image[block + i]);
            }
        }
    }
    EXPECT_EQ(SystemOfContents(dump), kMegaDrive);
    EXPECT_EQ(SystemOfContents(Slice(dump, 0, 512 + 16384)), kMegaDrive);
    EXPECT_EQ(SystemOfContents(Slice(dump, 512, 0x8000)), 0) << "without the copier's header";
    EXPECT_EQ(SystemOfContents(Slice(dump, 0, 512 + 8192)), 0) << "not one whole block";
}

TEST(ImageIdentity, ContentsWinOverTheName) {
    ExpectIdentity("a.sms", EightBit(0x8000, 0x7FF0, 6), kGameGear, IdentifiedBy::kContents);
    ExpectIdentity("a.gg", MegaDrive(0x400), kMegaDrive, IdentifiedBy::kContents);
    ExpectIdentity("readme.txt", Text("NES\x1A") + Bytes(100), kNes, IdentifiedBy::kContents);
}

TEST(ImageIdentity, NameTellsWhatTheContentsDoNot) {
    const Bytes plain(0x8000, 0x55);
    ExpectIdentity("a.sms", plain, kMasterSystem, IdentifiedBy::kName);
    ExpectIdentity("folder.sms/A.GG", plain, kGameGear, IdentifiedBy::kName);
    ExpectIdentity("a.sms.nes", plain, kNes, IdentifiedBy::kName);
    ExpectIdentity("a.gg", EightBit(0x8000, 0x7FF0, 0), kGameGear, IdentifiedBy::kName);
    ExpectIdentity("a.rom", plain, 0, IdentifiedBy::kNothing);
    ExpectIdentity("folder.sms/a", plain, 0, IdentifiedBy::kNothing);
    ExpectIdentity("", plain, 0, IdentifiedBy::kNothing);
}
