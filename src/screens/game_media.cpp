#include "screens/game_media.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/zip.h"
#include "room/image_decoder.h"
#include "web/media_archive.h"

#include <algorithm>

namespace {

constexpr uint64_t kLargestTexts = uint64_t{1} << 16;

GUI_BITMAP BitmapOf(MEDIA_PICTURE&& picture) {
    GUI_BITMAP bitmap;
    bitmap.width = bitmap.pixelWidth = static_cast<int32_t>(picture.width);
    bitmap.height = bitmap.pixelHeight = static_cast<int32_t>(picture.height);
    bitmap.pixels = std::move(picture.pixels);
    return bitmap;
}

// A picture of a screenshot's size is one; any other is box art.
bool Decode(std::span<const uint8_t> file, MEDIA_PICTURE& picture) {
    ROOM_IMAGE image = DecodeRoomImage(file);
    if (image.width == 0) {
        return false;
    }
    const bool shot =
        image.width == kMediaScreenshotWidth && image.height == kMediaScreenshotHeight;
    picture.width = image.width;
    picture.height = image.height;
    picture.coverKind = shot ? kNoBoxArt : 0;
    picture.pixels = std::move(image.pixels);
    return true;
}

std::vector<uint8_t> TextsOf(std::span<const uint8_t> archive) {
    ZipReader reader;
    std::string error;
    if (!reader.Open(archive, error)) {
        return {};
    }
    for (uint32_t index = 0; index < std::min(reader.EntryCount(), kMostMediaEntries); ++index) {
        ZIP_ENTRY entry;
        std::vector<uint8_t> bytes;
        if (reader.Entry(index, entry) && entry.name.ends_with(L".txt") &&
            reader.Unpack(index, bytes, error, kLargestTexts)) {
            return bytes;
        }
    }
    return {};
}

} // namespace

GAME_MEDIA ReadGameMedia(std::string_view systemFolder, std::wstring_view contentKey) {
    GAME_MEDIA media;
    std::vector<uint8_t> bytes;
    std::string error;
    if (!contentKey.empty() &&
        ReadFile(MediaArchivePath(systemFolder, contentKey), bytes, error, kLargestMedia)) {
        media.texts = TextsOf(bytes);
        LOCAL_MEDIA pictures = ReadLocalMedia(bytes, Decode);
        for (MEDIA_PICTURE& picture : pictures.boxArt) {
            media.covers.push_back(BitmapOf(std::move(picture)));
        }
        for (MEDIA_PICTURE& picture : pictures.screenshots) {
            media.shots.push_back(BitmapOf(std::move(picture)));
        }
    }
    const std::filesystem::path standIn = HomeFolder() / systemFolder / "media" / "default.jpg";
    if (media.covers.empty() && ReadFile(standIn, bytes, error, kLargestMediaEntry)) {
        MEDIA_PICTURE picture;
        if (Decode(bytes, picture)) {
            media.covers.push_back(BitmapOf(std::move(picture)));
        }
    }
    return media;
}
