// States of the three machines: sizes, order, equal frames after a load, damaged bytes.
#include "base/bytes.h"
#include "machines/machines.h"
#include "sega8/game_gear.h"
#include "sega8/machine_rig.h"
#include "sega8/sms.h"
#include "sega8/system_e.h"

#include "support/machine_states.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>

namespace {

// A busy program: fills VRAM, scrolls in an interrupt handler, plays sound, writes to all memory.
// `dataPort` is that of a VDP, `soundPort` that of a PSG.
Program Restless(int dataPort, int soundPort) {
    const int control = dataPort + 1;
    Program program;
    program.Bytes({0xF3, 0xED, 0x56, 0x31, 0xF0, 0xDF, 0xC3, 0x80, 0x00});
    program.At(0x38).Bytes({0xF5, 0xE5, 0xDB, control, 0x21, 0x80, 0xC1, 0x34, 0x7E});
    program.Bytes({0xD3, control, 0x3E, 0x88, 0xD3, control}); // register 8: a counter
    program.Bytes({0x7E, 0xE6, 0x3F, 0xD3, soundPort});        // pitch
    program.Bytes({0xE1, 0xF1, 0xFB, 0xC9});
    program.At(0x66).Bytes({0xED, 0x45});
    program.At(0x80);
    program.VdpRegister(control, 0, 0x34).VdpRegister(control, 1, 0x62);
    program.VdpRegister(control, 10, 20);
    for (int i = 0; i < 32; ++i) {
        program.Out(control, i).Out(control, 0xC0).Out(dataPort, i * 7 & 0x3F);
    }
    program.Out(soundPort, 0x90).Out(soundPort, 0x8C).Out(soundPort, 0xE4).Out(soundPort, 0xF4);
    program.Out(control, 0).Out(control, 0x40).Bytes({0xFB, 0x11, 0x34, 0x12});
    const int loop = program.Here();
    program.Bytes({0x7B, 0x82, 0x07, 0xAA, 0x57, 0x1C, 0xD3, dataPort});
    program.Bytes({0x6B, 0x26, 0xC2, 0x77}); // ld l,e; ld h,0xC2; ld (hl),a
    program.Bytes({0xC3, loop & 0xFF, loop >> 8});
    return program;
}

struct CASE {
    const char* name;
    std::unique_ptr<CEmuSystem> (*start)();
    void (*usePlainLoop)(CEmuSystem& machine);
    std::vector<std::wstring> actions; // held in some of the frames
};

// The name of a case in a failure.
void PrintTo(const CASE& what, std::ostream* out) {
    *out << what.name;
}

template <typename Machine>
void UsePlainLoop(CEmuSystem& machine) {
    dynamic_cast<Machine&>(machine).SetPlainLoop(true);
}

std::unique_ptr<CEmuSystem> StartSms(SMS_OPTIONS options) {
    CGameFile game = SmsGame(Restless(0xBE, 0x7F).Image());
    return StartMachine<CSMS>(options, game);
}

std::unique_ptr<CEmuSystem> StartGear(bool linked) {
    GEAR_OPTIONS options{};
    options.gearToGear = linked ? 1 : 0;
    CGameFile game = GearGame(Restless(0xBE, 0x7F).Image());
    return StartMachine<CGAMEGEAR>(options, game);
}

std::unique_ptr<CEmuSystem> StartArcade(uint32_t board) {
    CGameFile game = ArcadeGame(Restless(0xBE, 0x7B).Image(), board);
    return StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
}

std::unique_ptr<CEmuSystem> StartPlainSms() {
    return StartSms({});
}
std::unique_ptr<CEmuSystem> StartFmSms() {
    return StartSms({
        kSms2Pal, 1, 1, {2,            4},
           {            }
    });
}
std::unique_ptr<CEmuSystem> StartPaddleSms() {
    return StartSms({
        kSms1Ntsc, 0, 0, {8,            16},
           {            }
    });
}
std::unique_ptr<CEmuSystem> StartOneGear() {
    return StartGear(false);
}
std::unique_ptr<CEmuSystem> StartTwoGears() {
    return StartGear(true);
}
std::unique_ptr<CEmuSystem> StartAnalogArcade() {
    return StartArcade(1);
}
std::unique_ptr<CEmuSystem> StartDialArcade() {
    return StartArcade(4);
}

template <typename Machine>
CASE MakeCase(const char* name, std::unique_ptr<CEmuSystem> (*start)(),
              std::vector<std::wstring> actions) {
    return {name, start, UsePlainLoop<Machine>, std::move(actions)};
}

const std::vector<CASE> kCases = {
    MakeCase<CSMS>("Sms", StartPlainSms, {L"SMS P1 UP", L"SMS PAUSE"}),
    MakeCase<CSMS>("SmsPalFmPhaserSportsPadGlasses", StartFmSms, {L"SMS P1 LEFT", L"SMS P2 UP"}),
    MakeCase<CSMS>("SmsPaddleSixButtons", StartPaddleSms, {L"SMS P1 LEFT", L"SMS P2 BUTTON3"}),
    MakeCase<CGAMEGEAR>("GameGear", StartOneGear, {L"GG P1 UP", L"GG P1 START"}),
    MakeCase<CGAMEGEAR>("LinkedGameGears", StartTwoGears, {L"GG P1 UP", L"GG P2 START"}),
    MakeCase<CSEGAE>("ArcadeAnalog", StartAnalogArcade, {L"Arcade P1 LEFT", L"Arcade P1 BUTTON1"}),
    MakeCase<CSEGAE>("ArcadeDial", StartDialArcade, {L"Arcade P1 RIGHT", L"Arcade Start1"}),
};

// Runs frames with the same input for the same frame numbers.
std::vector<FRAME_RESULT> Play(CEmuSystem& machine, const CASE& what, int from, int count) {
    auto rig = std::make_unique<MACHINE_RIG>();
    std::vector<FRAME_RESULT> results;
    for (int frame = from; frame < from + count; ++frame) {
        for (size_t i = 0; i < what.actions.size(); ++i) {
            MACHINE_RIG::Press(what.actions[i], (static_cast<size_t>(frame) / 8 >> i & 1) != 0);
        }
        rig->Frame(machine);
        results.push_back({rig->pictureHash, rig->soundHash, rig->audio.sampleCount});
    }
    return results;
}

auto PlayOf(const CASE& what) {
    return [&what](CEmuSystem& machine, int from, int count) {
        return Play(machine, what, from, count);
    };
}

// The resamplers come after the chips, two in each of these machines.
constexpr size_t kSoundPieces = 2;

// Of the board's and the chips' pieces.
std::vector<uint32_t> PieceSizes(const SAVED& saved) {
    std::vector<uint32_t> sizes = AllPieceSizes(saved);
    EXPECT_GT(sizes.size(), kSoundPieces);
    sizes.resize(sizes.size() - std::min(sizes.size(), kSoundPieces));
    return sizes;
}

} // namespace

