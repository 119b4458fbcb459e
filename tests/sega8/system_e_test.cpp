// The System E board: panels, ports, banks, the two VDPs.
#include "facts/arcade_facts.h"
#include "sega8/machine_rig.h"
#include "sega8/system_e.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Arcade = std::unique_ptr<CSEGAE>;

Arcade Start(const Program& program, uint32_t board = 3) {
    CGameFile game = ArcadeGame(program.Image(kArcadeRomBytes), board);
    return StartMachine<CSEGAE>(std::array<uint8_t, kMachineOptionBytes>{}, game);
}

Arcade Start(uint32_t board = 3) {
    return Start(Program().Stop(), board);
}

ARCADE_PANEL Panel(uint32_t board, uint32_t input = 0) {
    ARCADE_PANEL panel;
    panel.board = board;
    panel.inputP1 = input;
    return panel;
}

void Move(ARCADE_PANEL& panel, uint32_t input, int frames = 1) {
    panel.inputP1 = input;
    for (int i = 0; i < frames; ++i) {
        ArcadePanelMove(panel);
    }
}

bool Silent(const MACHINE_RIG& rig) {
    return std::all_of(rig.samples.begin(), rig.samples.begin() + rig.audio.sampleCount * 2,
                       [](int16_t value) { return value == 0; });
}

// Writes one byte of VRAM of the VDP with this control port.
Program& Poke(Program& program, int control, int address, int value) {
    return program.Out(control, address & 0xFF)
        .Out(control, 0x40 | address >> 8)
        .Out(control - 1, value)
        .Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
}

// A tile row of colour `colour` for tile `tile`, all eight rows.
Program& Tile(Program& program, int control, int tile, int colour) {
    program.Out(control, tile * 32 & 0xFF).Out(control, 0x40 | tile * 32 >> 8);
    for (int row = 0; row < 8; ++row) {
        for (int plane = 0; plane < 4; ++plane) {
            program.Out(control - 1, (colour >> plane & 1) != 0 ? 0xFF : 0x00);
            program.Bytes({0, 0, 0, 0, 0, 0, 0, 0});
        }
    }
    return program;
}

Program& Colour(Program& program, int control, int index, int value) {
    return program.Out(control, index).Out(control, 0xC0).Out(control - 1, value);
}

// Mode 4, display on, name table at 0x3800, no scroll, no sprite.
Program& Display(Program& program, int control) {
    return program.VdpRegister(control, 0, 0x04)
        .VdpRegister(control, 1, 0x40)
        .VdpRegister(control, 2, 0xFF)
        .VdpRegister(control, 5, 0xFF);
}

constexpr int kVdp1 = 0xBB; // control ports
constexpr int kVdp2 = 0xBF;

} // namespace

TEST(ArcadePanel, CoinsAndStartsByBoard) {
    const struct {
        uint32_t input;
        uint8_t analog;
        uint8_t others;
    } rows[] = {
        {0,                                             0xFF, 0xFF},
        {kArcadeStart1,                                 0xEF, 0xBF},
        {kArcadeStart2,                                 0xFF, 0x7F},
        {kArcadeCoin1,                                  0xFE, 0xFE},
        {kArcadeCoin2,                                  0xFF, 0xFD},
        {kArcadeStart1 | kArcadeCoin1 | kArcadeButton1, 0xEE, 0xBE},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ArcadePanelRead(Panel(1, row.input), 0xE0), row.analog);
        for (uint32_t board = 2; board <= 7; ++board) {
            EXPECT_EQ(ArcadePanelRead(Panel(board, row.input), 0xE0), row.others) << board;
        }
        EXPECT_EQ(ArcadePanelRead(Panel(0, row.input), 0xE0), 0xFF);
        EXPECT_EQ(ArcadePanelRead(Panel(8, row.input), 0xE0), 0xFF);
    }
}

