// States: at any step, in the middle of a DMA, and of whatever bytes.
#include "base/bytes.h"
#include "megadrive/md_vdp_random.h"
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

std::vector<uint8_t> Save(const MD_VDP& vdp) {
    std::vector<uint8_t> state(MdVdpStateSize());
    EXPECT_EQ(MdVdpSaveState(vdp, state.data()).At(), state.data() + state.size());
    return state;
}

uint32_t Load(MD_VDP& vdp, const std::vector<uint8_t>& state) {
    return MdVdpLoadState(vdp, state.data(), static_cast<uint32_t>(state.size()));
}

} // namespace

TEST(MdVdpState, IsAPieceOfTheCommonForm) {
    MdVdpRig rig;
    const std::vector<uint8_t> state = Save(*rig.vdp);
    const auto size = static_cast<uint32_t>(state.size());
    EXPECT_EQ(state[0], 1);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(&state[1]), size);
    std::vector<uint8_t> longer = state;
    longer.push_back(0);
    EXPECT_EQ(Load(*rig.vdp, longer), size);
    EXPECT_EQ(MdVdpLoadState(*rig.vdp, state.data(), size - 1), 0U);
    EXPECT_EQ(MdVdpLoadState(*rig.vdp, state.data(), 0), 0U);
    std::vector<uint8_t> other = state;
    other[0] = 2;
    EXPECT_EQ(Load(*rig.vdp, other), 0U);
    other = state;
    other[1] = static_cast<uint8_t>(other[1] + 1);
    EXPECT_EQ(Load(*rig.vdp, other), 0U);
}

TEST(MdVdpState, ARefusedOneChangesNothing) {
    MdVdpRig rig;
    Randomize(rig, 3);
    rig.RunTo(77, 77);
    const std::vector<uint8_t> before = Save(*rig.vdp);
    EXPECT_EQ(Load(*rig.vdp, std::vector<uint8_t>(before.size(), 0x55)), 0U);
    EXPECT_EQ(Save(*rig.vdp), before);
}

// At any moment: what the ports return and the picture shows from there on is the same.
TEST(MdVdpState, RestoredRunsAreTheSame) {
    for (uint32_t seed = 0; seed < 60; ++seed) {
        MdVdpRig first;
        Randomize(first, seed);
        std::mt19937 random(seed);
        for (uint32_t i = 0; i < 50; ++i) {
            MdVdpRun(*first.vdp, static_cast<uint32_t>(random()) % 9000 / 7 * 7);
            (void)Access(first, random);
        }
        MdVdpRig second;
        const std::vector<uint8_t> state = Save(*first.vdp);
        ASSERT_EQ(Load(*second.vdp, state), state.size());
        ASSERT_EQ(Save(*second.vdp), state) << seed;
        second.pixels = first.pixels;
        second.stall = first.stall;
        second.zInt = first.zInt;
        first.irqs.clear();
        first.reads.clear();
        second.irqs.clear();
        std::mt19937 firstAccess(seed);
        std::mt19937 secondAccess(seed);
        for (uint32_t i = 0; i < 300; ++i) {
            const uint32_t clocks = static_cast<uint32_t>(random()) % 700;
            for (uint32_t clock = 0; clock < clocks; ++clock) {
                MdVdpTick(*first.vdp);
                MdVdpTick(*second.vdp);
            }
            ASSERT_EQ(Access(first, firstAccess), Access(second, secondAccess)) << seed;
        }
        ASSERT_EQ(first.irqs, second.irqs) << seed;
        ASSERT_EQ(first.reads, second.reads) << seed;
        ASSERT_EQ(first.stall, second.stall) << seed;
        ASSERT_EQ(first.pixels, second.pixels) << seed;
        ASSERT_EQ(Save(*first.vdp), Save(*second.vdp)) << seed;
    }
}

TEST(MdVdpState, RestoresInTheMiddleOfADma) {
    MdVdpRig first;
    first.Setup(true);
    first.Reg(1, 0x54);
    first.Reg(19, 100);
    first.Reg(20, 0);
    first.Reg(21, 0);
    first.Reg(22, 0x10);
    first.Reg(23, 0);
    first.Command(0x21, 0x8000);
    first.RunTo(first.vdp->line + 2, 60); // after slot 59: an odd number of halves
    first.Control(0x8712);
    EXPECT_EQ(first.vdp->dmaState, kMdVdpDmaBus);
    MdVdpRig second;
    ASSERT_EQ(Load(*second.vdp, Save(*first.vdp)), MdVdpStateSize());
    second.stall = first.stall;
    first.reads.clear();
    for (MdVdpRig* rig : {&first, &second}) {
        rig->RunTo(20, 0);
        EXPECT_EQ(rig->stall, 0U);
        EXPECT_EQ(rig->vdp->dmaState, 0U);
        EXPECT_EQ(rig->vdp->regs[7], 0x12);
        EXPECT_EQ(rig->WordAt(0x8000 + 99 * 2), 0x1000U + 99);
    }
    EXPECT_EQ(first.reads, second.reads);
    EXPECT_EQ(Save(*first.vdp), Save(*second.vdp));
}

// Decrementing the lowest number would overflow.
TEST(MdVdpState, ALineCounterOutOfItsRangeComesBackIntoIt) {
    MdVdpRig rig;
    for (const int32_t counter : {std::numeric_limits<int32_t>::min(), -2, 256, 1 << 30}) {
        rig.vdp->hCounter = counter;
        ASSERT_EQ(Load(*rig.vdp, Save(*rig.vdp)), MdVdpStateSize());
        EXPECT_GE(rig.vdp->hCounter, 0);
        EXPECT_LE(rig.vdp->hCounter, 255);
        rig.RunTo(3, 0);
    }
}

// Random bytes: counters and indexes are brought back into range, and the chip runs on.
TEST(MdVdpState, AnyBytesAreSafe) {
    std::mt19937 random(1);
    for (uint32_t trial = 0; trial < 60; ++trial) {
        MdVdpRig rig;
        std::vector<uint8_t> state = Save(*rig.vdp);
        std::generate(state.begin() + 5, state.end(),
                      [&] { return trial == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(random()); });
        ASSERT_EQ(Load(*rig.vdp, state), state.size());
        const MD_VDP& vdp = *rig.vdp;
        ASSERT_LT(vdp.hCount, vdp.h40 != 0 ? 422U : 342U);
        ASSERT_LT(vdp.line, 262U);
        ASSERT_LT(vdp.vCount, 262U);
        ASSERT_LE(vdp.outX, 320U);
        ASSERT_LE(vdp.fifoCount, kMdVdpFifoRoom);
        ASSERT_LE(vdp.dmaState, 4U);
        ASSERT_LE(vdp.border, 16U);
        ASSERT_TRUE(vdp.rowOffset == kMdVdpNoRow || vdp.rowOffset + 320 <= kMdVdpPixels);
        ASSERT_LE(*std::max_element(vdp.layerCode.begin(), vdp.layerCode.end()), 8);
        ASSERT_LT(*std::max_element(vdp.cram.begin(), vdp.cram.end()), 512);
        ASSERT_LT(*std::max_element(vdp.planeALine.begin(), vdp.planeALine.end()), 512);
        ASSERT_LT(*std::max_element(vdp.backdropLine.begin(), vdp.backdropLine.end()), 512);
        for (uint32_t i = 0; i < 300; ++i) {
            (void)Access(rig, random);
            MdVdpRun(*rig.vdp, 2100);
            rig.Steps(200);
        }
        EXPECT_LE(rig.Finish(), 262U * 422);
    }
}
