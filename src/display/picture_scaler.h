// Picture scalers: filters that enlarge an emulated picture of small, square, hard-edged pixels before
// it is drawn on a large screen.
//
// Units: a pixel is a word 0xFFRRGGBB, blue lowest; rows are packed, top row first. Results are opaque:
// their top byte is 0xFF whatever the source has there.
// Owner: both buffers are the caller's and don't overlap; nothing is kept between calls and nothing is
// allocated. Any thread.
// Kinds: the edge kinds read outlines. Where outlines climb in steps, the steps become the slanted line
// that they stand for; whatever is drawn square on purpose (dots, boxes, bars, dithering) stays square.
// The soft kind rebuilds brightness as a smooth surface and steepens its edges, as a television shows it.
// Every kind treats left and right, up and down, rows and columns alike, to the last bit.
// Reach: a result's channels lie within those of the source pixels at most one away (edge kinds) or
// three away (soft kind). Outside the picture its border pixels go on.
#pragma once

#include <cstdint>

// The numbers are those that the display setting holds.
enum class PictureScaler : uint8_t {
    kNone = 0,   // a copy
    kEdge2x = 1, // outlines straightened, twice the size
    kEdge4x = 2, // outlines straightened, four times the size
    kSoft4x = 3, // smooth, four times the size
};

// Target pixels for one source pixel in each direction: 1, 2, 4, 4.
[[nodiscard]] uint32_t ScalerFactor(PictureScaler scaler);

// Scales `width` times `height` pixels. The target has width times height times the factor squared
// pixels. Without a row or column nothing is read or written.
void ScalePicture(PictureScaler scaler, const uint32_t* source, uint32_t width, uint32_t height,
                  uint32_t* target);
