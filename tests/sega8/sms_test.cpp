// The Master System: ports, options, frames, sound.
#include "sega8/machine_rig.h"
#include "sega8/sms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using Sms = std::unique_ptr<CSMS>;

Sms Start(const SMS_OPTIONS& options, const Program& program) {
    CGameFile game = SmsGame(program.Image());
    return StartMachine<CSMS>(options, game);
}

Sms Start(const SMS_OPTIONS& options = {}) {
    return Start(options, Program().Stop());
}

SMS_OPTIONS Console(uint8_t console) {
    SMS_OPTIONS options{};
    options.console = console;
    return options;
}

// Sets colour entries 0 and 16 and shows a black backdrop.
bool Silent(const MACHINE_RIG& rig) {
    return std::all_of(rig.samples.begin(), rig.samples.begin() + rig.audio.sampleCount * 2,
                       [](int16_t value) { return value == 0; });
}

// A program that counts NMIs at 0xC100 and interrupts at 0xC101.
Program Counting() {
    Program program;
    program.Bytes({0xF3, 0xED, 0x56}).Bytes({0xC3, 0x80, 0x00}); // di; im 1; jp 0x0080
    program.At(0x38).Bytes(
        {0xF5, 0xE5, 0x21, 0x01, 0xC1, 0x34, 0xDB, 0xBF, 0xE1, 0xF1, 0xFB, 0xC9});
    program.At(0x66).Bytes({0xE5, 0x21, 0x00, 0xC1, 0x34, 0xE1, 0xED, 0x45});
    program.At(0x80);
    return program;
}

} // namespace

TEST(Sms, SizesAreThoseOfTheLargestPicture) {
    const CSMS machine(kRigKey);
    EXPECT_EQ(machine.width, 256u);
    EXPECT_EQ(machine.height, 256u);
    EXPECT_EQ(machine.sessionKey, kRigKey);
}

TEST(Sms, ConsolePicksLinesAndVideoChip) {
    const struct {
        uint8_t console;
        bool pal;
        bool tall; // can show 224 lines
    } rows[] = {
        {kSms1Pal,     true,  false},
        {kSms2Pal,     true,  true },
        {kSms1Ntsc,    false, false},
        {kSms2Ntsc,    false, true },
        {kSmsJapanese, false, false},
        {kMarkIii,     false, false},
        {0,            false, true }, // as 8
        {99,           false, true },
    };
    for (const auto& row : rows) {
        MACHINE_RIG rig;
        const Sms machine =
            Start(Console(row.console),
                  Program().VdpRegister(0xBF, 0, 6).VdpRegister(0xBF, 1, 0x50).Stop());
        rig.Frames(*machine, 2);
        EXPECT_EQ(rig.video.width, 256u);
        EXPECT_EQ(rig.video.visibleHeight, row.tall ? 224u : 192u) << int{row.console};
        EXPECT_EQ(rig.video.height, row.pal ? 240u : 224u) << int{row.console};
        EXPECT_NEAR(rig.audio.sampleCount, row.pal ? 888 : 736, 30) << int{row.console};
    }
}

TEST(Sms, FrameTakesAsManyClocksAsItsLinesSay) {
    // A loop of 13 + 16 + 16 + 13 + 12 clocks around a 16-bit counter that is stored in RAM.
    for (const bool pal : {false, true}) {
        MACHINE_RIG rig;
        Program program;
        program.Bytes({0x21, 0, 0});             // ld hl, 0
        program.Bytes({0x23, 0x22, 0x00, 0xC1}); // inc hl (6); ld (0xC100), hl (16)
        program.Bytes({0x18, 0xFA});             // jr (12)
        const Sms machine = Start(Console(pal ? kSms2Pal : kSms2Ntsc), program);
        const auto count = [&] { return machine->Peek(0xC100) + machine->Peek(0xC101) * 256; };
        rig.Frame(*machine);
        const int first = count();
        rig.Frames(*machine, 10);
        const double clocks = (count() - first) * (6.0 + 16 + 12) / 10;
        EXPECT_NEAR(clocks, (pal ? 313 : 262) * 228, 5);
    }
}

