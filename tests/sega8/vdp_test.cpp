// Ports, counters, interrupts and the geometry of a frame.
#include "machine/emu_system.h"
#include "sega8/vdp.h"
#include "sega8/vdp_rig.h"
#include "sega8/vdp_slots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t kLineTicks = 684;

uint32_t CountSlots(VdpSlotListNumber list, uint8_t kind) {
    uint32_t count = 0;
    for (size_t slot = 0; slot < kVdpSlots; ++slot) {
        count += kVdpSlotLists[list][slot * 2] == kind ? 1U : 0U;
    }
    return count;
}

// The values of a counter from pairs first, last.
std::vector<uint8_t> Sequence(const std::vector<std::pair<uint32_t, uint32_t>>& ranges) {
    std::vector<uint8_t> values;
    for (const auto& [first, last] : ranges) {
        for (uint32_t value = first; value <= last; ++value) {
            values.push_back(static_cast<uint8_t>(value));
        }
    }
    return values;
}

// Register 1 of mode 4 with the display on, for a height; register 0 has bit 1 set for the tall
// ones.
void SetHeight(VdpRig& rig, uint32_t height, uint32_t more = 0) {
    rig.Reg(0, height == 192 ? 0x04 : 0x06);
    rig.Reg(1, (height == 240 ? 0x48U : height == 224 ? 0x50U : 0x40U) | more);
}

// Runs to the next frame flag; returns the ticks, or 0 if a whole frame has no flag.
uint32_t TicksToFrameFlag(VdpRig& rig) {
    (void)VdpStatusRead(rig.vdp);
    for (uint32_t ticks = 1; ticks <= 313 * kLineTicks; ++ticks) {
        VdpTick(rig.vdp);
        if (rig.vdp.frameInterrupt) {
            return ticks;
        }
    }
    return 0;
}

std::vector<uint8_t> VCounterOfAFrame(bool pal, uint32_t height) {
    VdpRig rig(kVdpSecond, pal);
    rig.StartMode4();
    SetHeight(rig, height);
    std::vector<uint8_t> values;
    rig.Finish();
    for (uint32_t line = 0; line < rig.vdp.totalLines; ++line) {
        rig.RunTo(line, 100);
        values.push_back(VdpVCounter(rig.vdp));
    }
    return values;
}

} // namespace

TEST(VdpSlots, ListsHoldAsManyAccessesAsTheirFetchesNeed) {
    EXPECT_EQ(CountSlots(kVdpMode4Active, kSlotFree), 19U);
    EXPECT_EQ(CountSlots(kVdpMode4Active, kSlotName4), 32U);
    EXPECT_EQ(CountSlots(kVdpMode4Active, kSlotTileHigh), 32U);
    for (const VdpSlotListNumber list : {kVdpMode4Active, kVdpMode4Blank}) {
        EXPECT_EQ(CountSlots(list, kSlotTestY4), 32U); // two sprites each
        EXPECT_EQ(CountSlots(list, kSlotSprite4), 8U);
        EXPECT_EQ(CountSlots(list, kSlotSprite4High), 8U);
    }
    // 171 slots without 32 blank ones, 32 Y words and 24 sprite words.
    EXPECT_EQ(CountSlots(kVdpMode4Blank, kSlotFree), 83U);
    // 171 slots without 96 for cells, 32 Y bytes and 24 sprite bytes.
    EXPECT_EQ(CountSlots(kVdpLegacyActive, kSlotFree), 19U);
    EXPECT_EQ(CountSlots(kVdpLegacyBlank, kSlotFree), 83U);
    for (const VdpSlotListNumber list : {kVdpLegacyActive, kVdpLegacyBlank}) {
        EXPECT_EQ(CountSlots(list, kSlotTestY), 32U);
        for (uint8_t kind = kSlotSpriteY; kind <= kSlotSpriteRight; kind += 2) {
            EXPECT_EQ(CountSlots(list, kind), 4U) << unsigned{kind};
        }
    }
}

