#include "support/resampler_figures.h"

#include "machine/resampler.h"
#include "machine/resampler_filter.h"

#include "support/spectrum.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <vector>

namespace {

constexpr double kPi = std::numbers::pi;

double Decibels(double ratio) {
    return 20.0 * std::log10(ratio);
}

double FirstGain(const RESAMPLER_FILTER& filter, double turns) {
    if (filter.stride == 1) {
        return 1.0;
    }
    double gain = 0.0;
    for (size_t i = 0; i <= size_t{2} * filter.reach; ++i) {
        const double at = static_cast<double>(i) - filter.reach;
        gain += static_cast<double>(filter.first[i]) * std::cos(2.0 * kPi * turns * at);
    }
    return std::fabs(gain);
}

// How the second step weighs a tone of `turns` cycles a middle pair, for an output at `place` between two of them.
std::complex<double> GainAt(const RESAMPLER_FILTER& filter, double turns, double place) {
    const size_t width = size_t{2} * filter.half;
    const double row = place * filter.rows;
    const float* const taps = filter.taps.data() + static_cast<size_t>(row) * width;
    const double share = row - std::floor(row);
    std::complex<double> gain;
    for (size_t tap = 0; tap < width; ++tap) {
        const double here = taps[tap];
        const double value = here + (static_cast<double>(taps[tap + width]) - here) * share;
        const double at = static_cast<double>(tap) - (filter.half - 1.0) - place;
        gain += value * std::polar(1.0, 2.0 * kPi * turns * at);
    }
    return gain;
}

// What the second step makes of such a tone. Without a filter the nearest earlier sample is taken.
struct SECOND {
    double gain = 0.0;     // of the tone itself
    double spurious = 0.0; // of everything else
    double most = 0.0;     // the largest gain between two middle pairs
};
SECOND SecondGain(const RESAMPLER_FILTER* filter, double turns) {
    constexpr int kPlaces = 257; // not a multiple of the rows
    std::complex<double> mean;
    double power = 0.0;
    SECOND result;
    for (int i = 0; i < kPlaces; ++i) {
        const double place = (i + 0.5) / kPlaces;
        const std::complex<double> gain = filter != nullptr
                                              ? GainAt(*filter, turns, place)
                                              : std::polar(1.0, -2.0 * kPi * turns * place);
        mean += gain / static_cast<double>(kPlaces);
        power += std::norm(gain) / kPlaces;
        result.most = std::max(result.most, std::abs(gain));
    }
    result.gain = std::abs(mean);
    result.spurious = std::sqrt(std::max(0.0, power - std::norm(mean)));
    return result;
}

} // namespace

RESAMPLER_FIGURES MeasureFilter(int32_t quality, double source, double output) {
    const auto filter = quality != 0 ? ResamplerFilterFor(quality, source, output) : nullptr;
    const double stride = filter != nullptr ? filter->stride : 1;
    const double lower = std::min(source, output);
    RESAMPLER_FIGURES result;
    double images = 1.0e-12;
    double aliases = 1.0e-12;
    for (double hertz = 0.0; hertz <= source / 2.0; hertz += lower / 441.0) {
        const double first = filter != nullptr ? FirstGain(*filter, hertz / source) : 1.0;
        const SECOND second = SecondGain(filter.get(), hertz * stride / source);
        if (hertz <= lower * 18000.0 / 44100.0 + 1.0e-6) {
            result.ripple = std::max(result.ripple, std::fabs(Decibels(first * second.gain)));
            images = std::max(images, first * second.spurious);
        } else if (hertz >= lower / 2.0) {
            aliases = std::max(aliases, first * second.most);
        }
    }
    result.images = Decibels(images);
    result.aliases = Decibels(aliases);
    return result;
}

double MeasureSignalToNoise(int32_t quality, double source, uint32_t output) {
    AudioResampler resampler;
    resampler.Init(source, output, quality);
    std::vector<double> made;
    const size_t skipped = output / 10; // until the filters are full
    for (size_t i = 0; made.size() < skipped + output; ++i) {
        const double angle = 2.0 * kPi * kFigureTone * static_cast<double>(i) / source;
        const auto value = static_cast<int16_t>(std::lrint(30000.0 * std::sin(angle)));
        const int16_t pair[2] = {value, value};
        resampler.Push(pair, 2);
        for (size_t at = 0; at < resampler.Output().size(); at += 2) {
            made.push_back(resampler.Output()[at]);
        }
        resampler.Consume(static_cast<int32_t>(resampler.Output().size()));
    }
    // One second: a whole number of the tone's periods.
    const std::span<const double> second(made.data() + skipped, output);
    const TONE tone = MeasureTone(second, kFigureTone, output);
    double power = 0.0;
    for (const double sample : second) {
        power += sample * sample / output;
    }
    return 10.0 * std::log10(tone.power / (power - tone.power));
}

double MeasureDelay(int32_t quality, double source, uint32_t output) {
    AudioResampler resampler;
    resampler.Init(source, output, quality);
    const int16_t pair[2] = {0, 0};
    int pushed = 0;
    while (resampler.Output().empty()) {
        resampler.Push(pair, 2);
        ++pushed;
    }
    return (pushed - 1) / source;
}