TEST(Sms, ProgramReadsThePadThroughThePorts) {
    MACHINE_RIG rig;
    Program program;
    program.In(0xDC, 0xC100).In(0xDD, 0xC101).In(0xC0, 0xC102).In(0xC1, 0xC103);
    program.Bytes({0x18, 0xEA}); // again
    const Sms machine = Start({}, program);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0xFF);
    EXPECT_EQ(machine->Peek(0xC101), 0xFF);
    MACHINE_RIG::Press(L"SMS P1 UP");
    MACHINE_RIG::Press(L"SMS P1 BUTTON2");
    MACHINE_RIG::Press(L"SMS P2 RIGHT");
    MACHINE_RIG::Press(L"SMS P2 DOWN");
    MACHINE_RIG::Press(L"SMS RESET");
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0xFF & ~0x01 & ~0x20 & ~0x80);
    EXPECT_EQ(machine->Peek(0xC101), 0xFF & ~0x02 & ~0x10);
    EXPECT_EQ(machine->Peek(0xC102), machine->Peek(0xC100));
    EXPECT_EQ(machine->Peek(0xC103), machine->Peek(0xC101));
    InputClearAll();
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0xFF);
}

TEST(Sms, AnotherSessionsInputIsNotSeen) {
    MACHINE_RIG rig;
    const Sms machine = Start();
    MACHINE_RIG::Press(L"SMS P1 UP");
    InputSetActiveKey(kRigKey + 1);
    rig.Frame(*machine);
    EXPECT_EQ(machine->ReadPort(0xDC), 0xFF);
}

TEST(Sms, EveryButtonOfBothPlayersIsPolled) {
    const wchar_t* const names[] = {L"UP", L"DOWN", L"LEFT", L"RIGHT", L"BUTTON1", L"BUTTON2"};
    for (int player = 0; player < 2; ++player) {
        for (int i = 0; i < 6; ++i) {
            MACHINE_RIG rig;
            const Sms machine = Start();
            MACHINE_RIG::Press((player == 0 ? L"SMS P1 " : L"SMS P2 ") + std::wstring(names[i]));
            rig.Frame(*machine);
            const int both = machine->ReadPort(0xDC) | machine->ReadPort(0xDD) << 8;
            EXPECT_EQ(both, 0xFFFF & ~(1 << (player * 6 + i)));
        }
    }
}

TEST(Sms, PauseRaisesOneNmiForAPress) {
    MACHINE_RIG rig;
    const Sms machine = Start({}, Counting().Stop());
    rig.Frames(*machine, 3);
    EXPECT_EQ(machine->Peek(0xC100), 0);
    MACHINE_RIG::Press(L"SMS PAUSE");
    rig.Frames(*machine, 5);
    EXPECT_EQ(machine->Peek(0xC100), 1) << "holding does nothing more";
    MACHINE_RIG::Release(L"SMS PAUSE");
    rig.Frames(*machine, 3);
    EXPECT_EQ(machine->Peek(0xC100), 1);
    MACHINE_RIG::Press(L"SMS PAUSE");
    rig.Frames(*machine, 3);
    EXPECT_EQ(machine->Peek(0xC100), 2);
}

TEST(Sms, FrameInterruptReachesTheProcessorOnceAFrame) {
    MACHINE_RIG rig;
    Program program = Counting();
    program.VdpRegister(0xBF, 1, 0x60).Bytes({0xFB}).Stop();
    const Sms machine = Start({}, program);
    rig.Frames(*machine, 10);
    EXPECT_EQ(machine->Peek(0xC101), 10);
}

TEST(Sms, LineInterruptReachesTheProcessorOnItsLines) {
    MACHINE_RIG rig;
    Program program = Counting();
    program.VdpRegister(0xBF, 1, 0x40).VdpRegister(0xBF, 10, 63).VdpRegister(0xBF, 0, 0x14);
    program.Bytes({0xFB}).Stop();
    const Sms machine = Start({}, program);
    rig.Frames(*machine, 2);
    const int before = machine->Peek(0xC101);
    rig.Frames(*machine, 4);
    EXPECT_EQ(machine->Peek(0xC101) - before, 4 * 3) << "on lines 63, 127 and 191";
}

