#include "host/frame_loop.h"

#include "base/audio_rate.h"
#include "host/archive.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/report.h"
#include "host/rewind.h"
#include "host/screenshot.h"
#include "host/session_list.h"
#include "host/session_private.h"
#include "host/static.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <mutex>
#include <thread>

namespace {

constexpr int32_t kDefaultFastForward = 2;
constexpr int32_t kMostFastForward = 10;
constexpr uint32_t kPausedSleep = 5000; // microseconds

// Runs a frame and brings its records into the bounds that all later stages rely on.
void RunMachine(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME& video,
                EMU_AUDIO_FRAME& audio) {
    session.machine->RunFrame(input, &video, &audio);
    EmuClampPicture(video, EmuPicturePixels(session));
    audio.sampleCount = std::min(audio.sampleCount, kAudioFramePairs);
}

bool StepBack(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME& video,
              EMU_AUDIO_FRAME& audio) {
    REWIND_STACK& stack = session.rewind;
    if (stack.rewindCount == 0) {
        return false;
    }
    // This machine saved the state a moment ago, so it takes it.
    static_cast<void>(session.machine->LoadState(stack.rewindHead.get(), stack.rewindHeadBytes));
    session.battery.rolledBack = true;
    RunMachine(session, input, video, audio);
    EmuDrawSpeedGlyph(SpeedGlyph::kBack, video);
    EmuReverseSound(audio);
    RewindPop(stack);
    ++stack.rewindSteps;
    return true;
}

// Without memory for its state a frame is missing from the stack, and nothing else.
void Record(EMU_THREAD& session, uint64_t limit) {
    if (!RewindPush(session.rewind, *session.machine, limit) && !session.rewind.rewindRefused) {
        session.rewind.rewindRefused = true;
        HostNotice("There is not enough memory to record every frame for rewinding");
    }
}

void StepForward(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME& video,
                 EMU_AUDIO_FRAME& audio) {
    session.rewind.rewindSteps = 0;
    const uint64_t limit = RewindLimitBytes(Settings().GetInt(L"emu_rewindbuffer"));
    RunMachine(session, input, video, audio);
    if (limit != 0) {
        Record(session, limit);
    }
}

// Only this session waits for the disk here.
void RunSaveHotkeys(EMU_THREAD& session, FRAME_LOOP& loop, const HOTKEYS& keys) {
    if (keys.saveState && !loop.saveWasDown && EmuSaveToArchive(session)) {
        HostNotice("State saved");
    }
    if (keys.loadState && !loop.loadWasDown) {
        bool wasThere = false;
        const bool loaded = EmuLoadFromArchive(session, &wasThere);
        HostNotice(loaded     ? "State loaded"
                   : wasThere ? "The saved state cannot be loaded"
                              : "No saved state to load");
    }
    loop.saveWasDown = keys.saveState;
    loop.loadWasDown = keys.loadState;
}

// The frames of a fast round. A machine holds a frame so that the next one is drawn over it, unseen. A
// round that ends on such a frame shows the newest picture of the round that is not held. Running
// further until there is one would play faster than the setting says. This way the frames, their sound
// and the recorded states are the same with and without held frames, and every round still shows a new
// picture.
void RunFastRound(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME& video,
                  FRAME_LOOP& loop) {
    if (loop.fastForwardSteps == 0) {
        // No frame of the machine looks, and what is tapped now must not reach it afterwards.
        const std::scoped_lock hold(session.lock);
        const InputFrame look(session.inputs, session.key);
    }
    EMU_VIDEO_FRAME kept{};
    for (uint32_t left = loop.fastForwardSteps; left > 0; --left) {
        EmuStep(session, input, &video, &loop.sound.frame, false);
        if (video.hold == 0 && left > 1) {
            loop.kept.resize(EmuPicturePixels(session));
            kept.pixels = loop.kept.data();
            EmuCopyPicture(video, kept);
        }
    }
    if (video.hold != 0 && kept.pixels != nullptr) {
        EmuCopyPicture(kept, video);
        video.hold = 0;
    }
}

void DrawRound(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
               FRAME_LOOP& loop, const HOTKEYS& keys) {
    bool drawn = false;
    if (keys.fastForward) {
        RunFastRound(session, input, *video, loop);
        drawn = loop.fastForwardSteps > 0;
    } else {
        const bool rewind = keys.rewind && Settings().GetInt(L"emu_rewindbuffer") > 0;
        drawn = EmuStep(session, input, video, &loop.sound.frame, rewind);
    }
    if (!drawn) {
        // This buffer holds some older picture; the last one shown must stay.
        EmuRepeatPicture(loop.lastPicture, *video);
    }
    if (keys.fastForward) {
        EmuDrawSpeedGlyph(SpeedGlyph::kForward, *video);
    }
}

} // namespace

