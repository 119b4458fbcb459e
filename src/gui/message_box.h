// CGhostMessageBox: a text that has to be read before anything else, with an Ok button, or with some choices and a
// button that closes it. Everything else on the screen is dimmed and takes no input.
//
// At most four exist; a fifth is dropped. The one made last is the one that takes input, and when it is
// closed the input goes back to who had it.
// Styles: MESSAGEBOXBG and MESSAGEBOX for the windows, MESSAGEBOX_BUTTON, MESSAGEBOX_TEXT.
// Thread: any for Show and Count, which wait for the round to end; main for the rest. Another thread that uses
//   the box keeps the round with HoldRound, from before Show.
#pragma once

#include "gui/dimmed_box.h"

#include <functional>
#include <string>
#include <vector>

class CGhostButton;
class CGhostMultiText;

// What the player may choose in place of closing the box, which closes then too. `chosen` is called on the main thread.
struct MESSAGE_CHOICE {
    std::wstring caption;
    std::function<void()> chosen;
};

class CGhostMessageBox : public DimmedBox {
public:
    static constexpr size_t kMost = 4;

    // Null when there are four already.
    static CGhostMessageBox* Show(const std::wstring& title, const std::wstring& text,
                                  std::vector<MESSAGE_CHOICE> choices = {});
    [[nodiscard]] static size_t Count();

    void Dismiss() { closed = true; } // as the button does; it goes with the next tick
    [[nodiscard]] bool IsClosed() const { return closed; }
    [[nodiscard]] CGhostButton* Button() const { return button; }
    // The choices' buttons in their order, then the one above.
    [[nodiscard]] const std::vector<CGhostButton*>& Buttons() const { return buttons; }
    [[nodiscard]] CGhostMultiText* Message() const { return message; }

    GuiSignal<void(CGhostMessageBox*)> OnClosed; // once, whatever ends it; by then a name only

    void OnTick(unsigned microseconds) override;

protected:
    ~CGhostMessageBox() override;

private:
    CGhostMessageBox(const std::wstring& title, const std::wstring& text,
                     std::vector<MESSAGE_CHOICE> choices);
    CGhostButton* AddButton(const std::wstring& caption, std::function<void()> chosen);
    void Place() override;

    std::vector<CGhostButton*> buttons;
    CGhostButton* button;
    CGhostMultiText* message;
    bool closed = false;
    bool told = false; // OnClosed has been called
};
