#include "front/command_line.h"

#include "base/audio_rate.h"
#include "base/files.h"
#include "front/commands.h"
#include "front/settings/settings.h"
#include "front/version.h"
#include "host/machines.h"
#include "library/systems.h"

#include <CLI/CLI.hpp>
#include <SDL.h>

#include <cstdio>
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
    if (!LoadSettingsFile(Settings(), error) && !error.empty()) {
        Complain(error + "; what it does not say has its default");
    }
    const int32_t rate = Settings().GetInt(L"audio_app_samplerate");
    constexpr int32_t kLowestRate = 8000;
    constexpr int32_t kHighestRate = 192000;
    if (rate >= kLowestRate && rate <= kHighestRate) {
        SetAudioRate(static_cast<uint32_t>(rate));
    } else {
        Complain("a sample rate of " + std::to_string(rate) + " cannot be; 44100 is used");
    }
    EmuSetMachines(BuiltInMachines());
}

std::vector<std::string> MachineNames() {
    std::vector<std::string> names;
    for (const GAME_SYSTEM& system : GameSystems()) {
        names.emplace_back(system.shortName);
    }
    return names;
}

// The program without arguments. Its window comes with the machines; until then it says what it has.
int WindowCommand() {
    std::fprintf(stderr,
                 "ombrelune %s: no machine is built in yet, so there is nothing to show.\n"
                 "Try: ombrelune --help\n",
                 OMBRELUNE_VERSION);
    Settings().SetBool(L"app_720runonce", true);
    std::string error;
    if (!SaveSettingsFile(Settings(), error)) {
        Complain(error);
        return kExitFailed;
    }
    return kExitDone;
}

int Run(int argc, const char* const* argv) {
    CLI::App app("Ombrelune, an emulator of five consoles", "ombrelune");
    app.set_version_flag("--version", "ombrelune " OMBRELUNE_VERSION);
    app.require_subcommand(0, 1);
    app.fallthrough();
    std::string home;
    app.add_option("--home", home, "The folder of settings, saves and games")->type_name("DIR");

    PLAY_OPTIONS play;
    CLI::App* playApp = app.add_subcommand("play", "Play one game at once");
    playApp->add_option("GAME", play.game, "A ROM, a .zip or a .game")->required();
    playApp->add_option("--machine", play.machine, "The machine, instead of what the file says")
        ->check(CLI::IsMember(MachineNames()));

    CONVERT_OPTIONS convert;
    CLI::App* convertApp =
        app.add_subcommand("convert", "Make .game files of ROMs and zips; sources are kept");
    convertApp->add_option("PATH", convert.paths, "ROM or zip files")->required();
    convertApp->add_option("--out", convert.outFolder, "Where the .game files go")
        ->type_name("DIR");
    convertApp->add_option("--machine", convert.machine, "The machine, instead of the extension")
        ->check(CLI::IsMember(MachineNames()));

    std::vector<std::filesystem::path> infoPaths;
    CLI::App* infoApp = app.add_subcommand("info", "What a ROM, zip or .game holds");
    infoApp->add_option("PATH", infoPaths, "Files")->required();

    CLI::App* actionsApp = app.add_subcommand("actions", "Every action name with its bindings");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitDone : kExitUsage;
    }
    StartUp(home);
    if (*playApp) {
        return PlayCommand(play);
    }
    if (*convertApp) {
        return ConvertCommand(convert);
    }
    if (*infoApp) {
        return InfoCommand(infoPaths);
    }
    if (*actionsApp) {
        return ActionsCommand();
    }
    return WindowCommand();
}

} // namespace

int RunCommandLine(int argc, const char* const* argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        // Nothing of ours throws; what comes here is the want of memory.
        Complain(error.what());
        return kExitFailed;
    }
}
