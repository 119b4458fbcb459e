#include "screens/local_media.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/zip.h"
#include "room/image_decoder.h"

namespace {

constexpr uint64_t kLargestArchive = uint64_t{32} << 20;
constexpr uint64_t kLargestPicture = uint64_t{16} << 20;
constexpr uint32_t kMostEntries = 64; // more are no media of a game

GUI_BITMAP BitmapOf(ROOM_IMAGE&& image) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.pixelWidth = static_cast<int32_t>(image.width);
    bitmap.height = bitmap.pixelHeight = static_cast<int32_t>(image.height);
    bitmap.pixels = std::move(image.pixels);
    return bitmap;
}

} // namespace

LOCAL_MEDIA ReadMedia(const std::vector<uint8_t>& zip) {
    LOCAL_MEDIA media;
    ZipReader reader;
    std::string error;
    if (!reader.Open(zip, error)) {
        return media;
    }
    media.archive = true;
    for (uint32_t index = 0; index < std::min(reader.EntryCount(), kMostEntries); ++index) {
        std::vector<uint8_t> bytes;
        if (!reader.Unpack(index, bytes, error, kLargestPicture)) {
            continue;
        }
        ROOM_IMAGE image = DecodeRoomImage(bytes);
        if (image.width == 0) {
            continue;
        }
        const bool shot = image.width == kShotWidth && image.height == kShotHeight;
        std::vector<GUI_BITMAP>& pictures = shot ? media.shots : media.covers;
        if (pictures.size() < (shot ? kMostShots : kMostCoverImages)) {
            pictures.push_back(BitmapOf(std::move(image)));
        }
    }
    return media;
}

std::filesystem::path MediaFile(const std::filesystem::path& systemFolder, std::wstring_view contentKey) {
    return systemFolder / "media" / (FileNameFromTitle(Utf8FromWide(contentKey)) + ".zip");
}

LOCAL_MEDIA ReadLocalMedia(const std::filesystem::path& systemFolder, std::wstring_view contentKey) {
    LOCAL_MEDIA media;
    std::vector<uint8_t> bytes;
    std::string error;
    if (!contentKey.empty() && ReadFile(MediaFile(systemFolder, contentKey), bytes, error, kLargestArchive)) {
        media = ReadMedia(bytes);
    }
    if (media.covers.empty() && ReadFile(systemFolder / "media" / "default.jpg", bytes, error, kLargestPicture)) {
        if (ROOM_IMAGE image = DecodeRoomImage(bytes); image.width != 0) {
            media.covers.push_back(BitmapOf(std::move(image)));
        }
    }
    return media;
}
