// The Z80's CB, DD CB / FD CB and ED tables.
#include "sega8/z80_private.h"
#include "sega8/z80_templates.h"

namespace {

using namespace z80_parts;
using namespace z80_templates;
using z80_detail::Address;
using z80_detail::HighByte;
using z80_detail::LowByte;
using z80_detail::SetHighByte;
using enum Z80Step;

// The quarters of the CB tables.
enum BitTable : uint32_t { kRotates, kBits, kResets, kSets };

// The two parts of the ED table that have opcodes, by bits 6 and 7.
constexpr uint32_t kEdRows = 1;
constexpr uint32_t kEdBlocks = 2;
constexpr uint32_t kFirstBlockRow = 4;
constexpr uint32_t kBlockInput = 2;
constexpr uint32_t kRefreshTop = 0x80; // of R; only LD R,A changes it

constexpr std::array<Z80Step, 8> kRotateSteps{kRlc, kRrc, kRl, kRr, kSla, kSra, kSll, kSrl};

// The byte of `regs` to which a CB step copies its result, by the low three bits of the opcode. All
// of them are in unused upper halves of register words, so only memory changes.
constexpr std::array<uint8_t, 8> kCopyPlaces{7, 6, 11, 10, 15, 14, 55, 2};

template <typename Make>
constexpr std::array<Z80Template, 8> ForEachRotate(Make make) {
    std::array<Z80Template, 8> templates{};
    for (size_t i = 0; i < templates.size(); ++i) {
        templates[i] = make(kRotateSteps[i]);
    }
    return templates;
}

constexpr std::array<Z80Template, 8> kRotateMemory = ForEachRotate(ChangeMemory);
constexpr Z80Template kResMemory = ChangeMemory(kRes);
constexpr Z80Template kSetMemory = ChangeMemory(kSet);
constexpr std::array<Z80Template, 8> kRotateIndexed = ForEachRotate(ChangeIndexed);
constexpr Z80Template kResIndexed = ChangeIndexed(kRes);
constexpr Z80Template kSetIndexed = ChangeIndexed(kSet);

constexpr Z80Template kRldTemplate = RotateDigit(kRld);
constexpr Z80Template kRrdTemplate = RotateDigit(kRrd);

// By operation (LD, CP, IN, OUT), then by direction: up, down, up repeating, down repeating.
constexpr std::array<std::array<Z80Template, 4>, 4> kBlocks{
    {
     {MoveBlock(kLdi, kEnd), MoveBlock(kLdd, kEnd), MoveBlock(kLdi, kLdir),
         MoveBlock(kLdd, kLddr)},
     {CompareBlock(kCpi, kEnd), CompareBlock(kCpd, kEnd), CompareBlock(kCpi, kCpir),
         CompareBlock(kCpd, kCpdr)},
     {InputBlock(kIni, kEnd), InputBlock(kInd, kEnd), InputBlock(kIni, kInir),
         InputBlock(kInd, kIndr)},
     {OutputBlock(kOuti, kEnd), OutputBlock(kOutd, kEnd), OutputBlock(kOuti, kOtir),
         OutputBlock(kOutd, kOtdr)},
     }
};

uint32_t Row(const Z80& z80) {
    return (z80.opcode >> 3) & 7;
}

uint32_t Column(const Z80& z80) {
    return z80.opcode & 7;
}

BitTable Quarter(const Z80& z80) {
    return static_cast<BitTable>((z80.opcode >> 6) & 3);
}

void ChangeBitsOfRegister(Z80& z80) {
    const uint32_t code = Column(z80);
    const uint8_t value = GetRegister(z80, code, kZ80Hl);
    const uint32_t mask = 1U << Row(z80);
    switch (Quarter(z80)) {
    case kRotates:
        SetRegister(z80, code, kZ80Hl, Z80Rotate(z80, kRotateSteps[Row(z80)], value));
        break;
    case kBits: Z80TestBit(z80, Row(z80), value, value); break;
    case kResets: SetRegister(z80, code, kZ80Hl, LowByte(value & ~mask)); break;
    case kSets: SetRegister(z80, code, kZ80Hl, LowByte(value | mask)); break;
    }
    Z80WriteTemplate(z80, kFour);
}

// Prepares a CB step on memory: the number of the bit and the byte to copy the result to.
void PrepareBits(Z80& z80, uint32_t place) {
    SetHighByte(z80.temp, static_cast<uint8_t>(Row(z80)));
    z80.regIndex = kCopyPlaces[place];
}

bool IsPortOutput(const Z80& z80) {
    return Column(z80) == 1;
}

void TransferPort(Z80& z80) {
    const uint32_t code = Row(z80);
    z80.wz = Address(z80.regs[kZ80Bc]);
    if (IsPortOutput(z80)) {
        // OUT (C),(HL) outputs 0.
        z80.temp = code == kMemoryCode ? 0 : GetRegister(z80, code, kZ80Hl);
        Z80WriteTemplate(z80, kOutputT);
    } else if (code == kMemoryCode) {
        Z80WriteTemplate(z80, kInputFlags);
    } else {
        Finish(z80, IsHighByte(code) ? kInputHigh : kInputLow, WordOfCode(code, kZ80Hl));
    }
}

Z80Register Pair(const Z80& z80) {
    static constexpr std::array<Z80Register, 4> kPairs{kZ80Bc, kZ80De, kZ80Hl, kZ80Sp};
    return kPairs[(Row(z80) >> 1) % kPairs.size()];
}

// ADC HL,rr and SBC HL,rr.
void AddWithCarry(Z80& z80) {
    const bool isSubtraction = (Row(z80) & 1) == 0;
    const uint32_t hl = Address(z80.regs[kZ80Hl]);
    const uint32_t value = Address(z80.regs[Pair(z80)]);
    const uint32_t carry = F(z80) & kZ80FlagC;
    const uint32_t result = isSubtraction ? hl - value - carry : hl + value + carry;
    const uint32_t sameSign = isSubtraction ? hl ^ value : ~(hl ^ value);
    uint32_t flags = HighByte(result) & (kZ80FlagS | kXAndY);
    flags |= ((hl ^ value ^ result) >> 8) & kZ80FlagH;
    flags |= When(Address(result) == 0, kZ80FlagZ);
    flags |= When((sameSign & (hl ^ result) & 0x8000) != 0, kZ80FlagPv);
    flags |= When((result & 0x10000) != 0, kZ80FlagC);
    z80.regs[kZ80Hl] = Address(result);
    SetF(z80, flags | When(isSubtraction, kZ80FlagN));
    Z80WriteTemplate(z80, kAddWords);
}

// LD A,I and LD A,R copy iff2 to P/V.
void LoadA(Z80& z80, uint32_t value) {
    SetA(z80, value);
    SetF(z80, kZ80FlagsSz[A(z80)] | When(z80.iff2 != 0, kZ80FlagPv) | (F(z80) & kZ80FlagC));
    Z80WriteTemplate(z80, kNine);
}

void DecodeSpecialColumn(Z80& z80) {
    switch (Row(z80)) {
    case 0: // LD I,A
        z80.i = A(z80);
        Z80WriteTemplate(z80, kNine);
        break;
    case 1: // LD R,A
        z80.r7 = A(z80);
        z80.r8 = A(z80) & kRefreshTop;
        Z80WriteTemplate(z80, kNine);
        break;
    case 2: LoadA(z80, z80.i); break;
    case 3: LoadA(z80, (z80.r7 & ~kRefreshTop) | z80.r8); break;
    case 4:
        z80.wz = Address(z80.regs[kZ80Hl]);
        Z80WriteTemplate(z80, kRrdTemplate);
        break;
    case 5:
        z80.wz = Address(z80.regs[kZ80Hl]);
        Z80WriteTemplate(z80, kRldTemplate);
        break;
    default: Z80WriteTemplate(z80, kFour); break;
    }
}

void Negate(Z80& z80) {
    const uint8_t value = A(z80);
    SetA(z80, 0);
    Z80Subtract(z80, value, 0);
    Z80WriteTemplate(z80, kFour);
}

void SetInterruptMode(Z80& z80) {
    static constexpr std::array<uint8_t, 8> kModes{0, 0, 1, 2, 0, 0, 1, 2};
    z80.im = kModes[Row(z80)];
    Z80WriteTemplate(z80, kFour);
}

// ED 40 to ED 7F.
void DecodeEdRows(Z80& z80) {
    switch (Column(z80)) {
    case 0:
    case 1: TransferPort(z80); break;
    case 2: AddWithCarry(z80); break;
    case 3: Finish(z80, (Row(z80) & 1) == 0 ? kStoreWordDirect : kLoadWordDirect, Pair(z80)); break;
    case 4: Negate(z80); break;
    case 5: // RETN and RETI
        z80.iff1 = z80.iff2;
        Finish(z80, kPop, kZ80Pc);
        break;
    case 6: SetInterruptMode(z80); break;
    default: DecodeSpecialColumn(z80); break;
    }
}

// ED A0 to ED BB: bits 0 and 1 are the operation, bits 3 and 4 its direction and repetition.
void DecodeBlock(Z80& z80) {
    const uint32_t operation = Column(z80);
    const bool takesPort = operation == kBlockInput;
    z80.wz = Address(z80.regs[takesPort ? kZ80Bc : kZ80Hl]);
    Z80WriteTemplate(z80, kBlocks[operation % kBlocks.size()][Row(z80) % kBlocks[0].size()]);
}

} // namespace

