// Input: the hit test, capture, keys, and what is queued for the handlers.
#include "gui/manager.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int32_t kCursorReach = 16; // beyond the left and upper edge, for the cursor's hot spot
constexpr uint64_t kDoubleClickMs = 301;

} // namespace

void CGhostManager::QueueEvent(std::function<void()> event) {
    const std::scoped_lock hold(queueLock);
    eventQueue.push_back({nullptr, std::move(event)});
}

void CGhostManager::QueueChain(GHOSTMANAGER_WINDOW* window,
                               const std::function<void(CGhostGUIHandler&)>& call) {
    if (window == nullptr) {
        return;
    }
    const std::scoped_lock hold(queueLock);
    for (CGhostGUIHandler* handler = window->handler; handler != nullptr; handler = handler->next) {
        eventQueue.push_back({window, [handler, call] { call(*handler); }});
    }
}

// ---- The mouse.

void CGhostManager::HoverOn(GHOSTMANAGER_WINDOW* window) {
    if (window == hoverWindow) {
        return;
    }
    QueueChain(hoverWindow, [](CGhostGUIHandler& handler) { handler.OnMouseLeave(); });
    hoverWindow = window;
    QueueChain(hoverWindow, [](CGhostGUIHandler& handler) { handler.OnMouseEnter(); });
}

// A second press of the same button in time becomes a double click and is no press any more.
void CGhostManager::DetectDoubleClick(GUI_INPUT_RECORD& record, bool& doubleClick, uint64_t now) {
    if (!record.buttonDown) {
        return;
    }
    if (record.button == lastClickButton && now - lastClickTimeMs < kDoubleClickMs) {
        record.buttonDown = false;
        doubleClick = true;
    }
    lastClickTimeMs = now;
    lastClickButton = record.button;
}

namespace {

// Keys that press and dismiss. Their repeats go only to the window that got the press, so that a held
// Return does not close the box that it opens.
bool BelongsToItsPress(GHOSTGUIKey key) {
    return key == GHOSTGUIKey::kReturn || key == GHOSTGUIKey::kSpace || key == GHOSTGUIKey::kEscape;
}

} // namespace

void CGhostManager::KeyDownToFocus(GHOSTGUIKey key, bool repeat) {
    const auto index = static_cast<size_t>(key);
    bool elsewhere = false; // a repeat of a key that was pressed in another window
    if (index < keyState.size()) {
        keyState[index] = true;
        keyPressedIn[index] = repeat ? keyPressedIn[index] : FocusId();
        elsewhere = keyPressedIn[index] != FocusId();
    }
    if (focusWindow == nullptr) {
        return;
    }
    if (key == GHOSTGUIKey::kTab && focusWindow->parent != nullptr) {
        FocusNextTabStop(IsKeyDown(static_cast<uint32_t>(GHOSTGUIKey::kLeftShift)));
    } else if (!elsewhere || !BelongsToItsPress(key)) {
        QueueChain(focusWindow, [key](CGhostGUIHandler& handler) { handler.OnKeyDown(key); });
    }
}

// A release goes only to the window that got the press. Otherwise releasing the Return that opened a box would
// press the box's button, and releasing the key that closed it would reach the window below.
void CGhostManager::KeyUpToFocus(GHOSTGUIKey key) {
    const auto index = static_cast<size_t>(key);
    if (index < keyState.size()) {
        keyState[index] = false;
        if (std::exchange(keyPressedIn[index], 0) != FocusId()) {
            return;
        }
    }
    QueueChain(focusWindow, [key](CGhostGUIHandler& handler) { handler.OnKeyUp(key); });
}

void CGhostManager::InputToFocus(GUI_INPUT_RECORD& record) {
    const auto key = static_cast<GHOSTGUIKey>(record.key);
    if (record.keyDown) {
        KeyDownToFocus(key, record.repeat);
    }
    if (record.character != 0) {
        const auto character = static_cast<unsigned>(record.character);
        QueueChain(focusWindow,
                   [character](CGhostGUIHandler& handler) { handler.OnChar(character); });
    }
    if (record.keyUp) {
        KeyUpToFocus(key);
    }
    record.keyDown = record.keyUp = false;
    record.character = 0;
}

bool CGhostManager::Pending(const GUI_INPUT_RECORD& record, bool doubleClick) {
    return record.moved || record.wheel || record.buttonDown || record.buttonUp || doubleClick;
}

void CGhostManager::PostInput(GUI_INPUT_RECORD& record, uint64_t nowMilliseconds) {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    if (record.moved) {
        const auto moved = [](int32_t at, int32_t by, int32_t size) {
            const int64_t to = int64_t{at} + by;
            return static_cast<int32_t>(std::clamp<int64_t>(to, -kCursorReach, size));
        };
        cursorX = moved(cursorX, record.dx, screenRect.width);
        cursorY = moved(cursorY, record.dy, screenRect.height);
    }
    bool doubleClick = false;
    DetectDoubleClick(record, doubleClick, nowMilliseconds);
    InputToFocus(record);
    for (GHOSTMANAGER_WINDOW* at = FrontMost(); at != nullptr; at = NextBehind(at)) {
        if (WithinModal(at) && EffectivelyVisible(at) && !WithinToolTip(at)) {
            NoteActivity(record);
            if (Pending(record, doubleClick)) {
                InputToWindow(*at, record, doubleClick);
            }
        }
    }
    if (record.moved) {
        HoverOn(nullptr); // over nothing
    }
}

