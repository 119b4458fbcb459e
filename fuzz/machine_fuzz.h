// What the machines' fuzz entries share: games made of bytes, players with a valid state, patches over
// that state, and the host's side of a frame. A broken guarantee of a machine ends the process.
#pragma once

#include "base/bytes.h"
#include "formats/game_file.h"
#include "machine/emu_system.h"
#include "machine/state_piece.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <utility>
#include <vector>

inline void FuzzRequire(bool fact) {
    if (!fact) {
        std::abort();
    }
}

// A machine with a game of one image; null if it refuses the image. `board` goes into the record of an
// arcade game; all other systems get the default record.
template <typename Machine, typename Options>
std::unique_ptr<Machine> FuzzStart(const Options& options, uint16_t system,
                                   std::vector<uint8_t> image, uint32_t board = 0) {
    ARC_RECORD record{};
    std::memcpy(record.tag, system == kSystemArcade ? "ARC0" : "GDF0", 4);
    record.board = board;
    MACHINE_RECORD raw{};
    std::memcpy(raw.bytes, &record, sizeof record);
    CGameFile game;
    game.Create(false, system);
    game.AddRom("v1.0", {}, static_cast<uint32_t>(image.size()));
    game.AddNameFromTitle("Fuzz", 1, 1, raw);
    game.LinkRom(0, 0);
    if (!game.SetData(std::move(image))) {
        return nullptr;
    }
    game.selectedName = 0;
    CGameFile* const games[2] = {&game, nullptr};
    auto machine = std::make_unique<Machine>(1);
    return machine->Init(&options, games) ? std::move(machine) : nullptr;
}

// What a frame has put out.
struct FUZZ_FRAME {
    std::vector<uint32_t> pixels;
    std::vector<int16_t> samples;
    uint32_t width = 0;
    uint32_t height = 0;
    bool operator==(const FUZZ_FRAME&) const = default;
};

inline FUZZ_FRAME FuzzFrame(CEmuSystem& machine) {
    // Exactly what the host allocates, so that the sanitizer sees a write after it.
    FUZZ_FRAME frame;
    frame.pixels.resize(size_t{machine.width} * machine.height);
    frame.samples.resize(size_t{kAudioFramePairs} * 2);
    EMU_VIDEO_FRAME video{};
    video.pixels = frame.pixels.data();
    EMU_AUDIO_FRAME audio{};
    audio.samples = frame.samples.data();
    audio.sampleRate = 44100;
    EMU_INPUT_STATE input{};
    machine.RunFrame(&input, &video, &audio);
    FuzzRequire(video.width <= machine.width && video.height <= machine.height &&
                audio.sampleCount <= kAudioFramePairs);
    frame.samples.resize(size_t{audio.sampleCount} * 2);
    frame.width = video.width;
    frame.height = video.height;
    return frame;
}

inline void FuzzRunFrame(CEmuSystem& machine) {
    static_cast<void>(FuzzFrame(machine));
}

inline std::vector<uint8_t> FuzzSave(CEmuSystem& machine) {
    uint32_t size = 0;
    const StateBlob blob = machine.SaveState(size);
    return {blob.get(), blob.get() + size};
}

[[nodiscard]] inline bool FuzzLoad(CEmuSystem& machine, const std::vector<uint8_t>& state) {
    return machine.LoadState(state.data(), static_cast<uint32_t>(state.size()));
}

struct FUZZ_PLAYER {
    std::unique_ptr<CEmuSystem> machine;
    std::vector<uint8_t> good; // a state that loads
};

// A player whose good state is the machine's after `frames` frames.
inline FUZZ_PLAYER FuzzPlayer(std::unique_ptr<CEmuSystem> machine, int frames = 0) {
    FuzzRequire(machine != nullptr);
    for (int frame = 0; frame < frames; ++frame) {
        FuzzRunFrame(*machine);
    }
    FuzzRequire(!machine->ended);
    std::vector<uint8_t> good = FuzzSave(*machine);
    return {std::move(machine), std::move(good)};
}

// The offsets of a good state's pieces.
inline std::vector<size_t> FuzzPieces(const std::vector<uint8_t>& good) {
    std::vector<size_t> pieces;
    for (size_t at = 0; at + kStatePieceHeader <= good.size();
         at += LoadLittleEndian<uint32_t>(good.data() + at + 1)) {
        pieces.push_back(at);
    }
    return pieces;
}

// Overwrites part of a state; bytes beyond its end are dropped.
inline void FuzzLay(std::vector<uint8_t>& state, size_t at, std::span<const uint8_t> bytes) {
    const auto kept = bytes.first(std::min(bytes.size(), state.size() - at));
    std::copy(kept.begin(), kept.end(), state.begin() + static_cast<std::ptrdiff_t>(at));
}

// Restores every piece's version and size, so that a patch reaches the fields of all chips.
inline void FuzzMendHeaders(std::vector<uint8_t>& state, const std::vector<uint8_t>& good) {
    for (const size_t at : FuzzPieces(good)) {
        FuzzLay(state, at, std::span(good).subspan(at, kStatePieceHeader));
    }
}

// The good state, partly overwritten.
inline std::vector<uint8_t> FuzzPatched(const std::vector<uint8_t>& good, size_t at,
                                        std::span<const uint8_t> bytes) {
    std::vector<uint8_t> state = good;
    FuzzLay(state, at, bytes);
    FuzzMendHeaders(state, good);
    return state;
}

// Loads a state of any bytes, runs a frame whether it was accepted or not, and returns the machine's
// new state, which must load.
inline std::vector<uint8_t> FuzzState(FUZZ_PLAYER& player, const std::vector<uint8_t>& state) {
    static_cast<void>(FuzzLoad(*player.machine, state));
    FuzzRunFrame(*player.machine);
    std::vector<uint8_t> saved = FuzzSave(*player.machine);
    FuzzRequire(saved.size() == player.good.size() && FuzzLoad(*player.machine, saved));
    return saved;
}
