// What a saved state keeps of an AudioResampler.
//
// One piece in the common form: quality, phase, the values not taken yet, the histories of the
// cut-off filter where it is on, and the converter's trail where there is a converter.
#include "machine/resampler.h"
#include "machine/state_piece.h"

#include <algorithm>

namespace {

struct KEPT_FIELDS {
    int32_t quality = 0;
    float phase = 0.0f;
    uint32_t count = 0;
    std::array<int16_t, AudioResampler::kKeptValues> values{};
};

template <typename Visit>
void Fields(Visit& visit, KEPT_FIELDS& kept, std::span<BandSplitter> filters) {
    visit(kept.quality);
    visit(kept.phase);
    visit(kept.count);
    visit(kept.values);
    for (BandSplitter& filter : filters) {
        for (Crossover* crossover : {&filter.lowCrossover, &filter.highCrossover}) {
            visit(crossover->inputs);
            visit(crossover->lowOutputs);
            visit(crossover->highOutputs);
        }
    }
}

} // namespace

uint32_t AudioResampler::StateSize() const {
    KEPT_FIELDS kept;
    std::array<BandSplitter, 2> counted{};
    const std::span<BandSplitter> used(counted.data(), cutoffEnabled ? counted.size() : 0);
    return StatePieceSize([&](auto& visit) { Fields(visit, kept, used); }) +
           (converter ? trail.StateSize() : 0);
}

uint8_t* AudioResampler::SaveState(uint8_t* out) const {
    KEPT_FIELDS kept{quality, phase, 0, {}};
    kept.count = std::min(static_cast<uint32_t>(outputCount), kKeptValues);
    std::copy_n(output.begin(), kept.count, kept.values.begin());
    auto histories = filters;
    const std::span<BandSplitter> used(histories.data(), cutoffEnabled ? histories.size() : 0);

    out[0] = kStatePieceVersion;
    StoreLittleEndian<uint32_t>(out + 1, StateSize());
    StateWriter writer(out + kStatePieceHeader);
    Fields(writer, kept, used);
    return converter ? trail.SaveState(writer.out) : writer.out;
}

uint32_t AudioResampler::LoadState(const uint8_t* data, uint32_t size) {
    Reset();
    const uint32_t expected = StateSize();
    if (size < expected || data[0] != kStatePieceVersion ||
        LoadLittleEndian<uint32_t>(data + 1) != expected) {
        return 0;
    }
    KEPT_FIELDS kept;
    auto histories = filters;
    const std::span<BandSplitter> used(histories.data(), cutoffEnabled ? histories.size() : 0);
    StateReader reader(data + kStatePieceHeader);
    Fields(reader, kept, used);
    // The phase lies within the first step; a piece that says otherwise would skip or repeat.
    if (kept.quality != quality || kept.count > kKeptValues || kept.count > output.size() ||
        !(kept.phase >= 0.0f && kept.phase <= step) ||
        (converter && !trail.LoadState(reader.in, converter.get()))) {
        return 0;
    }
    phase = kept.phase;
    filters = histories;
    outputCount = static_cast<int32_t>(kept.count & ~1u);
    std::copy_n(kept.values.begin(), outputCount, output.begin());
    return expected;
}
