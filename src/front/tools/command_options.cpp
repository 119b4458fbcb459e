#include "front/tools/command_options.h"

#include "facts/machine_facts.h"
#include "front/tools/commands.h"
#include "front/tools/option_checks.h"
#include "front/tools/picture_options.h"
#include "front/tools/play.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

constexpr uint32_t kMostCovers = 6;

std::vector<std::string> MachineNames() {
    std::vector<std::string> names;
    for (const MACHINE_FACTS& system : MachineFacts()) {
        names.emplace_back(system.shortName);
    }
    return names;
}

// Options of `play` that make files of exact frames. In the help they come after what a player needs.
void GroupForTests(CLI::App& command) {
    for (const char* const name :
         {"--headless", "--frames", "--input", "--screenshot", "--wav", "--frame-hashes",
          "--save-state", "--load-state", "--peek", "--dump", "--latency"}) {
        command.get_option(name)->group("Options for tests and for files of exact frames");
    }
}

COMMAND AddPlay(CLI::App& app) {
    const auto play = std::make_shared<PLAY_OPTIONS>();
    CLI::App* const command = app.add_subcommand("play", "Play a game");
    command->add_option("GAME", play->game, "A ROM, a .zip, a .game or demo:NAME")->required();
    command
        ->add_option("--machine", play->machine, "The machine, if not the one that the file says")
        ->check(OneOf(MachineNames()));
    command->add_option("--entry", play->entry, "The game of this name in a zip of several")
        ->type_name("NAME");
    command->add_option("--set", play->settings, "A machine option or a setting for this run")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command->add_option("--bios", play->bios, "A console BIOS")->type_name("FILE");
    CLI::Option* const patch =
        command
            ->add_option("--patch", play->patch,
                         "An IPS, UPS or BPS patch, if not the one of the game's name beside it")
            ->type_name("FILE");
    command->add_flag("--no-patch", play->noPatch, "Leave the patch beside the game alone")
        ->excludes(patch);
    AddPictureOptions(*command, play->picture);
    command->add_flag("--headless", play->headless,
                      "No window, no device, no pacing, no autosave, no .sav");
    command->add_option("--frames", play->frames, "Stop after N frames")
        ->type_name("N")
        ->check(WholeNumberBetween(0, UINT32_MAX));
    command->add_flag("--static", play->showStatic, "Begin with television static");
    command
        ->add_option("--input", play->inputFile,
                     "A file of presses, lines \"FRAME ACTION down|up\"")
        ->type_name("FILE");
    command
        ->add_option("--screenshot", play->screenshots,
                     "FRAME=FILE.png or last=FILE.png; frames count from 1")
        ->allow_extra_args(false);
    command->add_option("--wav", play->wavFile, "Write the sound as the machine made it")
        ->type_name("FILE");
    command
        ->add_option("--frame-hashes", play->hashFile,
                     "Write a line for each frame with the hashes of picture and sound")
        ->type_name("FILE");
    command->add_option("--save-state", play->saveState, "Write the state at the end")
        ->type_name("FILE");
    command->add_option("--load-state", play->loadState, "Load a state at the start")
        ->type_name("FILE");
    command
        ->add_option("--peek", play->peeks,
                     "At the end print bytes as the main processor would read them")
        ->type_name("ADDRESS[:LENGTH]")
        ->allow_extra_args(false);
    command->add_option("--dump", play->dumps, "At the end write a whole memory")
        ->type_name("REGION=FILE")
        ->allow_extra_args(false);
    command
        ->add_option(
            "--latency", play->latencyAction,
            "In the window: measure the time from this action's key to the picture, and end")
        ->type_name("ACTION");
    GroupForTests(*command);
    command->footer(PlayHelp());
    return {command, [play] { return PlayCommand(*play); }};
}

COMMAND AddBench(CLI::App& app) {
    const auto bench = std::make_shared<BENCH_OPTIONS>();
    CLI::App* const command =
        app.add_subcommand("bench", "Measure how fast the machines run, unpaced, on one core");
    std::vector<std::string> machines = MachineNames();
    machines.emplace_back("all");
    CLI::Option* const machine =
        command->add_option("--machine", bench->machine, "One machine, or all")
            ->check(OneOf(machines));
    CLI::Option* const seconds =
        command->add_option("--seconds", bench->seconds, "How long to run each")
            ->check(NumberBetween(0.01, 3600.0));
    CLI::Option* const json =
        command->add_option("--json", bench->jsonFile, "Write the figures to a file")
            ->type_name("FILE");
    command
        ->add_flag("--screen", bench->screen,
                   "What the program's benchmark screen measures, in its words")
        ->excludes(machine, seconds, json);
    return {command, [bench] { return BenchCommand(*bench); }};
}

