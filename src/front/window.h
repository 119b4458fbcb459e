// Window: the program's one window and the OpenGL 2.1 context in it.
//
// Units: a window is measured in the desktop's units and drawn in pixels; on dense displays there are
//   several pixels to a unit. All drawing is in pixels.
// Thread: the main thread alone.
// Order: SDL's video before Open, Close before SDL goes.
// Failure: what cannot be had is left out with a word (multisampling, a size larger than the display);
//   without a window or context Open says why and nothing is left behind.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class EventPump;
struct SDL_Window;

// As the settings ask for it.
struct WINDOW_OPTIONS {
    bool fullScreen = false;
    int32_t width = 1280; // when not full screen, in the desktop's units
    int32_t height = 720;
    bool antialias = false; // eight samples a pixel
    bool vsync = true;
};
[[nodiscard]] WINDOW_OPTIONS WindowOptionsFromSettings();

class Window {
public:
    Window() = default;
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // `words` takes a line for everything that is not as asked for.
    [[nodiscard]] bool Open(const WINDOW_OPTIONS& options, const std::string& title,
                            std::vector<std::string>& words, std::string& error);
    void Close();
    [[nodiscard]] bool IsOpen() const { return window != nullptr; }

    void SetTitle(const std::string& title);
    void ToggleFullScreen();

    // Finishes the drawing and shows it; with the display's beat it waits for the retrace.
    void Swap();
    // Whether Swap waits for the display.
    [[nodiscard]] bool FollowsDisplay() const { return followsDisplay; }
    // Whether anybody can see it: a minimised window need not be drawn.
    [[nodiscard]] bool IsVisible() const;

    // Both sizes, so that the pump gives mouse positions in pixels.
    void TellSize(EventPump& pump) const;
    [[nodiscard]] uint32_t PixelWidth() const;
    [[nodiscard]] uint32_t PixelHeight() const;

private:
    [[nodiscard]] bool Create(const WINDOW_OPTIONS& options, const std::string& title, int samples);

    SDL_Window* window = nullptr;
    void* context = nullptr;
    bool followsDisplay = false;
};

// A window size that can be had: a side below 1 or absurdly long gives the default size, and one that
// is longer than the display's is cut. `word` says what was changed, and stays empty otherwise.
struct WINDOW_SIZE {
    int32_t width;
    int32_t height;
};
[[nodiscard]] WINDOW_SIZE UsableWindowSize(WINDOW_SIZE wanted, WINDOW_SIZE display,
                                           std::string& word);
