// The clocks of every opcode against the manual's tables, worked out from the opcode's bits.
#include "megadrive/m68000_private.h"

#include <gtest/gtest.h>

namespace {

constexpr int kNone = -1; // not an instruction of the 68000

// Addressing modes by number: 0 to 6 as in the opcode, 7 to 11 the five forms of mode 7.
constexpr uint32_t kModes = 12;
constexpr uint32_t kPredecrement = 4;
constexpr uint32_t kImmediateMode = 11;

// Sets of modes, a bit each.
constexpr uint32_t kAny = 0xFFF;
constexpr uint32_t kData = kAny & ~0x002U;
constexpr uint32_t kAlterable = 0x1FD;
constexpr uint32_t kMemory = 0x1FC;
constexpr uint32_t kControl = 0x7E4;

enum Width { kByteWidth, kWordWidth, kLongWidth };

uint32_t ModeOf(uint32_t mode, uint32_t reg) {
    return mode < 7 ? mode : 7 + reg;
}

uint32_t Mode(uint32_t opcode) {
    return ModeOf(opcode >> 3 & 7, opcode & 7);
}

bool IsIn(uint32_t mode, uint32_t set) {
    return mode < kModes && (set >> mode & 1) != 0;
}

int Ea(uint32_t mode, bool isLong) {
    constexpr int kShort[] = {0, 0, 4, 4, 6, 8, 10, 8, 12, 8, 10, 4};
    constexpr int kLong[] = {0, 0, 8, 8, 10, 12, 14, 12, 16, 12, 14, 8};
    return isLong ? kLong[mode] : kShort[mode];
}

// `base` and the operand's time if the mode is in the set.
int With(uint32_t opcode, uint32_t set, int base, bool isLong = false) {
    return IsIn(Mode(opcode), set) ? base + Ea(Mode(opcode), isLong) : kNone;
}

int Immediate(uint32_t opcode) {
    const uint32_t kind = opcode >> 9 & 7;
    const uint32_t width = opcode >> 6 & 3;
    const bool isLong = width == kLongWidth;
    const bool hasStatusForm = kind == 0 || kind == 1 || kind == 5;
    if (kind == 7 || width == 3) {
        return kNone;
    }
    if (hasStatusForm && !isLong && Mode(opcode) == kImmediateMode) {
        return 20;
    }
    const bool isCompare = kind == 6;
    if (Mode(opcode) == 0) {
        return !isLong ? 8 : isCompare ? 14 : 16;
    }
    const int base = isCompare ? (isLong ? 12 : 8) : (isLong ? 20 : 12);
    return With(opcode, kMemory, base, isLong);
}

int Line0(uint32_t opcode) {
    if ((opcode & 0x138) == 0x108) {
        return (opcode & 0x40) != 0 ? 24 : 16; // MOVEP
    }
    const bool byRegister = (opcode & 0x100) != 0;
    if (!byRegister && (opcode & 0xE00) != 0x800) {
        return Immediate(opcode);
    }
    const uint32_t kind = opcode >> 6 & 3;
    if (Mode(opcode) == 0) {
        constexpr int kOfRegister[] = {6, 8, 10, 8};
        return kOfRegister[kind] + (byRegister ? 0 : 4);
    }
    if (kind != 0) {
        return With(opcode, kMemory, byRegister ? 8 : 12);
    }
    if (Mode(opcode) == kImmediateMode) {
        return byRegister ? 10 : kNone;
    }
    return With(opcode, kMemory | 0x600, byRegister ? 4 : 8);
}

int MoveTime(uint32_t opcode) {
    const bool isLong = (opcode & 0x3000) == 0x2000;
    const bool isByte = (opcode & 0x3000) == 0x1000;
    const uint32_t source = Mode(opcode);
    const uint32_t target = ModeOf(opcode >> 6 & 7, opcode >> 9 & 7);
    if (!IsIn(source, isByte ? kData : kAny) || !IsIn(target, isByte ? kAlterable : 0x1FFU)) {
        return kNone;
    }
    constexpr int kShortTarget[] = {0, 0, 4, 4, 4, 8, 10, 8, 12};
    constexpr int kLongTarget[] = {0, 0, 8, 8, 8, 12, 14, 12, 16};
    constexpr int kShortSource[] = {4, 4, 8, 8, 10, 12, 14, 12, 16, 12, 14, 8};
    constexpr int kLongSource[] = {4, 4, 12, 12, 14, 16, 18, 16, 20, 16, 18, 12};
    return isLong ? kLongSource[source] + kLongTarget[target]
                  : kShortSource[source] + kShortTarget[target];
}

int System(uint32_t opcode) {
    constexpr int kOf4E7x[] = {0, 4, 4, 20, kNone, 16, 4, 20};
    if ((opcode & 0xFFF0) == 0x4E40) {
        return 4; // TRAP
    }
    switch (opcode & 0xFFF8) {
    case 0x4E50: return 16;
    case 0x4E58: return 12;
    case 0x4E60:
    case 0x4E68: return 4;
    case 0x4E70: return kOf4E7x[opcode & 7];
    default: break;
    }
    if ((opcode & 0x80) == 0 || !IsIn(Mode(opcode), kControl)) {
        return kNone;
    }
    constexpr int kJump[] = {0, 0, 8, 0, 0, 10, 14, 10, 12, 10, 14, 0};
    return kJump[Mode(opcode)] + ((opcode & 0x40) == 0 ? 8 : 0);
}

int OneOperand(uint32_t opcode, bool isTest) {
    const bool isLong = (opcode >> 6 & 3) == kLongWidth;
    if (Mode(opcode) == 0) {
        return isLong && !isTest ? 6 : 4;
    }
    return With(opcode, kMemory, isTest ? 4 : isLong ? 12 : 8, isLong);
}

int MoveMultiple(uint32_t opcode) {
    constexpr int kStore[] = {0, 0, 8, 0, 8, 12, 14, 12, 16};
    constexpr int kLoad[] = {0, 0, 12, 12, 0, 16, 18, 16, 20, 16, 18};
    const uint32_t mode = Mode(opcode);
    if ((opcode & 0x400) != 0) {
        return IsIn(mode, kControl | 8) ? kLoad[mode] : kNone;
    }
    return IsIn(mode, (kControl & 0x1FF) | 1U << kPredecrement) ? kStore[mode] : kNone;
}

int LoadAddress(uint32_t opcode) {
    constexpr int kLea[] = {0, 0, 4, 0, 0, 8, 12, 8, 12, 8, 12};
    return IsIn(Mode(opcode), kControl) ? kLea[Mode(opcode)] : kNone;
}

int Line48(uint32_t opcode) {
    const uint32_t mode = Mode(opcode);
    switch (opcode >> 6 & 3) {
    case 0: return mode == 0 ? 6 : With(opcode, kMemory, 8); // NBCD
    case 1:
        if (mode == 0) {
            return 4; // SWAP
        }
        return LoadAddress(opcode) == kNone ? kNone : LoadAddress(opcode) + 8;
    default: return mode == 0 ? 4 : MoveMultiple(opcode); // EXT
    }
}

int Line4(uint32_t opcode) {
    if ((opcode & 0x100) != 0) {
        switch (opcode >> 6 & 3) {
        case 2: return With(opcode, kData, 10); // CHK
        case 3: return LoadAddress(opcode);
        default: return kNone;
        }
    }
    const bool isFourth = (opcode & 0xC0) == 0xC0;
    switch (opcode >> 9 & 7) {
    case 0:
        if (isFourth) {
            return Mode(opcode) == 0 ? 6 : With(opcode, kMemory, 8);
        }
        return OneOperand(opcode, false);
    case 1: return isFourth ? kNone : OneOperand(opcode, false);
    case 2:
    case 3: return isFourth ? With(opcode, kData, 12) : OneOperand(opcode, false);
    case 4: return Line48(opcode);
    case 5:
        if (opcode == 0x4AFC) {
            return 4;
        }
        if (isFourth) {
            return Mode(opcode) == 0 ? 4 : With(opcode, kMemory, 14); // TAS
        }
        return OneOperand(opcode, true);
    case 6: return (opcode & 0x80) != 0 ? MoveMultiple(opcode) : kNone;
    default: return System(opcode);
    }
}

int Line5(uint32_t opcode) {
    const uint32_t mode = Mode(opcode);
    const uint32_t width = opcode >> 6 & 3;
    const bool isLong = width == kLongWidth;
    if (width == 3) {
        if (mode == 1) {
            return 12; // DBcc
        }
        return mode == 0 ? 4 : With(opcode, kMemory, 8);
    }
    if (mode == 0) {
        return isLong ? 8 : 4;
    }
    if (mode == 1) {
        return width == kByteWidth ? kNone : 8;
    }
    return With(opcode, kMemory, isLong ? 12 : 8, isLong);
}

// Lines 8, 9, B, C and D, whose bits 6 to 8 say direction and width.
int TwoOperands(uint32_t opcode) {
    const uint32_t line = opcode >> 12;
    const uint32_t mode = Mode(opcode);
    const uint32_t width = opcode >> 6 & 3;
    const bool isLong = width == kLongWidth;
    const bool isLogic = line == 0x8 || line == 0xC;
    const bool isCompare = line == 0xB;
    const bool isFromData = (opcode & 0x100) != 0;
    if (width == 3) {
        if (line == 0x8) {
            return With(opcode, kData, isFromData ? 158 : 140);
        }
        if (line == 0xC) {
            return With(opcode, kData, 54);
        }
        if (isCompare) {
            return With(opcode, kAny, 6, isFromData);
        }
        const bool isQuickSource = mode < 2 || mode == kImmediateMode;
        return With(opcode, kAny, !isFromData || isQuickSource ? 8 : 6, isFromData);
    }
    if (!isFromData) {
        const uint32_t set = isLogic || width == kByteWidth ? kData : kAny;
        const bool isQuickSource = mode < 2 || mode == kImmediateMode;
        return With(opcode, set, !isLong ? 4 : isQuickSource && !isCompare ? 8 : 6, isLong);
    }
    if (mode >= 2) {
        return With(opcode, kMemory, isLong ? 12 : 8, isLong);
    }
    switch (line) {
    case 0x8: return width == kByteWidth ? (mode == 0 ? 6 : 18) : kNone;
    case 0xB: return mode == 0 ? (isLong ? 8 : 4) : (isLong ? 20 : 12);
    case 0xC:
        if (width == kByteWidth) {
            return mode == 0 ? 6 : 18;
        }
        return width == kWordWidth || mode == 1 ? 6 : kNone; // EXG
    default: return mode == 0 ? (isLong ? 8 : 4) : (isLong ? 30 : 18);
    }
}

int LineE(uint32_t opcode) {
    if ((opcode & 0xC0) != 0xC0) {
        return (opcode & 0xC0) == 0x80 ? 8 : 6;
    }
    return (opcode & 0x800) != 0 ? kNone : With(opcode, kMemory, 8);
}

int PublishedTime(uint32_t opcode) {
    switch (opcode >> 12) {
    case 0x0: return Line0(opcode);
    case 0x1:
    case 0x2:
    case 0x3: return MoveTime(opcode);
    case 0x4: return Line4(opcode);
    case 0x5: return Line5(opcode);
    case 0x6: return (opcode & 0xF00) == 0x100 ? 18 : 10;
    case 0x7: return (opcode & 0x100) == 0 ? 4 : kNone;
    case 0xA:
    case 0xF: return 4;
    case 0xE: return LineE(opcode);
    default: return TwoOperands(opcode);
    }
}

TEST(M68000Timing, EveryOpcodeCostsItsPublishedBaseTime) {
    M68kBuildTables();
    for (uint32_t opcode = 0; opcode < kM68kOpcodes; ++opcode) {
        const int published = PublishedTime(opcode);
        const int expected = published == kNone ? 0 : published;
        ASSERT_EQ(m68kCycles[opcode], expected) << std::hex << opcode;
    }
}

TEST(M68000Timing, EveryOtherOpcodeIsIllegal) {
    M68kBuildTables();
    for (uint32_t opcode = 0; opcode < kM68kOpcodes; ++opcode) {
        const bool isIllegal = PublishedTime(opcode) == kNone || opcode == 0x4AFC;
        ASSERT_EQ(m68kHandlers[opcode] == M68kIllegalHandler, isIllegal) << std::hex << opcode;
    }
}

TEST(M68000Timing, CheckValuesOfTheManual) {
    M68kBuildTables();
    struct CHECK {
        uint32_t opcode;
        uint32_t clocks;
    };
    constexpr CHECK kChecks[] = {
        {0x3001, 4 }, // MOVE.W D1,D0
        {0x3320, 14}, // MOVE.W -(A0),-(A1)
        {0x13F9, 28}, // MOVE.B abs.L,abs.L
        {0x23F9, 36}, // MOVE.L abs.L,abs.L
        {0x20BC, 20}, // MOVE.L #,(A0)
        {0x3050, 8 }, // MOVEA.W (A0),A0
        {0x0280, 16}, // ANDI.L #,D0
        {0x5248, 8 }, // ADDQ.W #1,A0
        {0x4E70, 0 }, // RESET
    };
    for (const CHECK& check : kChecks) {
        EXPECT_EQ(m68kCycles[check.opcode], check.clocks) << std::hex << check.opcode;
    }
}

TEST(M68000Timing, ExceptionsHaveTheirClocks) {
    struct RANGE {
        uint32_t first;
        uint32_t last;
        uint32_t clocks;
    };
    constexpr RANGE kRanges[] = {
        {0,  1,   4 },
        {2,  3,   50},
        {4,  4,   34},
        {5,  5,   38},
        {6,  6,   40},
        {7,  9,   34},
        {10, 14,  4 },
        {15, 15,  44},
        {16, 23,  4 },
        {24, 31,  44},
        {32, 47,  34},
        {48, 255, 4 }
    };
    for (const RANGE& range : kRanges) {
        for (uint32_t vector = range.first; vector <= range.last; ++vector) {
            EXPECT_EQ(m68kExceptionCycles[vector], range.clocks) << vector;
        }
    }
}

} // namespace
