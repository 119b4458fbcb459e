// What the tests of the NES share: small 6502 programs, images of them, a console without a host.
#pragma once

#include "formats/game_file.h"
#include "nes/board.h"
#include "nes/nes.h"
#include "nes/nes_bus.h"
#include "nes/nes_console.h"
#include "sega8/machine_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

inline constexpr uint16_t kNesCodeStart =
    0xE000; // in the last 8 KB, which every board maps at reset
inline constexpr size_t kNesCodeBytes = 0x2000;
inline constexpr uint16_t kNesReset = 0xE000;
inline constexpr uint16_t kNesNmi = 0xE800;
inline constexpr uint16_t kNesIrq = 0xEC00;

// Code from 0xE000 on, assembled byte by byte. The reset vector is its start. NMI and IRQ return at once unless
// At(kNesNmi) and At(kNesIrq) are filled.
class NesProgram {
public:
    NesProgram()
        : code(kNesCodeBytes, 0xEA) {
        code[kNesNmi - kNesCodeStart] = 0x40; // RTI
        code[kNesIrq - kNesCodeStart] = 0x40;
        const uint16_t vectors[3] = {kNesNmi, kNesReset, kNesIrq};
        for (size_t i = 0; i < 3; ++i) {
            code[0x1FFA + 2 * i] = static_cast<uint8_t>(vectors[i] & 0xFF);
            code[0x1FFB + 2 * i] = static_cast<uint8_t>(vectors[i] >> 8);
        }
    }

    NesProgram& At(uint16_t address) {
        here = address;
        return *this;
    }
    NesProgram& Bytes(std::initializer_list<int> values) {
        for (const int value : values) {
            code.at(here - kNesCodeStart) = static_cast<uint8_t>(value);
            ++here;
        }
        return *this;
    }
    NesProgram& Absolute(int opcode, int address) {
        return Bytes({opcode, address & 0xFF, address >> 8});
    }
    NesProgram& Lda(int value) { return Bytes({0xA9, value}); }
    NesProgram& Sta(int address) { return Absolute(0x8D, address); }
    NesProgram& Load(int address) { return Absolute(0xAD, address); }
    NesProgram& Store(int address, int value) { return Lda(value).Sta(address); }
    NesProgram& Copy(int from, int to) { return Load(from).Sta(to); }
    NesProgram& PictureAddress(int address) {
        return Store(0x2006, address >> 8).Store(0x2006, address & 0xFF);
    }
    NesProgram& PictureByte(int address, int value) {
        return PictureAddress(address).Store(0x2007, value);
    }
    NesProgram& Jump(int address) { return Absolute(0x4C, address); }
    NesProgram& Stop() { return Jump(here); }
    // Waits for the vblank flag twice, as the first may be an old one.
    NesProgram& WaitForBlank() { return Absolute(0x2C, 0x2002).Bytes({0x10, 0xFB}); }

    [[nodiscard]] uint16_t Here() const { return here; }
    [[nodiscard]] const std::vector<uint8_t>& Code() const { return code; }

private:
    std::vector<uint8_t> code;
    uint16_t here = kNesCodeStart;
};

struct NES_IMAGE {
    int board = 0;
    int flags = 0; // low nibble of header byte 6
    int programBanks = 2;
    int characterBanks = 1;
    std::vector<uint8_t> characters{}; // from the start of the first bank; zeroes follow
};

inline constexpr size_t kBankNumberOffset = 0x1FF0; // where each 8 KB has its number

// The code is in each 8 KB of the program, so that a bank switch changes only the number.
inline std::vector<uint8_t> NesImage(const NesProgram& program, const NES_IMAGE& what = {}) {
    std::vector<uint8_t> image(16, 0);
    image[0] = 'N';
    image[1] = 'E';
    image[2] = 'S';
    image[3] = 0x1A;
    image[4] = static_cast<uint8_t>(what.programBanks);
    image[5] = static_cast<uint8_t>(what.characterBanks);
    image[6] = static_cast<uint8_t>((what.board & 15) << 4 | what.flags);
    image[7] = static_cast<uint8_t>(what.board & 0xF0);
    for (int i = 0; i < what.programBanks * 2; ++i) {
        image.insert(image.end(), program.Code().begin(), program.Code().end());
        image[image.size() - kNesCodeBytes + kBankNumberOffset] = static_cast<uint8_t>(i);
    }
    std::vector<uint8_t> characters = what.characters;
    characters.resize(static_cast<size_t>(what.characterBanks) * 0x2000, 0);
    image.insert(image.end(), characters.begin(), characters.end());
    return image;
}

inline CGameFile NesGame(const std::vector<uint8_t>& image) {
    CGameFile game;
    game.Create(false, kSystemNes);
    MACHINE_RECORD raw{};
    std::copy_n("GDF0", 4, raw.bytes);
    game.AddRom("v1.0", {}, static_cast<uint32_t>(image.size()));
    game.AddNameFromTitle("Test Game", 1, 1, raw);
    game.LinkRom(0, 0);
    std::vector<uint8_t> data = image;
    EXPECT_TRUE(game.SetData(std::move(data)));
    game.selectedName = 0;
    return game;
}

inline std::unique_ptr<CNES> StartNes(const std::vector<uint8_t>& image) {
    CGameFile game = NesGame(image);
    return StartMachine<CNES>(std::array<uint8_t, kMachineOptionBytes>{}, game);
}

inline std::unique_ptr<CNES> StartNes(const NesProgram& program, const NES_IMAGE& what = {}) {
    return StartNes(NesImage(program, what));
}

inline uint8_t NesByte(const CNES& machine, uint32_t address) {
    uint8_t value = 0;
    EXPECT_TRUE(machine.Peek(address, value));
    return value;
}

// A console with a program, reset, whose bus a test can drive.
inline std::unique_ptr<NES_CONSOLE> StartConsole(const NesProgram& program,
                                                 const NES_IMAGE& what = {}) {
    RegisterSettings();
    auto nes = std::make_unique<NES_CONSOLE>();
    std::string error;
    EXPECT_TRUE(CartridgeLoad(nes->cartridge, NesImage(program, what), error)) << error;
    NesConnect(*nes);
    NesReset(*nes);
    return nes;
}
