// An image of any bytes.
#include "gui/bitmap.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint32_t> pixels;
    uint32_t width = 0;
    uint32_t height = 0;
    const bool decoded = LoadEmbeddedImage({data, size}, pixels, width, height);
    if (decoded != (width != 0 && height != 0) || pixels.size() != size_t{width} * height) {
        std::abort();
    }
    constexpr uint32_t kSmall = 512;
    if (decoded && width <= kSmall && height <= kSmall) {
        const auto reduced =
            ReducePixels(pixels, static_cast<int32_t>(width), static_cast<int32_t>(height), 7, 5);
        if (reduced.size() != size_t{7} * 5) {
            std::abort();
        }
    }
    return 0;
}
