// The NES as a machine: bus, pads, DMA, stalls, frames, picture, sound, refused images.
#include "nes/nes_rig.h"
#include "nes/ppu_colours.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

NesProgram Idle() {
    NesProgram program;
    program.Stop();
    return program;
}

// The byte that a program reads at an address.
uint8_t ReadByProgram(int address, const NES_IMAGE& what = {}) {
    NesProgram program;
    program.Copy(address, 0x0200).Stop();
    const auto machine = StartNes(program, what);
    MACHINE_RIG().Frame(*machine);
    return NesByte(*machine, 0x0200);
}

void RunFrames(CEmuSystem& machine, uint32_t count) {
    auto rig = std::make_unique<MACHINE_RIG>();
    rig->Frames(machine, count);
}

} // namespace

TEST(Nes, WorkRamStartsAsOnesButForFourBytes) {
    const auto machine = StartNes(Idle());
    std::vector<uint8_t> expected(0x800, 0xFF);
    expected[8] = 0xF7;
    expected[9] = 0xEF;
    expected[10] = 0xDF;
    expected[15] = 0xBF;
    EXPECT_EQ(machine->Dump("ram"), expected);
}

TEST(Nes, WorkRamRepeatsUpTo0x1FFF) {
    NesProgram program;
    program.Store(0x0005, 0x12).Store(0x1F07, 0x34).Copy(0x1805, 0x0300).Stop();
    const auto machine = StartNes(program);
    RunFrames(*machine, 1);
    for (const uint32_t address : {0x0005U, 0x0805U, 0x1005U, 0x1805U, 0x0300U}) {
        EXPECT_EQ(NesByte(*machine, address), 0x12) << address;
    }
    EXPECT_EQ(machine->Dump("ram")[0x707], 0x34);
}

TEST(Nes, PictureRegistersRepeatUpTo0x3FFF) {
    NesProgram program;
    program.Store(0x3FFB, 0x10).Store(0x27FC, 0x55).Stop();
    const auto machine = StartNes(program);
    RunFrames(*machine, 1);
    EXPECT_EQ(machine->Dump("oam")[0x10], 0x55);
}

// The last byte on the bus is the high byte of the address.
TEST(Nes, EmptyAddressesGiveTheLastByteOnTheBus) {
    EXPECT_EQ(ReadByProgram(0x4014), 0x40);
    EXPECT_EQ(ReadByProgram(0x4018), 0x40);
    EXPECT_EQ(ReadByProgram(0x4115), 0x41);
    EXPECT_EQ(ReadByProgram(0x4FFF), 0x4F);
}

TEST(Nes, PagesWithoutMemoryReadAsOnes) {
    EXPECT_EQ(ReadByProgram(0x5000), 0xFF);
    EXPECT_EQ(ReadByProgram(0x6000), 0xFF) << "no RAM on the plain board";
}

TEST(Nes, ProgramBanksBeyondTheImageReadAsOnes) {
    NesProgram program;
    program.Store(0x9000, 1).Copy(0x8000 + kBankNumberOffset, 0x0200);
    program.Store(0x9000, 5).Copy(0x8000 + kBankNumberOffset, 0x0201);
    program.Copy(0xC000 + kBankNumberOffset, 0x0202).Stop();
    // Three banks are no power of two, so page numbers don't wrap.
    const auto machine = StartNes(program, {2, 0, 3, 0, {}});
    RunFrames(*machine, 1);
    EXPECT_EQ(NesByte(*machine, 0x0200), 2) << "bank 1 begins with the third 8 KB";
    EXPECT_EQ(NesByte(*machine, 0x0201), 0xFF) << "absent";
    EXPECT_EQ(NesByte(*machine, 0x0202), 4) << "the last bank";
}

// Pads.

