#include "host/picture.h"

#include "host/session.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace {

constexpr uint32_t kGlyphMargin = 25; // half a side must be longer than this
constexpr int32_t kChevronRows = 48;
constexpr int32_t kDiagonalRows = 24;
constexpr int32_t kStrokeColumns = 4;
constexpr int32_t kChevronDistance = 28; // columns
constexpr int32_t kForwardStart = -26;   // first column of the bar, from the middle
constexpr int32_t kBackStart = -6;
// Between two screens: black, so that it is no part of a game, with a line that is seen beside black pictures too.
constexpr uint32_t kDivider[] = {0xFF000000, 0xFF606060, 0xFF606060, 0xFF000000};
constexpr auto kDividerColumns = static_cast<uint32_t>(std::size(kDivider));

constexpr uint32_t kStroke[kStrokeColumns] = {0xFFFFFFFF, 0xFFC0C0C0, 0xFF808080, 0xFF000000};

void DrawStroke(SpeedGlyph direction, EMU_VIDEO_FRAME& video, int32_t column, int32_t row) {
    for (int32_t i = 0; i < kStrokeColumns; ++i) {
        const int32_t x = column + i;
        if (x >= 0 && x < static_cast<int32_t>(video.width)) {
            const int32_t shade = direction == SpeedGlyph::kForward ? i : kStrokeColumns - 1 - i;
            video.pixels[static_cast<size_t>(row) * video.width + static_cast<size_t>(x)] =
                kStroke[shade];
        }
    }
}

void DrawChevron(SpeedGlyph direction, EMU_VIDEO_FRAME& video, int32_t column, int32_t top) {
    for (int32_t row = 0; row < kChevronRows; ++row) {
        const int32_t reach = row < kDiagonalRows ? row : kChevronRows - 1 - row;
        const int32_t diagonal = direction == SpeedGlyph::kForward ? reach : -reach;
        DrawStroke(direction, video, column, top + row);
        DrawStroke(direction, video, column + diagonal, top + row);
    }
}

float Reciprocal(float aspect) {
    return aspect == 0.0f ? 0.0f : 1.0f / aspect;
}

} // namespace

size_t EmuPicturePixels(const EMU_THREAD& session) {
    return std::max(size_t{session.frameWidth} * session.frameHeight,
                    size_t{kStaticWidth} * kStaticHeight);
}

void EmuClampPicture(EMU_VIDEO_FRAME& video, size_t capacityPixels) {
    if (uint64_t{video.width} * video.height > capacityPixels) {
        if (video.width > capacityPixels) {
            video.width = 0;
            video.height = 0;
        } else {
            video.height = static_cast<uint32_t>(capacityPixels / video.width);
        }
    }
    video.visibleX = std::min(video.visibleX, video.width);
    video.visibleY = std::min(video.visibleY, video.height);
    video.visibleWidth = std::min(video.visibleWidth, video.width - video.visibleX);
    video.visibleHeight = std::min(video.visibleHeight, video.height - video.visibleY);
}

void EmuDrawSpeedGlyph(SpeedGlyph direction, EMU_VIDEO_FRAME& video) {
    const uint32_t halfWidth = video.width / 2;
    const uint32_t halfHeight = video.height / 2;
    if (halfWidth <= kGlyphMargin || halfHeight <= kGlyphMargin || video.pixels == nullptr) {
        return;
    }
    const int32_t start = direction == SpeedGlyph::kForward ? kForwardStart : kBackStart;
    const int32_t column = static_cast<int32_t>(halfWidth) + start;
    const int32_t top = static_cast<int32_t>(halfHeight) - kChevronRows / 2;
    DrawChevron(direction, video, column, top);
    DrawChevron(direction, video, column + kChevronDistance, top);
}

// From the last row and the last screen back, as every pixel's new place is behind its old one.
void EmuDivideScreens(uint32_t screens, EMU_VIDEO_FRAME& video, size_t capacityPixels) {
    if (screens < 2 || video.width == 0 || video.width % screens != 0) {
        return;
    }
    const uint32_t each = video.width / screens;
    const uint32_t step = each + kDividerColumns;
    const uint32_t wide = screens * step - kDividerColumns;
    if (uint64_t{wide} * video.height > capacityPixels) {
        return;
    }
    for (uint32_t row = video.height; row-- > 0;) {
        for (uint32_t screen = screens; screen-- > 0;) {
            uint32_t* const to = video.pixels + size_t{row} * wide + size_t{screen} * step;
            std::memmove(to, video.pixels + size_t{row} * video.width + size_t{screen} * each,
                         each * sizeof(uint32_t));
            if (screen + 1 < screens) {
                std::copy_n(kDivider, kDividerColumns, to + each);
            }
        }
    }
    const float wider = static_cast<float>(wide) / static_cast<float>(video.width);
    video.aspect *= wider;
    video.visibleAspect *= wider;
    video.visibleWidth += wide - video.width;
    video.width = wide;
}

void EmuRotateFrame(EMU_VIDEO_FRAME& video, std::vector<uint32_t>& scratch) {
    if (video.rotated == 0) {
        return;
    }
    video.rotated = 0;
    const size_t width = video.width;
    const size_t height = video.height;
    if (width != 0 && height != 0) {
        scratch.assign(video.pixels, video.pixels + width * height);
        const uint32_t* source = scratch.data();
        for (size_t y = 0; y < height; ++y) {
            uint32_t* target = video.pixels + (height - 1 - y);
            for (size_t x = 0; x < width; ++x, target += height) {
                *target = *source++;
            }
        }
    }
    std::swap(video.width, video.height);
    std::swap(video.visibleWidth, video.visibleHeight);
    std::swap(video.visibleX, video.visibleY);
    video.aspect = Reciprocal(video.aspect);
    video.visibleAspect = Reciprocal(video.visibleAspect);
}

void EmuCopyPicture(const EMU_VIDEO_FRAME& from, EMU_VIDEO_FRAME& to) {
    std::memcpy(to.pixels, from.pixels, size_t{from.width} * from.height * sizeof(uint32_t));
    to.width = from.width;
    to.height = from.height;
    to.aspect = from.aspect;
    to.visibleX = from.visibleX;
    to.visibleY = from.visibleY;
    to.visibleWidth = from.visibleWidth;
    to.visibleHeight = from.visibleHeight;
    to.visibleAspect = from.visibleAspect;
    to.rotated = from.rotated;
}

void EmuRepeatPicture(const EMU_VIDEO_FRAME& before, EMU_VIDEO_FRAME& video) {
    if (before.pixels != nullptr && before.pixels != video.pixels) {
        EmuCopyPicture(before, video);
    }
}
