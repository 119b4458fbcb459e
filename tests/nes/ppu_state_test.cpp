// States at any dot and of arbitrary bytes; and work that is put off or done in groups, against the same work done
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
    EXPECT_EQ(PpuSaveState(ppu, state.data()).At(), state.data() + state.size());
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

// Every field of the record, the bus, the interrupt line and the picture.
void ExpectTheSame(const PpuRig& one, const PpuRig& two) {
    const PPU& a = *one.ppu;
    const PPU& b = *two.ppu;
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

std::vector<uint16_t> Addresses(const std::vector<Watched>& log) {
    std::vector<uint16_t> addresses;
    for (const Watched& watched : log) {
        addresses.push_back(watched.address);
    }
    return addresses;
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

// Pixels and sprite evaluation are put off, and events are only checked on event dots. Done on every single dot
// instead, pictures, register values and states are the same.
TEST(PpuCatchUp, DelayIsNeverSeen) {
    for (uint32_t seed = 0; seed < 12; ++seed) {
        PpuRig fast;
        PpuRig plain;
        Randomize(fast, seed);
        Randomize(plain, seed);
        std::mt19937 fastRandom(seed);
        std::mt19937 plainRandom(seed);
        // From no access during the picture to one every few dots.
        const uint32_t pause = seed % 3 == 0 ? 1000000 : seed % 3 == 1 ? 1709 : 37;
        for (uint32_t frame = 0; frame < 3; ++frame) {
            PpuBeginFrame(*fast.ppu, fast.pixels.data(), kPpuWidth);
            PpuBeginFrame(*plain.ppu, plain.pixels.data(), kPpuWidth);
            uint32_t dots = 0;
            while (!fast.ppu->frameDone) {
                fast.Dot();
                plain.PlainDots(1);
                if (++dots % pause == 0) {
                    Access(fast, fastRandom);
                    Access(plain, plainRandom);
                    ASSERT_EQ(fast.ppu->openBus, plain.ppu->openBus) << seed;
                    ASSERT_EQ(fast.ppu->status, plain.ppu->status) << seed;
                }
            }
            ASSERT_EQ(fast.pixels, plain.pixels) << seed << " " << frame;
            ASSERT_EQ(Save(*fast.ppu), Save(*plain.ppu)) << seed << " " << frame;
        }
    }
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

// Spans of any length with register accesses between them; with a board that watches the addresses, which must see
// the same ones in the same order, and with one that doesn't.
TEST(PpuRun, DoesTheSameAsSingleDots) {
    for (uint32_t seed = 0; seed < 16; ++seed) {
        PpuRig run;
        PpuRig dots;
        const bool isWatched = seed % 2 == 0;
        for (PpuRig* rig : {&run, &dots}) {
            Randomize(*rig, seed);
            rig->watching = isWatched;
            if (!isWatched) {
                rig->pages.ppuAddressHook = NesIgnoreAddress;
            }
        }
        std::mt19937 random(seed);
        std::mt19937 runRandom(seed + 100);
        std::mt19937 dotRandom(seed + 100);
        const std::array<uint32_t, 4> longest{7, 40, 400, 5000};
        const uint32_t accessEvery = seed / 4 % 2 == 0 ? 3 : 40;
        for (uint32_t frame = 0; frame < 3; ++frame) {
            PpuBeginFrame(*run.ppu, run.pixels.data(), kPpuWidth);
            PpuBeginFrame(*dots.ppu, dots.pixels.data(), kPpuWidth);
            while (!run.ppu->frameDone) {
                const auto count =
                    static_cast<uint32_t>(1 + random() % longest[(seed / 2 + frame) % 4]);
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
            ASSERT_EQ(Addresses(run.log), Addresses(dots.log)) << seed << " " << frame;
            ASSERT_EQ(run.log.empty(), !isWatched);
            run.log.clear();
            dots.log.clear();
        }
    }
}
