// What the tests of saved states share, for any machine.
#pragma once

#include "base/bytes.h"
#include "machine/chip_sound.h"
#include "machine/emu_system.h"

#include "support/state_table.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

// Frames of a run after a state.
inline constexpr int kFollowingFrames = 600;

struct FRAME_RESULT {
    uint64_t picture; // hashes
    uint64_t sound;
    uint32_t pairs;
};

struct SAVED {
    StateBlob blob;
    uint32_t size = 0;

    [[nodiscard]] bool operator==(const SAVED& other) const {
        return size == other.size && std::memcmp(blob.get(), other.blob.get(), size) == 0;
    }
    // A copy of exactly this length, so that the sanitizer sees a read past its end.
    [[nodiscard]] std::vector<uint8_t> Cut(uint32_t length) const {
        return {blob.get(), blob.get() + length};
    }
};

inline SAVED Save(CEmuSystem& machine) {
    SAVED saved;
    saved.blob = machine.SaveState(saved.size);
    return saved;
}

// Of all pieces, including the sound's.
inline std::vector<uint32_t> AllPieceSizes(const SAVED& saved) {
    std::vector<uint32_t> sizes;
    for (uint32_t at = 0; at + 5 <= saved.size;) {
        EXPECT_TRUE(saved.blob[at] == 1 || saved.blob[at] == kSoundPieceVersion)
            << "version at " << at;
        const auto size = LoadLittleEndian<uint32_t>(saved.blob.get() + at + 1);
        sizes.push_back(size);
        at += std::max(size, 5U);
    }
    return sizes;
}

// The state is made of the pieces that docs/STATES.md lists for the machine. `kinds` names the tables of
// the pieces that depend on the cartridge; the name is empty for a piece that this machine does not have.
inline void ExpectPiecesAsListed(const std::string& machine, const SAVED& saved,
                                 const std::map<std::string, std::string>& kinds = {}) {
    const std::vector<uint32_t> sizes = AllPieceSizes(saved);
    size_t index = 0;
    uint32_t at = 0;
    for (const std::string& name : ReadMachinePieces(machine)) {
        SCOPED_TRACE(name);
        const auto kind = kinds.find(name);
        const std::string table = kind != kinds.end() ? kind->second : name;
        if (table.empty()) {
            continue;
        }
        ASSERT_LT(index, sizes.size());
        if (name == "sound") {
            EXPECT_EQ(saved.blob[at], kSoundPieceVersion);
        } else {
            EXPECT_EQ(saved.blob[at], ReadStateTable(table).version);
            EXPECT_EQ(sizes[index], ReadStateTable(table).size);
        }
        at += sizes[index++];
    }
    EXPECT_EQ(index, sizes.size());
}

inline void ExpectSameFrames(const std::vector<FRAME_RESULT>& one,
                             const std::vector<FRAME_RESULT>& other) {
    ASSERT_EQ(one.size(), other.size());
    for (size_t i = 0; i < one.size(); ++i) {
        ASSERT_EQ(one[i].picture, other[i].picture) << i;
        ASSERT_EQ(one[i].pairs, other[i].pairs) << i;
        ASSERT_EQ(one[i].sound, other[i].sound) << i;
    }
}

// Expects a moving picture and a changing sound, so that comparing runs proves something.
inline void ExpectALivelyRun(const std::vector<FRAME_RESULT>& run) {
    size_t pictures = 0;
    size_t sounds = 0;
    for (size_t i = 1; i < run.size(); ++i) {
        pictures += run[i].picture != run[i - 1].picture ? 1U : 0U;
        sounds += run[i].sound != run[i - 1].sound ? 1U : 0U;
    }
    EXPECT_GT(pictures, run.size() / 6);
    EXPECT_GT(sounds, run.size() / 6);
}

inline void ExpectSavedAlike(const SAVED& saved, CEmuSystem& other) {
    ASSERT_TRUE(other.LoadState(saved.blob.get(), saved.size));
    EXPECT_TRUE(Save(other) == saved);
}

// States cut off in the middle of each of these first pieces, or after their first bytes. `fits` says
// which of them are still valid.
inline void ExpectCutsAreRefused(
    CEmuSystem& machine, const SAVED& saved, const std::vector<uint32_t>& sizes,
    const std::function<bool(size_t piece, bool atStart)>& fits = [](size_t, bool) {
        return false;
    }) {
    uint32_t at = 0;
    for (size_t piece = 0; piece < sizes.size(); ++piece) {
        for (const uint32_t length : {at, at + 4, at + sizes[piece] - 1}) {
            EXPECT_EQ(machine.LoadState(saved.Cut(length).data(), length),
                      fits(piece, length == at))
                << length;
        }
        at += sizes[piece];
    }
    EXPECT_TRUE(machine.LoadState(saved.blob.get(), saved.size));
}

// Any change of a piece's version or size.
inline void ExpectWrongHeadersAreRefused(CEmuSystem& machine, const SAVED& saved,
                                         const std::vector<uint32_t>& sizes) {
    uint32_t at = 0;
    for (const uint32_t size : sizes) {
        for (uint32_t byte = 0; byte < 5; ++byte) {
            saved.blob[at + byte] ^= 1;
            EXPECT_FALSE(machine.LoadState(saved.blob.get(), saved.size)) << at << '+' << byte;
            saved.blob[at + byte] ^= 1;
        }
        at += size;
    }
    EXPECT_TRUE(machine.LoadState(saved.blob.get(), saved.size));
}

