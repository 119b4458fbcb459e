#include "display/gl_private.h"
#include "room/room_fixture.h"
#include "room/texture_cache.h"

#include <gmock/gmock.h>
#include <turbojpeg.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class RoomTextures : public RoomGlTest {
protected:
    void SetUp() override {
        RoomGlTest::SetUp();
        const ROOM_SERVICES services = Services();
        cache.Start(services.readFile, services.report);
    }

    void TearDown() override {
        cache.End();
        RoomGlTest::TearDown();
    }

    static GLint Parameter(const TEXTURE_RECORD& record, GLenum name) {
        GLint value = 0;
        glBindTexture(GL_TEXTURE_2D, record.glTexture);
        glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
        return value;
    }

    const std::vector<uint32_t> colours{kRed, kGreen, kBlue, kWhite, kBlack, 0x80123456};
    TextureCache cache;
};

TEST_F(RoomTextures, ImageIsUploadedTopRowFirst) {
    files["a.png"] = PngFile(3, 2, colours);
    const TEXTURE_RECORD record = cache.Get(".\\objects\\a.png");
    ASSERT_NE(record.glTexture, 0U);
    EXPECT_EQ(record.width, 3U);
    EXPECT_EQ(record.height, 2U);
    EXPECT_EQ(Texels(record), colours);
}

TEST_F(RoomTextures, ImageIsDecodedOnceAndShared) {
    files["a.png"] = PngFile(3, 2, colours);
    const TEXTURE_RECORD first = cache.Get(".\\objects\\a.png");
    const TEXTURE_RECORD second = cache.Get(".\\objects\\a.png");
    EXPECT_EQ(first.glTexture, second.glTexture);
    EXPECT_EQ(reads, 1U);
    EXPECT_EQ(cache.Decoded(), 1U);
    EXPECT_EQ(cache.BytesUploaded(), 24U);
}

TEST_F(RoomTextures, NameWithCapitalsIsDecodedAtEachUse) {
    files["A.png"] = PngFile(3, 2, colours);
    const TEXTURE_RECORD first = cache.Get(".\\objects\\A.png");
    const TEXTURE_RECORD second = cache.Get(".\\objects\\A.png");
    EXPECT_NE(first.glTexture, second.glTexture);
    EXPECT_EQ(cache.Decoded(), 2U);
    // It is kept in lower case, and found so.
    EXPECT_EQ(cache.Get(".\\objects\\a.png").glTexture, second.glTexture) << "the newest first";
    EXPECT_EQ(cache.Decoded(), 2U);
}

TEST_F(RoomTextures, MissingImageIsARecordWithoutATexture) {
    EXPECT_EQ(cache.Get(".\\objects\\none.png").glTexture, 0U);
    EXPECT_TRUE(reports.empty());
}

TEST_F(RoomTextures, DamagedImageIsReported) {
    files["a.png"] = PngFile(3, 2, colours);
    files["a.png"].resize(40);
    EXPECT_EQ(cache.Get(".\\objects\\a.png").glTexture, 0U);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_THAT(reports[0], HasSubstr("a.png"));
}

Bytes JpegFile(uint32_t colour) {
    constexpr int kSide = 16;
    const std::vector<uint32_t> pixels(size_t{kSide} * kSide, colour);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    const tjhandle encoder = tjInitCompress();
    EXPECT_EQ(tjCompress2(encoder, reinterpret_cast<const unsigned char*>(pixels.data()), kSide, 0,
                          kSide, TJPF_BGRX, &data, &size, TJSAMP_420, 95, 0),
              0);
    const Bytes file(data, data + size);
    tjFree(data);
    tjDestroy(encoder);
    return file;
}

TEST_F(RoomTextures, JpegHasItsColoursAndIsOpaque) {
    for (const uint32_t colour : {0xFFC04020, 0xFF2040C0, 0xFF20C040}) {
        const ROOM_IMAGE image = DecodeRoomImage(JpegFile(colour));
        ASSERT_EQ(image.width, 16U);
        ASSERT_EQ(image.height, 16U);
        for (const uint32_t pixel : image.pixels) {
            ASSERT_EQ(pixel >> 24, 0xFFU);
            for (const int shift : {0, 8, 16}) {
                ASSERT_NEAR(static_cast<int>(pixel >> shift & 0xFF),
                            static_cast<int>(colour >> shift & 0xFF), 3);
            }
        }
    }
}

