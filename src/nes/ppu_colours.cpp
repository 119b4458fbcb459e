#include "nes/ppu_colours.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr uint32_t kPhases = 12;
constexpr double kPhaseDegrees = 30.0;
// Start of the sine against which hues are measured. It puts hue 8, which has the phase of the colour
// burst, on the burst's axis.
constexpr double kFirstPhaseDegrees = -105.0;
constexpr double kDecoderDegrees = 270.0;

constexpr double kBlack = 0.518;
constexpr double kGain = 0.684931506849315;
constexpr double kSaturation = 0.84;
constexpr double kAttenuation = 0.74;
// Index: luminance.
constexpr std::array<double, 4> kLow{0.35, 0.518, 0.962, 1.55};
constexpr std::array<double, 4> kHigh{1.09, 1.5, 1.96, 1.96};

constexpr uint32_t kHueAllHigh = 0;
constexpr uint32_t kHueAllLow = 13;
constexpr uint32_t kHueBlack = 14; // and 15

// Index: emphasis bits (blue, green, red from the highest); phase. 1: the signal is darkened, by red while
// hue 12 is high, by green while hue 4 is, by blue while hue 8 is (nesdev wiki, "NTSC video").
constexpr uint8_t kDarkened[8][kPhases] = {
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, // none
    {0, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}, // red
    {1, 1, 1, 0, 0, 0, 0, 0, 0, 1, 1, 1}, // green
    {1, 1, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1}, // green, red
    {0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 0}, // blue
    {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0}, // blue, red
    {1, 1, 1, 0, 0, 1, 1, 1, 1, 1, 1, 1}, // blue, green
    {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, // all
};

using Wave = std::array<double, kPhases>;

// Hue 1 is high in phases 0 to 5, each next hue one phase earlier.
[[nodiscard]] bool IsHigh(uint32_t hue, uint32_t phase) {
    return hue == kHueAllHigh || (hue != kHueAllLow && (phase + hue - 1) % kPhases < 6);
}

[[nodiscard]] Wave SignalOf(uint32_t colour, uint32_t emphasis) {
    const uint32_t hue = colour & 15;
    const uint32_t luminance = colour >> 4;
    Wave wave{};
    for (uint32_t phase = 0; phase < kPhases; ++phase) {
        if (hue >= kHueBlack) {
            wave[phase] = kBlack;
            continue;
        }
        wave[phase] = IsHigh(hue, phase) ? kHigh[luminance] : kLow[luminance];
        if (kDarkened[emphasis][phase] != 0) {
            wave[phase] *= kAttenuation;
        }
    }
    return wave;
}

// How well a sine that starts at `degrees` fits the wave: among sines of one amplitude, the largest product
// has the least square error.
[[nodiscard]] double Likeness(const Wave& wave, double degrees) {
    double sum = 0;
    for (uint32_t phase = 0; phase < kPhases; ++phase) {
        const double at = kFirstPhaseDegrees + kPhaseDegrees * phase - degrees;
        sum += wave[phase] * std::sin(at * std::numbers::pi / 180);
    }
    return sum;
}

// The start of the best fitting sine, in degrees: twelve trials around the circle, then twice twelve finer
// ones around the best.
[[nodiscard]] double PhaseOf(const Wave& wave) {
    constexpr int kPasses = 3;
    constexpr int kTrials = 12;
    constexpr int kHalfTurn = kTrials / 2;
    double best = 0;
    double step = 360.0 / kTrials;
    for (int pass = 0; pass < kPasses; ++pass) {
        const double middle = best;
        double most = Likeness(wave, middle);
        for (int trial = 0; trial < kTrials; ++trial) {
            const double degrees = middle + (trial - kHalfTurn) * step;
            const double likeness = Likeness(wave, degrees);
            if (likeness > most) {
                most = likeness;
                best = degrees;
            }
        }
        step /= kTrials;
    }
    return best;
}

[[nodiscard]] uint32_t Channel(double level) {
    return static_cast<uint32_t>(std::clamp(level * 256, 0.0, 255.0));
}

[[nodiscard]] uint32_t Decode(const Wave& wave) {
    double mean = 0;
    for (const double level : wave) {
        mean += level / kPhases;
    }
    double squares = 0; // sum; divided by kPhases it is the variance
    for (const double level : wave) {
        squares += (level - mean) * (level - mean);
    }
    const double y = (mean - kBlack) * kGain;
    const double saturation = std::sqrt(squares * kGain / kPhases) * kSaturation;
    const double angle = (PhaseOf(wave) + kDecoderDegrees) * std::numbers::pi / 180;
    const double i = saturation * std::cos(angle);
    const double q = saturation * std::sin(angle);
    const uint32_t red = Channel(y + 0.956 * i + 0.621 * q);
    const uint32_t green = Channel(y - 0.272 * i - 0.647 * q);
    const uint32_t blue = Channel(y - 1.107 * i + 1.705 * q);
    return 0xFF000000U | red << 16 | green << 8 | blue;
}

} // namespace

std::array<uint32_t, kPpuColours> PpuBuildColourTable() {
    std::array<uint32_t, kPpuColours> table{};
    for (uint32_t index = 0; index < kPpuColours; ++index) {
        table[index] = Decode(SignalOf(index & 63, index >> 6));
    }
    return table;
}