namespace {

// Reads a port 40 times after a strobe, to 0x0200 and up.
NesProgram ReadPadOften(int port) {
    NesProgram program;
    program.Store(0x4016, 1).Store(0x4016, 0).Bytes({0xA2, 0x00}); // LDX #0
    const uint16_t loop = program.Here();
    program.Load(port).Absolute(0x9D, 0x0200).Bytes({0xE8, 0xE0, 40, 0xD0, 0xF5}); // STA,X INX CPX
    EXPECT_EQ(program.Here(), loop + 11);
    program.Stop();
    return program;
}

void ExpectPadBits(const CNES& machine, uint8_t buttons) {
    for (uint32_t i = 0; i < 40; ++i) {
        const uint32_t bit = i % 32 < 8 ? uint32_t{buttons} >> (i % 32) & 1U : 0;
        EXPECT_EQ(NesByte(machine, 0x0200 + i), 0x40 | bit) << "read " << i;
    }
}

} // namespace

TEST(Nes, PadReadsAsEightButtonsThenZeroesThenTheButtonsAgain) {
    RegisterSettings();
    const std::wstring names[] = {L"BUTTONA", L"BUTTONB", L"SELECT", L"START",
                                  L"UP",      L"DOWN",    L"LEFT",   L"RIGHT"};
    // The default is a shift key; binds a plain key instead.
    Settings().SetInt2(L"INPUT NES P1 SELECT", 290, 0);
    for (int player = 1; player <= 2; ++player) {
        for (int button = 0; button < 8; ++button) {
            const auto machine = StartNes(ReadPadOften(player == 1 ? 0x4016 : 0x4017));
            MACHINE_RIG rig;
            MACHINE_RIG::Press(L"NES P" + std::to_wstring(player) + L" " +
                               names[static_cast<size_t>(button)]);
            rig.Frame(*machine);
            SCOPED_TRACE(std::to_string(player) + " " + std::to_string(button));
            ExpectPadBits(*machine, static_cast<uint8_t>(1 << button));
        }
    }
}

TEST(Nes, PadsAreApart) {
    const auto machine = StartNes(ReadPadOften(0x4016));
    MACHINE_RIG rig;
    MACHINE_RIG::Press(L"NES P2 BUTTONA");
    rig.Frame(*machine);
    ExpectPadBits(*machine, 0);
}

TEST(Nes, AnyWriteRestartsBothPads) {
    for (const int value : {0, 1, 0x80}) {
        const auto nes = StartConsole(Idle());
        NES_BUS bus{*nes};
        nes->cpu.busValue = 0;
        nes->pads[0].buttons = kNesButtonA;
        nes->pads[1].buttons = kNesButtonA;
        for (int i = 0; i < 3; ++i) {
            bus.Read(0x4016);
            bus.Read(0x4017);
        }
        bus.Write(0x4016, static_cast<uint8_t>(value));
        EXPECT_EQ(bus.Read(0x4016), 1);
        EXPECT_EQ(bus.Read(0x4017), 1);
        // A strobe that stays set has no effect.
        EXPECT_EQ(bus.Read(0x4016), 0);
        EXPECT_EQ(bus.Read(0x4017), 0);
    }
}

TEST(Nes, PadLeavesTheTwoUpperBitsToTheBus) {
    const auto nes = StartConsole(Idle());
    NES_BUS bus{*nes};
    nes->cpu.busValue = 0xFF;
    EXPECT_EQ(bus.Read(0x4016), 0xC0);
    nes->cpu.busValue = 0x3F;
    EXPECT_EQ(bus.Read(0x4017), 0x00);
}

TEST(Nes, WriteTo0x4017IsForTheFrameRegisterAndNotForThePad) {
    const auto nes = StartConsole(Idle());
    NES_BUS bus{*nes};
    bus.Read(0x4017);
    bus.Write(0x4017, 0xC0);
    EXPECT_EQ(nes->pads[1].readIndex, 1U);
    EXPECT_TRUE(nes->apu.fiveSteps);
    EXPECT_TRUE(nes->apu.irqInhibit);
}

