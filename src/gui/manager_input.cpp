// Input: the hit test, capture, focus and what is queued for the handlers.
#include "gui/manager.h"

#include <algorithm>
#include <compare>
#include <cstdlib>
#include <optional>
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

// How far a target is from where the focus is, in a direction. The least is the nearest.
struct DISTANCE {
    bool beside = false; // farther to the side than ahead
    int64_t gaps = 0;    // between the edges; to the side counts double
    int64_t centres = 0; // for rectangles that overlap
    auto operator<=>(const DISTANCE&) const = default;
};

int64_t Gap(int64_t low, int64_t high, int64_t otherLow, int64_t otherHigh) {
    return std::max<int64_t>({0, otherLow - high, low - otherHigh});
}

// None for a target whose middle does not lie in that direction. What lies within 45 degrees goes first,
// however far it is: so every control has a neighbour from which it is reached.
std::optional<DISTANCE> Distance(const GUI_RECT& from, const GUI_RECT& to,
                                 GUI_DIRECTION direction) {
    const bool sideways = direction == GUI_DIRECTION::kLeft || direction == GUI_DIRECTION::kRight;
    const bool backward = direction == GUI_DIRECTION::kLeft || direction == GUI_DIRECTION::kUp;
    // Twice the way between the middles, so that it is whole.
    const int64_t x = 2 * (int64_t{to.x} - from.x) + to.width - from.width;
    const int64_t y = 2 * (int64_t{to.y} - from.y) + to.height - from.height;
    const int64_t ahead = (sideways ? x : y) * (backward ? -1 : 1);
    if (ahead <= 0) {
        return std::nullopt;
    }
    const int64_t gapX = Gap(from.x, from.Right(), to.x, to.Right());
    const int64_t gapY = Gap(from.y, from.Bottom(), to.y, to.Bottom());
    const int64_t gapAhead = sideways ? gapX : gapY;
    const int64_t gapAside = sideways ? gapY : gapX;
    return DISTANCE{gapAside > gapAhead, gapAhead + 2 * gapAside,
                    ahead + std::abs(sideways ? y : x)};
}

} // namespace

// Those that a controller may go to: seen in their middle or near a corner, not behind another window.
std::vector<GHOSTMANAGER_WINDOW*> CGhostManager::SeenTabStops() const {
    struct PLACED {
        GHOSTMANAGER_WINDOW* window;
        GUI_RECT seen;
    };
    std::vector<PLACED> windows; // front to back, as the mouse meets them
    for (GHOSTMANAGER_WINDOW* at = FrontMost(); at != nullptr; at = NextBehind(at)) {
        if (EffectivelyVisible(at) && WithinModal(at)) {
            windows.push_back({at, ClipToAncestors(*at, {0, 0, at->width, at->height})});
        }
    }
    const auto within = [](const GHOSTMANAGER_WINDOW* window, const GHOSTMANAGER_WINDOW* ancestor) {
        while (window != nullptr && window != ancestor) {
            window = window->parent;
        }
        return window != nullptr;
    };
    const auto seenAt = [&](const GHOSTMANAGER_WINDOW* window, int32_t x, int32_t y) {
        const auto hit = std::find_if(windows.begin(), windows.end(), [&](const PLACED& placed) {
            return placed.seen.Contains(x, y) && !within(placed.window, toolTipWindow);
        });
        return hit != windows.end() && within(hit->window, window);
    };
    std::vector<GHOSTMANAGER_WINDOW*> stops;
    for (const PLACED& placed : windows) {
        const GUI_RECT& seen = placed.seen;
        if (!placed.window->tabStop || seen.Empty()) {
            continue;
        }
        const int32_t right = seen.Right() - 1;
        const int32_t bottom = seen.Bottom() - 1;
        if (seenAt(placed.window, seen.x + seen.width / 2, seen.y + seen.height / 2) ||
            seenAt(placed.window, seen.x, seen.y) || seenAt(placed.window, right, seen.y) ||
            seenAt(placed.window, seen.x, bottom) || seenAt(placed.window, right, bottom)) {
            stops.push_back(placed.window);
        }
    }
    return stops;
}

bool CGhostManager::MoveFocus(Direction direction) {
    const std::scoped_lock hold(treeLock);
    const bool hasFocus = focusWindow != nullptr && EffectivelyVisible(focusWindow);
    GHOSTMANAGER_WINDOW* nearest = nullptr;
    DISTANCE least;
    for (GHOSTMANAGER_WINDOW* const at : SeenTabStops()) {
        const GUI_RECT place = PlaceOnScreen(*at);
        // Without a focus the first one is what is nearest to the screen's upper left corner.
        const std::optional<DISTANCE> distance =
            hasFocus ? Distance(PlaceOnScreen(*focusWindow), place, direction)
                     : DISTANCE{false, int64_t{place.x} + place.y, 0};
        if (at != focusWindow && distance && (nearest == nullptr || *distance < least)) {
            nearest = at;
            least = *distance;
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
