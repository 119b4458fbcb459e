// The room of boxes at 1280 by 720, on whatever driver there is: a frame with no light, one and five, with eight
// machines, and the frames in which a set turns on.
//
// Triangles are as many as in the furnished room. Times include the driver's work (glFinish).
#include "display/gl.h"
#include "room/room_camera.h"
#include "room/room_objects.h"
#include "room/room_renderer.h"
#include "room/room_scene.h"
#include "settings/settings.h"

#include "support/gl_context.h"
#include <GL/gl.h>
#include <SDL_video.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kWide = 1280;
constexpr uint32_t kHigh = 720;
constexpr uint32_t kAcross = 320;
constexpr uint32_t kDown = 240;

// The files of the folder that OMBRELUNE_OBJECTS names, or boxes.
RoomFiles Furniture() {
    const char* const folder = std::getenv("OMBRELUNE_OBJECTS");
    if (folder == nullptr) {
        return RoomOfBoxes(25, 512);
    }
    RoomFiles files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        files[entry.path().filename()].assign(std::istreambuf_iterator<char>(file), {});
    }
    return files;
}

struct ROOM {
    GlContext context{kWide, kHigh};
    RoomFiles files = Furniture();
    CRoomObjects objects;
    RoomRenderer renderer;
    CRoomCamera camera;
    std::vector<std::unique_ptr<SESSION_PICTURE>> sessions;
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{kAcross} * kDown, 0xFF80C0F0);

    [[nodiscard]] bool Start(size_t televisions) {
        std::string error;
        if (!context.Ready() || !GlStart(error)) {
            return false;
        }
        RegisterDefaultSettings(Settings());
        renderer.InitRoom({[](const char* name) { return SDL_GL_GetProcAddress(name); },
                           [this](std::string_view name) {
                               const auto found = files.find(std::string(name));
                               return found != files.end() ? found->second : Bytes();
                           },
                           {}});
        objects.Build([this](std::string_view file) { return renderer.LoadModel(file); });
        camera.SetUp(static_cast<float>(kWide) / kHigh, {330, 125, 690}, {200, 60, 100});
        for (size_t i = 0; i < televisions; ++i) {
            sessions.push_back(std::make_unique<SESSION_PICTURE>());
            StartSessionPicture(*sessions.back(), pixels.size());
        }
        return true;
    }

    void Frame(bool lamp) {
        EMU_VIDEO_FRAME frame{};
        frame.pixels = pixels.data();
        frame.width = frame.visibleWidth = kAcross;
        frame.height = frame.visibleHeight = kDown;
        for (size_t i = 0; i < sessions.size(); ++i) {
            static_cast<void>(UploadPicture(frame, *sessions[i], PictureScaler::kNone));
            objects.Attach(objects.Televisions()[i + (i > 3 ? 1 : 0)],
                           *sessions[i]); // slot 4 is empty
        }
        renderer.Draw({kWide, kHigh, camera.Projection(), camera.View(), lamp}, objects);
        glFinish();
    }

    ~ROOM() {
        for (const auto& session : sessions) {
            EndSessionPicture(*session);
        }
        renderer.Release();
    }
};

enum class From : uint8_t { kCorner, kWall };

void DrawRoom(benchmark::State& state, size_t televisions, bool lamp, bool lighting,
              From from = From::kCorner) {
    ROOM room;
    if (!room.Start(televisions)) {
        state.SkipWithError("no OpenGL");
        return;
    }
    Settings().SetBool(L"app_lighting", lighting);
    if (from == From::kWall) {
        room.camera.SetUp(static_cast<float>(kWide) / kHigh, {300, 130, 650}, {300, 130, 800});
    }
    room.Frame(lamp);
    for (auto _ : state) {
        room.Frame(lamp);
    }
    const ROOM_COUNTERS& counters = room.renderer.Counters();
    state.counters["draws"] = counters.drawCalls;
    state.counters["triangles"] = counters.triangles;
    state.counters["binds"] = counters.textureBinds;
    state.counters["programs"] = counters.programChanges;
    state.counters["uniforms"] = counters.uniformWrites;
    state.counters["bytes"] = static_cast<double>(counters.bytesUploaded);
    state.SetLabel(Gl().renderer);
}

// A set is turned on that was never on: its lights are new. A frame of the room with four sets, and how long the
// longest of the frames is until all programs for the lights are compiled, in time and in processor time.
void TurnOnASet(benchmark::State& state) {
    constexpr int kFrames = 12; // more than there are programs
    ROOM room;
    if (!room.Start(4)) {
        state.SkipWithError("no OpenGL");
        return;
    }
    Settings().SetBool(L"app_lighting", true);
    for (int i = 0; i < kFrames; ++i) {
        room.Frame(true);
    }
    CRoomObject& set = *room.objects.Find(room.objects.Televisions()[0]);
    std::chrono::duration<double, std::milli> longest{};
    std::clock_t longestWork = 0;
    for (auto _ : state) {
        set.lightOffset.y += 0.01f;
        for (int i = 0; i < kFrames; ++i) {
            const auto start = std::chrono::steady_clock::now();
            const std::clock_t workStart = std::clock();
            room.Frame(true);
            longestWork = std::max(longestWork, std::clock() - workStart);
            longest =
                std::max<decltype(longest)>(longest, std::chrono::steady_clock::now() - start);
        }
    }
    state.counters["longest_ms"] = longest.count();
    state.counters["longest_cpu_ms"] =
        static_cast<double>(longestWork) * 1000.0 / static_cast<double>(CLOCKS_PER_SEC);
    state.SetLabel(Gl().renderer);
}

// A software renderer works on threads of its own.
void Measured(benchmark::internal::Benchmark* bench) {
    bench->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
}

BENCHMARK_CAPTURE(DrawRoom, WithoutLighting, 0, false, false)->Apply(Measured);
BENCHMARK_CAPTURE(DrawRoom, NoLight, 0, false, true)->Apply(Measured);
BENCHMARK_CAPTURE(DrawRoom, Lamp, 0, true, true)->Apply(Measured);
BENCHMARK_CAPTURE(DrawRoom, FiveLights, 4, true, true)->Apply(Measured);
BENCHMARK_CAPTURE(DrawRoom, EightMachines, 8, true, true)->Apply(Measured);
BENCHMARK(TurnOnASet)->Apply(Measured);
BENCHMARK_CAPTURE(DrawRoom, WallWithLamp, 0, true, true, From::kWall)->Apply(Measured);
BENCHMARK_CAPTURE(DrawRoom, WallWithFiveLights, 4, true, true, From::kWall)->Apply(Measured);

} // namespace
