// The host's own cost: a state on the rewind stack, a step, a frame's samples, and the work on
// pictures.
#include "host/frame_loop.h"
#include "host/host_data.h"
#include "host/picture.h"
#include "host/rewind.h"
#include "settings/settings.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr uint32_t kWidth = 320;
constexpr uint32_t kHeight = 240;
constexpr uint32_t kPairs = 735;

// Only reports a frame and copies a state of the given size.
class CIdleMachine : public CEmuSystem {
public:
    explicit CIdleMachine(uint32_t stateBytes)
        : CEmuSystem(1, kWidth, kHeight)
        , memory(stateBytes) {}

    bool Init(const void*, CGameFile* const[2]) override { return true; }
    void Reset() override {}
    void RunFrame(EMU_INPUT_STATE*, EMU_VIDEO_FRAME* video, EMU_AUDIO_FRAME* audio) override {
        video->width = video->visibleWidth = kWidth;
        video->height = video->visibleHeight = kHeight;
        audio->sampleCount = kPairs;
    }
    bool LoadState(const uint8_t* data, uint32_t size) override {
        std::memcpy(memory.data(), data, size);
        return true;
    }
    uint32_t StateSize() override { return static_cast<uint32_t>(memory.size()); }
    void WriteState(StateOut out) override { out.PutBytes(memory.data(), memory.size()); }

private:
    std::vector<uint8_t> memory;
};

std::unique_ptr<EMU_THREAD> MakeSession(uint32_t stateBytes) {
    auto session = std::make_unique<EMU_THREAD>();
    session->machine = std::make_unique<CIdleMachine>(stateBytes);
    session->frameWidth = kWidth;
    session->frameHeight = kHeight;
    session->showStatic = 0;
    return session;
}

// A push of a state in which nothing has changed: the comparison. Argument: bytes of a state.
void RewindPushUnchanged(benchmark::State& state) {
    const auto size = static_cast<uint32_t>(state.range(0));
    const auto session = MakeSession(size);
    const uint64_t limit = RewindLimitBytes(256);
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(RewindPush(session->rewind, *session->machine, limit));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * size);
}
BENCHMARK(RewindPushUnchanged)->Arg(1 << 10)->Arg(32 << 10)->Arg(160 << 10);

// A step of an idle machine. Argument: mebibytes of rewind, 0 for none.
void Step(benchmark::State& state) {
    RegisterDefaultSettings(Settings());
    Settings().SetInt(L"emu_rewindbuffer", static_cast<int32_t>(state.range(0)));
    const auto session = MakeSession(160 << 10);
    const auto pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.get();
    EMU_INPUT_STATE input{};
    SOUND_FRAME sound;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(EmuStep(*session, &input, &video, &sound.frame, false));
    }
}
BENCHMARK(Step)->Arg(0)->Arg(64);

void StaticFrame(benchmark::State& state) {
    const auto session = MakeSession(1);
    const auto pixels = AllocateAligned<uint32_t>(EmuPicturePixels(*session));
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.get();
    EMU_INPUT_STATE input{};
    SOUND_FRAME sound;
    for ([[maybe_unused]] auto _ : state) {
        session->showStatic = 1;
        benchmark::DoNotOptimize(EmuStep(*session, &input, &video, &sound.frame, false));
    }
}
BENCHMARK(StaticFrame);

void SubmitAudio(benchmark::State& state) {
    const auto session = MakeSession(1);
    HostOpen(session.get());
    session->hostData.load()->noSound = false;
    SOUND_FRAME sound;
    sound.frame.sampleCount = kPairs;
    for ([[maybe_unused]] auto _ : state) {
        HostSubmitAudio(session.get(), &sound.frame);
        session->sound.soundBytes = 0;
    }
    HostClose(session.get());
}
BENCHMARK(SubmitAudio);

void RotateFrame(benchmark::State& state) {
    const auto pixels = AllocateAligned<uint32_t>(size_t{kWidth} * kHeight);
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.get();
    video.width = kWidth;
    video.height = kHeight;
    std::vector<uint32_t> scratch;
    for ([[maybe_unused]] auto _ : state) {
        video.rotated = 1;
        EmuRotateFrame(video, scratch);
    }
}
BENCHMARK(RotateFrame);

} // namespace
