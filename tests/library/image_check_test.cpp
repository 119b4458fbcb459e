#include "facts/machine_facts.h"
#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/image_check.h"

#include "support/least_images.h"
#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

constexpr uint16_t kConsoles[] = {kSystemMasterSystem, kSystemGameGear, kSystemMegaDrive,
                                  kSystemNes};

Bytes Image(size_t size) {
    CRandom random(size);
    return random.Fill(size);
}

Bytes NesFile(uint8_t programBanks, uint8_t characterBanks, uint8_t flags, size_t bytes) {
    Bytes file = Text("NES\x1A");
    file.insert(file.end(), {programBanks, characterBanks, flags, 0});
    file.resize(16 + bytes, 0xEA);
    return file;
}

ImageFault Fault(uint16_t system, const Bytes& file) {
    return CheckImage(system, file).fault;
}

std::string Reason(uint16_t system, const Bytes& file) {
    return CheckImage(system, file).reason;
}

// Bytes of a file's kind, then enough to be as large as a game.
Bytes Begins(std::string_view mark) {
    return Text(mark) + Image(40000);
}

} // namespace

TEST(ImageCheck, TextIsNoGameOfAnyMachine) {
    const std::string texts[] = {
        std::string(3000, 'x'),
        "# Title\r\n\tsome words\n" + std::string(9000, ' '),
        // "Ete" with accents, in UTF-8 and in Latin-1
        "\xC3\x89t\xC3\xA9 " + std::string(9000, 'e'),
        "\xC9t\xE9 " + std::string(9000, 'e'),
        "<html>" + std::string(9000, '<'),
    };
    for (const std::string& text : texts) {
        for (const uint16_t system : kConsoles) {
            EXPECT_EQ(Reason(system, Text(text)), "is a text, not a game") << text.substr(0, 9);
            EXPECT_EQ(Fault(system, Text(text)), ImageFault::kOtherKind);
        }
    }
    std::string kana;
    for (int i = 0; i < 4000; ++i) {
        kana += "\xE3\x81\x82";
    }
    EXPECT_EQ(Fault(kSystemMegaDrive, Text(kana)), ImageFault::kOtherKind);
}

// A short text has the length that a copier's header has, which is not what to say of it.
TEST(ImageCheck, ShortTextIsToldAsOne) {
    EXPECT_EQ(Reason(kSystemMegaDrive, Bytes(600, 'x')), "is a text, not a game");
}

TEST(ImageCheck, OneControlCharacterMakesItNoText) {
    Bytes file(kLeastNesImage, 'x');
    file[5000] = 0;
    for (const uint16_t system : kConsoles) {
        EXPECT_EQ(Fault(system, file), ImageFault::kNone) << system;
    }
}

TEST(ImageCheck, PicturesArchivesAndProgramsAreTold) {
    const std::tuple<std::string_view, std::string_view> rows[] = {
        {"\x89PNG\r\n\x1A\n",               "PNG picture" },
        {"\xFF\xD8\xFF\xE0",                "JPEG picture"},
        {"GIF89a",                          "GIF picture" },
        {"PK\x03\x04",                      "zip archive" },
        {"7z\xBC\xAF\x27\x1C",              "7z archive"  },
        {"Rar!\x1A\x07",                    "RAR archive" },
        {std::string_view("\x1F\x8B\x08\0", 4),             "gzip archive"},
        {"%PDF-1.4",                                 "PDF document"                                     },
        {"\x7F"
         "ELF",                                 "program of another"},
        {"BPS1",                                 "patch for a game"                                             },
        {"UPS1",                                 "patch for a game"},
        {"PATCH",                                 "patch for a game"                                            },
        {"NESM\x1A",                                 "music of an NES"},
        {"FDS\x1A",                                 "disk of the Famicom"                                             },
    };
    for (const auto& [mark, words] : rows) {
        for (const uint16_t system : kConsoles) {
            const IMAGE_VERDICT verdict = CheckImage(system, Begins(mark));
            EXPECT_EQ(verdict.fault, ImageFault::kOtherKind) << words;
            EXPECT_NE(verdict.reason.find(words), std::string::npos) << verdict.reason;
        }
    }
}

