#include "display/display_fixture.h"
#include "display/gl_private.h"
#include "display/session_picture.h"
#include "settings/settings.h"

namespace {

constexpr float kFaint = 0.05f;
constexpr float kClose = 1e-6f;

TEST(ColourHistory, StartsAtTheFaintestLight) {
    const COLOUR_HISTORY history;
    for (const float light : history.light) {
        EXPECT_EQ(light, kFaint);
    }
}

TEST(ColourHistory, SamplesEveryFourthPixelFromTheTopLeft) {
    // Samples are taken at columns and rows 0 and 4. Everything else is white and must not count.
    std::vector<uint32_t> pixels(size_t{7} * 5, kWhite);
    pixels[0] = 0xFFFF0000;         // (0, 0)
    pixels[4] = 0xFFFF3300;         // (4, 0)
    pixels[4 * 7] = 0xFF000066;     // (0, 4)
    pixels[4 * 7 + 4] = 0xFF000000; // (4, 4)
    COLOUR_HISTORY history;
    AddToColourHistory(history, pixels.data(), 7, 5);
    EXPECT_NEAR(history.light[0], 0.5f * 0.2f + kFaint, kClose); // 510 / 4 of 255
    EXPECT_NEAR(history.light[1], 51.0f / 4 / 255 * 0.2f + kFaint, kClose);
    EXPECT_NEAR(history.light[2], 102.0f / 4 / 255 * 0.2f + kFaint, kClose);
}

TEST(ColourHistory, ForgetsAPictureAfterFiveMore) {
    COLOUR_HISTORY history;
    AddToColourHistory(history, &kWhite, 1, 1);
    EXPECT_NEAR(history.light[0], 0.25f, kClose);
    for (int i = 0; i < 4; ++i) {
        AddToColourHistory(history, &kBlack, 1, 1);
        EXPECT_NEAR(history.light[0], 0.25f, kClose) << i;
    }
    AddToColourHistory(history, &kBlack, 1, 1);
    EXPECT_NEAR(history.light[0], kFaint, kClose);
}

TEST(ColourHistory, WhiteForFivePicturesIsTheBrightestLight) {
    COLOUR_HISTORY history;
    const float expected[] = {0.25f, 0.45f, 0.65f, 0.85f, 1.05f, 1.05f, 1.05f};
    for (const float light : expected) {
        AddToColourHistory(history, &kWhite, 1, 1);
        for (const float channel : history.light) {
            EXPECT_NEAR(channel, light, kClose);
        }
    }
}

TEST(ColourHistory, PictureOfNothingIsNoPicture) {
    COLOUR_HISTORY history;
    AddToColourHistory(history, &kWhite, 1, 1);
    AddToColourHistory(history, nullptr, 0, 4);
    AddToColourHistory(history, nullptr, 4, 0);
    EXPECT_NEAR(history.light[0], 0.25f, kClose);
    EXPECT_EQ(history.next, 1U);
}

class SessionPicture : public DisplayTest {
protected:
    void SetUp() override {
        DisplayTest::SetUp();
        RegisterDefaultSettings(Settings());
        StartSessionPicture(session, kMostPixels);
    }

    void TearDown() override {
        EndSessionPicture(session);
        DisplayTest::TearDown();
    }

    static EMU_VIDEO_FRAME Picture(uint32_t width, uint32_t height, std::vector<uint32_t>& pixels) {
        EMU_VIDEO_FRAME picture{};
        picture.pixels = pixels.data();
        picture.width = width;
        picture.height = height;
        picture.aspect = 1.25f;
        picture.visibleX = 1;
        picture.visibleY = 2;
        picture.visibleWidth = 3;
        picture.visibleHeight = 1;
        picture.visibleAspect = 1.5f;
        picture.tvKey = 7;
        return picture;
    }

    bool UploadColour(uint32_t width, uint32_t height, uint32_t colour, PictureScaler scaler) {
        std::vector<uint32_t> pixels(size_t{width} * height, colour);
        return UploadPicture(Picture(width, height, pixels), session, scaler);
    }