// A tip is there to be read. Near the upper edge of the screen it lies under the cursor, and the mouse is
// meant for what is farther back.
bool CGhostManager::WithinToolTip(const GHOSTMANAGER_WINDOW* window) const {
    while (window != nullptr && window != toolTipWindow) {
        window = window->parent;
    }
    return window != nullptr;
}

GHOSTMANAGER_WINDOW* CGhostManager::UnderCursor() const {
    for (GHOSTMANAGER_WINDOW* at = FrontMost(); at != nullptr; at = NextBehind(at)) {
        if (WithinModal(at) && EffectivelyVisible(at) && !WithinToolTip(at) &&
            GetClippedRects(*at).outer.Contains(cursorX, cursorY)) {
            return at;
        }
    }
    return nullptr;
}

void CGhostManager::NoteActivity(const GUI_INPUT_RECORD& record) {
    if (!record.moved && !record.buttonDown && !record.buttonUp) {
        return;
    }
    lastActivity = timeMicroseconds;
    HideToolTip();
}

void CGhostManager::HideToolTip() {
    if (toolTipVisible) {
        QueueChain(toolTipWindow, [](CGhostGUIHandler& handler) { handler.HideToolTip(); });
        toolTipVisible = false;
    }
}

// With a capture its window alone gets the mouse, wherever that is.
void CGhostManager::InputToWindow(GHOSTMANAGER_WINDOW& window, GUI_INPUT_RECORD& record,
                                  bool& doubleClick) {
    const CLIPPED_RECTS clipped = GetClippedRects(window);
    bool inClient = clipped.client.Contains(cursorX, cursorY);
    bool inFrame = !inClient && clipped.outer.Contains(cursorX, cursorY);
    if (captureWindow != nullptr) {
        inClient = captureWindow == &window && !captureInFrame;
        inFrame = captureWindow == &window && captureInFrame;
    }
    const GUI_RECT place = PlaceOnScreen(window);
    if (inClient) {
        ClientInput(window, record, doubleClick, cursorX - place.x - window.clientRect.x,
                    cursorY - place.y - window.clientRect.y);
    } else if (inFrame) {
        FrameInput(window, record, cursorX - place.x, cursorY - place.y);
    }
}

void CGhostManager::ClientInput(GHOSTMANAGER_WINDOW& window, GUI_INPUT_RECORD& record,
                                bool& doubleClick, int x, int y) {
    HoverOn(&window);
    const auto button = static_cast<unsigned>(record.button);
    if (record.moved) {
        record.moved = false;
        QueueChain(&window, [x, y](CGhostGUIHandler& handler) { handler.OnMouseMove(x, y); });
    }
    if (record.wheel) {
        record.wheel = false;
        FocusOn(&window);
        const bool up = button == 1;
        QueueChain(&window,
                   [x, y, up](CGhostGUIHandler& handler) { handler.OnMouseWheel(x, y, up); });
    }
    if (doubleClick) {
        doubleClick = false;
        FocusOn(&window);
        captureInFrame = false;
        QueueChain(&window, [x, y, button](CGhostGUIHandler& handler) {
            handler.OnMouseDoubleClick(x, y, button);
        });
    }
    if (record.buttonDown) {
        record.buttonDown = false;
        FocusOn(&window);
        captureWindow = &window;
        captureInFrame = false;
        QueueChain(&window, [x, y, button](CGhostGUIHandler& handler) {
            handler.OnMouseDown(x, y, button);
        });
    }
    if (record.buttonUp) {
        record.buttonUp = false;
        captureWindow = nullptr;
        QueueChain(&window,
                   [x, y, button](CGhostGUIHandler& handler) { handler.OnMouseUp(x, y, button); });
    }
}

// The frame knows no double click, which goes on to a window farther back.
void CGhostManager::FrameInput(GHOSTMANAGER_WINDOW& window, GUI_INPUT_RECORD& record, int x,
                               int y) {
    HoverOn(&window);
    if (record.moved) {
        record.moved = false;
        QueueChain(&window, [x, y](CGhostGUIHandler& handler) { handler.OnFrameMouseMove(x, y); });
    }
    if (record.wheel) {
        record.wheel = false;
        const bool up = record.button == 1;
        QueueChain(&window,
                   [x, y, up](CGhostGUIHandler& handler) { handler.OnFrameMouseWheel(x, y, up); });
    }
    if (record.buttonDown) {
        record.buttonDown = false;
        FocusOn(&window);
        captureWindow = &window;
        captureInFrame = true;
        QueueChain(&window,
                   [x, y](CGhostGUIHandler& handler) { handler.OnFrameMouseDown(x, y, 1); });
    }
    if (record.buttonUp) {
        record.buttonUp = false;
        captureWindow = nullptr;
        QueueChain(&window, [x, y](CGhostGUIHandler& handler) { handler.OnFrameMouseUp(x, y, 1); });
    }
}
