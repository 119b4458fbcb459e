#include "front/game_start.h"

#include "base/text.h"
#include "front/notices.h"
#include "front/opened_game.h"
#include "front/resume_games.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_list.h"
#include "screens/play_keys.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

// Who wants the game from its beginning must know that it is not, and how to get there.
void TellAutosave(uint32_t sessionKey, uint32_t serial, const std::string& title) {
    const SessionPin session = PinSession(sessionKey);
    if (!session || session->serial != serial || !session->fromAutosave) {
        return;
    }
    const std::string key = Utf8FromWide(KeyOfAction(L"Game Menu"));
    PostShortNotice(key.empty()
                        ? title + " goes on from its autosave. Reset in its menu starts it afresh"
                        : title + " goes on from its autosave. " + key +
                              ", then Reset, starts it afresh");
}

uint32_t StartSession(uint32_t sessionKey, const OPENED_GAME& opened, SESSION_RESUME resume,
                      std::string& error) {
    // EmuStartSession does not change the games, though its parameters are not const.
    auto& game = const_cast<CGameFile&>(opened.game);
    auto& bios = const_cast<CGameFile&>(opened.bios);
    CGameFile* const games[2] = {&game, opened.hasBios ? &bios : nullptr};
    EmuSetLastError("");
    const uint32_t serial =
        EmuStartSession(sessionKey, games, opened.options.data(), opened.title, std::move(resume));
    error = serial == 0 ? EmuLastError() : std::string();
    TellAutosave(sessionKey, serial, opened.title);
    return serial;
}

// From the state of a file, which then is the session's own.
uint32_t GoOn(uint32_t sessionKey, const OPENED_GAME& opened, const GAME_RESUME& resume,
              std::string& error) {
    STATE_SNAPSHOT snapshot;
    if (!ReadSnapshot(resume.from, snapshot, error)) {
        return 0;
    }
    const uint32_t serial = StartSession(
        sessionKey, opened,
        {resume.file, resume.texts, std::move(snapshot.state), snapshot.secondsPlayed}, error);
    if (serial != 0 && resume.from != resume.file) {
        std::error_code ignored; // the session writes its own within ten seconds
        fs::rename(resume.from, resume.file, ignored);
    }
    return serial;
}

} // namespace

std::string StartFailedLine(const std::string& reason) {
    return kStartFailed + (reason.empty() ? std::string() : ": " + reason);
}

std::string StoppedText(const std::string& reason) {
    return "The program of the game has done something from which its machine cannot go on. The "
           "file may be "
           "damaged, or need something that Ombrelune does not have. Your saved states are as they "
           "were."
           "\n\nDetails: " +
           reason;
}

uint32_t StartGame(uint32_t sessionKey, const OPENED_GAME& opened, const GAME_RESUME& resume,
                   std::string& reason) {
    if (!resume.from.empty()) {
        if (const uint32_t serial = GoOn(sessionKey, opened, resume, reason); serial != 0) {
            if (!resume.wanted) {
                PostNotice(opened.title + ": goes on where it was when the program ended");
            }
            return serial;
        }
        const std::string refused = ResumeSetAside(resume.from, reason);
        if (resume.wanted) {
            reason = opened.title + " cannot go on: " + refused;
            return 0;
        }
        PostReport(refused);
    }
    return StartSession(sessionKey, opened, {resume.file, resume.texts, {}}, reason);
}
