// The tree of windows: making, placing, showing and freeing them.
#include "gui/bitmap.h"
#include "gui/manager.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t kMostSize = 4000;

template <typename Call>
void ForChain(GHOSTMANAGER_WINDOW& window, Call call) {
    for (CGhostGUIHandler* handler = window.handler; handler != nullptr;) {
        CGhostGUIHandler* const next = handler->next;
        call(*handler);
        handler = next;
    }
}

} // namespace

GHOSTMANAGER_WINDOW* CGhostManager::CreateWindow(GHOSTMANAGER_WINDOW* parent, uint32_t flags,
                                                 CGhostGUIHandler* handler, bool nonClient) {
    const std::scoped_lock hold(treeLock);
    auto* const window = new GHOSTMANAGER_WINDOW;
    nextId += 3;
    window->id = nextId;
    window->parent = Knows(parent) ? parent : nullptr;
    window->depth = window->parent != nullptr ? window->parent->depth + 1 : 0;
    window->flags = flags;
    window->handler = handler;
    window->nonClient = nonClient;
    Link(*window);
    return window;
}

bool CGhostManager::DestroyWindow(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    while (window->part && (window->parent != nullptr || window->owner != nullptr)) {
        window = window->parent != nullptr ? window->parent : window->owner;
    }
    window->deletePending = true;
    return true;
}

bool CGhostManager::SetPart(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    window->part = true;
    return true;
}

// ---- The order of the tree.

// A window, then its children, then its next sibling.
GHOSTMANAGER_WINDOW* CGhostManager::Next(const GHOSTMANAGER_WINDOW* window) const {
    if (window == nullptr) {
        return firstWindow;
    }
    if (window->firstChild != nullptr) {
        return window->firstChild;
    }
    while (window != nullptr && window->nextSibling == nullptr) {
        window = window->parent;
    }
    return window != nullptr ? window->nextSibling : nullptr;
}

namespace {

GHOSTMANAGER_WINDOW* LastDescendant(GHOSTMANAGER_WINDOW* window) {
    while (window != nullptr && window->lastChild != nullptr) {
        window = window->lastChild;
    }
    return window;
}

} // namespace

GHOSTMANAGER_WINDOW* CGhostManager::FrontMost() const {
    return LastDescendant(lastWindow);
}

// The other way: the last sibling first, children before their parent.
GHOSTMANAGER_WINDOW* CGhostManager::NextBehind(const GHOSTMANAGER_WINDOW* window) const {
    return window->prevSibling != nullptr ? LastDescendant(window->prevSibling) : window->parent;
}

bool CGhostManager::Knows(const GHOSTMANAGER_WINDOW* window) const {
    if (window == nullptr) {
        return false;
    }
    for (const GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = Next(at)) {
        if (at == window) {
            return true;
        }
    }
    return false;
}

void CGhostManager::ForEachWindow(
    const std::function<void(const GHOSTMANAGER_WINDOW&)>& visit) const {
    const std::scoped_lock hold(treeLock);
    for (const GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = Next(at)) {
        visit(*at);
    }
}

void CGhostManager::Link(GHOSTMANAGER_WINDOW& window) {
    GHOSTMANAGER_WINDOW*& first =
        window.parent != nullptr ? window.parent->firstChild : firstWindow;
    GHOSTMANAGER_WINDOW*& last = window.parent != nullptr ? window.parent->lastChild : lastWindow;
    window.prevSibling = last;
    window.nextSibling = nullptr;
    (last != nullptr ? last->nextSibling : first) = &window;
    last = &window;
}

void CGhostManager::Unlink(GHOSTMANAGER_WINDOW& window) {
    GHOSTMANAGER_WINDOW*& first =
        window.parent != nullptr ? window.parent->firstChild : firstWindow;
    GHOSTMANAGER_WINDOW*& last = window.parent != nullptr ? window.parent->lastChild : lastWindow;
    if (window.prevSibling == nullptr && first != &window) {
        return; // taken out before
    }
    (window.prevSibling != nullptr ? window.prevSibling->nextSibling : first) = window.nextSibling;
    (window.nextSibling != nullptr ? window.nextSibling->prevSibling : last) = window.prevSibling;
    window.prevSibling = window.nextSibling = nullptr;
}