TEST(ArcadePanel, JoystickByBoard) {
    const struct {
        uint32_t input;
        uint8_t value;
    } rows[] = {
        {kArcadeUp,           0xFE},
        {kArcadeDown,         0xFD},
        {kArcadeLeft,         0xFB},
        {kArcadeRight,        0xF7},
        {kArcadeButton1,      0xEF},
        {kArcadeButton2,      0xDF},
        {kArcadeButton1 << 2, 0xFF},
    };
    for (const auto& row : rows) {
        for (const uint32_t board : {2u, 3u, 5u, 6u, 7u}) {
            EXPECT_EQ(ArcadePanelRead(Panel(board, row.input), 0xE1), row.value) << board;
        }
        for (const uint32_t board : {0u, 1u, 4u, 8u}) {
            EXPECT_EQ(ArcadePanelRead(Panel(board, row.input), 0xE1), 0xFF) << board;
        }
    }
}

// Everything that a game can read of the panel after half a second with these inputs.
std::vector<uint8_t> AllThatIsRead(uint32_t board, uint32_t inputP1, uint32_t inputP2) {
    ARCADE_PANEL panel = Panel(board);
    panel.inputP2 = inputP2;
    Move(panel, inputP1, 30);
    std::vector<uint8_t> values;
    for (uint32_t select = 0; select < 16; ++select) {
        ArcadePanelSelect(panel, static_cast<uint8_t>(select));
        for (uint32_t port = 0; port < 256; ++port) {
            values.push_back(ArcadePanelRead(panel, static_cast<uint8_t>(port)));
        }
    }
    return values;
}

// The actions are in the order of the bits.
TEST(ArcadePanel, ActionsWithoutEffectAreThoseThatNoGameCanRead) {
    const uint32_t bits[] = {kArcadeUp,           kArcadeDown,         kArcadeLeft,
                             kArcadeRight,        kArcadeButton1,      kArcadeButton1 << 1,
                             kArcadeButton1 << 2, kArcadeButton1 << 3, kArcadeButton1 << 4,
                             kArcadeButton1 << 5};
    for (size_t player = 0; player < 2; ++player) {
        for (size_t action = 0; action < std::size(bits); ++action) {
            bool changes = false;
            for (uint32_t board = 1; board <= 7; ++board) {
                const uint32_t first = player == 0 ? bits[action] : 0;
                const uint32_t second = player == 1 ? bits[action] : 0;
                changes =
                    changes || AllThatIsRead(board, first, second) != AllThatIsRead(board, 0, 0);
            }
            EXPECT_EQ(HasEffect(kArcadeFacts, kArcadePlayerActions[player][action]), changes)
                << player << " " << action;
        }
    }
}

TEST(ArcadePanel, SwitchesAreConstants) {
    EXPECT_EQ(ArcadePanelRead(Panel(3), 0xF2), 0x11);
    EXPECT_EQ(ArcadePanelRead(Panel(3), 0xF3), 0xCC);
}

TEST(ArcadePanel, AllOtherPortsReadZero) {
    for (int port = 0; port < 256; ++port) {
        if (port != 0xE0 && port != 0xE1 && port != 0xF2 && port != 0xF3 && port != 0xF8) {
            EXPECT_EQ(ArcadePanelRead(Panel(3), static_cast<uint8_t>(port)), 0) << port;
        }
    }
}

TEST(ArcadePanel, PortF8ReadsOnesWithoutAnAnalogPanel) {
    for (const uint32_t board : {0u, 2u, 3u, 5u, 6u, 7u}) {
        EXPECT_EQ(ArcadePanelRead(Panel(board), 0xF8), 0xFF);
    }
}

TEST(ArcadePanel, AnalogSelectPicksWheelOrThrottle) {
    ARCADE_PANEL panel = Panel(1);
    panel.steering = 99;
    panel.throttle = 55;
    const struct {
        uint8_t select;
        uint8_t value;
    } rows[] = {
        {8,  99},
        {9,  55},
        {0,  0 },
        {10, 0 },
        {24, 0 },
    };
    for (const auto& row : rows) {
        ArcadePanelSelect(panel, row.select);
        EXPECT_EQ(ArcadePanelRead(panel, 0xF8), row.value);
    }
}

