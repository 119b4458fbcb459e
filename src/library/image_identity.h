// Which machine a ROM file is for.
//
// The contents come first. Three makers' headers tell a machine: that of the NES files, and those that the Mega
// Drive, and the Master System and Game Gear, look for in their cartridges. A file without one goes by its
// extension. docs/HARDWARE.md, "Headers of images", has the sources.
//
// Any thread may call.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

enum class IdentifiedBy : uint8_t { kNothing, kContents, kName };

struct IMAGE_IDENTITY {
    uint16_t system = 0; // GameSystem; 0 if nothing tells
    IdentifiedBy by = IdentifiedBy::kNothing;
};

// `name` is that of a file, or of an entry in an archive; `file` its bytes, copier headers included.
[[nodiscard]] IMAGE_IDENTITY IdentifyImage(std::string_view name, std::span<const uint8_t> file);

// By the contents alone; 0 if they tell nothing.
[[nodiscard]] uint16_t SystemOfContents(std::span<const uint8_t> file);
