#include "front/tools/media_files.h"

#include <gtest/gtest.h>
#include <png.h>

#include <numeric>

namespace {

// Decodes with the PNG library, as any viewer would.
std::vector<uint8_t> Decode(const std::vector<uint8_t>& file, uint32_t& width, uint32_t& height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, file.data(), file.size()), 0);
    EXPECT_EQ(image.format & PNG_FORMAT_FLAG_ALPHA, 0u) << "24 bits a pixel";
    image.format = PNG_FORMAT_RGB;
    width = image.width;
    height = image.height;
    std::vector<uint8_t> rows(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, rows.data(), 0, nullptr), 0);
    return rows;
}

} // namespace

TEST(Png, HoldsTheVisibleWindowInRedGreenBlue) {
    // Each pixel's number in its three channels, with different offsets.
    std::vector<uint32_t> pixels(6 * 4);
    for (uint32_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = 0xFF000000 | i << 16 | (i + 100) << 8 | (i + 200);
    }
    EMU_VIDEO_FRAME frame{};
    frame.pixels = pixels.data();
    frame.width = 6;
    frame.height = 4;
    frame.visibleX = 1;
    frame.visibleY = 2;
    frame.visibleWidth = 3;
    frame.visibleHeight = 2;
    uint32_t width = 0;
    uint32_t height = 0;
    const std::vector<uint8_t> rows = Decode(PngOfFrame(frame), width, height);
    EXPECT_EQ(width, 3u);
    EXPECT_EQ(height, 2u);
    const std::vector<uint8_t> expected = {13, 113, 213, 14, 114, 214, 15, 115, 215,
                                           19, 119, 219, 20, 120, 220, 21, 121, 221};
    EXPECT_EQ(rows, expected);
    EXPECT_EQ(PngOfFrame(frame), PngOfFrame(frame));
}

TEST(Png, APictureWithoutPixelsHasNoBytes) {
    EXPECT_TRUE(PngOfFrame(EMU_VIDEO_FRAME{}).empty());
}

TEST(Wav, HeaderAndSamplesAreAsTheFormatSays) {
    const std::vector<int16_t> samples = {1, -1, 0x1234, -0x8000};
    const std::vector<uint8_t> expected = {
        'R', 'I', 'F', 'F', 44, 0, 0,    0,    'W', 'A', 'V',  'E',  'f',  'm',  't',  ' ', 16, 0,
        0,   0,   1,   0,   2,  0, 0x44, 0xAC, 0,   0,   0x10, 0xB1, 2,    0,    4,    0,   16, 0,
        'd', 'a', 't', 'a', 8,  0, 0,    0,    1,   0,   0xFF, 0xFF, 0x34, 0x12, 0x00, 0x80};
    EXPECT_EQ(WavOfSamples(samples, 44100), expected);
}
