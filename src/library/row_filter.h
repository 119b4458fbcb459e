// Search and filters over the rows of a game list: the screen's choices in, lines out.
//
// A line points into its row and is valid until the rows change. Nothing but the vector is allocated, so that a
// filter can run at every key press.
#pragma once

#include "library/game_rows.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The drop list "GROUP: ".
enum class RowGroup : int32_t { kByGame = 0, kNone = 1 };

// The drop list of region mode: "Released in" and "Only Released in".
enum class RegionMode : int32_t { kReleasedIn = 0, kOnlyReleasedIn = 1 };

// The region check boxes.
enum RegionBox : uint8_t {
    kRegionEurope = 1,
    kRegionJapan = 2,
    kRegionUsa = 4,
    kRegionBrazil = 8,
    kRegionKorea = 16,
    kRegionOther = 32,
};
inline constexpr uint8_t kEveryRegion = 63;

// The drop list "PLAYTYPE: ": a mask of NAME_RECORD::playTypes, or everything.
inline constexpr uint8_t kEveryPlayType = 255;

struct ROW_CHOICES {
    std::wstring name; // the text of the field "NAME: "
    std::wstring year; // the text of the field "YEAR: ": a year, or a range with "-" between two
    uint8_t playTypes = kEveryPlayType;
    RowGroup group = RowGroup::kByGame;
    RegionMode regionMode = RegionMode::kReleasedIn;
    uint8_t regions = kEveryRegion; // RegionBox bits
};

inline constexpr size_t kYearCharacters = 12;

// A line of the list, column by column.
struct ROW_LINE {
    std::wstring_view title; // column 0, in `statusColour`
    uint32_t statusColour;
    std::array<int32_t, kRowFlags> images; // columns 1 to 3: the row's flags, the last one first
    std::array<wchar_t, kYearCharacters>
        year;                          // column 4: "1991", or "----" if unknown; ends with 0
    const std::filesystem::path* path; // column 5
    uint32_t nameIndex;                // the value of column 5
    std::wstring_view contentKey;      // column 6
    const GameListRow* row;
};

// The rows that pass, in their order. 20,000 of them are filtered in a millisecond, so a screen makes lines only of those
// that it shows.
[[nodiscard]] std::vector<const GameListRow*> FilterRows(std::span<const GameListRow> rows,
                                                         const ROW_CHOICES& choices);
[[nodiscard]] ROW_LINE LineOf(const GameListRow& row);

// The lines of the rows that pass, in the order of the rows.
[[nodiscard]] std::vector<ROW_LINE> ApplyFilters(std::span<const GameListRow> rows,
                                                 const ROW_CHOICES& choices);

// "Showing %d games".
[[nodiscard]] std::wstring ShowingText(size_t lines);
