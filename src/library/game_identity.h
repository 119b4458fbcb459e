// Which game it is, whatever its file is called: the system and a SHA-256. Of most systems it is that of the first
// image of a variant; an arcade game has no single image, and its records' hash tells it.
//
// Plain values. Any thread may call.
#pragma once

#include "formats/game_file.h"

#include <compare>
#include <cstdint>

struct GAME_IDENTITY {
    uint16_t system = 0; // 0: no game
    Sha256Digest hash{};

    [[nodiscard]] auto operator<=>(const GAME_IDENTITY&) const = default;
};

// False, with the identity unchanged, for a variant that the game does not have or that has no image.
[[nodiscard]] bool IdentifyGame(const CGameFile& game, uint32_t nameIndex, GAME_IDENTITY& identity);
