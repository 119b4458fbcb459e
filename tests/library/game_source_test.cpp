#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/game_source.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr uint16_t kMasterSystem = 1;
constexpr uint16_t kMegaDrive = 4;
constexpr uint16_t kNes = 5;

Bytes Zip(const std::vector<std::pair<std::string, Bytes>>& entries) {
    ZipWriter writer;
    std::string error;
    for (const auto& [name, bytes] : entries) {
        EXPECT_TRUE(writer.Add(name, bytes, error)) << error;
    }
    return writer.Finish(error);
}

// A `.game` of that image, as a conversion of the whole archive writes it.
fs::path WriteGame(const TemporaryFolder& folder, uint16_t system, const Bytes& image) {
    CGameFile game;
    EXPECT_TRUE(BuildKnownGame(system, "whole archive", image, {}, game));
    return folder.Write("archive.game", game.WriteGame(image));
}

struct OPENED {
    bool opened = false;
    CGameFile game;
    std::string title;
    std::string note;
    std::string error;
};

OPENED Open(const fs::path& path, const MACHINE_FACTS* system = nullptr) {
    OPENED result;
    result.opened = OpenGame(path, system, result.game, result.title, result.note, result.error);
    return result;
}

} // namespace

TEST(GameSource, GameInAnArchiveInAGameIsTheGameByItself) {
    const TemporaryHome home;
    const Bytes image(5000, 7);
    const fs::path file = WriteGame(
        home, kMasterSystem,
        Zip({
            {"readme.txt", Bytes(9, 1)},
            {"other.gg",            Bytes(8,          2)},
            {"dir/One.SMS",          image       }
    }));
    const OPENED inside = Open(file);
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.title, "One");
    EXPECT_EQ(inside.note, file.string() + ": holds an archive; this is One.SMS in it");
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == image);
    const OPENED alone = Open(home.Write("One.sms", image));
    ASSERT_TRUE(alone.opened);
    EXPECT_TRUE(alone.note.empty());
    // The key of its saves.
    EXPECT_TRUE(std::equal(alone.game.SelectedRomHash(), alone.game.SelectedRomHash() + 32,
                           inside.game.SelectedRomHash()));
}

// Larger than any image may be, as an archive of many is.
TEST(GameSource, LargeArchiveIsOpenedByItselfAndInAGame) {
    const TemporaryHome home;
    const Bytes image(5000, 7);
    Bytes zip = Zip({
        {"one.sms", image}
    });
    // Nothing refers to the bytes between the entries and their list, whose place is told near the end.
    const size_t told = zip.size() - 6;
    const uint64_t list = GetInteger(zip, told, 4);
    PutInteger(zip, told, 4, list + kLargestImage);
    zip.insert(zip.begin() + static_cast<std::ptrdiff_t>(list), kLargestImage, uint8_t{0});
    for (const fs::path& file :
         {home.Write("large.zip", zip), WriteGame(home, kMasterSystem, zip)}) {
        const OPENED opened = Open(file);
        ASSERT_TRUE(opened.opened) << opened.error;
        EXPECT_TRUE(opened.game.AssembleSelectedImage() == image);
    }
}

TEST(GameSource, OnlyFileOfAnArchiveInAGameNeedsNoExtension) {
    const TemporaryHome home;
    const OPENED inside = Open(WriteGame(home, kNes,
                                         Zip({
                                             {"game.rom", Bytes(300, 7)}
    })));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.game.Header().system, kNes);
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == Bytes(300, 7));
}

TEST(GameSource, ArchiveInAGameIsSearchedForTheMachineAskedFor) {
    const TemporaryHome home;
    const fs::path file = WriteGame(home, kMasterSystem,
                                    Zip({
                                        {"a.sms", Bytes(300, 1)},
                                        {"b.nes", Bytes(300, 2)}
    }));
    const OPENED inside = Open(file, FindMachineFacts(kNes));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.title, "b");
    EXPECT_EQ(inside.game.Header().system, kNes);
}

// The entry that is taken is interleaved, and is prepared as any file.
TEST(GameSource, DumpInAnArchiveInAGameIsPutInOrder) {
    const TemporaryHome home;
    CRandom random(3);
    const Bytes image = random.Fill(32768);
    Bytes dump;
    ASSERT_TRUE(InterleaveImage(image, dump));
    const OPENED inside = Open(WriteGame(home, kMegaDrive,
                                         Zip({
                                             {"a.smd", dump}
    })));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_TRUE(inside.game.AssembleSelectedImage() == image);
}

TEST(GameSource, DamagedEntryOfAnArchiveInAGameIsPassedOver) {
    const TemporaryHome home;
    CRandom random(5);
    Bytes zip = Zip({
        {"a.sms",    random.Fill(900)},
        { "b.sms", Bytes(300,               2)}
    });
    zip[200] = static_cast<uint8_t>(zip[200] ^ 0xFF); // in the data of the first
    const OPENED inside = Open(WriteGame(home, kMasterSystem, zip));
    ASSERT_TRUE(inside.opened) << inside.error;
    EXPECT_EQ(inside.title, "b");
}

TEST(GameSource, ArchiveInAnArchiveInAGameIsNotOpened) {
    const TemporaryHome home;
    const Bytes inner = Zip({
        {"a.sms", Bytes(300, 1)}
    });
    const OPENED inside = Open(WriteGame(home, kMasterSystem,
                                         Zip({
                                             {"inner.zip", inner}
    })));
    EXPECT_FALSE(inside.opened);
    EXPECT_NE(inside.error.find("archive.game: holds no game image"), std::string::npos)
        << inside.error;
}

TEST(GameSource, DamagedArchiveInAGameIsRefusedWithItsReason) {
    const TemporaryHome home;
    const OPENED inside =
        Open(WriteGame(home, kMasterSystem, Text("PK\x03\x04 and no more") + Bytes(500)));
    EXPECT_FALSE(inside.opened);
    EXPECT_NE(inside.error.find("archive.game: not a readable zip archive"), std::string::npos)
        << inside.error;
}

TEST(GameSource, ArcadePieceThatIsAnArchiveStaysAsItIs) {
    const TemporaryHome home;
    const Bytes zip = Zip({
        {"a.sms", Bytes(300, 1)}
    });
    const OPENED opened = Open(WriteGame(home, 6, zip));
    ASSERT_TRUE(opened.opened) << opened.error;
    EXPECT_TRUE(opened.game.AssembleSelectedImage() == zip);
}
