#include "display/texture.h"

#include "display/gl.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <bit>
#include <vector>

namespace {

constexpr uint32_t kLargestRounded = 4096; // the largest power of two that sizes are rounded up to
constexpr uint32_t kOpaqueBlack = 0xFF000000;

// The allocated length of a side; 0 if there is no such texture.
uint32_t AllocatedSide(uint32_t used) {
    if (used > Gl().largestTexture) {
        return 0;
    }
    if (Gl().anyTextureSize) {
        return used;
    }
    if (used > kLargestRounded) {
        return 0;
    }
    const uint32_t rounded = std::bit_ceil(used);
    return rounded > Gl().largestTexture ? 0 : rounded;
}

// Bounded, since a lost context may report errors forever.
void ForgetErrors() {
    constexpr int kErrorFlags = 16;
    for (int i = 0; i < kErrorFlags && glGetError() != GL_NO_ERROR; ++i) {
    }
}

void WriteTexels(uint32_t x, uint32_t y, uint32_t width, uint32_t height, const uint32_t* pixels,
                 uint32_t stride) {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(stride));
    glTexSubImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(x), static_cast<GLint>(y),
                    static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_BGRA,
                    GL_UNSIGNED_BYTE, pixels);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}

// Repeats the last column and row in the unused texels next to them, so that a filter that reaches over
// the used area's edge reads the edge's colour.
void RepeatEdges(const TEXTURE_RECORD& record, const uint32_t* pixels, uint32_t stride) {
    const bool right = record.width < record.texWidth;
    const bool below = record.height < record.texHeight;
    const uint32_t* lastColumn = pixels + (record.width - 1);
    const uint32_t* lastRow = pixels + size_t{record.height - 1} * stride;
    if (right) {
        WriteTexels(record.width, 0, 1, record.height, lastColumn, stride);
    }
    if (below) {
        WriteTexels(0, record.height, record.width, 1, lastRow, stride);
    }
    if (right && below) {
        WriteTexels(record.width, record.height, 1, 1, lastRow + (record.width - 1), stride);
    }
}

} // namespace

bool CreateTexture(TEXTURE_RECORD& record, bool mipmapped) {
    DestroyTexture(record);
    record.texWidth = AllocatedSide(record.width);
    record.texHeight = AllocatedSide(record.height);
    record.mipmapped = mipmapped && Gl().mipmaps;
    record.needsRecreate = 0;
    if (record.width == 0 || record.height == 0 || record.texWidth == 0 || record.texHeight == 0) {
        return false;
    }
    ForgetErrors();
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    record.glTexture = name;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    if (record.mipmapped == 0) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    }
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(record.texWidth),
                 static_cast<GLsizei>(record.texHeight), 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    if (glGetError() != GL_NO_ERROR) {
        DestroyTexture(record);
        return false;
    }
    SetTextureFilter(TextureFilter::kNearest);
    if (record.texWidth != record.width || record.texHeight != record.height) {
        const std::vector<uint32_t> black(size_t{record.texWidth} * record.texHeight, kOpaqueBlack);
        WriteTexels(0, 0, record.texWidth, record.texHeight, black.data(), record.texWidth);
    }
    return true;
}

void DestroyTexture(TEXTURE_RECORD& record) {
    if (record.glTexture != 0) {
        const GLuint name = record.glTexture;
        glDeleteTextures(1, &name);
        record.glTexture = 0;
    }
}

bool UploadTexture(const TEXTURE_RECORD& record, const uint32_t* pixels, uint32_t width,
                   uint32_t height, uint32_t stride) {
    if (record.glTexture == 0 || pixels == nullptr || width == 0 || height == 0 || stride < width ||
        width > record.width || height > record.height) {
        return false;
    }
    glBindTexture(GL_TEXTURE_2D, record.glTexture);
    if (width == record.width && height == record.height) {
        RepeatEdges(record, pixels, stride);
    }
    WriteTexels(0, 0, width, height, pixels, stride);
    return true;
}

void SetTextureFilter(TextureFilter filter) {
    const GLint value = filter == TextureFilter::kLinear ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, value);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, value);
}
