// The entry points of OpenGL that are not linked but looked up by name: shaders and vertex buffers.
//
// Thread: main, with the context current. A new context needs a new lookup.
#pragma once

#include <GL/gl.h>
#include <GL/glext.h>

#include <functional>

// The address of an entry point, null if there is none: the window library's lookup.
using GlLoader = std::function<void*(const char* name)>;

struct GL_FUNCTIONS {
    PFNGLCREATEPROGRAMPROC createProgram = nullptr;
    PFNGLATTACHSHADERPROC attachShader = nullptr;
    PFNGLLINKPROGRAMPROC linkProgram = nullptr;
    PFNGLUSEPROGRAMPROC useProgram = nullptr; // null: no shader code runs
    PFNGLCREATESHADERPROC createShader = nullptr;
    PFNGLSHADERSOURCEPROC shaderSource = nullptr;
    PFNGLCOMPILESHADERPROC compileShader = nullptr;
    PFNGLGETPROGRAMINFOLOGPROC getProgramInfoLog = nullptr;
    PFNGLGETSHADERINFOLOGPROC getShaderInfoLog = nullptr;
    PFNGLGETUNIFORMLOCATIONPROC getUniformLocation = nullptr;
    PFNGLUNIFORM1IPROC uniform1i = nullptr;
    PFNGLUNIFORM1FPROC uniform1f = nullptr;
    PFNGLUNIFORM4FPROC uniform4f = nullptr;
    PFNGLUNIFORMMATRIX4FVPROC uniformMatrix4fv = nullptr;

    // Shaders run without these.
    PFNGLACTIVETEXTUREPROC activeTexture = nullptr;
    PFNGLGETPROGRAMIVPROC getProgramiv = nullptr;
    PFNGLDELETEPROGRAMPROC deleteProgram = nullptr;
    PFNGLDELETESHADERPROC deleteShader = nullptr;

    // Either all four or none.
    PFNGLGENBUFFERSPROC genBuffers = nullptr;
    PFNGLBINDBUFFERPROC bindBuffer = nullptr;
    PFNGLBUFFERDATAPROC bufferData = nullptr;
    PFNGLDELETEBUFFERSPROC deleteBuffers = nullptr;
};

[[nodiscard]] GL_FUNCTIONS LoadGlFunctions(const GlLoader& loader);
