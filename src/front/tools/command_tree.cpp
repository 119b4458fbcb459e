#include "front/tools/command_tree.h"

#include <CLI/CLI.hpp>

#include <string_view>

namespace {

// The choices of a type like "TEXT:{sms,gg}".
std::vector<std::string> Choices(std::string_view type) {
    std::vector<std::string> choices;
    const size_t open = type.find('{');
    const size_t close = type.find('}', open == std::string_view::npos ? 0 : open);
    if (open == std::string_view::npos || close == std::string_view::npos) {
        return choices;
    }
    for (size_t at = open + 1; at < close;) {
        const size_t comma = std::min(type.find(',', at), close);
        choices.emplace_back(type.substr(at, comma - at));
        at = comma + 1;
    }
    return choices;
}

// "FLOAT:FLOAT in [0 - 1]" is for programmers; people read what comes before the colon, and no type of C++.
std::string WordName(const std::string& type) {
    size_t end = type.find(':');
    while (end != std::string::npos && end > 0 && type[end - 1] == '[') {
        end = type.find(':', end + 1); // "ADDRESS[:LENGTH]"
    }
    std::string name = type.substr(0, end);
    if (name == "FLOAT" || name == "INT" || name == "UINT") {
        return "N";
    }
    return name;
}

WordKind KindOf(const COMMAND_WORD& word) {
    if (!word.choices.empty()) {
        return WordKind::kChoice;
    }
    const std::string_view name = word.name;
    if (name.find('=') != std::string_view::npos) {
        return WordKind::kText; // no shell knows where the file's name begins
    }
    if (name == "GAME") {
        return WordKind::kGame;
    }
    if (name == "DIR") {
        return WordKind::kFolder;
    }
    // "FILE.png", "DAT.xml" and the like.
    const std::string_view stem = name.substr(0, name.find('.'));
    const bool file =
        stem.size() < name.size() || name == "FILE" || name == "PATH" || name == "IMAGE";
    return file ? WordKind::kFile : WordKind::kText;
}

COMMAND_WORD ReadWord(const CLI::Option& option, const std::string& name) {
    COMMAND_WORD word;
    word.name = name;
    word.choices = Choices(option.get_type_name());
    word.kind = KindOf(word);
    word.required = option.get_required();
    word.many = option.get_items_expected_max() > 1;
    return word;
}

COMMAND_SWITCH ReadSwitch(const CLI::Option& option) {
    COMMAND_SWITCH read;
    for (const std::string& name : option.get_snames()) {
        read.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        read.names.push_back("--" + name);
    }
    read.help = option.get_description();
    if (option.get_items_expected_max() > 0) {
        read.word = ReadWord(option, WordName(option.get_type_name()));
    }
    return read;
}

} // namespace

COMMAND_TREE ReadCommandTree(const CLI::App& app) {
    COMMAND_TREE tree;
    tree.name = app.get_name();
    tree.help = app.get_description();
    tree.footer = app.get_footer();
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_group().empty()) {
            continue;
        }
        if (option->get_positional()) {
            tree.words.push_back(ReadWord(*option, option->get_name(true)));
        } else {
            tree.switches.push_back(ReadSwitch(*option));
        }
    }
    // The options of a command without a name are those of an option group, and listed above.
    const auto visible = [](const CLI::App* command) {
        return !command->get_name().empty() && !command->get_group().empty();
    };
    for (const CLI::App* command : app.get_subcommands(visible)) {
        tree.commands.push_back(ReadCommandTree(*command));
    }
    return tree;
}
