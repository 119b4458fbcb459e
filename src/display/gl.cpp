#include "display/gl.h"

#include "display/gl_private.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <charconv>
#include <system_error>

namespace {

constexpr int kNeededMajor = 2;
constexpr int kNeededMinor = 1;
constexpr int kFirstProfileMajor = 3; // contexts from 3.2 report their profile
constexpr int kFirstProfileMinor = 2;

GL_CAPABILITIES gCapabilities; // main thread only, like the context it describes

struct GL_VERSION_NUMBER {
    int major = 0;
    int minor = 0;

    [[nodiscard]] bool AtLeast(int wantedMajor, int wantedMinor) const {
        return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
    }
};

// "MAJOR.MINOR", then a vendor's text. Zero for any other text, including that of OpenGL ES.
GL_VERSION_NUMBER ParseVersion(std::string_view text) {
    GL_VERSION_NUMBER version;
    const char* const end = text.data() + text.size();
    const auto [dot, majorError] = std::from_chars(text.data(), end, version.major);
    if (majorError != std::errc{} || dot == end || *dot != '.') {
        return {};
    }
    if (std::from_chars(dot + 1, end, version.minor).ec != std::errc{}) {
        return {};
    }
    return version;
}

std::string_view GlText(GLenum name) {
    const GLubyte* text = glGetString(name);
    return text == nullptr ? std::string_view{} : reinterpret_cast<const char*>(text);
}

bool IsCoreProfile(std::string_view version) {
    if (!ParseVersion(version).AtLeast(kFirstProfileMajor, kFirstProfileMinor)) {
        return false;
    }
    GLint mask = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &mask);
    return (static_cast<GLuint>(mask) & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
}

// Tries it on two by two texels: a driver may accept the parameter and do nothing.
bool MakesMipmaps() {
    constexpr uint32_t kTexels[4]{};
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 2, 0, GL_BGRA, GL_UNSIGNED_BYTE, kTexels);
    GLint width = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 1, GL_TEXTURE_WIDTH, &width);
    glDeleteTextures(1, &name);
    return width == 1;
}

} // namespace

bool GlVersionServes(std::string_view version, std::string& error) {
    if (ParseVersion(version).AtLeast(kNeededMajor, kNeededMinor)) {
        return true;
    }
    error = "the graphics driver offers \"";
    error += version;
    error += "\"; OpenGL 2.1 is needed";
    return false;
}

bool GlHasWord(std::string_view list, std::string_view name) {
    while (!list.empty()) {
        const size_t end = list.find(' ');
        if (list.substr(0, end) == name) {
            return true;
        }
        if (end == std::string_view::npos) {
            return false;
        }
        list.remove_prefix(end + 1);
    }
    return false;
}

void GlForbidOddTextureSizes() {
    gCapabilities.anyTextureSize = false;
}

bool GlStart(std::string& error) {
    gCapabilities = {};
    const std::string_view version = GlText(GL_VERSION);
    if (version.empty()) {
        error = "there is no OpenGL context";
        return false;
    }
    if (!GlVersionServes(version, error)) {
        return false;
    }
    if (IsCoreProfile(version)) {
        error = "the OpenGL context is of the core profile; the compatibility profile is needed";
        return false;
    }
    const std::string_view extensions = GlText(GL_EXTENSIONS);
    gCapabilities.renderer = GlText(GL_RENDERER);
    gCapabilities.anyTextureSize = GlHasWord(extensions, "GL_ARB_texture_non_power_of_two");
    if (GlHasWord(extensions, "GL_EXT_texture_filter_anisotropic")) {
        glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &gCapabilities.largestAnisotropy);
    }
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    gCapabilities.largestTexture = largest > 0 ? static_cast<uint32_t>(largest) : 0;
    gCapabilities.mipmaps = MakesMipmaps();
    return true;
}

const GL_CAPABILITIES& Gl() {
    return gCapabilities;
}

void Ortho2D(uint32_t screenWidth, uint32_t screenHeight) {
    glViewport(0, 0, static_cast<GLsizei>(screenWidth), static_cast<GLsizei>(screenHeight));
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluOrtho2D(0.0, screenWidth, screenHeight, 0.0);
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_BLEND);
}
