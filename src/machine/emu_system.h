// What a machine is to the host: six operations and the records that pass through them.
//
// A machine knows no window, device or file. It is given its game images once, in Init, and lives in
// one session; the session's thread alone calls RunFrame, and the session's lock keeps Reset,
// SaveState and LoadState from other threads to the boundaries between frames.
#pragma once

#include "facts/machine_facts.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class CGameFile;

// A produced picture. The host owns the pixels and copies the record whole, 64 bytes.
struct EMU_VIDEO_FRAME {
    uint32_t* pixels; // 32-byte aligned, rows of `width`; blue lowest, green, red, then 0xFF
    uint32_t width;   // of the whole picture, in pixels
    uint32_t height;
    float aspect;      // display aspect of the whole picture
    uint32_t visibleX; // active window inside the picture
    uint32_t visibleY;
    uint32_t visibleWidth;
    uint32_t visibleHeight;
    float visibleAspect; // display aspect of the active window
    uint8_t fresh;       // host: waits to be shown
    uint8_t shown;       // host: the display side has taken it
    uint8_t hold;        // machine: do not publish, draw the next frame over it
    uint8_t rotated;     // machine: to be turned by 90 degrees before it is published
    uint32_t tvKey;      // host: session key of the television that shows it
    uint8_t reserved[16];
};
static_assert(sizeof(void*) != 8 || sizeof(EMU_VIDEO_FRAME) == 64);
static_assert(sizeof(void*) != 8 || offsetof(EMU_VIDEO_FRAME, tvKey) == 44);

// The sound of one frame. Its length sets how long the frame lasts.
inline constexpr uint32_t kAudioFrameBytes = 16384;
inline constexpr uint32_t kAudioFramePairs = kAudioFrameBytes / 4;

struct EMU_AUDIO_FRAME {
    int16_t* samples;     // left, right, left, ...; 32-byte aligned, room for kAudioFramePairs
    uint32_t sampleRate;  // host: sample pairs a second
    uint32_t sampleCount; // machine: sample pairs of this frame
};

// Two pointing devices, one a player. (0, 0) says that nobody points; the host sets both to that before
// every frame.
struct EMU_INPUT_STATE {
    struct {
        uint32_t x; // pixels of the whole picture, from its top left: the visible window begins at
        uint32_t y; // (visibleX, visibleY)
    } pointer[2];
};

using StateBlob = std::unique_ptr<uint8_t[]>;

class CEmuSystem {
public:
    // Frees everything the machine allocated, game images included.
    virtual ~CEmuSystem() = default;

    // Takes the images out of the game files (the second may be null), builds the chips and ends with
    // Reset. False: the game cannot be run, and the last error may say why. The files are gone after
    // the call, so a machine copies what it needs.
    [[nodiscard]] virtual bool Init(const void* options, CGameFile* const games[2]) = 0;

    // Power-on state of the whole machine; images and options stay.
    virtual void Reset() = 0;

    // Emulates exactly one video frame. Reads the bound inputs itself.
    virtual void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
                          EMU_AUDIO_FRAME* audio) = 0;

    // Restores what SaveState wrote. False for a blob that does not fit; the machine is then in no
    // particular state and must be reset.
    [[nodiscard]] virtual bool LoadState(const uint8_t* data, uint32_t size) = 0;

    // The whole state as a new block of `size` bytes; null on failure.
    [[nodiscard]] virtual StateBlob SaveState(uint32_t& size) = 0;

    CEmuSystem(const CEmuSystem&) = delete;
    CEmuSystem& operator=(const CEmuSystem&) = delete;

    const uint32_t sessionKey; // for InputIsDown
    // Free for a machine to fill, only ever printed; the main thread prints while the machine runs.
    std::atomic<uint32_t> debugValue{0};
    // Set by a machine whose program cannot go on; the last error says why. Its frames are empty until a
    // Reset or LoadState.
    std::atomic<bool> ended{false};
    const uint32_t width; // the largest picture the machine makes, in pixels
    const uint32_t height;

protected:
    CEmuSystem(uint32_t sessionKeyValue, uint32_t widthValue, uint32_t heightValue)
        : sessionKey(sessionKeyValue)
        , width(widthValue)
        , height(heightValue) {}
};

// The shared text of what went wrong last, for the user. Any thread; the newest text wins.
void EmuSetLastError(std::string text);
[[nodiscard]] std::string EmuLastError();