TEST(VdpSlots, WordCyclesAreModeFourFetchesOnly) {
    const std::map<uint8_t, uint8_t> words = {
        {kSlotName4,       0},
        {kSlotTileLow,     0},
        {kSlotTileHigh,    0},
        {kSlotTestY4,      0},
        {kSlotSprite4,     0},
        {kSlotSprite4Low,  0},
        {kSlotSprite4High, 0}
    };
    for (const VdpSlotList& list : kVdpSlotLists) {
        for (size_t slot = 0; slot < kVdpSlots; ++slot) {
            const uint8_t kind = list[slot * 2];
            EXPECT_EQ(list[slot * 2 + 1], words.count(kind) != 0 ? 0 : 1) << slot;
        }
    }
}

TEST(VdpSlots, PlacesFollowTheTimetable) {
    const VdpSlotList& active = kVdpSlotLists[kVdpMode4Active];
    EXPECT_EQ(active[0], kSlotName4);
    EXPECT_EQ(active[2], kSlotFree);
    EXPECT_EQ(active[8 + 2], kSlotTestY4); // second column
    EXPECT_EQ(active[32 + 2], kSlotFree);  // second group
    EXPECT_EQ(active[256], kSlotFree);     // after the columns
    EXPECT_EQ(active[258], kSlotSprite4);
    EXPECT_EQ(active[324], kSlotTestY4); // first search slot of the next line
    const VdpSlotList& legacy = kVdpSlotLists[kVdpLegacyActive];
    EXPECT_EQ(legacy[2 * 142], kSlotSpriteY); // third sprite
    EXPECT_EQ(legacy[2 * 143], kSlotSpriteX);
    EXPECT_EQ(legacy[2 * 144], kSlotFree);
    EXPECT_EQ(legacy[2 * 149], kSlotSpriteNumber);
    EXPECT_EQ(kVdpSlotLists[kVdpLegacyBlank][2 * 136], kSlotFree);
}

TEST(VdpReset, SetsTheStartValues) {
    VdpRig rig;
    rig.StartMode4();
    VdpReset(rig.vdp);
    const uint8_t expected[16] = {0x36, 0xA0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFB, 0, 0, 0, 0xFF};
    for (uint32_t i = 0; i < 11; ++i) {
        EXPECT_EQ(rig.vdp.regs[i], expected[i]) << i;
    }
    for (const uint32_t colour : rig.vdp.palette) {
        EXPECT_EQ(colour, 0xFF000000U);
    }
    EXPECT_EQ(rig.vdp.mode, 0);
    EXPECT_EQ(rig.vdp.activeHeight, 192U);
}

TEST(VdpPorts, FirstControlByteReachesTheAddressAtOnceOnLaterChipsOnly) {
    for (const uint32_t variant : {kVdpFirst, kVdpSecond, kVdpGameGear}) {
        VdpRig rig(variant);
        rig.Address(1, 0x2345);
        VdpControlWrite(rig.vdp, 0x99);
        EXPECT_EQ(rig.vdp.addr, variant == kVdpFirst ? 0x2345 : 0x2399) << variant;
        EXPECT_TRUE(rig.vdp.latchFull);
    }
}

TEST(VdpPorts, AddressAndCodeComeFromBothBytes) {
    VdpRig rig;
    rig.Address(1, 0x3FFF);
    EXPECT_EQ(rig.vdp.code, 1);
    EXPECT_EQ(rig.vdp.addr, 0x3FFF);
    VdpDataWrite(rig.vdp, 0x11);
    EXPECT_EQ(rig.vdp.addr, 0);
    rig.Address(0, 0x1000);
    EXPECT_EQ(rig.vdp.addr, 0x1001); // the read moves it
    rig.Address(3, 0x1000);
    EXPECT_EQ(rig.vdp.addr, 0x1000);
}

