// Tables of bytes as source text. The assembly uses only what all three assemblers of the demos understand: labels,
// .byte and decimal numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

enum class LANGUAGE { kAssembly, kC };

struct TABLE {
    std::string name; // "" for bytes that follow those before; not in C
    std::vector<uint8_t> bytes;
};

// In C, an array of char.
[[nodiscard]] std::string TextOf(const std::vector<TABLE>& tables, LANGUAGE language);
