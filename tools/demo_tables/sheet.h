// A sheet: a text that lists the drawings in a picture, in the program's order, and their format. demos/README.md has its words.
#pragma once

#include "demo_tables/table_text.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

struct SHEET_RESULT {
    std::string text;
    std::filesystem::path picture; // which was read
};

// `error` names the file with the line or the pixel.
[[nodiscard]] bool ConvertSheet(const std::filesystem::path& file, SHEET_RESULT& result,
                                std::string& error);
