#include "front/game_panel.h"

#include "base/text.h"
#include "front/screen.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "screens/game_menu.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"

#include <utility>

GamePanel::GamePanel(PANEL_CALLS panelCalls)
    : calls(std::move(panelCalls)) {}

GamePanel::~GamePanel() {
    if (menu != nullptr) {
        menu->Abandon();
    }
}

bool GamePanel::ReadOpeners(int64_t now) {
    const InputFrame frame(looker, kApplicationKey);
    const uint64_t controls = InputPadsDown();
    constexpr uint64_t kGuides = PadBit(0, kPadGuide) | PadBit(1, kPadGuide);
    const bool down =
        InputIsDown(kApplicationKey, L"Game Menu") || (InputPadsActing() & kGuides) != 0;
    const bool pressed = !std::exchange(held, down) && down;
    return chord.Update(controls, now) || pressed;
}

void GamePanel::Update(const SCREEN_INPUT& input, const PANEL_GAME& game) {
    const bool pressed = ReadOpeners(input.now);
    if (menu != nullptr && game.serial != serial) {
        Close();
    } else if (pressed && menu != nullptr) {
        Close();
    } else if (pressed && game.serial != 0 && CGhostManager::Get().ModalWindow() == nullptr) {
        Open(game);
    }
    const bool toPad = menu != nullptr || CGhostMessageBox::Count() != 0;
    static_cast<void>(pad.Update(toPad, input.now));
    if (menu == nullptr) {
        paused.LetGo();
    }
    if (const std::optional<ModeInput> chosen = std::exchange(wish, std::nullopt)) {
        paused.GoOn(); // what opens now has its own pause
        calls.chosen(*chosen);
    }
    paused.Update(input.now);
}

void GamePanel::Open(const PANEL_GAME& game) {
    if (!paused.Hold(game.key)) {
        return;
    }
    serial = game.serial;
    calls.needAppearance();
    GAME_MENU wanted;
    wanted.title = WideFromUtf8(game.title);
    wanted.system = game.system;
    wanted.padNames = game.padNames;
    wanted.settingsChanged = calls.settingsChanged;
    wanted.ofGame = {
        {L"Save and Load", ModeInput::kSavedStates},
        {L"Reset",         ModeInput::kResetGame  }
    };
    wanted.ofProgram = {
        {L"Quit", ModeInput::kQuit}
    };
    menu = new GameMenu(std::move(wanted), [this](std::optional<ModeInput> chosen) {
        menu = nullptr;
        wish = chosen;
        calls.saveSettings();
    });
}

void GamePanel::Close() {
    if (menu != nullptr) {
        menu->Dismiss();
    }
}
