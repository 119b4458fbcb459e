// ChipSound: the way of one chip's sound from its raw pairs to the program's rate.
//
// The chip adds its pairs to `pairs`; Flush sends them through the cut-off filter, where it is on, and the
// resampler. From there the machine takes them (sound_frame.h).
//
// Units: counts are i16 values, two a stereo pair.
// Owner: the machine, on its session's thread, with no lock.
// Order: Init, then chip and Flush in turn, at least 40 times a second; none of them allocates but Init.
// State: one piece of a version of its own: 1 was that of a converter whose insides could not be saved.
#pragma once

#include "machine/band_splitter.h"
#include "machine/resampler.h"
#include "machine/sound_pairs.h"

#include <array>
#include <cstdint>
#include <span>

inline constexpr uint8_t kSoundPieceVersion = 2;

// What the player chose.
struct SOUND_CHOICE {
    uint32_t rate = 44100; // pairs a second that come out
    int32_t quality = 1;   // of the resampler
    bool cutoff =
        false; // what is under `cutoffLow` is lifted by half, what is over `cutoffHigh` is dropped
    int32_t cutoffLow = 800;    // Hz
    int32_t cutoffHigh = 15000; // Hz
};

class ChipSound {
public:
    // `sourceRate`: the chip's pairs a second. Makes room and forgets what was there.
    void Init(double sourceRateValue, const SOUND_CHOICE& choice);

    // Forgets every sample, and the history of the filters.
    void Reset();

    // Sends the raw pairs on.
    void Flush();

    // What is ready, oldest first. Valid until the next call.
    [[nodiscard]] std::span<const int16_t> Output() const { return resampler.Output(); }
    // Removes values from the front of the output; at most those that are there.
    void Consume(int32_t count) { resampler.Consume(count); }

    // Flushes, and lets the chip run on by itself (`makePair` runs it for one pair) until `values` are ready.
    // Gives up where there can be no more.
    template <typename MakePair>
    void CatchUp(uint32_t values, MakePair makePair) {
        Flush();
        for (uint32_t i = 0; i < mostPairs && Output().size() < values; ++i) {
            makePair();
            Flush();
        }
    }

    // The state: what is on its way. With it a loaded machine gives the very samples that the saved one
    // would have given. The size depends on the choice at Init.
    [[nodiscard]] uint32_t StateSize() const;
    // Writes StateSize bytes and gives the byte after them.
    uint8_t* SaveState(uint8_t* out) const;
    // Gives the bytes used, or 0 for a piece of other settings or one that does not fit; everything on its way
    // is then forgotten. Any contents are safe.
    [[nodiscard]] uint32_t LoadState(const uint8_t* data, uint32_t size);

    SOUND_PAIRS pairs; // the chip's

private:
    void BuildFilters();
    void CutOff(std::span<int16_t> samples);
    template <typename Visit>
    void VisitFilters(Visit& visit, std::array<BandSplitter, 2>& histories) const;

    AudioResampler resampler;
    double sourceRate = 44100.0;
    uint32_t mostPairs = 0; // twice what fills the resampler
    SOUND_CHOICE chosen;
    std::array<BandSplitter, 2> filters; // left, right
};
