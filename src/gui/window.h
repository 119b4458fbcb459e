// GHOSTMANAGER_WINDOW: one window of the tree. A pointer to it is the window's handle; the manager
// checks every handle it is given, so that one whose window is gone fails quietly.
//
// Owner: the manager, which makes and frees it. Fields are the manager's to write, under the tree lock.
#pragma once

#include "gui/geometry.h"
#include "gui/styles.h"
#include "gui/surface.h"

#include <cstdint>
#include <memory>
#include <string>

class CGhostGUIHandler;

// Asks the host for its special background pass.
inline constexpr uint32_t kWindowBackgroundPass = 0x80000002;

struct GHOSTMANAGER_WINDOW {
    uint32_t id = 0;                       // the host's key of this window's texture
    GHOSTMANAGER_WINDOW* parent = nullptr; // null for a top-level window
    GHOSTMANAGER_WINDOW* firstChild = nullptr;
    GHOSTMANAGER_WINDOW* lastChild = nullptr;
    GHOSTMANAGER_WINDOW* nextSibling = nullptr; // later in the list means nearer the viewer
    GHOSTMANAGER_WINDOW* prevSibling = nullptr;
    std::unique_ptr<std::wstring> toolTip;  // null: none
    std::shared_ptr<CGhostSurface> surface; // null while the size is zero; shared with who paints
    int32_t x =
        0; // relative to the parent's client area, its outer area if nonClient, or the screen
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    GUI_RECT clientRect;      // inside the frame, less the insets; relative to the window
    GUI_RECT frameClientRect; // the same before the insets are taken off
    GUI_RECT insetRect;       // what the insets took at the right edge
    int32_t minWidth = 0;     // limits of SetWindowPos; 0: none
    int32_t minHeight = 0;
    CGhostGUIHandler* handler = nullptr; // head of the chain
    uint32_t flags = 0;                  // the creator's, handed to the host's draw callback
    int32_t depth = 0;                   // 0 at top level
    GhostBorderStyle frame;
    // A top-level window that floats for another, such as an open list: it takes input when its owner
    // does and ends with it. Null: none.
    GHOSTMANAGER_WINDOW* owner = nullptr;
    bool visible = true;
    bool dirty = true;      // the surface must be painted again
    bool fresh = true;      // it never was: the window is not drawn yet
    bool onePixel = false;  // its texture has one pixel
    bool nonClient = false; // placed in and cut to the parent's outer rectangle
    bool tabStop = false;
    bool deletePending = false;
    bool part = false;   // of its parent or owner, with which alone it ends
    bool ending = false; // being freed
};
