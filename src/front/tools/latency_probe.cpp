#include "front/tools/latency_probe.h"

#include "base/random.h"
#include "front/application.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/key_injector.h"
#include "host/host_data.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kPresses = 20;
constexpr uint64_t kStillPictures = 12;   // in a row, before a press
constexpr int64_t kPatience = 10'000'000; // microseconds to wait for a picture
constexpr int64_t kFewestPause = 20'000;  // microseconds after the picture has stopped changing
constexpr int kPauseSpread = 50'000;      // microseconds on top, at random
constexpr double kMicroseconds = 1000.0;  // in a millisecond

class Probe {
public:
    explicit Probe(Application& program)
        : application(program) {
        application.Sets().KeepPicture(true);
    }

    // Runs rounds until `done`; false when the program or the patience ends.
    template <typename Done>
    bool RunUntil(Done done) {
        const int64_t start = Now();
        while (!done()) {
            if (!application.Round() || Now() - start > kPatience) {
                return false;
            }
        }
        return true;
    }

    bool WaitForStillPicture() {
        uint64_t shown = application.Sets().PicturesShown();
        uint64_t still = 0;
        std::vector<uint32_t> last;
        return RunUntil([&] {
            if (application.Sets().PicturesShown() == shown) {
                return still >= kStillPictures;
            }
            shown = application.Sets().PicturesShown();
            still = application.Sets().Kept().pixels == last ? still + 1 : 0;
            last = application.Sets().Kept().pixels;
            return still >= kStillPictures;
        });
    }

    bool Pause() {
        const int64_t until = Now() + kFewestPause + RandomNumber() * kPauseSpread / 32768;
        return RunUntil([&] { return Now() >= until; });
    }

    bool WaitForChange() {
        const std::vector<uint32_t> before = application.Sets().Kept().pixels;
        return RunUntil([&] { return application.Sets().Kept().pixels != before; });
    }

    static int64_t Now() { return HostClock().nowMicroseconds(); }

private:
    Application& application;
};

} // namespace

int MeasureLatency(Application& application, size_t action) {
    Probe probe(application);
    std::vector<double> milliseconds;
    for (int press = 0; press < kPresses; ++press) {
        if (!probe.WaitForStillPicture() || !probe.Pause()) {
            Complain("latency: the picture does not stop changing");
            return kExitFailed;
        }
        const int64_t start = Probe::Now();
        if (!InjectAction(action, true)) {
            Complain("latency: the action has no key");
            return kExitFailed;
        }
        const bool changed = probe.WaitForChange();
        milliseconds.push_back(static_cast<double>(Probe::Now() - start) / kMicroseconds);
        static_cast<void>(InjectAction(action, false));
        if (!changed) {
            Complain("latency: the picture does not react to the key");
            return kExitFailed;
        }
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("latency of %d presses: least %.1f ms, median %.1f ms, most %.1f ms\n", kPresses,
                milliseconds.front(), milliseconds[milliseconds.size() / 2], milliseconds.back());
    return kExitDone;
}