TEST(Nes, FrameInterruptComesUnlessTheFrameRegisterForbidsIt) {
    for (const bool forbidden : {false, true}) {
        NesProgram program;
        program.Store(0x0010, 0).Store(0x4017, forbidden ? 0x40 : 0).Bytes({0x58}).Stop();
        program.At(kNesIrq).Load(0x4015).Bytes({0xE6, 0x10, 0x40}); // INC $10; RTI
        const auto machine = StartNes(program);
        RunFrames(*machine, 20);
        // One per 29,830 cycles, over 20 frames of 29,780.7. The flag is set in three cycles, so a read in
        // the first may be followed by another interrupt.
        const uint32_t count = NesByte(*machine, 0x0010);
        EXPECT_GE(count, forbidden ? 0U : 19U);
        EXPECT_LE(count, forbidden ? 0U : 20U);
    }
}

TEST(Nes, ApuStatusIsReadAt0x4015) {
    NesProgram program;
    program.Store(0x4015, 0x03).Store(0x4000, 0x30).Store(0x4003, 0x08).Store(0x4007, 0x08);
    program.Bytes({0xEA, 0xEA}).Copy(0x4015, 0x0200).Stop();
    const auto machine = StartNes(program);
    RunFrames(*machine, 1);
    EXPECT_EQ(NesByte(*machine, 0x0200), 0x03);
}

// DMA and stalls.

TEST(Nes, SpriteDmaCopiesAPageAtOnceAndReadsAtPc) {
    const auto nes = StartConsole(Idle());
    NES_BUS bus{*nes};
    for (uint32_t i = 0; i < 256; ++i) {
        nes->workRam[0x300 + i] = static_cast<uint8_t>(i * 3 + 1);
    }
    bus.Write(0x2003, 0x10);
    const uint32_t dot = nes->ppu.dot;
    const uint32_t clock = nes->apu.sampleClock;
    const uint32_t cycles = nes->cpu.cycles;
    bus.Write(0x4014, 0x03);
    EXPECT_EQ(nes->ppu.dot, dot);
    EXPECT_EQ(nes->apu.sampleClock, clock);
    EXPECT_EQ(nes->cpu.cycles, cycles);
    EXPECT_EQ(nes->cpu.busValue, 0x4C) << "the jump at pc";
    for (uint32_t i = 0; i < 256; ++i) {
        const uint32_t at = (i + 0x10) & 0xFF;
        const uint32_t mask = at % 4 == 2 ? 0xE3 : 0xFF; // three bits of the attributes don't exist
        EXPECT_EQ(nes->ppu.oam[at], (i * 3 + 1) & mask) << i;
    }
    EXPECT_EQ(nes->ppu.oamAddress, 0x10);
}

TEST(Nes, SpriteDmaReadsThroughTheBus) {
    const auto nes = StartConsole(Idle());
    NES_BUS bus{*nes};
    bus.Write(0x4014, 0xE0);
    EXPECT_EQ(nes->ppu.oam[0], 0x4C) << "the first instruction";
    EXPECT_EQ(nes->ppu.oam[3], 0xEA);
}

TEST(Nes, ReadWaitsForTheSampleChannel) {
    const auto nes = StartConsole(Idle());
    NES_BUS bus{*nes};
    nes->apu.stallCycles = 4;
    const uint32_t dot = nes->ppu.dot;
    const uint32_t clock = nes->apu.sampleClock;
    EXPECT_EQ(bus.Read(kNesCodeStart), 0x4C);
    EXPECT_EQ(nes->ppu.dot, dot + 9) << "three cycles of three dots";
    EXPECT_EQ(nes->apu.sampleClock, clock + 3);
    EXPECT_EQ(nes->apu.stallCycles, 0U);
    EXPECT_EQ(nes->cpu.cycles, 0U) << "not the processor's";
    bus.Read(kNesCodeStart);
    EXPECT_EQ(nes->ppu.dot, dot + 9) << "once";
}

