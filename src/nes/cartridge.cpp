#include "nes/cartridge.h"

#include "nes/board.h"

#include <algorithm>
#include <bit>

namespace {

constexpr std::array<uint8_t, 4> kMark{'N', 'E', 'S', 0x1A};
constexpr size_t kProgramBankBytes = 16384;
constexpr size_t kCharacterBankBytes = 8192;
constexpr uint32_t kProgramPagesABank = 4;
constexpr uint32_t kCharacterPagesABank = 8;

// If the number of banks isn't a power of two, the mask is the widest, and pages past the image are absent.
uint32_t PageMask(uint32_t banks, uint32_t pagesABank, uint32_t mostPages) {
    return std::has_single_bit(banks) ? (banks * pagesABank - 1) & (mostPages - 1) : mostPages - 1;
}

template <size_t Count>
void CopyPages(std::array<std::unique_ptr<uint8_t[]>, Count>& pages, uint32_t count,
               size_t pageBytes, std::span<const uint8_t> bytes) {
    for (uint32_t i = 0; i < count; ++i) {
        pages[i] = std::make_unique<uint8_t[]>(pageBytes);
        std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(i * pageBytes), pageBytes,
                    pages[i].get());
    }
}

void Clear(NES_CARTRIDGE& cartridge) {
    for (auto& page : cartridge.program) {
        page.reset();
    }
    for (auto& page : cartridge.character) {
        page.reset();
    }
    cartridge.programBanks = 0;
    cartridge.characterBanks = 0;
    cartridge.programMask = 0;
    cartridge.characterMask = 0;
    cartridge.flags = 0;
    cartridge.boardNumber = 0;
    cartridge.board = nullptr;
    cartridge.state.reset();
    cartridge.pages = NES_PAGES{};
    cartridge.write.fill(nullptr);
    cartridge.cpuClock = nullptr;
    cartridge.risesToInterrupt = nullptr;
    cartridge.plainRam.fill(0);
}

std::string ShortImage(size_t expected, size_t found) {
    std::string text = "The NES header speaks of ";
    text += std::to_string(expected);
    text += " bytes, but the image has only ";
    text += std::to_string(found);
    text += ".";
    return text;
}

} // namespace

bool CartridgeLoad(NES_CARTRIDGE& cartridge, std::span<const uint8_t> image, std::string& error) {
    error.clear();
    Clear(cartridge);
    if (image.size() < kNesHeaderBytes || !std::equal(kMark.begin(), kMark.end(), image.begin())) {
        error = "The image does not begin with an NES header.";
        return false;
    }
    const uint32_t programBanks = image[4];
    const uint32_t characterBanks = image[5];
    // Each of the two bytes has four flags and, above them, half of the board's number.
    const uint32_t low = image[6];
    const uint32_t high = image[7];
    const auto flags = static_cast<uint8_t>(high % 16 << 4 | low % 16);
    if ((flags & kNesTrainer) != 0) {
        return false;
    }
    const size_t programBytes = programBanks * kProgramBankBytes;
    const size_t expected = kNesHeaderBytes + programBytes + characterBanks * kCharacterBankBytes;
    if (image.size() < expected) {
        error = ShortImage(expected, image.size());
        return false;
    }
    const auto number = static_cast<uint8_t>(high / 16 << 4 | low / 16);
    const NES_BOARD_ROW& board = NesBoard(number);
    if (board.reset == nullptr) {
        error = "NES Mapper #";
        error += std::to_string(number);
        error += " not supported. Tell us on the forum to add support for it!";
        return false;
    }

    CopyPages(cartridge.program, programBanks * kProgramPagesABank, kNesCpuPageBytes,
              image.subspan(kNesHeaderBytes));
    CopyPages(cartridge.character, characterBanks * kCharacterPagesABank, kNesPpuPageBytes,
              image.subspan(kNesHeaderBytes + programBytes));
    cartridge.programBanks = programBanks;
    cartridge.characterBanks = characterBanks;
    cartridge.programMask = PageMask(programBanks, kProgramPagesABank, kNesMostProgramPages);
    cartridge.characterMask =
        PageMask(characterBanks, kCharacterPagesABank, kNesMostCharacterPages);
    cartridge.flags = flags;
    cartridge.boardNumber = number;
    cartridge.board = &board;
    if (board.create != nullptr) {
        board.create(cartridge);
    }
    cartridge.pages.board = &cartridge;
    cartridge.pages.ppuAddressHook = board.ppuAddressHook;
    cartridge.cpuClock = board.cpuClock;
    return true;
}

void CartridgeConnect(NES_CARTRIDGE& cartridge, const uint32_t* cpuCycles, uint32_t* irqLines,
                      const std::array<uint8_t*, 4>& nametables) {
    cartridge.cpuCycles = cpuCycles;
    cartridge.irqLines = irqLines;
    cartridge.nametables = nametables;
}
