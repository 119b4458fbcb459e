#include "video/video_file.h"

#include "video/video_reader.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

using testing::HasSubstr;

namespace {

constexpr uint32_t kWidth = 64;
constexpr uint32_t kHeight = 48;
constexpr uint32_t kPictures = 90;
constexpr uint32_t kPairs = 735; // a picture
constexpr int kHighProfile = 100;

using Picture = std::vector<uint32_t>;

// Squares of bright colours that move, as a game's picture does: single dots, and no noise.
Picture Drawn(uint32_t number, uint32_t width = kWidth, uint32_t height = kHeight) {
    constexpr uint32_t kColours[] = {0x000000, 0xFFFFFF, 0xFF0000, 0x00FF00,
                                     0x0000FF, 0xFFFF00, 0x00A0C0, 0x804020};
    Picture picture(size_t{width} * height);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            picture[size_t{y} * width + x] = kColours[(x / 8 + y / 8 + number) % 8];
        }
    }
    picture[size_t{height / 2} * width + number % width] = 0xFF00FF; // a dot of its own
    return picture;
}

std::vector<int16_t> Sound(uint32_t pairs) {
    std::vector<int16_t> samples;
    samples.reserve(size_t{pairs} * 2);
    for (uint32_t i = 0; i < pairs; ++i) {
        const double phase = static_cast<double>(i) * 440.0 * 6.283185307 / 44100.0;
        samples.push_back(static_cast<int16_t>(8000.0 * std::sin(phase)));
        samples.push_back(static_cast<int16_t>(-4000.0 * std::sin(phase * 2.0)));
    }
    return samples;
}

VIDEO_FORMAT Format(VideoForm form) {
    VIDEO_FORMAT format;
    format.form = form;
    format.width = kWidth;
    format.height = kHeight;
    format.aspect = 1.5; // dots of 9 : 8
    format.rateNumber = 53693175;
    format.rateDivisor = 896040; // 59.9228 a second
    return format;
}

constexpr double kRate = 53693175.0 / 896040.0;

class VideoFileTest : public testing::Test {
protected:
    // Writes the whole of a video.
    void Write(const std::string& name, const VIDEO_FORMAT& format) {
        const auto file = MakeVideoFile();
        std::string error;
        ASSERT_TRUE(file->Open(Path(name), format, error)) << error;
        const std::vector<int16_t> samples = Sound(kPictures * kPairs);
        for (uint32_t i = 0; i < kPictures; ++i) {
            ASSERT_TRUE(file->AddPicture(Drawn(i).data(), kWidth, kHeight, error)) << error;
            ASSERT_TRUE(file->AddSound(samples.data() + size_t{i} * kPairs * 2, kPairs, error))
                << error;
        }
        ASSERT_TRUE(file->Close(error)) << error;
    }

    [[nodiscard]] std::string Path(const std::string& name) const {
        return (folder.Path() / name).string();
    }

    [[nodiscard]] READ_VIDEO Read(const std::string& name) const {
        READ_VIDEO video;
        EXPECT_TRUE(ReadVideo(Path(name), video));
        return video;
    }

    TemporaryFolder folder;
};

// The largest difference of a colour between a dot of the picture and the middle of it in the file.
int Difference(const Picture& expected, const READ_VIDEO& video, size_t number, uint32_t dot) {
    int largest = 0;
    const auto wide = static_cast<uint32_t>(video.width);
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            const uint32_t is =
                video.pictures[number].pixels[size_t{y * dot + dot / 2} * wide + x * dot + dot / 2];
            const uint32_t wanted = expected[size_t{y} * kWidth + x];
            for (const uint32_t shift : {0u, 8u, 16u}) {
                largest = std::max(largest, std::abs(static_cast<int>(is >> shift & 0xFF) -
                                                     static_cast<int>(wanted >> shift & 0xFF)));
            }
        }
    }
    return largest;
}

} // namespace

TEST_F(VideoFileTest, LosslessHasEveryDotAndEverySample) {
    Write("a.mkv", Format(VideoForm::kLossless));
    const READ_VIDEO video = Read("a.mkv");
    EXPECT_EQ(video.codec, "ffv1");
    EXPECT_EQ(video.soundCodec, "flac");
    EXPECT_EQ(video.width, static_cast<int>(kWidth));
    EXPECT_EQ(video.height, static_cast<int>(kHeight));
    EXPECT_NEAR(video.dotAspect, 9.0 / 8.0, 1e-6);
    EXPECT_NEAR(video.rate, kRate, 1e-3);
    ASSERT_EQ(video.pictures.size(), kPictures);
    for (uint32_t i = 0; i < kPictures; ++i) {
        ASSERT_EQ(video.pictures[i].pixels, Drawn(i)) << i;
        ASSERT_NEAR(video.pictures[i].seconds, i / kRate, 0.001) << i; // .mkv counts milliseconds
    }
    const std::vector<int16_t> samples = Sound(kPictures * kPairs);
    ASSERT_EQ(video.sound.size(), samples.size());
    EXPECT_EQ(video.soundRate, 44100);
    EXPECT_EQ(video.channels, 2);
    for (size_t i = 0; i < samples.size(); ++i) {
        ASSERT_EQ(video.sound[i], static_cast<float>(samples[i]) / 32768.0f) << i;
    }
}

