#include "front/tools/command_line.h"

#include "base/files.h"
#include "base/version.h"
#include "front/demo_database.h"
#include "front/notices.h"
#include "front/terminal.h"
#include "front/tools/bare_games.h"
#include "front/tools/command_options.h"
#include "front/tools/commands.h"
#include "front/tools/option_checks.h"
#include "front/tools/play.h"
#include "library/game_source.h"
#include "machines/machines.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <CLI/CLI.hpp>
#include <SDL.h>

#include <algorithm>
#include <cstdlib>

namespace {

std::filesystem::path ExecutableFolder() {
    char* folder = SDL_GetBasePath();
    std::filesystem::path path = folder != nullptr ? folder : ".";
    SDL_free(folder);
    return path;
}

// Finds the home folder and loads the settings: what every command does first.
void StartUp(const std::string& homeOption) {
    const char* variable =
        std::getenv("OMBRELUNE_HOME"); // NOLINT(concurrency-mt-unsafe): one thread yet
    if (!homeOption.empty()) {
        SetHomeFolder(homeOption);
    } else if (variable != nullptr && *variable != '\0') {
        SetHomeFolder(variable);
    } else {
        SetHomeFolder(FindHomeFolder(ExecutableFolder()));
    }
    RegisterDefaultSettings(Settings());
    std::string error;
    std::vector<std::string> unknownWords;
    static_cast<void>(LoadSettingsFile(Settings(), error, &unknownWords));
    if (!error.empty()) {
        PostReport(error + "; missing settings have their defaults");
    }
    for (const std::string& line : unknownWords) {
        Complain(Printable(line));
    }
    GiveNewKeys(Settings());
    ApplyAudioRate();
    EmuSetMachines(BuiltInMachines());
    SetBuiltInDatabase(DemoDatabase);
}

std::vector<std::string> CommandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const command :
         app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(command->get_name());
    }
    return names;
}

int Run(int argc, const char* const* argv) {
    CLI::App app("Ombrelune, an emulator of five machines", "ombrelune");
    app.set_version_flag("--version", std::string("ombrelune ") + ProgramVersion());
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.failure_message(UsageSentence);
    std::string home;
    app.add_option("--home", home, "The folder of settings, saves and games")->type_name("DIR");
    app.footer(
        "ombrelune GAME plays a game, ombrelune GAME GAME ... several in the room, and ombrelune\n"
        "alone opens the whole program.");
    const std::vector<COMMAND> commands = AddCommands(app);
    std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    std::string error;
    if (!AddImpliedCommand(arguments, CommandNames(app), error)) {
        Complain(error);
        return kExitUsage;
    }
    std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& stop) {
        return app.exit(stop) == 0 ? kExitDone : kExitUsage;
    }
    StartUp(home);
    for (const COMMAND& command : commands) {
        if (*command.app) {
            return command.run();
        }
    }
    return DesktopCommand();
}

} // namespace

int RunCommandLine(int argc, const char* const* argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        // Nothing of ours throws; only running out of memory gets here.
        Complain(error.what());
        return kExitFailed;
    }
}
