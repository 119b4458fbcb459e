// BindingPrompt: the box that waits for the next press on a keyboard or controller. Everything behind it is dimmed
// and takes no input.
//
// A key that the program itself acts on is refused with a line that says so, and the box waits on.
// Escape, a click or ten seconds without an input end it with nothing: a controller has no key that could not be
// the one that is wanted.
// Styles: those of a message box.
// Lifetime: it ends itself after `done`, which is called once and may be null. Abandon ends it without the call.
#pragma once

#include "gui/dimmed_box.h"
#include "screens/binding_capture.h"

#include <functional>
#include <optional>
#include <string>

class CGhostTextBox;

class BindingPrompt : public DimmedBox {
public:
    using Done = std::function<void(std::optional<uint32_t> binding)>;

    // What the program itself does at a key, by scancode; empty if nothing.
    using UseOfKey = std::function<std::wstring(uint32_t scancode)>;

    // `what` names the action and its input, `before` its binding.
    BindingPrompt(const std::wstring& what, const std::wstring& before, bool forProgramAction,
                  UseOfKey useOfKey, Done done);

    void Look(); // at the joysticks, once a round
    void Abandon();

    void OnTick(unsigned microseconds) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnKeyUp(GHOSTGUIKey key) override;
    void OnMouseDown(int x, int y, unsigned button) override;

    [[nodiscard]] const CGhostTextBox* Wanted() const { return wanted; } // asks, or refuses
    // A controller's buttons are inputs here like any other.
    bool OnNavigate(GUI_DIRECTION /*direction*/) override { return true; }
    bool OnActivateKey() override { return true; }
    bool OnCancelKey() override { return true; }

protected:
    ~BindingPrompt() override;

private:
    void Place() override;
    void ShowSecondsLeft();
    void Take(std::optional<uint32_t> binding);
    [[nodiscard]] bool Refuses(uint32_t binding);
    void End(std::optional<uint32_t> binding);

    BindingCapture capture;
    UseOfKey useOfKey;
    Done done;
    CGhostTextBox* title;
    CGhostTextBox* wanted;
    CGhostTextBox* keeps;
    std::wstring binding;
    uint64_t waited = 0;      // microseconds
    uint64_t secondsLeft = 0; // as they are shown
    bool ended = false;
};
