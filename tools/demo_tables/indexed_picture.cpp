#include "demo_tables/indexed_picture.h"

#include "base/files.h"

#include <png.h>

namespace {

constexpr unsigned kMostPixels = 4096; // each way

bool Refuse(const std::filesystem::path& file, const std::string& message, std::string& error) {
    error = file.string() + ": " + message;
    return false;
}

} // namespace

bool LoadIndexedPicture(const std::filesystem::path& file, INDEXED_PICTURE& picture,
                        std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadFile(file, bytes, error)) {
        return false;
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        return Refuse(file, image.message, error);
    }
    std::string fault;
    if ((image.format & PNG_FORMAT_FLAG_COLORMAP) == 0) {
        fault = "the picture has no palette; save it with indexed colours";
    } else if (image.width > kMostPixels || image.height > kMostPixels) {
        fault = "the picture has more than 4096 pixels in a line or column";
    } else if (image.width % kCell != 0 || image.height % kCell != 0) {
        fault = "width and height must be multiples of 8 pixels, not " +
                std::to_string(image.width) + " and " + std::to_string(image.height);
    }
    if (!fault.empty()) {
        png_image_free(&image);
        return Refuse(file, fault, error);
    }
    // With a palette in the file, this format keeps its numbers.
    image.format = PNG_FORMAT_RGBA_COLORMAP;
    picture.file = file;
    picture.width = image.width;
    picture.height = image.height;
    picture.pixels.resize(PNG_IMAGE_SIZE(image));
    image.colormap_entries = 256;
    std::vector<uint8_t> palette(PNG_IMAGE_COLORMAP_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, palette.data()) == 0) {
        return Refuse(file, image.message, error);
    }
    return true;
}

bool CheckColours(const INDEXED_PICTURE& picture, unsigned colours, std::string& error) {
    for (unsigned y = 0; y < picture.height; ++y) {
        for (unsigned x = 0; x < picture.width; ++x) {
            if (picture.At(x, y) >= colours) {
                error =
                    PixelFault(picture, x, y,
                               "colour " + std::to_string(picture.At(x, y)) +
                                   ", and the last one allowed is " + std::to_string(colours - 1));
                return false;
            }
        }
    }
    return true;
}

std::string PixelFault(const INDEXED_PICTURE& picture, unsigned x, unsigned y,
                       const std::string& message) {
    return picture.file.string() + ": pixel " + std::to_string(x) + ", " + std::to_string(y) +
           ": " + message;
}