TEST(ImageCheck, FormatsOfAFewLettersNeedTheRestOfTheirHeader) {
    Bytes bitmap = Begins("BM");
    EXPECT_EQ(Fault(kSystemMasterSystem, bitmap), ImageFault::kNone);
    PutInteger(bitmap, 2, 4, bitmap.size());
    EXPECT_EQ(Reason(kSystemMasterSystem, bitmap), "is a BMP picture");
    Bytes program = Begins("MZ");
    PutInteger(program, 0x3C, 4, 0x80);
    EXPECT_EQ(Fault(kSystemMasterSystem, program), ImageFault::kNone);
    PutBytes(program, 0x80, {'P', 'E', 0, 0});
    EXPECT_EQ(Reason(kSystemMasterSystem, program), "is a program of another computer");
    PutInteger(program, 0x3C, 4, 0xFFFFFFFF); // beyond its end
    EXPECT_EQ(Fault(kSystemMasterSystem, program), ImageFault::kNone);
    Bytes sound = Begins("RIFF");
    PutInteger(sound, 4, 4, sound.size() - 8);
    EXPECT_EQ(Reason(kSystemMasterSystem, sound), "is sound or video");
    Bytes tar = Image(20480);
    PutText(tar, 257, "ustar");
    EXPECT_EQ(Fault(kSystemMegaDrive, tar), ImageFault::kOtherKind);
}

// Its maker's header tells more than what it happens to begin with.
TEST(ImageCheck, HeaderOfTheMachineComesFirst) {
    Bytes image = Begins("\xFF\xD8\xFF\xE0");
    PutText(image, 0x100, "SEGA MEGA DRIVE ");
    EXPECT_EQ(Fault(kSystemMegaDrive, image), ImageFault::kNone);
    EXPECT_EQ(Fault(kSystemMasterSystem, image), ImageFault::kOtherKind);
}

TEST(ImageCheck, SmallestImageOfEachMachineIsAccepted) {
    const std::tuple<uint16_t, size_t> rows[] = {
        {kSystemMasterSystem, kLeastSegaImage},
        {kSystemGameGear,     kLeastSegaImage},
        {kSystemMegaDrive,    1024           },
        {kSystemNes,          kLeastNesImage },
    };
    for (const auto& [system, least] : rows) {
        EXPECT_EQ(Fault(system, Image(least)), ImageFault::kNone) << system;
    }
    EXPECT_EQ(Fault(kSystemMasterSystem, Image(kLeastSegaImage - 1)), ImageFault::kOtherKind);
    EXPECT_EQ(Fault(kSystemMegaDrive, Image(511)), ImageFault::kOtherKind);
    EXPECT_EQ(Fault(kSystemNes, Image(kLeastNesImage - 1)), ImageFault::kOtherKind);
    EXPECT_EQ(Reason(kSystemGameGear, Image(100)),
              "has 100 bytes; no game of the machine has less than 1024 bytes");
}

// Chips of arcade boards may be tiny, and a text could be one's contents as well.
TEST(ImageCheck, AnythingMayBeAPieceOfABoard) {
    EXPECT_EQ(Fault(kSystemArcade, Bytes(32, 'x')), ImageFault::kNone);
}

TEST(ImageCheck, NesImageHasTheBytesOfItsHeader) {
    EXPECT_EQ(Fault(kSystemNes, NesFile(2, 1, 0, 2 * 16384 + 8192)), ImageFault::kNone);
    EXPECT_EQ(Fault(kSystemNes, NesFile(2, 1, 0, 2 * 16384 + 8192 + 512)), ImageFault::kNone)
        << "a few more are common";
    const IMAGE_VERDICT cut = CheckImage(kSystemNes, NesFile(2, 1, 0, 2 * 16384 + 8191));
    EXPECT_EQ(cut.fault, ImageFault::kDamaged);
    EXPECT_EQ(cut.reason,
              "is cut off: its NES header says that it has 40976 bytes, and it has 40975");
    EXPECT_EQ(Fault(kSystemNes, NesFile(1, 0, 4, 16384)), ImageFault::kDamaged)
        << "the trainer has 512";
    EXPECT_EQ(Fault(kSystemNes, NesFile(0, 1, 0, 8192)), ImageFault::kDamaged);
    EXPECT_EQ(Reason(kSystemMegaDrive, NesFile(1, 0, 0, 16384)),
              "is a game of the NES, as its first bytes say");
}

// Dumps with the header of a copier, without any header, interleaved, and with bytes left over.
TEST(ImageCheck, OddDumpsAreAccepted) {
    const Bytes image = Image(32768);
    EXPECT_EQ(Fault(kSystemMasterSystem, Bytes(512) + image), ImageFault::kNone);
    EXPECT_EQ(Fault(kSystemGameGear, image + Bytes(3)), ImageFault::kNone);
    EXPECT_EQ(Fault(kSystemNes, image), ImageFault::kNone);
    Bytes dump;
    ASSERT_TRUE(InterleaveImage(image, dump));
    EXPECT_EQ(Fault(kSystemMegaDrive, dump), ImageFault::kNone);
    EXPECT_EQ(Fault(kSystemMegaDrive, Bytes(512, 0xCC)), ImageFault::kDamaged)
        << "a copier's header without an image";
}
