#include "nes/nes_lines.h"
#include "nes/ppu.h"
#include "nes/ppu_private.h"

namespace {

// Offsets from 0x2000.
enum Register : uint16_t {
    kControl = 0,    // PPUCTRL
    kMask = 1,       // PPUMASK
    kStatus = 2,     // PPUSTATUS
    kOamAddress = 3, // OAMADDR
    kOamData = 4,    // OAMDATA
    kScroll = 5,     // PPUSCROLL
    kAddress = 6,    // PPUADDR
    kData = 7,       // PPUDATA
};

constexpr uint32_t kNmiUndecidedDots = 3; // of line 241: an access there can still cancel the NMI
constexpr uint32_t kFineBits = 3;         // of a byte written to PPUSCROLL; the rest is coarse
constexpr uint32_t kFine = (1 << kFineBits) - 1;
constexpr uint8_t kHighAddress = 0x3F; // of the first byte written to PPUADDR
constexpr uint16_t kRegisterBits = 7;  // of an address
constexpr uint32_t kPaletteColour = 3; // of a palette entry's number
constexpr uint8_t kAttributeByte = 2;  // of the four of a sprite
constexpr uint8_t kColourBits = 0x3F;
// Byte 2 of a sprite: bits 2 to 4 don't exist.
constexpr uint8_t kAttributeBits =
    kPpuAttributePalette | kPpuAttributeBehind | kPpuAttributeFlipX | kPpuAttributeFlipY;

void RaiseNmi(PPU& ppu) {
    *ppu.nmiLine |= kNesNmiPpu;
}

void DropNmi(PPU& ppu) {
    *ppu.nmiLine &= ~kNesNmiPpu;
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
    SetTempBits(ppu, ppu_address::kNametables,
                (value & uint32_t{kPpuCtrlNametable}) << ppu_address::kNametableShift);
}

void WriteOam(PPU& ppu, uint8_t value) {
    if (ppu.rendering) {
        value = 0xFF;
    }
    if ((ppu.oamAddress & kPpuOamByte) == kAttributeByte) {
        value &= kAttributeBits;
    }
    ppu.oam[ppu.oamAddress] = value;
    ++ppu.oamAddress;
}

void WriteScroll(PPU& ppu, uint8_t value) {
    using namespace ppu_address;
    const uint32_t coarse = value >> kFineBits;
    const uint32_t fine = value & kFine;
    if (ppu.firstWrite != 0) {
        SetTempBits(ppu, kCoarseX, coarse);
        ppu.fineX = static_cast<uint8_t>(fine);
    } else {
        SetTempBits(ppu, kFineY | kCoarseY, fine << kFineYShift | coarse << kCoarseYShift);
    }
    ppu.firstWrite ^= 1;
}

// The first write also clears bit 14: the bus has only 14 address bits.
void WriteAddress(PPU& ppu, uint8_t value) {
    constexpr uint32_t kHighByte = 0x7F00;
    constexpr uint32_t kLowByte = 0x00FF;
    if (ppu.firstWrite != 0) {
        SetTempBits(ppu, kHighByte, (value & uint32_t{kHighAddress}) << 8);
    } else {
        SetTempBits(ppu, kLowByte, value);
        ppu.vramAddress = ppu.tempAddress;
    }
    ppu.firstWrite ^= 1;
}

void IncrementAddress(PPU& ppu) {
    const uint32_t step = (ppu.control & kPpuCtrlIncrement32) != 0 ? 32 : 1;
    ppu.vramAddress = static_cast<uint16_t>((ppu.vramAddress + step) & ppu_address::kAll);
}

void WriteData(PPU& ppu, uint8_t value) {
    if (ppu_bus::IsPalette(ppu.vramAddress)) {
        const uint32_t entry = ppu.vramAddress & ppu_bus::kPaletteEntry;
        ppu.palette[entry] = value & kColourBits;
        // Entry 0 of a background palette is also that of the sprite palette.
        if ((entry & kPaletteColour) == 0) {
            ppu.palette[entry ^ ppu_bus::kSpritePalettes] = value & kColourBits;
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
    auto result = static_cast<uint8_t>(ppu.status | (ppu.openBus & kPpuStatusOpenBus));
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

// A palette read returns the entry at once; the buffer takes the byte of the nametable mirror beneath.
[[nodiscard]] uint8_t ReadData(PPU& ppu) {
    const uint16_t address = ppu.vramAddress & ppu_bus::kMask;
    ppu.ioState = kPpuReadStart;
    ppu.ioAddress = address;
    IncrementAddress(ppu);
    return ppu_bus::IsPalette(address)
               ? ppu.palette[address & ppu_bus::kPaletteEntry] & ppu.grayMask
               : ppu.readBuffer;
}

} // namespace

void PpuWriteRegister(PPU& ppu, uint16_t address, uint8_t value) {
    PpuCatchUp(ppu);
    ppu.openBus = value;
    switch (address & kRegisterBits) {
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
    default: break; // PPUSTATUS can't be written
    }
}

// A read that can still cancel the NMI finds the vblank flag, or another has cleared it and cancelled the NMI.
bool PpuStatusReadIsIdle(const PPU& ppu) {
    return ppu.firstWrite == 1 && (ppu.status & kPpuStatusVblank) == 0 &&
           ppu.openBus == (ppu.status | (ppu.openBus & kPpuStatusOpenBus));
}

uint8_t PpuReadRegister(PPU& ppu, uint16_t address) {
    PpuCatchUp(ppu);
    switch (address & kRegisterBits) {
    case kStatus: ppu.openBus = ReadStatus(ppu); break;
    case kOamData: ppu.openBus = ppu.oam[ppu.rendering ? ppu.spriteIndex : ppu.oamAddress]; break;
    case kData: ppu.openBus = ReadData(ppu); break;
    default: break;
    }
    return ppu.openBus;
}
