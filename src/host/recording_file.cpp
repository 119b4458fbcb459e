#include "host/recording_file.h"

#include "base/bytes.h"

#include <lz4.h>

#include <algorithm>
#include <cstring>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kFormatVersion = 1;
constexpr size_t kChunkHead = 16; // tag, length, checksum
constexpr uint32_t kLargestState = 16u << 20;
constexpr uint32_t kLargestMemory = 1u << 20;
constexpr uint32_t kMostPacked = 255; // LZ4 makes at most this many bytes of one
constexpr uint32_t kMostFrames = 1u << 30;

constexpr size_t kTagBytes = 4;
constexpr std::string_view kAboutTag = "OREC";
constexpr std::string_view kMemoryTag = "MEMO";
constexpr std::string_view kStateTag = "STAT";
constexpr std::string_view kFramesTag = "FRMS";
constexpr std::string_view kEndTag = "ENDS";

// Bits of an entry's kind, in the order in which its parts follow.
constexpr uint8_t kActions = 1;  // those that changed
constexpr uint8_t kPointers = 2; // all four numbers
constexpr uint8_t kReset = 4;    // nothing
constexpr uint8_t kCheck = 8;    // two hashes
constexpr uint8_t kKinds = kActions | kPointers | kReset | kCheck;

template <std::unsigned_integral T>
void Put(Bytes& out, T value) {
    const size_t at = out.size();
    out.resize(at + sizeof value);
    StoreLittleEndian(out.data() + at, value);
}

void PutBytes(Bytes& out, std::span<const uint8_t> bytes) {
    out.insert(out.end(), bytes.begin(), bytes.end());
}

void PutText(Bytes& out, const std::string& text) {
    const size_t length = std::min<size_t>(text.size(), 1024);
    Put(out, static_cast<uint16_t>(length));
    out.insert(out.end(), text.begin(), text.begin() + static_cast<ptrdiff_t>(length));
}

// Seven bits a byte, the lowest first; the top bit says that more follow.
void PutNumber(Bytes& out, uint32_t value) {
    while (value >= 0x80) {
        out.push_back(static_cast<uint8_t>(value | 0x80));
        value >>= 7;
    }
    out.push_back(static_cast<uint8_t>(value));
}

uint64_t ShortHash(std::span<const uint8_t> bytes) {
    return LoadLittleEndian<uint64_t>(Sha256(bytes).data());
}

uint64_t Checksum(std::span<const uint8_t> head, std::span<const uint8_t> payload) {
    Bytes all(head.begin(), head.end());
    PutBytes(all, payload);
    return ShortHash(all);
}

// The length and an LZ4 block.
void PutPacked(Bytes& out, std::span<const uint8_t> bytes) {
    Put(out, static_cast<uint32_t>(bytes.size()));
    const size_t head = out.size();
    const auto length = static_cast<int>(bytes.size());
    out.resize(head + static_cast<size_t>(LZ4_compressBound(length)));
    const int packed = LZ4_compress_default(reinterpret_cast<const char*>(bytes.data()),
                                            reinterpret_cast<char*>(out.data() + head), length,
                                            static_cast<int>(out.size() - head));
    out.resize(head + static_cast<size_t>(std::max(packed, 0)));
}

// Takes values off the front of some bytes. After the end all are zero, and `good` is false.
class Taker {
public:
    explicit Taker(std::span<const uint8_t> from)
        : rest(from) {}

    [[nodiscard]] bool Good() const { return good; }
    [[nodiscard]] bool AtEnd() const { return rest.empty(); }
    [[nodiscard]] std::span<const uint8_t> Rest() const { return rest; }

    std::span<const uint8_t> TakeBytes(size_t count) {
        if (count > rest.size()) {
            good = false;
            rest = {};
            return {};
        }
        const std::span<const uint8_t> taken = rest.first(count);
        rest = rest.subspan(count);
        return taken;
    }

    template <std::unsigned_integral T>
    T Take() {
        const std::span<const uint8_t> bytes = TakeBytes(sizeof(T));
        return bytes.empty() ? T{0} : LoadLittleEndian<T>(bytes.data());
    }

