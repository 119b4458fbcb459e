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

// Only a library that SDL has loaded is used; it stays loaded, since it keeps the handler.
void SilenceDriverMessages() {
    const char* const driver = SDL_GetCurrentAudioDriver();
    if (driver == nullptr || std::string_view(driver) != "alsa") {
        return;
    }
    static void* const library = SDL_LoadObject("libasound.so.2");
    if (library == nullptr) {
        return;
    }
    const auto set =
        reinterpret_cast<SetAlsaMessage>(SDL_LoadFunction(library, "snd_lib_error_set_handler"));
    if (set != nullptr) {
        set(SayNothing);
    }
}
