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

void Append(Bytes& file, std::initializer_list<int> bytes) {
    for (const int byte : bytes) {
        file.push_back(static_cast<uint8_t>(byte));
    }
}

// A grey square of 8 by 8 pixels in progressive form: a first scan for its brightness, then one for each
// coefficient alone, and one more for each that adds a bit. Every scan holds nothing but a code of one bit, 0, which
// stands for "no difference" in the first and for "the block ends" in the others.
Bytes JpegInScans(int scans) {
    Bytes file;
    Append(file, {0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0});
    file.insert(file.end(), 64, 1); // quantisation
    Append(file, {0xFF, 0xC2, 0, 11, 8, 0, 8, 0, 8, 1, 1, 0x11, 0});
    for (const int table : {0x00, 0x10}) {
        Append(file, {0xFF, 0xC4, 0, 20, table, 1});
        file.insert(file.end(), 15, 0);
        Append(file, {0});
    }
    Append(file, {0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 0, 0, 0x7F});
    for (int scan = 1; scan < scans; ++scan) {
        const int coefficient = (scan - 1) % 63 + 1;
        const int bits = scan <= 63 ? 0x01 : 0x10; // all but the last bit, then that one
        Append(file, {0xFF, 0xDA, 0, 8, 1, 1, 0, coefficient, coefficient, bits, 0x7F});
    }
    Append(file, {0xFF, 0xD9});
    return file;
}

TEST_F(RoomTextures, JpegOfManyScansIsRefused) {
    uint32_t width = 0;
    uint32_t height = 0;
    for (const int scans : {1, 10, 64}) {
        const ROOM_IMAGE image = DecodeRoomImage(JpegInScans(scans));
        ASSERT_EQ(image.width, 8U) << scans;
        EXPECT_EQ(image.pixels[0], 0xFF808080U);
        EXPECT_TRUE(RoomImageSize(JpegInScans(scans), width, height)) << scans;
    }
    for (const int scans : {65, 127}) {
        EXPECT_EQ(DecodeRoomImage(JpegInScans(scans)).width, 0U) << scans;
        EXPECT_FALSE(RoomImageSize(JpegInScans(scans), width, height)) << scans;
    }
}

TEST_F(RoomTextures, ImagesSidesAreThoseOfItsHeader) {
    uint32_t width = 0;
    uint32_t height = 0;
    Bytes cut = JpegInScans(2);
    cut.resize(cut.size() - 13);
    EXPECT_TRUE(RoomImageSize(cut, width, height)) << "only its scans are cut";
    EXPECT_EQ(width, 8U);
    EXPECT_EQ(height, 8U);
    EXPECT_TRUE(RoomImageSize(PngFile(3, 2, colours), width, height));
    EXPECT_EQ(width, 3U);
    EXPECT_EQ(height, 2U);
    EXPECT_FALSE(RoomImageSize({}, width, height));
    const Bytes text = {'h', 'e', 'l', 'l', 'o'};
    EXPECT_FALSE(RoomImageSize(text, width, height));
    constexpr uint32_t kLonger = kLongestImageSide + 1;
    EXPECT_FALSE(RoomImageSize(PngFile(1, kLonger, std::vector<uint32_t>(kLonger)), width, height));
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
