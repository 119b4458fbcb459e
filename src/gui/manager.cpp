// The manager itself: its life, its tick and its composite.
#include "gui/manager.h"

#include "gui/blend.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace {

constexpr uint64_t kHoverMicroseconds = 1000000;

double MillisecondsSince(std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - start;
    return passed.count();
}

} // namespace

CGhostManager& CGhostManager::Get() {
    static CGhostManager manager;
    return manager;
}

CGhostManager::CGhostManager() = default;

CGhostManager::~CGhostManager() {
    while (lastWindow != nullptr) {
        FreeSubtree(lastWindow);
    }
}

void CGhostManager::Reset() {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    while (lastWindow != nullptr) {
        FreeSubtree(lastWindow);
    }
    const std::scoped_lock holdQueue(queueLock);
    eventQueue.clear();
    pendingDelete.clear();
    takers.clear();
    keyState.fill(false);
    keyPressedIn.fill(0);
    clipboard.clear();
    hasClipboard = captureInFrame = toolTipVisible = false;
    cursorX = cursorY = lastClickButton = 0;
    cursorIndex = lastTabStop = 0;
    timeMicroseconds = lastActivity = lastClickTimeMs = 0;
    dirtyRect = screenRect;
    times = {};
}

void CGhostManager::SetHost(GUI_HOST_CALLBACKS callbacks) {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    host = std::move(callbacks);
    hostThread = std::this_thread::get_id();
    hostWaits.clear(); // what they were about is not known to this host
}

// Textures belong to one thread. A window that another thread makes or sizes gets its texture later.
void CGhostManager::TellHost(std::function<void()> call) {
    if (std::this_thread::get_id() != hostThread) {
        hostWaits.push_back(std::move(call));
        return;
    }
    TellHostWhatWaits();
    call();
}

void CGhostManager::TellHostWhatWaits() {
    for (const std::function<void()>& call : std::exchange(hostWaits, {})) {
        call();
    }
}

GHOSTMANAGER_WINDOW* CGhostManager::FocusWindow() const {
    const std::scoped_lock hold(treeLock);
    return focusWindow;
}

GHOSTMANAGER_WINDOW* CGhostManager::HoverWindow() const {
    const std::scoped_lock hold(treeLock);
    return hoverWindow;
}

GHOSTMANAGER_WINDOW* CGhostManager::CaptureWindow() const {
    const std::scoped_lock hold(treeLock);
    return captureWindow;
}

GHOSTMANAGER_WINDOW* CGhostManager::ModalWindow() const {
    const std::scoped_lock hold(treeLock);
    return modalWindow;
}

GHOSTMANAGER_WINDOW* CGhostManager::ActiveTopWindow() const {
    const std::scoped_lock hold(treeLock);
    return activeTopWindow;
}

double CGhostManager::Density() const {
    const std::scoped_lock hold(treeLock);
    return density;
}

GUI_RECT CGhostManager::ScreenRect() const {
    const std::scoped_lock hold(treeLock);
    return screenRect;
}

int32_t CGhostManager::CursorX() const {
    const std::scoped_lock hold(treeLock);
    return cursorX;
}

int32_t CGhostManager::CursorY() const {
    const std::scoped_lock hold(treeLock);
    return cursorY;
}

void CGhostManager::SetCursorIndex(uint32_t index) {
    const std::scoped_lock hold(treeLock);
    cursorIndex = index;
}

uint32_t CGhostManager::CursorIndex() const {
    const std::scoped_lock hold(treeLock);
    return cursorIndex;
}

CGhostManager::TIMES CGhostManager::Times() const {
    const std::scoped_lock hold(treeLock);
    return times;
}

GUI_RECT CGhostManager::DirtyRect() const {
    const std::scoped_lock hold(treeLock);
    return dirtyRect;
}

void CGhostManager::SetClipboard(const std::wstring& text) {
    const std::scoped_lock hold(treeLock);
    hasClipboard = true;
    clipboard = text;
}

