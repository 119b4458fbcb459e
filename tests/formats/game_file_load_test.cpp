// `.game` files read from the disk.
#include "formats/game_file.h"
#include "formats/hand_made.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <filesystem>

namespace {

Bytes ValidFile() {
    const Bytes image = Text("an image of some bytes");
    CGameFile game;
    game.Create(false, kSystemMegaDrive);
    game.AddNameFromTitle("Title", 1, 1, {});
    game.AddRom("v1.0", Sha256(image), static_cast<uint32_t>(image.size()));
    EXPECT_TRUE(game.LinkRom(0, 0));
    return game.WriteGame(image);
}

class GameFileLoad : public testing::Test { // NOLINT(readability-identifier-naming): a test's name
protected:
    bool Load(const Bytes& bytes, bool headerOnly) {
        return LoadGameFile(headerOnly, folder.Write("test.game", bytes), game);
    }

    TemporaryFolder folder;
    CGameFile game;
};

} // namespace

TEST_F(GameFileLoad, WholeFileIsReadWithItsImage) {
    ASSERT_TRUE(Load(ValidFile(), false));
    EXPECT_EQ(game.AssembleImage(0), Text("an image of some bytes"));
}

TEST_F(GameFileLoad, HeaderOnlyReadsTheRecordsAlone) {
    ASSERT_TRUE(Load(ValidFile(), true));
    EXPECT_EQ(game.NameCount(), 1u);
    EXPECT_FALSE(game.DataUnpacked());
}

TEST_F(GameFileLoad, MissingFileAndFolderAreRefused) {
    EXPECT_FALSE(LoadGameFile(true, folder.Path() / "none.game", game));
    EXPECT_FALSE(LoadGameFile(true, folder.Path(), game));
    EXPECT_FALSE(LoadGameFile(false, folder.Path(), game));
}

TEST_F(GameFileLoad, FileShorterThanAHeaderIsRefused) {
    EXPECT_FALSE(Load({}, true));
    EXPECT_FALSE(Load(Slice(HandGame(5, 87), 0, 87), true));
}

TEST_F(GameFileLoad, HeaderAloneIsAGameWithoutNames) {
    EXPECT_TRUE(Load(HandGame(5, 88), true));
    EXPECT_EQ(game.NameCount(), 0u);
    EXPECT_TRUE(Load(HandGame(5, 88), false));
    EXPECT_EQ(game.NameCount(), 0u);
}

TEST_F(GameFileLoad, FileThatBeginsWithGadaIsRefused) {
    const Bytes bytes = HandGada("set") + HandGame(6, 88);
    ASSERT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    EXPECT_FALSE(Load(bytes, true));
    EXPECT_FALSE(Load(bytes, false));
}

TEST_F(GameFileLoad, HeaderSizeBeyondTheFileIsRefused) {
    EXPECT_FALSE(Load(HandGame(5, 89), true));
    EXPECT_FALSE(Load(HandGame(5, 0xFFFFFFFF), true));
    EXPECT_FALSE(Load(HandGame(5, 0xFFFFFFFF, 0, 89), false));
    EXPECT_FALSE(Load(HandGame(5, 4), true));
}

TEST_F(GameFileLoad, OneByteTooManyIsListedAndFailsToStart) {
    const Bytes bytes = ValidFile() + Bytes(1);
    EXPECT_FALSE(Load(bytes, false));
    EXPECT_TRUE(Load(bytes, true));
}

TEST_F(GameFileLoad, CutOffImageIsListedAndFailsToStart) {
    Bytes bytes = ValidFile();
    bytes.pop_back();
    EXPECT_FALSE(Load(bytes, false));
    EXPECT_TRUE(Load(bytes, true));
}

TEST_F(GameFileLoad, HashesAreNotChecked) {
    Bytes bytes = ValidFile();
    bytes[24] ^= 1;
    bytes[56] ^= 1;
    EXPECT_TRUE(Load(bytes, false));
    EXPECT_EQ(game.AssembleImage(0), Text("an image of some bytes"));
}

TEST_F(GameFileLoad, HugeFileIsListedByItsRecordsAndNeverReadWhole) {
    const uint64_t packedSize = kGameFileLimit;
    const auto path = folder.Write("huge.game", HandGame(5, 88, 16, packedSize));
    std::filesystem::resize_file(path, 88 + packedSize); // sparse: it takes no room on the disk
    EXPECT_TRUE(LoadGameFile(true, path, game));
    EXPECT_FALSE(LoadGameFile(false, path, game));
}
