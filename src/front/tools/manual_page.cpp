#include "front/tools/manual_page.h"

#include <string_view>

namespace {

// A hyphen of roff is typographic; one that is typed is "\-". A line must not begin with a request by chance.
std::string Escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size() + 8);
    for (const char c : text) {
        const bool lineBegins = escaped.empty() || escaped.back() == '\n';
        if (lineBegins && (c == '.' || c == '\'')) {
            escaped += "\\&";
        }
        switch (c) {
        case '\\': escaped += "\\e"; break;
        case '-': escaped += "\\-"; break;
        default: escaped += c; break;
        }
    }
    return escaped;
}

std::string Bold(std::string_view text) {
    return "\\fB" + Escaped(text) + "\\fR";
}

std::string Italic(std::string_view text) {
    return "\\fI" + Escaped(text) + "\\fR";
}

std::string WordText(const COMMAND_WORD& word) {
    if (word.choices.empty()) {
        return Italic(word.name);
    }
    std::string text;
    for (const std::string& choice : word.choices) {
        text += (text.empty() ? "" : "|") + Bold(choice);
    }
    return text;
}

// A footer of `--help`: lines that begin with a space are a list and stay as they are, the others flow.
std::string FooterText(std::string_view footer) {
    std::string text;
    bool list = false;
    bool flowing = false;
    while (!footer.empty()) {
        const size_t end = std::min(footer.find('\n'), footer.size());
        const std::string_view line = footer.substr(0, end);
        footer.remove_prefix(std::min(end + 1, footer.size()));
        if (line.empty()) {
            continue;
        }
        const bool inList = line.front() == ' ';
        if (list && !inList) {
            text += ".fi\n";
        }
        if (inList && !list) {
            text += flowing ? ".nf\n" : ".PP\n.nf\n";
        } else if (!inList && (!flowing || line.back() == ':')) {
            text += ".PP\n";
        }
        list = inList;
        flowing = !inList;
        text += Escaped(line) + "\n";
    }
    return list ? text + ".fi\n" : text;
}

// The texts of `--help` have no full stop at their ends.
std::string Sentence(const std::string& help) {
    return Escaped(help) + (help.ends_with('.') ? "\n" : ".\n");
}

std::string SwitchesText(const COMMAND_TREE& command) {
    std::string text;
    for (const COMMAND_SWITCH& option : command.switches) {
        text += ".TP\n";
        for (const std::string& name : option.names) {
            text += (&name == option.names.data() ? "" : ", ") + Bold(name);
        }
        if (option.word.kind != WordKind::kNone) {
            text += " " + WordText(option.word);
        }
        text += "\n" + Sentence(option.help);
    }
    return text;
}

// How the command is called: "ombrelune play [option...] GAME".
std::string Synopsis(const COMMAND_TREE& command, const std::string& path) {
    std::string text = Bold(path);
    if (!command.switches.empty()) {
        text += " [" + Italic("option") + "...]";
    }
    for (const COMMAND_WORD& word : command.words) {
        const std::string name = WordText(word) + (word.many ? "..." : "");
        text += word.required ? " " + name : " [" + name + "]";
    }
    return text;
}

// Commands of commands are called by both names; a command that only holds others is not called itself.
template <typename Visit>
void EachCommand(const COMMAND_TREE& parent, const std::string& path, const Visit& visit) {
    for (const COMMAND_TREE& command : parent.commands) {
        const std::string name = path + " " + command.name;
        if (command.commands.empty()) {
            visit(command, name);
        } else {
            EachCommand(command, name, visit);
        }
    }
}

// Every command has the same switch for help, which is told once.
COMMAND_TREE WithoutHelp(COMMAND_TREE command) {
    std::erase_if(command.switches,
                  [](const COMMAND_SWITCH& option) { return option.names.back() == "--help"; });
    return command;
}

constexpr std::string_view kDescription = R"(Without a command the program opens its window:
the menu, your games, and a room in which they play on televisions.
With a command it does one thing and ends.
Games of its own are built in, so that there is something to play at once.
)";

constexpr std::string_view kLastSections = R"(.SH EXIT STATUS
.TP
.B 0
It was done.
.TP
.B 1
The game or a file failed; a line on standard error says what, where and why.
.TP
.B 2
The arguments are wrong.
.TP
.B 130
Ctrl\-C ended it.
.PP
What a script reads goes to standard output, everything else to standard error.
.SH ENVIRONMENT
.TP
.B OMBRELUNE_HOME
The folder of settings, saves and games, if
.B \-\-home
does not name one.
.TP
.B XDG_DATA_HOME
If neither is given, the folder is
.I ombrelune
in this one.
.SH FILES
.TP
.I ~/.local/share/ombrelune
The folder of settings, saves and games, if nothing above names another.
A file named
.I portable
beside the program makes the program's own folder that folder, if it can be written to.
.TP
.I config.xml
Settings and bindings of keys, in that folder.
)";

} // namespace

std::string ManualPage(const COMMAND_TREE& program, const PROGRAM_VERSION& version) {
    // "Ombrelune, an emulator of ..."
    const size_t comma = program.help.find(", ");
    const std::string summary =
        comma == std::string::npos ? program.help : program.help.substr(comma + 2);
    std::string page = ".TH OMBRELUNE 1 \"" + version.date + "\" \"ombrelune " + version.number +
                       "\" \"User Commands\"\n" + ".SH NAME\nombrelune \\- " + Escaped(summary) +
                       "\n.SH SYNOPSIS\n" + Synopsis(program, program.name) + "\n";
    EachCommand(program, program.name, [&](const COMMAND_TREE& command, const std::string& path) {
        page += ".br\n" + Synopsis(WithoutHelp(command), path) + "\n";
    });
    page.append(".SH DESCRIPTION\n").append(kDescription);
    page += FooterText(program.footer) + ".SH OPTIONS\n" + SwitchesText(program) + ".SH COMMANDS\n";
    EachCommand(program, program.name, [&](const COMMAND_TREE& command, const std::string& path) {
        const COMMAND_TREE shown = WithoutHelp(command);
        page += ".SS " + Synopsis(shown, path) + "\n" + Sentence(shown.help) + SwitchesText(shown) +
                FooterText(shown.footer);
    });
    return page.append(kLastSections);
}
