// Eight and sixteen pixels of a line at once, for processors with vectors of 32 bytes. On others `wide` of the
// chip stays 0, and the plain loops beside the callers do the same.
#pragma once

#include "megadrive/md_vdp.h"

#if defined(__x86_64__) && defined(__GNUC__)
#define OMBRELUNE_MD_VDP_WIDE [[gnu::target("avx2")]]

#include <immintrin.h>

inline bool MdVdpHasWide() {
    return __builtin_cpu_supports("avx2") != 0;
}

namespace md_vdp_wide {

using Bytes = __m128i;

OMBRELUNE_MD_VDP_WIDE inline Bytes Load8(const void* bytes) {
    return _mm_loadl_epi64(static_cast<const __m128i*>(bytes));
}

OMBRELUNE_MD_VDP_WIDE inline Bytes Load16(const void* bytes) {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

OMBRELUNE_MD_VDP_WIDE inline __m256i Load32(const void* bytes) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(bytes));
}

OMBRELUNE_MD_VDP_WIDE inline void Store8(void* bytes, Bytes value) {
    _mm_storel_epi64(static_cast<__m128i*>(bytes), value);
}

OMBRELUNE_MD_VDP_WIDE inline void Store16(void* bytes, Bytes value) {
    _mm_storeu_si128(static_cast<__m128i*>(bytes), value);
}

// The pixels of two patterns as bytes, from left to right; `mirrored` is 1 if they are shown from right to left.
OMBRELUNE_MD_VDP_WIDE inline Bytes Pixels(uint32_t left, uint32_t right, uint32_t mirrored) {
    // Each byte twice, for its two pixels; the left one is in the upper half.
    alignas(16) static constexpr int8_t kOrders[2][16] = {
        {3, 3, 2, 2, 1, 1, 0, 0, 7, 7, 6, 6, 5, 5, 4, 4},
        {0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7}
    };
    // Where the upper half is shown.
    alignas(16) static constexpr uint16_t kUppers[2][8] = {
        {0x00FF, 0x00FF, 0x00FF, 0x00FF, 0x00FF, 0x00FF, 0x00FF, 0x00FF},
        {0xFF00, 0xFF00, 0xFF00, 0xFF00, 0xFF00, 0xFF00, 0xFF00, 0xFF00}
    };
    const Bytes bytes =
        _mm_shuffle_epi8(_mm_cvtsi64_si128(static_cast<int64_t>(uint64_t{right} << 32 | left)),
                         Load16(kOrders[mirrored]));
    const Bytes halves =
        _mm_blendv_epi8(bytes, _mm_srli_epi16(bytes, 4), Load16(kUppers[mirrored]));
    return _mm_and_si128(halves, _mm_set1_epi8(0x0F));
}

// The sixteen colours of a palette, their low and their high bytes.
struct Palette {
    Bytes low;
    Bytes high;
};

// `colours` are the first of the palette.
OMBRELUNE_MD_VDP_WIDE inline Palette LoadPalette(const uint16_t* colours) {
    const Bytes left = Load16(colours);
    const Bytes right = Load16(colours + 8);
    const Bytes lowBytes = _mm_set1_epi16(0x00FF);
    return {_mm_packus_epi16(_mm_and_si128(left, lowBytes), _mm_and_si128(right, lowBytes)),
            _mm_packus_epi16(_mm_srli_epi16(left, 8), _mm_srli_epi16(right, 8))};
}

// The colours of the first eight pixels, and of the other eight.
OMBRELUNE_MD_VDP_WIDE inline Bytes Colours(const Palette& palette, Bytes pixels) {
    return _mm_unpacklo_epi8(_mm_shuffle_epi8(palette.low, pixels),
                             _mm_shuffle_epi8(palette.high, pixels));
}

OMBRELUNE_MD_VDP_WIDE inline Bytes OtherColours(const Palette& palette, Bytes pixels) {
    return _mm_unpackhi_epi8(_mm_shuffle_epi8(palette.low, pixels),
                             _mm_shuffle_epi8(palette.high, pixels));
}

// The colours of sixteen dots, each from the buffer of the layer on top.
OMBRELUNE_MD_VDP_WIDE inline __m256i TopColours(const MD_VDP& vdp, uint32_t x) {
    // Buffers by layer: 0 the backdrop, 1 and 2 the planes, 3 the window, 4 the sprites.
    const Bytes buffers = _mm_shuffle_epi8(
        _mm_setr_epi8(0, 1, 2, 3, 4, 1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0), Load16(&vdp.layerCode[x]));
    const __m256i buffer = _mm256_cvtepi8_epi16(buffers);
    const uint16_t* const lines[] = {&vdp.planeBLine[x], &vdp.planeALine[x], &vdp.windowLine[x],
                                     &vdp.spriteLine[x]};
    __m256i colours = Load32(&vdp.backdropLine[x]);
    for (int i = 0; i < 4; ++i) {
        const __m256i isOnTop =
            _mm256_cmpeq_epi16(buffer, _mm256_set1_epi16(static_cast<int16_t>(i + 1)));
        colours = _mm256_blendv_epi8(colours, Load32(lines[i]), isOnTop);
    }
    return colours;
}

// Eight pixels of the picture. The plain colour table has the same eight levels in all three parts of a colour.
OMBRELUNE_MD_VDP_WIDE inline __m256i PlainPixels(Bytes colours) {
    constexpr auto kLevel = [](int threeBits) { return static_cast<char>(threeBits * 248 / 7); };
    const __m256i levels = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(kLevel(0), kLevel(1), kLevel(2), kLevel(3), kLevel(4), kLevel(5), kLevel(6),
                      kLevel(7), static_cast<char>(0xFF), 0, 0, 0, 0, 0, 0, 0));
    const __m256i wide = _mm256_cvtepu16_epi32(colours);
    const __m256i blue = _mm256_and_si256(wide, _mm256_set1_epi32(0x7));
    const __m256i green = _mm256_and_si256(_mm256_slli_epi32(wide, 5), _mm256_set1_epi32(0x700));
    const __m256i red = _mm256_and_si256(_mm256_slli_epi32(wide, 10), _mm256_set1_epi32(0x70000));
    const __m256i opaque = _mm256_set1_epi32(0x08000000); // the ninth level
    return _mm256_shuffle_epi8(
        levels, _mm256_or_si256(_mm256_or_si256(blue, green), _mm256_or_si256(red, opaque)));
}

} // namespace md_vdp_wide

#else
inline bool MdVdpHasWide() {
    return false;
}
#endif
