// What the tests of saved states share, for any machine.
#pragma once

#include "base/bytes.h"
#include "machine/chip_sound.h"
#include "machine/emu_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

// Frames of a run behind a state. Instrumented, a tenth of it tells of bytes out of bounds just as well.
#ifdef OMBRELUNE_SANITIZED
inline constexpr int kFollowingFrames = 60;
#else
inline constexpr int kFollowingFrames = 600;
#endif

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
    // A copy of just this length, so that a read past its end is seen by the sanitizer.
    [[nodiscard]] std::vector<uint8_t> Cut(uint32_t length) const {
        return {blob.get(), blob.get() + length};
    }
};

inline SAVED Save(CEmuSystem& machine) {
    SAVED saved;
    saved.blob = machine.SaveState(saved.size);
    return saved;
}

// Of all pieces, the sound's too.
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

inline void ExpectSameFrames(const std::vector<FRAME_RESULT>& one,
                             const std::vector<FRAME_RESULT>& other) {
    ASSERT_EQ(one.size(), other.size());
    for (size_t i = 0; i < one.size(); ++i) {
        ASSERT_EQ(one[i].picture, other[i].picture) << i;
        ASSERT_EQ(one[i].pairs, other[i].pairs) << i;
        ASSERT_EQ(one[i].sound, other[i].sound) << i;
    }
}

// That a run is no still picture and no even tone, so that comparing it tells something.
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

// A state that ends in the middle of one of these pieces, which stand at its beginning, or behind its first
// bytes. `fits` says which of the cuts are a state all the same.
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

// Loads sixty damaged copies and calls `play` behind each that was taken; gives how many were.
inline int LoadDamaged(CEmuSystem& machine, const SAVED& saved, const std::function<void()>& play) {
    std::mt19937 random(1);
    const std::vector<uint32_t> sizes = AllPieceSizes(saved);
    int taken = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<uint8_t> damaged = saved.Cut(saved.size);
        // One piece after the other, as a refused one hides those behind it.
        const size_t piece = static_cast<size_t>(round) % sizes.size();
        uint32_t at = 0;
        for (size_t i = 0; i < piece; ++i) {
            at += sizes[i];
        }
        for (uint32_t i = 5; i < sizes[piece]; ++i) {
            if (round < 12) {
                damaged[at + i] = 0xFF;
            } else if (round % 3 == 0 || random() % 32 == 0) {
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
