// What all controls have in common: making the window, the ring of the focus, signals.
//
// A control is made with new and given to the manager with its window; it ends itself in Destroy, which
// the manager calls when the window is freed. Nobody deletes a control.
// Signals are public members: connect to them after the construction. They end with the control.
// Every setter marks the control dirty, so that it is painted with the next tick.
#pragma once

#include "gui/geometry.h"
#include "gui/handler.h"

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal_type.hpp>

#include <string>
#include <string_view>

class CGhostSurface;

// All signals are called on the main thread alone, so they carry no lock.
template <typename Signature>
using GuiSignal = typename boost::signals2::signal_type<
    Signature, boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>>::type;

// Where a control's window is: within its parent's client area, or, with nonClient, in its frame.
struct GUI_PLACE {
    bool nonClient = false;
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
};

// Makes a control's window, without a size yet; the control places it when its style is known.
[[nodiscard]] GHOSTMANAGER_WINDOW* MakeControlWindow(GHOSTMANAGER_WINDOW* parent,
                                                     uint32_t creationId, CGhostGUIHandler* handler,
                                                     const GUI_PLACE& place);
void PlaceControl(GHOSTMANAGER_WINDOW* window, const GUI_PLACE& place);

// The ring around what has the focus, two units thick, just inside the rectangle.
void PaintFocusRing(CGhostSurface& surface, const GUI_RECT& rect);

// What up, down, left and right do at controls that have no use for them. False for other keys.
bool MoveFocusByKey(GHOSTGUIKey key);

// Takes the mouse cursor of this index (see the manager) while the mouse is over a control.
void ShowCursor(uint32_t index);
inline constexpr uint32_t kCursorNormal = 0;
inline constexpr uint32_t kCursorHot = 1;
inline constexpr uint32_t kCursorResize = 2;
