#include "base/version.h"

const char* ProgramVersion() {
    return OMBRELUNE_VERSION;
}

const char* ProgramVersionDate() {
    return OMBRELUNE_VERSION_DATE;
}
