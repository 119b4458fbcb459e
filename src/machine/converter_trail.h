// ConverterTrail: what a saved state keeps of a sample-rate converter.
//
// libsamplerate shows nothing of what is inside a converter. The trail notes from outside what matters:
// the last source frames it was given, and where between them its last outputs stood. From that a
// fresh converter is brought to the same place: it first skips in whole source frames to where an
// output of the old one stood, to the fraction, and then makes the outputs from there on once more,
// unheard. From then on both give the same samples.
//
// Units: source frames (stereo, i16 as they came in) and output frames.
// Owner: one AudioResampler, on its thread. Init and LoadState allocate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

struct SRC_STATE_tag;

class ConverterTrail {
public:
    // For a converter of `quality` 1 or 2 at `ratio` output frames a source frame.
    void Init(double ratioValue, int32_t quality);

    // As after src_reset.
    void Reset();

    // After a call of the converter: the source frames it used and the number of output frames made.
    void Follow(const float* used, size_t usedFrames, size_t madeFrames);

    [[nodiscard]] uint32_t StateSize() const;
    // Writes StateSize bytes and gives the byte behind them.
    uint8_t* SaveState(uint8_t* out) const;
    // Takes StateSize bytes and brings the converter, which it resets, to the place they tell. False
    // for contents that no trail of these rates writes; trail and converter are then as after a reset.
    [[nodiscard]] bool LoadState(const uint8_t* in, SRC_STATE_tag* converter);

private:
    // Where an output stands: in source frames since the reset, and the fraction of one.
    struct POSITION {
        int64_t frame;
        double fraction;
    };

    [[nodiscard]] POSITION& At(uint64_t outputIndex);
    [[nodiscard]] const POSITION& At(uint64_t outputIndex) const;
    [[nodiscard]] POSITION Next(POSITION from) const;
    [[nodiscard]] uint64_t Landmark() const;
    void Keep(const float* used, size_t usedFrames);
    [[nodiscard]] bool Replay(SRC_STATE_tag* converter, std::span<const float> source,
                              POSITION start, size_t outputs);

    double ratio = 1.0;
    uint32_t skip = 1;            // source frames of one skip; about an output's
    size_t behindLandmark = 0;    // source frames that must follow the output to skip to
    std::vector<int16_t> history; // the last source frames, oldest first; zeros before the first
    std::vector<POSITION> places; // of the last outputs and the next, by number modulo the size
    uint64_t given = 0;           // source frames since the reset
    uint64_t made = 0;            // output frames since the reset
};
