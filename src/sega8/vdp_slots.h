// What the 8-bit VDP does with its memory in every slot of a line.
//
// A line has 171 slots of two dots. A slot list has two bytes a slot, in dot order: the kind, and
// the width of the memory cycle (1: a byte, 0: a word). A kind is even and sets an address; kind +
// 1 takes the data one slot later.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

enum VdpSlotKind : uint8_t {
    kSlotNone = 0,
    kSlotBlank = 4, // eight pixels of backdrop, no access
    kSlotFree = 8,  // for the processor
    kSlotFreeData = 9,
    // Mode 4.
    kSlotName4 = 10,
    kSlotName4Data = 11,
    kSlotTileLow = 14, // bit planes 0 and 1
    kSlotTileLowData = 15,
    kSlotTileHigh = 16, // bit planes 2 and 3
    kSlotTileHighData = 17,
    kSlotTestY4 = 18, // two Y values of the sprite search
    kSlotTestY4Data = 19,
    kSlotSprite4 = 22, // X and tile of a found sprite
    kSlotSprite4Data = 23,
    kSlotSprite4Low = 24,
    kSlotSprite4LowData = 25,
    kSlotSprite4High = 26,
    kSlotSprite4HighData = 27,
    // Modes 0 to 2.
    kSlotName = 30,
    kSlotNameData = 31,
    kSlotPattern = 32,
    kSlotPatternData = 33,
    kSlotColour = 34,
    kSlotColourData = 35,
    kSlotSpriteY = 36, // six slots a found sprite
    kSlotSpriteX = 38,
    kSlotSpriteXData = 39,
    kSlotSpriteNumber = 40,
    kSlotSpriteNumberData = 41,
    kSlotSpriteFlags = 42,
    kSlotSpriteFlagsData = 43,
    kSlotSpriteLeft = 44,
    kSlotSpriteLeftData = 45,
    kSlotSpriteRight = 46,
    kSlotSpriteRightData = 47,
    kSlotTestY = 48, // one Y value of the sprite search
    kSlotTestYData = 49,
};

inline constexpr size_t kVdpSlots = 171;
inline constexpr size_t kVdpSlotBytes = 342;

using VdpSlotList = std::array<uint8_t, kVdpSlotBytes>;

// Index of a list in kVdpSlotLists.
enum VdpSlotListNumber : uint8_t {
    kVdpMode4Active = 0,
    kVdpMode4Blank = 1,
    kVdpLegacyActive = 2,
    kVdpLegacyBlank = 3,
};

extern const std::array<VdpSlotList, 4> kVdpSlotLists;
