#include "formats/png_picture.h"

#include <png.h>

#include <memory>

namespace {

constexpr size_t kBytesAPixel = 3;

png_image NewImage() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

} // namespace

std::vector<uint8_t> EncodePng(const PNG_PICTURE& picture) {
    if (picture.pixels.empty() || picture.pixels.size() != size_t{picture.width} * picture.height) {
        return {};
    }
    std::vector<uint8_t> rows;
    rows.reserve(picture.pixels.size() * kBytesAPixel);
    for (const uint32_t pixel : picture.pixels) {
        rows.push_back(static_cast<uint8_t>(pixel >> 16));
        rows.push_back(static_cast<uint8_t>(pixel >> 8));
        rows.push_back(static_cast<uint8_t>(pixel));
    }
    png_image image = NewImage();
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = 0;
    if (png_image_write_get_memory_size(image, size, 0, rows.data(), 0, nullptr) == 0) {
        return {};
    }
    std::vector<uint8_t> file(size);
    if (png_image_write_to_memory(&image, file.data(), &size, 0, rows.data(), 0, nullptr) == 0) {
        return {};
    }
    file.resize(size);
    return file;
}

bool DecodePng(std::span<const uint8_t> file, uint32_t longestSide, PNG_PICTURE& picture) {
    picture = {};
    png_image image = NewImage();
    if (png_image_begin_read_from_memory(&image, file.data(), file.size()) == 0) {
        return false;
    }
    const std::unique_ptr<png_image, decltype(&png_image_free)> freed(&image, png_image_free);
    if (image.width > longestSide || image.height > longestSide) {
        return false;
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<uint8_t> rows(size_t{image.width} * image.height * kBytesAPixel);
    const png_color black{};
    if (png_image_finish_read(&image, &black, rows.data(), 0, nullptr) == 0) {
        return false;
    }
    picture.width = image.width;
    picture.height = image.height;
    picture.pixels.reserve(size_t{image.width} * image.height);
    for (size_t i = 0; i < rows.size(); i += kBytesAPixel) {
        picture.pixels.push_back(0xFF000000u | uint32_t{rows[i]} << 16 |
                                 uint32_t{rows[i + 1]} << 8 | rows[i + 2]);
    }
    return true;
}
