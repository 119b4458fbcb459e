// Data movement: MOVEQ, MOVEM, MOVEP, LEA, PEA, LINK, UNLK, EXG, SWAP, EXT, and the moves to and from the status
// word and the user stack pointer.
#include "megadrive/m68000_operand.h"

#include <utility>

namespace {

using enum M68kMode;
using Slot = M68kSlot;
using Size = M68kSize;

constexpr uint32_t kRegisters = 16;

void MoveQuick(M68K_STATE& cpu) {
    const uint32_t value = M68kSignExtendByte(cpu.ir);
    M68kDataRegister<Slot::kHigh>(cpu) = M68kLogicFlags<Size::kLong>(cpu, value);
}

void Swap(M68K_STATE& cpu) {
    uint32_t& target = M68kDataRegister<Slot::kLow>(cpu);
    target = M68kLogicFlags<Size::kLong>(cpu, target >> 16 | target << 16);
}

void ExtendByte(M68K_STATE& cpu) {
    uint32_t& target = M68kDataRegister<Slot::kLow>(cpu);
    M68kSetData<Size::kWord>(target,
                             M68kLogicFlags<Size::kWord>(cpu, M68kSignExtendByte(target) & 0xFFFF));
}

void ExtendWord(M68K_STATE& cpu) {
    uint32_t& target = M68kDataRegister<Slot::kLow>(cpu);
    target = M68kLogicFlags<Size::kLong>(cpu, M68kSignExtendWord(target));
}

template <uint32_t kFirst, uint32_t kSecond>
void Exchange(M68K_STATE& cpu) {
    std::swap(cpu.regs[kFirst + M68kNumber<Slot::kHigh>(cpu)],
              cpu.regs[kSecond + M68kNumber<Slot::kLow>(cpu)]);
}

template <M68kMode kMode>
void LoadAddress(M68K_STATE& cpu) {
    const uint32_t address = M68kEffectiveAddress<kMode, Size::kLong>(cpu);
    M68kAddressRegister<Slot::kHigh>(cpu) = address;
}

template <M68kMode kMode>
void PushAddress(M68K_STATE& cpu) {
    M68kPushLong(cpu, M68kEffectiveAddress<kMode, Size::kLong>(cpu));
}

// If A7 is the frame register, its value from before the push is pushed.
void Link(M68K_STATE& cpu) {
    const uint32_t displacement = M68kSignExtendWord(M68kFetchWord(cpu));
    uint32_t& frame = M68kAddressRegister<Slot::kLow>(cpu);
    M68kPushLong(cpu, frame);
    frame = cpu.regs[kM68kA7];
    cpu.regs[kM68kA7] += displacement;
}

// If A7 is the frame register, the pulled value replaces it, and the increment of the pull is lost.
void Unlink(M68K_STATE& cpu) {
    uint32_t& frame = M68kAddressRegister<Slot::kLow>(cpu);
    cpu.regs[kM68kA7] = frame;
    frame = M68kPullLong(cpu);
}

template <Size kSize>
void SpendOnRegisters(M68K_STATE& cpu, uint32_t count) {
    constexpr uint32_t kMostPlaces = 31; // a loaded state may hold any shift
    const int32_t places = kSize == Size::kLong ? cpu.cycMovemLong : cpu.cycMovemWord;
    M68kSpend(cpu, static_cast<int32_t>(count << (static_cast<uint32_t>(places) & kMostPlaces)));
}

// The list of -(An) begins with A7. An itself is stored with its value from before the instruction.
template <Size kSize>
void StoreDownwards(M68K_STATE& cpu) {
    constexpr uint32_t kStep = kM68kBits<kSize> / 8;
    const uint32_t list = M68kFetchWord(cpu);
    uint32_t address = M68kAddressRegister<Slot::kLow>(cpu);
    uint32_t count = 0;
    for (uint32_t i = 0; i < kRegisters; ++i) {
        if ((list >> i & 1) != 0) {
            address -= kStep;
            M68kWrite<kSize>(cpu, address, cpu.regs[kRegisters - 1 - i]);
            ++count;
        }
    }
    M68kAddressRegister<Slot::kLow>(cpu) = address;
    SpendOnRegisters<kSize>(cpu, count);
}

template <Size kSize, M68kMode kMode>
void Store(M68K_STATE& cpu) {
    constexpr uint32_t kStep = kM68kBits<kSize> / 8;
    const uint32_t list = M68kFetchWord(cpu);
    uint32_t address = M68kEffectiveAddress<kMode, kSize>(cpu);
    uint32_t count = 0;
    for (uint32_t i = 0; i < kRegisters; ++i) {
        if ((list >> i & 1) != 0) {
            M68kWrite<kSize>(cpu, address, cpu.regs[i]);
            address += kStep;
            ++count;
        }
    }
    SpendOnRegisters<kSize>(cpu, count);
}

// Words are sign-extended to whole registers, data registers too. The chip reads one word more than it needs.
// With (An)+ the final address replaces a value that was loaded into An.
template <Size kSize, M68kMode kMode>
void Load(M68K_STATE& cpu) {
    constexpr uint32_t kStep = kM68kBits<kSize> / 8;
    constexpr bool kIncrements = kMode == kPostIncrement;
    const uint32_t list = M68kFetchWord(cpu);
    uint32_t address = M68kEffectiveAddress<(kIncrements ? kIndirect : kMode), kSize>(cpu);
    uint32_t count = 0;
    for (uint32_t i = 0; i < kRegisters; ++i) {
        if ((list >> i & 1) != 0) {
            const uint32_t value = M68kRead<kSize>(cpu, address, kM68kSpaceOf<kMode>);
            cpu.regs[i] = kSize == Size::kWord ? M68kSignExtendWord(value) : value;
            address += kStep;
            ++count;
        }
    }
    M68kReadWord(cpu, address, kM68kSpaceOf<kMode>);
    if constexpr (kIncrements) {
        M68kAddressRegister<Slot::kLow>(cpu) = address;
    }
    SpendOnRegisters<kSize>(cpu, count);
}

// MOVEP takes every second byte, the highest first.
template <Size kSize>
void LoadPeripheral(M68K_STATE& cpu) {
    uint32_t address = M68kEffectiveAddress<kDisplacement, Size::kWord>(cpu);
    uint32_t value = 0;
    for (uint32_t bits = 0; bits < kM68kBits<kSize>; bits += 8) {
        value = value << 8 | M68kReadByte(cpu, address);
        address += 2;
    }
    M68kSetData<kSize>(M68kDataRegister<Slot::kHigh>(cpu), value);
}

template <Size kSize>
void StorePeripheral(M68K_STATE& cpu) {
    uint32_t address = M68kEffectiveAddress<kDisplacement, Size::kWord>(cpu);
    const uint32_t value = M68kDataRegister<Slot::kHigh>(cpu);
    for (uint32_t place = kM68kBits<kSize>; place != 0; place -= 8) {
        M68kWriteByte(cpu, address, value >> (place - 8));
        address += 2;
    }
}

// Not privileged on a 68000. Memory is read before it is written.
template <M68kMode kMode>
void FromStatus(M68K_STATE& cpu) {
    M68kModify<kMode, Size::kWord>(cpu, [&](uint32_t /*before*/) { return M68kStatus(cpu); });
}

template <M68kMode kMode>
void ToConditions(M68K_STATE& cpu) {
    M68kSetConditions(cpu, M68kOperand<kMode, Size::kWord>(cpu));
}

template <M68kMode kMode>
void ToStatus(M68K_STATE& cpu) {
    if (M68kIsPrivileged(cpu)) {
        M68kSetStatus(cpu, M68kOperand<kMode, Size::kWord>(cpu));
    }
}

void ToUserStack(M68K_STATE& cpu) {
    if (M68kIsPrivileged(cpu)) {
        cpu.stackSlots[0] = M68kAddressRegister<Slot::kLow>(cpu);
    }
}

void FromUserStack(M68K_STATE& cpu) {
    if (M68kIsPrivileged(cpu)) {
        M68kAddressRegister<Slot::kLow>(cpu) = cpu.stackSlots[0];
    }
}

void AddAddressRows(M68kRowList& rows) {
    M68kForModes(m68k_modes::Control{}, [&]<M68kMode kMode>() {
        const bool isIndexed = kMode == kIndexed || kMode == kPcIndexed;
        const uint32_t clocks = M68kModeClocks(kMode, Size::kWord) + (isIndexed ? 2U : 0U);
        M68kAddRegisterRow(rows, LoadAddress<kMode>, 0x41C0, kMode, clocks);
        M68kAddRow(rows, PushAddress<kMode>, 0x4840, kMode, clocks + 8);
    });
}

template <Size kSize>
void AddMultipleRows(M68kRowList& rows) {
    constexpr uint32_t kSizeBit = kSize == Size::kLong ? 0x40 : 0;
    constexpr uint32_t kStoring = 0x4880 | kSizeBit;
    constexpr uint32_t kLoading = 0x4C80 | kSizeBit;
    constexpr uint32_t kStoreClocks = 4;
    constexpr uint32_t kLoadClocks = 8;
    M68kAddRow(rows, StoreDownwards<kSize>, kStoring, kPreDecrement, 8);
    M68kForModes(M68K_MODES<kIndirect, kDisplacement, kIndexed, kAbsoluteWord, kAbsoluteLong>{},
                 [&]<M68kMode kMode>() {
                     M68kAddRow(rows, Store<kSize, kMode>, kStoring, kMode,
                                kStoreClocks + M68kModeClocks(kMode, Size::kWord));
                 });
    const auto load = [&]<M68kMode kMode>() {
        M68kAddRow(rows, Load<kSize, kMode>, kLoading, kMode,
                   kLoadClocks + M68kModeClocks(kMode, Size::kWord));
    };
    M68kForModes(m68k_modes::Control{}, load);
    M68kForModes(M68K_MODES<kPostIncrement>{}, load);
}

void AddStatusRows(M68kRowList& rows) {
    M68kAddRow(rows, FromStatus<kData>, 0x40C0, kData, 6);
    M68kForModes(m68k_modes::Alterable{}, [&]<M68kMode kMode>() {
        M68kAddRow(rows, FromStatus<kMode>, 0x40C0, kMode, 8 + M68kModeClocks(kMode, Size::kWord));
    });
    M68kForData<Size::kWord>([&]<M68kMode kMode>() {
        const uint32_t clocks = 12 + M68kModeClocks(kMode, Size::kWord);
        M68kAddRow(rows, ToConditions<kMode>, 0x44C0, kMode, clocks);
        M68kAddRow(rows, ToStatus<kMode>, 0x46C0, kMode, clocks);
    });
    rows.push_back({ToUserStack, 0xFFF8, 0x4E60, 4});
    rows.push_back({FromUserStack, 0xFFF8, 0x4E68, 4});
}

} // namespace

