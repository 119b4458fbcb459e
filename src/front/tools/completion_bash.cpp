// bash: one function that finds the command among the words before, and then offers what the tree says.
#include "front/tools/completion.h"
#include "front/tools/completion_words.h"

#include <string_view>

namespace {

// bash takes "=" and ":" for ends of words, so that "demo:sms" are three of them and "--machine=sms" too.
constexpr std::string_view kHelpers = R"(# Completion of ombrelune for bash.

_ombrelune_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_ombrelune_games() {
    local cur=$1 before=${COMP_WORDS[COMP_CWORD - 1]} file
    if [[ $cur == : ]]; then
        [[ $before == demo ]] && _ombrelune_words "$demos" ""
        return
    elif [[ $before == : && ${COMP_WORDS[COMP_CWORD - 2]} == demo ]]; then
        _ombrelune_words "$demos" "$cur"
        return
    elif [[ $cur == demo:* ]]; then
        _ombrelune_words "demo:${demos// / demo:}" "$cur"
        return
    fi
    while IFS= read -r file; do
        if [[ -d $file ]]; then
            COMPREPLY+=("$file")
            continue
        fi
        case ${file,,} in
            @PATTERNS@) COMPREPLY+=("$file") ;;
        esac
    done < <(compgen -f -- "$cur")
    if [[ ${#COMPREPLY[@]} -gt 0 ]]; then
        compopt -o filenames
    elif [[ -n $cur && demo: == "$cur"* ]]; then
        COMPREPLY=(demo:)
        compopt -o nospace
    fi
}

)";

constexpr std::string_view kBegin =
    R"(    local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' i
    COMPREPLY=()
    if [[ $cur == = ]]; then
        cur=''
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
)";

// The patterns of all switches whose words are of this kind, as `case` takes them: "play:--bios | play:--wav".
std::string Patterns(const std::vector<COMMAND_AT>& commands, WordKind kind) {
    std::vector<std::string> patterns;
    for (const COMMAND_AT& at : commands) {
        for (const COMMAND_SWITCH& option : at.command->switches) {
            if (option.word.kind != kind) {
                continue;
            }
            for (const std::string& name : option.names) {
                // The program's own switches may stand after a command as well.
                patterns.push_back((at.path.empty() ? "*" : ShellQuoted(at.path)) + ":" + name);
            }
        }
    }
    return Joined(patterns, " | ");
}

std::string Case(const std::string& patterns, std::string_view action) {
    return patterns.empty() ? "" : "        " + patterns + ") " + std::string(action) + " ;;\n";
}

// What follows a switch.
std::string SwitchWords(const std::vector<COMMAND_AT>& commands) {
    std::string text = "    case $command:$before in\n";
    for (const COMMAND_AT& at : commands) {
        for (const COMMAND_SWITCH& option : at.command->switches) {
            if (option.word.kind == WordKind::kChoice) {
                text +=
                    Case((at.path.empty() ? "*" : ShellQuoted(at.path)) + ":" + option.names.back(),
                         "_ombrelune_words " + ShellQuoted(Joined(option.word.choices, " ")) +
                             " \"$cur\"; return");
            }
        }
    }
    text += Case(Patterns(commands, WordKind::kGame), "_ombrelune_games \"$cur\"; return");
    text += Case(Patterns(commands, WordKind::kFolder), "compopt -o dirnames; return");
    text += Case(Patterns(commands, WordKind::kFile), "return");
    text += Case(Patterns(commands, WordKind::kText), "compopt +o default; return");
    return text + "    esac\n";
}

std::string Switches(const std::vector<COMMAND_AT>& commands) {
    std::string text = "    if [[ $cur == -* ]]; then\n        case $command in\n";
    for (const COMMAND_AT& at : commands) {
        std::vector<std::string> names;
        for (const COMMAND_SWITCH& option : at.command->switches) {
            names.insert(names.end(), option.names.begin(), option.names.end());
        }
        for (const COMMAND_SWITCH& option : commands.front().command->switches) {
            if (!at.path.empty() && option.word.kind != WordKind::kNone) {
                names.push_back(option.names.back());
            }
        }
        text += "            " + ShellQuoted(at.path) + ") _ombrelune_words " +
                ShellQuoted(Joined(names, " ")) + " \"$cur\" ;;\n";
    }
    return text + "        esac\n        return\n    fi\n";
}

// The commands of a command, or what it is about.
std::string Words(const COMMAND_TREE& command) {
    std::string text;
    if (!command.commands.empty()) {
        std::vector<std::string> names;
        names.reserve(command.commands.size());
        for (const COMMAND_TREE& below : command.commands) {
            names.push_back(below.name);
        }
        text = "_ombrelune_words " + ShellQuoted(Joined(names, " ")) + " \"$cur\"";
    }
    if (command.words.empty()) {
        return text.empty() ? "compopt +o default" : text;
    }
    const COMMAND_WORD& word = command.words.front();
    const std::string first =
        text.empty() ? "" : text + "\n            [[ ${#COMPREPLY[@]} -gt 0 ]] || ";
    switch (word.kind) {
    case WordKind::kGame: return first + "_ombrelune_games \"$cur\"";
    case WordKind::kChoice:
        return first + "_ombrelune_words " + ShellQuoted(Joined(word.choices, " ")) + " \"$cur\"";
    case WordKind::kFolder: return first + "compopt -o dirnames";
    default: return text.empty() ? ":" : text;
    }
}

} // namespace

std::string BashCompletion(const COMMAND_TREE& program) {
    const std::vector<COMMAND_AT> commands = AllCommands(program);
    std::string script(kHelpers);
    constexpr std::string_view kPatterns = "@PATTERNS@";
    script.replace(script.find(kPatterns), kPatterns.size(),
                   "*." + Joined(GameExtensions(), " | *."));
    script += "_ombrelune() {\n    local demos=" + ShellQuoted(Joined(DemoNames(), " ")) + "\n";
    script += kBegin;
    // A word that belongs to a switch of the program is no command.
    script += "        case ${command:+$command }${COMP_WORDS[i]} in\n";
    for (const COMMAND_AT& at : commands) {
        if (!at.path.empty()) {
            script += "            " + ShellQuoted(at.path) + ") command=" + ShellQuoted(at.path) +
                      " ;;\n";
        }
    }
    for (const COMMAND_SWITCH& option : program.switches) {
        if (option.word.kind != WordKind::kNone) {
            script += "            " + Joined(option.names, " | ") + ") ((i++)) ;;\n";
        }
    }
    script += "        esac\n    done\n" + SwitchWords(commands) + Switches(commands) +
              "    case $command in\n";
    for (const COMMAND_AT& at : commands) {
        script += "        " + ShellQuoted(at.path) + ") " + Words(*at.command) + " ;;\n";
    }
    return script + "    esac\n}\n\ncomplete -o default -F _ombrelune ombrelune\n";
}
