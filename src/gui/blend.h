// The one rule of blending: source over destination, with 8-bit values and integer division.
//
// The colour channels are shifted by 8, that is divided by 256 and not by 255, so an opaque source
// lands one step short of itself over an opaque ground. This slight dimming is part of the look.
#pragma once

#include <algorithm>
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
    uint32_t alpha = 255;
    uint32_t weight = sourceAlpha;
    if (destinationAlpha != 255) { // else both divisions come to this
        alpha = (255 - sourceAlpha) * destinationAlpha / 255 + sourceAlpha;
        weight = sourceAlpha * 255 / alpha;
    }
    // Red and blue at once: neither product leaves its 16 bits.
    constexpr uint32_t kPair = 0x00FF00FF;
    const uint32_t rest = 255 - weight;
    const uint32_t redBlue = (source & kPair) * weight + (destination & kPair) * rest;
    const uint32_t green = (source >> 8 & 0xFF) * weight + (destination >> 8 & 0xFF) * rest;
    return alpha << 24 | (redBlue >> 8 & kPair) | (green & 0xFF00);
}

// One colour over a row. What lies below is mostly the same again and again.
inline void BlendRun(uint32_t* to, int32_t count, uint32_t argb) {
    if (argb >> 24 == 255) {
        const uint32_t over = BlendPixel(0xFF000000, argb);
        for (int32_t i = 0; i < count; ++i) {
            to[i] = to[i] >> 24 == 0 ? argb : over;
        }
        return;
    }
    constexpr int32_t kBlock = 16;
    uint32_t below = 0;
    uint32_t blended = argb;
    const auto blend = [&](uint32_t& pixel) {
        if (pixel != below) {
            below = pixel;
            blended = BlendPixel(below, argb);
        }
        pixel = blended;
    };
    int32_t at = 0;
    for (; at + kBlock <= count; at += kBlock) {
        uint32_t different = 0;
        for (int32_t i = 0; i < kBlock; ++i) {
            different |= to[at + i] ^ below;
        }
        for (int32_t i = 0; i < kBlock; ++i) {
            if (different == 0) {
                to[at + i] = blended;
            } else {
                blend(to[at + i]);
            }
        }
    }
    for (; at < count; ++at) {
        blend(to[at]);
    }
}

// A row over another. Most of them lie on nothing.
inline void BlendRow(uint32_t* to, const uint32_t* from, int32_t count) {
    constexpr int32_t kBlock = 16;
    int32_t at = 0;
    for (; at + kBlock <= count; at += kBlock) {
        uint32_t below = 0;
        for (int32_t i = 0; i < kBlock; ++i) {
            below |= to[at + i];
        }
        if (below >> 24 == 0) {
            std::copy_n(from + at, kBlock, to + at);
            continue;
        }
        for (int32_t i = 0; i < kBlock; ++i) {
            to[at + i] = BlendPixel(to[at + i], from[at + i]);
        }
    }
    for (; at < count; ++at) {
        to[at] = BlendPixel(to[at], from[at]);
    }
}

// The colour with its alpha scaled by a coverage of 0 to 255.
[[nodiscard]] constexpr uint32_t WithCoverage(uint32_t colour, uint32_t coverage) {
    return (colour & 0x00FFFFFF) | (colour >> 24) * coverage / 255 << 24;
}
