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

// The system whose images have this file extension (with its dot, any case); 0 for none. ".bin" is a
// Mega Drive image.
[[nodiscard]] uint16_t SystemOfExtension(std::string_view extension);

// Whether a file of this name is taken for an image of the system, by its extension in any case. An
// arcade set may consist of any files.
[[nodiscard]] bool ValidExtension(uint16_t system, std::string_view path);

// Makes an image into what the machine sees: takes the copier header of 512 bytes off an interleaved
// Mega Drive dump and puts its bytes in order. Any other image is used as it is, header and all.
//
// A Mega Drive file is taken for an interleaved one when bit 9 of its size is set and none of the four
// bytes at 256 is the letter of "SEGA" that a plain image has there.
[[nodiscard]] std::vector<uint8_t> PrepareImage(uint16_t system, std::span<const uint8_t> file);

// Whether a Mega Drive file is taken for an interleaved one and has no image behind the copier's header:
// less than the vectors and the header that every program begins with.
[[nodiscard]] bool IsBareCopierHeader(uint16_t system, std::span<const uint8_t> file);

// The game of one image, with the image unpacked in it, ready to be played or written. Games that the
// database knows get its names and records, once for each entry that holds the image; an unknown one
// gets the default records, with `stem` (UTF-8) as its title. False for an arcade image, which can only
// be assembled from a database, and for one over kImageLimit (packing.h).
[[nodiscard]] bool BuildGame(uint16_t system, std::string_view stem, std::span<const uint8_t> file,
                             std::span<const CGameFile> database, CGameFile& game, bool& known);

// The same as a whole `.game` file. False, with nothing in `out`, also when it cannot be packed.
[[nodiscard]] bool ConvertImage(uint16_t system, std::string_view stem,
                                std::span<const uint8_t> file, std::span<const CGameFile> database,
                                std::vector<uint8_t>& out, bool& known);

// A game of one image in memory with this machine record, whose tag becomes that of the system. Unlike
// BuildGame it takes an arcade image too, since the record names its board.
[[nodiscard]] bool BuildKnownGame(uint16_t system, std::string_view title,
                                  std::span<const uint8_t> image, const MACHINE_RECORD& record,
                                  CGameFile& game);
