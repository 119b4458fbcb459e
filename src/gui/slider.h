// CGhostSlider: a bar with a value from 0 to 1, shown as a number from `minimum` to `minimum` + `range`.
//
// Under the mouse a handle at the value, in the colour of the number, says that it can be dragged; while it is
// dragged the handle is wider. A read-only one, such as a progress bar, has none.
#pragma once

#include "gui/control.h"
#include "gui/control_input.h"
#include "gui/styles.h"

class CGhostSlider : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    // The style's bg is the bar, its bg2 the fill.
    CGhostSlider(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                 float minimum, float range, const GUI_PLACE& place);

    void SetStyle(const std::wstring& name);
    void SetValue(float wanted); // 0 to 1
    void SetPixel(int x);        // from the left, in units
    void SetReadOnly(bool wanted);
    [[nodiscard]] float Value() const { return value; }

    // The new value, of every move of a drag and every key.
    GuiSignal<void(CGhostSlider*, float)> OnChange;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnMouseWheel(int x, int y, bool up) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    void OnTick(unsigned microseconds) override;
    bool OnNavigate(
        GUI_DIRECTION direction) override; // left and right change the value; at an end they leave
    bool OnActivateKey() override { return true; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostSlider() override = default;

private:
    bool Step(int steps); // false at an end
    void Change(float wanted);
    void EndDrag();
    void PaintHandle(CGhostSurface& surface, int32_t at) const;

    GhostTextStyle style;
    int32_t width = 0;
    int32_t height = 0;
    bool readOnly = false;
    bool dragging = false;
    bool hovered = false;
    bool focused = false;
    float value = 0.0f;
    float minimum;
    float range;
    HeldArrow arrow;
};
