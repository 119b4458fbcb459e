#include "audio/driver_messages.h"

#include <SDL.h>

#include <string_view>

namespace {

using AlsaMessage = void (*)(const char* file, int line, const char* function, int error,
                             const char* format, ...);
using SetAlsaMessage = int (*)(AlsaMessage handler);

void SayNothing(const char* /*file*/, int /*line*/, const char* /*function*/, int /*error*/,
                const char* /*format*/, ...) {}

} // namespace

// The library stays loaded, since it keeps the handler. SDL loads it too, unless it was told to use another driver.
void SilenceDriverMessages() {
    const char* const wanted = SDL_getenv("SDL_AUDIODRIVER");
    const bool mayBeAlsa = wanted == nullptr || *wanted == '\0' ||
                           std::string_view(wanted).find("alsa") != std::string_view::npos;
    if (!mayBeAlsa) {
        return;
    }
    static void* const library = SDL_LoadObject("libasound.so.2");
    if (library == nullptr) {
        SDL_ClearError(); // a system without it has nothing to silence
        return;
    }
    const auto set =
        reinterpret_cast<SetAlsaMessage>(SDL_LoadFunction(library, "snd_lib_error_set_handler"));
    if (set != nullptr) {
        set(SayNothing);
    }
}
