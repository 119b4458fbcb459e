// The games whose cartridge holds a serial EEPROM, and how each is wired.
#pragma once

#include "megadrive/md_eeprom.h"

#include <string_view>

// The code ends with a zero; the list ends with an empty code.
struct MD_EEPROM_GAME {
    char productCode[20];
    MD_EEPROM_DEVICE device;
};

static_assert(sizeof(MD_EEPROM_GAME) == 44);

inline constexpr int kMdEepromGames = 28;

// `kMdEepromGames` rows, then the empty one.
[[nodiscard]] const MD_EEPROM_GAME* MdEepromGames();

// The first row whose code is contained in the product code of a header, which begins with a blank and often
// ends with a revision. Null if there is none.
[[nodiscard]] const MD_EEPROM_GAME* MdEepromFindGame(std::string_view productCode);
