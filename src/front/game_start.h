// Starting an opened game on a session key, and going on with one that was on when the program ended.
#pragma once

#include <cstdint>
#include <string>

struct GAME_RESUME;
struct OPENED_GAME;

// Turns off what runs on the key, autosave included, and starts this game there: from its resume file if it has one,
// which is set aside if that cannot be. Returns the session's serial; 0 with the reason if the game cannot run, or cannot
// go on and was to. Reads the disk. With no lock held.
[[nodiscard]] uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened,
                                 const GAME_RESUME& resume, std::string& error);
