// A hidden window with an OpenGL context, current for the life of the object. Without a display it is
// the software renderer's. A test that gets no context fails.
#pragma once

#include <cstdint>
#include <string>

struct SDL_Window;

enum class GlProfile : uint8_t { kCompatibility, kCore };

class GlContext {
public:
    GlContext(int width, int height, GlProfile profile = GlProfile::kCompatibility);
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    [[nodiscard]] bool Ready() const { return context != nullptr; }
    [[nodiscard]] const std::string& Error() const { return error; }

private:
    void Create(int width, int height, GlProfile profile);

    SDL_Window* window = nullptr;
    void* context = nullptr;
    std::string error;
};
