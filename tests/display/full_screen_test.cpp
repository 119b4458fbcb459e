#include "display/display_fixture.h"
#include "display/full_screen.h"
#include "display/gl_private.h"
#include "display/screen_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>

namespace {

EMU_VIDEO_FRAME PictureOf(uint32_t width, uint32_t height, float aspect) {
    EMU_VIDEO_FRAME picture{};
    picture.width = width;
    picture.height = height;
    picture.aspect = aspect;
    picture.visibleWidth = width;
    picture.visibleHeight = height;
    picture.visibleAspect = aspect;
    return picture;
}

void SetWindow(EMU_VIDEO_FRAME& picture, uint32_t x, uint32_t y, uint32_t width, uint32_t height,
               float aspect) {
    picture.visibleX = x;
    picture.visibleY = y;
    picture.visibleWidth = width;
    picture.visibleHeight = height;
    picture.visibleAspect = aspect;
}

TEXTURE_RECORD TextureOf(uint32_t width, uint32_t height, uint32_t texWidth, uint32_t texHeight) {
    TEXTURE_RECORD texture{};
    texture.width = width;
    texture.height = height;
    texture.texWidth = texWidth;
    texture.texHeight = texHeight;
    return texture;
}

SCREEN_QUAD PlaceOn(const EMU_VIDEO_FRAME& picture, const TEXTURE_RECORD& texture,
                    const FULL_SCREEN_VIEW& view, uint32_t screenWidth, uint32_t screenHeight) {
    SESSION_PICTURE session;
    session.picture = picture;
    session.texture = texture;
    return PlaceFullScreen(session, view, screenWidth, screenHeight);
}

constexpr FULL_SCREEN_VIEW kWhole{};
constexpr FULL_SCREEN_VIEW kCropped{.crop = true};

struct PLACE {
    uint32_t left, top, width, height;
    bool operator==(const PLACE&) const = default;
};

std::ostream& operator<<(std::ostream& out, const PLACE& place) {
    return out << place.left << ',' << place.top << ' ' << place.width << 'x' << place.height;
}

PLACE PlaceOf(float aspect, uint32_t screenWidth, uint32_t screenHeight) {
    const SCREEN_QUAD quad = PlaceOn(PictureOf(256, 192, aspect), TextureOf(256, 192, 256, 192),
                                     kWhole, screenWidth, screenHeight);
    return {quad.left, quad.top, quad.width, quad.height};
}

TEST(FullScreenPlace, IsAsHighAsTheScreenUnlessThatIsTooWide) {
    const struct {
        float aspect;
        uint32_t screenWidth, screenHeight;
        PLACE place;
    } rows[] = {
        {4.0f / 3,  1920, 1080, {240, 0, 1440, 1080}},
        {4.0f / 3,  1280, 720,  {160, 0, 960, 720}  },
        {4.0f / 3,  640,  480,  {0, 0, 640, 480}    },
        {4.0f / 3,  1024, 1280, {0, 256, 1024, 768} },
        {16.0f / 9, 1920, 1080, {0, 0, 1920, 1080}  },
        {3.0f / 4,  1280, 720,  {370, 0, 540, 720}  },
        {1.0f,      720,  720,  {0, 0, 720, 720}    },
        {2.0f,      800,  600,  {0, 100, 800, 400}  },
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlaceOf(row.aspect, row.screenWidth, row.screenHeight), row.place) << row.aspect;
    }
}

TEST(FullScreenPlace, OddPixelStaysRightAndBelow) {
    EXPECT_EQ(PlaceOf(1.0f, 40, 21), (PLACE{9, 0, 21, 21})) << "9 left, 10 right";
    EXPECT_EQ(PlaceOf(1.0f, 41, 21), (PLACE{10, 0, 21, 21}));
    EXPECT_EQ(PlaceOf(1.0f, 21, 40), (PLACE{0, 9, 21, 21})) << "9 above, 10 below";
    EXPECT_EQ(PlaceOf(1.0f, 21, 41), (PLACE{0, 10, 21, 21}));
}

TEST(FullScreenPlace, LengthsAreCutToWholePixels) {
    EXPECT_EQ(PlaceOf(4.0f / 3, 400, 224), (PLACE{51, 0, 298, 224})) << "298.67 wide";
    EXPECT_EQ(PlaceOf(3.0f, 400, 224), (PLACE{0, 45, 400, 133})) << "133.33 high";
}

