// A whole picture as cells of the Mega Drive and the map of a plane that shows them.
//
// Cells that are equal, also when mirrored or upside down, are kept once, in the order in which the map
// needs them from the top left. Cell 1 of the map is the first; cell 0 is empty.
#pragma once

#include "demo_tables/indexed_picture.h"

#include <string>

struct PLANE_MAP {
    std::string text;   // NAMETiles, NAMETilesEnd and NAMEMap, NAME being the file's
    std::string counts; // NAMECells, how many of them there are
};

// `error` names the file, with the pixel if that is at fault.
[[nodiscard]] bool ConvertPlane(const std::filesystem::path& file, PLANE_MAP& map,
                                std::string& error);
