// The Game Gear, alone and linked.
#include "sega8/game_gear.h"
#include "sega8/machine_rig.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Gear = std::unique_ptr<CGAMEGEAR>;

Gear Start(const GEAR_OPTIONS& options, const Program& program) {
    CGameFile game = GearGame(program.Image());
    return StartMachine<CGAMEGEAR>(options, game);
}

GEAR_OPTIONS Linked(bool full = false) {
    GEAR_OPTIONS options{};
    options.gearToGear = 1;
    options.fullDisplay = full ? 1 : 0;
    return options;
}

// Entry `index` of the Game Gear's colour RAM.
Program& Colour(Program& program, int index, int low, int high) {
    return program.Out(0xBF, index * 2).Out(0xBF, 0xC0).Out(0xBE, low).Out(0xBE, high);
}

// Peak of one side of the frame's sound.
int Peak(const MACHINE_RIG& rig, uint32_t side) {
    int peak = 0;
    for (uint32_t i = 0; i < rig.audio.sampleCount; ++i) {
        peak = std::max(peak, std::abs(int{rig.samples[i * 2 + side]}));
    }
    return peak;
}

Program Tone(int panning) {
    Program program;
    program.Out(0x7F, 0x8F).Out(0x7F, 0x08).Out(0x7F, 0x90).Out(0x06, panning);
    return program;
}

} // namespace

TEST(GameGear, TheBatteryKeepsTheRamOfTheFirstConsolesCartridge) {
    Program program;
    program.Store(0xFFFC, 0x08).Store(0x8003, 0x5A).Stop();
    const Gear machine = Start(Linked(), program);
    std::vector<uint8_t> kept(0x2000);
    kept[9] = 0x77;
    ASSERT_TRUE(machine->SetBatteryContents(kept));
    MACHINE_RIG().Frames(*machine, 1);
    kept[3] = 0x5A;
    EXPECT_EQ(machine->BatteryContents(), kept);
    EXPECT_EQ(machine->Memory("sram", 1)[9], 0);
}

TEST(GameGear, PictureIsTheWindowOfTheRealScreen) {
    MACHINE_RIG rig;
    const Gear machine = Start({}, Program().Stop());
    rig.Frame(*machine);
    EXPECT_EQ(rig.video.width, 160u);
    EXPECT_EQ(rig.video.height, 144u);
    EXPECT_EQ(rig.video.visibleX, 0u);
    EXPECT_EQ(rig.video.visibleY, 0u);
    EXPECT_EQ(rig.video.visibleWidth, 160u);
    EXPECT_EQ(rig.video.visibleHeight, 144u);
    EXPECT_FLOAT_EQ(rig.video.aspect, 4.0f / 3.0f);
    EXPECT_FLOAT_EQ(rig.video.visibleAspect, 4.0f / 3.0f);
}

TEST(GameGear, FullDisplayIsTheWholePicture) {
    MACHINE_RIG rig;
    GEAR_OPTIONS options{};
    options.fullDisplay = 1;
    const Gear machine = Start(options, Program().Stop());
    rig.Frame(*machine);
    EXPECT_EQ(rig.video.width, 256u);
    EXPECT_EQ(rig.video.height, 192u + 2 * 16);
}

TEST(GameGear, SizesHoldTwoConsoles) {
    const CGAMEGEAR machine(kRigKey);
    EXPECT_EQ(machine.width, 512u);
    EXPECT_EQ(machine.height, 256u);
}