TEST(FullScreenPlace, OnePixelScreenShowsOnePixel) {
    for (const float aspect : {0.5f, 1.0f, 4.0f / 3, 1000.0f, 0.001f}) {
        EXPECT_EQ(PlaceOf(aspect, 1, 1), (PLACE{0, 0, 1, 1})) << aspect;
    }
}

TEST(FullScreenPlace, ExtremeAspectsStayOnTheScreen) {
    EXPECT_EQ(PlaceOf(std::numeric_limits<float>::max(), 640, 480), (PLACE{0, 239, 640, 1}));
    EXPECT_EQ(PlaceOf(std::numeric_limits<float>::min(), 640, 480), (PLACE{319, 0, 1, 480}));
    EXPECT_EQ(PlaceOf(std::numeric_limits<float>::denorm_min(), 640, 480), (PLACE{319, 0, 1, 480}));
}

TEST(FullScreenPlace, InvalidAspectMeansSquarePixels) {
    const float none[] = {0.0f, -1.0f, std::nanf(""), std::numeric_limits<float>::infinity(),
                          -std::numeric_limits<float>::infinity()};
    for (const float aspect : none) {
        EXPECT_EQ(PlaceOf(aspect, 640, 480), (PLACE{0, 0, 640, 480})) << "256 to 192 is 4 to 3";
        EXPECT_EQ(PlaceOf(aspect, 1000, 480), (PLACE{180, 0, 640, 480}));
    }
}

TEST(FullScreenPlace, NothingWithoutAPictureATextureOrAScreen) {
    const EMU_VIDEO_FRAME picture = PictureOf(8, 8, 1.0f);
    const TEXTURE_RECORD texture = TextureOf(8, 8, 8, 8);
    EXPECT_EQ(PlaceOn(picture, texture, kWhole, 0, 480).width, 0U);
    EXPECT_EQ(PlaceOn(picture, texture, kWhole, 640, 0).width, 0U);
    EXPECT_EQ(PlaceOn(PictureOf(0, 8, 1.0f), texture, kWhole, 640, 480).width, 0U);
    EXPECT_EQ(PlaceOn(PictureOf(8, 0, 1.0f), texture, kWhole, 640, 480).width, 0U);
    EXPECT_EQ(PlaceOn(picture, TEXTURE_RECORD{}, kWhole, 640, 480).width, 0U);
}

TEST(FullScreenPlace, TextureIsCutByHalfATexelOnEachSide) {
    const EMU_VIDEO_FRAME picture = PictureOf(256, 192, 4.0f / 3);
    const SCREEN_QUAD quad = PlaceOn(picture, TextureOf(256, 192, 256, 192), kWhole, 640, 480);
    EXPECT_FLOAT_EQ(quad.textureLeft, 0.001953125f); // 1 / 512
    EXPECT_FLOAT_EQ(quad.textureRight, 0.998046875f);
    EXPECT_FLOAT_EQ(quad.textureTop, 0.0026041667f); // 1 / 384
    EXPECT_FLOAT_EQ(quad.textureBottom, 0.9973958333f);
}

TEST(FullScreenPlace, TextureCoordinatesAreScaledByUsedOverAllocated) {
    const EMU_VIDEO_FRAME picture = PictureOf(320, 192, 4.0f / 3);
    const SCREEN_QUAD quad = PlaceOn(picture, TextureOf(320, 192, 512, 256), kWhole, 640, 480);
    EXPECT_FLOAT_EQ(quad.textureLeft, 0.0009765625f);  // 0.5 / 320 * 320 / 512
    EXPECT_FLOAT_EQ(quad.textureRight, 0.6240234375f); // 319.5 / 512
    EXPECT_FLOAT_EQ(quad.textureTop, 0.001953125f);    // 0.5 / 256
    EXPECT_FLOAT_EQ(quad.textureBottom, 0.748046875f); // 191.5 / 256
}

