// GuiOverlay: the windows of the toolkit over whatever the main window shows.
//
// It turns the pump's events into the toolkit's input records, runs the toolkit's tick and draws its windows
// through the four drawing callbacks, shows the cursor that they want, and asks the library for typed text while
// a field of text has the focus. Without windows it costs next to
// nothing. The lines of statistics are no windows but StatusOverlay's text, which needs no theme to be read.
//
// Units: mouse places come in pixels of the drawing surface and go on in units of the virtual screen.
// Thread: main, with the OpenGL context current.
// Order: Start, any number of Update and Draw, End. The toolkit's windows outlive it and are drawn again after
// the next Start.
#pragma once

#include "display/window_textures.h"
#include "front/gui_cursors.h"
#include "front/screen.h"

#include <cstdint>
#include <functional>

struct GUI_INPUT;
struct PUMP_EVENTS;

// Hands one event to the toolkit.
void PostGuiInput(const GUI_INPUT& input);

class GuiOverlay {
public:
    GuiOverlay() = default;
    ~GuiOverlay() { End(); }
    GuiOverlay(const GuiOverlay&) = delete;
    GuiOverlay& operator=(const GuiOverlay&) = delete;

    // `drawScene` draws what goes with a window of kWindowBackgroundPass, in any projection.
    using SceneDrawing = std::function<void(const WINDOW_PLACE& place)>;
    void Start(const DRAW_TARGET& target, SceneDrawing drawScene = {});
    void End();

    // The input of a round, then the tick. True when the windows look different from now on.
    [[nodiscard]] bool Update(const PUMP_EVENTS& events, const DRAW_TARGET& target, int64_t now);

    // In Ortho2D, after the picture below. In this call the toolkit composites.
    void Draw();

    [[nodiscard]] size_t TextureCount() const { return textures.Count(); }
    // Uploads of windows so far.
    [[nodiscard]] uint64_t Uploads() const { return textures.Uploads(); }

private:
    static void TakeText(bool wanted);
    void DrawScene(uint32_t id, const WINDOW_PLACE& place);

    WindowTextures textures;
    GuiCursors cursors;
    SceneDrawing scene;
    DRAW_TARGET size{0, 0}; // that the toolkit was told
    int64_t lastTick = 0;   // microseconds of the host's clock
    bool started = false;
};
