// Access slots: the FIFO, the stall and the three kinds of DMA.
#include "megadrive/md_vdp_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

// A DMA of `length` units; `mode` is what goes to the top bits of register 23.
void Dma(MdVdpRig& rig, uint32_t code, uint32_t address, uint32_t source, uint32_t length,
         uint32_t mode = 0) {
    rig.Reg(1, rig.vdp->regs[1] | 0x10U);
    rig.Reg(19, length & 255);
    rig.Reg(20, length >> 8 & 255);
    rig.Reg(21, source & 255);
    rig.Reg(22, source >> 8 & 255);
    rig.Reg(23, source >> 16 | mode);
    rig.Command(code | 0x20, address);
}

// The steps of a line at which the bus is read for CRAM, which takes a slot a word.
std::vector<uint32_t> SlotSteps(MdVdpRig& rig, uint32_t line) {
    rig.RunTo(line, 0);
    Dma(rig, kCramCode, 0, 0, 0);
    rig.reads.clear();
    std::vector<uint32_t> steps;
    do {
        const uint32_t step = rig.vdp->hCount;
        const size_t before = rig.reads.size();
        rig.Step();
        if (rig.reads.size() != before) {
            steps.push_back(step);
        }
    } while (rig.vdp->hCount != 0);
    return steps;
}

std::vector<uint32_t> OddStepsBut(uint32_t steps, const std::vector<uint32_t>& refresh) {
    std::vector<uint32_t> odd;
    for (uint32_t step = 1; step < steps; step += 2) {
        if (std::find(refresh.begin(), refresh.end(), step) == refresh.end()) {
            odd.push_back(step);
        }
    }
    return odd;
}

} // namespace

TEST(MdVdpSlots, OfTheActiveDisplayAre16And18) {
    MdVdpRig narrow;
    narrow.Setup(false);
    EXPECT_EQ(SlotSteps(narrow, 30), (std::vector<uint32_t>{7, 23, 45, 61, 93, 109, 125, 157, 173,
                                                            189, 221, 237, 253, 285, 301, 317}));
    MdVdpRig wide;
    wide.Setup(true);
    EXPECT_EQ(SlotSteps(wide, 30),
              (std::vector<uint32_t>{5, 59, 75, 107, 123, 139, 171, 187, 203, 235, 251, 267, 299,
                                     315, 331, 363, 379, 411}));
}

TEST(MdVdpSlots, WithoutDisplayAreTheOddStepsButForRefresh) {
    for (const bool h40 : {false, true}) {
        const auto expected =
            h40 ? OddStepsBut(422, {101, 103, 105, 107}) : OddStepsBut(342, {211, 233, 251, 273});
        EXPECT_EQ(expected.size(), h40 ? 207U : 167U);
        MdVdpRig blank;
        blank.Setup(h40);
        EXPECT_EQ(SlotSteps(blank, 240), expected);
        MdVdpRig off;
        off.Setup(h40);
        off.Reg(1, 0x04);
        EXPECT_EQ(SlotSteps(off, 30), expected);
    }
}

// One byte at every odd step except refresh, on visible and blank lines alike.
TEST(MdVdpSlots, WithoutDisplayTakeVramWrites) {
    for (const bool h40 : {false, true}) {
        for (const uint32_t line : {30U, 240U}) {
            MdVdpRig rig;
            rig.Setup(h40);
            rig.Reg(1, line == 30 ? 0x04 : 0x44);
            rig.RunTo(line, 0);
            rig.Command(kVramCode, 0x9000);
            std::vector<uint32_t> steps;
            uint32_t words = 0;
            do {
                if (rig.vdp->fifoCount == 0) {
                    rig.Data(0x1000 + words++);
                }
                const uint32_t step = rig.vdp->hCount;
                const uint32_t half = rig.vdp->vramHalf;
                rig.Step();
                if (rig.vdp->vramHalf != half) {
                    steps.push_back(step);
                }
            } while (rig.vdp->hCount != 0);
            EXPECT_EQ(steps, h40 ? OddStepsBut(422, {101, 103, 105, 107})
                                 : OddStepsBut(342, {211, 233, 251, 273}));
            const uint32_t written = h40 ? 103 : 83; // 207 and 167 halves
            for (uint32_t word = 0; word < written; ++word) {
                ASSERT_EQ(rig.WordAt(0x9000 + word * 2), 0x1000 + word);
            }
            EXPECT_EQ(rig.WordAt(0x9000 + written * 2), 0U);
        }
    }
}