TEST(FullScreenPlace, CropTakesTheActiveWindowAndItsAspect) {
    EMU_VIDEO_FRAME picture = PictureOf(256, 224, 8.0f / 7);
    SetWindow(picture, 48, 24, 160, 144, 10.0f / 9);
    const TEXTURE_RECORD texture = TextureOf(256, 224, 256, 224);
    const SCREEN_QUAD whole = PlaceOn(picture, texture, kWhole, 640, 448);
    EXPECT_EQ(whole.width, 512U);
    const SCREEN_QUAD cropped = PlaceOn(picture, texture, kCropped, 640, 432);
    EXPECT_EQ(cropped.width, 480U);
    EXPECT_EQ(cropped.left, 80U);
    EXPECT_FLOAT_EQ(cropped.textureLeft, 48.5f / 256);
    EXPECT_FLOAT_EQ(cropped.textureRight, 207.5f / 256);
    EXPECT_FLOAT_EQ(cropped.textureTop, 24.5f / 224);
    EXPECT_FLOAT_EQ(cropped.textureBottom, 167.5f / 224);
}

TEST(FullScreenPlace, CropOfOneTexelShowsItsMiddle) {
    EMU_VIDEO_FRAME picture = PictureOf(8, 4, 2.0f);
    SetWindow(picture, 3, 2, 1, 1, 1.0f);
    const SCREEN_QUAD quad = PlaceOn(picture, TextureOf(8, 4, 8, 4), kCropped, 10, 10);
    EXPECT_EQ(quad.textureLeft, 3.5f / 8);
    EXPECT_EQ(quad.textureRight, 3.5f / 8);
    EXPECT_EQ(quad.textureTop, 2.5f / 4);
    EXPECT_EQ(quad.textureBottom, 2.5f / 4);
}

TEST(FullScreenPlace, CropOfNothingShowsTheWholeAndOneThatLeavesThePictureIsCut) {
    EMU_VIDEO_FRAME picture = PictureOf(8, 4, 2.0f);
    const TEXTURE_RECORD texture = TextureOf(8, 4, 8, 4);
    SetWindow(picture, 2, 2, 0, 2, 1.0f);
    EXPECT_EQ(PlaceOn(picture, texture, kCropped, 20, 10).textureRight, 7.5f / 8);
    EXPECT_EQ(PlaceOn(picture, texture, kCropped, 20, 10).width, 20U);
    SetWindow(picture, 8, 0, 2, 2, 1.0f);
    EXPECT_EQ(PlaceOn(picture, texture, kCropped, 20, 10).textureLeft, 0.5f / 8);
    SetWindow(picture, 6, 3, 0xFFFFFFFF, 0xFFFFFFFF, 1.0f);
    const SCREEN_QUAD quad = PlaceOn(picture, texture, kCropped, 20, 10);
    EXPECT_EQ(quad.textureLeft, 6.5f / 8);
    EXPECT_EQ(quad.textureRight, 7.5f / 8);
    EXPECT_EQ(quad.textureTop, 3.5f / 4);
    EXPECT_EQ(quad.textureBottom, 3.5f / 4);
}

PLACE PlaceIn(const EMU_VIDEO_FRAME& picture, const FULL_SCREEN_VIEW& view, uint32_t screenWidth,
              uint32_t screenHeight) {
    const SCREEN_QUAD quad =
        PlaceOn(picture, TextureOf(picture.width, picture.height, picture.width, picture.height),
                view, screenWidth, screenHeight);
    return {quad.left, quad.top, quad.width, quad.height};
}

TEST(FullScreenPlace, WholeMultiplesMakeAllRowsEquallyHigh) {
    const FULL_SCREEN_VIEW view{.wholeMultiples = true};
    const EMU_VIDEO_FRAME nes = PictureOf(256, 224, 4.0f / 3);
    EXPECT_EQ(PlaceIn(nes, view, 1280, 720), (PLACE{192, 24, 896, 672}));    // three times
    EXPECT_EQ(PlaceIn(nes, view, 1920, 1080), (PLACE{362, 92, 1195, 896}));  // four times, 1194.67
    EXPECT_EQ(PlaceIn(nes, view, 3840, 2160), (PLACE{576, 72, 2688, 2016})); // nine times
    EXPECT_EQ(PlaceIn(nes, view, 298, 224), (PLACE{0, 0, 298, 223})) << "too narrow for one";
    EXPECT_EQ(PlaceIn(nes, view, 300, 224), (PLACE{0, 0, 299, 224})) << "once";
    EXPECT_EQ(PlaceIn(nes, view, 600, 900), (PLACE{1, 226, 597, 448})) << "limited by the width";
}