bool CGhostManager::EffectivelyVisible(const GHOSTMANAGER_WINDOW* window) {
    for (; window != nullptr; window = window->parent) {
        if (!window->visible) {
            return false;
        }
    }
    return true;
}

bool CGhostManager::WithinModal(const GHOSTMANAGER_WINDOW* window) const {
    if (modalWindow == nullptr) {
        return true;
    }
    while (window != nullptr && window != modalWindow) {
        window = window->parent != nullptr ? window->parent : window->owner;
    }
    return window != nullptr;
}

GHOSTMANAGER_WINDOW* CGhostManager::OwnedBy(const GHOSTMANAGER_WINDOW* owner) const {
    for (GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = at->nextSibling) {
        if (at->owner == owner && !at->ending) {
            return at;
        }
    }
    return nullptr;
}

// Ids are never given twice, unlike addresses.
GHOSTMANAGER_WINDOW* CGhostManager::WithId(uint32_t id) const {
    GHOSTMANAGER_WINDOW* at = id != 0 ? firstWindow : nullptr;
    while (at != nullptr && (at->id != id || at->ending)) {
        at = Next(at);
    }
    return at;
}

// ---- Places.

GUI_RECT CGhostManager::PlaceOnScreen(const GHOSTMANAGER_WINDOW& window) {
    GUI_RECT place{window.x, window.y, window.width, window.height};
    bool nonClient = window.nonClient;
    for (const GHOSTMANAGER_WINDOW* at = window.parent; at != nullptr; at = at->parent) {
        place = place.Moved(at->x, at->y);
        if (!nonClient) {
            place = place.Moved(at->clientRect.x, at->clientRect.y);
        }
        nonClient = at->nonClient;
    }
    return place;
}

// Takes a rectangle of a window up through each ancestor, cutting it to what that one lets through.
// The virtual screen is the last of them. On the screen at the end.
GUI_RECT CGhostManager::ClipToAncestors(const GHOSTMANAGER_WINDOW& window, GUI_RECT rect) const {
    for (const GHOSTMANAGER_WINDOW* at = &window; at != nullptr; at = at->parent) {
        rect = rect.Moved(at->x, at->y);
        if (at->parent == nullptr) {
            return Intersection(rect, screenRect);
        }
        const GHOSTMANAGER_WINDOW& parent = *at->parent;
        if (at->nonClient) {
            rect = Intersection(rect, {0, 0, parent.width, parent.height});
        } else {
            rect = Intersection(rect, {0, 0, parent.clientRect.width, parent.clientRect.height})
                       .Moved(parent.clientRect.x, parent.clientRect.y);
        }
    }
    return {};
}

CGhostManager::CLIPPED_RECTS
CGhostManager::GetClippedRects(const GHOSTMANAGER_WINDOW& window) const {
    CLIPPED_RECTS clipped;
    const GUI_RECT place = PlaceOnScreen(window);
    clipped.outer = ClipToAncestors(window, {0, 0, window.width, window.height});
    clipped.client = ClipToAncestors(window, window.clientRect);
    clipped.outerX = clipped.outer.x - place.x;
    clipped.outerY = clipped.outer.y - place.y;
    clipped.clientX = clipped.client.x - place.x - window.clientRect.x;
    clipped.clientY = clipped.client.y - place.y - window.clientRect.y;
    return clipped;
}

void CGhostManager::AddDirty(const GHOSTMANAGER_WINDOW& window) {
    if (EffectivelyVisible(&window)) {
        dirtyRect = Around(dirtyRect, ClipToAncestors(window, {0, 0, window.width, window.height}));
    }
}

