// Media archives: the zip file of a game's cover pictures and screenshots.
//
// One that comes from the service is checked before it replaces a local one: whether it is a zip, how
// large its entries are, and whether each is a picture. What its entries are called counts for nothing;
// the file is named after the game.
// Pictures are looked at by functions that the caller gives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr uint32_t kMostMediaEntries = 64;
inline constexpr uint64_t kLargestMediaEntry = uint64_t{16} << 20; // bytes, unpacked
inline constexpr uint64_t kLargestMedia = uint64_t{48} << 20;      // all entries, unpacked
inline constexpr uint32_t kLongestPictureSide = 4096;
inline constexpr uint64_t kMostMediaPixels = uint64_t{32} << 20; // all pictures
inline constexpr size_t kMostBoxArt = 6;
inline constexpr size_t kMostMediaScreenshots = 5;
inline constexpr uint32_t kMediaScreenshotWidth = 200;
inline constexpr uint32_t kMediaScreenshotHeight = 150;
inline constexpr int kNoBoxArt = -1;

struct PICTURE_SIZE {
    uint32_t width = 0;
    uint32_t height = 0;
};
// How pictures are looked at; their bytes are a stranger's. Both are false if the bytes are no picture.
struct PICTURE_CHECK {
    std::function<bool(std::span<const uint8_t> file, PICTURE_SIZE& size)> size; // of the header
    std::function<bool(std::span<const uint8_t> file)> decodes;
};

// On failure `error` says what is wrong with the archive, in our own words. Takes as long as decoding its pictures.
[[nodiscard]] bool CheckMediaArchive(std::span<const uint8_t> archive, const PICTURE_CHECK& check,
                                     std::string& error);

// Puts a checked archive in the place of the one at `path`, which stays as it is on failure. Beside it, with the
// ending `.cover`, a file keeps its revision on the service.
[[nodiscard]] bool StoreMediaArchive(const std::filesystem::path& path,
                                     std::span<const uint8_t> archive, int32_t revision,
                                     std::string& error);

// The revision of the service's archive at `path`, 0 if there is no archive. Nothing for one that did not come from the
// service: it is the player's own, and nothing is to take its place.
[[nodiscard]] std::optional<int32_t> MediaRevision(const std::filesystem::path& path);

// `.\<system>\media\<game>.zip`. A game's name never leads out of the folder.
[[nodiscard]] std::filesystem::path MediaArchivePath(std::string_view systemFolder,
                                                     std::wstring_view game);

struct MEDIA_PICTURE {
    uint32_t width = 0;
    uint32_t height = 0;
    int coverKind = kNoBoxArt;    // 0 or above for box art
    std::vector<uint32_t> pixels; // as the decoder makes them
};
// False if the bytes are no picture.
using DecodeMediaPicture =
    std::function<bool(std::span<const uint8_t> file, MEDIA_PICTURE& picture)>;

struct LOCAL_MEDIA {
    std::vector<MEDIA_PICTURE> boxArt;      // at most kMostBoxArt
    std::vector<MEDIA_PICTURE> screenshots; // at most kMostMediaScreenshots
};

// The pictures of an archive, in its order. Box art is what has a cover kind, a screenshot is any other
// picture of 200 by 150; the rest is left out, as is what cannot be read.
[[nodiscard]] LOCAL_MEDIA ReadLocalMedia(std::span<const uint8_t> archive,
                                         const DecodeMediaPicture& decode);
