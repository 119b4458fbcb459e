#include "front/save_keeper.h"

#include "base/helper_thread.h"
#include "host/session_saves.h"

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

void SaveKeeper::Run() {
    HelperBegins();
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
