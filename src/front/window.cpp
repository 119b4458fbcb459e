#include "front/window.h"

#include "base/text.h"
#include "front/event_pump.h"
#include "front/window_icon.h"
#include "settings/settings.h"

#include <SDL.h>
#include <SDL_opengl.h>

#include <algorithm>
#include <charconv>

namespace {

constexpr WINDOW_SIZE kDefaultSize{1280, 720};
constexpr WINDOW_SIZE kSmallestSize{320, 240};
constexpr int32_t kLongestSide = 16384;
constexpr int kAntialiasSamples = 8;

std::string Dimensions(WINDOW_SIZE size) {
    return std::to_string(size.width).append(" x ").append(std::to_string(size.height));
}

WINDOW_SIZE DisplaySize() {
    SDL_Rect bounds{};
    if (SDL_GetDisplayUsableBounds(0, &bounds) != 0 || bounds.w <= 0 || bounds.h <= 0) {
        return {kLongestSide, kLongestSide};
    }
    return {bounds.w, bounds.h};
}

std::vector<DESKTOP_RECT> Displays() {
    std::vector<DESKTOP_RECT> displays;
    for (int at = 0; at < SDL_GetNumVideoDisplays(); ++at) {
        SDL_Rect bounds{};
        if (SDL_GetDisplayUsableBounds(at, &bounds) == 0) {
            displays.push_back({bounds.x, bounds.y, bounds.w, bounds.h});
        }
    }
    return displays;
}

// "X Y".
std::optional<WINDOW_PLACE_ON_DESKTOP> ReadPlace(const std::string& text) {
    WINDOW_PLACE_ON_DESKTOP place;
    const char* const end = text.data() + text.size();
    const auto [space, first] = std::from_chars(text.data(), end, place.x);
    if (first != std::errc() || space == end || *space != ' ') {
        return std::nullopt;
    }
    const auto [stop, second] = std::from_chars(space + 1, end, place.y);
    return second == std::errc() && stop == end ? std::optional(place) : std::nullopt;
}

void SetContextAttributes(int samples) {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLEBUFFERS, samples > 0 ? 1 : 0);
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLESAMPLES, samples);
}

// Asks for a context that tells when the driver was reset; a driver may refuse that.
void AskForResetStatus(bool ask) {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION,
                        ask ? SDL_GL_CONTEXT_RESET_LOSE_CONTEXT
                            : SDL_GL_CONTEXT_RESET_NO_NOTIFICATION);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK,
                        ask ? SDL_GL_CONTEXT_PROFILE_COMPATIBILITY : 0);
}

template <class Function>
Function FindResetStatus() {
    if (SDL_GL_ExtensionSupported("GL_ARB_robustness") == SDL_TRUE) {
        return reinterpret_cast<Function>(SDL_GL_GetProcAddress("glGetGraphicsResetStatusARB"));
    }
    if (SDL_GL_ExtensionSupported("GL_KHR_robustness") == SDL_TRUE) {
        return reinterpret_cast<Function>(SDL_GL_GetProcAddress("glGetGraphicsResetStatus"));
    }
    return nullptr;
}

void SetIcon(SDL_Window* window) {
    std::vector<uint32_t> pixels = WindowIcon();
    SDL_Surface* icon =
        SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), kWindowIconSize, kWindowIconSize, 32,
                                           kWindowIconSize * 4, SDL_PIXELFORMAT_ARGB8888);
    if (icon != nullptr) {
        SDL_SetWindowIcon(window, icon);
        SDL_FreeSurface(icon);
    }
}

} // namespace

WINDOW_OPTIONS WindowOptionsFromSettings() {
    const SettingsStore& settings = Settings();
    WINDOW_OPTIONS options;
    options.fullScreen = settings.GetBool(L"app_fullscreen");
    options.width = settings.GetInt(L"app_window_width");
    options.height = settings.GetInt(L"app_window_height");
    options.place = ReadPlace(Utf8FromWide(settings.GetString(L"app_window_place")));
    options.antialias = settings.GetBool(L"app_antialias");
    options.vsync = settings.GetBool(L"app_vsync");
    return options;
}

