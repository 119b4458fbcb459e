// States at any dot and of arbitrary bytes; and work that is put off or done in lines, against the same work done
// dot by dot.
#include "base/bytes.h"
#include "nes/ppu_rig.h"
#include "nes/ppu_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace {

std::vector<uint8_t> Save(const PPU& ppu) {
    std::vector<uint8_t> state(PpuStateSize());
    EXPECT_EQ(PpuSaveState(ppu, state.data()), state.data() + state.size());
    return state;
}

uint32_t Load(PPU& ppu, const std::vector<uint8_t>& state) {
    return PpuLoadState(ppu, state.data(), static_cast<uint32_t>(state.size()));
}

uint8_t RandomByte(std::mt19937& random) {
    return static_cast<uint8_t>(random());
}

void Randomize(PpuRig& rig, uint32_t seed) {
    std::mt19937 random(seed);
    rig.SetPalette();
    for (uint8_t& byte : rig.patterns) {
        byte = RandomByte(random) & RandomByte(random);
    }
    for (auto& page : rig.ppu->nametables) {
        for (uint8_t& byte : page) {
            byte = RandomByte(random);
        }
    }
    // Few different Y, so that some lines have many sprites, sprite 0 among them.
    for (uint32_t i = 0; i < 64; ++i) {
        rig.Sprite(i, RandomByte(random), RandomByte(random) & 0x7C, RandomByte(random),
                   RandomByte(random) & 0xE3U);
    }
    rig.Scroll(RandomByte(random), RandomByte(random) % 240, RandomByte(random) & 0x3FU);
    rig.Write(1, 0x1E);
}

// A random register access; mostly harmless, so that rendering stays on.
void Access(PpuRig& rig, std::mt19937& random) {
    const uint8_t value = RandomByte(random);
    switch (random() % 12) {
    case 0: rig.Write(0, value); break;
    case 1: rig.Write(1, value | 0x18U); break;
    case 2: rig.Write(1, value); break;
    case 3: rig.Write(3, value); break;
    case 4: rig.Write(4, value); break;
    case 5: rig.Write(5, value); break;
    case 6: rig.Write(6, value); break;
    case 7: rig.Write(7, value); break;
    case 8: (void)rig.Read(7); break;
    case 9: (void)rig.Read(4); break;
    default: (void)rig.Read(2); break;
    }
}

// Every field of the record but what is owed, the bus and the interrupt line.
void ExpectTheSame(const PpuRig& one, const PpuRig& two) {
    PPU a = *one.ppu;
    const PPU& b = *two.ppu;
    PpuCatchUp(a);
    ASSERT_EQ(Save(a), Save(b));
    ASSERT_EQ(a.rendering, b.rendering);
    ASSERT_EQ(a.visible, b.visible);
    ASSERT_EQ(a.layers, b.layers);
    ASSERT_EQ(a.leftLayers, b.leftLayers);
    ASSERT_EQ(a.grayMask, b.grayMask);
    ASSERT_EQ(a.emphasis, b.emphasis);
    ASSERT_EQ(a.eventDot, b.eventDot);
    ASSERT_EQ(a.totalLines, b.totalLines);
    ASSERT_EQ(a.shades, b.shades);
    ASSERT_EQ(a.row == nullptr ? -1 : a.row - a.pixels, b.row == nullptr ? -1 : b.row - b.pixels);
    ASSERT_EQ(one.patterns, two.patterns);
    ASSERT_EQ(one.nmi, two.nmi);
}

std::vector<uint16_t> Addresses(const std::vector<Watched>& log, uint16_t bits) {
    std::vector<uint16_t> addresses;
    addresses.reserve(log.size());
    for (const Watched& watched : log) {
        addresses.push_back(watched.address & bits);
    }
    return addresses;
}

// What reaches the board: nothing, bit 12 of every address, or reads of patterns.
enum class Board { kDeaf, kCountsAddresses, kReadsPatterns };

// Any read may switch the page, by the address.
uint8_t ReadAndSwitch(void* board, uint16_t address) {
    auto& rig = *static_cast<PpuRig*>(board);
    rig.log.push_back({rig.ppu->line, rig.ppu->dot, address});
    NES_PPU_PAGE& page = rig.pages.ppu[NesPpuPageOf(address)];
    const uint8_t byte = page.data[NesPpuPlace(address)];
    page.data = &rig.patterns[(address >> 4 & 7U) * kNesPpuPageBytes];
    return byte;
}