namespace {

// A picture in which every pixel differs from its neighbours: 448 tiles of noise, as 32 x 28
// different tiles would not fit.
Program Noise(int register0 = 0x04, int register1 = 0x40) {
    Program program;
    program.Bytes({0xF3});
    program.VdpRegister(0xBF, 1, 0x00).VdpRegister(0xBF, 2, 0xFF);
    for (int i = 0; i < 16; ++i) {
        Colour(program, i, i * 13 & 0xFF, i);
    }
    program.Out(0xBF, 0x00).Out(0xBF, 0x40);
    // Fills all 16 KB: ld hl,0x4000; ld de,0x1234; loop: a = d*5 ^ e ...
    program.Bytes({0x21, 0x00, 0x40, 0x11, 0x34, 0x12}); // ld hl,0x4000; ld de,0x1234
    const int loop = program.Here();
    program.Bytes({0x7B, 0x82, 0x07, 0xAA, 0x57, 0x1C}); // a=e; a+=d; rlca; a^=d; d=a; e++
    program.Bytes({0xD3, 0xBE, 0x2B, 0x7C, 0xB5});       // out; dec hl; a=h|l
    program.Bytes({0xC2, loop & 0xFF, loop >> 8});       // jp nz
    program.VdpRegister(0xBF, 0, register0).VdpRegister(0xBF, 1, register1).Stop();
    return program;
}

} // namespace

TEST(GameGear, WindowIsCutOutOfTheFullPicture) {
    GEAR_OPTIONS full{};
    full.fullDisplay = 1;
    auto whole = std::make_unique<MACHINE_RIG>();
    auto cut = std::make_unique<MACHINE_RIG>();
    const Gear first = Start(full, Noise());
    const Gear second = Start({}, Noise());
    whole->Frames(*first, 40);
    cut->Frames(*second, 40);
    std::vector<uint32_t> colours(whole->pixels.begin(), whole->pixels.begin() + 256 * 224);
    std::sort(colours.begin(), colours.end());
    colours.erase(std::unique(colours.begin(), colours.end()), colours.end());
    ASSERT_GT(colours.size(), 8u) << "a picture worth comparing";
    for (size_t y = 0; y < 144; ++y) {
        for (size_t x = 0; x < 160; ++x) {
            ASSERT_EQ(cut->pixels[y * 160 + x], whole->pixels[(y + 16 + 24) * 256 + x + 48]);
        }
    }
}

// The window stays 24 rows below the border, and a picture of 224 lines has none.
TEST(GameGear, WindowOf224LinesBeginsAtItsRow24) {
    GEAR_OPTIONS full{};
    full.fullDisplay = 1;
    auto whole = std::make_unique<MACHINE_RIG>();
    auto cut = std::make_unique<MACHINE_RIG>();
    const Gear first = Start(full, Noise(0x06, 0x50));
    const Gear second = Start({}, Noise(0x06, 0x50));
    whole->Frames(*first, 40);
    cut->Frames(*second, 40);
    ASSERT_EQ(whole->video.height, 224u);
    ASSERT_EQ(whole->video.visibleY, 0u);
    EXPECT_EQ(cut->video.width, 160u);
    EXPECT_EQ(cut->video.height, 144u);
    EXPECT_EQ(cut->video.visibleHeight, 144u);
    size_t unlikeTheMiddle = 0;
    for (size_t y = 0; y < 144; ++y) {
        for (size_t x = 0; x < 160; ++x) {
            const uint32_t shown = cut->pixels[y * 160 + x];
            ASSERT_EQ(shown, whole->pixels[(y + 24) * 256 + x + 48]);
            unlikeTheMiddle += shown != whole->pixels[(y + 40) * 256 + x + 48] ? 1u : 0u;
        }
    }
    EXPECT_GT(unlikeTheMiddle, 1000u) << "a picture that tells the rows apart";
}

TEST(GameGear, LinkedConsolesAreSideBySide) {
    GEAR_OPTIONS full{};
    full.fullDisplay = 1;
    auto alone = std::make_unique<MACHINE_RIG>();
    auto both = std::make_unique<MACHINE_RIG>();
    const Gear single = Start(full, Noise());
    const Gear pair = Start(Linked(true), Noise());
    alone->Frames(*single, 40);
    both->Frames(*pair, 40);
    EXPECT_EQ(both->video.width, 512u);
    EXPECT_EQ(both->video.height, 224u);
    EXPECT_FLOAT_EQ(both->video.aspect, 2.0f * alone->video.aspect);
    for (size_t y = 0; y < 224; ++y) {
        for (size_t x = 0; x < 256; ++x) {
            ASSERT_EQ(both->pixels[y * 512 + x], alone->pixels[y * 256 + x]);
            ASSERT_EQ(both->pixels[y * 512 + 256 + x], alone->pixels[y * 256 + x]);
        }
    }
}

