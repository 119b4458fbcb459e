// What a saved state keeps of an AudioResampler.
#include "machine/resampler.h"
#include "machine/state_piece.h"

#include <algorithm>

struct AudioResampler::KEPT {
    int32_t quality = 0;
    uint64_t outputTicks = 0; // the rates, so that a state of other rates is refused
    uint64_t middleTicks = 0;
    uint32_t count = 0; // of `values`
    std::array<int16_t, AudioResampler::kKeptValues> values{};
    float phase = 0.0F;
    uint32_t wanted = 0; // middle pairs missing before the next output
    uint64_t ticks = 0;
    uint32_t strayPairs = 0;
};

template <typename Visit>
void AudioResampler::VisitFields(Visit& visit, KEPT& kept, std::vector<int16_t>& pairs) const {
    visit(kept.quality);
    visit(kept.outputTicks);
    visit(kept.middleTicks);
    visit(kept.count);
    visit(kept.values);
    if (quality == 0) {
        visit(kept.phase);
        return;
    }
    visit(kept.wanted);
    visit(kept.ticks);
    visit(kept.strayPairs);
    visit(pairs);
}

uint32_t AudioResampler::StateBytes() const {
    KEPT kept;
    StateCounter counter;
    // Counting, saving and loading share this list of fields. Only loading changes them.
    VisitFields(counter, kept, const_cast<std::vector<int16_t>&>(history));
    return counter.bytes;
}

StateOut AudioResampler::SaveFields(StateOut out) const {
    KEPT kept;
    kept.quality = quality;
    kept.outputTicks = outputTicks;
    kept.middleTicks = middleTicks;
    kept.count = std::min(static_cast<uint32_t>(outputCount), kKeptValues);
    std::copy_n(output.begin(), kept.count, kept.values.begin());
    kept.phase = phase;
    kept.wanted = quality != 0 ? static_cast<uint32_t>(place + filter->half - middleHeld) : 0;
    kept.ticks = ticks;
    kept.strayPairs = strayPairs;
    StateWriter writer(out);
    VisitFields(writer, kept, const_cast<std::vector<int16_t>&>(history));
    return writer.out;
}

bool AudioResampler::LoadFields(const uint8_t* in) {
    Reset();
    KEPT kept;
    auto pairs = history;
    StateReader reader(in);
    VisitFields(reader, kept, pairs);
    if (kept.quality != quality || kept.outputTicks != outputTicks ||
        kept.middleTicks != middleTicks || kept.count > kKeptValues || kept.count > output.size()) {
        return false;
    }
    if (quality == 0) {
        // The phase must be within the first step; any other would skip or repeat.
        if (!(kept.phase >= 0.0F && kept.phase <= step)) {
            return false;
        }
        phase = kept.phase;
    } else if (kept.wanted > filter->half + filter->reach / filter->stride ||
               kept.ticks >= middleTicks || kept.strayPairs >= filter->stride) {
        return false;
    } else {
        RefillFrom(pairs, kept.strayPairs);
        place = middleHeld + kept.wanted - filter->half;
        ticks = kept.ticks;
        DropMiddles(false);
    }
    outputCount = static_cast<int32_t>(kept.count & ~1U);
    std::copy_n(kept.values.begin(), outputCount, output.begin());
    return true;
}

// From the start of a middle pair, so that the same source pairs make up each middle pair.
void AudioResampler::RefillFrom(const std::vector<int16_t>& pairs, uint32_t stray) {
    const size_t skipped = filter->stride - 1 - stray;
    const int16_t* const first = pairs.data() + skipped * 2;
    const size_t count = pairs.size() / 2 - skipped;
    (void)Remember(first, count);
    TakeIn(first, count, false);
    history = pairs;
}
