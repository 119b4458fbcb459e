// Programs that poll PPUSTATUS: the fast loop, which skips rounds of such a loop, against the plain one. Each must end on
// the same cycle.
#include "nes/nes_boards.h"
#include "nes/nes_rig.h"

#include <random>
#include <vector>

namespace {

constexpr uint16_t kInterrupts = 0x0011; // counts the interrupts

// Waits for flags of PPUSTATUS over and over, with sprites that set them in some lines. What follows each wait changes
// the colours, so that the picture tells the dot on which it ended.
class PollingProgram {
public:
    explicit PollingProgram(uint32_t seed)
        : random(seed) {
        program.Bytes({0xA2, 0xFF, 0x9A}).Store(0x2000, 0).Store(0x2001, 0); // LDX # TXS
        program.WaitForBlank().WaitForBlank();
        Patterns();
        program.PictureAddress(0x3F00);
        for (int entry = 0; entry < 32; ++entry) {
            program.Store(0x2007, entry);
        }
        Sprites();
        program.WaitForBlank().Store(0x2003, 0).Store(0x4014, 2);
        program.Store(0x2005, 0).Store(0x2005, 0).Store(0x2000, 0x80).Store(0x2001, 0x1E);
        const uint16_t loop = program.Here();
        while (program.Here() < kNesNmi - 0x20) {
            Delay();
            Wait();
            program.Store(0x2001, 0x1E | Below(8) << 5); // emphasis
        }
        program.Jump(loop);
        program.At(kNesNmi).Bytes({0xE6, kInterrupts, 0x40}); // INC RTI
    }

    [[nodiscard]] const NesProgram& Program() const { return program; }

private:
    int Below(int end) { return static_cast<int>(random() % static_cast<uint32_t>(end)); }

    // Sprites of eight lines are visible only in the last, so that they hit the background late.
    void Patterns() {
        program.PictureAddress(0);
        FillTiles(0);
        FillTiles(0x5A);
    }

    // A pattern table, whose tiles have this byte in the first seven rows of each plane.
    void FillTiles(int byte) {
        program.Bytes({0xA0, 2, 0xA2, 0}); // LDY # LDX #
        const uint16_t loop = program.Here();
        program.Lda(byte);
        for (int row = 0; row < 7; ++row) {
            program.Sta(0x2007);
        }
        program.Store(0x2007, 0x5A).Bytes({0xCA, 0xD0, 0xE1, 0x88, 0xD0, 0xDE}); // DEX BNE, DEY BNE
        EXPECT_EQ(program.Here() - loop, 34);
    }

    // Groups of 7 to 9 in the same lines; sprite 0 is in the first, which may be off the screen. Those that are upside
    // down hit early.
    void Sprites() {
        program.Lda(0xFF).Bytes({0xA2, 0, 0x9D, 0x00, 0x02, 0xE8, 0xD0, 0xFA}); // LDX # STA INX BNE
        int sprite = 0;
        for (int group = Below(4); group >= 0; --group) {
            const int y = Below(250);
            for (int count = 7 + Below(3); count != 0; --count, ++sprite) {
                program.Store(0x200 + 4 * sprite, y).Store(0x203 + 4 * sprite, Below(256));
                program.Store(0x202 + 4 * sprite, 0x80 * Below(2)); // upside down
            }
        }
    }

    void Delay() {
        if (Below(3) == 0) {
            program.Bytes({0xA2, Below(256), 0xCA, 0xD0, 0xFD}); // LDX # DEX BNE
        }
    }

    // Until one of these flags is set or cleared, or an interrupt has come.
    void Wait() {
        const int flags = Below(4) == 0 ? 0x80 : 0x20 << Below(2);
        const int branch = Below(3) == 0 ? 0xF0 : 0xD0; // BEQ or BNE
        program.Store(0x2000, 0x90 | Below(2) << 5);    // the background from the second table
        program.Bytes({0xA6, kInterrupts})
            .Load(0x2002)
            .Bytes({0x29, flags, branch, 0x04});        // LDX, AND
        program.Bytes({0xE4, kInterrupts, 0xF0, 0xF5}); // CPX BEQ
    }

