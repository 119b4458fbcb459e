// zsh: a function for each command. It calls `_arguments` with what may follow.
#include "front/tools/completion.h"
#include "front/tools/completion_words.h"

#include <algorithm>
#include <string_view>

namespace {

// "[" and ":" have a meaning inside an argument of `_arguments`.
std::string Explained(std::string_view help) {
    std::string text;
    for (const char c : help) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            text += '\\';
        }
        text += c;
    }
    return text;
}

// ":what it is called:how it is completed".
std::string Action(const COMMAND_WORD& word) {
    const std::string name = ":" + Explained(word.name) + ":";
    switch (word.kind) {
    case WordKind::kChoice: return name + "(" + Joined(word.choices, " ") + ")";
    case WordKind::kFile: return name + "_files";
    case WordKind::kFolder: return name + "_files -/";
    case WordKind::kGame: return name + "_ombrelune_games";
    default: return name + " ";
    }
}

// A switch that takes a word may be repeated where the program lets it; saying so of all does no harm.
std::string SwitchText(const COMMAND_SWITCH& option, const std::string& name) {
    const bool takesWord = option.word.kind != WordKind::kNone;
    return ShellQuoted((takesWord ? "*" : "") + name + (takesWord ? "=" : "") + "[" +
                       Explained(option.help) + "]" + (takesWord ? Action(option.word) : ""));
}

std::string FollowingWords(const COMMAND_TREE& command, const COMMAND_TREE& program) {
    std::string text;
    const auto add = [&](const COMMAND_SWITCH& option) {
        for (const std::string& name : option.names) {
            text += " \\\n        " + SwitchText(option, name);
        }
    };
    std::for_each(command.switches.begin(), command.switches.end(), add);
    if (&command != &program) {
        // The program's own may stand after a command, but for those that end it.
        for (const COMMAND_SWITCH& option : program.switches) {
            if (option.word.kind != WordKind::kNone) {
                add(option);
            }
        }
    }
    return text;
}

std::string FunctionName(const std::string& path) {
    std::string name = "_ombrelune" + std::string(path.empty() ? "" : "_") + path;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

// A command that holds others: its first word is the other's name, and the rest belongs to that.
std::string Dispatch(const COMMAND_AT& at, const COMMAND_TREE& program) {
    const bool games = !at.command->words.empty();
    std::string text = "    local curcontext=$curcontext state line\n    local -a commands=(\n";
    for (const COMMAND_TREE& below : at.command->commands) {
        text += "        " + ShellQuoted(below.name + ":" + Explained(below.help)) + "\n";
    }
    text += "    )\n    _arguments -C" + FollowingWords(*at.command, program) +
            " \\\n        '1: :->command' \\\n        '*:: :->words'\n    case $state in\n"
            "        command) _describe command commands" +
            (games ? " || _ombrelune_games" : "") +
            " ;;\n        words)\n            case $line[1] in\n";
    for (const COMMAND_TREE& below : at.command->commands) {
        const std::string path = at.path.empty() ? below.name : at.path + " " + below.name;
        text += "                " + below.name + ") " + FunctionName(path) + " ;;\n";
    }
    return text + "            esac ;;\n    esac\n";
}

std::string Arguments(const COMMAND_AT& at, const COMMAND_TREE& program) {
    std::string text = "    _arguments" + FollowingWords(*at.command, program);
    for (const COMMAND_WORD& word : at.command->words) {
        text += " \\\n        " + ShellQuoted((word.many ? "*" : "") + Action(word));
    }
    return text + "\n";
}

} // namespace

std::string ZshCompletion(const COMMAND_TREE& program) {
    std::string script = "#compdef ombrelune\n# Completion of ombrelune for zsh.\n\n"
                         "_ombrelune_games() {\n    local -a demos=(demo:" +
                         Joined(DemoNames(), " demo:") +
                         ")\n    _alternative \\\n        'files:game:_files -g \"*.(#i)(" +
                         Joined(GameExtensions(), "|") +
                         ")(-.)\"' \\\n        'demos:game of our own:compadd -a demos'\n}\n\n";
    const std::vector<COMMAND_AT> commands = AllCommands(program);
    // Functions come before those that call them.
    for (auto at = commands.rbegin(); at != commands.rend(); ++at) {
        script +=
            FunctionName(at->path) + "() {\n" +
            (at->command->commands.empty() ? Arguments(*at, program) : Dispatch(*at, program)) +
            "}\n\n";
    }
    // As a file of $fpath it is the function itself; read by `source` it only registers that.
    return script + "if [[ $funcstack[1] == _ombrelune ]]; then\n    _ombrelune \"$@\"\nelse\n"
                    "    compdef _ombrelune ombrelune\nfi\n";
}
