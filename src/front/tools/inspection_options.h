// The values of --peek and --dump.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct PLAY_OPTIONS;

struct PEEK {
    uint32_t address = 0;
    uint32_t length = 1;
};
// "ADDRESS[:LENGTH]", each with or without "0x".
[[nodiscard]] bool ReadPeek(std::string_view text, PEEK& peek);

// False, with one sentence, if a value is wrong whatever the game does. `system` is the game's machine.
[[nodiscard]] bool CheckInspections(const PLAY_OPTIONS& options, uint16_t system,
                                    std::string& error);
