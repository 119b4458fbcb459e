// One ROM file, or a ROM inside a zip, made into a `.game`.
//
// Any thread may call; nothing is kept between calls.
#pragma once

#include "formats/game_file.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The system whose images have this file extension (with its dot, in any case); 0 for none. ".bin" is a
// Mega Drive image.
[[nodiscard]] uint16_t SystemOfExtension(std::string_view extension);

// The extension that the program itself gives to an image of the system.
[[nodiscard]] std::string UsualExtension(uint16_t system);

// Whether the name has an extension of the system, in any case. Always true for arcade sets.
[[nodiscard]] bool ValidExtension(uint16_t system, std::string_view path);

// Converts an image to what the machine sees: removes the 512-byte copier header of an interleaved Mega
// Drive dump and reorders its bytes. Any other image stays as it is, headers included.
//
// A Mega Drive file counts as interleaved if bit 9 of its size is set and none of the four bytes at 256
// is the letter of "SEGA" that a plain image has there.
[[nodiscard]] std::vector<uint8_t> PrepareImage(uint16_t system, std::span<const uint8_t> file);

// The opposite: a Mega Drive image as a copier stored it, with a fresh header (docs/HARDWARE.md). False for an
// image whose dump PrepareImage would not take for one: less than vectors and header, or bit 9 of its size set.
[[nodiscard]] bool InterleaveImage(std::span<const uint8_t> image, std::vector<uint8_t>& dump);

// Whether a Mega Drive file counts as interleaved but has no image after the copier header: less than
// the vectors and header that every program begins with.
[[nodiscard]] bool IsBareCopierHeader(uint16_t system, std::span<const uint8_t> file);

// The game of one image, with the image unpacked in it, ready to be played or written. Games that the
// database knows get its names and records, once for each entry that holds the image; an unknown one
// gets the default records, with `stem` (UTF-8) as its title. False for an arcade image, which can only
// be assembled from a database, and for one over kImageLimit (packing.h).
[[nodiscard]] bool BuildGame(uint16_t system, std::string_view stem, std::span<const uint8_t> file,
                             std::span<const CGameFile> database, CGameFile& game, bool& known);

// The same for an image that is as the machine sees it, which is not prepared again.
[[nodiscard]] bool BuildPreparedGame(uint16_t system, std::string_view stem,
                                     std::vector<uint8_t> image,
                                     std::span<const CGameFile> database, CGameFile& game,
                                     bool& known);

// BuildGame as a whole `.game` file. False, with nothing in `out`, also when it cannot be packed.
[[nodiscard]] bool ConvertImage(uint16_t system, std::string_view stem,
                                std::span<const uint8_t> file, std::span<const CGameFile> database,
                                std::vector<uint8_t>& out, bool& known);

// A game of one image in memory with this machine record, whose tag becomes that of the system. Unlike
// BuildGame it takes an arcade image too, since the record names its board.
[[nodiscard]] bool BuildKnownGame(uint16_t system, std::string_view title,
                                  std::span<const uint8_t> image, const MACHINE_RECORD& record,
                                  CGameFile& game);
