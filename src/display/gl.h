// What the current OpenGL context can do, and the 2D projection of everything on the screen but the
// room.
//
// The front owns the window, its context and the entry points. The program draws with the fixed
// pipeline of OpenGL 2.1 (compatibility profile); contexts that lack it are refused here, once.
//
// Owner: the main thread, which owns the context, as everything in this folder does.
// Order: GlStart once when the context is current, before anything else of this folder.
#pragma once

#include <cstdint>
#include <string>

struct GL_CAPABILITIES {
    bool anyTextureSize = false;    // sizes need not be powers of two
    bool mipmaps = false;           // the driver makes smaller levels by itself on each upload
    float largestAnisotropy = 0.0f; // 0 without the extension
    std::string renderer;           // the driver's name for itself
    uint32_t largestTexture = 0;    // texels of one side
};

// Reads version, extensions and limits of the current context. False, with the reason in `error`, if
// there is no context or it offers less than OpenGL 2.1 with the fixed pipeline.
[[nodiscard]] bool GlStart(std::string& error);

// What GlStart found; all zero before.
[[nodiscard]] const GL_CAPABILITIES& Gl();

// Viewport over the whole back buffer and coordinates in its pixels, (0, 0) at the top left. Turns off
// everything that the room may have left on: depth, lighting, culling, blending, texture matrix.
void Ortho2D(uint32_t screenWidth, uint32_t screenHeight);
