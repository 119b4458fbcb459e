// The instruction loop. An opcode's high 7 bits pick the instruction: 3 bits of family, 4 of form.
#include "megadrive/svp_private.h"

namespace {

enum OPERATION { kSubtract, kCompare, kAdd, kAnd, kOr, kExclusiveOr };

constexpr uint32_t kFlagZero = kSvpStZero << 16;
constexpr uint32_t kFlagNegative = kSvpStNegative << 16;

static_assert(kFlagNegative == 0x80000000); // so bit 31 of A is the flag in its place

// L, Z, OV and N.
constexpr uint32_t kResultFlags = 0xF0000000;

// What a modification of A does, by the low bits of its opcode.
enum MODIFICATION : uint32_t {
    kRotateRight,
    kRotateLeft,
    kShiftRight,
    kShiftLeft,
    kIncrement,
    kDecrement,
    kNegate,
    kAbsolute
};

// Conditions, in the bits of the register field; the bit of the bank is the state of the flag that they want.
constexpr uint32_t kConditionAlways = 0;
constexpr uint32_t kConditionZero = 5;
constexpr uint32_t kConditionNegative = 7;

constexpr uint32_t kLoadAFromP = 0x0037;

// How far a modifier moves a pointer: not at all, up within its bank, down and up within the modulo.
constexpr std::array<uint32_t, 4> kPointerStep{0, 1, 0xFFFFFFFF, 1};
constexpr uint32_t kPlainIncrement = 1;

// The bits of a pointer that a step may change, by the modulo field of ST.
constexpr std::array<uint32_t, 8> kModuloMask{0xFF, 0x01, 0x03, 0x07, 0x0F, 0x1F, 0x3F, 0x7F};

inline uint16_t High(uint32_t value) {
    return static_cast<uint16_t>(value >> 16);
}

// Fields of an opcode: two registers, or a byte. A cell of memory is named by its bank and either the byte or a
// pointer with its modifier.
inline uint32_t SourceField(uint32_t opcode) {
    return opcode & 15;
}

inline uint32_t RegisterField(uint32_t opcode) {
    return (opcode >> 4) & 15;
}

inline uint32_t ByteField(uint32_t opcode) {
    return opcode & 0xFF;
}

inline uint32_t BankField(uint32_t opcode) {
    return (opcode >> 8) & 1;
}

inline uint32_t ModifierField(uint32_t opcode) {
    return (opcode >> 2) & 3;
}

inline uint32_t PointerField(uint32_t opcode) {
    return opcode & 3;
}

// A modifier, a bank and a pointer in five bits. The low three of them number a pointer of either bank.
constexpr uint32_t kPointerNumber = 7;
constexpr uint32_t kNoPointer = 3; // of a bank

inline uint32_t IndexOf(uint32_t modifier, uint32_t bank, uint32_t pointer) {
    return modifier << 3 | bank << 2 | pointer;
}

// The register as `gr` holds it; A and P with all 32 bits.
inline uint32_t ReadRegister(MD_SVP& svp, uint32_t number, uint16_t pc) {
    return number <= kSvpSt ? svp.gr[number] : SvpReadSpecial(svp, number, pc);
}

// Returns the word address of the next instruction.
inline uint16_t WriteRegister(MD_SVP& svp, uint32_t number, uint16_t value, uint16_t pc) {
    switch (number) {
    case kSvpBlind: break;
    case kSvpX:
    case kSvpY:
    case kSvpSt: svp.gr[number] = uint32_t{value} << 16; break;
    case kSvpA: svp.gr[kSvpA] = (svp.gr[kSvpA] & 0xFFFF) | uint32_t{value} << 16; break;
    case kSvpPc: return value;
    default: SvpWriteSpecial(svp, number, value, pc); break;
    }
    return pc;
}

inline uint32_t PointerIndex(uint32_t opcode) {
    return IndexOf(ModifierField(opcode), BankField(opcode), PointerField(opcode));
}

// The cell that a pointer names; the pointer is moved after it. Pointer 3 of a bank doesn't exist: there the
// modifier is the number of a cell.
inline uint16_t& PointerModify(MD_SVP& svp, uint32_t index) {
    auto& bank = svp.ram[(index >> 2) & 1];
    const uint32_t modifier = index >> 3;
    if (PointerField(index) == kNoPointer) {
        return bank[modifier];
    }
    uint8_t& pointer = svp.r[index & kPointerNumber];
    uint16_t& cell = bank[pointer];
    const uint32_t modulo = (svp.gr[kSvpSt] >> 16) & kSvpStModulo;
    const uint32_t mask = modifier == kPlainIncrement ? 0xFF : kModuloMask[modulo];
    const uint32_t moved = pointer + kPointerStep[modifier];
    pointer = static_cast<uint8_t>((pointer & ~mask) | (moved & mask));
    return cell;
}

// The program word whose address a cell holds. The cell then holds the next address; the pointer stays.
inline uint16_t PointerRead(MD_SVP& svp, uint32_t index) {
    auto& bank = svp.ram[(index >> 2) & 1];
    uint16_t& cell =
        PointerField(index) == kNoPointer ? bank[index >> 3] : bank[svp.r[index & kPointerNumber]];
    const uint16_t word = svp.iramRom[cell];
    ++cell;
    return word;
}

inline uint16_t& CellOf(MD_SVP& svp, uint32_t opcode) {
    return PointerModify(svp, PointerIndex(opcode));
}

inline uint16_t ProgramOf(MD_SVP& svp, uint32_t opcode) {
    return PointerRead(svp, PointerIndex(opcode));
}

inline uint16_t& AddressOf(MD_SVP& svp, uint32_t opcode) {
    return svp.ram[BankField(opcode)][ByteField(opcode)];
}

inline uint8_t& PointerOf(MD_SVP& svp, uint32_t opcode) {
    return svp.r[IndexOf(0, BankField(opcode), PointerField(opcode))];
}

inline void SetFlags(MD_SVP& svp, uint32_t result) {
    const uint32_t zero = result == 0 ? kFlagZero : 0;
    svp.gr[kSvpSt] =
        (svp.gr[kSvpSt] & ~(kFlagZero | kFlagNegative)) | zero | (result & kFlagNegative);
}

template <OPERATION kOperation>
inline void Operate(MD_SVP& svp, uint32_t value) {
    uint32_t result = svp.gr[kSvpA];
    if constexpr (kOperation == kSubtract || kOperation == kCompare) {
        result -= value;
    } else if constexpr (kOperation == kAdd) {
        result += value;
    } else if constexpr (kOperation == kAnd) {
        result &= value;
    } else if constexpr (kOperation == kOr) {
        result |= value;
    } else {
        result ^= value;
    }
    if constexpr (kOperation != kCompare) {
        svp.gr[kSvpA] = result;
    }
    SetFlags(svp, result);
}

// A source of 16 bits goes to the high half, with zeros below.
template <OPERATION kOperation>
inline void OperateWord(MD_SVP& svp, uint32_t word) {
    Operate<kOperation>(svp, word << 16);
}

inline bool ConditionHolds(const MD_SVP& svp, uint32_t opcode) {
    const bool wanted = BankField(opcode) != 0;
    switch (RegisterField(opcode)) {
    case kConditionAlways: return true;
    case kConditionZero: return ((svp.gr[kSvpSt] & kFlagZero) != 0) == wanted;
    case kConditionNegative: return ((svp.gr[kSvpSt] & kFlagNegative) != 0) == wanted;
    default: return false;
    }
}

void ModifyA(MD_SVP& svp, uint32_t opcode) {
    if (!ConditionHolds(svp, opcode)) {
        return;
    }
    uint32_t& a = svp.gr[kSvpA];
    switch (SourceField(opcode)) {
    case kRotateRight: a = a >> 1 | a << 31; break;
    case kRotateLeft: a = a << 1 | a >> 31; break;
    case kShiftRight: a = a >> 1 | (a & kFlagNegative); break;
    case kShiftLeft: a <<= 1; break;
    case kIncrement: ++a; break;
    case kDecrement: --a; break;
    case kNegate: a = 0 - a; break;
    case kAbsolute: a = (a & kFlagNegative) != 0 ? 0 - a : a; break;
    default: return;
    }
    SetFlags(svp, a);
}

// The second half of the multiply forms: X from bank 0, Y from bank 1.
inline void LoadFactors(MD_SVP& svp, uint32_t opcode) {
    const uint32_t second = opcode >> 4;
    const uint32_t x = IndexOf(ModifierField(opcode), 0, PointerField(opcode));
    const uint32_t y = IndexOf(ModifierField(second), 1, PointerField(second));
    svp.gr[kSvpX] = uint32_t{PointerModify(svp, x)} << 16;
    svp.gr[kSvpY] = uint32_t{PointerModify(svp, y)} << 16;
}

inline uint16_t LoadRegister(MD_SVP& svp, uint32_t opcode, uint16_t pc) {
    if (ByteField(opcode) == kLoadAFromP) {
        svp.gr[kSvpA] = SvpProduct(svp);
        return pc;
    }
    const uint32_t value = ReadRegister(svp, SourceField(opcode), pc);
    return WriteRegister(svp, RegisterField(opcode), High(value), pc);
}

inline uint16_t Jump(MD_SVP& svp, uint32_t opcode, uint16_t pc, bool call) {
    const auto next = static_cast<uint16_t>(pc + 1);
    if (!ConditionHolds(svp, opcode)) {
        return next;
    }
    if (call) {
        SvpPush(svp, next);
    }
    return svp.iramRom[pc];
}

// One instruction; `pc` is the word after its opcode. Returns the word address of the next one. An illegal
// opcode does nothing.
inline uint16_t Execute(MD_SVP& svp, uint32_t op, uint16_t pc) {
    switch (op >> 9) {
    case 0x00: return LoadRegister(svp, op, pc);
    case 0x01: return WriteRegister(svp, RegisterField(op), CellOf(svp, op), pc);
    case 0x02: {
        const uint32_t value = ReadRegister(svp, RegisterField(op), pc);
        CellOf(svp, op) = High(value);
        break;
    }
    case 0x03: svp.gr[kSvpA] = (svp.gr[kSvpA] & 0xFFFF) | uint32_t{AddressOf(svp, op)} << 16; break;
    case 0x04: {
        const uint16_t value = svp.iramRom[pc++];
        return WriteRegister(svp, RegisterField(op), value, pc);
    }
    case 0x05: return WriteRegister(svp, RegisterField(op), ProgramOf(svp, op), pc);
    case 0x06: CellOf(svp, op) = svp.iramRom[pc++]; break;
    case 0x07: AddressOf(svp, op) = High(svp.gr[kSvpA]); break;
    case 0x09: return WriteRegister(svp, RegisterField(op), PointerOf(svp, op), pc);
    case 0x0A: {
        const uint32_t value = ReadRegister(svp, RegisterField(op), pc);
        PointerOf(svp, op) = static_cast<uint8_t>(High(value) & 0xFF);
        break;
    }
    case 0x0C:
    case 0x0D:
    case 0x0E:
    case 0x0F: svp.r[op >> 8 & kPointerNumber] = static_cast<uint8_t>(ByteField(op)); break;

    case 0x24: return Jump(svp, op, pc, true);
    case 0x25: return WriteRegister(svp, RegisterField(op), svp.iramRom[High(svp.gr[kSvpA])], pc);
    case 0x26: return Jump(svp, op, pc, false);

    case 0x48: ModifyA(svp, op); break;

    case 0x1B:
        Operate<kSubtract>(svp, SvpProduct(svp));
        LoadFactors(svp, op);
        break;
    case 0x4B:
        Operate<kAdd>(svp, SvpProduct(svp));
        LoadFactors(svp, op);
        break;
    case 0x5B:
        svp.gr[kSvpA] = 0;
        svp.gr[kSvpSt] &= ~kResultFlags;
        LoadFactors(svp, op);
        break;

    case 0x10: Operate<kSubtract>(svp, ReadRegister(svp, SourceField(op), pc)); break;
    case 0x11: OperateWord<kSubtract>(svp, CellOf(svp, op)); break;
    case 0x13: OperateWord<kSubtract>(svp, AddressOf(svp, op)); break;
    case 0x14: OperateWord<kSubtract>(svp, svp.iramRom[pc++]); break;
    case 0x15: OperateWord<kSubtract>(svp, ProgramOf(svp, op)); break;
    case 0x19: OperateWord<kSubtract>(svp, PointerOf(svp, op)); break;
    case 0x1C: OperateWord<kSubtract>(svp, ByteField(op)); break;

    case 0x30: Operate<kCompare>(svp, ReadRegister(svp, SourceField(op), pc)); break;
    case 0x31: OperateWord<kCompare>(svp, CellOf(svp, op)); break;
    case 0x33: OperateWord<kCompare>(svp, AddressOf(svp, op)); break;
    case 0x34: OperateWord<kCompare>(svp, svp.iramRom[pc++]); break;
    case 0x35: OperateWord<kCompare>(svp, ProgramOf(svp, op)); break;
    case 0x39: OperateWord<kCompare>(svp, PointerOf(svp, op)); break;
    case 0x3C: OperateWord<kCompare>(svp, ByteField(op)); break;

    case 0x40: Operate<kAdd>(svp, ReadRegister(svp, SourceField(op), pc)); break;
    case 0x41: OperateWord<kAdd>(svp, CellOf(svp, op)); break;
    case 0x43: OperateWord<kAdd>(svp, AddressOf(svp, op)); break;
    case 0x44: OperateWord<kAdd>(svp, svp.iramRom[pc++]); break;
    case 0x45: OperateWord<kAdd>(svp, ProgramOf(svp, op)); break;
    case 0x49: OperateWord<kAdd>(svp, PointerOf(svp, op)); break;
    case 0x4C: OperateWord<kAdd>(svp, ByteField(op)); break;

    case 0x50: Operate<kAnd>(svp, ReadRegister(svp, SourceField(op), pc)); break;
    case 0x51: OperateWord<kAnd>(svp, CellOf(svp, op)); break;
    case 0x53: OperateWord<kAnd>(svp, AddressOf(svp, op)); break;
    case 0x54: OperateWord<kAnd>(svp, svp.iramRom[pc++]); break;
    case 0x55: OperateWord<kAnd>(svp, ProgramOf(svp, op)); break;
    case 0x59: OperateWord<kAnd>(svp, PointerOf(svp, op)); break;
    case 0x5C: OperateWord<kAnd>(svp, ByteField(op)); break;

    case 0x60: Operate<kOr>(svp, ReadRegister(svp, SourceField(op), pc)); break;
    case 0x61: OperateWord<kOr>(svp, CellOf(svp, op)); break;
    case 0x63: OperateWord<kOr>(svp, AddressOf(svp, op)); break;
    case 0x64: OperateWord<kOr>(svp, svp.iramRom[pc++]); break;
    case 0x65: OperateWord<kOr>(svp, ProgramOf(svp, op)); break;
    case 0x69: OperateWord<kOr>(svp, PointerOf(svp, op)); break;
    case 0x6C: OperateWord<kOr>(svp, ByteField(op)); break;

    case 0x70: Operate<kExclusiveOr>(svp, ReadRegister(svp, SourceField(op), pc)); break;
    case 0x71: OperateWord<kExclusiveOr>(svp, CellOf(svp, op)); break;
    case 0x73: OperateWord<kExclusiveOr>(svp, AddressOf(svp, op)); break;
    case 0x74: OperateWord<kExclusiveOr>(svp, svp.iramRom[pc++]); break;
    case 0x75: OperateWord<kExclusiveOr>(svp, ProgramOf(svp, op)); break;
    case 0x79: OperateWord<kExclusiveOr>(svp, PointerOf(svp, op)); break;
    case 0x7C: OperateWord<kExclusiveOr>(svp, ByteField(op)); break;

    default: break;
    }
    return pc;
}

} // namespace

void SvpRun(MD_SVP& svp, int32_t instructions) {
    int32_t budget = instructions;
    auto pc = High(svp.gr[kSvpPc]);
    while (budget >= 1 && (svp.emuStatus & kSvpWaits) == 0) {
        const uint32_t op = svp.iramRom[pc];
        pc = Execute(svp, op, static_cast<uint16_t>(pc + 1));
        --budget;
    }
    svp.budget = budget;
    svp.pc = pc;
    svp.gr[kSvpPc] = uint32_t{pc} << 16;
    svp.gr[kSvpP] = SvpProduct(svp);
}
