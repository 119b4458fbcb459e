// States of the NES with every kind of board: what follows a load is what followed the save, and bytes of
// any kind do no harm.
#include "base/bytes.h"
#include "base/state_piece.h"
#include "nes/nes_rig.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <ostream>
#include <random>

namespace {

// A restless program: random numbers go to work RAM, to the board's registers and RAM, to the pads and
// into the picture while it is drawn; each blank moves sprites, scroll, palette, nametables and all
// channels of sound, samples included; interrupts of the board and the sound unit are answered.
NesProgram Restless() {
    NesProgram program;
    program.Store(0x0000, 0x35).Store(0x0001, 1).Store(0x0011, 0);
    program.Store(0x4017, 0).Store(0x2000, 0x80).Store(0x2001, 0x1E).Bytes({0x58});
    const uint16_t loop = program.Here();
    program.Load(0x0000).Bytes({0x0A, 0x69, 0x35, 0x4D, 0x01, 0x00}).Sta(0x0000); // ASL ADC EOR
    program.Bytes({0xAA, 0xE6, 0x01}).Absolute(0x9D, 0x0200);                     // TAX INC STA,X
    program.Absolute(0x9D, 0x8000).Absolute(0x9D, 0x6000);
    program.Sta(0x4016).Absolute(0x6D, 0x4016).Absolute(0x6D, 0x4017); // ADC
    program.Absolute(0x6D, 0x8000 + kBankNumberOffset).Absolute(0x7D, 0x6000).Sta(0x0000);
    program.Bytes({0xA6, 0x01, 0xD0, 0x03}).Sta(0x2007).Jump(loop); // every 256th time
    program.At(kNesNmi).Bytes({0x48}).Store(0x4014, 2).Load(0x2002);
    program.Store(0x2006, 0x3F).Copy(0x0001, 0x2006).Copy(0x0000, 0x2007);
    program.Load(0x0001).Bytes({0x29, 3, 0x09, 0x20}).Sta(0x2006).Copy(0x0000, 0x2006);
    program.Copy(0x0001, 0x2007).Copy(0x0001, 0x2007);
    program.Copy(0x0001, 0x2005).Copy(0x0000, 0x2005).Store(0x2000, 0x88);
    program.Store(0x4010, 0x0E).Store(0x4012, 0x80).Store(0x4013, 0x04).Store(0x4015, 0x1F);
    program.Store(0x4000, 0x7F).Copy(0x0000, 0x4002).Store(0x4003, 0x09).Copy(0x0001, 0x4001);
    program.Store(0x4004, 0x86).Copy(0x0001, 0x4006).Store(0x4007, 0x0A);
    program.Store(0x4008, 0x40).Copy(0x0000, 0x400A).Store(0x400B, 0x08);
    program.Store(0x400C, 0x04).Copy(0x0001, 0x400E).Store(0x400F, 0x18);
    program.Copy(0x0000, 0xC000).Sta(0xC001).Sta(0xE001).Bytes({0x68, 0x40}); // PLA RTI
    program.At(kNesIrq).Bytes({0x48}).Load(0x4015).Bytes({0xE6, 0x11});
    program.Sta(0xE000).Sta(0xE001).Sta(0xD000).Bytes({0x68, 0x40});
    return program;
}

struct CASE {
    const char* name;
    int board;
    int flags;
    int programBanks;
    int characterBanks;
};

// How a failing test names its case.
void PrintTo(const CASE& what, std::ostream* out) {
    *out << what.name;
}

constexpr CASE kCases[] = {
    {"Plain",           0,  1, 2, 1},
    {"PlainRam",        0,  0, 2, 0},
    {"Shift",           1,  1, 8, 4},
    {"ShiftRam",        1,  0, 4, 0},
    {"ProgramBank",     2,  1, 3, 0},
    {"CharacterBank",   3,  0, 2, 4},
    {"Scanline",        4,  0, 8, 8},
    {"ScanlineFourRam", 4,  8, 4, 0},
    {"OneScreen",       7,  0, 8, 0},
    {"Latched",         9,  0, 8, 8},
    {"TwoBanks",        66, 1, 8, 4},
    {"Cycle",           73, 0, 4, 0},
};

std::unique_ptr<CNES> Start(const CASE& what) {
    std::mt19937 random(static_cast<uint32_t>(what.board) + 1);
    std::vector<uint8_t> characters(static_cast<size_t>(what.characterBanks) * 0x2000);
    for (uint8_t& byte : characters) {
        byte = static_cast<uint8_t>(random());
    }
    return StartNes(Restless(),
                    {what.board, what.flags, what.programBanks, what.characterBanks, characters});
}

struct FRAME_RESULT {
    uint64_t picture;
    uint64_t sound;
    uint32_t pairs;
};

// Runs frames with the same input for the same frame numbers.
std::vector<FRAME_RESULT> Play(CNES& machine, int from, int count) {
    auto rig = std::make_unique<MACHINE_RIG>();
    std::vector<FRAME_RESULT> results;
    for (int frame = from; frame < from + count; ++frame) {
        MACHINE_RIG::Press(L"NES P1 UP", (frame / 8 & 1) != 0);
        MACHINE_RIG::Press(L"NES P2 BUTTONB", (frame / 16 & 1) != 0);
        rig->Frame(machine);
        results.push_back({rig->pictureHash, rig->soundHash, rig->audio.sampleCount});
    }
    return results;
}

constexpr size_t kPiecesOfEveryBoard = 5; // before the plain board's RAM and the sound

struct SAVED {
    StateBlob blob;
    uint32_t size = 0;
};

SAVED Save(CNES& machine) {
    SAVED saved;
    saved.blob = machine.SaveState(saved.size);
    return saved;
}

// Sizes of all pieces, that of the sound on its way last.
std::vector<uint32_t> PieceSizes(const SAVED& saved) {
    std::vector<uint32_t> sizes;
    for (uint32_t at = 0; at + 5 <= saved.size;) {
        EXPECT_EQ(saved.blob[at], 1) << "version at " << at;
        const auto size = LoadLittleEndian<uint32_t>(saved.blob.get() + at + 1);
        sizes.push_back(size);
        at += std::max(size, 5U);
    }
    return sizes;
}

class EveryNesState : public testing::TestWithParam<CASE> {};

} // namespace

