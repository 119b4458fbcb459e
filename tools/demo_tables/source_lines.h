// The text files that the converters read: words between blanks, a line at a time. A word that begins
// with '#' and all after it are a comment.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SOURCE_LINE {
    int number = 0; // from 1
    std::vector<std::string> words;
};

// Leaves out lines without words.
[[nodiscard]] std::vector<SOURCE_LINE> SplitLines(std::string_view text);

// "FILE:LINE: MESSAGE"
[[nodiscard]] std::string Fault(const std::filesystem::path& file, int line,
                                std::string_view message);

// Decimal, or hexadecimal after 0x. Nothing if it isn't a number from `least` to `most`.
[[nodiscard]] std::optional<int> NumberOf(std::string_view word, int least, int most);