    template <size_t Count>
    void TakeInto(std::array<uint8_t, Count>& to) {
        const std::span<const uint8_t> bytes = TakeBytes(Count);
        std::copy(bytes.begin(), bytes.end(), to.begin());
    }

    std::string TakeText() {
        const std::span<const uint8_t> bytes = TakeBytes(Take<uint16_t>());
        return {bytes.begin(), bytes.end()};
    }

    uint32_t TakeNumber() {
        uint32_t value = 0;
        for (uint32_t shift = 0; shift < 35; shift += 7) {
            const auto byte = Take<uint8_t>();
            value |= shift < 32 ? uint32_t{byte & 0x7Fu} << shift : 0;
            if ((byte & 0x80) == 0) {
                return value;
            }
        }
        good = false;
        return 0;
    }

private:
    std::span<const uint8_t> rest;
    bool good = true;
};

std::string_view TagOf(std::span<const uint8_t> chunk) {
    return {reinterpret_cast<const char*>(chunk.data()), kTagBytes};
}

struct CHUNK {
    std::string_view tag;
    std::span<const uint8_t> payload;
};

// False at the end and at the first chunk that is not whole.
bool TakeChunk(Taker& file, CHUNK& chunk) {
    const std::span<const uint8_t> head = file.TakeBytes(8);
    const auto checksum = file.Take<uint64_t>();
    if (!file.Good()) {
        return false;
    }
    chunk.tag = TagOf(head);
    chunk.payload = file.TakeBytes(LoadLittleEndian<uint32_t>(head.data() + kTagBytes));
    return file.Good() && Checksum(head, chunk.payload) == checksum;
}

class Reader {
public:
    explicit Reader(RECORDING& target)
        : recording(target) {}

    // False if the chunk is not one, or not here.
    bool Read(const CHUNK& chunk) {
        Taker from(chunk.payload);
        if (chunk.tag == kMemoryTag) {
            return ReadMemory(from);
        }
        if (chunk.tag == kStateTag) {
            return ReadState(from);
        }
        if (chunk.tag == kFramesTag) {
            return ReadFrames(from);
        }
        return chunk.tag == kEndTag && ReadEnd(from);
    }

    bool ReadAbout(Taker from) {
        RECORDING_ABOUT& about = recording.about;
        static_cast<void>(from.Take<uint32_t>()); // the version, which is known
        firstFrame = from.Take<uint32_t>();
        about.system = from.Take<uint16_t>();
        for (Sha256Digest& image : about.images) {
            from.TakeInto(image);
        }
        from.TakeInto(about.options);
        about.sound.rate = from.Take<uint32_t>();
        about.sound.quality = static_cast<int32_t>(from.Take<uint32_t>());
        about.sound.cutoff = from.Take<uint8_t>() != 0;
        about.sound.cutoffLow = static_cast<int32_t>(from.Take<uint32_t>());
        about.sound.cutoffHigh = static_cast<int32_t>(from.Take<uint32_t>());
        about.program = from.TakeText();
        about.title = from.TakeText();
        about.game = from.TakeText();
        about.console = from.TakeText();
        return from.Good();
    }

private:
    bool ReadMemory(Taker from) {
        RECORDING_STATE packed;
        if (recording.frames != 0 || !recording.memory.empty() ||
            !TakePacked(from, kLargestMemory, packed)) {
            return false;
        }
        recording.memory = UnpackState(packed);
        return !recording.memory.empty();
    }

    bool ReadState(Taker from) {
        RECORDING_STATE state;
        state.frame = from.Take<uint32_t>() - firstFrame;
        if (!TakePacked(from, kLargestState, state) || state.frame != recording.frames) {
            return false;
        }
        recording.states.push_back(std::move(state));
        return true;
    }

    // So few bytes cannot make more than the limit that LZ4 sets.
    static bool TakePacked(Taker& from, uint32_t largest, RECORDING_STATE& state) {
        state.bytes = from.Take<uint32_t>();
        state.packed.assign(from.Rest().begin(), from.Rest().end());
        return from.Good() && state.bytes != 0 && state.bytes <= largest &&
               state.bytes / kMostPacked <= state.packed.size();
    }

