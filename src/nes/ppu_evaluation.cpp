// Sprite evaluation: finds the sprites of the next line (nesdev wiki, "PPU sprite evaluation").
#include "nes/ppu.h"
#include "nes/ppu_private.h"

namespace {

constexpr uint32_t kClearDots = 64;
constexpr uint32_t kSearchPairs = 96; // of dots, even and odd, from dot 64 to 255

// A sprite's Y is the line above its first row, so this compares the current line for the next one. No Y
// is in range on line -1: line 0 has no sprites.
[[nodiscard]] bool InRange(const PPU& ppu, uint8_t y) {
    const uint32_t height = (ppu.control & kPpuCtrlTallSprites) != 0 ? 16 : 8;
    return static_cast<uint32_t>(ppu.line - y) < height;
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

} // namespace

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