TEST(FullScreenPlace, WholeMultiplesOfSquareDotsAreWholeBothWays) {
    const FULL_SCREEN_VIEW view{.wholeMultiples = true, .aspect = PictureAspect::kSquareDots};
    for (uint32_t height = 224; height < 2200; height += 37) {
        const PLACE place = PlaceIn(PictureOf(320, 224, 1.4f), view, height * 2, height);
        EXPECT_EQ(place.height, height / 224 * 224);
        EXPECT_EQ(place.width, height / 224 * 320);
    }
}

// The scaler's texels are no rows of the machine's.
TEST(FullScreenPlace, WholeMultiplesCountTheMachinesRows) {
    SESSION_PICTURE session;
    session.factor = 4;
    session.picture = PictureOf(1024, 896, 4.0f / 3);
    session.texture = TextureOf(1024, 896, 1024, 896);
    const FULL_SCREEN_VIEW view{.wholeMultiples = true};
    EXPECT_EQ(PlaceFullScreen(session, view, 1280, 720).height, 672U);
}

TEST(FullScreenPlace, AspectIsTheMachinesFourByThreeOrThatOfSquareDots) {
    const struct {
        const char* name;
        uint32_t width, height;
        float aspect;
        PictureAspect wanted;
        uint32_t shownWidth, shownHeight; // of 2000 by 720
    } rows[] = {
        {"NES",                   256, 224, 1.3061224f, PictureAspect::kMachine,     940,  720},
        {"NES",                   256, 224, 1.3061224f, PictureAspect::kFourByThree, 960,  720},
        {"NES",                   256, 224, 1.3061224f, PictureAspect::kSquareDots,  822,  720},
        {"Master System",         256, 192, 1.5238f,    PictureAspect::kFourByThree, 960,  720},
        {"Master System",         256, 192, 1.5238f,    PictureAspect::kSquareDots,  960,  720},
        {"Mega Drive",            320, 224, 1.4f,       PictureAspect::kMachine,     1008, 720},
        {"Mega Drive",            320, 224, 1.4f,       PictureAspect::kFourByThree, 960,  720},
        {"Mega Drive",            320, 224, 1.4f,       PictureAspect::kSquareDots,  1028, 720},
        {"Game Gear",             160, 144, 1.1111112f, PictureAspect::kFourByThree, 960,  720},
        {"Game Gear",             160, 144, 1.1111112f, PictureAspect::kSquareDots,  800,  720},
        {"two Game Gears",        320, 144, 2.2222223f, PictureAspect::kFourByThree, 1920, 720},
        {"System E, on its side", 192, 256, 0.75f,      PictureAspect::kFourByThree, 540,  720},
        {"System E, on its side", 192, 256, 0.66f,      PictureAspect::kSquareDots,  540,  720},
    };
    for (const auto& row : rows) {
        const PLACE place = PlaceIn(PictureOf(row.width, row.height, row.aspect),
                                    {.aspect = row.wanted}, 2000, 720);
        EXPECT_EQ(place.height, row.shownHeight) << row.name;
        EXPECT_EQ(place.width, row.shownWidth) << row.name << static_cast<int>(row.wanted);
    }
}

TEST(FullScreenPlace, OverscanCutsDotsAtEachEdgeAndKeepsTheirShape) {
    EMU_VIDEO_FRAME picture = PictureOf(280, 240, 1.0f);
    SetWindow(picture, 12, 8, 256, 224, 2.0f);
    const TEXTURE_RECORD texture = TextureOf(280, 240, 280, 240);
    const FULL_SCREEN_VIEW view{
        .crop = true, .cut = {8, 16, 24, 0}
    };
    const SCREEN_QUAD quad = PlaceOn(picture, texture, view, 4000, 1040);
    EXPECT_EQ(quad.areaX, 20U);
    EXPECT_EQ(quad.areaY, 24U);
    EXPECT_EQ(quad.areaWidth, 224U);
    EXPECT_EQ(quad.areaHeight, 208U);
    EXPECT_EQ(quad.height, 1040U); // five times
    // A dot is 2 * 224 / 256 = 1.75 as wide as it is high: 224 of them are 392 dots' heights.
    EXPECT_EQ(quad.width, 1960U);
}