TEST(ArcadePanel, WheelTurnsByFourToItsStops) {
    ARCADE_PANEL panel = Panel(1);
    Move(panel, kArcadeLeft);
    EXPECT_EQ(panel.steering, 123);
    Move(panel, kArcadeLeft, 23);
    EXPECT_EQ(panel.steering, 31) << "the last step began at 35";
    panel = Panel(1);
    Move(panel, kArcadeRight, 25);
    EXPECT_EQ(panel.steering, 227);
    // At a stop the held direction no longer counts, and the wheel moves back by one step.
    Move(panel, kArcadeRight);
    EXPECT_EQ(panel.steering, 222);
    panel.steering = 33;
    Move(panel, kArcadeLeft);
    EXPECT_EQ(panel.steering, 29);
    Move(panel, kArcadeLeft);
    EXPECT_EQ(panel.steering, 34);
    panel.steering = 100;
    Move(panel, kArcadeLeft | kArcadeRight);
    EXPECT_EQ(panel.steering, 96) << "left comes first";
    panel.steering = 20;
    Move(panel, kArcadeLeft | kArcadeRight);
    EXPECT_EQ(panel.steering, 24) << "but not past its stop";
}

TEST(ArcadePanel, WheelComesToRestInARange) {
    for (int from = 0; from < 256; ++from) {
        ARCADE_PANEL panel = Panel(1);
        panel.steering = static_cast<uint8_t>(from);
        Move(panel, 0, 100);
        const int rest = panel.steering;
        EXPECT_GE(rest, 123);
        EXPECT_LE(rest, 131);
        Move(panel, 0);
        EXPECT_EQ(panel.steering, rest);
        if (from >= 123 && from <= 131) {
            EXPECT_EQ(rest, from);
        }
    }
}

TEST(ArcadePanel, ThrottleOpensAndClosesByFour) {
    ARCADE_PANEL panel = Panel(1);
    Move(panel, kArcadeButton1, 62);
    EXPECT_EQ(panel.throttle, 248);
    Move(panel, kArcadeButton1);
    EXPECT_EQ(panel.throttle, 252);
    Move(panel, kArcadeButton1);
    EXPECT_EQ(panel.throttle, 248) << "at its end the button no longer counts";
    Move(panel, 0, 61);
    EXPECT_EQ(panel.throttle, 4);
    Move(panel, 0, 5);
    EXPECT_EQ(panel.throttle, 4) << "it doesn't close past 4";
}

TEST(ArcadePanel, OtherBoardsHaveNeitherWheelNorDial) {
    for (const uint32_t board : {2u, 3u, 4u, 5u}) {
        ARCADE_PANEL panel = Panel(board);
        Move(panel, kArcadeLeft | kArcadeButton1, 5);
        EXPECT_EQ(panel.steering, 127);
        EXPECT_EQ(panel.throttle, 0);
        EXPECT_EQ(panel.dialSpeed, board == 4 ? -24 : 0);
        ArcadePanelSelect(panel, 0xFF);
        EXPECT_EQ(panel.analogSelect, 0);
        EXPECT_EQ(panel.dialSelect, board == 4 ? 3 : 0);
    }
}

TEST(ArcadePanel, DialSlowsDownBySix) {
    ARCADE_PANEL panel = Panel(4);
    Move(panel, kArcadeRight);
    EXPECT_EQ(panel.dialSpeed, 24);
    for (const int speed : {18, 12, 6, 0, 0}) {
        Move(panel, 0);
        EXPECT_EQ(panel.dialSpeed, speed);
    }
    Move(panel, kArcadeLeft | kArcadeRight);
    EXPECT_EQ(panel.dialSpeed, -24);
    for (const int speed : {-18, -12, -6, 0, 0}) {
        Move(panel, 0);
        EXPECT_EQ(panel.dialSpeed, speed);
    }
    panel.dialSpeed = -32768;
    Move(panel, 0);
    EXPECT_EQ(panel.dialSpeed, -32762);
}

