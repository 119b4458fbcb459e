// Addressing modes as template parameters: effective addresses, operands, and the clocks and opcode bits of a
// mode, of which the definition rows are made.
#pragma once

#include "megadrive/m68000_access.h"
#include "megadrive/m68000_flags.h"
#include "megadrive/m68000_private.h"

#include <cstdint>

// The two A7 forms are those of a byte access, which moves A7 by 2.
enum class M68kMode : uint32_t {
    kData,
    kAddress,
    kIndirect,
    kPostIncrement,
    kPostIncrementA7,
    kPreDecrement,
    kPreDecrementA7,
    kDisplacement,
    kIndexed,
    kAbsoluteWord,
    kAbsoluteLong,
    kPcDisplacement,
    kPcIndexed,
    kImmediate
};

template <M68kMode... kModes>
struct M68K_MODES {};

namespace m68k_modes {

using enum M68kMode;

// Memory that can be written. Bytes also have the two forms of A7.
using Alterable = M68K_MODES<kIndirect, kPostIncrement, kPreDecrement, kDisplacement, kIndexed,
                             kAbsoluteWord, kAbsoluteLong>;
using AlterableByte =
    M68K_MODES<kIndirect, kPostIncrement, kPostIncrementA7, kPreDecrement, kPreDecrementA7,
               kDisplacement, kIndexed, kAbsoluteWord, kAbsoluteLong>;
// The modes of LEA, JMP and the like.
using Control = M68K_MODES<kIndirect, kDisplacement, kIndexed, kAbsoluteWord, kAbsoluteLong,
                           kPcDisplacement, kPcIndexed>;
using ReadOnly = M68K_MODES<kPcDisplacement, kPcIndexed, kImmediate>;

} // namespace m68k_modes

// Calls `call.template operator()<mode>()` for every mode of the list.
template <M68kMode... kModes, typename Call>
void M68kForModes(M68K_MODES<kModes...> /*list*/, Call&& call) {
    (call.template operator()<kModes>(), ...);
}

// The same for memory that can be written.
template <M68kSize kSize, typename Call>
void M68kForAlterable(Call&& call) {
    if constexpr (kSize == M68kSize::kByte) {
        M68kForModes(m68k_modes::AlterableByte{}, call);
    } else {
        M68kForModes(m68k_modes::Alterable{}, call);
    }
}

// Every mode but address registers.
template <M68kSize kSize, typename Call>
void M68kForData(Call&& call) {
    M68kForModes(M68K_MODES<M68kMode::kData>{}, call);
    M68kForAlterable<kSize>(call);
    M68kForModes(m68k_modes::ReadOnly{}, call);
}

// Every mode. An address register has no byte form.
template <M68kSize kSize, typename Call>
void M68kForAll(Call&& call) {
    M68kForData<kSize>(call);
    if constexpr (kSize != M68kSize::kByte) {
        M68kForModes(M68K_MODES<M68kMode::kAddress>{}, call);
    }
}

template <typename Call>
void M68kForSizes(Call&& call) {
    call.template operator()<M68kSize::kByte>();
    call.template operator()<M68kSize::kWord>();
    call.template operator()<M68kSize::kLong>();
}

// Where a handler's opcode names the register of a mode.
enum class M68kSlot : uint32_t { kLow = 0, kHigh = 9 };

template <M68kSlot kSlot>
inline uint32_t M68kNumber(const M68K_STATE& cpu) {
    return cpu.ir >> static_cast<uint32_t>(kSlot) & 7;
}

template <M68kSlot kSlot>
inline uint32_t& M68kDataRegister(M68K_STATE& cpu) {
    return cpu.regs[M68kNumber<kSlot>(cpu)];
}

template <M68kSlot kSlot>
inline uint32_t& M68kAddressRegister(M68K_STATE& cpu) {
    return cpu.regs[kM68kA0 + M68kNumber<kSlot>(cpu)];
}

