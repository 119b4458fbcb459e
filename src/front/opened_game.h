// OPENED_GAME: a game ready to be played, whether a file or one of our own.
#pragma once

#include "formats/game_file.h"
#include "machines/machine_options.h"

#include <string>
#include <string_view>

struct MACHINE_FACTS;

struct OPENED_GAME {
    CGameFile game;
    std::string file;  // as OpenForPlaying takes it; absolute, or a demo's name
    std::string entry; // which of the file's games, if that was said
    CGameFile bios;
    std::string secondFile; // of `bios`; absolute
    bool hasBios = false;
    std::string title;
    OptionBlock options{};
};

// How a game is opened.
struct OPENING {
    const MACHINE_FACTS* system = nullptr; // the machine, if not the one that the file says
    std::string entry;   // of an archive, as ListArchivedGames has it; empty: the first
    std::string patch;   // a soft patch; empty: that beside the game, if there is one
    bool patched = true; // false: as the file has it
};

// Opens a file, or the demo that "demo:" and a name say, with the options that its game asks for. False, with one line
// that says why, also if the machine of the game is not built in, or if the game cannot be patched as `opening` asks.
[[nodiscard]] bool OpenForPlaying(const std::string& game, const OPENING& opening,
                                  OPENED_GAME& opened, std::string& error);

// Puts the patch that lies beside a game's file into the game, and tells the player. One that is not for this game is
// told too, and the game stays as it is.
void ApplyPatchBeside(OPENED_GAME& opened);

// Opens one of our own games. False for an unknown name.
[[nodiscard]] bool OpenDemo(std::string_view name, OPENED_GAME& opened);