TEST(MdVdpSlots, GoToTheFifoBeforeTheDma) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.RunTo(30, 0);
    rig.Command(kCramCode, 0x10);
    rig.Data(0x0EEE);
    Dma(rig, kCramCode, 0, 0, 2);
    rig.reads.clear();
    rig.Steps(6); // slot 5
    EXPECT_EQ(rig.vdp->cram[8], 0x1FF);
    EXPECT_TRUE(rig.reads.empty());
    rig.Steps(54); // slot 59
    EXPECT_EQ(rig.reads.size(), 1U);
}

TEST(MdVdpFifo, AVramWordTakesTwoSlotsAndOthersOne) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.RunTo(30, 0);
    rig.Command(kVramCode, 0x9100);
    rig.Data(0x1234);
    rig.Command(kCramCode, 0x22);
    rig.Data(0x0246);
    rig.Command(kVsramCode, 0x84);
    rig.Data(0x5678);
    EXPECT_EQ(rig.vdp->fifoCount, 3U);
    EXPECT_EQ(rig.vdp->status & kMdVdpFifoEmpty, 0);
    rig.Steps(6); // 5
    EXPECT_EQ(rig.vdp->vramHalf, 1U);
    EXPECT_EQ(rig.WordAt(0x9100), 0U);
    rig.Steps(54); // 59
    EXPECT_EQ(rig.WordAt(0x9100), 0x1234U);
    EXPECT_EQ(rig.vdp->vramHalf, 0U);
    rig.Steps(16); // 75
    EXPECT_EQ(rig.vdp->cram[17], 3U << 6 | 2 << 3 | 1);
    EXPECT_EQ(rig.vdp->fifoCount, 1U);
    EXPECT_EQ(rig.vdp->status & kMdVdpFifoEmpty, 0);
    rig.Steps(32); // 107
    EXPECT_EQ(rig.vdp->vsram[2], 0x5678);
    EXPECT_EQ(rig.vdp->fifoCount, 0U);
    EXPECT_NE(rig.vdp->status & kMdVdpFifoEmpty, 0);
}

TEST(MdVdpFifo, BytesChangePlacesAtOddAddresses) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    rig.Command(kVramCode, 0x101);
    rig.Data(0x1234);
    rig.Data(0x5678); // at 0x103
    rig.Steps(16);
    EXPECT_EQ(rig.WordAt(0x100), 0x3412U);
    EXPECT_EQ(rig.WordAt(0x102), 0x7856U);
}

TEST(MdVdpFifo, WritesOfAReadingCodeGoNowhere) {
    MdVdpRig rig;
    rig.Command(0, 0x100);
    rig.Data(0x1234);
    rig.Steps(16);
    EXPECT_EQ(rig.vdp->fifoCount, 0U);
    EXPECT_EQ(rig.WordAt(0x100), 0U);
}

TEST(MdVdpFifo, TheFifthWriteStallsUntilFourAreLeft) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.RunTo(30, 0);
    rig.Command(kCramCode, 0);
    for (uint32_t i = 0; i < 3; ++i) {
        rig.Data(i);
    }
    EXPECT_EQ(rig.vdp->status & kMdVdpFifoFull, 0);
    rig.Data(3);
    EXPECT_NE(rig.vdp->status & kMdVdpFifoFull, 0);
    EXPECT_EQ(rig.stall, 0U);
    rig.Data(4);
    EXPECT_EQ(rig.stall, 1U);
    rig.Steps(5);
    EXPECT_EQ(rig.stall, 1U);
    rig.Step(); // slot 5
    EXPECT_EQ(rig.stall, 0U);
    EXPECT_EQ(rig.vdp->fifoCount, 4U);
    EXPECT_NE(rig.vdp->status & kMdVdpFifoFull, 0);
    rig.Steps(54); // 59
    EXPECT_EQ(rig.vdp->status & kMdVdpFifoFull, 0);
}

