// State pieces of any bytes, read into a record with every kind of field.
#include "machine/state_piece.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

enum class Mode : uint16_t { kFirst = 0, kLast = 9 };

struct RECORD {
    uint8_t byte = 1;
    int16_t word = -2;
    uint32_t number = 3;
    uint64_t wide = 4;
    bool on = true;
    Mode mode = Mode::kLast;
    float real = 0.5f;
    double exact = 0.25;
    uint16_t table[3] = {5, 6, 7};
    int32_t grid[2][2] = {
        {8,  9 },
        {10, 11}
    };
    std::array<uint8_t, 4> bytes{12, 13, 14, 15};
    std::array<bool, 3> flags{true, false, true};
    std::array<Mode, 2> modes{Mode::kFirst, Mode::kLast};

    template <typename Visit>
    void Fields(Visit& visit) {
        visit(byte);
        visit(word);
        visit(number);
        visit(wide);
        visit(on);
        visit(mode);
        visit(real);
        visit(exact);
        visit(table);
        visit(grid);
        visit(bytes);
        visit(flags);
        visit(modes);
    }
};

std::vector<uint8_t> Write(RECORD& record) {
    const auto fields = [&](auto& visit) { record.Fields(visit); };
    std::vector<uint8_t> piece(StatePieceSize(fields));
    if (StatePieceWrite(piece.data(), fields).At() != piece.data() + piece.size()) {
        std::abort();
    }
    return piece;
}

uint32_t Read(RECORD& record, const uint8_t* data, size_t size) {
    return StatePieceRead(data, static_cast<uint32_t>(size),
                          [&](auto& visit) { record.Fields(visit); });
}

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RECORD untouched;
    const std::vector<uint8_t> before = Write(untouched);
    RECORD record;
    const uint32_t used = Read(record, data, size);
    const std::vector<uint8_t> after = Write(record);
    if (used == 0) {
        Require(after == before);
        return 0;
    }
    // An accepted piece is written back unchanged, except bools, which become 0 or 1.
    Require(used == before.size() && used <= size);
    RECORD again;
    Require(Read(again, after.data(), after.size()) == used);
    Require(Write(again) == after);
    constexpr size_t kNumbers = 5 + 1 + 2 + 4 + 8;
    Require(std::memcmp(after.data(), data, kNumbers) == 0);
    Require(after[kNumbers] == (data[kNumbers] != 0 ? 1 : 0));
    return 0;
}
