// InputTab: the options' page on which actions get their keys and controls. What is bound is written to the settings at
// once, so that two actions on one key are seen at once as well; Undo takes a change back.
//
// The list shows the actions of the machine that the drop list says, and below them the program's own, which go with
// every machine.
// Lifetime: its controls end with the window that they are in.
#pragma once

#include "screens/binding_rows.h"
#include "screens/screen_panel.h"

#include <optional>
#include <string>
#include <vector>

class BindingPrompt;
class CGhostButton;
class CGhostDropList;
class CGhostTextBox;
class InputList;
class ScreenHost;

class InputTab {
public:
    InputTab(GHOSTMANAGER_WINDOW* parent, ScreenHost& program);
    ~InputTab();
    InputTab(const InputTab&) = delete;
    InputTab& operator=(const InputTab&) = delete;

    void Layout(int32_t width, int32_t height);
    void Update();
    [[nodiscard]] bool TakeBack(); // what waits for an input ends

    [[nodiscard]] CGhostDropList* Systems() const { return systems; }
    [[nodiscard]] CGhostButton* DefaultsButton() const { return defaults; }
    [[nodiscard]] CGhostButton* JoystickButton() const { return joysticks; }
    [[nodiscard]] CGhostButton* ClearButton() const { return clear; }
    [[nodiscard]] CGhostButton* UndoButton() const { return undo; }
    [[nodiscard]] CGhostTextBox* Note() const { return note; }
    [[nodiscard]] CGhostTextBox* Status() const { return status; }
    [[nodiscard]] InputList* List() const { return list; }
    [[nodiscard]] bool Waiting() const { return prompt != nullptr; }
    [[nodiscard]] size_t ActionOfRow(int32_t row) const {
        return actions[static_cast<size_t>(row)];
    }

private:
    void MakeControls(GHOSTMANAGER_WINDOW* parent);
    void ShowSystem(int32_t system);
    void ShowBindings();
    void ShowStatus();
    [[nodiscard]] std::wstring StatusText() const;
    [[nodiscard]] std::wstring SharedText(size_t action, uint32_t input) const;

    void Ask();
    void Bind(size_t action, uint32_t input, uint32_t binding);
    void Clear();
    void SetDefaults();
    void Undo();
    void ShowJoysticks();

    ScreenHost& host;
    CGhostDropList* systems = nullptr;
    CGhostButton* defaults = nullptr;
    CGhostButton* joysticks = nullptr;
    CGhostTextBox* note = nullptr;
    InputList* list = nullptr;
    CGhostTextBox* status = nullptr;
    CGhostButton* clear = nullptr;
    CGhostButton* undo = nullptr;
    BindingPrompt* prompt = nullptr;     // while it waits; ends itself
    std::vector<size_t> actions;         // of the rows
    std::vector<BindingSnapshot> before; // of each change, the newest last
    std::wstring said;                   // after a change, until the player goes on
    ScreenSignals signals;
};