TEST(FullScreenPlace, OverscanCutsNothingOfTheWholePicture) {
    const FULL_SCREEN_VIEW view{
        .cut = {8, 8, 8, 8}
    };
    const SCREEN_QUAD quad =
        PlaceOn(PictureOf(256, 192, 1.0f), TextureOf(256, 192, 256, 192), view, 400, 400);
    EXPECT_EQ(quad.areaWidth, 256U);
    EXPECT_EQ(quad.areaHeight, 192U);
}

TEST(FullScreenPlace, OverscanLeavesAtLeastHalf) {
    const FULL_SCREEN_VIEW view{
        .crop = true, .cut = {1000, 1000, 1000, 0}
    };
    const SCREEN_QUAD quad =
        PlaceOn(PictureOf(160, 144, 1.0f), TextureOf(160, 144, 160, 144), view, 400, 400);
    EXPECT_EQ(quad.areaX, 40U);
    EXPECT_EQ(quad.areaWidth, 80U);
    EXPECT_EQ(quad.areaY, 36U);
    EXPECT_EQ(quad.areaHeight, 108U);
}

TEST(FullScreenPlace, OverscanCountsDotsAlsoOfAScaledPicture) {
    SESSION_PICTURE session;
    session.factor = 4;
    session.picture = PictureOf(1024, 896, 1.0f);
    session.texture = TextureOf(1024, 896, 1024, 896);
    const FULL_SCREEN_VIEW view{
        .crop = true, .cut = {0, 8, 0, 0}
    };
    const SCREEN_QUAD quad = PlaceFullScreen(session, view, 400, 400);
    EXPECT_EQ(quad.areaY, 32U);
    EXPECT_EQ(quad.areaHeight, 864U);
}

// Pictures passed through UploadPicture and read back from the screen.
class FullScreen : public DisplayTest {
protected:
    void SetUp() override {
        DisplayTest::SetUp();
        StartSessionPicture(session, kMostPixels);
    }

    void TearDown() override {
        EndSessionPicture(session);
        DisplayTest::TearDown();
    }

    void Show(EMU_VIDEO_FRAME picture, std::vector<uint32_t> pixels) {
        ASSERT_EQ(pixels.size(), size_t{picture.width} * picture.height);
        picture.pixels = pixels.data();
        ASSERT_TRUE(UploadPicture(picture, session, PictureScaler::kNone));
    }

    // Fills the screen with red before, so that undrawn areas show.
    std::vector<uint32_t> Draw(const FULL_SCREEN_VIEW& view, uint32_t width, uint32_t height) {
        ClearScreen(kRed);
        DrawFullScreen(session, view, width, height);
        return ReadScreen(width, height);
    }

    static constexpr size_t kMostPixels = 64;
    static constexpr FULL_SCREEN_VIEW kNearest{false, false};
    static constexpr FULL_SCREEN_VIEW kLinear{false, true};
    static constexpr FULL_SCREEN_VIEW kNearestCrop{true, false};
    SESSION_PICTURE session;
};

constexpr uint32_t kWidth = 5;
constexpr uint32_t kHeight = 3;

// Fifteen colours, no two with a channel in common.
std::vector<uint32_t> FifteenColours() {
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < kWidth * kHeight; ++i) {
        pixels.push_back(0xFF000000 | (17 * i) << 16 | (255 - 16 * i) << 8 | (i * 101 % 256));
    }
    return pixels;
}

EMU_VIDEO_FRAME FiveByThree() {
    return PictureOf(kWidth, kHeight, 5.0f / 3);
}

// The picture with its columns and rows repeated as listed.
std::vector<uint32_t> Repeated(const std::vector<uint32_t>& pixels,
                               const std::vector<uint32_t>& columns,
                               const std::vector<uint32_t>& rows) {
    std::vector<uint32_t> result;
    for (const uint32_t row : rows) {
        for (const uint32_t column : columns) {
            result.push_back(pixels[row * kWidth + column]);
        }
    }
    return result;
}

