// The command line's requests for pictures: FRAME=FILE.png or last=FILE.png.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct SCREENSHOT_REQUEST {
    uint32_t frame = 0; // from 1; 0: the last one
    std::string path;
};

// `frames` is the length of the run, 0 for no limit. False, with a line on the first request that is
// invalid or that the run never reaches.
[[nodiscard]] bool ReadScreenshots(const std::vector<std::string>& texts, uint32_t frames,
                                   std::vector<SCREENSHOT_REQUEST>& requests, std::string& error);
