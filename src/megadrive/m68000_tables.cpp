// The tables by opcode, filled from the definition rows.
#include "megadrive/m68000_private.h"

#include <algorithm>

// All machines share them; they are written once, before any machine runs.
// NOLINTBEGIN(readability-identifier-naming)
std::array<M68kHandler, kM68kOpcodes> m68kHandlers;
std::array<uint8_t, kM68kOpcodes> m68kCycles;
// NOLINTEND(readability-identifier-naming)

namespace {

// Clocks of exceptions by vector (M68000 User's Manual, exception processing times).
struct VECTOR_RANGE {
    uint32_t first;
    uint32_t last;
    uint8_t clocks;
};

constexpr std::array kVectorClocks{
    VECTOR_RANGE{2,  3,  50},
    VECTOR_RANGE{4,  4,  34},
    VECTOR_RANGE{5,  5,  38},
    VECTOR_RANGE{6,  6,  40},
    VECTOR_RANGE{7,  9,  34},
    VECTOR_RANGE{15, 15, 44},
    VECTOR_RANGE{24, 31, 44},
    VECTOR_RANGE{32, 47, 34},
};

constexpr std::array<uint8_t, 256> ExceptionClocks() {
    constexpr uint8_t kOthers = 4;
    std::array<uint8_t, 256> clocks{};
    clocks.fill(kOthers);
    for (const VECTOR_RANGE& range : kVectorClocks) {
        for (uint32_t vector = range.first; vector <= range.last; ++vector) {
            clocks[vector] = range.clocks;
        }
    }
    return clocks;
}

// The masks that are filled last, in this order: a narrow pattern, such as the A7 form of a byte access,
// replaces the wide one that covers it. All other masks come first.
constexpr std::array<uint32_t, 6> kLaterMasks{0xFF00, 0xF1F8, 0xFFF0, 0xF1FF, 0xFFF8, 0xFFFF};

// Enters a row for every opcode that it matches: counts through the open bits of its mask.
void Enter(const M68K_OPCODE_ROW& row) {
    const uint32_t open = ~row.mask & (kM68kOpcodes - 1);
    uint32_t bits = 0;
    do {
        m68kHandlers[row.match | bits] = row.handler;
        m68kCycles[row.match | bits] = row.cycles;
        bits = (bits - open) & open;
    } while (bits != 0);
}

bool BuildTables() {
    m68kHandlers.fill(M68kIllegalHandler);
    m68kCycles.fill(0);
    const M68kRowList rows = M68kRows();
    for (const M68K_OPCODE_ROW& row : rows) {
        if (std::find(kLaterMasks.begin(), kLaterMasks.end(), row.mask) == kLaterMasks.end()) {
            Enter(row);
        }
    }
    for (const uint32_t mask : kLaterMasks) {
        for (const M68K_OPCODE_ROW& row : rows) {
            if (row.mask == mask) {
                Enter(row);
            }
        }
    }
    return true;
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming)
const std::array<uint8_t, 256> m68kExceptionCycles = ExceptionClocks();

M68kRowList M68kRows() {
    M68kRowList rows;
    M68kAddControlRows(rows);
    M68kAddMoveRows(rows);
    M68kAddTransferRows(rows);
    M68kAddArithmeticRows(rows);
    M68kAddUnaryRows(rows);
    M68kAddBitRows(rows);
    return rows;
}

void M68kBuildTables() {
    static const bool kIsBuilt = BuildTables();
    static_cast<void>(kIsBuilt);
}
