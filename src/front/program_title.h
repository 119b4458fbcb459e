// The program's name and the window's title.
#pragma once

#include <string>

inline constexpr const char* kProgramName = "Ombrelune";
inline constexpr const char* kWindowClass = "Ombrelune64";

// Without a game: name and version, "Ombrelune 1.2.3".
[[nodiscard]] std::string ProgramTitle();
// While one is played: "Luciole - Master System - Ombrelune".
[[nodiscard]] std::string PlayedTitle(const std::string& game, const std::string& machine);
