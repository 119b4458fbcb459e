// The Z80's base table, and its index table: the base table with IX or IY in place of HL.
#include "base/flatten.h"
#include "sega8/z80_private.h"
#include "sega8/z80_templates.h"

#include <utility>

namespace {

using namespace z80_parts;
using namespace z80_templates;
using z80_detail::Address;
using z80_detail::Advance;
using z80_detail::HighByte;
using z80_detail::LowByte;
using z80_detail::SetHighByte;
using enum Z80Step;

constexpr uint32_t kNmiVector = 0x0066;
constexpr uint32_t kMode2LowByte = 0xFF; // the data bus floats high
constexpr uint32_t kRst38 = 0xFF;        // the opcode

// The accumulator's eight operations in opcode order.
constexpr std::array<Z80Step, 8> kAluSteps{kAdd, kAddCarry, kSubtract, kSubtractCarry,
                                           kAnd, kXor,      kOr,       kCompare};

// The two forms of a template that works on (HL), or on (IX+d) and (IY+d).
struct MEMORY_TEMPLATE {
    Z80Template plain;
    Z80Template indexed;
};

constexpr MEMORY_TEMPLATE BothForms(const Z80Template& plain) {
    return {plain, WithDisplacement(plain)};
}

constexpr std::array<Z80Template, 8> kAluOperand = [] {
    std::array<Z80Template, 8> templates{};
    for (size_t i = 0; i < templates.size(); ++i) {
        templates[i] = AluOperand(kAluSteps[i]);
    }
    return templates;
}();

constexpr std::array<MEMORY_TEMPLATE, 8> kAluMemory = [] {
    std::array<MEMORY_TEMPLATE, 8> templates{};
    for (size_t i = 0; i < templates.size(); ++i) {
        templates[i] = BothForms(AluMemory(kAluSteps[i]));
    }
    return templates;
}();

constexpr MEMORY_TEMPLATE kHighFrom = BothForms(kHighFromMemory);
constexpr MEMORY_TEMPLATE kLowFrom = BothForms(kLowFromMemory);
constexpr MEMORY_TEMPLATE kHighInto = BothForms(kStoreHigh);
constexpr MEMORY_TEMPLATE kLowInto = BothForms(kStoreLow);
constexpr MEMORY_TEMPLATE kIncrementMemory = BothForms(ChangeMemory(kIncrementT));
constexpr MEMORY_TEMPLATE kDecrementMemory = BothForms(ChangeMemory(kDecrementT));
constexpr MEMORY_TEMPLATE kOperandInto{kStoreOperand, kIndexedStoreOperand};

// What a decoder works on: the opcode's fields, and HL or the index register that replaces it.
struct DECODE {
    Z80& z80;
    Z80Register hl;
    uint32_t row;    // bits 3 to 5 of the opcode
    uint32_t column; // bits 0 to 2
    [[nodiscard]] bool IsIndexed() const { return hl != kZ80Hl; }
};

// BC, DE, HL and `last`, which is SP or AF.
Z80Register PairOfRow(const DECODE& at, Z80Register last) {
    const std::array<Z80Register, 4> pairs{kZ80Bc, kZ80De, at.hl, last};
    return pairs[(at.row >> 1) % pairs.size()];
}

// Conditions 0 to 7: NZ, Z, NC, C, PO, PE, P, M.
bool Holds(const Z80& z80, uint32_t condition) {
    static constexpr std::array<Z80Flag, 4> kFlags{kZ80FlagZ, kZ80FlagC, kZ80FlagPv, kZ80FlagS};
    const bool isSet = (F(z80) & kFlags[(condition >> 1) % kFlags.size()]) != 0;
    return isSet == ((condition & 1) != 0);
}

void WriteMemoryTemplate(const DECODE& at, const MEMORY_TEMPLATE& forms) {
    at.z80.wz = Address(at.z80.regs[at.hl]);
    Z80WriteTemplate(at.z80, at.IsIndexed() ? forms.indexed : forms.plain);
}

void JumpAbsolute(Z80& z80, bool taken) {
    z80.wz = Address(z80.regs[kZ80Pc]);
    Finish(z80, taken ? kJump : kJumpNotTaken, kZ80Pc);
}

void Call(Z80& z80, bool taken) {
    if (taken) {
        z80.wz = Address(z80.regs[kZ80Pc]);
        Advance(z80.regs[kZ80Pc], 2);
    }
    Finish(z80, taken ? kCall : kCallNotTaken, kZ80Pc);
}

void AddToHl(const DECODE& at) {
    Z80& z80 = at.z80;
    const uint32_t hl = Address(z80.regs[at.hl]);
    const uint32_t value = Address(z80.regs[PairOfRow(at, kZ80Sp)]);
    const uint32_t sum = hl + value;
    const uint32_t half = ((hl ^ value ^ sum) >> 8) & kZ80FlagH;
    z80.regs[at.hl] = Address(sum);
    SetF(z80,
         (F(z80) & kSZAndPv) | half | (HighByte(sum) & kXAndY) | When(sum > 0xFFFF, kZ80FlagC));
    Z80WriteTemplate(z80, kAddWords);
}

void DecimalAdjust(Z80& z80) {
    const uint32_t a = A(z80);
    const uint32_t flags = F(z80);
    const bool isOver = (flags & kZ80FlagC) != 0 || a > 0x99;
    uint32_t correction = isOver ? 0x60 : 0;
    if ((flags & kZ80FlagH) != 0 || (a & 0x0F) > 9) {
        correction |= 0x06;
    }
    const uint32_t result = (flags & kZ80FlagN) != 0 ? a - correction : a + correction;
    SetA(z80, result);
    SetF(z80, kZ80FlagsParity[LowByte(result)] | (flags & kZ80FlagN) | ((a ^ result) & kZ80FlagH) |
                  When(isOver, kZ80FlagC));
}

// RLCA, RRCA, RLA and RRA: as in the CB table, but S, Z and P/V stay.
void RotateAccumulator(Z80& z80, Z80Step step) {
    const uint32_t kept = F(z80) & kSZAndPv;
    const uint8_t result = Z80Rotate(z80, step, A(z80));
    SetA(z80, result);
    SetF(z80, kept | (result & kXAndY) | (F(z80) & kZ80FlagC));
}

void DecodeAccumulatorColumn(const DECODE& at) {
    Z80& z80 = at.z80;
    const uint32_t flags = F(z80);
    switch (at.row) {
    case 0: RotateAccumulator(z80, kRlc); break;
    case 1: RotateAccumulator(z80, kRrc); break;
    case 2: RotateAccumulator(z80, kRl); break;
    case 3: RotateAccumulator(z80, kRr); break;
    case 4: DecimalAdjust(z80); break;
    case 5: // CPL
        SetA(z80, A(z80) ^ 0xFFU);
        SetF(z80, (flags & (kSZAndPv | kZ80FlagC)) | kZ80FlagH | kZ80FlagN | (A(z80) & kXAndY));
        break;
    case 6: SetF(z80, (flags & kSZAndPv) | kZ80FlagC | (A(z80) & kXAndY)); break; // SCF
    default:                                                                      // CCF
        SetF(z80, (flags & kSZAndPv) | ((flags & kZ80FlagC) != 0 ? kZ80FlagH : kZ80FlagC) |
                      (A(z80) & kXAndY));
        break;
    }
    Z80WriteTemplate(z80, kFour);
}

void DecodeRelativeColumn(const DECODE& at) {
    Z80& z80 = at.z80;
    switch (at.row) {
    case 0: Z80WriteTemplate(z80, kFour); break; // NOP
    case 1:                                      // EX AF,AF'
        std::swap(z80.regs[kZ80Af], z80.regs[kZ80AfPrime]);
        Z80WriteTemplate(z80, kFour);
        break;
    case 2: { // DJNZ
        uint32_t& bc = z80.regs[kZ80Bc];
        SetHighByte(bc, LowByte(uint32_t{HighByte(bc)} - 1));
        Z80WriteTemplate(z80, HighByte(bc) != 0 ? kLoop : kLoopNotTaken);
        break;
    }
    case 3: Z80WriteTemplate(z80, kRelative); break;
    default: Z80WriteTemplate(z80, Holds(z80, at.row - 4) ? kRelative : kRelativeNotTaken); break;
    }
}

// LD (BC),A to LD A,(nn).
void DecodeIndirectColumn(const DECODE& at) {
    Z80& z80 = at.z80;
    switch (at.row) {
    case 0:
    case 2:
        z80.wz = Address(z80.regs[PairOfRow(at, kZ80Sp)]);
        Finish(z80, kStoreHigh, kZ80Af);
        break;
    case 1:
    case 3:
        z80.wz = Address(z80.regs[PairOfRow(at, kZ80Sp)]);
        Finish(z80, kHighFromMemory, kZ80Af);
        break;
    case 4: Finish(z80, kStoreWordDirect, at.hl); break;
    case 5: Finish(z80, kLoadWordDirect, at.hl); break;
    case 6: Finish(z80, kStoreADirect, kZ80Af); break;
    default: Finish(z80, kLoadADirect, kZ80Af); break;
    }
}

void DecodeIncrement(const DECODE& at, bool up) {
    Z80& z80 = at.z80;
    if (at.row == kMemoryCode) {
        WriteMemoryTemplate(at, up ? kIncrementMemory : kDecrementMemory);
        return;
    }
    const uint8_t value = GetRegister(z80, at.row, at.hl);
    SetRegister(z80, at.row, at.hl, up ? Z80Increment(z80, value) : Z80Decrement(z80, value));
    Z80WriteTemplate(z80, kFour);
}

void DecodeLoadOperand(const DECODE& at) {
    if (at.row == kMemoryCode) {
        WriteMemoryTemplate(at, kOperandInto);
        return;
    }
    Finish(at.z80, IsHighByte(at.row) ? kLoadHigh : kLoadLow, WordOfCode(at.row, at.hl));
}

// Opcodes 0x00 to 0x3F.
void DecodeFirstQuarter(const DECODE& at) {
    Z80& z80 = at.z80;
    const bool isOddRow = (at.row & 1) != 0;
    switch (at.column) {
    case 0: DecodeRelativeColumn(at); break;
    case 1:
        if (isOddRow) {
            AddToHl(at);
        } else {
            Finish(z80, kLoadWord, PairOfRow(at, kZ80Sp));
        }
        break;
    case 2: DecodeIndirectColumn(at); break;
    case 3:
        Advance(z80.regs[PairOfRow(at, kZ80Sp)], isOddRow ? kMinusOne : 1);
        Z80WriteTemplate(z80, kSix);
        break;
    case 4: DecodeIncrement(at, true); break;
    case 5: DecodeIncrement(at, false); break;
    case 6: DecodeLoadOperand(at); break;
    default: DecodeAccumulatorColumn(at); break;
    }
}

// Opcodes 0x40 to 0x7F. If the other operand is in memory, H and L are not replaced by the index
// register.
void DecodeLoads(const DECODE& at) {
    Z80& z80 = at.z80;
    if (at.row == kMemoryCode && at.column == kMemoryCode) { // HALT
        z80.halted = 1;
        Advance(z80.regs[kZ80Pc], kMinusOne);
        Z80WriteTemplate(z80, kFour);
    } else if (at.column == kMemoryCode) {
        z80.regIndex = WordOfCode(at.row, kZ80Hl);
        WriteMemoryTemplate(at, IsHighByte(at.row) ? kHighFrom : kLowFrom);
    } else if (at.row == kMemoryCode) {
        z80.regIndex = WordOfCode(at.column, kZ80Hl);
        WriteMemoryTemplate(at, IsHighByte(at.column) ? kHighInto : kLowInto);
    } else {
        SetRegister(z80, at.row, at.hl, GetRegister(z80, at.column, at.hl));
        Z80WriteTemplate(z80, kFour);
    }
}

void Accumulate(Z80& z80, Z80Step step, uint8_t value) {
    const uint32_t carry = F(z80) & kZ80FlagC;
    switch (step) {
    case kAdd: Z80Add(z80, value, 0); break;
    case kAddCarry: Z80Add(z80, value, carry); break;
    case kSubtract: Z80Subtract(z80, value, 0); break;
    case kSubtractCarry: Z80Subtract(z80, value, carry); break;
    case kAnd: Z80And(z80, value); break;
    case kXor: Z80Xor(z80, value); break;
    case kOr: Z80Or(z80, value); break;
    default: Z80Compare(z80, value); break;
    }
}

// Opcodes 0x80 to 0xBF.
void DecodeAccumulator(const DECODE& at) {
    if (at.column == kMemoryCode) {
        WriteMemoryTemplate(at, kAluMemory[at.row]);
        return;
    }
    Accumulate(at.z80, kAluSteps[at.row], GetRegister(at.z80, at.column, at.hl));
    Z80WriteTemplate(at.z80, kFour);
}

// POP, RET, EXX, JP (HL), LD SP,HL.
void DecodePopColumn(const DECODE& at) {
    Z80& z80 = at.z80;
    switch (at.row) {
    case 1: Finish(z80, kPop, kZ80Pc); break;
    case 3: // EXX
        std::swap(z80.regs[kZ80Bc], z80.regs[kZ80BcPrime]);
        std::swap(z80.regs[kZ80De], z80.regs[kZ80DePrime]);
        std::swap(z80.regs[kZ80Hl], z80.regs[kZ80HlPrime]);
        Z80WriteTemplate(z80, kFour);
        break;
    case 5:
        z80.regs[kZ80Pc] = Address(z80.regs[at.hl]);
        Z80WriteTemplate(z80, kFour);
        break;
    case 7:
        z80.regs[kZ80Sp] = Address(z80.regs[at.hl]);
        Z80WriteTemplate(z80, kSix);
        break;
    default: Finish(z80, kPop, PairOfRow(at, kZ80Af)); break;
    }
}

void StartPrefix(Z80& z80, Z80Prefix prefix) {
    z80.prefix = prefix;
    Z80WriteTemplate(z80, kFour);
}

void StartCb(const DECODE& at) {
    if (!at.IsIndexed()) {
        StartPrefix(at.z80, kZ80PrefixCb);
        return;
    }
    at.z80.prefix = at.hl == kZ80Ix ? kZ80PrefixDdCb : kZ80PrefixFdCb;
    Z80WriteTemplate(at.z80, kIndexedBits);
}

// IN A,(n) and OUT (n),A. A is the high byte of the port.
void PortOperand(Z80& z80, const Z80Template& steps) {
    SetHighByte(z80.wz, A(z80));
    Finish(z80, steps, kZ80Af);
}

void DecodeMixedColumn(const DECODE& at) {
    Z80& z80 = at.z80;
    switch (at.row) {
    case 0: JumpAbsolute(z80, true); break;
    case 1: StartCb(at); break;
    case 2: PortOperand(z80, kOutput); break;
    case 3: PortOperand(z80, kInput); break;
    case 4: // EX (SP),HL
        z80.wz = Address(z80.regs[kZ80Sp]);
        z80.temp = Address(z80.regs[at.hl]);
        Finish(z80, kExchangeStack, at.hl);
        break;
    case 5: // EX DE,HL ignores a prefix.
        std::swap(z80.regs[kZ80De], z80.regs[kZ80Hl]);
        Z80WriteTemplate(z80, kFour);
        break;
    case 6:
        z80.iff1 = z80.iff2 = 0;
        Z80WriteTemplate(z80, kFour);
        break;
    default:
        z80.iff1 = z80.iff2 = 1;
        z80.eiDelay = 1;
        Z80WriteTemplate(z80, kFour);
        break;
    }
}

void DecodePushColumn(const DECODE& at) {
    Z80& z80 = at.z80;
    switch (at.row) {
    case 1: Call(z80, true); break;
    case 3: StartPrefix(z80, kZ80PrefixDd); break;
    case 5: StartPrefix(z80, kZ80PrefixEd); break;
    case 7: StartPrefix(z80, kZ80PrefixFd); break;
    default:
        z80.wz = Address(z80.regs[PairOfRow(at, kZ80Af)]);
        Z80WriteTemplate(z80, kPush);
        break;
    }
}

// Opcodes 0xC0 to 0xFF.
void DecodeLastQuarter(const DECODE& at) {
    Z80& z80 = at.z80;
    switch (at.column) {
    case 0: Finish(z80, Holds(z80, at.row) ? kReturnTaken : kReturnNotTaken, kZ80Pc); break;
    case 1: DecodePopColumn(at); break;
    case 2: JumpAbsolute(z80, Holds(z80, at.row)); break;
    case 3: DecodeMixedColumn(at); break;
    case 4: Call(z80, Holds(z80, at.row)); break;
    case 5: DecodePushColumn(at); break;
    case 6: Z80WriteTemplate(z80, kAluOperand[at.row]); break;
    default: // RST
        z80.wz = Address(z80.regs[kZ80Pc]);
        z80.regs[kZ80Pc] = at.row << 3;
        Z80WriteTemplate(z80, kPush);
        break;
    }
}

void DecodeQuarter(const DECODE& at, uint32_t quarter) {
    at.z80.prefix = kZ80NoPrefix;
    switch (quarter) {
    case 0: DecodeFirstQuarter(at); break;
    case 1: DecodeLoads(at); break;
    case 2: DecodeAccumulator(at); break;
    default: DecodeLastQuarter(at); break;
    }
}

// An opcode without a prefix, with its fields as constants.
template <uint32_t Opcode>
OMBRELUNE_FLATTEN void DecodeOpcode(Z80& z80) {
    DecodeQuarter({z80, kZ80Hl, (Opcode >> 3) & 7, Opcode & 7}, Opcode >> 6);
}

template <uint32_t... Opcode>
constexpr Z80DecodeTable MakeDecodeTable(std::integer_sequence<uint32_t, Opcode...> /*unused*/) {
    return {DecodeOpcode<Opcode>...};
}

void DecodeIndex(Z80& z80, Z80Register index) {
    z80.wz = Address(z80.regs[index]);
    DecodeQuarter({z80, index, (z80.opcode >> 3) & 7, z80.opcode & 7}, (z80.opcode >> 6) & 3);
}

} // namespace

