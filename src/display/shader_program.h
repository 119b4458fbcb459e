// Compiles and links a shader program of OpenGL 2.1.
//
// Thread: main, with the context current.
#pragma once

#include "display/gl_functions.h"

#include <string>

// The program's name; 0 with the compiler's log in `error`, as a sentence about `what` ("the room's shader").
// `gl` has shaders.
[[nodiscard]] GLuint CompileProgram(const GL_FUNCTIONS& gl, const std::string& vertexText,
                                    const std::string& fragmentText, const std::string& what,
                                    std::string& error);
