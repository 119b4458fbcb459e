// GameMenu: what the strip of buttons offers, for hands without a mouse. A window in the middle has the buttons one
// below the other, and the room and its machines are dimmed and get no input.
//
// Escape, a controller's right button and "Continue" close it with nothing chosen.
// Styles: those of a message box.
// Lifetime: it ends itself after `done`, which is called once. Abandon ends it without the call.
#pragma once

#include "gui/dimmed_box.h"
#include "screens/program_modes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class CGhostButton;

struct GAME_MENU_ENTRY {
    std::wstring caption;
    ModeInput input;
};

class GameMenu : public DimmedBox {
public:
    using Done = std::function<void(std::optional<ModeInput> chosen)>;

    GameMenu(const std::vector<GAME_MENU_ENTRY>& entries, Done done);

    void Dismiss() { End(std::nullopt); }
    void Abandon();

    // In their order, from 0: "Continue", then the entries.
    [[nodiscard]] const std::vector<CGhostButton*>& Buttons() const { return buttons; }

protected:
    ~GameMenu() override;

private:
    void AddButton(const std::wstring& caption, std::optional<ModeInput> input);
    void Place() override;
    void End(std::optional<ModeInput> chosen);

    Done done;
    std::vector<CGhostButton*> buttons;
    bool ended = false;
};
