// CGhostSurface: the picture of one window, painted in software.
//
// Units: whoever paints counts in units of the virtual screen. `density` is the number of pixels to a
//   unit. Both edges of whatever is painted are rounded to pixels after scaling, at their place on the
//   screen, so neighbours that touch in units touch in pixels, whichever surface they are on. At density
//   1 a unit is a pixel.
// Pixels: ARGB with alpha in the top byte, rows of `Stride()` pixels. Memory for them is taken when something is painted
//   that is not of one colour all over. Without that memory the surface stays as it is.
// Origin: painting happens in coordinates of the rectangle pushed last, and cannot leave it.
// Owner: the manager, one for each window of a size above 0. Thread: the one that paints.
#pragma once

#include "gui/geometry.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

struct GUI_BITMAP; // gui/bitmap.h

// The nearest pixel edge of an edge in units.
[[nodiscard]] int32_t PixelEdge(int32_t units, double density);

// In pixels, from the surface's corner.
struct PIXEL_RECT {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    [[nodiscard]] bool Empty() const { return right <= left || bottom <= top; }
    [[nodiscard]] bool operator==(const PIXEL_RECT& other) const = default;
};

class CGhostSurface {
public:
    // `place` is the window's rectangle on the screen, in units. False if it has none, or is larger than any screen.
    [[nodiscard]] bool Create(const GUI_RECT& place, double density);

    [[nodiscard]] int32_t Width() const { return area.width; } // of the present origin, in units
    [[nodiscard]] int32_t Height() const { return area.height; }
    [[nodiscard]] double Density() const { return density; }
    // What can be painted of the present origin's rectangle, in its units: rounded outwards, so that it may
    // have a unit too many on each side.
    [[nodiscard]] GUI_RECT Visible() const;

    // The colour that the whole surface has. Without a value its pixels are there, and may differ.
    [[nodiscard]] std::optional<uint32_t> OneColour() const { return oneColour; }
    // Of the whole surface, also of one colour. Null without memory.
    [[nodiscard]] uint32_t* Pixels() { return MakePixels() ? pixels.get() : nullptr; }
    [[nodiscard]] int32_t Stride() const { return pixelWidth; } // in pixels
    [[nodiscard]] int32_t PixelWidth() const { return pixelWidth; }
    [[nodiscard]] int32_t PixelHeight() const { return pixelHeight; }

    // Eight deep; after a push too many nothing is painted. Coordinates are those of the rectangle as it
    // was pushed, also where it reaches beyond the one before, which cuts what is painted.
    void PushOrigin(const GUI_RECT& rect);
    void PopOrigin();

    // ---- Painting, in units. What lies outside the origin's rectangle is cut.

    void Clear(); // the whole surface, to transparent
    void SetPixel(int32_t x, int32_t y, uint32_t argb);
    void FillRect(const GUI_RECT& rect, uint32_t argb);
    // End points are clamped into the surface.
    void Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t argb);
    // From the first colour at the left or upper edge, one line past it at its start, to the second.
    void FillGradient(const GUI_RECT& rect, uint32_t from, uint32_t to, bool horizontal);
    void InvertRect(const GUI_RECT& rect);

    enum class Flip : uint8_t { kNone, kTopToBottom, kLeftToRight };
    // The part of a bitmap at (sourceX, sourceY) with the target's size, to the target. What lies
    // outside the bitmap or the surface is cut, the source along with the target.
    void Blit(const GUI_BITMAP& bitmap, const GUI_RECT& target, int32_t sourceX, int32_t sourceY,
              Flip flip = Flip::kNone);
    // Scaled to the target, nearest neighbour.
    void BlitScaled(const GUI_BITMAP& bitmap, const GUI_RECT& target);

    // ---- Painting, in pixels, for text.

    // A coverage mask in one colour, its upper left at a pixel of the whole surface.
    void StampMask(int32_t x, int32_t y, const uint8_t* coverage, int32_t width, int32_t height,
                   int32_t pitch, uint32_t argb);
    // Scales the opacity of what is there by a coverage mask, likewise placed.
    void KeepMask(int32_t x, int32_t y, const uint8_t* coverage, int32_t width, int32_t height);
    // Pixel edge of a place in units, from the surface's left or upper edge. `units` may be a fraction.
    [[nodiscard]] int32_t PixelX(double units) const;
    [[nodiscard]] int32_t PixelY(double units) const;

private:
    struct ORIGIN {
        GUI_RECT area; // on the screen, in units
        PIXEL_RECT clip;
    };

    [[nodiscard]] PIXEL_RECT ToPixels(const GUI_RECT& rect) const; // not clipped
    [[nodiscard]] PIXEL_RECT Clipped(const PIXEL_RECT& rect) const;
    [[nodiscard]] bool MakePixels();
    // Whether a rectangle can be painted, clipped as it is.
    [[nodiscard]] bool MayPaint(const PIXEL_RECT& target) {
        return !target.Empty() && MakePixels();
    }
    [[nodiscard]] uint32_t* Row(int32_t y) {
        return pixels.get() + static_cast<ptrdiff_t>(y) * pixelWidth;
    }
    void LinePixels(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t argb);

    struct FREE {
        void operator()(uint32_t* memory) const;
    };
    // From calloc: the system clears the pages of a large surface when they are painted, not before.
    std::unique_ptr<uint32_t[], FREE> pixels;
    std::optional<uint32_t> oneColour = 0; // which the pixels need not have
    std::array<ORIGIN, 8> stack{};
    size_t stackDepth = 0;
    GUI_RECT area;         // the present origin's rectangle, on the screen, in units
    PIXEL_RECT clip;       // the same, from the surface's corner
    int32_t pixelLeft = 0; // the surface's corner on the screen
    int32_t pixelTop = 0;
    int32_t pixelWidth = 0;
    int32_t pixelHeight = 0;
    double density = 1.0;
};
