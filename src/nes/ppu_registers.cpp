#include "nes/ppu.h"
#include "nes/ppu_private.h"

namespace {

enum Register : uint16_t {
    kControl = 0,
    kMask = 1,
    kStatus = 2,
    kOamAddress = 3,
    kOamData = 4,
    kScroll = 5,
    kAddress = 6,
    kData = 7,
};

constexpr uint16_t kVramAddressMask = 0x7FFF;
constexpr uint32_t kNmiUndecidedDots = 3; // of line 241: what is done there still reaches the NMI
constexpr uint8_t kAttributeBits = 0xE3;  // of a sprite; three bits don't exist

void RaiseNmi(PPU& ppu) {
    *ppu.nmiLine |= 1;
}

void DropNmi(PPU& ppu) {
    *ppu.nmiLine &= ~1U;
}

[[nodiscard]] bool NmiUndecided(const PPU& ppu) {
    return ppu.line == kPpuVblankLine && ppu.dot < kNmiUndecidedDots;
}

void SetTempBits(PPU& ppu, uint32_t bits, uint32_t value) {
    ppu.tempAddress = static_cast<uint16_t>((ppu.tempAddress & ~bits) | (value & bits));
}

void WriteControl(PPU& ppu, uint8_t value) {
    if ((value & ~ppu.control & kPpuCtrlNmi) != 0 && (ppu.status & kPpuStatusVblank) != 0) {
        RaiseNmi(ppu);
    }
    if ((value & kPpuCtrlNmi) == 0 && NmiUndecided(ppu)) {
        DropNmi(ppu);
    }
    ppu.control = value;
    SetTempBits(ppu, 0xC00, value * 0x400U);
}

void WriteOam(PPU& ppu, uint8_t value) {
    if (ppu.rendering) {
        value = 0xFF;
    }
    if ((ppu.oamAddress & 3) == 2) {
        value &= kAttributeBits;
    }
    ppu.oam[ppu.oamAddress] = value;
    ++ppu.oamAddress;
}

void WriteScroll(PPU& ppu, uint8_t value) {
    if (ppu.firstWrite != 0) {
        SetTempBits(ppu, 0x001F, value >> 3);
        ppu.fineX = value & 7;
    } else {
        SetTempBits(ppu, 0x73E0, (value & 7U) << 12 | (value & 0xF8U) << 2);
    }
    ppu.firstWrite ^= 1;
}

void WriteAddress(PPU& ppu, uint8_t value) {
    if (ppu.firstWrite != 0) {
        SetTempBits(ppu, 0x7F00, (value & 0x3FU) << 8);
    } else {
        SetTempBits(ppu, 0x00FF, value);
        ppu.vramAddress = ppu.tempAddress;
    }
    ppu.firstWrite ^= 1;
}

void IncrementAddress(PPU& ppu) {
    const uint32_t step = (ppu.control & kPpuCtrlIncrement32) != 0 ? 32 : 1;
    ppu.vramAddress = static_cast<uint16_t>((ppu.vramAddress + step) & kVramAddressMask);
}

void WriteData(PPU& ppu, uint8_t value) {
    if (ppu_bus::IsPalette(ppu.vramAddress)) {
        const uint32_t entry = ppu.vramAddress & 0x1F;
        ppu.palette[entry] = value & 0x3F;
        if ((entry & 3) == 0) {
            ppu.palette[entry ^ 0x10] = value & 0x3F;
        }
        PpuDeriveShades(ppu);
    } else {
        ppu.ioValue = value;
        ppu.ioState = kPpuWriteStart;
        ppu.ioAddress = ppu.vramAddress & ppu_bus::kMask;
    }
    IncrementAddress(ppu);
}

[[nodiscard]] uint8_t ReadStatus(PPU& ppu) {
    auto result = static_cast<uint8_t>(ppu.status | (ppu.openBus & 0x1F));
    ppu.firstWrite = 1;
    ppu.status &= static_cast<uint8_t>(~kPpuStatusVblank);
    if (NmiUndecided(ppu)) {
        if (ppu.dot == 0) {
            result &= static_cast<uint8_t>(~kPpuStatusVblank);
        }
        DropNmi(ppu);
    }
    return result;
}

// A palette entry comes at once, while the buffer takes the byte of the nametable mirror beneath it.
[[nodiscard]] uint8_t ReadData(PPU& ppu) {
    const uint16_t address = ppu.vramAddress & ppu_bus::kMask;
    ppu.ioState = kPpuReadStart;
    ppu.ioAddress = address;
    IncrementAddress(ppu);
    return ppu_bus::IsPalette(address) ? ppu.palette[address & 0x1F] & ppu.grayMask
                                       : ppu.readBuffer;
}

} // namespace

void PpuWriteRegister(PPU& ppu, uint16_t address, uint8_t value) {
    PpuCatchUp(ppu);
    ppu.openBus = value;
    switch (address & 7) {
    case kControl: WriteControl(ppu, value); break;
    case kMask:
        ppu.mask = value;
        PpuDerive(ppu);
        PpuDeriveShades(ppu);
        break;
    case kOamAddress: ppu.oamAddress = value; break;
    case kOamData: WriteOam(ppu, value); break;
    case kScroll: WriteScroll(ppu, value); break;
    case kAddress: WriteAddress(ppu, value); break;
    case kData: WriteData(ppu, value); break;
    default: break; // the status can't be written
    }
}

uint8_t PpuReadRegister(PPU& ppu, uint16_t address) {
    PpuCatchUp(ppu);
    switch (address & 7) {
    case kStatus: ppu.openBus = ReadStatus(ppu); break;
    case kOamData: ppu.openBus = ppu.oam[ppu.rendering ? ppu.spriteIndex : ppu.oamAddress]; break;
    case kData: ppu.openBus = ReadData(ppu); break;
    default: break;
    }
    return ppu.openBus;
}
