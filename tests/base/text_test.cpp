#include "base/text.h"

#include <gtest/gtest.h>

#include <random>

TEST(Text, Utf8KeepsLettersOfEveryLength) {
    const std::wstring wide = L"A\u00e9\u65e5\U0001F3AE";
    const std::string utf8 = "A\xC3\xA9\xE6\x97\xA5\xF0\x9F\x8E\xAE";
    EXPECT_EQ(Utf8FromWide(wide), utf8);
    EXPECT_EQ(WideFromUtf8(utf8), wide);
}

TEST(Text, MalformedUtf8BecomesReplacementCharacters) {
    EXPECT_EQ(WideFromUtf8("\xFFz"), L"\uFFFDz");
    EXPECT_EQ(WideFromUtf8("\xC3"), L"\uFFFD");                // cut off
    EXPECT_EQ(WideFromUtf8("\xC0\x80"), L"\uFFFD\uFFFD");      // a NUL in two bytes
    EXPECT_EQ(WideFromUtf8("\xED\xA0\x80")[0], L'\uFFFD');     // half a surrogate pair
    EXPECT_EQ(WideFromUtf8("\xF4\x90\x80\x80")[0], L'\uFFFD'); // beyond the last code point
}

// One for each invalid byte, as the header says.
TEST(Text, EveryByteOfABrokenCharacterBecomesAReplacement) {
    EXPECT_EQ(WideFromUtf8("a\xE6\x97z"), L"a\uFFFD\uFFFDz"); // two of three bytes
    EXPECT_EQ(WideFromUtf8("\xF0\x9F\x8E"), L"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(WideFromUtf8("\xED\xA0\x80"), L"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(WideFromUtf8("\xE0\x81\x81"), L"\uFFFD\uFFFD\uFFFD"); // A in three bytes
    EXPECT_EQ(WideFromUtf8("\xF8\x88\x80\x80\x80"), std::wstring(5, L'\uFFFD'));
    EXPECT_EQ(WideFromUtf8("\xC3\xC3\xA9"), L"\uFFFD\u00E9");
    EXPECT_EQ(WideFromUtf8(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
    EXPECT_EQ(WideFromUtf8("\xEF\xBF\xBF\xEF\xBB\xBF"), L"\xFFFF\xFEFF") << "these two fit";
}

TEST(Text, WhatIsNoCharacterBecomesAReplacementInUtf8) {
    EXPECT_EQ(Utf8FromWide(std::wstring(1, wchar_t{0xD800})), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromWide(std::wstring(1, wchar_t{0x110000})), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromWide(std::wstring(1, wchar_t{0x10FFFF})), "\xF4\x8F\xBF\xBF");
}

TEST(Text, AnyBytesConvertAndConvertBackToValidText) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(random() % 12, '\0');
        for (char& c : bytes) {
            c = static_cast<char>(random());
        }
        const std::wstring wide = WideFromUtf8(bytes);
        EXPECT_EQ(WideFromUtf8(Utf8FromWide(wide)), wide);
    }
}

TEST(Text, LowerCaseTouchesAsciiLettersAlone) {
    EXPECT_EQ(LowerAscii(std::wstring_view(L"App_FullScreen\u00C9")), L"app_fullscreen\u00C9");
    EXPECT_EQ(LowerAscii(std::string_view("AZ[]`{az@0")), "az[]`{az@0");
}

TEST(Text, FirstInvalidByteIsFound) {
    EXPECT_EQ(FindInvalidUtf8(""), 0u);
    EXPECT_EQ(FindInvalidUtf8("a\xC3\xA9"), 3u);
    EXPECT_EQ(FindInvalidUtf8("a\xC3z"), 1u);
    EXPECT_EQ(FindInvalidUtf8("ab\xFF"), 2u);
}

TEST(Text, CutLeavesWholeCharacters) {
    const std::string_view text = "a\xC3\xA9\xE6\x97\xA5"; // of one, two and three bytes
    EXPECT_EQ(CutUtf8(text, 0), "");
    EXPECT_EQ(CutUtf8(text, 1), "a");
    EXPECT_EQ(CutUtf8(text, 2), "a");
    EXPECT_EQ(CutUtf8(text, 3), "a\xC3\xA9");
    EXPECT_EQ(CutUtf8(text, 4), "a\xC3\xA9");
    EXPECT_EQ(CutUtf8(text, 5), "a\xC3\xA9");
    EXPECT_EQ(CutUtf8(text, 6), text);
    EXPECT_EQ(CutUtf8(text, 100), text);
}