void Connect(PpuRig& rig, Board board) {
    rig.watching = board == Board::kCountsAddresses;
    if (board != Board::kCountsAddresses) {
        rig.pages.ppuAddressHook = nullptr;
    }
    if (board == Board::kReadsPatterns) {
        for (const size_t page : {1U, 3U, 4U, 7U}) {
            rig.pages.ppu[page].read = ReadAndSwitch;
        }
    }
}

// Counts rises of address bit 12 as a board would.
struct RISES {
    uint32_t lows = 0; // addresses without the bit since the last one with it
    uint32_t count = 0;

    static void Watch(void* board, uint16_t address, uint32_t count) {
        auto& rises = *static_cast<RISES*>(board);
        if ((address & 0x1000) == 0) {
            rises.lows += count;
            return;
        }
        rises.count += rises.lows + 1 >= kNesRiseAddresses ? 1U : 0U;
        rises.lows = 0;
    }
};

// Dots to the next rise, or to a point of time that PpuDotsToEvent tells.
uint32_t DotsToRise(PpuRig& rig, const RISES& rises, uint32_t wanted) {
    const uint32_t most = PpuDotsToEvent(*rig.ppu);
    const uint32_t end = rises.count + wanted;
    uint32_t dots = 0;
    while (dots < most && rises.count < end) {
        rig.Dot();
        ++dots;
    }
    return dots;
}

} // namespace

TEST(PpuState, IsAPieceOfTheCommonForm) {
    PpuRig rig;
    const std::vector<uint8_t> state = Save(*rig.ppu);
    EXPECT_EQ(state[0], 1);
    EXPECT_EQ(LoadLittleEndian<uint32_t>(&state[1]), state.size());
    std::vector<uint8_t> longer = state;
    longer.push_back(0);
    const auto size = static_cast<uint32_t>(state.size());
    EXPECT_EQ(Load(*rig.ppu, longer), size);
    EXPECT_EQ(PpuLoadState(*rig.ppu, state.data(), size - 1), 0U);
    EXPECT_EQ(PpuLoadState(*rig.ppu, state.data(), 0), 0U);
    std::vector<uint8_t> other = state;
    other[0] = 2;
    EXPECT_EQ(Load(*rig.ppu, other), 0U);
    other = state;
    other[1] = static_cast<uint8_t>(other[1] + 1);
    EXPECT_EQ(Load(*rig.ppu, other), 0U);
}

TEST(PpuState, ARefusedOneChangesNothing) {
    PpuRig rig;
    Randomize(rig, 5);
    rig.RunTo(77, 77);
    const std::vector<uint8_t> before = Save(*rig.ppu);
    std::vector<uint8_t> other(before.size(), 0x55);
    EXPECT_EQ(Load(*rig.ppu, other), 0U);
    EXPECT_EQ(Save(*rig.ppu), before);
}

TEST(PpuState, RestoresAtEveryDotOfTheLinesThatDiffer) {
    for (const int32_t line : {-1, 40, 240, 241}) {
        PpuRig first;
        Randomize(first, 7);
        first.Finish();
        if (line != -1) {
            first.RunTo(line - 1, 330);
        } else {
            first.RunTo(260, 330);
        }
        std::mt19937 random(3);
        for (uint32_t moment = 0; moment < 360; ++moment) {
            first.Dot();
            if (moment % 5 == 0) {
                Access(first, random);
            }
            PpuRig second;
            const std::vector<uint8_t> state = Save(*first.ppu);
            ASSERT_EQ(Load(*second.ppu, state), state.size());
            ASSERT_EQ(Save(*second.ppu), state);
            second.patterns = first.patterns;
            PPU& a = *first.ppu;
            PPU& b = *second.ppu;
            ASSERT_EQ(a.rendering, b.rendering);
            ASSERT_EQ(a.visible, b.visible);
            ASSERT_EQ(a.eventDot, b.eventDot);
            ASSERT_EQ(a.layers, b.layers);
            ASSERT_EQ(a.leftLayers, b.leftLayers);
            ASSERT_EQ(a.grayMask, b.grayMask);
            ASSERT_EQ(a.emphasis, b.emphasis);
            ASSERT_EQ(a.shades, b.shades);
        }
    }
}

