// CGhostMessageBox: a text that has to be read before anything else, with an Ok button. All behind it is
// dimmed and takes no input.
//
// At most four exist; a fifth is dropped. The one made last is the one that takes input, and when it is
// closed the input goes back to who had it.
// Styles: MESSAGEBOXBG and MESSAGEBOX for the windows, MESSAGEBOX_BUTTON, MESSAGEBOX_TEXT.
// Thread: any for Show and Count, which wait for the round to end; main for the rest. Another thread that uses
//   the box keeps the round with HoldRound, from before Show.
#pragma once

#include "gui/dimmed_box.h"

class CGhostButton;
class CGhostMultiText;

class CGhostMessageBox : public DimmedBox {
public:
    static constexpr size_t kMost = 4;

    // Null when there are four already.
    static CGhostMessageBox* Show(const std::wstring& title, const std::wstring& text);
    [[nodiscard]] static size_t Count();

    void Dismiss() { closed = true; } // as the button does; it goes with the next tick
    [[nodiscard]] bool IsClosed() const { return closed; }
    [[nodiscard]] CGhostButton* Button() const { return button; }
    [[nodiscard]] CGhostMultiText* Message() const { return message; }

    GuiSignal<void(CGhostMessageBox*)> OnClosed; // once, whatever ends it; by then a name only

    void OnTick(unsigned microseconds) override;

protected:
    ~CGhostMessageBox() override;

private:
    CGhostMessageBox(const std::wstring& title, const std::wstring& text);
    void Place() override;

    CGhostButton* button;
    CGhostMultiText* message;
    bool closed = false;
    bool told = false; // OnClosed has been called
};
