// Recordings of inputs. The first byte says what the rest is: 0 a whole file; else chunks without checksums, which
// they get here: a byte for the tag, two for the length, and what is in it. They come after a good first chunk if the
// byte is 1.
#include "host/recording_file.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::array<std::string_view, 5> kTags = {"FRMS", "STAT", "MEMO", "ENDS", "OREC"};

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

Bytes FileOf(uint8_t kind, std::span<const uint8_t> rest) {
    if (kind == 0) {
        return {rest.begin(), rest.end()};
    }
    Bytes file;
    if (kind == 1) {
        WriteRecordingAbout(file, {}, 0);
    }
    while (rest.size() >= 3) {
        const std::string_view tag = kTags[rest[0] % kTags.size()];
        const size_t length = std::min(rest[1] | size_t{rest[2]} << 8, rest.size() - 3);
        WriteRecordingChunk(file, tag, rest.subspan(3, length));
        rest = rest.subspan(3 + length);
    }
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const Bytes file = FileOf(data[0], {data + 1, size - 1});
    RECORDING recording;
    std::string error;
    if (!ReadRecording(file, recording, error)) {
        Require(!error.empty());
        return 0;
    }
    uint32_t last = 0;
    for (const RECORDING_STEP& step : recording.steps) {
        Require(step.frame >= last && step.frame < recording.frames);
        last = step.frame;
    }
    for (const RECORDING_CHECK& check : recording.checks) {
        Require(check.soundFrom <= check.frame && check.frame < recording.frames);
    }
    for (const RECORDING_STATE& state : recording.states) {
        const Bytes bytes = UnpackState(state);
        Require(state.frame <= recording.frames && (bytes.empty() || bytes.size() == state.bytes));
    }
    // No byte of a file makes more than a few of a recording.
    Require(recording.frames <= 60 * file.size() && recording.steps.size() <= 2 * file.size());
    return 0;
}
