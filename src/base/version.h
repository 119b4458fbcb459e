// The program's version, that of the build file: on the command line, in the window's title and on the screens.
#pragma once

// "1.2.3".
[[nodiscard]] const char* ProgramVersion();

// The day of its release, "2026-11-23".
[[nodiscard]] const char* ProgramVersionDate();