COMMAND AddConvert(CLI::App& app) {
    const auto convert = std::make_shared<CONVERT_OPTIONS>();
    CLI::App* const command =
        app.add_subcommand("convert", "Make .game files of ROMs and zips; sources are kept");
    command->add_option("PATH", convert->paths, "ROMs, zips and folders of them")->required();
    command->add_option("--out", convert->outFolder, "Where the .game files go")->type_name("DIR");
    command
        ->add_option("--machine", convert->machine, "The machine, if not the one of the extension")
        ->check(OneOf(MachineNames()));
    return {command, [convert] { return ConvertCommand(*convert); }};
}

COMMAND AddExtract(CLI::App& app) {
    const auto extract = std::make_shared<EXTRACT_OPTIONS>();
    CLI::App* const command =
        app.add_subcommand("extract", "Write the images of .game files as ROM files again");
    command->add_option("GAME", extract->paths, ".game files, which are kept")->required();
    command
        ->add_option("--out", extract->outFolder, "Where the files go, if not the current folder")
        ->type_name("DIR");
    command->add_flag("--interleaved", extract->interleaved,
                      "Mega Drive images as a copier stored them (.smd)");
    return {command, [extract] { return ExtractCommand(*extract); }};
}

COMMAND AddAdd(CLI::App& app) {
    const auto add = std::make_shared<ADD_OPTIONS>();
    CLI::App* const command = app.add_subcommand(
        "add", "Copy ROMs, zips, .game files and whole folders into the library");
    command->add_option("PATH", add->paths, "Files and folders; they stay as they are")->required();
    command
        ->add_option("--machine", add->machine,
                     "The machine of files that do not tell, and of every file named here")
        ->check(OneOf(MachineNames()));
    return {command, [add] { return AddCommand(*add); }};
}

COMMAND AddList(CLI::App& app) {
    const auto list = std::make_shared<LIST_OPTIONS>();
    CLI::App* const command = app.add_subcommand("list", "List the games of the library");
    command->add_option("--machine", list->machine, "Of one machine only")
        ->check(OneOf(MachineNames()));
    command->add_option("--name", list->name, "Only titles with this text in them")
        ->type_name("TEXT");
    command->add_flag("--json", list->json, "As a JSON array, with everything that a row holds");
    return {command, [list] { return ListCommand(*list); }};
}

COMMAND AddInfo(CLI::App& app) {
    const auto info = std::make_shared<INFO_OPTIONS>();
    CLI::App* const command = app.add_subcommand(
        "info", "Show what a ROM, zip or .game holds, and whether it can be played");
    command->add_option("PATH", info->paths, "Files")->required();
    command->add_option("--machine", info->machine, "The machine, if not the one of the extension")
        ->check(OneOf(MachineNames()));
    command->add_flag("--json", info->json, "As a JSON array, with an object for each file");
    return {command, [info] { return InfoCommand(*info); }};
}

COMMAND AddGallery(CLI::App& app) {
    const auto gallery = std::make_shared<GALLERY_OPTIONS>();
    CLI::App* const command =
        app.add_subcommand("gallery", "How the program's controls look, to check a theme");
    command->add_option("--density", gallery->density, "Pixels to a unit")
        ->check(NumberBetween(0.5, 4.0));
    command
        ->add_option("--size", gallery->size, "The screen in pixels, instead of 1280 by 720 units")
        ->type_name("WIDTH HEIGHT")
        ->check(WholeNumberBetween(640, 8192));
    command->add_option("--over", gallery->over, "Show a page over this running game")
        ->type_name("GAME");
    command->add_option("--page", gallery->page, "One page, from 1")
        ->type_name("N")
        ->check(WholeNumberBetween(1, UINT32_MAX));
    command->add_option("--screenshot", gallery->screenshot, "Write the pages, open no window")
        ->type_name("FILE.png");
    return {command, [gallery] { return GalleryCommand(*gallery); }};
}

