// VdpRun against VdpTick: random memory, registers, accesses and lengths.

#include "sega8/vdp_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <string>
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
        const auto ticks = static_cast<uint32_t>(random() % (run % 3 == 0 ? 900 : 40));
        for (uint32_t i = 0; i < ticks; ++i) {
            VdpTick(plain.vdp);
        }
        VdpRun(fast.vdp, ticks);
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

// Compares the derived fields of the line being drawn; the row as an offset in its picture.
void ExpectSameDerived(const Chip& plain, const Chip& fast, const std::string& where) {
    const VDP& a = plain.vdp;
    const VDP& b = fast.vdp;
    EXPECT_EQ(a.activeHeight, b.activeHeight) << where;
    EXPECT_EQ(a.border, b.border) << where;
    EXPECT_EQ(a.pictureHeight, b.pictureHeight) << where;
    EXPECT_EQ(a.slotTable, b.slotTable) << where;
    EXPECT_EQ(a.fixedColours, b.fixedColours) << where;
    EXPECT_TRUE(std::equal(std::begin(a.palette), std::end(a.palette), b.palette)) << where;
    ASSERT_EQ(a.row == nullptr, b.row == nullptr) << where;
    if (a.row != nullptr) {
        EXPECT_EQ(a.row - plain.pixels.data(), b.row - fast.pixels.data()) << where;
    }
}

// Registers as games set them: display on, all modes, tall pictures, large and zoomed sprites,
// every scroll and lock.
std::array<uint8_t, 11> DrawRegisters(std::mt19937& random) {
    constexpr uint8_t kModes0[] = {0x04, 0x06, 0x06, 0x06, 0x02, 0x00};
    constexpr uint8_t kModes1[] = {0x00, 0x00, 0x08, 0x10};
    const auto byte = [&] { return static_cast<uint8_t>(random()); };
    std::array<uint8_t, 11> regs{};
    regs[0] = static_cast<uint8_t>(kModes0[random() % 6] | (byte() & 0xF8));
    regs[1] = static_cast<uint8_t>(kModes1[random() % 4] | (byte() & 0x23) |
                                   (random() % 8 != 0 ? 0x40 : 0));
    for (size_t i = 2; i < regs.size(); ++i) {
        regs[i] = byte();
    }
    regs[10] = random() % 2 == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(random() % 8);
    return regs;
}

// Crowds of sprites, so that some lines have too many and some sprites overlap: all are in a few
// rows and columns, at every place of the table. Sometimes the list ends early.
void CrowdSprites(std::mt19937& random, std::array<uint8_t, kVdpVramBytes>& vram) {
    const auto middle = static_cast<uint32_t>(random());
    for (size_t table = 0; table < vram.size(); table += 128) {
        for (size_t i = 0; i < 128; ++i) {
            vram[table + i] = static_cast<uint8_t>(middle + random() % 48);
        }
        if (random() % 2 == 0) {
            vram[table + random() % 64] = 0xD0;
        }
    }
}

