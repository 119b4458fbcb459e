// `ombrelune room`: the room in a window, or its frame times, or a picture of it.
#include "base/files.h"
#include "base/processor_time.h"
#include "front/application.h"
#include "front/demos.h"
#include "front/notices.h"
#include "front/room_screen.h"
#include "front/run_settings.h"
#include "front/session_callbacks.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/window_picture.h"
#include "front/unread_notices.h"
#include "gui/handler.h"
#include "gui/manager.h"
#include "gui/surface.h"
#include "host/host_data.h"
#include "host/session_statistics.h"
#include "room/image_decoder.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>

namespace {

// The program's own games in the order of the televisions: four sets, two cabinets, the handheld, the big set.
constexpr const char* kOwnGames[] = {
    "demo:sms-luciole",    "demo:nes-grelot",     "demo:nes-ecume",  "demo:sms-bench",
    "demo:arcade-skywren", "demo:arcade-skywren", "demo:gg-glimmer", "demo:md-mistral"};
constexpr size_t kSets = 8;
constexpr int64_t kWarmUp = 2000000;      // microseconds until a measurement begins
constexpr int64_t kPictureWait = 6000000; // longer than television static

// One that does not open is reported, and the others are played. False if none opens.
bool OpenGames(const std::vector<std::string>& names, std::vector<OPENED_GAME>& games) {
    for (const std::string& name : names) {
        OPENED_GAME opened;
        std::string error;
        if (OpenForPlaying(name, {}, opened, error)) {
            games.push_back(std::move(opened));
        } else {
            Complain(error);
        }
    }
    return !games.empty();
}

bool ApplySettings(const std::vector<std::string>& settings) {
    for (const std::string& setting : settings) {
        const size_t equals = setting.find('=');
        if (equals == std::string::npos) {
            Complain("--set " + setting + ": must be NAME=VALUE");
            return false;
        }
        const std::string name = setting.substr(0, equals);
        switch (SetForThisRun(name, setting.substr(equals + 1))) {
        case RunSetting::kSet: break;
        case RunSetting::kUnknown:
            Complain("--set " + setting + ": there is no setting " + name);
            return false;
        case RunSetting::kNoValue:
            Complain("--set " + setting + ": " + name + " is " + RunSettingValues(name));
            return false;
        }
    }
    return true;
}

double Milliseconds(int64_t microseconds) {
    return static_cast<double>(microseconds) / 1000.0;
}

// Milliseconds.
struct SPREAD {
    double mean;
    double median;
    double worst; // mean of the longest hundredth
};

SPREAD SpreadOf(std::vector<int64_t>& times) {
    std::sort(times.begin(), times.end());
    const size_t worst = std::max<size_t>(times.size() / 100, 1);
    const auto mean = [](auto from, auto to) {
        return Milliseconds(std::accumulate(from, to, int64_t{0})) / static_cast<double>(to - from);
    };
    return {mean(times.begin(), times.end()), Milliseconds(times[times.size() / 2]),
            mean(times.end() - static_cast<std::ptrdiff_t>(worst), times.end())};
}

// The boxes of a game in a window over the room.
class CoverWindow : public CGhostGUIHandler {
public:
    CoverWindow(RoomScreen& room, const ROOM_OPTIONS& options) {
        CGhostManager& manager = CGhostManager::Get();
        const GUI_RECT screen = manager.ScreenRect();
        window = manager.CreateWindow(nullptr, kWindowBackgroundPass, this, false);
        manager.SetWindowPos(window, (screen.width - kWidth) / 2, (screen.height - kHeight) / 2,
                             kWidth, kHeight);
        std::vector<ROOM_IMAGE> images;
        std::vector<COVER_IMAGE> covers;
        for (const std::filesystem::path& path : options.covers) {
            std::vector<uint8_t> bytes;
            std::string error;
            constexpr uint64_t kMostBytes = 64 << 20;
            if (!ReadFile(path, bytes, error, kMostBytes)) {
                Complain(error);
            }
            images.push_back(DecodeRoomImage(bytes));
        }
        for (const ROOM_IMAGE& image : images) {
            const int kind = static_cast<int>(covers.size()) % 2; // one of each in turn
            covers.push_back({image.pixels, image.width, image.height, kind});
        }
        room.SetCovers(covers, options.cabinet);
        CoverView& view = room.Covers();
        for (size_t slot = 0; slot < options.turned; ++slot) {
            view.TurnOver(slot);
        }
    }
    ~CoverWindow() override {
        CGhostManager::Get().DestroyWindow(window);
        CGhostManager::Get().Tick(0);
    }
    CoverWindow(const CoverWindow&) = delete;
    CoverWindow& operator=(const CoverWindow&) = delete;

    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        surface->FillRect({0, 0, surface->Width(), surface->Height()}, kNight);
    }

private:
    static constexpr int32_t kWidth = 840; // units
    static constexpr int32_t kHeight = 600;
    static constexpr uint32_t kNight = 0xF012162E;

    GHOSTMANAGER_WINDOW* window;
};

class RoomRun {
public:
    explicit RoomRun(const ROOM_OPTIONS& roomOptions)
        : options(roomOptions) {}