    std::mt19937 random;
    NesProgram program;
};

// A frame's part of a program: at a point of time that moves on by 15 dots a frame, through the lines 25 to 36, it
// stores values in registers and then polls a flag.
struct POLL {
    struct SPRITE {
        int number;
        int y; // the line above it
        int tile;
        int x;
    };
    struct STORE {
        int address;
        int value;
    };

    int control = 0x90; // background from the second table, NMI
    int mask = 0x1E;
    std::vector<SPRITE> sprites{};
    std::vector<SPRITE> nextSprites{}; // in the page that a later DMA may read
    std::vector<STORE> stores{};
    int flag = 0x40;
    int idleInstructions = 0; // of two cycles, in each round
    bool hasSamples = false;  // whose reads stall the CPU
};

// In the first table tile 0 is visible only in its last row, and the others are solid; all of the second are.
std::vector<uint8_t> PollPatterns() {
    std::vector<uint8_t> patterns(0x2000, 0xFF);
    for (const size_t plane : {0U, 8U}) {
        for (size_t row = 0; row < 7; ++row) {
            patterns[plane + row] = 0;
        }
    }
    return patterns;
}

class SweepingProgram {
public:
    explicit SweepingProgram(const POLL& poll) {
        program.Store(0x2000, 0).Store(0x2001, 0).WaitForBlank().WaitForBlank();
        for (const int page : {2, 3}) {
            program.Lda(0xFF).Bytes({0xA2, 0}).Absolute(0x9D, page << 8); // LDX # STA,X
            program.Bytes({0xE8, 0xD0, 0xFA});                            // INX BNE
            for (const POLL::SPRITE& sprite : page == 2 ? poll.sprites : poll.nextSprites) {
                const int at = (page << 8) + 4 * sprite.number;
                program.Store(at, sprite.y).Store(at + 1, sprite.tile);
                program.Store(at + 2, 0).Store(at + 3, sprite.x);
            }
        }
        if (poll.hasSamples) {
            program.Store(0x4010, 0x4F).Store(0x4012, 0).Store(0x4013, 0xFF).Store(0x4015, 0x10);
        }
        program.Store(0x2000, 0x80).Stop();
        program.At(kNesNmi).Bytes({0xA2, 0xFF, 0x9A, 0xE6, 0x10}); // LDX # TXS INC
        program.Store(0x2000, poll.control).Store(0x2001, poll.mask);
        program.Store(0x2003, 0).Store(0x4014, 2);
        Delay();
        for (const POLL::STORE& store : poll.stores) {
            program.Store(store.address, store.value);
        }
        Poll(poll);
        CountCycles();
    }

    [[nodiscard]] const NesProgram& Program() const { return program; }

private:
    void Delay() {
        program.Bytes(
            {0xA0, 4, 0xA2, 0, 0xCA, 0xD0, 0xFD, 0x88, 0xD0, 0xF8}); // LDY # LDX # DEX BNE
        program.Bytes({0xA6, 0x10, 0xCA, 0xD0, 0xFD});               // LDX DEX BNE
    }

    // Until the flag is set, or the next NMI.
    void Poll(const POLL& poll) {
        const uint16_t loop = program.Here();
        program.Load(0x2002).Bytes({0x29, poll.flag, 0xD0, poll.idleInstructions + 3}); // AND BNE
        for (int i = 0; i < poll.idleInstructions; ++i) {
            program.Bytes({0xEA});
        }
        program.Jump(loop);
    }

    // The memory then tells on which cycle the loop ended.
    void CountCycles() {
        program.Bytes({0xE6, 0x20});
        const uint16_t loop = program.Here();
        program.Bytes({0xE6, 0x21, 0xD0, 0xFC, 0xE6, 0x22}).Jump(loop); // INC BNE INC
    }

    NesProgram program;
};

// Frames in which the flag came.
int EndsOnTheSameCycle(const POLL& poll, int frames = 250) {
    const SweepingProgram sweeping(poll);
    const NES_IMAGE image{0, 0, 2, 1, PollPatterns()};
    const auto fast = StartNes(sweeping.Program(), image);
    const auto plain = StartNes(sweeping.Program(), image);
    plain->SetPlainLoop(true);
    const int before = NesByte(*plain, 0x20);
    for (int frame = 0; frame < frames; ++frame) {
        const FRAME_RESULT one = Play(*fast, frame, 1).front();
        const FRAME_RESULT two = Play(*plain, frame, 1).front();
        EXPECT_EQ(one.picture, two.picture) << frame;
        EXPECT_EQ(one.sound, two.sound) << frame;
        if (!(Save(*fast) == Save(*plain))) {
            ADD_FAILURE() << "state, frame " << frame;
            break;
        }
    }
    return (NesByte(*plain, 0x20) - before) & 0xFF;
}

} // namespace