constinit const Z80DecodeTable kZ80BaseTable =
    MakeDecodeTable(std::make_integer_sequence<uint32_t, 256>());

void Z80Decode(Z80& z80) {
    switch (z80.prefix) {
    case kZ80PrefixCb: Z80DecodeCb(z80); break;
    case kZ80PrefixDd: DecodeIndex(z80, kZ80Ix); break;
    case kZ80PrefixFd: DecodeIndex(z80, kZ80Iy); break;
    case kZ80PrefixEd: Z80DecodeEd(z80); break;
    default: kZ80BaseTable[z80.opcode % kZ80BaseTable.size()](z80); break;
    }
}

void Z80StartInterrupt(Z80& z80) {
    const bool isNmi = z80.pendingInterrupt == kZ80Nmi;
    z80.pendingInterrupt = kZ80NoInterrupt;
    if (z80.halted != 0) {
        Advance(z80.regs[kZ80Pc], 1);
        z80.halted = 0;
    }
    z80.iff1 = 0;
    if (isNmi) {
        z80.wz = Address(z80.regs[kZ80Pc]);
        z80.regs[kZ80Pc] = kNmiVector;
        Z80WriteTemplate(z80, kNmiTemplate);
        return;
    }
    z80.iff2 = 0;
    if (z80.im == 2) {
        z80.wz = Address((z80.i << 8) | kMode2LowByte);
        Finish(z80, kMode2Template, kZ80Pc);
        return;
    }
    z80.opcode = kRst38;
    Z80WriteTemplate(z80, kFakeOpcode);
}
