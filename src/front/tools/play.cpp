#include "front/tools/play.h"

#include "front/demos.h"
#include "front/program_commands.h"
#include "front/run_settings.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "library/game_source.h"

#include <filesystem>
#include <system_error>

namespace {

// One NAME=VALUE: a machine option, the board of an arcade image, or a setting.
int ApplySetting(const std::string& text, OPENED_GAME& opened, std::string& error) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) {
        error = "--set " + text + ": is not NAME=VALUE";
        return kExitUsage;
    }
    const std::string name = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    std::string reason;
    if (SetMachineOption(opened.game.Header().system, name, value, opened.options, reason)) {
        return kExitDone;
    }
    if (reason.empty()) {
        switch (SetForThisRun(name, value)) {
        case RunSetting::kSet: return kExitDone;
        case RunSetting::kUnknown:
            reason = "there is no option or setting " + name + "; play --help lists the options";
            break;
        case RunSetting::kNoValue: reason = name + " is " + RunSettingValues(name); break;
        }
    }
    error = "--set " + text + ": " + reason;
    return kExitUsage;
}

bool OpenBios(const std::string& path, const MACHINE_FACTS* system, OPENED_GAME& opened,
              std::string& error) {
    std::string title;
    std::string note;
    opened.hasBios = OpenGame(path, {system, {}}, opened.bios, title, note, error);
    std::error_code ignored;
    opened.secondFile = std::filesystem::absolute(path, ignored).lexically_normal().string();
    if (!note.empty()) {
        Complain(note);
    }
    return opened.hasBios;
}

std::string RegionsHelp() {
    std::string help;
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        help += "  " + std::string(machine.name) + ":";
        for (const std::string_view region : machine.regions) {
            help += " " + std::string(region);
        }
        help += "\n";
    }
    return help;
}

// The game in the archive that --entry names.
int PickEntry(const PLAY_OPTIONS& options, OPENING& opening, std::string& error) {
    std::vector<ARCHIVED_GAME> games;
    if (!ListArchivedGames(options.game, opening.system, games, error)) {
        return kExitFailed;
    }
    const int found = FindArchivedGame(games, options.entry);
    if (found >= 0) {
        opening.entry = games[static_cast<size_t>(found)].entry;
        return kExitDone;
    }
    error = "--entry " + options.entry + ": ";
    if (games.empty()) {
        error += options.game + " holds no games to choose from";
        return kExitUsage;
    }
    error += options.game + " has";
    for (const ARCHIVED_GAME& game : games) {
        error += (&game == games.data() ? " " : ", ") + game.entry;
    }
    return kExitUsage;
}

std::string DemosHelp(bool tests) {
    std::string help;
    for (const DEMO& demo : Demos()) {
        if (demo.isTest == tests) {
            help += "  demo:" + std::string(demo.name) + "  " + demo.title + "\n";
        }
    }
    return help;
}

} // namespace

int OpenForPlay(const PLAY_OPTIONS& options, OPENED_GAME& opened, std::string& error) {
    OPENING opening;
    if (!options.machine.empty()) {
        opening.system = FindMachineFacts(std::string_view(options.machine));
    }
    if (!options.entry.empty()) {
        if (const int code = PickEntry(options, opening, error); code != kExitDone) {
            return code;
        }
    }
    opening.patch = options.patch;
    opening.patched = !options.noPatch;
    if (!OpenForPlaying(options.game, opening, opened, error)) {
        return kExitFailed;
    }
    const uint16_t number = opened.game.Header().system;
    if (!options.bios.empty() && !OpenBios(options.bios, FindMachineFacts(number), opened, error)) {
        return kExitFailed;
    }
    for (const std::string& setting : options.settings) {
        if (const int code = ApplySetting(setting, opened, error); code != kExitDone) {
            return code;
        }
    }
    ApplyPictureOptions(options.picture, number);
    TakeMachineSettings(number, opened.options);
    return kExitDone;
}

int PlayCommand(const PLAY_OPTIONS& options) {
    OPENED_GAME opened;
    std::string error;
    if (const int code = OpenForPlay(options, opened, error); code != kExitDone) {
        Complain(error);
        return code;
    }
    ApplyAudioRate();
    return options.headless ? PlayHeadless(options, opened) : PlayInWindow(options, opened);
}

std::string PlayHelp() {
    std::string help = "Games of our own, for GAME:\n" + DemosHelp(false) +
                       "Test cards and benchmarks:\n" + DemosHelp(true) + "Keys of the window:\n";
    for (const PROGRAM_KEY& row : ProgramKeys()) {
        help += "  " + std::string(row.key) + "  " + row.name + "\n";
    }
    help += "Machine options for --set:\n" + MachineOptionsHelp() +
            "Any setting of config.xml can be set as well, for this run.\n"
            "Regions for --dump:\n" +
            RegionsHelp();
    return help;
}
