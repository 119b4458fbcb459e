// Starts an opened game on a session of its own.
#pragma once

#include <cstdint>
#include <string>

struct OPENED_GAME;

// Turns off what runs on the key, autosave included, and starts this game there. Returns the session's serial; 0
// with the reason if it cannot run. Any thread, with no lock held.
[[nodiscard]] uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened,
                                 std::string& error);
