#include "library/image_check.h"

#include "base/bytes.h"
#include "facts/machine_facts.h"
#include "library/convert.h"
#include "library/image_identity.h"
#include "library/nes_header.h"

#include <algorithm>

namespace {

using Bytes = std::span<const uint8_t>;
using namespace std::string_view_literals;

// Less than these is no game.
// - The smallest chips on cartridges for the Master System and its forerunners, and those with its start-up program,
//   have 8 KB. Players' own programs fill banks of 8 or 16 KB; 1 KB leaves room for those that do not.
// - A Mega Drive program begins with 256 bytes of vectors and 256 of header.
// - The smallest program chip of an NES cartridge has 8 KB; with a header the header says how much there is.
constexpr size_t kLeastEightBit = 1024;
constexpr size_t kLeastMegaDrive = 512;
constexpr size_t kLeastBareNes = 8192;

bool HoldsAt(Bytes file, size_t offset, std::string_view mark) {
    return file.size() >= offset + mark.size() &&
           std::equal(mark.begin(), mark.end(), file.begin() + static_cast<ptrdiff_t>(offset),
                      [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

// Marks by which kinds of files are known, long enough that no program begins with one by chance.
struct MARK {
    size_t offset;
    std::string_view bytes;
    std::string_view kind;
};

constexpr MARK kMarks[] = {
    {0,      "\x89PNG\r\n\x1A\n"sv,                            "is a PNG picture"                                    },
    {0,      "\xFF\xD8\xFF\xE0"sv,                             "is a JPEG picture"                                   },
    {0,      "\xFF\xD8\xFF\xE1"sv,                             "is a JPEG picture"                                   },
    {0,      "\xFF\xD8\xFF\xDB"sv,                             "is a JPEG picture"                                   },
    {0,      "GIF87a"sv,                                       "is a GIF picture"                                    },
    {0,      "GIF89a"sv,                                       "is a GIF picture"                                    },
    {0,      "II*\0"sv,                                        "is a TIFF picture"                                   },
    {0,      "MM\0*"sv,                                        "is a TIFF picture"                                   },
    {0,      "%PDF-"sv,                                        "is a PDF document"                                   },
    {0,      "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv,             "is an office document"                               },
    {0,      "PK\x03\x04"sv,                                   "is a zip archive without that extension"             },
    {0,      "PK\x05\x06"sv,                                   "is an empty zip archive"                             },
    {0,      "7z\xBC\xAF\x27\x1C"sv,                           "is a 7z archive; zip archives can be read"           },
    {0,      "Rar!\x1A\x07"sv,                                 "is a RAR archive; zip archives can be read"          },
    {0,
     "\xFD"
     "7zXZ\0"sv,                                               "is an xz archive; zip archives can be read"          },
    {257,    "ustar"sv,                                        "is a tar archive; zip archives can be read"          },
    {0,
     "\x7F"
     "ELF"sv,                                                  "is a program of another computer"                    },
    {0,      "\xCA\xFE\xBA\xBE"sv,                             "is a program of another computer"                    },
    {0,      "\xCF\xFA\xED\xFE"sv,                             "is a program of another computer"                    },
    {0,      "SQLite format 3\0"sv,                            "is a database"                                       },
    {0,      "OggS\0"sv,                                       "is sound"                                            },
    {0,      "fLaC\0"sv,                                       "is sound"                                            },
    {0,      "ID3\x02\0"sv,                                    "is sound"                                            },
    {0,      "ID3\x03\0"sv,                                    "is sound"                                            },
    {0,      "ID3\x04\0"sv,                                    "is sound"                                            },
    {0,      "Vgm \x50\x01"sv,                                 "is music, recorded from a sound chip"                },
    {0,      "NESM\x1A"sv,                                     "is music of an NES game, without the game"           },
    {0,      "FDS\x1A"sv,                                      "is a disk of the Famicom, which has no cartridge"    },
    {0,      "\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0"sv,
     "is an image of a disc; only cartridges can be played"                                                          },
    {0x8001, "CD001"sv,                                        "is an image of a disc; only cartridges can be played"},
    {0,      "SEGADISC"sv,                                     "is an image of a disc; only cartridges can be played"},
    {0,      "BPS1"sv,                                         "is a patch for a game, not a game"                   },
    {0,      "UPS1"sv,                                         "is a patch for a game, not a game"                   },
    {0,      "PATCH"sv,                                        "is a patch for a game, not a game"                   },
};

// Formats whose few first bytes are not enough.
std::string_view KindByLayout(Bytes file) {
    if (file.size() < 64) {
        return {};
    }
    const uint64_t said = LoadLittleEndian<uint32_t>(file.data() + 2);
    if (HoldsAt(file, 0, "BM") && said == file.size()) {
        return "is a BMP picture";
    }
    const uint64_t rest = LoadLittleEndian<uint32_t>(file.data() + 4);
    if (HoldsAt(file, 0, "RIFF") && rest <= file.size()) {
        return HoldsAt(file, 8, "WEBP") ? "is a WebP picture" : "is sound or video";
    }
    if (HoldsAt(file, 4, "ftyp") && HoldsAt(file, 0, "\0\0"sv)) { // a first block below 64 KB
        return "is sound or video";
    }
    constexpr uint8_t kReservedFlags = 0xE0;
    if (HoldsAt(file, 0, "\x1F\x8B\x08") && (file[3] & kReservedFlags) == 0) {
        return "is a gzip archive; zip archives can be read";
    }
    if (HoldsAt(file, 0, "BZh") && HoldsAt(file, 4, "1AY&SY")) {
        return "is a bzip2 archive; zip archives can be read";
    }
    const uint64_t program = LoadLittleEndian<uint32_t>(file.data() + 0x3C);
    if (HoldsAt(file, 0, "MZ") && program < file.size() &&
        HoldsAt(file, static_cast<size_t>(program), "PE\0\0"sv)) {
        return "is a program of another computer";
    }
    return {};
}

bool IsControl(uint8_t byte) {
    constexpr std::string_view kInTexts = "\t\n\v\f\r\x1A\x1B"; // 1A ends a text of DOS
    return (byte < 0x20 && kInTexts.find(static_cast<char>(byte)) == std::string_view::npos) ||
           byte == 0x7F;
}

// The bytes of a UTF-8 sequence that begins here; 0 for what is none.
size_t SequenceLength(Bytes text) {
    const uint8_t first = text[0];
    const size_t length = first < 0x80             ? 1
                          : (first & 0xE0) == 0xC0 ? 2
                          : (first & 0xF0) == 0xE0 ? 3
                          : (first & 0xF8) == 0xF0 ? 4
                                                   : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    const Bytes rest = text.subspan(1, length - 1);
    return std::ranges::all_of(rest, [](uint8_t byte) { return (byte & 0xC0) == 0x80; }) ? length
                                                                                         : 0;
}

// A program has zeros and other control characters all over. In UTF-8 a text may have any letters; in an older code
// most are still those of ASCII.
bool IsText(Bytes file) {
    if (file.empty() || std::ranges::any_of(file, IsControl)) {
        return false;
    }
    const auto high =
        static_cast<size_t>(std::ranges::count_if(file, [](uint8_t byte) { return byte >= 0x80; }));
    if (high <= file.size() / 4) {
        return true;
    }
    while (!file.empty()) {
        const size_t length = SequenceLength(file);
        if (length == 0) {
            return false;
        }
        file = file.subspan(length);
    }
    return true;
}

IMAGE_VERDICT OtherKind(std::string_view reason) {
    return {ImageFault::kOtherKind, std::string(reason)};
}

IMAGE_VERDICT TooSmall(size_t size, size_t least) {
    return OtherKind("has " + std::to_string(size) +
                     " bytes; no game of the machine has less than " + std::to_string(least) +
                     " bytes");
}

IMAGE_VERDICT CheckNes(Bytes file) {
    NES_HEADER header;
    if (!ReadNesHeader(file, header)) {
        return file.size() < kLeastBareNes ? TooSmall(file.size(), kLeastBareNes) : IMAGE_VERDICT{};
    }
    if (header.programBytes == 0) {
        return {ImageFault::kDamaged, "has an NES header that says there is no program"};
    }
    const uint64_t said = header.TotalBytes();
    if (file.size() < said) {
        return {ImageFault::kDamaged, "is cut off: its NES header says that it has " +
                                          std::to_string(said) + " bytes, and it has " +
                                          std::to_string(file.size())};
    }
    return {};
}

// Of the image without a copier's header.
IMAGE_VERDICT CheckSize(uint16_t system, Bytes image) {
    if (system == kSystemNes) {
        return CheckNes(image);
    }
    const size_t least = system == kSystemMegaDrive ? kLeastMegaDrive : kLeastEightBit;
    return image.size() < least ? TooSmall(image.size(), least) : IMAGE_VERDICT{};
}

} // namespace

std::string_view OtherKindOf(Bytes file) {
    for (const MARK& mark : kMarks) {
        if (HoldsAt(file, mark.offset, mark.bytes)) {
            return mark.kind;
        }
    }
    if (const std::string_view kind = KindByLayout(file); !kind.empty()) {
        return kind;
    }
    return IsText(file) ? "is a text, not a game"sv : std::string_view{};
}

IMAGE_VERDICT CheckImage(uint16_t system, Bytes file) {
    IMAGE_VERDICT verdict = CheckPreparedImage(system, file);
    // A short text may have the length of a copier's header, so that its kind is told first.
    if (verdict.fault == ImageFault::kNone && IsBareCopierHeader(system, file)) {
        verdict = {ImageFault::kDamaged, "is only a copier's header, without a Mega Drive image"};
    }
    return verdict;
}

IMAGE_VERDICT CheckPreparedImage(uint16_t system, Bytes image) {
    if (system == kSystemArcade) {
        return {};
    }
    const uint16_t told = SystemOfContents(image);
    if (told != system) { // else it is one of the machine's, whatever it begins with
        if (const std::string_view kind = OtherKindOf(image); !kind.empty()) {
            return OtherKind(kind);
        }
        if (told == kSystemNes) {
            return OtherKind("is a game of the NES, as its first bytes say");
        }
    }
    return CheckSize(system, image);
}
