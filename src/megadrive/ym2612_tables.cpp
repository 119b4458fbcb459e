#include "megadrive/ym2612_tables.h"

#include <cmath>
#include <numbers>

namespace {

void BuildLevels(YM2612_TABLES& tables) {
    for (uint32_t x = 0; x < kYm2612LevelSteps / 2; ++x) {
        const auto whole = static_cast<int32_t>(65536.0 / std::exp2((x + 1) / 256.0));
        const int32_t level = ((whole >> 5) + (whole >> 4 & 1)) * 4;
        for (uint32_t row = 0; row < kYm2612Levels / kYm2612LevelSteps; ++row) {
            const size_t index = size_t{row} * kYm2612LevelSteps + size_t{x} * 2;
            tables.level[index] = static_cast<int16_t>(level >> row);
            tables.level[index + 1] = static_cast<int16_t>(-(level >> row));
        }
    }
}

void BuildSine(YM2612_TABLES& tables) {
    for (uint32_t i = 0; i < kYm2612SineLength; ++i) {
        const double sine = std::sin((2.0 * i + 1.0) * std::numbers::pi / kYm2612SineLength);
        const double octaves = std::log2(1.0 / std::fabs(sine));
        const auto fine = static_cast<uint32_t>(8.0 * octaves * 32.0 * 2.0);
        const uint32_t rounded = (fine >> 1) + (fine & 1);
        tables.sine[i] = static_cast<uint16_t>(rounded * 2 + (sine < 0.0 ? 1 : 0));
    }
}

int32_t LfoOffset(uint32_t fnum, uint32_t depth, uint32_t position) {
    int32_t offset = 0;
    for (uint32_t bit = 0; bit < kYm2612LfoOffsets.size(); ++bit) {
        if ((fnum >> bit & 1) != 0) {
            offset += kYm2612LfoOffsets[bit][depth][position];
        }
    }
    return offset;
}

// The first quarter of the LFO's wave is the row of offsets, the second mirrors it, and the second half is the
// first one negated.
void BuildLfoPhases(YM2612_TABLES& tables) {
    for (uint32_t row = 0; row < 128 * kYm2612LfoDepths; ++row) {
        int16_t* const wave = &tables.lfoPhase[size_t{row} * kYm2612LfoPositions];
        for (uint32_t position = 0; position < 8; ++position) {
            const auto offset = static_cast<int16_t>(
                LfoOffset(row / kYm2612LfoDepths, row % kYm2612LfoDepths, position));
            wave[position] = offset;
            wave[15 - position] = offset;
            wave[16 + position] = static_cast<int16_t>(-offset);
            wave[31 - position] = static_cast<int16_t>(-offset);
        }
    }
}

} // namespace

YM2612_TABLES Ym2612BuildTables() {
    YM2612_TABLES tables{};
    BuildLevels(tables);
    BuildSine(tables);
    BuildLfoPhases(tables);
    return tables;
}

// clang-format off
constexpr std::array<std::array<std::array<uint8_t, 8>, kYm2612LfoDepths>, 7> kYm2612LfoOffsets{{
    {{ // F-number bit 4
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 1, 1, 1, 1},
    }},
    {{ // 5
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
        {0, 0, 0, 0, 1, 1, 1, 1}, {0, 0, 1, 1, 2, 2, 2, 3},
    }},
    {{ // 6
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 1}, {0, 0, 0, 0, 1, 1, 1, 1},
        {0, 0, 1, 1, 2, 2, 2, 3}, {0, 0, 2, 3, 4, 4, 5, 6},
    }},
    {{ // 7
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 1, 1},
        {0, 0, 0, 0, 1, 1, 1, 1}, {0, 0, 0, 1, 1, 1, 1, 2}, {0, 0, 1, 1, 2, 2, 2, 3},
        {0, 0, 2, 3, 4, 4, 5, 6}, {0, 0, 4, 6, 8, 8, 10, 12},
    }},
    {{ // 8
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 1, 1, 1, 1}, {0, 0, 0, 1, 1, 1, 2, 2},
        {0, 0, 1, 1, 2, 2, 3, 3}, {0, 0, 1, 2, 2, 2, 3, 4}, {0, 0, 2, 3, 4, 4, 5, 6},
        {0, 0, 4, 6, 8, 8, 10, 12}, {0, 0, 8, 12, 16, 16, 20, 24},
    }},
    {{ // 9
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 2, 2, 2, 2}, {0, 0, 0, 2, 2, 2, 4, 4},
        {0, 0, 2, 2, 4, 4, 6, 6}, {0, 0, 2, 4, 4, 4, 6, 8}, {0, 0, 4, 6, 8, 8, 10, 12},
        {0, 0, 8, 12, 16, 16, 20, 24}, {0, 0, 16, 24, 32, 32, 40, 48},
    }},
    {{ // 10
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 4, 4, 4, 4}, {0, 0, 0, 4, 4, 4, 8, 8},
        {0, 0, 4, 4, 8, 8, 12, 12}, {0, 0, 4, 8, 8, 8, 12, 16}, {0, 0, 8, 12, 16, 16, 20, 24},
        {0, 0, 16, 24, 32, 32, 40, 48}, {0, 0, 32, 48, 64, 64, 80, 96},
    }},
}};