TEST(VdpPorts, DataAndStatusAccessesForgetTheFirstControlByte) {
    VdpRig rig;
    VdpControlWrite(rig.vdp, 0x12);
    VdpDataWrite(rig.vdp, 0);
    EXPECT_FALSE(rig.vdp.latchFull);
    VdpControlWrite(rig.vdp, 0x12);
    (void)VdpDataRead(rig.vdp);
    EXPECT_FALSE(rig.vdp.latchFull);
    VdpControlWrite(rig.vdp, 0x12);
    (void)VdpStatusRead(rig.vdp);
    EXPECT_FALSE(rig.vdp.latchFull);
}

TEST(VdpPorts, RegistersElevenToFifteenAreStored) {
    VdpRig rig;
    rig.Reg(15, 0x5A);
    EXPECT_EQ(rig.vdp.regs[15], 0x5A);
}

TEST(VdpPorts, WritesAndReadsGoThroughFreeSlots) {
    VdpRig rig;
    rig.RunTo(200, 0);
    rig.Address(1, 0x0123);
    for (const uint8_t value : {uint8_t{0xAB}, uint8_t{0xCD}}) {
        VdpDataWrite(rig.vdp, value);
        EXPECT_NE(rig.vram[value == 0xAB ? 0x123 : 0x124], value);
        rig.Ticks(120);
    }
    EXPECT_EQ(rig.vram[0x123], 0xAB);
    EXPECT_EQ(rig.vram[0x124], 0xCD);
    rig.Address(0, 0x0123);
    rig.Ticks(120);
    EXPECT_EQ(VdpDataRead(rig.vdp), 0xAB);
    rig.Ticks(120);
    EXPECT_EQ(VdpDataRead(rig.vdp), 0xCD);
}

TEST(VdpPorts, AWriteGoesToTheReadBufferToo) {
    VdpRig rig;
    rig.Address(1, 0x100);
    VdpDataWrite(rig.vdp, 0x77);
    EXPECT_EQ(VdpDataRead(rig.vdp), 0x77);
    rig.Address(3, 0);
    VdpDataWrite(rig.vdp, 0x3A);
    EXPECT_EQ(VdpDataRead(rig.vdp), 0x3A);
}

TEST(VdpPorts, AnAccessOnAnActiveLineWaitsForItsSlot) {
    VdpRig rig;
    rig.StartMode4();
    rig.Frame();
    rig.RunTo(10, 4); // the slot at dot 2 has passed, the next one is at dot 34
    rig.Address(1, 0x0100);
    VdpDataWrite(rig.vdp, 0x5A);
    rig.RunTo(10, 37); // the cycle of dot 34's slot runs at dot 37
    EXPECT_EQ(rig.vram[0x100], 0);
    rig.RunTo(10, 38);
    EXPECT_EQ(rig.vram[0x100], 0x5A);
}

TEST(VdpPorts, AnAccessIsDueAtItsThirdEvenDot) {
    VdpRig rig; // display off: slots 0, 1 and 2 are free
    rig.RunTo(200, 0);
    rig.RunTo(201, 0);
    rig.Address(1, 0x0100);
    VdpDataWrite(rig.vdp, 0x5A);
    rig.RunTo(201, 7); // even dots 0, 2, 4; address out at 5, data at 7
    EXPECT_EQ(rig.vram[0x100], 0);
    rig.RunTo(201, 8);
    EXPECT_EQ(rig.vram[0x100], 0x5A);
}

TEST(VdpPorts, StatusReadsLowBitsAsOnesAndClears) {
    VdpRig rig;
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x1F);
    rig.RunTo(194, 0);
    EXPECT_EQ(rig.irq, 1U); // register 1 starts with the frame interrupt on
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x9F);
    EXPECT_EQ(rig.irq, 0U);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x1F);
}

