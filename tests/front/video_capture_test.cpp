#include "front/video_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// What was written, by the capture's thread; read after Finish.
struct WRITTEN {
    VIDEO_FORMAT format;
    std::vector<uint32_t> pictures; // their first pixels; one more of the same for a repeat
    std::vector<uint32_t> widths;
    std::vector<int16_t> left; // samples
    uint32_t closed = 0;
};
WRITTEN gWritten;
std::atomic<bool> gMayWrite{true}; // false: as slow as can be
std::atomic<bool> gFails{false};

class CFakeFile final : public CVideoFile {
public:
    bool Open(const std::string&, const VIDEO_FORMAT& format, std::string& error) override {
        gWritten.format = format;
        error = gFails ? "the disk is full" : "";
        return !gFails;
    }
    bool AddPicture(const uint32_t* pixels, uint32_t width, uint32_t, std::string&) override {
        gMayWrite.wait(false);
        gWritten.pictures.push_back(pixels[0]);
        gWritten.widths.push_back(width);
        return true;
    }
    bool RepeatPicture(std::string&) override {
        gWritten.pictures.push_back(gWritten.pictures.back());
        return true;
    }
    bool AddSound(const int16_t* samples, uint32_t pairs, std::string&) override {
        for (uint32_t i = 0; i < pairs; ++i) {
            gWritten.left.push_back(samples[size_t{2} * i]);
        }
        return true;
    }
    bool Close(std::string&) override {
        ++gWritten.closed;
        return true;
    }
};

std::unique_ptr<CVideoFile> MakeFake(std::string&) {
    return std::make_unique<CFakeFile>();
}

std::unique_ptr<CVideoFile> MakeNone(std::string& error) {
    error = "there is no module";
    return nullptr;
}

class VideoCaptureTest : public testing::Test {
protected:
    VideoCaptureTest() {
        gWritten = {};
        gMayWrite = true;
        gFails = false;
        pixels.resize(16 * 4);
        video.pixels = pixels.data();
        video.width = 16;
        video.height = 4;
        video.visibleX = 2;
        video.visibleY = 1;
        video.visibleWidth = 12;
        video.visibleHeight = 2;
        video.visibleAspect = 1.25f;
        samples.resize(2 * 1000);
        audio.samples = samples.data();
        audio.sampleRate = 44100;
        audio.sampleCount = 736;
    }

    // Frame n has n as its first visible pixel and as its samples.
    void Add(VideoCapture& capture, uint32_t number) {
        pixels[16 + 2] = number;
        std::fill(samples.begin(), samples.end(), static_cast<int16_t>(number));
        capture.Add(video, audio);
    }

    static CAPTURE_SETTINGS Settings(CaptureWait wait) {
        return {"folder/a.mkv", false, 4, wait, 2};
    }

    std::vector<uint32_t> pixels;
    std::vector<int16_t> samples;
    EMU_VIDEO_FRAME video{};
    EMU_AUDIO_FRAME audio{};
};

} // namespace

TEST_F(VideoCaptureTest, HasTheVisibleWindowOfEveryFrameWithItsSound) {
    VideoCapture capture(Settings(CaptureWait::kAlways), {}, MakeFake);
    std::vector<uint32_t> expected;
    for (uint32_t i = 1; i <= 500; ++i) {
        Add(capture, i);
        expected.push_back(i);
    }
    EXPECT_TRUE(capture.Finish().whole);
    EXPECT_EQ(capture.Finish().line, "Video: a.mkv");
    EXPECT_EQ(gWritten.pictures, expected);
    EXPECT_EQ(gWritten.closed, 1u);
    EXPECT_EQ(gWritten.format.width, 12u);
    EXPECT_EQ(gWritten.format.height, 2u);
    EXPECT_EQ(gWritten.format.dotPixels, 2u);
    EXPECT_EQ(gWritten.format.aspect, 1.25);
    EXPECT_EQ(gWritten.format.rateNumber, 53693175u);
    ASSERT_EQ(gWritten.left.size(), 500u * 736);
    for (size_t i = 0; i < gWritten.left.size(); ++i) {
        ASSERT_EQ(gWritten.left[i], static_cast<int16_t>(i / 736 + 1));
    }
}