TEST(PpuState, RestoredRunsGiveTheSamePictures) {
    for (uint32_t moment = 11; moment < 2 * 89342; moment += 23456) {
        PpuRig first;
        Randomize(first, moment);
        first.Finish();
        first.Dots(moment);
        first.Write(7, 0x99); // an access in progress
        first.Dots(moment % 3);
        PpuRig second;
        ASSERT_EQ(Load(*second.ppu, Save(*first.ppu)), PpuStateSize());
        second.patterns = first.patterns;
        second.pixels = first.pixels;
        PpuBeginFrame(*first.ppu, first.pixels.data(), kPpuWidth);
        PpuBeginFrame(*second.ppu, second.pixels.data(), kPpuWidth);
        for (uint32_t frame = 0; frame < 2; ++frame) {
            first.Finish();
            second.Finish();
            ASSERT_EQ(first.pixels, second.pixels) << moment;
            ASSERT_EQ(Save(*first.ppu), Save(*second.ppu)) << moment;
        }
    }
}

// Arbitrary bytes: counters and indices are brought into range, and the chip runs on.
TEST(PpuState, AnyBytesAreSafe) {
    std::mt19937 random(1);
    for (uint32_t trial = 0; trial < 60; ++trial) {
        PpuRig rig;
        std::vector<uint8_t> state = Save(*rig.ppu);
        const bool ones = trial == 0;
        std::generate(state.begin() + 5, state.end(),
                      [&] { return ones ? uint8_t{0xFF} : RandomByte(random); });
        ASSERT_EQ(Load(*rig.ppu, state), state.size());
        const PPU& ppu = *rig.ppu;
        ASSERT_GE(ppu.line, -1);
        ASSERT_LE(ppu.line, 260);
        ASSERT_TRUE(ppu.lineLength == 341 || (ppu.lineLength == 340 && ppu.line == -1));
        ASSERT_LT(ppu.dot, ppu.lineLength);
        ASSERT_LE(ppu.drawnDots, std::min(ppu.dot + 1, 256U));
        ASSERT_LE(ppu.evaluatedDots, std::min(ppu.dot + 1, 256U));
        ASSERT_LE(ppu.vramAddress, 0x7FFF);
        ASSERT_LE(ppu.tempAddress, 0x7FFF);
        ASSERT_LE(ppu.fineX, 7);
        ASSERT_LE(ppu.firstWrite, 1);
        ASSERT_LE(ppu.ioState, 6);
        ASSERT_LE(ppu.ioAddress, 0x3FFF);
        ASSERT_LE(ppu.fetchAddress, 0x3FFF);
        ASSERT_LE(ppu.attribute, 3);
        ASSERT_LE(ppu.evaluation, 4);
        ASSERT_LE(ppu.foundCount, 8);
        ASSERT_LE(ppu.spriteCount, 8);
        for (const uint8_t entry : ppu.palette) {
            ASSERT_LE(entry, 0x3F);
        }
        PpuBeginFrame(*rig.ppu, rig.pixels.data(), kPpuWidth);
        for (uint32_t i = 0; i < 400; ++i) {
            Access(rig, random);
            rig.Dots(300);
        }
        ASSERT_LE(rig.Finish(), 2U * 89342);
    }
}

TEST(PpuState, ALoadedLineEndsWhereItShould) {
    PpuRig first;
    first.Write(1, 0x18);
    first.RunTo(-1, 300);
    if (first.ppu->lineLength != kPpuShortLineDots) {
        first.RunTo(-1, 300);
    }
    ASSERT_EQ(first.ppu->lineLength, kPpuShortLineDots);
    PpuRig second;
    ASSERT_EQ(Load(*second.ppu, Save(*first.ppu)), PpuStateSize());
    second.Dots(39);
    EXPECT_EQ(second.ppu->dot, 339U);
    second.Dot();
    EXPECT_EQ(second.ppu->dot, 0U);
    EXPECT_EQ(second.ppu->line, 0);
}

