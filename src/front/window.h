// Window: the program's one window and the OpenGL 2.1 context in it.
//
// Units: a window has a size in the desktop's units and one in pixels; on high-density displays a unit
//   has several pixels. All drawing is in pixels.
// Thread: the main thread alone.
// Order: start SDL's video before Open; Close before SDL ends.
// Failure: an unavailable option (multisampling, a size larger than the display) is left out with a
//   message; without a window or context Open fails with the reason and cleans up.
#pragma once

#include "screens/program_pointer.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

class EventPump;
struct SDL_Window;

// Of a window or a display, in the desktop's units.
struct DESKTOP_RECT {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    bool operator==(const DESKTOP_RECT&) const = default;
};

// The corner of the window's contents on the desktop.
struct WINDOW_PLACE_ON_DESKTOP {
    int32_t x = 0;
    int32_t y = 0;
    bool operator==(const WINDOW_PLACE_ON_DESKTOP&) const = default;
};

// The window that the settings ask for.
struct WINDOW_OPTIONS {
    bool fullScreen = false;
    int32_t width = 1280; // when not full screen, in the desktop's units
    int32_t height = 720;
    std::optional<WINDOW_PLACE_ON_DESKTOP> place; // at the opening; none: in the middle
    bool antialias = false;                       // eight samples a pixel
    bool vsync = true;

    bool operator==(const WINDOW_OPTIONS&) const = default;
};
[[nodiscard]] WINDOW_OPTIONS WindowOptionsFromSettings();
// What the player has made of the window by hand.
void KeepInSettings(const DESKTOP_RECT& windowPlace);

class Window {
public:
    Window() = default;
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // `messages` gets a line for every option that could not be had.
    [[nodiscard]] bool Open(const WINDOW_OPTIONS& options, const std::string& title,
                            std::vector<std::string>& messages, std::string& error);
    void Close();
    // Whether the context and all in it are gone, as when the graphics driver was reset. One that is merely not
    // current is made current again.
    [[nodiscard]] bool ContextLost();
    // A new context in the same window. False with the reason; the window then has none.
    [[nodiscard]] bool RenewContext(std::string& error);
    [[nodiscard]] bool IsOpen() const { return window != nullptr; }

    // Full screen, size and vertical sync become those of the options where these differ from the last ones that the
    // window was given; what the player has changed by hand meanwhile stays otherwise. Multisampling is that of Open.
    void Take(const WINDOW_OPTIONS& options);

    void SetTitle(const std::string& title);
    // Where it is and how large, if the player has moved it or changed its size since it was given one. None while it
    // fills the display.
    [[nodiscard]] std::optional<DESKTOP_RECT> PlaceByHand() const;
    void ToggleFullScreen();
    [[nodiscard]] bool FillsDisplay() const { return given.fullScreen; }
    // A captured mouse has no pointer and does not leave the window; only its moves count.
    static void PutPointer(Pointer pointer);

    // Finishes the drawing and shows it; with vertical sync it waits for the retrace.
    void Swap();
    // Whether Swap waits for the display.
    [[nodiscard]] bool FollowsDisplay() const { return followsDisplay; }
    // Whether it can be seen: a minimised window need not be drawn.
    [[nodiscard]] bool IsVisible() const;

    // Tells the pump both sizes, so that mouse positions are in pixels.
    void TellSize(EventPump& pump) const;
    [[nodiscard]] uint32_t PixelWidth() const;
    [[nodiscard]] uint32_t PixelHeight() const;

private:
    void SetVsync(bool on);
    [[nodiscard]] bool Create(const WINDOW_OPTIONS& options, const std::string& title, int samples);
    [[nodiscard]] bool CreateContext();

    SDL_Window* window = nullptr;
    void* context = nullptr;
    unsigned (*resetStatus)() = nullptr; // null if the driver does not tell of resets
    bool followsDisplay = false;
    [[nodiscard]] DESKTOP_RECT Place() const;

    WINDOW_OPTIONS given; // the last options, of Open or Take
    DESKTOP_RECT put;     // where it was then
};

// A possible window size: if a side is below 1 or absurdly long, the default size; a side longer than
// the display's is cut to it. `message` says what was changed, and stays empty otherwise.
struct WINDOW_SIZE {
    int32_t width;
    int32_t height;
};
[[nodiscard]] WINDOW_SIZE UsableWindowSize(WINDOW_SIZE wanted, WINDOW_SIZE display,
                                           std::string& message);

// Whether enough of a window's upper edge lies on a display to be seen and taken hold of: a display may have gone
// since the window was there.
[[nodiscard]] bool IsReachable(const DESKTOP_RECT& window, std::span<const DESKTOP_RECT> displays);
