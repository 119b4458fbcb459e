// Eight machines at once, five of them Mega Drives, as the room runs them: each a session of its own with the usual
// settings, rewinding and sound included; only nothing is drawn.
//
//     SDL_AUDIODRIVER=dummy eight_bench [SECONDS]
//
// Prints how fast each machine ran, and the processor time that an emulated second took. What a session's thread spends
// on waiting for the end of a frame is counted with the whole process only.
#include "audio/sound.h"
#include "base/files.h"
#include "base/processor_time.h"
#include "front/opened_game.h"
#include "front/processor_binder.h"
#include "host/host_data.h"
#include "host/machine_list.h"
#include "host/session.h"
#include "machines/machines.h"
#include "settings/settings.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <thread>

namespace {

constexpr std::array<const char*, 8> kGames = {"md-mistral", "md-mistral",    "md-mistral",
                                               "md-mistral", "md-mistral",    "sms-luciole",
                                               "nes-ecume",  "arcade-skywren"};

// Of one session, written by its thread.
struct USE {
    std::atomic<uint64_t> pairs{0};    // of sound made
    std::atomic<int64_t> worked{0};    // microseconds of processor time, less those of waiting
    std::atomic<uint32_t> rate{44100}; // pairs a second
};
std::array<USE, kGames.size()> gUse;
thread_local int64_t gWaited = 0;

void Open(EMU_THREAD* session) {
    HostOpen(session);
    CreateSoundChannel(*session);
}

void Close(EMU_THREAD* session) {
    DestroySoundChannel(*session);
    HostClose(session);
}

void Submit(EMU_THREAD* session, EMU_AUDIO_FRAME* audio) {
    gUse[session->key].pairs += audio->sampleCount;
    gUse[session->key].rate = audio->sampleRate;
    HostSubmitAudio(session, audio);
}

void Present(EMU_THREAD* session, uint32_t microseconds) {
    const int64_t before = ThreadProcessorTime();
    gUse[session->key].worked = before - gWaited;
    HostPresent(session, microseconds);
    gWaited += ThreadProcessorTime() - before;
}

bool StartAll() {
    for (uint32_t key = 0; key < kGames.size(); ++key) {
        OPENED_GAME opened;
        if (!OpenDemo(kGames[key], opened)) {
            return false;
        }
        CGameFile* const games[2] = {&opened.game, nullptr};
        const uint32_t serial = EmuStartSession(key, games, opened.options.data(), opened.title);
        if (serial == 0) {
            return false;
        }
    }
    return true;
}

struct FIGURES {
    double emulated[kGames.size()]; // seconds
    double worked[kGames.size()];   // seconds of processor time
    double wall;
    double process; // processor time of everything
};

FIGURES Now() {
    FIGURES figures{};
    for (size_t i = 0; i < kGames.size(); ++i) {
        figures.emulated[i] = static_cast<double>(gUse[i].pairs) / gUse[i].rate;
        figures.worked[i] = static_cast<double>(gUse[i].worked) / 1e6;
    }
    figures.wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    figures.process = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    return figures;
}

void Print(const FIGURES& from, const FIGURES& to) {
    const double wall = to.wall - from.wall;
    double slowest = 1e9;
    double all = 0.0;
    for (size_t i = 0; i < kGames.size(); ++i) {
        const double emulated = to.emulated[i] - from.emulated[i];
        const double perSecond = (to.worked[i] - from.worked[i]) / emulated;
        std::printf("%-15s %6.1f %% of its speed  %6.1f ms of processor time a second\n", kGames[i],
                    emulated / wall * 100.0, perSecond * 1000.0);
        slowest = std::min(slowest, emulated / wall);
        all += perSecond;
    }
    std::printf(
        "all eight: %.2f s of processor time for a second of each; the slowest at %.1f %%\n", all,
        slowest * 100.0);
    std::printf("the whole process, with sound and waiting: %.2f s of processor time in %.1f s\n",
                to.process - from.process, wall);
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 10.0;
    const std::filesystem::path home =
        std::filesystem::temp_directory_path() / "ombrelune-eight-bench";
    SetHomeFolder(home);
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"emu_autosaves", 0);
    EmuSetMachines(BuiltInMachines());
    ProcessorBinderStart();
    EmuSetHost({Open, Close, HostGetVideoFrame, Present, Submit, HostGetInput, BindProcessor,
                ReleaseProcessor});
    std::string error;
    if (OpenSoundDevice(error)) {
        StartSoundPump();
    } else {
        std::fprintf(stderr, "without sound: %s\n", error.c_str());
    }
    SoundSetRoomVisible(true);
    const bool started = StartAll();
    if (started) {
        std::this_thread::sleep_for(std::chrono::seconds(3)); // the static, and a start
        const FIGURES from = Now();
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        Print(from, Now());
    }
    for (uint32_t key = 0; key < kGames.size(); ++key) {
        EmuStopSession(key, SessionEnd::kTurnedOff);
    }
    StopSoundPump();
    CloseSoundDevice();
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return started ? 0 : 1;
}