TEST(PpuCatchUp, SearchOfALineAtOnceEndsAsDotByDot) {
    std::mt19937 random(9);
    for (uint32_t trial = 0; trial < 3000; ++trial) {
        PpuRig rig;
        PPU& whole = *rig.ppu;
        for (uint8_t& byte : whole.oam) {
            byte = RandomByte(random) & (trial % 2 == 0 ? 0x1F : 0x7F);
        }
        whole.line = static_cast<int32_t>(random() % 32) - 1;
        whole.control = RandomByte(random) & 0x20;
        whole.oamAddress = trial % 4 == 0 ? RandomByte(random) : uint8_t{0};
        const auto copy = std::make_unique<PPU>(whole);
        PPU& dots = *copy;
        PpuEvaluateLine(whole);
        for (uint32_t dot = 0; dot < 256; ++dot) {
            PpuEvaluateDot(dots, dot);
        }
        ASSERT_EQ(Save(whole), Save(dots)) << trial;
    }
}

TEST(PpuCatchUp, WithoutAPictureTheChipBehavesTheSame) {
    PpuRig seen;
    PpuRig unseen;
    Randomize(seen, 4);
    Randomize(unseen, 4);
    for (uint32_t frame = 0; frame < 2; ++frame) {
        seen.Finish();
        PpuBeginFrame(*unseen.ppu, nullptr, 0);
        while (!unseen.ppu->frameDone) {
            unseen.Dot();
        }
        ASSERT_EQ(Save(*seen.ppu), Save(*unseen.ppu));
    }
    EXPECT_EQ(unseen.pixels, std::vector<uint32_t>(size_t{kPpuWidth} * kPpuHeight));
}

// At any dot, most of all around those in which the vblank flag comes, and after any accesses.
TEST(PpuStatusRead, IsIdleIfItChangesNothing) {
    std::mt19937 random(3);
    PpuRig rig;
    Randomize(rig, 3);
    uint32_t idle = 0;
    constexpr uint32_t kTrials = 6000;
    for (uint32_t trial = 0; trial < kTrials; ++trial) {
        switch (random() % 8) {
        case 0: rig.RunTo(240, 339); break;
        case 1: rig.RunTo(-1, 0); break;
        case 2: rig.Write(0, RandomByte(random)); break;
        case 3: rig.Write(random() % 2 == 0 ? 2 : 5, RandomByte(random)); break;
        case 4: rig.Dots(300); break;
        default: rig.Dots(static_cast<uint32_t>(random() % 4)); break;
        }
        const bool isIdle = PpuStatusReadIsIdle(*rig.ppu);
        const std::vector<uint8_t> state = Save(*rig.ppu);
        const uint32_t nmi = rig.nmi;
        (void)rig.Read(2);
        ASSERT_EQ(isIdle, state == Save(*rig.ppu) && nmi == rig.nmi) << trial;
        idle += isIdle ? 1U : 0U;
    }
    EXPECT_GT(idle, kTrials / 10);
    EXPECT_LT(idle, kTrials / 10 * 9);
}

// Spans of any length with register accesses between them, with each kind of board.
TEST(PpuRun, DoesTheSameAsSingleDots) {
    for (uint32_t seed = 0; seed < 24; ++seed) {
        PpuRig run;
        PpuRig dots;
        const auto board = static_cast<Board>(seed % 3);
        for (PpuRig* rig : {&run, &dots}) {
            Randomize(*rig, seed);
            Connect(*rig, board);
        }
        std::mt19937 random(seed);
        std::mt19937 runRandom(seed + 100);
        std::mt19937 dotRandom(seed + 100);
        const std::array<uint32_t, 4> longest{7, 40, 400, 5000};
        const uint32_t accessEvery = seed / 12 == 0 ? 3 : 40;
        const uint16_t bits = board == Board::kCountsAddresses ? 0x1000 : 0x3FFF;
        for (uint32_t frame = 0; frame < 3; ++frame) {
            PpuBeginFrame(*run.ppu, run.pixels.data(), kPpuWidth);
            PpuBeginFrame(*dots.ppu, dots.pixels.data(), kPpuWidth);
            while (!run.ppu->frameDone) {
                const auto count =
                    static_cast<uint32_t>(1 + random() % longest[(seed / 3 + frame) % 4]);
                PpuRun(*run.ppu, count);
                dots.Dots(count);
                ASSERT_NO_FATAL_FAILURE(ExpectTheSame(run, dots)) << seed << " " << count;
                if (random() % accessEvery == 0) {
                    Access(run, runRandom);
                    Access(dots, dotRandom);
                    ASSERT_NO_FATAL_FAILURE(ExpectTheSame(run, dots)) << seed;
                }
            }
            ASSERT_EQ(run.pixels, dots.pixels) << seed << " " << frame;
            ASSERT_EQ(Addresses(run.log, bits), Addresses(dots.log, bits)) << seed << " " << frame;
            ASSERT_EQ(run.log.empty(), board == Board::kDeaf);
            run.log.clear();
            dots.log.clear();
        }
    }
}

