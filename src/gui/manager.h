// CGhostManager: the window system. One tree of windows with their surfaces, input by hit test, focus,
// and drawing through four callbacks of the host.
//
// Units: those of the virtual screen, 1280 by 720 on a display of 16 to 9. The host's callbacks count
//   in pixels, which at density 1 are the same.
// Order: SetHost and SetScreen before the first window; then once a frame PostInput for every event,
//   Tick, CompositeAll.
// Handles: every operation looks for its window in the tree, so a stale handle yields false.
// Calls: handlers are called from Tick, except size and position handlers, which are called at
//   once. Whatever PostInput and SetFocus bring about is queued and called by the tick.
// Locks, in this order: the API mutex around Tick, CompositeAll, PostInput, whatever else calls handlers,
//   and the making of message boxes; the tree lock; the queue lock. While a queued call or a handler's tick
//   or painting runs neither the tree nor the queue is locked, so a handler may call any operation, and
//   another thread may queue.
// Thread: main for SetHost, SetScreen, Tick, CompositeAll, PostInput, Navigate, ActivateFocus, CancelFocus
//   and the composite buffer; any for the rest. SetWindowPos, SetWindowFrame and RecalcClient call handlers
//   and wait for the round to end, as every other thread must that uses a control: it keeps the round with
//   HoldRound. The host's callbacks are called on the thread that called SetHost, if need be with the next
//   tick or composite.
#pragma once

#include "base/ranked_mutex.h"
#include "gui/geometry.h"
#include "gui/handler.h"
#include "gui/window.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// What one event of a device is to the toolkit. PostInput clears what has been consumed.
struct GUI_INPUT_RECORD {
    bool moved = false;
    bool wheel = false;
    bool buttonDown = false;
    bool buttonUp = false;
    bool keyDown = false;
    bool keyUp = false;
    int32_t key = 0;
    int32_t character = 0; // 0: none
    int32_t dx = 0;        // units
    int32_t dy = 0;
    int32_t button = 0;  // 1 left, 2 right, 3 middle; for the wheel 1 up, 0 down
    bool repeat = false; // with keyDown: the key has been held since an earlier record
};

// The all-ones id of the draw call that begins a composite.
inline constexpr uint32_t kCompositeStart = 0xFFFFFFFF;

// Sizes and places in pixels. A window of one colour may have a texture of one pixel, which is made in place of the one
// before: drawing it reaches beyond its edges, which go on as they are.
struct GUI_HOST_CALLBACKS {
    std::function<void(uint32_t id, int32_t width, int32_t height)> create;
    std::function<void(uint32_t id)> destroy;
    std::function<void(uint32_t id, const uint32_t* pixels, int32_t stride)> upload;
    // A clipped piece of a window. Without this callback the manager blends into a buffer.
    std::function<void(uint32_t id, uint32_t flags, int32_t sourceX, int32_t sourceY, int32_t x,
                       int32_t y, int32_t width, int32_t height)>
        draw;
};

// A paint limit that keeps each frame well under its 4 ms.
inline constexpr int64_t kSmoothPaintLimit = 800'000;

// Keeps the value that a window has.
inline constexpr int32_t kKeepValue = -999999;

class CGhostManager {
public:
    static CGhostManager& Get(); // the process's own
    CGhostManager();
    ~CGhostManager();
    CGhostManager(const CGhostManager&) = delete;
    CGhostManager& operator=(const CGhostManager&) = delete;

    void SetHost(GUI_HOST_CALLBACKS callbacks);

    // The display in pixels. Density and virtual screen follow from it, and every surface is made anew.
    void SetScreen(int32_t pixelWidth, int32_t pixelHeight);
    [[nodiscard]] double Density() const;
    [[nodiscard]] GUI_RECT ScreenRect() const;

    // ---- Windows.

