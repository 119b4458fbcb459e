// The door of the module.
#include "video/video_file.h"

extern "C" __attribute__((visibility("default"))) CVideoFile* OmbreluneMakeVideoFile() {
    return MakeVideoFile().release();
}
