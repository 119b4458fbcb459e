// Numbers of the command line.
#pragma once

#include <charconv>
#include <cstdint>
#include <string_view>

// Reads a number, with or without "0x" before it; `text` becomes the rest after it.
[[nodiscard]] inline bool TakeNumber(std::string_view& text, uint32_t& value) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hexadecimal ? 2 : 0);
    const auto [end, code] =
        std::from_chars(text.data(), text.data() + text.size(), value, hexadecimal ? 16 : 10);
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return code == std::errc();
}