void CGhostManager::ComputeClient(GHOSTMANAGER_WINDOW& window) {
    const GUI_EDGES& edge = window.frame.thickness;
    window.frameClientRect = {edge.left, edge.top, window.width - edge.left - edge.right,
                              window.height - edge.top - edge.bottom};
    int right = 0;
    int bottom = 0;
    if (window.handler != nullptr) {
        window.handler->GetClientInset(&right, &bottom);
    }
    GUI_RECT client = window.frameClientRect;
    client.width -= right;
    client.height -= bottom;
    window.insetRect = {client.x + client.width, client.y, right, window.frameClientRect.height};
    client.width = std::clamp(client.width, 0, std::max(0, window.width - client.x));
    client.height = std::clamp(client.height, 0, std::max(0, window.height - client.y));
    window.clientRect = client;
}

void CGhostManager::TellSize(GHOSTMANAGER_WINDOW& window) {
    ForChain(window, [&](CGhostGUIHandler& handler) {
        handler.OnResize(window.width, window.height, window.clientRect.width,
                         window.clientRect.height);
    });
}

void CGhostManager::MakeSurface(GHOSTMANAGER_WINDOW& window) {
    if (window.surface != nullptr) {
        window.surface.reset();
        if (host.destroy) {
            TellHost([this, id = window.id] { host.destroy(id); });
        }
    }
    window.dirty = true;
    const GUI_RECT place = PlaceOnScreen(window);
    if (place.Empty()) {
        return;
    }
    auto surface = std::make_shared<CGhostSurface>();
    if (!surface->Create(place, density)) {
        return;
    }
    window.surface = std::move(surface);
    window.onePixel = false;
    if (host.create) {
        TellHost([this, id = window.id, width = window.surface->PixelWidth(),
                  height = window.surface->PixelHeight()] { host.create(id, width, height); });
    }
}

// Where a unit is not a whole number of pixels, the place on the screen decides how edges are
// rounded, so a window that has moved is painted anew, with all that it carries.
void CGhostManager::RefitSurfaces(GHOSTMANAGER_WINDOW& window) {
    if (density == std::floor(density)) {
        return;
    }
    MakeSurface(window);
    for (GHOSTMANAGER_WINDOW* child = window.firstChild; child != nullptr;
         child = child->nextSibling) {
        RefitSurfaces(*child);
    }
}

bool CGhostManager::SetWindowPos(GHOSTMANAGER_WINDOW* window, int32_t x, int32_t y, int32_t width,
                                 int32_t height) {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    if (!Knows(window)) {
        return false;
    }
    const auto size = [](int32_t wanted, int32_t present, int32_t least) {
        const int32_t value = std::max(wanted == kKeepValue ? present : wanted, 0);
        return std::min(std::max(value, least), kMostSize);
    };
    const int32_t newX = x == kKeepValue ? window->x : x;
    const int32_t newY = y == kKeepValue ? window->y : y;
    const int32_t newWidth = size(width, window->width, window->minWidth);
    const int32_t newHeight = size(height, window->height, window->minHeight);
    const bool moved = newX != window->x || newY != window->y;
    const bool resized = newWidth != window->width || newHeight != window->height;

    AddDirty(*window);
    window->x = newX;
    window->y = newY;
    window->width = newWidth;
    window->height = newHeight;
    ComputeClient(*window);
    if (moved && density != std::floor(density)) {
        RefitSurfaces(*window); // and with them its own
    } else if (resized) {
        MakeSurface(*window);
    }
    AddDirty(*window);
    if (moved && window->handler != nullptr) {
        window->handler->OnMove(window->x, window->clientRect.y);
    }
    if (resized) {
        TellSize(*window);
    }
    return true;
}

bool CGhostManager::SetWindowMinimum(GHOSTMANAGER_WINDOW* window, int32_t width, int32_t height) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    window->minWidth = width;
    window->minHeight = height;
    return true;
}

bool CGhostManager::GetWindowRects(const GHOSTMANAGER_WINDOW* window, GUI_RECT* outer,
                                   GUI_RECT* client, GUI_RECT* inset) const {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    if (outer != nullptr) {
        *outer = {window->x, window->y, window->width, window->height};
    }
    if (client != nullptr) {
        *client = window->clientRect;
    }
    if (inset != nullptr) {
        *inset = window->insetRect;
    }
    return true;
}