    // A chunk counts whole or not at all.
    bool ReadFrames(Taker from) {
        const uint32_t first = from.Take<uint32_t>() - firstFrame;
        const uint32_t count = from.Take<uint8_t>();
        if (!from.Good() || first != recording.frames || count == 0 ||
            count > kRecordingCheckFrames || first > kMostFrames) {
            return false;
        }
        const size_t steps = recording.steps.size();
        const size_t checks = recording.checks.size();
        if (!ReadEntries(from, first, count)) {
            recording.steps.resize(steps);
            recording.checks.resize(checks);
            return false;
        }
        recording.frames += count;
        return true;
    }

    bool ReadEntries(Taker& from, uint32_t first, uint32_t count) {
        // Every chunk begins with nothing held, so that it can be read without the one before.
        RECORDING_STEP step{first, false, {}};
        uint32_t at = 0;
        bool begun = false;
        while (!from.AtEnd()) {
            const uint32_t further = from.TakeNumber();
            const auto kind = from.Take<uint8_t>();
            if (!from.Good() || kind == 0 || (kind & ~kKinds) != 0 || further > count - 1 - at ||
                (begun && further == 0)) {
                return false;
            }
            if (!begun && further != 0) {
                recording.steps.push_back(step);
            }
            begun = true;
            at += further;
            step.frame = first + at;
            TakeInputs(from, kind, step);
            if (kind != kCheck || recording.steps.empty() || at == 0) {
                recording.steps.push_back(step);
            }
            if ((kind & kCheck) != 0) {
                recording.checks.push_back(
                    {step.frame, first, from.Take<uint64_t>(), from.Take<uint64_t>()});
            }
            if (!from.Good()) {
                return false;
            }
        }
        if (!begun) {
            recording.steps.push_back(step);
        }
        return true;
    }

    static void TakeInputs(Taker& from, uint8_t kind, RECORDING_STEP& step) {
        if ((kind & kActions) != 0) {
            step.inputs.actions ^= from.TakeNumber();
        }
        if ((kind & kPointers) != 0) {
            for (uint32_t& value : step.inputs.pointers) {
                value = from.TakeNumber();
            }
        }
        step.reset = (kind & kReset) != 0;
    }

    bool ReadEnd(Taker from) {
        Sha256Digest state{};
        const uint32_t frames = from.Take<uint32_t>() - firstFrame;
        from.TakeInto(state);
        if (!from.Good() || frames != recording.frames) {
            return false;
        }
        recording.end = state;
        return true;
    }

    RECORDING& recording;
    uint32_t firstFrame = 0;
};

} // namespace

uint64_t RecordingPictureHash(std::span<const uint32_t> pixels, uint32_t width, uint32_t height) {
    Bytes all;
    all.reserve(8 + pixels.size_bytes());
    Put(all, width);
    Put(all, height);
    PutBytes(all, {reinterpret_cast<const uint8_t*>(pixels.data()), pixels.size_bytes()});
    return ShortHash(all);
}

uint64_t RecordingSoundHash(std::span<const int16_t> samples) {
    return ShortHash({reinterpret_cast<const uint8_t*>(samples.data()), samples.size_bytes()});
}

bool ReadRecording(std::span<const uint8_t> file, RECORDING& recording, std::string& error) {
    recording = {};
    Taker from(file);
    CHUNK chunk;
    if (file.size() < kChunkHead || TagOf(file) != kAboutTag) {
        error = "is not a recording of inputs";
        return false;
    }
    if (!TakeChunk(from, chunk)) {
        error = "is damaged at its beginning";
        return false;
    }
    const auto version = Taker(chunk.payload).Take<uint32_t>();
    if (version != kFormatVersion) {
        error =
            "was recorded by another version of the program, in a form that this one cannot read";
        return false;
    }
    Reader reader(recording);
    if (!reader.ReadAbout(Taker(chunk.payload))) {
        error = "is damaged at its beginning";
        return false;
    }
    while (!recording.end && TakeChunk(from, chunk) && reader.Read(chunk)) {
    }
    return true;
}

