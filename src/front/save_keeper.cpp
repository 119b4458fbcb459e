#include "front/save_keeper.h"

#include "front/processor_binder.h"
#include "host/session_saves.h"

#include <SDL_thread.h>

#include <chrono>
#include <mutex>

namespace {

constexpr std::chrono::seconds kPeriod{1};
constexpr int kResumePeriods = 10;

} // namespace

SaveKeeper::SaveKeeper()
    : thread([this] { Run(); }) {}

SaveKeeper::~SaveKeeper() {
    {
        const std::scoped_lock hold(lock);
        end = true;
    }
    changed.notify_all();
    thread.join();
}

// The main thread's priority and processor, which this thread inherits, are for drawing.
void SaveKeeper::Run() {
    SDL_SetThreadPriority(SDL_THREAD_PRIORITY_LOW);
    UseAllProcessors();
    int periods = 0;
    std::unique_lock hold(lock);
    while (!changed.wait_for(hold, kPeriod, [this] { return end; })) {
        hold.unlock();
        EmuKeepBatteries();
        if (++periods % kResumePeriods == 0) {
            EmuKeepResumeFiles();
        }
        hold.lock();
    }
}
