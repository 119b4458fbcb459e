// Two operands: ADD, SUB, AND, OR, EOR and CMP with their address, immediate, quick and extended forms.
#include "megadrive/m68000_operand.h"

namespace {

using enum M68kMode;
using Slot = M68kSlot;
using Size = M68kSize;

// An operation sets the flags and returns the result. `kKeeps` is false for a compare, whose result is dropped.
struct Add {
    static constexpr bool kKeeps = true;
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        const uint32_t result = M68kSum<kSize>(cpu, source, target, 0);
        cpu.notZ = result;
        cpu.x = cpu.c;
        return result;
    }
};

struct Subtract {
    static constexpr bool kKeeps = true;
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        const uint32_t result = M68kDifference<kSize>(cpu, source, target, 0);
        cpu.notZ = result;
        cpu.x = cpu.c;
        return result;
    }
};

struct Compare {
    static constexpr bool kKeeps = false;
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        cpu.notZ = M68kDifference<kSize>(cpu, source, target, 0);
        return target;
    }
};

// The extended forms leave Z alone if the result is 0, so that Z holds for a whole chain.
struct AddExtended {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        const uint32_t result = M68kSum<kSize>(cpu, source, target, M68kHasX(cpu) ? 1 : 0);
        cpu.notZ |= result;
        cpu.x = cpu.c;
        return result;
    }
};

struct SubtractExtended {
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        const uint32_t result = M68kDifference<kSize>(cpu, source, target, M68kHasX(cpu) ? 1 : 0);
        cpu.notZ |= result;
        cpu.x = cpu.c;
        return result;
    }
};

struct And {
    static constexpr bool kKeeps = true;
    static uint32_t Combine(uint32_t source, uint32_t target) { return source & target; }
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        return M68kLogicFlags<kSize>(cpu, Combine(source, target));
    }
};

struct Or {
    static constexpr bool kKeeps = true;
    static uint32_t Combine(uint32_t source, uint32_t target) { return source | target; }
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        return M68kLogicFlags<kSize>(cpu, Combine(source, target));
    }
};

struct ExclusiveOr {
    static constexpr bool kKeeps = true;
    static uint32_t Combine(uint32_t source, uint32_t target) { return source ^ target; }
    template <Size kSize>
    static uint32_t Apply(M68K_STATE& cpu, uint32_t source, uint32_t target) {
        return M68kLogicFlags<kSize>(cpu, Combine(source, target));
    }
};

template <class Operation, Size kSize, M68kMode kMode>
void ToData(M68K_STATE& cpu) {
    const uint32_t source = M68kOperand<kMode, kSize>(cpu);
    uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
    const uint32_t result =
        Operation::template Apply<kSize>(cpu, source, target & kM68kMask<kSize>);
    if constexpr (Operation::kKeeps) {
        M68kSetData<kSize>(target, result);
    }
}

template <class Operation, Size kSize, M68kMode kMode>
void FromData(M68K_STATE& cpu) {
    const uint32_t source = M68kDataRegister<Slot::kHigh>(cpu) & kM68kMask<kSize>;
    M68kModify<kMode, kSize>(cpu, [&](uint32_t target) {
        return Operation::template Apply<kSize>(cpu, source, target);
    });
}

template <class Operation, Size kSize, M68kMode kMode>
void Immediate(M68K_STATE& cpu) {
    const uint32_t source = M68kOperand<kImmediate, kSize>(cpu);
    if constexpr (Operation::kKeeps) {
        M68kModify<kMode, kSize>(cpu, [&](uint32_t target) {
            return Operation::template Apply<kSize>(cpu, source, target);
        });
    } else {
        Operation::template Apply<kSize>(cpu, source, M68kOperand<kMode, kSize>(cpu));
    }
}

// An address register is changed with all 32 bits and no flag.
template <class Operation, Size kSize, M68kMode kMode>
void Quick(M68K_STATE& cpu) {
    const uint32_t source = M68kQuickValue(cpu);
    if constexpr (kMode == kAddress) {
        uint32_t& target = M68kAddressRegister<Slot::kLow>(cpu);
        target = std::is_same_v<Operation, Add> ? target + source : target - source;
    } else {
        M68kModify<kMode, kSize>(cpu, [&](uint32_t target) {
            return Operation::template Apply<kSize>(cpu, source, target);
        });
    }
}

template <class Operation, Size kSize, M68kMode kMode>
void ToAddress(M68K_STATE& cpu) {
    const uint32_t operand = M68kOperand<kMode, kSize>(cpu);
    const uint32_t source = kSize == Size::kWord ? M68kSignExtendWord(operand) : operand;
    uint32_t& target = M68kAddressRegister<Slot::kHigh>(cpu);
    if constexpr (std::is_same_v<Operation, Compare>) {
        Compare::Apply<Size::kLong>(cpu, source, target);
    } else {
        target = std::is_same_v<Operation, Add> ? target + source : target - source;
    }
}

