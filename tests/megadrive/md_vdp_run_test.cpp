// Many steps at once against the same number of single ones.
#include "megadrive/md_vdp_random.h"
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace {

std::vector<uint8_t> Save(const MD_VDP& vdp) {
    std::vector<uint8_t> state(MdVdpStateSize());
    EXPECT_EQ(MdVdpSaveState(vdp, state.data()).At(), state.data() + state.size());
    return state;
}

} // namespace

TEST(MdVdpRun, IsTheSameAsSingleClocks) {
    for (uint32_t seed = 0; seed < 24; ++seed) {
        MdVdpRig many;
        MdVdpRig single;
        Randomize(many, seed);
        Randomize(single, seed);
        // The loops with vectors against those without; in every fourth run neither has any.
        single.vdp->wide = 0;
        if (seed % 4 == 3) {
            many.vdp->wide = 0;
        }
        std::mt19937 random(seed);
        std::mt19937 manyAccess(seed);
        std::mt19937 singleAccess(seed);
        // From no access in many lines to one every few dots.
        const uint32_t longest = seed % 3 == 0 ? 3000 : seed % 3 == 1 ? 150 : 12;
        const uint32_t trials = seed % 3 == 0 ? 300 : 6000;
        for (uint32_t trial = 0; trial < trials; ++trial) {
            const uint32_t clocks = 1 + static_cast<uint32_t>(random()) % longest;
            MdVdpRun(*many.vdp, clocks * 7);
            for (uint32_t clock = 0; clock < clocks; ++clock) {
                single.vdp->spriteLines.key = 0; // forgets what it knows of the sprite list
                MdVdpTick(*single.vdp);
            }
            ASSERT_EQ(many.vdp->hCount, single.vdp->hCount) << seed << " " << trial;
            ASSERT_EQ(many.vdp->stepDebt, single.vdp->stepDebt) << seed << " " << trial;
            ASSERT_EQ(Access(many, manyAccess), Access(single, singleAccess))
                << seed << " " << trial;
            ASSERT_EQ(many.stall, single.stall);
            ASSERT_EQ(many.zInt, single.zInt);
            if (trial % 97 == 0 || longest == 3000) {
                ASSERT_EQ(Save(*many.vdp), Save(*single.vdp)) << seed << " " << trial;
                ASSERT_EQ(many.pixels, single.pixels) << seed << " " << trial;
            }
        }
        EXPECT_EQ(many.irqs, single.irqs);
        EXPECT_EQ(many.reads, single.reads);
        EXPECT_EQ(Save(*many.vdp), Save(*single.vdp)) << seed;
        EXPECT_EQ(many.pixels, single.pixels) << seed;
    }
}

// Runs the clocks in which the VDP promises to touch only itself. The machine is unchanged after them.
TEST(MdVdpRun, NothingOfTheMachineChangesBeforeTheEventTold) {
    uint32_t promised = 0;
    for (uint32_t seed = 0; seed < 8; ++seed) {
        MdVdpRig rig;
        Randomize(rig, seed);
        std::mt19937 random(seed);
        for (uint32_t trial = 0; trial < 3000; ++trial) {
            (void)Access(rig, random);
            rig.irqs.clear();
            rig.reads.clear();
            rig.vdp->frameDone = 0;
            const uint32_t stall = rig.stall;
            const uint32_t zInt = rig.zInt;
            uint32_t clocks = MdVdpClocksToEvent(*rig.vdp) / 7;
            // Of the promises over many lines a part is enough.
            clocks = trial % 32 == 0 ? clocks : std::min(clocks, 600U);
            promised += clocks;
            for (; clocks != 0; --clocks) {
                MdVdpTick(*rig.vdp);
            }
            ASSERT_TRUE(rig.irqs.empty()) << seed << " " << trial;
            ASSERT_TRUE(rig.reads.empty()) << seed << " " << trial;
            ASSERT_EQ(rig.vdp->frameDone, 0U);
            ASSERT_EQ(rig.stall, stall);
            ASSERT_EQ(rig.zInt, zInt);
            for (uint32_t i = static_cast<uint32_t>(random()) % 40; i != 0; --i) {
                MdVdpTick(*rig.vdp);
            }
        }
    }
    EXPECT_GT(promised, 50000U); // it isn't 0 all the time
}

TEST(MdVdpRun, PromisesUpToWhatIsSeenOfALine) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.RunTo(20, 100);
    rig.vdp->stepDebt = -3;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), kMdVdpLineClocks * (224 - 20) - 100 * 8 + 3)
        << "the line in which the blank begins";
    rig.vdp->regs[0] |= 0x10;
    rig.vdp->hCounter = 7;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), kMdVdpLineClocks * 7 - 100 * 8 + 3)
        << "the seventh line after this one";
    rig.vdp->regs[10] = 3;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), kMdVdpLineClocks * 4 - 100 * 8 + 3)
        << "the counter may be reloaded";
    rig.vdp->regs[10] = 255;
    rig.vdp->hCounter = 1;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), kMdVdpLineClocks - 100 * 8 + 3) << "not on this line";
    rig.vdp->hCounter = 0;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), (366U - 100) * 8 + 3);
    rig.vdp->regs[0] = 0;
    rig.vdp->stepDebt = 0;
    rig.RunTo(21, 10);
    rig.vdp->stepDebt = 0;
    rig.zInt = 1;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), (52U - 10) * 8) << "the Z80's line falls";
    rig.zInt = 0;
    rig.RunTo(224, 10);
    rig.vdp->stepDebt = 0;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), (52U - 10) * 8) << "the blank begins";
    rig.RunTo(261, 367);
    rig.vdp->stepDebt = 0;
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), (397U - 367) * 8 + 22 * 2) << "373 to 394 are longer";
    rig.Control(0x4000);
    rig.Control(0);
    for (uint32_t i = 0; i < 5; ++i) {
        rig.Data(0);
    }
    EXPECT_EQ(MdVdpClocksToEvent(*rig.vdp), 0U);
}
