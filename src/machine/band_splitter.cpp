#include "machine/band_splitter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double kLowestSplit = 1.0;    // Hz
constexpr double kHighestSplit = 0.499; // of the sample rate; the tangent has its pole at a half

Crossover MakeCrossover(double sampleRate, double splitHz) {
    Crossover crossover{};
    // NaN fails this comparison and gets the lowest split.
    const double fs = sampleRate >= 8.0 ? sampleRate : 8.0;
    const double fc =
        splitHz >= kLowestSplit ? std::min(splitHz, fs * kHighestSplit) : kLowestSplit;
    crossover.sampleRate = fs;
    crossover.splitHz = fc;

    const double wc = 2.0 * std::numbers::pi * fc;
    const double wc2 = wc * wc;
    const double wc4 = wc2 * wc2;
    const double k = wc / std::tan(std::numbers::pi * fc / fs);
    const double k2 = k * k;
    const double k4 = k2 * k2;
    const double s1 = std::numbers::sqrt2 * wc2 * wc * k;
    const double s2 = std::numbers::sqrt2 * wc * k2 * k;
    const double a = 4.0 * wc2 * k2 + 2.0 * s1 + k4 + 2.0 * s2 + wc4;

    crossover.feedback = {
        4.0 * (wc4 + s1 - k4 - s2) / a, (6.0 * wc4 - 8.0 * wc2 * k2 + 6.0 * k4) / a,
        4.0 * (wc4 - s1 + s2 - k4) / a, (k4 - 2.0 * s1 + wc4 - 2.0 * s2 + 4.0 * wc2 * k2) / a};
    const double low = wc4 / a;
    const double high = k4 / a;
    crossover.low = {low, 4.0 * low, 6.0 * low, 4.0 * low, low};
    crossover.high = {high, -4.0 * high, 6.0 * high, -4.0 * high, high};
    return crossover;
}

// Unrolled: this runs for every sample of every chip and session. `biased` is the input with the bias,
// which is not kept in the history.
inline void Split(Crossover& x, double input, double biased, double& low, double& high) {
    const double* const a = x.low.data();
    const double* const c = x.high.data();
    const double* const b = x.feedback.data();
    double* const in = x.inputs.data();
    double* const lows = x.lowOutputs.data();
    double* const highs = x.highOutputs.data();

    low = a[0] * biased + a[1] * in[0] + a[2] * in[1] + a[3] * in[2] + a[4] * in[3] -
          b[0] * lows[0] - b[1] * lows[1] - b[2] * lows[2] - b[3] * lows[3];
    high = c[0] * biased + c[1] * in[0] + c[2] * in[1] + c[3] * in[2] + c[4] * in[3] -
           b[0] * highs[0] - b[1] * highs[1] - b[2] * highs[2] - b[3] * highs[3];

    in[3] = in[2], in[2] = in[1], in[1] = in[0], in[0] = input;
    lows[3] = lows[2], lows[2] = lows[1], lows[1] = lows[0], lows[0] = low;
    highs[3] = highs[2], highs[2] = highs[1], highs[1] = highs[0], highs[0] = high;
}

} // namespace

void BandSplitter::SetCrossovers(double sampleRate, double lowHz, double highHz) {
    lowCrossover = MakeCrossover(sampleRate, lowHz);
    highCrossover = MakeCrossover(sampleRate, highHz);
}

double BandSplitter::Process(double sample) {
    double low = 0.0;
    double aboveLow = 0.0;
    Split(lowCrossover, sample, sample + denormalBias, low, aboveLow);
    double mid = 0.0;
    double high = 0.0;
    Split(highCrossover, aboveLow, aboveLow + highDenormalBias, mid, high);
    return low * gains[0] + mid * gains[1] + high * gains[2];
}