TEST(Nes, WritesShortenTheWaitByOneEach) {
    const auto nes = StartConsole(Idle());
    NES_BUS bus{*nes};
    nes->apu.stallCycles = 4;
    const uint32_t dot = nes->ppu.dot;
    bus.Write(0x0000, 1);
    bus.Write(0x0000, 2);
    EXPECT_EQ(nes->ppu.dot, dot);
    EXPECT_EQ(nes->apu.stallCycles, 2U);
    bus.Read(0x0000);
    EXPECT_EQ(nes->ppu.dot, dot + 3);
}

// Board 73 interrupts one clock after its counter reaches 0xFFFF.
TEST(Nes, BoardIsClockedWhileTheProcessorWaits) {
    for (const int low : {0xD, 0xC}) {
        const auto nes = StartConsole(Idle(), {73, 0, 2, 0, {}});
        NES_BUS bus{*nes};
        bus.Write(0x8000, static_cast<uint8_t>(low));
        bus.Write(0x9000, 0xF);
        bus.Write(0xA000, 0xF);
        bus.Write(0xB000, 0xF);
        bus.Write(0xC000, 0x02);
        nes->apu.stallCycles = 4;
        bus.Read(0x0000);
        EXPECT_EQ(nes->cpu.irqLines & kNesIrqBoard, low == 0xD ? kNesIrqBoard : 0U) << low;
    }
}

namespace {

// CPU cycles in 60 frames, after the program's setup.
uint32_t CyclesOfSixtyFrames(const NesProgram& program) {
    const auto machine = StartNes(program);
    MACHINE_RIG rig;
    rig.Frames(*machine, 4);
    const uint32_t before = machine->Console().cpu.cycles;
    rig.Frames(*machine, 60);
    return machine->Console().cpu.cycles - before;
}

} // namespace

// 341 x 262 dots, with rendering on one less in every second frame.
TEST(Nes, FrameHas29780AndTwoThirdsCyclesWithoutAPicture) {
    EXPECT_NEAR(CyclesOfSixtyFrames(Idle()), 60 * 341 * 262 / 3.0, 1.0);
}

TEST(Nes, FrameHas29780AndAHalfCyclesWithAPicture) {
    NesProgram program;
    program.Store(0x2001, 0x08).Stop();
    EXPECT_NEAR(CyclesOfSixtyFrames(program), (60 * 341 * 262 - 30) / 3.0, 1.0);
}

// A byte every 8 x 54 cycles, three of which the CPU loses.
TEST(Nes, SamplesTakeTimeFromTheProcessor) {
    NesProgram program;
    program.Store(0x4010, 0x4F).Store(0x4012, 0).Store(0x4013, 0xFF).Store(0x4015, 0x10).Stop();
    constexpr double kAll = 60 * 341 * 262 / 3.0;
    EXPECT_NEAR(CyclesOfSixtyFrames(program), kAll - 3 * kAll / 432, 5.0);
}

// Every fourth rendered line, the pre-render line included, in the plain and in the fast loop.
TEST(Nes, ScanlineBoardInterruptsOnItsLines) {
    for (const bool plain : {false, true}) {
        NesProgram program;
        program.Store(0x0010, 0).Store(0x0011, 0).Store(0x4017, 0x40);
        program.Store(0x2000, 0x08).Store(0x2001, 0x18); // sprites from the table at 0x1000
        program.Store(0xC000, 3).Sta(0xC001).Sta(0xE001).Bytes({0x58}).Stop();
        // INC $10; BNE; INC $11; acknowledge and enable; RTI
        program.At(kNesIrq).Bytes({0xE6, 0x10, 0xD0, 0x02, 0xE6, 0x11});
        program.Sta(0xE000).Sta(0xE001).Bytes({0x40});
        const auto machine = StartNes(program, {4, 0, 2, 1, {}});
        machine->SetPlainLoop(plain);
        RunFrames(*machine, 21); // a vblank and twenty pictures
        const int count = NesByte(*machine, 0x0010) + 256 * NesByte(*machine, 0x0011);
        EXPECT_NEAR(count, 20 * 241 / 4.0, 2.0) << plain;
    }
}

