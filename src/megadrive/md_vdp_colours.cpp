#include "megadrive/md_vdp_colours.h"

#include <algorithm>

namespace {

constexpr double kFullLevel = 248; // the highest plain level; highlight goes beyond it

struct Luma {
    double y;
    double cb;
    double cr;
};

uint32_t Level(size_t threeBits) {
    return static_cast<uint32_t>(static_cast<double>(threeBits & 7) / 7 * kFullLevel);
}

uint32_t Pixel(uint32_t red, uint32_t green, uint32_t blue) {
    return 0xFF000000U | red << 16 | green << 8 | blue;
}

// ITU-R BT.601 in studio range, as is the way back.
Luma ToLuma(double red, double green, double blue) {
    return {0.257 * red + 0.504 * green + 0.098 * blue + 16,
            -0.148 * red - 0.291 * green + 0.439 * blue + 128,
            0.439 * red - 0.368 * green - 0.071 * blue + 128};
}

uint32_t Clamped(double level) {
    return static_cast<uint32_t>(std::clamp(level, 0.0, 255.0));
}

uint32_t FromLuma(const Luma& luma) {
    const double y = 1.164 * (luma.y - 16);
    const double cb = luma.cb - 128;
    const double cr = luma.cr - 128;
    return Pixel(Clamped(y + 1.596 * cr), Clamped(y - 0.813 * cr - 0.392 * cb),
                 Clamped(y + 2.018 * cb));
}

} // namespace

std::array<uint32_t, 3 * kMdVdpColours> MdVdpBuildColourTables() {
    std::array<uint32_t, 3 * kMdVdpColours> tables{};
    for (size_t colour = 0; colour < kMdVdpColours; ++colour) {
        const uint32_t red = Level(colour >> 6);
        const uint32_t green = Level(colour >> 3);
        const uint32_t blue = Level(colour);
        const Luma luma = ToLuma(red, green, blue);
        tables[colour] = FromLuma({(luma.y - 16) * 0.5, luma.cb, luma.cr});
        tables[kMdVdpColours + colour] = Pixel(red, green, blue);
        tables[2 * kMdVdpColours + colour] =
            FromLuma({std::min(luma.y * 2, 255.0), luma.cb, luma.cr});
    }
    return tables;
}
