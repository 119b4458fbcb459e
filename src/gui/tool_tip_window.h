// CGhostToolTipWindow: the hint above the mouse cursor. The manager shows it when the cursor has rested
// over a window with a hint.
//
// Styles: TOOLTIP for the window, TOOLTIP_TEXT.
#pragma once

#include "gui/control.h"

class CGhostMultiText;
class CGhostWindowEx;

class CGhostToolTipWindow : public CGhostGUIHandlerEx {
public:
    CGhostToolTipWindow(); // registers itself with the manager, hidden

    void Destroy() override { delete this; }
    void ShowToolTip(const std::wstring& text) override;
    void HideToolTip() override;

protected:
    ~CGhostToolTipWindow() override = default;

private:
    CGhostWindowEx* frame; // whose chain this is the second of
    CGhostMultiText* hint;
};
