#include "megadrive/md_bus.h"

#include "megadrive/md_vdp_tick.h"
#include "megadrive/md_z80_ahead.h"
#include "megadrive/ym2612_tick.h"
#include "sega8/z80_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kCartridgeEnd = 0x800000; // nothing from here to the Z80's side
constexpr uint32_t kZ80Start = 0xA00000;
constexpr uint32_t kIoStart = 0xA10000;
constexpr uint32_t kIoEnd = 0xA10020;
constexpr uint32_t kBusRequestPage = 0xA11100; // and the 256 bytes from there
constexpr uint32_t kResetPage = 0xA11200;
constexpr uint32_t kSvpPort = 0xA15000;
constexpr uint32_t kSvpPortMirror = 0xA15002;
constexpr uint32_t kVdpStart = 0xC00000;
constexpr uint32_t kVdpSelect = 0xE700E0; // the address bits that the VDP decodes
constexpr uint32_t kRamStart = 0xE00000;
constexpr uint32_t kZ80HandOver = 3;    // clocks that the Z80 still runs when its bus changes hands
constexpr int32_t kZ80ResetDelay = -45; // master clocks from the end of a reset to the first clock
constexpr uint32_t kBankInput = 23;     // the bit of the bank address that a write shifts in
constexpr uint32_t kBusNotGranted = 0x01;    // of the bus request register, as read
constexpr uint32_t kRegisterPage = 0xFFFF00; // of the control registers; the low byte isn't decoded

// The Z80's map. Its RAM is repeated up to kMdZ80RamEnd.
constexpr uint32_t kZ80FmEnd = 0x6000;
constexpr uint32_t kZ80BankPage = 0x6000; // 256 bytes: the register that shifts the window's bank
constexpr uint32_t kZ80VdpPage = 0x7F00;  // 256 bytes
constexpr uint32_t kZ80VdpHole = 0x00E0;  // of that page: the VDP answers where these bits are 0
constexpr uint32_t kZ80WindowStart = 0x8000;
constexpr uint32_t kZ80WindowBits = 0x7FFF;
constexpr uint32_t kZ80Page = 0xFF00;

MEGA_DRIVE& Machine(void* owner) {
    return *static_cast<MEGA_DRIVE*>(owner);
}

// The I/O chip and the VDP are selected by address bits 1 to 4.
constexpr uint32_t PortOf(uint32_t address) {
    return address >> 1 & 15;
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

// An undriven bus reads as the word at the program counter. If that address is undriven too, as zero.
uint32_t OpenBus(MEGA_DRIVE& md) {
    if (md.openBusRead) {
        return 0;
    }
    md.openBusRead = true;
    const uint32_t word = MdReadWord(&md, md.cpu.pc);
    md.openBusRead = false;
    return word;
}

// The 68000 reaches the Z80's side only while the Z80 is off its bus and not in reset.
bool Z80BusBlocked(const MEGA_DRIVE& md) {
    return md.z80.enabled == 0 || md.z80.running != 0;
}

// The Z80 itself may write to these registers through its window. The clocks then run once and don't nest.
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
    MdCatchUpZ80(md);
    RunZ80(md, kZ80HandOver);
    md.z80.busHold = bit & 1;
}

void DriveZ80Reset(MEGA_DRIVE& md, uint32_t bit) {
    MdCatchUpZ80(md);
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
    md.z80Bank = ((md.z80Bank >> 1) | ((bit & 1) << kBankInput)) & kMdZ80BankMask;
}

uint8_t FmStatus(MEGA_DRIVE& md) {
    MdCatchUpFm(md);
    return md.fm.status;
}

void WriteFm(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    MdCatchUpFm(md);
    Ym2612Write(md.fm, address & 3, static_cast<uint8_t>(value));
}

// The Z80's RAM and the chips on its bus, as the 68000 sees them. `address` has 16 bits.
uint32_t ReadZ80Side(MEGA_DRIVE& md, uint32_t address) {
    MdCatchUpZ80(md);
    if (Z80BusBlocked(md)) {
        return OpenBus(md);
    }
    if (address < kMdZ80RamEnd) {
        return BothHalves(md.z80Ram[address % kMdZ80RamBytes]);
    }
    if (address < kZ80FmEnd) {
        return BothHalves(FmStatus(md));
    }
    return (address & kZ80Page) == kZ80VdpPage ? 0 : OpenBus(md);
}

void WriteZ80Side(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    MdCatchUpZ80(md);
    if (Z80BusBlocked(md)) {
        return;
    }
    if (address < kMdZ80RamEnd) {
        md.z80Ram[address % kMdZ80RamBytes] = static_cast<uint8_t>(value);
    } else if (address < kZ80FmEnd) {
        WriteFm(md, address, value);
    } else if ((address & kZ80Page) == kZ80BankPage) {
        ShiftBank(md, value);
    }
}

// The bit of the bus request register: 1 while the 68000 must not touch the Z80's side.
uint32_t BusState(MEGA_DRIVE& md) {
    MdCatchUpZ80(md);
    return Z80BusBlocked(md) ? kBusNotGranted : 0;
}

uint32_t ReadIoWord(MEGA_DRIVE& md, uint32_t address) {
    if (address < kIoEnd) {
        return BothHalves(MdReadIo(md.io, PortOf(address)));
    }
    const uint32_t open = OpenBus(md);
    if ((address & kRegisterPage) == kBusRequestPage) {
        return (open & ~(kBusNotGranted << 8)) | BusState(md) << 8;
    }
    return open;
}

