#include "web/media_archive.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/sha256.h"
#include "formats/zip.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

namespace {

constexpr uint64_t kLongestCoverNote = 128; // bytes

bool IsFolder(const ZIP_ENTRY& entry) {
    return entry.unpackedSize == 0 && entry.rawName.ends_with('/');
}

// The picture's pixels as its header states them; 0 if the bytes are no picture, or one that is too long.
uint64_t PixelsOf(std::span<const uint8_t> file, const PICTURE_CHECK& check) {
    PICTURE_SIZE size;
    if (!check.size(file, size) || size.width > kLongestPictureSide ||
        size.height > kLongestPictureSide) {
        return 0;
    }
    return uint64_t{size.width} * size.height;
}

std::filesystem::path CoverNote(std::filesystem::path archive) {
    return archive.replace_extension(".cover");
}

// The sizes that the archive states, before anything is unpacked.
bool CheckStatedSizes(const ZipReader& zip, std::string& error) {
    if (zip.EntryCount() > kMostMediaEntries) {
        error = "the media archive has more than " + std::to_string(kMostMediaEntries) + " entries";
        return false;
    }
    uint64_t total = 0;
    for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
        ZIP_ENTRY entry;
        if (!zip.Entry(i, entry)) {
            error = "entry " + std::to_string(i + 1) + " of the media archive cannot be read";
            return false;
        }
        if (entry.unpackedSize > kLargestMediaEntry) {
            error = "entry " + std::to_string(i + 1) + " of the media archive is too large";
            return false;
        }
        total += entry.unpackedSize;
    }
    if (total > kLargestMedia) {
        error = "the media archive is too large when unpacked";
        return false;
    }
    return true;
}

} // namespace

bool CheckMediaArchive(std::span<const uint8_t> archive, const PICTURE_CHECK& check,
                       std::string& error) {
    ZipReader zip;
    std::string cause; // may repeat an entry's name
    if (!zip.Open(archive, cause)) {
        error = "the media archive is not a zip file";
        return false;
    }
    if (!CheckStatedSizes(zip, error)) {
        return false;
    }
    uint64_t allPixels = 0;
    for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
        ZIP_ENTRY entry;
        if (zip.Entry(i, entry) && IsFolder(entry)) {
            continue;
        }
        std::vector<uint8_t> file;
        if (!zip.Unpack(i, file, cause, kLargestMediaEntry)) {
            error = "entry " + std::to_string(i + 1) + " of the media archive is damaged";
            return false;
        }
        const uint64_t pixels = PixelsOf(file, check);
        allPixels += pixels;
        if (allPixels > kMostMediaPixels) {
            error = "the pictures of the media archive are too large";
            return false;
        }
        if (pixels == 0 || !check.decodes(file)) {
            error = "entry " + std::to_string(i + 1) + " of the media archive is no picture";
            return false;
        }
    }
    if (allPixels == 0) {
        error = "the media archive has no pictures";
        return false;
    }
    return true;
}

// A line: the revision, a blank, and the archive's SHA-256. Without it, or if the archive was replaced since, the
// archive counts as the player's own.
bool StoreMediaArchive(const std::filesystem::path& path, std::span<const uint8_t> archive,
                       int32_t revision, std::string& error) {
    if (!WriteFile(path, archive, error)) {
        return false;
    }
    const std::string line = std::to_string(revision) + " " + HexText(Sha256(archive)) + "\n";
    std::string ignored;
    (void)WriteFile(CoverNote(path), std::vector<uint8_t>(line.begin(), line.end()), ignored);
    return true;
}

std::optional<int32_t> MediaRevision(const std::filesystem::path& path) {
    std::error_code code;
    if (!std::filesystem::exists(path, code)) {
        return code ? std::nullopt : std::optional<int32_t>(0);
    }
    std::vector<uint8_t> note;
    std::vector<uint8_t> archive;
    std::string error;
    if (!ReadFile(CoverNote(path), note, error, kLongestCoverNote) ||
        !ReadFile(path, archive, error, kLargestMedia)) {
        return std::nullopt;
    }
    const std::string text(note.begin(), note.end());
    int32_t revision = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), revision);
    const std::string rest(read.ptr, text.data() + text.size());
    return read.ec == std::errc() && rest == " " + HexText(Sha256(archive)) + "\n"
               ? std::optional(revision)
               : std::nullopt;
}

std::filesystem::path MediaArchivePath(std::string_view systemFolder, std::wstring_view game) {
    const std::string folder = ".\\" + FileNameFromTitle(systemFolder) + "\\media";
    return ResolvePath(folder) / (FileNameFromTitle(Utf8FromWide(game)) + ".zip");
}

LOCAL_MEDIA ReadLocalMedia(std::span<const uint8_t> archive, const DecodeMediaPicture& decode) {
    LOCAL_MEDIA media;
    ZipReader zip;
    std::string cause;
    if (!zip.Open(archive, cause)) {
        return media;
    }
    for (uint32_t i = 0; i < std::min(zip.EntryCount(), kMostMediaEntries); ++i) {
        std::vector<uint8_t> file;
        MEDIA_PICTURE picture;
        if (!zip.Unpack(i, file, cause, kLargestMediaEntry) || !decode(file, picture)) {
            continue;
        }
        if (picture.coverKind >= 0) {
            if (media.boxArt.size() < kMostBoxArt) {
                media.boxArt.push_back(std::move(picture));
            }
        } else if (picture.width == kMediaScreenshotWidth &&
                   picture.height == kMediaScreenshotHeight &&
                   media.screenshots.size() < kMostMediaScreenshots) {
            media.screenshots.push_back(std::move(picture));
        }
    }
    return media;
}
