// The four slot lists of the 8-bit VDP, expanded at compile time. The order of the slots is settled here.
#include "sega8/vdp_slots.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace {

// Slots in order, two bytes each.
template <size_t Bytes>
using Slots = std::array<uint8_t, Bytes>;

constexpr Slots<2> Byte(VdpSlotKind kind) {
    return {kind, 1};
}

constexpr Slots<2> Word(VdpSlotKind kind) {
    return {kind, 0};
}

template <size_t... Bytes>
constexpr Slots<(Bytes + ...)> Row(const Slots<Bytes>&... parts) {
    Slots<(Bytes + ...)> all{};
    size_t at = 0;
    ((std::copy(parts.begin(), parts.end(), all.begin() + at), at += Bytes), ...);
    return all;
}

template <size_t Times, size_t Bytes>
constexpr Slots<Times * Bytes> Repeat(const Slots<Bytes>& part) {
    Slots<Times * Bytes> all{};
    for (size_t i = 0; i < Times; ++i) {
        std::copy(part.begin(), part.end(), all.begin() + i * Bytes);
    }
    return all;
}

constexpr auto kFree = Byte(kSlotFree);

// Thirty-two columns in eight groups of four. The second slot of a group's first column is for the
// processor; that of the other three tests sprites.
template <size_t Bytes>
constexpr auto Columns(const Slots<Bytes>& first, const Slots<Bytes>& other) {
    return Repeat<8>(Row(first, Repeat<3>(other)));
}

// Mode 4: fetch of eight sprites, then the start of the search for the line after next.
constexpr auto kSprites4 =
    Repeat<8>(Row(Word(kSlotSprite4), kFree, Word(kSlotSprite4Low), Word(kSlotSprite4High)));
constexpr auto kSearch4 = Repeat<4>(Word(kSlotTestY4));
constexpr auto kEnd4 = Row(kFree, kSprites4, kFree, kSearch4, kFree, kSearch4);

constexpr auto kMode4Active =
    Row(Columns(Row(Word(kSlotName4), kFree, Word(kSlotTileLow), Word(kSlotTileHigh)),
                Row(Word(kSlotName4), Word(kSlotTestY4), Word(kSlotTileLow), Word(kSlotTileHigh))),
        kEnd4);

constexpr auto kMode4Blank = Row(Columns(Row(kFree, kFree, kFree, Byte(kSlotBlank)),
                                         Row(kFree, Word(kSlotTestY4), kFree, Byte(kSlotBlank))),
                                 kEnd4);

// Modes 0 to 2: four sprites of six slots. Five other slots split the third sprite after its
// second.
constexpr auto kSpriteHead = Row(Byte(kSlotSpriteY), Byte(kSlotSpriteX));
constexpr auto kSpriteRest = Row(Byte(kSlotSpriteNumber), Byte(kSlotSpriteFlags),
                                 Byte(kSlotSpriteLeft), Byte(kSlotSpriteRight));
constexpr auto kSprite = Row(kSpriteHead, kSpriteRest);
constexpr auto kSearch = Repeat<4>(Byte(kSlotTestY));
constexpr auto kSearchEnd = Row(Repeat<3>(kFree), kSearch, kFree, kSearch);

constexpr auto kLegacyActive =
    Row(Columns(Row(Byte(kSlotName), kFree, Byte(kSlotPattern), Byte(kSlotColour)),
                Row(Byte(kSlotName), Byte(kSlotTestY), Byte(kSlotPattern), Byte(kSlotColour))),
        kFree, kFree, kSprite, kSprite, kSpriteHead, Repeat<5>(kFree), kSpriteRest, kSprite,
        kSearchEnd);

constexpr auto kLegacyBlank = Row(Columns(Row(kFree, kFree, kFree, Byte(kSlotBlank)),
                                          Row(kFree, Byte(kSlotTestY), kFree, Byte(kSlotBlank))),
                                  kFree, kFree, kSprite, kFree, kSprite, kFree, kSpriteHead, kFree,
                                  kFree, kSpriteRest, kFree, kSprite, kSearchEnd);

static_assert(kVdpSlotBytes == 2 * kVdpSlots);
static_assert(kMode4Active.size() == kVdpSlotBytes);
static_assert(kMode4Blank.size() == kVdpSlotBytes);
static_assert(kLegacyActive.size() == kVdpSlotBytes);
static_assert(kLegacyBlank.size() == kVdpSlotBytes);

} // namespace

constinit const std::array<VdpSlotList, 4> kVdpSlotLists = {kMode4Active, kMode4Blank,
                                                            kLegacyActive, kLegacyBlank};
