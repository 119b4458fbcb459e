#include "machine/converter_trail.h"

#include "base/bytes.h"

#include <samplerate.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

// How far the converters' filters look to either side, in frames of the lower rate, rounded up: half
// the length of the coefficient tables in frames, which is 19.3 and 45.7.
constexpr double kReachFastest = 20.0;
constexpr double kReachMedium = 47.0;

// Frames, landmark, outputs since and fraction; the history follows.
constexpr uint32_t kFieldBytes = 4 + 4 + 4 + 8;

// The source frames that a converter wants beyond an output before it makes it.
size_t Lookahead(double reach, double ratio) {
    return static_cast<size_t>(std::ceil(reach / std::min(ratio, 1.0))) + 2;
}

} // namespace

void ConverterTrail::Init(double ratioValue, int32_t quality) {
    ratio = ratioValue;
    const double reach = quality == 1 ? kReachFastest : kReachMedium;
    const double sourceFrames = 1.0 / ratio; // an output
    skip = static_cast<uint32_t>(std::max(1.0, std::floor(sourceFrames)));
    // The last skip is between one and two skips long and has a fraction besides.
    behindLandmark = Lookahead(reach, 1.0 / (2.0 * skip + 1.0));
    const auto outputStep = static_cast<size_t>(std::ceil(sourceFrames));
    const size_t frames =
        Lookahead(reach, ratio) + size_t{2} * skip + behindLandmark + outputStep + 4;
    history.assign(frames * 2, 0);
    const auto outputs = static_cast<size_t>(
        std::ceil(static_cast<double>(behindLandmark + outputStep + 4) * ratio));
    places.assign(outputs + 4, {});
    Reset();
}

void ConverterTrail::Reset() {
    std::fill(history.begin(), history.end(), int16_t{0});
    std::fill(places.begin(), places.end(), POSITION{0, 0.0});
    given = 0;
    made = 0;
}

ConverterTrail::POSITION& ConverterTrail::At(uint64_t outputIndex) {
    return places[static_cast<size_t>(outputIndex % places.size())];
}

const ConverterTrail::POSITION& ConverterTrail::At(uint64_t outputIndex) const {
    return places[static_cast<size_t>(outputIndex % places.size())];
}

// The converter's own step from output to output, in the same arithmetic, so that the fractions here
// are its fractions to the last bit.
ConverterTrail::POSITION ConverterTrail::Next(POSITION from) const {
    const double at = from.fraction + 1.0 / ratio;
    double fraction = at - static_cast<double>(std::lrint(at));
    if (fraction < 0.0) {
        fraction += 1.0;
    }
    return {from.frame + std::lrint(at - fraction), fraction};
}

void ConverterTrail::Follow(const float* used, size_t usedFrames, size_t madeFrames) {
    for (size_t i = 0; i < madeFrames; ++i) {
        const POSITION next = Next(At(made));
        ++made;
        At(made) = next;
    }
    Keep(used, usedFrames);
    given += usedFrames;
}

// The samples came in as i16 and go back to them without loss.
void ConverterTrail::Keep(const float* used, size_t usedFrames) {
    const size_t room = history.size() / 2;
    const size_t kept = std::min(usedFrames, room);
    std::copy(history.begin() + static_cast<ptrdiff_t>(kept * 2), history.end(), history.begin());
    src_float_to_short_array(used + (usedFrames - kept) * 2, history.data() + (room - kept) * 2,
                             static_cast<int>(kept * 2));
}

// The newest output that has enough source frames behind it to be skipped to.
uint64_t ConverterTrail::Landmark() const {
    const uint64_t oldest = made < places.size() ? 0 : made + 1 - places.size();
    uint64_t index = made;
    while (index > oldest &&
           static_cast<int64_t>(given) - At(index).frame < static_cast<int64_t>(behindLandmark)) {
        --index;
    }
    return index;
}

uint32_t ConverterTrail::StateSize() const {
    return kFieldBytes + static_cast<uint32_t>(history.size() * sizeof(int16_t));
}