void KeepInSettings(const DESKTOP_RECT& windowPlace) {
    SettingsStore& settings = Settings();
    settings.SetInt(L"app_window_width", windowPlace.width);
    settings.SetInt(L"app_window_height", windowPlace.height);
    settings.SetString(L"app_window_place",
                       std::to_wstring(windowPlace.x) + L" " + std::to_wstring(windowPlace.y));
}

WINDOW_SIZE UsableWindowSize(WINDOW_SIZE wanted, WINDOW_SIZE display, std::string& message) {
    WINDOW_SIZE size = wanted;
    if (std::min(size.width, size.height) < 1 || std::max(size.width, size.height) > kLongestSide) {
        size = kDefaultSize;
    }
    size.width = std::max(std::min(size.width, display.width), kSmallestSize.width);
    size.height = std::max(std::min(size.height, display.height), kSmallestSize.height);
    if (size.width != wanted.width || size.height != wanted.height) {
        message =
            "a window of " + Dimensions(wanted) + " is not possible; it is " + Dimensions(size);
    }
    return size;
}

bool IsReachable(const DESKTOP_RECT& window, std::span<const DESKTOP_RECT> displays) {
    constexpr int32_t kEdgeHigh = 32; // units that must be seen
    constexpr int32_t kEdgeWide = 100;
    return std::any_of(displays.begin(), displays.end(), [&](const DESKTOP_RECT& display) {
        const int32_t left = std::max(window.x, display.x);
        const int32_t right = std::min(window.x + window.width, display.x + display.width);
        return right - left >= std::min(kEdgeWide, window.width) && window.y >= display.y &&
               window.y + kEdgeHigh <= display.y + display.height;
    });
}

Window::~Window() {
    Close();
}

bool Window::Create(const WINDOW_OPTIONS& options, const std::string& title, int samples) {
    SetContextAttributes(samples);
    uint32_t flags = SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI;
    if (options.fullScreen) {
        flags |= SDL_WINDOW_FULLSCREEN_DESKTOP;
    }
    int x = SDL_WINDOWPOS_CENTERED;
    int y = SDL_WINDOWPOS_CENTERED;
    if (options.place &&
        IsReachable({options.place->x, options.place->y, options.width, options.height},
                    Displays())) {
        x = options.place->x;
        y = options.place->y;
    }
    window = SDL_CreateWindow(title.c_str(), x, y, options.width, options.height, flags);
    if (window == nullptr) {
        return false;
    }
    if (!CreateContext()) {
        SDL_DestroyWindow(window);
        window = nullptr;
        return false;
    }
    return true;
}

bool Window::CreateContext() {
    for (const bool ask : {true, false}) {
        AskForResetStatus(ask);
        context = SDL_GL_CreateContext(window);
        if (context != nullptr) {
            resetStatus = FindResetStatus<decltype(resetStatus)>();
            return true;
        }
    }
    return false;
}

bool Window::ContextLost() {
    if (context == nullptr) {
        return true;
    }
    if (SDL_GL_GetCurrentContext() != context && SDL_GL_MakeCurrent(window, context) != 0) {
        return true;
    }
    return resetStatus != nullptr && resetStatus() != GL_NO_ERROR;
}

bool Window::RenewContext(std::string& error) {
    if (context != nullptr) {
        SDL_GL_DeleteContext(context);
        context = nullptr;
    }
    if (!CreateContext()) {
        error = std::string("the graphics driver has stopped: ") + SDL_GetError();
        return false;
    }
    SetVsync(given.vsync);
    return true;
}

bool Window::Open(const WINDOW_OPTIONS& options, const std::string& title,
                  std::vector<std::string>& messages, std::string& error) {
    Close();
    WINDOW_OPTIONS wanted = options;
    std::string message;
    const WINDOW_SIZE size =
        UsableWindowSize({options.width, options.height}, DisplaySize(), message);
    if (!message.empty() && !options.fullScreen) {
        messages.push_back(message);
    }
    wanted.width = size.width;
    wanted.height = size.height;

    bool created = Create(wanted, title, options.antialias ? kAntialiasSamples : 0);
    if (!created && options.antialias) {
        created = Create(wanted, title, 0);
        if (created) {
            messages.emplace_back("this display has no multisampling; edges are not smoothed");
        }
    }
    if (!created) {
        error = std::string("no window: ") + SDL_GetError();
        return false;
    }
    SDL_SetWindowMinimumSize(window, kSmallestSize.width, kSmallestSize.height);
    SetIcon(window);
    SetVsync(options.vsync);
    given = options;
    put = Place();
    return true;
}

