// Records what reaches a machine, frame by frame: the whole of it for a file, and the last minutes in memory.
//
// In memory a recording is a row of parts. Each begins with the machine's state, so that the oldest can be dropped. A
// part lasts half a minute. A file gets no such states: it begins at power-on or with one state, and has another only
// where the machine took one that no frame led to (a loaded state, or the end of rewinding).
//
// Knows no session and no disk. Threads: that of the machine's frames, or any under the session's lock.
#pragma once

#include "host/recording_file.h"
#include "machine/emu_system.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

class SessionRecorder {
public:
    // The machine is at power-on. Keeps the last `minutes`; 0 keeps nothing in memory.
    SessionRecorder(RECORDING_ABOUT about, uint32_t minutes);

    // From the next frame on everything is for a file as well.
    void BeginFile() { file = true; }
    // What is to be appended to the file since the last call.
    [[nodiscard]] std::vector<uint8_t> TakeFileBytes();
    // Before the last such call: the file's end. No frame comes after it.
    void EndFile(CEmuSystem& machine);

    // The machine was changed by something else than a frame: before the next one.
    void NoteReset() { reset = true; }
    void NoteState() {
        stateTaken = true;
        atPowerOn = false;
    }

    // Around each frame, which reads nothing else than these inputs. False if the recording had to be given up, as
    // there is no memory for a state; only told once.
    [[nodiscard]] bool BeforeFrame(CEmuSystem& machine, const FRAME_INPUTS& inputs);
    void AfterFrame(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio);

    // A whole file of the last minutes; empty if nothing was recorded. `frames`: how many it has.
    [[nodiscard]] std::vector<uint8_t> LastMinutes(CEmuSystem& machine, uint32_t& frames);

private:
    struct PART {
        uint32_t firstFrame = 0;
        std::vector<uint8_t> start; // the chunk of a state, or of the game's own memory at power-on
        bool stateTaken = false;    // the machine took the state here
        std::vector<uint8_t> chunks; // of frames
    };

    [[nodiscard]] bool BeginPart(CEmuSystem& machine);
    [[nodiscard]] bool WriteStart(CEmuSystem& machine, std::vector<uint8_t>& start) const;
    void CloseChunk();
    void ToFile(std::span<const uint8_t> bytes);

    const RECORDING_ABOUT about;
    const uint32_t partsKept; // 0: none
    std::deque<PART> parts;   // the oldest first; the newest is there from the first frame on
    FramesChunk chunk;
    std::vector<int16_t> sound; // of the chunk
    uint32_t frame = 0;
    bool file = false;
    bool fileBegun = false;
    std::vector<uint8_t> fileBytes;
    bool reset = false;
    bool stateTaken = false;
    bool atPowerOn = true; // no frame and no state yet
    bool givenUp = false;
};