// Stores V at the start of each handler, from 0xC200 on, with no frame interrupt between them.
TEST(Sms, LineHandlersReadTheirOwnLine) {
    for (const int value : {5, 0}) {
        MACHINE_RIG rig;
        Program program;
        program.Bytes({0xF3, 0xED, 0x56, 0xC3, 0x80, 0x00}); // di; im 1; jp 0x0080
        program.At(0x38).Bytes({0xDB, 0x7E, 0x77, 0x23});    // in a,(0x7E); ld (hl),a; inc hl
        program.Bytes({0xDB, 0xBF, 0xFB, 0xC9});             // in a,(0xBF); ei; ret
        program.At(0x80).VdpRegister(0xBF, 1, 0x40).VdpRegister(0xBF, 10, value);
        program.VdpRegister(0xBF, 0, 0x14);
        // The frame's end, then one frame with the interrupts on.
        program.Bytes({0xDB, 0x7E, 0xFE, 0xE0, 0x20, 0xFA, 0xDB, 0xBF, 0x21, 0x00, 0xC2, 0xFB});
        program.Bytes({0xDB, 0x7E, 0xFE, 0xD0, 0x20, 0xFA, 0xF3}).Stop();
        const Sms machine = Start({}, program);
        rig.Frames(*machine, 3);
        const std::vector<uint8_t> ram = machine->Memory("ram");
        std::vector<uint8_t> expected;
        for (int line = value; line <= 192; line += value + 1) {
            expected.push_back(static_cast<uint8_t>(line));
        }
        ASSERT_EQ(expected.size(), value == 0 ? 193u : 32u);
        expected.push_back(0); // and no more
        const auto from = ram.begin() + 0x200;
        EXPECT_EQ((std::vector<uint8_t>(from, from + static_cast<int>(expected.size()))), expected);
    }
}

TEST(Sms, StackStartsUnderTheMapperRegisters) {
    MACHINE_RIG rig;
    const Sms machine = Start({}, Program().Bytes({0x01, 0x34, 0x12, 0xC5}).Stop()); // push bc
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xDFEF), 0x12);
    EXPECT_EQ(machine->Peek(0xDFEE), 0x34);
}

TEST(Sms, PortsBelow40ReadOnes) {
    const Sms machine = Start();
    for (uint16_t port = 0; port < 0x40; ++port) {
        EXPECT_EQ(machine->ReadPort(port), 0xFF) << port;
    }
}

TEST(Sms, OnlyTheLowByteOfAPortCounts) {
    const Sms machine = Start();
    machine->WritePort(0x123E, 0xEB); // cartridge off
    EXPECT_EQ(machine->Peek(0), 0xFF);
}

TEST(Sms, VCounterAnswersOnEvenPorts) {
    MACHINE_RIG rig;
    const Sms machine = Start({}, Program().In(0x7E, 0xC100).In(0x40, 0xC101).Stop());
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0);
    EXPECT_EQ(machine->ReadPort(0x7E), machine->ReadPort(0x40));
}

TEST(Sms, VCounterFollowsTheBeam) {
    MACHINE_RIG rig;
    // Waits for line 0x60, then stores a mark.
    Program program;
    program.Bytes({0xDB, 0x7E, 0xFE, 0x60, 0x20, 0xFA}).Store(0xC100, 0x77).Stop();
    const Sms machine = Start({}, program);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0x77);
}