bool CGhostManager::GetScreenRect(const GHOSTMANAGER_WINDOW* window, GUI_RECT* rect) const {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window) || rect == nullptr) {
        return false;
    }
    *rect = PlaceOnScreen(*window);
    return true;
}

bool CGhostManager::SetWindowFrame(GHOSTMANAGER_WINDOW* window, const GhostBorderStyle* border) {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    if (!Knows(window)) {
        return false;
    }
    window->frame = border != nullptr ? *border : GhostBorderStyle{};
    window->frame.thickness = Thicknesses(window->frame.thickness);
    window->dirty = true;
    return RecalcClient(window);
}

bool CGhostManager::RecalcClient(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    if (!Knows(window)) {
        return false;
    }
    const GUI_RECT before = window->clientRect;
    ComputeClient(*window);
    if (before.x != window->clientRect.x || before.y != window->clientRect.y) {
        for (GHOSTMANAGER_WINDOW* child = window->firstChild; child != nullptr;
             child = child->nextSibling) {
            RefitSurfaces(*child);
        }
    }
    if (before != window->clientRect) {
        // What the client area carries is cut elsewhere now.
        AddDirty(*window);
    }
    TellSize(*window);
    return true;
}

bool CGhostManager::Invalidate(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    window->dirty = true;
    return true;
}

void CGhostManager::SetScreen(int32_t pixelWidth, int32_t pixelHeight) {
    constexpr int32_t kVirtualWidth = 1280;
    constexpr int32_t kVirtualHeight = 720;
    constexpr double kLeastDensity = 0.5;
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    pixelWidth = std::max(pixelWidth, 1);
    pixelHeight = std::max(pixelHeight, 1);
    density = std::max(kLeastDensity, std::min(pixelWidth / double{kVirtualWidth},
                                               pixelHeight / double{kVirtualHeight}));
    // The nearest number of units, so that a density that divides without a rest keeps 1280 by 720.
    screenRect = {0, 0, static_cast<int32_t>(std::lround(pixelWidth / density)),
                  static_cast<int32_t>(std::lround(pixelHeight / density))};
    RefitThemeBitmaps(density);
    for (GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = Next(at)) {
        MakeSurface(*at);
    }
    cursorX = std::min(cursorX, screenRect.width);
    cursorY = std::min(cursorY, screenRect.height);
    dirtyRect = screenRect;
}

// ---- Showing.

bool CGhostManager::IsWindowVisible(const GHOSTMANAGER_WINDOW* window) const {
    const std::scoped_lock hold(treeLock);
    return Knows(window) && EffectivelyVisible(window);
}

bool CGhostManager::ShowWindow(GHOSTMANAGER_WINDOW* window, bool show) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    if (window->visible != show) {
        AddDirty(*window); // while it is still seen
        window->visible = show;
        AddDirty(*window); // where it is seen now
    }
    if (focusWindow != nullptr && !EffectivelyVisible(focusWindow)) {
        FocusOn(nullptr);
    }
    if (captureWindow != nullptr && !EffectivelyVisible(captureWindow)) {
        captureWindow = nullptr;
    }
    if (hoverWindow != nullptr && !EffectivelyVisible(hoverWindow)) {
        HoverOn(nullptr);
    }
    return true;
}

