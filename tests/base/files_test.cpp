#include "base/files.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

std::vector<uint8_t> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

size_t FilesIn(const fs::path& folder) {
    return static_cast<size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

} // namespace

TEST(Paths, DotBackslashLiesInTheHomeFolder) {
    const TemporaryHome home;
    EXPECT_EQ(ResolvePath(".\\sms\\saves\\game.zip"), home.Path() / "sms" / "saves" / "game.zip");
    EXPECT_EQ(ResolvePath(".\\config.xml"), home.Path() / "config.xml");
}

TEST(Paths, TheRootOfTheDriveIsTheHomeFolder) {
    const TemporaryHome home;
    EXPECT_EQ(ResolvePath("\\saves\\board.zip"), home.Path() / "saves" / "board.zip");
}

TEST(Paths, AnyOtherPathIsThePlatformsOwn) {
    const TemporaryHome home;
    EXPECT_EQ(ResolvePath("games/a\\b.zip"), fs::path("games/a\\b.zip"));
}

TEST(Paths, ATitleNamesAFileAndNeverAFolder) {
    EXPECT_EQ(FileNameFromTitle("Quest: Level 2/3?"), "Quest_ Level 2_3_");
    EXPECT_EQ(FileNameFromTitle("."), "_");
    EXPECT_EQ(FileNameFromTitle(".."), "__");
    EXPECT_EQ(FileNameFromTitle("..\\..\\x"), ".._.._x");
    EXPECT_EQ(FileNameFromTitle("end. "), "end__");
    EXPECT_EQ(FileNameFromTitle(std::string("a\nb\0c", 5)), "a_b_c");
    EXPECT_EQ(FileNameFromTitle("Plain Name (E)"), "Plain Name (E)");
    EXPECT_EQ(FileNameFromTitle(std::string(500, 'x')), std::string(180, 'x'));
    // Two bytes a letter; the cut falls between letters.
    std::string accents = "a";
    for (int i = 0; i < 200; ++i) {
        accents += "\xC3\xA9";
    }
    EXPECT_EQ(FileNameFromTitle(accents), accents.substr(0, 179));
}

TEST(Paths, AWritableExecutableFolderIsHomeOnlyWhenItIsMarked) {
    const TemporaryFolder folder;
    ASSERT_EQ(setenv("XDG_DATA_HOME", "/some/data", 1), 0);
    EXPECT_EQ(FindHomeFolder(folder.Path()), fs::path("/some/data/ombrelune"));
    folder.Write("portable", std::string_view());
    EXPECT_EQ(FindHomeFolder(folder.Path()), folder.Path());
    EXPECT_EQ(FilesIn(folder.Path()), 1u);
}

TEST(Paths, AConfigFileMarksAHomeFolderToo) {
    const TemporaryFolder folder;
    folder.Write("config.xml", std::string_view("x"));
    EXPECT_EQ(FindHomeFolder(folder.Path()), folder.Path());
}

TEST(Files, WrittenBytesReadBack) {
    const TemporaryFolder folder;
    std::string error;
    const auto bytes = Bytes("some bytes");
    ASSERT_TRUE(WriteFile(folder.Path() / "a" / "b" / "c.bin", bytes, error)) << error;
    std::vector<uint8_t> read;
    ASSERT_TRUE(ReadFile(folder.Path() / "a" / "b" / "c.bin", read, error)) << error;
    EXPECT_EQ(read, bytes);
}

TEST(Files, WritingReplacesAndLeavesNothingBeside) {
    const TemporaryFolder folder;
    std::string error;
    ASSERT_TRUE(WriteFile(folder.Path() / "f", Bytes("old and longer"), error));
    ASSERT_TRUE(WriteFile(folder.Path() / "f", Bytes("new"), error));
    EXPECT_EQ(folder.Read("f"), Bytes("new"));
    EXPECT_EQ(FilesIn(folder.Path()), 1u);
}

TEST(Files, AFailedWriteNamesTheFileAndKeepsTheOldOne) {
    const TemporaryFolder folder;
    folder.Write("file", std::string_view("old"));
    std::string error;
    EXPECT_FALSE(WriteFile(folder.Path() / "file" / "inside", Bytes("x"), error));
    EXPECT_THAT(error, HasSubstr((folder.Path() / "file").string()));
    EXPECT_EQ(folder.Read("file"), Bytes("old"));

    fs::create_directory(folder.Path() / "folder");
    folder.Write("folder/kept", std::string_view("old"));
    EXPECT_FALSE(WriteFile(folder.Path() / "folder", Bytes("x"), error));
    EXPECT_EQ(folder.Read("folder/kept"), Bytes("old"));
    EXPECT_EQ(FilesIn(folder.Path()), 2u) << "the temporary is gone";
}

