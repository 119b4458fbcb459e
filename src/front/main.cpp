#include "front/command_line.h"

#ifdef __SANITIZE_ADDRESS__
// A graphics driver is unloaded with the window and leaves memory behind that no name is left for. The
// tests of every part that is ours look for leaks themselves.
extern "C" const char* __asan_default_options() { // NOLINT: the sanitizer's name
    return "detect_leaks=0";
}
#endif

int main(int argc, char** argv) {
    return RunCommandLine(argc, argv);
}
