// A three-band split of one channel: two fourth-order Linkwitz-Riley crossovers in series.
//
// Units: samples of any scale in double precision; frequencies in Hz. No allocation; one thread.
// Source: S. H. Linkwitz, "Active Crossover Networks for Noncoincident Drivers", JAES 24 (1976).
#pragma once

#include <array>

struct Crossover {
    double sampleRate;
    double splitHz;
    std::array<double, 4> feedback; // b1 to b4
    std::array<double, 5> low;      // a0 to a4
    std::array<double, 5> high;
    std::array<double, 4> inputs; // the last four, newest first
    std::array<double, 4> lowOutputs;
    std::array<double, 4> highOutputs;
};

struct BandSplitter {
    double denormalBias = 1.0 / 4294967295.0;
    Crossover lowCrossover{};
    Crossover highCrossover{};
    double highDenormalBias = 1.0 / 4294967295.0;
    std::array<double, 3> gains{1.0, 1.0, 1.0}; // low, mid, high

    // Computes both crossovers and clears their history.
    void SetCrossovers(double sampleRate, double lowHz, double highHz);

    [[nodiscard]] double Process(double sample);
};