    // Appended as the last sibling. An unknown parent makes it top-level.
    GHOSTMANAGER_WINDOW* CreateWindow(GHOSTMANAGER_WINDOW* parent, uint32_t flags,
                                      CGhostGUIHandler* handler, bool nonClient);
    // It lives until the end of a tick. A part of a control takes the whole control with it.
    bool DestroyWindow(GHOSTMANAGER_WINDOW* window);
    bool SetPart(GHOSTMANAGER_WINDOW* window); // of its parent's control, or its owner's
    bool SetWindowToolTip(GHOSTMANAGER_WINDOW* window, const std::wstring& text);
    bool SetTabStop(GHOSTMANAGER_WINDOW* window, bool tabStop);
    // kKeepValue keeps a value; negative sizes become 0, sizes are limited to 4000.
    bool SetWindowPos(GHOSTMANAGER_WINDOW* window, int32_t x, int32_t y, int32_t width,
                      int32_t height);
    bool SetWindowMinimum(GHOSTMANAGER_WINDOW* window, int32_t width, int32_t height);
    bool GetWindowRects(const GHOSTMANAGER_WINDOW* window, GUI_RECT* outer, GUI_RECT* client,
                        GUI_RECT* inset) const;
    bool SetWindowFrame(GHOSTMANAGER_WINDOW* window, const GhostBorderStyle* border); // null clears
    [[nodiscard]] bool IsWindowVisible(const GHOSTMANAGER_WINDOW* window) const;
    bool ShowWindow(GHOSTMANAGER_WINDOW* window, bool show);
    bool SetToolTipWindow(GHOSTMANAGER_WINDOW* window);
    // A window behind one that takes the input has the focus when that one has ended.
    bool SetFocus(GHOSTMANAGER_WINDOW* window);
    // Takes the input of all other windows. Ends when the window is destroyed, and not before.
    bool SetModal(GHOSTMANAGER_WINDOW* window);
    // Makes a top-level window float for another: it takes input when that one does, though another is
    // modal, and ends with it. Null lets it go.
    bool SetOwner(GHOSTMANAGER_WINDOW* window, GHOSTMANAGER_WINDOW* owner);
    [[nodiscard]] uint32_t GetWindowFlags(const GHOSTMANAGER_WINDOW* window) const;
    // -1: to the front of its siblings, though behind one that takes the input. -2 takes it out of the tree for good.
    bool SetZOrder(GHOSTMANAGER_WINDOW* window, int32_t where);
    bool GetScreenRect(const GHOSTMANAGER_WINDOW* window, GUI_RECT* rect) const;
    bool RecalcClient(GHOSTMANAGER_WINDOW* window);
    // The window is painted again with the next tick.
    bool Invalidate(GHOSTMANAGER_WINDOW* window);

    [[nodiscard]] GHOSTMANAGER_WINDOW* FocusWindow() const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* HoverWindow() const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* CaptureWindow() const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* ModalWindow() const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* ActiveTopWindow() const;

    // Beyond tab order: the focus goes to the nearest tab stop in a direction, within the modal window if
    // there is one. False when there is none. What lies behind another window is passed over.
    using Direction = GUI_DIRECTION;
    bool MoveFocus(Direction direction);
    // What a controller does. The control that has the focus is asked first, at once; if it has no use
    // for it, the focus moves, or the middle of its window is clicked. Thread: main.
    bool Navigate(Direction direction);
    bool ActivateFocus();
    bool CancelFocus(); // false when nothing was left or closed by it

    // Makes a window modal that takes the input of all others for a while, such as a message box, and
    // remembers who had it. They have it back when the window is freed, in whatever order several such
    // windows end.
    bool TakeInput(GHOSTMANAGER_WINDOW* window);
    // The id of the window that has the focus, 0 for none, and giving the focus back: to that window, or
    // the nearest above it that is seen and takes input. Without one, to the first tab stop of the modal
    // window, if there is a modal window.
    [[nodiscard]] uint32_t FocusId() const;
    void ReturnFocus(uint32_t id);
    // A press beside the controls takes the focus to where no key does anything. Gives it to the tab stop that this is
    // a part of, or back to the one that had it last, if that is seen and takes input; else to the first one of the
    // modal window.
    void ReturnFocusToTabStop();

    // ---- Clipboard, keys, cursor.

    void SetClipboard(const std::wstring& text);
    [[nodiscard]] bool GetClipboard(std::wstring& out) const; // false until something was set
    [[nodiscard]] bool IsKeyDown(uint32_t key) const;
    [[nodiscard]] int32_t CursorX() const;
    [[nodiscard]] int32_t CursorY() const;
    // 0 normal, 1 hot, 2 resizes to left and right.
    void SetCursorIndex(uint32_t index);
    [[nodiscard]] uint32_t CursorIndex() const;

    // ---- The round.

    // `nowMilliseconds`: any steady clock, for the double click.
    void PostInput(GUI_INPUT_RECORD& record, uint64_t nowMilliseconds);
    void Tick(uint32_t microseconds); // does nothing within a tick
    void CompositeAll();
    // The most pixels of windows that appear to be painted in one tick, 0 for all: the others appear with the next
    // ticks, from back to front. One of more pixels has a tick of its own. What is seen already is always painted.
    void SetPaintLimit(int64_t pixels);
    // With no draw callback CompositeAll blends into these pixels of the display, rows of `stride`.
    void SetCompositeBuffer(uint32_t* pixels, int32_t width, int32_t height, int32_t stride);
    // Screen areas changed since the last composite, in units.
    [[nodiscard]] GUI_RECT DirtyRect() const;