TEST(Sms, VCounterPortCountsEveryLineOfAFrame) {
    struct COUNTER_ROW {
        uint8_t console;
        int height;
        std::vector<std::pair<int, int>> ranges; // first and last value, in the order of the lines
    };
    const std::vector<COUNTER_ROW> rows = {
        {kSms2Ntsc, 192, {{0x00, 0xDA}, {0xD5, 0xFF}}},
        {kSms2Ntsc, 224, {{0x00, 0xEA}, {0xE5, 0xFF}}},
        {kSms2Ntsc, 240, {{0x00, 0xFF}, {0x00, 0x05}}},
        {kSms2Pal,  192, {{0x00, 0xF2}, {0xBA, 0xFF}}}, // with 313 lines all heights count alike
        {kSms2Pal,  224, {{0x00, 0xF2}, {0xBA, 0xFF}}},
        {kSms2Pal,  240, {{0x00, 0xF2}, {0xBA, 0xFF}}},
    };
    for (const COUNTER_ROW& row : rows) {
        std::vector<uint8_t> frame;
        for (const auto& [first, last] : row.ranges) {
            for (int value = first; value <= last; ++value) {
                frame.push_back(static_cast<uint8_t>(value));
            }
        }
        ASSERT_EQ(frame.size(), row.console == kSms2Pal ? 313u : 262u);
        // Stores every change from 0xC100 on; an iteration takes at most 51 of a line's 228 clocks.
        Program program;
        program.VdpRegister(0xBF, 0, row.height == 192 ? 0x04 : 0x06);
        program.VdpRegister(0xBF, 1, row.height == 240 ? 0x48 : row.height == 224 ? 0x50 : 0x40);
        program.Bytes({0x21, 0x00, 0xC1, 0x06, 0x00}); // ld hl,0xC100; ld b,0
        program.Bytes({0xDB, 0x7E, 0xB8, 0x28, 0xFB}); // in a,(0x7E); cp b; jr z,-5
        program.Bytes({0x47, 0x77, 0x23, 0x18, 0xF6}); // ld b,a; ld (hl),a; inc hl; jr -10
        MACHINE_RIG rig;
        const Sms machine = Start(Console(row.console), program);
        rig.Frames(*machine, 5);
        const std::vector<uint8_t> ram = machine->Memory("ram");
        const std::vector<uint8_t> noted(ram.begin() + 0x100,
                                         ram.begin() + 0x100 + static_cast<int>(frame.size()) * 4);
        std::vector<uint8_t> twoFrames = frame;
        twoFrames.insert(twoFrames.end(), frame.begin(), frame.end());
        const auto found =
            std::search(noted.begin(), noted.end(), twoFrames.begin(), twoFrames.end());
        EXPECT_LE(found - noted.begin(), static_cast<int>(frame.size()))
            << int{row.console} << " " << row.height;
    }
}

TEST(Sms, HCounterIsTheLatchOnOddPorts) {
    MACHINE_RIG rig;
    Program program;
    program.Out(0x3F, 0x55).Out(0x3F, 0x75).In(0x7F, 0xC100).In(0x41, 0xC101).Stop();
    const Sms machine = Start({}, program);
    rig.Frame(*machine);
    EXPECT_NE(machine->Peek(0xC100), 0);
    EXPECT_EQ(machine->Peek(0xC100), machine->Peek(0xC101));
    EXPECT_EQ(machine->ReadPort(0x7F), machine->Peek(0xC100)) << "it stays";
}

TEST(Sms, VideoMemoryAndColoursAreReachedThroughTheirPorts) {
    MACHINE_RIG rig;
    Program program;
    // Colour 16 to red; bytes 0x5A, 0xA5 at 0x0123, through all mirrors of the ports.
    program.Out(0xBF, 0x10).Out(0x81, 0xC0).Out(0x80, 0x03);
    program.Out(0xBF, 0x23).Out(0x83, 0x41).Out(0xBE, 0x5A).Bytes({0, 0, 0, 0, 0, 0, 0, 0});
    program.Out(0x80, 0xA5);
    program.Out(0xBF, 0x23).Out(0xBF, 0x01).Bytes({0, 0, 0, 0, 0, 0, 0, 0}).In(0xBE, 0xC100);
    program.Stop();
    const Sms machine = Start({}, program);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Memory("palette")[16], 0x03);
    EXPECT_EQ(machine->Memory("vram")[0x123], 0x5A);
    EXPECT_EQ(machine->Memory("vram")[0x124], 0xA5);
    EXPECT_EQ(machine->Peek(0xC100), 0x5A);
    EXPECT_EQ(rig.pixels[0], 0xFFFF0000) << "the backdrop, with blue in the lowest byte";
}

