// Conversions of text: names and messages are wide inside the program and UTF-8 in files.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Each invalid byte becomes U+FFFD; nothing fails.
[[nodiscard]] std::wstring WideFromUtf8(std::string_view text);
[[nodiscard]] std::string Utf8FromWide(std::wstring_view text);

// The offset of the first byte that is not valid UTF-8; the text's size if all of it is.
[[nodiscard]] size_t FindInvalidUtf8(std::string_view text);
// The text's first `bytes` bytes at most, without a character that is cut in two.
[[nodiscard]] std::string_view CutUtf8(std::string_view text, size_t bytes);

// Lower case for A to Z alone, so that names never depend on the locale.
[[nodiscard]] constexpr wchar_t LowerAscii(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}
[[nodiscard]] constexpr char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
[[nodiscard]] std::wstring LowerAscii(std::wstring_view text);
[[nodiscard]] std::string LowerAscii(std::string_view text);
