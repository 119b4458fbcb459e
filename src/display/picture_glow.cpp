#include "display/picture_glow.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace {

using LIGHT = std::array<float, 3>; // red, green, blue; 0 to 1

constexpr std::array<float, 5> kBlur = {1.0f / 16, 4.0f / 16, 6.0f / 16, 4.0f / 16, 1.0f / 16};

std::array<float, 256> MakeLinearLight() {
    std::array<float, 256> table{};
    for (size_t i = 0; i < table.size(); ++i) {
        const double code = static_cast<double>(i) / 255;
        const double light = code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
        table[i] = static_cast<float>(light);
    }
    return table;
}

// Of the dots that lie inside the picture.
LIGHT MeanOfCell(const uint32_t* pixels, uint32_t width, uint32_t height, uint32_t left,
                 uint32_t top) {
    static const std::array<float, 256> kLinear = MakeLinearLight();
    const uint32_t right = std::min(left + kGlowCell, width);
    const uint32_t bottom = std::min(top + kGlowCell, height);
    LIGHT sum{};
    for (uint32_t y = top; y < bottom; ++y) {
        const uint32_t* const row = pixels + size_t{y} * width;
        for (uint32_t x = left; x < right; ++x) {
            sum[0] += kLinear[row[x] >> 16 & 0xFF];
            sum[1] += kLinear[row[x] >> 8 & 0xFF];
            sum[2] += kLinear[row[x] & 0xFF];
        }
    }
    const auto dots = static_cast<float>((right - left) * (bottom - top));
    return {sum[0] / dots, sum[1] / dots, sum[2] / dots};
}

// Along a line of `count` cells that lie `step` apart; outside, the outermost cell goes on.
void BlurLine(LIGHT* cells, uint32_t count, size_t step, std::vector<LIGHT>& line) {
    line.resize(count);
    for (uint32_t i = 0; i < count; ++i) {
        line[i] = cells[i * step];
    }
    constexpr uint32_t kReach = 2;
    for (uint32_t i = 0; i < count; ++i) {
        LIGHT sum{};
        for (uint32_t k = 0; k < kBlur.size(); ++k) {
            const uint32_t at = std::min(std::max(i + k, kReach) - kReach, count - 1);
            for (size_t channel = 0; channel < sum.size(); ++channel) {
                sum[channel] += line[at][channel] * kBlur[k];
            }
        }
        cells[i * step] = sum;
    }
}

uint32_t Word(const LIGHT& light) {
    const auto byte = [](float value) {
        return static_cast<uint32_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
    };
    return 0xFF000000 | byte(light[0]) << 16 | byte(light[1]) << 8 | byte(light[2]);
}

} // namespace

PICTURE_GLOW GlowOfPicture(const uint32_t* pixels, uint32_t width, uint32_t height) {
    PICTURE_GLOW glow;
    glow.width = (width + kGlowCell - 1) / kGlowCell;
    glow.height = (height + kGlowCell - 1) / kGlowCell;
    std::vector<LIGHT> cells(size_t{glow.width} * glow.height);
    for (uint32_t y = 0; y < glow.height; ++y) {
        for (uint32_t x = 0; x < glow.width; ++x) {
            cells[size_t{y} * glow.width + x] =
                MeanOfCell(pixels, width, height, x * kGlowCell, y * kGlowCell);
        }
    }
    std::vector<LIGHT> line;
    for (uint32_t y = 0; y < glow.height; ++y) {
        BlurLine(cells.data() + size_t{y} * glow.width, glow.width, 1, line);
    }
    for (uint32_t x = 0; x < glow.width; ++x) {
        BlurLine(cells.data() + x, glow.height, glow.width, line);
    }
    glow.cells.resize(cells.size());
    std::transform(cells.begin(), cells.end(), glow.cells.begin(), Word);
    return glow;
}
