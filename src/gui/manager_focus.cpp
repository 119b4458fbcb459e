// The focus: setting and moving it, what a controller does with it, and who has it after a window that took
// the input of all others.
#include "gui/manager.h"

#include <algorithm>
#include <compare>
#include <cstdlib>
#include <optional>

bool CGhostManager::SetFocus(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    if (takers.empty() || WithinModal(window)) {
        FocusOn(window);
    } else {
        FocusLater(*window);
    }
    return true;
}

// A window behind a message box must not take the keys from it. It gets the focus when the box has closed.
void CGhostManager::FocusLater(const GHOSTMANAGER_WINDOW& window) {
    for (auto taker = takers.rbegin(); taker != takers.rend(); ++taker) {
        const GHOSTMANAGER_WINDOW* const before = WithId(taker->modal);
        const GHOSTMANAGER_WINDOW* at = &window;
        while (before != nullptr && at != nullptr && at != before) {
            at = at->parent != nullptr ? at->parent : at->owner;
        }
        if (at != nullptr) {
            taker->focus = window.id;
            return;
        }
    }
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
    lastTabStop = window->tabStop ? window->id : lastTabStop;
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

// ---- Directions.

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
// however far it is; if the distance alone decided, some layouts would have controls that are never reached.
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

// A window that floats for another, such as an open list, has its keys from that one; and a control that can be used
// no more keeps the focus until its owner gives it away.
void CGhostManager::ReturnFocusToTabStop() {
    const std::scoped_lock hold(treeLock);
    if (focusWindow == nullptr || focusWindow->tabStop || focusWindow->id == lastTabStop ||
        (activeTopWindow != nullptr && activeTopWindow->owner != nullptr)) {
        return;
    }
    GHOSTMANAGER_WINDOW* to = focusWindow->parent;
    while (to != nullptr && !to->tabStop) { // a list has the keys of its bar
        to = to->parent;
    }
    to = to != nullptr ? to : VisibleWithId(lastTabStop);
    if (to == nullptr || !to->tabStop || !WithinModal(to)) {
        to = modalWindow != nullptr ? FirstTabStop(modalWindow) : nullptr;
    }
    if (to != nullptr) {
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