// At whole multiples every dot is as large as all others.
struct NEAREST_ROW {
    uint32_t scale;
    std::vector<uint32_t> columns;
    std::vector<uint32_t> rows;
};

const NEAREST_ROW kNearestRows[] = {
    {1, {0, 1, 2, 3, 4},                               {0, 1, 2}                  },
    {3, {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}, {0, 0, 0, 1, 1, 1, 2, 2, 2}},
};

TEST_F(FullScreen, NearestShowsExactlyThePicturesColours) {
    const std::vector<uint32_t> pixels = FifteenColours();
    Show(FiveByThree(), pixels);
    for (const NEAREST_ROW& row : kNearestRows) {
        EXPECT_EQ(Draw(kNearest, kWidth * row.scale, kHeight * row.scale),
                  Repeated(pixels, row.columns, row.rows))
            << row.scale;
    }
}

TEST_F(FullScreen, NearestIsTheSameWithPowersOfTwo) {
    GlForbidOddTextureSizes();
    const std::vector<uint32_t> pixels = FifteenColours();
    Show(FiveByThree(), pixels);
    ASSERT_EQ(session.texture.texWidth, 8U);
    for (const NEAREST_ROW& row : kNearestRows) {
        EXPECT_EQ(Draw(kNearest, kWidth * row.scale, kHeight * row.scale),
                  Repeated(pixels, row.columns, row.rows))
            << row.scale;
    }
}

int Channel(uint32_t pixel, int shift) {
    return static_cast<int>(pixel >> shift & 0xFF);
}

// The largest difference between two pictures in any channel.
int LargestDifference(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    int largest = 0;
    for (size_t i = 0; i < a.size() && i < b.size(); ++i) {
        for (const int shift : {16, 8, 0}) {
            largest = std::max(largest, std::abs(Channel(a[i], shift) - Channel(b[i], shift)));
        }
    }
    return a.size() == b.size() ? largest : 256;
}

// Between the middles of the four texels around the point, in double precision.
double Bilinear(const std::vector<uint32_t>& pixels, double x, double y, int shift) {
    const auto left = static_cast<uint32_t>(x);
    const auto top = static_cast<uint32_t>(y);
    const uint32_t right = std::min(left + 1, kWidth - 1);
    const uint32_t below = std::min(top + 1, kHeight - 1);
    const auto texel = [&](uint32_t column, uint32_t row) {
        return Channel(pixels[row * kWidth + column], shift);
    };
    const double upper = std::lerp(texel(left, top), texel(right, top), x - left);
    const double lower = std::lerp(texel(left, below), texel(right, below), x - left);
    return std::lerp(upper, lower, y - top);
}

// A renderer may keep filter weights in only eight bits: half a step of a weight in each direction and
// half a step of the result.
constexpr double kFilterTolerance = 255.0 / 512 * 2 + 0.5 + 0.01;

TEST_F(FullScreen, LinearIsBilinearBetweenTheMiddlesOfTexels) {
    const std::vector<uint32_t> pixels = FifteenColours();
    Show(FiveByThree(), pixels);
    constexpr uint32_t kScreenWidth = 60;
    constexpr uint32_t kScreenHeight = 36;
    const std::vector<uint32_t> screen = Draw(kLinear, kScreenWidth, kScreenHeight);
    for (uint32_t y = 0; y < kScreenHeight; ++y) {
        for (uint32_t x = 0; x < kScreenWidth; ++x) {
            const double column = (x + 0.5) * (kWidth - 1) / kScreenWidth;
            const double row = (y + 0.5) * (kHeight - 1) / kScreenHeight;
            for (const int shift : {16, 8, 0}) {
                EXPECT_NEAR(Channel(screen[y * kScreenWidth + x], shift),
                            Bilinear(pixels, column, row, shift), kFilterTolerance)
                    << x << ',' << y;
            }
        }
    }
}

TEST_F(FullScreen, LinearIsTheSameWithPowersOfTwo) {
    Show(FiveByThree(), FifteenColours());
    const std::vector<uint32_t> anySize = Draw(kLinear, 60, 36);
    GlForbidOddTextureSizes();
    session.texture.needsRecreate = 1;
    Show(FiveByThree(), FifteenColours());
    ASSERT_EQ(session.texture.texWidth, 8U);
    EXPECT_LE(LargestDifference(Draw(kLinear, 60, 36), anySize), 2 * kFilterTolerance);
}

