// The gallery: what every control and style looks like, in a window or as PNG files.
#include "base/files.h"
#include "display/gl.h"
#include "display/texture.h"
#include "front/appearance.h"
#include "front/application.h"
#include "front/event_pump.h"
#include "front/gui_cursors.h"
#include "front/gui_overlay.h"
#include "front/joysticks.h"
#include "front/session_callbacks.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/gallery_pages.h"
#include "front/tools/gallery_parts.h"
#include "front/tools/media_files.h"
#include "front/tools/play.h"
#include "front/window.h"
#include "gui/manager.h"
#include "gui/window_ex.h"

#include <SDL.h>
#include <SDL_opengl.h>

#include <cmath>
#include <vector>

namespace {

constexpr int32_t kWidth = 1280;
constexpr int32_t kHeight = 720;
constexpr uint32_t kRound = 16667; // microseconds

// The pages on one screen of pixels.
class Gallery {
public:
    Gallery(int32_t pixelWidth, int32_t pixelHeight) { Resize(pixelWidth, pixelHeight); }

    void Resize(int32_t pixelWidth, int32_t pixelHeight) {
        width = pixelWidth;
        height = pixelHeight;
        pixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height), 0);
        CGhostManager& manager = CGhostManager::Get();
        manager.SetScreen(width, height);
        manager.SetCompositeBuffer(pixels.data(), width, height, width);
    }

    // No window is left when the process ends what the controls refer to.
    ~Gallery() { Clear(); }
    Gallery(const Gallery&) = delete;
    Gallery& operator=(const Gallery&) = delete;

    void Clear() {
        CGhostManager& manager = CGhostManager::Get();
        if (root != nullptr) {
            manager.DestroyWindow(root);
            root = nullptr;
        }
        manager.Tick(0);
    }

    // From 0; the page before goes.
    void Show(size_t page) {
        Clear();
        CGhostManager& manager = CGhostManager::Get();
        const GUI_RECT screen = manager.ScreenRect();
        root = GalleryWindow(nullptr, L"BATTLEMAIN", L"", 0, screen);
        GalleryPages()[page].build(root);
    }

    void Draw(uint32_t microseconds) {
        CGhostManager& manager = CGhostManager::Get();
        manager.Tick(microseconds);
        manager.CompositeAll();
    }

    [[nodiscard]] const std::vector<uint32_t>& Pixels() const { return pixels; }
    [[nodiscard]] int32_t Width() const { return width; }
    [[nodiscard]] int32_t Height() const { return height; }

    [[nodiscard]] std::vector<uint8_t> Png() {
        EMU_VIDEO_FRAME frame{};
        frame.pixels = pixels.data();
        frame.width = frame.visibleWidth = static_cast<uint32_t>(width);
        frame.height = frame.visibleHeight = static_cast<uint32_t>(height);
        return PngOfFrame(frame);
    }

private:
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;
    GHOSTMANAGER_WINDOW* root = nullptr;
};

// "pages.png" becomes "pages-03.png".
std::filesystem::path PageFile(const std::filesystem::path& file, size_t page) {
    std::string number = std::to_string(page + 1);
    number.insert(0, number.size() < 2 ? 1 : 0, '0');
    std::filesystem::path path = file;
    path.replace_filename(file.stem().string() + "-" + number + file.extension().string());
    return path;
}

struct SCREEN_SIZE {
    int32_t width; // pixels
    int32_t height;
};

SCREEN_SIZE ScreenOf(const GALLERY_OPTIONS& options) {
    if (options.size.first > 0 && options.size.second > 0) {
        return {options.size.first, options.size.second};
    }
    const auto pixelsOf = [&](int32_t units) {
        return static_cast<int32_t>(std::lround(units * options.density.value_or(1.0)));
    };
    return {pixelsOf(kWidth), pixelsOf(kHeight)};
}

int WritePages(const GALLERY_OPTIONS& options) {
    const SCREEN_SIZE screen = ScreenOf(options);
    Gallery gallery(screen.width, screen.height);
    for (size_t page = 0; page < GalleryPages().size(); ++page) {
        if (options.page != 0 && options.page != page + 1) {
            continue;
        }
        gallery.Show(page);
        gallery.Draw(kRound);
        std::string error;
        const auto file =
            options.page != 0 ? options.screenshot : PageFile(options.screenshot, page);
        if (!WriteFile(file, gallery.Png(), error)) {
            Complain(error);
            return kExitFailed;
        }
    }
    return kExitDone;
}

// ---- In a window.

class GalleryRun {
public:
    explicit GalleryRun(const GALLERY_OPTIONS& options)
        : page(options.page > 0 ? options.page - 1 : 0) {}

    int Run(const SCREEN_SIZE& screen) {
        std::vector<std::string> words;
        std::string error;
        WINDOW_OPTIONS wanted;
        wanted.width = screen.width;
        wanted.height = screen.height;
        if (SDL_Init(SDL_INIT_VIDEO) != 0 ||
            !window.Open(wanted, "Ombrelune: gallery", words, error) || !GlStart(error)) {
            Complain(error.empty() ? SDL_GetError() : error);
            SDL_Quit();
            return kExitFailed;
        }
        Gallery gallery(PixelWidth(), PixelHeight());
        gallery.Show(page);
        bool open = true;
        while (open) {
            window.TellSize(pump);
            open = HandleEvents(gallery);
            gallery.Draw(kRound);
            cursors.Update();
            ShowPixels(gallery);
        }
        DestroyTexture(texture);
        cursors.End();
        window.Close();
        SDL_Quit();
        return kExitDone;
    }

private:
    [[nodiscard]] int32_t PixelWidth() const { return static_cast<int32_t>(window.PixelWidth()); }
    [[nodiscard]] int32_t PixelHeight() const { return static_cast<int32_t>(window.PixelHeight()); }

