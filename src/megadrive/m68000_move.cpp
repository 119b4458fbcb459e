// MOVE and MOVEA: every source with every destination.
#include "megadrive/m68000_operand.h"

namespace {

using enum M68kMode;

// The destination is in bits 6 to 11, with its register above its mode.
constexpr uint32_t DestinationBits(M68kMode mode) {
    const uint32_t bits = M68kModeBits(mode);
    return (bits & 7) << 9 | (bits & 0x38) << 3;
}

// As a destination, a predecrement takes no longer than the other indirect modes.
constexpr uint32_t DestinationClocks(M68kMode mode, M68kSize size) {
    const bool isPreDecrement = mode == kPreDecrement || mode == kPreDecrementA7;
    return M68kModeClocks(isPreDecrement ? kIndirect : mode, size);
}

// The source is read before the destination's extension words are fetched and its register moves.
template <M68kSize kSize, M68kMode kSource, M68kMode kTarget>
void Move(M68K_STATE& cpu) {
    const uint32_t value = M68kOperand<kSource, kSize>(cpu);
    if constexpr (kTarget == kAddress) {
        M68kAddressRegister<M68kSlot::kHigh>(cpu) =
            kSize == M68kSize::kWord ? M68kSignExtendWord(value) : value;
    } else if constexpr (kTarget == kData) {
        M68kSetData<kSize>(M68kDataRegister<M68kSlot::kHigh>(cpu),
                           M68kLogicFlags<kSize>(cpu, value));
    } else {
        const uint32_t address = M68kEffectiveAddress<kTarget, kSize, M68kSlot::kHigh>(cpu);
        M68kWrite<kSize>(cpu, address, M68kLogicFlags<kSize>(cpu, value));
    }
}

template <M68kSize kSize, M68kMode kSource, M68kMode kTarget>
void AddMove(M68kRowList& rows) {
    constexpr uint32_t kBase = 4;
    constexpr uint32_t kLine = kSize == M68kSize::kByte   ? 0x1000
                               : kSize == M68kSize::kWord ? 0x3000
                                                          : 0x2000;
    constexpr uint32_t kMatch = kLine | DestinationBits(kTarget) | M68kModeBits(kSource);
    constexpr uint32_t kOpen =
        (M68kNamesRegister(kTarget) ? 0x0E00U : 0) | (M68kNamesRegister(kSource) ? 7U : 0);
    constexpr uint32_t kClocks =
        kBase + M68kModeClocks(kSource, kSize) + DestinationClocks(kTarget, kSize);
    rows.push_back(
        {Move<kSize, kSource, kTarget>, 0xFFFF & ~kOpen, kMatch, static_cast<uint8_t>(kClocks)});
}

template <M68kSize kSize, M68kMode kTarget>
void AddTarget(M68kRowList& rows) {
    M68kForAll<kSize>([&]<M68kMode kSource>() { AddMove<kSize, kSource, kTarget>(rows); });
}

} // namespace

void M68kAddMoveRows(M68kRowList& rows) {
    M68kForSizes([&]<M68kSize kSize>() {
        AddTarget<kSize, kData>(rows);
        if constexpr (kSize != M68kSize::kByte) {
            AddTarget<kSize, kAddress>(rows);
        }
        M68kForAlterable<kSize>([&]<M68kMode kTarget>() { AddTarget<kSize, kTarget>(rows); });
    });
}
