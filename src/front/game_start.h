// Starting an opened game on a session key, and going on with one that was on when the program ended.
#pragma once

#include <cstdint>
#include <string>

struct GAME_RESUME;
struct OPENED_GAME;

// What players are told first when a game cannot start; the reason comes after it.
inline constexpr const char* kStartFailed = "Error loading game";
[[nodiscard]] std::string StartFailedLine(const std::string& reason);

// What the player is told of a machine that could not go on: in plain words, then as the machine puts it.
inline constexpr const char* kStoppedTitle = "The game has stopped";
[[nodiscard]] std::string StoppedText(const std::string& reason);

// Turns off what runs on the key, autosave included, and starts this game there: from its resume file if it has one,
// which is set aside if that cannot be. Returns the session's serial; 0 with the reason, which may be empty, if the game
// cannot run, or cannot go on and was to. Reads the disk. Any thread, with no lock held.
[[nodiscard]] uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened,
                                 const GAME_RESUME& resume, std::string& reason);
