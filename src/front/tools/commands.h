// The small commands of the command line. Each returns the program's exit code.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitInterrupted = 130; // by Ctrl-C, as shells number it

// The whole program in its window: what runs without a command. Without a display one of our own games runs off the
// screen for some seconds.
int DesktopCommand();

// Every action that has an effect, with its inputs, and the window's own keys.
int ActionsCommand(bool json);

// Prints what each file holds, and whether it can be played. A file that fails is reported, and the others are still
// shown.
struct INFO_OPTIONS {
    std::vector<std::filesystem::path> paths;
    std::string machine; // short name; empty: as the files say
    bool json = false;   // an array with an object for each file instead
};
int InfoCommand(const INFO_OPTIONS& options);

// Writes a `.game` for every image in the files, beside its source or in `outFolder`. Folders are walked, and what is no
// game in them is passed over. Sources stay. A line for each, and the counts at the end. An existing target with the same bytes stays as it is; one with other bytes is never replaced: the new
// file's name then gets a "0" appended until it is unused.
struct CONVERT_OPTIONS {
    std::vector<std::filesystem::path> paths;
    std::filesystem::path outFolder; // empty: beside the source
    std::string machine;             // short name of the system; empty: by the extension
};
int ConvertCommand(const CONVERT_OPTIONS& options);

// Makes a database of a list of games, and shows what one holds.
struct DATABASE_MAKE_OPTIONS {
    std::string machine;             // short name of the system
    std::filesystem::path listFile;  // XML of Logiqx
    std::filesystem::path roms;      // the folder of the images; may be empty
    std::filesystem::path rulesFile; // may be empty
    std::filesystem::path outFile;
};
int DatabaseMakeCommand(const DATABASE_MAKE_OPTIONS& options);
int DatabaseShowCommand(const std::filesystem::path& file);

// Writes the image of every `.game` as the file that it was made of, arcade boards piece by piece. The games
// stay. Names that are taken are treated as ConvertCommand does.
struct EXTRACT_OPTIONS {
    std::vector<std::filesystem::path> paths;
    std::filesystem::path outFolder; // empty: the current one
    bool interleaved = false;        // Mega Drive images as a copier stored them
};
int ExtractCommand(const EXTRACT_OPTIONS& options);

// Copies every file into the folder of its machine in the library and converts it there; prints the games and,
// as the last line, the counts. Exit code 1 also if nothing tells a file's machine.
struct ADD_OPTIONS {
    std::vector<std::filesystem::path> paths; // folders are walked
    std::string machine;                      // short name; empty: as the files tell
};
int AddCommand(const ADD_OPTIONS& options);

// Prints the games of the library, a line for each title: machine, title, year, regions, whether a database
// knows it, and the file, separated by tabs. Nothing is converted.
struct LIST_OPTIONS {
    std::string machine; // short name; empty: all
    std::string name;    // a part of the title, in any case; empty: all
    bool json = false;   // an array with an object for each title instead
};
int ListCommand(const LIST_OPTIONS& options);

// Sets the program's sample rate from the setting; reports one that is out of range.
void ApplyAudioRate();

// Runs machines unpaced on one core with our own games, and prints their speed. With `screen` it does what the
// program's benchmark screen does, and prints what that shows.
struct BENCH_OPTIONS {
    bool screen = false;
    std::string machine = "all";
    double seconds = 5.0;
    std::string jsonFile;
};
int BenchCommand(const BENCH_OPTIONS& options);

// Shows every control and style of the toolkit, page by page, in a window (F7 and F8 turn the page, Esc
// ends) or as PNG files.
struct GALLERY_OPTIONS {
    std::optional<double> density;    // pixels to a unit; none: 1, or what the settings say
    std::pair<int, int> size;         // of the screen in pixels; 0: 1280 by 720 units
    std::string over;                 // a game that runs below the page, as `play` takes it
    size_t page = 0;                  // from 1; 0: the first, or with a screenshot all
    std::filesystem::path screenshot; // without a page, one file each, its number after the name
};
int GalleryCommand(const GALLERY_OPTIONS& options);

// The room with its televisions, in a window. Numbers of the view are room units.
struct ROOM_OPTIONS {
    std::vector<std::string> games;    // as `play` takes them; none: our own
    std::vector<std::string> settings; // NAME=VALUE, for this run
    double benchSeconds = 0.0;         // 0: until the window is closed
    std::vector<float> view;           // six numbers: where the player stands, and at what he looks
    bool dark = false;                 // the ceiling light is off
    bool noHints = false;              // without the line that says what one can do
    std::vector<std::filesystem::path>
        covers;           // images of game boxes, shown over the room; at most six
    bool cabinet = false; // an arcade cabinet beside them
    size_t turned = 0;    // how many boxes show their backs
    std::filesystem::path
        screenshot; // of the window once all sets have a picture; then the program ends
};
int RoomCommand(const ROOM_OPTIONS& options);

// Print the manual page, for man(1), and the script by which a shell ("bash", "zsh" or "fish") completes the
// command line.
int ManualCommand(const CLI::App& program);
int CompletionCommand(const CLI::App& program, const std::string& shell);
