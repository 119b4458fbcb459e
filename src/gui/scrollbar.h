// CGhostScrollbar: an upright bar with a thumb and two arrow buttons.
//
// Keys: up, down, page up and down, home, end; a controller's up and down. At its ends they leave it. The
//   keys at the bar of a control go to that control, though the bar was clicked last.
// Units: total, page and pos are the owner's, as a rule units of height. 0 <= pos <= total - page.
#pragma once

#include "gui/control.h"
#include "gui/control_input.h"
#include "gui/styles.h"

class CGhostScrollbar : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    CGhostScrollbar(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                    const GUI_PLACE& place);

    // -1 keeps a value. With `recalc` the thumb's length is computed anew.
    void SetRange(int32_t total, int32_t page, int32_t pos, bool recalc);
    void SetStyle(const std::wstring& name);
    void SetStyle(const GhostScrollbarStyle& wanted);
    // How far an arrow button goes.
    void SetStep(int32_t wanted) { step = wanted; }
    // For the bar of a control: its keys are the control's, and it is no tab stop. Any other bar is one
    // while there is something to scroll.
    void LeaveKeysToOwner();
    [[nodiscard]] int32_t Pos() const { return pos; }
    [[nodiscard]] int32_t Total() const { return total; }
    [[nodiscard]] int32_t Page() const { return page; }
    [[nodiscard]] int32_t Width() const { return style.verWidth; }

    // A position that has changed, or that had to be corrected.
    GuiSignal<void(int32_t)> OnScroll;

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
    void OnChar(unsigned character) override;
    bool OnNavigate(GUI_DIRECTION direction) override;
    bool OnActivateKey() override;
    bool OnCancelKey() override;
    void OnTick(unsigned microseconds) override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostScrollbar() override = default;

private:
    enum class Part : uint8_t { kNone, kTop, kThumb, kBottom, kAbove, kBelow };
    [[nodiscard]] Part PartAt(int x, int y) const;
    [[nodiscard]] int32_t TrackLength() const;
    void PlaceThumb();  // and its length
    void SettleThumb(); // where the position says
    void Repeat();
    void ScrollTo(int32_t wanted);
    void DragTo(int y);
    void LetGo();
    void UpdateTabStop();
    [[nodiscard]] uint32_t StateOf(Part part) const;

    GhostScrollbarStyle style;
    int32_t width = 0;
    int32_t height = 0;
    int32_t total = 0;
    int32_t page = 0;
    int32_t pos = 0;
    int32_t step = 20;
    int32_t thumbLength = 0;
    int32_t thumbTop = 0; // from the track's start; under the cursor while it is dragged
    bool ownKeys = true;
    bool focused = false;
    HeldArrow arrow;
    Part hot = Part::kNone;
    Part held = Part::kNone;
    int32_t grabbedAt = 0;   // of the cursor within the thumb
    int32_t lastY = 0;       // of the cursor while a button or the track is held
    int64_t untilRepeat = 0; // microseconds
};