TEST_P(EveryNesState, GivesThePicturesAndTheSoundOfTheRunThatWentOn) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 37);
    const SAVED saved = Save(*machine);
    const auto continued = Play(*machine, 37, kFollowingFrames);
    const auto other = Start(GetParam());
    ASSERT_TRUE(other->LoadState(saved.blob.get(), saved.size));
    const auto loaded = Play(*other, 37, kFollowingFrames);
    size_t pictures = 0;
    size_t sounds = 0;
    for (size_t i = 0; i < continued.size(); ++i) {
        ASSERT_EQ(continued[i].picture, loaded[i].picture) << i;
        ASSERT_EQ(continued[i].pairs, loaded[i].pairs) << i;
        ASSERT_EQ(continued[i].sound, loaded[i].sound) << i;
        pictures += i != 0 && continued[i].picture != continued[i - 1].picture ? 1U : 0U;
        sounds += i != 0 && continued[i].sound != continued[i - 1].sound ? 1U : 0U;
    }
    EXPECT_GT(pictures, size_t{kFollowingFrames} / 6) << "pictures that tell something";
    EXPECT_GT(sounds, size_t{kFollowingFrames} / 6) << "sound that tells something";
}

TEST_P(EveryNesState, TwoRunsAreTheSame) {
    const auto first = Start(GetParam());
    const auto second = Start(GetParam());
    const auto one = Play(*first, 0, 60);
    const auto two = Play(*second, 0, 60);
    for (size_t i = 0; i < one.size(); ++i) {
        ASSERT_EQ(one[i].picture, two[i].picture) << i;
        ASSERT_EQ(one[i].sound, two[i].sound) << i;
    }
}

// The picture unit may run late in one and is always up to date in the other.
TEST_P(EveryNesState, FastAndPlainFramesAreTheSame) {
    const auto fast = Start(GetParam());
    const auto plain = Start(GetParam());
    plain->SetStepByStep(true);
    for (int frame = 0; frame < 100; ++frame) {
        const auto one = Play(*fast, frame, 1);
        const auto two = Play(*plain, frame, 1);
        ASSERT_EQ(one[0].picture, two[0].picture) << frame;
        ASSERT_EQ(one[0].sound, two[0].sound) << frame;
        const SAVED first = Save(*fast);
        const SAVED second = Save(*plain);
        ASSERT_EQ(first.size, second.size);
        ASSERT_EQ(0, std::memcmp(first.blob.get(), second.blob.get(), first.size)) << frame;
    }
}

