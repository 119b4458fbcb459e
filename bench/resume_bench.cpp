// What a resume file costs: the session waits for the copies of its state and its picture; packing and writing are done
// by another thread.
#include "front/opened_game.h"
#include "host/aligned_block.h"
#include "host/frame_loop.h"
#include "host/host_data.h"
#include "host/machine_list.h"
#include "host/picture.h"
#include "host/session.h"
#include "host/state_snapshot.h"
#include "machines/machines.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <benchmark/benchmark.h>

namespace {

constexpr const char* kGames[] = {"sms-luciole", "nes-ecume", "md-mistral", "arcade-skywren"};

std::unique_ptr<EMU_THREAD> Run(const char* name) {
    RegisterDefaultSettings(Settings());
    EmuSetMachines(BuiltInMachines());
    EmuMachines().buildTables();
    static OPENED_GAME gOpened;
    gOpened = {};
    if (!OpenDemo(name, gOpened)) {
        return nullptr;
    }
    CGameFile* const games[2] = {&gOpened.game, nullptr};
    auto session = EmuCreateSession(1, games, gOpened.options.data(), gOpened.title);
    if (session == nullptr) {
        return nullptr;
    }
    session->showStatic = 0;
    HostOpen(session.get());
    SOUND_FRAME sound;
    for (int frame = 0; frame < 100; ++frame) {
        EMU_VIDEO_FRAME* const video = HostGetVideoFrame(session.get());
        EmuStep(*session, HostGetInput(session.get()), video, &sound.frame, false);
        HostPublishFrame(*session, *session->hostData);
    }
    return session;
}

void BM_Take(benchmark::State& state) {
    const auto session = Run(kGames[state.range(0)]);
    STATE_SNAPSHOT snapshot;
    for (auto _ : state) {
        benchmark::DoNotOptimize(EmuTakeSnapshot(*session, snapshot));
    }
    state.SetLabel(kGames[state.range(0)]);
    HostClose(session.get());
}

void BM_Pack(benchmark::State& state) {
    const auto session = Run(kGames[state.range(0)]);
    STATE_SNAPSHOT snapshot;
    static_cast<void>(EmuTakeSnapshot(*session, snapshot));
    std::string error;
    for (auto _ : state) {
        benchmark::DoNotOptimize(PackSnapshot(snapshot, error));
    }
    state.SetLabel(kGames[state.range(0)]);
    HostClose(session.get());
}

BENCHMARK(BM_Take)->DenseRange(0, 3)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Pack)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

} // namespace
