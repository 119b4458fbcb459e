// What the tests of the Mega Drive share: small programs for 68000 and Z80, images of them, a console
// without host.
#pragma once

#include "formats/game_file.h"
#include "megadrive/md_bus.h"
#include "megadrive/mega_drive.h"
#include "sega8/machine_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

inline constexpr uint32_t kMdCodeStart = 0x200;
inline constexpr uint32_t kMdStack = 0xFFFF00;
inline constexpr uint32_t kMdHorizontal = 0x400; // where the interrupts of level 4 and 6 go
inline constexpr uint32_t kMdVertical = 0x600;
inline constexpr uint32_t kMdOther = 0x800; // all other exceptions
inline constexpr uint32_t kMdZ80Code = 0x1000;
inline constexpr size_t kMdImageBytes = 0x10000;

// An image of 64 KiB, put together word by word. Exceptions return at once unless their place is filled.
class MdProgram {
public:
    MdProgram()
        : image(kMdImageBytes, 0) {
        for (uint32_t vector = 2; vector < 64; ++vector) {
            PutLong(vector * 4, kMdOther);
        }
        PutLong(0, kMdStack);
        PutLong(4, kMdCodeStart);
        PutLong(0x70, kMdHorizontal);
        PutLong(0x78, kMdVertical);
        for (const uint32_t routine : {kMdHorizontal, kMdVertical, kMdOther}) {
            At(routine).Words({0x4E73}); // rte
        }
        Text(0x100, "SEGA MEGA DRIVE ");
        Text(0x150, "TEST");
        Text(0x1F0, "JUE");
        At(kMdCodeStart);
    }

    MdProgram& At(uint32_t address) {
        here = address;
        return *this;
    }
    MdProgram& Words(std::initializer_list<int> words) {
        for (const int word : words) {
            image.at(here) = static_cast<uint8_t>(word >> 8);
            image.at(here + 1) = static_cast<uint8_t>(word & 0xFF);
            here += 2;
        }
        return *this;
    }
    MdProgram& Long(uint32_t value) {
        return Words({static_cast<int>(value >> 16), static_cast<int>(value & 0xFFFF)});
    }
    // move.w #value,address and its other sizes
    MdProgram& StoreWord(uint32_t address, int value) {
        return Words({0x33FC, value}).Long(address);
    }
    MdProgram& StoreByte(uint32_t address, int value) {
        return Words({0x13FC, value & 0xFF}).Long(address);
    }
    MdProgram& StoreLong(uint32_t address, uint32_t value) {
        return Words({0x23FC}).Long(value).Long(address);
    }
    MdProgram& VdpRegister(int index, int value) {
        return StoreWord(0xC00004, 0x8000 | index << 8 | value);
    }
    // The two words of a VDP command.
    MdProgram& VdpAddress(int code, uint32_t address) {
        const auto high = static_cast<uint32_t>(code & 3) << 30 | (address & 0x3FFF) << 16;
        return StoreLong(0xC00004,
                         high | static_cast<uint32_t>(code >> 2) << 4 | (address >> 14 & 3));
    }
    MdProgram& Stop() { return Words({0x60FE}); } // bra to itself
    MdProgram& Text(uint32_t address, std::string_view text) {
        std::copy(text.begin(), text.end(), image.begin() + static_cast<std::ptrdiff_t>(address));
        return *this;
    }
    MdProgram& PutLong(uint32_t address, uint32_t value) {
        const uint32_t back = here;
        At(address).Long(value);
        return At(back);
    }
    MdProgram& Bytes(uint32_t address, std::initializer_list<int> bytes) {
        for (const int byte : bytes) {
            image.at(address++) = static_cast<uint8_t>(byte);
        }
        return *this;
    }
    // Takes the Z80's bus, copies `count` bytes from kMdZ80Code to its memory and lets it start there.
    MdProgram& StartZ80(int count) {
        StoreWord(0xA11100, 0x100).StoreWord(0xA11200, 0x100);
        Words({0x41F9}).Long(kMdZ80Code);                   // lea code,a0
        Words({0x43F9}).Long(0xA00000);                     // lea memory,a1
        Words({0x303C, count - 1, 0x12D8, 0x51C8, 0xFFFC}); // move.w #,d0; move.b (a0)+,(a1)+; dbra
        return StoreWord(0xA11200, 0).StoreWord(0xA11200, 0x100).StoreWord(0xA11100, 0);
    }

    [[nodiscard]] uint32_t Here() const { return here; }
    [[nodiscard]] const std::vector<uint8_t>& Image() const { return image; }

private:
    std::vector<uint8_t> image;
    uint32_t here = kMdCodeStart;
};

inline CGameFile MdGame(const std::vector<uint8_t>& image) {
    CGameFile game;
    game.Create(false, kSystemMegaDrive);
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

inline MD_OPTIONS DefaultMdOptions() {
    MD_OPTIONS options{};
    options.ymVolume = 1.0F;
    options.psgVolume = 1.25F;
    return options;
}

inline std::unique_ptr<CMegaDrive> StartMd(const std::vector<uint8_t>& image,
                                           const MD_OPTIONS& options = DefaultMdOptions()) {
    MdBuildTables();
    CGameFile game = MdGame(image);
    return StartMachine<CMegaDrive>(options, game);
}

inline std::unique_ptr<CMegaDrive> StartMd(const MdProgram& program,
                                           const MD_OPTIONS& options = DefaultMdOptions()) {
    return StartMd(program.Image(), options);
}
