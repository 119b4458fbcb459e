#include "front/opened_game.h"

#include "facts/machine_facts.h"
#include "front/demo_database.h"
#include "front/demos.h"
#include "front/notices.h"
#include "front/terminal.h"
#include "host/machine_list.h"
#include "library/convert.h"
#include "library/game_source.h"
#include "library/patched_game.h"

#include <filesystem>
#include <system_error>

namespace {

constexpr std::string_view kDemoPrefix = "demo:";

bool CheckMachine(const std::string& game, uint16_t system, std::string& error) {
    if (EmuFindMachine(system) != nullptr) {
        return true;
    }
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    error = game + ": is a game of the " +
            (facts != nullptr ? facts->name : "system " + std::to_string(system)) +
            ", and that machine is not built in";
    return false;
}

void Tell(const std::string& line) {
    Complain(line);
    PostNotice(line);
}

bool OpenFile(const std::string& game, const OPENING& opening, OPENED_GAME& opened,
              std::string& error) {
    std::string note;
    const GAME_PICK pick{opening.system, opening.entry};
    if (!OpenGame(game, pick, opened.game, opened.title, note, error)) {
        return false;
    }
    if (!note.empty()) {
        Tell(note);
    }
    std::error_code ignored;
    opened.file = std::filesystem::absolute(game, ignored).lexically_normal().string();
    opened.entry = opening.entry;
    if (opening.patched && opening.patch.empty()) {
        ApplyPatchBeside(opened);
    }
    opened.options = DefaultMachineOptions(opened.game);
    return true;
}

} // namespace

void ApplyPatchBeside(OPENED_GAME& opened) {
    const std::filesystem::path patch = PatchBeside(opened.file);
    if (patch.empty()) {
        return;
    }
    std::string error;
    if (PatchGame(patch, opened.game, error)) {
        Tell(patch.filename().string() + ": this patch has been put into the game");
    } else {
        Tell(error + "; the game is played without it");
    }
}

bool OpenDemo(std::string_view name, OPENED_GAME& opened) {
    for (const DEMO& demo : Demos()) {
        if (demo.name == name) {
            const bool built = BuildKnownGame(demo.system, demo.title, demo.image,
                                              DemoMachineRecord(demo.system), opened.game);
            opened.game.selectedName = 0;
            opened.file = std::string(kDemoPrefix) + demo.name;
            opened.title = demo.title;
            opened.options = DefaultMachineOptions(opened.game);
            return built;
        }
    }
    return false;
}

bool OpenForPlaying(const std::string& game, const OPENING& opening, OPENED_GAME& opened,
                    std::string& error) {
    if (game.starts_with(kDemoPrefix)) {
        if (!OpenDemo(std::string_view(game).substr(kDemoPrefix.size()), opened)) {
            error = game + ": no such demo; play --help lists them";
            return false;
        }
    } else if (!OpenFile(game, opening, opened, error)) {
        return false;
    }
    if (!opening.patch.empty() && !PatchGame(opening.patch, opened.game, error)) {
        return false;
    }
    return CheckMachine(game, opened.game.Header().system, error);
}
