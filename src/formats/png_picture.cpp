#include "formats/png_picture.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <memory>

namespace {

constexpr size_t kBytesAPixel = 3;

png_image NewImage() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

bool IsWhole(const PNG_PICTURE& picture) {
    return !picture.pixels.empty() &&
           picture.pixels.size() == size_t{picture.width} * picture.height;
}

// Red, green, blue.
std::vector<uint8_t> RowsOf(const PNG_PICTURE& picture) {
    std::vector<uint8_t> rows;
    rows.reserve(picture.pixels.size() * kBytesAPixel);
    for (const uint32_t pixel : picture.pixels) {
        rows.push_back(static_cast<uint8_t>(pixel >> 16));
        rows.push_back(static_cast<uint8_t>(pixel >> 8));
        rows.push_back(static_cast<uint8_t>(pixel));
    }
    return rows;
}

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsKeyword(const std::string& keyword) {
    constexpr size_t kLongest = 79;
    return !keyword.empty() && keyword.size() <= kLongest && IsAscii(keyword);
}

// The library only reads what it is given, through pointers to what may change.
std::vector<png_text> TextChunks(std::vector<PNG_TEXT>& texts) {
    std::vector<png_text> chunks;
    chunks.reserve(texts.size());
    for (PNG_TEXT& text : texts) {
        png_text chunk{};
        chunk.compression =
            IsAscii(text.text) ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE;
        chunk.key = text.keyword.data();
        chunk.text = text.text.data();
        chunk.text_length = text.text.size();
        chunks.push_back(chunk);
    }
    return chunks;
}

void AppendBytes(png_structp png, png_bytep bytes, size_t count) {
    auto& file = *static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

void FlushNothing(png_structp /*png*/) {}
void SayNothing(png_structp /*png*/, png_const_charp /*message*/) {}

// The library leaves by a long jump when something fails, so nothing here has a destructor.
bool WriteChunks(png_structp png, png_infop info, const PNG_PICTURE& picture,
                 const std::vector<uint8_t>& rows, const std::vector<png_text>& chunks) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_set_IHDR(png, info, picture.width, picture.height, 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_text(png, info, chunks.data(), static_cast<int>(chunks.size()));
    png_write_info(png, info);
    for (size_t y = 0; y < picture.height; ++y) {
        png_write_row(png, rows.data() + y * picture.width * kBytesAPixel);
    }
    png_write_end(png, nullptr);
    return true;
}

} // namespace

std::vector<uint8_t> EncodePng(const PNG_PICTURE& picture, const std::vector<PNG_TEXT>& texts) {
    const bool allowed = std::all_of(texts.begin(), texts.end(),
                                     [](const PNG_TEXT& text) { return IsKeyword(text.keyword); });
    if (!IsWhole(picture) || !allowed) {
        return {};
    }
    std::vector<PNG_TEXT> kept = texts;
    const std::vector<png_text> chunks = TextChunks(kept);
    const std::vector<uint8_t> rows = RowsOf(picture);
    std::vector<uint8_t> file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, SayNothing);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool written = false;
    if (info != nullptr) {
        png_set_write_fn(png, &file, AppendBytes, FlushNothing);
        written = WriteChunks(png, info, picture, rows, chunks);
    }
    png_destroy_write_struct(&png, &info);
    return written ? file : std::vector<uint8_t>();
}

std::vector<uint8_t> EncodePng(const PNG_PICTURE& picture) {
    if (!IsWhole(picture)) {
        return {};
    }
    const std::vector<uint8_t> rows = RowsOf(picture);
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
