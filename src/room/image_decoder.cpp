#include "room/image_decoder.h"

#include <png.h>
#include <turbojpeg.h>

#include <climits>
#include <memory>

namespace {

// Pixels of both libraries are bytes in the order blue, green, red, alpha.
ROOM_IMAGE EmptyImage(uint32_t width, uint32_t height) {
    return {width, height, std::vector<uint32_t>(size_t{width} * height)};
}

bool SidesFit(int64_t width, int64_t height) {
    return width > 0 && height > 0 && width <= kLongestImageSide && height <= kLongestImageSide;
}

// Counts the markers that begin a scan of a JPEG. It looks at every byte: the data of a scan cannot contain such a
// marker, and counting those of a thumbnail as well does no harm.
size_t ScanMarks(std::span<const uint8_t> file) {
    size_t marks = 0;
    for (size_t i = 1; i < file.size(); ++i) {
        if (file[i - 1] == 0xFF && file[i] == 0xDA) {
            ++marks;
        }
    }
    return marks;
}

using JpegDecoder = std::unique_ptr<void, decltype(&tjDestroy)>;

bool ReadJpegHeader(const JpegDecoder& decoder, std::span<const uint8_t> file, int& width,
                    int& height) {
    int sampling = 0;
    int colours = 0;
    return decoder != nullptr && ScanMarks(file) <= kMostJpegScans &&
           tjDecompressHeader3(decoder.get(), file.data(), static_cast<unsigned long>(file.size()),
                               &width, &height, &sampling, &colours) == 0 &&
           SidesFit(width, height);
}

ROOM_IMAGE DecodeJpeg(std::span<const uint8_t> file) {
    const JpegDecoder decoder(tjInitDecompress(), tjDestroy);
    int width = 0;
    int height = 0;
    if (!ReadJpegHeader(decoder, file, width, height)) {
        return {};
    }
    ROOM_IMAGE image = EmptyImage(static_cast<uint32_t>(width), static_cast<uint32_t>(height));
    auto* const bytes = reinterpret_cast<unsigned char*>(image.pixels.data());
    if (tjDecompress2(decoder.get(), file.data(), static_cast<unsigned long>(file.size()), bytes,
                      width, 0, height, TJPF_BGRA, 0) != 0) {
        return {};
    }
    return image;
}

// Frees what the reader holds at the end of its life.
struct PNG_READER {
    PNG_READER() { image.version = PNG_IMAGE_VERSION; }
    ~PNG_READER() { png_image_free(&image); }
    PNG_READER(const PNG_READER&) = delete;
    PNG_READER& operator=(const PNG_READER&) = delete;

    [[nodiscard]] bool ReadHeader(std::span<const uint8_t> file) {
        return png_image_begin_read_from_memory(&image, file.data(), file.size()) != 0 &&
               SidesFit(image.width, image.height);
    }
    png_image image{};
};

ROOM_IMAGE DecodePng(std::span<const uint8_t> file) {
    PNG_READER reader;
    if (!reader.ReadHeader(file)) {
        return {};
    }
    reader.image.format = PNG_FORMAT_BGRA;
    ROOM_IMAGE image = EmptyImage(reader.image.width, reader.image.height);
    if (png_image_finish_read(&reader.image, nullptr, image.pixels.data(), 0, nullptr) == 0) {
        return {};
    }
    return image;
}

bool HasLength(std::span<const uint8_t> file) {
    return file.size() >= 2 && file.size() <= INT_MAX;
}

bool IsJpeg(std::span<const uint8_t> file) {
    return file[0] == 0xFF && file[1] == 0xD8;
}

} // namespace

bool RoomImageSize(std::span<const uint8_t> file, uint32_t& width, uint32_t& height) {
    if (!HasLength(file)) {
        return false;
    }
    if (IsJpeg(file)) {
        const JpegDecoder decoder(tjInitDecompress(), tjDestroy);
        int across = 0;
        int down = 0;
        const bool read = ReadJpegHeader(decoder, file, across, down);
        width = static_cast<uint32_t>(across);
        height = static_cast<uint32_t>(down);
        return read;
    }
    PNG_READER reader;
    const bool read = reader.ReadHeader(file);
    width = reader.image.width;
    height = reader.image.height;
    return read;
}

ROOM_IMAGE DecodeRoomImage(std::span<const uint8_t> file) {
    if (!HasLength(file)) {
        return {};
    }
    return IsJpeg(file) ? DecodeJpeg(file) : DecodePng(file);
}
