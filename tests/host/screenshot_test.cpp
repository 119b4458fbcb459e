#include "base/files.h"
#include "formats/png_picture.h"
#include "host/host_fixture.h"
#include "host/screenshot.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <filesystem>
#include <iterator>
#include <map>

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
    EXPECT_EQ(ScreenshotName("Some: Game", SomeTime(), 0, ScreenshotKind::kBmp),
              "Some_ Game 2024-02-03 04-05-06.bmp");
    EXPECT_EQ(ScreenshotName("../up", SomeTime(), 2, ScreenshotKind::kPng),
              ".._up 2024-02-03 04-05-06-2.png");
}

// The texts of a file by their keywords, read chunk by chunk: length, kind, data, checksum.
std::map<std::string, std::string> TextsOf(const std::vector<uint8_t>& file) {
    std::map<std::string, std::string> texts;
    size_t at = 8;
    while (at + 12 <= file.size()) {
        const size_t length = size_t{file[at]} << 24 | size_t{file[at + 1]} << 16 |
                              size_t{file[at + 2]} << 8 | file[at + 3];
        const std::string kind(file.begin() + static_cast<std::ptrdiff_t>(at) + 4,
                               file.begin() + static_cast<std::ptrdiff_t>(at) + 8);
        const std::string data(file.begin() + static_cast<std::ptrdiff_t>(at) + 8,
                               file.begin() + static_cast<std::ptrdiff_t>(at + 8 + length));
        const std::string keyword = data.substr(0, data.find('\0'));
        if (kind == "tEXt") {
            texts[keyword] = data.substr(keyword.size() + 1);
        } else if (kind == "iTXt") { // not compressed, no language, no other keyword
            EXPECT_EQ(data.substr(keyword.size(), 5), std::string(5, '\0'));
            texts[keyword] = data.substr(keyword.size() + 5);
        }
        at += length + 12;
    }
    return texts;
}

TEST_F(Screenshot, PngTellsTheGameItsMachineAndTheTime) {
    const SCREENSHOT_FACTS facts{"\u00C9cume", "Master System", SomeTime()};
    const std::vector<uint8_t> file = EncodeScreenshotPng(video, true, facts);
    const std::map<std::string, std::string> texts = TextsOf(file);
    EXPECT_EQ(texts.at("Title"), "\u00C9cume");
    EXPECT_EQ(texts.at("Source"), "Master System");
    EXPECT_EQ(texts.at("Creation Time").substr(0, 19), "2024-02-03T04:05:06");
    EXPECT_EQ(texts.at("Software"), "Ombrelune");
}

TEST_F(Screenshot, PngHoldsTheMachinesDots) {
    PNG_PICTURE picture;
    ASSERT_TRUE(DecodePng(EncodeScreenshotPng(video, true, {}), 100, picture));
    EXPECT_EQ(picture.width, 3U);
    EXPECT_EQ(picture.pixels, std::vector<uint32_t>(std::begin(pixels), std::end(pixels)));
    ASSERT_TRUE(DecodePng(EncodeScreenshotPng(video, false, {}), 100, picture));
    EXPECT_EQ(picture.width, 2U);
    EXPECT_EQ(picture.pixels, (std::vector<uint32_t>{0xFF060504, 0xFF090807}));
}

TEST_F(Screenshot, IsAPngUnlessTheSettingSaysBmp) {
    session.system = kSystemNes;
    ASSERT_TRUE(WriteScreenshot(session, video));
    ASSERT_EQ(Files().size(), 1u);
    EXPECT_EQ(Files()[0].extension(), ".png");
    std::vector<uint8_t> file;
    std::string error;
    ASSERT_TRUE(ReadFile(Files()[0], file, error)) << error;
    EXPECT_EQ(TextsOf(file).at("Title"), "Some: Game");
    EXPECT_EQ(TextsOf(file).at("Source"), "NES");
    fs::remove_all(home.Path() / "screenshots");
    Settings().SetBool(L"app_screenshotbmp", true);
    ASSERT_TRUE(WriteScreenshot(session, video));
    EXPECT_EQ(Files().at(0).extension(), ".bmp");
}

std::vector<std::string> gAskedFor; // of the window

TEST_F(Screenshot, TheWindowIsAskedIfTheSettingSaysSo) {
    gAskedFor.clear();
    HostSetWindowShotSink(
        [](const SCREENSHOT_FACTS& facts) { gAskedFor.push_back(facts.gameName); });
    const auto tap = [&] {
        Press(L"Take ScreenShot", true);
        EmuTakeScreenshot(session, video);
        Press(L"Take ScreenShot", false);
        EmuTakeScreenshot(session, video);
    };
    tap();
    EXPECT_EQ(Files().size(), 1u);
    EXPECT_TRUE(gAskedFor.empty());
    Settings().SetBool(L"app_screenshotwindow", true);
    tap();
    EXPECT_EQ(Files().size(), 1u);
    EXPECT_EQ(gAskedFor, std::vector<std::string>{"Some: Game"});
    HostSetWindowShotSink(nullptr);
    tap();
    EXPECT_EQ(Files().size(), 2u) << "without a window the machine's picture";
}

TEST_F(Screenshot, SettingChoosesWholePictureOrWindow) {
    Settings().SetBool(L"app_screenshotbmp", true); // whose size tells
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