TEST(Nes, VblankInterruptsOnceAFrame) {
    NesProgram program;
    program.Store(0x0010, 0).Store(0x2000, 0x80).Stop();
    program.At(kNesNmi).Bytes({0xE6, 0x10, 0x40}); // INC $10; RTI
    const auto machine = StartNes(program);
    RunFrames(*machine, 3);
    const int before = NesByte(*machine, 0x0010);
    RunFrames(*machine, 30);
    EXPECT_EQ(NesByte(*machine, 0x0010) - before, 30);
}

// Picture.

namespace {

// Tile 1 is solid colour 1; tile 2 has colour 1 in its top row and left column.
std::vector<uint8_t> Characters() {
    std::vector<uint8_t> characters(0x2000, 0);
    std::fill_n(characters.begin() + 0x10, 8, uint8_t{0xFF});
    std::fill_n(characters.begin() + 0x20, 8, uint8_t{0x80});
    characters[0x20] = 0xFF;
    return characters;
}

// Tile 1 in column 3 of row 2, and tile 2 as a sprite at x 120, y 100; the backdrop is black.
NesProgram ShowTileAndSprite() {
    NesProgram program;
    program.WaitForBlank().WaitForBlank();
    program.PictureByte(0x3F00, 0x0F).PictureByte(0x3F01, 0x30).PictureByte(0x3F11, 0x16);
    program.PictureByte(0x2043, 1).PictureByte(0x23C0, 0);
    program.Store(0x0200, 99).Store(0x0201, 2).Store(0x0202, 0).Store(0x0203, 120);
    program.Store(0x2003, 0).Store(0x4014, 2);
    program.PictureAddress(0).Store(0x2005, 0).Store(0x2005, 0).Store(0x2000, 0).Store(0x2001,
                                                                                       0x1E);
    program.Stop();
    return program;
}

bool InTile(uint32_t x, uint32_t y) {
    return x / 8 == 3 && y / 8 == 2;
}

bool InSprite(uint32_t x, uint32_t y) {
    return (y == 100 && x >= 120 && x < 128) || (x == 120 && y >= 100 && y < 108);
}

void ExpectTileAndSprite(const MACHINE_RIG& rig) {
    const auto colours = PpuBuildColourTable();
    uint32_t wrong = 0;
    for (uint32_t y = 0; y < 240; ++y) {
        for (uint32_t x = 0; x < 256; ++x) {
            const size_t colour = InTile(x, y) ? 0x30 : InSprite(x, y) ? 0x16 : 0x0F;
            wrong += rig.pixels[y * 256 + x] != colours[colour] ? 1U : 0U;
        }
    }
    EXPECT_EQ(wrong, 0U);
    EXPECT_NE(colours[0x30], colours[0x0F]);
    EXPECT_NE(colours[0x16], colours[0x0F]);
}

} // namespace

TEST(Nes, ShowsATileAndASprite) {
    const auto machine = StartNes(ShowTileAndSprite(), {0, 0, 2, 1, Characters()});
    MACHINE_RIG rig;
    rig.Frames(*machine, 5);
    ExpectTileAndSprite(rig);
}