bool CGhostManager::SetZOrder(GHOSTMANAGER_WINDOW* window, int32_t where) {
    constexpr int32_t kToFront = -1;
    constexpr int32_t kOut = -2;
    const std::scoped_lock hold(treeLock);
    if (!Knows(window) || (where != kToFront && where != kOut)) {
        return false;
    }
    AddDirty(*window);
    if (where == kOut) {
        // Nothing may point at a window that is no longer in the tree.
        Unlink(*window);
        for (GHOSTMANAGER_WINDOW* at = window; at != nullptr;) {
            Forget(at);
            GHOSTMANAGER_WINDOW* const next = Next(at);
            const GHOSTMANAGER_WINDOW* up = next;
            while (up != nullptr && up != window) {
                up = up->parent;
            }
            at = up != nullptr ? next : nullptr;
        }
        window->parent = window->owner = nullptr; // which may end before it
        return true;
    }
    Unlink(*window);
    Link(*window);
    window->dirty = true;
    // In front of a message box it would hide what has to be read.
    if (!takers.empty() && !WithinModal(window) && modalWindow->parent == window->parent) {
        Unlink(*modalWindow);
        Link(*modalWindow);
        modalWindow->dirty = true;
    }
    return true;
}

// ---- What a window carries.

bool CGhostManager::SetWindowToolTip(GHOSTMANAGER_WINDOW* window, const std::wstring& text) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    window->toolTip = text.empty() ? nullptr : std::make_unique<std::wstring>(text);
    return true;
}

bool CGhostManager::SetTabStop(GHOSTMANAGER_WINDOW* window, bool tabStop) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    window->tabStop = tabStop;
    return true;
}

bool CGhostManager::SetToolTipWindow(GHOSTMANAGER_WINDOW* window) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window)) {
        return false;
    }
    toolTipWindow = window;
    return true;
}

bool CGhostManager::SetOwner(GHOSTMANAGER_WINDOW* window, GHOSTMANAGER_WINDOW* owner) {
    const std::scoped_lock hold(treeLock);
    if (!Knows(window) || window->parent != nullptr || (owner != nullptr && !Knows(owner))) {
        return false;
    }
    // Nobody owns himself, by whatever detour.
    for (const GHOSTMANAGER_WINDOW* at = owner; at != nullptr;
         at = at->parent != nullptr ? at->parent : at->owner) {
        if (at == window) {
            return false;
        }
    }
    window->owner = owner;
    return true;
}

uint32_t CGhostManager::GetWindowFlags(const GHOSTMANAGER_WINDOW* window) const {
    const std::scoped_lock hold(treeLock);
    return Knows(window) ? window->flags : 0;
}

// ---- Freeing.

// Everything that points at a window lets go of it.
void CGhostManager::Forget(GHOSTMANAGER_WINDOW* window) {
    for (GHOSTMANAGER_WINDOW** pointer : {&hoverWindow, &captureWindow, &focusWindow,
                                          &activeTopWindow, &modalWindow, &toolTipWindow}) {
        if (*pointer == window) {
            *pointer = nullptr;
        }
    }
    if (toolTipWindow == nullptr) {
        toolTipVisible = false;
    }
    std::erase(pendingDelete, window);
    {
        const std::scoped_lock hold(queueLock);
        std::erase_if(eventQueue, [&](const EVENT& event) { return event.window == window; });
    }
    ReturnInput(*window);
}

// Children first, then what floats for the window; in each the second handler before the first.
void CGhostManager::FreeSubtree(GHOSTMANAGER_WINDOW* window) {
    window->ending = true;
    while (window->lastChild != nullptr) {
        FreeSubtree(window->lastChild);
    }
    while (GHOSTMANAGER_WINDOW* const owned = OwnedBy(window)) {
        FreeSubtree(owned);
    }
    if (CGhostGUIHandler* const first = window->handler; first != nullptr) {
        window->handler = nullptr;
        for (CGhostGUIHandler* one = first->next; one != nullptr;) {
            CGhostGUIHandler* const following = one->next;
            one->Destroy();
            one = following;
        }
        first->Destroy();
    }
    // A handler may have made more while it ended.
    while (window->lastChild != nullptr) {
        FreeSubtree(window->lastChild);
    }
    while (GHOSTMANAGER_WINDOW* const owned = OwnedBy(window)) {
        FreeSubtree(owned);
    }
    Forget(window);
    AddDirty(*window);
    Unlink(*window);
    if (host.destroy) {
        TellHost([this, id = window->id] { host.destroy(id); });
    }
    delete window;
}
