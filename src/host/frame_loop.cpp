#include "host/frame_loop.h"

#include "host/archive.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/report.h"
#include "host/rewind.h"
#include "host/screenshot.h"
#include "host/session_list.h"
#include "host/session_private.h"
#include "host/static.h"
#include "machine/side_by_side.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace {

constexpr int32_t kDefaultFastForward = 2;
constexpr int32_t kMostFastForward = 10;
constexpr uint32_t kPausedSleepMs = 5;

enum class RoundKind : uint8_t { kPlay, kFast, kBack, kSlow, kStep, kStill };

std::atomic<bool> gSpeedGlyphs{true};

void DrawGlyph(SpeedGlyph direction, EMU_VIDEO_FRAME& video) {
    if (gSpeedGlyphs) {
        EmuDrawSpeedGlyph(direction, video);
    }
}

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
    DrawGlyph(SpeedGlyph::kBack, video);
    EmuReverseSound(audio);
    RewindPop(stack);
    ++stack.rewindSteps;
    return true;
}

// Without memory for its state a frame is missing from the stack, and nothing else.
void Record(EMU_THREAD& session, uint64_t limit) {
    bool recorded = false;
    try {
        uint32_t size = 0;
        StateBlob state = session.machine->SaveState(size);
        recorded = RewindPush(session.rewind, std::move(state), size, limit);
    } catch (const std::bad_alloc&) {
        recorded = false;
    }
    if (!recorded && !session.rewind.rewindRefused) {
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

// Only this session waits for the disk here. Returns whether a state was loaded.
bool RunSaveHotkeys(EMU_THREAD& session, const HOTKEYS& pressed) {
    if (pressed.saveState && EmuSaveToArchive(session)) {
        HostNotice("State saved");
    }
    if (!pressed.loadState) {
        return false;
    }
    bool wasThere = false;
    const bool loaded = EmuLoadFromArchive(session, &wasThere);
    HostNotice(loaded     ? "State loaded"
               : wasThere ? "The saved state cannot be loaded"
                          : "No saved state to load");
    return loaded;
}

// The keys that have gone down since the round before.
HOTKEYS NewPresses(const HOTKEYS& now, const HOTKEYS& before) {
    HOTKEYS pressed;
    for (const auto key : {&HOTKEYS::saveState, &HOTKEYS::loadState, &HOTKEYS::fastForward,
                           &HOTKEYS::rewind, &HOTKEYS::pause, &HOTKEYS::frameStep,
                           &HOTKEYS::slowMotion, &HOTKEYS::toggleFast, &HOTKEYS::reset}) {
        pressed.*key = now.*key && !(before.*key);
    }
    return pressed;
}

void ChooseSpeed(FRAME_LOOP& loop, PlaySpeed speed) {
    switch (loop.speed = speed) {
    case PlaySpeed::kNormal: HostNotice("Normal speed"); break;
    case PlaySpeed::kFast: HostNotice("Fast forward"); break;
    case PlaySpeed::kHalf: HostNotice("Slow motion: half speed"); break;
    case PlaySpeed::kQuarter: HostNotice("Slow motion: quarter speed"); break;
    }
}

PlaySpeed NextSlower(PlaySpeed speed) {
    switch (speed) {
    case PlaySpeed::kHalf: return PlaySpeed::kQuarter;
    case PlaySpeed::kQuarter: return PlaySpeed::kNormal;
    default: return PlaySpeed::kHalf;
    }
}

// Does what was asked for by presses. Returns whether a paused game is to run one frame.
bool RunTimeHotkeys(EMU_THREAD& session, FRAME_LOOP& loop, const HOTKEYS& pressed) {
    if (pressed.reset) {
        const std::scoped_lock hold(session.lock);
        session.machine->Reset();
        HostNotice("Reset");
    }
    if (pressed.slowMotion) {
        ChooseSpeed(loop, NextSlower(loop.speed));
    }
    if (pressed.toggleFast) {
        ChooseSpeed(loop, loop.speed == PlaySpeed::kFast ? PlaySpeed::kNormal : PlaySpeed::kFast);
    }
    if (pressed.frameStep) {
        if (!session.pausedByPlayer.exchange(true)) {
            HostNotice("Paused");
        }
    } else if (pressed.pause) {
        session.pausedByPlayer = !session.pausedByPlayer;
        HostNotice(session.pausedByPlayer ? "Paused" : "Playing on");
    }
    return pressed.frameStep;
}

// A paused game can be rewound, and shows what was loaded by running a frame of it.
RoundKind KindOfRound(const EMU_THREAD& session, const FRAME_LOOP& loop, const HOTKEYS& keys,
                      bool step) {
    const bool rewinds = keys.rewind && Settings().GetInt(L"emu_rewindbuffer") > 0;
    if (session.pausedByPlayer) {
        return step ? RoundKind::kStep : rewinds ? RoundKind::kBack : RoundKind::kStill;
    }
    if (keys.fastForward) {
        return RoundKind::kFast;
    }
    if (rewinds) {
        return RoundKind::kBack;
    }
    switch (loop.speed) {
    case PlaySpeed::kFast: return RoundKind::kFast;
    case PlaySpeed::kHalf:
    case PlaySpeed::kQuarter: return RoundKind::kSlow;
    default: return RoundKind::kPlay;
    }
}

// What is pressed while no frame of the machine looks must not reach it afterwards.
void ForgetTaps(EMU_THREAD& session) {
    const std::scoped_lock hold(session.lock);
    const InputFrame look(session.inputs, session.key);
}

void Submit(EMU_THREAD& session, const EMU_HOST_CALLBACKS& host, FRAME_LOOP& loop,
            EMU_AUDIO_FRAME& audio) {
    if (audio.sampleCount != 0) {
        if (std::exchange(loop.silent, false)) {
            EmuFadeIn(audio);
        }
        loop.lastPair = EmuLastPair(audio, loop.lastPair);
        host.submitAudio(&session, &audio);
    }
}

void EndSound(EMU_THREAD& session, const EMU_HOST_CALLBACKS& host, FRAME_LOOP& loop) {
    if (!std::exchange(loop.silent, true)) {
        EmuFadeOut(std::exchange(loop.lastPair, SoundPair{}), loop.made.frame);
        host.submitAudio(&session, &loop.made.frame);
    }
}

void StandStill(EMU_THREAD& session, const EMU_HOST_CALLBACKS& host, FRAME_LOOP& loop) {
    EndSound(session, host, loop);
    ForgetTaps(session);
    if (loop.lastPicture.pixels != nullptr) {
        EmuTakeScreenshot(session, loop.lastPicture);
    }
    HostClock().sleepMilliseconds(kPausedSleepMs);
}

// The frames of a fast round. A machine holds a frame so that the next one is drawn over it, unseen. A
// round that ends on such a frame shows the newest picture of the round that is not held. Running
// further until there is one would play faster than the setting says. This way the frames, their sound
// and the recorded states are the same with and without held frames, and every round still shows a new
// picture.
void RunFastRound(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME& video,
                  FRAME_LOOP& loop) {
    if (loop.fastForwardSteps == 0) {
        ForgetTaps(session);
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

// A frame of slow motion is shown for two or four rounds, with a piece of its stretched sound in each. Returns false in
// all but the first, which draw nothing.
bool RunSlowRound(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME& video,
                  FRAME_LOOP& loop) {
    const uint32_t parts = loop.speed == PlaySpeed::kHalf ? 2 : 4;
    const uint32_t part = loop.slowPart % parts;
    if (part == 0) {
        loop.slowBefore = loop.lastPair;
        EmuStep(session, input, &video, &loop.sound.frame, false);
        loop.slowHold = video.hold;
    }
    video.hold = loop.slowHold;
    EmuStretchSound(loop.sound.frame, part, parts, loop.slowBefore, loop.made.frame);
    loop.slowPart = (part + 1) % parts;
    return part == 0;
}

int32_t SpeedOfRound(const FRAME_LOOP& loop, RoundKind kind) {
    switch (kind) {
    case RoundKind::kFast: return static_cast<int32_t>(loop.fastForwardSteps);
    case RoundKind::kBack: return -1;
    default: return 1;
    }
}

void DrawRound(EMU_THREAD& session, EMU_INPUT_STATE* input, EMU_VIDEO_FRAME* video,
               FRAME_LOOP& loop, RoundKind kind) {
    bool drawn = false;
    const bool isStatic = session.showStatic != 0;
    if (kind == RoundKind::kFast) {
        RunFastRound(session, input, *video, loop);
        drawn = loop.fastForwardSteps > 0;
    } else if (kind == RoundKind::kSlow) {
        drawn = RunSlowRound(session, input, *video, loop);
    } else {
        drawn = EmuStep(session, input, video, &loop.sound.frame, kind == RoundKind::kBack);
    }
    if (!drawn) {
        // This buffer holds some older picture; the last one shown must stay.
        EmuRepeatPicture(loop.lastPicture, *video);
    } else if (const auto* const screens = dynamic_cast<CSideBySide*>(session.machine.get());
               screens != nullptr && !isStatic) {
        EmuDivideScreens(screens->Screens(), *video, EmuPicturePixels(session));
    }
    if (kind == RoundKind::kFast) {
        DrawGlyph(SpeedGlyph::kForward, *video);
    }
}

} // namespace

void EmuShowSpeedGlyphs(bool show) {
    gSpeedGlyphs = show;
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

HOTKEYS EmuPollHotkeys(uint32_t key) {
    HOTKEYS keys;
    keys.saveState = InputIsDown(key, L"Save State");
    keys.loadState = InputIsDown(key, L"Load State");
    keys.fastForward = InputIsDown(key, L"Fast Forward");
    keys.rewind = InputIsDown(key, L"Rewind");
    keys.pause = InputIsDown(key, L"Pause");
    keys.frameStep = InputIsDown(key, L"Frame Step");
    keys.slowMotion = InputIsDown(key, L"Slow Motion");
    keys.toggleFast = InputIsDown(key, L"Toggle Fast Forward");
    keys.reset = InputIsDown(key, L"Reset");
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
    const HOTKEYS pressed = NewPresses(keys, std::exchange(loop.before, keys));
    const bool loaded = RunSaveHotkeys(session, pressed);
    const bool step = RunTimeHotkeys(session, loop, pressed) || loaded;
    const RoundKind kind = KindOfRound(session, loop, keys, step);
    session.speed = SpeedOfRound(loop, kind);
    if (kind != RoundKind::kSlow) {
        loop.slowPart = 0;
    }
    if (kind == RoundKind::kStill) {
        StandStill(session, host, loop);
        return;
    }
    DrawRound(session, input, video, loop, kind);
    EmuTakeScreenshot(session, *video);
    EmuRotateFrame(*video, loop.scratch);
    loop.lastPicture = *video;

    EMU_AUDIO_FRAME& audio = kind == RoundKind::kSlow ? loop.made.frame : loop.sound.frame;
    if (kind != RoundKind::kStep) { // a single frame would be a click
        Submit(session, host, loop, audio);
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
            if (session->paused || session->waitsForFocus) {
                EndSound(*session, host, loop);
                HostClock().sleepMilliseconds(kPausedSleepMs);
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
