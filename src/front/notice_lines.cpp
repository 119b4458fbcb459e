#include "front/notice_lines.h"

#include "base/text.h"

#include <utf8.h>

#include <algorithm>

namespace {

// Bytes of the first `letters` characters.
size_t BytesOf(std::string_view text, size_t letters) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (letters != 0 && at != end) {
        utf8::unchecked::next(at);
        --letters;
    }
    return static_cast<size_t>(at - text.data());
}

// Removes one line from the text. The space where it ends is dropped.
std::string_view TakeLine(std::string_view& text, size_t letters) {
    size_t end = BytesOf(text, letters);
    size_t next = end;
    if (end < text.size()) {
        const size_t space = text.substr(0, end + 1).find_last_of(' ');
        if (space != std::string_view::npos && space != 0) {
            end = space;
            next = space + 1;
        }
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(next);
    return line;
}

} // namespace

std::vector<std::string> WrapNotice(std::string_view text, size_t letters) {
    // Converting there and back turns every invalid byte into a character.
    const std::string whole = Utf8FromWide(WideFromUtf8(text));
    std::vector<std::string> lines;
    std::string_view rest = whole;
    for (bool more = true; more;) {
        const size_t feed = rest.find('\n');
        std::string_view paragraph = rest.substr(0, feed);
        do {
            lines.emplace_back(TakeLine(paragraph, std::max<size_t>(letters, 1)));
        } while (!paragraph.empty());
        more = feed != std::string_view::npos;
        rest.remove_prefix(more ? feed + 1 : rest.size());
    }
    return lines;
}

std::vector<std::string> NoticeParts(std::string_view text, size_t letters) {
    constexpr std::string_view kGoesOn = " ...";
    constexpr size_t kMostParts = 3;
    std::string line(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    std::vector<std::string> parts = WrapNotice(line, letters);
    if (parts.size() == 1) {
        return parts;
    }
    parts = WrapNotice(line, letters - std::min(letters, kGoesOn.size()));
    const bool cut = parts.size() > kMostParts;
    parts.resize(std::min(parts.size(), kMostParts));
    for (size_t i = 0; i < parts.size(); ++i) {
        if (cut || i + 1 < parts.size()) {
            parts[i] += kGoesOn;
        }
    }
    return parts;
}
