// Memory that outlives the power: what a cartridge keeps by a battery or in an EEPROM.
//
// A machine whose game has some derives from this beside CEmuSystem. The bytes are the game's own, in
// the order in which the console's programs see them, and always as many for the same game.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

class CBattery {
public:
    virtual ~CBattery() = default;

    // A copy of the memory; empty where the game has none.
    [[nodiscard]] virtual std::vector<uint8_t> BatteryContents() const = 0;

    // Puts a copy back. False, with nothing changed, when the length is not this game's.
    [[nodiscard]] virtual bool SetBatteryContents(std::span<const uint8_t> bytes) = 0;
};
