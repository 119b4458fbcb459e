// GUI_BITMAP: an image of the theme. It has a size in units and, for dense screens, more pixels than
// units.
//
// Owner: whoever loaded it; the store keeps the theme's until the program ends.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

struct GUI_BITMAP {
    int32_t width = 0; // in units
    int32_t height = 0;
    double density = 1.0; // pixels to a unit
    int32_t pixelWidth = 0;
    int32_t pixelHeight = 0;
    std::vector<uint32_t> pixels; // ARGB, rows of pixelWidth
};

// Decodes a PNG into ARGB pixels. False, and both sizes 0, for anything else.
[[nodiscard]] bool LoadEmbeddedImage(std::span<const uint8_t> png, std::vector<uint32_t>& pixels,
                                     uint32_t& width, uint32_t& height);

// The images that a theme may name. A PNG has several pixels to a unit each way, enough for the densest
// display, and is reduced to the display's density when it is loaded. A large picture does with fewer of
// them, one that is drawn in many sizes has more.
inline constexpr int32_t kImagePixelsPerUnit = 4;

struct GUI_IMAGE_ROW {
    std::string_view name; // with its "#"
    std::span<const uint8_t> png;
    int32_t pixelsPerUnit = kImagePixelsPerUnit;
};

// The table that LoadThemeBitmap looks names up in; the rows must stay.
void SetThemeImages(std::span<const GUI_IMAGE_ROW> rows);

// The image of that name, compared whole. It is decoded with the first call and stays until the program
// ends; all that name it share it. Null for a name that is not in the table or an image that is damaged.
[[nodiscard]] const GUI_BITMAP* LoadThemeBitmap(std::string_view name);

// The same drawn in another size, in units: from all of the image's pixels, so that it is as sharp as they are.
[[nodiscard]] const GUI_BITMAP* LoadThemeBitmap(std::string_view name, int32_t width,
                                                int32_t height);

// Reduces every bitmap that has been loaded to another density, in place. Nothing is decoded again.
void RefitThemeBitmaps(double density);

// The pixels reduced to another size by the mean of the area that each new pixel covers, weighted by
// alpha.
[[nodiscard]] std::vector<uint32_t> ReducePixels(std::span<const uint32_t> pixels, int32_t width,
                                                 int32_t height, int32_t newWidth,
                                                 int32_t newHeight);
