// Windows of the tests off the screen, and sound without a device, unless the environment says otherwise.
#include <SDL_stdinc.h>
#include <gtest/gtest.h>

#ifdef OMBRELUNE_SANITIZED
// The graphics driver is unloaded with each window and leaks memory that cannot be attributed to it.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}
#endif

namespace {

class Surroundings : public testing::Environment {
public:
    void SetUp() override {
        SDL_setenv("SDL_VIDEODRIVER", "offscreen", 0);
        SDL_setenv("SDL_AUDIODRIVER", "dummy", 0);
    }
};
testing::Environment* const kSurroundings =
    testing::AddGlobalTestEnvironment(new Surroundings); // owned by the test library

} // namespace