TEST_F(VideoFileTest, TheOneForAllPlayersHasEveryDotToTheEye) {
    for (const uint32_t dot : {2u, 4u}) {
        for (const char* name : {"a.mkv", "a.mp4"}) {
            VIDEO_FORMAT format = Format(VideoForm::kEverywhere);
            format.dotPixels = dot;
            Write(name, format);
            const READ_VIDEO video = Read(name);
            EXPECT_EQ(video.codec, "h264");
            EXPECT_EQ(video.profile, kHighProfile);
            EXPECT_EQ(video.pixelFormat, "yuv420p");
            EXPECT_EQ(video.width, static_cast<int>(kWidth * dot));
            EXPECT_EQ(video.height, static_cast<int>(kHeight * dot));
            EXPECT_NEAR(video.dotAspect, 9.0 / 8.0, 1e-6);
            EXPECT_NEAR(video.rate, kRate, 1e-3);
            ASSERT_EQ(video.pictures.size(), kPictures);
            // Of 255. Between two of these colours there are at least 32, and mostly 128 or more.
            for (const uint32_t i : {0u, 45u, kPictures - 1}) {
                EXPECT_LE(Difference(Drawn(i), video, i, dot), 16) << name << ' ' << i;
            }
        }
    }
}

// .mp4 counts in the video's own unit, so that no picture is early or late by a rounding.
TEST_F(VideoFileTest, PicturesOfMp4AreAtTheirExactTimes) {
    Write("a.mp4", Format(VideoForm::kEverywhere));
    const READ_VIDEO video = Read("a.mp4");
    ASSERT_EQ(video.pictures.size(), kPictures);
    for (uint32_t i = 0; i < kPictures; ++i) {
        EXPECT_NEAR(video.pictures[i].seconds, i / kRate, 1e-6) << i;
    }
    EXPECT_NEAR(video.seconds, kPictures * kPairs / 44100.0, 0.03);
}

// FLAC has the samples themselves. AAC's frames have 1024 pairs, and it begins with one of silence.
TEST_F(VideoFileTest, SoundIsAsLongAsItWas) {
    Write("a.mkv", Format(VideoForm::kEverywhere));
    const READ_VIDEO matroska = Read("a.mkv");
    EXPECT_EQ(matroska.soundCodec, "flac");
    EXPECT_EQ(matroska.sound.size(), size_t{kPictures} * kPairs * 2);
    Write("a.mp4", Format(VideoForm::kEverywhere));
    const READ_VIDEO mp4 = Read("a.mp4");
    EXPECT_EQ(mp4.soundCodec, "aac");
    EXPECT_NEAR(static_cast<double>(mp4.sound.size()) / 2.0, kPictures * kPairs, 2048.0);
    // It is the sound, not silence of its length: half the square of the loudness of a sine.
    double power = 0.0;
    for (size_t i = 0; i < mp4.sound.size(); i += 2) {
        power += static_cast<double>(mp4.sound[i]) * static_cast<double>(mp4.sound[i]);
    }
    EXPECT_NEAR(power / (static_cast<double>(mp4.sound.size()) / 2.0),
                8000.0 * 8000.0 / 32768.0 / 32768.0 / 2.0, 0.003);
}

TEST_F(VideoFileTest, APictureIsRepeated) {
    const auto file = MakeVideoFile();
    std::string error;
    ASSERT_TRUE(file->Open(Path("a.mkv"), Format(VideoForm::kLossless), error)) << error;
    ASSERT_TRUE(file->AddPicture(Drawn(3).data(), kWidth, kHeight, error));
    ASSERT_TRUE(file->RepeatPicture(error));
    ASSERT_TRUE(file->AddPicture(Drawn(4).data(), kWidth, kHeight, error));
    ASSERT_TRUE(file->Close(error)) << error;
    const READ_VIDEO video = Read("a.mkv");
    ASSERT_EQ(video.pictures.size(), 3u);
    EXPECT_EQ(video.pictures[0].pixels, Drawn(3));
    EXPECT_EQ(video.pictures[1].pixels, Drawn(3));
    EXPECT_EQ(video.pictures[2].pixels, Drawn(4));
}

TEST_F(VideoFileTest, APictureOfAnotherSizeFillsTheOneOfTheFile) {
    const auto file = MakeVideoFile();
    std::string error;
    ASSERT_TRUE(file->Open(Path("a.mkv"), Format(VideoForm::kLossless), error)) << error;
    ASSERT_TRUE(
        file->AddPicture(Drawn(1, kWidth / 2, kHeight / 2).data(), kWidth / 2, kHeight / 2, error));
    ASSERT_TRUE(file->AddPicture(Drawn(2).data(), kWidth, kHeight, error));
    ASSERT_TRUE(file->Close(error)) << error;
    const READ_VIDEO video = Read("a.mkv");
    ASSERT_EQ(video.pictures.size(), 2u);
    const Picture half = Drawn(1, kWidth / 2, kHeight / 2);
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            ASSERT_EQ(video.pictures[0].pixels[size_t{y} * kWidth + x],
                      half[size_t{y / 2} * (kWidth / 2) + x / 2]);
        }
    }
    EXPECT_EQ(video.pictures[1].pixels, Drawn(2));
}

TEST_F(VideoFileTest, WhatCannotBeWrittenSaysWhy) {
    std::string error;
    EXPECT_FALSE(MakeVideoFile()->Open(Path("a.avi"), Format(VideoForm::kEverywhere), error));
    EXPECT_THAT(error, HasSubstr("a.avi: a video's name ends in .mkv or .mp4"));
    EXPECT_FALSE(MakeVideoFile()->Open(Path("a.mp4"), Format(VideoForm::kLossless), error));
    EXPECT_THAT(error, HasSubstr("a.mp4: a lossless video's name ends in .mkv"));
    EXPECT_FALSE(MakeVideoFile()->Open(Path("no folder/a.mkv"), Format(VideoForm::kLossless), error));
    EXPECT_THAT(error, HasSubstr("No such file or directory"));
    VIDEO_FORMAT large = Format(VideoForm::kEverywhere);
    large.width = 5000;
    EXPECT_FALSE(MakeVideoFile()->Open(Path("a.mkv"), large, error));
}
