// The folders of programs that run on one home folder, one after the other and at the same time.
#include "host/host_fixture.h"
#include "host/resume_file.h"
#include "host/resume_folder.h"

#include <gmock/gmock.h>

#include <chrono>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ResumeFolderTest : public HostTest {
protected:
    [[nodiscard]] fs::path All() const { return home.Path() / "resume"; }

    static void Open(ResumeFolder& folder) {
        std::string error;
        ASSERT_TRUE(folder.Open(error)) << error;
    }
    // An hour old if it is to be older than others.
    void Put(const std::string& name, const std::string& text, bool old = false) const {
        const fs::path path = home.Write("resume/" + name, text);
        if (old) {
            fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
        }
    }
    [[nodiscard]] std::string Text(const std::string& name) const {
        const std::vector<uint8_t> bytes = home.Read("resume/" + name);
        return {bytes.begin(), bytes.end()};
    }
};

TEST_F(ResumeFolderTest, ListsTheFilesOfAPrefixWithoutThoseSetAside) {
    Put("1/set-7.resume", "7");
    Put("1/set-10.resume", "10");
    Put("1/set-7.refused-1.resume", "refused");
    Put("1/set-7.older-1.resume", "older");
    Put("1/room-7.resume", "room");
    Put("1/set-8.txt", "text");
    ResumeFolder folder;
    Open(folder);
    EXPECT_THAT(folder.Names("set-"), ElementsAre("set-10", "set-7"));
    EXPECT_THAT(folder.Names("room-"), ElementsAre("room-7"));
    EXPECT_EQ(folder.FileOf("set-7"), All() / "1" / "set-7.resume");
}

TEST_F(ResumeFolderTest, TwoProgramsHaveAFolderEach) {
    Put("1/set-7.resume", "7");
    ResumeFolder first;
    Open(first);
    ResumeFolder second;
    Open(second);
    EXPECT_NE(first.FileOf("set-7"), second.FileOf("set-7"));
    EXPECT_THAT(first.Names("set-"), ElementsAre("set-7"));
    EXPECT_THAT(second.Names("set-"), IsEmpty()) << "the first program's are not touched";
    EXPECT_EQ(Text("1/set-7.resume"), "7");
}

TEST_F(ResumeFolderTest, TakesOverTheFilesOfProgramsThatHaveEnded) {
    {
        ResumeFolder first;
        Open(first);
        ResumeFolder second;
        Open(second);
        Put("1/set-6.resume", "first");
        Put("2/set-7.resume", "second");
    }
    ResumeFolder next;
    Open(next);
    EXPECT_THAT(next.Names("set-"), ElementsAre("set-6", "set-7"));
    EXPECT_EQ(Text("1/set-7.resume"), "second");
    EXPECT_FALSE(fs::exists(All() / "2"));
}

TEST_F(ResumeFolderTest, OfTwoFilesForOneSetTheNewerCounts) {
    Put("1/set-6.resume", "ours", true);
    Put("2/set-6.resume", "theirs");
    Put("1/set-7.resume", "ours");
    Put("2/set-7.resume", "theirs", true);
    ResumeFolder folder;
    Open(folder);
    EXPECT_THAT(folder.Names("set-"), ElementsAre("set-6", "set-7"));
    EXPECT_EQ(Text("1/set-6.resume"), "theirs");
    EXPECT_EQ(Text("1/set-6.older-1.resume"), "ours");
    EXPECT_EQ(Text("1/set-7.resume"), "ours");
    EXPECT_EQ(Text("1/set-7.older-1.resume"), "theirs");
}

TEST_F(ResumeFolderTest, AKilledProgramsUnfinishedFilesGo) {
    Put("1/set-6.resume.tmp-999-1", "half");
    Put("2/set-7.resume.tmp-999-1", "half");
    Put("1.lock", "999\n"); // nobody holds it
    ResumeFolder folder;
    Open(folder);
    EXPECT_EQ(folder.FileOf("set-6"), All() / "1" / "set-6.resume");
    EXPECT_FALSE(fs::exists(All() / "1" / "set-6.resume.tmp-999-1"));
    EXPECT_FALSE(fs::exists(All() / "2"));
}

TEST_F(ResumeFolderTest, AHomeThatCannotBeWrittenIsAFailure) {
    home.Write("resume", "no folder");
    ResumeFolder folder;
    std::string error;
    EXPECT_FALSE(folder.Open(error));
    EXPECT_THAT(error, testing::HasSubstr("resume"));
    EXPECT_FALSE(folder.IsOpen());
}

} // namespace
