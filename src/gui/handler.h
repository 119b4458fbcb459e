// CGhostGUIHandler: what a window calls its control by. CGhostGUICommonFunc: a control's own handle
// with thin wrappers around the manager.
//
// A window has a chain of handlers. Input, focus and resize go to every handler of the chain; the
// first alone is told of moves.
// Units: those of the virtual screen. Mouse places are in client coordinates, or, in the frame
// operations, in the window's own.
// Buttons: 1 left, 2 right, 3 middle.
// Owner: the control's creator hands it to the manager with its window; the manager ends it through
// Destroy, where a control deletes itself.
// Thread: main, inside the manager's tick. GetClientInset, OnResize and OnMove are called at once, by the
//   thread that changes the window, with the tree locked: that is main, or one that has the round.
#pragma once

#include "gui/geometry.h"

#include <cstdint>
#include <string>

class CGhostSurface;
struct GHOSTMANAGER_WINDOW;

// Scan codes of the USB HID tables; those that the toolkit itself tests have names.
enum class GHOSTGUIKey : uint32_t {
    kA = 4,
    kC = 6,
    kV = 25,
    kX = 27,
    kReturn = 40,
    kEscape = 41,
    kBackspace = 42,
    kTab = 43,
    kSpace = 44,
    kHome = 74,
    kPageUp = 75,
    kDelete = 76,
    kEnd = 77,
    kPageDown = 78,
    kRight = 79,
    kLeft = 80,
    kDown = 81,
    kUp = 82,
    kLeftCtrl = 224,
    kLeftShift = 225,
    kRightCtrl = 228,
    kRightShift = 229,
};

enum class GUI_DIRECTION : uint8_t { kLeft, kRight, kUp, kDown };

class CGhostGUIHandler {
public:
    CGhostGUIHandler() = default;
    CGhostGUIHandler(const CGhostGUIHandler&) = delete;
    CGhostGUIHandler& operator=(const CGhostGUIHandler&) = delete;
    virtual ~CGhostGUIHandler() = default;

    // The order of these is the toolkit's own and fixed.
    virtual void Destroy() {}
    virtual void ShowToolTip(const std::wstring& /*text*/) {}
    virtual void HideToolTip() {}
    virtual void OnHoverTimeout() {}
    virtual void OnFocus(bool /*gained*/, void* /*other*/) {} // `other`: the other window
    virtual void GetTitleHeight(int* out) { *out = 0; }
    virtual void GetClientInset(int* right, int* bottom) { *right = *bottom = 0; }
    virtual void OnResize(int /*width*/, int /*height*/, int /*clientWidth*/,
                          int /*clientHeight*/) {}
    virtual void OnMove(int /*x*/, int /*clientTop*/) {} // the client rectangle's top, not y
    virtual void OnActivate(void* /*window*/, bool /*active*/) {}
    virtual void OnFrameMouseMove(int /*x*/, int /*y*/) {}
    virtual void Reserved12() {}
    virtual void Reserved13() {}
    virtual void OnFrameMouseDown(int /*x*/, int /*y*/, unsigned /*button*/) {} // always button 1
    virtual void OnFrameMouseUp(int /*x*/, int /*y*/, unsigned /*button*/) {}
    virtual void OnFrameMouseWheel(int /*x*/, int /*y*/, bool /*up*/) {}
    virtual void OnMouseEnter() {}
    virtual void OnMouseMove(int /*x*/, int /*y*/) {}
    virtual void OnMouseLeave() {}
    virtual void OnMouseDoubleClick(int /*x*/, int /*y*/, unsigned /*button*/) {}
    virtual void OnMouseDown(int /*x*/, int /*y*/, unsigned /*button*/) {}
    virtual void OnMouseUp(int /*x*/, int /*y*/, unsigned /*button*/) {}
    virtual void OnMouseWheel(int /*x*/, int /*y*/, bool /*up*/) {}
    virtual void OnKeyDown(GHOSTGUIKey /*key*/) {}
    virtual void OnKeyUp(GHOSTGUIKey /*key*/) {}
    virtual void OnChar(unsigned /*character*/) {}
    virtual void OnTick(unsigned /*microseconds*/) {}
    virtual void Reserved28() {}
    // The surface's origin is the client rectangle.
    virtual void OnPaint(CGhostSurface* /*surface*/, const GUI_RECT& /*clientRect*/) {}

    // ---- A game controller's directions and its two buttons, at the window that has the focus. True
    // when the control used it; if not, the focus moves, the window's middle is clicked, or nothing
    // happens.
    virtual bool OnNavigate(GUI_DIRECTION /*direction*/) { return false; }
    virtual bool OnActivateKey() { return false; }
    virtual bool OnCancelKey() { return false; }

    bool dirty = false;               // wants to be painted again; cleared after painting
    CGhostGUIHandler* next = nullptr; // in the chain; not owned
};

class CGhostGUICommonFunc {
public:
    void SetPos(int x, int y, int width, int height);
    void SetVisible(bool visible);
    [[nodiscard]] bool IsVisible() const;
    void SetFocus();
    [[nodiscard]] GUI_RECT GetRect() const; // the outer rectangle
    [[nodiscard]] uint32_t GetFlags() const;
    void SetZOrder(int where);
    void SetToolTip(const std::wstring& text);
    void Close();

    GHOSTMANAGER_WINDOW* window = nullptr;
};

// For controls that own child windows.
class CGhostGUIHandlerEx : public CGhostGUIHandler, public CGhostGUICommonFunc {};
