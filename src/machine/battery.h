// Memory that survives power-off: a cartridge's battery RAM or EEPROM.
//
// A machine that has such games derives from this as well as from CEmuSystem. The bytes are in the order in
// which the console's programs see them; a game always has the same number of them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

class CBattery {
public:
    virtual ~CBattery() = default;

    // A copy of the memory; empty if the game has none.
    [[nodiscard]] virtual std::vector<uint8_t> BatteryContents() const = 0;

    // Restores a copy. False, with nothing changed, if its length is not that of this game's memory.
    [[nodiscard]] virtual bool SetBatteryContents(std::span<const uint8_t> bytes) = 0;
};