std::vector<uint8_t> UnpackState(const RECORDING_STATE& state) {
    Bytes bytes(state.bytes);
    const int made = LZ4_decompress_safe(
        reinterpret_cast<const char*>(state.packed.data()), reinterpret_cast<char*>(bytes.data()),
        static_cast<int>(state.packed.size()), static_cast<int>(bytes.size()));
    if (made < 0 || static_cast<uint32_t>(made) != state.bytes) {
        bytes.clear();
    }
    return bytes;
}

void WriteRecordingChunk(Bytes& out, std::string_view tag, std::span<const uint8_t> payload) {
    Bytes head(tag.begin(), tag.begin() + kTagBytes);
    Put(head, static_cast<uint32_t>(payload.size()));
    const uint64_t checksum = Checksum(head, payload);
    PutBytes(out, head);
    Put(out, checksum);
    PutBytes(out, payload);
}

void WriteRecordingAbout(Bytes& out, const RECORDING_ABOUT& about, uint32_t firstFrame) {
    Bytes payload;
    Put(payload, kFormatVersion);
    Put(payload, firstFrame);
    Put(payload, about.system);
    for (const Sha256Digest& image : about.images) {
        PutBytes(payload, image);
    }
    PutBytes(payload, about.options);
    Put(payload, about.sound.rate);
    Put(payload, static_cast<uint32_t>(about.sound.quality));
    Put(payload, static_cast<uint8_t>(about.sound.cutoff ? 1 : 0));
    Put(payload, static_cast<uint32_t>(about.sound.cutoffLow));
    Put(payload, static_cast<uint32_t>(about.sound.cutoffHigh));
    PutText(payload, about.program);
    PutText(payload, about.title);
    PutText(payload, about.game);
    PutText(payload, about.console);
    WriteRecordingChunk(out, kAboutTag, payload);
}

void WriteRecordingMemory(Bytes& out, std::span<const uint8_t> memory) {
    Bytes payload;
    PutPacked(payload, memory);
    WriteRecordingChunk(out, kMemoryTag, payload);
}

void WriteRecordingState(Bytes& out, uint32_t frame, std::span<const uint8_t> state) {
    Bytes payload;
    Put(payload, frame);
    PutPacked(payload, state);
    WriteRecordingChunk(out, kStateTag, payload);
}

void WriteRecordingEnd(Bytes& out, uint32_t frames, const Sha256Digest& state) {
    Bytes payload;
    Put(payload, frames);
    PutBytes(payload, state);
    WriteRecordingChunk(out, kEndTag, payload);
}

void FramesChunk::Add(uint32_t frame, const FRAME_INPUTS& inputs, bool reset) {
    if (count == 0) {
        first = frame;
        entryFrame = 0;
        held = {};
        entries.clear();
    }
    ++count;
    uint8_t kind = reset ? kReset : 0;
    if (inputs.actions != held.actions) {
        kind |= kActions;
    }
    if (inputs.pointers != held.pointers) {
        kind |= kPointers;
    }
    if (kind == 0) {
        return;
    }
    Entry(kind);
    if ((kind & kActions) != 0) {
        PutNumber(entries, inputs.actions ^ held.actions);
    }
    if ((kind & kPointers) != 0) {
        for (const uint32_t value : inputs.pointers) {
            PutNumber(entries, value);
        }
    }
    held = inputs;
}

void FramesChunk::Entry(uint8_t what) {
    const uint32_t frame = count - 1;
    PutNumber(entries, frame - entryFrame);
    kindAt = entries.size();
    entries.push_back(what);
    entryFrame = frame;
}

void FramesChunk::Check(uint64_t picture, uint64_t sound) {
    if (!entries.empty() && entryFrame == count - 1) {
        entries[kindAt] |= kCheck;
    } else {
        Entry(kCheck);
    }
    Put(entries, picture);
    Put(entries, sound);
}

void FramesChunk::Write(Bytes& out) {
    if (count == 0) {
        return;
    }
    Bytes payload;
    Put(payload, first);
    Put(payload, static_cast<uint8_t>(count));
    PutBytes(payload, entries);
    WriteRecordingChunk(out, kFramesTag, payload);
    count = 0;
}