// The FIFO checks its own count alone, whatever else stalls the processor.
TEST(MdVdpFifo, FallingToFourReleasesTheProcessorThoughADmaRuns) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(1, 4);
    rig.RunTo(30, 0);
    rig.Command(kCramCode, 0);
    for (uint32_t i = 0; i < 5; ++i) {
        rig.Data(i);
    }
    Dma(rig, kVramCode, 0x8000, 0x123456, 3);
    EXPECT_EQ(rig.stall, 1U);
    EXPECT_EQ(rig.vdp->fifoCount, 5U);
    rig.Steps(2); // one odd step
    EXPECT_EQ(rig.vdp->fifoCount, 4U);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaBus);
    EXPECT_EQ(rig.stall, 0U);
}

TEST(MdVdpFifo, ALongWriteIntoAFullOneLosesNothing) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    rig.Command(kVramCode, 0);
    for (uint32_t i = 0; i < 6; ++i) {
        rig.Data(0x100 + i);
    }
    EXPECT_EQ(rig.stall, 1U);
    rig.Steps(8); // four odd steps, two words
    EXPECT_EQ(rig.stall, 0U);
    rig.Steps(100);
    for (uint32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(rig.WordAt(i * 2), 0x100 + i);
    }
}

TEST(MdVdpFifo, TheAddressGrowsWithTheWriteByRegister15) {
    MdVdpRig rig;
    rig.Reg(15, 0x80);
    rig.Command(kVramCode, 0xFFC0);
    rig.Data(0);
    EXPECT_EQ(rig.vdp->address, 0x0040U);
}

TEST(MdVdpDma, FromTheBusStallsUntilItsEnd) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(1, 4);
    rig.RunTo(30, 0);
    Dma(rig, kVramCode, 0x8000, 0x123456, 3);
    EXPECT_EQ(rig.stall, 1U);
    EXPECT_NE(rig.vdp->status & kMdVdpDmaBusy, 0);
    rig.Steps(11); // five odd steps: two words and a half
    EXPECT_EQ(rig.stall, 1U);
    EXPECT_EQ(rig.reads, (std::vector<uint32_t>{0x2468AC, 0x2468AE}));
    rig.Step();
    EXPECT_EQ(rig.stall, 0U);
    EXPECT_EQ(rig.vdp->status & kMdVdpDmaBusy, 0);
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.WordAt(0x8000), 0x3456U); // half of each address
    EXPECT_EQ(rig.WordAt(0x8002), 0x3457U);
    EXPECT_EQ(rig.WordAt(0x8004), 0x3458U);
    EXPECT_EQ(rig.vdp->regs[19], 0);
    EXPECT_EQ(rig.vdp->regs[20], 0);
    EXPECT_EQ(rig.vdp->regs[21], 0x59);
    EXPECT_EQ(rig.vdp->regs[22], 0x34);
    EXPECT_EQ(rig.vdp->regs[23], 0x12);
}

TEST(MdVdpDma, WordsOfALineByMemoryAndDisplay) {
    struct Row {
        bool h40;
        uint32_t line;
        uint32_t slots;
    };
    for (const Row& row : {
             Row{false, 30,  16 },
             Row{true,  30,  18 },
             Row{false, 240, 167},
             Row{true,  240, 207}
    }) {
        for (const uint32_t code : {kVramCode, kCramCode, kVsramCode}) {
            MdVdpRig rig;
            rig.Setup(row.h40);
            rig.RunTo(row.line, 0);
            Dma(rig, code, 0, 0, 0);
            rig.RunTo(row.line + 1, 0);
            const uint32_t words = code == kVramCode ? row.slots / 2 : row.slots;
            EXPECT_EQ(rig.reads.size(), words);
            EXPECT_EQ(rig.vdp->dmaLength, 0x10000 - words);
            EXPECT_EQ(rig.vdp->address, words * 2);
        }
        MdVdpRig fill;
        fill.Setup(row.h40);
        fill.RunTo(row.line, 0);
        Dma(fill, kCramCode, 0, 0, 0, 0x80); // the word itself takes one slot
        fill.Data(0);
        fill.RunTo(row.line + 1, 0);
        EXPECT_EQ(fill.vdp->dmaLength, 0x10000 - (row.slots - 1));
        MdVdpRig copy;
        copy.Setup(row.h40);
        copy.RunTo(row.line, 0);
        Dma(copy, kVramCode, 0, 0x8000, 0, 0xC0);
        copy.RunTo(row.line + 1, 0);
        EXPECT_EQ(copy.vdp->dmaLength, 0x10000 - row.slots / 2);
    }
}