// Loads sixty damaged copies and calls `play` after each that was accepted; returns how many were.
inline int LoadDamaged(CEmuSystem& machine, const SAVED& saved, const std::function<void()>& play) {
    std::mt19937 random(1);
    const std::vector<uint32_t> sizes = AllPieceSizes(saved);
    int taken = 0;
    for (int trial = 0; trial < 60; ++trial) {
        std::vector<uint8_t> damaged = saved.Cut(saved.size);
        // One piece after the other, as a refused one hides those after it.
        const size_t piece = static_cast<size_t>(trial) % sizes.size();
        uint32_t at = 0;
        for (size_t i = 0; i < piece; ++i) {
            at += sizes[i];
        }
        for (uint32_t i = 5; i < sizes[piece]; ++i) {
            if (trial < 12) {
                damaged[at + i] = 0xFF;
            } else if (trial % 3 == 0 || random() % 32 == 0) {
                damaged[at + i] = static_cast<uint8_t>(random());
            }
        }
        if (machine.LoadState(damaged.data(), saved.size)) {
            play();
            ++taken;
        }
    }
    return taken;
}

// What every machine's states are held to. `start` makes a machine with its game, `play` (machine, from, count) runs
// frames with the same input for the same frame numbers.
inline constexpr int kFramesBefore = 37;

template <typename Start, typename Play>
void ExpectTheRunThatWentOn(Start&& start, Play&& play) {
    const auto machine = start();
    play(*machine, 0, kFramesBefore);
    const SAVED saved = Save(*machine);
    const auto continued = play(*machine, kFramesBefore, kFollowingFrames);
    ASSERT_FALSE(machine->ended) << EmuLastError();
    const auto other = start();
    ASSERT_TRUE(other->LoadState(saved.blob.get(), saved.size));
    ExpectSameFrames(continued, play(*other, kFramesBefore, kFollowingFrames));
    ExpectALivelyRun(continued);
}

// The fast loop may owe its chips clocks; the plain one, which `usePlainLoop` (machine) chooses, never does.
template <typename Start, typename UsePlainLoop, typename Play>
void ExpectFastAndPlainAlike(Start&& start, UsePlainLoop&& usePlainLoop, Play&& play) {
    const auto fast = start();
    const auto plain = start();
    usePlainLoop(*plain);
    for (int frame = 0; frame < 100; ++frame) {
        ExpectSameFrames(play(*fast, frame, 1), play(*plain, frame, 1));
        ASSERT_TRUE(Save(*fast) == Save(*plain)) << frame;
    }
}

template <typename Start, typename Play>
void ExpectFastAndPlainAlike(Start&& start, Play&& play) {
    ExpectFastAndPlainAlike(
        start, [](auto& machine) { machine.SetPlainLoop(true); }, play);
}

// `look` (machine) sees the machine before each of the frames.
template <typename Start, typename Play, typename Look>
void ExpectLoadsAtAnyFrame(Start&& start, Play&& play, int frames, Look&& look) {
    const auto machine = start();
    const auto other = start();
    for (int frame = 0; frame < frames; ++frame) {
        SCOPED_TRACE(frame);
        const SAVED saved = Save(*machine);
        look(*machine);
        const auto continued = play(*machine, frame, 1);
        ASSERT_TRUE(other->LoadState(saved.blob.get(), saved.size));
        ExpectSameFrames(continued, play(*other, frame, 1));
    }
}

// An older state, or one of a program with other sound settings: the last `soundPieces` pieces are missing, cut, or of
// a version that this program does not know. The pictures are those of the run that went on.
template <typename Start, typename Play>
void ExpectLoadsWithoutItsSound(Start&& start, Play&& play, size_t soundPieces) {
    const auto machine = start();
    play(*machine, 0, kFramesBefore);
    const SAVED saved = Save(*machine);
    const std::vector<uint32_t> sizes = AllPieceSizes(saved);
    uint32_t chips = saved.size;
    for (size_t i = 0; i < soundPieces; ++i) {
        chips -= sizes[sizes.size() - 1 - i];
    }
    std::vector<std::vector<uint8_t>> states;
    for (const uint32_t length : {chips, chips + 3, chips + 40, saved.size - 1}) {
        states.push_back(saved.Cut(length));
    }
    for (const int version : {0, 1, 3, 255}) {
        states.push_back(saved.Cut(saved.size));
        states.back()[chips] = static_cast<uint8_t>(version);
    }
    const auto continued = play(*machine, kFramesBefore, 20);
    const auto other = start();
    for (size_t state = 0; state < states.size(); ++state) {
        play(*other, 0, 5);
        ASSERT_TRUE(
            other->LoadState(states[state].data(), static_cast<uint32_t>(states[state].size())))
            << state;
        const auto loaded = play(*other, kFramesBefore, 20);
        for (size_t i = 0; i < loaded.size(); ++i) {
            ASSERT_EQ(continued[i].picture, loaded[i].picture) << state << ", frame " << i;
        }
    }
}