constexpr std::array<uint8_t, size_t{19} * 8> kYm2612Steps{
    0, 1, 0, 1, 0, 1, 0, 1,         // 0
    0, 1, 0, 1, 1, 1, 0, 1,         // 1
    0, 1, 1, 1, 0, 1, 1, 1,         // 2
    0, 1, 1, 1, 1, 1, 1, 1,         // 3
    1, 1, 1, 1, 1, 1, 1, 1,         // 4
    1, 1, 1, 2, 1, 1, 1, 2,         // 5
    1, 2, 1, 2, 1, 2, 1, 2,         // 6
    1, 2, 2, 2, 1, 2, 2, 2,         // 7
    2, 2, 2, 2, 2, 2, 2, 2,         // 8
    2, 2, 2, 4, 2, 2, 2, 4,         // 9
    2, 4, 2, 4, 2, 4, 2, 4,         // 10
    2, 4, 4, 4, 2, 4, 4, 4,         // 11
    4, 4, 4, 4, 4, 4, 4, 4,         // 12
    4, 4, 4, 8, 4, 4, 4, 8,         // 13
    4, 8, 4, 8, 4, 8, 4, 8,         // 14
    4, 8, 8, 8, 4, 8, 8, 8,         // 15
    8, 8, 8, 8, 8, 8, 8, 8,         // 16
    16, 16, 16, 16, 16, 16, 16, 16, // 17
    0, 0, 0, 0, 0, 0, 0, 0,         // 18
};

constexpr std::array<uint16_t, 16> kYm2612SustainLevel{0,   32,  64,  96,  128, 160, 192, 224,
                                                       256, 288, 320, 352, 384, 416, 448, 992};

constexpr std::array<uint8_t, 16> kYm2612KeyTable{0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 3, 3, 3, 3, 3, 3};

// 2^24 divided by the samples of a position. A wave has 128 positions.
constexpr std::array<uint32_t, 8> kYm2612LfoSteps{(1u << 24) / 108, (1u << 24) / 77, (1u << 24) / 71,
                                                  (1u << 24) / 67,  (1u << 24) / 62, (1u << 24) / 44,
                                                  (1u << 24) / 8,   (1u << 24) / 5};

namespace {

constexpr std::array<std::array<uint8_t, 32>, 4> kDetuneBase{{
    {},
    {0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5, 6, 6, 7, 8, 8, 8, 8},
    {1, 1, 1, 1, 2, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5,
     5, 6, 6, 7, 8, 8, 9, 10, 11, 12, 13, 14, 16, 16, 16, 16},
    {2, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5, 6, 6, 7,
     8, 8, 9, 10, 11, 12, 13, 14, 16, 17, 19, 20, 22, 22, 22, 22},
}};
// clang-format on

constexpr int32_t kDetuneUnit = 64; // of the phase step

constexpr std::array<std::array<int32_t, 32>, 8> MakeDetune() {
    std::array<std::array<int32_t, 32>, 8> detune{};
    for (size_t row = 0; row < 4; ++row) {
        for (size_t keyCode = 0; keyCode < 32; ++keyCode) {
            detune[row][keyCode] = kDetuneBase[row][keyCode] * kDetuneUnit;
            detune[row + 4][keyCode] = -kDetuneBase[row][keyCode] * kDetuneUnit;
        }
    }
    return detune;
}

// The first 34 rates never step. From there on, every four rates double the speed: first by stepping more
// often, from 80 on by larger increments; from 92 on all are alike. 36 and 37 use the slowest row of their
// group of four.
constexpr uint32_t RowOfRate(uint32_t rate) {
    if (rate < 34) {
        return 18;
    }
    if (rate < 38) {
        return 0;
    }
    if (rate < 40) {
        return 2;
    }
    if (rate < 80) {
        return rate % 4;
    }
    return rate < 92 ? rate - 76 : 16;
}

constexpr uint32_t ShiftOfRate(uint32_t rate) {
    if (rate < 36) {
        return 11;
    }
    return rate < 76 ? 10 - (rate - 36) / 4 : 0;
}

constexpr std::array<YM2612_RATE, kYm2612Rates> MakeRates() {
    std::array<YM2612_RATE, kYm2612Rates> rates{};
    for (uint32_t rate = 0; rate < kYm2612Rates; ++rate) {
        rates[rate] = {static_cast<uint8_t>(ShiftOfRate(rate)),
                       static_cast<uint8_t>(RowOfRate(rate) * 8)};
    }
    return rates;
}

} // namespace

constexpr std::array<std::array<int32_t, 32>, 8> kYm2612Detune = MakeDetune();
constexpr std::array<YM2612_RATE, kYm2612Rates> kYm2612RateTable = MakeRates();

const YM2612_TABLES kYm2612Tables = Ym2612BuildTables();