TEST(MachineState, SmsPiecesAreInOrder) {
    const SAVED saved = Save(*StartSms({}));
    const std::vector<uint32_t> expected = {32849, 87, VdpStateSize(), PsgStateSize(),
                                            YmStateSize()};
    EXPECT_EQ(PieceSizes(saved), expected);
}

TEST(MachineState, GearPiecesAreInOrder) {
    for (const bool linked : {false, true}) {
        const std::vector<uint32_t> sizes = PieceSizes(Save(*StartGear(linked)));
        const std::vector<uint32_t> chips = {87, VdpStateSize(), PsgStateSize(),
                                             87, VdpStateSize(), PsgStateSize()};
        ASSERT_EQ(sizes.size(), 7u);
        EXPECT_EQ(std::vector<uint32_t>(sizes.begin() + 1, sizes.end()), chips);
    }
}

TEST(MachineState, ArcadePiecesAreInOrder) {
    const SAVED saved = Save(*StartArcade(3));
    // Header, two words, seven latches, the dial, four mapper words, memories.
    constexpr uint32_t kBoard = 5 + 8 + 7 + 2 + 16 + 16384 + 32768 + 32768;
    const std::vector<uint32_t> expected = {
        kBoard, 87, VdpStateSize(), VdpStateSize(), PsgStateSize(), PsgStateSize()};
    EXPECT_EQ(PieceSizes(saved), expected);
}

TEST(MachineState, SmsBoardBeginsWithTheEightPortLatches) {
    const std::unique_ptr<CEmuSystem> machine = StartSms({
        0, 1, 0, {0,            0},
           {            }
    });
    auto& sms = dynamic_cast<CSMS&>(*machine);
    sms.WritePort(0xF0, 0x0E);
    sms.WritePort(0xF2, 0x03);
    sms.WritePort(0x3F, 0x55);
    sms.WritePort(0x3E, 0xA3);
    const SAVED saved = Save(sms);
    const uint8_t expected[] = {0, 0x0E, 0x03, 0x55, 0xA3, 0, 0xFF, 0xFF};
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(saved.blob[5 + i], expected[i]) << i;
    }
    EXPECT_EQ(saved.blob[13 + 68], 0xAB) << "the work RAM, after 17 words";
}

