// ProgramScreen: the whole desktop program in its window: the main menu with its panels and the browser, the room,
// and the game that is played.
//
// It joins the room (room_screen.h), which owns the modes, with the toolkit's screens (src/screens), and does for
// these what they ask of the program (ScreenHost).
// Keys of its own: F10 is the main menu; escape goes back in menu, panels and browser. A controller moves the focus
// there; its shoulders step the browser's system, start starts the chosen game.
//
// Thread: main, with the OpenGL context current. Order: made after the toolkit has its theme and its screen.
#pragma once

#include "front/gui_pad.h"
#include "front/room_screen.h"
#include "front/screen.h"
#include "screens/battle_ground.h"
#include "screens/game_overlay.h"
#include "screens/screen_host.h"
#include "web/download_queue.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What the screen asks of the application.
struct PROGRAM_CALLS {
    std::function<void()> quit;
    std::function<void()> settingsChanged;
    std::function<void()> saveSettings;
};

class ProgramScreen final : public Screen, private ScreenHost {
public:
    ProgramScreen(const ROOM_SURROUNDINGS& surroundings, PROGRAM_CALLS calls);

    [[nodiscard]] bool Update(const SCREEN_INPUT& input) override;
    void Draw(const DRAW_TARGET& target) override { room.Draw(target); }
    [[nodiscard]] bool WantsInput() const override { return room.WantsInput(); }
    [[nodiscard]] bool TakeDropped(OPENED_GAME& opened) override;
    void LoseGraphics() override { room.LoseGraphics(); }
    void RenewGraphics() override { room.RenewGraphics(); }
    void DrawInWindow(const WINDOW_PLACE& place, const DRAW_TARGET& target) override {
        room.DrawInWindow(place, target);
    }

    [[nodiscard]] RoomScreen& Room() { return room; }
    [[nodiscard]] CGUIBattleGround& Menu() { return menu; }
    [[nodiscard]] CGUIGameOverlay& Overlay() { return overlay; }

private:
    // ScreenHost.
    void Take(ModeInput input) override { wanted.push_back(input); }
    void StartGame(GAME_TO_START game) override;
    void ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool cabinet) override;
    void CoverClick(int button, int32_t x, int32_t y) override;
    [[nodiscard]] DownloadQueue& Downloads() override { return downloads; }
    void SettingsChanged() override { calls.settingsChanged(); }
    void SaveSettings() override { calls.saveSettings(); }
    [[nodiscard]] std::vector<SCREEN_JOYSTICK> Joysticks() const override;
    [[nodiscard]] bool OpenBenchmarkGame(CGameFile& game) const override;
    [[nodiscard]] uint64_t Milliseconds() const override;

    void ReadKeys(const SCREEN_INPUT& input, bool covered);
    void GoBack();
    void Obey(ModeOrder order);
    void FitScreens();
    void UpdateOverlay(const SCREEN_INPUT& input);

    PROGRAM_CALLS calls;
    DownloadQueue downloads; // outlives the screens, which queue requests
    const class Joysticks& joysticks;
    RoomScreen room;
    CGUIBattleGround menu;
    CGUIGameOverlay overlay;
    GuiPad pad;
    std::vector<ModeInput> wanted; // by the screens since the last round
    ProgramMode shownMode = ProgramMode::kMenu;
};
