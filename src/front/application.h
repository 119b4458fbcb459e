// Application: the windowed program, from start to stop.
//
// It owns the window, the joysticks, the sound device, the pictures of all sessions and the text over
// them, and installs the host's callbacks (session_callbacks.h). One game fills the window.
//
// Thread: the main thread alone; one Application at a time.
// Order: Start, any number of rounds, Stop. A game may be started and turned off between rounds.
// Failure: the program ends only if SDL or the window fails. It reports anything else that is missing in
// one line and runs without it.
#pragma once

#include "front/event_pump.h"
#include "front/frame_pacer.h"
#include "front/game_screen.h"
#include "front/gui_overlay.h"
#include "front/joysticks.h"
#include "front/light_gun.h"
#include "front/program_commands.h"
#include "front/sound_output.h"
#include "front/status_overlay.h"
#include "front/televisions.h"
#include "front/window.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

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

    // Turns the game off, closes what Start opened and saves the settings.
    void Stop();

    // Turns off the running game, autosave included, and starts this one. False with the reason if it
    // cannot run; the window then stays empty.
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

    // How the picture is shown; keys change it as well.
    void SetView(const GAME_VIEW& wanted) { gameScreen->SetView(wanted); }
    [[nodiscard]] const GAME_VIEW& View() const { return gameScreen->View(); }

    [[nodiscard]] const GuiOverlay& Gui() const { return gui; }

private:
    struct COMMAND {
        ProgramCommand action;
        const char* name;
        void (Application::*handler)();
    };
    [[nodiscard]] static std::span<const COMMAND> Commands();

    void Release();
    [[nodiscard]] bool StartSdl(std::string& error);
    void RunCommands(const PUMP_EVENTS& events);
    void PlayDroppedFile(const std::string& path);
    void StopEndedGame();
    void KeepBatteries();
    void Draw();
    [[nodiscard]] DRAW_TARGET Target() const;

    void ToggleStatistics();
    void ToggleCrop();
    void ToggleCeilingLight();
    void ToggleLinear();
    void NextScaler();
    void ToggleFullScreen();

    Window window;
    Joysticks joysticks;
    SoundOutput sound;
    EventPump pump{joysticks};
    Televisions televisions;
    std::unique_ptr<GameScreen> gameScreen = std::make_unique<GameScreen>(televisions);
    StatusOverlay overlay;
    GuiOverlay gui;
    FramePacer pacer;
    LightGun lightGun;
    std::string title;
    bool started = false;
    bool playing = false;
    bool sdlStarted = false;
    int64_t batteriesKept = 0; // microseconds, of the last KeepBatteries
    int processor = -1;        // the main thread's token (processor_binder.h)
    bool ceilingLight = true;  // of the room
};