// Runs of whole lines and of parts of lines, with rare accesses between them.
void CompareLines(uint32_t seed) {
    std::mt19937 random(seed);
    const bool pal = random() % 2 == 0;
    const auto variant = static_cast<uint32_t>(random() % 3);
    const bool second = random() % 3 == 0;
    Chip plain(pal, variant, second);
    Chip fast(pal, variant, second);
    for (uint8_t& byte : plain.vram) {
        byte = static_cast<uint8_t>(random());
    }
    if (random() % 4 != 0) {
        CrowdSprites(random, plain.vram);
    }
    fast.vram = plain.vram;
    const std::array<uint8_t, 11> regs = DrawRegisters(random);
    for (Chip* chip : {&plain, &fast}) {
        for (size_t i = 0; i < regs.size(); ++i) {
            VdpControlWrite(chip->vdp, regs[i]);
            VdpControlWrite(chip->vdp, static_cast<uint8_t>(0x80 | i));
        }
    }
    uint32_t left = 220000; // more than a frame
    while (left != 0) {
        uint32_t ticks = VdpTicksToEvent(fast.vdp);
        switch (random() % 4) {
        case 0: ticks = kVdpTicksPerLine * static_cast<uint32_t>(1 + random() % 4); break;
        case 1: ticks = static_cast<uint32_t>(1 + random() % 1400); break;
        case 2: ticks = std::max(ticks, 2U) - 1; break;
        default: break;
        }
        ticks = std::min(ticks, left);
        left -= ticks;
        for (uint32_t i = 0; i < ticks; ++i) {
            VdpTick(plain.vdp);
        }
        VdpRun(fast.vdp, ticks);
        const std::string where =
            "seed " + std::to_string(seed) + " line " + std::to_string(plain.vdp.line);
        ASSERT_EQ(plain.State(), fast.State()) << where;
        ASSERT_EQ(plain.irq, fast.irq) << where;
        ASSERT_EQ(plain.nmi, fast.nmi) << where;
        ASSERT_NO_FATAL_FAILURE(ExpectSameDerived(plain, fast, where));
        const auto kind = static_cast<uint32_t>(random() % 40);
        const auto value = static_cast<uint32_t>(random());
        if (kind < 7) {
            ASSERT_EQ(Touch(plain.vdp, kind, value), Touch(fast.vdp, kind, value)) << where;
        }
    }
    EXPECT_EQ(plain.vram, fast.vram) << "seed " << seed;
    EXPECT_EQ(plain.pixels, fast.pixels) << "seed " << seed;
}

} // namespace

TEST(VdpRun, EqualsSingleTicksInMode4) {
    for (const uint32_t variant : {0U, 1U, 2U}) {
        Compare(false, variant, false, 0x06, 0x62);
        Compare(true, variant, false, 0x26, 0x61);
    }
}

TEST(VdpRun, EqualsSingleTicksInTheOlderModes) {
    Compare(false, 0, false, 0x00, 0x60);
    Compare(false, 1, false, 0x02, 0x62);
    Compare(false, 1, false, 0x00, 0x70);
}

TEST(VdpRun, EqualsSingleTicksAsASecondChip) {
    Compare(false, 0, true, 0x06, 0x60);
}

TEST(VdpRun, WholeLinesEqualSingleTicksWhateverTheRegistersSay) {
    for (uint32_t seed = 1; seed <= 100 && !HasFatalFailure(); ++seed) {
        CompareLines(seed);
    }
}

TEST(VdpRun, StopsForThePauseButtonAtTheLineStartAlone) {
    for (const bool seen : {false, true}) {
        Chip chip(false, 1, false);
        VdpRun(chip.vdp, 640);
        chip.vdp.pausePressed = true;
        chip.vdp.pauseSeen = seen;
        const uint32_t ticks = VdpTicksToEvent(chip.vdp);
        // Steps 640 to 683 of this line; then the two of dot 0, or those up to the end of dot 318.
        EXPECT_EQ(ticks, seen ? 44U + 638U : 44U + 2U);
        VdpRun(chip.vdp, ticks - 1);
        EXPECT_EQ(chip.nmi, 0U);
        VdpRun(chip.vdp, 1);
        EXPECT_EQ(chip.nmi, seen ? 0U : 1U);
    }
}

TEST(VdpRun, TicksToTheEventEndWithIt) {
    Chip chip(false, 1, false);
    for (uint32_t start = 0; start < kVdpTicksPerLine; ++start) {
        const uint32_t line = chip.vdp.line;
        const uint32_t ticks = VdpTicksToEvent(chip.vdp);
        // Without the pause button the only event is dot 318, where `line` steps.
        VDP copy = chip.vdp;
        for (uint32_t i = 1; i < ticks; ++i) {
            VdpTick(copy);
            EXPECT_EQ(copy.line, line);
        }
        VdpTick(copy);
        EXPECT_NE(copy.line, line) << start;
        VdpTick(chip.vdp);
    }
}
