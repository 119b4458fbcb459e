#include "base/file_stamp.h"

#include "support/temporary_folder.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;

Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

} // namespace

TEST(FileStamp, HoldsTheLengthAndTheTimeInNanoseconds) {
    const TemporaryFolder folder;
    const fs::path file = folder.Write("a", "12345");
    const timespec times[2] = {
        {0,             0          },
        {1'000'000'000, 123'456'789}
    };
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    FILE_STAMP stamp;
    ASSERT_TRUE(StampFile(file, stamp));
    EXPECT_EQ(stamp.bytes, 5U);
    EXPECT_EQ(stamp.modified, 1'000'000'000'123'456'789);
    FILE_STAMP again;
    Bytes bytes;
    ASSERT_TRUE(ReadFileFront(file, 100, again, bytes));
    EXPECT_EQ(again, stamp);
}

TEST(FileStamp, OnlyRegularFilesAndLinksToThemHaveOne) {
    const TemporaryFolder folder;
    folder.Write("file", "12345");
    fs::create_symlink("file", folder.Path() / "link");
    fs::create_symlink("none", folder.Path() / "loose");
    fs::create_directory(folder.Path() / "folder");
    ASSERT_EQ(mkfifo((folder.Path() / "pipe").c_str(), 0600), 0);
    FILE_STAMP stamp;
    Bytes bytes;
    for (const char* name : {"file", "link"}) {
        EXPECT_TRUE(StampFile(folder.Path() / name, stamp)) << name;
        EXPECT_TRUE(ReadFileFront(folder.Path() / name, 100, stamp, bytes)) << name;
        EXPECT_EQ(bytes, Text("12345")) << name;
    }
    for (const char* name : {"none", "loose", "folder", "pipe"}) {
        EXPECT_FALSE(StampFile(folder.Path() / name, stamp)) << name;
        EXPECT_FALSE(ReadFileFront(folder.Path() / name, 100, stamp, bytes)) << name;
    }
}

TEST(FileStamp, TheFrontEndsAtTheLimitOrWithTheFile) {
    const TemporaryFolder folder;
    const fs::path file = folder.Write("a", "12345");
    const fs::path empty = folder.Write("empty", "");
    FILE_STAMP stamp;
    Bytes bytes;
    ASSERT_TRUE(ReadFileFront(file, 3, stamp, bytes));
    EXPECT_EQ(bytes, Text("123"));
    EXPECT_EQ(stamp.bytes, 5U);
    ASSERT_TRUE(ReadFileFront(file, 6, stamp, bytes));
    EXPECT_EQ(bytes, Text("12345"));
    ASSERT_TRUE(ReadFileFront(empty, 6, stamp, bytes));
    EXPECT_TRUE(bytes.empty());
}
