#include "library/image_facts.h"

#include "base/bytes.h"
#include "facts/machine_facts.h"
#include "library/nes_header.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace {

using Bytes = std::span<const uint8_t>;

bool HoldsAt(Bytes image, size_t offset, std::string_view mark) {
    return image.size() >= offset + mark.size() &&
           std::equal(mark.begin(), mark.end(), image.begin() + static_cast<ptrdiff_t>(offset),
                      [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

// Printable ASCII with single blanks; headers are padded with blanks, and some have Japanese letters in a code of
// their own, which are left out.
std::string TextAt(Bytes image, size_t offset, size_t length) {
    std::string text;
    for (size_t i = offset; i < std::min(offset + length, image.size()) && image[i] != 0; ++i) {
        const char letter = image[i] >= 0x20 && image[i] < 0x7F ? static_cast<char>(image[i]) : ' ';
        if (letter != ' ' || (!text.empty() && text.back() != ' ')) {
            text += letter;
        }
    }
    if (!text.empty() && text.back() == ' ') {
        text.pop_back();
    }
    return text;
}

void AddWord(std::string& list, std::string_view word) {
    list.append(list.empty() ? "" : ", ").append(word);
}

// ---- NES

std::string NesBoardText(const NES_HEADER& header) {
    std::string text = "mapper " + std::to_string(header.mapper);
    if (header.isVersion2) {
        text += "." + std::to_string(header.submapper);
    }
    switch (header.mirroring) {
    case NesMirroring::kHorizontal: AddWord(text, "horizontal mirroring"); break;
    case NesMirroring::kVertical: AddWord(text, "vertical mirroring"); break;
    case NesMirroring::kFourScreens: AddWord(text, "four screens"); break;
    }
    constexpr uint64_t kKilobyte = 1024;
    AddWord(text, std::to_string(header.programBytes / kKilobyte) + " KB program");
    AddWord(text, header.characterBytes == 0
                      ? std::string("character RAM")
                      : std::to_string(header.characterBytes / kKilobyte) + " KB characters");
    if (header.hasTrainer) {
        AddWord(text, "trainer");
    }
    return text;
}

IMAGE_FACTS NesFacts(Bytes image) {
    IMAGE_FACTS facts;
    NES_HEADER header;
    if (!ReadNesHeader(image, header)) {
        return facts;
    }
    facts.board = NesBoardText(header);
    facts.battery = header.hasBattery;
    switch (header.timing) {
    case NesTiming::kUnsaid: break;
    case NesTiming::kNtsc: facts.regions = "NTSC"; break;
    case NesTiming::kPal: facts.regions = "PAL"; break;
    case NesTiming::kBoth: facts.regions = "NTSC, PAL"; break;
    case NesTiming::kDendy: facts.regions = "Dendy"; break;
    }
    return facts;
}

// ---- Mega Drive

constexpr size_t kMegaDriveHeaderEnd = 0x200;

uint16_t WordAt(Bytes image, size_t offset) {
    return static_cast<uint16_t>(image[offset] << 8 | image[offset + 1]);
}

// Letters, or since 1994 one hexadecimal digit: bit 0 Japan, 2 the Americas, 3 Europe.
std::string MegaDriveRegions(Bytes image) {
    const std::string field = TextAt(image, 0x1F0, 3);
    std::string regions;
    const auto has = [&](char letter) { return field.find(letter) != std::string::npos; };
    if (has('J') || has('U') || (has('E') && field.size() > 1)) {
        for (const auto& [letter, word] :
             {std::pair('J', "Japan"), std::pair('U', "USA"), std::pair('E', "Europe")}) {
            if (has(letter)) {
                AddWord(regions, word);
            }
        }
        return regions;
    }
    if (field ==
        "E") { // the digit 14 would be Europe and the Americas, but games of that time mean the letter
        return "Europe";
    }
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const size_t digit = field.size() == 1 ? kDigits.find(field[0]) : std::string_view::npos;
    if (digit != std::string_view::npos) {
        for (const auto& [bit, word] :
             {std::pair(1u, "Japan"), std::pair(4u, "USA"), std::pair(8u, "Europe")}) {
            if ((digit & bit) != 0) {
                AddWord(regions, word);
            }
        }
    }
    return regions;
}

// The sum of the words from the end of the header to the end that the header states, or to the image's own if that is
// elsewhere.
IMAGE_CHECKSUM MegaDriveChecksum(Bytes image) {
    const uint64_t last = uint64_t{WordAt(image, 0x1A4)} << 16 | uint64_t{WordAt(image, 0x1A6)};
    const uint64_t end =
        last > kMegaDriveHeaderEnd && last < image.size() ? last + 1 : image.size();
    uint32_t sum = 0;
    for (size_t i = kMegaDriveHeaderEnd; i + 1 < end; i += 2) {
        sum += WordAt(image, i);
    }
    return {WordAt(image, 0x18E), static_cast<uint16_t>(sum)};
}

IMAGE_FACTS MegaDriveFacts(Bytes image) {
    IMAGE_FACTS facts;
    if (image.size() < kMegaDriveHeaderEnd ||
        (!HoldsAt(image, 0x100, "SEGA") && !HoldsAt(image, 0x101, "SEGA"))) {
        return facts;
    }
    constexpr size_t kTitleLength = 48;
    facts.title = TextAt(image, 0x150, kTitleLength); // overseas
    if (facts.title.empty()) {
        facts.title = TextAt(image, 0x120, kTitleLength);
    }
    facts.serial = TextAt(image, 0x180, 14);
    facts.regions = MegaDriveRegions(image);
    constexpr uint8_t kKeepsItsContents = 0x40;
    facts.battery = HoldsAt(image, 0x1B0, "RA") && (image[0x1B2] & kKeepsItsContents) != 0;
    facts.checksum = MegaDriveChecksum(image);
    return facts;
}

// ---- Master System and Game Gear

constexpr size_t kEightBitHeaders[] = {0x7FF0, 0x3FF0, 0x1FF0};
constexpr size_t kEightBitHeader = 16;

// How much of the image the start-up program adds up, by the header's last four bits; 0 for a value that it does not
// know or that no game has. The header itself is left out; up to 32 KB it is the end.
size_t SummedBytes(uint8_t size) {
    constexpr size_t kKilobyte = 1024;
    switch (size & 0x0F) {
    case 0xA: return 8 * kKilobyte - kEightBitHeader;
    case 0xB: return 16 * kKilobyte - kEightBitHeader;
    case 0xC: return 32 * kKilobyte - kEightBitHeader;
    case 0xE: return 64 * kKilobyte;
    case 0xF: return 128 * kKilobyte;
    case 0x0: return 256 * kKilobyte;
    case 0x1: return 512 * kKilobyte;
    case 0x2: return 1024 * kKilobyte;
    default: return 0;
    }
}

std::optional<IMAGE_CHECKSUM> EightBitChecksum(Bytes image, size_t header) {
    const size_t end = SummedBytes(image[header + 15]);
    if (end == 0 || end > image.size()) {
        return std::nullopt;
    }
    uint32_t sum = 0;
    for (size_t i = 0; i < end; ++i) {
        if (i < header || i >= header + kEightBitHeader) {
            sum += image[i];
        }
    }
    return IMAGE_CHECKSUM{LoadLittleEndian<uint16_t>(image.data() + header + 10),
                          static_cast<uint16_t>(sum)};
}

std::string EightBitRegion(uint8_t region) {
    switch (region >> 4) {
    case 3: return "Japan (Master System)";
    case 4: return "export (Master System)";
    case 5: return "Japan (Game Gear)";
    case 6: return "export (Game Gear)";
    case 7: return "international (Game Gear)";
    default: return {};
    }
}

// Four decimal digits in two bytes, the lower two first, and before them those of another four bits, 0 to 15.
std::string EightBitSerial(const uint8_t* header) {
    const unsigned digits = LoadLittleEndian<uint16_t>(header + 12);
    const unsigned high = header[14] >> 4;
    char text[16];
    if (high != 0) {
        std::snprintf(text, sizeof text, "%u%04X", high, digits);
    } else {
        std::snprintf(text, sizeof text, "%04X", digits);
    }
    return text;
}

// Players' own programs may have a mark with the address of their title before the maker's header.
std::string OwnTitle(Bytes image) {
    constexpr size_t kMark = 0x7FE0;
    constexpr size_t kNone = 0xFFFF;
    constexpr size_t kLongest = 255;
    if (!HoldsAt(image, kMark, "SDSC") || image.size() < kMark + 16) {
        return {};
    }
    const size_t at = LoadLittleEndian<uint16_t>(image.data() + kMark + 12);
    return at == kNone || at == 0 ? std::string() : TextAt(image, at, kLongest);
}

IMAGE_FACTS EightBitFacts(Bytes image) {
    IMAGE_FACTS facts;
    facts.title = OwnTitle(image);
    for (const size_t header : kEightBitHeaders) {
        if (image.size() >= header + kEightBitHeader && HoldsAt(image, header, "TMR SEGA")) {
            facts.serial = EightBitSerial(image.data() + header);
            facts.regions = EightBitRegion(image[header + 15]);
            facts.checksum = EightBitChecksum(image, header);
            break;
        }
    }
    return facts;
}

} // namespace

IMAGE_FACTS ReadImageFacts(uint16_t system, Bytes image) {
    switch (system) {
    case kSystemNes: return NesFacts(image);
    case kSystemMegaDrive: return MegaDriveFacts(image);
    case kSystemMasterSystem:
    case kSystemGameGear: return EightBitFacts(image);
    default: return {};
    }
}