template <M68kSize kSize>
inline void M68kSetData(uint32_t& target, uint32_t value) {
    target = (target & ~kM68kMask<kSize>) | (value & kM68kMask<kSize>);
}

// The literal of 1 to 8 in bits 9 to 11.
inline uint32_t M68kQuickValue(const M68K_STATE& cpu) {
    return ((M68kNumber<M68kSlot::kHigh>(cpu) - 1) & 7) + 1;
}

// base + d8 + index, whose extension word names a register in the order of regs.
inline uint32_t M68kIndex(M68K_STATE& cpu, uint32_t base) {
    constexpr uint32_t kWholeRegister = 0x800;
    const uint32_t extension = M68kFetchWord(cpu);
    const uint32_t index = cpu.regs[extension >> 12 & 15];
    return base + M68kSignExtendByte(extension) +
           ((extension & kWholeRegister) != 0 ? index : M68kSignExtendWord(index));
}

template <M68kMode kMode, M68kSize kSize, M68kSlot kSlot = M68kSlot::kLow>
inline uint32_t M68kEffectiveAddress(M68K_STATE& cpu) {
    using enum M68kMode;
    constexpr uint32_t kStep = kM68kBits<kSize> / 8;
    constexpr uint32_t kStepA7 = 2;
    if constexpr (kMode == kIndirect) {
        return M68kAddressRegister<kSlot>(cpu);
    } else if constexpr (kMode == kPostIncrement) {
        uint32_t& pointer = M68kAddressRegister<kSlot>(cpu);
        pointer += kStep;
        return pointer - kStep;
    } else if constexpr (kMode == kPostIncrementA7) {
        cpu.regs[kM68kA7] += kStepA7;
        return cpu.regs[kM68kA7] - kStepA7;
    } else if constexpr (kMode == kPreDecrement) {
        return M68kAddressRegister<kSlot>(cpu) -= kStep;
    } else if constexpr (kMode == kPreDecrementA7) {
        return cpu.regs[kM68kA7] -= kStepA7;
    } else if constexpr (kMode == kDisplacement) {
        return M68kAddressRegister<kSlot>(cpu) + M68kSignExtendWord(M68kFetchWord(cpu));
    } else if constexpr (kMode == kIndexed) {
        return M68kIndex(cpu, M68kAddressRegister<kSlot>(cpu));
    } else if constexpr (kMode == kAbsoluteWord) {
        return M68kSignExtendWord(M68kFetchWord(cpu));
    } else if constexpr (kMode == kAbsoluteLong) {
        return M68kFetchLong(cpu);
    } else if constexpr (kMode == kPcDisplacement) {
        const uint32_t base = cpu.pc;
        return base + M68kSignExtendWord(M68kFetchWord(cpu));
    } else {
        static_assert(kMode == kPcIndexed, "not a mode of memory");
        return M68kIndex(cpu, cpu.pc);
    }
}

template <M68kSize kSize>
inline uint32_t M68kRead(M68K_STATE& cpu, uint32_t address, M68kSpace space = kM68kData) {
    if constexpr (kSize == M68kSize::kByte) {
        return M68kReadByte(cpu, address);
    } else if constexpr (kSize == M68kSize::kWord) {
        return M68kReadWord(cpu, address, space);
    } else {
        return M68kReadLong(cpu, address, space);
    }
}

template <M68kSize kSize>
inline void M68kWrite(M68K_STATE& cpu, uint32_t address, uint32_t value) {
    if constexpr (kSize == M68kSize::kByte) {
        M68kWriteByte(cpu, address, value);
    } else if constexpr (kSize == M68kSize::kWord) {
        M68kWriteWord(cpu, address, value);
    } else {
        M68kWriteLong(cpu, address, value);
    }
}

// PC-relative operands are in program space.
template <M68kMode kMode>
inline constexpr M68kSpace kM68kSpaceOf =
    kMode == M68kMode::kPcDisplacement || kMode == M68kMode::kPcIndexed ? kM68kProgram : kM68kData;

