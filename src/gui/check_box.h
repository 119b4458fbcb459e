// CGhostCheckBox: a square that is checked or not, with a caption to its right.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

class CGhostCheckBox : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    // Of CGhostButton's flags it has kNoKeys.
    CGhostCheckBox(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                   const std::wstring& caption, uint32_t boxFlags, const GUI_PLACE& place);

    void SetCaption(const std::wstring& text);
    void SetStyle(const std::wstring& name);
    void SetChecked(bool wanted);
    void SetEnabled(bool enable);
    void SetDown(bool wanted); // false: as it is at rest
    [[nodiscard]] bool IsChecked() const { return checked; }
    [[nodiscard]] uint32_t GetState() const { return state; } // as CGhostButton's

    GuiSignal<void(CGhostCheckBox*, bool)> OnChange;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    void OnTick(unsigned microseconds) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostCheckBox() override = default;

private:
    [[nodiscard]] bool Inside(int x, int y) const;
    [[nodiscard]] uint32_t StateAtRest() const;
    [[nodiscard]] const GhostTexture& Square() const;
    [[nodiscard]] bool TakesKeys() const;
    void Toggle();
    void LosePress();

    std::wstring caption;
    std::wstring styleName;
    GhostButtonStyle style;
    uint32_t state = 0;
    bool down = false;
    bool captured = false;
    int32_t width = 0;
    int32_t height = 0;
    uint32_t flags;
    bool enabled = true;
    bool checked = false;
    bool focused = false;
    bool keyHeld = false; // it is down by a key
};
