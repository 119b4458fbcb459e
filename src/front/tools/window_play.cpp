// Playing in the window: one game until the window is closed.
#include "base/files.h"
#include "front/application.h"
#include "front/demos.h"
#include "front/notices.h"
#include "front/run_settings.h"
#include "front/session_callbacks.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/input_script.h"
#include "front/tools/key_injector.h"
#include "front/tools/latency_probe.h"
#include "front/tools/play.h"
#include "front/tools/screenshots.h"
#include "front/tools/window_picture.h"
#include "front/unread_notices.h"
#include "host/session.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr const char* kFirstGame = "sms-luciole";
constexpr const char* kOffscreenPicture = ".\\screenshots\\without-a-display.png";
constexpr uint32_t kOffscreenFrames = 420; // about seven seconds

// Options that only make sense with --headless.
const char* OptionForHeadless(const PLAY_OPTIONS& options) {
    if (!options.wavFile.empty()) {
        return "--wav";
    }
    if (!options.hashFile.empty()) {
        return "--frame-hashes";
    }
    if (!options.saveState.empty() || !options.loadState.empty()) {
        return "--save-state and --load-state";
    }
    if (!options.peeks.empty() || !options.dumps.empty()) {
        return "--peek and --dump";
    }
    return nullptr;
}

class WindowRun {
public:
    explicit WindowRun(const PLAY_OPTIONS& playOptions)
        : options(playOptions) {}

    // Returns an exit code; the error has been reported.
    int ReadOptions() {
        std::string error;
        if (const char* option = OptionForHeadless(options); option != nullptr) {
            Complain(std::string(option) + ": only with --headless");
            return kExitUsage;
        }
        if (!ReadScreenshots(options.screenshots, options.frames, screenshots, error)) {
            Complain(error);
            return kExitUsage;
        }
        if (!options.latencyAction.empty() && !FindAction(options.latencyAction, latencyAction)) {
            Complain("--latency " + options.latencyAction +
                     ": unknown action; \"ombrelune actions\" lists them all");
            return kExitUsage;
        }
        if (!options.inputFile.empty() && !script.Load(options.inputFile, error)) {
            Complain(error);
            return kExitFailed;
        }
        return kExitDone;
    }

    int Run(const OPENED_GAME& opened) {
        std::string error;
        if (!options.latencyAction.empty()) {
            application.LeaveSavesAlone();
        }
        if (options.frames != 0 || !options.screenshots.empty() || !options.inputFile.empty()) {
            static_cast<void>(SetForThisRun("app_keycard", "0")); // nobody has to be told
        }
        if (!StartSomewhere(error)) {
            Complain(error);
            return kExitFailed;
        }
        TellUnreadNotices();
        int code = kExitFailed;
        if (!application.Play(opened, error)) {
            PostReport(error);
        } else if (!options.latencyAction.empty()) {
            code = MeasureLatency(application, latencyAction);
        } else {
            code = PlayOn();
        }
        application.Stop();
        KeepUnreadNotices();
        return code;
    }

private:
    // In a window, or off the screen without a display.
    bool StartSomewhere(std::string& error) {
        if (application.Start(error)) {
            return true;
        }
        if (SDL_GetHint(SDL_HINT_VIDEODRIVER) != nullptr) {
            return false;
        }
        Complain(error + "; running off the screen for some seconds");
        application.LeaveSavesAlone();
        SDL_SetHint(SDL_HINT_VIDEODRIVER, "offscreen");
        offScreen = true;
        lastFrame = options.frames != 0 ? options.frames : kOffscreenFrames;
        if (screenshots.empty()) {
            SCREENSHOT_REQUEST last;
            last.path = ResolvePath(kOffscreenPicture).string();
            screenshots.push_back(last);
        }
        return application.Start(error);
    }

    int PlayOn() {
        lastFrame = std::max(lastFrame, options.frames);
        bool over = false;
        bool ended = false;
        while (!over && !ended && application.Round()) {
            const uint32_t frame = FramesPresented();
            for (const INPUT_EVENT& event : script.TakeEarliest(frame + 1)) {
                if (!InjectAction(event.action, event.down)) {
                    Complain(options.inputFile + ": names an action without a key");
                }
            }
            over = lastFrame != 0 && application.Sets().FrameShown() >= lastFrame;
            // A machine that cannot go on was turned off. A user may start another game in the window;
            // a run with --frames would wait forever.
            ended = lastFrame != 0 && !over && !application.Playing();
            if (!TakeScreenshots(application.Sets().FrameShown(), false)) {
                return kExitFailed;
            }
        }
        if (options.frames != 0) {
            std::printf("%u frames | %s\n", FramesPresented(), EmuFormatStats().c_str());
        }
        const bool taken = TakeScreenshots(application.Sets().FrameShown(), true);
        // Also if the game ended, so that a frame never came.
        const bool missing = ComplainOfMissing();
        return taken && !ended && !missing ? kExitDone : kExitFailed;
    }

    // Reports the requested screenshots whose frame never came.
    bool ComplainOfMissing() const {
        bool missing = false;
        for (const SCREENSHOT_REQUEST& shot : screenshots) {
            if (!shot.path.empty()) {
                Complain(shot.path + ": not written, for frame " + std::to_string(shot.frame) +
                         " was never shown");
                missing = true;
            }
        }
        return missing;
    }

    // Writes the due screenshots of the composed window. False, after a report, if one cannot be
    // written.
    bool TakeScreenshots(uint32_t frame, bool last) {
        for (SCREENSHOT_REQUEST& shot : screenshots) {
            const bool due = shot.frame == 0 ? last : shot.frame <= frame;
            if (shot.path.empty() || !due) {
                continue;
            }
            if (!WriteWindowPicture(application, shot.path)) {
                return false;
            }
            if (offScreen) {
                std::fprintf(stderr, "The last picture is in %s\n", shot.path.c_str());
            }
            shot.path.clear();
        }
        return true;
    }

    const PLAY_OPTIONS& options;
    Application application;
    InputScript script;
    std::vector<SCREENSHOT_REQUEST> screenshots;
    size_t latencyAction = 0;
    uint32_t lastFrame = 0; // 0: until the window is closed
    bool offScreen = false;
};

} // namespace

int PlayInWindow(const PLAY_OPTIONS& options, const OPENED_GAME& opened) {
    WindowRun run(options);
    if (const int code = run.ReadOptions(); code != kExitDone) {
        return code;
    }
    return run.Run(opened);
}

int PlayWithoutGame() {
    PLAY_OPTIONS options;
    options.game = std::string("demo:") + kFirstGame;
    OPENED_GAME opened;
    std::string error;
    if (const int code = OpenForPlay(options, opened, error); code != kExitDone) {
        Complain(error);
        return code;
    }
    std::string others;
    for (const DEMO& demo : Demos()) {
        if (std::string(demo.name) != kFirstGame && !demo.isTest) {
            others.append(others.empty() ? "" : ", ").append("demo:").append(demo.name);
        }
    }
    std::fprintf(stderr,
                 "Playing %s: arrow keys, A and S; drop a game on the window or \"play GAME\" for "
                 "others: %s.\n",
                 opened.title.c_str(), others.c_str());
    return PlayInWindow(options, opened);
}