SOUND_FRAME::SOUND_FRAME()
    : samples(AllocateAligned<int16_t>(size_t{kAudioFramePairs} * 2)) {
    frame.samples = samples.get();
    frame.sampleRate = AudioRate();
}

FRAME_LOOP::FRAME_LOOP()
    : fastForwardSteps(EmuFastForwardSteps(Settings().GetInt(L"emu_fastforward"))) {}

uint32_t EmuFastForwardSteps(int32_t setting) {
    const int32_t steps = setting < 0 ? kDefaultFastForward : std::min(setting, kMostFastForward);
    return static_cast<uint32_t>(steps);
}

uint32_t EmuFrameMicroseconds(uint32_t sampleCount, uint32_t sampleRate) {
    if (sampleCount == 0 || sampleRate == 0) {
        return 0;
    }
    const float seconds = static_cast<float>(sampleCount) / static_cast<float>(sampleRate);
    return static_cast<uint32_t>(std::min(seconds * 1000000.0f, 4294967040.0f));
}

void EmuReverseSound(EMU_AUDIO_FRAME& audio) {
    const size_t pairs = audio.sampleCount;
    for (size_t i = 0, j = pairs; i < j--; ++i) {
        const int16_t early = audio.samples[2 * i];
        const int16_t late = audio.samples[2 * j];
        audio.samples[2 * i] = audio.samples[2 * i + 1] = late;
        audio.samples[2 * j] = audio.samples[2 * j + 1] = early;
    }
}

HOTKEYS EmuPollHotkeys(uint32_t key) {
    HOTKEYS keys;
    keys.saveState = InputIsDown(key, L"Save State");
    keys.loadState = InputIsDown(key, L"Load State");
    keys.fastForward = InputIsDown(key, L"Fast Forward");
    keys.rewind = InputIsDown(key, L"Rewind");
    return keys;
}

bool EmuStep(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
             EMU_AUDIO_FRAME* audio, bool rewind) {
    // A machine slower than real time would leave no gap for threads that wait for a frame boundary.
    while (session.lockWaiters != 0) {
        std::this_thread::yield();
    }
    const std::scoped_lock hold(session.lock);
    const InputFrame look(session.inputs, session.key);
    if (session.showStatic != 0) {
        EmuStaticFrame(session, *video, *audio);
        return true;
    }
    if (rewind) {
        return StepBack(session, input, *video, *audio);
    }
    StepForward(session, input, *video, *audio);
    return true;
}

void EmuRound(EMU_THREAD& session, const EMU_HOST_CALLBACKS& host, FRAME_LOOP& loop,
              const HOTKEYS& keys) {
    EMU_VIDEO_FRAME* const video = host.getVideoFrame(&session);
    EMU_INPUT_STATE* const input = host.getInput(&session);
    if (video == nullptr || input == nullptr) {
        // The host could not open the session, which waits to be stopped.
        host.present(&session, 0);
        return;
    }
    RunSaveHotkeys(session, loop, keys);
    DrawRound(session, input, video, loop, keys);
    EmuTakeScreenshot(session, *video);
    EmuRotateFrame(*video, loop.scratch);
    loop.lastPicture = *video;

    EMU_AUDIO_FRAME& audio = loop.sound.frame;
    if (audio.sampleCount != 0) {
        host.submitAudio(&session, &audio);
    }
    host.present(&session, EmuFrameMicroseconds(audio.sampleCount, audio.sampleRate));
}

void EmuThreadMain(EMU_THREAD* session) {
    const EMU_HOST_CALLBACKS host = SessionHost();
    int token = 0;
    {
        FRAME_LOOP loop;
        token = host.threadStart(0);
        {
            const std::scoped_lock hold(SessionListLock());
            host.open(session);
        }
        while (session->stopRequested == 0) {
            if (session->paused) {
                HostClock().sleepMicroseconds(kPausedSleep);
                continue;
            }
            loop.hotkeys.ForgetAfterPause();
            session->inputs.ForgetAfterPause();
            const InputFrame look(loop.hotkeys, session->key);
            EmuRound(*session, host, loop, EmuPollHotkeys(session->key));
        }
    }
    // The record may be gone from here on. A stop must not wait for the processor's release.
    session->stopRequested = 0;
    host.threadEnd(token);
    SessionThreadEnded();
}