TEST(Nes, ShowsCharactersThatTheGameWrites) {
    for (const int board : {0, 1, 2, 4, 7, 73}) {
        SCOPED_TRACE(board);
        NesProgram program;
        const std::vector<uint8_t> characters = Characters();
        program.WaitForBlank().WaitForBlank().PictureAddress(0x0000);
        // Clears all tiles: LDA #0; LDY #32; LDX #0; STA 2007; DEX; BNE; DEY; BNE.
        program.Bytes({0xA9, 0, 0xA0, 32, 0xA2, 0}).Sta(0x2007);
        program.Bytes({0xCA, 0xD0, 0xFA, 0x88, 0xD0, 0xF7});
        for (int i = 0x10; i < 0x30; ++i) {
            program.PictureByte(i, characters[static_cast<size_t>(i)]);
        }
        const uint16_t shown = program.Here();
        NesProgram show = ShowTileAndSprite();
        for (uint16_t i = 0; i < 0x100; ++i) {
            program.Bytes({show.Code()[i]});
        }
        // The copied code ends in a jump to itself, so its address must be adjusted.
        const uint16_t end = static_cast<uint16_t>(show.Here() - kNesCodeStart - 3);
        program.At(static_cast<uint16_t>(shown + end)).Stop();
        const auto machine = StartNes(program, {board, 0, 2, 0, {}});
        MACHINE_RIG rig;
        rig.Frames(*machine, 8);
        ExpectTileAndSprite(rig);
    }
}

TEST(Nes, PlainBoardsRamIsEachMachinesOwn) {
    NesProgram program;
    program.WaitForBlank().PictureByte(0x0000, 0x5A).Stop();
    const auto first = StartNes(program, {0, 0, 2, 0, {}});
    const auto second = StartNes(Idle(), {0, 0, 2, 0, {}});
    RunFrames(*first, 3);
    RunFrames(*second, 3);
    EXPECT_EQ(first->Console().cartridge.plainRam[0], 0x5A);
    EXPECT_EQ(second->Console().cartridge.plainRam[0], 0x00);
}

TEST(Nes, DescribesItsPicture) {
    const auto machine = StartNes(Idle());
    EXPECT_EQ(machine->width, 256U);
    EXPECT_EQ(machine->height, 240U);
    MACHINE_RIG rig;
    rig.Frame(*machine);
    EXPECT_EQ(rig.video.width, 256U);
    EXPECT_EQ(rig.video.height, 240U);
    EXPECT_EQ(rig.video.aspect, 1.25F);
    EXPECT_EQ(rig.video.visibleX, 0U);
    EXPECT_EQ(rig.video.visibleY, 0U);
    EXPECT_EQ(rig.video.visibleWidth, 256U);
    EXPECT_EQ(rig.video.visibleHeight, 240U);
    EXPECT_EQ(rig.video.visibleAspect, 1.25F);
    EXPECT_EQ(rig.video.hold, 0);
    EXPECT_EQ(rig.video.rotated, 0);
}

TEST(Nes, EveryPixelOfEveryFrameIsSet) {
    const auto machine = StartNes(Idle());
    MACHINE_RIG rig;
    for (int frame = 0; frame < 3; ++frame) {
        rig.pixels.fill(0);
        rig.Frame(*machine);
        // The first frame is only the vblank in which the PPU starts after a reset.
        const uint32_t colour = frame == 0 ? 0xFF000000 : PpuBuildColourTable()[0x3F];
        for (size_t i = 0; i < size_t{256} * 240; ++i) {
            ASSERT_EQ(rig.pixels[i], colour) << i;
        }
        EXPECT_EQ(rig.pixels[size_t{256} * 240], 0U) << "nothing after the picture";
    }
}

TEST(Nes, DrawsNothingIntoTheBufferOfAnEarlierFrame) {
    const auto machine = StartNes(ShowTileAndSprite(), {0, 0, 2, 1, Characters()});
    MACHINE_RIG first;
    first.Frames(*machine, 5);
    EXPECT_EQ(machine->Console().ppu.pixels, nullptr);
    EXPECT_EQ(machine->Console().ppu.row, nullptr);
    first.pixels.fill(0x12345678);
    MACHINE_RIG second;
    second.Frame(*machine);
    ExpectTileAndSprite(second);
    EXPECT_EQ(std::count(first.pixels.begin(), first.pixels.end(), 0x12345678U),
              static_cast<ptrdiff_t>(first.pixels.size()));
}

