// ControlsCard: what a machine is played with, and what the first player presses for it: the controller as a drawing,
// and beside each of its parts the keys as they are bound now and the buttons of a game controller in hand.
//
// It only shows, and takes no mouse and no focus. Parts without a key and without a button are left out.
// Styles: CONTROLS_ and the machine's name for the drawing, CONTROLS_LINE for the lines to its parts, and those of
// KeyLine.
// Units: those of the virtual screen; the card is always of one size.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class KeyLine;

// What is printed on the button of the game controller in hand that does an action; empty for none. May itself be
// empty: no controller is in hand.
using PadNames = std::function<std::wstring(std::wstring_view action)>;

class ControlsCard : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    static constexpr int32_t kWidth = 740;
    static constexpr int32_t kHeight = 200;

    ControlsCard(GHOSTMANAGER_WINDOW* parent, uint16_t system, const PadNames& padNames);

    void MoveTo(int32_t x, int32_t y);
    // In the order of the machine's table.
    [[nodiscard]] const std::vector<KeyLine*>& Labels() const { return labels; }

    void Destroy() override { delete this; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~ControlsCard() override = default;

private:
    struct LINE { // from a label to its part
        int32_t fromX;
        int32_t y;
        int32_t toX;
        int32_t toY;
    };

    GhostTextStyle drawing;
    GhostTextStyle lineStyle;
    std::vector<KeyLine*> labels;
    std::vector<LINE> lines;
};
