#include "base/text.h"

#include <cstdint>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCodePoint = 0x10FFFF;

bool IsSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

// Decodes one code point at the front of the text and drops it from there.
char32_t TakeUtf8(std::string_view& text) {
    const auto first = static_cast<uint8_t>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) {
        return first;
    }
    size_t following = 0;
    char32_t point = 0;
    char32_t smallest = 0;
    if ((first & 0xE0) == 0xC0) {
        following = 1;
        point = first & 0x1Fu;
        smallest = 0x80;
    } else if ((first & 0xF0) == 0xE0) {
        following = 2;
        point = first & 0x0Fu;
        smallest = 0x800;
    } else if ((first & 0xF8) == 0xF0) {
        following = 3;
        point = first & 0x07u;
        smallest = 0x10000;
    } else {
        return kReplacement;
    }
    if (text.size() < following) {
        return kReplacement;
    }
    for (size_t i = 0; i < following; ++i) {
        const auto next = static_cast<uint8_t>(text[i]);
        if ((next & 0xC0) != 0x80) {
            return kReplacement;
        }
        point = (point << 6) | (next & 0x3Fu);
    }
    if (point < smallest || point > kLastCodePoint || IsSurrogate(point)) {
        return kReplacement;
    }
    text.remove_prefix(following);
    return point;
}

void AppendUtf8(std::string& out, char32_t point) {
    if (point < 0x80) {
        out += static_cast<char>(point);
    } else if (point < 0x800) {
        out += static_cast<char>(0xC0 | (point >> 6));
        out += static_cast<char>(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        out += static_cast<char>(0xE0 | (point >> 12));
        out += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (point & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (point >> 18));
        out += static_cast<char>(0x80 | ((point >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (point & 0x3F));
    }
}

} // namespace

std::wstring WideFromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    while (!text.empty()) {
        char32_t point = TakeUtf8(text);
        if constexpr (sizeof(wchar_t) == 2) {
            if (point > 0xFFFF) {
                point -= 0x10000;
                out += static_cast<wchar_t>(0xD800 + (point >> 10));
                point = 0xDC00 + (point & 0x3FF);
            }
        }
        out += static_cast<wchar_t>(point);
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
        AppendUtf8(out, point > kLastCodePoint || IsSurrogate(point) ? kReplacement : point);
    }
    return out;
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