void M68kAddTransferRows(M68kRowList& rows) {
    rows.push_back({MoveQuick, 0xF100, 0x7000, 4});
    rows.push_back({Swap, 0xFFF8, 0x4840, 4});
    rows.push_back({ExtendByte, 0xFFF8, 0x4880, 4});
    rows.push_back({ExtendWord, 0xFFF8, 0x48C0, 4});
    rows.push_back({Exchange<0, 0>, 0xF1F8, 0xC140, 6});
    rows.push_back({Exchange<kM68kA0, kM68kA0>, 0xF1F8, 0xC148, 6});
    rows.push_back({Exchange<0, kM68kA0>, 0xF1F8, 0xC188, 6});
    rows.push_back({Link, 0xFFF8, 0x4E50, 16});
    rows.push_back({Link, 0xFFFF, 0x4E57, 16});
    rows.push_back({Unlink, 0xFFF8, 0x4E58, 12});
    rows.push_back({Unlink, 0xFFFF, 0x4E5F, 12});
    rows.push_back({LoadPeripheral<Size::kWord>, 0xF1F8, 0x0108, 16});
    rows.push_back({LoadPeripheral<Size::kLong>, 0xF1F8, 0x0148, 24});
    rows.push_back({StorePeripheral<Size::kWord>, 0xF1F8, 0x0188, 16});
    rows.push_back({StorePeripheral<Size::kLong>, 0xF1F8, 0x01C8, 24});
    AddAddressRows(rows);
    AddMultipleRows<Size::kWord>(rows);
    AddMultipleRows<Size::kLong>(rows);
    AddStatusRows(rows);
}
