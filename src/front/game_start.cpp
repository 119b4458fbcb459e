#include "front/game_start.h"

#include "front/opened_game.h"
#include "host/report.h"
#include "host/session.h"

std::string StartFailedLine(const std::string& reason) {
    return kStartFailed + (reason.empty() ? std::string() : ": " + reason);
}

uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened, std::string& reason) {
    // EmuStartSession does not change the games, though its parameters are not const.
    auto& game = const_cast<CGameFile&>(opened.game);
    auto& bios = const_cast<CGameFile&>(opened.bios);
    CGameFile* const games[2] = {&game, opened.hasBios ? &bios : nullptr};
    EmuSetLastError("");
    const uint32_t serial = EmuStartSession(sessionKey, games, opened.options.data(), opened.title);
    if (serial != 0) {
        return serial;
    }
    reason = EmuLastError();
    return 0;
}
