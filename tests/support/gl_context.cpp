#include "support/gl_context.h"

#include <SDL.h>

#include <cstdlib>

namespace {

// Starts SDL's video once and keeps it until the process ends: the driver takes longer to load than a
// test runs, and its memory is not a leak while it is loaded.
bool StartVideo() {
    if (SDL_WasInit(SDL_INIT_VIDEO) != 0) {
        return true;
    }
    if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr) {
        SDL_setenv("SDL_VIDEODRIVER", "offscreen", 0);
    }
    // One more load than the windows make, or the last window would unload the driver.
    return SDL_InitSubSystem(SDL_INIT_VIDEO) == 0 && SDL_GL_LoadLibrary(nullptr) == 0;
}

} // namespace

GlContext::GlContext(int width, int height, GlProfile profile) {
    if (StartVideo()) {
        Create(width, height, profile);
    }
    if (context == nullptr) {
        error = SDL_GetError();
    }
}

void GlContext::Create(int width, int height, GlProfile profile) {
    const bool core = profile == GlProfile::kCore;
    SDL_GL_ResetAttributes();
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, core ? 3 : 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, core ? 2 : 1);
    if (core) {
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    }
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
    window = SDL_CreateWindow("test", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, width,
                              height, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (window != nullptr) {
        context = SDL_GL_CreateContext(window);
    }
}

GlContext::~GlContext() {
    if (context != nullptr) {
        SDL_GL_DeleteContext(context);
    }
    if (window != nullptr) {
        SDL_DestroyWindow(window);
    }
}
