#include "front/tools/command_line.h"

#include "base/files.h"
#include "facts/machine_facts.h"
#include "front/notices.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/play.h"
#include "front/version.h"
#include "machines/machines.h"
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
    static_cast<void>(LoadSettingsFile(Settings(), error));
    if (!error.empty()) {
        PostReport(error + "; missing settings have their defaults");
    }
    ApplyAudioRate();
    EmuSetMachines(BuiltInMachines());
}

std::vector<std::string> MachineNames() {
    std::vector<std::string> names;
    for (const MACHINE_FACTS& system : MachineFacts()) {
        names.emplace_back(system.shortName);
    }
    return names;
}

void AddPlayOptions(CLI::App& app, PLAY_OPTIONS& play) {
    app.add_option("GAME", play.game, "A ROM, a .zip, a .game or demo:NAME")->required();
    app.add_option("--machine", play.machine, "The machine, if not the one that the file says")
        ->check(CLI::IsMember(MachineNames()));
    app.add_option("--set", play.settings, "A machine option or a setting for this run")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    app.add_option("--bios", play.bios, "A console BIOS")->type_name("FILE");
    app.add_flag("--headless", play.headless,
                 "No window, no device, no pacing, no autosave, no .sav");
    app.add_option("--frames", play.frames, "Stop after N frames")->type_name("N");
    app.add_flag("--static", play.showStatic, "Begin with television static");
    app.add_option("--input", play.inputFile, "A file of presses, lines \"FRAME ACTION down|up\"")
        ->type_name("FILE");
    app.add_option("--screenshot", play.screenshots,
                   "FRAME=FILE.png or last=FILE.png; frames count from 1")
        ->allow_extra_args(false);
    app.add_option("--wav", play.wavFile, "Write the sound as the machine made it")
        ->type_name("FILE");
    app.add_option("--frame-hashes", play.hashFile,
                   "Write a line for each frame with the hashes of picture and sound")
        ->type_name("FILE");
    app.add_option("--save-state", play.saveState, "Write the state at the end")->type_name("FILE");
    app.add_option("--load-state", play.loadState, "Load a state at the start")->type_name("FILE");
    app.add_option("--peek", play.peeks,
                   "At the end print bytes as the main processor would read them")
        ->type_name("ADDRESS[:LENGTH]")
        ->allow_extra_args(false);
    app.add_option("--dump", play.dumps, "At the end write a whole memory")
        ->type_name("REGION=FILE")
        ->allow_extra_args(false);
    app.add_option("--latency", play.latencyAction,
                   "In the window: measure the time from this action's key to the picture, and end")
        ->type_name("ACTION");
    app.footer(PlayHelp());
}

int Run(int argc, const char* const* argv) {
    CLI::App app("Ombrelune, an emulator of five machines", "ombrelune");
    app.set_version_flag("--version", "ombrelune " OMBRELUNE_VERSION);
    app.require_subcommand(0, 1);
    app.fallthrough();
    std::string home;
    app.add_option("--home", home, "The folder of settings, saves and games")->type_name("DIR");

    PLAY_OPTIONS play;
    CLI::App* playApp = app.add_subcommand("play", "Play a game");
    AddPlayOptions(*playApp, play);

    BENCH_OPTIONS bench;
    CLI::App* benchApp =
        app.add_subcommand("bench", "Measure how fast the machines run, unpaced, on one core");
    std::vector<std::string> benchMachines = MachineNames();
    benchMachines.emplace_back("all");
    CLI::Option* const benchMachine =
        benchApp->add_option("--machine", bench.machine, "One machine, or all")
            ->check(CLI::IsMember(benchMachines));
    CLI::Option* const benchSeconds =
        benchApp->add_option("--seconds", bench.seconds, "How long to run each")
            ->check(CLI::Range(0.01, 3600.0));
    CLI::Option* const json =
        benchApp->add_option("--json", bench.jsonFile, "Write the figures to a file")
            ->type_name("FILE");
    benchApp
        ->add_flag("--screen", bench.screen,
                   "What the program's benchmark screen measures, in its words")
        ->excludes(benchMachine, benchSeconds, json);

    CONVERT_OPTIONS convert;
    CLI::App* convertApp =
        app.add_subcommand("convert", "Make .game files of ROMs and zips; sources are kept");
    convertApp->add_option("PATH", convert.paths, "ROM or zip files")->required();
    convertApp->add_option("--out", convert.outFolder, "Where the .game files go")
        ->type_name("DIR");
    convertApp
        ->add_option("--machine", convert.machine, "The machine, if not the one of the extension")
        ->check(CLI::IsMember(MachineNames()));

    std::vector<std::filesystem::path> infoPaths;
    CLI::App* infoApp = app.add_subcommand("info", "Show what a ROM, zip or .game holds");
    infoApp->add_option("PATH", infoPaths, "Files")->required();

    GALLERY_OPTIONS gallery;
    CLI::App* galleryApp =
        app.add_subcommand("gallery", "How the program's controls look, to check a theme");
    galleryApp->add_option("--density", gallery.density, "Pixels to a unit")
        ->check(CLI::Range(0.5, 4.0));
    galleryApp
        ->add_option("--size", gallery.size, "The screen in pixels, instead of 1280 by 720 units")
        ->type_name("WIDTH HEIGHT")
        ->check(CLI::Range(640, 8192));
    galleryApp->add_option("--over", gallery.over, "Show a page over this running game")
        ->type_name("GAME");
    galleryApp->add_option("--page", gallery.page, "One page, from 1")->type_name("N");
    galleryApp->add_option("--screenshot", gallery.screenshot, "Write the pages, open no window")
        ->type_name("FILE.png");

    ROOM_OPTIONS room;
    CLI::App* roomApp =
        app.add_subcommand("room", "Walk in a room in which games play on televisions");
    roomApp->footer(
        "Keys: W A S D walk, the mouse looks, E or the left button uses a set, Q turns it off,\n"
        "Esc leaves the full screen or frees the mouse, F4 the lamp. More in docs/ROOM.md.");
    roomApp->add_option("GAME", room.games, "ROMs, .zip, .game or demo:NAME; without any, our own");
    roomApp->add_option("--set", room.settings, "A setting for this run")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    roomApp
        ->add_option("--bench", room.benchSeconds,
                     "Measure for this long how fast it is drawn; no saves")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.1, 3600.0));
    roomApp->add_option("--view", room.view, "Where to stand, and the point to look at")
        ->type_name("X Y Z X Y Z")
        ->expected(6);
    roomApp->add_flag("--dark", room.dark, "Without the ceiling light");
    roomApp->add_option("--screenshot", room.screenshot, "Write a picture of the window and end")
        ->type_name("FILE.png");

    CLI::App* actionsApp = app.add_subcommand("actions", "List every action with its bindings");

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
    if (*benchApp) {
        return BenchCommand(bench);
    }
    if (*infoApp) {
        return InfoCommand(infoPaths);
    }
    if (*galleryApp) {
        return GalleryCommand(gallery);
    }
    if (*roomApp) {
        return RoomCommand(room);
    }
    if (*actionsApp) {
        return ActionsCommand();
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