    // Called by the tick, in order with the calls of handlers.
    void QueueEvent(std::function<void()> event);

    struct TIMES {
        double tick = 0; // milliseconds, of the last
        double tickPeak = 0;
        double composite = 0;
        double compositePeak = 0;
    };
    [[nodiscard]] TIMES Times() const;

    // Keeps other threads out of the round while they make several windows that belong together.
    [[nodiscard]] auto HoldRound() { return std::unique_lock(apiLock); }

    // Frees every window and forgets all but the host and the display, as if newly made. For tests.
    void Reset();

    // Visits every window, back to front: a window, its children, its next sibling. The tree is locked
    // meanwhile and must not change.
    void ForEachWindow(const std::function<void(const GHOSTMANAGER_WINDOW&)>& visit) const;

private:
    struct CLIPPED_RECTS {
        GUI_RECT outer;     // on the screen, in units; empty where nothing is seen
        GUI_RECT client;    // on the screen
        int32_t outerX = 0; // of the clipped part within the window
        int32_t outerY = 0;
        int32_t clientX = 0; // of the clipped client part within the client area
        int32_t clientY = 0;
    };

    // All of these under the tree lock.
    [[nodiscard]] bool Knows(const GHOSTMANAGER_WINDOW* window) const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* Next(const GHOSTMANAGER_WINDOW* window) const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* FrontMost() const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* NextBehind(const GHOSTMANAGER_WINDOW* window) const;
    void Link(GHOSTMANAGER_WINDOW& window);
    void Unlink(GHOSTMANAGER_WINDOW& window);
    [[nodiscard]] static bool EffectivelyVisible(const GHOSTMANAGER_WINDOW* window);
    [[nodiscard]] bool WithinModal(const GHOSTMANAGER_WINDOW* window) const;
    [[nodiscard]] static GUI_RECT PlaceOnScreen(const GHOSTMANAGER_WINDOW& window);
    [[nodiscard]] GUI_RECT ClipToAncestors(const GHOSTMANAGER_WINDOW& window, GUI_RECT rect) const;
    [[nodiscard]] CLIPPED_RECTS GetClippedRects(const GHOSTMANAGER_WINDOW& window) const;
    void AddDirty(const GHOSTMANAGER_WINDOW& window);
    void ComputeClient(GHOSTMANAGER_WINDOW& window);
    void TellSize(GHOSTMANAGER_WINDOW& window);
    void MakeSurface(GHOSTMANAGER_WINDOW& window);
    void RefitSurfaces(GHOSTMANAGER_WINDOW& window);
    void FocusOn(GHOSTMANAGER_WINDOW* window);
    void FocusLater(const GHOSTMANAGER_WINDOW& window);
    void HoverOn(GHOSTMANAGER_WINDOW* window);
    void FocusNextTabStop(bool backward);
    [[nodiscard]] std::vector<GHOSTMANAGER_WINDOW*> SeenTabStops() const;
    void KeyDownToFocus(GHOSTGUIKey key, bool repeat);
    void KeyUpToFocus(GHOSTGUIKey key);
    void InputToFocus(GUI_INPUT_RECORD& record);
    void DetectDoubleClick(GUI_INPUT_RECORD& record, bool& doubleClick, uint64_t now);
    void InputToWindow(GHOSTMANAGER_WINDOW& window, GUI_INPUT_RECORD& record, bool& doubleClick);
    [[nodiscard]] static bool Pending(const GUI_INPUT_RECORD& record, bool doubleClick);
    void ClientInput(GHOSTMANAGER_WINDOW& window, GUI_INPUT_RECORD& record, bool& doubleClick,
                     int x, int y);
    void FrameInput(GHOSTMANAGER_WINDOW& window, GUI_INPUT_RECORD& record, int x, int y);
    void NoteActivity(const GUI_INPUT_RECORD& record);
    void HideToolTip();
    [[nodiscard]] bool WithinToolTip(const GHOSTMANAGER_WINDOW* window) const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* UnderCursor() const; // client area or frame
    void FreeSubtree(GHOSTMANAGER_WINDOW* window);
    [[nodiscard]] GHOSTMANAGER_WINDOW* OwnedBy(const GHOSTMANAGER_WINDOW* owner) const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* WithId(uint32_t id) const;
    struct INPUT_TAKER {
        uint32_t window; // ids; 0: none
        uint32_t modal;  // before it
        uint32_t focus;
    };
    [[nodiscard]] GHOSTMANAGER_WINDOW* VisibleWithId(uint32_t id) const;
    [[nodiscard]] GHOSTMANAGER_WINDOW* FirstTabStop(GHOSTMANAGER_WINDOW* within) const;
    void ReturnInput(const GHOSTMANAGER_WINDOW& window);
    void ReturnModality(uint32_t before);
    [[nodiscard]] bool AskFocus(const std::function<bool(CGhostGUIHandler&)>& ask);
    void Forget(GHOSTMANAGER_WINDOW* window);
    [[nodiscard]] CGhostGUIHandler* FirstHandler(const GHOSTMANAGER_WINDOW& window) const;
    void TickHandlers(uint32_t microseconds);
    void TickToolTip();
    void DrainQueue();
    void FreePending();
    void RepaintWindows();
    [[nodiscard]] bool MayPaint(const GHOSTMANAGER_WINDOW& window);
    void Repaint(GHOSTMANAGER_WINDOW& window);
    void Upload(GHOSTMANAGER_WINDOW& window, CGhostSurface& surface);
    void TellHost(std::function<void()> call);
    void TellHostWhatWaits();
    void DrawWindow(const GHOSTMANAGER_WINDOW& window);
    void StartBuffer();
    void BlendIntoBuffer(CGhostSurface& surface, int32_t sourceX, int32_t sourceY, int32_t x,
                         int32_t y, int32_t width, int32_t height);