// While the history holds all that there ever was, the landmark is the reset.
uint8_t* ConverterTrail::SaveState(uint8_t* out) const {
    const size_t room = history.size() / 2;
    const bool fromReset = given < room;
    const uint64_t landmark = fromReset ? 0 : Landmark();
    const POSITION& place = At(landmark);
    const auto ahead =
        static_cast<uint32_t>(fromReset ? 0 : static_cast<int64_t>(given) - place.frame);
    StoreLittleEndian<uint32_t>(out, static_cast<uint32_t>(std::min<uint64_t>(given, room)));
    StoreLittleEndian<uint32_t>(out + 4, ahead);
    StoreLittleEndian<uint32_t>(out + 8, static_cast<uint32_t>(made - landmark));
    StoreLittleEndian<uint64_t>(out + 12,
                                std::bit_cast<uint64_t>(fromReset ? 0.0 : place.fraction));
    out += kFieldBytes;
    for (const int16_t sample : history) {
        StoreLittleEndian<uint16_t>(out, static_cast<uint16_t>(sample));
        out += sizeof sample;
    }
    return out;
}

bool ConverterTrail::LoadState(const uint8_t* in, SRC_STATE_tag* converter) {
    const auto frames = size_t{LoadLittleEndian<uint32_t>(in)};
    const auto ahead = size_t{LoadLittleEndian<uint32_t>(in + 4)};
    const auto outputs = size_t{LoadLittleEndian<uint32_t>(in + 8)};
    const auto fraction = std::bit_cast<double>(LoadLittleEndian<uint64_t>(in + 12));
    in += kFieldBytes;

    Reset();
    src_reset(converter);
    const size_t room = history.size() / 2;
    const bool wholeRun = frames < room;
    const auto mostOutputs = static_cast<size_t>(static_cast<double>(frames) * ratio) + 2;
    if (frames > room || outputs > mostOutputs || !(fraction >= 0.0 && fraction < 1.0) ||
        (!wholeRun && (ahead < behindLandmark || ahead > room - size_t{2} * skip))) {
        return false;
    }
    for (int16_t& sample : history) {
        sample = static_cast<int16_t>(LoadLittleEndian<uint16_t>(in));
        in += sizeof sample;
    }
    std::vector<float> source(frames * 2);
    src_short_to_float_array(history.data() + (room - frames) * 2, source.data(),
                             static_cast<int>(frames * 2));
    const POSITION start{static_cast<int64_t>(wholeRun ? 0 : frames - ahead),
                         wholeRun ? 0.0 : fraction};
    if (!Replay(converter, source, start, outputs)) {
        Reset();
        src_reset(converter);
        return false;
    }
    return true;
}

// A whole run is given again from its start. Anything else begins with an output on the first frame
// of the history and skips from there to the landmark.
bool ConverterTrail::Replay(SRC_STATE_tag* converter, std::span<const float> source, POSITION start,
                            size_t outputs) {
    const size_t frames = source.size() / 2;
    std::vector<float> unheard((std::max(frames, outputs) + 1) * 2);
    size_t used = 0;
    // Gives the number of outputs made, `count` at most.
    const auto make = [&](size_t count, double atRatio) {
        SRC_DATA data{};
        data.data_in = source.data() + used * 2;
        data.data_out = unheard.data();
        data.input_frames = static_cast<long>(frames - used);
        data.output_frames = static_cast<long>(count);
        data.src_ratio = atRatio;
        if (src_set_ratio(converter, atRatio) != 0 || src_process(converter, &data) != 0) {
            return size_t{0};
        }
        used += static_cast<size_t>(data.input_frames_used);
        return static_cast<size_t>(data.output_frames_gen);
    };

    if (const auto landmark = static_cast<size_t>(start.frame); landmark != 0) {
        const size_t skips = landmark / skip - 1;
        const double last = static_cast<double>(landmark - skips * skip) + start.fraction;
        if (make(skips, 1.0 / skip) != skips || make(1, 1.0 / last) != 1) {
            return false;
        }
    }
    At(0) = start;
    for (; made < outputs; ++made) {
        const POSITION next = Next(At(made));
        At(made + 1) = next;
    }
    given = frames;
    // A converter that has made all it can is asked for one more, so that it takes the source.
    const bool remade = outputs == 0 || make(outputs, ratio) == outputs;
    return remade && (used == frames || make(1, ratio) == 0) && used == frames;
}
