#include "display/display_fixture.h"
#include "display/gl_private.h"
#include "display/texture.h"

#include <numeric>

namespace {

using Texture = DisplayTest;

TEXTURE_RECORD OfSize(uint32_t width, uint32_t height) {
    TEXTURE_RECORD record{};
    record.width = width;
    record.height = height;
    return record;
}

std::vector<uint32_t> Numbered(size_t count) {
    std::vector<uint32_t> pixels(count);
    std::iota(pixels.begin(), pixels.end(), 0xFF102030U);
    return pixels;
}

TEST_F(Texture, KeepsItsSizeWhereAnySizeIsAllowed) {
    ASSERT_TRUE(Gl().anyTextureSize);
    TEXTURE_RECORD record = OfSize(5, 3);
    ASSERT_TRUE(CreateTexture(record, false));
    EXPECT_EQ(record.texWidth, 5U);
    EXPECT_EQ(record.texHeight, 3U);
    EXPECT_EQ(LevelWidth(record, 0), 5);
    DestroyTexture(record);
}

TEST_F(Texture, RoundsUpToPowersOfTwoWithoutOddSizes) {
    GlForbidOddTextureSizes();
    const struct {
        uint32_t used;
        uint32_t allocated;
    } rows[] = {
        {1,    1   },
        {2,    2   },
        {3,    4   },
        {5,    8   },
        {256,  256 },
        {257,  512 },
        {4095, 4096},
        {4096, 4096}
    };
    for (const auto& row : rows) {
        TEXTURE_RECORD wide = OfSize(row.used, 3);
        TEXTURE_RECORD high = OfSize(3, row.used);
        ASSERT_TRUE(CreateTexture(wide, false)) << row.used;
        ASSERT_TRUE(CreateTexture(high, false)) << row.used;
        EXPECT_EQ(wide.texWidth, row.allocated);
        EXPECT_EQ(wide.texHeight, 4U);
        EXPECT_EQ(wide.width, row.used) << "the used size stays";
        EXPECT_EQ(high.texHeight, row.allocated);
        DestroyTexture(wide);
        DestroyTexture(high);
    }
}

TEST_F(Texture, RoundingEndsAt4096) {
    GlForbidOddTextureSizes();
    TEXTURE_RECORD record = OfSize(4097, 4);
    EXPECT_FALSE(CreateTexture(record, false));
    EXPECT_EQ(record.glTexture, 0U);
}

TEST_F(Texture, LargerThanTheDriverAllowsIsRefused) {
    for (const bool wide : {false, true}) {
        const uint32_t large = Gl().largestTexture + 1;
        TEXTURE_RECORD record = wide ? OfSize(large, 1) : OfSize(1, large);
        EXPECT_FALSE(CreateTexture(record, false));
        EXPECT_EQ(record.glTexture, 0U);
    }
}

TEST_F(Texture, SizeOfNothingIsRefused) {
    TEXTURE_RECORD record = OfSize(0, 4);
    EXPECT_FALSE(CreateTexture(record, false));
    record = OfSize(4, 0);
    EXPECT_FALSE(CreateTexture(record, false));
    EXPECT_EQ(record.glTexture, 0U);
}

TEST_F(Texture, FlagsSayWhatWasAskedForAndThatItIsDone) {
    TEXTURE_RECORD record = OfSize(4, 4);
    record.needsRecreate = 1;
    ASSERT_TRUE(CreateTexture(record, true));
    EXPECT_EQ(record.mipmapped, 1);
    EXPECT_EQ(record.needsRecreate, 0);
    ASSERT_TRUE(CreateTexture(record, false));
    EXPECT_EQ(record.mipmapped, 0);
    DestroyTexture(record);
}

TEST_F(Texture, CreatedAgainLeavesNoOldTextureBehind) {
    TEXTURE_RECORD record = OfSize(4, 4);
    ASSERT_TRUE(CreateTexture(record, false));
    const uint32_t before = record.glTexture;
    record.width = 8;
    ASSERT_TRUE(CreateTexture(record, false));
    EXPECT_TRUE(record.glTexture == before || glIsTexture(before) == GL_FALSE);
    EXPECT_EQ(LevelWidth(record, 0), 8);
    DestroyTexture(record);
}

TEST_F(Texture, DestroyFreesItOnceAndKeepsTheSizes) {
    TEXTURE_RECORD record = OfSize(4, 2);
    ASSERT_TRUE(CreateTexture(record, false));
    const uint32_t name = record.glTexture;
    DestroyTexture(record);
    EXPECT_EQ(glIsTexture(name), GL_FALSE);
    EXPECT_EQ(record.glTexture, 0U);
    EXPECT_EQ(record.width, 4U);
    DestroyTexture(record);
}

TEST_F(Texture, UploadPutsTheFirstPixelFirstWithItsBytesInPlace) {
    TEXTURE_RECORD record = OfSize(5, 3);
    ASSERT_TRUE(CreateTexture(record, false));
    const std::vector<uint32_t> pixels = Numbered(15);
    ASSERT_TRUE(UploadTexture(record, pixels.data(), 5, 3, 5));
    EXPECT_EQ(Texels(record), pixels);
    DestroyTexture(record);
}

TEST_F(Texture, UploadSkipsThePaddingAfterARow) {
    TEXTURE_RECORD record = OfSize(2, 2);
    ASSERT_TRUE(CreateTexture(record, false));
    const std::vector<uint32_t> pixels = {kRed, kGreen, 0, 0, kBlue, kWhite, 0, 0};
    ASSERT_TRUE(UploadTexture(record, pixels.data(), 2, 2, 4));
    EXPECT_EQ(Texels(record), (std::vector<uint32_t>{kRed, kGreen, kBlue, kWhite}));
    DestroyTexture(record);
}

TEST_F(Texture, SmallerUploadLeavesTheRest) {
    TEXTURE_RECORD record = OfSize(3, 2);
    ASSERT_TRUE(CreateTexture(record, false));
    ASSERT_TRUE(UploadTexture(record, std::vector<uint32_t>(6, kBlue).data(), 3, 2, 3));
    ASSERT_TRUE(UploadTexture(record, std::vector<uint32_t>(2, kRed).data(), 2, 1, 2));
    EXPECT_EQ(Texels(record), (std::vector<uint32_t>{kRed, kRed, kBlue, kBlue, kBlue, kBlue}));
    DestroyTexture(record);
}

TEST_F(Texture, UploadThatDoesNotFitChangesNothing) {
    TEXTURE_RECORD record = OfSize(2, 2);
    const std::vector<uint32_t> red(64, kRed);
    EXPECT_FALSE(UploadTexture(record, red.data(), 2, 2, 2)) << "not created yet";
    ASSERT_TRUE(CreateTexture(record, false));
    ASSERT_TRUE(UploadTexture(record, std::vector<uint32_t>(4, kBlue).data(), 2, 2, 2));
    EXPECT_FALSE(UploadTexture(record, red.data(), 3, 2, 3));
    EXPECT_FALSE(UploadTexture(record, red.data(), 2, 3, 2));
    EXPECT_FALSE(UploadTexture(record, red.data(), 0, 2, 2));
    EXPECT_FALSE(UploadTexture(record, red.data(), 2, 2, 1)) << "rows shorter than the area";
    EXPECT_FALSE(UploadTexture(record, nullptr, 2, 2, 2));
    EXPECT_EQ(Texels(record), std::vector<uint32_t>(4, kBlue));
    DestroyTexture(record);
}

TEST_F(Texture, UnusedTexelsRepeatTheEdgeAndAreBlackBeyond) {
    GlForbidOddTextureSizes();
    TEXTURE_RECORD record = OfSize(5, 3);
    ASSERT_TRUE(CreateTexture(record, false));
    ASSERT_EQ(record.texWidth, 8U);
    ASSERT_EQ(record.texHeight, 4U);
    const std::vector<uint32_t> pixels = Numbered(15);
    ASSERT_TRUE(UploadTexture(record, pixels.data(), 5, 3, 5));
    const std::vector<uint32_t>& p = pixels;
    const uint32_t k = kBlack;
    const std::vector<uint32_t> expected = {
        p[0],  p[1],  p[2],  p[3],  p[4],  p[4],  k, k, //
        p[5],  p[6],  p[7],  p[8],  p[9],  p[9],  k, k, //
        p[10], p[11], p[12], p[13], p[14], p[14], k, k, //
        p[10], p[11], p[12], p[13], p[14], p[14], k, k,
    };
    EXPECT_EQ(Texels(record), expected);
    DestroyTexture(record);
}

} // namespace
