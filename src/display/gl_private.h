// For gl.cpp and the tests of this folder.
#pragma once

#include <string>
#include <string_view>

// Whether a context with this GL_VERSION ("2.1 Mesa 22", "OpenGL ES 3.2 ...") is at least OpenGL 2.1.
// False with a message otherwise.
[[nodiscard]] bool GlVersionServes(std::string_view version, std::string& error);

// Whether `name` is in a list of extensions as a whole word.
[[nodiscard]] bool GlHasWord(std::string_view list, std::string_view name);

// Forces textures with powers of two on a driver that does not need them. GlStart undoes it.
void GlForbidOddTextureSizes();
