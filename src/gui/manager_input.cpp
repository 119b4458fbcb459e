// Input: the hit test, capture, focus and what is queued for the handlers.
#include "gui/manager.h"

#include <algorithm>
#include <cstdlib>
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

// ---- Focus.

bool CGhostManager::SetFocus(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    FocusOn(window);
    return true;
}

void CGhostManager::FocusOn(GHOSTMANAGER_WINDOW* window) {
    GHOSTMANAGER_WINDOW* const old = focusWindow;
    if (old == window) {
        return;
    }
    QueueChain(old, [window](CGhostGUIHandler& handler) { handler.OnFocus(false, window); });
    if (window == nullptr || !EffectivelyVisible(window)) {
        focusWindow = nullptr;
        return;
    }
    focusWindow = window;
    GHOSTMANAGER_WINDOW* top = window;
    while (top->parent != nullptr) {
        top = top->parent;
    }
    if (top != activeTopWindow) {
        QueueChain(activeTopWindow,
                   [](CGhostGUIHandler& handler) { handler.OnActivate(nullptr, false); });
        activeTopWindow = top;
        QueueChain(top, [window](CGhostGUIHandler& handler) { handler.OnActivate(window, true); });
    }
    QueueChain(window, [old](CGhostGUIHandler& handler) { handler.OnFocus(true, old); });
}

bool CGhostManager::SetModal(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    modalWindow = window;
    captureWindow = nullptr;
    hoverWindow = nullptr;
    FocusOn(window);
    return true;
}

// Among the siblings of the focus, round to where it began.
void CGhostManager::FocusNextTabStop(bool backward) {
    GHOSTMANAGER_WINDOW* const parent = focusWindow->parent;
    GHOSTMANAGER_WINDOW* at = focusWindow;
    do {
        at = backward ? at->prevSibling : at->nextSibling;
        if (at == nullptr) {
            at = backward ? parent->lastChild : parent->firstChild;
        }
        if (at != focusWindow && at->tabStop && at->visible) {
            FocusOn(at);
            return;
        }
    } while (at != focusWindow);
}

namespace {

struct CENTRE {
    int64_t x;
    int64_t y;
};

// Twice the middle of a rectangle, so that it is whole.
CENTRE TwiceCentre(const GUI_RECT& rect) {
    return {2 * int64_t{rect.x} + rect.width, 2 * int64_t{rect.y} + rect.height};
}

// How far a target is from where the focus is, in a direction; below 0 if it does not lie there. What
// is off to the side counts for more than what is straight ahead.
int64_t Distance(const GUI_RECT& from, const GUI_RECT& to, CGhostManager::Direction direction) {
    constexpr int64_t kSideWeight = 3;
    const CENTRE a = TwiceCentre(from);
    const CENTRE b = TwiceCentre(to);
    const bool sideways = direction == CGhostManager::Direction::kLeft ||
                          direction == CGhostManager::Direction::kRight;
    const bool backward =
        direction == CGhostManager::Direction::kLeft || direction == CGhostManager::Direction::kUp;
    const int64_t ahead = (sideways ? b.x - a.x : b.y - a.y) * (backward ? -1 : 1);
    int64_t aside = std::abs(sideways ? b.y - a.y : b.x - a.x);
    // Rectangles that overlap in the other axis lie straight ahead.
    const bool overlap = sideways ? from.y < to.Bottom() && to.y < from.Bottom()
                                  : from.x < to.Right() && to.x < from.Right();
    if (overlap) {
        aside /= kSideWeight * kSideWeight;
    }
    return ahead <= 0 ? -1 : ahead + kSideWeight * aside;
}

} // namespace

bool CGhostManager::MoveFocus(Direction direction) {
    const std::scoped_lock hold(treeLock);
    // Without a focus, as if it lay just outside the screen's upper left corner.
    const bool hasFocus = focusWindow != nullptr && EffectivelyVisible(focusWindow);
    const GUI_RECT from = hasFocus ? PlaceOnScreen(*focusWindow) : GUI_RECT{-2, -2, 1, 1};
    const Direction way = hasFocus ? direction : Direction::kDown;
    GHOSTMANAGER_WINDOW* nearest = nullptr;
    int64_t least = 0;
    for (GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = Next(at)) {
        if (at == focusWindow || !at->tabStop || !EffectivelyVisible(at) || !WithinModal(at) ||
            ClipToAncestors(*at, {0, 0, at->width, at->height}).Empty()) {
            continue;
        }
        const int64_t distance = Distance(from, PlaceOnScreen(*at), way);
        if (distance >= 0 && (nearest == nullptr || distance < least)) {
            nearest = at;
            least = distance;
        }
    }
    if (nearest == nullptr) {
        return false;
    }
    FocusOn(nearest);
    return true;
}

// Every handler of the chain is asked until one used it. No lock is held meanwhile; the windows stay,
// since they are freed by the tick alone.
bool CGhostManager::AskFocus(const std::function<bool(CGhostGUIHandler&)>& ask) {
    CGhostGUIHandler* handler = nullptr;
    {
        const std::scoped_lock hold(treeLock);
        if (focusWindow == nullptr || !EffectivelyVisible(focusWindow)) {
            return false;
        }
        handler = focusWindow->handler;
    }
    while (handler != nullptr) {
        CGhostGUIHandler* const next = handler->next;
        if (ask(*handler)) {
            return true;
        }
        handler = next;
    }
    return false;
}

