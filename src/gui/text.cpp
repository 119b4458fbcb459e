#include "gui/text.h"

#include "gui/font.h"
#include "gui/styles.h"
#include "gui/surface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr int32_t kStampUnits = 7; // across
constexpr double kStampRadius = 3.2;
constexpr double kStampStrength = 130.0; // coverage in its middle; many stamps lie over each other

int32_t UnitsOf(int64_t advances) {
    return static_cast<int32_t>((advances + 63) >> 6);
}

// A soft round mask with which a glyph's outline is drawn. On dense screens it is larger, and weaker
// since more pixels of a glyph stamp it.
struct STAMP {
    int32_t side = 0;
    std::vector<uint8_t> coverage;

    explicit STAMP(double density) {
        side = std::max(3, static_cast<int32_t>(std::floor(kStampUnits * density)) | 1);
        coverage.resize(static_cast<size_t>(side) * static_cast<size_t>(side));
        const double middle = (side - 1) / 2.0;
        const double radius = kStampRadius * side / kStampUnits;
        const double strength = kStampStrength / std::max(1.0, density);
        for (int32_t y = 0; y < side; ++y) {
            for (int32_t x = 0; x < side; ++x) {
                const double distance = std::hypot(x - middle, y - middle) / radius;
                const double soft = std::max(0.0, 1.0 - distance);
                coverage[static_cast<size_t>(y) * static_cast<size_t>(side) +
                         static_cast<size_t>(x)] =
                    static_cast<uint8_t>(std::lround(strength * soft * soft));
            }
        }
    }
};

const STAMP& StampFor(double density) {
    static STAMP stamp(1.0);
    static double stampDensity = 1.0;
    if (density != stampDensity) {
        stamp = STAMP(density);
        stampDensity = density;
    }
    return stamp;
}

void StampGlyph(CGhostSurface& surface, const GUI_GLYPH& glyph, int32_t x, int32_t y,
                uint32_t colour) {
    const STAMP& stamp = StampFor(surface.Density());
    const int32_t half = stamp.side / 2;
    for (int32_t row = 0; row < glyph.height; ++row) {
        for (int32_t column = 0; column < glyph.width; ++column) {
            if (glyph.coverage[row * glyph.pitch + column] != 0) {
                surface.StampMask(x + column - half, y + row - half, stamp.coverage.data(),
                                  stamp.side, stamp.side, stamp.side, colour);
            }
        }
    }
}

// Calls `draw` with each glyph and its place in pixels of the surface.
template <typename Draw>
void ForGlyphs(const CGhostSurface& surface, CGhostFont& font, std::wstring_view text, int32_t left,
               int32_t baseLine, Draw draw) {
    int64_t pen = int64_t{left} * 64;
    const int32_t base = surface.PixelY(baseLine);
    for (const wchar_t character : text) {
        const GUI_GLYPH glyph = font.Glyph(character, surface.Density());
        if (glyph.coverage != nullptr) {
            draw(glyph, surface.PixelX(static_cast<double>(pen) / 64.0) + glyph.left,
                 base - glyph.top);
        }
        pen += font.Advance(character);
    }
}

int32_t Aligned(uint32_t align, uint32_t low, uint32_t high, int32_t extent, int32_t text) {
    if ((align & low) != 0) {
        return 0;
    }
    return (align & high) != 0 ? extent - text : (extent - text) / 2;
}

} // namespace

GUI_TEXT_SIZE MeasureText(CGhostFont* font, std::wstring_view text) {
    CGhostFont* const used = CGhostFontManager::Get().OrDefault(font);
    return {MeasurePrefix(font, text, text.size()),
            used != nullptr ? used->Ascender() - used->Descender() : 0};
}

int32_t MeasurePrefix(CGhostFont* font, std::wstring_view text, size_t count) {
    CGhostFont* const used = CGhostFontManager::Get().OrDefault(font);
    int64_t sum = 0;
    for (size_t i = 0; used != nullptr && i < std::min(count, text.size()); ++i) {
        sum += used->Advance(text[i]);
    }
    return UnitsOf(sum);
}

size_t FitText(CGhostFont* font, std::wstring_view text, int32_t width) {
    CGhostFont* const used = CGhostFontManager::Get().OrDefault(font);
    int64_t sum = 0;
    size_t count = 0;
    while (used != nullptr && count < text.size()) {
        const int32_t advance = used->Advance(text[count]);
        if (sum + advance / 2 > int64_t{width} * 64) {
            break;
        }
        sum += advance;
        ++count;
    }
    return count;
}

size_t FitTextEnd(CGhostFont* font, std::wstring_view text, int32_t width) {
    CGhostFont* const used = CGhostFontManager::Get().OrDefault(font);
    int64_t sum = 0;
    size_t count = 0;
    while (used != nullptr && count < text.size()) {
        sum += used->Advance(text[text.size() - 1 - count]);
        if (sum > int64_t{width} * 64) {
            break;
        }
        ++count;
    }
    return count;
}

// NOLINTNEXTLINE(readability-function-size): all that a text can have
void DrawText(CGhostSurface& surface, CGhostFont* font, std::wstring_view text, uint32_t colour,
              uint32_t outlineColour, uint32_t align, const GUI_RECT& rect, int32_t xOffset,
              int32_t yOffset) {
    CGhostFont* const used = CGhostFontManager::Get().OrDefault(font);
    // Nothing is drawn for a rectangle that is wholly off the surface. An empty one on it has a place, around
    // which the text lies.
    const GUI_RECT held{rect.x, rect.y, std::max(rect.width, 1), std::max(rect.height, 1)};
    if (used == nullptr || text.empty() ||
        Intersection(held, {0, 0, surface.Width(), surface.Height()}).Empty()) {
        return;
    }
    const GUI_TEXT_SIZE size = MeasureText(used, text);
    const int32_t left =
        rect.x + xOffset + Aligned(align, kAlignLeft, kAlignRight, rect.width, size.width);
    const int32_t top =
        rect.y + yOffset + Aligned(align, kAlignTop, kAlignBottom, rect.height, size.height);
    const int32_t baseLine = top + used->Ascender();
    if (outlineColour != 0) {
        const uint32_t solid = outlineColour | 0xFF000000;
        ForGlyphs(surface, *used, text, left, baseLine,
                  [&](const GUI_GLYPH& glyph, int32_t x, int32_t y) {
                      StampGlyph(surface, glyph, x, y, solid);
                  });
    }
    ForGlyphs(
        surface, *used, text, left, baseLine, [&](const GUI_GLYPH& glyph, int32_t x, int32_t y) {
            surface.StampMask(x, y, glyph.coverage, glyph.width, glyph.height, glyph.pitch, colour);
        });
}

void PaintText(CGhostSurface& surface, const GhostTextStyle& style, std::wstring_view text,
               const GUI_RECT& rect) {
    PaintFill(surface, style.bg, rect);
    const GUI_RECT inner{rect.x + style.textRect.left, rect.y + style.textRect.top,
                         rect.width - style.textRect.left - style.textRect.right,
                         rect.height - style.textRect.top - style.textRect.bottom};
    DrawText(surface, style.font, text, style.textColour, style.textOutlineColour, style.align,
             inner, style.xOffset, style.yOffset);
}