TEST(MdVdpDma, SourceStaysInItsBlockOf128Kilobytes) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVsramCode, 0, 0x02FFFF, 2); // byte address 0x05FFFE
    rig.Steps(4);
    EXPECT_EQ(rig.reads, (std::vector<uint32_t>{0x05FFFE, 0x040000}));
}

TEST(MdVdpDma, OfTheSvpStartsAWordLower) {
    MdVdpRig rig;
    rig.vdp->svpDmaQuirk = 1;
    rig.Reg(1, 4);
    Dma(rig, kVsramCode, 0, 0x010000, 2); // byte address 0x020000
    EXPECT_EQ(rig.vdp->dmaBase, 0x020000U);
    rig.Steps(4);
    EXPECT_EQ(rig.reads, (std::vector<uint32_t>{0x01FFFE, 0x020000}));
    rig.reads.clear();
    Dma(rig, kVsramCode, 0, 0x200000, 1); // 0x400000 is beyond the ROM
    rig.Steps(2);
    EXPECT_EQ(rig.reads, (std::vector<uint32_t>{0x400000}));
    rig.reads.clear();
    Dma(rig, kVsramCode, 0, 0, 1);
    rig.Steps(2);
    EXPECT_EQ(rig.reads, (std::vector<uint32_t>{0xFFFFFE}));
}

TEST(MdVdpDma, AnOddAddressSwapsBytes) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVramCode, 0x8001, 0x1234, 1);
    rig.Steps(4);
    EXPECT_EQ(rig.WordAt(0x8000), 0x3412U);
}

TEST(MdVdpDma, NeedsBit4OfRegister1) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    rig.Reg(23, 0);
    rig.Command(0x21, 0);
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.stall, 0U);
}

TEST(MdVdpDma, FillWaitsForItsWord) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    rig.Reg(15, 1);
    Dma(rig, kVramCode, 0x8000, 0, 4, 0x80);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaFillArmed);
    EXPECT_EQ(rig.vdp->status & kMdVdpDmaBusy, 0);
    rig.Steps(20);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaFillArmed);
    rig.Data(0xABCD);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaFill);
    EXPECT_NE(rig.vdp->status & kMdVdpDmaBusy, 0);
    EXPECT_EQ(rig.stall, 0U);
    rig.Steps(12); // two slots for the word, four for the bytes
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.vdp->status & kMdVdpDmaBusy, 0);
    // The word first; then the high byte at the four addresses from 0x8001 on, each with its lowest bit
    // flipped as the processor sees it: 8000, 8003, 8002 and 8005.
    EXPECT_EQ(rig.WordAt(0x8000), 0xABCDU);
    EXPECT_EQ(rig.WordAt(0x8002), 0xABABU);
    EXPECT_EQ(rig.WordAt(0x8004), 0x00ABU);
    EXPECT_EQ(rig.vdp->address, 0x8005U);
    EXPECT_EQ(rig.vdp->regs[19], 0);
}

TEST(MdVdpDma, CopyTakesBytes) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    rig.Reg(15, 1);
    rig.Word(0x9000, 0x1122);
    rig.Word(0xFFFE, 0x3344);
    rig.Word(0x0000, 0x5566);
    Dma(rig, 0, 0x8000, 0xFFFE, 4, 0xC0);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaCopy);
    EXPECT_NE(rig.vdp->status & kMdVdpDmaBusy, 0);
    EXPECT_EQ(rig.stall, 0U);
    rig.Steps(14);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaCopy);
    rig.Steps(2);
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.WordAt(0x8000), 0x3344U);
    EXPECT_EQ(rig.WordAt(0x8002), 0x5566U);
    EXPECT_EQ(rig.vdp->regs[21], 2);
    EXPECT_EQ(rig.vdp->regs[22], 0);
    EXPECT_EQ(rig.vdp->regs[23], 0xC0);
}