TEST(GameGear, LinkedWindowsAreCutOutSideBySide) {
    auto alone = std::make_unique<MACHINE_RIG>();
    auto both = std::make_unique<MACHINE_RIG>();
    const Gear single = Start({}, Noise());
    const Gear pair = Start(Linked(), Noise());
    alone->Frames(*single, 40);
    both->Frames(*pair, 40);
    EXPECT_EQ(both->video.width, 320u);
    EXPECT_EQ(both->video.height, 144u);
    EXPECT_FLOAT_EQ(both->video.visibleAspect, 8.0f / 3.0f);
    for (size_t y = 0; y < 144; ++y) {
        for (size_t x = 0; x < 160; ++x) {
            ASSERT_EQ(both->pixels[y * 320 + x], alone->pixels[y * 160 + x]);
            ASSERT_EQ(both->pixels[y * 320 + 160 + x], alone->pixels[y * 160 + x]);
        }
    }
}

TEST(GameGear, ShorterOfTwoPicturesIsFilledUpWithBlack) {
    MACHINE_RIG rig;
    std::fill(rig.pixels.begin(), rig.pixels.end(), 0x12345678);
    Program tall;
    tall.VdpRegister(0xBF, 0, 0x06).VdpRegister(0xBF, 1, 0x48).Stop(); // 240 lines
    CGameFile first = GearGame(Program().Stop().Image());
    CGameFile second = GearGame(tall.Image());
    const Gear machine = StartMachine<CGAMEGEAR>(Linked(true), first, &second);
    rig.Frames(*machine, 2);
    ASSERT_EQ(rig.video.height, 240u);
    for (size_t y = 0; y < 240; ++y) {
        for (size_t x = 0; x < 512; ++x) {
            ASSERT_NE(rig.pixels[y * 512 + x], 0x12345678u);
        }
    }
    EXPECT_EQ(rig.pixels[239 * 512], 0xFF000000u);
}

TEST(GameGear, ProgramReadsItsOwnPorts) {
    MACHINE_RIG rig;
    Program program;
    for (int port = 0; port < 7; ++port) {
        program.In(port, 0xC100 + port);
    }
    program.In(0x07, 0xC107).In(0x3F, 0xC108).Stop();
    const Gear machine = Start({}, program);
    rig.Frame(*machine);
    const int expected[] = {0xC0, 0x7F, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0xFF, 0xFF};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(machine->Peek(static_cast<uint16_t>(0xC100 + i)), expected[i]) << i;
    }
}

TEST(GameGear, PadIsReadAtC0AndDcOnly) {
    MACHINE_RIG rig;
    Program program;
    const int loop = program.Here();
    program.In(0xC0, 0xC100).In(0xDC, 0xC101).In(0xC1, 0xC102).In(0xDD, 0xC103).In(0xC2, 0xC104);
    program.In(0xFE, 0xC105).In(0x00, 0xC106);
    program.Bytes({0xC3, loop, 0});
    const Gear machine = Start({}, program);
    MACHINE_RIG::Press(L"GG P1 UP");
    MACHINE_RIG::Press(L"GG P1 BUTTON2");
    MACHINE_RIG::Press(L"GG P1 START");
    MACHINE_RIG::Press(L"GG P2 DOWN");
    rig.Frames(*machine, 2);
    const int expected[] = {0xDE, 0xDE, 0xFF, 0xFF, 0xFF, 0xFF, 0x40};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(machine->Peek(static_cast<uint16_t>(0xC100 + i)), expected[i]) << i;
    }
}

TEST(GameGear, ModelIsShownAtPortZero) {
    MACHINE_RIG rig;
    GEAR_OPTIONS options{};
    options.model = kGearJapanese;
    const Gear machine = Start(options, Program().In(0, 0xC100).Stop());
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100), 0x80);
}