    static constexpr size_t kMostPixels = 64;
    SESSION_PICTURE session;
};

TEST_F(SessionPicture, RecordCountsInTexelsOfTheScaledPicture) {
    const struct {
        PictureScaler scaler;
        uint32_t factor;
    } rows[] = {
        {PictureScaler::kNone,   1},
        {PictureScaler::kEdge2x, 2},
        {PictureScaler::kEdge4x, 4},
        {PictureScaler::kSoft4x, 4},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(UploadColour(5, 4, kGreen, row.scaler));
        const EMU_VIDEO_FRAME& picture = session.picture;
        EXPECT_EQ(picture.width, 5 * row.factor);
        EXPECT_EQ(picture.height, 4 * row.factor);
        EXPECT_EQ(picture.visibleX, row.factor);
        EXPECT_EQ(picture.visibleY, 2 * row.factor);
        EXPECT_EQ(picture.visibleWidth, 3 * row.factor);
        EXPECT_EQ(picture.visibleHeight, row.factor);
        EXPECT_EQ(picture.aspect, 1.25f);
        EXPECT_EQ(picture.visibleAspect, 1.5f);
        EXPECT_EQ(picture.tvKey, 7U);
        EXPECT_EQ(picture.pixels, nullptr) << "they belong to the host";
        EXPECT_EQ(session.texture.width, 5 * row.factor);
        EXPECT_EQ(session.texture.height, 4 * row.factor);
        EXPECT_EQ(Texels(session.texture),
                  std::vector<uint32_t>(size_t{20} * row.factor * row.factor, kGreen));
    }
}

TEST_F(SessionPicture, PlainPictureIsUploadedAsItIs) {
    std::vector<uint32_t> pixels(20);
    for (uint32_t i = 0; i < 20; ++i) {
        pixels[i] = 0xFF000000 | i * 0x0A0B0C;
    }
    ASSERT_TRUE(UploadPicture(Picture(5, 4, pixels), session, PictureScaler::kNone));
    EXPECT_EQ(Texels(session.texture), pixels);
    EXPECT_TRUE(session.scratch.empty()) << "a scratch buffer that nobody needs";
}

TEST_F(SessionPicture, ScaledPictureIsWhatTheScalerMakes) {
    std::vector<uint32_t> pixels(20, kBlue);
    pixels[7] = kWhite;
    pixels[13] = kRed;
    for (const PictureScaler scaler :
         {PictureScaler::kEdge2x, PictureScaler::kEdge4x, PictureScaler::kSoft4x}) {
        const uint32_t factor = ScalerFactor(scaler);
        std::vector<uint32_t> scaled(pixels.size() * factor * factor);
        ScalePicture(scaler, pixels.data(), 5, 4, scaled.data());
        ASSERT_TRUE(UploadPicture(Picture(5, 4, pixels), session, scaler));
        EXPECT_EQ(Texels(session.texture), scaled);
    }
}

TEST_F(SessionPicture, ScratchBufferIsMadeOnceForTheLargestPicture) {
    ASSERT_TRUE(UploadColour(2, 2, kRed, PictureScaler::kEdge2x));
    ASSERT_EQ(session.scratch.size(), kMostPixels * 16);
    const uint32_t* const first = session.scratch.data();
    ASSERT_TRUE(UploadColour(8, 8, kRed, PictureScaler::kSoft4x));
    ASSERT_TRUE(UploadColour(4, 4, kRed, PictureScaler::kEdge4x));
    EXPECT_EQ(session.scratch.data(), first);
    EXPECT_EQ(session.scratch.size(), kMostPixels * 16);
}

TEST_F(SessionPicture, TextureIsMadeAgainOnlyForAnotherSize) {
    ASSERT_TRUE(UploadColour(8, 4, kRed, PictureScaler::kNone));
    // GL names are reused, so a parameter that only this test sets identifies the texture.
    glBindTexture(GL_TEXTURE_2D, session.texture.glTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    const auto wrap = [this] {
        GLint value = 0;
        glBindTexture(GL_TEXTURE_2D, session.texture.glTexture);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &value);
        return value;
    };
    ASSERT_TRUE(UploadColour(8, 4, kBlue, PictureScaler::kNone));
    EXPECT_EQ(wrap(), GL_REPEAT) << "the same texture, with the mark that the test left";
    EXPECT_EQ(Texels(session.texture), std::vector<uint32_t>(32, kBlue));
    ASSERT_TRUE(UploadColour(4, 8, kRed, PictureScaler::kNone));
    EXPECT_EQ(wrap(), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(Texels(session.texture), std::vector<uint32_t>(32, kRed));
    ASSERT_TRUE(UploadColour(4, 8, kRed, PictureScaler::kEdge2x));
    EXPECT_EQ(LevelWidth(session.texture, 0), 8);
}

TEST_F(SessionPicture, MarkMakesTheTextureAgainAndIsCleared) {
    ASSERT_TRUE(UploadColour(5, 4, kRed, PictureScaler::kNone));
    ASSERT_EQ(session.texture.texWidth, 5U);
    GlForbidOddTextureSizes();
    session.texture.needsRecreate = 1;
    ASSERT_TRUE(UploadColour(5, 4, kRed, PictureScaler::kNone));
    EXPECT_EQ(session.texture.texWidth, 8U);
    EXPECT_EQ(session.texture.needsRecreate, 0);
}

TEST_F(SessionPicture, ScaledSizesRoundUpWithoutOddSizes) {
    GlForbidOddTextureSizes();
    ASSERT_TRUE(UploadColour(5, 3, kGreen, PictureScaler::kEdge4x));
    EXPECT_EQ(session.texture.width, 20U);
    EXPECT_EQ(session.texture.height, 12U);
    EXPECT_EQ(session.texture.texWidth, 32U);
    EXPECT_EQ(session.texture.texHeight, 16U);
}

TEST_F(SessionPicture, EachPictureGoesIntoTheLightBeforeItIsScaled) {
    ASSERT_TRUE(UploadColour(4, 4, kRed, PictureScaler::kEdge4x));
    EXPECT_NEAR(session.colours.light[0], 0.25f, kClose);
    EXPECT_NEAR(session.colours.light[1], kFaint, kClose);
    ASSERT_TRUE(UploadColour(4, 4, kGreen, PictureScaler::kNone));
    EXPECT_NEAR(session.colours.light[0], 0.25f, kClose);
    EXPECT_NEAR(session.colours.light[1], 0.25f, kClose);
    EXPECT_NEAR(session.colours.light[2], kFaint, kClose);
}

TEST_F(SessionPicture, InvalidPictureLeavesEverythingAsItWas) {
    ASSERT_TRUE(UploadColour(2, 2, kBlue, PictureScaler::kNone));
    EXPECT_FALSE(UploadColour(0, 2, kRed, PictureScaler::kNone));
    EXPECT_FALSE(UploadColour(2, 0, kRed, PictureScaler::kEdge4x));
    EXPECT_FALSE(UploadColour(13, 5, kRed, PictureScaler::kNone)) << "65 pixels of at most 64";
    EXPECT_FALSE(UploadPicture(EMU_VIDEO_FRAME{}, session, PictureScaler::kNone));
    EXPECT_EQ(session.picture.width, 2U);
    EXPECT_EQ(Texels(session.texture), std::vector<uint32_t>(4, kBlue));
    EXPECT_EQ(session.colours.next, 1U);
}

TEST_F(SessionPicture, SizesThatOverflowAreRefused) {
    std::vector<uint32_t> pixels(64);
    EMU_VIDEO_FRAME picture = Picture(0x10000, 0x10000, pixels);
    EXPECT_FALSE(UploadPicture(picture, session, PictureScaler::kNone)) << "2 to the 32 pixels";
    picture.width = 0x80000001;
    picture.height = 2;
    EXPECT_FALSE(UploadPicture(picture, session, PictureScaler::kEdge4x));
}

TEST_F(SessionPicture, ScalerWhoseResultNoTextureHoldsIsLeftOut) {
    const uint32_t width = Gl().largestTexture / 4 + 1;
    StartSessionPicture(session, width);
    ASSERT_TRUE(UploadColour(width, 1, kGreen, PictureScaler::kEdge4x));
    EXPECT_EQ(session.texture.width, width);
    EXPECT_EQ(session.picture.width, width);
    ASSERT_TRUE(UploadColour(width - 1, 1, kGreen, PictureScaler::kEdge4x));
    EXPECT_EQ(session.texture.width, (width - 1) * 4);
}

TEST_F(SessionPicture, SmallerLevelsAreMadeOnlyInTheRoomAndOnlyIfTheSettingSaysSo) {
    const bool before = Settings().GetBool(L"emu_gameroomfilter");
    for (const bool inRoom : {false, true}) {
        for (const bool setting : {false, true}) {
            StartSessionPicture(session, kMostPixels);
            session.inRoom = inRoom;
            Settings().SetBool(L"emu_gameroomfilter", setting);
            ASSERT_TRUE(UploadColour(8, 4, kRed, PictureScaler::kNone));
            EXPECT_EQ(LevelWidth(session.texture, 1), inRoom && setting ? 4 : 0);
        }
    }
    Settings().SetBool(L"emu_gameroomfilter", before);
}

TEST_F(SessionPicture, EndFreesTheTexture) {
    ASSERT_TRUE(UploadColour(2, 2, kBlue, PictureScaler::kEdge2x));
    const uint32_t name = session.texture.glTexture;
    EndSessionPicture(session);
    EXPECT_EQ(glIsTexture(name), GL_FALSE);
    EXPECT_EQ(session.texture.glTexture, 0U);
    EXPECT_TRUE(session.scratch.empty());
    EXPECT_EQ(session.picture.width, 0U);
}

} // namespace
