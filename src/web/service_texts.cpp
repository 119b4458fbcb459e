#include "web/service_texts.h"

#include "base/text.h"
#include "web/http_answer.h"

#include <algorithm>
#include <limits>

namespace {

constexpr uint32_t kMasterSystem = 1;
constexpr size_t kShortestReview = 8; // characters

bool IsUnreserved(char c) {
    const char lower = LowerAscii(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           c == '_' || c == '~';
}

bool IsLineEnd(wchar_t c) {
    return c == L'\r' || c == L'\n';
}

// Marks that turn or embed a direction of writing, by which a text can look like another one.
bool IsDirectionMark(wchar_t c) {
    const auto code = static_cast<char32_t>(c);
    return code == 0x061C || code == 0x200E || code == 0x200F ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool IsControl(wchar_t c) {
    const auto code = static_cast<char32_t>(c);
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029;
}

// As C's strtol reads a number: blanks, a sign, digits, and no fault whatever follows. What is too large
// becomes the largest number.
int32_t Decimal(std::wstring_view text) {
    constexpr std::wstring_view kBlanks = L" \t\r\n\v\f";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+')) {
        text.remove_prefix(1);
    }
    constexpr int64_t kLargest = std::numeric_limits<int32_t>::max();
    int64_t number = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') {
            break;
        }
        number = std::min(number * 10 + (c - L'0'), kLargest);
    }
    return static_cast<int32_t>(negative ? -number : number);
}

std::wstring ShownTag(std::wstring_view body, std::wstring_view name) {
    return PlainText(GetTag(body, name, true));
}

} // namespace

std::wstring UrlText(std::wstring_view text) {
    constexpr std::wstring_view kDigits = L"0123456789ABCDEF";
    std::wstring out;
    for (const char c : Utf8FromWide(text)) {
        if (IsUnreserved(c)) {
            out += static_cast<wchar_t>(c);
        } else {
            const auto byte = static_cast<uint8_t>(c);
            out += L'%';
            out += kDigits[byte >> 4];
            out += kDigits[byte & 15];
        }
    }
    return out;
}

std::wstring QueryUrl(const SERVICE_ADDRESSES& addresses, std::wstring_view query) {
    if (addresses.service.empty()) {
        return {};
    }
    std::wstring url = addresses.service;
    const size_t scheme = url.find(L"://");
    if (scheme != std::wstring::npos && url.find(L'/', scheme + 3) == std::wstring::npos) {
        url += L'/';
    }
    return url.append(query);
}

std::wstring NewsUrl(const SERVICE_ADDRESSES& addresses) {
    return QueryUrl(addresses, L"?m=2");
}

std::wstring GameUrl(const SERVICE_ADDRESSES& addresses, std::wstring_view game) {
    return QueryUrl(addresses, L"?m=3&s=1&n=" + UrlText(game));
}

std::wstring PlayReportUrl(const SERVICE_ADDRESSES& addresses, PlayReport report, uint32_t system,
                           std::wstring_view game, const MEMBER_CREDENTIALS& member) {
    if (member.token.empty()) {
        return {};
    }
    const std::wstring_view kind = report == PlayReport::kStarted ? L"?m=4&s=" : L"?m=5&s=";
    return QueryUrl(addresses, std::wstring(kind) + std::to_wstring(system) + L"&n=" +
                                   UrlText(game) + L"&u=" + UrlText(member.name) + L"&t=" +
                                   UrlText(member.token));
}

std::wstring CoverUrl(const SERVICE_ADDRESSES& addresses, uint32_t system, std::wstring_view game) {
    if (addresses.images.empty()) {
        return {};
    }
    std::wstring url = addresses.images;
    while (url.ends_with(L'/')) {
        url.pop_back();
    }
    url += system == kMasterSystem ? L"/sms/covers/" : L"/covers/";
    // The name is folded before its bytes become hexadecimal, the whole again after it.
    return LowerAscii(url + UrlText(LowerAscii(game)) + L".zip");
}

std::wstring WhyNothingCame(std::wstring_view url, const std::wstring& errorText,
                            const uint8_t* data) {
    if (!errorText.empty() || data != nullptr) {
        return errorText;
    }
    return std::wstring(url.starts_with(L"http://") ? kEmptyAnswer : kBadServiceAddress);
}

std::wstring GetTag(std::wstring_view body, std::wstring_view name, bool trim) {
    const std::wstring open = L"<" + std::wstring(name) + L">";
    const std::wstring close = L"</" + std::wstring(name) + L">";
    const size_t begin = body.find(open);
    const size_t end = body.find(close);
    if (begin == std::wstring_view::npos || end == std::wstring_view::npos ||
        end < begin + open.size()) {
        return {};
    }
    std::wstring_view text = body.substr(begin + open.size(), end - begin - open.size());
    while (trim && !text.empty() && IsLineEnd(text.front())) {
        text.remove_prefix(1);
    }
    while (trim && !text.empty() && IsLineEnd(text.back())) {
        text.remove_suffix(1);
    }
    return std::wstring(text);
}

std::wstring AnswerText(std::span<const uint8_t> body) {
    const auto end = std::find(body.begin(), body.end(), uint8_t{0});
    return WideFromUtf8(std::string(body.begin(), end));
}

std::wstring PlainText(std::wstring_view text) {
    std::wstring out;
    for (size_t i = 0; i < text.size() && out.size() < kLongestText; ++i) {
        const wchar_t c = text[i];
        if (c == L'\r') {
            const bool pair = i + 1 < text.size() && text[i + 1] == L'\n';
            out.append(pair ? 0 : 1, L'\n');
        } else if (c == L'\t') {
            out += L' ';
        } else if (c == L'\n' || (!IsControl(c) && !IsDirectionMark(c))) {
            out += c;
        }
    }
    return out;
}

NEWS_ANSWER ReadNews(std::span<const uint8_t> body) {
    const std::wstring text = AnswerText(body);
    return {ShownTag(text, L"NEWS"), Decimal(GetTag(text, L"VERSION", false))};
}

GAME_INFORMATION ReadGameInformation(std::span<const uint8_t> body) {
    const std::wstring text = AnswerText(body);
    GAME_INFORMATION information;
    information.cheats = ShownTag(text, L"CHEATS");
    information.reviews = ShownTag(text, L"REVIEWS");
    information.trivia = ShownTag(text, L"TRIVIA");
    information.cover = Decimal(GetTag(text, L"COVER", false));
    if (information.reviews.size() < kShortestReview) {
        information.reviews = kReviewInvitation;
    }
    return information;
}

GAME_INFORMATION WithLocalTexts(GAME_INFORMATION answer, const GAME_INFORMATION& local) {
    if (answer.cheats.empty()) {
        answer.cheats = local.cheats;
    }
    if (answer.trivia.empty()) {
        answer.trivia = local.trivia;
    }
    if (answer.reviews == kReviewInvitation) {
        answer.reviews = local.reviews;
    }
    return answer;
}

GAME_INFORMATION GameInformationFailure(std::wstring_view errorText) {
    const std::wstring text =
        PlainText(errorText == kInvalidResponseCode ? kGameUnknownText : errorText);
    return {text, text, text, 0};
}

bool ContentAvailable(const GAME_INFORMATION& information, int32_t localRevision) {
    return information.cover != 0 && information.cover != localRevision;
}
