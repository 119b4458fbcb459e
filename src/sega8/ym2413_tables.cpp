// Source: Yamaha, YM2413 FM Operator Type-LL Application Manual, for the multiples, the envelopes' times, the
// depths of tremolo and vibrato and the form of the voices. The manual names the voices without their bytes; those
// and the key scale are settled here.
#include "sega8/ym2413_tables.h"

#include <cmath>
#include <numbers>

YM_WAVES::YM_WAVES()
    : tl{}
    , sine{} {
    for (uint32_t x = 0; x < kYmLevelSteps / 2; ++x) {
        const double level = 65536.0 / std::exp2((x + 1) / 256.0);
        const auto whole = static_cast<int32_t>(level);
        const int32_t rounded = (whole >> 5) + (whole >> 4 & 1);
        for (uint32_t row = 0; row < kYmLevels / kYmLevelSteps; ++row) {
            const size_t index = size_t{row} * kYmLevelSteps + size_t{x} * 2;
            tl[index] = rounded >> row;
            tl[index + 1] = -(rounded >> row);
        }
    }
    for (uint32_t i = 0; i < kYmSineLength; ++i) {
        const double s = std::sin((2.0 * i + 1.0) * std::numbers::pi / kYmSineLength);
        const auto n = static_cast<uint32_t>(std::log2(1.0 / std::fabs(s)) * 8.0 * 32.0 * 2.0);
        const uint32_t entry = ((n >> 1) + (n & 1)) * 2 + (s < 0.0 ? 1 : 0);
        sine[i] = entry;
        sine[kYmSineLength + i] = i < kYmSineLength / 2 ? entry : kYmLevels;
    }
}

const YM_WAVES kYmWaves;

// clang-format off
const std::array<std::array<uint8_t, 8>, 19> kYmVoices{{
    {0x49, 0x4C, 0x4C, 0x12, 0x00, 0x00, 0x00, 0x00}, // 0 user's
    {0x61, 0x61, 0x1E, 0x17, 0xF0, 0x78, 0x00, 0x17}, // 1 violin
    {0x13, 0x41, 0x1E, 0x0D, 0xD7, 0xF7, 0x13, 0x13}, // 2 guitar
    {0x13, 0x01, 0x99, 0x04, 0xF2, 0xF4, 0x11, 0x23}, // 3 piano
    {0x21, 0x61, 0x1B, 0x07, 0xAF, 0x64, 0x40, 0x27}, // 4 flute
    {0x22, 0x21, 0x1E, 0x06, 0xF0, 0x75, 0x08, 0x18}, // 5 clarinet
    {0x31, 0x22, 0x16, 0x05, 0x90, 0x71, 0x00, 0x13}, // 6 oboe
    {0x21, 0x61, 0x1D, 0x07, 0x82, 0x80, 0x10, 0x17}, // 7 trumpet
    {0x23, 0x21, 0x2D, 0x16, 0xC0, 0x70, 0x07, 0x07}, // 8 organ
    {0x61, 0x61, 0x1B, 0x06, 0x64, 0x65, 0x10, 0x17}, // 9 horn
    {0x61, 0x61, 0x0C, 0x18, 0x85, 0xF0, 0x70, 0x07}, // 10 synthesizer
    {0x23, 0x01, 0x07, 0x11, 0xF0, 0xA4, 0x00, 0x22}, // 11 harpsichord
    {0x97, 0xC1, 0x24, 0x07, 0xFF, 0xF8, 0x22, 0x12}, // 12 vibraphone
    {0x61, 0x10, 0x0C, 0x05, 0xF2, 0xF4, 0x40, 0x44}, // 13 synthesizer bass
    {0x01, 0x01, 0x55, 0x03, 0xF3, 0x92, 0xF3, 0xF3}, // 14 acoustic bass
    {0x61, 0x41, 0x89, 0x03, 0xF1, 0xF4, 0xF0, 0x13}, // 15 electric guitar
    {0x01, 0x01, 0x16, 0x00, 0xFD, 0xF8, 0x2F, 0x6D}, // 16 bass drum
    {0x01, 0x01, 0x00, 0x00, 0xD8, 0xD8, 0xF9, 0xF8}, // 17 hi-hat and snare
    {0x05, 0x01, 0x00, 0x00, 0xF8, 0xBA, 0x49, 0x55}, // 18 tom and cymbal
}};
// clang-format on

const std::array<uint8_t, 16> kYmMultiple{1,  2,  4,  6,  8,  10, 12, 14,
                                          16, 18, 20, 20, 24, 24, 30, 30};

