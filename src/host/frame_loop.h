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
//     EmuStep(*session, &input, &video, &sound.frame, false);  // picture and sound are there
//     EmuRotateFrame(video, scratch);
//
// There is no global clock: the samples that a machine made for a frame decide how long it lasts.
#pragma once

#include "host/aligned_block.h"
#include "host/session.h"
#include "settings/input_frame.h"

#include <cstdint>
#include <vector>

// The sound of the frame at hand: the record that a machine fills and the block behind it, at the
// application's rate of the moment it was made.
struct SOUND_FRAME {
    SOUND_FRAME();
    AlignedBlock<int16_t> samples;
    EMU_AUDIO_FRAME frame{};
};

// One step under the session's lock: a frame of static while it runs; with `rewind` the frame
// after the newest state of the rewind stack, its sound reversed; otherwise a frame of the machine, whose
// state goes on the stack. False when the stack is empty and nothing was drawn: picture and sound are
// then as they were.
bool EmuStep(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
             EMU_AUDIO_FRAME* audio, bool rewind);

// Turns the sound of n pairs around: pair i takes, in both channels, the left sample of pair n - 1 - i.
void EmuReverseSound(EMU_AUDIO_FRAME& audio);

// Length of a frame in microseconds; 0 without samples. Single precision, truncated.
[[nodiscard]] uint32_t EmuFrameMicroseconds(uint32_t sampleCount, uint32_t sampleRate);

// Steps in a round while "Fast Forward" is down: a negative setting gives 2, one above 10 gives 10.
[[nodiscard]] uint32_t EmuFastForwardSteps(int32_t setting);

// Which hotkeys are down. Nothing is down for a session that is not the active one.
struct HOTKEYS {
    bool saveState = false;
    bool loadState = false;
    bool fastForward = false;
    bool rewind = false;
};
[[nodiscard]] HOTKEYS EmuPollHotkeys(uint32_t key);

// What a session's thread keeps from one round to the next.
struct FRAME_LOOP {
    FRAME_LOOP(); // reads emu_fastforward, which stays as it was for the life of the session

    SOUND_FRAME sound;
    InputLooker hotkeys; // which are looked at once a round, however many frames it runs
    uint32_t fastForwardSteps;
    bool saveWasDown = false;
    bool loadWasDown = false;
    EMU_VIDEO_FRAME lastPicture{}; // as presented last; its block belongs to the host
    std::vector<uint32_t> kept;    // a picture of this round that a held one was drawn over
    std::vector<uint32_t> scratch; // for turning pictures
};

// One round of the loop. A round that draws nothing shows the picture of the round before again.
void EmuRound(EMU_THREAD& session, const EMU_HOST_CALLBACKS& host, FRAME_LOOP& loop,
              const HOTKEYS& keys);

// The whole life of a session's thread, until stopRequested.
void EmuThreadMain(EMU_THREAD* session);