TEST(ArcadePanel, DialWordIsReadInHalves) {
    const struct {
        int16_t speed;
        uint32_t input;
        uint16_t word;
    } rows[] = {
        {0,   0,                               0xF000},
        {24,  0,                               0xF018},
        {-24, 0,                               0xFFE7}, // 4095 - 24 = 0x0FE7
        {6,   kArcadeButton1,                  0xB006},
        {6,   kArcadeButton2,                  0xE006},
        {-6,  kArcadeButton1 | kArcadeButton2, 0xAFF9},
    };
    for (const auto& row : rows) {
        ARCADE_PANEL panel = Panel(4, row.input);
        panel.dialSpeed = row.speed;
        ArcadePanelSelect(panel, 0x00);
        EXPECT_EQ(ArcadePanelRead(panel, 0xF8), row.word & 0xFF);
        ArcadePanelSelect(panel, 0x04);
        EXPECT_EQ(ArcadePanelRead(panel, 0xF8), row.word >> 8);
        ArcadePanelSelect(panel, 0x08);
        EXPECT_EQ(ArcadePanelRead(panel, 0xF8), 0);
        ArcadePanelSelect(panel, 0xFF);
        EXPECT_EQ(ArcadePanelRead(panel, 0xF8), 0);
    }
}

TEST(SystemE, ActionsReachThePanelThroughTheBindings) {
    const struct {
        const wchar_t* action;
        uint8_t e0;
        uint8_t e1;
    } rows[] = {
        {L"Arcade Start1",       0xBF, 0xFF},
        {L"Arcade Start2",       0x7F, 0xFF},
        {L"Arcade Insert Coin1", 0xFE, 0xFF},
        {L"Arcade Insert Coin2", 0xFD, 0xFF},
        {L"Arcade P1 UP",        0xFF, 0xFE},
        {L"Arcade P1 DOWN",      0xFF, 0xFD},
        {L"Arcade P1 LEFT",      0xFF, 0xFB},
        {L"Arcade P1 RIGHT",     0xFF, 0xF7},
        {L"Arcade P1 BUTTON1",   0xFF, 0xEF},
        {L"Arcade P1 BUTTON2",   0xFF, 0xDF},
        {L"Arcade P2 UP",        0xFF, 0xFF},
    };
    for (const auto& row : rows) {
        MACHINE_RIG rig;
        const Arcade machine = Start();
        MACHINE_RIG::Press(row.action);
        rig.Frame(*machine);
        EXPECT_EQ(machine->ReadPort(0xE0), row.e0);
        EXPECT_EQ(machine->ReadPort(0xE1), row.e1);
    }
}

TEST(SystemE, AnalogBoardShowsItsInputOnlyThroughWheelAndThrottle) {
    MACHINE_RIG rig;
    const Arcade machine = Start(1);
    MACHINE_RIG::Press(L"Arcade P1 LEFT");
    MACHINE_RIG::Press(L"Arcade P1 BUTTON1");
    rig.Frame(*machine);
    EXPECT_EQ(machine->ReadPort(0xE1), 0xFF);
    EXPECT_EQ(machine->ReadPort(0xF8), 0);
    machine->WritePort(0xFA, 8);
    EXPECT_EQ(machine->ReadPort(0xF8), 123);
    machine->WritePort(0xFA, 9);
    EXPECT_EQ(machine->ReadPort(0xF8), 4);
}

TEST(SystemE, DialBoardTurnsThePicture) {
    MACHINE_RIG rig;
    const Arcade dial = Start(4);
    rig.Frame(*dial);
    EXPECT_EQ(rig.video.rotated, 1);
    const Arcade joystick = Start(3);
    rig.Frame(*joystick);
    EXPECT_EQ(rig.video.rotated, 0);
}

TEST(SystemE, PictureIsThatOfTheFirstChip) {
    MACHINE_RIG rig;
    const Arcade machine = Start();
    rig.Frame(*machine);
    EXPECT_EQ(rig.video.width, 256u);
    EXPECT_EQ(rig.video.height, 224u);
    EXPECT_EQ(rig.video.visibleHeight, 192u);
}

TEST(SystemE, ClockIsOneAndAHalfOfTheMasterSystems) {
    MACHINE_RIG rig;
    Program program;
    program.Bytes({0x21, 0, 0, 0x23, 0x22, 0x00, 0xC1, 0x18, 0xFA}); // 34 clocks an iteration
    const Arcade machine = Start(program);
    rig.Frame(*machine);
    const auto count = [&] { return machine->Peek(0xC100) + machine->Peek(0xC101) * 256; };
    const int first = count();
    rig.Frames(*machine, 5);
    EXPECT_NEAR((count() - first) * 34.0 / 5, 262 * 342, 10);
}

