#include "library/free_name.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

PLACED_FILE Place(const TemporaryFolder& folder, std::string_view text) {
    PLACED_FILE placed;
    std::string error;
    const std::vector<uint8_t> bytes(text.begin(), text.end());
    EXPECT_TRUE(WriteBesideOthers(folder.Path(), "game", ".bin", bytes, placed, error)) << error;
    EXPECT_EQ(folder.Read(placed.path.filename().string()), bytes);
    return placed;
}

} // namespace

TEST(FreeName, GrowsByAZeroForEveryOtherFileOfTheName) {
    const TemporaryFolder folder;
    EXPECT_EQ(Place(folder, "one").path.filename(), "game.bin");
    EXPECT_EQ(Place(folder, "two").path.filename(), "game0.bin");
    EXPECT_EQ(Place(folder, "three").path.filename(), "game00.bin");
    EXPECT_EQ(folder.Read("game.bin"), (std::vector<uint8_t>{'o', 'n', 'e'}));
}

TEST(FreeName, FileWithTheSameBytesIsLeftThere) {
    const TemporaryFolder folder;
    EXPECT_FALSE(Place(folder, "one").alreadyThere);
    EXPECT_FALSE(Place(folder, "two").alreadyThere);
    const PLACED_FILE again = Place(folder, "two");
    EXPECT_TRUE(again.alreadyThere);
    EXPECT_EQ(again.path.filename(), "game0.bin");
}

// A link that leads nowhere and a folder have the name as well.
TEST(FreeName, LinksAndFoldersAreNotReplaced) {
    const TemporaryFolder folder;
    fs::create_symlink(folder.Path() / "nowhere", folder.Path() / "game.bin");
    fs::create_directory(folder.Path() / "game0.bin");
    EXPECT_EQ(Place(folder, "one").path.filename(), "game00.bin");
    EXPECT_FALSE(fs::exists(folder.Path() / "nowhere"));
}

TEST(FreeName, FolderThatCannotBeMadeIsNamed) {
    const TemporaryFolder folder;
    const fs::path file = folder.Write("file", std::string_view("x"));
    PLACED_FILE placed;
    std::string error;
    EXPECT_FALSE(WriteBesideOthers(file / "below", "game", ".bin", {}, placed, error));
    EXPECT_NE(error.find(file.string()), std::string::npos) << error;
}

// 255 bytes are the most that a name may have here.
TEST(FreeName, NameThatIsTooLongFails) {
    const TemporaryFolder folder;
    PLACED_FILE placed;
    std::string error;
    EXPECT_FALSE(
        WriteBesideOthers(folder.Path(), std::string(300, 'a'), ".game", {}, placed, error));
    EXPECT_NE(error.find("aaa.game: cannot be"), std::string::npos) << error;
}
