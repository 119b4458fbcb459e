#include "front/tools/command_line.h"

#ifdef OMBRELUNE_SANITIZED
#include <cstdlib>

// A graphics driver is unloaded with the window and leaves memory behind that no name is left for, so a
// run that drew in one is not searched for leaks at its end; every other run is.
extern "C" int __lsan_is_turned_off() {                          // NOLINT: the sanitizer's name
    return std::getenv("SDL_VIDEO_CENTERED") != nullptr ? 1 : 0; // NOLINT(concurrency-mt-unsafe)
}
#endif

int main(int argc, char** argv) {
    return RunCommandLine(argc, argv);
}