// Register with register, or memory with memory by predecrement; the source is read first.
template <class Operation, Size kSize, M68kMode kSource, M68kMode kTarget>
void Extended(M68K_STATE& cpu) {
    const uint32_t source = M68kOperand<kSource, kSize>(cpu);
    if constexpr (kTarget == kData) {
        uint32_t& target = M68kDataRegister<Slot::kHigh>(cpu);
        M68kSetData<kSize>(
            target, Operation::template Apply<kSize>(cpu, source, target & kM68kMask<kSize>));
    } else {
        const uint32_t address = M68kEffectiveAddress<kTarget, kSize, Slot::kHigh>(cpu);
        const uint32_t target = M68kRead<kSize>(cpu, address);
        M68kWrite<kSize>(cpu, address, Operation::template Apply<kSize>(cpu, source, target));
    }
}

template <Size kSize, M68kMode kSource, M68kMode kTarget>
void CompareMemory(M68K_STATE& cpu) {
    const uint32_t source = M68kOperand<kSource, kSize>(cpu);
    Compare::Apply<kSize>(cpu, source, M68kOperand<kTarget, kSize, Slot::kHigh>(cpu));
}

// A long operand from a register or a literal takes two clocks more (M68000 User's Manual).
constexpr uint32_t LongClocks(M68kMode mode) {
    return M68kIsRegister(mode) || mode == kImmediate ? 8 : 6;
}

template <class Operation, Size kSize>
void AddToData(M68kRowList& rows, uint32_t line) {
    const auto add = [&]<M68kMode kMode>() {
        const uint32_t base = kSize != Size::kLong ? 4 : !Operation::kKeeps ? 6 : LongClocks(kMode);
        M68kAddRegisterRow(rows, ToData<Operation, kSize, kMode>, line | M68kSizeBits(kSize), kMode,
                           base + M68kModeClocks(kMode, kSize));
    };
    if constexpr (std::is_same_v<Operation, And> || std::is_same_v<Operation, Or>) {
        M68kForData<kSize>(add);
    } else {
        M68kForAll<kSize>(add);
    }
}

template <class Operation, Size kSize>
void AddFromData(M68kRowList& rows, uint32_t line) {
    M68kForAlterable<kSize>([&]<M68kMode kMode>() {
        M68kAddRegisterRow(rows, FromData<Operation, kSize, kMode>,
                           line | 0x100 | M68kSizeBits(kSize), kMode,
                           (kSize == Size::kLong ? 12U : 8U) + M68kModeClocks(kMode, kSize));
    });
}

template <class Operation, Size kSize>
void AddImmediate(M68kRowList& rows, uint32_t line) {
    constexpr bool kIsLong = kSize == Size::kLong;
    const uint32_t match = line | M68kSizeBits(kSize);
    M68kAddRow(rows, Immediate<Operation, kSize, kData>, match, kData,
               !kIsLong            ? 8
               : Operation::kKeeps ? 16
                                   : 14);
    M68kForAlterable<kSize>([&]<M68kMode kMode>() {
        const uint32_t base = Operation::kKeeps ? (kIsLong ? 20 : 12) : (kIsLong ? 12 : 8);
        M68kAddRow(rows, Immediate<Operation, kSize, kMode>, match, kMode,
                   base + M68kModeClocks(kMode, kSize));
    });
}

template <class Operation, Size kSize>
void AddQuick(M68kRowList& rows, uint32_t line) {
    constexpr bool kIsLong = kSize == Size::kLong;
    const uint32_t match = line | M68kSizeBits(kSize);
    M68kAddRegisterRow(rows, Quick<Operation, kSize, kData>, match, kData, kIsLong ? 8 : 4);
    if constexpr (kSize != Size::kByte) {
        M68kAddRegisterRow(rows, Quick<Operation, kSize, kAddress>, match, kAddress, 8);
    }
    M68kForAlterable<kSize>([&]<M68kMode kMode>() {
        M68kAddRegisterRow(rows, Quick<Operation, kSize, kMode>, match, kMode,
                           (kIsLong ? 12U : 8U) + M68kModeClocks(kMode, kSize));
    });
}

template <class Operation>
void AddToAddress(M68kRowList& rows, uint32_t line) {
    constexpr bool kCompares = std::is_same_v<Operation, Compare>;
    M68kForAll<Size::kWord>([&]<M68kMode kMode>() {
        M68kAddRegisterRow(rows, ToAddress<Operation, Size::kWord, kMode>, line | 0x0C0, kMode,
                           (kCompares ? 6U : 8U) + M68kModeClocks(kMode, Size::kWord));
    });
    M68kForAll<Size::kLong>([&]<M68kMode kMode>() {
        M68kAddRegisterRow(rows, ToAddress<Operation, Size::kLong, kMode>, line | 0x1C0, kMode,
                           (kCompares ? 6U : LongClocks(kMode)) +
                               M68kModeClocks(kMode, Size::kLong));
    });
}