TEST(SystemE, SoundIsAsLongAsTheFrames) {
    MACHINE_RIG rig;
    const Arcade machine = Start();
    uint32_t pairs = 0;
    for (int i = 0; i < 300; ++i) {
        rig.Frame(*machine);
        pairs += rig.audio.sampleCount;
    }
    EXPECT_NEAR(pairs, 300.0 * 262 * 228 / 3579545 * 44100, 400);
}

TEST(SystemE, RomBanksFollowTheLatch) {
    std::vector<uint8_t> image(kArcadeRomBytes);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i / 0x4000 + 1);
    }
    CGameFile game = ArcadeGame(image, 3);
    const Arcade machine = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
    EXPECT_EQ(machine->Peek(0x0000), 1);
    EXPECT_EQ(machine->Peek(0x7FFF), 2);
    for (int bank = 0; bank < 16; ++bank) {
        machine->WritePort(0xF7, static_cast<uint8_t>(0xE0 | bank));
        EXPECT_EQ(machine->Peek(0x8000), bank + 3);
        EXPECT_EQ(machine->Peek(0xBFFF), bank + 3);
        EXPECT_EQ(machine->PeekOpcode(0x8000), bank + 3);
    }
}

TEST(SystemE, WhatAnImageDoesNotHaveReadsOnes) {
    CGameFile game = ArcadeGame({0x18, 0xFE}, 3);
    const Arcade machine = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
    EXPECT_EQ(machine->Peek(1), 0xFE);
    EXPECT_EQ(machine->Peek(2), 0xFF);
    machine->WritePort(0xF7, 15);
    EXPECT_EQ(machine->Peek(0xBFFF), 0xFF);
}

TEST(SystemE, RamIsSixteenKilobytes) {
    const Arcade machine = Start();
    machine->WriteMemory(0xC000, 1);
    machine->WriteMemory(0xFFFF, 2);
    machine->WriteMemory(0xE000, 3);
    EXPECT_EQ(machine->Peek(0xC000), 1);
    EXPECT_EQ(machine->Peek(0xFFFF), 2);
    EXPECT_EQ(machine->Peek(0xE000), 3);
    machine->WriteMemory(0x1000, 0x99);
    EXPECT_EQ(machine->Peek(0x1000), 0) << "ROM";
}

TEST(SystemE, WriteWindowOpensTheBankThatIsNotShown) {
    const struct {
        uint8_t latch;
        size_t bank; // A, B, C, D
    } rows[] = {
        {0x20, 1},
        {0xA0, 0},
        {0x60, 1},
        {0xE0, 0},
        {0x00, 3},
        {0x40, 2},
        {0x80, 3},
        {0xC0, 2},
    };
    for (const auto& row : rows) {
        const Arcade machine = Start();
        machine->WritePort(0xF7, row.latch);
        machine->WriteMemory(0x9234, 0x5A);
        const std::vector<uint8_t> vram = machine->Memory("vram");
        EXPECT_EQ(std::count(vram.begin(), vram.end(), 0x5A), 1);
        EXPECT_EQ(vram[row.bank * 0x4000 + 0x1234], 0x5A) << int{row.latch};
        EXPECT_EQ(machine->Peek(0x9234), 0) << "reads are ROM";
    }
}

TEST(SystemE, ChipsWriteToTheBankTheyShow) {
    const struct {
        int latch;
        size_t first;
        size_t second;
    } rows[] = {
        {0x00, 0, 2},
        {0x80, 1, 2},
        {0x40, 0, 3},
        {0xC0, 1, 3},
    };
    for (const auto& row : rows) {
        MACHINE_RIG rig;
        Program program;
        program.Out(0xF7, row.latch);
        Poke(program, kVdp1, 0x0111, 0xA1);
        Poke(program, kVdp2, 0x0222, 0xB2);
        const Arcade machine = Start(program.Stop());
        rig.Frame(*machine);
        const std::vector<uint8_t> vram = machine->Memory("vram");
        EXPECT_EQ(vram[row.first * 0x4000 + 0x111], 0xA1);
        EXPECT_EQ(vram[row.second * 0x4000 + 0x222], 0xB2);
    }
}