TEST_F(RoomTextures, ShortenedJpegIsRefused) {
    Bytes file = JpegFile(kRed);
    file.resize(file.size() / 2);
    EXPECT_EQ(DecodeRoomImage(file).width, 0U);
}

TEST_F(RoomTextures, ImageWithALongSideIsRefused) {
    const Bytes longest = PngFile(kLongestImageSide, 1, std::vector<uint32_t>(kLongestImageSide));
    EXPECT_EQ(DecodeRoomImage(longest).width, kLongestImageSide);
    const Bytes longer =
        PngFile(1, kLongestImageSide + 1, std::vector<uint32_t>(kLongestImageSide + 1));
    EXPECT_EQ(DecodeRoomImage(longer).width, 0U);
    EXPECT_EQ(DecodeRoomImage({}).width, 0U);
}

TEST_F(RoomTextures, TexturesRepeatAndAreFilteredThroughSmallerLevels) {
    files["a.png"] = PngFile(4, 2, std::vector<uint32_t>(8, kGreen));
    const TEXTURE_RECORD record = cache.Get(".\\objects\\a.png");
    EXPECT_EQ(Parameter(record, GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(Parameter(record, GL_TEXTURE_WRAP_T), GL_REPEAT);
    EXPECT_EQ(Parameter(record, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_EQ(Parameter(record, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(LevelWidth(record, 1), 2);
    EXPECT_EQ(LevelWidth(record, 2), 1);
}

TEST_F(RoomTextures, DriverThatNeedsPowersOfTwoGetsTheImageEnlarged) {
    GlForbidOddTextureSizes();
    files["a.png"] = PngFile(3, 2, {kRed, kRed, kRed, kBlue, kBlue, kBlue});
    const TEXTURE_RECORD record = cache.Get(".\\objects\\a.png");
    ASSERT_NE(record.glTexture, 0U);
    EXPECT_EQ(record.texWidth, 4U);
    EXPECT_EQ(record.texHeight, 2U);
    EXPECT_EQ(record.width, 4U) << "all of the texture is used, so that it can repeat";
    EXPECT_THAT(Texels(record), ElementsAre(kRed, kRed, kRed, kRed, kBlue, kBlue, kBlue, kBlue));
}

TEST_F(RoomTextures, AnisotropyIsThatOfAllTextures) {
    if (Gl().largestAnisotropy < 2.0f) {
        GTEST_SKIP() << "the driver has none";
    }
    files["a.png"] = PngFile(3, 2, colours);
    files["b.png"] = PngFile(3, 2, colours);
    const TEXTURE_RECORD first = cache.Get(".\\objects\\a.png");
    EXPECT_EQ(Parameter(first, GL_TEXTURE_MAX_ANISOTROPY_EXT), 1);
    cache.SetAnisotropy(2.0f);
    EXPECT_EQ(Parameter(first, GL_TEXTURE_MAX_ANISOTROPY_EXT), 2);
    const TEXTURE_RECORD second = cache.Get(".\\objects\\b.png");
    EXPECT_EQ(Parameter(second, GL_TEXTURE_MAX_ANISOTROPY_EXT), 2);
    cache.SetAnisotropy(1.0f);
    EXPECT_EQ(Parameter(second, GL_TEXTURE_MAX_ANISOTROPY_EXT), 1);
}

TEST_F(RoomTextures, EndFreesThem) {
    files["A.png"] = PngFile(3, 2, colours);
    const uint32_t first = cache.Get(".\\objects\\A.png").glTexture;
    const uint32_t second = cache.Get(".\\objects\\A.png").glTexture;
    cache.End();
    EXPECT_EQ(glIsTexture(first), GL_FALSE);
    EXPECT_EQ(glIsTexture(second), GL_FALSE);
}

} // namespace
