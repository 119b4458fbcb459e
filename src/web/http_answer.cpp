#include "web/http_answer.h"

#include "base/text.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr unsigned kOk = 200;

// The most that is allocated because an answer says that it will come.
constexpr uint64_t kMostReserved = uint64_t{1} << 20;

constexpr std::string_view kBlanks = " \t";

std::string_view WithoutLeadingBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text;
}

// Reads the digits at the start as a number. 0 if there are none, or too many for the type.
template <typename Number>
Number DecimalAtStart(std::string_view text) {
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

} // namespace

HttpAnswer::HttpAnswer(size_t mostHeaderBytes, size_t mostBodyBytes)
    : headerLimit(mostHeaderBytes)
    , bodyLimit(mostBodyBytes) {}

bool HttpAnswer::Refuse(std::wstring_view why) {
    part = Part::kRefused;
    error = why;
    return false;
}

bool HttpAnswer::Take(std::span<const uint8_t> block) {
    switch (part) {
    case Part::kRefused: return false;
    case Part::kBody: return TakeBody(block);
    case Part::kStatusLine:
    case Part::kHeaders: break;
    }
    head.append(block.begin(), block.end());
    return TakeHead();
}

bool HttpAnswer::TakeHead() {
    if (part == Part::kStatusLine) {
        const size_t end = head.find(kLineEnd, searched);
        if (end == std::string::npos) {
            searched = head.empty() ? 0 : head.size() - 1;
            return head.size() < headerLimit || Refuse(kHeadersTooLarge);
        }
        if (end + kLineEnd.size() > headerLimit) {
            return Refuse(kHeadersTooLarge); // as if it had come byte by byte
        }
        if (!TakeStatusLine(std::string_view(head).substr(0, end))) {
            return false;
        }
        part = Part::kHeaders;
        searched = end; // an answer without headers has its empty line here
    }
    const size_t end = head.find(kHeadEnd, searched);
    if (end == std::string::npos) {
        searched = std::max(searched, head.size() - std::min(head.size(), kHeadEnd.size() - 1));
        return head.size() < headerLimit || Refuse(kHeadersTooLarge);
    }
    if (end + kHeadEnd.size() > headerLimit) {
        return Refuse(kHeadersTooLarge);
    }
    TakeHeaders(std::string_view(head).substr(0, end));
    part = Part::kBody;
    const std::string whole = std::move(head);
    head.clear();
    const std::string_view rest = std::string_view(whole).substr(end + kHeadEnd.size());
    const std::vector<uint8_t> bytes(rest.begin(), rest.end());
    return TakeBody(bytes);
}

// A version word, a number and a message, as in "HTTP/1.0 200 OK".
bool HttpAnswer::TakeStatusLine(std::string_view line) {
    if (!line.starts_with("HTTP/")) {
        return Refuse(kInvalidResponse);
    }
    line.remove_prefix(std::min(line.find_first_of(kBlanks), line.size()));
    if (DecimalAtStart<unsigned>(WithoutLeadingBlanks(line)) != kOk) {
        return Refuse(kInvalidResponseCode);
    }
    return true;
}

// The only header that is read says how long the body may become.
void HttpAnswer::TakeHeaders(std::string_view lines) {
    constexpr std::string_view kContentLength = "\r\ncontent-length:";
    const std::string folded = LowerAscii(lines);
    const size_t at = folded.find(kContentLength);
    if (at == std::string::npos) {
        return;
    }
    const std::string_view value = std::string_view(folded).substr(at + kContentLength.size());
    const uint64_t hint = DecimalAtStart<uint64_t>(WithoutLeadingBlanks(value));
    body.reserve(static_cast<size_t>(std::min({hint, kMostReserved, uint64_t{bodyLimit}})));
}

bool HttpAnswer::TakeBody(std::span<const uint8_t> block) {
    if (block.size() > bodyLimit - body.size()) {
        body = {};
        return Refuse(kAnswerTooLarge);
    }
    body.insert(body.end(), block.begin(), block.end());
    return true;
}

bool HttpAnswer::End() {
    if (part == Part::kRefused) {
        return false;
    }
    return part == Part::kBody || Refuse(kInvalidResponse);
}