COMMAND AddRoom(CLI::App& app) {
    const auto room = std::make_shared<ROOM_OPTIONS>();
    CLI::App* const command =
        app.add_subcommand("room", "Walk in a room in which games play on televisions");
    command->footer(
        "Keys: W A S D walk, the mouse looks, E or the left button uses a set, Q turns it off,\n"
        "Esc leaves the full screen or frees the mouse, F9 opens the saved states of the game "
        "that\n"
        "you look at, F4 is the lamp. More in docs/ROOM.md.");
    command->add_option("GAME", room->games,
                        "ROMs, .zip, .game or demo:NAME; without any, our own");
    command->add_option("--set", room->settings, "A setting for this run")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command
        ->add_option("--bench", room->benchSeconds,
                     "Measure for this long how fast it is drawn; no saves")
        ->type_name("SECONDS")
        ->check(NumberBetween(0.1, 3600.0));
    command->add_option("--view", room->view, "Where to stand, and the point to look at")
        ->type_name("X Y Z X Y Z")
        ->expected(6)
        ->check(NumberBetween(-100000.0, 100000.0));
    command->add_flag("--dark", room->dark, "Without the ceiling light");
    command->add_flag("--no-hints", room->noHints, "Without the line that says what you can do");
    command->add_option("--cover", room->covers, "Show game boxes with these covers over the room")
        ->type_name("IMAGE")
        ->check(CLI::ExistingFile)
        ->allow_extra_args(false)
        ->expected(1, 6);
    command->add_flag("--cabinet", room->cabinet, "An arcade cabinet beside the boxes");
    command->add_option("--turned", room->turned, "The first boxes, of which you see the backs")
        ->type_name("N")
        ->check(WholeNumberBetween(0, kMostCovers));
    command->add_option("--screenshot", room->screenshot, "Write a picture of the window and end")
        ->type_name("FILE.png");
    return {command, [room] { return RoomCommand(*room); }};
}

// A command of its own for each thing that can be done with a database.
void AddDatabase(CLI::App& app, std::vector<COMMAND>& commands) {
    CLI::App* const database =
        app.add_subcommand("database", "Make and show databases, by which games are known");
    database->require_subcommand(1);

    const auto make = std::make_shared<DATABASE_MAKE_OPTIONS>();
    CLI::App* const maker = database->add_subcommand("make", "Make a database of a list of games");
    maker->add_option("--machine", make->machine, "The machine of the games")
        ->required()
        ->check(OneOf(MachineNames()));
    maker->add_option("--from", make->listFile, "The list: Logiqx XML")
        ->type_name("DAT.xml")
        ->required();
    maker
        ->add_option("--roms", make->roms,
                     "Your images, for the SHA-256 of games that the list has none for")
        ->type_name("DIR");
    maker->add_option("--rules", make->rulesFile, "What the list does not say (docs/FORMATS.md)")
        ->type_name("FILE");
    maker->add_option("--out", make->outFile, "The database; an old one is replaced")
        ->type_name("FILE.dat")
        ->required();
    commands.push_back({maker, [make] { return DatabaseMakeCommand(*make); }});

    const auto file = std::make_shared<std::filesystem::path>();
    CLI::App* const show = database->add_subcommand("show", "Print what a database holds");
    show->add_option("FILE", *file, "A .dat file")->required();
    commands.push_back({show, [file] { return DatabaseShowCommand(*file); }});
}

// For packages, and for a shell's start file.
void AddDocuments(CLI::App& app, std::vector<COMMAND>& commands) {
    CLI::App* const manual = app.add_subcommand("manual", "Print the manual page, for man");
    commands.push_back({manual, [&app] { return ManualCommand(app); }});

    const auto shell = std::make_shared<std::string>();
    CLI::App* const completion = app.add_subcommand(
        "completion", "Print the script by which a shell completes the command line");
    completion->add_option("SHELL", *shell, "bash, zsh or fish")
        ->required()
        ->check(CLI::IsMember({"bash", "zsh", "fish"}));
    commands.push_back({completion, [&app, shell] { return CompletionCommand(app, *shell); }});
}

COMMAND AddActions(CLI::App& app) {
    const auto json = std::make_shared<bool>(false);
    CLI::App* const command = app.add_subcommand(
        "actions", "List what can be pressed: every action with its inputs, and the window's keys");
    command->add_flag("--json", *json, "As JSON");
    return {command, [json] { return ActionsCommand(*json); }};
}

} // namespace

std::vector<COMMAND> AddCommands(CLI::App& app) {
    std::vector<COMMAND> commands = {AddPlay(app),    AddRoom(app),    AddAdd(app), AddList(app),
                                     AddConvert(app), AddExtract(app), AddInfo(app)};
    AddDatabase(app, commands);
    commands.push_back(AddActions(app));
    commands.push_back(AddBench(app));
    commands.push_back(AddGallery(app));
    AddDocuments(app, commands);
    return commands;
}