TEST_P(EveryNesState, LoadsAtAnyFrameOfItsOwnRun) {
    const auto machine = Start(GetParam());
    const auto other = Start(GetParam());
    for (int frame = 0; frame < 24; ++frame) {
        const SAVED saved = Save(*machine);
        const auto continued = Play(*machine, frame, 1);
        ASSERT_TRUE(other->LoadState(saved.blob.get(), saved.size));
        const auto loaded = Play(*other, frame, 1);
        ASSERT_EQ(continued[0].picture, loaded[0].picture) << frame;
        ASSERT_EQ(continued[0].sound, loaded[0].sound) << frame;
    }
}

TEST_P(EveryNesState, IsSavedAlikeAfterLoading) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 37);
    const SAVED saved = Save(*machine);
    const auto other = Start(GetParam());
    ASSERT_TRUE(other->LoadState(saved.blob.get(), saved.size));
    const SAVED again = Save(*other);
    ASSERT_EQ(saved.size, again.size);
    EXPECT_EQ(0, std::memcmp(saved.blob.get(), again.blob.get(), saved.size));
}

TEST_P(EveryNesState, WithoutItsSoundLoadsWithAnEmptyResampler) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 37);
    const SAVED saved = Save(*machine);
    const uint32_t chips = saved.size - PieceSizes(saved).back();
    const auto continued = Play(*machine, 37, 10);
    const auto other = Start(GetParam());
    for (const uint32_t length : {chips, chips + 3, saved.size - 1}) {
        const std::vector<uint8_t> cut(saved.blob.get(), saved.blob.get() + length);
        ASSERT_TRUE(other->LoadState(cut.data(), length)) << length;
        const auto loaded = Play(*other, 37, 10);
        for (size_t i = 0; i < loaded.size(); ++i) {
            ASSERT_EQ(continued[i].picture, loaded[i].picture) << i;
        }
    }
}

TEST_P(EveryNesState, IsRefusedWhenItIsCutOrOfAnotherVersionOrSize) {
    const auto machine = Start(GetParam());
    const SAVED saved = Save(*machine);
    std::vector<uint32_t> sizes = PieceSizes(saved);
    sizes.pop_back();
    uint32_t at = 0;
    for (size_t piece = 0; piece < sizes.size(); ++piece) {
        const uint32_t size = sizes[piece];
        // A copy of just this length, so that a read past its end is seen by the sanitizer.
        for (const uint32_t length : {at, at + 4, at + size - 1}) {
            const std::vector<uint8_t> cut(saved.blob.get(), saved.blob.get() + length);
            const bool isWithoutRam = piece == kPiecesOfEveryBoard && length == at;
            EXPECT_EQ(machine->LoadState(cut.data(), length), isWithoutRam) << length;
        }
        for (uint32_t byte = 0; byte < 5; ++byte) {
            saved.blob[at + byte] ^= 1;
            EXPECT_FALSE(machine->LoadState(saved.blob.get(), saved.size)) << at << '+' << byte;
            saved.blob[at + byte] ^= 1;
        }
        at += size;
    }
    EXPECT_TRUE(machine->LoadState(saved.blob.get(), saved.size));
}

TEST_P(EveryNesState, DamagedBytesLoadAndRunOrAreRefused) {
    std::mt19937 random(1);
    const auto machine = Start(GetParam());
    Play(*machine, 0, 3);
    const SAVED saved = Save(*machine);
    const std::vector<uint32_t> sizes = PieceSizes(saved);
    int ran = 0;
    for (int round = 0; round < 60; ++round) {
        std::vector<uint8_t> damaged(saved.blob.get(), saved.blob.get() + saved.size);
        // One piece after the other, as a refused one hides those behind it.
        const size_t piece = static_cast<size_t>(round) % sizes.size();
        uint32_t at = 0;
        for (size_t i = 0; i < piece; ++i) {
            at += sizes[i];
        }
        for (uint32_t i = 5; i < sizes[piece]; ++i) {
            if (round < 12) {
                damaged[at + i] = 0xFF;
            } else if (round % 3 == 0 || random() % 32 == 0) {
                damaged[at + i] = static_cast<uint8_t>(random());
            }
        }
        if (machine->LoadState(damaged.data(), saved.size)) {
            Play(*machine, 0, 2);
            ++ran;
        }
    }
    EXPECT_GT(ran, 20);
    machine->Reset();
    Play(*machine, 0, 1);
}