TEST(SystemE, PortsOfBothVideoChips) {
    MACHINE_RIG rig;
    Program program;
    Colour(program, kVdp1, 3, 0x15);
    Colour(program, kVdp2, 4, 0x2A);
    Poke(program, kVdp1, 0, 0x77);
    Poke(program, kVdp2, 0, 0x88);
    program.Out(kVdp1, 0).Out(kVdp1, 0).Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0}).In(0xBA, 0xC100);
    program.Out(kVdp2, 0).Out(kVdp2, 0).Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0}).In(0xBE, 0xC101);
    const Arcade machine = Start(program.Stop());
    rig.Frame(*machine);
    const std::vector<uint8_t> palette = machine->Memory("palette");
    ASSERT_EQ(palette.size(), 64u);
    EXPECT_EQ(palette[3], 0x15);
    EXPECT_EQ(palette[32 + 4], 0x2A);
    EXPECT_EQ(machine->Peek(0xC100), 0x77);
    EXPECT_EQ(machine->Peek(0xC101), 0x88);
    EXPECT_EQ(machine->ReadPort(0xBB) & 0x80, 0x80);
    EXPECT_EQ(machine->ReadPort(0xBB) & 0x80, 0x00);
    EXPECT_EQ(machine->ReadPort(0xBF) & 0x80, 0x80);
    EXPECT_EQ(machine->ReadPort(0xBF) & 0x80, 0x00);
}

TEST(SystemE, VCounterIsThatOfTheFirstChip) {
    MACHINE_RIG rig;
    Program program;
    program.Bytes({0xDB, 0x7E, 0xFE, 0x60, 0x20, 0xFA}).Store(0xC100, 0x77).Stop();
    const Arcade machine = Start(program);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0x77);
}

TEST(SystemE, InterruptComesFromTheSecondChipOnly) {
    for (const int control : {kVdp1, kVdp2}) {
        MACHINE_RIG rig;
        Program program;
        program.Bytes({0xF3, 0xED, 0x56, 0xC3, 0x80, 0x00});
        program.At(0x38).Bytes(
            {0xF5, 0xE5, 0x21, 0x01, 0xC1, 0x34, 0xDB, 0xBF, 0xE1, 0xF1, 0xFB, 0xC9});
        // Both chips come out of a reset with the frame interrupt on.
        const int other = kVdp1 + kVdp2 - control;
        program.At(0x80).Bytes({0x31, 0x00, 0xE0}).VdpRegister(other, 1, 0x40);
        program.VdpRegister(control, 1, 0x60).Bytes({0xFB}).Stop();
        const Arcade machine = Start(program);
        rig.Frames(*machine, 8);
        EXPECT_EQ(machine->Peek(0xC101), control == kVdp2 ? 8 : 0);
    }
}

TEST(SystemE, BothSoundChipsAreHeard) {
    for (const int port : {0x7B, 0x7E, 0x7F}) {
        MACHINE_RIG rig;
        const Arcade machine =
            Start(Program().Out(port, 0x8F).Out(port, 0x08).Out(port, 0x90).Stop());
        rig.Frames(*machine, 4);
        EXPECT_FALSE(Silent(rig)) << port;
    }
    for (const int port : {0x7A, 0x7C, 0x7D, 0x40}) {
        MACHINE_RIG rig;
        const Arcade machine =
            Start(Program().Out(port, 0x8F).Out(port, 0x08).Out(port, 0x90).Stop());
        rig.Frames(*machine, 4);
        EXPECT_TRUE(Silent(rig)) << port;
    }
}

TEST(SystemE, SoundIsSevenTenthsOfTheSum) {
    MACHINE_RIG rig;
    Program program;
    for (const int port : {0x7B, 0x7F}) {
        program.Out(port, 0x81).Out(port, 0x00).Out(port, 0x90); // a constant level
    }
    const Arcade machine = Start(program.Stop());
    rig.Frames(*machine, 8);
    EXPECT_NEAR(rig.samples[200], 2 * 3276 * 0.7, 3);
}

