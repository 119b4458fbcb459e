// Sprite evaluation: finds the sprites of the next line (nesdev wiki, "PPU sprite evaluation").
#include "nes/ppu.h"
#include "nes/ppu_private.h"

#include <algorithm>
#include <array>

namespace {

constexpr size_t kOamSpriteBytes = 4;
constexpr uint32_t kClearDots = 64;
constexpr uint32_t kSearchPairs = 96; // of dots, even and odd, from dot 64 to 255

[[nodiscard]] uint32_t SpriteHeight(const PPU& ppu) {
    return (ppu.control & kPpuCtrlTallSprites) != 0 ? 16 : 8;
}

// A sprite's Y is the line above its first row, so this compares the current line for the next one. No Y
// is in range on line -1: line 0 has no sprites.
[[nodiscard]] bool InRange(const PPU& ppu, uint8_t y) {
    return static_cast<uint32_t>(ppu.line - y) < SpriteHeight(ppu);
}

// OAMADDR selects the first sprite, without the lowest bit of its number.
void Start(PPU& ppu) {
    ppu.evaluation = kPpuFindSprite;
    constexpr uint8_t kEvenSprite = 0xF8;
    ppu.spriteIndex = ppu.oamAddress & kEvenSprite;
    ppu.foundCount = 0;
    ppu.foundZero = false;
}

// Moves to byte 0 of the next sprite.
void NextSprite(PPU& ppu) {
    ppu.spriteIndex = static_cast<uint8_t>((ppu.spriteIndex & kPpuOamSprite) + 4);
    if (ppu.spriteIndex == 0) {
        ppu.evaluation = kPpuIdle;
    }
}

// The place in secondary OAM for the byte just read.
[[nodiscard]] uint8_t& Copy(PPU& ppu) {
    return ppu.secondaryOam[(ppu.foundCount * 4U + (ppu.spriteIndex & kPpuOamByte)) %
                            ppu.secondaryOam.size()];
}

void FindSprite(PPU& ppu) {
    Copy(ppu) = ppu.spriteByte;
    if (!InRange(ppu, ppu.spriteByte)) {
        NextSprite(ppu);
        return;
    }
    if (ppu.foundCount == 0) {
        ppu.foundZero = ppu.spriteIndex == 0;
    }
    ppu.evaluation = kPpuCopySprite;
    ++ppu.spriteIndex;
}

void CopySprite(PPU& ppu) {
    Copy(ppu) = ppu.spriteByte;
    ++ppu.spriteIndex;
    if ((ppu.spriteIndex & kPpuOamByte) == 0) {
        ++ppu.foundCount;
        ppu.evaluation = ppu.foundCount == kPpuLineSprites ? kPpuFindOverflow : kPpuFindSprite;
        if (ppu.spriteIndex == 0) {
            ppu.evaluation = kPpuIdle;
        }
    }
}

// The overflow bug: while it looks for a ninth sprite, the chip increments the byte along with the sprite,
// so it compares tiles, attributes and X positions as if they were a Y.
void FindOverflow(PPU& ppu) {
    if (InRange(ppu, ppu.spriteByte)) {
        ppu.status |= kPpuStatusSpriteOverflow;
        ppu.evaluation = kPpuSkipSprite;
        ppu.skipBytes = 3;
        ++ppu.spriteIndex;
        return;
    }
    const uint32_t byte = (ppu.spriteIndex + 1U) & kPpuOamByte;
    const uint32_t sprite = (ppu.spriteIndex + 4U) & kPpuOamSprite;
    ppu.spriteIndex = static_cast<uint8_t>(sprite | byte);
    if (sprite == 0) {
        ppu.evaluation = kPpuIdle;
        ppu.spriteIndex = 0;
    }
}

void SkipSprite(PPU& ppu) {
    ++ppu.spriteIndex;
    if (ppu.skipBytes-- <= 1) {
        ppu.skipBytes = 0;
        ppu.evaluation = kPpuIdle;
        ppu.spriteIndex &= kPpuOamSprite;
    }
}

// An odd dot: handles the byte that the even dot has read.
void EvaluateByte(PPU& ppu) {
    switch (ppu.evaluation) {
    case kPpuFindSprite: FindSprite(ppu); break;
    case kPpuCopySprite: CopySprite(ppu); break;
    case kPpuFindOverflow: FindOverflow(ppu); break;
    case kPpuSkipSprite: SkipSprite(ppu); break;
    default: NextSprite(ppu); break;
    }
}

// `pairs` pairs of dots past the last sprite, which read every Y in turn.
void Idle(PPU& ppu, uint32_t pairs) {
    const uint32_t last = (ppu.spriteIndex & kPpuOamSprite) + (pairs - 1) * 4;
    ppu.spriteByte = ppu.oam[last & 0xFF];
    ppu.spriteIndex = static_cast<uint8_t>(last + 4);
}

// Moves past at most `most` sprites that are out of range, and never past the last sprite. The byte that each leaves is
// replaced by that of the next one. Returns how many there were.
uint32_t SkipSprites(PPU& ppu, uint32_t most) {
    uint32_t index = ppu.spriteIndex;
    const uint32_t end = std::min<uint32_t>(index + most * 4, kPpuOamSprite);
    const auto line = static_cast<uint32_t>(ppu.line);
    const uint32_t height = SpriteHeight(ppu);
    while (index < end && line - ppu.oam[index] >= height) {
        index += 4;
    }
    const uint32_t skipped = (index - ppu.spriteIndex) / 4;
    ppu.spriteIndex = static_cast<uint8_t>(index);
    return skipped;
}

// By line: how many sprites more than in the line before are in its range.
using RangeChanges = std::array<int8_t, kPpuHeight + 1>;

[[nodiscard]] RangeChanges ChangesOfRange(const PPU& ppu) {
    RangeChanges changes{};
    for (size_t i = 0; i < ppu.oam.size(); i += kOamSpriteBytes) {
        const uint32_t first = std::min<uint32_t>(ppu.oam[i], kPpuHeight);
        ++changes[first];
        --changes[std::min(first + SpriteHeight(ppu), kPpuHeight)];
    }
    return changes;
}

} // namespace

