#include "front/tools/bare_games.h"

#include "front/terminal.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDemo = "demo:";

bool IsOption(const std::string& argument) {
    return argument.starts_with('-');
}

// The first argument after those that every command has.
size_t FirstArgument(const std::vector<std::string>& arguments) {
    size_t at = 0;
    while (at < arguments.size()) {
        if (arguments[at] == "--home") {
            at += 2;
        } else if (arguments[at].starts_with("--home=")) {
            ++at;
        } else {
            break;
        }
    }
    return std::min(at, arguments.size());
}

bool IsThere(const std::string& game, std::string& error) {
    std::error_code ignored;
    if (game.starts_with(kDemo)) {
        return true; // an unknown one is told when it is opened
    }
    const fs::file_status status = fs::status(game, ignored);
    if (fs::is_directory(status)) {
        error = Printable(game) +
                " is a folder; \"ombrelune add\" puts the games of a folder into the library";
        return false;
    }
    if (!fs::exists(status)) {
        error = "there is no command and no file \"" + Printable(game) +
                "\"; \"ombrelune --help\" lists the commands";
        return false;
    }
    return true;
}

} // namespace

bool AddImpliedCommand(std::vector<std::string>& arguments,
                       const std::vector<std::string>& commands, std::string& error) {
    const auto first = arguments.begin() + static_cast<ptrdiff_t>(FirstArgument(arguments));
    if (first == arguments.end() || IsOption(*first) ||
        std::find(commands.begin(), commands.end(), *first) != commands.end()) {
        return true;
    }
    const auto end = std::find_if(first, arguments.end(), IsOption);
    if (!std::all_of(first, end, [&](const std::string& game) { return IsThere(game, error); })) {
        return false;
    }
    arguments.insert(first, end - first == 1 ? "play" : "room");
    return true;
}