const std::array<uint8_t, 128> kYmKeyScale{
    0, 0,  0,  0,  0,  0,  0,  0,  0,  0,   0,   0,   0,   0,   0,   0,   // block 0
    0, 0,  0,  0,  0,  0,  0,  0,  0,  4,   6,   8,   10,  12,  14,  16,  // 1
    0, 0,  0,  0,  0,  6,  10, 14, 16, 20,  22,  24,  26,  28,  30,  32,  // 2
    0, 0,  0,  10, 16, 22, 26, 30, 32, 36,  38,  40,  42,  44,  46,  48,  // 3
    0, 0,  16, 26, 32, 38, 42, 46, 48, 52,  54,  56,  58,  60,  62,  64,  // 4
    0, 16, 32, 42, 48, 54, 58, 62, 64, 68,  70,  72,  74,  76,  78,  80,  // 5
    0, 32, 48, 58, 64, 70, 74, 78, 80, 84,  86,  88,  90,  92,  94,  96,  // 6
    0, 48, 64, 74, 80, 86, 90, 94, 96, 100, 102, 104, 106, 108, 110, 112, // 7
};

const std::array<uint8_t, size_t{15} * 8> kYmSteps{
    0, 1, 0, 1, 0, 1, 0, 1, // 0
    0, 1, 0, 1, 1, 1, 0, 1, // 1
    0, 1, 1, 1, 0, 1, 1, 1, // 2
    0, 1, 1, 1, 1, 1, 1, 1, // 3
    1, 1, 1, 1, 1, 1, 1, 1, // 4
    1, 1, 1, 2, 1, 1, 1, 2, // 5
    1, 2, 1, 2, 1, 2, 1, 2, // 6
    1, 2, 2, 2, 1, 2, 2, 2, // 7
    2, 2, 2, 2, 2, 2, 2, 2, // 8
    2, 2, 2, 4, 2, 2, 2, 4, // 9
    2, 4, 2, 4, 2, 4, 2, 4, // 10
    2, 4, 4, 4, 2, 4, 4, 4, // 11
    4, 4, 4, 4, 4, 4, 4, 4, // 12
    8, 8, 8, 8, 8, 8, 8, 8, // 13
    0, 0, 0, 0, 0, 0, 0, 0, // 14
};

namespace {

constexpr std::array<uint8_t, kYmRates> MakeRateSelect() {
    std::array<uint8_t, kYmRates> select{};
    for (uint32_t rate = 0; rate < kYmRates; ++rate) {
        uint32_t row = 12;
        if (rate < 16) {
            row = 14;
        } else if (rate < 68) {
            row = rate % 4;
        } else if (rate < 76) {
            row = rate - 64;
        }
        select[rate] = static_cast<uint8_t>(row * 8);
    }
    return select;
}

constexpr std::array<uint8_t, kYmRates> MakeRateShift() {
    std::array<uint8_t, kYmRates> shift{};
    for (uint32_t rate = 16; rate < 68; ++rate) {
        shift[rate] = static_cast<uint8_t>(13 - (rate - 16) / 4);
    }
    return shift;
}

// 0 seven times, 1 to 25 four times each, 26 three times, and down again to 1.
constexpr std::array<uint8_t, kYmTremoloLength> MakeTremolo() {
    std::array<uint8_t, kYmTremoloLength> tremolo{};
    size_t at = 7;
    for (uint32_t level = 1; level <= 51; ++level) {
        const size_t times = level == 26 ? 3 : 4;
        for (size_t i = 0; i < times; ++i) {
            tremolo[at++] = static_cast<uint8_t>(level <= 26 ? level : 52 - level);
        }
    }
    return tremolo;
}

} // namespace

const std::array<uint8_t, kYmRates> kYmRateSelect = MakeRateSelect();
const std::array<uint8_t, kYmRates> kYmRateShift = MakeRateShift();
const std::array<uint8_t, kYmTremoloLength> kYmTremolo = MakeTremolo();

// clang-format off
const std::array<std::array<int32_t, 8>, 8> kYmVibrato{{
    {0, 0, 0, 0, 0, 0, 0, 0},
    {1, 0, 0, 0, -1, 0, 0, 0},
    {2, 1, 0, -1, -2, -1, 0, 1},
    {3, 1, 0, -1, -3, -1, 0, 1},
    {4, 2, 0, -2, -4, -2, 0, 2},
    {5, 2, 0, -2, -5, -2, 0, 2},
    {6, 3, 0, -3, -6, -3, 0, 3},
    {7, 3, 0, -3, -7, -3, 0, 3},
}};
// clang-format on
