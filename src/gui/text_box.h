// CGhostTextBox: a caption that only shows.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

class CGhostTextBox : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    CGhostTextBox(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                  const std::wstring& caption, const GUI_PLACE& place);

    void SetText(const std::wstring& wanted);
    void SetStyle(const std::wstring& name);
    [[nodiscard]] const std::wstring& Text() const { return text; }

    // (x, y, pressed, released); (x, y, button); (x, y, up).
    GuiSignal<void(CGhostTextBox*, int, int, bool, bool)> OnMouseMoved;
    GuiSignal<void(CGhostTextBox*, int, int, unsigned)> OnDown;
    GuiSignal<void(CGhostTextBox*, int, int, unsigned)> OnUp;
    GuiSignal<void(CGhostTextBox*, int, int, bool)> OnWheel;

    void Destroy() override { delete this; }
    void OnMouseMove(int x, int y) override { OnMouseMoved(this, x, y, false, false); }
    void OnMouseDown(int x, int y, unsigned button) override { OnDown(this, x, y, button); }
    void OnMouseUp(int x, int y, unsigned button) override { OnUp(this, x, y, button); }
    void OnMouseWheel(int x, int y, bool up) override { OnWheel(this, x, y, up); }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostTextBox() override = default;

private:
    std::wstring text;
    GhostTextStyle style;
};
