#include "front/tools/completion_words.h"

#include "facts/machine_facts.h"
#include "front/demos.h"

namespace {

void AddCommand(std::vector<COMMAND_AT>& all, const COMMAND_TREE& command,
                const std::string& path) {
    all.push_back({path, &command});
    for (const COMMAND_TREE& below : command.commands) {
        AddCommand(all, below, path.empty() ? below.name : path + " " + below.name);
    }
}

} // namespace

std::vector<COMMAND_AT> AllCommands(const COMMAND_TREE& program) {
    std::vector<COMMAND_AT> all;
    AddCommand(all, program, "");
    return all;
}

std::vector<std::string> GameExtensions() {
    std::vector<std::string> extensions = {"game", "zip"};
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        for (const std::string_view extension : machine.extensions) {
            extensions.emplace_back(extension.substr(1));
        }
    }
    return extensions;
}

std::vector<std::string> DemoNames() {
    std::vector<std::string> names;
    names.reserve(Demos().size());
    for (const DEMO& demo : Demos()) {
        names.emplace_back(demo.name);
    }
    return names;
}

std::string Joined(const std::vector<std::string>& words, std::string_view between) {
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) {
            text += between;
        }
        text += word;
    }
    return text;
}

std::string ShellQuoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}
