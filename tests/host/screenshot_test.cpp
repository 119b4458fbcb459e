#include "host/host_fixture.h"
#include "host/screenshot.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <filesystem>
#include <iterator>

namespace fs = std::filesystem;

namespace {

class Screenshot : public HostTest {
public:
    ~Screenshot() override {
        Press(L"Take ScreenShot", false);
        EmuTakeScreenshot(session, video);
    }

protected:
    Screenshot() {
        session.key = 5;
        session.gameName = "Some: Game";
        video.pixels = pixels;
        video.width = 3;
        video.height = 2;
        video.visibleX = 1;
        video.visibleY = 0;
        video.visibleWidth = 2;
        video.visibleHeight = 1;
        InputSetActiveKey(5);
    }

    [[nodiscard]] std::vector<fs::path> Files() const {
        std::vector<fs::path> files;
        if (fs::exists(home.Path() / "screenshots")) {
            for (const auto& entry : fs::directory_iterator(home.Path() / "screenshots")) {
                files.push_back(entry.path());
            }
        }
        return files;
    }

    EMU_THREAD session;
    uint32_t pixels[6] = {0xFF030201, 0xFF060504, 0xFF090807, 0xFF0C0B0A, 0xFF0F0E0D, 0xFF121110};
    EMU_VIDEO_FRAME video{};
};

std::tm SomeTime() {
    std::tm time{};
    time.tm_year = 124;
    time.tm_mon = 1;
    time.tm_mday = 3;
    time.tm_hour = 4;
    time.tm_min = 5;
    time.tm_sec = 6;
    return time;
}

} // namespace

TEST_F(Screenshot, WholePictureIsABmpFromTheBottomUp) {
    const std::vector<uint8_t> expected = {
        'B', 'M', 78, 0,  0,  0,  0,  0,  0,  0, 54, 0, 0, 0, // 54 + 2 rows of 12
        40,  0,   0,  0,  3,  0,  0,  0,  2,  0, 0,  0, 1, 0,
        24,  0, // info, 3 x 2, 1 plane, 24 bits
        0,   0,   0,  0,  0,  0,  0,  0,  0,  0, 0,  0, 0, 0,
        0,   0,                                         // no compression
        0,   0,   0,  0,  0,  0,  0,  0,                //
        10,  11,  12, 13, 14, 15, 16, 17, 18, 0, 0,  0, // the lower row, padded by 3
        1,   2,   3,  4,  5,  6,  7,  8,  9,  0, 0,  0};
    EXPECT_EQ(EncodeBmp(video, true), expected);
}

TEST_F(Screenshot, VisibleWindowAloneIsTakenOtherwise) {
    const std::vector<uint8_t> file = EncodeBmp(video, false);
    ASSERT_EQ(file.size(), 54u + 8u);
    EXPECT_EQ(file[2], 62);
    EXPECT_EQ(file[18], 2);
    EXPECT_EQ(file[22], 1);
    EXPECT_EQ((std::vector<uint8_t>(file.begin() + 54, file.end())),
              (std::vector<uint8_t>{4, 5, 6, 7, 8, 9, 0, 0}));
}

TEST_F(Screenshot, APictureWithoutPixelsWritesNoFile) {
    video.visibleHeight = 0;
    EXPECT_TRUE(EncodeBmp(video, false).empty());
    video.width = 0;
    EXPECT_TRUE(EncodeBmp(video, true).empty());
    EXPECT_FALSE(WriteScreenshot(session, video));
    EXPECT_TRUE(Files().empty());
}

TEST_F(Screenshot, NameIsGameAndTimeAndACounter) {
    EXPECT_EQ(ScreenshotName("Some: Game", SomeTime(), 0), "Some_ Game 2024-02-03 04-05-06.bmp");
    EXPECT_EQ(ScreenshotName("../up", SomeTime(), 2), ".._up 2024-02-03 04-05-06-2.bmp");
}

TEST_F(Screenshot, SettingChoosesWholePictureOrWindow) {
    Settings().SetBool(L"app_screenshotfull", true);
    ASSERT_TRUE(WriteScreenshot(session, video));
    ASSERT_EQ(Files().size(), 1u);
    EXPECT_EQ(fs::file_size(Files()[0]), 78u);
    fs::remove_all(home.Path() / "screenshots");
    Settings().SetBool(L"app_screenshotfull", false);
    ASSERT_TRUE(WriteScreenshot(session, video));
    EXPECT_EQ(fs::file_size(Files().at(0)), 62u);
}

TEST_F(Screenshot, ManyInOneSecondKeepTheirOwnFiles) {
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(WriteScreenshot(session, video));
    }
    EXPECT_EQ(Files().size(), 5u);
}

TEST_F(Screenshot, AHeldKeyTakesOne) {
    Press(L"Take ScreenShot", true);
    for (int i = 0; i < 10; ++i) {
        EmuTakeScreenshot(session, video);
    }
    EXPECT_EQ(Files().size(), 1u);
    Press(L"Take ScreenShot", false);
    EmuTakeScreenshot(session, video);
    Press(L"Take ScreenShot", true);
    EmuTakeScreenshot(session, video);
    EXPECT_EQ(Files().size(), 2u);
}

TEST_F(Screenshot, SessionsWithoutInputDoNotReleaseAHeldKey) {
    EMU_THREAD other;
    other.key = 6;
    Press(L"Take ScreenShot", true);
    for (int i = 0; i < 10; ++i) {
        EmuTakeScreenshot(session, video);
        EmuTakeScreenshot(other, video);
    }
    EXPECT_EQ(Files().size(), 1u);
}

TEST_F(Screenshot, WalkingTheRoomTakesNone) {
    InputSetWalkingRoom(true);
    Press(L"Take ScreenShot", true);
    EmuTakeScreenshot(session, video);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Screenshot, AFailureIsReportedWithThePath) {
    home.Write("screenshots", "in the way");
    EXPECT_FALSE(WriteScreenshot(session, video));
    const std::vector<std::string> reports = TakeReports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports[0].find("screenshots"), std::string::npos);
    EXPECT_EQ(reports[0].find('\n'), std::string::npos);
}
