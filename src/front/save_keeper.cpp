#include "front/save_keeper.h"

#include "base/helper_thread.h"
#include "host/session_saves.h"

#include <chrono>
#include <mutex>

namespace {

constexpr std::chrono::seconds kPeriod{1};
constexpr int kResumePeriods = 10;

} // namespace

void KeepSaves(const std::function<bool()>& nextSecond, const std::function<void()>& keepBatteries,
               const std::function<void()>& keepResumeFiles) {
    for (int periods = 1; nextSecond(); ++periods) {
        keepBatteries();
        if (periods % kResumePeriods == 0) {
            keepResumeFiles();
        }
    }
}

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
    const auto nextSecond = [this] {
        std::unique_lock hold(lock);
        return !changed.wait_for(hold, kPeriod, [this] { return end; });
    };
    const auto everySecond = [] {
        EmuKeepBatteries();
        EmuKeepRecordings();
    };
    KeepSaves(nextSecond, everySecond, EmuKeepResumeFiles);
}
