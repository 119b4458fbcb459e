#include "front/program_title.h"

#include "front/version.h"

#include <cstdio>

std::string ProgramTitle() {
    char title[64];
    std::snprintf(title, sizeof title, "%s v%d.%03d ", kProgramName, OMBRELUNE_VERSION_MAJOR,
                  OMBRELUNE_VERSION_MINOR);
    return title;
}