uint32_t PpuDotsOfSameStatus(const PPU& ppu) {
    constexpr uint32_t kLongerThanAFrame = 2 * kPpuLines * kPpuLineDots;
    if (!ppu.rendering) {
        return kLongerThanAFrame;
    }
    const bool mayHit = (ppu.status & kPpuStatusSpriteZeroHit) == 0;
    const bool mayOverflow = (ppu.status & kPpuStatusSpriteOverflow) == 0;
    if (mayHit && (ppu.zeroNote || ppu.foundZero)) {
        return 0;
    }
    const RangeChanges changes = ChangesOfRange(ppu);
    int32_t inRange = 0;
    for (int32_t line = 0; line < kPpuIdleLine; ++line) {
        inRange += changes[static_cast<size_t>(line)];
        if (line < ppu.line) {
            continue;
        }
        const int32_t found = line == ppu.line ? ppu.foundCount : 0;
        const auto belowZero = static_cast<uint32_t>(line - ppu.oam[0]);
        if ((mayOverflow && inRange + found >= static_cast<int32_t>(kPpuLineSprites)) ||
            (mayHit && belowZero < SpriteHeight(ppu))) {
            const auto lines = static_cast<uint32_t>(line - ppu.line);
            return lines == 0 ? 0 : ppu.lineLength - ppu.dot + (lines - 1) * kPpuLineDots;
        }
    }
    return kLongerThanAFrame;
}

void PpuEvaluateDot(PPU& ppu, uint32_t dot) {
    const bool odd = (dot & 1) != 0;
    if (dot < kClearDots) {
        if (odd) {
            ppu.secondaryOam[dot >> 1] = 0xFF;
        }
    } else if (odd) {
        EvaluateByte(ppu);
    } else {
        if (dot == kClearDots) {
            Start(ppu);
        }
        ppu.spriteByte = ppu.oam[ppu.spriteIndex];
    }
}

void PpuEvaluateLine(PPU& ppu) {
    ppu.secondaryOam.fill(0xFF);
    Start(ppu);
    for (uint32_t pairs = kSearchPairs; pairs != 0; --pairs) {
        if (ppu.evaluation == kPpuIdle) {
            Idle(ppu, pairs);
            return;
        }
        if (ppu.evaluation == kPpuFindSprite) {
            pairs -= SkipSprites(ppu, pairs - 1);
        }
        ppu.spriteByte = ppu.oam[ppu.spriteIndex];
        EvaluateByte(ppu);
    }
}

void PpuEvaluateTo(PPU& ppu, uint32_t end) {
    if (ppu.evaluatedDots == 0 && end == kPpuWidth) {
        PpuEvaluateLine(ppu);
    } else {
        for (uint32_t dot = ppu.evaluatedDots; dot < end; ++dot) {
            PpuEvaluateDot(ppu, dot);
        }
    }
    ppu.evaluatedDots = end;
}
