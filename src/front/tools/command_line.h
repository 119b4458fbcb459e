// The command line of the program.
#pragma once

// Runs the program with its arguments and returns its exit code: 0 done, 1 the game or a file failed,
// with one line on standard error, 2 wrong usage. Machine-readable output goes to standard output,
// everything else to standard error.
int RunCommandLine(int argc, const char* const* argv);
