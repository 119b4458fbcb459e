// The one rule of blending: source over destination, with 8-bit values and integer division.
//
// The colour channels are shifted by 8, that is divided by 256 and not by 255, so an opaque source
// lands one step short of itself over an opaque ground. This slight dimming is part of the look.
#pragma once

#include <cstdint>

// Colours are 0xAARRGGBB.
[[nodiscard]] constexpr uint32_t BlendPixel(uint32_t destination, uint32_t source) {
    const uint32_t sourceAlpha = source >> 24;
    const uint32_t destinationAlpha = destination >> 24;
    if (destinationAlpha == 0) {
        return source;
    }
    if (sourceAlpha == 0) {
        return destination;
    }
    const uint32_t alpha = (255 - sourceAlpha) * destinationAlpha / 255 + sourceAlpha;
    const uint32_t weight = sourceAlpha * 255 / alpha;
    const auto channel = [&](uint32_t shift) {
        const uint32_t from = source >> shift & 0xFF;
        const uint32_t over = destination >> shift & 0xFF;
        return (from * weight + over * (255 - weight)) >> 8 << shift;
    };
    return alpha << 24 | channel(16) | channel(8) | channel(0);
}

// The colour with its alpha scaled by a coverage of 0 to 255.
[[nodiscard]] constexpr uint32_t WithCoverage(uint32_t colour, uint32_t coverage) {
    return (colour & 0x00FFFFFF) | (colour >> 24) * coverage / 255 << 24;
}
