#include "base/version.h"

const char* ProgramVersion() {
    return OMBRELUNE_VERSION;
}
