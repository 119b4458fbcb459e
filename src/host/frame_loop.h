// What a session's thread does once a frame: hotkeys, the step, screenshot, sound, pacing.
//
// EmuThreadMain is the loop of a running session. A headless driver has no thread and calls EmuStep
// itself on a record of EmuCreateSession, with buffers of its own:
//
//     AlignedBlock<uint32_t> pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
//     SOUND_FRAME sound;                                       // samples and their record
//     EMU_VIDEO_FRAME video{}; video.pixels = pixels.get();
//     session->showStatic = 0;                                 // unless the static is wanted
//     EMU_INPUT_STATE input{};
//     EmuStep(*session, &input, &video, &sound.frame, false);  // picture and sound are filled
//     EmuRotateFrame(video, scratch);
//
// There is no global clock: the number of samples that a machine makes for a frame is the frame's
// length.
#pragma once

#include "host/frame_sound.h"
#include "host/session.h"
#include "settings/input_frame.h"

#include <cstdint>
#include <vector>

// One step under the session's lock: a frame of static while it runs; with `rewind` the frame
// after the newest state of the rewind stack, its sound reversed; otherwise a frame of the machine,
// whose state goes on the stack. False if the stack is empty: nothing was drawn, and picture and sound
// are unchanged.
bool EmuStep(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
             EMU_AUDIO_FRAME* audio, bool rewind);

// Length of a frame in microseconds, single precision, truncated; 0 without samples.
[[nodiscard]] uint32_t EmuFrameMicroseconds(uint32_t sampleCount, uint32_t sampleRate);

// Whether the picture itself shows fast forward and rewinding; by default it does. A window shows a mark of its own.
void EmuShowSpeedGlyphs(bool show);

// Steps in a round while "Fast Forward" is down: a negative setting means 2, one above 10 means 10.
[[nodiscard]] uint32_t EmuFastForwardSteps(int32_t setting);

// Which hotkeys are down. Nothing is down for a session that is not the active one.
struct HOTKEYS {
    bool saveState = false;
    bool loadState = false;
    bool fastForward = false;
    bool rewind = false;
    bool pause = false;
    bool frameStep = false;
    bool slowMotion = false;
    bool toggleFast = false;
    bool reset = false;
};
[[nodiscard]] HOTKEYS EmuPollHotkeys(uint32_t key);

// The speed that the player has chosen; it stays until he chooses another one. Keys that are held come first.
enum class PlaySpeed : uint8_t { kNormal, kFast, kHalf, kQuarter };

// What a session's thread keeps from one round to the next.
struct FRAME_LOOP {
    FRAME_LOOP(); // reads emu_fastforward once, for the life of the session

    SOUND_FRAME sound;
    InputLooker hotkeys; // read once a round, however many frames it runs
    uint32_t fastForwardSteps;
    HOTKEYS before; // of the previous round
    PlaySpeed speed = PlaySpeed::kNormal;
    uint32_t slowPart = 0;         // rounds that the newest frame of slow motion has been shown for
    uint8_t slowHold = 0;          // of that frame
    SOUND_FRAME made;              // sound that no machine made: stretched, or a fade
    SoundPair lastPair{};          // of the newest sound that was submitted
    SoundPair slowBefore{};        // of the sound before that frame
    bool silent = false;           // the sound has been ended
    EMU_VIDEO_FRAME lastPicture{}; // the last one presented; the host owns its pixels
    std::vector<uint32_t> kept;    // a picture of this round that a held one was drawn over
    std::vector<uint32_t> scratch; // for rotating pictures
};

// One round of the loop. A round that draws nothing shows the picture of the round before again; one of a paused game
// presents nothing.
void EmuRound(EMU_THREAD& session, const EMU_HOST_CALLBACKS& host, FRAME_LOOP& loop,
              const HOTKEYS& keys);

// The whole life of a session's thread, until stopRequested.
void EmuThreadMain(EMU_THREAD* session);