TEST(VdpPorts, AStatusReadIsIdleIfItChangesNothingAndFindsNoFlag) {
    for (uint32_t bits = 0; bits < 64; ++bits) {
        VdpRig rig;
        rig.vdp.status = static_cast<uint8_t>((bits & 3) << 6); // frame flag, overflow
        rig.vdp.lineInterrupt = (bits & 4) != 0;
        rig.vdp.frameInterrupt = (bits & 8) != 0;
        rig.vdp.latchFull = (bits & 16) != 0;
        rig.irq = bits >> 5;
        const auto save = [&] {
            std::vector<uint8_t> state(VdpStateSize());
            VdpSaveState(rig.vdp, state.data());
            state.push_back(static_cast<uint8_t>(rig.irq));
            return state;
        };
        const bool isIdle = VdpStatusReadIsIdle(rig.vdp);
        const std::vector<uint8_t> before = save();
        const uint32_t flags = VdpStatusRead(rig.vdp) & 0xE0U;
        EXPECT_EQ(isIdle, before == save() && flags == 0) << bits;
    }
}

TEST(VdpColours, SixBitsGiveEightyFiveAStep) {
    VdpRig rig;
    rig.Colour(3, 0x1B); // red 3, green 2, blue 1
    EXPECT_EQ(rig.vdp.palette[3], 0xFFFFAA55U);
    rig.Colour(32 + 5, 0x30);
    EXPECT_EQ(rig.vdp.palette[5], 0xFF0000FFU); // the address wraps at 32
}

TEST(VdpColours, GameGearColoursChangeWithTheSecondByte) {
    VdpRig rig(kVdpGameGear);
    rig.Address(3, 2);
    VdpDataWrite(rig.vdp, 0x5A);
    EXPECT_EQ(rig.vdp.palette[1], 0xFF000000U);
    VdpDataWrite(rig.vdp, 0x0C);
    EXPECT_EQ(rig.vdp.palette[1], 0xFFA050C0U);
    rig.Colour(64 + 63, 0x01); // wraps at 64; the odd byte takes the old even one again
    EXPECT_EQ(rig.vdp.palette[31], 0xFFA05010U);
}

TEST(VdpCounters, VCounterFollowsTheJumpTables) {
    EXPECT_EQ(VCounterOfAFrame(false, 192), Sequence({
                                                {0x00, 0xDA},
                                                {0xD5, 0xFF}
    }));
    EXPECT_EQ(VCounterOfAFrame(false, 224), Sequence({
                                                {0x00, 0xEA},
                                                {0xE5, 0xFF}
    }));
    EXPECT_EQ(VCounterOfAFrame(false, 240), Sequence({
                                                {0x00, 0xFF},
                                                {0x00, 0x05}
    }));
    for (const uint32_t height : {192U, 224U, 240U}) {
        EXPECT_EQ(VCounterOfAFrame(true, height), Sequence({
                                                      {0x00, 0xF2},
                                                      {0xBA, 0xFF}
        }))
            << height;
    }
}

TEST(VdpCounters, HCounterJumpsFrom93ToE9) {
    VdpRig rig;
    const std::vector<uint8_t> expected = Sequence({
        {0x00, 0x93},
        {0xE9, 0xFF}
    });
    ASSERT_EQ(expected.size(), 171U);
    rig.RunTo(20, 0);
    for (uint32_t dot = 0; dot < 342; ++dot) {
        EXPECT_EQ(VdpLatchH(rig.vdp), expected[dot / 2]) << dot;
        EXPECT_EQ(rig.vdp.hLatch, expected[dot / 2]);
        rig.Ticks(2);
    }
}

TEST(VdpCounters, BeamIsInThePictureOnItsDotsOnly) {
    VdpRig rig;
    uint32_t x = 0;
    uint32_t y = 0;
    rig.RunTo(20, 11);
    EXPECT_TRUE(VdpBeam(rig.vdp, x, y));
    EXPECT_EQ(x, 0U);
    EXPECT_EQ(y, 20U);
    rig.RunTo(20, 267);
    EXPECT_FALSE(VdpBeam(rig.vdp, x, y));
    rig.RunTo(192, 100);
    EXPECT_FALSE(VdpBeam(rig.vdp, x, y));
}

