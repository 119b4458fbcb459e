// WindowTextures: a texture for every window of the interface, by the window's id, and the quads that
// show them.
//
// Units: pixels of the screen and of the windows' surfaces, which are the same.
// Owner: the main thread, with the context current; End before the context is destroyed.
// Order: Draw in Ortho2D, back to front, after the picture below.
// Failure: with 4,096 windows the table is full. A window without a texture, for that reason or because
//   memory ran out, is not drawn, and calls for it do nothing.
#pragma once

#include "display/texture.h"

#include <cstdint>
#include <unordered_map>

inline constexpr size_t kMostWindowTextures = 4096;

class WindowTextures {
public:
    WindowTextures() = default;
    ~WindowTextures() { End(); }
    WindowTextures(const WindowTextures&) = delete;
    WindowTextures& operator=(const WindowTextures&) = delete;

    void Create(uint32_t id, int32_t width, int32_t height);
    void Destroy(uint32_t id);
    // Uploads the whole surface, rows of `stride` pixels.
    void Upload(uint32_t id, const uint32_t* pixels, int32_t stride);
    // Blends the part of the surface at (sourceX, sourceY) over the screen at (x, y).
    void Draw(uint32_t id, int32_t sourceX, int32_t sourceY, int32_t x, int32_t y, int32_t width,
              int32_t height) const;
    // Of the window, in pixels. False if it has no texture.
    [[nodiscard]] bool Size(uint32_t id, int32_t& width, int32_t& height) const;
    void End();

    [[nodiscard]] size_t Count() const { return textures.size(); }
    // Uploads since the start.
    [[nodiscard]] uint64_t Uploads() const { return uploads; }

private:
    std::unordered_map<uint32_t, TEXTURE_RECORD> textures; // by window id
    uint64_t uploads = 0;
};
