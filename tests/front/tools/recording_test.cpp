// `play --record` and `play --replay` as a user runs them, on our own games.

#include "base/files.h"
#include "front/tools/run_ombrelune.h"
#include "host/recording_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

using testing::HasSubstr;

namespace {

// A game of each machine, with presses of its own keys.
struct PLAYED_GAME {
    const char* demo;
    const char* script;
};

constexpr PLAYED_GAME kGames[] = {
    {"demo:sms-luciole",
     "100 SMS P1 RIGHT down\n120 SMS PAUSE down\n121 SMS PAUSE up\n140 SMS P1 BUTTON1 down\n"
     "145 SMS P1 BUTTON1 up\n"                                                             },
    {"demo:gg-glimmer",
     "20 GG P1 START down\n24 GG P1 START up\n60 GG P1 LEFT down\n110 GG P1 BUTTON1 down\n"},
    {"demo:md-mistral",
     "20 MEGADRIVE P1 START down\n24 MEGADRIVE P1 START up\n60 MEGADRIVE P1 RIGHT down\n"
     "110 MEGADRIVE P1 BUTTONB down\n120 MEGADRIVE P1 BUTTONB up\n150 MEGADRIVE RESET down\n"
     "151 MEGADRIVE RESET up\n"                                                            },
    {"demo:nes-ecume",
     "20 NES P1 START down\n24 NES P1 START up\n60 NES P1 RIGHT down\n110 NES P1 BUTTONA down\n"
     "120 NES P1 BUTTONA up\n"                                                             },
    {"demo:arcade-skywren",
     "200 Arcade Insert Coin1 down\n210 Arcade Insert Coin1 up\n230 Arcade Start1 down\n"
     "234 Arcade Start1 up\n240 Arcade P1 UP down\n250 Arcade P1 BUTTON1 down\n"           },
};

class Recording : public testing::Test {
protected:
    PROGRAM_RESULT Play(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"play", "--headless"});
        return Ombrelune(std::move(arguments), folder);
    }
    [[nodiscard]] std::string Path(const std::string& name) const {
        return (folder.Path() / name).string();
    }
    void Write(const std::string& name, std::string_view text) const {
        std::ofstream(Path(name), std::ios::binary) << text;
    }

    // Records some frames of a game from power-on.
    void Record(const PLAYED_GAME& game, const std::string& name, const char* frames = "260") {
        Write("script.txt", game.script);
        const PROGRAM_RESULT result =
            Play({game.demo, "--input", Path("script.txt"), "--frames", frames, "--record",
                  Path(name), "--frame-hashes", Path("recorded.txt")});
        ASSERT_EQ(result.exitCode, 0) << result.error;
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(Recording, ReplaysToTheSamePicturesAndSoundOnEveryMachine) {
    for (const PLAYED_GAME& game : kGames) {
        Record(game, "a.recording");
        const PROGRAM_RESULT result =
            Play({"--replay", Path("a.recording"), "--frame-hashes", Path("replayed.txt")});
        EXPECT_EQ(result.exitCode, 0) << game.demo << ": " << result.error;
        EXPECT_EQ(result.output,
                  "260 frames replayed: pictures and sound are those of the recording\n");
        EXPECT_EQ(folder.Read("recorded.txt"), folder.Read("replayed.txt")) << game.demo;
        // The script has done something: without it the frames are others.
        ASSERT_EQ(
            Play({game.demo, "--frames", "260", "--frame-hashes", Path("still.txt")}).exitCode, 0);
        EXPECT_NE(folder.Read("recorded.txt"), folder.Read("still.txt")) << game.demo;
    }
}

TEST_F(Recording, FromAStateReplaysToTheSamePicturesAndSoundOnEveryMachine) {
    for (const PLAYED_GAME& game : kGames) {
        Write("script.txt", game.script);
        ASSERT_EQ(Play({game.demo, "--frames", "133", "--save-state", Path("a.state")}).exitCode,
                  0);
        ASSERT_EQ(Play({game.demo, "--input", Path("script.txt"), "--load-state", Path("a.state"),
                        "--frames", "200", "--record", Path("a.recording"), "--frame-hashes",
                        Path("recorded.txt")})
                      .exitCode,
                  0);
        const PROGRAM_RESULT result =
            Play({"--replay", Path("a.recording"), "--frame-hashes", Path("replayed.txt")});
        EXPECT_EQ(result.exitCode, 0) << game.demo << ": " << result.error;
        EXPECT_EQ(folder.Read("recorded.txt"), folder.Read("replayed.txt")) << game.demo;
    }
}

TEST_F(Recording, HasTheOptionsAndTheSoundOfItsRun) {
    Write("script.txt", kGames[0].script);
    ASSERT_EQ(Play({kGames[0].demo, "--input", Path("script.txt"), "--frames", "150", "--record",
                    Path("a.recording"), "--frame-hashes", Path("recorded.txt"), "--set",
                    "console=sms1-pal", "--set", "fm=1", "--set", "audio_app_samplerate=48000",
                    "--set", "audio_app_quality=0", "--set", "emu_audiocutoff_enabled=1"})
                  .exitCode,
              0);
    const PROGRAM_RESULT result =
        Play({"--replay", Path("a.recording"), "--frame-hashes", Path("replayed.txt")});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(folder.Read("recorded.txt"), folder.Read("replayed.txt"));
}

TEST_F(Recording, CutOffIsPlayedToItsLastChunkAndSaysSo) {
    Record(kGames[0], "a.recording");
    auto bytes = folder.Read("a.recording");
    bytes.resize(bytes.size() - 60); // the end and a part of the last frames
    Write("cut.recording", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    const PROGRAM_RESULT result = Play({"--replay", Path("cut.recording")});
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(result.output, "240 frames replayed; the recording was interrupted there, and is "
                             "equal to frame 240\n");
}

TEST_F(Recording, OfAnotherGameIsRefused) {
    Record(kGames[0], "a.recording", "10");
    for (const char* other : {"demo:sms-torture", "demo:nes-ecume"}) {
        const PROGRAM_RESULT result = Play({other, "--replay", Path("a.recording")});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.error, HasSubstr("a.recording: the recording is of another game"));
    }
}

TEST_F(Recording, WhoseGameIsNotFoundAsksForIt) {
    Record(kGames[0], "a.recording", "10");
    const auto bytes = folder.Read("a.recording");
    RECORDING recording;
    std::string error;
    ASSERT_TRUE(ReadRecording(bytes, recording, error)) << error;
    recording.about.game = "gone.sms";
    std::vector<uint8_t> moved;
    WriteRecordingAbout(moved, recording.about, 0);
    Write("moved.recording", {reinterpret_cast<const char*>(moved.data()), moved.size()});
    const PROGRAM_RESULT result = Play({"--replay", Path("moved.recording")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("which is not here: name the game's file as well"));
    EXPECT_EQ(Play({kGames[0].demo, "--replay", Path("moved.recording"), "--frames", "5"}).exitCode,
              0);
}

TEST_F(Recording, OfAnotherVersionIsPlayedWithAWarning) {
    Record(kGames[0], "a.recording", "10");
    RECORDING recording;
    std::string error;
    ASSERT_TRUE(ReadRecording(folder.Read("a.recording"), recording, error)) << error;
    recording.about.program = "99.0";
    std::vector<uint8_t> other;
    WriteRecordingAbout(other, recording.about, 0);
    FramesChunk chunk;
    for (uint32_t frame = 0; frame < kRecordingCheckFrames; ++frame) {
        chunk.Add(frame, {}, false);
    }
    chunk.Check(1, 1); // hashes of other pictures and sound
    chunk.Write(other);
    Write("other.recording", {reinterpret_cast<const char*>(other.data()), other.size()});
    const PROGRAM_RESULT result = Play({"--replay", Path("other.recording")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("Version 99.0 of the program made this recording"));
    EXPECT_THAT(result.error,
                HasSubstr("differs from the recording at frame 60 (picture); it was equal to frame "
                          "0; version 99.0 of the program recorded it"));
}

TEST_F(Recording, WhatIsNoneIsRefused) {
    Write("a.recording", "once upon a time");
    const PROGRAM_RESULT result = Play({"--replay", Path("a.recording")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("a.recording: is not a recording of inputs"));
    EXPECT_EQ(Play({"--replay", Path("missing.recording")}).exitCode, 1);
    EXPECT_EQ(Play({}).exitCode, 2);
}
