// ChipSound: takes one chip's sound from its raw pairs to the program's rate.
//
// The chip adds its pairs to `pairs`; Flush sends them through the cut-off filter, if it is on, and the
// resampler. The machine takes the output (sound_frame.h).
//
// Units: counts are i16 values, two a stereo pair.
// Owner: the machine, on its session's thread, with no lock.
// Order: Init, then chip and Flush in turn, at least 40 times a second. Only Init allocates.
// State: one piece, version 2. Version 1 was that of an older resampler, whose history could not be
// saved.
#pragma once

#include "machine/band_splitter.h"
#include "machine/resampler.h"
#include "machine/sound_pairs.h"
#include "machine/state_out.h"

#include <array>
#include <cstdint>
#include <span>

inline constexpr uint8_t kSoundPieceVersion = 2;

// The player's settings.
struct SOUND_CHOICE {
    uint32_t rate = 44100; // output pairs a second
    int32_t quality = 1;   // of the resampler
    bool cutoff =
        false; // raises the band under `cutoffLow` by half and drops the one over `cutoffHigh`
    int32_t cutoffLow = 800;    // Hz
    int32_t cutoffHigh = 15000; // Hz
};

class ChipSound {
public:
    // `sourceRate`: the chip's pairs a second. Allocates and resets.
    void Init(double sourceRateValue, const SOUND_CHOICE& choice);

    // Forgets every sample, and the history of the filters.
    void Reset();

    // Sends the raw pairs through filter and resampler.
    void Flush();

    // The samples that are ready, oldest first. Valid until the next call.
    [[nodiscard]] std::span<const int16_t> Output() const { return resampler.Output(); }
    // Removes values from the front of the output, at most all of them.
    void Consume(int32_t count) { resampler.Consume(count); }

    // Flushes, and has the chip make further pairs, one each time `makePair` is called, until `values`
    // values are ready. Gives up when there is no more room.
    template <typename MakePair>
    void FlushUntilReady(uint32_t values, MakePair makePair) {
        Flush();
        for (uint32_t i = 0; i < mostPairs && Output().size() < values; ++i) {
            makePair();
            Flush();
        }
    }

    // The state: the resampler's history. A loaded machine then makes exactly the samples that the
    // saved one would have made. The size depends on the settings at Init.
    [[nodiscard]] uint32_t StateSize() const;
    // Writes StateSize bytes and returns the position after them.
    StateOut SaveState(StateOut out) const;
    // Returns the bytes used, or 0 for a piece of other settings or one that does not fit; the history
    // is then empty. Any contents are safe.
    [[nodiscard]] uint32_t LoadState(const uint8_t* data, uint32_t size);

    SOUND_PAIRS pairs; // the chip's

private:
    void BuildFilters();
    void CutOff(std::span<int16_t> samples);
    [[nodiscard]] bool HistoryIsFinite(std::array<BandSplitter, 2>& histories) const;
    template <typename Visit>
    void VisitFilters(Visit& visit, std::array<BandSplitter, 2>& histories) const;

    AudioResampler resampler;
    double sourceRate = 44100.0;
    uint32_t mostPairs = 0; // twice what fills the resampler's output
    SOUND_CHOICE chosen;
    std::array<BandSplitter, 2> filters; // left, right
};
