#include "front/command_line.h"

int RunCommandLine(int, const char* const*) {
    return 0;
}