// Sound.

TEST(Nes, PlaysThePitchOfThePulseChannel) {
    NesProgram program;
    // Period 253: a wave is 16 x 254 cycles, 440.4 a second.
    program.Store(0x4015, 1).Store(0x4000, 0xBF).Store(0x4001, 0).Store(0x4002, 253);
    program.Store(0x4003, 0x08).Stop();
    const auto machine = StartNes(program);
    MACHINE_RIG rig;
    rig.Frames(*machine, 10);
    uint32_t pairs = 0;
    int rises = 0;
    int16_t last = 0;
    for (int frame = 0; frame < 60; ++frame) {
        rig.Frame(*machine);
        for (uint32_t i = 0; i < rig.audio.sampleCount; ++i) {
            const int16_t value = rig.samples[i * 2];
            EXPECT_EQ(value, rig.samples[i * 2 + 1]);
            rises += last < -1000 && value > 1000 ? 1 : 0;
            last = value > 1000 || value < -1000 ? value : last;
        }
        pairs += rig.audio.sampleCount;
    }
    // 60 frames of 29,780.67 cycles.
    constexpr double kSeconds = 60 * 29780.667 / 1789773.0;
    EXPECT_NEAR(pairs, kSeconds * 44100, 2.0);
    EXPECT_NEAR(rises, kSeconds * 1789773.0 / (16 * 254), 1.5);
}

// The machine as a whole.

TEST(Nes, ResetIsThePowerOnState) {
    const auto machine = StartNes(ShowTileAndSprite(), {0, 0, 2, 1, Characters()});
    const auto play = [&] {
        std::vector<uint64_t> hashes;
        MACHINE_RIG rig;
        for (int i = 0; i < 12; ++i) {
            rig.Frame(*machine);
            hashes.push_back(rig.pictureHash);
            hashes.push_back(rig.soundHash);
        }
        return hashes;
    };
    const auto first = play();
    machine->Reset();
    EXPECT_EQ(machine->Dump("ram")[0x200], 0xFF);
    EXPECT_EQ(machine->Dump("vram"), std::vector<uint8_t>(0x1000, 0xFF));
    EXPECT_EQ(machine->Dump("palette"), std::vector<uint8_t>(32, 0x3F));
    EXPECT_EQ(machine->Dump("oam"), std::vector<uint8_t>(256, 0xFF));
    EXPECT_EQ(play(), first);
}

TEST(Nes, PeekAndDumpChangeNothing) {
    const auto machine = StartNes(ShowTileAndSprite(), {1, 0, 2, 1, Characters()});
    RunFrames(*machine, 4);
    uint32_t size = 0;
    const StateBlob before = machine->SaveState(size);
    for (uint32_t address = 0; address < 0x10000; ++address) {
        NesByte(*machine, address);
    }
    for (const std::string_view region : machine->Regions()) {
        EXPECT_FALSE(machine->Dump(region).empty()) << region;
    }
    const StateBlob after = machine->SaveState(size);
    EXPECT_TRUE(std::equal(before.get(), before.get() + size, after.get()));
    uint8_t value = 0;
    EXPECT_FALSE(machine->Peek(0x10000, value));
}

TEST(Nes, RegionsHaveTheirSizes) {
    const auto plain = StartNes(Idle());
    const auto shift = StartNes(Idle(), {1, 0, 2, 1, {}});
    EXPECT_EQ(plain->Dump("ram").size(), 0x800U);
    EXPECT_EQ(plain->Dump("vram").size(), 0x1000U);
    EXPECT_EQ(plain->Dump("palette").size(), 32U);
    EXPECT_EQ(plain->Dump("oam").size(), 256U);
    EXPECT_EQ(plain->Dump("sram").size(), 0U);
    EXPECT_EQ(plain->Regions().size(), 4U);
    EXPECT_EQ(shift->Dump("sram").size(), 0x2000U);
    EXPECT_EQ(shift->Regions().size(), 5U);
    EXPECT_TRUE(shift->Dump("fish").empty());
}

