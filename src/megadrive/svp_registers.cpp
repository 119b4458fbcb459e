// The registers that reach outside the processor: stack, programmable memory access and mailbox.
#include "megadrive/svp_private.h"

namespace {

// Mode words. Bit 15: steps down; bit 14: steps by cells; bits 13 to 11: the step; bit 10: nibbles of 0 are not
// written; bits 4 to 0: the kind of memory.
constexpr uint32_t kStepDown = 0x8000;
constexpr uint32_t kStepShift = 11;
constexpr uint32_t kStepCodes = 7;
constexpr uint32_t kOverwrite = 0x0400;
constexpr uint32_t kDram = 0x0018;
constexpr uint32_t kDramByCells = 0x4018;
constexpr uint32_t kIram = 0x001C;
constexpr uint32_t kRom = 0x0800; // and the high bits of the address

// The bits of a mode word that select the kind of an access, without the step and the bits it ignores.
constexpr uint32_t kDramWriteMask = 0x43FF;
constexpr uint32_t kDramByCellsMask = 0xFBFF;
constexpr uint32_t kReadMask = 0x47FF; // and of writes to IRAM
constexpr uint32_t kRomMask = 0xFFF0;

// By cells, the step after the second word of a cell's row leads to the cell's next row.
constexpr uint32_t kNextRow = 31;

// The addresses in words at which the game's idle loops read.
constexpr uint32_t kFirstPm0Loop = 0x400;
constexpr uint32_t kSecondPm0Loop = 0xC28F;
constexpr uint32_t k30Fe08Loop = 0x42A;
constexpr uint32_t k30Fe06Loop = 0x2789;

uint32_t StepOf(uint32_t mode) {
    const uint32_t code = (mode >> kStepShift) & kStepCodes;
    if (code == 0) {
        return 0;
    }
    const uint32_t step = code == kStepCodes ? 128 : uint32_t{1} << (code - 1);
    return (mode & kStepDown) != 0 ? 0 - step : step;
}

// Adds to the address half alone; a carry out of it is lost.
void AddToAddress(uint32_t& slot, uint32_t step) {
    slot += step << 16;
}

void Store(uint16_t& cell, uint32_t value, bool overwrite) {
    uint32_t replaced = 0xFFFF;
    if (overwrite) {
        replaced = 0;
        for (uint32_t nibble = 0xF; nibble <= 0xF000; nibble <<= 4) {
            replaced |= (value & nibble) != 0 ? nibble : 0;
        }
    }
    cell = static_cast<uint16_t>((cell & ~replaced) | (value & replaced));
}

void WriteMemory(MD_SVP& svp, uint32_t& slot, uint32_t value) {
    const uint32_t address = slot >> 16;
    const bool overwrite = (slot & kOverwrite) != 0;
    if ((slot & kDramWriteMask) == kDram) {
        Store(svp.dram[address], value, overwrite);
        AddToAddress(slot, StepOf(slot));
    } else if ((slot & kDramByCellsMask) == kDramByCells) {
        Store(svp.dram[address], value, overwrite);
        AddToAddress(slot, (address & 1) != 0 ? kNextRow : 1);
    } else if ((slot & kReadMask) == kIram) {
        svp.iramRom[address % kSvpIramWords] = static_cast<uint16_t>(value);
        AddToAddress(slot, StepOf(slot));
    }
}

uint32_t ReadMemory(MD_SVP& svp, uint32_t& slot) {
    const uint32_t address = slot >> 16;
    if ((slot & kRomMask) == kRom) {
        const uint32_t value = svp.rom[((slot & 15) << 16) | address];
        AddToAddress(slot, 1);
        if (address == 0xFFFF) {
            slot = (slot + 1) & 0xFFFF;
        }
        return value;
    }
    if ((slot & kReadMask) == kDram) {
        const uint32_t value = svp.dram[address];
        AddToAddress(slot, StepOf(slot));
        return value;
    }
    return 0;
}

// `ld -, PMx` and `ld PMx, -` program an external register with the access in PMC.
bool IsBlind(uint32_t word) {
    constexpr uint32_t kAllButDestination = 0xFF0F;
    constexpr uint32_t kSource = 0x000F;
    return (word & kAllButDestination) == 0 || word <= kSource;
}

uint32_t PmAccess(MD_SVP& svp, uint32_t number, bool write, uint32_t value, uint32_t pc) {
    uint32_t& slot = write ? svp.pmacWrite[number] : svp.pmacRead[number];
    if ((svp.emuStatus & kSvpPmcSet) != 0) {
        if (IsBlind(svp.iramRom[(pc - 1) & 0xFFFF])) {
            slot = svp.gr[kSvpPmc];
        }
        svp.emuStatus &= ~kSvpPmcSet;
        return 0;
    }
    svp.emuStatus &= ~kSvpPmcHasAddress;
    if (number != 4 && (svp.gr[kSvpSt] >> 16 & kSvpStProgrammed) == 0) {
        return kSvpNotProgrammed;
    }
    uint32_t answer = 0;
    if (write) {
        WriteMemory(svp, slot, value);
    } else {
        answer = ReadMemory(svp, slot);
    }
    svp.gr[kSvpPmc] = slot;
    return answer;
}

uint32_t ReadPm0(MD_SVP& svp, uint32_t pc) {
    const uint32_t answer = PmAccess(svp, 0, false, 0, pc);
    if (answer != kSvpNotProgrammed) {
        return answer << 16;
    }
    const uint32_t value = svp.gr[kSvpPm0];
    const uint32_t own = (pc - 1) & 0xFFFF;
    if ((value >> 16 & kSvpPm0SentTo) == 0 && (own == kFirstPm0Loop || own == kSecondPm0Loop)) {
        svp.emuStatus |= kSvpWaitsForPm0;
    }
    svp.gr[kSvpPm0] &= ~(kSvpPm0SentTo << 16);
    return value;
}

uint32_t ReadPm4(MD_SVP& svp, uint32_t pc) {
    const uint32_t answer = PmAccess(svp, 4, false, 0, pc);
    if (answer == 0) {
        const uint32_t own = (pc - 1) & 0xFFFF;
        if (own == k30Fe08Loop) {
            svp.emuStatus |= kSvpWaitsFor30Fe08;
        } else if (own == k30Fe06Loop) {
            svp.emuStatus |= kSvpWaitsFor30Fe06;
        }
    }
    return answer << 16;
}

uint32_t ReadPm(MD_SVP& svp, uint32_t number, uint32_t pc) {
    const uint32_t answer = PmAccess(svp, number - kSvpPm0, false, 0, pc);
    return answer != kSvpNotProgrammed ? answer << 16 : svp.gr[number];
}

void WritePm(MD_SVP& svp, uint32_t number, uint32_t value, uint32_t pc) {
    if (PmAccess(svp, number - kSvpPm0, true, value, pc) != kSvpNotProgrammed) {
        return;
    }
    svp.gr[number] = value << 16;
    if (number == kSvpXst) {
        svp.gr[kSvpPm0] |= kSvpPm0SentByDsp << 16;
    }
}

// Address and mode alternate, in reads as in writes. The mode ends the sequence.
bool TakePmcTurn(MD_SVP& svp) {
    const bool hadAddress = (svp.emuStatus & kSvpPmcHasAddress) != 0;
    if (hadAddress) {
        svp.emuStatus = (svp.emuStatus & ~kSvpPmcHasAddress) | kSvpPmcSet;
    } else {
        svp.emuStatus |= kSvpPmcHasAddress;
    }
    return hadAddress;
}

// The address in the upper half of the register, the mode in the lower one. What is read is an upper half.
constexpr uint32_t kAddressHalf = 0xFFFF0000;
constexpr uint32_t kLowestReadNibble = 0x000F0000;

// The mode is read with its nibbles rotated by one.
uint32_t ReadPmc(MD_SVP& svp) {
    const uint32_t pmc = svp.gr[kSvpPmc];
    if (TakePmcTurn(svp)) {
        return pmc << 20 | (pmc << 4 & kLowestReadNibble);
    }
    return pmc & kAddressHalf;
}

void WritePmc(MD_SVP& svp, uint32_t value) {
    uint32_t& pmc = svp.gr[kSvpPmc];
    pmc = TakePmcTurn(svp) ? (pmc & 0xFFFF0000) | value : (pmc & 0xFFFF) | value << 16;
}

// A blind read of AL restarts the sequence of PMC.
uint32_t ReadAl(MD_SVP& svp, uint32_t pc) {
    if (svp.iramRom[(pc - 1) & 0xFFFF] == kSvpAl) {
        svp.emuStatus &= ~(kSvpPmcHasAddress | kSvpPmcSet);
    }
    return svp.gr[kSvpA] << 16;
}

uint32_t Pop(MD_SVP& svp) {
    const uint32_t depth = ((svp.gr[kSvpStack] >> 16) + kSvpStackDepth - 1) % kSvpStackDepth;
    svp.gr[kSvpStack] = depth << 16;
    return uint32_t{svp.stack[depth]} << 16;
}

} // namespace

