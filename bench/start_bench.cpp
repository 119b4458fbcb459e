// How long the program takes to start, without television static: a frame without a window, and the first picture in a
// window. Beside it a bare window, which clears and swaps once: what SDL and the graphics driver take by themselves.
//
//     start_bench PROGRAM
//
// Each is run ten times in a process of its own. Wall time counts what other programs do as well; processor time does
// not, but it is of all threads together, the driver's too.
#include "base/files.h"
#include "front/application.h"
#include "front/opened_game.h"
#include "host/machine_list.h"
#include "host/session.h"
#include "machines/machines.h"
#include "settings/settings.h"

#include <SDL.h>
#include <SDL_opengl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

extern char** environ; // NOLINT: the system's name

namespace {

constexpr int kRuns = 10;
constexpr const char* kGame = "md-mistral";

struct TIMES {
    double wall;      // milliseconds
    double processor; // of the whole process
};

double Milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_usec) / 1000.0;
}

// False if the process cannot be started or fails.
bool RunOnce(std::vector<std::string> arguments, TIMES& times) {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    const auto start = std::chrono::steady_clock::now();
    pid_t process = 0;
    if (posix_spawnp(&process, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        return false;
    }
    int status = 0;
    rusage use{};
    if (wait4(process, &status, 0, &use) != process || status != 0) {
        return false;
    }
    times.wall =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    times.processor = Milliseconds(use.ru_utime) + Milliseconds(use.ru_stime);
    return true;
}

bool Report(const char* what, const std::vector<std::string>& arguments) {
    std::vector<double> wall;
    std::vector<double> processor;
    for (int run = 0; run < kRuns; ++run) {
        TIMES times{};
        if (!RunOnce(arguments, times)) {
            std::fprintf(stderr, "%s: failed\n", what);
            return false;
        }
        wall.push_back(times.wall);
        processor.push_back(times.processor);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(processor.begin(), processor.end());
    std::printf("%-34s %6.0f ms (shortest %4.0f), %6.0f ms of processor time\n", what,
                wall[kRuns / 2], wall[0], processor[kRuns / 2]);
    return true;
}

// What `play` does until the window has shown the machine's first picture.
int ShowFirstPicture(const char* home) {
    SetHomeFolder(home);
    RegisterDefaultSettings(Settings());
    EmuSetMachines(BuiltInMachines());
    OPENED_GAME opened;
    Application application;
    application.LeaveSavesAlone();
    std::string error;
    if (!OpenDemo(kGame, opened) || !application.Start(error) || !application.Play(opened, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    // A session is there once its own thread has begun, so it is looked for in every round.
    do {
        EmuForEachSession([](EMU_THREAD& session) { session.showStatic = 0; });
    } while (application.Sets().FrameShown() == 0 && application.Round());
    _exit(0); // how it ends is not measured
}

int ShowBareWindow() {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        std::fprintf(stderr, "%s\n", SDL_GetError());
        return 1;
    }
    SDL_Window* const window = SDL_CreateWindow("start_bench", 0, 0, 1280, 720, SDL_WINDOW_OPENGL);
    if (window == nullptr || SDL_GL_CreateContext(window) == nullptr) {
        std::fprintf(stderr, "%s\n", SDL_GetError());
        return 1;
    }
    glClear(GL_COLOR_BUFFER_BIT);
    SDL_GL_SwapWindow(window);
    glFinish();
    _exit(0);
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--picture" && argc == 3) {
        return ShowFirstPicture(argv[2]);
    }
    if (first == "--bare") {
        return ShowBareWindow();
    }
    if (argc != 2) {
        std::fprintf(stderr, "start_bench PROGRAM\n");
        return 2;
    }
    const std::filesystem::path home =
        std::filesystem::temp_directory_path() / "ombrelune-start-bench";
    bool done = Report("one frame without a window",
                       {argv[1], "--home", home.string(), "play", std::string("demo:") + kGame,
                        "--headless", "--frames", "1"});
    done = Report("first picture in the window", {argv[0], "--picture", home.string()}) && done;
    done = Report("bare window of SDL and the driver", {argv[0], "--bare"}) && done;
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return done ? 0 : 1;
}
