// A hidden window with an OpenGL context, current as long as the object lives. Without a display it is
// the software renderer's. There is no way around it: a test that gets no context fails.
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
