#include "host/session_recorder.h"

#include "machine/battery.h"

#include <new>
#include <utility>

namespace {

constexpr uint32_t kPartFrames = 30 * 60;
constexpr uint32_t kPartsAMinute = 2;

void Append(std::vector<uint8_t>& out, std::span<const uint8_t> bytes) {
    out.insert(out.end(), bytes.begin(), bytes.end());
}

Sha256Digest HashOfState(CEmuSystem& machine) {
    uint32_t size = 0;
    const StateBlob state = machine.SaveState(size);
    return state ? Sha256({state.get(), size}) : Sha256Digest{};
}

} // namespace

SessionRecorder::SessionRecorder(RECORDING_ABOUT what, uint32_t minutes)
    : about(std::move(what))
    , partsKept(minutes * kPartsAMinute) {}

void SessionRecorder::ToFile(std::span<const uint8_t> bytes) {
    if (file && fileBegun) {
        Append(fileBytes, bytes);
    }
}

// Nothing at power-on of a game without memory of its own. False if there is no state.
bool SessionRecorder::WriteStart(CEmuSystem& machine, std::vector<uint8_t>& start) const {
    try {
        if (atPowerOn) {
            const auto* const memory = dynamic_cast<const CBattery*>(&machine);
            const std::vector<uint8_t> contents =
                memory != nullptr ? memory->BatteryContents() : std::vector<uint8_t>();
            if (!contents.empty()) {
                WriteRecordingMemory(start, contents);
            }
            return true;
        }
        uint32_t size = 0;
        const StateBlob state = machine.SaveState(size);
        if (state) {
            WriteRecordingState(start, frame, {state.get(), size});
        }
        return state != nullptr;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool SessionRecorder::BeginPart(CEmuSystem& machine) {
    CloseChunk();
    PART part;
    part.firstFrame = frame;
    part.stateTaken = stateTaken;
    if (!WriteStart(machine, part.start)) {
        return false;
    }
    if (file && !fileBegun) {
        WriteRecordingAbout(fileBytes, about, frame);
        Append(fileBytes, part.start);
        fileBegun = true;
    } else if (stateTaken) {
        ToFile(part.start);
    }
    stateTaken = false;
    atPowerOn = false;
    parts.push_back(std::move(part));
    // The oldest minutes are whole until there is another part in their place.
    while (parts.size() > partsKept + 1) {
        parts.pop_front();
    }
    return true;
}

bool SessionRecorder::BeforeFrame(CEmuSystem& machine, const FRAME_INPUTS& inputs) {
    if (givenUp) {
        return true;
    }
    const bool partFull =
        partsKept != 0 && !parts.empty() && frame - parts.back().firstFrame >= kPartFrames;
    const bool begins = parts.empty() || stateTaken || partFull || (file && !fileBegun);
    if (begins && !BeginPart(machine)) {
        givenUp = true;
        return false;
    }
    chunk.Add(frame, inputs, reset);
    reset = false;
    return true;
}

void SessionRecorder::AfterFrame(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio) {
    if (givenUp) {
        return;
    }
    sound.insert(sound.end(), audio.samples, audio.samples + size_t{audio.sampleCount} * 2);
    ++frame;
    if (chunk.Full()) {
        const std::span<const uint32_t> pixels(video.pixels, size_t{video.width} * video.height);
        chunk.Check(RecordingPictureHash(pixels, video.width, video.height),
                    RecordingSoundHash(sound));
        CloseChunk();
    }
}

void SessionRecorder::CloseChunk() {
    sound.clear();
    if (chunk.Empty()) {
        return;
    }
    std::vector<uint8_t> bytes;
    chunk.Write(bytes);
    ToFile(bytes);
    if (partsKept != 0) {
        Append(parts.back().chunks, bytes);
    }
}

std::vector<uint8_t> SessionRecorder::TakeFileBytes() {
    return std::exchange(fileBytes, {});
}

void SessionRecorder::EndFile(CEmuSystem& machine) {
    CloseChunk();
    if (file && fileBegun && !givenUp) {
        WriteRecordingEnd(fileBytes, frame, HashOfState(machine));
    }
    file = false;
}

std::vector<uint8_t> SessionRecorder::LastMinutes(CEmuSystem& machine, uint32_t& frames) {
    CloseChunk();
    frames = parts.empty() || partsKept == 0 ? 0 : frame - parts.front().firstFrame;
    std::vector<uint8_t> bytes;
    if (frames == 0) {
        return bytes;
    }
    WriteRecordingAbout(bytes, about, parts.front().firstFrame);
    for (const PART& part : parts) {
        if (&part == &parts.front() || part.stateTaken) {
            Append(bytes, part.start);
        }
        Append(bytes, part.chunks);
    }
    // A machine that something else has changed since the last frame is not where the recording ends.
    if (!givenUp && !stateTaken && !reset) {
        WriteRecordingEnd(bytes, frame, HashOfState(machine));
    }
    return bytes;
}