DESKTOP_RECT Window::Place() const {
    DESKTOP_RECT place;
    SDL_GetWindowPosition(window, &place.x, &place.y);
    SDL_GetWindowSize(window, &place.width, &place.height);
    return place;
}

std::optional<DESKTOP_RECT> Window::PlaceByHand() const {
    constexpr uint32_t kNotByHand =
        SDL_WINDOW_FULLSCREEN_DESKTOP | SDL_WINDOW_MAXIMIZED | SDL_WINDOW_MINIMIZED;
    if (window == nullptr || (SDL_GetWindowFlags(window) & kNotByHand) != 0) {
        return std::nullopt;
    }
    const DESKTOP_RECT now = Place();
    return now == put ? std::nullopt : std::optional(now);
}

void Window::SetVsync(bool on) {
    followsDisplay = SDL_GL_SetSwapInterval(on ? 1 : 0) == 0 && on;
}

void Window::Take(const WINDOW_OPTIONS& options) {
    const WINDOW_OPTIONS before = given;
    given = options;
    if (options.width != before.width || options.height != before.height) {
        std::string message;
        const WINDOW_SIZE size =
            UsableWindowSize({options.width, options.height}, DisplaySize(), message);
        // Of a window that fills the display this is the size to come back to.
        SDL_SetWindowSize(window, size.width, size.height);
        SDL_SetWindowPosition(window, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
        put = Place();
    }
    if (options.fullScreen != before.fullScreen) {
        SDL_SetWindowFullscreen(window, options.fullScreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
    }
    if (options.vsync != before.vsync) {
        SetVsync(options.vsync);
    }
}

void Window::Close() {
    if (context != nullptr) {
        SDL_GL_DeleteContext(context);
        context = nullptr;
    }
    if (window != nullptr) {
        SDL_DestroyWindow(window);
        window = nullptr;
    }
}

void Window::SetTitle(const std::string& title) {
    SDL_SetWindowTitle(window, title.c_str());
}

void Window::ToggleFullScreen() {
    const bool full = (SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0;
    SDL_SetWindowFullscreen(window, full ? 0 : SDL_WINDOW_FULLSCREEN_DESKTOP);
    given.fullScreen = !full;
}

void Window::PutPointer(Pointer pointer) {
    const bool capture = pointer == Pointer::kCaptured;
    if ((SDL_GetRelativeMouseMode() == SDL_TRUE) != capture) {
        SDL_SetRelativeMouseMode(capture ? SDL_TRUE : SDL_FALSE);
    }
    const int seen = pointer == Pointer::kSeen ? SDL_ENABLE : SDL_DISABLE;
    if (SDL_ShowCursor(SDL_QUERY) != seen) {
        SDL_ShowCursor(seen);
    }
}

void Window::Swap() {
    glFinish();
    SDL_GL_SwapWindow(window);
}

bool Window::IsVisible() const {
    return (SDL_GetWindowFlags(window) & (SDL_WINDOW_MINIMIZED | SDL_WINDOW_HIDDEN)) == 0;
}

void Window::TellSize(EventPump& pump) const {
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(window, &width, &height);
    pump.SetWindowSize(width, height, static_cast<int32_t>(PixelWidth()),
                       static_cast<int32_t>(PixelHeight()));
}

uint32_t Window::PixelWidth() const {
    int width = 0;
    int height = 0;
    SDL_GL_GetDrawableSize(window, &width, &height);
    return static_cast<uint32_t>(std::max(width, 1));
}

uint32_t Window::PixelHeight() const {
    int width = 0;
    int height = 0;
    SDL_GL_GetDrawableSize(window, &width, &height);
    return static_cast<uint32_t>(std::max(height, 1));
}