TEST(MdVdpDma, AControlWordWaitsForItsEnd) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVramCode, 0x8000, 0x9000, 2, 0xC0);
    rig.Control(0x8711);
    rig.Control(0x8733); // the last one stays
    EXPECT_EQ(rig.vdp->dmaPending, 0x80008733U);
    rig.Steps(7);
    EXPECT_EQ(rig.vdp->regs[7], 0);
    rig.Step();
    EXPECT_EQ(rig.vdp->regs[7], 0x33);
    EXPECT_EQ(rig.vdp->dmaPending, 0U);
}

TEST(MdVdpDma, ToCramShowsItsColourForADot) {
    MdVdpRig rig;
    rig.Setup(true);
    rig.Reg(1, 4);
    rig.Reg(7, 0);
    rig.RunTo(30, 77 + 50);
    Dma(rig, kCramCode, 0x40, 0x0E0E, 2); // slots at 127 and 129: the next dots
    rig.RunTo(31, 77);
    EXPECT_EQ(rig.At(50, 30), EntryPixel(0));
    EXPECT_EQ(rig.At(51, 30), PlainPixel(7 << 6 | 7)); // 0E0E: blue 7, red 7
    EXPECT_EQ(rig.At(52, 30), EntryPixel(0));
    EXPECT_EQ(rig.At(53, 30), PlainPixel(7 << 6 | 7)); // 0E0F differs in no bit of colour
    EXPECT_EQ(rig.At(54, 30), EntryPixel(0));
}

// Nothing is shown of a colour that was moved before the line began.
TEST(MdVdpDma, ItsColourIsForgottenAtTheStartOfALine) {
    for (const bool h40 : {false, true}) {
        const uint32_t start = h40 ? 45 : 31;
        for (const bool before : {true, false}) {
            MdVdpRig rig;
            rig.Setup(h40);
            rig.Reg(1, 4);
            rig.Reg(7, 0);
            // The slot is the first odd step from here on: two before the start, or two after it.
            rig.RunTo(30, before ? start - 2 : start + 1);
            Dma(rig, kCramCode, 0x40, 0x0E0E, 1);
            rig.Steps(2);
            EXPECT_EQ(rig.vdp->cramDot, kMdVdpValid | 7 << 6 | 7);
            rig.Step(); // that of the start, or one after it
            EXPECT_EQ(rig.vdp->cramDot, before ? 0 : kMdVdpValid | 7 << 6 | 7);
            rig.RunTo(31, 0);
            EXPECT_EQ(rig.At(0, 30), before ? EntryPixel(0) : PlainPixel(7 << 6 | 7));
            EXPECT_EQ(rig.At(1, 30), EntryPixel(0));
        }
    }
}

// The word goes where its command says, the bytes always to VRAM.
TEST(MdVdpDma, FillOfAnotherMemoryWritesVram) {
    for (const uint32_t code : {kCramCode, kVsramCode}) {
        MdVdpRig rig;
        rig.Reg(1, 4);
        rig.Reg(15, 1);
        Dma(rig, code, 0x40, 0, 4, 0x80);
        rig.Data(0x0ACE);
        rig.Steps(10); // a slot for the word, four for the bytes
        EXPECT_EQ(rig.vdp->dmaState, 0U);
        EXPECT_EQ(rig.vdp->cram[0x20], code == kCramCode ? 7U << 6 | 6 << 3 | 5 : RigColour(0x20));
        EXPECT_EQ(rig.vdp->vsram[0x20], code == kVsramCode ? 0x0ACEU : 0U);
        // From 0x41 on, the high byte.
        for (uint32_t address = 0x3E; address < 0x48; ++address) {
            EXPECT_EQ(rig.vdp->vram[address], address > 0x40 && address < 0x45 ? 0x0A : 0)
                << address;
        }
        for (uint32_t entry = 0x21; entry < 0x28; ++entry) {
            EXPECT_EQ(rig.vdp->cram[entry], RigColour(entry));
            EXPECT_EQ(rig.vdp->vsram[entry], 0U);
        }
    }
}

// A fill has no source, so the source registers do not change; the length counts down.
TEST(MdVdpDma, FillLeavesTheRegistersOfTheSource) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVramCode, 0x8000, 0x001234, 3, 0x80);
    rig.Data(0);
    rig.Steps(10);
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.vdp->regs[19], 0);
    EXPECT_EQ(rig.vdp->regs[20], 0);
    EXPECT_EQ(rig.vdp->regs[21], 0x34);
    EXPECT_EQ(rig.vdp->regs[22], 0x12);
    EXPECT_EQ(rig.vdp->regs[23], 0x80);
}

