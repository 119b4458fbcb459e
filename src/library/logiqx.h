// Lists of games in the XML of Logiqx (the DTD "ROM Management Datafile"), as preservation projects publish them.
//
// Read are `game` and `machine` elements with their names, parents, descriptions, years, releases and ROMs. Besides the
// DTD's `cloneof` a parent may be named by `cloneofid`, the `id` of its element. Everything else is passed over.
#pragma once

#include "formats/checksums.h"
#include "formats/sha256.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct LOGIQX_ROM {
    std::string name;
    uint64_t size = 0;
    std::optional<uint32_t> crc;
    std::optional<Sha1Digest> sha1;
    std::optional<Sha256Digest> sha256;
    bool noDump = false; // nobody has it: size and hashes mean nothing
};

struct LOGIQX_RELEASE {
    std::string name;
    std::string region;
};

struct LOGIQX_GAME {
    std::string name;
    std::string cloneOf; // the parent's name; empty for a parent
    std::string description;
    uint16_t year = 0; // 0: unknown
    bool bios = false;
    std::vector<LOGIQX_RELEASE> releases;
    std::vector<LOGIQX_ROM> roms;
};

struct LOGIQX_FILE {
    std::string name; // of the list
    std::vector<LOGIQX_GAME> games;
};

// False for a file that is damaged or says something impossible; `fault` is one line that begins with the number of the
// file's line.
[[nodiscard]] bool ParseLogiqx(std::string_view text, LOGIQX_FILE& file, std::string& fault);
