// A video file, decoded whole.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct READ_PICTURE {
    std::vector<uint32_t> pixels; // blue lowest, green, red, then 0
    double seconds = 0.0;         // when it is shown
};

struct READ_VIDEO {
    std::string codec;
    std::string pixelFormat;
    int profile = 0;
    int width = 0;
    int height = 0;
    double dotAspect = 0.0; // width to height of a pixel
    double rate = 0.0;      // pictures a second, as the file says
    double seconds = 0.0;   // of the whole file
    std::vector<READ_PICTURE> pictures;

    std::string soundCodec;
    int soundRate = 0;
    int channels = 0;
    std::vector<float> sound; // left, right, left, ..., from -1 to 1
};

// False if it cannot be read.
[[nodiscard]] bool ReadVideo(const std::string& path, READ_VIDEO& video);
