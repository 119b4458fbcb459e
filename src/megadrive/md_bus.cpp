#include "megadrive/md_bus.h"

#include "megadrive/md_vdp_tick.h"
#include "megadrive/ym2612_tick.h"
#include "sega8/z80_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kNothingStart = 0x800000;
constexpr uint32_t kZ80Start = 0xA00000;
constexpr uint32_t kIoStart = 0xA10000;
constexpr uint32_t kIoEnd = 0xA10020;
constexpr uint32_t kBusRequestPage = 0xA11100; // and the 256 bytes from there
constexpr uint32_t kResetPage = 0xA11200;
constexpr uint32_t kSvpPort = 0xA15000;
constexpr uint32_t kSvpPortMirror = 0xA15002;
constexpr uint32_t kVdpStart = 0xC00000;
constexpr uint32_t kVdpSelect = 0xE700E0; // these address bits are decoded
constexpr uint32_t kRamStart = 0xE00000;
constexpr uint32_t kZ80HandOver = 3;    // clocks that the Z80 still runs when its bus changes hands
constexpr int32_t kZ80ResetDelay = -45; // master clocks
constexpr uint32_t kBankMask = 0xFF8000;
constexpr uint32_t kBankInput = 23; // the bit at which the bank register takes a new one
constexpr uint32_t kStatusBits = 0x3FF;

MEGA_DRIVE& Machine(void* owner) {
    return *static_cast<MEGA_DRIVE*>(owner);
}

constexpr uint32_t BothHalves(uint32_t byte) {
    return byte * 0x101;
}

constexpr uint8_t HalfAt(uint32_t word, uint32_t address) {
    return static_cast<uint8_t>((address & 1) != 0 ? word : word >> 8);
}

uint32_t RomWord(const MEGA_DRIVE& md, uint32_t address) {
    return MdCartRomWord(md.cartridge, address);
}

uint16_t RamWord(const MEGA_DRIVE& md, uint32_t address) {
    return md.workRam[(address & 0xFFFF) >> 1];
}

// What floats on the bus: the word at the program counter. Where that lies in nothing itself, zero.
uint32_t OpenBus(MEGA_DRIVE& md) {
    if (md.openBusRead) {
        return 0;
    }
    md.openBusRead = true;
    const uint32_t word = MdReadWord(&md, md.cpu.pc);
    md.openBusRead = false;
    return word;
}

// The 68000 reaches the Z80's side only while the Z80 has given its bus away.
bool Z80BusBlocked(const MEGA_DRIVE& md) {
    return md.z80.enabled == 0 || md.z80.running != 0;
}

// A program of the Z80 itself that reaches these registers through its window runs on once, not deeper.
void RunZ80(MEGA_DRIVE& md, uint32_t clocks) {
    if (md.z80HandingOver) {
        return;
    }
    md.z80HandingOver = true;
    MD_Z80_BUS bus{md};
    for (uint32_t i = 0; i < clocks; ++i) {
        Z80TickOn(md.z80, bus);
    }
    md.z80HandingOver = false;
}

void RequestBus(MEGA_DRIVE& md, uint32_t bit) {
    RunZ80(md, kZ80HandOver);
    md.z80.busHold = bit & 1;
}

void DriveZ80Reset(MEGA_DRIVE& md, uint32_t bit) {
    if ((bit & 1) == 0) {
        RunZ80(md, kZ80HandOver);
        MdCatchUpFm(md);
        Ym2612Reset(md.fm);
        Z80Reset(md.z80);
        md.z80.enabled = 0;
    } else if (md.z80.enabled == 0) {
        md.z80Clock = kZ80ResetDelay;
        md.z80.enabled = 1;
    }
}

void ShiftBank(MEGA_DRIVE& md, uint32_t bit) {
    md.z80Bank = ((md.z80Bank >> 1) | ((bit & 1) << kBankInput)) & kBankMask;
}

uint8_t FmStatus(MEGA_DRIVE& md) {
    MdCatchUpFm(md);
    return md.fm.status;
}

void WriteFm(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    MdCatchUpFm(md);
    Ym2612Write(md.fm, address & 3, static_cast<uint8_t>(value));
}

// Z80's memory and what else hangs on its bus, as the 68000 sees it. `address` is 16 bits.
uint32_t ReadZ80Side(MEGA_DRIVE& md, uint32_t address) {
    if (Z80BusBlocked(md)) {
        return OpenBus(md);
    }
    if (address < kMdZ80RamEnd) {
        return BothHalves(md.z80Ram[address % kMdZ80RamBytes]);
    }
    if (address < 0x6000) {
        return BothHalves(FmStatus(md));
    }
    return (address & 0xFF00) == 0x7F00 ? 0 : OpenBus(md);
}

