// Input recordings: all that reaches a machine from outside, frame by frame, so that a run of it can be repeated to
// the bit. docs/FORMATS.md has the bytes.
//
// A file is a row of chunks, each with a checksum. One that was cut off, or is damaged from some place on, is good up
// to its last whole chunk.
//
// Knows no machine. Failure: one line that says what is wrong with the bytes; the caller knows the file's name. No
// bytes make the reader read out of bounds, or allocate more than a small multiple of their number.
#pragma once

#include "facts/machine_facts.h"
#include "formats/sha256.h"
#include "machine/chip_sound.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a machine reads from outside for one frame.
struct FRAME_INPUTS {
    uint32_t actions = 0; // a bit for each action of the machine's facts, the console's own first
    std::array<uint32_t, 4> pointers{}; // x and y of the first player, and of the second

    bool operator==(const FRAME_INPUTS&) const = default;
};

// What was recorded, and under which conditions.
struct RECORDING_ABOUT {
    std::string program; // the version that recorded it
    std::string title;   // of the game
    std::string
        game; // its file in the program's notation, "demo:" and a name, or a file's name alone
    std::string console; // the file of the console's own image, in the same way; empty without one
    uint16_t system = 0; // GameSystem
    std::array<Sha256Digest, 2> images{}; // of the game and of the console's own; zeros without one
    std::array<uint8_t, kMachineOptionBytes> options{};
    SOUND_CHOICE sound;
};

// Inputs that hold from this frame until the next step.
struct RECORDING_STEP {
    uint32_t frame = 0; // from 0
    bool reset = false; // the machine was reset before this frame
    FRAME_INPUTS inputs;
};

// A state that the machine took before this frame.
struct RECORDING_STATE {
    uint32_t frame = 0;
    uint32_t bytes = 0; // unpacked
    std::vector<uint8_t> packed;
};

// The first eight bytes of two hashes.
struct RECORDING_CHECK {
    uint32_t frame = 0;
    uint32_t soundFrom = 0; // the sound is that of the frames from this one to `frame`
    uint64_t picture = 0;
    uint64_t sound = 0;
};

struct RECORDING {
    RECORDING_ABOUT about;
    std::vector<uint8_t> memory; // the game's own, at power-on
    std::vector<RECORDING_STATE> states;
    std::vector<RECORDING_STEP> steps;
    std::vector<RECORDING_CHECK> checks;
    uint32_t frames = 0;
    std::optional<Sha256Digest>
        end; // of the machine's state after the last frame; none: interrupted
};

inline constexpr uint32_t kRecordingCheckFrames = 60; // between two checks, and at most in a chunk

// 8 bytes of a hash, for a check. The picture's is of its size, two 32-bit numbers, and its pixels.
[[nodiscard]] uint64_t RecordingPictureHash(std::span<const uint32_t> pixels, uint32_t width,
                                            uint32_t height);
[[nodiscard]] uint64_t RecordingSoundHash(std::span<const int16_t> samples);

// False if not even the first chunk is good, or if another version of the format wrote it.
[[nodiscard]] bool ReadRecording(std::span<const uint8_t> file, RECORDING& recording,
                                 std::string& error);

// The state's bytes; empty if they cannot be unpacked.
[[nodiscard]] std::vector<uint8_t> UnpackState(const RECORDING_STATE& state);

// One chunk, appended to `out`: four characters, and what it holds.
void WriteRecordingChunk(std::vector<uint8_t>& out, std::string_view tag,
                         std::span<const uint8_t> payload);

// ---- The chunks, appended to `out`. Frames are counted from any number, which the first chunk names.

void WriteRecordingAbout(std::vector<uint8_t>& out, const RECORDING_ABOUT& about,
                         uint32_t firstFrame);
void WriteRecordingMemory(std::vector<uint8_t>& out, std::span<const uint8_t> memory);
void WriteRecordingState(std::vector<uint8_t>& out, uint32_t frame, std::span<const uint8_t> state);
void WriteRecordingEnd(std::vector<uint8_t>& out, uint32_t frames, const Sha256Digest& state);

// A chunk of frames on its way.
class FramesChunk {
public:
    // The next frame, with its inputs. At most kRecordingCheckFrames of them.
    void Add(uint32_t frame, const FRAME_INPUTS& inputs, bool reset);
    // After the frame that was added last; then the chunk is to be written.
    void Check(uint64_t picture, uint64_t sound);
    [[nodiscard]] bool Full() const { return count == kRecordingCheckFrames; }
    [[nodiscard]] bool Empty() const { return count == 0; }

    // Appends the chunk, unless it is empty, and begins the next.
    void Write(std::vector<uint8_t>& out);

private:
    void Entry(uint8_t what);

    uint32_t first = 0;
    uint32_t count = 0;
    uint32_t entryFrame = 0; // of the last entry, from `first`
    FRAME_INPUTS held;
    std::vector<uint8_t> entries;
    size_t kindAt = 0; // of the last entry's kind in `entries`
};
