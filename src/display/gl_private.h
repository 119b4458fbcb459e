// What the tests of this folder reach besides gl.h.
#pragma once

#include <string>
#include <string_view>

// Whether a context that calls itself `version` (GL_VERSION: "2.1 Mesa 22", "OpenGL ES 3.2 ...") is
// at least OpenGL 2.1. False with a message otherwise.
[[nodiscard]] bool GlVersionServes(std::string_view version, std::string& error);

// Whether `name` stands in a list of extensions as a whole word.
[[nodiscard]] bool GlHasWord(std::string_view list, std::string_view name);

// Makes textures with powers of two on a driver that needs none. GlStart undoes it.
void GlForbidOddTextureSizes();