TEST(VdpInterrupts, FrameFlagComesWithLineHeightPlusOneAtDot318) {
    for (const bool pal : {false, true}) {
        for (const uint32_t height : {192U, 224U, 240U}) {
            VdpRig rig(kVdpSecond, pal);
            rig.StartMode4();
            SetHeight(rig, height, 0x20);
            while (rig.irq == 0) {
                VdpTick(rig.vdp);
            }
            EXPECT_EQ(rig.vdp.line, height + 1);
            EXPECT_EQ((rig.vdp.dotCounter - 1) / 2, 318U);
            rig.Ticks(200); // an interrupt handler's time
            EXPECT_EQ(VdpVCounter(rig.vdp), height + 1);
        }
    }
}

TEST(VdpInterrupts, FrameFlagComesOnceInTheLinesOfAFrame) {
    for (const bool pal : {false, true}) {
        for (const uint32_t height : {192U, 224U, 240U}) {
            VdpRig rig(kVdpSecond, pal);
            rig.StartMode4();
            SetHeight(rig, height);
            TicksToFrameFlag(rig);
            EXPECT_EQ(TicksToFrameFlag(rig), (pal ? 313U : 262U) * kLineTicks) << height;
        }
    }
}

// The flag is raised on the line that is one past the current height.
TEST(VdpInterrupts, FrameFlagFollowsAHeightThatChangesInMidFrame) {
    struct CHANGE_ROW {
        uint32_t from;
        uint32_t line; // on which the height changes
        uint32_t to;
        std::vector<uint32_t> flags; // lines of this frame that raise the flag
    };
    const std::vector<CHANGE_ROW> rows = {
        {192, 100, 224, {225}     },
        {224, 100, 192, {193}     },
        {240, 100, 224, {225}     },
        {192, 200, 224, {193, 225}}, // both in one frame
        {192, 240, 240, {193, 241}},
        {224, 200, 192, {}        }, // too late for the one and too early for the other
        {240, 230, 224, {}        }, // the same
    };
    for (const bool pal : {false, true}) {
        for (const CHANGE_ROW& row : rows) {
            VdpRig rig(kVdpSecond, pal);
            rig.StartMode4();
            SetHeight(rig, row.from);
            rig.Frame();
            (void)VdpStatusRead(rig.vdp); // the flag of the frame before
            rig.RunTo(row.line, 0);
            std::vector<uint32_t> flags;
            if (rig.vdp.frameInterrupt) {
                flags.push_back(row.from + 1);
            }
            (void)VdpStatusRead(rig.vdp);
            SetHeight(rig, row.to);
            while (!rig.vdp.frameDone) {
                VdpTick(rig.vdp);
                if (rig.vdp.frameInterrupt) {
                    flags.push_back(rig.vdp.line);
                    (void)VdpStatusRead(rig.vdp);
                }
            }
            EXPECT_EQ(flags, row.flags) << row.from << " " << row.line << " " << row.to;
        }
    }
}

TEST(VdpInterrupts, OneStatusReadClearsBothRequests) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(0, 0x14);
    rig.Reg(1, 0x60);
    rig.Reg(10, 192); // asks with line 192, one line before the frame flag
    rig.Frame();
    (void)VdpStatusRead(rig.vdp);
    rig.RunTo(193, 318);
    EXPECT_EQ(rig.irq, 1U);
    rig.Reg(0, 0x04); // either one alone holds the line
    EXPECT_EQ(rig.irq, 1U);
    rig.Reg(1, 0x40);
    EXPECT_EQ(rig.irq, 0U);
    rig.Reg(0, 0x14);
    EXPECT_EQ(rig.irq, 1U);
    rig.Reg(1, 0x60);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x9F);
    EXPECT_EQ(rig.irq, 0U);
    for (const uint32_t mask : {0x04U, 0x14U}) { // a mask keeps no old interrupt
        rig.Reg(0, mask);
        EXPECT_EQ(rig.irq, 0U);
    }
    rig.Reg(1, 0x40);
    rig.Reg(1, 0x60);
    EXPECT_EQ(rig.irq, 0U);
    rig.Ticks(kLineTicks * 60);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x1F);
    EXPECT_EQ(rig.irq, 0U);
}