// The operand, its upper bits clear.
template <M68kMode kMode, M68kSize kSize, M68kSlot kSlot = M68kSlot::kLow>
inline uint32_t M68kOperand(M68K_STATE& cpu) {
    using enum M68kMode;
    if constexpr (kMode == kData) {
        return M68kDataRegister<kSlot>(cpu) & kM68kMask<kSize>;
    } else if constexpr (kMode == kAddress) {
        return M68kAddressRegister<kSlot>(cpu) & kM68kMask<kSize>;
    } else if constexpr (kMode == kImmediate && kSize == M68kSize::kLong) {
        return M68kFetchLong(cpu);
    } else if constexpr (kMode == kImmediate) {
        return M68kFetchWord(cpu) & kM68kMask<kSize>;
    } else {
        const uint32_t address = M68kEffectiveAddress<kMode, kSize, kSlot>(cpu);
        return M68kRead<kSize>(cpu, address, kM68kSpaceOf<kMode>);
    }
}

// Replaces the operand of an alterable mode by what `change` returns for it.
template <M68kMode kMode, M68kSize kSize, typename Change>
inline void M68kModify(M68K_STATE& cpu, Change&& change) {
    if constexpr (kMode == M68kMode::kData) {
        uint32_t& target = M68kDataRegister<M68kSlot::kLow>(cpu);
        M68kSetData<kSize>(target, change(target & kM68kMask<kSize>));
    } else {
        const uint32_t address = M68kEffectiveAddress<kMode, kSize>(cpu);
        M68kWrite<kSize>(cpu, address, change(M68kRead<kSize>(cpu, address)));
    }
}

// Bits 0 to 5 of an opcode with the mode, register number 0.
constexpr uint32_t M68kModeBits(M68kMode mode) {
    constexpr uint32_t kBits[] = {0x00, 0x08, 0x10, 0x18, 0x1F, 0x20, 0x27,
                                  0x28, 0x30, 0x38, 0x39, 0x3A, 0x3B, 0x3C};
    return kBits[static_cast<uint32_t>(mode)];
}

// Whether the mode names a register, so that eight opcodes share it.
constexpr bool M68kNamesRegister(M68kMode mode) {
    using enum M68kMode;
    return mode <= kIndexed && mode != kPostIncrementA7 && mode != kPreDecrementA7;
}

// Clocks that the mode adds to an instruction (M68000 User's Manual, effective address times).
constexpr uint32_t M68kModeClocks(M68kMode mode, M68kSize size) {
    constexpr uint32_t kClocks[] = {0, 0, 4, 4, 4, 6, 6, 8, 10, 8, 12, 8, 10, 4};
    constexpr uint32_t kSecondWord = 4;
    const uint32_t clocks = kClocks[static_cast<uint32_t>(mode)];
    return clocks == 0 || size != M68kSize::kLong ? clocks : clocks + kSecondWord;
}

constexpr bool M68kIsRegister(M68kMode mode) {
    return mode <= M68kMode::kAddress;
}

// Bits 6 and 7 of most opcodes.
constexpr uint32_t M68kSizeBits(M68kSize size) {
    return size == M68kSize::kByte ? 0x00 : size == M68kSize::kWord ? 0x40 : 0x80;
}

// A row that matches every register of its mode, and no other variation.
inline void M68kAddRow(M68kRowList& rows, M68kHandler handler, uint32_t match, M68kMode mode,
                       uint32_t cycles) {
    rows.push_back({handler, M68kNamesRegister(mode) ? 0xFFF8U : 0xFFFFU,
                    match | M68kModeBits(mode), static_cast<uint8_t>(cycles)});
}

// The same with a register, or a literal, in bits 9 to 11.
inline void M68kAddRegisterRow(M68kRowList& rows, M68kHandler handler, uint32_t match,
                               M68kMode mode, uint32_t cycles) {
    rows.push_back({handler, M68kNamesRegister(mode) ? 0xF1F8U : 0xF1FFU,
                    match | M68kModeBits(mode), static_cast<uint8_t>(cycles)});
}
