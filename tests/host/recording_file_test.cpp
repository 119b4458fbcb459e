#include "base/bytes.h"
#include "host/recording_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kFirst = 1000; // the number of the first frame in the file

// Frame n of a recording whose player changes something on every third frame, and aims on some.
FRAME_INPUTS InputsOf(uint32_t frame) {
    FRAME_INPUTS inputs;
    inputs.actions = frame / 3 * 0x01010101;
    if (frame % 7 == 3) {
        inputs.pointers = {frame, 300 - frame % 200, 1, 0xFFFFFFFF};
    }
    return inputs;
}

bool ResetBefore(uint32_t frame) {
    return frame == 0 || frame == 71 || frame == 130;
}

RECORDING_ABOUT About() {
    RECORDING_ABOUT about;
    about.program = "1.2.3";
    about.title = "Luciole";
    about.game = "demo:sms-luciole";
    about.console = ".\\sms\\console.sms";
    about.system = kSystemMasterSystem;
    about.images[0].fill(0xA5);
    about.images[1].fill(0x5A);
    about.options[7] = 9;
    about.sound = {48000, 2, true, 700, 14000};
    return about;
}

// What a frame must have according to the steps of a recording.
FRAME_INPUTS InputsAt(const RECORDING& recording, uint32_t frame) {
    FRAME_INPUTS inputs;
    for (const RECORDING_STEP& step : recording.steps) {
        if (step.frame <= frame) {
            inputs = step.inputs;
        }
    }
    return inputs;
}

bool ResetAt(const RECORDING& recording, uint32_t frame) {
    return std::any_of(
        recording.steps.begin(), recording.steps.end(),
        [frame](const RECORDING_STEP& step) { return step.frame == frame && step.reset; });
}

// 150 frames in chunks of 60, 40 and 50, with a state before frame 100. `ends`: the length of the file after each
// chunk, with the frames until there.
Bytes File(std::map<size_t, uint32_t>& ends) {
    Bytes file;
    WriteRecordingAbout(file, About(), kFirst);
    ends[file.size()] = 0;
    WriteRecordingMemory(file, Bytes(8192, 0xFF));
    ends[file.size()] = 0;
    FramesChunk chunk;
    for (uint32_t frame = 0; frame < 150; ++frame) {
        if (frame == 100) {
            chunk.Write(file);
            ends[file.size()] = 100;
            WriteRecordingState(file, kFirst + frame, Bytes{1, 2, 3});
            ends[file.size()] = 100;
        }
        chunk.Add(kFirst + frame, InputsOf(frame), ResetBefore(frame));
        if (chunk.Full()) {
            chunk.Check(0x1111222233334444, 0x5555666677778888);
            chunk.Write(file);
            ends[file.size()] = frame + 1;
        }
    }
    chunk.Write(file);
    ends[file.size()] = 150;
    WriteRecordingEnd(file, kFirst + 150, Sha256Digest{42});
    ends[file.size()] = 150;
    return file;
}

} // namespace

TEST(RecordingFile, HoldsWhatWasRecorded) {
    std::map<size_t, uint32_t> ends;
    const Bytes file = File(ends);
    RECORDING recording;
    std::string error;
    ASSERT_TRUE(ReadRecording(file, recording, error)) << error;

    const RECORDING_ABOUT about = About();
    EXPECT_EQ(recording.about.program, about.program);
    EXPECT_EQ(recording.about.title, about.title);
    EXPECT_EQ(recording.about.game, about.game);
    EXPECT_EQ(recording.about.console, about.console);
    EXPECT_EQ(recording.about.system, about.system);
    EXPECT_EQ(recording.about.images, about.images);
    EXPECT_EQ(recording.about.options, about.options);
    EXPECT_EQ(recording.about.sound.rate, 48000u);
    EXPECT_EQ(recording.about.sound.quality, 2);
    EXPECT_TRUE(recording.about.sound.cutoff);
    EXPECT_EQ(recording.about.sound.cutoffLow, 700);
    EXPECT_EQ(recording.about.sound.cutoffHigh, 14000);

    EXPECT_EQ(recording.memory, Bytes(8192, 0xFF));
    EXPECT_EQ(recording.frames, 150u);
    for (uint32_t frame = 0; frame < 150; ++frame) {
        EXPECT_EQ(InputsAt(recording, frame), InputsOf(frame)) << frame;
        EXPECT_EQ(ResetAt(recording, frame), ResetBefore(frame)) << frame;
    }
    ASSERT_EQ(recording.states.size(), 1u);
    EXPECT_EQ(recording.states[0].frame, 100u);
    EXPECT_EQ(UnpackState(recording.states[0]), (Bytes{1, 2, 3}));
    ASSERT_EQ(recording.checks.size(), 1u);
    EXPECT_EQ(recording.checks[0].frame, 59u);
    EXPECT_EQ(recording.checks[0].soundFrom, 0u);
    EXPECT_EQ(recording.checks[0].picture, 0x1111222233334444u);
    EXPECT_EQ(recording.checks[0].sound, 0x5555666677778888u);
    EXPECT_EQ(recording.end, Sha256Digest{42});
}

