// fish: a line for each thing that may follow, with the condition in which it may.
#include "front/tools/completion.h"
#include "front/tools/completion_words.h"

#include <string_view>

namespace {

std::string Quoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "'";
}

// True while the words so far name this command and none of those below it.
std::string Condition(const COMMAND_AT& at) {
    std::string condition;
    for (size_t from = 0; from < at.path.size();) {
        const size_t end = std::min(at.path.find(' ', from), at.path.size());
        condition += (condition.empty() ? "" : "; and ") +
                     std::string("__fish_seen_subcommand_from ") + at.path.substr(from, end - from);
        from = end + 1;
    }
    if (at.path.empty()) {
        return "__fish_use_subcommand";
    }
    if (!at.command->commands.empty()) {
        std::vector<std::string> names;
        names.reserve(at.command->commands.size());
        for (const COMMAND_TREE& below : at.command->commands) {
            names.push_back(below.name);
        }
        condition += "; and not __fish_seen_subcommand_from " + Joined(names, " ");
    }
    return condition;
}

// How the word is completed; -x and -f keep other files away.
std::string Source(const COMMAND_WORD& word, std::string_view withoutFiles) {
    const std::string only(withoutFiles);
    switch (word.kind) {
    case WordKind::kChoice: return " " + only + " -a " + Quoted(Joined(word.choices, " "));
    case WordKind::kFile: return " -F";
    case WordKind::kFolder: return " " + only + " -a '(__fish_complete_directories)'";
    case WordKind::kGame: return " " + only + " -k -a '(__ombrelune_games)'";
    default: return " " + only;
    }
}

std::string SwitchLine(const COMMAND_SWITCH& option, const std::string& condition) {
    std::string line =
        "complete -c ombrelune" + (condition.empty() ? "" : " -n " + Quoted(condition));
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (option.word.kind != WordKind::kNone) {
        line += " -r" + Source(option.word, "-f");
    }
    return line + " -d " + Quoted(option.help) + "\n";
}

std::string CommandLines(const COMMAND_AT& at) {
    const std::string condition = Condition(at);
    std::string text;
    for (const COMMAND_TREE& below : at.command->commands) {
        text += "complete -c ombrelune -n " + Quoted(condition) + " -f -a " + below.name + " -d " +
                Quoted(below.help) + "\n";
    }
    for (const COMMAND_WORD& word : at.command->words) {
        text += "complete -c ombrelune -n " + Quoted(condition) + Source(word, "-f") + "\n";
    }
    for (const COMMAND_SWITCH& option : at.command->switches) {
        // What takes a word may also stand after a command.
        const bool everywhere = at.path.empty() && option.word.kind != WordKind::kNone;
        text += SwitchLine(option, everywhere ? "" : condition);
    }
    return text;
}

} // namespace

std::string FishCompletion(const COMMAND_TREE& program) {
    std::string script = "# Completion of ombrelune for fish.\n\nfunction __ombrelune_games\n"
                         "    __fish_complete_suffix ." +
                         Joined(GameExtensions(), " .") + "\n    printf 'demo:%s\\n' " +
                         Joined(DemoNames(), " ") + "\nend\n\ncomplete -c ombrelune -f\n";
    for (const COMMAND_AT& at : AllCommands(program)) {
        script += CommandLines(at);
    }
    return script;
}