TEST_F(VideoCaptureTest, AHeldPictureShowsTheOneBeforeAndKeepsItsSound) {
    VideoCapture capture(Settings(CaptureWait::kAlways), {}, MakeFake);
    for (uint32_t i = 1; i <= 6; ++i) {
        video.hold = i % 2 == 1 ? 1 : 0;
        Add(capture, i);
    }
    EXPECT_TRUE(capture.Finish().whole);
    EXPECT_THAT(gWritten.pictures, ElementsAre(2, 2, 4, 4, 6)); // the first has none before it
    EXPECT_EQ(gWritten.left.size(), 5u * 736);
}

// A console may be switched on in the midst of a picture.
TEST_F(VideoCaptureTest, TheSecondFrameTellsTheRateAndAShortFirstOneIsFilledWithSilence) {
    VideoCapture capture(Settings(CaptureWait::kAlways), {}, MakeFake);
    audio.sampleCount = 20;
    Add(capture, 1);
    audio.sampleCount = 887;
    Add(capture, 2);
    Add(capture, 3);
    EXPECT_TRUE(capture.Finish().whole);
    EXPECT_EQ(gWritten.format.rateNumber, 53203424u); // 49.7 Hz
    ASSERT_EQ(gWritten.left.size(), 3u * 887);
    EXPECT_EQ(gWritten.left[866], 0);
    EXPECT_EQ(gWritten.left[867], 1);
    EXPECT_EQ(gWritten.left[887], 2);
}

TEST_F(VideoCaptureTest, OneFrameIsAVideo) {
    VideoCapture capture(Settings(CaptureWait::kAlways), {}, MakeFake);
    Add(capture, 1);
    EXPECT_TRUE(capture.Finish().whole);
    EXPECT_THAT(gWritten.pictures, ElementsAre(1));
}

// The queue takes 60 pictures; the writer has one more in its hands. What does not fit shows the picture before it, at
// its time, and with its own sound.
TEST_F(VideoCaptureTest, InAGameASlowWriterLosesPicturesAndTellsHowMany) {
    gMayWrite = false;
    VideoCapture capture(Settings(CaptureWait::kMoment), {}, MakeFake);
    for (uint32_t i = 1; i <= 70; ++i) {
        Add(capture, i);
    }
    gMayWrite = true;
    gMayWrite.notify_all();
    EXPECT_TRUE(capture.Finish().whole);
    ASSERT_EQ(gWritten.pictures.size(), 70u);
    EXPECT_EQ(gWritten.left.size(), 70u * 736);
    uint32_t missing = 0;
    for (uint32_t i = 1; i <= 70; ++i) {
        missing += gWritten.pictures[i - 1] != i ? 1u : 0u;
        EXPECT_LE(gWritten.pictures[i - 1], i);
        EXPECT_EQ(gWritten.left[(size_t{i} - 1) * 736], static_cast<int16_t>(i));
    }
    EXPECT_GE(missing, 9u);
    EXPECT_LE(missing, 10u);
    EXPECT_EQ(capture.Finish().line,
              "Video: a.mkv; " + std::to_string(missing) +
                  " of 70 pictures are missing, as the computer was too slow");
}

TEST_F(VideoCaptureTest, AFailureIsToldAndHoldsNobodyUp) {
    gFails = true;
    std::atomic<int> told{0};
    VideoCapture capture(
        Settings(CaptureWait::kAlways),
        [&](const CAPTURE_RESULT& result) { told += !result.whole; }, MakeFake);
    for (uint32_t i = 1; i <= 300; ++i) {
        Add(capture, i);
    }
    EXPECT_FALSE(capture.Finish().whole);
    EXPECT_EQ(capture.Finish().line, "the disk is full");
    EXPECT_EQ(told, 1);
    VideoCapture without(Settings(CaptureWait::kAlways), {}, MakeNone);
    EXPECT_FALSE(without.Finish().whole);
    EXPECT_EQ(without.Finish().line, "there is no module");
}
