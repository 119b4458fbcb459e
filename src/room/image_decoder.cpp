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

ROOM_IMAGE DecodeJpeg(std::span<const uint8_t> file) {
    const std::unique_ptr<void, decltype(&tjDestroy)> decoder(tjInitDecompress(), tjDestroy);
    constexpr int kLongest = kLongestImageSide;
    int width = 0;
    int height = 0;
    int sampling = 0;
    int colours = 0;
    const auto size = static_cast<unsigned long>(file.size());
    if (decoder == nullptr ||
        tjDecompressHeader3(decoder.get(), file.data(), size, &width, &height, &sampling,
                            &colours) != 0 ||
        width <= 0 || height <= 0 || width > kLongest || height > kLongest) {
        return {};
    }
    ROOM_IMAGE image = EmptyImage(static_cast<uint32_t>(width), static_cast<uint32_t>(height));
    // Without the limit a small file could repeat its scans for hours.
    auto* const bytes = reinterpret_cast<unsigned char*>(image.pixels.data());
    if (tjDecompress2(decoder.get(), file.data(), size, bytes, width, 0, height, TJPF_BGRA,
                      TJFLAG_LIMITSCANS) != 0) {
        return {};
    }
    return image;
}

ROOM_IMAGE DecodePng(std::span<const uint8_t> file) {
    png_image reader{};
    reader.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&reader, file.data(), file.size()) == 0) {
        return {};
    }
    const std::unique_ptr<png_image, decltype(&png_image_free)> freed(&reader, png_image_free);
    if (reader.width > kLongestImageSide || reader.height > kLongestImageSide) {
        return {};
    }
    reader.format = PNG_FORMAT_BGRA;
    ROOM_IMAGE image = EmptyImage(reader.width, reader.height);
    if (png_image_finish_read(&reader, nullptr, image.pixels.data(), 0, nullptr) == 0) {
        return {};
    }
    return image;
}

} // namespace

ROOM_IMAGE DecodeRoomImage(std::span<const uint8_t> file) {
    if (file.size() < 2 || file.size() > INT_MAX) {
        return {};
    }
    const bool isJpeg = file[0] == 0xFF && file[1] == 0xD8;
    return isJpeg ? DecodeJpeg(file) : DecodePng(file);
}