TEST(Sms, StatusIsReadOnOddPorts) {
    MACHINE_RIG rig;
    const Sms machine = Start();
    rig.Frame(*machine);
    EXPECT_EQ(machine->ReadPort(0xBF), 0x9F) << "the frame flag, and ones below";
    EXPECT_EQ(machine->ReadPort(0x81), 0x1F) << "reading cleared it";
}

TEST(Sms, SoundPortIsEverythingFrom40To7F) {
    for (const int port : {0x40, 0x41, 0x7E, 0x7F}) {
        MACHINE_RIG rig;
        const Sms machine =
            Start({}, Program().Out(port, 0x8F).Out(port, 0x0F).Out(port, 0x90).Stop());
        rig.Frames(*machine, 3);
        EXPECT_FALSE(Silent(rig)) << port;
    }
    MACHINE_RIG rig;
    const Sms machine = Start();
    rig.Frames(*machine, 3);
    EXPECT_TRUE(Silent(rig));
}

TEST(Sms, SoundIsAsLongAsTheFrames) {
    for (const bool withFm : {false, true}) {
        MACHINE_RIG rig;
        SMS_OPTIONS options{};
        options.fmChip = withFm ? 1 : 0;
        const Sms machine = Start(options);
        uint32_t pairs = 0;
        for (int i = 0; i < 300; ++i) {
            rig.Frame(*machine);
            pairs += rig.audio.sampleCount;
        }
        // 300 frames of 59,736 clocks at 3,579,545 Hz, less the delay of the resampler.
        EXPECT_NEAR(pairs, 300.0 * 262 * 228 / 3579545 * 44100, 400) << withFm;
    }
}

TEST(Sms, RegionTestTellsTheConsolesApart) {
    Program program;
    program.Out(0x3F, 0xF5).In(0xDD, 0xC100).Out(0x3F, 0x55).In(0xDD, 0xC101).Stop();
    for (const int console : {1, 2, 4, 8, 16, 32}) {
        MACHINE_RIG rig;
        const Sms machine = Start(Console(static_cast<uint8_t>(console)), program);
        rig.Frame(*machine);
        EXPECT_EQ(machine->Peek(0xC100) & 0xC0, 0xC0);
        EXPECT_EQ(machine->Peek(0xC101) & 0xC0, console < 16 ? 0x00 : 0xC0) << console;
    }
}

TEST(Sms, FmChipIsFoundThroughItsControlPort) {
    SMS_OPTIONS options{};
    options.fmChip = 1;
    const Sms machine = Start(options);
    EXPECT_EQ(machine->ReadPort(0xF2), 0);
    machine->WritePort(0x3E, 0xAF); // I/O chip off
    for (const uint8_t value : std::array<uint8_t, 4>{1, 2, 3, 0xFF}) {
        machine->WritePort(0xF2, value);
        EXPECT_EQ(machine->ReadPort(0xF2), value);
    }
    machine->WritePort(0x3E, 0xAB);
    EXPECT_EQ(machine->ReadPort(0xF2), 0xFF);
}

TEST(Sms, FmControlIsMixedWithThePadWhileTheIoChipIsOn) {
    MACHINE_RIG rig;
    SMS_OPTIONS options{};
    options.fmChip = 1;
    const Sms machine = Start(options);
    MACHINE_RIG::Press(L"SMS P1 UP");
    rig.Frame(*machine);
    machine->WritePort(0xF2, 0x03);
    EXPECT_EQ(machine->ReadPort(0xF2), 0x02);
    machine->WritePort(0x3E, 0xAF);
    EXPECT_EQ(machine->ReadPort(0xF2), 0x03);
}

TEST(Sms, WithoutAnFmChipItsPortsDoNothing) {
    const Sms machine = Start();
    machine->WritePort(0x3E, 0xAF);
    machine->WritePort(0xF2, 3);
    EXPECT_EQ(machine->ReadPort(0xF2), 0);
    EXPECT_EQ(machine->ReadPort(0xF0), 0xFF) << "a mirror of the pad port";
}

