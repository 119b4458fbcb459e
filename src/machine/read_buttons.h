// A machine's buttons, read from their actions.
#pragma once

#include "settings/bindings.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// The bits of the actions that are down. The two lists are parallel, so a machine that polls this way
// misses no action.
template <size_t Count>
[[nodiscard]] uint32_t ReadButtons(uint32_t sessionKey, const std::wstring_view (&actions)[Count],
                                   const uint32_t (&bits)[Count]) {
    uint32_t held = 0;
    for (size_t i = 0; i < Count; ++i) {
        held |= InputIsDown(sessionKey, actions[i]) ? bits[i] : 0;
    }
    return held;
}
