// Plays a recording of inputs back into a machine, and compares what the machine makes of them.
//
// Knows no session. Threads: that of the machine's frames, or any under the session's lock.
#pragma once

#include "host/recording_file.h"
#include "machine/emu_system.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

enum class ReplayEnd : uint8_t {
    kRunning,
    kEqual,       // to the end
    kInterrupted, // equal as far as the recording goes, which was interrupted
    kDiffers,
    kRefused,   // the machine cannot take a state in it
    kTakenOver, // by the player
};

// A frame of a recording, before which the machine may have been changed.
struct REPLAY_FRAME {
    FRAME_INPUTS inputs;
    bool reset = false;
    bool stateTaken = false;
};

class SessionReplay {
public:
    // Sound is compared only if the machine makes it as that of the recording did.
    SessionReplay(std::shared_ptr<const RECORDING> recording, bool compareSound);

    // The machine is at power-on: gives it the game's own memory.
    void Begin(CEmuSystem& machine) const;

    [[nodiscard]] bool Running() const { return end == ReplayEnd::kRunning; }

    // Before a frame: changes the machine as the recording says. None at the end.
    [[nodiscard]] std::optional<REPLAY_FRAME> BeforeFrame(CEmuSystem& machine);
    void AfterFrame(CEmuSystem& machine, const EMU_VIDEO_FRAME& video,
                    const EMU_AUDIO_FRAME& audio);

    // The player goes on from here.
    void TakeOver();

    [[nodiscard]] ReplayEnd End() const { return end; }
    [[nodiscard]] bool Differs() const { return differs != 0; } // so far
    [[nodiscard]] uint32_t Frame() const { return frame; }      // played so far
    [[nodiscard]] uint32_t Frames() const { return recording->frames; }
    // One sentence on how it ended.
    [[nodiscard]] std::string Result() const;

private:
    void Compare(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio);
    void Finish(CEmuSystem& machine);

    const std::shared_ptr<const RECORDING> recording;
    const bool soundCounts;
    uint32_t frame = 0;
    size_t nextStep = 0;
    size_t nextState = 0;
    size_t nextCheck = 0;
    FRAME_INPUTS inputs;
    std::vector<int16_t> sound; // since the chunk of the next check began
    uint32_t equalUntil = 0;    // frames
    uint32_t differs = 0;       // the first frame that was compared and differs, from 1; 0: none
    const char* what = "";      // differs
    ReplayEnd end = ReplayEnd::kRunning;
};

// The version of this program, as recordings have it.
[[nodiscard]] std::string RecordingProgram();
