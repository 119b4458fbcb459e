#include "library/folder_list.h"
#include "library/folder_lock.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

using testing::ElementsAre;

TEST(FolderList, KindFollowsTheExtensionInAnyCase) {
    EXPECT_EQ(KindOfFile(1, "a.game"), FolderFile::kGame);
    EXPECT_EQ(KindOfFile(1, "a.GAME"), FolderFile::kGame);
    EXPECT_EQ(KindOfFile(6, "a.game"), FolderFile::kGame)
        << "though an arcade piece may be anything";
    EXPECT_EQ(KindOfFile(1, "a.sms"), FolderFile::kSource);
    EXPECT_EQ(KindOfFile(1, "a.SMS"), FolderFile::kSource);
    EXPECT_EQ(KindOfFile(1, "a.zip"), FolderFile::kSource);
    EXPECT_EQ(KindOfFile(1, "a.Zip"), FolderFile::kSource);
    EXPECT_EQ(KindOfFile(1, "a.gg"), FolderFile::kOther);
    EXPECT_EQ(KindOfFile(2, "a.gg"), FolderFile::kSource);
    EXPECT_EQ(KindOfFile(1, "sms"), FolderFile::kOther);
    EXPECT_EQ(KindOfFile(1, "a.sms.txt"), FolderFile::kOther);
    EXPECT_EQ(KindOfFile(6, "anything"), FolderFile::kSource);
    for (const char* name : {"a.bin", "a.smd", "a.gen", "a.md"}) {
        EXPECT_EQ(KindOfFile(4, name), FolderFile::kSource) << name;
    }
    EXPECT_EQ(KindOfFile(5, "a.nes"), FolderFile::kSource);
}

TEST(FolderList, StemEndsAtTheLastDot) {
    EXPECT_EQ(StemOfName("a.sms"), "a");
    EXPECT_EQ(StemOfName("a.b.sms"), "a.b");
    EXPECT_EQ(StemOfName("folder.x/a"), "a");
    EXPECT_EQ(StemOfName(".sms"), "");
}

TEST(FolderList, TemporaryNamesAreTold) {
    EXPECT_TRUE(IsTemporaryName("a.game.tmp-12-0"));
    EXPECT_TRUE(IsTemporaryName(".tmp-1-2"));
    EXPECT_FALSE(IsTemporaryName("a.game.tmp-12-"));
    EXPECT_FALSE(IsTemporaryName("a.game.tmp-12"));
    EXPECT_FALSE(IsTemporaryName("a.game.tmp--1"));
    EXPECT_FALSE(IsTemporaryName("a-1-2"));
    EXPECT_FALSE(IsTemporaryName("12"));
    EXPECT_FALSE(IsTemporaryName(""));
}

TEST(FolderList, HasTheFilesInOrderAndNothingElse) {
    TemporaryFolder folder;
    for (const char* name : {"b.sms", "A.sms", "a.sms", "C.sms", "media/x.sms", "x.game.tmp-1-2"}) {
        folder.Write(name, "x");
    }
    folder.Write(kFolderLockName, "1\n");
    fs::create_symlink("nowhere", folder.Path() / "dangling.sms");
    fs::create_directory_symlink("media", folder.Path() / "folder.sms");
    std::vector<fs::path> names;
    std::string error;
    EXPECT_TRUE(ListFolder(folder.Path(), names, error)) << error;
    EXPECT_THAT(names, ElementsAre("A.sms", "a.sms", "b.sms", "C.sms", "dangling.sms"));
    EXPECT_FALSE(ListFolder(folder.Path() / "missing", names, error));
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(error,
              (folder.Path() / "missing").string() + ": cannot be read: No such file or directory");
}
