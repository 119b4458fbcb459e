// The Z80's arithmetic, and the steps of the queue that need no bus.
#include "sega8/z80_private.h"

namespace {

using namespace z80_parts;
using z80_detail::Address;
using z80_detail::Advance;
using z80_detail::End;
using z80_detail::HighByte;
using z80_detail::LowByte;
using z80_detail::Sample;
using z80_detail::SetHighByte;
using z80_detail::SetLowByte;

uint32_t& Word(Z80& z80, Z80Register name) {
    return z80.regs[name];
}

uint32_t Carry(const Z80& z80) {
    return F(z80) & kZ80FlagC;
}

// A - value - carry with the flags of the subtraction; X and Y come from the result.
uint32_t Difference(Z80& z80, uint8_t value, uint32_t carry) {
    const uint32_t a = A(z80);
    const uint32_t result = a - value - carry;
    const uint32_t changed = a ^ value ^ result;
    SetF(z80, kZ80FlagsSz[LowByte(result)] | kZ80FlagN | (changed & kZ80FlagH) |
                  When((result & 0x100) != 0, kZ80FlagC) |
                  When(((a ^ value) & (a ^ result) & 0x80) != 0, kZ80FlagPv));
    return result;
}

void Logic(Z80& z80, uint32_t result, uint32_t half) {
    SetA(z80, result);
    SetF(z80, kZ80FlagsParity[LowByte(result)] | half);
}

// Stores the result of a CB step in T and in a byte of `regs`, which is one of the unused upper
// halves (kCopyPlaces).
void StoreResult(Z80& z80, uint8_t result) {
    const uint32_t place = z80.regIndex;
    const uint32_t shift = 8 * (place % 4);
    uint32_t& word = z80.regs[place / 4];
    word = (word & ~(uint32_t{0xFF} << shift)) | (uint32_t{result} << shift);
    SetLowByte(z80.temp, result);
}

uint32_t BitMask(const Z80& z80) {
    return uint32_t{1} << (HighByte(z80.temp) % 8);
}

// LDI and LDD, after the read and before the write.
void MoveBlock(Z80& z80, uint32_t by) {
    z80.wz = Address(Word(z80, kZ80De));
    Advance(Word(z80, kZ80Hl), by);
    Advance(Word(z80, kZ80De), by);
    Advance(Word(z80, kZ80Bc), kMinusOne);
    const uint32_t sum = uint32_t{A(z80)} + LowByte(z80.temp);
    SetF(z80, (F(z80) & (kZ80FlagS | kZ80FlagZ | kZ80FlagC)) | (sum & kZ80FlagX) |
                  ((sum << 4) & kZ80FlagY) | When(Address(Word(z80, kZ80Bc)) != 0, kZ80FlagPv));
    Sample(z80);
}

// CPI and CPD.
void CompareBlock(Z80& z80, uint32_t by) {
    const uint32_t carry = Carry(z80);
    const uint32_t result = Difference(z80, LowByte(z80.temp), 0);
    const uint32_t half = F(z80) & kZ80FlagH;
    const uint32_t shown = result - (half != 0 ? 1 : 0);
    Advance(Word(z80, kZ80Hl), by);
    Advance(Word(z80, kZ80Bc), kMinusOne);
    SetF(z80, (F(z80) & (kZ80FlagS | kZ80FlagZ)) | half | kZ80FlagN | carry | (shown & kZ80FlagX) |
                  ((shown << 4) & kZ80FlagY) | When(Address(Word(z80, kZ80Bc)) != 0, kZ80FlagPv));
}

// The flags of the port block transfers. `sum` is a sum that the chip computes internally.
void SetBlockPortFlags(Z80& z80, uint32_t sum) {
    const uint8_t b = HighByte(Word(z80, kZ80Bc));
    const uint32_t parity = kZ80FlagsParity[(sum & 7) ^ b] & kZ80FlagPv;
    SetF(z80, kZ80FlagsSz[b] | When((z80.temp & 0x80) != 0, kZ80FlagN) | parity |
                  (sum > 0xFF ? kZ80FlagH | kZ80FlagC : 0));
}

void DecrementB(Z80& z80) {
    uint32_t& bc = Word(z80, kZ80Bc);
    SetHighByte(bc, LowByte(uint32_t{HighByte(bc)} - 1));
}

// OUTI and OUTD, after the read from memory; the port follows.
void OutputBlock(Z80& z80, uint32_t by) {
    DecrementB(z80);
    Advance(Word(z80, kZ80Hl), by);
    z80.wz = Address(Word(z80, kZ80Bc));
    SetBlockPortFlags(z80, uint32_t{LowByte(Word(z80, kZ80Hl))} + LowByte(z80.temp));
}

// INI and IND, after the read from the port; the write to memory follows.
void InputBlock(Z80& z80, uint32_t by) {
    DecrementB(z80);
    z80.wz = Address(Word(z80, kZ80Hl));
    Advance(Word(z80, kZ80Hl), by);
    SetBlockPortFlags(z80, uint32_t{LowByte(Word(z80, kZ80Bc) + by)} + LowByte(z80.temp));
}

// Runs the same opcode again, five clocks later, or ends.
void RepeatWhile(Z80& z80, bool again) {
    using enum Z80Step;
    if (!again) {
        End(z80);
        return;
    }
    static constexpr Z80Template kRepeat{kIdle, kIdle, kIdle, kIdle, kEnd};
    Z80WriteTemplate(z80, kRepeat);
    Advance(Word(z80, kZ80Pc), static_cast<uint32_t>(-2));
    Sample(z80);
}

bool HasCount(const Z80& z80) {
    return Address(z80.regs[kZ80Bc]) != 0;
}

bool HasByteCount(const Z80& z80) {
    return HighByte(z80.regs[kZ80Bc]) != 0;
}

bool IsZeroSet(const Z80& z80) {
    return (F(z80) & kZ80FlagZ) != 0;
}

// RLD (to the left) and RRD rotate three nibbles through A and T.
void RotateDigit(Z80& z80, bool left) {
    const uint32_t a = A(z80);
    const uint32_t t = LowByte(z80.temp);
    const uint32_t out = left ? t >> 4 : t & 0x0F;
    const uint32_t memory = left ? (t << 4) | (a & 0x0F) : (a << 4) | (t >> 4);
    SetLowByte(z80.temp, LowByte(memory));
    const uint32_t carry = Carry(z80);
    Logic(z80, (a & 0xF0) | out, carry);
}

void JumpRelative(Z80& z80) {
    Advance(Word(z80, kZ80Pc), z80_detail::SignExtended(LowByte(z80.wz)));
    End(z80);
}

// A with the operand in WzLow, then the end.
void AccumulatorStep(Z80& z80, Z80Step step) {
    using enum Z80Step;
    const uint8_t operand = LowByte(z80.wz);
    switch (step) {
    case kAnd: Z80And(z80, operand); break;
    case kOr: Z80Or(z80, operand); break;
    case kXor: Z80Xor(z80, operand); break;
    case kAdd: Z80Add(z80, operand, 0); break;
    case kAddCarry: Z80Add(z80, operand, Carry(z80)); break;
    case kSubtract: Z80Subtract(z80, operand, 0); break;
    case kSubtractCarry: Z80Subtract(z80, operand, Carry(z80)); break;
    default: Z80Compare(z80, operand); break;
    }
    End(z80);
}

} // namespace