TEST(Files, CreatingNeverReplaces) {
    const TemporaryFolder folder;
    folder.Write("f", std::string_view("old"));
    std::string error;
    EXPECT_FALSE(WriteFile(folder.Path() / "f", Bytes("new"), error, WriteMode::kCreate));
    EXPECT_EQ(folder.Read("f"), Bytes("old"));
    EXPECT_TRUE(WriteFile(folder.Path() / "g", Bytes("new"), error, WriteMode::kCreate)) << error;
    EXPECT_EQ(folder.Read("g"), Bytes("new"));
    EXPECT_EQ(FilesIn(folder.Path()), 2u);
}

TEST(Files, ReplacingKeepsPermissionsAndALink) {
    const TemporaryFolder folder;
    const fs::path real = folder.Write("real", std::string_view("old"));
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(real, folder.Path() / "link");
    std::string error;
    ASSERT_TRUE(WriteFile(folder.Path() / "link", Bytes("new"), error)) << error;
    EXPECT_TRUE(fs::is_symlink(folder.Path() / "link"));
    EXPECT_EQ(folder.Read("real"), Bytes("new"));
    EXPECT_EQ(fs::status(real).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(Files, APrivateFileIsReadableByItsOwnerAloneWhateverItReplaces) {
    const TemporaryFolder folder;
    const fs::path path = folder.Write("key", std::string_view("old"));
    const fs::perms ownersAlone = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(path, fs::perms::all);
    std::string error;
    ASSERT_TRUE(WriteFile(path, Bytes("new"), error, WriteMode::kPrivate)) << error;
    EXPECT_EQ(fs::status(path).permissions(), ownersAlone);
    EXPECT_EQ(folder.Read("key"), Bytes("new"));
    const mode_t before = umask(0); // which takes nothing from a new file
    EXPECT_TRUE(WriteFile(folder.Path() / "other", Bytes("new"), error, WriteMode::kPrivate));
    umask(before);
    EXPECT_EQ(fs::status(folder.Path() / "other").permissions(), ownersAlone);
}

TEST(Files, ATemporaryLeftBehindIsNotInTheWay) {
    const TemporaryFolder folder;
    // The names that this process's next hundred temporaries would get.
    for (int serial = 0; serial < 200; ++serial) {
        folder.Write("f.tmp-" + std::to_string(getpid()) + "-" + std::to_string(serial),
                     std::string_view("left behind"));
    }
    std::string error;
    ASSERT_TRUE(WriteFile(folder.Path() / "f", Bytes("new"), error)) << error;
    EXPECT_EQ(folder.Read("f"), Bytes("new"));
}

TEST(Files, ANameOfTheGreatestLengthIsWritten) {
    const TemporaryFolder folder;
    std::string error;
    const std::string name(255, 'n');
    EXPECT_TRUE(WriteFile(folder.Path() / name, std::vector<uint8_t>{1, 2}, error)) << error;
    EXPECT_EQ(folder.Read(name), (std::vector<uint8_t>{1, 2}));
    EXPECT_FALSE(WriteFile(folder.Path() / (name + "n"), std::vector<uint8_t>{1}, error));
    EXPECT_NE(error.find("File name too long"), std::string::npos) << error;
}

TEST(Files, ReadingWhatIsNotThereNamesIt) {
    const TemporaryFolder folder;
    std::string error;
    std::vector<uint8_t> bytes;
    EXPECT_FALSE(ReadFile(folder.Path() / "none", bytes, error));
    EXPECT_THAT(error, HasSubstr("none"));
    EXPECT_FALSE(ReadFile(folder.Path(), bytes, error));
    EXPECT_THAT(error, HasSubstr("is a folder"));
}

TEST(Files, AFileOverTheLimitIsRefused) {
    const TemporaryFolder folder;
    const fs::path path = folder.Write("big", std::string(1001, 'x'));
    std::string error;
    std::vector<uint8_t> bytes;
    EXPECT_FALSE(ReadFile(path, bytes, error, 1000));
    EXPECT_THAT(error, HasSubstr("1000"));
    EXPECT_TRUE(ReadFile(path, bytes, error, 1001));
    EXPECT_FALSE(ReadFile("/dev/zero", bytes, error, 100000))
        << "an endless file ends at the limit";
}