void WriteZ80Side(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    if (Z80BusBlocked(md)) {
        return;
    }
    if (address < kMdZ80RamEnd) {
        md.z80Ram[address % kMdZ80RamBytes] = static_cast<uint8_t>(value);
    } else if (address < 0x6000) {
        WriteFm(md, address, value);
    } else if ((address & 0xFF00) == 0x6000) {
        ShiftBank(md, value);
    }
}

// 1 while the 68000 must not touch the Z80's side.
uint32_t BusState(const MEGA_DRIVE& md) {
    return md.z80.enabled == 0 || md.z80.running != 0 ? 1 : 0;
}

uint32_t ReadIoWord(MEGA_DRIVE& md, uint32_t address) {
    if (address < kIoEnd) {
        return BothHalves(MdReadIo(md.io, (address >> 1) & 15));
    }
    const uint32_t open = OpenBus(md);
    if ((address & 0xFFFF00) == kBusRequestPage) {
        return (open & 0xFEFF) | BusState(md) << 8;
    }
    return open;
}

uint8_t ReadIoByte(MEGA_DRIVE& md, uint32_t address) {
    if (address < kIoEnd) {
        return MdReadIo(md.io, (address >> 1) & 15);
    }
    const auto open = static_cast<uint8_t>(OpenBus(md) >> 8);
    if ((address & 0xFFFF01) == kBusRequestPage) {
        return static_cast<uint8_t>((open & 0xFE) | BusState(md));
    }
    return open;
}

// `isWord`: the bit of the two control registers then lies in the high half.
void WriteIo(MEGA_DRIVE& md, uint32_t address, uint32_t value, bool isWord) {
    if (address < kIoEnd) {
        MdWriteIo(md.io, (address >> 1) & 15, static_cast<uint8_t>(value), md.m68kBusCycles);
        return;
    }
    if (!isWord && (address & 1) != 0) {
        return;
    }
    const uint32_t bit = isWord ? value >> 8 : value;
    const uint32_t page = address & 0xFFFF00;
    if (page == kBusRequestPage) {
        RequestBus(md, bit);
    } else if (page == kResetPage) {
        DriveZ80Reset(md, bit);
    } else if (isWord && (address == kSvpPort || address == kSvpPortMirror)) {
        if (md.cartridge.svp) {
            SvpWriteXst(*md.cartridge.svp, static_cast<uint16_t>(value));
        }
    }
}

// While a DMA holds the 68000, memory is changed by the Z80 and the signal processor alone. What the Z80
// writes through its window lets the video chip catch up first; its own memory and the processor's don't.
bool DmaSourceIsQuiet(const MEGA_DRIVE& md) {
    const auto quiet = [](uint32_t address) {
        address &= kMdAddressMask;
        return address < kZ80Start || address >= kVdpStart;
    };
    // The next word lies in the 128 KiB of the transfer's start.
    return md.cartridge.cartKind != kMdCartSvp && quiet(md.vdp.dmaSource) && quiet(md.vdp.dmaBase);
}

// The window of the video chip, by the low five bits of the address.
uint32_t ReadVdp(MEGA_DRIVE& md, uint32_t address) {
    MdCatchUpVdp(md);
    switch ((address >> 1) & 15) {
    case 0:
    case 1: return MdVdpReadData(md.vdp);
    case 2:
    case 3: return (MdVdpReadStatus(md.vdp) & kStatusBits) | (OpenBus(md) & ~kStatusBits & 0xFFFF);
    case 4:
    case 5:
    case 6:
    case 7: return MdVdpReadHV(md.vdp);
    case 8:
    case 9:
    case 10:
    case 11: return 0;
    default: return OpenBus(md);
    }
}

// The same, and the chip is afterwards as it was.
uint32_t PeekVdp(MEGA_DRIVE& md, uint32_t address) {
    MdCatchUpVdp(md);
    const uint32_t dataAddress = md.vdp.address;
    const uint32_t pendingSecond = md.vdp.pendingSecond;
    const uint16_t status = md.vdp.status;
    const uint32_t word = ReadVdp(md, address);
    md.vdp.address = dataAddress;
    md.vdp.pendingSecond = pendingSecond;
    md.vdp.status = status;
    return word;
}

