// The commands and options of the command line as plain records: the manual page and the completions of the shells
// are written from these, so that they say what `--help` says.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

// What a word of the command line is, for a shell that completes it.
enum class WordKind {
    kNone,   // a flag: there is no word
    kText,   // anything: nothing to offer
    kChoice, // one of `choices`
    kFile,   // also folders, where a command walks them
    kFolder,
    kGame, // a file that may be a game, or one of our own games
};

struct COMMAND_WORD {
    std::string name; // for people: "FILE"
    WordKind kind = WordKind::kNone;
    std::vector<std::string> choices;
    bool required = false;
    bool many = false; // may be repeated
};

struct COMMAND_SWITCH {
    std::vector<std::string> names; // with their dashes, short ones first
    std::string help;
    COMMAND_WORD word;
};

struct COMMAND_TREE {
    std::string name;
    std::string help;
    std::string footer; // what `--help` ends with; lines that begin with a space stay as they are
    std::vector<COMMAND_SWITCH> switches;
    std::vector<COMMAND_WORD> words; // without dashes, in their order
    std::vector<COMMAND_TREE> commands;
};

// The visible part: options and commands of an empty group are left out, as in `--help`.
[[nodiscard]] COMMAND_TREE ReadCommandTree(const CLI::App& app);
