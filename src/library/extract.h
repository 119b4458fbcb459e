// The images of a `.game` as files again: the opposite of a conversion.
//
// Any thread may call; nothing is kept between calls.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

class CGameFile;

struct IMAGE_FILE {
    std::filesystem::path stem; // one path component, never "." or ".."
    std::string extension;      // with its dot; may be empty
    std::vector<uint8_t> bytes;
};

enum class ImageForm : uint8_t { kPlain, kInterleaved };

// The files of a game whose image is unpacked, in the order of its pieces; the same piece is there once, but on an
// arcade board once for each of its names.
//
// - A single image of a console takes the given stem; several are versions, and the piece's name follows the
//   stem in brackets. The extension is one of the system's, or ".zip" for an image that is an archive.
// - A piece of an arcade board has the piece's own name.
// - kInterleaved asks for a Mega Drive image as a copier stored it, with a fresh header.
//
// A piece that is not the one that its record describes, and an image that has no interleaved form, adds a line
// to `faults` instead of a file.
[[nodiscard]] std::vector<IMAGE_FILE> ImageFiles(const CGameFile& game,
                                                 const std::filesystem::path& stem, ImageForm form,
                                                 std::vector<std::string>& faults);