    int Run(std::vector<OPENED_GAME> games) {
        const bool unattended = options.benchSeconds > 0.0 || !options.screenshot.empty();
        if (unattended) {
            application.LeaveSavesAlone();
        }
        std::string error;
        if (!application.Start(error)) {
            Complain(error);
            return kExitFailed;
        }
        TellUnreadNotices();
        // Named games play at once; of our own the sets show all, and each set has one to follow.
        const size_t sets = options.games.empty() ? kSets : std::min(kSets, games.size());
        room = &application.ShowRoom(std::move(games));
        application.SetCeilingLight(!options.dark);
        if (!options.view.empty()) {
            const std::vector<float>& v = options.view;
            room->StandAt({v[0], v[1], v[2]}, {v[3], v[4], v[5]});
        }
        room->ShowHints(!options.noHints);
        std::unique_ptr<CoverWindow> coverWindow;
        if (!options.covers.empty()) {
            coverWindow = std::make_unique<CoverWindow>(*room, options);
        }
        room->StartGames(sets);
        int code = kExitDone;
        if (options.benchSeconds > 0.0) {
            Measure();
        } else if (!options.screenshot.empty()) {
            code = TakePicture(sets);
        } else {
            while (application.Round()) {
            }
        }
        application.Stop();
        KeepUnreadNotices();
        return code;
    }

private:
    static int64_t Now() { return HostClock().nowMicroseconds(); }

    // Rounds until the time is over; false if the window was closed.
    bool RunUntil(int64_t end) {
        while (Now() < end) {
            if (!application.Round()) {
                return false;
            }
        }
        return true;
    }

    void Measure() {
        if (!RunUntil(Now() + kWarmUp)) {
            return;
        }
        std::vector<int64_t> rounds;
        std::vector<int64_t> work; // processor time of this thread, which runs no machine
        const int64_t start = Now();
        const auto length = static_cast<int64_t>(options.benchSeconds * 1000000.0);
        const uint32_t framesBefore = FramesPresented();
        int64_t last = start;
        int64_t worked = ThreadProcessorTime();
        while (last - start < length && application.Round()) {
            const int64_t now = Now();
            rounds.push_back(now - last);
            last = now;
            const int64_t workedNow = ThreadProcessorTime();
            work.push_back(workedNow - worked);
            worked = workedNow;
        }
        if (!rounds.empty()) {
            Report(rounds, work, last - start, FramesPresented() - framesBefore);
        }
    }

    void Report(std::vector<int64_t>& rounds, std::vector<int64_t>& work, int64_t length,
                uint32_t frames) const {
        const double seconds = static_cast<double>(length) / 1000000.0;
        const SPREAD pictures = SpreadOf(rounds);
        std::printf("pictures   %.1f a second, %.2f ms each, median %.2f, worst 1 %% %.2f\n",
                    static_cast<double>(rounds.size()) / seconds, pictures.mean, pictures.median,
                    pictures.worst);
        const SPREAD main = SpreadOf(work);
        std::printf("processor  %.2f ms of the main thread a picture, worst 1 %% %.2f\n", main.mean,
                    main.worst);
        size_t playing = 0;
        for (const auto& [key, set] : application.Sets().All()) {
            playing += set.picture.texture.glTexture != 0 ? 1 : 0;
        }
        std::printf("machines   %zu, together %.1f frames a second\n", playing,
                    static_cast<double>(frames) / seconds);
        std::printf("sound      %s\n", EmuFormatStats().c_str());
        const ROOM_COUNTERS& counters = room->Counters();
        std::printf(
            "a picture  %u draw calls, %u triangles, %u programs, %u textures, %u materials, "
            "%u uniforms, %llu bytes uploaded by the room\n",
            counters.drawCalls, counters.triangles, counters.programChanges, counters.textureBinds,
            counters.materialWrites, counters.uniformWrites,
            static_cast<unsigned long long>(counters.bytesUploaded));
    }

    int TakePicture(size_t sets) {
        const int64_t end = Now() + kPictureWait;
        while (Now() < end && application.Round()) {
            const auto& all = application.Sets().All();
            const auto shows = [](const auto& set) { return set.second.picture.texture.glTexture; };
            if (std::count_if(all.begin(), all.end(), shows) >= static_cast<int64_t>(sets) &&
                Now() > end - kPictureWait + kWarmUp * 2) {
                break;
            }
        }
        return WriteWindowPicture(application, options.screenshot) ? kExitDone : kExitFailed;
    }

    const ROOM_OPTIONS& options;
    Application application;
    RoomScreen* room = nullptr;
};

} // namespace

int RoomCommand(const ROOM_OPTIONS& options) {
    std::vector<std::string> names = options.games;
    if (names.empty()) {
        names.assign(std::begin(kOwnGames), std::end(kOwnGames));
    }
    if (!ApplySettings(options.settings)) {
        return kExitUsage;
    }
    std::vector<OPENED_GAME> games;
    if (!OpenGames(names, games)) {
        return kExitFailed;
    }
    RoomRun run(options);
    return run.Run(std::move(games));
}
