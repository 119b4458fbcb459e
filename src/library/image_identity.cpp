#include "library/image_identity.h"

#include "facts/machine_facts.h"
#include "library/convert.h"

#include <cstddef>

namespace {

using Bytes = std::span<const uint8_t>;

constexpr std::string_view kNesMark = "NES\x1A";

// Where later consoles' start-up program looks for the maker's name, with or without a space before it.
constexpr size_t kMegaDriveMarkAt = 0x100;
constexpr std::string_view kMegaDriveMarks[] = {"SEGA", " SEGA"};

// Where the start-up programs of the 8-bit consoles look for a header: 16 bytes at the end of the first 32, 16
// or 8 KB.
constexpr size_t kEightBitHeaders[] = {0x7FF0, 0x3FF0, 0x1FF0};
constexpr std::string_view kEightBitMark = "TMR SEGA";
constexpr size_t kRegionAt = 15; // in the high nibble

// Copier header and one block: the header's place in an interleaved dump lies in the first.
constexpr size_t kCopierHeader = 512;
constexpr size_t kDumpStart = kCopierHeader + 16384;

bool HoldsAt(Bytes file, size_t offset, std::string_view mark) {
    if (file.size() < offset + mark.size()) {
        return false;
    }
    for (size_t i = 0; i < mark.size(); ++i) {
        if (file[offset + i] != static_cast<uint8_t>(mark[i])) {
            return false;
        }
    }
    return true;
}

bool HasMegaDriveMark(Bytes image) {
    return HoldsAt(image, kMegaDriveMarkAt, kMegaDriveMarks[0]) ||
           HoldsAt(image, kMegaDriveMarkAt, kMegaDriveMarks[1]);
}

bool IsMegaDrive(Bytes file) {
    if (HasMegaDriveMark(file)) {
        return true;
    }
    const bool dump = file.size() >= kDumpStart && (file.size() & kCopierHeader) != 0;
    return dump && HasMegaDriveMark(PrepareImage(kSystemMegaDrive, file.first(kDumpStart)));
}

// 0 for a header whose region is of neither machine.
uint16_t SystemOfRegion(uint8_t region) {
    switch (region >> 4) {
    case 3: // Japan
    case 4: // export
        return kSystemMasterSystem;
    case 5: // Japan
    case 6: // export
    case 7: // international
        return kSystemGameGear;
    default: return 0;
    }
}

uint16_t SystemOfEightBitHeader(Bytes file) {
    for (const size_t offset : kEightBitHeaders) {
        if (file.size() > offset + kRegionAt && HoldsAt(file, offset, kEightBitMark)) {
            return SystemOfRegion(file[offset + kRegionAt]);
        }
    }
    return 0;
}

std::string_view ExtensionOf(std::string_view name) {
    const size_t slash = name.find_last_of("/\\");
    name = slash == std::string_view::npos ? name : name.substr(slash + 1);
    const size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot);
}

} // namespace

uint16_t SystemOfContents(Bytes file) {
    if (HoldsAt(file, 0, kNesMark)) {
        return kSystemNes;
    }
    if (IsMegaDrive(file)) {
        return kSystemMegaDrive;
    }
    return SystemOfEightBitHeader(file);
}

IMAGE_IDENTITY IdentifyImage(std::string_view name, Bytes file) {
    if (const uint16_t system = SystemOfContents(file); system != 0) {
        return {system, IdentifiedBy::kContents};
    }
    if (const uint16_t system = SystemOfExtension(ExtensionOf(name)); system != 0) {
        return {system, IdentifiedBy::kName};
    }
    return {};
}