INSTANTIATE_TEST_SUITE_P(NesState, EveryNesState, testing::ValuesIn(kCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(NesState, PiecesStandInTheirOrder) {
    const std::vector<uint32_t> plain = PieceSizes(Save(*Start(kCases[0])));
    ASSERT_EQ(plain.size(), 6U);
    EXPECT_EQ(plain[0], 5U + 0x800 + 2 + 8) << "header, work RAM, buttons, read counts";
    EXPECT_EQ(plain[1], kM6502StateSize);
    EXPECT_EQ(plain[2], PpuStateSize());
    EXPECT_EQ(plain[3], ApuStateSize());
    EXPECT_EQ(plain[4], 5U) << "the plain board keeps nothing";
    const std::vector<uint32_t> withRam = PieceSizes(Save(*Start(kCases[1])));
    ASSERT_EQ(withRam.size(), 7U);
    EXPECT_EQ(withRam[4], 5U);
    EXPECT_EQ(withRam[5], 5U + 0x2000);
}

TEST(NesState, OfAnotherBoardIsRefused) {
    const auto shift = Start(kCases[2]);
    const SAVED saved = Save(*shift);
    EXPECT_FALSE(Start(kCases[0])->LoadState(saved.blob.get(), saved.size));
}

// What the five pieces hold comes; of the RAM they say nothing, so it stays.
TEST(NesState, OfAPlainBoardMayEndBeforeItsRam) {
    const auto machine = Start(kCases[1]);
    Play(*machine, 0, 5);
    const SAVED saved = Save(*machine);
    const std::vector<uint32_t> sizes = PieceSizes(saved);
    const uint32_t length =
        std::accumulate(sizes.begin(), sizes.begin() + kPiecesOfEveryBoard, uint32_t{0});
    const auto other = Start(kCases[1]);
    Play(*other, 0, 9);
    const NesBoardRam before = other->Console().cartridge.plainRam;
    ASSERT_NE(before, machine->Console().cartridge.plainRam);
    const std::vector<uint8_t> cut(saved.blob.get(), saved.blob.get() + length);
    ASSERT_TRUE(other->LoadState(cut.data(), length));
    EXPECT_EQ(other->Console().cartridge.plainRam, before);
    const SAVED again = Save(*other);
    EXPECT_EQ(0, std::memcmp(saved.blob.get(), again.blob.get(), length));
}

// The pieces are taken one after the other: those before the refused one are in force, and that one and
// those behind it have changed nothing.
TEST(NesState, ARefusedPieceKeepsThoseBeforeIt) {
    for (size_t refused = 0; refused < kPiecesOfEveryBoard; ++refused) {
        const auto machine = Start(kCases[2]);
        Play(*machine, 0, 5);
        const SAVED saved = Save(*machine);
        const auto other = Start(kCases[2]);
        Play(*other, 0, 9);
        const SAVED before = Save(*other);
        const std::vector<uint32_t> sizes = PieceSizes(saved);
        const auto at = std::accumulate(
            sizes.begin(), sizes.begin() + static_cast<ptrdiff_t>(refused), uint32_t{0});
        saved.blob[at] ^= 1;
        EXPECT_FALSE(other->LoadState(saved.blob.get(), saved.size));
        const SAVED after = Save(*other);
        uint32_t from = 0;
        for (size_t piece = 0; piece < kPiecesOfEveryBoard; ++piece) {
            const SAVED& expected = piece < refused ? saved : before;
            EXPECT_NE(0, std::memcmp(saved.blob.get() + from + kStatePieceHeader,
                                     before.blob.get() + from + kStatePieceHeader,
                                     sizes[piece] - kStatePieceHeader))
                << "nothing told by piece " << piece;
            EXPECT_EQ(
                0, std::memcmp(after.blob.get() + from, expected.blob.get() + from, sizes[piece]))
                << "piece " << piece << " with " << refused << " refused";
            from += sizes[piece];
        }
    }
}
