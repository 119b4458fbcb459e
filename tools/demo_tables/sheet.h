// A sheet: a text that says which drawings a picture holds, in which order and in which form they come
// into the program. demos/README.md has its words.
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
