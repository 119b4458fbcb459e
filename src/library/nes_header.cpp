#include "library/nes_header.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<uint8_t, 4> kMark{'N', 'E', 'S', 0x1A};
constexpr uint64_t kProgramBank = 16384;
constexpr uint64_t kCharacterBank = 8192;

// Version 2 has four bits more for the number of banks; 15 in them says that the byte is a power of two in its six
// upper bits and an odd factor in the lower two.
uint64_t BytesOf(uint8_t low, uint8_t high, uint64_t bank) {
    constexpr uint8_t kIsPower = 15;
    constexpr unsigned kLargestPower = 40; // far over any file, and without an overflow
    if (high == kIsPower) {
        const unsigned power = std::min<unsigned>(low >> 2, kLargestPower);
        return (uint64_t{1} << power) * (uint64_t{low & 3u} * 2 + 1);
    }
    return (uint64_t{high} << 8 | low) * bank;
}

NesMirroring MirroringOf(uint8_t flags) {
    if ((flags & 8) != 0) {
        return NesMirroring::kFourScreens;
    }
    return (flags & 1) != 0 ? NesMirroring::kVertical : NesMirroring::kHorizontal;
}

void TakeSizes(std::span<const uint8_t> file, uint8_t moreBanks, NES_HEADER& header) {
    header.programBytes = BytesOf(file[4], moreBanks & 0x0F, kProgramBank);
    header.characterBytes = BytesOf(file[5], moreBanks >> 4, kCharacterBank);
}

void TakeVersion2(std::span<const uint8_t> file, NES_HEADER& header) {
    constexpr NesTiming kTimings[] = {NesTiming::kNtsc, NesTiming::kPal, NesTiming::kBoth,
                                      NesTiming::kDendy};
    header.isVersion2 = true;
    header.mapper = static_cast<uint16_t>(header.mapper | (file[8] & 0x0F) << 8);
    header.submapper = file[8] >> 4;
    header.timing = kTimings[file[12] & 3];
}

} // namespace

bool ReadNesHeader(std::span<const uint8_t> file, NES_HEADER& header) {
    header = {};
    if (file.size() < kNesFileHeader || !std::equal(kMark.begin(), kMark.end(), file.begin())) {
        return false;
    }
    const uint8_t low = file[6];
    const uint8_t high = file[7];
    header.mapper = static_cast<uint16_t>((high & 0xF0) | low >> 4);
    header.hasBattery = (low & 2) != 0;
    header.hasTrainer = (low & 4) != 0;
    header.mirroring = MirroringOf(low);
    TakeSizes(file, 0, header);
    // Old tools have left text in the upper half of the header. The file's size tells it from version 2.
    if ((high & 0x0C) == 0x08) {
        NES_HEADER second = header;
        TakeSizes(file, file[9], second);
        if (second.TotalBytes() <= file.size()) {
            header = second;
            TakeVersion2(file, header);
        }
    }
    return true;
}
