#include "host/session_replay.h"

#include "machine/battery.h"

#include <utility>

SessionReplay::SessionReplay(std::shared_ptr<const RECORDING> played, bool compareSound)
    : recording(std::move(played))
    , soundCounts(compareSound) {}

void SessionReplay::Begin(CEmuSystem& machine) const {
    auto* const memory = dynamic_cast<CBattery*>(&machine);
    if (memory != nullptr && !recording->memory.empty()) {
        // Memory of another length is that of another game, and the comparison shows it.
        static_cast<void>(memory->SetBatteryContents(recording->memory));
    }
}

std::optional<REPLAY_FRAME> SessionReplay::BeforeFrame(CEmuSystem& machine) {
    if (Running() && frame == recording->frames) {
        Finish(machine);
    }
    if (!Running()) {
        return std::nullopt;
    }
    REPLAY_FRAME next;
    const auto& states = recording->states;
    for (; nextState < states.size() && states[nextState].frame == frame; ++nextState) {
        const std::vector<uint8_t> state = UnpackState(states[nextState]);
        if (!machine.LoadState(state.data(), static_cast<uint32_t>(state.size()))) {
            machine.Reset();
            end = ReplayEnd::kRefused;
            return std::nullopt;
        }
        next.stateTaken = true;
    }
    const auto& steps = recording->steps;
    for (; nextStep < steps.size() && steps[nextStep].frame == frame; ++nextStep) {
        if (steps[nextStep].reset) {
            machine.Reset();
            next.reset = true;
        }
        inputs = steps[nextStep].inputs;
    }
    next.inputs = inputs;
    return next;
}

void SessionReplay::AfterFrame(CEmuSystem& machine, const EMU_VIDEO_FRAME& video,
                               const EMU_AUDIO_FRAME& audio) {
    Compare(video, audio);
    ++frame;
    if (frame == recording->frames) {
        Finish(machine);
    }
}

void SessionReplay::Compare(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio) {
    if (nextCheck == recording->checks.size()) {
        return;
    }
    const RECORDING_CHECK& check = recording->checks[nextCheck];
    if (frame <= check.soundFrom) {
        sound.clear();
    }
    sound.insert(sound.end(), audio.samples, audio.samples + size_t{audio.sampleCount} * 2);
    if (frame != check.frame) {
        return;
    }
    ++nextCheck;
    const std::span<const uint32_t> pixels(video.pixels, size_t{video.width} * video.height);
    const bool picture = check.picture == RecordingPictureHash(pixels, video.width, video.height);
    if (picture && (!soundCounts || check.sound == RecordingSoundHash(sound))) {
        equalUntil = differs == 0 ? frame + 1 : equalUntil;
    } else if (differs == 0) {
        differs = frame + 1;
        what = picture ? "sound" : "picture";
    }
}

void SessionReplay::Finish(CEmuSystem& machine) {
    end = recording->end ? ReplayEnd::kEqual : ReplayEnd::kInterrupted;
    // A later version may note more in a state, and then only pictures and sound tell.
    if (recording->end && recording->about.program == RecordingProgram() && soundCounts &&
        differs == 0) {
        uint32_t size = 0;
        const StateBlob state = machine.SaveState(size);
        if (!state || Sha256({state.get(), size}) != *recording->end) {
            differs = frame;
            what = "state of the machine";
        }
    }
    if (differs != 0) {
        end = ReplayEnd::kDiffers;
    }
}

void SessionReplay::TakeOver() {
    if (Running()) {
        end = ReplayEnd::kTakenOver;
    }
}

std::string SessionReplay::Result() const {
    const std::string frames = std::to_string(frame);
    const std::string& by = recording->about.program;
    if (Differs()) {
        std::string line = "the replay differs from the recording at frame " +
                           std::to_string(differs) + " (" + what + "); it was equal to frame " +
                           std::to_string(equalUntil);
        if (by != RecordingProgram()) {
            line += "; version " + by + " of the program recorded it";
        }
        return line;
    }
    switch (end) {
    case ReplayEnd::kRunning:
        return frames + " of " + std::to_string(Frames()) +
               " frames replayed: equal to the recording to frame " + std::to_string(equalUntil);
    case ReplayEnd::kEqual:
        return frames + " frames replayed: pictures and sound are those of the recording";
    case ReplayEnd::kInterrupted:
        return frames +
               " frames replayed; the recording was interrupted there, and is equal to frame " +
               std::to_string(equalUntil);
    case ReplayEnd::kDiffers: break; // told above
    case ReplayEnd::kRefused:
        return "the machine cannot take the state in the recording, before frame " +
               std::to_string(frame + 1);
    case ReplayEnd::kTakenOver: return "you play on from frame " + frames + " of the recording";
    }
    return {};
}

std::string RecordingProgram() {
    return OMBRELUNE_VERSION;
}
