// The bus between the chips and the cartridge: empty addresses, sprite DMA and sample fetches with banks and
// stalls, and boards driven by real instructions.
#include "nes/apu_tick.h"
#include "nes/nes_rig.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

NesProgram Idle() {
    NesProgram program;
    program.Stop();
    return program;
}

void RunFrames(CEmuSystem& machine, uint32_t count) {
    auto rig = std::make_unique<MACHINE_RIG>();
    rig->Frames(machine, count);
}

// The letters of the four nametables' pages.
std::string Mirroring(const NES_CONSOLE& nes) {
    std::string pages;
    for (size_t quarter = 0; quarter < 4; ++quarter) {
        for (size_t page = 0; page < 4; ++page) {
            if (nes.cartridge.pages.ppu[8 + quarter].data == nes.ppu.nametables[page].data()) {
                pages.push_back(static_cast<char>('A' + page));
            }
        }
    }
    return pages;
}

std::vector<uint8_t> State(CNES& machine) {
    uint32_t size = 0;
    const StateBlob blob = machine.SaveState(size);
    return {blob.get(), blob.get() + size};
}

} // namespace

// Only the first 24 addresses of the page respond; there are no mirrors.
TEST(NesBus, WritesBeyondTheSoundRegistersReachNothing) {
    constexpr std::array<uint16_t, 12> kAddresses{0x4115, 0x4055, 0x4035, 0x4117, 0x4057, 0x4116,
                                                  0x4056, 0x4114, 0x4054, 0x4100, 0x4018, 0x4FFF};
    std::array<uint8_t, 256> ones{};
    ones.fill(0xFF);
    for (const uint16_t address : kAddresses) {
        const auto nes = StartConsole(Idle());
        NES_BUS bus{*nes};
        bus.Write(0x4015, 0x00);
        bus.Read(0x4016);
        bus.Read(0x4017);
        nes->cpu.busValue = 0x55;
        bus.Write(address, 0xCF);
        EXPECT_EQ(nes->apu.enabled, (std::array<bool, kApuLengths>{})) << address;
        EXPECT_FALSE(nes->apu.fiveSteps) << address;
        EXPECT_FALSE(nes->apu.pulses[0].envelope.constant) << address;
        EXPECT_EQ(nes->pads[0].readIndex, 1U) << address;
        EXPECT_EQ(nes->pads[1].readIndex, 1U) << address;
        EXPECT_EQ(nes->ppu.oamAddress, 0) << address;
        EXPECT_EQ(nes->ppu.oam, ones) << address;
        EXPECT_EQ(nes->cpu.busValue, 0x55) << address << ": no transfer has read";
    }
}

// The write takes one cycle off the stall. The first read of the transfer gets the rest, whose last cycle is its
// own.
TEST(NesBus, SpriteDmaWaitsForTheSampleChannelOnce) {
    for (const auto& [pending, cycles] : std::vector<std::pair<uint32_t, uint32_t>>{
             {4, 2},
             {3, 1},
             {2, 0},
             {1, 0}
    }) {
        const auto nes = StartConsole(Idle());
        NES_BUS bus{*nes};
        for (uint32_t i = 0; i < 256; ++i) {
            nes->workRam[0x300 + i] = static_cast<uint8_t>(i ^ 0x80);
        }
        nes->apu.stallCycles = pending;
        const uint32_t dot = nes->ppu.dot;
        const uint32_t clock = nes->apu.sampleClock;
        bus.Write(0x4014, 0x03);
        EXPECT_EQ(nes->ppu.dot, dot + cycles * 3) << pending;
        EXPECT_EQ(nes->apu.sampleClock, clock + cycles) << pending;
        EXPECT_EQ(nes->apu.stallCycles, 0U) << pending;
        for (uint32_t i = 0; i < 256; ++i) {
            const uint32_t mask =
                i % 4 == 2 ? 0xE3 : 0xFF; // three bits of the attributes don't exist
            EXPECT_EQ(nes->ppu.oam[i], (i ^ 0x80) & mask) << i;
        }
    }
}

// A byte is fetched when the one before it begins to play, from the bank that is mapped then.
TEST(NesBus, SamplesComeFromTheBankThatIsSwitchedIn) {
    constexpr size_t kPagesABank = 8;
    constexpr size_t kSamplePage = 4; // in the bank: 0xC000
    const auto nes = StartConsole(Idle(), {7, 0, 4, 0, {}});
    NES_BUS bus{*nes};
    for (size_t bank = 0; bank < 2; ++bank) {
        for (size_t i = 0; i < 4; ++i) {
            nes->cartridge.program[bank * kPagesABank + kSamplePage][i] =
                static_cast<uint8_t>(0xA0 + bank * 16 + i);
        }
    }
    const auto nextByte = [&] {
        const uint32_t left = nes->apu.sample.bytesLeft;
        for (int cycles = 0; cycles < 1000 && nes->apu.sample.bytesLeft == left; ++cycles) {
            ApuTick(nes->apu);
        }
        return nes->apu.sample.buffer;
    };
    bus.Write(0x4010, 0x0F);
    bus.Write(0x4012, 0x00);
    bus.Write(0x4013, 0x01);
    bus.Write(0x8000, 1);
    bus.Write(0x4015, 0x10);
    EXPECT_EQ(nes->apu.sample.buffer, 0xB0) << "the first at once";
    EXPECT_EQ(nextByte(), 0xB1);
    bus.Write(0x8000, 0);
    EXPECT_EQ(nextByte(), 0xA2);
    bus.Write(0x8000, 1);
    EXPECT_EQ(nextByte(), 0xB3);
}