    // Queues a call for every handler of the chain.
    void QueueChain(GHOSTMANAGER_WINDOW* window,
                    const std::function<void(CGhostGUIHandler&)>& call);

    using ApiMutex = RankedRecursiveMutex<LockRank::kGuiApi>;
    using TreeMutex = RankedRecursiveMutex<LockRank::kGuiTree>;
    using QueueMutex = RankedRecursiveMutex<LockRank::kGuiQueue>;
    ApiMutex apiLock;
    mutable TreeMutex treeLock;
    QueueMutex queueLock;
    struct EVENT {
        GHOSTMANAGER_WINDOW*
            window; // whose handler is called; null for one that was queued outside
        std::function<void()> call;
    };
    std::deque<EVENT> eventQueue;

    GUI_HOST_CALLBACKS host;
    std::thread::id hostThread;
    std::vector<std::function<void()>> hostWaits; // calls of it that other threads have left
    bool ticking = false;
    int64_t paintLimit = 0;
    int64_t appeared = 0; // pixels of the windows that were painted for the first time in this tick
    int32_t cursorX = 0;
    int32_t cursorY = 0;
    uint32_t nextId = 1;
    double density = 1.0;
    GUI_RECT screenRect{0, 0, 1280, 720};
    GUI_RECT dirtyRect;
    std::vector<GHOSTMANAGER_WINDOW*> pendingDelete;
    uint64_t timeMicroseconds = 0; // sum of the ticks' lengths
    uint64_t lastActivity = 0;     // of the mouse over a window, on that clock
    uint32_t cursorIndex = 0;
    std::array<bool, 512> keyState{};
    std::array<uint32_t, 512> keyPressedIn{};   // id of the focus at a held key's press, 0: none
    GHOSTMANAGER_WINDOW* firstWindow = nullptr; // of the top level
    GHOSTMANAGER_WINDOW* lastWindow = nullptr;  // the frontmost
    bool captureInFrame = false;
    bool toolTipVisible = false;
    uint32_t toolTipFor = 0;                      // id of the window whose text it shows
    GHOSTMANAGER_WINDOW* captureWindow = nullptr; // under a held button
    GHOSTMANAGER_WINDOW* hoverWindow = nullptr;
    GHOSTMANAGER_WINDOW* focusWindow = nullptr;
    uint32_t lastTabStop = 0; // id of the last one that had the focus, 0: none
    GHOSTMANAGER_WINDOW* activeTopWindow = nullptr; // topmost ancestor of the focus
    GHOSTMANAGER_WINDOW* modalWindow = nullptr;
    GHOSTMANAGER_WINDOW* toolTipWindow = nullptr;
    std::vector<INPUT_TAKER> takers; // the last one made last
    uint64_t lastClickTimeMs = 0;
    int32_t lastClickButton = 0;
    bool hasClipboard = false;
    std::wstring clipboard;
    TIMES times;

    uint32_t* bufferPixels = nullptr;
    int32_t bufferWidth = 0;
    int32_t bufferHeight = 0;
    int32_t bufferStride = 0;
    PIXEL_RECT bufferClip; // of the composite in progress
};