TEST_F(FullScreen, LinearShowsNothingOfTheUnusedTexels) {
    GlForbidOddTextureSizes();
    Show(FiveByThree(), std::vector<uint32_t>(15, kWhite));
    for (const uint32_t height : {3U, 30U, 57U}) {
        const uint32_t width = height * 5 / 3;
        EXPECT_EQ(Draw(kLinear, width, height),
                  std::vector<uint32_t>(size_t{width} * height, kWhite));
    }
}

TEST_F(FullScreen, CropShowsTheActiveWindowAlone) {
    EMU_VIDEO_FRAME picture = FiveByThree();
    SetWindow(picture, 1, 1, 3, 2, 1.5f);
    const std::vector<uint32_t> pixels = FifteenColours();
    Show(picture, pixels);
    EXPECT_EQ(Draw(kNearestCrop, 3, 2), Repeated(pixels, {1, 2, 3}, {1, 2}));
    EXPECT_EQ(Draw(kNearest, 5, 3), pixels) << "the whole without";
}

TEST_F(FullScreen, LinearCropDoesNotReachOverTheWindowsEdge) {
    EMU_VIDEO_FRAME picture = FiveByThree();
    SetWindow(picture, 1, 1, 3, 1, 3.0f);
    std::vector<uint32_t> pixels(15, kRed);
    std::fill_n(pixels.begin() + 6, 3, kWhite);
    Show(picture, pixels);
    EXPECT_EQ(Draw({true, true}, 60, 20), std::vector<uint32_t>(1200, kWhite));
}

// What each row of a screen must be: one colour between black bars.
std::vector<uint32_t> Framed(uint32_t screenWidth, uint32_t screenHeight, const PLACE& place,
                             uint32_t colour) {
    std::vector<uint32_t> pixels(size_t{screenWidth} * screenHeight, kBlack);
    for (uint32_t y = place.top; y < place.top + place.height; ++y) {
        std::fill_n(pixels.begin() + y * screenWidth + place.left, place.width, colour);
    }
    return pixels;
}

TEST_F(FullScreen, RestOfTheScreenIsBlack) {
    const struct {
        float aspect;
        uint32_t screenWidth, screenHeight;
        PLACE place;
    } rows[] = {
        {1.0f,     40, 20, {10, 0, 20, 20}},
        {1.0f,     20, 40, {0, 10, 20, 20}},
        {1.0f,     40, 21, {9, 0, 21, 21} },
        {1.0f,     21, 40, {0, 9, 21, 21} },
        {2.0f,     33, 17, {0, 0, 33, 16} },
        {4.0f / 3, 37, 24, {2, 0, 32, 24} },
        {1.0f,     1,  1,  {0, 0, 1, 1}   },
        {1.0f,     1,  7,  {0, 3, 1, 1}   },
    };
    for (const auto& row : rows) {
        Show(PictureOf(4, 4, row.aspect), std::vector<uint32_t>(16, kWhite));
        for (const FULL_SCREEN_VIEW& view : {kNearest, kLinear}) {
            EXPECT_EQ(Draw(view, row.screenWidth, row.screenHeight),
                      Framed(row.screenWidth, row.screenHeight, row.place, kWhite))
                << row.screenWidth << 'x' << row.screenHeight;
        }
    }
}

TEST_F(FullScreen, SessionWithoutAPictureIsBlack) {
    EXPECT_EQ(Draw(kNearest, 8, 6), std::vector<uint32_t>(48, kBlack));
}

TEST_F(FullScreen, WhatTheRoomLeavesOnIsNotInTheWay) {
    const std::vector<uint32_t> pixels = FifteenColours();
    Show(FiveByThree(), pixels);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_NEVER);
    glEnable(GL_LIGHTING);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT_AND_BACK);
    glEnable(GL_BLEND);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_NEVER, 0.0f);
    glColor4f(0.5f, 0.2f, 0.1f, 0.3f);
    glMatrixMode(GL_TEXTURE);
    glScalef(0.5f, 0.5f, 1.0f);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(3.0f, 2.0f, 0.0f);
    EXPECT_EQ(Draw(kNearest, kWidth, kHeight), pixels);
}

} // namespace
