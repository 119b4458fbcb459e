// OPENED_GAME: a game ready to be played, whether a file or one of our own.
#pragma once

#include "formats/game_file.h"
#include "machines/machine_options.h"

#include <string>
#include <string_view>

struct MACHINE_FACTS;

struct OPENED_GAME {
    CGameFile game;
    std::string file; // as OpenForPlaying takes it; absolute, or a demo's name
    CGameFile bios;
    std::string secondFile; // of `bios`; absolute
    bool hasBios = false;
    std::string title;
    OptionBlock options{};
};

// Opens a file, or the demo that "demo:" and a name say, with the options that its game asks for. `system`:
// the machine, if not the one that the file says; may be null. False, with one line that says why, also if the
// machine of the game is not built in.
[[nodiscard]] bool OpenForPlaying(const std::string& game, const MACHINE_FACTS* system,
                                  OPENED_GAME& opened, std::string& error);

// Opens one of our own games. False for an unknown name.
[[nodiscard]] bool OpenDemo(std::string_view name, OPENED_GAME& opened);