TEST(GameGear, ColoursHaveTwelveBits) {
    MACHINE_RIG rig;
    Program program;
    Colour(program, 16, 0x2F, 0x0A).Stop(); // the backdrop: red 15, green 2, blue 10
    const Gear machine = Start({}, program);
    rig.Frames(*machine, 2);
    EXPECT_EQ(rig.pixels[0], 0xFFF020A0u);
    EXPECT_EQ(machine->Memory("palette").size(), 64u);
}

TEST(GameGear, PanningPortPicksTheSides) {
    const struct {
        int panning;
        bool left;
        bool right;
    } rows[] = {
        {0xFF, true,  true },
        {0x10, true,  false},
        {0x01, false, true },
        {0x00, true,  true }, // zero counts as all
        {0xEE, false, false},
    };
    for (const auto& row : rows) {
        MACHINE_RIG rig;
        const Gear machine = Start({}, Tone(row.panning).Stop());
        rig.Frames(*machine, 4);
        EXPECT_EQ(Peak(rig, 0) > 1000, row.left) << row.panning;
        EXPECT_EQ(Peak(rig, 1) > 1000, row.right) << row.panning;
    }
}

TEST(GameGear, LinkedSoundIsTheAverageOfBoth) {
    auto alone = std::make_unique<MACHINE_RIG>();
    auto both = std::make_unique<MACHINE_RIG>();
    CGameFile loud = GearGame(Tone(0xFF).Stop().Image());
    CGameFile quiet = GearGame(Program().Stop().Image());
    const Gear single = StartMachine<CGAMEGEAR>(GEAR_OPTIONS{}, loud);
    const Gear pair = StartMachine<CGAMEGEAR>(Linked(), loud, &quiet);
    for (int frame = 0; frame < 5; ++frame) {
        alone->Frame(*single);
        both->Frame(*pair);
        ASSERT_EQ(alone->audio.sampleCount, both->audio.sampleCount);
        for (uint32_t i = 0; i < alone->audio.sampleCount * 2; ++i) {
            ASSERT_EQ(both->samples[i], alone->samples[i] / 2);
        }
    }
    EXPECT_GT(Peak(*both, 0), 1000);
}

TEST(GameGear, BytesGoBetweenLinkedConsoles) {
    MACHINE_RIG rig;
    // The sender waits until the receiver is enabled; the receiver stores each byte in its NMI
    // handler.
    Program sender;
    sender.Out(5, 0x38).Bytes({0x06, 0x00, 0x10, 0xFE}); // ld b,0; djnz
    sender.Out(3, 0x5A);
    const int wait = sender.Here();
    sender.Bytes({0xDB, 0x05, 0xCB, 0x47, 0xC2, wait & 0xFF, wait >> 8}); // until bit 0 falls
    sender.Out(3, 0xA5).Stop();
    Program receiver;
    receiver.Out(5, 0x28).Bytes({0x21, 0x00, 0xC1}).Stop(); // ld hl,0xC100
    receiver.At(0x66).Bytes({0xF5, 0xDB, 0x04, 0x77, 0x23, 0xF1, 0xED, 0x45});
    CGameFile first = GearGame(sender.Image());
    CGameFile second = GearGame(receiver.Image());
    const Gear machine = StartMachine<CGAMEGEAR>(Linked(), first, &second);
    rig.Frames(*machine, 2);
    EXPECT_EQ(machine->Peek(0xC100, 1), 0x5A);
    EXPECT_EQ(machine->Peek(0xC101, 1), 0xA5);
    EXPECT_EQ(machine->Peek(0xC102, 1), 0x00);
    EXPECT_EQ(machine->Peek(0xC100, 0), 0x00);
}