class EveryMachineState : public testing::TestWithParam<CASE> {};

TEST_P(EveryMachineState, ContinuesAsTheUnbrokenRunInPictureAndSound) {
    const CASE& what = GetParam();
    ExpectTheRunThatWentOn([&] { return what.start(); }, PlayOf(what));
}

TEST_P(EveryMachineState, LoadsAtAnyFrameOfItsOwnRun) {
    const CASE& what = GetParam();
    ExpectLoadsAtAnyFrame([&] { return what.start(); }, PlayOf(what), 24, [](CEmuSystem&) {});
}

// The chips around the Z80 are owed clocks in the one and never in the other.
TEST_P(EveryMachineState, FastAndPlainFramesAreTheSame) {
    const CASE& what = GetParam();
    ExpectFastAndPlainAlike([&] { return what.start(); }, what.usePlainLoop, PlayOf(what));
}

TEST_P(EveryMachineState, WithoutItsSoundLoadsWithEmptyResamplers) {
    const CASE& what = GetParam();
    ExpectLoadsWithoutItsSound([&] { return what.start(); }, PlayOf(what), kSoundPieces);
}

INSTANTIATE_TEST_SUITE_P(MachineState, EveryMachineState, testing::ValuesIn(kCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(MachineState, SoundAfterLoadingIsAlwaysTheSame) {
    for (const CASE& what : kCases) {
        SCOPED_TRACE(what.name);
        const auto machine = what.start();
        Play(*machine, what, 0, 37);
        const SAVED saved = Save(*machine);
        ASSERT_TRUE(machine->LoadState(saved.blob.get(), saved.size));
        const auto first = Play(*machine, what, 37, kFollowingFrames / 5);
        const auto other = what.start();
        Play(*other, what, 0, 5);
        ASSERT_TRUE(other->LoadState(saved.blob.get(), saved.size));
        const auto second = Play(*other, what, 37, kFollowingFrames / 5);
        ExpectSameFrames(first, second);
    }
}

TEST(MachineState, SavingDisturbsNothing) {
    for (const CASE& what : kCases) {
        SCOPED_TRACE(what.name);
        const auto plain = what.start();
        const auto saving = what.start();
        for (int frame = 0; frame < 40; ++frame) {
            const auto a = Play(*plain, what, frame, 1);
            const auto b = Play(*saving, what, frame, 1);
            ASSERT_EQ(a[0].picture, b[0].picture);
            ASSERT_EQ(a[0].sound, b[0].sound);
            const SAVED first = Save(*saving);
            ASSERT_TRUE(Save(*saving) == first);
        }
    }
}

TEST(MachineState, LoadedStateIsSavedAlike) {
    for (const CASE& what : kCases) {
        SCOPED_TRACE(what.name);
        const auto machine = what.start();
        Play(*machine, what, 0, 37);
        ExpectSavedAlike(Save(*machine), *what.start());
    }
}

TEST(MachineState, IsRefusedWhenItIsCutOrOfAnotherVersionOrSize) {
    for (const CASE& what : kCases) {
        SCOPED_TRACE(what.name);
        const auto machine = what.start();
        const SAVED saved = Save(*machine);
        ExpectCutsAreRefused(*machine, saved, PieceSizes(saved));
        ExpectWrongHeadersAreRefused(*machine, saved, PieceSizes(saved));
    }
}

TEST(MachineState, DamagedBytesLoadAndRunOrAreRefused) {
    for (const CASE& what : kCases) {
        SCOPED_TRACE(what.name);
        const auto machine = what.start();
        Play(*machine, what, 0, 3);
        EXPECT_GT(LoadDamaged(*machine, Save(*machine), [&] { Play(*machine, what, 0, 2); }), 20);
        machine->Reset();
        Play(*machine, what, 0, 1);
    }
}

TEST(Machines, ListHoldsTheThreeMachines) {
    const MACHINE_LIST& list = BuiltInMachines();
    const struct {
        uint32_t system;
        const char* folder;
    } rows[] = {
        {1, ".\\sms"     },
        {2, ".\\gamegear"},
        {6, ""           },
    };
    for (const auto& row : rows) {
        const auto found =
            std::find_if(list.machines.begin(), list.machines.end(),
                         [&](const auto& entry) { return entry.system == row.system; });
        ASSERT_NE(found, list.machines.end());
        EXPECT_STREQ(found->folder, row.folder);
        EXPECT_EQ(found->construct(5)->sessionKey, 5u);
    }
}
