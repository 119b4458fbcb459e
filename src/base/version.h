// The program's version, that of the build file: on the command line, in the window's title and on the screens.
#pragma once

// "1.2.3".
[[nodiscard]] const char* ProgramVersion();
