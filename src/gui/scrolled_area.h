// CGhostScrolledArea: what the controls with a scrollbar of their own share: the window with its bar, and
// the keys that scroll.
//
// Directions, of keys and of a controller: a direction scrolls; at the end of the range it moves the focus.
// Units: those of the virtual screen.
#pragma once

#include "gui/control.h"
#include "gui/control_input.h"

class CGhostWindowEx;

class CGhostScrolledArea : public CGhostGUIHandlerEx {
public:
    [[nodiscard]] int32_t ScrollPixels() const { return scrollPixels; }
    void ScrollTo(int32_t pixels); // cut to what there is
    // The bar's window, which takes the focus while it is used.
    [[nodiscard]] GHOSTMANAGER_WINDOW* ScrollbarWindow() const;

    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    bool OnNavigate(GUI_DIRECTION direction) override;

protected:
    CGhostScrolledArea(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                       const GUI_PLACE& place);
    ~CGhostScrolledArea() override = default;

    virtual void Lay() = 0;                   // the client area has another size
    virtual void Scrolled() {}                // scrollPixels has changed
    virtual bool GoWithin(GUI_DIRECTION way); // false at an end; by default a line up or down
    virtual bool GoBeyond(GUI_DIRECTION /*way*/) {
        return false;
    } // past an end, before the focus goes

    void Wheel(bool up);     // of the mouse, over a part that is a window of its own
    void ShowBar(bool show); // the focus does not go with the bar
    void SetContent(int32_t total, int32_t page);
    void SetLine(int32_t units); // what an arrow button and a key go
    [[nodiscard]] bool BarShown() const { return barShown; }
    [[nodiscard]] int32_t BarWidth() const;

    int32_t width = 0; // of the client area
    int32_t height = 0;
    int32_t scrollPixels = 0;
    bool focused = false;

private:
    CGhostWindowEx* frame = nullptr; // whose chain this is the second of
    int32_t lineUnits = 1;           // of a key and an arrow button
    bool barShown = false;
    HeldArrow arrow;
};
