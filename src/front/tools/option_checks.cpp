#include "front/tools/option_checks.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace {

// Without zeros at the end: "0.01", "3600".
std::string NumberText(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

// `what` with its bounds: "a number from 1 to 2".
template <typename Number>
CLI::Validator Between(Number least, Number most, const std::string& what,
                       const std::string& range) {
    const auto check = [=](const std::string& text) {
        Number number{};
        const char* const end = text.data() + text.size();
        const auto [stop, code] = std::from_chars(text.data(), end, number);
        const bool valid = stop == end && code == std::errc() && number >= least && number <= most;
        return valid ? std::string() : text + " is not " + what;
    };
    return {check, range};
}

} // namespace

CLI::Validator OneOf(std::vector<std::string> words) {
    const std::string list = CLI::detail::join(words, ", ");
    const auto check = [words = std::move(words), list](const std::string& text) {
        const bool valid = std::ranges::find(words, text) != words.end();
        return valid ? std::string() : text + " is not one of " + list;
    };
    return {check, "{" + list + "}"};
}

CLI::Validator NumberBetween(double least, double most) {
    const std::string from = NumberText(least);
    const std::string to = NumberText(most);
    return Between(least, most, "a number from " + from + " to " + to, from + ".." + to);
}

CLI::Validator WholeNumberBetween(uint32_t least, uint32_t most) {
    const std::string from = std::to_string(least);
    const std::string to = std::to_string(most);
    const bool anyNumber = most == UINT32_MAX; // says nothing in the help
    return Between(least, most, "a whole number from " + from + " to " + to,
                   anyNumber ? std::string() : from + ".." + to);
}

std::string UsageSentence(const CLI::App* /*app*/, const CLI::Error& error) {
    const std::string sentence = std::string("ombrelune: ") + error.what();
    // The checks above say what is allowed; the parser's own words do not.
    const bool complete = error.get_name() == "ValidationError";
    return sentence + (complete ? "\n" : "; --help says what there is\n");
}
