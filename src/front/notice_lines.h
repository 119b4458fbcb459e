// Splits a notice into lines that fit the window.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Lines of at most `letters` characters each, at least one; a line feed begins a new one. A line is
// broken at its last space, which is dropped; a word longer than a line is cut between characters. A
// byte that is not UTF-8 counts as a character.
[[nodiscard]] std::vector<std::string> WrapNotice(std::string_view text, size_t letters);

// A notice as it is shown in one line, one part after the other: most are one part. A longer one is broken at words
// and goes on after " ..."; what is more than three parts long ends with that.
[[nodiscard]] std::vector<std::string> NoticeParts(std::string_view text, size_t letters);