// A command with an invalid target still reads the bus, one word a slot, and counts.
TEST(MdVdpDma, FromTheBusWithAnotherCodeWritesNothing) {
    for (const uint32_t code : {0U, 4U, 7U, 8U}) {
        MdVdpRig rig;
        rig.Reg(1, 4);
        const auto vram = rig.vdp->vram;
        const auto cram = rig.vdp->cram;
        const auto vsram = rig.vdp->vsram;
        Dma(rig, code, 0x40, 0x1234, 3);
        EXPECT_EQ(rig.stall, 1U);
        rig.Steps(5);
        EXPECT_EQ(rig.stall, 1U);
        rig.Step();
        EXPECT_EQ(rig.stall, 0U);
        EXPECT_EQ(rig.reads, (std::vector<uint32_t>{0x2468, 0x246A, 0x246C}));
        EXPECT_EQ(rig.vdp->address, 0x46U);
        EXPECT_EQ(rig.vdp->regs[19], 0);
        EXPECT_EQ(rig.vdp->regs[21], 0x37);
        EXPECT_EQ(rig.vdp->vram, vram) << code;
        EXPECT_EQ(rig.vdp->cram, cram) << code;
        EXPECT_EQ(rig.vdp->vsram, vsram) << code;
    }
}

TEST(MdVdpDma, AHeldFirstWordWaitsForItsSecond) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVramCode, 0x8000, 0x9000, 2, 0xC0);
    rig.Control(0x5234);
    EXPECT_EQ(rig.vdp->pendingSecond, 0U);
    rig.Steps(8);
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.vdp->pendingSecond, 1U);
    rig.Control(0x0010); // VSRAM
    EXPECT_EQ(rig.vdp->pendingSecond, 0U);
    EXPECT_EQ(rig.vdp->code, 5U);
    EXPECT_EQ(rig.vdp->address, 0x1234U);
}

// Two words of a command in one DMA: the second takes the first's place and is the first of a command then.
TEST(MdVdpDma, AHeldSecondWordIsTakenAsAFirst) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVramCode, 0x8000, 0x9000, 2, 0xC0);
    rig.Command(kVramCode | 0x20, 0x0100);
    rig.Steps(8);
    EXPECT_EQ(rig.vdp->dmaState, 0U);
    EXPECT_EQ(rig.vdp->pendingSecond, 1U);
    EXPECT_EQ(rig.vdp->address, 0x8080U); // the high part stays
}

// First, the second word of a command whose first word came during a DMA. Then a second word that itself comes during
// a DMA, as is possible after a load.
TEST(MdVdpDma, AHeldWordBeginsTheNextOne) {
    MdVdpRig rig;
    rig.Reg(1, 4);
    Dma(rig, kVramCode, 0x8000, 0x9000, 2, 0xC0);
    rig.Control(0x4400);
    rig.Steps(8);
    ASSERT_EQ(rig.vdp->dmaState, 0U);
    rig.vdp->regs[19] = 1; // the length has counted down
    rig.vdp->regs[23] = 0;
    rig.Control(0x0080);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaBus);
    EXPECT_EQ(rig.stall, 1U);
    rig.Steps(4);
    EXPECT_EQ(rig.stall, 0U);
    ASSERT_EQ(rig.reads.size(), 1U);

    Dma(rig, kVsramCode, 0x10, 0x100, 2);
    rig.vdp->pendingSecond = 1;
    rig.Control(0x0090);
    rig.reads.clear();
    rig.Steps(4); // both words; the length of 0 after them is 65,536
    EXPECT_EQ(rig.reads.size(), 2U);
    EXPECT_EQ(rig.vdp->dmaState, kMdVdpDmaBus);
    EXPECT_EQ(rig.vdp->dmaLength, 0x10000U);
    EXPECT_EQ(rig.vdp->dmaPending, 0U);
    EXPECT_EQ(rig.stall, 1U);
    EXPECT_NE(rig.vdp->status & kMdVdpDmaBusy, 0);
}
