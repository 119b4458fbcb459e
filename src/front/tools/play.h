// `ombrelune play`: one game at once.
#pragma once

#include "front/opened_game.h"
#include "front/tools/picture_options.h"

#include <cstdint>
#include <string>
#include <vector>

struct PLAY_OPTIONS {
    std::string game; // a path, or "demo:" and the name of one of our own
    std::string machine;
    std::string entry;                 // the name of a game in an archive
    std::vector<std::string> settings; // NAME=VALUE
    std::string bios;
    std::string patch;    // a soft patch
    bool noPatch = false; // not even that beside the game
    PICTURE_OPTIONS picture;
    bool headless = false;
    uint32_t frames = 0; // machine frames to run; 0: no limit
    bool showStatic = false;
    std::string inputFile;
    std::vector<std::string> screenshots; // FRAME=FILE.png or last=FILE.png
    std::string wavFile;
    std::string hashFile;
    std::string saveState;
    std::string loadState;
    std::vector<std::string> peeks; // ADDRESS[:LENGTH]
    std::vector<std::string> dumps; // REGION=FILE
    std::string latencyAction;      // in the window: measure this action's latency, and end
};

// Opens the game and the BIOS, and applies the settings for this run. Returns an exit code; unless it
// is kExitDone, `error` is one line that says why.
[[nodiscard]] int OpenForPlay(const PLAY_OPTIONS& options, OPENED_GAME& opened, std::string& error);

int PlayCommand(const PLAY_OPTIONS& options);

// Runs the game without window, device, pacing and autosave: the same input makes the same bytes.
int PlayHeadless(const PLAY_OPTIONS& options, OPENED_GAME& opened);

// Runs the game in the window, with sound, until the window is closed or --frames have run.
int PlayInWindow(const PLAY_OPTIONS& options, const OPENED_GAME& opened);

// Starting without a game: runs our own Master System game in the window or, without a display, off the
// screen for some seconds, ending with a screenshot.
int PlayWithoutGame();

// Options, settings, regions and demos by name, for the help text.
[[nodiscard]] std::string PlayHelp();
