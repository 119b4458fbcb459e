#include "front/game_start.h"

#include "front/opened_game.h"
#include "host/report.h"
#include "host/session.h"

uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened, std::string& error) {
    // EmuStartSession does not change the games, though its parameters are not const.
    auto& game = const_cast<CGameFile&>(opened.game);
    auto& bios = const_cast<CGameFile&>(opened.bios);
    CGameFile* const games[2] = {&game, opened.hasBios ? &bios : nullptr};
    EmuSetLastError("");
    const uint32_t serial = EmuStartSession(sessionKey, games, opened.options.data(), opened.title);
    if (serial != 0) {
        return serial;
    }
    const std::string reason = EmuLastError();
    error = "Error loading game" + (reason.empty() ? std::string() : ": " + reason);
    return 0;
}
