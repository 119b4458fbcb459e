// Textures: the record that a GUI window, a television and a picture file share.
//
// Units: texels. `width` and `height` are the used area, at the top left of the allocated one, and are
// set by the owner before CreateTexture. The two differ only on drivers that need powers of two;
// drawing code scales its coordinates by used / allocated.
// Owner: the record's owner frees it with DestroyTexture; a copy of a record owns nothing.
// Pins: 32-bit pixels, blue lowest, green, red, alpha.
#pragma once

#include <cstddef>
#include <cstdint>

struct TEXTURE_RECORD {
    uint32_t width; // used
    uint32_t height;
    uint32_t texWidth; // allocated
    uint32_t texHeight;
    uint32_t glTexture;    // GL name; 0 if there is no texture
    uint8_t needsRecreate; // the used size has changed: create again before the next upload
    uint8_t mipmapped;     // smaller levels may be made and used
    uint8_t reserved[2];
    uint32_t spare;
};
static_assert(sizeof(TEXTURE_RECORD) == 28);
static_assert(offsetof(TEXTURE_RECORD, glTexture) == 16);
static_assert(offsetof(TEXTURE_RECORD, needsRecreate) == 20);

// Allocates the texture for the record's used size and leaves it bound; frees the record's old texture.
// False, without a texture, for a size of 0 or one that the driver refuses. The used area is undefined
// before the first upload.
[[nodiscard]] bool CreateTexture(TEXTURE_RECORD& record, bool mipmapped);

// Frees the texture; the sizes stay. Harmless without one.
void DestroyTexture(TEXTURE_RECORD& record);

// Writes the top left `width` x `height` of the used area from rows of `stride` pixels and leaves the
// texture bound. False, with nothing written, if there is no texture or the area is larger than it.
bool UploadTexture(const TEXTURE_RECORD& record, const uint32_t* pixels, uint32_t width,
                   uint32_t height, uint32_t stride);

// Sets the bound texture's filters, without smaller levels.
enum class TextureFilter : uint8_t { kNearest, kLinear };
void SetTextureFilter(TextureFilter filter);