TEST(Sms, FmChipIsHeard) {
    Program program;
    const int writes[][2] = {
        {0x30, 0x10},
        {0x10, 0xAC},
        {0x20, 0x18}
    };
    for (const auto& write : writes) {
        program.Out(0xF0, write[0]).Out(0xF1, write[1]);
    }
    program.Stop();
    for (const bool withFm : {false, true}) {
        MACHINE_RIG rig;
        SMS_OPTIONS options{};
        options.fmChip = withFm ? 1 : 0;
        const Sms machine = Start(options, program);
        rig.Frames(*machine, 6);
        EXPECT_EQ(Silent(rig), !withFm);
    }
}

TEST(Sms, FmMixTakesThePsgDownToSevenTenths) {
    Program program;
    // A tone of period 1 is a constant level, so both runs end in the same value.
    program.Out(0x7F, 0x81).Out(0x7F, 0x00).Out(0x7F, 0x90).Stop();
    int level[2] = {};
    for (int withFm = 0; withFm < 2; ++withFm) {
        MACHINE_RIG rig;
        SMS_OPTIONS options{};
        options.fmChip = static_cast<uint8_t>(withFm);
        const Sms machine = Start(options, program);
        rig.Frames(*machine, 8);
        level[withFm] = rig.samples[200];
    }
    EXPECT_NEAR(level[0], 3276, 2);
    EXPECT_NEAR(level[1], 3276 * 0.7, 3);
}

TEST(Sms, GlassesHoldEveryFirstFrameOfAPair) {
    MACHINE_RIG rig;
    SMS_OPTIONS options{};
    options.glasses = 1;
    const Sms machine = Start(options);
    for (int i = 0; i < 6; ++i) {
        rig.Frame(*machine);
        EXPECT_EQ(rig.video.hold, i % 2 == 0 ? 1 : 0) << i;
    }
    const Sms plain = Start();
    rig.Frames(*plain, 1);
    EXPECT_EQ(rig.video.hold, 0);
}

TEST(Sms, ResetRestoresThePowerOnState) {
    Program program = Counting();
    program.VdpRegister(0xBF, 1, 0x60).Out(0x7F, 0x90).Out(0xBE, 0x55);
    // The FM chip: the user's voice on channel 0 with tremolo and vibrato, a fixed voice on channel
    // 1, and the whole rhythm.
    const std::pair<int, int> writes[] = {
        {0x00, 0xE1},
        {0x01, 0xE1},
        {0x04, 0xF0},
        {0x05, 0xF0},
        {0x30, 0x00},
        {0x10, 0x80},
        {0x20, 0x19},
        {0x31, 0x30},
        {0x11, 0x20},
        {0x21, 0x3B},
        {0x0E, 0x3F}
    };
    for (const auto& [reg, value] : writes) {
        program.Out(0xF0, reg).Out(0xF1, value);
    }
    program.Out(0xF2, 0x01).Bytes({0xFB}).Stop();
    for (const uint8_t withFm : {uint8_t{0}, uint8_t{1}}) {
        MACHINE_RIG rig;
        SMS_OPTIONS options{};
        options.fmChip = withFm;
        const Sms machine = Start(options, program);
        uint32_t size = 0;
        const StateBlob before = machine->SaveState(size);
        rig.Frames(*machine, 21);
        EXPECT_FALSE(Silent(rig));
        machine->WritePort(0x3F, 0x00);
        const StateBlob dirty = machine->SaveState(size);
        EXPECT_NE(0, std::memcmp(before.get(), dirty.get(), size));
        machine->Reset();
        const StateBlob after = machine->SaveState(size);
        EXPECT_EQ(0, std::memcmp(before.get(), after.get(), size)) << int{withFm};
    }
}

