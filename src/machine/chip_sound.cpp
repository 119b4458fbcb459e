#include "machine/chip_sound.h"

#include "machine/state_piece.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double kRoomSeconds = 0.04; // of raw pairs: two frames
constexpr double kMostRate = 65536.0 * 1024.0;

constexpr std::array<double, 3> kCutoffGains{1.5, 1.0, 0.0};

// Not clamped: a value of more than 16 bits wraps.
int16_t TruncateAndWrap(double value) {
    if (!(std::fabs(value) < 9.0e18)) {
        return 0;
    }
    return static_cast<int16_t>(
        static_cast<uint16_t>(static_cast<uint64_t>(static_cast<int64_t>(value))));
}

} // namespace

void ChipSound::Init(double sourceRateValue, const SOUND_CHOICE& choice) {
    sourceRate = sourceRateValue;
    chosen = choice;
    const double bounded = sourceRate >= 1.0 ? std::min(sourceRate, kMostRate) : 1.0;
    pairs.samples.assign(static_cast<size_t>(bounded * kRoomSeconds + 1.0) * 2, 0);
    mostPairs = static_cast<uint32_t>(bounded / 20.0) + 1;
    resampler.Init(sourceRate, choice.rate, choice.quality);
    Reset();
}

void ChipSound::Reset() {
    pairs.sampleCount = 0;
    resampler.Reset();
    BuildFilters();
}

void ChipSound::BuildFilters() {
    const double rate = std::trunc(sourceRate);
    for (BandSplitter& filter : filters) {
        filter.SetCrossovers(rate, chosen.cutoffLow, chosen.cutoffHigh);
        filter.gains = kCutoffGains;
    }
}

// A chip that holds its level, such as a silent one, is passed on as a count.
void ChipSound::Flush() {
    int16_t* const samples = pairs.samples.data();
    const uint32_t count = pairs.sampleCount;
    if (chosen.cutoff) {
        CutOff({samples, count});
    }
    if (count > 2 && std::memcmp(samples, samples + 2, (count - 2) * sizeof *samples) == 0) {
        resampler.PushRun(samples[0], samples[1], static_cast<int32_t>(count / 2));
    } else {
        resampler.Push(samples, static_cast<int32_t>(count));
    }
    pairs.sampleCount = 0;
}

void ChipSound::CutOff(std::span<int16_t> samples) {
    for (size_t i = 0; i + 1 < samples.size(); i += 2) {
        samples[i] = TruncateAndWrap(filters[0].Process(samples[i]));
        samples[i + 1] = TruncateAndWrap(filters[1].Process(samples[i + 1]));
    }
}

template <typename Visit>
void ChipSound::VisitFilters(Visit& visit, std::array<BandSplitter, 2>& histories) const {
    if (!chosen.cutoff) {
        return;
    }
    for (BandSplitter& filter : histories) {
        for (Crossover* crossover : {&filter.lowCrossover, &filter.highCrossover}) {
            visit(crossover->inputs);
            visit(crossover->lowOutputs);
            visit(crossover->highOutputs);
        }
    }
}

bool ChipSound::HistoryIsFinite(std::array<BandSplitter, 2>& histories) const {
    bool finite = true;
    const auto look = [&](const std::array<double, 4>& values) {
        for (const double value : values) {
            finite = finite && std::isfinite(value);
        }
    };
    VisitFilters(look, histories);
    return finite;
}

uint32_t ChipSound::StateSize() const {
    auto histories = filters;
    StateCounter counter;
    VisitFilters(counter, histories);
    return kStatePieceHeader + counter.bytes + resampler.StateBytes();
}

StateOut ChipSound::SaveState(StateOut out) const {
    out.PutScalar(kSoundPieceVersion);
    out.PutScalar(StateSize());
    auto histories = filters;
    StateWriter writer(out);
    VisitFilters(writer, histories);
    return resampler.SaveFields(writer.out);
}

uint32_t ChipSound::LoadState(const uint8_t* data, uint32_t size) {
    Reset();
    const uint32_t expected = StateSize();
    if (size < expected || data[0] != kSoundPieceVersion ||
        LoadLittleEndian<uint32_t>(data + 1) != expected) {
        return 0;
    }
    auto histories = filters;
    StateReader reader(data + kStatePieceHeader);
    VisitFilters(reader, histories);
    if (!resampler.LoadFields(reader.in)) {
        return 0;
    }
    // The filters feed back: NaN or infinity would stay in them for ever.
    if (HistoryIsFinite(histories)) {
        filters = histories;
    }
    return expected;
}
