#include "front/tools/command_line.h"

#include "base/files.h"
#include "front/demo_database.h"
#include "front/notices.h"
#include "front/terminal.h"
#include "front/tools/command_options.h"
#include "front/tools/commands.h"
#include "front/tools/option_checks.h"
#include "front/tools/play.h"
#include "front/version.h"
#include "library/game_source.h"
#include "machines/machines.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <CLI/CLI.hpp>
#include <SDL.h>

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

int Run(int argc, const char* const* argv) {
    CLI::App app("Ombrelune, an emulator of five machines", "ombrelune");
    app.set_version_flag("--version", "ombrelune " OMBRELUNE_VERSION);
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.failure_message(UsageSentence);
    std::string home;
    app.add_option("--home", home, "The folder of settings, saves and games")->type_name("DIR");
    const std::vector<COMMAND> commands = AddCommands(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitDone : kExitUsage;
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
