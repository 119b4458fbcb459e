// What a machine is to the host: six operations and the records that pass through them.
//
// A machine knows no window, device or file. It is given its game images once, in Init, and lives in
// one session; only the session's thread calls RunFrame. Other threads call Reset, SaveState and
// LoadState between frames, under the session's lock.
#pragma once

#include "facts/machine_facts.h"
#include "machine/state_out.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

class CGameFile;

// A finished picture. The host owns the pixels and copies the whole record, 64 bytes.
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
    uint8_t fresh;       // host: not shown yet
    uint8_t shown;       // host: the display side has taken it
    uint8_t hold;        // machine: do not publish, draw the next frame over it
    uint8_t rotated;     // machine: to be turned by 90 degrees before it is published
    uint32_t tvKey;      // host: session key of the television that shows it
    uint8_t reserved[16];
};
static_assert(sizeof(void*) != 8 || sizeof(EMU_VIDEO_FRAME) == 64);
static_assert(sizeof(void*) != 8 || offsetof(EMU_VIDEO_FRAME, tvKey) == 44);

// The sound of one frame. Its length is the frame's length.
inline constexpr uint32_t kAudioFrameBytes = 16384;
inline constexpr uint32_t kAudioFramePairs = kAudioFrameBytes / 4;

struct EMU_AUDIO_FRAME {
    int16_t* samples;     // left, right, left, ...; 32-byte aligned, room for kAudioFramePairs
    uint32_t sampleRate;  // host: sample pairs a second
    uint32_t sampleCount; // machine: sample pairs of this frame
};

// Two pointing devices, one for each player. (0, 0) means that nobody points; the host sets both to
// that before every frame.
struct EMU_INPUT_STATE {
    struct {
        // In pixels from the top left of the whole picture, of which (visibleX, visibleY) is visible first.
        uint32_t x;
        uint32_t y;
    } pointer[2];
};

using StateBlob = std::unique_ptr<uint8_t[]>;

class CEmuSystem {
public:
    // Frees everything the machine allocated, game images included.
    virtual ~CEmuSystem() = default;

    // Takes the images out of the game files (the second may be null), builds the chips and ends with
    // Reset. False if the game cannot be run; the last error may say why. A machine copies what it
    // needs, as the files are gone after the call.
    [[nodiscard]] virtual bool Init(const void* options, CGameFile* const games[2]) = 0;

    // Power-on state of the whole machine; images and options stay.
    virtual void Reset() = 0;

    // Emulates exactly one video frame. Reads the bound inputs itself.
    virtual void RunFrame(EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
                          EMU_AUDIO_FRAME* audio) = 0;

    // Restores what WriteState wrote. False for a blob that does not fit; the machine is then in an
    // undefined state and must be reset.
    [[nodiscard]] virtual bool LoadState(const uint8_t* data, uint32_t size) = 0;

    // Size of the present state in bytes; 0 if it cannot be saved.
    [[nodiscard]] virtual uint32_t StateSize() = 0;

    // Writes the StateSize bytes of the whole state.
    virtual void WriteState(StateOut out) = 0;

    // The state as a new block of `size` bytes, which the caller frees; null if it cannot be saved.
    [[nodiscard]] StateBlob SaveState(uint32_t& size);

    CEmuSystem(const CEmuSystem&) = delete;
    CEmuSystem& operator=(const CEmuSystem&) = delete;

    const uint32_t sessionKey; // for InputIsDown
    // For a machine to fill; only printed, by the main thread while the machine runs.
    std::atomic<uint32_t> debugValue{0};
    // Set by End, for a machine whose program cannot go on. Its frames are empty until a Reset or
    // LoadState.
    std::atomic<bool> ended{false};
    // Why it ended, for the user. Written before `ended`; under the session's lock.
    std::string endReason;
    const uint32_t width; // the largest picture the machine makes, in pixels
    const uint32_t height;

protected:
    CEmuSystem(uint32_t sessionKeyValue, uint32_t widthValue, uint32_t heightValue)
        : sessionKey(sessionKeyValue)
        , width(widthValue)
        , height(heightValue) {}

    // The program cannot go on.
    void End(std::string reason) {
        endReason = std::move(reason);
        ended = true;
    }
};

// Why a game could not start, as a text for the user. Shared by all threads; the newest one wins.
void EmuSetLastError(std::string text);
[[nodiscard]] std::string EmuLastError();