// INC writes the old value and in the next cycle the new one; board 1 accepts only the first. The lowest bits of
// the old values are 1, 1, 1, 1, 0: control 0x0F, A A B B. With the second writes accepted too the result would be
// A B A B, with only those A A A A.
TEST(NesBus, BoardOneTakesTheFirstWriteOfAnIncrement) {
    for (const bool plain : {false, true}) {
        NesProgram program;
        for (const int address : {0x9001, 0x9001, 0x9001, 0x9001, 0x9000}) {
            program.Absolute(0xEE, address);
        }
        program.Stop();
        program.At(0xF000).Bytes({0x00, 0x01}); // also at 0x9000
        const auto machine = StartNes(program, {1, 0, 2, 1, {}});
        machine->SetPlainLoop(plain);
        EXPECT_EQ(Mirroring(machine->Console()), "AAAA");
        RunFrames(*machine, 1);
        EXPECT_EQ(Mirroring(machine->Console()), "AABB") << plain;
    }
}

// Bank 0 starts at 0xE000 and bank 1 at 0xE100. A reset maps bank 0 before it reads the vector.
TEST(NesBus, ResetReadsItsVectorThroughTheBoardsResetMap) {
    for (const int board : {7, 66}) {
        NesProgram program;
        program.Store(0x0010, 0x11).Store(0x8000, board == 7 ? 0x01 : 0x10).Stop();
        program.At(0xE100).Store(0x0010, 0x22).Stop();
        std::vector<uint8_t> image = NesImage(program, {board, 0, 4, 0, {}});
        constexpr size_t kBank1 = kNesHeaderBytes + 0x8000;
        image[kBank1 + 0x7FFD] = 0xE1;
        const auto machine = StartNes(image);
        RunFrames(*machine, 2);
        ASSERT_EQ(NesByte(*machine, 0xFFFD), 0xE1) << "switched: " << board;
        EXPECT_EQ(NesByte(*machine, 0x0010), 0x11);
        machine->Reset();
        EXPECT_EQ(machine->Console().cpu.pc, 0xE000) << board;
        EXPECT_EQ(NesByte(*machine, 0xFFFD), 0xE0) << board;
        RunFrames(*machine, 2);
        EXPECT_EQ(NesByte(*machine, 0x0010), 0x11) << board;
    }
}

// Without rendering the PPU's bus shows the VRAM address, so a program clocks the counter by moving it to 0x1000
// and back. A latch of 2 counts 2, 1, 0 with an interrupt, and again.
TEST(NesBus, BoardFoursCounterIsClockedByHandThroughTheAddress) {
    constexpr int kClocks = 7;
    std::array<std::vector<uint8_t>, 2> states;
    for (const bool plain : {false, true}) {
        NesProgram program;
        program.Store(0x0010, 0).Store(0x0011, 0).Store(0x0020, 0).Store(0x4017, 0x40);
        program.PictureAddress(0x0000);
        program.Store(0xC000, 2).Sta(0xC001).Sta(0xE001).Bytes({0x58}); // CLI
        for (int clock = 0; clock < kClocks; ++clock) {
            program.Bytes({0xE6, 0x10}); // INC $10
            program.PictureAddress(0x1000).Bytes({0xEA, 0xEA}).PictureAddress(0x0FFF);
        }
        program.Stop();
        // LDX $11; LDA $10; STA $20,X; INC $11; acknowledge and enable; RTI
        program.At(kNesIrq).Bytes({0xA6, 0x11, 0xA5, 0x10, 0x95, 0x20, 0xE6, 0x11});
        program.Sta(0xE000).Sta(0xE001).Bytes({0x40});
        const auto machine = StartNes(program, {4, 0, 2, 1, {}});
        machine->SetPlainLoop(plain);
        RunFrames(*machine, 1);
        EXPECT_EQ(NesByte(*machine, 0x0010), kClocks) << plain;
        EXPECT_EQ(NesByte(*machine, 0x0011), 2) << plain;
        EXPECT_EQ(NesByte(*machine, 0x0020), 3) << plain;
        EXPECT_EQ(NesByte(*machine, 0x0021), 6) << plain;
        states[plain ? 1 : 0] = State(*machine);
    }
    EXPECT_EQ(states[0], states[1]);
}
