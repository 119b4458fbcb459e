#include "sega8/z80_tables.h"

#include "sega8/z80.h"

#include <bit>

namespace {

constexpr uint32_t SignAndZero(uint32_t value) {
    const uint32_t xAndY = value & (kZ80FlagX | kZ80FlagY);
    return xAndY | (value == 0 ? uint32_t{kZ80FlagZ} : value & kZ80FlagS);
}

constexpr uint32_t Increment(uint32_t result) {
    return SignAndZero(result) | ((result & 0x0F) == 0 ? uint32_t{kZ80FlagH} : 0) |
           (result == 0x80 ? uint32_t{kZ80FlagPv} : 0);
}

constexpr uint32_t Decrement(uint32_t result) {
    return SignAndZero(result) | kZ80FlagN | ((result & 0x0F) == 0x0F ? uint32_t{kZ80FlagH} : 0) |
           (result == 0x7F ? uint32_t{kZ80FlagPv} : 0);
}

constexpr uint32_t Parity(uint32_t value) {
    return SignAndZero(value) | (std::popcount(value) % 2 == 0 ? uint32_t{kZ80FlagPv} : 0);
}

constexpr uint32_t Bit(uint32_t value) {
    return SignAndZero(value) | (value == 0 ? uint32_t{kZ80FlagPv} : 0);
}

constexpr Z80FlagTable Generate(uint32_t (*flags)(uint32_t)) {
    Z80FlagTable table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        table[i] = static_cast<uint8_t>(flags(i));
    }
    return table;
}

} // namespace

constexpr Z80FlagTable kZ80FlagsSz = Generate(SignAndZero);
constexpr Z80FlagTable kZ80FlagsInc = Generate(Increment);
constexpr Z80FlagTable kZ80FlagsDec = Generate(Decrement);
constexpr Z80FlagTable kZ80FlagsParity = Generate(Parity);
constexpr Z80FlagTable kZ80FlagsBit = Generate(Bit);
