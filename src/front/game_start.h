// Starts an opened game on a session of its own.
#pragma once

#include <cstdint>
#include <string>

struct OPENED_GAME;

// Turns off what runs on the key, autosave included, and starts this game there. False with the reason if it
// cannot run. Main thread.
[[nodiscard]] bool StartGame(uint32_t sessionKey, const OPENED_GAME& opened, std::string& error);