// A status read clears a masked interrupt too.
TEST(VdpInterrupts, StatusReadForgetsAMaskedRequest) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(1, 0x60);
    rig.Reg(10, 0);
    rig.Frame();
    rig.RunTo(200, 0);
    EXPECT_EQ(rig.irq, 1U);
    (void)VdpStatusRead(rig.vdp);
    rig.Reg(0, 0x14);
    EXPECT_EQ(rig.irq, 0U);
}

TEST(VdpInterrupts, StatusReadInTheDotOfTheFlagFindsAndClearsIt) {
    VdpRig rig;
    rig.StartMode4();
    while (!rig.vdp.frameInterrupt) {
        VdpTick(rig.vdp);
    }
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x9F);
    EXPECT_FALSE(rig.vdp.frameInterrupt);
    rig.Ticks(kLineTicks * 3);
    EXPECT_EQ(VdpStatusRead(rig.vdp), 0x1F);
}

TEST(VdpInterrupts, TurningTheBitOnRaisesTheLineAtOnceAndOffDropsIt) {
    VdpRig rig;
    rig.StartMode4();
    rig.RunTo(200, 0);
    EXPECT_EQ(rig.irq, 0U);
    rig.Reg(1, 0x60);
    EXPECT_EQ(rig.irq, 1U);
    rig.Reg(1, 0x40);
    EXPECT_EQ(rig.irq, 0U);
    rig.Reg(10, 0);
    (void)VdpStatusRead(rig.vdp);
    rig.RunTo(20, 0);
    EXPECT_EQ(rig.irq, 0U);
    rig.Reg(0, 0x14);
    EXPECT_EQ(rig.irq, 1U);
    rig.Reg(0, 0x04);
    EXPECT_EQ(rig.irq, 0U);
}

// The counter steps with the V counter, from V = 0 to the line below the picture. Value n requests
// an interrupt at V = n, 2n + 1, 3n + 2 and so on; the frame flag is raised one line after the last
// line.
TEST(VdpInterrupts, LineCounterAsksAsTheVCounterBecomesItsLines) {
    for (const bool pal : {false, true}) {
        for (const uint32_t height : {192U, 224U, 240U}) {
            VdpRig rig(kVdpSecond, pal);
            rig.StartMode4();
            SetHeight(rig, height);
            rig.Reg(0, rig.vdp.regs[0] | 0x10U);
            for (uint32_t value = 0; value < 256; ++value) {
                rig.RunTo(height + 8, 0);
                rig.Reg(10, value);
                (void)VdpStatusRead(rig.vdp);
                std::vector<uint32_t> lines;
                for (uint32_t step = 0; step < rig.vdp.totalLines * kLineTicks; ++step) {
                    rig.Ticks(1);
                    if (rig.irq != 0) {
                        EXPECT_EQ((rig.vdp.dotCounter - 1) / 2, 318U);
                        EXPECT_FALSE(rig.vdp.frameInterrupt);
                        lines.push_back(rig.vdp.line);
                        (void)VdpStatusRead(rig.vdp);
                    }
                }
                std::vector<uint32_t> expected;
                for (uint32_t line = value; line <= height; line += value + 1) {
                    expected.push_back(line);
                }
                ASSERT_EQ(lines, expected) << height << " " << value;
            }
        }
    }
}

