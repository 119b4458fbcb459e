// `play --video` as a user runs it, on our own games.

#include "video/video_reader.h"

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

using testing::HasSubstr;

namespace {

class VideoCommand : public testing::Test {
protected:
    PROGRAM_RESULT Play(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {"--home", folder.Path().string(), "play", "--headless"});
        return RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune", arguments);
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

// The samples of a WAV file with a header of 44 bytes.
std::vector<int16_t> Samples(const std::vector<uint8_t>& wav) {
    std::vector<int16_t> samples((wav.size() - 44) / 2);
    for (size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<int16_t>(wav[44 + 2 * i] | wav[45 + 2 * i] << 8);
    }
    return samples;
}

} // namespace

TEST_F(VideoCommand, LosslessHasThePicturesAndTheSoundOfTheRun) {
    const PROGRAM_RESULT result =
        Play({"demo:gg-glimmer", "--frames", "50", "--video", Path("a.mkv"), "--lossless", "--wav",
              Path("a.wav")});
    ASSERT_EQ(result.exitCode, 0) << result.error;
    const READ_VIDEO video = Read("a.mkv");
    EXPECT_EQ(video.pictures.size(), 50u);
    EXPECT_EQ(video.width, 160); // the console's screen, without the border
    EXPECT_EQ(video.height, 144);
    EXPECT_NEAR(video.rate, 59.9228, 0.001);
    const std::vector<int16_t> samples = Samples(folder.Read("a.wav"));
    ASSERT_EQ(video.sound.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        ASSERT_EQ(video.sound[i], static_cast<float>(samples[i]) / 32768.0f) << i;
    }
}

TEST_F(VideoCommand, PicturesAndSoundOfEveryMachineAreEquallyLong) {
    struct ROW {
        const char* demo;
        const char* option;
        double rate;
    };
    for (const ROW& row : {
             ROW{"demo:sms-luciole",    "console=sms2-ntsc", 59.9228},
             ROW{"demo:sms-luciole",    "console=sms2-pal",  49.7015},
             ROW{"demo:md-mistral",     "console=pal",       49.7015},
             ROW{"demo:nes-ecume",      "emu_autosaves=0",   60.0988},
             ROW{"demo:arcade-skywren", "emu_autosaves=0",   59.9228},
    }) {
        const PROGRAM_RESULT result =
            Play({row.demo, "--set", row.option, "--frames", "150", "--video", Path("a.mkv"),
                  "--lossless"});
        ASSERT_EQ(result.exitCode, 0) << row.demo << result.error;
        const READ_VIDEO video = Read("a.mkv");
        EXPECT_EQ(video.pictures.size(), 150u) << row.demo;
        EXPECT_NEAR(video.rate, row.rate, 0.001) << row.demo;
        const double sound = static_cast<double>(video.sound.size()) / 2.0 / video.soundRate;
        EXPECT_NEAR(sound, 150 / row.rate, 0.001) << row.demo << ' ' << row.option;
    }
}

TEST_F(VideoCommand, IsMadeOfARecordingToo) {
    ASSERT_EQ(Play({"demo:md-mistral", "--frames", "70", "--record", Path("a.recording")}).exitCode,
              0);
    const PROGRAM_RESULT result =
        Play({"--replay", Path("a.recording"), "--video", Path("a.mp4")});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    const READ_VIDEO video = Read("a.mp4");
    EXPECT_EQ(video.pictures.size(), 70u);
    EXPECT_EQ(video.codec, "h264");
    EXPECT_EQ(video.width, 320 * 4);
    EXPECT_EQ(video.height, 224 * 4);
}

TEST_F(VideoCommand, WhatCannotBeWrittenIsSaid) {
    const PROGRAM_RESULT result =
        Play({"demo:md-mistral", "--frames", "10", "--video", Path("a.avi")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("a.avi: a video's name ends in .mkv or .mp4"));
}
