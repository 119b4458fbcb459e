// The program's name and the window's title.
#pragma once

#include <string>

inline constexpr const char* kProgramName = "Ombrelune";
inline constexpr const char* kWindowClass = "Ombrelune64";

// Name and version in the form "Ombrelune v0.001 ", the version's minor number in three digits.
[[nodiscard]] std::string ProgramTitle();
