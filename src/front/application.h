// Application: the windowed program, from start to stop.
//
// It owns the window, the joysticks, the sound device, the pictures of all sessions, the screen that shows
// them, and the toolkit's windows and the text over it, and installs the host's callbacks
// (session_callbacks.h). The first screen is that of one game.
//
// Thread: the main thread alone; one Application at a time.
// Order: Start, any number of rounds, Stop. A game may be started and turned off between rounds.
// Failure: the program ends only if SDL or the window fails. It reports anything else that is missing in
// one line and runs without it.
#pragma once

#include "front/event_pump.h"
#include "front/first_keys.h"
#include "front/frame_pacer.h"
#include "front/game_panel.h"
#include "front/game_view.h"
#include "front/gui_overlay.h"
#include "front/joysticks.h"
#include "front/light_gun.h"
#include "front/program_commands.h"
#include "front/screen.h"
#include "front/sound_output.h"
#include "front/speed_mark.h"
#include "front/status_overlay.h"
#include "front/televisions.h"
#include "front/volume_keys.h"
#include "front/window.h"
#include "front/window_shots.h"
#include "host/state_snapshot.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class CGhostMessageBox;
class ProgramScreen;
class ResumeGames;
class RoomScreen;
class SaveKeeper;
enum class ResumeKind : uint8_t;
class SavedStates;
struct SAVED_STATES_GAME;
struct OPENED_GAME;

// The session key of the television that fills the window.
inline constexpr uint32_t kFrontTelevision = 0;

class Application {
public:
    Application();
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    // False with a line that says what is missing; everything is closed again then.
    [[nodiscard]] bool Start(std::string& error);

    // One round: events, pictures, drawing, swap. False when the program must end.
    [[nodiscard]] bool Round();

    // Nobody plays, as in a measurement: the player's saves are neither continued nor changed. Before Start.
    void LeaveSavesAlone();

    // Ends the games that run, to go on with the next start; closes what Start opened and saves the settings.
    void Stop();

    // Turns off the running game, autosave included, and starts this one: where it was when the program ended, if it
    // ran then. False with the reason if it cannot run; the window then stays empty.
    bool Play(const OPENED_GAME& game, std::string& error);

    // Stops the game, autosave included.
    void TurnOff();

    // Whether a game runs. One whose machine cannot go on is turned off by the next round.
    [[nodiscard]] bool Playing() const { return playing; }

    [[nodiscard]] const Televisions& Sets() const { return televisions; }
    [[nodiscard]] Televisions& Sets() { return televisions; }

    // The window as the next swap would show it, 0xFFRRGGBB, top row first.
    [[nodiscard]] std::vector<uint32_t> ReadWindow();
    [[nodiscard]] const Window& MainWindow() const { return window; }

    // Shows another screen, or the game's again, from the next round on. Between Start and Stop; the screen that
    // is shown may call it too.
    void Show(std::unique_ptr<Screen> next);
    void ShowGame();
    // The room, where these games are played; it stays Application's.
    RoomScreen& ShowRoom(std::vector<OPENED_GAME> games);
    // The whole program, from its main menu; it stays Application's.
    ProgramScreen& ShowProgram();
    [[nodiscard]] bool CeilingLight() const { return ceilingLight; }
    void SetCeilingLight(bool on) { ceilingLight = on; }
    [[nodiscard]] const FramePacer& Pacer() const { return pacer; }

    // How games are shown; keys change it as well. A change takes effect with the next round.
    void SetView(const GAME_VIEW& wanted) { view = wanted; }
    [[nodiscard]] const GAME_VIEW& View() const { return view; }

    // Null until a game has run at another speed.
    [[nodiscard]] const SpeedMark* Speed() const { return speedMark.get(); }
    [[nodiscard]] const GuiOverlay& Gui() const { return gui; }
    // Those of the game that is shown alone, or that the player of the room looks at; null while the program is shown.
    [[nodiscard]] SavedStates* States() const { return states.get(); }
    // The card of keys over the game that is shown alone; null while it is not.
    [[nodiscard]] const KeyCard* Keys() const { return keys != nullptr ? keys->Card() : nullptr; }
    // The menu of the game that is shown alone; null while it is closed.
    [[nodiscard]] GameMenu* Menu() const { return panel != nullptr ? panel->Menu() : nullptr; }

private:
    [[nodiscard]] bool StartSdl(std::string& error);
    [[nodiscard]] bool StartDrawing(std::string& error);
    void EndDrawing();
    [[nodiscard]] bool RenewGraphics();
    void Release();

    // The steps of a round. Those that return a bool say whether the window must be drawn again.
    void NeedAppearance();
    void TakeSettings();
    static void SaveSettings();
    void ChangeScreen();
    void HandInputOver();
    void RunCommands(const PUMP_EVENTS& events);
    void PlayDroppedFiles(const PUMP_EVENTS& events);
    [[nodiscard]] bool UpdateScreen(const PUMP_EVENTS& events);
    void ShowSavedStates(const PUMP_EVENTS& events);
    void OpenSavedStates();
    void ReadView();
    void KeepView() const;
    void ShowTitle();
    void ShowPanel(const PUMP_EVENTS& events);
    void TakeFromPanel(ModeInput chosen);
    void ShowFirstKeys(const PadNames& padNames);
    void StopEndedGame();
    void WaitForFocus();
    [[nodiscard]] static bool PlayerHasKeys();
    void TellStopped(const std::string& reason);
    void RestartGame();
    void ShowSpeed();
    [[nodiscard]] bool UpdateOverlays(const PUMP_EVENTS& events);
    void DrawOrWait();

    [[nodiscard]] ResumeGames* KeepGames(ResumeKind kind);
    void RunCommand(ProgramCommand command);
    void PlayDroppedFile(const std::string& path);
    void Draw();
    [[nodiscard]] DRAW_TARGET Target() const;

    Window window;
    Joysticks joysticks;
    SoundOutput sound;
    VolumeKeys volume;
    EventPump pump{joysticks};
    Televisions televisions;
    GAME_VIEW view;
    LightGun lightGun;
    std::unique_ptr<Screen> screen;     // from Start to Stop
    std::unique_ptr<Screen> nextScreen; // for the next round; null: the same
    StatusOverlay overlay;
    std::unique_ptr<SpeedMark> speedMark; // from the first need to the end of the toolkit's windows
    WindowShots shots;
    GuiOverlay gui;
    FramePacer pacer;
    std::string shownTitle;
    std::unique_ptr<FirstKeys> keys;                 // likewise
    std::unique_ptr<GamePanel> panel;                // while the game alone is shown
    std::unique_ptr<SavedStates> states;             // while the game alone or the room is shown
    std::function<SAVED_STATES_GAME()> gameOfStates; // while `states` is there; serial 0: none
    std::string playedTitle;
    uint32_t playedSerial = 0;
    bool waitsForFocus = false; // the games
    uint16_t playedSystem = 0;
    STATE_SNAPSHOT playedLabel;             // by which it can be opened again
    CGhostMessageBox* stoppedBox = nullptr; // that tells why; null: not there
    bool restart = false;                   // the player has chosen to
    bool quit = false;                      // the player has chosen to end the program
    bool started = false;
    bool playing = false;
    bool sdlStarted = false;
    bool appearanceLoaded = false;
    bool savesAlone = false;
    std::unique_ptr<ResumeGames> resumeGames; // from the first game to Stop; null if nobody plays
    std::unique_ptr<SaveKeeper> saveKeeper;   // from Start to Stop
    int processor = -1;                       // the main thread's token (processor_binder.h)
    bool ceilingLight = true;                 // of the room
};
