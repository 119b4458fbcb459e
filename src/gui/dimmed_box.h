// DimmedBox: what a message box and others like it begin with. The screen is dimmed, and a box with a title in the
// middle has all input until it is closed.
//
// Styles: MESSAGEBOXBG and MESSAGEBOX. Who derives from it makes the parts of the box, then calls Place and TakeInput.
// Thread: main, unless the one that makes it keeps the round (manager.h).
#pragma once

#include "gui/control.h"

class CGhostWindowEx;

class DimmedBox : public CGhostGUIHandlerEx {
public:
    void Destroy() override { delete this; }
    void OnTick(unsigned microseconds) override; // places it anew on another screen

    [[nodiscard]] CGhostWindowEx* Box() const { return box; }

protected:
    explicit DimmedBox(const std::wstring& title);

    // The box and its parts on the screen.
    virtual void Place() = 0;
    void PlaceBox(int32_t width, int32_t height); // in the middle
    [[nodiscard]] const GUI_RECT& Screen() const { return screen; }
    [[nodiscard]] GUI_RECT Client() const; // of the box, with its present size
    [[nodiscard]] int32_t FrameWide() const;
    [[nodiscard]] int32_t FrameHigh() const; // with the title
    void TakeInput();

private:
    CGhostWindowEx* dimmed; // whose chain this is the second of
    CGhostWindowEx* box;
    GUI_RECT screen; // that it was placed for
};