constexpr int kBattery = 2; // of header byte 6

TEST(Nes, TheBatteryKeepsTheRamIfTheHeaderSaysSo) {
    NesProgram program;
    program.Store(0x6001, 0x5A).Store(0x7FFF, 0xA5).Copy(0x6002, 0x0200).Stop();
    const auto machine = StartNes(program, {1, kBattery, 2, 1, {}});
    std::vector<uint8_t> kept(0x2000);
    kept[2] = 0x77;
    ASSERT_TRUE(machine->SetBatteryContents(kept));
    EXPECT_FALSE(machine->SetBatteryContents(std::span(kept).first(0x1FFF)));
    RunFrames(*machine, 1);
    EXPECT_EQ(NesByte(*machine, 0x0200), 0x77);
    kept[1] = 0x5A;
    kept[0x1FFF] = 0xA5;
    EXPECT_EQ(machine->BatteryContents(), kept);
}

TEST(Nes, NothingIsKeptWithoutABatteryOrWithoutRam) {
    const auto noBattery = StartNes(Idle(), {1, 0, 2, 1, {}});
    const auto noRam = StartNes(Idle(), {0, kBattery, 2, 1, {}});
    for (const auto& machine : {noBattery.get(), noRam.get()}) {
        EXPECT_TRUE(machine->BatteryContents().empty());
        EXPECT_FALSE(machine->SetBatteryContents(std::vector<uint8_t>(0x2000)));
    }
}

// Refusals.

namespace {

// The message when a game doesn't start.
std::string Refusal(const std::vector<uint8_t>& image) {
    CGameFile game = NesGame(image);
    CGameFile* const games[2] = {&game, nullptr};
    const std::array<uint8_t, kMachineOptionBytes> options{};
    EmuSetLastError("");
    CNES machine(1);
    EXPECT_FALSE(machine.Init(options.data(), games));
    return EmuLastError();
}

} // namespace

TEST(Nes, TrainerIsRefusedWithoutAMessage) {
    EXPECT_EQ(Refusal(NesImage(Idle(), {5, 4, 2, 1, {}})), "") << "before the board is looked at";
}

TEST(Nes, UnknownBoardIsNamedByItsNumber) {
    EXPECT_EQ(Refusal(NesImage(Idle(), {5, 0, 2, 1, {}})),
              "NES Mapper #5 not supported. Tell us on the forum to add support for it!");
    EXPECT_EQ(Refusal(NesImage(Idle(), {255, 0, 2, 1, {}})),
              "NES Mapper #255 not supported. Tell us on the forum to add support for it!");
}

TEST(Nes, ShortOrHeaderlessImageIsRefusedWithALine) {
    std::vector<uint8_t> image = NesImage(Idle());
    image.pop_back();
    EXPECT_EQ(Refusal(image),
              "The NES header speaks of 40976 bytes, but the image has only 40975.");
    image[0] = 'X';
    EXPECT_EQ(Refusal(image), "The image does not begin with an NES header.");
    EXPECT_EQ(Refusal({'N', 'E', 'S', 0x1A}), "The image does not begin with an NES header.");
    EXPECT_EQ(Refusal({}), "the image of \"Test Game\" is empty");
}

TEST(Nes, BytesAfterTheImageAreIgnored) {
    std::vector<uint8_t> image = NesImage(Idle());
    image.resize(image.size() + 1000, 0x12);
    EXPECT_EQ(NesByte(*StartNes(image), 0xE000), 0x4C);
}