// After a reset the state is that of a new machine, and so are pictures and sound.
TEST(Sms, FrameAfterAResetIsThatOfAFreshMachine) {
    Program program;
    program.VdpRegister(0xBF, 0, 0x04).VdpRegister(0xBF, 1, 0x60);
    program.Out(0xF0, 0x30).Out(0xF1, 0x30).Out(0xF0, 0x10).Out(0xF1, 0x80);
    program.Out(0xF0, 0x20).Out(0xF1, 0x19).Out(0xF0, 0x0E).Out(0xF1, 0x3F).Stop();
    SMS_OPTIONS options{};
    options.fmChip = 1;
    auto worn = std::make_unique<MACHINE_RIG>();
    auto fresh = std::make_unique<MACHINE_RIG>();
    const Sms first = Start(options, program);
    worn->Frames(*first, 17);
    first->Reset();
    const Sms second = Start(options, program);
    for (int frame = 0; frame < 20; ++frame) {
        worn->Frame(*first);
        fresh->Frame(*second);
        ASSERT_EQ(worn->audio.sampleCount, fresh->audio.sampleCount) << frame;
        ASSERT_EQ(worn->soundHash, fresh->soundHash) << frame;
        ASSERT_EQ(worn->pictureHash, fresh->pictureHash) << frame;
    }
    EXPECT_FALSE(Silent(*fresh));
}

TEST(Sms, BiosRunsFirstAndSwitchesToTheCartridge) {
    MACHINE_RIG rig;
    Program bios;
    // Copies a jump into RAM and runs it: ld a,0xAB; out (0x3E),a; jp 0.
    const int jump[] = {0x3E, 0xAB, 0xD3, 0x3E, 0xC3, 0x00, 0x00};
    for (int i = 0; i < 7; ++i) {
        bios.Store(0xC010 + i, jump[i]);
    }
    bios.Bytes({0xC3, 0x10, 0xC0});
    CGameFile biosGame = SmsGame(bios.Image(0x2000), 1, 3);
    CGameFile game = SmsGame(Program().Store(0xC100, 0x42).Stop().Image());
    const Sms machine = StartMachine<CSMS>(SMS_OPTIONS{}, game, &biosGame);
    EXPECT_EQ(machine->Peek(0), bios.Image()[0]);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0x42);
}

TEST(Sms, BiosImageAloneHasNoCartridge) {
    CGameFile game = SmsGame(std::vector<uint8_t>(0x2000, 0xB1), 1, 3);
    const Sms machine = StartMachine<CSMS>(SMS_OPTIONS{}, game);
    EXPECT_EQ(machine->Peek(0), 0xB1);
    EXPECT_EQ(machine->Peek(0xBFFF), 0xB1);
    machine->WritePort(0x3E, 0xAB);
    EXPECT_EQ(machine->Peek(0), 0xFF);
}

TEST(Sms, BoardOfTheRecordPicksTheMapper) {
    const struct {
        uint16_t board;
        uint16_t address;
    } rows[] = {
        {1, 0xFFFF},
        {2, 0x8000},
        {3, 0xA000}
    };
    for (const auto& row : rows) {
        MACHINE_RIG rig;
        std::vector<uint8_t> image = NumberedBanks(8);
        const std::vector<uint8_t> code = Program().Store(row.address, 5).Stop().Image(16);
        std::copy(code.begin(), code.end(), image.begin());
        CGameFile game = SmsGame(image, row.board);
        const Sms machine = StartMachine<CSMS>(SMS_OPTIONS{}, game);
        rig.Frame(*machine);
        EXPECT_EQ(machine->Peek(0x9000), 5) << row.board;
    }
}

TEST(Sms, DefaultRecordMeansDefaults) {
    CGameFile game = WithDefaultRecord(SmsGame(NumberedBanks(4), 2, 3), NumberedBanks(4));
    const Sms machine = StartMachine<CSMS>(SMS_OPTIONS{}, game);
    EXPECT_EQ(machine->Peek(0xC000), 0xAB) << "a cartridge, not a BIOS";
    EXPECT_EQ(machine->Peek(0x9000), 2);
}