    bool HandleEvents(Gallery& gallery) {
        const PUMP_EVENTS events = pump.Pump();
        if (PixelWidth() != gallery.Width() || PixelHeight() != gallery.Height()) {
            gallery.Resize(PixelWidth(), PixelHeight());
            gallery.Show(page);
        }
        for (const GUI_INPUT& input : events.gui) {
            if (input.kind == GuiInputKind::kKeyDown && !input.repeat) {
                if (input.key == SDL_SCANCODE_ESCAPE) {
                    return false;
                }
                Turn(gallery, input.key);
            }
            PostGuiInput(input);
        }
        return !events.quit;
    }

    void Turn(Gallery& gallery, uint32_t key) {
        const size_t count = GalleryPages().size();
        if (key == SDL_SCANCODE_F7 || key == SDL_SCANCODE_F8) {
            page = (page + (key == SDL_SCANCODE_F8 ? 1 : count - 1)) % count;
            gallery.Show(page);
        }
    }

    void ShowPixels(const Gallery& gallery) {
        const auto width = static_cast<uint32_t>(gallery.Width());
        const auto height = static_cast<uint32_t>(gallery.Height());
        if (texture.width != width || texture.height != height) {
            texture.width = width;
            texture.height = height;
            if (!CreateTexture(texture, false)) {
                return;
            }
            SetTextureFilter(TextureFilter::kNearest);
        }
        UploadTexture(texture, gallery.Pixels().data(), width, height, width);
        Ortho2D(width, height);
        DrawQuad({0, 0, gallery.Width(), gallery.Height()},
                 static_cast<float>(width) / static_cast<float>(texture.texWidth),
                 static_cast<float>(height) / static_cast<float>(texture.texHeight));
        window.Swap();
    }

    static void DrawQuad(const GUI_RECT& at, float right, float bottom) {
        glEnable(GL_TEXTURE_2D);
        glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
        glBegin(GL_QUADS);
        glTexCoord2f(0.0f, 0.0f);
        glVertex2i(at.x, at.y);
        glTexCoord2f(right, 0.0f);
        glVertex2i(at.Right(), at.y);
        glTexCoord2f(right, bottom);
        glVertex2i(at.Right(), at.Bottom());
        glTexCoord2f(0.0f, bottom);
        glVertex2i(at.x, at.Bottom());
        glEnd();
    }

    Window window;
    Joysticks joysticks;
    EventPump pump{joysticks};
    GuiCursors cursors;
    TEXTURE_RECORD texture{};
    size_t page;
};

// ---- Over a running game.

// The window as it is composed, after five seconds of the game.
bool TakePicture(Application& application, const std::filesystem::path& file, std::string& error) {
    std::vector<uint32_t> pixels = application.ReadWindow();
    EMU_VIDEO_FRAME frame{};
    frame.pixels = pixels.data();
    frame.width = frame.visibleWidth = application.MainWindow().PixelWidth();
    frame.height = frame.visibleHeight = application.MainWindow().PixelHeight();
    return WriteFile(file, PngOfFrame(frame), error);
}

bool HasSize(const Window& window, const SCREEN_SIZE& size) {
    return window.PixelWidth() == static_cast<uint32_t>(size.width) &&
           window.PixelHeight() == static_cast<uint32_t>(size.height);
}

int ShowOverGame(const GALLERY_OPTIONS& options) {
    constexpr uint32_t kFramesBefore = 300;
    const bool sized = options.density.has_value() || options.size.first > 0;
    const SCREEN_SIZE screen = ScreenOf(options);
    PLAY_OPTIONS play;
    play.game = options.over;
    if (sized) {
        play.settings = {"app_fullscreen=0", "app_window_width=" + std::to_string(screen.width),
                         "app_window_height=" + std::to_string(screen.height)};
    }
    OPENED_GAME opened;
    std::string error;
    Application application;
    if (const int code = OpenForPlay(play, opened, error); code != kExitDone) {
        Complain(error);
        return code;
    }
    if (!application.Start(error) || !application.Play(opened, error)) {
        Complain(error);
        return kExitFailed;
    }
    if (sized && !HasSize(application.MainWindow(), screen)) {
        Complain("--over: no window of " + std::to_string(screen.width) + " by " +
                 std::to_string(screen.height) + " pixels on this display");
        application.Stop();
        return kExitFailed;
    }
    CGhostManager& manager = CGhostManager::Get();
    GHOSTMANAGER_WINDOW* const root =
        GalleryWindow(nullptr, L"FLAT", L"", CGhostWindowEx::kNoPaint, manager.ScreenRect());
    GalleryPages()[options.page > 0 ? options.page - 1 : 0].build(root);
    bool open = true;
    bool taken = options.screenshot.empty();
    while (open && application.Round()) {
        if (!options.screenshot.empty() && FramesPresented() >= kFramesBefore) {
            taken = TakePicture(application, options.screenshot, error);
            open = false;
        }
    }
    manager.DestroyWindow(root);
    manager.Tick(0);
    application.Stop();
    if (!taken) {
        Complain(error.empty() ? "the window was closed before the picture was taken" : error);
    }
    return taken ? kExitDone : kExitFailed;
}

} // namespace

int GalleryCommand(const GALLERY_OPTIONS& options) {
    if (options.page > GalleryPages().size()) {
        Complain("--page " + std::to_string(options.page) + ": there are " +
                 std::to_string(GalleryPages().size()));
        return kExitUsage;
    }
    LoadAppearance();
    if (!options.over.empty()) {
        return ShowOverGame(options);
    }
    return options.screenshot.empty() ? GalleryRun(options).Run(ScreenOf(options))
                                      : WritePages(options);
}