TEST(PpuRise, NeverComesBeforeItsTime) {
    std::mt19937 random(5);
    uint32_t early = 0; // trials in which a rise came before the event
    for (uint32_t trial = 0; trial < 1000; ++trial) {
        PpuRig rig;
        RISES rises;
        Randomize(rig, trial);
        rig.pages.board = &rises;
        rig.pages.ppuAddressHook = RISES::Watch;
        rig.Dots(static_cast<uint32_t>(random() % 89342));
        // What is switched in the middle of a line may make the next address a rise.
        rig.Write(0, RandomByte(random) & 0x38U);
        rig.Write(1, random() % 4 == 0 ? 0x00 : 0x1E);
        if (random() % 4 == 0) {
            Access(rig, random);
        }
        if (random() % 2 == 0) {
            rig.Dots(static_cast<uint32_t>(random() % 700));
        }
        const auto wanted = static_cast<uint32_t>(1 + random() % (trial % 2 == 0 ? 4 : 300));
        const uint32_t said = std::min(PpuDotsToRise(*rig.ppu, wanted), PpuDotsToEvent(*rig.ppu));
        const uint32_t before = rises.count;
        const uint32_t dots = DotsToRise(rig, rises, wanted);
        ASSERT_GE(said, 1U);
        ASSERT_LE(said, dots) << trial;
        early += rises.count == before + wanted ? 1U : 0U;
    }
    EXPECT_GT(early, 150U);
}

TEST(PpuRise, MayBeTheAddressOfAnAccess) {
    PpuRig rig;
    RISES rises;
    rig.pages.board = &rises;
    rig.pages.ppuAddressHook = RISES::Watch;
    rig.RunTo(250, 0);
    rig.Write(0, 0x04); // an access adds 32 to the address
    rig.Address(0x1FF0);
    rig.Write(7, 0);
    EXPECT_EQ(rig.ppu->vramAddress & 0x1000, 0);
    EXPECT_EQ(PpuDotsToRise(*rig.ppu, 1), 1U);
    rig.Dot();
    EXPECT_EQ(rises.count, 1U);
}

TEST(PpuRise, MayBeTheLastSprite) {
    PpuRig rig;
    RISES rises;
    rig.Scroll(0, 0, 0);
    rig.Write(1, 0x1E);
    rig.pages.board = &rises;
    rig.pages.ppuAddressHook = RISES::Watch;
    rig.RunTo(10, 315);
    rig.Write(0, 0x08); // sprites from the second table
    EXPECT_EQ(PpuDotsToRise(*rig.ppu, 1), 1U);
    rig.Dot();
    EXPECT_EQ(rises.count, 1U);
}

// With background and sprites in different tables the rise is at the first pattern of the other kind, and after the
// picture on the first dot.
TEST(PpuRise, IsSaidAFewDotsAhead) {
    struct Row {
        int32_t line; // from its dot 0
        uint32_t control;
        uint32_t wanted;
        uint32_t said; // the begin of the part of the line in which it is
        uint32_t dots;
    };
    const std::vector<Row> rows{
        {10,  0x08, 1, 256,           260          },
        {10,  0x08, 5, 4 * 341 + 256, 4 * 341 + 260},
        {10,  0x10, 2, 256,           324          },
        {10,  0x10, 5, 3 * 341 + 256, 3 * 341 + 324},
        {236, 0x08, 5, 4 * 341,       4 * 341      },
    };
    for (const Row& row : rows) {
        PpuRig rig;
        RISES rises;
        rig.Scroll(0, 1, row.control); // bit 12 is the lowest of fine Y
        rig.Write(1, 0x1E);
        rig.pages.board = &rises;
        rig.pages.ppuAddressHook = RISES::Watch;
        rig.RunTo(row.line, 0);
        EXPECT_EQ(PpuDotsToRise(*rig.ppu, row.wanted), row.said) << row.line << " " << row.wanted;
        const uint32_t steady = row.control == 0x10 ? 1 : 0; // the rise that could come at once
        EXPECT_EQ(DotsToRise(rig, rises, row.wanted - steady), row.dots)
            << row.line << " " << row.wanted;
    }
}
