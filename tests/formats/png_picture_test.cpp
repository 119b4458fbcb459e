#include "formats/png_picture.h"

#include <gtest/gtest.h>

namespace {

PNG_PICTURE SmallPicture() {
    return {
        3, 2, {0xFF000000, 0xFFFFFFFF, 0xFF112233, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF}
    };
}

constexpr uint32_t kSide = 16;

} // namespace

TEST(PngPicture, ComesBackPixelForPixel) {
    const PNG_PICTURE picture = SmallPicture();
    PNG_PICTURE read;
    ASSERT_TRUE(DecodePng(EncodePng(picture), kSide, read));
    EXPECT_EQ(read.width, 3u);
    EXPECT_EQ(read.height, 2u);
    EXPECT_EQ(read.pixels, picture.pixels);
}

TEST(PngPicture, EqualPicturesMakeEqualBytes) {
    EXPECT_EQ(EncodePng(SmallPicture()), EncodePng(SmallPicture()));
}

TEST(PngPicture, WithoutPixelsThereIsNoFile) {
    EXPECT_TRUE(EncodePng({}).empty());
    EXPECT_TRUE(EncodePng({
                              3, 3, {1, 2}
    })
                    .empty())
        << "fewer pixels than its sides say";
}

TEST(PngPicture, ASideOverTheLimitIsRefused) {
    const std::vector<uint8_t> file = EncodePng(SmallPicture());
    PNG_PICTURE read = SmallPicture();
    EXPECT_FALSE(DecodePng(file, 2, read));
    EXPECT_EQ(read.width, 0u);
    EXPECT_TRUE(read.pixels.empty());
    EXPECT_TRUE(DecodePng(file, 3, read));
}

TEST(PngPicture, AFileCutAnywhereIsRefused) {
    const std::vector<uint8_t> file = EncodePng(SmallPicture());
    constexpr size_t kEndChunk = 12; // says nothing of the pixels
    for (size_t length = 0; length < file.size() - kEndChunk; ++length) {
        PNG_PICTURE read;
        EXPECT_FALSE(DecodePng({file.data(), length}, kSide, read)) << length;
        EXPECT_TRUE(read.pixels.empty()) << length;
    }
}
