// What the Mega Drive's fuzz entries share: images with a header for each kind of cartridge, and their start.
#pragma once

#include "megadrive/mega_drive.h"

#include "machine_fuzz.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

struct MD_FUZZ_CARTRIDGE {
    std::string_view title;
    std::string_view memory;
    std::string_view product;
};

inline constexpr MD_FUZZ_CARTRIDGE kMdFuzzCartridges[] = {
    {"TEST",          "",   ""       },
    {"TEST",          "RA", ""       },
    {"TEST",          "RA", "MK-1215"},
    {"TEST",          "RA", "T-81576"},
    {"Virtua Racing", "",   ""       },
};

inline std::unique_ptr<CMegaDrive> MdFuzzStart(std::vector<uint8_t> image, uint8_t console) {
    MD_OPTIONS options{};
    options.console = console;
    options.devices[1] = kMdDevice6Button;
    options.ymVolume = 1.0F;
    options.psgVolume = 1.25F;
    return FuzzStart<CMegaDrive>(options, kSystemMegaDrive, std::move(image));
}

inline void MdFuzzPutWords(std::vector<uint8_t>& image, size_t at,
                           std::initializer_list<uint16_t> words) {
    for (const uint16_t word : words) {
        image[at++] = static_cast<uint8_t>(word >> 8);
        image[at++] = static_cast<uint8_t>(word & 0xFF);
    }
}

inline void MdFuzzPutText(std::vector<uint8_t>& image, size_t at, std::string_view text) {
    std::copy(text.begin(), text.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
}

// From 0x100 to 0x1FF.
inline void MdFuzzPutHeader(std::vector<uint8_t>& image, const MD_FUZZ_CARTRIDGE& cartridge) {
    std::fill(image.begin() + 0x100, image.begin() + 0x200, uint8_t{' '});
    MdFuzzPutText(image, 0x100, "SEGA MEGA DRIVE");
    MdFuzzPutText(image, 0x150, cartridge.title);
    MdFuzzPutText(image, 0x182, cartridge.product);
    MdFuzzPutText(image, 0x1B0, cartridge.memory);
    MdFuzzPutWords(image, 0x1B4, {0x0020, 0x0000, 0x0020, 0xFFFF});
}
