#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/extract.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

constexpr uint16_t kMasterSystem = 1;
constexpr uint16_t kMegaDrive = 4;
constexpr uint16_t kArcade = 6;

struct PIECE {
    std::string name;
    Bytes image;
};

// A game of these pieces, with a name that plays them all.
CGameFile GameOf(uint16_t system, const std::vector<PIECE>& pieces) {
    CGameFile game;
    game.Create(false, system);
    game.AddNameFromTitle("Title", 1, 1, {});
    Bytes data;
    for (const PIECE& piece : pieces) {
        game.AddRom(piece.name, Sha256(piece.image), static_cast<uint32_t>(piece.image.size()));
        data = data + piece.image;
    }
    EXPECT_TRUE(game.SetData(data));
    return game;
}

// The only file of a converted image, which went through the bytes of a `.game`.
IMAGE_FILE ThereAndBack(uint16_t system, const Bytes& file, ImageForm form = ImageForm::kPlain) {
    Bytes written;
    bool known = false;
    EXPECT_TRUE(ConvertImage(system, "stem", file, {}, written, known));
    CGameFile game;
    EXPECT_TRUE(game.Parse(written.data(), written.size(), true));
    std::vector<std::string> faults;
    std::vector<IMAGE_FILE> files = ImageFiles(game, "stem", form, faults);
    EXPECT_TRUE(faults.empty()) << faults.front();
    EXPECT_EQ(files.size(), 1u);
    return files.empty() ? IMAGE_FILE{} : files.front();
}

// Random bytes, or, to be packed, runs of them.
Bytes RandomFile(CRandom& random) {
    Bytes bytes = random.Fill(1 + random.Below(random.Below(4) == 0 ? 300000 : 3000));
    if (random.Below(2) == 0) {
        const size_t run = 1 + random.Below(700);
        for (size_t i = run; i < bytes.size(); ++i) {
            bytes[i] = bytes[i - run];
        }
    }
    return bytes;
}

} // namespace

TEST(Extract, GivesBackTheFileThatWasConverted) {
    const uint16_t systems[] = {1, 2, 4, 5};
    CRandom random(7);
    for (int round = 0; round < 60; ++round) {
        const Bytes file = RandomFile(random);
        for (const uint16_t system : systems) {
            const IMAGE_FILE back = ThereAndBack(system, file);
            const bool dump = system == kMegaDrive && PrepareImage(system, file) != file;
            EXPECT_TRUE(back.bytes == (dump ? PrepareImage(system, file) : file))
                << "round " << round << ", system " << system << ", " << file.size() << " bytes";
            EXPECT_EQ(back.stem, "stem");
            EXPECT_TRUE(ValidExtension(system, back.extension)) << back.extension;
        }
    }
}

// What a copier would have written: the converter makes the same game of it.
TEST(Extract, InterleavedFileIsTheSameGameToTheConverter) {
    CRandom random(11);
    for (int round = 0; round < 60; ++round) {
        const Bytes image = random.Fill((1 + random.Below(90)) * size_t{1024});
        const IMAGE_FILE dump = ThereAndBack(kMegaDrive, image, ImageForm::kInterleaved);
        EXPECT_EQ(dump.extension, ".smd");
        ASSERT_EQ(dump.bytes.size(), image.size() + 512);
        EXPECT_TRUE(PrepareImage(kMegaDrive, dump.bytes) == image) << "round " << round;
    }
}

// From the published layout of these files: the number of 16 KB blocks, 3, and at 8 the marks AA BB 06.
TEST(Extract, InterleavedFileHasACopiersHeader) {
    const IMAGE_FILE dump =
        ThereAndBack(kMegaDrive, Bytes(5 * size_t{16384}, 1), ImageForm::kInterleaved);
    EXPECT_EQ(Slice(dump.bytes, 0, 11), (Bytes{5, 3, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB, 6}));
    EXPECT_EQ(Slice(dump.bytes, 11, 501), Bytes(501));
}

TEST(Extract, InterleavedFormOfAnotherMachineIsThePlainOne) {
    const Bytes image(16384, 3);
    EXPECT_TRUE(ThereAndBack(kMasterSystem, image, ImageForm::kInterleaved).bytes == image);
}

// A dump of such a size would be taken for a plain image.
TEST(Extract, ImageWithoutInterleavedFormIsAFault) {
    for (const size_t size : {size_t{511}, size_t{512}, size_t{1536}, size_t{16384 + 700}}) {
        const CGameFile game = GameOf(kMegaDrive, {
                                                      {"v1.0", Bytes(size, 1)}
        });
        std::vector<std::string> faults;
        EXPECT_TRUE(ImageFiles(game, "a", ImageForm::kInterleaved, faults).empty()) << size;
        ASSERT_EQ(faults.size(), 1u) << size;
        EXPECT_NE(faults[0].find(std::to_string(size)), std::string::npos) << faults[0];
    }
}

TEST(Extract, VersionsAreNamedAfterThePieces) {
    const CGameFile game =
        GameOf(kMasterSystem, {
                                  {"v1.0", Bytes(10, 1)},
                                  {"v1.1", Bytes(20, 2)}
    });
    std::vector<std::string> faults;
    const std::vector<IMAGE_FILE> files = ImageFiles(game, "Game", ImageForm::kPlain, faults);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].stem, "Game (v1.0)");
    EXPECT_EQ(files[0].extension, ".sms");
    EXPECT_EQ(files[0].bytes, Bytes(10, 1));
    EXPECT_EQ(files[1].stem, "Game (v1.1)");
    EXPECT_EQ(files[1].bytes, Bytes(20, 2));
}

