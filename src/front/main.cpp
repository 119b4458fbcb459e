#include "front/tools/command_line.h"

#ifdef OMBRELUNE_SANITIZED
#include <cstdlib>

// A graphics driver is unloaded with the window and leaks memory that cannot be attributed to it any
// more, so a run that opened a window is not checked for leaks; every other run is.
extern "C" int __lsan_is_turned_off() {                          // NOLINT: the sanitizer's name
    return std::getenv("SDL_VIDEO_CENTERED") != nullptr ? 1 : 0; // NOLINT(concurrency-mt-unsafe)
}
#endif

int main(int argc, char** argv) {
    return RunCommandLine(argc, argv);
}
