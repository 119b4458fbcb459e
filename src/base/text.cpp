#include "base/text.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

void AppendWide(std::wstring& out, std::string_view valid) {
    if constexpr (sizeof(wchar_t) == 2) {
        utf8::unchecked::utf8to16(valid.begin(), valid.end(), std::back_inserter(out));
    } else {
        utf8::unchecked::utf8to32(valid.begin(), valid.end(), std::back_inserter(out));
    }
}

} // namespace

std::wstring WideFromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    while (!text.empty()) {
        const size_t valid = FindInvalidUtf8(text);
        AppendWide(out, text.substr(0, valid));
        text.remove_prefix(valid);
        if (!text.empty()) {
            out += static_cast<wchar_t>(kReplacement);
            text.remove_prefix(1);
        }
    }
    return out;
}

std::string Utf8FromWide(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        auto point = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            const bool high = point >= 0xD800 && point < 0xDC00;
            const auto low = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
            if (high && low >= 0xDC00 && low <= 0xDFFF) {
                point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        const bool valid = point <= kLastCodePoint && !IsSurrogate(point);
        utf8::unchecked::append(valid ? point : kReplacement, std::back_inserter(out));
    }
    return out;
}

size_t FindInvalidUtf8(std::string_view text) {
    return std::min(utf8::find_invalid(text), text.size());
}

std::string_view CutUtf8(std::string_view text, size_t bytes) {
    if (bytes >= text.size()) {
        return text;
    }
    // Bytes 10xxxxxx continue a character.
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::wstring LowerAscii(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out) {
        c = LowerAscii(c);
    }
    return out;
}

std::string LowerAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        c = LowerAscii(c);
    }
    return out;
}
