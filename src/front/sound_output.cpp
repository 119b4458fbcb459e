#include "front/sound_output.h"

#include "audio/sound.h"
#include "front/event_pump.h"
#include "front/notices.h"

#include <utility>

namespace {

constexpr int64_t kRetryMicroseconds = 2'000'000;
constexpr int64_t kPatienceMicroseconds = 3'000'000; // with the first attempt

bool OpenProgramsSound(std::string& error) {
    if (!OpenSoundDevice(error)) {
        return false;
    }
    StartSoundPump();
    return true;
}

void CloseProgramsSound() {
    StopSoundPump();
    CloseSoundDevice();
}

} // namespace

SoundOutput::SoundOutput()
    : SoundOutput({OpenProgramsSound, CloseProgramsSound, SoundDeviceNumber}) {}

SoundOutput::SoundOutput(SOUND_OUTPUT_CALLS wanted)
    : calls(std::move(wanted)) {}

SoundOutput::~SoundOutput() {
    Stop();
}

void SoundOutput::Start(int64_t now) {
    Stop();
    silenceSaid = false;
    worker = std::thread([this] { Work(); });
    started = now;
    Order(Task::kOpen);
}

void SoundOutput::Watch(const PUMP_EVENTS& events, int64_t now) {
    if (state == State::kStopped) {
        return;
    }
    if (events.outputGone != 0) {
        gone = events.outputGone;
    }
    if (Trying()) {
        SayThatItDoesNotAnswer(now);
        return;
    }
    if (state == State::kTrying) {
        Learn(now);
    }
    if (state == State::kOpen && gone != 0 && gone == calls.number()) {
        Lose();
    }
    gone = 0;
    if (state == State::kSilent && now - lastTry >= kRetryMicroseconds) {
        Order(Task::kOpen);
    }
}

void SoundOutput::Stop() {
    if (worker.joinable()) {
        Order(Task::kEnd);
        worker.join();
        task = Task::kNone; // for the next Start; there is no other thread now
    }
    state = State::kStopped;
}

bool SoundOutput::Trying() {
    const std::lock_guard hold(lock);
    return state == State::kTrying && task != Task::kNone;
}

void SoundOutput::Order(Task wanted) {
    state = State::kTrying;
    {
        const std::lock_guard hold(lock);
        task = wanted;
    }
    changed.notify_all();
}

void SoundOutput::SayThatItDoesNotAnswer(int64_t now) {
    if (!silenceSaid && now - started >= kPatienceMicroseconds) {
        silenceSaid = true;
        PostReport("no sound: the device does not answer; playing without sound");
    }
}

// The attempt has ended.
void SoundOutput::Learn(int64_t now) {
    bool open = false;
    std::string why;
    {
        const std::lock_guard hold(lock);
        open = opened;
        why = reason;
    }
    state = open ? State::kOpen : State::kSilent;
    lastTry = now;
    if (open && silenceSaid) {
        PostNotice("Sound is back");
    } else if (!open && !silenceSaid) {
        PostReport(why + "; playing without sound");
    }
    silenceSaid = !open;
}

// Another output may already be available.
void SoundOutput::Lose() {
    PostReport("the sound device is gone; playing on without sound");
    silenceSaid = true;
    Order(Task::kReopen);
}

void SoundOutput::Work() {
    std::unique_lock hold(lock);
    for (;;) {
        changed.wait(hold, [this] { return task != Task::kNone; });
        const Task current = task;
        hold.unlock();
        if (current != Task::kOpen) {
            calls.close();
        }
        if (current == Task::kEnd) {
            return;
        }
        std::string error;
        const bool done = calls.open(error);
        hold.lock();
        opened = done;
        reason = error;
        if (task != Task::kEnd) {
            task = Task::kNone;
        }
        changed.notify_all();
    }
}