uint8_t ReadIoByte(MEGA_DRIVE& md, uint32_t address) {
    if (address < kIoEnd) {
        return MdReadIo(md.io, PortOf(address));
    }
    const auto open = static_cast<uint8_t>(OpenBus(md) >> 8);
    if ((address & (kRegisterPage | 1)) == kBusRequestPage) {
        return static_cast<uint8_t>((open & ~kBusNotGranted) | BusState(md));
    }
    return open;
}

// In a word the bit of the two control registers is in the high half.
void WriteIo(MEGA_DRIVE& md, uint32_t address, uint32_t value, bool isWord) {
    if (address < kIoEnd) {
        MdWriteIo(md.io, PortOf(address), static_cast<uint8_t>(value), md.m68kBusCycles);
        return;
    }
    if (!isWord && (address & 1) != 0) {
        return;
    }
    const uint32_t bit = isWord ? value >> 8 : value;
    const uint32_t page = address & kRegisterPage;
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

// While a DMA holds the 68000, only the Z80 and the signal processor change memory. Before the Z80 writes
// through its window the VDP catches up; writes to the Z80's own RAM and those of the signal processor don't
// wait for that, so a DMA that reads there isn't quiet.
bool DmaSourceIsQuiet(const MEGA_DRIVE& md) {
    const auto quiet = [](uint32_t address) {
        address &= kMdAddressMask;
        return address < kZ80Start || address >= kVdpStart;
    };
    // The source stays within the 128 KiB of the DMA's start.
    return md.cartridge.cartKind != kMdCartSvp && quiet(md.vdp.dmaSource) && quiet(md.vdp.dmaBase);
}

// The VDP's 32 addresses, decoded by the low five bits: data, control, HV counter, PSG.
uint32_t ReadVdp(MEGA_DRIVE& md, uint32_t address) {
    MdCatchUpVdp(md);
    switch (PortOf(address)) {
    case 0:
    case 1: return MdVdpReadData(md.vdp);
    case 2:
    case 3:
        return (MdVdpReadStatus(md.vdp) & kMdVdpStatusBits) |
               (OpenBus(md) & ~uint32_t{kMdVdpStatusBits} & 0xFFFF);
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

// The same, but the chip is left as it was.
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
    switch (PortOf(address)) {
    case 0:
    case 1: MdVdpWriteData(md.vdp, static_cast<uint16_t>(word)); break;
    case 2:
    case 3: MdVdpWriteControl(md.vdp, static_cast<uint16_t>(word)); break;
    case 8:
    case 9:
    case 10:
    case 11:
        MdCatchUpZ80(md); // the PSG's clocks are counted with the Z80's
        MdCatchUpPsg(md);
        PsgWrite(md.psg, static_cast<uint8_t>(word));
        break;
    default: break;
    }
    MdRefreshVdpToEvent(md); // the write may bring an event nearer
}

// The PSG is on the low half of the bus, so a byte at an even address doesn't reach it.
void WriteVdpByte(MEGA_DRIVE& md, uint32_t address, uint32_t value) {
    constexpr uint32_t kPortBits = 0x18;
    constexpr uint32_t kPsgPorts = 0x10; // and the seven addresses after it
    if ((address & kPortBits) == kPsgPorts && (address & 1) == 0) {
        return;
    }
    WriteVdp(md, address, BothHalves(value & 0xFF));
}

bool IsVdp(uint32_t address) {
    return (address & kVdpSelect) == kVdpStart;
}

// Word reads outside the cartridge's pages. Bytes are halves of these, except in the I/O area.
uint32_t ReadFixedWord(MEGA_DRIVE& md, uint32_t address) {
    if (address >= kRamStart) {
        return RamWord(md, address);
    }
    if (address >= kVdpStart) {
        return IsVdp(address) ? ReadVdp(md, address) : OpenBus(md);
    }
    // Some kinds of cartridge have handlers for the lower half alone; the ROM goes on here. A DMA gets work
    // RAM instead.
    if (address < kCartridgeEnd) {
        return RomWord(md, address);
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

// A byte of the unused ports is the high half of the undriven bus, also at odd addresses.
constexpr uint8_t VdpByte(uint32_t word, uint32_t address) {
    constexpr uint32_t kUnusedPorts = 0x18; // and the seven addresses after it
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
    ++md.m68kBusReads;
    address &= kMdAddressMask;
    if (const auto handler = md.cartridge.readByte[address >> 16]; handler != nullptr) {
        return handler(md.cartridge, address);
    }
    return ReadFixedByte(md, address);
}

uint32_t MdReadWord(void* owner, uint32_t address) {
    MEGA_DRIVE& md = Machine(owner);
    ++md.m68kBusReads;
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
    if (address < kZ80FmEnd) {
        return FmStatus(md);
    }
    if (address >= kZ80WindowStart) {
        constexpr uint32_t kControlArea =
            0xA11000; // 4 KiB with the bus request and reset registers
        const uint32_t target = md.z80Bank | (address & kZ80WindowBits);
        return (target & 0xFFF000) == kControlArea ? 0xFF : MdPeekByte(md, target);
    }
    if ((address & kZ80Page) != kZ80VdpPage || (address & kZ80VdpHole) != 0) {
        return 0xFF;
    }
    return VdpByte(ReadVdp(md, address), address);
}

void MD_Z80_BUS::WriteBeyondRam(uint16_t address, uint8_t value) {
    if (address < kZ80FmEnd) {
        WriteFm(md, address, value);
    } else if (address >= kZ80WindowStart) {
        MdCatchUpVdp(md); // a DMA may have had to read there before
        MdWriteByte(&md, md.z80Bank | (address & kZ80WindowBits), value);
    } else if ((address & kZ80Page) == kZ80BankPage) {
        ShiftBank(md, value);
    } else if ((address & (kZ80Page | kZ80VdpHole)) == kZ80VdpPage) {
        WriteVdpByte(md, address, value);
    }
}
