// The fills of the theme and the frames of windows.
#include "gui/bitmap.h"
#include "gui/ring.h"
#include "gui/styles.h"
#include "gui/surface.h"

#include <algorithm>

namespace {

using Flip = CGhostSurface::Flip;

// A target may be far larger than what is seen of it. Of pieces that lie beside each other every `step`
// units from `start`, the place of the first that reaches into what is seen.
int32_t FirstSeen(int32_t start, int32_t step, int32_t seenFrom) {
    return seenFrom > start ? start + (seenFrom - start) / step * step : start;
}

// The left end, the middle again and again, the right end. In a target too narrow for both ends the
// right one lies over the left.
void SmartHorizontal(CGhostSurface& surface, const GhostTexture& texture, const GUI_RECT& target) {
    const GUI_BITMAP& bitmap = *texture.bitmap;
    const int32_t left = std::clamp(texture.rect.left, 0, bitmap.width);
    const int32_t right = std::clamp(texture.rect.right, 0, bitmap.width);
    const int32_t middle = bitmap.width - left - right;
    surface.Blit(bitmap, {target.x, target.y, left, bitmap.height}, 0, 0);
    const int32_t end = target.Right() - right;
    if (middle > 0) {
        const GUI_RECT seen = surface.Visible();
        const int32_t last = std::min(end, seen.Right());
        for (int32_t x = FirstSeen(target.x + left, middle, seen.x); x < last; x += middle) {
            surface.Blit(bitmap, {x, target.y, std::min(middle, end - x), bitmap.height}, left, 0);
        }
    }
    surface.Blit(bitmap, {end, target.y, right, bitmap.height}, bitmap.width - right, 0);
}

void SmartVertical(CGhostSurface& surface, const GhostTexture& texture, const GUI_RECT& target) {
    const GUI_BITMAP& bitmap = *texture.bitmap;
    const int32_t top = std::clamp(texture.rect.top, 0, bitmap.height);
    const int32_t bottom = std::clamp(texture.rect.bottom, 0, bitmap.height);
    const int32_t middle = bitmap.height - top - bottom;
    surface.Blit(bitmap, {target.x, target.y, bitmap.width, top}, 0, 0);
    const int32_t end = target.Bottom() - bottom;
    if (middle > 0) {
        const GUI_RECT seen = surface.Visible();
        const int32_t last = std::min(end, seen.Bottom());
        for (int32_t y = FirstSeen(target.y + top, middle, seen.y); y < last; y += middle) {
            surface.Blit(bitmap, {target.x, y, bitmap.width, std::min(middle, end - y)}, 0, top);
        }
    }
    surface.Blit(bitmap, {target.x, end, bitmap.width, bottom}, 0, bitmap.height - bottom);
}

void Tile(CGhostSurface& surface, const GUI_BITMAP& bitmap, const GUI_RECT& target, bool across) {
    const GUI_RECT seen = surface.Visible();
    const int32_t rowsEnd = std::min(target.Bottom(), seen.Bottom());
    const int32_t columnsFrom = across ? FirstSeen(target.x, bitmap.width, seen.x) : target.x;
    const int32_t columnsEnd = across ? std::min(target.Right(), seen.Right()) : target.x + 1;
    for (int32_t y = FirstSeen(target.y, bitmap.height, seen.y); y < rowsEnd; y += bitmap.height) {
        const int32_t height = std::min(bitmap.height, target.Bottom() - y);
        for (int32_t x = columnsFrom; x < columnsEnd; x += bitmap.width) {
            const int32_t width = std::min(bitmap.width, target.Right() - x);
            surface.Blit(bitmap, {x, y, width, height}, 0, 0);
        }
    }
}

bool HasBitmap(const GhostTexture& texture) {
    return texture.bitmap != nullptr && texture.bitmap->width > 0 && texture.bitmap->height > 0;
}

} // namespace

void PaintFill(CGhostSurface& surface, const GhostTexture& texture, const GUI_RECT& target) {
    const bool needsBitmap = texture.type >= GhostFill::kBitmap;
    if (target.Empty() || (needsBitmap && !HasBitmap(texture))) {
        return;
    }
    switch (texture.type) {
    case GhostFill::kColour: surface.FillRect(target, texture.colour1); break;
    case GhostFill::kGradientHorizontal:
        surface.FillGradient(target, texture.colour1, texture.colour2, true);
        break;
    case GhostFill::kGradientVertical:
        surface.FillGradient(target, texture.colour1, texture.colour2, false);
        break;
    case GhostFill::kBitmap: surface.Blit(*texture.bitmap, target, 0, 0); break;
    case GhostFill::kBitmapFlipY:
        surface.Blit(*texture.bitmap, target, 0, 0, Flip::kTopToBottom);
        break;
    case GhostFill::kBitmapFlipX:
        surface.Blit(*texture.bitmap, target, 0, 0, Flip::kLeftToRight);
        break;
    case GhostFill::kBitmapSmartHorizontal: SmartHorizontal(surface, texture, target); break;
    case GhostFill::kBitmapSmartVertical: SmartVertical(surface, texture, target); break;
    case GhostFill::kBitmapStretch: surface.BlitScaled(*texture.bitmap, target); break;
    case GhostFill::kBitmapRepeatY: Tile(surface, *texture.bitmap, target, false); break;
    case GhostFill::kBitmapRepeatXY: Tile(surface, *texture.bitmap, target, true); break;
    case GhostFill::kNone: break;
    }
}

// ---- Frames.