TEST(SystemE, SecondChipCoversTheFirst) {
    MACHINE_RIG rig;
    Program program;
    for (const int control : {kVdp1, kVdp2}) {
        Tile(program, control, 1, 1);
        Display(program, control);
    }
    Colour(program, kVdp1, 0, 0x30); // blue field
    Colour(program, kVdp1, 1, 0x0C); // green tiles
    Colour(program, kVdp2, 0, 0x3F);
    Colour(program, kVdp2, 1, 0x03); // red tiles
    // Cells: 0 only the first chip's tile, 1 both, 2 only the second's, 3 neither.
    Poke(program, kVdp1, 0x3800, 1);
    Poke(program, kVdp1, 0x3802, 1);
    Poke(program, kVdp2, 0x3802, 1);
    Poke(program, kVdp2, 0x3804, 1);
    const Arcade machine = Start(program.Stop());
    rig.Frames(*machine, 4);
    const size_t row = size_t{16 + 3} * 256 + 4;
    EXPECT_EQ(rig.pixels[row], 0xFF00FF00u);
    EXPECT_EQ(rig.pixels[row + 8], 0xFFFF0000u);
    EXPECT_EQ(rig.pixels[row + 16], 0xFFFF0000u);
    EXPECT_EQ(rig.pixels[row + 24], 0xFF0000FFu);
}

TEST(SystemE, LatchSwapsTheShownBankInMidFrame) {
    MACHINE_RIG rig;
    Program program;
    Tile(program, kVdp1, 1, 1);
    Display(program, kVdp1);
    Colour(program, kVdp1, 0, 0x30);
    Colour(program, kVdp1, 1, 0x0C);
    // Bank A shows tile 0 everywhere, bank B tile 1 in the first column.
    program.Out(0xF7, 0x80);
    Tile(program, kVdp1, 1, 1);
    for (int row = 0; row < 24; ++row) {
        Poke(program, kVdp1, 0x3800 + row * 64, 1);
    }
    const int loop = program.Here();
    program.Out(0xF7, 0x00).Bytes({0xDB, 0x7E, 0xFE, 0x60, 0x20, 0xFA}); // until line 0x60
    program.Out(0xF7, 0x80).Bytes({0xDB, 0x7E, 0xFE, 0xC8, 0x20, 0xFA}); // until line 0xC8
    program.Bytes({0xC3, loop & 0xFF, loop >> 8});
    const Arcade machine = Start(program);
    rig.Frames(*machine, 6);
    const auto at = [&](size_t line) { return rig.pixels[(16 + line) * 256 + 4]; };
    EXPECT_EQ(at(0x40), 0xFF0000FFu);
    EXPECT_EQ(at(0x5E), 0xFF0000FFu);
    EXPECT_EQ(at(0x62), 0xFF00FF00u);
    EXPECT_EQ(at(0xA0), 0xFF00FF00u);
}

TEST(SystemE, EncryptedBoardsFetchTheirOpcodesFromTheirOwnImage) {
    for (const uint32_t board : {2u, 5u, 6u}) {
        MACHINE_RIG rig;
        // As data: 0xEE everywhere but for the operands; as opcodes: ld a,n; ld (nn),a; jr e.
        const std::vector<uint8_t> data = {0xEE, 0x42, 0xEE, 0x00, 0xC1, 0xEE, 0xFE};
        const std::vector<uint8_t> opcodes = {0x3E, 0xEE, 0x32, 0xEE, 0xEE, 0x18, 0xEE};
        std::vector<uint8_t> image = data;
        image.resize(kArcadeRomBytes, 0x11);
        std::vector<uint8_t> piece = opcodes;
        piece.resize(kArcadeFixedBytes, 0x22);
        CGameFile game = ArcadeGame(image, board, piece);
        const Arcade machine = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
        EXPECT_EQ(machine->Peek(0x4000), 0x11);
        EXPECT_EQ(machine->PeekOpcode(0x4000), 0x22);
        EXPECT_EQ(machine->PeekOpcode(0x8000), 0x11) << "beyond the end of the piece";
        rig.Frame(*machine);
        EXPECT_EQ(machine->Peek(0xC100), 0x42);
    }
}

