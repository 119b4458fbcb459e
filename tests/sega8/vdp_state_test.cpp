// States: at any dot, and of any bytes.
#include "base/bytes.h"
#include "sega8/vdp.h"
#include "sega8/vdp_rig.h"
#include "sega8/vdp_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace {

void Randomize(VdpRig& rig, std::mt19937& random) {
    for (uint8_t& byte : rig.vram) {
        byte = static_cast<uint8_t>(random());
    }
}

void StartChip(VdpRig& rig, uint32_t reg0, uint32_t reg1) {
    std::mt19937 random(reg0 * 256 + reg1);
    Randomize(rig, random);
    const uint32_t values[11] = {reg0, reg1, 0xFF, 0xFF, 0x03, 0xFF, 0xFF, 5, 3, 77, 9};
    for (uint32_t i = 0; i < 11; ++i) {
        rig.Reg(i, values[i]);
    }
    for (uint32_t i = 0; i < 64; ++i) {
        rig.Colour(i, random() & 255);
    }
}

std::vector<uint8_t> Save(const VDP& vdp) {
    std::vector<uint8_t> state(VdpStateSize());
    EXPECT_EQ(VdpSaveState(vdp, state.data()).At(), state.data() + state.size());
    return state;
}

// The offset of a field in a state: the first byte that differs after `change` to its lowest byte.
size_t OffsetOf(void (*change)(VDP& vdp)) {
    VdpRig rig;
    const std::vector<uint8_t> before = Save(rig.vdp);
    change(rig.vdp);
    const std::vector<uint8_t> after = Save(rig.vdp);
    const auto differ = std::mismatch(before.begin(), before.end(), after.begin());
    return static_cast<size_t>(differ.first - before.begin());
}

// One more frame, with accesses of a processor.
void Play(VdpRig& rig) {
    rig.Address(1, 0x0400);
    VdpDataWrite(rig.vdp, 0x3C);
    rig.Finish();
}

void CompareThreeFrames(uint32_t variant, bool pal, uint32_t reg0, uint32_t reg1,
                        const std::vector<uint32_t>& moments) {
    for (const uint32_t moment : moments) {
        VdpRig first(variant, pal);
        StartChip(first, reg0, reg1);
        first.Finish();
        first.Ticks(moment);
        first.Address(1, 0x0200);
        VdpDataWrite(first.vdp, 0xA5);
        first.Ticks(moment % 7);
        VdpRig second(variant, pal);
        const std::vector<uint8_t> state = Save(first.vdp);
        ASSERT_EQ(VdpLoadState(second.vdp, state.data(), VdpStateSize()), VdpStateSize());
        second.vram = first.vram;
        second.vdp.vram = second.vram.data();
        second.pixels = first.pixels;
        VdpBeginFrame(second.vdp, second.pixels.data(), kRigWidth);
        EXPECT_EQ(second.irq, first.irq);
        for (uint32_t frame = 0; frame < 3; ++frame) {
            Play(first);
            Play(second);
            ASSERT_EQ(first.pixels, second.pixels) << moment << " " << frame;
        }
        ASSERT_EQ(Save(first.vdp), Save(second.vdp)) << moment;
        ASSERT_EQ(first.vram, second.vram) << moment;
    }
}

std::vector<uint32_t> Every(uint32_t first, uint32_t step, uint32_t end) {
    std::vector<uint32_t> moments;
    for (; first < end; first += step) {
        moments.push_back(first);
    }
    return moments;
}

} // namespace

TEST(VdpState, IsAPieceOfTheCommonForm) {
    VdpRig rig;
    const std::vector<uint8_t> state = Save(rig.vdp);
    EXPECT_EQ(state[0], 1);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(&state[1]), state.size());
    std::vector<uint8_t> longer = state;
    longer.push_back(0);
    const auto size = static_cast<uint32_t>(state.size());
    EXPECT_EQ(VdpLoadState(rig.vdp, longer.data(), size + 1), size);
    EXPECT_EQ(VdpLoadState(rig.vdp, state.data(), size - 1), 0U);
    EXPECT_EQ(VdpLoadState(rig.vdp, state.data(), 0), 0U);
    std::vector<uint8_t> other = state;
    other[0] = 2;
    EXPECT_EQ(VdpLoadState(rig.vdp, other.data(), size), 0U);
    other = state;
    other[1] = static_cast<uint8_t>(other[1] + 1);
    EXPECT_EQ(VdpLoadState(rig.vdp, other.data(), size), 0U);
}

TEST(VdpState, RestoresAtEveryDotOfALine) {
    CompareThreeFrames(kVdpSecond, false, 0x24, 0x63, Every(100 * 684, 26, 101 * 684));
}

TEST(VdpState, RestoresAllOverAFrame) {
    CompareThreeFrames(kVdpSecond, false, 0x14, 0x62, Every(0, 7919, 262 * 684));
    CompareThreeFrames(kVdpSecond, true, 0x06, 0x68, Every(5, 30011, 313 * 684));
    CompareThreeFrames(kVdpFirst, false, 0x04, 0x60, Every(11, 30011, 262 * 684));
    CompareThreeFrames(kVdpGameGear, false, 0x06, 0x70, Every(17, 30011, 262 * 684));
}

