#include "display/screen_reader.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstddef>

namespace {

constexpr uint32_t kOpaque = 0xFF000000;

} // namespace

std::vector<uint32_t> ReadScreen(uint32_t width, uint32_t height) {
    std::vector<uint32_t> pixels(size_t{width} * height);
    if (pixels.empty()) {
        return pixels;
    }
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_BGRA,
                 GL_UNSIGNED_BYTE, pixels.data());
    // OpenGL counts rows from the bottom.
    for (uint32_t row = 0; row < height / 2; ++row) {
        uint32_t* upper = pixels.data() + size_t{row} * width;
        uint32_t* lower = pixels.data() + size_t{height - 1 - row} * width;
        std::swap_ranges(upper, upper + width, lower);
    }
    for (uint32_t& pixel : pixels) {
        pixel |= kOpaque;
    }
    return pixels;
}
