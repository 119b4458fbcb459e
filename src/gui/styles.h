// The style records of the theme. A control copies the record that its style name selects when it is
// made; nothing is looked up while it paints.
//
// A zeroed record is one without a style: fills of a transparent colour, the default font.
// The records are shallow: bitmaps and fonts that they point to live until the program ends.
// Units: those of the virtual screen; colours are 0xAARRGGBB.
#pragma once

#include "gui/geometry.h"

#include <array>
#include <cstdint>

class CGhostFont;
struct GUI_BITMAP;

enum class GhostFill : uint8_t {
    kColour = 0,
    kGradientHorizontal = 1,
    kGradientVertical = 2,
    kNone = 3,
    kBitmap = 4,
    kBitmapFlipY = 5,
    kBitmapFlipX = 6,
    kBitmapSmartHorizontal = 7,
    kBitmapSmartVertical = 8,
    kBitmapStretch = 9,
    kBitmapRepeatY = 11,
    kBitmapRepeatXY = 12,
};

struct GhostTexture {
    GhostFill type = GhostFill::kColour;
    uint32_t colour1 = 0;
    uint32_t colour2 = 0;
    GUI_EDGES rect;  // margins of the smart fills
    GUI_EDGES fill1; // read from the file, used by no fill
    GUI_EDGES fill2;
    const GUI_BITMAP* bitmap = nullptr;
};

enum class GhostFrame : uint32_t {
    kNone = 0,
    kUser = 1,
    kColour = 2,
    kRoundedColour = 3,
    kRoundedColourInset = 4,
    kShaded = 6, // set by code alone
};

struct GhostBorderStyle {
    GUI_EDGES thickness;
    GhostFrame type = GhostFrame::kNone;
    GhostTexture left;
    GhostTexture top;
    GhostTexture right;
    GhostTexture bottom;
};

// Bits of GhostTextStyle::align. Without one in an axis the text is in the middle.
inline constexpr uint32_t kAlignLeft = 1;
inline constexpr uint32_t kAlignRight = 2;
inline constexpr uint32_t kAlignTop = 4;
inline constexpr uint32_t kAlignBottom = 8;

struct GhostTextStyle {
    GhostTexture bg;
    GhostTexture bg2;
    GhostBorderStyle border;
    uint32_t textColour = 0;
    uint32_t textOutlineColour = 0; // 0: no outline
    GUI_EDGES textRect;             // taken off the rectangle that the text is placed in
    uint32_t align = 0;
    int16_t xOffset = 0;
    int16_t yOffset = 0;
    CGhostFont* font = nullptr; // null: the default font
};

struct GhostButtonStyle {
    // 0 normal, 1 hot, 2 pressed, 3 disabled, 4 a state of any other name.
    std::array<GhostTextStyle, 5> states;
};

struct GhostEditStyle {
    std::array<GhostTextStyle, 3> states; // 0 normal, 1 hot, 2 read-only
};

struct GhostListStyle {
    GhostTextStyle bg;
    GhostTextStyle itemNormal;
    GhostTextStyle itemHot;
    GhostTextStyle itemSelected;
    GhostTextStyle item2Normal; // of odd rows
    GhostTextStyle item2Hot;
    GhostTextStyle item2Selected;
    GhostTexture imageList;
};

struct GhostListViewStyle {
    int32_t headerHeight = 0;
    int32_t itemHeight = 0;
    GhostListStyle list;
    GhostButtonStyle header;
    GhostEditStyle edit;
};

struct GhostScrollbarStyle {
    int32_t verWidth = 0;
    int32_t verArrowButtonHeight = 0;
    int32_t verThumbMinHeight = 0;
    int32_t horHeight = 0;
    int32_t horArrowButtonWidth = 0;
    int32_t horThumbMinWidth = 0;
    GhostTextStyle bg;
    GhostButtonStyle verTop;
    GhostButtonStyle verMid;
    GhostButtonStyle verBottom;
    GhostButtonStyle horLeft; // no theme can fill these three
    GhostButtonStyle horMid;
    GhostButtonStyle horRight;
};

struct GhostDropListStyle {
    GhostTextStyle bg;
    GhostButtonStyle button;
    GhostListStyle list; // only inherited
};

// Paints a fill into a rectangle. Nothing for an empty rectangle or a bitmap fill without a bitmap.
class CGhostSurface;
void PaintFill(CGhostSurface& surface, const GhostTexture& texture, const GUI_RECT& target);

// Paints a window's frame around the whole of its surface. A side of thickness 0 is left out.
void PaintFrame(CGhostSurface& surface, const GhostBorderStyle& border);
