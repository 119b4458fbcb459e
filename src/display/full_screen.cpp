#include "display/full_screen.h"

#include "display/gl.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float kHalfTexel = 0.5f;
constexpr float kFourByThree = 4.0f / 3;

// The part of a picture that is shown, in texels.
struct SHOWN_AREA {
    uint32_t x;
    uint32_t y;
    uint32_t width;
    uint32_t height;
    float aspect;
};

bool IsAspect(float aspect) {
    return std::isfinite(aspect) && aspect > 0.0f;
}

// A picture on its side, and pictures side by side, keep their number of screens.
float FourByThree(float aspect) {
    if (aspect < 1.0f) {
        return 1.0f / kFourByThree;
    }
    return aspect > 2.0f ? 2.0f * kFourByThree : kFourByThree;
}

float ShownAspect(const SHOWN_AREA& area, PictureAspect wanted) {
    const float squareDots = static_cast<float>(area.width) / static_cast<float>(area.height);
    const float own = IsAspect(area.aspect) ? area.aspect : squareDots;
    switch (wanted) {
    case PictureAspect::kFourByThree: return FourByThree(own);
    case PictureAspect::kSquareDots: return squareDots;
    default: return own;
    }
}

// Cuts both ends of a side, in texels, each by a quarter of it at most. Returns what is left of 1.
float CutSide(uint32_t& from, uint32_t& length, uint32_t first, uint32_t last) {
    const uint32_t whole = length;
    const uint32_t most = whole / 4;
    from += std::min(first, most);
    length -= std::min(first, most) + std::min(last, most);
    return static_cast<float>(length) / static_cast<float>(whole);
}

// What is cut off leaves the dots' shape as it is.
void CutOverscan(SHOWN_AREA& area, const PICTURE_CUT& cut, uint32_t factor) {
    const float width = CutSide(area.x, area.width, cut.left * factor, cut.right * factor);
    const float height = CutSide(area.y, area.height, cut.top * factor, cut.bottom * factor);
    area.aspect *= width / height;
}

SHOWN_AREA ShownArea(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view) {
    const EMU_VIDEO_FRAME& picture = session.picture;
    SHOWN_AREA area{0, 0, picture.width, picture.height, picture.aspect};
    const bool hasWindow = picture.visibleWidth != 0 && picture.visibleHeight != 0 &&
                           picture.visibleX < picture.width && picture.visibleY < picture.height;
    if (view.crop && hasWindow) {
        area.x = picture.visibleX;
        area.y = picture.visibleY;
        area.width = std::min(picture.visibleWidth, picture.width - picture.visibleX);
        area.height = std::min(picture.visibleHeight, picture.height - picture.visibleY);
        area.aspect = picture.visibleAspect;
    }
    area.aspect = ShownAspect(area, view.aspect);
    if (view.crop && hasWindow) {
        CutOverscan(area, view.cut, session.factor);
    }
    return area;
}

// A whole number of pixels from 1 to the screen's. Clamped before the conversion, which an extreme
// aspect would overflow.
uint32_t WholePixels(float length, uint32_t screen) {
    const float cut = std::min(length, static_cast<float>(screen));
    return std::max(static_cast<uint32_t>(cut), 1U);
}

// The nearest texel never lies over the edge, and all are equally wide then.
void TakeWholeTexels(SCREEN_QUAD& quad, const TEXTURE_RECORD& texture) {
    const auto across = static_cast<float>(texture.texWidth);
    const auto down = static_cast<float>(texture.texHeight);
    quad.textureLeft = static_cast<float>(quad.areaX) / across;
    quad.textureTop = static_cast<float>(quad.areaY) / down;
    quad.textureRight = static_cast<float>(quad.areaX + quad.areaWidth) / across;
    quad.textureBottom = static_cast<float>(quad.areaY + quad.areaHeight) / down;
}

struct PLACE_SIZE {
    uint32_t width;
    uint32_t height;
};

