// Starts an opened game on a session of its own.
#pragma once

#include <cstdint>
#include <string>

struct OPENED_GAME;

// What players are told first when a game cannot start; the reason comes after it.
inline constexpr const char* kStartFailed = "Error loading game";
[[nodiscard]] std::string StartFailedLine(const std::string& reason);

// Turns off what runs on the key, autosave included, and starts this game there. Returns the session's serial; 0
// with the reason if it cannot run, which may be empty. Any thread, with no lock held.
[[nodiscard]] uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened,
                                 std::string& reason);
