#include "demo_tables/source_lines.h"

#include <charconv>
#include <sstream>

std::vector<SOURCE_LINE> SplitLines(std::string_view text) {
    std::vector<SOURCE_LINE> lines;
    std::istringstream stream{std::string(text)};
    int number = 0;
    for (std::string line; std::getline(stream, line);) {
        SOURCE_LINE split{++number, {}};
        std::istringstream words(line);
        for (std::string word; words >> word && !word.starts_with('#');) {
            split.words.push_back(word);
        }
        if (!split.words.empty()) {
            lines.push_back(std::move(split));
        }
    }
    return lines;
}

std::string Fault(const std::filesystem::path& file, int line, std::string_view message) {
    return file.string() + ":" + std::to_string(line) + ": " + std::string(message);
}

std::optional<int> NumberOf(std::string_view word, int least, int most) {
    const bool hexadecimal = word.starts_with("0x");
    if (hexadecimal) {
        word.remove_prefix(2);
    }
    int number = 0;
    const auto [end, status] =
        std::from_chars(word.data(), word.data() + word.size(), number, hexadecimal ? 16 : 10);
    if (status != std::errc{} || end != word.data() + word.size() || number < least ||
        number > most) {
        return std::nullopt;
    }
    return number;
}