template <class Operation, Size kSize>
void AddExtendedRows(M68kRowList& rows, uint32_t line) {
    constexpr uint32_t kMemory = 0x08;
    constexpr bool kIsLong = kSize == Size::kLong;
    const uint32_t match = line | 0x100 | M68kSizeBits(kSize);
    rows.push_back({Extended<Operation, kSize, kData, kData>, 0xF1F8, match,
                    static_cast<uint8_t>(kIsLong ? 8 : 4)});
    const auto add = [&](M68kHandler handler, uint32_t mask, uint32_t registers) {
        rows.push_back(
            {handler, mask, match | kMemory | registers, static_cast<uint8_t>(kIsLong ? 30 : 18)});
    };
    add(Extended<Operation, kSize, kPreDecrement, kPreDecrement>, 0xF1F8, 0);
    if constexpr (kSize == Size::kByte) {
        add(Extended<Operation, kSize, kPreDecrementA7, kPreDecrement>, 0xF1FF, 7);
        add(Extended<Operation, kSize, kPreDecrement, kPreDecrementA7>, 0xFFF8, 0x0E00);
        add(Extended<Operation, kSize, kPreDecrementA7, kPreDecrementA7>, 0xFFFF, 0x0E07);
    }
}

template <Size kSize>
void AddCompareMemory(M68kRowList& rows) {
    const auto add = [&](M68kHandler handler, uint32_t mask, uint32_t registers) {
        rows.push_back({handler, mask, 0xB108 | M68kSizeBits(kSize) | registers,
                        static_cast<uint8_t>(kSize == Size::kLong ? 20 : 12)});
    };
    add(CompareMemory<kSize, kPostIncrement, kPostIncrement>, 0xF1F8, 0);
    if constexpr (kSize == Size::kByte) {
        add(CompareMemory<kSize, kPostIncrementA7, kPostIncrement>, 0xF1FF, 7);
        add(CompareMemory<kSize, kPostIncrement, kPostIncrementA7>, 0xFFF8, 0x0E00);
        add(CompareMemory<kSize, kPostIncrementA7, kPostIncrementA7>, 0xFFFF, 0x0E07);
    }
}

// ORI, ANDI and EORI to the conditions, and to the status word, which is privileged.
template <class Operation>
void ToConditions(M68K_STATE& cpu) {
    const uint32_t operand = M68kFetchWord(cpu) & 0xFF;
    M68kSetConditions(cpu, Operation::Combine(operand, M68kConditions(cpu)));
}

template <class Operation>
void ToStatus(M68K_STATE& cpu) {
    if (M68kIsPrivileged(cpu)) {
        const uint32_t operand = M68kFetchWord(cpu);
        M68kSetStatus(cpu, Operation::Combine(operand, M68kStatus(cpu)));
    }
}

template <class Operation>
void AddToStatus(M68kRowList& rows, uint32_t line) {
    constexpr uint32_t kClocks = 20;
    M68kAddRow(rows, ToConditions<Operation>, line, kImmediate, kClocks);
    M68kAddRow(rows, ToStatus<Operation>, line | 0x40, kImmediate, kClocks);
}

} // namespace

void M68kAddArithmeticRows(M68kRowList& rows) {
    M68kForSizes([&]<Size kSize>() {
        AddToData<Or, kSize>(rows, 0x8000);
        AddToData<Subtract, kSize>(rows, 0x9000);
        AddToData<Compare, kSize>(rows, 0xB000);
        AddToData<And, kSize>(rows, 0xC000);
        AddToData<Add, kSize>(rows, 0xD000);
        AddFromData<Or, kSize>(rows, 0x8000);
        AddFromData<Subtract, kSize>(rows, 0x9000);
        AddFromData<ExclusiveOr, kSize>(rows, 0xB000);
        AddFromData<And, kSize>(rows, 0xC000);
        AddFromData<Add, kSize>(rows, 0xD000);
        M68kAddRegisterRow(rows, FromData<ExclusiveOr, kSize, kData>, 0xB100 | M68kSizeBits(kSize),
                           kData, kSize == Size::kLong ? 8 : 4);
        AddImmediate<Or, kSize>(rows, 0x0000);
        AddImmediate<And, kSize>(rows, 0x0200);
        AddImmediate<Subtract, kSize>(rows, 0x0400);
        AddImmediate<Add, kSize>(rows, 0x0600);
        AddImmediate<ExclusiveOr, kSize>(rows, 0x0A00);
        AddImmediate<Compare, kSize>(rows, 0x0C00);
        AddQuick<Add, kSize>(rows, 0x5000);
        AddQuick<Subtract, kSize>(rows, 0x5100);
        AddExtendedRows<SubtractExtended, kSize>(rows, 0x9000);
        AddExtendedRows<AddExtended, kSize>(rows, 0xD000);
        AddCompareMemory<kSize>(rows);
    });
    AddToAddress<Subtract>(rows, 0x9000);
    AddToAddress<Compare>(rows, 0xB000);
    AddToAddress<Add>(rows, 0xD000);
    AddToStatus<Or>(rows, 0x0000);
    AddToStatus<And>(rows, 0x0200);
    AddToStatus<ExclusiveOr>(rows, 0x0A00);
}
