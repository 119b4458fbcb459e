// SlotCell: one slot of saved states: its picture, number, date and time played, or the word Empty.
//
// It is chosen by having the focus, and stays chosen while a button has it. A double click, return, space and a
// controller's lower button take it.
//
// Styles: SLOTCELL for its face, of which "pressed" is that of the chosen one; SLOT_NUMBER, SLOT_DATE, SLOT_PLAYED,
// SLOT_EMPTY and SLOT_TROUBLE for its texts; SLOT_PICTURE behind the picture.
// Units: of the virtual screen. Thread: main.
#pragma once

#include "gui/bitmap.h"
#include "gui/control.h"
#include "gui/styles.h"

#include <cstdint>
#include <string>

struct SLOT_FACTS;

class SlotCell : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    static constexpr int32_t kWidth = 216;
    static constexpr int32_t kHeight = 212;

    SlotCell(GHOSTMANAGER_WINDOW* parent, uint32_t slotNumber, const GUI_PLACE& place);

    void Show(const SLOT_FACTS& facts);
    void SetChosen(bool wanted);

    [[nodiscard]] uint32_t Slot() const { return slot; } // from 1
    [[nodiscard]] bool IsChosen() const { return chosen; }
    [[nodiscard]] const std::wstring& Date() const { return date; }
    [[nodiscard]] const std::wstring& Played() const { return played; }
    // In the place of the picture: Empty, or that the file cannot be read.
    [[nodiscard]] const std::wstring& Instead() const { return instead; }
    [[nodiscard]] bool HasPicture() const { return !picture.pixels.empty(); }

    GuiSignal<void(SlotCell*)> OnChosen; // the focus has come
    GuiSignal<void(SlotCell*)> OnTaken;
    GuiSignal<void(SlotCell*)> OnDelete; // the delete key

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    bool OnActivateKey() override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~SlotCell() override = default;

private:
    void FitPicture(double density);
    void PaintPicture(CGhostSurface& surface);

    uint32_t slot;
    GhostButtonStyle face;
    GhostTextStyle numberStyle;
    GhostTextStyle dateStyle;
    GhostTextStyle playedStyle;
    GhostTextStyle emptyStyle;
    GhostTextStyle troubleStyle;
    GhostTextStyle pictureStyle;
    std::wstring date;
    std::wstring played;
    std::wstring instead;
    bool trouble = false;
    GUI_BITMAP picture; // as it was taken, in its own pixels
    GUI_BITMAP fitted;  // in the size and the density of the display
    bool chosen = false;
    bool hot = false;
    bool focused = false;
    bool keyHeld = false;
};
