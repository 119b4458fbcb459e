// Many steps at once against single steps: random memory, registers, accesses and lengths.

#include "sega8/vdp_run.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

namespace {

struct Chip {
    std::array<uint8_t, kVdpVramBytes> vram{};
    std::vector<uint32_t> pixels = std::vector<uint32_t>(size_t{256} * kVdpLargestPicture);
    uint32_t irq = 0;
    uint32_t nmi = 0;
    VDP vdp;

    Chip(bool pal, uint32_t variant, bool second) {
        VdpInit(vdp, &irq, &nmi, pal, variant);
        vdp.vram = vram.data();
        vdp.secondChip = second;
        VdpReset(vdp);
        VdpBeginFrame(vdp, pixels.data(), 256);
    }

    [[nodiscard]] std::vector<uint8_t> State() const {
        std::vector<uint8_t> bytes(VdpStateSize());
        VdpSaveState(vdp, bytes.data());
        return bytes;
    }
};

// One access of the processor, drawn from the numbers given, the same for both chips.
uint32_t Touch(VDP& vdp, uint32_t kind, uint32_t value) {
    const auto byte = static_cast<uint8_t>(value);
    switch (kind) {
    case 0: VdpControlWrite(vdp, byte); return 0;
    case 1: VdpDataWrite(vdp, byte); return 0;
    case 2: return VdpDataRead(vdp);
    case 3: return VdpStatusRead(vdp);
    case 4: return VdpVCounter(vdp);
    case 5: vdp.pausePressed = (value & 1) != 0; return 0;
    default:
        VdpControlWrite(vdp, byte);
        VdpControlWrite(vdp, static_cast<uint8_t>(0x80 | ((value >> 8) % 11)));
        return 0;
    }
}

void Compare(bool pal, uint32_t variant, bool second, uint8_t mode0, uint8_t mode1) {
    std::mt19937 random(variant * 7 + mode0 + mode1);
    Chip plain(pal, variant, second);
    Chip fast(pal, variant, second);
    for (size_t i = 0; i < plain.vram.size(); ++i) {
        plain.vram[i] = fast.vram[i] = static_cast<uint8_t>(random());
    }
    for (Chip* chip : {&plain, &fast}) {
        for (const uint32_t write : {uint32_t{mode0}, 0x100U | mode1, 0x2FFU, 0x5FFU, 0xA05U}) {
            VdpControlWrite(chip->vdp, static_cast<uint8_t>(write));
            VdpControlWrite(chip->vdp, static_cast<uint8_t>(0x80 | (write >> 8)));
        }
    }
    for (int run = 0; run < 4000; ++run) {
        const auto steps = static_cast<uint32_t>(random() % (run % 3 == 0 ? 900 : 40));
        for (uint32_t i = 0; i < steps; ++i) {
            VdpTick(plain.vdp);
        }
        VdpRun(fast.vdp, steps);
        const auto kind = static_cast<uint32_t>(random() % 24);
        const auto value = static_cast<uint32_t>(random());
        if (kind < 7) {
            ASSERT_EQ(Touch(plain.vdp, kind, value), Touch(fast.vdp, kind, value)) << run;
        }
        ASSERT_EQ(plain.State(), fast.State()) << run;
        ASSERT_EQ(plain.irq, fast.irq);
        ASSERT_EQ(plain.nmi, fast.nmi);
        if (run % 50 == 0) {
            ASSERT_EQ(plain.vram, fast.vram) << run;
            ASSERT_EQ(plain.pixels, fast.pixels) << run;
        }
    }
    EXPECT_EQ(plain.pixels, fast.pixels);
}

} // namespace

TEST(VdpRun, EqualsSingleStepsInMode4) {
    for (const uint32_t variant : {0U, 1U, 2U}) {
        Compare(false, variant, false, 0x06, 0x62);
        Compare(true, variant, false, 0x26, 0x61);
    }
}

TEST(VdpRun, EqualsSingleStepsInTheOlderModes) {
    Compare(false, 0, false, 0x00, 0x60);
    Compare(false, 1, false, 0x02, 0x62);
    Compare(false, 1, false, 0x00, 0x70);
}

TEST(VdpRun, EqualsSingleStepsAsASecondChip) {
    Compare(false, 0, true, 0x06, 0x60);
}

TEST(VdpRun, StepsToTheEventEndWithIt) {
    Chip chip(false, 1, false);
    for (uint32_t start = 0; start < kVdpStepsPerLine; ++start) {
        const uint32_t line = chip.vdp.line;
        const uint32_t steps = VdpStepsToEvent(chip.vdp);
        // The event is at dot 0 or at dot 318, where the line steps; before it nothing does.
        VDP copy = chip.vdp;
        for (uint32_t i = 1; i < steps; ++i) {
            VdpTick(copy);
            EXPECT_EQ(copy.line, line);
        }
        VdpTick(copy);
        EXPECT_TRUE(copy.line != line || copy.dotCounter == 2) << start;
        VdpTick(chip.vdp);
    }
}
