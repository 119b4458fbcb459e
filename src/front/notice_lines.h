// A notice cut into lines that fit across the window.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Lines of at most `letters` characters each, at least one; a line feed begins a new one. A line ends at
// its last space where it has one, and that space is gone; a word longer than a line is cut between
// characters. A byte that is not UTF-8 counts as a character.
[[nodiscard]] std::vector<std::string> WrapNotice(std::string_view text, size_t letters);