// As a game that two entries of a database know.
TEST(Extract, RepeatedPieceIsThereOnce) {
    const CGameFile game =
        GameOf(kMasterSystem, {
                                  {"v1.0",  Bytes(10, 1)},
                                  {"Rev A", Bytes(10, 1)}
    });
    std::vector<std::string> faults;
    const std::vector<IMAGE_FILE> files = ImageFiles(game, "Game", ImageForm::kPlain, faults);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].stem, "Game");
}

TEST(Extract, PiecesOfABoardHaveTheirOwnNames) {
    const CGameFile game =
        GameOf(kArcade, {
                            {"epr-1.ic7", Bytes(10, 1)},
                            {"opcodes",   Bytes(5,  2)}
    });
    std::vector<std::string> faults;
    const std::vector<IMAGE_FILE> files = ImageFiles(game, "Game", ImageForm::kPlain, faults);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].stem.string() + files[0].extension, "epr-1.ic7");
    EXPECT_EQ(files[1].stem.string() + files[1].extension, "opcodes");
    EXPECT_EQ(files[1].bytes, Bytes(5, 2));
}

TEST(Extract, EqualPiecesOfABoardAreTwoFiles) {
    const CGameFile game = GameOf(
        kArcade,
        {
            {"epr-1.ic7", Bytes(10, 1)},
            {"epr-1.ic8", Bytes(10, 1)},
            {"epr-1.ic7", Bytes(10, 1)}
    });
    std::vector<std::string> faults;
    const std::vector<IMAGE_FILE> files = ImageFiles(game, "Game", ImageForm::kPlain, faults);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[1].stem.string() + files[1].extension, "epr-1.ic8");
    EXPECT_EQ(files[1].bytes, Bytes(10, 1));
}

TEST(Extract, NoNameLeadsOutOfTheFolder) {
    const char* const names[] = {"..",          ".",     "",      "/etc/passwd",
                                 "../../a.bin", "a/..",  "a\\..", "C:\\a.bin",
                                 "\n.bin",      ".../x", "...",   "a/"};
    for (const char* const name : names) {
        for (const uint16_t system : {kArcade, kMasterSystem}) {
            const CGameFile game =
                GameOf(system, {
                                   {name,    Bytes(10, 1)},
                                   {"other", Bytes(11, 2)}
            });
            std::vector<std::string> faults;
            const std::vector<IMAGE_FILE> files =
                ImageFiles(game, "stem", ImageForm::kPlain, faults);
            ASSERT_EQ(files.size(), 2u) << name;
            for (const IMAGE_FILE& file : files) {
                const std::string whole = file.stem.string() + file.extension;
                EXPECT_EQ(whole.find_first_of("/\\\n:"), std::string::npos) << whole;
                EXPECT_FALSE((std::set<std::string>{"", ".", ".."}).contains(whole)) << name;
            }
        }
    }
}

TEST(Extract, DamagedPieceIsAFaultAndTheOthersAreGivenBack) {
    CGameFile game;
    game.Create(false, kArcade);
    game.AddRom("good", Sha256(Bytes(4, 1)), 4);
    game.AddRom("bad", Sha256(Bytes(4, 2)), 4);
    game.AddRom("last", Sha256(Bytes(4, 3)), 4);
    ASSERT_TRUE(game.SetData(Bytes(4, 1) + Bytes(4, 9) + Bytes(4, 3)));
    std::vector<std::string> faults;
    const std::vector<IMAGE_FILE> files = ImageFiles(game, "Game", ImageForm::kPlain, faults);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].stem, "good");
    EXPECT_EQ(files[1].stem, "last");
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].substr(0, 4), "bad:");
}

TEST(Extract, GameThatIsNotUnpackedGivesNothing) {
    CGameFile game;
    game.Create(false, kArcade);
    game.AddRom("good", Sha256(Bytes(4, 1)), 4);
    std::vector<std::string> faults;
    EXPECT_TRUE(ImageFiles(game, "Game", ImageForm::kPlain, faults).empty());
    EXPECT_EQ(faults.size(), 1u);
    CGameFile none;
    none.Create(false, kMasterSystem);
    faults.clear();
    EXPECT_TRUE(ImageFiles(none, "Game", ImageForm::kPlain, faults).empty());
    EXPECT_EQ(faults.size(), 1u);
}

TEST(Extract, ImageThatIsAnArchiveIsAZip) {
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("a.sms", Bytes(100, 1), error));
    const Bytes zip = writer.Finish(error);
    for (const ImageForm form : {ImageForm::kPlain, ImageForm::kInterleaved}) {
        const CGameFile game = GameOf(kMegaDrive, {
                                                      {"v1.0", zip}
        });
        std::vector<std::string> faults;
        const std::vector<IMAGE_FILE> files = ImageFiles(game, "a", form, faults);
        ASSERT_EQ(files.size(), 1u);
        EXPECT_EQ(files[0].extension, ".zip");
        EXPECT_EQ(files[0].bytes, zip);
    }
}
