// CGhostButton: a caption that is pressed, by mouse, space or return. It can latch, as a toggle.
//
// The caption is drawn whole, where the style aligns it. In the middle of a button that is too narrow for it,
// it goes beyond both edges and is cut there; whoever shows a text of any length takes a style that is
// aligned to the left, which is cut at its end alone.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

class CGhostButton : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    static constexpr uint32_t kGrips =
        1; // the outer 6 units of each side resize: no press shows there
    static constexpr uint32_t kLatches = 2; // stays down until the next press
    static constexpr uint32_t kNoKeys = 4;  // keys do not activate it

    enum State : uint32_t { kNormal = 0, kHot = 1, kPressed = 2, kDisabled = 3 };

    // The style names "none" and "NONE" mean that it has none.
    CGhostButton(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                 const std::wstring& caption, uint32_t flags, const GUI_PLACE& place);

    void SetCaption(const std::wstring& text);
    void SetStyle(const std::wstring& name);
    void SetStyle(const GhostButtonStyle& wanted);
    void SetEnabled(bool enable);
    void SetDown(bool wanted);
    [[nodiscard]] const std::wstring& Caption() const { return caption; }
    [[nodiscard]] uint32_t GetState() const { return state; }
    [[nodiscard]] bool IsDown() const { return down; }
    [[nodiscard]] bool IsEnabled() const { return enabled; }

    // (x, y, button); OnState: (x, y, pressed, released); OnWheel: (x, y, up).
    GuiSignal<void(CGhostButton*, int, int, unsigned)> OnDown;
    GuiSignal<void(CGhostButton*, int, int, unsigned)> OnUp;
    GuiSignal<void(CGhostButton*, int, int, unsigned)> OnClick;
    GuiSignal<void(CGhostButton*, int, int, bool, bool)> OnState;
    GuiSignal<void(CGhostButton*, int, int, bool)> OnWheel;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseUp(int x, int y, unsigned button) override;
    void OnMouseWheel(int x, int y, bool up) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    void OnTick(unsigned microseconds) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostButton() override = default;

private:
    [[nodiscard]] bool Inside(int x, int y) const;
    [[nodiscard]] bool OnGrip(int x) const;
    void LosePress();

    std::wstring caption;
    std::wstring styleName;
    GhostButtonStyle style;
    uint32_t state = kNormal;
    bool down = false;
    bool captured = false;
    int32_t width = 0; // of the client area
    int32_t height = 0;
    uint32_t flags;
    bool enabled = true;
    bool focused = false;
    bool keyHeld = false; // it is down by a key
};
