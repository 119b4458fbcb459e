#include "display/full_screen.h"

#include "display/gl.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float kHalfTexel = 0.5f;

// The part of a picture that is shown, in texels.
struct SHOWN_AREA {
    uint32_t x;
    uint32_t y;
    uint32_t width;
    uint32_t height;
    float aspect;
};

SHOWN_AREA ShownArea(const EMU_VIDEO_FRAME& picture, bool crop) {
    SHOWN_AREA area{0, 0, picture.width, picture.height, picture.aspect};
    const bool hasWindow = picture.visibleWidth != 0 && picture.visibleHeight != 0 &&
                           picture.visibleX < picture.width && picture.visibleY < picture.height;
    if (crop && hasWindow) {
        area.x = picture.visibleX;
        area.y = picture.visibleY;
        area.width = std::min(picture.visibleWidth, picture.width - picture.visibleX);
        area.height = std::min(picture.visibleHeight, picture.height - picture.visibleY);
        area.aspect = picture.visibleAspect;
    }
    if (!std::isfinite(area.aspect) || area.aspect <= 0.0f) {
        area.aspect = static_cast<float>(area.width) / static_cast<float>(area.height);
    }
    return area;
}

// A whole number of pixels from 1 to the screen's. Clamped before the conversion, which an extreme
// aspect would overflow.
uint32_t WholePixels(float length, uint32_t screen) {
    const float cut = std::min(length, static_cast<float>(screen));
    return std::max(static_cast<uint32_t>(cut), 1U);
}

} // namespace

SCREEN_QUAD PlaceFullScreen(const EMU_VIDEO_FRAME& picture, const TEXTURE_RECORD& texture,
                            bool crop, uint32_t screenWidth, uint32_t screenHeight) {
    if (picture.width == 0 || picture.height == 0 || texture.texWidth == 0 ||
        texture.texHeight == 0 || screenWidth == 0 || screenHeight == 0) {
        return {};
    }
    const SHOWN_AREA area = ShownArea(picture, crop);
    SCREEN_QUAD quad{};
    const float widthForHeight = static_cast<float>(screenHeight) * area.aspect;
    if (widthForHeight > static_cast<float>(screenWidth)) {
        quad.width = screenWidth;
        quad.height = WholePixels(static_cast<float>(screenWidth) / area.aspect, screenHeight);
    } else {
        quad.width = WholePixels(widthForHeight, screenWidth);
        quad.height = screenHeight;
    }
    quad.left = (screenWidth - quad.width) / 2;
    quad.top = (screenHeight - quad.height) / 2;
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
    const SCREEN_QUAD quad =
        PlaceFullScreen(session.picture, session.texture, view.crop, screenWidth, screenHeight);
    if (session.texture.glTexture == 0 || quad.width == 0) {
        return;
    }
    const auto left = static_cast<float>(quad.left);
    const auto top = static_cast<float>(quad.top);
    const auto right = static_cast<float>(quad.left + quad.width);
    const auto bottom = static_cast<float>(quad.top + quad.height);
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glBindTexture(GL_TEXTURE_2D, session.texture.glTexture);
    SetTextureFilter(view.linear ? TextureFilter::kLinear : TextureFilter::kNearest);
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
    glDisable(GL_TEXTURE_2D);
}