TEST(GameGear, LinesOfTheCableAreSeenByTheOtherProgram) {
    MACHINE_RIG rig;
    Program driver;
    driver.Out(2, 0xFE).Out(1, 0x00).Stop(); // PC0 low
    Program watcher;
    const int loop = watcher.Here();
    watcher.In(1, 0xC100).Bytes({0xC3, loop, 0});
    CGameFile first = GearGame(driver.Image());
    CGameFile second = GearGame(watcher.Image());
    const Gear machine = StartMachine<CGAMEGEAR>(Linked(), first, &second);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100, 1), 0x7B) << "its PC2";
}

TEST(GameGear, LinkWithoutASecondGamePlaysTheFirstTwice) {
    MACHINE_RIG rig;
    const Gear machine = Start(Linked(), Program().Store(0xC100, 0x42).Stop());
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0xC100, 0), 0x42);
    EXPECT_EQ(machine->Peek(0xC100, 1), 0x42);
}

TEST(GameGear, EachPlayerHasAConsole) {
    MACHINE_RIG rig;
    Program program;
    const int loop = program.Here();
    program.In(0xDC, 0xC100).In(0, 0xC101).Bytes({0xC3, loop, 0});
    const Gear machine = Start(Linked(), program);
    MACHINE_RIG::Press(L"GG P1 LEFT");
    MACHINE_RIG::Press(L"GG P2 BUTTON1");
    MACHINE_RIG::Press(L"GG P2 START");
    rig.Frames(*machine, 2);
    EXPECT_EQ(machine->Peek(0xC100, 0), 0xFB);
    EXPECT_EQ(machine->Peek(0xC100, 1), 0xEF);
    EXPECT_EQ(machine->Peek(0xC101, 0), 0xC0);
    EXPECT_EQ(machine->Peek(0xC101, 1), 0x40);
}

TEST(GameGear, SecondFileOfOneConsoleIsItsBios) {
    CGameFile bios = GearGame(std::vector<uint8_t>(0x400, 0xB1));
    CGameFile game = GearGame(NumberedBanks(4));
    const Gear machine = StartMachine<CGAMEGEAR>(GEAR_OPTIONS{}, game, &bios);
    EXPECT_EQ(machine->Peek(0), 0xB1);
    EXPECT_EQ(machine->Peek(0xBFFF), 0xB1);
}

TEST(GameGear, BoardOfTheRecordPicksTheMapper) {
    MACHINE_RIG rig;
    std::vector<uint8_t> image = NumberedBanks(8);
    const std::vector<uint8_t> code = Program().Store(0x8000, 5).Stop().Image(16);
    std::copy(code.begin(), code.end(), image.begin());
    CGameFile game = GearGame(image, 2);
    const Gear machine = StartMachine<CGAMEGEAR>(GEAR_OPTIONS{}, game);
    rig.Frame(*machine);
    EXPECT_EQ(machine->Peek(0x9000), 5);
}

TEST(GameGear, StartValuesAreThoseWithoutABios) {
    const Gear machine = Start({}, Program().Stop());
    EXPECT_EQ(machine->Peek(0xC000), 0xAB);
    EXPECT_EQ(machine->Peek(0xDFFF), 2);
}

TEST(GameGear, GamesThatCannotRunAreRefusedWithAReason) {
    const GEAR_OPTIONS options{};
    CGAMEGEAR machine(kRigKey);
    CGameFile* none[2] = {nullptr, nullptr};
    EXPECT_FALSE(machine.Init(&options, none));
    EXPECT_EQ(EmuLastError(), "there is no game to run");
    CGameFile empty = GearGame({});
    CGameFile* games[2] = {&empty, nullptr};
    EXPECT_FALSE(machine.Init(&options, games));
    EXPECT_EQ(EmuLastError(), "the image of \"Test Game\" is empty");
}

TEST(GameGear, ThRisingLatchesTheHCounter) {
    MACHINE_RIG rig;
    const Gear machine =
        Start({}, Program().Out(0x3F, 0x55).Out(0x3F, 0x75).In(0x7F, 0xC100).Stop());
    rig.Frame(*machine);
    EXPECT_NE(machine->Peek(0xC100), 0);
}
