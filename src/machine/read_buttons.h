// A machine's buttons from the actions that are bound to them.
#pragma once

#include "settings/bindings.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// The bits of the actions that are down. The two lists go side by side, so that a machine that polls
// its actions in this way misses none.
template <size_t Count>
[[nodiscard]] uint32_t ReadButtons(uint32_t sessionKey, const std::wstring_view (&actions)[Count],
                                   const uint32_t (&bits)[Count]) {
    uint32_t held = 0;
    for (size_t i = 0; i < Count; ++i) {
        held |= InputIsDown(sessionKey, actions[i]) ? bits[i] : 0;
    }
    return held;
}