TEST(RecordingFile, CutOffAnywhereIsGoodUpToItsLastWholeChunk) {
    std::map<size_t, uint32_t> ends;
    const Bytes file = File(ends);
    const size_t about = ends.begin()->first;
    for (size_t length = 0; length <= file.size(); ++length) {
        RECORDING recording;
        std::string error;
        const bool read = ReadRecording(std::span(file).first(length), recording, error);
        ASSERT_EQ(read, length >= about) << length;
        ASSERT_EQ(error.empty(), read) << length;
        if (read) {
            ASSERT_EQ(recording.frames, std::prev(ends.upper_bound(length))->second) << length;
            ASSERT_EQ(recording.end.has_value(), length == file.size()) << length;
        }
    }
}

TEST(RecordingFile, AnyDamagedByteEndsItBeforeThatChunk) {
    std::map<size_t, uint32_t> ends;
    const Bytes file = File(ends);
    for (size_t at = ends.begin()->first; at < file.size(); ++at) {
        Bytes damaged = file;
        damaged[at] ^= 0x40;
        RECORDING recording;
        std::string error;
        ASSERT_TRUE(ReadRecording(damaged, recording, error)) << at;
        ASSERT_EQ(recording.frames, std::prev(ends.upper_bound(at))->second) << at;
        ASSERT_FALSE(recording.end) << at;
    }
}

TEST(RecordingFile, AnotherFileAndAnotherFormAreRefusedWithAReason) {
    RECORDING recording;
    std::string error;
    EXPECT_FALSE(ReadRecording(Bytes(4000, 'x'), recording, error));
    EXPECT_EQ(error, "is not a recording of inputs");
    Bytes file;
    WriteRecordingChunk(file, "OREC", Bytes(400, 2));
    EXPECT_FALSE(ReadRecording(file, recording, error));
    EXPECT_EQ(
        error,
        "was recorded by another version of the program, in a form that this one cannot read");
}

// Three bytes of LZ4 make at most 3 * 255 of them.
TEST(RecordingFile, AStateThatSoFewBytesCannotHoldIsRefused) {
    const auto states = [](uint32_t claimed) {
        Bytes file;
        WriteRecordingAbout(file, About(), 0);
        Bytes payload(11);
        StoreLittleEndian(payload.data() + 4, claimed);
        WriteRecordingChunk(file, "STAT", payload);
        RECORDING recording;
        std::string error;
        EXPECT_TRUE(ReadRecording(file, recording, error));
        return recording.states;
    };
    for (const uint32_t claimed : {0u, 4u * 255, 16u << 20, 0xFFFFFFFFu}) {
        EXPECT_TRUE(states(claimed).empty()) << claimed;
    }
    const std::vector<RECORDING_STATE> possible = states(3 * 255);
    ASSERT_EQ(possible.size(), 1u);
    EXPECT_TRUE(UnpackState(possible[0]).empty()); // these bytes do not make it
}

// A chunk with a right checksum whose entries are not in order, or go beyond its frames.
TEST(RecordingFile, FramesThatDoNotFollowAreRefusedWhole) {
    const Bytes nothing = {0, 0};
    const Bytes unknownKind = {0, 16};
    const Bytes afterTheLastFrame = {10, 4};
    const Bytes twiceAtOneFrame = {1, 4, 0, 4};
    const Bytes withoutItsNumber = {0, 1};
    const Bytes withoutAllHashes = {0, 8, 1, 2, 3, 4};
    for (const Bytes& entry : {nothing, unknownKind, afterTheLastFrame, twiceAtOneFrame,
                               withoutItsNumber, withoutAllHashes}) {
        Bytes file;
        WriteRecordingAbout(file, About(), 0);
        Bytes payload = {0, 0, 0, 0, 10};
        payload.insert(payload.end(), entry.begin(), entry.end());
        WriteRecordingChunk(file, "FRMS", payload);
        RECORDING recording;
        std::string error;
        ASSERT_TRUE(ReadRecording(file, recording, error));
        EXPECT_EQ(recording.frames, 0u);
        EXPECT_TRUE(recording.steps.empty());
        EXPECT_TRUE(recording.checks.empty());
    }
}
