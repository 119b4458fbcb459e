#include "front/tools/key_injector.h"

#include "settings/bindings.h"
#include "settings/settings.h"

#include <SDL.h>

namespace {

void InjectKey(uint32_t scancode, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = static_cast<SDL_Scancode>(scancode);
    event.key.keysym.sym = SDL_GetKeyFromScancode(event.key.keysym.scancode);
    SDL_PushEvent(&event);
}

} // namespace

bool InjectAction(size_t action, bool down) {
    const std::wstring setting = BindingSetting(InputActions()[action]);
    const auto binding = static_cast<uint32_t>(Settings().GetInt2(setting).first);
    const uint32_t scancode = binding & 0xFFFF;
    if (binding >> 24 != 0 || scancode == 0 || scancode >= kKeyboardCodes) {
        return false;
    }
    const uint32_t modifier = binding >> 16 & 0xFF;
    const uint32_t modifierKey = modifier == kModifierShift  ? SDL_SCANCODE_LSHIFT
                                 : modifier == kModifierCtrl ? SDL_SCANCODE_LCTRL
                                                             : SDL_SCANCODE_UNKNOWN;
    // The modifier is held around the key; without it the key could act for another binding.
    if (down && modifierKey != SDL_SCANCODE_UNKNOWN) {
        InjectKey(modifierKey, true);
    }
    InjectKey(scancode, down);
    if (!down && modifierKey != SDL_SCANCODE_UNKNOWN) {
        InjectKey(modifierKey, false);
    }
    return true;
}
