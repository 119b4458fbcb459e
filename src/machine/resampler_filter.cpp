#include "machine/resampler_filter.h"

#include "base/ranked_mutex.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <tuple>

namespace {

// The design of a quality. Rates are fractions of the lower of both rates.
struct DESIGN {
    double attenuation; // dB, beyond half the lower rate
    double reach;       // periods of the lower rate to either side of an output
    double cutoff;      // the middle of the slope
    double rowsFactor;  // rows x middle rate / lower rate, at least
};

// Between two rows the taps are interpolated, which leaves images of (frequency / rows) squared: 102 and
// 116 dB under a tone at the edge of the band.
constexpr DESIGN kVeryGood{100.0, 31.4, 0.4484, 350.0};
constexpr DESIGN kBest{114.0, 34.6, 0.4472, 800.0};

// Of the lower rate: up to 18,000 of 44,100 Hz passes within 0.1 dB; beyond a half is the stop band.
constexpr double kPassEdge = 0.4082;

// The first step stops only what the second one would let through. Images in the upper part of its slope are
// stopped by the second one.
constexpr double kFirstStopEdge = 0.465;
constexpr double kFirstLength = 0.85; // of the textbook length, for 0.05 dB of droop at the edge
constexpr double kLeastMiddleRate = 1.25;

double Bessel0(double x) {
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; term > sum * 1.0e-18; ++k) {
        const double factor = x / (2.0 * k);
        term *= factor * factor;
        sum += term;
    }
    return sum;
}

// A low-pass at `cutoff` of the rate, `at` pairs from its centre. Not normalised.
struct LOW_PASS {
    double cutoff;
    double reach; // pairs
    double beta;

    LOW_PASS(double cutoffValue, double reachValue, double attenuation)
        : cutoff(cutoffValue)
        , reach(reachValue)
        , beta(0.1102 * (attenuation - 8.7)) {}

    [[nodiscard]] double operator()(double at) const {
        const double side = 1.0 - (at / reach) * (at / reach);
        if (side < 0.0) {
            return 0.0;
        }
        const double angle = 2.0 * std::numbers::pi * cutoff * at;
        const double sine = std::fabs(angle) < 1.0e-9 ? 1.0 : std::sin(angle) / angle;
        return sine * Bessel0(beta * std::sqrt(side));
    }
};

// Taps around `middle`. They add up to one, so that a constant level passes unchanged.
void AppendRow(std::vector<float>& taps, const LOW_PASS& lowPass, size_t count, double middle) {
    std::vector<double> row(count);
    double sum = 0.0;
    for (size_t i = 0; i < count; ++i) {
        row[i] = lowPass(static_cast<double>(i) - middle);
        sum += row[i];
    }
    for (const double tap : row) {
        taps.push_back(static_cast<float>(tap / sum));
    }
}

void MakeFirst(RESAMPLER_FILTER& filter, const DESIGN& design, double sourceRate,
               double outputRate) {
    const double passEdge = kPassEdge * outputRate / sourceRate;
    const double stopEdge = 1.0 / filter.stride - kFirstStopEdge * outputRate / sourceRate;
    const double width = (stopEdge - passEdge) / kFirstLength;
    const double length = (design.attenuation - 7.95) / (2.285 * 2.0 * std::numbers::pi * width);
    filter.reach = static_cast<uint32_t>(std::ceil((length - 1.0) / 2.0));
    const LOW_PASS lowPass(stopEdge - width / 2.0, filter.reach + 1.0, design.attenuation);
    const size_t count = size_t{2} * filter.reach + 1;
    AppendRow(filter.first, lowPass, count, filter.reach);
    filter.first.resize((count + 7) / 8 * 8, 0.0F);
}

void MakeRows(RESAMPLER_FILTER& filter, const DESIGN& design, double lowerRate) {
    const LOW_PASS lowPass(design.cutoff * lowerRate, filter.half, design.attenuation);
    const size_t width = size_t{2} * filter.half;
    filter.taps.reserve(width * (filter.rows + 1));
    for (uint32_t row = 0; row <= filter.rows; ++row) {
        AppendRow(filter.taps, lowPass, width,
                  filter.half - 1.0 + static_cast<double>(row) / filter.rows);
    }
}

RESAMPLER_FILTER MakeFilter(int32_t quality, double sourceRate, double outputRate) {
    const DESIGN& design = quality == 1 ? kVeryGood : kBest;
    RESAMPLER_FILTER filter;
    filter.stride = static_cast<uint32_t>(
        std::max(1.0, std::floor(sourceRate / (kLeastMiddleRate * outputRate))));
    if (filter.stride > 1) {
        MakeFirst(filter, design, sourceRate, outputRate);
    }
    const double lowerRate = std::min(1.0, outputRate * filter.stride / sourceRate);
    filter.half = static_cast<uint32_t>(std::ceil(design.reach / lowerRate / 4.0)) * 4;
    filter.rows =
        static_cast<uint32_t>(std::ceil(design.rowsFactor * design.cutoff * lowerRate / 16.0)) * 16;
    MakeRows(filter, design, lowerRate);
    return filter;
}

using KEY = std::tuple<int32_t, double, double>;

RankedMutex<LockRank::kLeaf> gMutex;
std::map<KEY, std::weak_ptr<const RESAMPLER_FILTER>> gFilters;

} // namespace

std::shared_ptr<const RESAMPLER_FILTER> ResamplerFilterFor(int32_t quality, double sourceRate,
                                                           double outputRate) {
    const std::scoped_lock lock(gMutex);
    std::erase_if(gFilters, [](const auto& entry) { return entry.second.expired(); });
    auto& kept = gFilters[KEY{quality, sourceRate, outputRate}];
    auto filter = kept.lock();
    if (!filter) {
        filter =
            std::make_shared<const RESAMPLER_FILTER>(MakeFilter(quality, sourceRate, outputRate));
        kept = filter;
    }
    return filter;
}
