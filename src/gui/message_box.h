// CGhostMessageBox: a text that has to be read before anything else, with an Ok button. All behind it is
// dimmed and takes no input.
//
// At most four exist; a fifth is dropped. The one made last is the one that takes input, and when it is
// closed the input goes back to who had it.
// Styles: MESSAGEBOXBG and MESSAGEBOX for the windows, MESSAGEBOX_BUTTON, MESSAGEBOX_TEXT.
// Thread: any for Show and Count, which wait for the round to end; main for the rest. Another thread that uses
//   the box keeps the round with HoldRound, from before Show.
#pragma once

#include "gui/control.h"

class CGhostButton;
class CGhostMultiText;
class CGhostWindowEx;

class CGhostMessageBox : public CGhostGUIHandlerEx {
public:
    static constexpr size_t kMost = 4;

    // Null when there are four already.
    static CGhostMessageBox* Show(const std::wstring& title, const std::wstring& text);
    [[nodiscard]] static size_t Count();

    void Dismiss() { closed = true; } // as the button does; it goes with the next tick
    [[nodiscard]] bool IsClosed() const { return closed; }
    [[nodiscard]] CGhostWindowEx* Box() const { return box; }
    [[nodiscard]] CGhostButton* Button() const { return button; }
    [[nodiscard]] CGhostMultiText* Message() const { return message; }

    GuiSignal<void(CGhostMessageBox*)> OnClosed; // once, whatever ends it; by then a name only

    void Destroy() override { delete this; }
    void OnTick(unsigned microseconds) override;

protected:
    ~CGhostMessageBox() override;

private:
    CGhostMessageBox(const std::wstring& title, const std::wstring& text);
    void Place();

    CGhostWindowEx* dimmed; // whose chain this is the second of
    CGhostWindowEx* box;
    CGhostButton* button;
    CGhostMultiText* message;
    GUI_RECT screen; // that it was placed for
    bool closed = false;
    bool told = false; // OnClosed has been called
};
