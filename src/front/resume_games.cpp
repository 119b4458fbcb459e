#include "front/resume_games.h"

#include "facts/machine_facts.h"
#include "front/notices.h"
#include "front/opened_game.h"
#include "front/resume_texts.h"
#include "host/resume_file.h"
#include "settings/settings.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kAutosaveLoad = 1; // bit of emu_autosaves
constexpr size_t kIdentityDigits = 12;

std::string_view Prefix(ResumeKind kind) {
    switch (kind) {
    case ResumeKind::kProgram: return "set-";
    case ResumeKind::kRoom: return "room-";
    case ResumeKind::kWindow: break;
    }
    return "window-";
}

bool MayGoOnByItself() {
    return (static_cast<uint32_t>(Settings().GetInt(L"emu_autosaves")) & kAutosaveLoad) != 0;
}

} // namespace

ResumeGames::ResumeGames(ResumeKind resumeKind)
    : kind(resumeKind) {
    std::string error;
    if (!folder.Open(error)) {
        PostReport(error + "; games that are on when the program ends will not go on");
    } else if (kind != ResumeKind::kWindow) {
        ReadLeft();
    }
}

void ResumeGames::ReadLeft() {
    for (const std::string& name : folder.Names(Prefix(kind))) {
        LEFT_GAME game;
        std::string error;
        game.file = folder.FileOf(name);
        if (!ReadSnapshotLabel(game.file, game.label, error)) {
            PostReport(ResumeSetAside(game.file, error));
            continue;
        }
        game.key = ResumeKey(game.label);
        left.push_back(std::move(game));
    }
    std::ranges::sort(left, {}, &LEFT_GAME::key);
}

// A single game's window has no sets: the file is the game's.
std::string ResumeGames::NameFor(uint32_t key, const OPENED_GAME& opened) const {
    const std::string prefix(Prefix(kind));
    if (kind != ResumeKind::kWindow) {
        return prefix + std::to_string(key);
    }
    const MACHINE_FACTS* const machine = FindMachineFacts(opened.game.Header().system);
    return prefix + (machine != nullptr ? machine->shortName : "unknown") + "-" +
           GameIdentityText(opened.game).substr(0, kIdentityDigits);
}

// The file from which the game goes on if it is started again: that of this set, or else of another one.
fs::path ResumeGames::LeftBy(const OPENED_GAME& opened, const fs::path& file) {
    std::error_code ignored;
    if (!MayGoOnByItself()) {
        return {};
    }
    if (kind == ResumeKind::kWindow) {
        return fs::exists(file, ignored) ? file : fs::path();
    }
    fs::path from;
    for (const LEFT_GAME& game : left) {
        if (IsResumeOf(game.label, opened.game) && (from.empty() || game.file == file)) {
            from = game.file;
        }
    }
    return from;
}

GAME_RESUME ResumeGames::Start(uint32_t key, const OPENED_GAME& opened) {
    GAME_RESUME resume;
    if (folder.IsOpen()) {
        resume.file = folder.FileOf(NameFor(key, opened));
        resume.texts = ResumeTexts(key, opened);
        resume.from = LeftBy(opened, resume.file);
        Drop(resume.from);
        Drop(resume.file);
    }
    return resume;
}

GAME_RESUME ResumeGames::GoOn(const LEFT_GAME& game, const OPENED_GAME& opened) {
    GAME_RESUME resume;
    resume.file = resume.from = game.file;
    resume.texts = ResumeTexts(game.key, opened);
    resume.wanted = true;
    Drop(resume.file);
    return resume;
}

std::string ResumeGames::Refuse(const LEFT_GAME& game, const std::string& why) {
    const fs::path file = game.file;
    Drop(file);
    return ResumeSetAside(file, why);
}

void ResumeGames::Forget() {
    for (const LEFT_GAME& game : left) {
        std::error_code code;
        fs::remove(game.file, code);
        if (code) {
            PostReport(game.file.string() + ": cannot be deleted: " + code.message());
        }
    }
    left.clear();
}

void ResumeGames::Drop(const fs::path& file) {
    std::erase_if(left, [&](const LEFT_GAME& game) { return game.file == file; });
}