void WriteVdp(MEGA_DRIVE& md, uint32_t address, uint32_t word) {
    MdCatchUpVdp(md);
    switch ((address >> 1) & 15) {
    case 0:
    case 1: MdVdpWriteData(md.vdp, static_cast<uint16_t>(word)); break;
    case 2:
    case 3: MdVdpWriteControl(md.vdp, static_cast<uint16_t>(word)); break;
    case 8:
    case 9:
    case 10:
    case 11:
        MdCatchUpPsg(md);
        PsgWrite(md.psg, static_cast<uint8_t>(word));
        break;
    default: break;
    }
    MdRefreshVdpToEvent(md); // it may have work now
}

// The PSG lies on the low half of the bus, so a byte at an even address doesn't reach it.
void WriteVdpByte(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    if ((address & 0x18) == 0x10 && (address & 1) == 0) {
        return;
    }
    WriteVdp(md, address, BothHalves(value & 0xFF));
}

bool IsVdp(uint32_t address) {
    return (address & kVdpSelect) == kVdpStart;
}

// Reads above the cartridge's pages, as words; bytes are the halves of these but for the I/O area.
uint32_t ReadFixedWord(MEGA_DRIVE& md, uint32_t address) {
    if (address >= kRamStart) {
        return RamWord(md, address);
    }
    if (address >= kVdpStart) {
        return IsVdp(address) ? ReadVdp(md, address) : OpenBus(md);
    }
    if (address < kNothingStart) {
        return RomWord(
            md, address); // of the cartridges that have no pages up here; a DMA gets work RAM
    }
    if (address < kZ80Start) {
        return 0;
    }
    switch (address >> 16) {
    case kZ80Start >> 16: return ReadZ80Side(md, address & 0xFFFF);
    case kIoStart >> 16: return ReadIoWord(md, address);
    default: return OpenBus(md);
    }
}

// A byte of nothing is the high half of the bus at either address.
constexpr uint8_t VdpByte(uint32_t word, uint32_t address) {
    constexpr uint32_t kUnusedPorts = 0x18; // and the seven addresses behind
    return HalfAt(word, (address & kUnusedPorts) == kUnusedPorts ? 0 : address);
}

uint32_t ReadFixedByte(MEGA_DRIVE& md, uint32_t address) {
    if (address >= kVdpStart && address < kRamStart) {
        return IsVdp(address) ? VdpByte(ReadVdp(md, address), address) : OpenBus(md) >> 8;
    }
    if (address >= kZ80Start && address < kVdpStart) {
        switch (address >> 16) {
        case kZ80Start >> 16: return ReadZ80Side(md, address & 0xFFFF) >> 8;
        case kIoStart >> 16: return ReadIoByte(md, address);
        default: return OpenBus(md) >> 8;
        }
    }
    return HalfAt(ReadFixedWord(md, address), address);
}

void WriteRamByte(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    uint16_t& word = md.workRam[(address & 0xFFFF) >> 1];
    word = static_cast<uint16_t>((address & 1) != 0 ? (word & 0xFF00U) | (value & 0xFF)
                                                    : (word & 0xFFU) | (value & 0xFF) << 8);
}

} // namespace

uint32_t MdReadByte(void* owner, uint32_t address) {
    MEGA_DRIVE& md = Machine(owner);
    address &= kMdAddressMask;
    if (const auto handler = md.cartridge.readByte[address >> 16]; handler != nullptr) {
        return handler(md.cartridge, address);
    }
    return ReadFixedByte(md, address);
}

uint32_t MdReadWord(void* owner, uint32_t address) {
    MEGA_DRIVE& md = Machine(owner);
    address &= kMdAddressMask;
    if (const auto handler = md.cartridge.readWord[address >> 16]; handler != nullptr) {
        return handler(md.cartridge, address);
    }
    return ReadFixedWord(md, address);
}

uint32_t MdReadLong(void* owner, uint32_t address) {
    const uint32_t low = MdReadWord(owner, address + 2);
    return MdReadWord(owner, address) << 16 | low;
}

