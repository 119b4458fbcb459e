// States of the NES with every kind of board: a loaded run continues like the saved one, and arbitrary bytes do no
// harm.
#include "base/bytes.h"
#include "machine/state_piece.h"
#include "nes/nes_boards.h"
#include "nes/nes_rig.h"

#include "support/machine_states.h"

#include <cstring>
#include <numeric>
#include <random>

namespace {

// A busy program: random numbers go to work RAM, to the board's registers and RAM, to the pads and to the PPU while
// it draws; each vblank changes sprites, scroll, palette, nametables and all sound channels, samples included;
// board and APU interrupts are handled.
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

std::unique_ptr<CNES> Start(const NES_BOARD_CASE& what) {
    return StartNes(Restless(), ImageOf(what));
}

constexpr size_t kPiecesOfEveryBoard = 5; // before the plain board's RAM and the sound

class EveryNesState : public testing::TestWithParam<NES_BOARD_CASE> {};

} // namespace

TEST_P(EveryNesState, ContinuesAsTheUnbrokenRunInPictureAndSound) {
    ExpectTheRunThatWentOn([] { return Start(GetParam()); }, Play);
}

TEST_P(EveryNesState, TwoRunsAreTheSame) {
    const auto first = Start(GetParam());
    const auto second = Start(GetParam());
    const auto one = Play(*first, 0, 60);
    const auto two = Play(*second, 0, 60);
    ExpectSameFrames(one, two);
}

// The PPU is owed dots in the one and never in the other.
TEST_P(EveryNesState, FastAndPlainFramesAreTheSame) {
    ExpectFastAndPlainAlike([] { return Start(GetParam()); }, Play);
}

TEST_P(EveryNesState, LoadsAtAnyFrameOfItsOwnRun) {
    ExpectLoadsAtAnyFrame([] { return Start(GetParam()); }, Play, 24, [](CNES&) {});
}

TEST_P(EveryNesState, IsSavedAlikeAfterLoading) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 37);
    ExpectSavedAlike(Save(*machine), *Start(GetParam()));
}

TEST_P(EveryNesState, WithoutItsSoundLoadsWithAnEmptyResampler) {
    ExpectLoadsWithoutItsSound([] { return Start(GetParam()); }, Play, 1);
}

TEST_P(EveryNesState, IsRefusedWhenItIsCutOrOfAnotherVersionOrSize) {
    const auto machine = Start(GetParam());
    const SAVED saved = Save(*machine);
    std::vector<uint32_t> sizes = AllPieceSizes(saved);
    sizes.pop_back();
    // A plain board's state may end before its RAM.
    const auto isWithoutRam = [](size_t piece, bool atStart) {
        return piece == kPiecesOfEveryBoard && atStart;
    };
    ExpectCutsAreRefused(*machine, saved, sizes, isWithoutRam);
    ExpectWrongHeadersAreRefused(*machine, saved, sizes);
}

TEST_P(EveryNesState, DamagedBytesLoadAndRunOrAreRefused) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 3);
    EXPECT_GT(LoadDamaged(*machine, Save(*machine), [&] { Play(*machine, 0, 2); }), 20);
    machine->Reset();
    Play(*machine, 0, 1);
}

INSTANTIATE_TEST_SUITE_P(NesState, EveryNesState, testing::ValuesIn(kNesBoardCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(NesState, PiecesComeInTheirOrder) {
    const std::vector<uint32_t> plain = AllPieceSizes(Save(*Start(kNesBoardCases[0])));
    ASSERT_EQ(plain.size(), 6U);
    EXPECT_EQ(plain[0], 5U + 0x800 + 2 + 8) << "header, work RAM, buttons, read counts";
    EXPECT_EQ(plain[1], kM6502StateSize);
    EXPECT_EQ(plain[2], PpuStateSize());
    EXPECT_EQ(plain[3], ApuStateSize());
    EXPECT_EQ(plain[4], 5U) << "the plain board keeps nothing";
    const std::vector<uint32_t> withRam = AllPieceSizes(Save(*Start(kNesBoardCases[1])));
    ASSERT_EQ(withRam.size(), 7U);
    EXPECT_EQ(withRam[4], 5U);
    EXPECT_EQ(withRam[5], 5U + 0x2000);
}

TEST(NesState, OfAnotherBoardIsRefused) {
    const auto shift = Start(kNesBoardCases[2]);
    const SAVED saved = Save(*shift);
    EXPECT_FALSE(Start(kNesBoardCases[0])->LoadState(saved.blob.get(), saved.size));
}

// The five pieces are loaded; the RAM, which they don't contain, stays.
TEST(NesState, OfAPlainBoardMayEndBeforeItsRam) {
    const auto machine = Start(kNesBoardCases[1]);
    Play(*machine, 0, 5);
    const SAVED saved = Save(*machine);
    const std::vector<uint32_t> sizes = AllPieceSizes(saved);
    const uint32_t length =
        std::accumulate(sizes.begin(), sizes.begin() + kPiecesOfEveryBoard, uint32_t{0});
    const auto other = Start(kNesBoardCases[1]);
    Play(*other, 0, 9);
    const NesBoardRam before = other->Console().cartridge.plainRam;
    ASSERT_NE(before, machine->Console().cartridge.plainRam);
    const std::vector<uint8_t> cut(saved.blob.get(), saved.blob.get() + length);
    ASSERT_TRUE(other->LoadState(cut.data(), length));
    EXPECT_EQ(other->Console().cartridge.plainRam, before);
    const SAVED again = Save(*other);
    EXPECT_EQ(0, std::memcmp(saved.blob.get(), again.blob.get(), length));
}

// Pieces are loaded in order: those before the refused one stay loaded; that one and those after it change
// nothing.
TEST(NesState, ARefusedPieceKeepsThoseBeforeIt) {
    for (size_t refused = 0; refused < kPiecesOfEveryBoard; ++refused) {
        const auto machine = Start(kNesBoardCases[2]);
        Play(*machine, 0, 5);
        const SAVED saved = Save(*machine);
        const auto other = Start(kNesBoardCases[2]);
        Play(*other, 0, 9);
        const SAVED before = Save(*other);
        const std::vector<uint32_t> sizes = AllPieceSizes(saved);
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
