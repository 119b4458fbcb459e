#include "nes/nes_bus.h"

namespace {

// Offsets from 0x4000.
constexpr uint16_t kLastSoundRegister = 0x13;
constexpr uint16_t kSpriteDma = 0x14;
constexpr uint16_t kSoundStatus = 0x15;
constexpr uint16_t kPad1 = 0x16; // written: the strobe of both pads
constexpr uint16_t kPad2 = 0x17; // written: the APU's frame counter

constexpr uint16_t kOffsetMask = 0x0FFF;
constexpr uint16_t kOamData = 0x2004;
constexpr uint32_t kOamBytes = 256;
constexpr uint8_t kPadOpenBits = 0xC0; // open bus: not driven by a pad
constexpr uint32_t kPadReads = 31;     // mask: the buttons come again after 32 reads

uint8_t PadBits(const NES_CONSOLE& nes, const NES_PAD& pad) {
    const uint32_t bit = uint32_t{pad.buttons} >> (pad.readIndex & kPadReads) & 1;
    return static_cast<uint8_t>((nes.cpu.busValue & kPadOpenBits) | bit);
}

uint8_t ReadPad(NES_CONSOLE& nes, NES_PAD& pad) {
    const uint8_t value = PadBits(nes, pad);
    ++pad.readIndex;
    return value;
}

// Copies the whole page within the write's cycle. The CPU's next fetch is then the last value on the bus.
void CopySprites(NES_CONSOLE& nes, uint8_t page) {
    NES_BUS bus{nes};
    for (uint32_t i = 0; i < kOamBytes; ++i) {
        nes.cpu.busValue = bus.Read(static_cast<uint16_t>(uint32_t{page} << 8 | i));
        PpuWriteRegister(nes.ppu, kOamData, nes.cpu.busValue);
    }
    nes.cpu.busValue = bus.Read(nes.cpu.pc);
}

} // namespace

uint8_t NesReadChip(NES_CONSOLE& nes, uint16_t address) {
    if (address < nes_bus::kApuStart) {
        return PpuReadRegister(nes.ppu, address);
    }
    switch (address & kOffsetMask) {
    case kSoundStatus: return ApuReadStatus(nes.apu);
    case kPad1: return ReadPad(nes, nes.pads[0]);
    case kPad2: return ReadPad(nes, nes.pads[1]);
    default: return nes.cpu.busValue;
    }
}

void NesWriteChip(NES_CONSOLE& nes, uint16_t address, uint8_t value) {
    if (address < nes_bus::kApuStart) {
        PpuWriteRegister(nes.ppu, address, value);
        return;
    }
    const uint16_t offset = address & kOffsetMask;
    if (offset <= kLastSoundRegister || offset == kSoundStatus || offset == kPad2) {
        ApuWrite(nes.apu, address, value);
    } else if (offset == kSpriteDma) {
        CopySprites(nes, value);
    } else if (offset == kPad1) {
        for (NES_PAD& pad : nes.pads) {
            pad.readIndex = 0;
        }
    }
}

uint8_t NesPeek(const NES_CONSOLE& nes, uint16_t address) {
    if (address >= nes_bus::kCartridgeStart) {
        return CartridgeRead(nes.cartridge, address);
    }
    if (address < nes_bus::kPpuStart) {
        return nes.workRam[address & nes_bus::kWorkRamMask];
    }
    if (address < nes_bus::kApuStart) {
        // A read of a copy, so that the side effects are lost.
        PPU copy = nes.ppu;
        uint32_t nmiLine = 0;
        copy.nmiLine = &nmiLine;
        copy.row = nullptr;
        return PpuReadRegister(copy, address);
    }
    switch (address & kOffsetMask) {
    case kSoundStatus: return ApuPeekStatus(nes.apu);
    case kPad1: return PadBits(nes, nes.pads[0]);
    case kPad2: return PadBits(nes, nes.pads[1]);
    default: return nes.cpu.busValue;
    }
}