void Z80Operate(Z80& z80, Z80Step step) {
    using enum Z80Step;
    const uint8_t t = LowByte(z80.temp);
    switch (step) {
    case kAnd:
    case kOr:
    case kXor:
    case kCompare:
    case kAdd:
    case kAddCarry:
    case kSubtract:
    case kSubtractCarry: AccumulatorStep(z80, step); break;
    case kJumpRelative: JumpRelative(z80); break;
    case kIncrementT: SetLowByte(z80.temp, Z80Increment(z80, t)); break;
    case kDecrementT: SetLowByte(z80.temp, Z80Decrement(z80, t)); break;
    case kLdi: MoveBlock(z80, 1); break;
    case kLdd: MoveBlock(z80, kMinusOne); break;
    case kCpi: CompareBlock(z80, 1); break;
    case kCpd: CompareBlock(z80, kMinusOne); break;
    case kOuti: OutputBlock(z80, 1); break;
    case kOutd: OutputBlock(z80, kMinusOne); break;
    case kIni: InputBlock(z80, 1); break;
    case kInd: InputBlock(z80, kMinusOne); break;
    case kLdir:
    case kLddr: RepeatWhile(z80, HasCount(z80)); break;
    case kCpir:
    case kCpdr: RepeatWhile(z80, HasCount(z80) && !IsZeroSet(z80)); break;
    case kInir:
    case kOtir:
    case kIndr:
    case kOtdr: RepeatWhile(z80, HasByteCount(z80)); break;
    case kBit: Z80TestBit(z80, HighByte(z80.temp), t, t); break;
    case kBitIndexed: Z80TestBit(z80, HighByte(z80.temp), t, HighByte(z80.wz)); break;
    case kSet: StoreResult(z80, LowByte(t | BitMask(z80))); break;
    case kRes: StoreResult(z80, LowByte(t & ~BitMask(z80))); break;
    case kRlc:
    case kRrc:
    case kRl:
    case kRr:
    case kSla:
    case kSra:
    case kSrl:
    case kSll: StoreResult(z80, Z80Rotate(z80, step, t)); break;
    case kRld: RotateDigit(z80, true); break;
    case kRrd: RotateDigit(z80, false); break;
    case kDecodeIndexed: Z80DecodeIndexed(z80); break;
    default: break;
    }
}

