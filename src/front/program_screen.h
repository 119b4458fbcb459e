// ProgramScreen: the whole desktop program in its window: the main menu with its panels and the browser, the room,
// and the game that is played.
//
// It joins the room (room_screen.h), which owns the modes, with the toolkit's screens (src/screens), and does for
// these what they ask of the program (ScreenHost).
// If games were on when the program last ended, it begins with the question whether they go on.
// What is dropped on the window joins the library; a game alone is then played, on the set that it would be chosen
// for.
// The saved states of the game that is played, and its menu, lie over it while it waits.
// Keys of its own: F10 is the main menu; escape goes back in menu, panels and browser. A controller moves the focus
// there; its shoulders step the browser's system, start starts the chosen game, the left button makes it a favourite.
//
// Thread: main, with the OpenGL context current. Order: made after the toolkit has its theme and its screen.
#pragma once

#include "front/first_keys.h"
#include "front/gui_pad.h"
#include "front/paused_game.h"
#include "front/play_times.h"
#include "front/resume_games.h"
#include "front/room_screen.h"
#include "front/saved_states.h"
#include "front/screen.h"
#include "library/player_database.h"
#include "screens/add_window.h"
#include "screens/battle_ground.h"
#include "screens/continue_window.h"
#include "screens/game_overlay.h"
#include "screens/screen_host.h"
#include "web/download_queue.h"
#include "web/play_reports.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// What the screen asks of the application.
struct PROGRAM_CALLS {
    std::function<void()> quit;
    std::function<void()> settingsChanged;
    std::function<void()> saveSettings;
    std::function<void()> forgetInput;
};

class ProgramScreen final : public Screen, private ScreenHost {
public:
    ProgramScreen(const ROOM_SURROUNDINGS& surroundings, PROGRAM_CALLS calls);
    // Tells the service that the member leaves, which takes half a second at most.
    ~ProgramScreen() override;

    [[nodiscard]] bool Update(const SCREEN_INPUT& input) override;
    void Draw(const DRAW_TARGET& target) override { room.Draw(target); }
    [[nodiscard]] bool WantsInput() const override { return room.WantsInput(); }
    [[nodiscard]] Pointer PointerWanted() const override { return room.PointerWanted(); }
    [[nodiscard]] std::string PlayedTitle() const override { return room.PlayedTitle(); }
    [[nodiscard]] bool TakeDroppedFiles(const std::vector<std::string>& files) override;
    void LoseGraphics() override { room.LoseGraphics(); }
    void RenewGraphics() override { room.RenewGraphics(); }
    void DrawInWindow(const WINDOW_PLACE& place, const DRAW_TARGET& target) override {
        room.DrawInWindow(place, target);
    }

    [[nodiscard]] RoomScreen& Room() { return room; }
    [[nodiscard]] CGUIBattleGround& Menu() { return menu; }
    [[nodiscard]] CGUIGameOverlay& Overlay() { return overlay; }
    [[nodiscard]] AddWindow& Adding() { return adding; }
    // Null unless it asks whether games go on.
    [[nodiscard]] ContinueWindow* Continuing() const { return continuing.get(); }
    [[nodiscard]] SavedStates& States() { return states; }
    // Null while it is not shown.
    [[nodiscard]] const KeyCard* Keys() const { return firstKeys.Card(); }

private:
    // ScreenHost.
    void Take(ModeInput input) override { wanted.push_back(input); }
    void StartGame(GAME_TO_START game) override;
    void ShowCovers(std::vector<GUI_BITMAP> covers, int kind, bool cabinet) override;
    void CoverClick(int button, int32_t x, int32_t y) override;
    void LookCloser() override { room.Covers().LookCloser(); }
    void TurnCovers() override { room.Covers().TurnOver(); }
    [[nodiscard]] DownloadQueue& Downloads() override { return downloads; }
    [[nodiscard]] PlayerDatabase& Player() override { return player; }
    void SettingsChanged() override { calls.settingsChanged(); }
    void SaveSettings() override { calls.saveSettings(); }
    void ForgetInput() override;
    [[nodiscard]] std::vector<SCREEN_JOYSTICK> Joysticks() const override;
    [[nodiscard]] std::wstring UseOfKey(uint32_t scancode) const override;
    [[nodiscard]] bool OpenBenchmarkGame(CGameFile& game) const override;
    [[nodiscard]] uint64_t Milliseconds() const override;

    void ShowFailure(const GAME_FAILURE& failure);
    void Restart(const GAME_FAILURE& failure);
    void OfferLibrary(uint32_t key);
    void AskToContinue();
    void TakeChoice();
    void ContinueGames();
    [[nodiscard]] std::string GoOn(const LEFT_GAME& left);
    void Go(ModeInput input);
    void ReadKeys(const SCREEN_INPUT& input, bool covered);
    void GoBack();
    void ToggleGameMenu();
    void HoldGame(int64_t now);
    void ShowFirstKeys(int64_t now);
    [[nodiscard]] PadNames PadNamesNow() const;
    void PlayFile(const std::filesystem::path& file);
    void PlayNow(uint32_t key, OPENED_GAME&& opened);
    void StartArchived(const std::string& entry, GAME_TO_START game);
    void StartOn(const std::string& entry, GAME_TO_START game);
    [[nodiscard]] uint32_t SetForGame() const;
    void Obey(ModeOrder order);
    void ShowSavedStates();
    void FitScreens();
    void KeepFocus();
    void CountPlayed();
    void ReportPlay();
    void UpdateOverlay(const SCREEN_INPUT& input);

    PROGRAM_CALLS calls;
    DownloadQueue downloads; // outlives the screens, which queue requests
    PlayerDatabase player;   // outlives them too
    const class Joysticks& joysticks;
    ResumeGames* const resumeGames; // null if nobody plays
    RoomScreen room;
    CGUIBattleGround menu;
    CGUIGameOverlay overlay;
    PlayTimes playTimes{player};
    PausedGame paused; // below the game menu
    FirstKeys firstKeys;
    SavedStates states;
    AddWindow adding;
    std::unique_ptr<ContinueWindow> continuing;
    PlayReports reports{downloads};
    GuiPad pad;
    bool forgetPads = false;       // in the next round
    std::vector<ModeInput> wanted; // by the screens since the last round
    ProgramMode shownMode = ProgramMode::kMenu;
};
