// Options of `play` that say how the picture is shown: settings by shorter names, for one run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

struct PICTURE_OPTIONS {
    std::string scale;              // "whole" or "fit"; empty: as the settings say
    std::string aspect;             // "machine", "4:3" or "square"
    std::vector<uint32_t> overscan; // left, top, right, bottom; or empty
    std::optional<uint32_t> crt;    // percent
};

// The options live as long as the command.
void AddPictureOptions(CLI::App& command, PICTURE_OPTIONS& options);

// `system`: the machine's number.
void ApplyPictureOptions(const PICTURE_OPTIONS& options, uint16_t system);