bool CGhostManager::GetClipboard(std::wstring& out) const {
    const std::scoped_lock hold(treeLock);
    if (hasClipboard) {
        out = clipboard;
    }
    return hasClipboard;
}

bool CGhostManager::IsKeyDown(uint32_t key) const {
    const std::scoped_lock hold(treeLock);
    return key < keyState.size() && keyState[key];
}

// ---- The tick.

void CGhostManager::Tick(uint32_t microseconds) {
    const std::scoped_lock hold(apiLock);
    if (ticking) {
        return; // a handler that ran it would have windows freed under its feet
    }
    ticking = true;
    const auto start = std::chrono::steady_clock::now();
    TickHandlers(microseconds);
    TickToolTip();
    DrainQueue();
    FreePending();
    RepaintWindows();
    ticking = false;
    const std::scoped_lock holdTree(treeLock);
    times.tick = MillisecondsSince(start);
    times.tickPeak = std::max(times.tickPeak, times.tick);
}

// Front to back. A handler may change the tree, but no window is freed before the tick's fourth step.
void CGhostManager::TickHandlers(uint32_t microseconds) {
    std::vector<GHOSTMANAGER_WINDOW*> windows;
    {
        const std::scoped_lock hold(treeLock);
        timeMicroseconds += microseconds;
        for (GHOSTMANAGER_WINDOW* at = FrontMost(); at != nullptr; at = NextBehind(at)) {
            windows.push_back(at);
        }
    }
    for (GHOSTMANAGER_WINDOW* const window : windows) {
        if (CGhostGUIHandler* const first = FirstHandler(*window); first != nullptr) {
            CGhostGUIHandler* const second = first->next;
            first->OnTick(microseconds);
            if (second != nullptr) {
                second->OnTick(microseconds);
            }
        }
        const std::scoped_lock hold(treeLock);
        if (window->deletePending &&
            std::find(pendingDelete.begin(), pendingDelete.end(), window) == pendingDelete.end()) {
            pendingDelete.push_back(window);
        }
    }
}

CGhostGUIHandler* CGhostManager::FirstHandler(const GHOSTMANAGER_WINDOW& window) const {
    const std::scoped_lock hold(treeLock);
    return window.handler;
}

void CGhostManager::TickToolTip() {
    GHOSTMANAGER_WINDOW* hovered = nullptr;
    GHOSTMANAGER_WINDOW* tip = nullptr;
    std::wstring text;
    {
        const std::scoped_lock hold(treeLock);
        // Its window may be hidden, freed, moved or covered though the mouse rests.
        if (const GHOSTMANAGER_WINDOW* const at = toolTipVisible ? UnderCursor() : nullptr;
            toolTipVisible && (at == nullptr || at->id != toolTipFor)) {
            HideToolTip();
            return;
        }
        if (toolTipVisible || captureWindow != nullptr || toolTipWindow == nullptr ||
            hoverWindow == nullptr || timeMicroseconds - lastActivity <= kHoverMicroseconds) {
            return;
        }
        hovered = hoverWindow;
        tip = toolTipWindow;
    }
    for (CGhostGUIHandler* handler = FirstHandler(*hovered); handler != nullptr;
         handler = handler->next) {
        handler->OnHoverTimeout();
    }
    {
        const std::scoped_lock hold(treeLock);
        if (hovered->toolTip == nullptr || hovered != UnderCursor()) {
            return;
        }
        toolTipFor = hovered->id;
        text = *hovered->toolTip;
        toolTipVisible = true;
    }
    for (CGhostGUIHandler* handler = FirstHandler(*tip); handler != nullptr;
         handler = handler->next) {
        handler->ShowToolTip(text);
    }
}

// Oldest first. What a handler queues runs in the same drain.
void CGhostManager::DrainQueue() {
    while (true) {
        EVENT event{};
        {
            const std::scoped_lock hold(queueLock);
            if (eventQueue.empty()) {
                return;
            }
            event = std::move(eventQueue.front());
            eventQueue.pop_front();
        }
        event.call();
    }
}

void CGhostManager::FreePending() {
    const std::scoped_lock hold(treeLock);
    while (!pendingDelete.empty()) {
        FreeSubtree(pendingDelete.front()); // which takes itself off the list
    }
}