namespace {

uint32_t WithAlpha(uint32_t colour, uint32_t alpha) {
    return (colour & 0x00FFFFFF) | alpha << 24;
}

// The sides of a frame that are there.
struct SIDES {
    explicit SIDES(const GUI_EDGES& thickness)
        : left(thickness.left > 0)
        , top(thickness.top > 0)
        , right(thickness.right > 0)
        , bottom(thickness.bottom > 0) {}
    bool left, top, right, bottom;
};

class FramePainter {
public:
    FramePainter(CGhostSurface& target, const GhostBorderStyle& border)
        : surface(target)
        , sides(border.thickness)
        , width(target.Width())
        , height(target.Height()) {}

    // One unit thick, `inset` units in, stopping `cut` units short of a corner whose other side is there.
    // Without that side a line goes on to the edge.
    void Lines(int32_t inset, int32_t cut, uint32_t colour) {
        const int32_t fromX = sides.left ? inset + cut : 0;
        const int32_t toX = width - 1 - (sides.right ? inset + cut : 0);
        const int32_t fromY = sides.top ? inset + cut : 0;
        const int32_t toY = height - 1 - (sides.bottom ? inset + cut : 0);
        // Where corners are not cut, the upright lines leave them to the level ones.
        const int32_t upFrom = cut == 0 && sides.top ? fromY + 1 : fromY;
        const int32_t upTo = cut == 0 && sides.bottom ? toY - 1 : toY;
        if (sides.top) {
            surface.FillRect({fromX, inset, toX - fromX + 1, 1}, colour);
        }
        if (sides.bottom) {
            surface.FillRect({fromX, height - 1 - inset, toX - fromX + 1, 1}, colour);
        }
        if (sides.left) {
            surface.FillRect({inset, upFrom, 1, upTo - upFrom + 1}, colour);
        }
        if (sides.right) {
            surface.FillRect({width - 1 - inset, upFrom, 1, upTo - upFrom + 1}, colour);
        }
    }

    // A pixel near the upper left corner and its mirrors, at the corners that have both sides.
    void Corners(int32_t x, int32_t y, uint32_t colour) {
        const int32_t farX = width - 1 - x;
        const int32_t farY = height - 1 - y;
        if (sides.left && sides.top) {
            surface.SetPixel(x, y, colour);
        }
        if (sides.right && sides.top) {
            surface.SetPixel(farX, y, colour);
        }
        if (sides.left && sides.bottom) {
            surface.SetPixel(x, farY, colour);
        }
        if (sides.right && sides.bottom) {
            surface.SetPixel(farX, farY, colour);
        }
    }

private:
    CGhostSurface& surface;
    SIDES sides;
    int32_t width;
    int32_t height;
};

void PaintShadedFrame(FramePainter& painter, uint32_t colour) {
    constexpr int32_t kCut = 3;
    painter.Lines(0, kCut, WithAlpha(colour, 0xFF));
    painter.Lines(1, kCut - 1, WithAlpha(colour, 0xC0));
    constexpr int32_t kSoft[][2] = {
        {0, 2},
        {2, 0},
        {1, 1},
        {1, 2},
        {2, 1}
    };
    for (const auto& at : kSoft) {
        painter.Corners(at[0], at[1], WithAlpha(colour, 0xE0));
    }
    painter.Corners(2, 2, WithAlpha(colour, 0xA0));
}

void PaintRoundedFrame(FramePainter& painter, const GhostBorderStyle& border) {
    const uint32_t colour = border.left.colour1;
    const uint32_t colour2 = border.left.colour2;
    painter.Lines(0, 2, colour);
    painter.Corners(1, 1, colour);
    if (border.type == GhostFrame::kRoundedColourInset) {
        painter.Lines(1, 2, colour2);
        painter.Corners(2, 2, colour2);
    }
}

// The same as rings. Where a unit is more than a pixel, the cut corners would be seen as steps.
void PaintRoundRings(CGhostSurface& surface, const GhostBorderStyle& border) {
    constexpr int32_t kCorner = 4; // its middle goes through the pixel at (1, 1)
    const GUI_RECT whole{0, 0, surface.Width(), surface.Height()};
    PaintRing(surface, whole, 1, kCorner, border.left.colour1);
    if (border.type == GhostFrame::kRoundedColourInset) {
        PaintRing(surface, {1, 1, whole.width - 2, whole.height - 2}, 1, kCorner - 1,
                  border.left.colour2);
    }
}

// The top and the bottom over the whole width, the sides between them.
void PaintUserFrame(CGhostSurface& surface, const GhostBorderStyle& border) {
    const GUI_EDGES edge = Thicknesses(border.thickness);
    const int32_t width = surface.Width();
    const int32_t height = surface.Height();
    const int32_t between = height - edge.top - edge.bottom;
    PaintFill(surface, border.top, {0, 0, width, edge.top});
    PaintFill(surface, border.left, {0, edge.top, edge.left, between});
    PaintFill(surface, border.right, {width - edge.right, edge.top, edge.right, between});
    PaintFill(surface, border.bottom, {0, height - edge.bottom, width, edge.bottom});
}

} // namespace

void PaintFrame(CGhostSurface& surface, const GhostBorderStyle& border) {
    const GUI_EDGES& edge = border.thickness;
    const bool closed = std::min({edge.left, edge.top, edge.right, edge.bottom}) > 0;
    FramePainter painter(surface, border);
    switch (border.type) {
    case GhostFrame::kColour: painter.Lines(0, 0, border.left.colour1); break;
    case GhostFrame::kRoundedColour:
    case GhostFrame::kRoundedColourInset:
        if (closed && surface.Density() > 1.0) {
            PaintRoundRings(surface, border);
        } else {
            PaintRoundedFrame(painter, border);
        }
        break;
    case GhostFrame::kShaded: PaintShadedFrame(painter, border.left.colour1); break;
    default: PaintUserFrame(surface, border); break;
    }
}
