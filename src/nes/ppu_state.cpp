#include "machine/state_piece.h"
#include "nes/ppu.h"
#include "nes/ppu_private.h"

#include <algorithm>
#include <memory>

namespace {

template <typename Visit>
void RegisterFields(PPU& ppu, Visit& visit) {
    visit(ppu.control);
    visit(ppu.mask);
    visit(ppu.status);
    visit(ppu.vramAddress);
    visit(ppu.tempAddress);
    visit(ppu.fineX);
    visit(ppu.firstWrite);
    visit(ppu.oamAddress);
    visit(ppu.openBus);
    visit(ppu.readBuffer);
    visit(ppu.ioState);
    visit(ppu.ioAddress);
    visit(ppu.ioValue);
    visit(ppu.randomState);
}

template <typename Visit>
void FrameFields(PPU& ppu, Visit& visit) {
    visit(ppu.dot);
    visit(ppu.line);
    visit(ppu.lineLength);
    visit(ppu.oddFrame);
    visit(ppu.frameDone);
    visit(ppu.drawnDots);
    visit(ppu.evaluatedDots);
    visit(ppu.fetchAddress);
    visit(ppu.tile);
    visit(ppu.attribute);
    visit(ppu.lowPlane);
    visit(ppu.background);
}

template <typename Visit>
void SpriteFields(PPU& ppu, Visit& visit) {
    visit(ppu.evaluation);
    visit(ppu.spriteIndex);
    visit(ppu.spriteByte);
    visit(ppu.skipBytes);
    visit(ppu.foundCount);
    visit(ppu.foundZero);
    visit(ppu.spriteCount);
    visit(ppu.zeroNote);
}

template <typename Visit>
void MemoryFields(PPU& ppu, Visit& visit) {
    visit(ppu.oam);
    visit(ppu.secondaryOam);
    visit(ppu.palette);
    visit(ppu.spriteLine);
    visit(ppu.nametables);
}

auto FieldsOf(PPU& ppu) {
    return [&ppu](auto& visit) {
        RegisterFields(ppu, visit);
        FrameFields(ppu, visit);
        SpriteFields(ppu, visit);
        MemoryFields(ppu, visit);
    };
}

// The access that counts down, or none.
uint8_t SafeAccess(uint8_t state) {
    return state <= kPpuWriteStart ? state : uint8_t{kPpuNoAccess};
}

// Brings loaded values into the chip's own ranges.
void Sanitize(PPU& ppu) {
    ppu.vramAddress &= ppu_address::kAll;
    ppu.tempAddress &= ppu_address::kAll;
    ppu.fineX &= 7;
    ppu.firstWrite &= 1;
    ppu.ioState = SafeAccess(ppu.ioState);
    ppu.ioAddress &= ppu_bus::kMask;
    ppu.fetchAddress &= ppu_bus::kMask;
    ppu.status &= kPpuStatusVblank | kPpuStatusSpriteZeroHit | kPpuStatusSpriteOverflow;
    ppu.line = std::clamp(ppu.line, kPpuPreRenderLine, ppu.totalLines - 2);
    const bool isShort = ppu.lineLength == kPpuShortLineDots && ppu.line == kPpuPreRenderLine;
    ppu.lineLength = isShort ? kPpuShortLineDots : kPpuLineDots;
    ppu.dot = std::min(ppu.dot, ppu.lineLength - 1);
    const uint32_t picture = std::min(ppu.dot + 1, kPpuWidth);
    ppu.drawnDots = std::min(ppu.drawnDots, picture);
    ppu.evaluatedDots = std::min(ppu.evaluatedDots, picture);
    ppu.attribute &= 3;
    ppu.evaluation = std::min<uint8_t>(ppu.evaluation, kPpuIdle);
    ppu.skipBytes &= 3;
    const auto most = static_cast<uint8_t>(kPpuLineSprites);
    ppu.foundCount = std::min(ppu.foundCount, most);
    ppu.spriteCount = std::min(ppu.spriteCount, most);
    // With eight found, secondary OAM has no room for another. With fewer no overflow is looked for.
    if (ppu.foundCount == most && ppu.evaluation < kPpuFindOverflow) {
        ppu.evaluation = kPpuFindOverflow;
    } else if (ppu.evaluation == kPpuFindOverflow) {
        ppu.foundCount = most;
    }
    for (uint8_t& entry : ppu.palette) {
        entry &= 0x3F;
    }
    for (uint8_t& pixel : ppu.spriteLine) {
        pixel &= kPpuSpriteEntry | kPpuSpriteBehind | kPpuSpriteZero;
    }
}

} // namespace

uint32_t PpuStateSize() {
    static const uint32_t kSize = [] {
        const auto ppu = std::make_unique<PPU>();
        return StatePieceSize(FieldsOf(*ppu));
    }();
    return kSize;
}

uint8_t* PpuSaveState(const PPU& ppu, uint8_t* out) {
    // Saving shares the field list with loading, which needs a non-const chip; it changes nothing.
    return StatePieceWrite(out, FieldsOf(const_cast<PPU&>(ppu)));
}

uint32_t PpuLoadState(PPU& ppu, const uint8_t* data, uint32_t size) {
    const uint32_t used = StatePieceRead(data, size, FieldsOf(ppu));
    if (used != 0) {
        Sanitize(ppu);
        PpuDerive(ppu);
        PpuDeriveRow(ppu);
        PpuDeriveShades(ppu);
    }
    return used;
}
