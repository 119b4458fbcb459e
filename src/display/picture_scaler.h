// Picture scalers: filters that enlarge an emulated picture of small, square, hard-edged pixels before
// it is drawn on a large screen.
//
// Units: a pixel is a word 0xFFRRGGBB, blue lowest; rows are packed, top row first. Results are opaque:
// their top byte is 0xFF whatever the source has there.
// Owner: the caller owns both buffers, which don't overlap; nothing is kept between calls or allocated.
// Any thread.
// Kinds: the edge kinds read outlines. Outlines that climb in steps become the slanted line that the
// steps represent; what is drawn square on purpose (dots, boxes, bars, dithering) stays square. The
// soft kind rebuilds brightness as a smooth surface and steepens its edges, as a television shows it.
// Every kind treats left and right, up and down, rows and columns alike, to the last bit.
// Reach: a result's channels lie within those of the source pixels at most one away (edge kinds) or
// three away (soft kind). Outside the picture its border pixels are repeated.
#pragma once

#include <cstdint>

// The values are those of the display setting.
enum class PictureScaler : uint8_t {
    kNone = 0,   // a copy
    kEdge2x = 1, // outlines straightened, twice the size
    kEdge4x = 2, // outlines straightened, four times the size
    kSoft4x = 3, // smooth, four times the size
};

// Target pixels for one source pixel in each direction: 1, 2, 4, 4.
[[nodiscard]] uint32_t ScalerFactor(PictureScaler scaler);

// Scales `width` x `height` pixels; the target has `width` x `height` x factor squared. Does nothing if
// a side is 0.
void ScalePicture(PictureScaler scaler, const uint32_t* source, uint32_t width, uint32_t height,
                  uint32_t* target);
