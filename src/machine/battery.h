// Memory that survives power-off: a cartridge's battery RAM or EEPROM.
//
// A machine whose game may have some derives from this as well as from CEmuSystem. The bytes are in the
// order in which the console's programs see them; their number is fixed for a game.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

class CBattery {
public:
    virtual ~CBattery() = default;

    // A copy of the memory; empty if the game has none.
    [[nodiscard]] virtual std::vector<uint8_t> BatteryContents() const = 0;

    // Restores a copy. False, with nothing changed, for a length that is not this game's.
    [[nodiscard]] virtual bool SetBatteryContents(std::span<const uint8_t> bytes) = 0;
};
