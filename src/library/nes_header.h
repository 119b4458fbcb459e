// The 16 bytes before the image of an NES cartridge, as the nesdev wiki describes them (pages iNES and NES 2.0).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

inline constexpr size_t kNesFileHeader = 16;
inline constexpr size_t kNesFileTrainer = 512;

enum class NesMirroring : uint8_t { kHorizontal, kVertical, kFourScreens };
enum class NesTiming : uint8_t { kUnsaid, kNtsc, kPal, kBoth, kDendy };

struct NES_HEADER {
    bool isVersion2 = false;
    uint16_t mapper = 0;
    uint8_t submapper = 0; // of version 2 alone
    uint64_t programBytes = 0;
    uint64_t characterBytes = 0; // 0: the board has RAM
    bool hasBattery = false;
    bool hasTrainer = false;
    NesMirroring mirroring = NesMirroring::kHorizontal;
    NesTiming timing = NesTiming::kUnsaid;

    // What the file has at least. A few images have more.
    [[nodiscard]] uint64_t TotalBytes() const {
        return kNesFileHeader + (hasTrainer ? kNesFileTrainer : 0) + programBytes + characterBytes;
    }
};

// False for a file without such a header.
[[nodiscard]] bool ReadNesHeader(std::span<const uint8_t> file, NES_HEADER& header);