uint32_t SvpReadSpecial(MD_SVP& svp, uint32_t number, uint32_t pc) {
    switch (number) {
    case kSvpStack: return Pop(svp);
    case kSvpPc: return pc << 16;
    case kSvpP: return SvpProduct(svp);
    case kSvpPm0: return ReadPm0(svp, pc);
    case kSvpPm1:
    case kSvpPm2:
    case kSvpXst: return ReadPm(svp, number, pc);
    case kSvpPm4: return ReadPm4(svp, pc);
    case kSvpPmc: return ReadPmc(svp);
    case kSvpAl: return ReadAl(svp, pc);
    default: return svp.gr[number];
    }
}

void SvpWriteSpecial(MD_SVP& svp, uint32_t number, uint32_t value, uint32_t pc) {
    switch (number) {
    case kSvpStack: SvpPush(svp, value); break;
    case kSvpPm0:
    case kSvpPm1:
    case kSvpPm2:
    case kSvpXst:
    case kSvpPm4: WritePm(svp, number, value, pc); break;
    case kSvpExt5: svp.gr[kSvpExt5] = value << 16; break;
    case kSvpPmc: WritePmc(svp, value); break;
    case kSvpAl: svp.gr[kSvpA] = (svp.gr[kSvpA] & 0xFFFF0000) | value; break;
    default: break; // P is formed from X and Y
    }
}
