// CGhostWindowEx: a window that holds others. It has a background, a frame, a title bar and a
// scrollbar, each if its flags say so.
//
// Style names: from the base name X it asks for X_BACKGROUND, X_SCROLLBAR and X_TITLE.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

class CGhostButton;
class CGhostScrollbar;
class CGhostTextBox;
struct GUI_BITMAP;

class CGhostWindowEx : public CGhostGUIHandlerEx {
public:
    static constexpr uint32_t kFrame = 1;      // the border of X_BACKGROUND
    static constexpr uint32_t kTitle = 2;      // a title bar with three buttons
    static constexpr uint32_t kNoPaint = 4;    // neither background nor image
    static constexpr uint32_t kNoSignals = 8;  // a painted panel
    static constexpr uint32_t kDraggable = 16; // by its frame
    static constexpr uint32_t kNoButtons = 64; // a title bar without them

    static constexpr int kTitleHeight = 20;

    CGhostWindowEx(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                   const std::wstring& caption, uint32_t windowFlags, const GUI_PLACE& place);

    void SetCaption(const std::wstring& text);
    void SetStyle(const std::wstring& name); // another base name
    // Drawn over the background, from the client area's corner. Null takes it away. The image stays its
    // owner's.
    void SetBackgroundImage(const GUI_BITMAP* image);
    // The bar takes its width from the right of the client area while it is shown.
    void ShowScrollbar(bool show);
    [[nodiscard]] CGhostScrollbar* Scrollbar() const { return scrollbar; }

    [[nodiscard]] GUI_EDGES FrameEdges() const; // of the border and the title bar

    // (clientWidth, clientHeight); (x, y, up); (x, y); (x, y, button).
    GuiSignal<void(CGhostWindowEx*, int, int)> OnResized;
    GuiSignal<void(CGhostWindowEx*, int, int, bool)> OnWheel;
    GuiSignal<void(CGhostWindowEx*, int, int)> OnMoved;
    GuiSignal<void(CGhostWindowEx*, int, int, unsigned)> OnDown;
    GuiSignal<void(CGhostWindowEx*, int, int, unsigned)> OnDoubleClick;
    GuiSignal<void(CGhostWindowEx*, int, int, unsigned)> OnUp;
    // The title bar's buttons.
    GuiSignal<void(CGhostWindowEx*)> OnMinimise;
    GuiSignal<void(CGhostWindowEx*)> OnMaximise;
    GuiSignal<void(CGhostWindowEx*)> OnClose;

    void Destroy() override { delete this; }
    void GetTitleHeight(int* out) override;
    void GetClientInset(int* right, int* bottom) override;
    void OnResize(int width, int height, int clientWidth, int clientHeight) override;
    void OnFrameMouseMove(int x, int y) override;
    void OnFrameMouseDown(int x, int y, unsigned button) override;
    void OnFrameMouseUp(int x, int y, unsigned button) override;
    void OnFrameMouseWheel(int x, int y, bool up) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnMouseWheel(int x, int y, bool up) override;
    void OnTick(unsigned microseconds) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostWindowEx() override = default;

private:
    void ReadStyle(const std::wstring& name);
    void ApplyFrame();
    void MakeTitle(const std::wstring& caption);
    void PlaceTitle(int width);
    [[nodiscard]] bool HasSignals() const { return (flags & kNoSignals) == 0; }

    std::wstring baseStyle;
    std::wstring captionStyle;
    GhostTextStyle background;
    GhostScrollbarStyle scrollbarStyle;
    CGhostScrollbar* scrollbar = nullptr;
    CGhostTextBox* title = nullptr;
    CGhostButton* minimise = nullptr;
    CGhostButton* maximise = nullptr;
    CGhostButton* close = nullptr;
    const GUI_BITMAP* backgroundImage = nullptr;
    uint32_t flags;
    bool scrollbarShown = false;
    bool dragging = false;
    int dragX = 0; // of the cursor within the window, when the drag began
    int dragY = 0;
    int tickX = 0; // where the window was at the beginning of the tick
    int tickY = 0;
};
