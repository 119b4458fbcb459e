#include "library/file_walk.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace fs = std::filesystem;

namespace {

struct WALKED {
    std::vector<std::string>
        names; // relative to the folder; those that were named have a "!" after them
    std::vector<std::string> faults;
};

WALKED Walk(const TemporaryFolder& folder, const std::vector<fs::path>& paths,
            const std::atomic<bool>* stop = nullptr) {
    std::vector<WALKED_FILE> files;
    WALKED walked;
    WalkFiles(paths, files, walked.faults, stop);
    for (const WALKED_FILE& file : files) {
        walked.names.push_back(file.path.lexically_relative(folder.Path()).string() +
                               (file.named ? "!" : ""));
    }
    return walked;
}

using Names = std::vector<std::string>;

} // namespace

TEST(FileWalk, FoldersAreWalkedInAlphabeticalOrder) {
    const TemporaryFolder folder;
    for (const char* const name : {"b/2.sms", "b/1.sms", "a/z/deep.sms", "c.sms", "a/y.sms"}) {
        folder.Write(name, std::string_view("x"));
    }
    fs::create_directory(folder.Path() / "empty");
    const WALKED walked = Walk(folder, {folder.Path()});
    EXPECT_EQ(walked.names, (Names{"c.sms", "a/y.sms", "a/z/deep.sms", "b/1.sms", "b/2.sms"}));
    EXPECT_TRUE(walked.faults.empty());
}

TEST(FileWalk, PathsKeepTheirOrderAndFilesAreNamed) {
    const TemporaryFolder folder;
    const fs::path file = folder.Write("z.sms", std::string_view("x"));
    folder.Write("a/1.sms", std::string_view("x"));
    const WALKED walked = Walk(folder, {file, folder.Path() / "a", folder.Path() / "missing.sms"});
    EXPECT_EQ(walked.names, (Names{"z.sms!", "a/1.sms", "missing.sms!"}));
}

TEST(FileWalk, LinksInACircleEnd) {
    const TemporaryFolder folder;
    folder.Write("a/b/1.sms", std::string_view("x"));
    fs::create_directory_symlink(folder.Path() / "a", folder.Path() / "a" / "b" / "up");
    fs::create_directory_symlink(".", folder.Path() / "a" / "self");
    EXPECT_EQ(Walk(folder, {folder.Path()}).names, (Names{"a/b/1.sms"}));
}

// The second way to it finds it entered already.
TEST(FileWalk, FolderIsEnteredOnceHoweverManyLinksLeadThere) {
    const TemporaryFolder folder;
    folder.Write("real/1.sms", std::string_view("x"));
    fs::create_directory_symlink(folder.Path() / "real", folder.Path() / "link");
    EXPECT_EQ(Walk(folder, {folder.Path()}).names, (Names{"link/1.sms"}));
    EXPECT_EQ(Walk(folder, {folder.Path() / "real", folder.Path() / "real"}).names,
              (Names{"real/1.sms"}));
}

TEST(FileWalk, LinkToAFileIsAFile) {
    const TemporaryFolder folder;
    const fs::path file = folder.Write("elsewhere/1.sms", std::string_view("x"));
    fs::create_directory(folder.Path() / "a");
    fs::create_symlink(file, folder.Path() / "a" / "link.sms");
    EXPECT_EQ(Walk(folder, {folder.Path() / "a"}).names, (Names{"a/link.sms"}));
}

TEST(FileWalk, LinkThatLeadsNowhereIsAFaultAndTheWalkGoesOn) {
    const TemporaryFolder folder;
    folder.Write("z.sms", std::string_view("x"));
    fs::create_symlink("nowhere", folder.Path() / "a.sms");
    fs::create_symlink("round", folder.Path() / "round");
    const WALKED walked = Walk(folder, {folder.Path()});
    EXPECT_EQ(walked.names, (Names{"z.sms"}));
    ASSERT_EQ(walked.faults.size(), 2u);
    EXPECT_NE(walked.faults[0].find("a.sms: cannot be read"), std::string::npos);
    EXPECT_NE(walked.faults[1].find("round: cannot be read"), std::string::npos);
}

TEST(FileWalk, HiddenFilesAreFoundOnlyIfNamed) {
    const TemporaryFolder folder;
    const fs::path hidden = folder.Write(".hidden.sms", std::string_view("x"));
    folder.Write(".folder/1.sms", std::string_view("x"));
    EXPECT_TRUE(Walk(folder, {folder.Path()}).names.empty());
    EXPECT_EQ(Walk(folder, {hidden, folder.Path() / ".folder"}).names,
              (Names{".hidden.sms!", ".folder/1.sms"}));
}

TEST(FileWalk, DeepFoldersAreWalkedToTheirEnd) {
    const TemporaryFolder folder;
    fs::path deep;
    for (int i = 0; i < 500; ++i) {
        deep /= "d";
    }
    folder.Write((deep / "1.sms").string(), std::string_view("x"));
    EXPECT_EQ(Walk(folder, {folder.Path()}).names, (Names{(deep / "1.sms").string()}));
}

TEST(FileWalk, StopEndsIt) {
    const TemporaryFolder folder;
    folder.Write("1.sms", std::string_view("x"));
    const std::atomic<bool> stop = true;
    EXPECT_TRUE(Walk(folder, {folder.Path()}, &stop).names.empty());
}