void Z80Add(Z80& z80, uint8_t value, uint32_t carry) {
    const uint32_t a = A(z80);
    const uint32_t result = a + value + carry;
    const uint32_t changed = a ^ value ^ result;
    SetF(z80, kZ80FlagsSz[LowByte(result)] | (changed & kZ80FlagH) |
                  When(result > 0xFF, kZ80FlagC) |
                  When((~(a ^ value) & (a ^ result) & 0x80) != 0, kZ80FlagPv));
    SetA(z80, result);
}

void Z80Subtract(Z80& z80, uint8_t value, uint32_t carry) {
    SetA(z80, Difference(z80, value, carry));
}

void Z80Compare(Z80& z80, uint8_t value) {
    static_cast<void>(Difference(z80, value, 0));
    SetF(z80, (F(z80) & ~kXAndY) | (value & kXAndY));
}

void Z80And(Z80& z80, uint8_t value) {
    Logic(z80, uint32_t{A(z80)} & value, kZ80FlagH);
}

void Z80Or(Z80& z80, uint8_t value) {
    Logic(z80, uint32_t{A(z80)} | value, 0);
}

void Z80Xor(Z80& z80, uint8_t value) {
    Logic(z80, uint32_t{A(z80)} ^ value, 0);
}

uint8_t Z80Increment(Z80& z80, uint8_t value) {
    const uint8_t result = LowByte(uint32_t{value} + 1);
    SetF(z80, kZ80FlagsInc[result] | Carry(z80));
    return result;
}

uint8_t Z80Decrement(Z80& z80, uint8_t value) {
    const uint8_t result = LowByte(uint32_t{value} - 1);
    SetF(z80, kZ80FlagsDec[result] | Carry(z80));
    return result;
}

uint8_t Z80Rotate(Z80& z80, Z80Step step, uint8_t value) {
    using enum Z80Step;
    const uint32_t top = value >> 7;
    const uint32_t bottom = value & 1;
    const uint32_t left = uint32_t{value} << 1;
    const uint32_t right = value >> 1;
    const bool isLeft = step == kRlc || step == kRl || step == kSla || step == kSll;
    uint32_t result = right;
    switch (step) {
    case kRlc: result = left | top; break;
    case kRrc: result = right | (bottom << 7); break;
    case kRl: result = left | Carry(z80); break;
    case kRr: result = right | (Carry(z80) << 7); break;
    case kSla: result = left; break;
    case kSll: result = left | 1; break;
    case kSra: result = right | (value & 0x80); break;
    default: break; // SRL
    }
    SetF(z80, kZ80FlagsParity[LowByte(result)] | (isLeft ? top : bottom));
    return LowByte(result);
}

void Z80TestBit(Z80& z80, uint32_t bit, uint8_t value, uint8_t xySource) {
    const uint32_t flags = kZ80FlagsBit[value & (1U << (bit % 8))];
    SetF(z80, (flags & ~kXAndY) | (xySource & kXAndY) | kZ80FlagH | Carry(z80));
}