TEST(VdpInterrupts, LineHandlerReadsTheLineThatItAskedFor) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(0, 0x14);
    rig.Reg(10, 5);
    rig.Frame();
    (void)VdpStatusRead(rig.vdp);
    while (rig.irq == 0) {
        rig.Ticks(1);
    }
    rig.Ticks(200); // the time until a handler reads V
    EXPECT_EQ(VdpVCounter(rig.vdp), 5U);
}

TEST(VdpInterrupts, RegisterTenActsAtTheNextReload) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(0, 0x14);
    rig.Reg(10, 20);
    rig.Frame();
    rig.RunTo(10, 0);
    (void)VdpStatusRead(rig.vdp);
    rig.Reg(10, 3);
    std::vector<uint32_t> lines;
    while (rig.vdp.line < 40) {
        VdpTick(rig.vdp);
        if (rig.irq != 0) {
            lines.push_back(rig.vdp.line);
            (void)VdpStatusRead(rig.vdp);
        }
    }
    EXPECT_EQ(lines, (std::vector<uint32_t>{20, 24, 28, 32, 36, 40}));
}

TEST(VdpInterrupts, PauseRaisesNmiOnItsRisingEdge) {
    VdpRig rig;
    rig.vdp.pausePressed = true;
    rig.Ticks(kLineTicks);
    EXPECT_EQ(rig.nmi, 1U);
    rig.nmi = 0;
    rig.Frame();
    EXPECT_EQ(rig.nmi, 0U); // held
    rig.vdp.pausePressed = false;
    rig.Ticks(kLineTicks);
    rig.vdp.pausePressed = true;
    rig.Ticks(kLineTicks);
    EXPECT_EQ(rig.nmi, 1U);
}

// With 262 lines the border has 16 rows at 192 lines and none at 224, so lines after the change are
// drawn higher, over older rows; the V counter uses the other table at once.
TEST(VdpFrame, HeightThatChangesInMidFrameMovesTheRowsBelow) {
    VdpRig rig;
    rig.StartMode4();
    rig.SolidTile(1, 1);
    rig.SolidTile(2, 2);
    rig.Reg(2, 0xFD); // the table of 192 lines at 0x3000, the other one at 0x3700
    for (uint32_t column = 0; column < 32; ++column) {
        for (uint32_t row = 0; row < 28; ++row) {
            rig.Name(row, column, 1, 0x3000);
            rig.Name(row, column, 2, 0x3700);
        }
    }
    rig.Frame();
    std::fill(rig.pixels.begin(), rig.pixels.end(), kUntouched);
    rig.RunTo(100, 0);
    SetHeight(rig, 224);
    EXPECT_EQ(rig.vdp.pictureHeight, 224U);
    rig.RunTo(230, 100);
    EXPECT_EQ(VdpVCounter(rig.vdp), 230); // with 192 lines it would be 224
    while (!rig.vdp.frameDone) {
        VdpTick(rig.vdp);
    }
    // Rows 0 to 15 were the top border, drawn at the end of the frame before.
    EXPECT_EQ(rig.pixels[size_t{15} * kRigWidth], kUntouched);
    for (size_t row = 16; row < 224; ++row) {
        // Of 192 lines line 0 is at row 16 and line 99 at 115; of 224 lines line 100 is at row 100.
        EXPECT_EQ(rig.pixels[row * kRigWidth], SixBits(row < 100 ? 1 : 2)) << row;
    }
    EXPECT_EQ(rig.pixels[size_t{224} * kRigWidth], kUntouched);
}

struct Geometry {
    bool pal;
    uint32_t variant;
    uint32_t reg0;
    uint32_t reg1;
    uint32_t height;
    uint32_t border;
};