TEST(Sms, GamesThatCannotRunAreRefusedWithAReason) {
    const SMS_OPTIONS options{};
    const auto refused = [&](CGameFile* first, CGameFile* second) {
        EmuSetLastError("");
        CSMS machine(kRigKey);
        CGameFile* const games[2] = {first, second};
        EXPECT_FALSE(machine.Init(&options, games));
        return EmuLastError();
    };
    EXPECT_EQ(refused(nullptr, nullptr), "there is no game to run");
    CGameFile nothing;
    EXPECT_EQ(refused(&nothing, nullptr), "the game has no image");
    CGameFile empty = SmsGame({});
    EXPECT_EQ(refused(&empty, nullptr), "the image of \"Test Game\" is empty");
    CGameFile large = SmsGame(std::vector<uint8_t>(kSegaImageLimit + 1));
    EXPECT_EQ(refused(&large, nullptr),
              "the image of \"Test Game\" has 4194305 bytes; this machine "
              "takes at most 4194304");
    CGameFile good = SmsGame(NumberedBanks(1));
    EXPECT_EQ(refused(&good, &empty), "the image of \"Test Game\" is empty") << "as a BIOS";
}

TEST(Sms, ImagesOfAnySizeRun) {
    for (const size_t bytes : {1u, 511u, 0x4001u, 0xA200u, 0x30000u}) {
        MACHINE_RIG rig;
        CGameFile game = SmsGame(std::vector<uint8_t>(bytes, 0xC7)); // rst 0
        const Sms machine = StartMachine<CSMS>(SMS_OPTIONS{}, game);
        rig.Frames(*machine, 2);
        EXPECT_EQ(machine->Peek(0xDFEF), 0) << "the return address was pushed";
        EXPECT_EQ(machine->Peek(static_cast<uint16_t>(std::min<size_t>(bytes, 0x4000))),
                  bytes < 0x4000 ? 0xFF : 0xC7);
    }
}

TEST(Sms, MemoryIsKnownByItsName) {
    const Sms machine = Start();
    EXPECT_EQ(machine->Memory("ram").size(), 0x2000u);
    EXPECT_EQ(machine->Memory("sram").size(), 0x2000u);
    EXPECT_EQ(machine->Memory("vram").size(), 0x4000u);
    EXPECT_EQ(machine->Memory("palette").size(), 32u);
    EXPECT_TRUE(machine->Memory("oam").empty());
    EXPECT_EQ(machine->Memory("ram")[0], 0xAB);
}

TEST(Sms, WhatAProgramWritesIntoTheCartridgesRamIsForTheBattery) {
    Program program;
    program.Store(0xFFFC, 0x08).Store(0x8003, 0x5A).Stop(); // the RAM into slot 2
    const Sms machine = Start({}, program);
    EXPECT_EQ(machine->BatteryContents(), std::vector<uint8_t>(0x2000));
    MACHINE_RIG().Frames(*machine, 1);
    std::vector<uint8_t> expected(0x2000);
    expected[3] = 0x5A;
    EXPECT_EQ(machine->BatteryContents(), expected);
}

TEST(Sms, AProgramFindsWhatTheBatteryKept) {
    Program program;
    program.Store(0xFFFC, 0x08).Bytes({0x3A, 0xFF, 0x9F, 0x32, 0x00, 0xC1}).Stop();
    const Sms machine = Start({}, program);
    std::vector<uint8_t> kept(0x2000);
    kept.back() = 0x77;
    ASSERT_TRUE(machine->SetBatteryContents(kept));
    EXPECT_FALSE(machine->SetBatteryContents(std::span(kept).first(0x1FFF)));
    MACHINE_RIG().Frames(*machine, 1);
    EXPECT_EQ(machine->Peek(0xC100), 0x77);
}

TEST(Sms, PhaserIsAimedAndReadByAProgram) {
    // Polls 0xDD until TH drops, then stores V and H once.
    Program program;
    program.Bytes({0xDB, 0xDD, 0xCB, 0x77, 0x20, 0xFA}); // in a,(0xDD); bit 6,a; jr nz
    program.In(0x7E, 0xC100).In(0x7F, 0xC101).Store(0xC102, 1).Stop();
    MACHINE_RIG rig;
    SMS_OPTIONS options{};
    options.devices[0] = 2;
    const Sms machine = Start(options, program);
    rig.input.pointer[0] = {180, 16 + 90};
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC102), 1);
    EXPECT_NEAR(machine->Peek(0xC100), 86, 1); // the first of the spot's lines
    EXPECT_EQ(machine->Peek(0xC101), (180 + 11) / 2);
}