void MdWriteByte(void* owner, uint32_t address, uint32_t value) {
    MEGA_DRIVE& md = Machine(owner);
    address &= kMdAddressMask;
    if (const auto handler = md.cartridge.writeByte[address >> 16]; handler != nullptr) {
        handler(md.cartridge, address, static_cast<uint8_t>(value));
    } else if (address >= kRamStart) {
        WriteRamByte(md, address, value);
    } else if (address >= kVdpStart) {
        if (IsVdp(address)) {
            WriteVdpByte(md, address, value);
        }
    } else if (address >> 16 == kZ80Start >> 16) {
        WriteZ80Side(md, address & 0xFFFF, value);
    } else if (address >> 16 == kIoStart >> 16) {
        WriteIo(md, address, value & 0xFF, false);
    }
}

void MdWriteWord(void* owner, uint32_t address, uint32_t value) {
    MEGA_DRIVE& md = Machine(owner);
    address &= kMdAddressMask;
    if (const auto handler = md.cartridge.writeWord[address >> 16]; handler != nullptr) {
        handler(md.cartridge, address, static_cast<uint16_t>(value));
    } else if (address >= kRamStart) {
        md.workRam[(address & 0xFFFF) >> 1] = static_cast<uint16_t>(value);
    } else if (address >= kVdpStart) {
        if (IsVdp(address)) {
            WriteVdp(md, address, value);
        }
    } else if (address >> 16 == kZ80Start >> 16) {
        WriteZ80Side(md, address & 0xFFFF, value >> 8);
    } else if (address >> 16 == kIoStart >> 16) {
        WriteIo(md, address, value, true);
    }
}

void MdWriteLong(void* owner, uint32_t address, uint32_t value) {
    MdWriteWord(owner, address, value >> 16);
    MdWriteWord(owner, address + 2, value & 0xFFFF);
}

uint8_t MdPeekByte(MEGA_DRIVE& md, uint32_t address) {
    address &= kMdAddressMask;
    if (IsVdp(address)) {
        return VdpByte(PeekVdp(md, address), address);
    }
    const auto handler = md.cartridge.readByte[address >> 16];
    if (handler == nullptr) {
        return static_cast<uint8_t>(ReadFixedByte(md, address));
    }
    return handler(md.cartridge, address);
}

uint16_t MdReadForDma(void* owner, uint32_t address) {
    MEGA_DRIVE& md = Machine(owner);
    address &= kMdAddressMask;
    if (const auto handler = md.cartridge.readWord[address >> 16]; handler != nullptr) {
        return handler(md.cartridge, address);
    }
    if (address >= kZ80Start && address < kVdpStart) {
        return static_cast<uint16_t>(BothHalves(md.z80Ram[address % kMdZ80RamBytes]));
    }
    return RamWord(md, address);
}

void MdRefreshVdpToEvent(MEGA_DRIVE& md) {
    md.vdpToEvent = MdVdpClocksToEvent(md.vdp, DmaSourceIsQuiet(md)) / kMdCycleClocks;
}

void MdCatchUpVdp(MEGA_DRIVE& md) {
    if (md.vdpOwed != 0) {
        MdVdpRun(md.vdp, md.vdpOwed * kMdCycleClocks);
        md.vdpToEvent -= std::min(md.vdpToEvent, md.vdpOwed);
        md.vdpOwed = 0;
    }
}

void MdCatchUpFm(MEGA_DRIVE& md) {
    if (md.fmOwed != 0) {
        Ym2612Run(md.fm, md.fmOwed);
        md.fmOwed = 0;
    }
}

void MdCatchUpPsg(MEGA_DRIVE& md) {
    PsgRun(md.psg, md.psgOwed);
    md.psgOwed = 0;
}

uint8_t MD_Z80_BUS::ReadBeyondRam(uint16_t address) {
    if (address < 0x6000) {
        return FmStatus(md);
    }
    if (address >= 0x8000) {
        const uint32_t target = md.z80Bank | (address & 0x7FFFU);
        return (target & 0xFFF000) == 0xA11000 ? 0xFF : MdPeekByte(md, target);
    }
    if ((address & 0xFF00) != 0x7F00 || (address & 0xE0) != 0) {
        return 0xFF;
    }
    return VdpByte(ReadVdp(md, address), address);
}

void MD_Z80_BUS::WriteBeyondRam(uint16_t address, uint8_t value) {
    if (address < 0x6000) {
        WriteFm(md, address, value);
    } else if (address >= 0x8000) {
        MdCatchUpVdp(md); // a DMA may be about to read there
        MdWriteByte(&md, md.z80Bank | (address & 0x7FFFU), value);
    } else if ((address & 0xFF00) == 0x6000) {
        ShiftBank(md, value);
    } else if ((address & 0xFFE0) == 0x7F00) {
        WriteVdpByte(md, address, value);
    }
}
