#include "web/media_archive.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/zip.h"

#include <algorithm>
#include <utility>

namespace {

bool IsFolder(const ZIP_ENTRY& entry) {
    return entry.unpackedSize == 0 && entry.rawName.ends_with('/');
}

// The picture's pixels; 0 if the bytes are no picture, or one that is too long.
uint64_t PixelsOf(std::span<const uint8_t> file, const ReadPictureSize& readSize) {
    PICTURE_SIZE size;
    if (!readSize(file, size) || size.width > kLongestPictureSide ||
        size.height > kLongestPictureSide) {
        return 0;
    }
    return uint64_t{size.width} * size.height;
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

bool CheckMediaArchive(std::span<const uint8_t> archive, const ReadPictureSize& readSize,
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
        const uint64_t pixels = PixelsOf(file, readSize);
        if (pixels == 0) {
            error = "entry " + std::to_string(i + 1) + " of the media archive is no picture";
            return false;
        }
        allPixels += pixels;
        if (allPixels > kMostMediaPixels) {
            error = "the pictures of the media archive are too large";
            return false;
        }
    }
    if (allPixels == 0) {
        error = "the media archive has no pictures";
        return false;
    }
    return true;
}

bool StoreMediaArchive(const std::filesystem::path& path, std::span<const uint8_t> archive,
                       const ReadPictureSize& readSize, std::string& error) {
    return CheckMediaArchive(archive, readSize, error) && WriteFile(path, archive, error);
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
