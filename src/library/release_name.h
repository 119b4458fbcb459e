// What a preservation project's name of a release says: "Title (Europe, Brazil) (Rev A) (En,Fr)".
#pragma once

#include <string>
#include <string_view>

struct RELEASE_NAME {
    std::string title;    // without brackets of either kind, trimmed
    std::string regions;  // letters of "EJUBK" in this order; empty if none of them is named
    std::string revision; // "Rev A", "v1.1" and the like; empty for the first
    bool bios = false;    // begins with "[BIOS]"
};

// The first pair of round brackets that holds nothing but names of regions tells the regions. Countries count as the
// region whose consoles they had: the European ones as Europe.
[[nodiscard]] RELEASE_NAME ParseReleaseName(std::string_view name);

// The letters of one region by its name or its code of three letters ("EUR"); empty for one without a letter.
[[nodiscard]] std::string_view RegionLetters(std::string_view region);

// Both sets of letters, in the order of "EJUBK".
[[nodiscard]] std::string JoinRegions(std::string_view left, std::string_view right);