void Z80DecodeCb(Z80& z80) {
    z80.prefix = kZ80NoPrefix;
    if (Column(z80) != kMemoryCode) {
        ChangeBitsOfRegister(z80);
        return;
    }
    z80.wz = Address(z80.regs[kZ80Hl]);
    PrepareBits(z80, kMemoryCode);
    switch (Quarter(z80)) {
    case kRotates: Z80WriteTemplate(z80, kRotateMemory[Row(z80)]); break;
    case kBits: Z80WriteTemplate(z80, kTestMemory); break;
    case kResets: Z80WriteTemplate(z80, kResMemory); break;
    case kSets: Z80WriteTemplate(z80, kSetMemory); break;
    }
}

void Z80DecodeIndexed(Z80& z80) {
    z80.prefix = kZ80NoPrefix;
    z80_detail::Advance(z80.wz, z80_detail::SignExtended(LowByte(z80.temp)));
    PrepareBits(z80, Column(z80));
    switch (Quarter(z80)) {
    case kRotates: Z80WriteTemplate(z80, kRotateIndexed[Row(z80)]); break;
    case kBits: Z80WriteTemplate(z80, kTestIndexed); break;
    case kResets: Z80WriteTemplate(z80, kResIndexed); break;
    case kSets: Z80WriteTemplate(z80, kSetIndexed); break;
    }
    z80_detail::Sample(z80);
}

void Z80DecodeEd(Z80& z80) {
    z80.prefix = kZ80NoPrefix;
    const uint32_t quarter = (z80.opcode >> 6) & 3;
    if (quarter == kEdRows) {
        DecodeEdRows(z80);
    } else if (quarter == kEdBlocks && Row(z80) >= kFirstBlockRow && Column(z80) < kBlocks.size()) {
        DecodeBlock(z80);
    } else {
        Z80WriteTemplate(z80, kFour); // undefined
    }
}
