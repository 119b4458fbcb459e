// ProgramModes: where the player is in the program, and every way from one place to another.
//
//   menu         the main menu
//   panel        one of its panels: benchmark, options, credits
//   browser      the games of a system, to be started on a set
//   walking      in the room; mouse and keys move the camera
//   standing     in the room with a free mouse; the machine before the player gets the input
//   full screen  one set's picture fills the window, and its machine gets the input
// A message box may lie over each of them. It takes the input of the toolkit and changes nothing here.
//
// The table of ways is in program_modes.cpp; the first row that fits counts, and an input without one does
// nothing. What an input is made of, keys, clicks and controller buttons, is told beside ModeInput.
//
// Pure: it says what the owner must do, and does nothing. Thread: main.
#pragma once

#include <cstdint>
#include <span>

enum class ProgramMode : uint8_t { kMenu, kPanel, kBrowser, kWalking, kStanding, kFullScreen };

enum class ModeInput : uint8_t {
    kPlayGames, // the menu's button PLAY GAMES
    kOpenPanel, // BENCHMARK, OPTIONS, CREDITS
    kQuit,      // QUIT, and the game menu's Quit
    kBack, // BACK, escape, a controller's right button or guide button, in menu, panel and browser
    kMainMenu, // F10, the buttons MAIN MENU and Main Menu, and in the room a controller's start button
    kGameRoom,    // the browser's button GAME ROOM
    kGameStarted, // a game runs that was chosen in the browser
    // Games go on that were on when the program ended; the player was elsewhere in the room, at the set that is
    // selected now, or saw its picture alone.
    kContinueWalking,
    kContinueStanding,
    kContinueFullScreen,
    kUse,     // the action Use, and the left mouse button, while walking
    kShowSet, // the same where a room's games are given from outside and no browser chooses them
    kLeave, // escape and a short press of a controller's guide button, in the room and full screen
    kMiddleButton, // the middle mouse button, in the room and full screen
    kTurnOff,      // the action Turn Off, while walking
    // Buttons of the strip and of the game menu, which the action Game Menu opens, and a controller's guide button
    // that is held.
    kLoadGame,    // the button Load New Game
    kExitGame,    // the button Exit Game
    kTelevision,  // the button Fullscreen Mode or TV Mode
    kResetGame,   // the button Reset Game: no way leads anywhere, but the machine is reset
    kSavedStates, // the action Saved States and its button: their panel lies over the mode
    kGameEnded,   // the machine of the set that is played could not go on
};

// What a way may depend on.
struct MODE_FACTS {
    bool selected =
        false; // there is a set that the player looks at, or whose picture fills the window
    bool selectedOn = false;      // and a game plays on it
    bool startFullScreen = false; // the setting emu_startfullscreen
};

enum class ModeOrder : uint8_t {
    kNothing,
    kQuit,
    kResetCamera, // puts the player back at the room's door
    kChooseGame,  // the browser is for the selected set
    kStopGame,    // turn off the selected set
    kResetGame,   // of the selected set
    kSavedStates, // shows those of the selected set's game
};

enum class ModeGuard : uint8_t {
    kAlways,
    kSelected,
    kSelectedOn,
    kStartFullScreen,
    kSelectedAndFullScreen, // a set is selected, and games start full screen
    // Where menu and browser were opened from. `kCameFromFullScreen` holds only while that game still runs.
    kCameFromFullScreen,
    kCameFromStanding,
    kCameFromRoom, // one of the room's three modes
};

struct MODE_WAY {
    ProgramMode from;
    ModeInput input;
    ModeGuard guard;
    ProgramMode to;
    ModeOrder order;
};
[[nodiscard]] std::span<const MODE_WAY> ModeWays();

class ProgramModes {
public:
    explicit ProgramModes(ProgramMode start)
        : mode(start) {}

    // Goes the way of the first row that fits; kNothing without one.
    ModeOrder Take(ModeInput input, const MODE_FACTS& facts);

    [[nodiscard]] ProgramMode Mode() const { return mode; }
    // Where menu or browser were opened from: walking, standing or full screen; the menu if from there.
    [[nodiscard]] ProgramMode Before() const { return before; }
    // Whether screens of the interface cover the window.
    [[nodiscard]] bool Covered() const { return mode <= ProgramMode::kBrowser; }
    [[nodiscard]] bool Walking() const { return mode == ProgramMode::kWalking; }
    // Whether the room is shown, or would be if nothing covered it.
    [[nodiscard]] bool RoomVisible() const {
        return (Covered() ? before : mode) != ProgramMode::kFullScreen;
    }

private:
    [[nodiscard]] bool Holds(ModeGuard guard, const MODE_FACTS& facts) const;

    ProgramMode mode;
    ProgramMode before = ProgramMode::kMenu;
};