TEST(SystemE, OpcodesInRamAreReadFromRam) {
    MACHINE_RIG rig;
    std::vector<uint8_t> code = Program().Store(0xC010, 0x3C).Store(0xC011, 0x32).Image(0x40);
    CGameFile game = ArcadeGame(code, 2, code);
    const Arcade machine = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
    machine->WriteMemory(0xC010, 0x3C);
    EXPECT_EQ(machine->PeekOpcode(0xC010), 0x3C);
}

TEST(SystemE, EncryptedGameWithoutOpcodesIsRefused) {
    const std::array<uint8_t, 256> options{};
    for (const uint32_t board : {2u, 5u, 6u}) {
        CGameFile game = ArcadeGame({0x18, 0xFE}, board);
        CGameFile* games[2] = {&game, nullptr};
        CSEGAE machine(kRigKey);
        EXPECT_FALSE(machine.Init(options.data(), games));
        EXPECT_EQ(EmuLastError(), "\"Test Game\" has an encrypted program (board " +
                                      std::to_string(board) + ") and no piece named \"opcodes\"");
    }
    CGameFile game = ArcadeGame({0x18, 0xFE}, 2, {1, 2, 3});
    CGameFile* games[2] = {&game, nullptr};
    CSEGAE machine(kRigKey);
    EXPECT_FALSE(machine.Init(options.data(), games));
    EXPECT_NE(EmuLastError().find("longer than its image"), std::string::npos);
}

TEST(SystemE, PlainBoardsDoNotLookAtAnOpcodePiece) {
    for (const uint32_t board : {1u, 3u, 4u, 7u}) {
        CGameFile game = ArcadeGame({0x18, 0xFE}, board, {0x76});
        const Arcade machine = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
        EXPECT_EQ(machine->PeekOpcode(0), 0x18);
    }
}

TEST(SystemE, GamesThatCannotRunAreRefusedWithAReason) {
    const std::array<uint8_t, 256> options{};
    CSEGAE machine(kRigKey);
    CGameFile* none[2] = {nullptr, nullptr};
    EXPECT_FALSE(machine.Init(options.data(), none));
    EXPECT_EQ(EmuLastError(), "there is no game to run");
    CGameFile empty = ArcadeGame({}, 3);
    CGameFile* games[2] = {&empty, nullptr};
    EXPECT_FALSE(machine.Init(options.data(), games));
    EXPECT_EQ(EmuLastError(), "the image of \"Test Game\" is empty");
    CGameFile large = ArcadeGame(std::vector<uint8_t>(0x100001), 3);
    games[0] = &large;
    EXPECT_FALSE(machine.Init(options.data(), games));
    EXPECT_NE(EmuLastError().find("at most 1048576"), std::string::npos);
}

TEST(SystemE, DefaultRecordIsAPlainJoystickBoard) {
    CGameFile game = WithDefaultRecord(ArcadeGame({0x18, 0xFE}, 1), {0x18, 0xFE});
    MACHINE_RIG rig;
    const Arcade machine = StartMachine<CSEGAE>(std::array<uint8_t, 256>{}, game);
    MACHINE_RIG::Press(L"Arcade P1 UP");
    rig.Frame(*machine);
    EXPECT_EQ(machine->ReadPort(0xE1), 0xFE);
}

TEST(SystemE, ResetClearsMemoriesAndPanel) {
    MACHINE_RIG rig;
    // The interrupt line outlives a reset, so the program keeps it low.
    Program program;
    program.VdpRegister(kVdp2, 1, 0x40).Store(0xC100, 1).Out(0xF7, 0xA3).Out(0xFA, 8).Stop();
    const Arcade machine = Start(program, 1);
    uint32_t size = 0;
    const StateBlob before = machine->SaveState(size);
    MACHINE_RIG::Press(L"Arcade P1 LEFT");
    rig.Frames(*machine, 5);
    EXPECT_EQ(machine->ReadPort(0xF8), 107);
    machine->Reset();
    const StateBlob after = machine->SaveState(size);
    EXPECT_EQ(0, std::memcmp(before.get(), after.get(), size));
    machine->WritePort(0xFA, 8);
    EXPECT_EQ(machine->ReadPort(0xF8), 127);
}
