#include "megadrive/md_cartridge.h"

#include "megadrive/md_cartridge_pages.h"
#include "megadrive/md_eeprom_games.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr size_t kWindowWords = kMdCartWindowBytes / 2;
constexpr size_t kSmallestRounded = 65536;
constexpr size_t kSecondHalfWords = kWindowWords / 2;

// Offsets in the header.
constexpr size_t kTitleOffset = 0x150;
constexpr size_t kTitleBytes = 48;
constexpr size_t kProductOffset = 0x182;
constexpr size_t kProductBytes = 16;
constexpr size_t kRamMark = 0x1B0;
constexpr size_t kRamStart = 0x1B4;
constexpr size_t kRamEnd = 0x1B8;

constexpr std::string_view kDoubleTitle = "SONIC & KNUCKLES"; // its image is in both halves
constexpr std::string_view kSvpTitle = "Virtua Racing";

class Image {
public:
    explicit Image(std::span<const uint8_t> bytes)
        : data(bytes) {}

    [[nodiscard]] uint8_t Byte(size_t offset) const {
        return offset < data.size() ? data[offset] : uint8_t{0xFF};
    }

    [[nodiscard]] uint32_t Long(size_t offset) const {
        return uint32_t{Byte(offset)} << 24 | uint32_t{Byte(offset + 1)} << 16 |
               uint32_t{Byte(offset + 2)} << 8 | Byte(offset + 3);
    }

    [[nodiscard]] std::string Text(size_t offset, size_t length) const {
        std::string text;
        for (size_t i = 0; i < length; ++i) {
            text += static_cast<char>(Byte(offset + i));
        }
        return text;
    }

    [[nodiscard]] std::vector<uint16_t> Words() const {
        std::vector<uint16_t> words(std::min(data.size() / 2 + data.size() % 2, kWindowWords));
        for (size_t i = 0; i < words.size(); ++i) {
            words[i] = static_cast<uint16_t>(uint32_t{Byte(2 * i)} << 8 | Byte(2 * i + 1));
        }
        return words;
    }

    [[nodiscard]] size_t RoundedSize() const {
        size_t rounded = kSmallestRounded;
        while (rounded < data.size()) {
            rounded *= 2;
        }
        return rounded;
    }

private:
    std::span<const uint8_t> data;
};

std::string FoldBlanks(const std::string& text) {
    std::string folded;
    for (const char letter : text) {
        if (letter != ' ' || folded.empty() || folded.back() != ' ') {
            folded += letter;
        }
    }
    if (!folded.empty() && folded.back() == ' ') {
        folded.pop_back();
    }
    return folded;
}

void CopyTo(MD_CARTRIDGE& cart, const std::vector<uint16_t>& words, size_t at) {
    const size_t count = std::min(words.size(), kWindowWords - at);
    std::copy_n(words.begin(), count, cart.rom.begin() + static_cast<std::ptrdiff_t>(at));
}

bool TitleContains(const MD_CARTRIDGE& cart, std::string_view text) {
    return cart.title.find(text) != std::string::npos;
}

void FillRom(MD_CARTRIDGE& cart, const Image& image) {
    cart.rom.assign(kWindowWords, 0xFFFF);
    const std::vector<uint16_t> words = image.Words();
    if (TitleContains(cart, kDoubleTitle)) {
        CopyTo(cart, words, 0);
        CopyTo(cart, words, kSecondHalfWords);
        return;
    }
    for (size_t at = 0; at < kWindowWords; at += image.RoundedSize() / 2) {
        CopyTo(cart, words, at);
    }
}

void AddSram(MD_CARTRIDGE& cart, const Image& image) {
    cart.cartKind = kMdCartSram;
    cart.sram = std::make_unique<MD_SRAM>();
    cart.sram->data.fill(0xFF);
    cart.sram->start = image.Long(kRamStart);
    cart.sram->end = image.Long(kRamEnd) + 1;
}

void AddHardware(MD_CARTRIDGE& cart, const Image& image) {
    if (TitleContains(cart, kSvpTitle)) {
        cart.cartKind = kMdCartSvp;
        cart.svpDmaQuirk = 1;
        cart.svp = std::make_unique<MD_SVP>();
        return;
    }
    if (image.Byte(kRamMark) != 'R' || image.Byte(kRamMark + 1) != 'A') {
        cart.cartKind = kMdCartPlain;
        return;
    }
    if (const MD_EEPROM_GAME* game = MdEepromFindGame(cart.productCode); game != nullptr) {
        cart.cartKind = kMdCartEeprom;
        cart.eeprom = std::make_unique<MD_EEPROM>();
        MdEepromInit(*cart.eeprom, game->device);
        return;
    }
    AddSram(cart, image);
}

void InstallHandlers(MD_CARTRIDGE& cart) {
    cart.readByte.fill(nullptr);
    cart.readWord.fill(nullptr);
    cart.writeByte.fill(nullptr);
    cart.writeWord.fill(nullptr);
    const MD_CART_HANDLERS& handlers = MdCartHandlers(cart.cartKind);
    for (uint32_t page = 0; page < handlers.pages; ++page) {
        cart.readByte[page] = handlers.readByte;
        cart.readWord[page] = handlers.readWord;
        cart.writeByte[page] = handlers.writeByte;
        cart.writeWord[page] = handlers.writeWord;
    }
}

} // namespace

void MdCartSetup(MD_CARTRIDGE& cart, std::span<const uint8_t> image) {
    const Image header(image);
    cart.svpDmaQuirk = 0;
    cart.sram.reset();
    cart.eeprom.reset();
    cart.svp.reset();
    cart.title = FoldBlanks(header.Text(kTitleOffset, kTitleBytes));
    cart.productCode = header.Text(kProductOffset, kProductBytes);
    FillRom(cart, header);
    AddHardware(cart, header);
    InstallHandlers(cart);
    MdCartReset(cart);
}

void MdCartReset(MD_CARTRIDGE& cart) {
    if (cart.cartKind == kMdCartEeprom) {
        MdEepromReset(*cart.eeprom);
    } else if (cart.cartKind == kMdCartSvp) {
        SvpReset(*cart.svp, cart.rom.data());
    }
}

std::span<uint8_t> MdCartSaveData(MD_CARTRIDGE& cart) {
    if (cart.cartKind == kMdCartEeprom) {
        return std::span(cart.eeprom->data).first(size_t{cart.eeprom->sizeMask} + 1);
    }
    if (cart.cartKind != kMdCartSram) {
        return {};
    }
    const size_t start = cart.sram->start;
    const size_t end = std::min<size_t>(cart.sram->end, kMdCartWindowBytes);
    if (start >= end) {
        return {};
    }
    // If the range starts at an odd address, a word at the last address reaches one byte further.
    const size_t reached = end - start + (start & 1);
    const size_t used = (reached + 1) & ~size_t{1};
    return std::span(cart.sram->data).first(std::min(used, kMdSramBytes));
}