TEST(NesPolling, EndsOnTheSameDotFastAndPlain) {
    constexpr uint32_t kPrograms = 30;
    constexpr int kFrames = 30;
    std::vector<FRAME_RESULT> run;
    run.reserve(size_t{kPrograms} * kFrames);
    for (uint32_t seed = 0; seed < kPrograms; ++seed) {
        const PollingProgram polling(seed);
        const NES_IMAGE image{0, 0, 2, 0, {}};
        const auto fast = StartNes(polling.Program(), image);
        const auto plain = StartNes(polling.Program(), image);
        plain->SetPlainLoop(true);
        for (int frame = 0; frame < kFrames; ++frame) {
            const FRAME_RESULT one = Play(*fast, frame, 1).front();
            const FRAME_RESULT two = Play(*plain, frame, 1).front();
            ASSERT_EQ(one.picture, two.picture) << seed << ", frame " << frame;
            ASSERT_TRUE(Save(*fast) == Save(*plain)) << seed << ", frame " << frame;
            run.push_back(one);
        }
    }
    size_t changes = 0;
    for (size_t i = 1; i < run.size(); ++i) {
        changes += run[i].picture != run[i - 1].picture ? 1U : 0U;
    }
    EXPECT_GT(changes, run.size() / 2);
}

// Sprite 0 is found in the lines 22 to 29 and visible in line 30, far to the right: the hit is pending when it is out of
// range already.
TEST(NesPolling, SeesTheHitInTheLastLineOfASprite) {
    EXPECT_GT(EndsOnTheSameCycle({.sprites = {{0, 22, 0, 240}}}), 100);
}

// Sprite 0 is found in line 28 before OAM loses it, and still hits in the next.
TEST(NesPolling, SeesTheHitOfASpriteThatWasFoundBeforeOamChanged) {
    EXPECT_GT(
        EndsOnTheSameCycle({
            .sprites = {{0, 28, 2, 240}},
              .stores = { {0x2001, 0}, {0x4014, 3}, {0x2001, 0x1E}}
    }),
        100);
}

// The picture is switched on where only sprites of sixteen lines are in range.
TEST(NesPolling, SeesTheHitOfALongSprite) {
    EXPECT_GT(
        EndsOnTheSameCycle(
            {.control = 0xB0, .mask = 0, .sprites = {{0, 20, 2, 240}}, .stores = {{0x2001, 0x1E}}}),
        100);
}

// Five sprites are found before those of the next page replace them, and four after: one too many for the line.
TEST(NesPolling, SeesTheOverflowOfSpritesFoundBeforeOamChanged) {
    POLL poll{.flag = 0x20};
    for (int number = 1; number <= 5; ++number) {
        poll.sprites.push_back({number, 26, 2, 0});
    }
    for (int number = 30; number < 34; ++number) {
        poll.nextSprites.push_back({number, 26, 2, 0});
    }
    poll.stores = {
        {0x2001, 0   },
        {0x4014, 3   },
        {0x2001, 0x1E}
    };
    EXPECT_GT(EndsOnTheSameCycle(poll), 2);
}

// A round takes half a line, so that the PPU is owed much of it when rounds are skipped.
TEST(NesPolling, LongRoundsEndInTime) {
    POLL poll{.flag = 0x20, .idleInstructions = 25};
    for (int number = 1; number <= 9; ++number) {
        poll.sprites.push_back({number, 60, 2, 0});
    }
    EXPECT_GT(EndsOnTheSameCycle(poll), 200);
}

TEST(NesPolling, ReadsThatASampleDelaysAreNotSkipped) {
    EXPECT_EQ(EndsOnTheSameCycle({.sprites = {}, .idleInstructions = 25, .hasSamples = true}, 600),
              0);
}