// Back to front. What a painting makes dirty farther in front is painted in the same pass.
void CGhostManager::RepaintWindows() {
    std::vector<GHOSTMANAGER_WINDOW*> windows;
    {
        const std::scoped_lock hold(treeLock);
        TellHostWhatWaits();
        for (GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = Next(at)) {
            windows.push_back(at);
        }
    }
    appeared = 0;
    for (GHOSTMANAGER_WINDOW* const window : windows) {
        Repaint(*window);
    }
}

void CGhostManager::SetPaintLimit(int64_t pixels) {
    const std::scoped_lock hold(apiLock);
    paintLimit = pixels;
}

namespace {

// What lies in a hidden window waits until that is shown.
bool WantsPainting(const GHOSTMANAGER_WINDOW& window) {
    bool dirty = window.dirty;
    for (const CGhostGUIHandler* handler = window.handler; handler != nullptr;
         handler = handler->next) {
        dirty = dirty || handler->dirty;
    }
    return dirty;
}

} // namespace

bool CGhostManager::MayPaint(const GHOSTMANAGER_WINDOW& window) {
    if (paintLimit == 0 || !window.fresh || window.surface == nullptr) {
        return true;
    }
    const CGhostSurface& surface = *window.surface;
    const int64_t pixels = int64_t{surface.PixelWidth()} * surface.PixelHeight();
    if (appeared != 0 && appeared + pixels > paintLimit) {
        appeared = paintLimit; // nor any that lies farther in front
        return false;
    }
    appeared += pixels;
    return true;
}

void CGhostManager::Repaint(GHOSTMANAGER_WINDOW& window) {
    // Kept while it is painted, in case a handler changes the window's size meanwhile.
    std::shared_ptr<CGhostSurface> surface;
    GUI_RECT client;
    {
        const std::scoped_lock hold(treeLock);
        if (!WantsPainting(window) || !EffectivelyVisible(&window) || !MayPaint(window)) {
            return;
        }
        surface = window.surface;
        client = window.clientRect;
    }
    if (surface != nullptr) {
        surface->Clear();
        surface->PushOrigin(client);
        for (CGhostGUIHandler* handler = FirstHandler(window); handler != nullptr;
             handler = handler->next) {
            handler->OnPaint(surface.get(), client);
        }
        surface->PopOrigin();
    }
    const std::scoped_lock hold(treeLock);
    if (surface != window.surface || client != window.clientRect) {
        window.dirty = true; // it has another shape now, which the next tick paints
        return;
    }
    if (surface != nullptr) {
        PaintFrame(*surface, window.frame);
    }
    window.dirty = false;
    window.fresh = window.fresh && surface == nullptr;
    for (CGhostGUIHandler* handler = window.handler; handler != nullptr; handler = handler->next) {
        handler->dirty = false;
    }
    if (surface != nullptr) {
        Upload(window, *surface);
        AddDirty(window);
    }
}

// A large window of one colour, as behind a message box, has a texture of one pixel, which is drawn over all of its
// place: its pixels would take milliseconds to fill and to upload. One with flags means something of its own to the
// host, which may want its size.
void CGhostManager::Upload(GHOSTMANAGER_WINDOW& window, CGhostSurface& surface) {
    constexpr int64_t kLarge = 1 << 18; // pixels
    if (!host.upload) {
        return;
    }
    const int64_t size = int64_t{surface.PixelWidth()} * surface.PixelHeight();
    const std::optional<uint32_t> colour = surface.OneColour();
    const bool onePixel = colour && host.create != nullptr && window.flags == 0 && size > kLarge;
    if (onePixel != window.onePixel && host.create) {
        window.onePixel = onePixel;
        host.create(window.id, onePixel ? 1 : surface.PixelWidth(),
                    onePixel ? 1 : surface.PixelHeight());
    }
    if (onePixel) {
        host.upload(window.id, &*colour, 1);
    } else if (const uint32_t* const pixels = surface.Pixels(); pixels != nullptr) {
        host.upload(window.id, pixels, surface.Stride());
    }
}