bool CGhostManager::Navigate(Direction direction) {
    const std::scoped_lock hold(apiLock);
    return AskFocus(
               [direction](CGhostGUIHandler& handler) { return handler.OnNavigate(direction); }) ||
           MoveFocus(direction);
}

bool CGhostManager::ActivateFocus() {
    const std::scoped_lock hold(apiLock);
    if (AskFocus([](CGhostGUIHandler& handler) { return handler.OnActivateKey(); })) {
        return true;
    }
    const std::scoped_lock holdTree(treeLock);
    if (focusWindow == nullptr || !EffectivelyVisible(focusWindow)) {
        return false;
    }
    const int x = focusWindow->clientRect.width / 2;
    const int y = focusWindow->clientRect.height / 2;
    QueueChain(focusWindow, [x, y](CGhostGUIHandler& handler) {
        handler.OnMouseDown(x, y, 1);
        handler.OnMouseUp(x, y, 1);
    });
    return true;
}

bool CGhostManager::CancelFocus() {
    const std::scoped_lock hold(apiLock);
    return AskFocus([](CGhostGUIHandler& handler) { return handler.OnCancelKey(); });
}

// ---- Taking the input for a while.

bool CGhostManager::TakeInput(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    takers.push_back({window->id, modalWindow != nullptr ? modalWindow->id : 0, FocusId()});
    HoverOn(nullptr); // what was pressed or hot comes to rest
    return SetModal(window);
}

uint32_t CGhostManager::FocusId() const {
    const std::scoped_lock hold(treeLock);
    return focusWindow != nullptr ? focusWindow->id : 0;
}

GHOSTMANAGER_WINDOW* CGhostManager::VisibleWithId(uint32_t id) const {
    GHOSTMANAGER_WINDOW* const window = WithId(id);
    return window != nullptr && EffectivelyVisible(window) ? window : nullptr;
}

// Null when there is none.
GHOSTMANAGER_WINDOW* CGhostManager::FirstTabStop(GHOSTMANAGER_WINDOW* within) const {
    for (GHOSTMANAGER_WINDOW* at = within; at != nullptr; at = Next(at)) {
        if (at->depth <= within->depth && at != within) {
            return nullptr; // beyond its last descendant
        }
        if (at->tabStop && EffectivelyVisible(at)) {
            return at;
        }
    }
    return nullptr;
}

void CGhostManager::ReturnFocus(uint32_t id) {
    const std::scoped_lock hold(treeLock);
    GHOSTMANAGER_WINDOW* to = WithId(id);
    const auto usable = [&] {
        return to->surface != nullptr && EffectivelyVisible(to) && WithinModal(to);
    };
    while (to != nullptr && !usable()) {
        to = to->parent != nullptr ? to->parent : to->owner;
    }
    if (to == nullptr && modalWindow != nullptr) {
        to = FirstTabStop(modalWindow);
        to = to != nullptr ? to : modalWindow;
    }
    if (to != nullptr && EffectivelyVisible(to)) {
        FocusOn(to);
    }
}

// To the window that was modal before, or else the last of the takers that is still seen.
void CGhostManager::ReturnModality(uint32_t before) {
    modalWindow = VisibleWithId(before);
    for (size_t i = takers.size(); modalWindow == nullptr && i-- > 0;) {
        modalWindow = VisibleWithId(takers[i].window);
    }
}

// A window that is freed gives back what it took. If another took the input after it, that one now has to
// return it to where this one got it from.
void CGhostManager::ReturnInput(const GHOSTMANAGER_WINDOW& window) {
    const auto taker = std::find_if(takers.begin(), takers.end(), [&](const INPUT_TAKER& row) {
        return row.window == window.id;
    });
    if (taker == takers.end()) {
        if (modalWindow == nullptr && !takers.empty()) {
            ReturnModality(0);
            if (focusWindow == nullptr) {
                ReturnFocus(0);
            }
        }
        return;
    }
    const INPUT_TAKER ended = *taker;
    const auto above = takers.erase(taker);
    if (above != takers.end()) {
        above->modal = above->modal == ended.window ? ended.modal : above->modal;
        above->focus = WithId(above->focus) == nullptr ? ended.focus : above->focus;
    }
    if (modalWindow == nullptr) {
        ReturnModality(above == takers.end() ? ended.modal : 0);
    }
    // A window that was given the focus meanwhile keeps it if it may have it.
    if (!Knows(focusWindow) || !EffectivelyVisible(focusWindow) || !WithinModal(focusWindow)) {
        ReturnFocus(ended.focus);
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

void CGhostManager::KeyDownToFocus(GHOSTGUIKey key) {
    const auto index = static_cast<size_t>(key);
    bool elsewhere = false; // a repeat of a key that was pressed in another window
    if (index < keyState.size()) {
        if (!keyState[index]) {
            keyPressedIn[index] = FocusId();
        }
        elsewhere = keyPressedIn[index] != FocusId();
        keyState[index] = true;
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

// A release goes to the window that got the press and to no other.
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
        KeyDownToFocus(key);
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
        if (WithinModal(at) && EffectivelyVisible(at)) {
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

void CGhostManager::NoteActivity(const GUI_INPUT_RECORD& record) {
    if (!record.moved && !record.buttonDown && !record.buttonUp) {
        return;
    }
    lastActivity = timeMicroseconds;
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