TEST(VdpState, RestoresInTheOlderModes) {
    CompareThreeFrames(kVdpFirst, false, 0x00, 0x62, Every(3, 30011, 262 * 684));
    CompareThreeFrames(kVdpSecond, false, 0x00, 0x70, Every(7, 30011, 262 * 684));
    CompareThreeFrames(kVdpSecond, false, 0x02, 0x61, Every(70 * 684, 40, 71 * 684));
}

// Nothing may be accessed out of bounds, which the sanitizers check, and the frame must end.
TEST(VdpState, ArbitraryBytesStayInBounds) {
    std::mt19937 random(1);
    for (uint32_t trial = 0; trial < 60; ++trial) {
        VdpRig rig(trial % 3, (trial & 1) != 0);
        rig.vdp.secondChip = trial % 5 == 0;
        Randomize(rig, random);
        std::vector<uint8_t> state = Save(rig.vdp);
        for (size_t i = 5; i < state.size(); ++i) {
            state[i] = static_cast<uint8_t>(trial == 0 ? 255U : random());
        }
        ASSERT_NE(VdpLoadState(rig.vdp, state.data(), VdpStateSize()), 0U);
        VdpBeginFrame(rig.vdp, rig.pixels.data(), kRigWidth);
        uint32_t ticks = 0;
        while (!rig.vdp.frameDone) {
            VdpTick(rig.vdp);
            ASSERT_LE(++ticks, 314U * 684);
        }
        VdpBeginFrame(rig.vdp, rig.pixels.data(), kRigWidth);
        (void)VdpDataRead(rig.vdp);
        (void)VdpVCounter(rig.vdp);
        rig.Finish();
        for (size_t i = size_t{240} * kRigWidth; i < rig.pixels.size(); ++i) {
            ASSERT_EQ(rig.pixels[i], kUntouched);
        }
    }
}

// The kinds in the pipeline follow from the place in the slot list, so a state cannot set wrong
// ones. For slot 0 they come from the line before.
TEST(VdpState, KindsOnTheirWayAreThoseOfTheList) {
    const size_t lastKind = OffsetOf([](VDP& vdp) { vdp.lastKind ^= 1; });
    const size_t nextKind = OffsetOf([](VDP& vdp) { vdp.nextKind ^= 1; });
    struct LIST_ROW {
        uint32_t reg0;
        uint32_t reg1;
        uint32_t line;
    };
    for (const LIST_ROW& row : {
             LIST_ROW{0x04, 0x60, 100},
             LIST_ROW{0x04, 0x60, 200},
             LIST_ROW{0x00, 0x60, 100},
             LIST_ROW{0x00, 0x20, 100}
    }) {
        VdpRig rig;
        StartChip(rig, row.reg0, row.reg1);
        rig.Frame();
        rig.RunTo(row.line, 0);
        for (uint32_t dot = 0; dot < kVdpDots; ++dot, rig.Ticks(2)) {
            const std::vector<uint8_t> state = Save(rig.vdp);
            for (const uint8_t kind : {uint8_t{0}, uint8_t{16}, uint8_t{17}, uint8_t{255}}) {
                std::vector<uint8_t> other = state;
                other[lastKind] = other[nextKind] = kind;
                VdpRig loaded;
                ASSERT_NE(VdpLoadState(loaded.vdp, other.data(), VdpStateSize()), 0U);
                if (dot >= 2) {
                    ASSERT_EQ(Save(loaded.vdp), state) << dot << " kind " << unsigned{kind};
                } else {
                    EXPECT_EQ(loaded.vdp.lastKind, kSlotNone);
                }
            }
        }
    }
}

// VdpRun may not depend on other fields of a state than VdpTick does.
TEST(VdpState, ArbitraryBytesRunAlikeInOneGoAndTickByTick) {
    const size_t dotCounter = OffsetOf([](VDP& vdp) { vdp.dotCounter ^= 1; });
    std::mt19937 random(2);
    for (uint32_t counter = 0; counter < kVdpTicksPerLine; ++counter) {
        VdpRig plain(counter % 3, (counter & 4) != 0);
        VdpRig fast(counter % 3, (counter & 4) != 0);
        plain.vdp.secondChip = fast.vdp.secondChip = counter % 5 == 0;
        Randomize(plain, random);
        std::copy(plain.vram.begin(), plain.vram.end(), fast.vram.begin());
        std::vector<uint8_t> state = Save(plain.vdp);
        for (size_t i = 5; i < state.size(); ++i) {
            state[i] = static_cast<uint8_t>(random());
        }
        StoreLittleEndian<uint32_t>(&state[dotCounter], counter);
        ASSERT_NE(VdpLoadState(plain.vdp, state.data(), VdpStateSize()), 0U);
        ASSERT_NE(VdpLoadState(fast.vdp, state.data(), VdpStateSize()), 0U);
        const std::vector<uint8_t> loaded = Save(plain.vdp);
        ASSERT_EQ(LoadLittleEndian<uint32_t>(&loaded[dotCounter]), counter);
        for (const uint32_t ticks : {700U, 3U, 1501U}) {
            plain.Ticks(ticks);
            VdpRun(fast.vdp, ticks);
            ASSERT_EQ(Save(plain.vdp), Save(fast.vdp)) << counter << " " << ticks;
            ASSERT_EQ(plain.irq, fast.irq);
        }
        ASSERT_EQ(plain.vram, fast.vram) << counter;
        ASSERT_EQ(plain.pixels, fast.pixels) << counter;
    }
}