TEST(VdpFrame, GeometryFollowsHeightAndStandard) {
    const std::vector<Geometry> rows = {
        {false, 1, 0x04, 0x40, 192, 16},
        {false, 1, 0x06, 0x50, 224, 0 },
        {false, 1, 0x06, 0x48, 240, 0 },
        {false, 1, 0x06, 0x58, 240, 0 },
        {true,  1, 0x04, 0x40, 192, 24},
        {true,  1, 0x06, 0x50, 224, 8 },
        {true,  1, 0x06, 0x48, 240, 0 },
        {false, 0, 0x06, 0x50, 192, 16},
        {false, 0, 0x06, 0x48, 192, 16},
        {true,  0, 0x06, 0x50, 192, 24},
        {false, 2, 0x06, 0x50, 224, 0 },
        {false, 1, 0x04, 0x50, 192, 16},
        {false, 1, 0x02, 0x50, 192, 16},
    };
    for (const Geometry& row : rows) {
        VdpRig rig(row.variant, row.pal);
        rig.StartMode4();
        rig.Reg(0, row.reg0);
        rig.Reg(1, row.reg1);
        rig.Frame();
        EMU_VIDEO_FRAME frame{};
        VdpFinishFrame(rig.vdp, &frame);
        const uint32_t whole = row.height + 2 * row.border;
        const float wide = row.pal ? 352.0F : 288.0F;
        EXPECT_EQ(frame.width, 256U);
        EXPECT_EQ(frame.height, whole);
        EXPECT_EQ(frame.visibleX, 0U);
        EXPECT_EQ(frame.visibleWidth, 256U);
        EXPECT_EQ(frame.visibleY, row.border);
        EXPECT_EQ(frame.visibleHeight, row.height);
        EXPECT_FLOAT_EQ(frame.aspect, wide / static_cast<float>(whole));
        EXPECT_FLOAT_EQ(frame.visibleAspect, wide / static_cast<float>(row.height));
        EXPECT_NE(rig.pixels[whole * 256 - 1],
                  kUntouched); // every row is drawn, and none after them
        EXPECT_NE(rig.pixels[0], kUntouched);
    }
}

TEST(VdpFrame, LeftColumnBlankNarrowsTheVisibleWindow) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(0, 0x24);
    EMU_VIDEO_FRAME frame{};
    VdpFinishFrame(rig.vdp, &frame);
    EXPECT_EQ(frame.visibleX, 8U);
    EXPECT_EQ(frame.visibleWidth, 248U);
}

TEST(VdpFrame, HasItsLinesAndIsDoneOnce) {
    for (const bool pal : {false, true}) {
        VdpRig rig(kVdpSecond, pal);
        rig.Finish();
        uint32_t ticks = 0;
        while (!rig.vdp.frameDone) {
            VdpTick(rig.vdp);
            ++ticks;
        }
        EXPECT_EQ(ticks, kLineTicks * (pal ? 313U : 262U));
    }
}

TEST(VdpFrame, BordersShowTheBackdropAndNothingAfterThePictureIsDrawn) {
    VdpRig rig;
    rig.StartMode4();
    rig.Reg(7, 5);
    rig.Frame();
    for (uint32_t row = 0; row < 224; ++row) {
        const bool border = row < 16 || row >= 208;
        const uint32_t expected = border ? SixBits(21) : SixBits(0);
        EXPECT_EQ(rig.pixels[row * 256], expected) << row;
        EXPECT_EQ(rig.pixels[row * 256 + 255], expected) << row;
    }
    for (size_t i = size_t{224} * 256; i < rig.pixels.size(); ++i) {
        ASSERT_EQ(rig.pixels[i], kUntouched);
    }
}

TEST(VdpFrame, WithoutAPictureNothingIsDrawn) {
    VdpRig rig;
    rig.StartMode4();
    VdpBeginFrame(rig.vdp, nullptr, 0);
    rig.Ticks(kLineTicks * 262);
    for (const uint32_t pixel : rig.pixels) {
        ASSERT_EQ(pixel, kUntouched);
    }
}