// ---- The composite.

void CGhostManager::SetCompositeBuffer(uint32_t* pixels, int32_t width, int32_t height,
                                       int32_t stride) {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    bufferPixels = pixels;
    bufferWidth = width;
    bufferHeight = height;
    bufferStride = stride;
    dirtyRect = screenRect;
}

void CGhostManager::CompositeAll() {
    const std::scoped_lock hold(apiLock);
    const std::scoped_lock holdTree(treeLock);
    const auto start = std::chrono::steady_clock::now();
    TellHostWhatWaits();
    if (host.draw) {
        host.draw(kCompositeStart, kCompositeStart, 0, 0, 0, 0, 0, 0);
    } else {
        StartBuffer();
    }
    for (const GHOSTMANAGER_WINDOW* at = firstWindow; at != nullptr; at = Next(at)) {
        if (EffectivelyVisible(at) && at->surface != nullptr && !at->fresh) {
            DrawWindow(*at);
        }
    }
    dirtyRect = {};
    times.composite = MillisecondsSince(start);
    times.compositePeak = std::max(times.compositePeak, times.composite);
}

void CGhostManager::DrawWindow(const GHOSTMANAGER_WINDOW& window) {
    const GUI_RECT seen = ClipToAncestors(window, {0, 0, window.width, window.height});
    if (seen.Empty()) {
        return;
    }
    const GUI_RECT place = PlaceOnScreen(window);
    const int32_t left = PixelEdge(seen.x, density);
    const int32_t top = PixelEdge(seen.y, density);
    const int32_t width = PixelEdge(seen.Right(), density) - left;
    const int32_t height = PixelEdge(seen.Bottom(), density) - top;
    const int32_t sourceX = left - PixelEdge(place.x, density);
    const int32_t sourceY = top - PixelEdge(place.y, density);
    if (width <= 0 || height <= 0) {
        return;
    }
    if (host.draw) {
        host.draw(window.id, window.flags, sourceX, sourceY, left, top, width, height);
    } else {
        BlendIntoBuffer(*window.surface, sourceX, sourceY, left, top, width, height);
    }
}

// Only what has changed is drawn again.
void CGhostManager::StartBuffer() {
    const int32_t left = std::clamp(PixelEdge(dirtyRect.x, density), 0, bufferWidth);
    const int32_t top = std::clamp(PixelEdge(dirtyRect.y, density), 0, bufferHeight);
    const int32_t right = std::clamp(PixelEdge(dirtyRect.Right(), density), left, bufferWidth);
    const int32_t bottom = std::clamp(PixelEdge(dirtyRect.Bottom(), density), top, bufferHeight);
    bufferClip = {left, top, right, bottom};
    for (int32_t y = top; y < bottom; ++y) {
        uint32_t* const row = bufferPixels + static_cast<ptrdiff_t>(y) * bufferStride;
        std::fill(row + left, row + right, 0u);
    }
}

void CGhostManager::BlendIntoBuffer(CGhostSurface& surface, int32_t sourceX, int32_t sourceY,
                                    int32_t x, int32_t y, int32_t width, int32_t height) {
    const int32_t left = std::max(x, bufferClip.left);
    const int32_t top = std::max(y, bufferClip.top);
    const int32_t right =
        std::min({x + width, bufferClip.right, x - sourceX + surface.PixelWidth()});
    const int32_t bottom =
        std::min({y + height, bufferClip.bottom, y - sourceY + surface.PixelHeight()});
    const uint32_t* const pixels = surface.Pixels();
    if (pixels == nullptr) {
        return;
    }
    for (int32_t row = top; row < bottom; ++row) {
        const uint32_t* const from =
            pixels + static_cast<ptrdiff_t>(row - y + sourceY) * surface.Stride();
        uint32_t* const to = bufferPixels + static_cast<ptrdiff_t>(row) * bufferStride;
        for (int32_t column = left; column < right; ++column) {
            to[column] = BlendPixel(to[column], from[column - x + sourceX]);
        }
    }
}