PLACE_SIZE LargestPlace(float aspect, uint32_t screenWidth, uint32_t screenHeight) {
    const float widthForHeight = static_cast<float>(screenHeight) * aspect;
    if (widthForHeight > static_cast<float>(screenWidth)) {
        return {screenWidth, WholePixels(static_cast<float>(screenWidth) / aspect, screenHeight)};
    }
    return {WholePixels(widthForHeight, screenWidth), screenHeight};
}

// Fewer rows of the screen, a multiple of the dots' rows. The width is rounded, so that dots that are square are as
// many whole pixels wide.
PLACE_SIZE WholeMultiple(PLACE_SIZE largest, float aspect, uint32_t rows, uint32_t screenWidth) {
    if (rows == 0 || largest.height < rows) {
        return largest;
    }
    const uint32_t height = largest.height / rows * rows;
    const float width = std::round(static_cast<float>(height) * aspect);
    return {WholePixels(width, screenWidth), height};
}

} // namespace

SCREEN_QUAD PlaceFullScreen(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view,
                            uint32_t screenWidth, uint32_t screenHeight) {
    const EMU_VIDEO_FRAME& picture = session.picture;
    const TEXTURE_RECORD& texture = session.texture;
    if (picture.width == 0 || picture.height == 0 || texture.texWidth == 0 ||
        texture.texHeight == 0 || screenWidth == 0 || screenHeight == 0) {
        return {};
    }
    const SHOWN_AREA area = ShownArea(session, view);
    PLACE_SIZE size = LargestPlace(area.aspect, screenWidth, screenHeight);
    if (view.wholeMultiples) {
        size = WholeMultiple(size, area.aspect, area.height / std::max(session.factor, 1U),
                             screenWidth);
    }
    SCREEN_QUAD quad{};
    quad.width = size.width;
    quad.height = size.height;
    quad.left = (screenWidth - quad.width) / 2;
    quad.top = (screenHeight - quad.height) / 2;
    quad.areaX = area.x;
    quad.areaY = area.y;
    quad.areaWidth = area.width;
    quad.areaHeight = area.height;
    const auto across = static_cast<float>(texture.texWidth);
    const auto down = static_cast<float>(texture.texHeight);
    quad.textureLeft = (static_cast<float>(area.x) + kHalfTexel) / across;
    quad.textureTop = (static_cast<float>(area.y) + kHalfTexel) / down;
    quad.textureRight = (static_cast<float>(area.x + area.width) - kHalfTexel) / across;
    quad.textureBottom = (static_cast<float>(area.y + area.height) - kHalfTexel) / down;
    return quad;
}

void DrawFullScreen(const SESSION_PICTURE& session, const FULL_SCREEN_VIEW& view,
                    uint32_t screenWidth, uint32_t screenHeight) {
    Ortho2D(screenWidth, screenHeight);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    SCREEN_QUAD quad = PlaceFullScreen(session, view, screenWidth, screenHeight);
    if (session.texture.glTexture == 0 || quad.width == 0) {
        return;
    }
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glBindTexture(GL_TEXTURE_2D, session.texture.glTexture);
    SetTextureFilter(view.linear ? TextureFilter::kLinear : TextureFilter::kNearest);
    if (!view.linear) {
        TakeWholeTexels(quad, session.texture);
    }
    DrawQuad(quad);
    glDisable(GL_TEXTURE_2D);
}

void DrawQuad(const SCREEN_QUAD& quad) {
    const auto left = static_cast<float>(quad.left);
    const auto top = static_cast<float>(quad.top);
    const auto right = static_cast<float>(quad.left + quad.width);
    const auto bottom = static_cast<float>(quad.top + quad.height);
    glBegin(GL_QUADS);
    glTexCoord2f(quad.textureLeft, quad.textureTop);
    glVertex2f(left, top);
    glTexCoord2f(quad.textureRight, quad.textureTop);
    glVertex2f(right, top);
    glTexCoord2f(quad.textureRight, quad.textureBottom);
    glVertex2f(right, bottom);
    glTexCoord2f(quad.textureLeft, quad.textureBottom);
    glVertex2f(left, bottom);
    glEnd();
}
