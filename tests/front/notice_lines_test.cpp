#include "base/text.h"
#include "front/notice_lines.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using testing::ElementsAre;

TEST(NoticeLines, AShortNoticeIsOneLine) {
    EXPECT_THAT(WrapNotice("State saved", 40), ElementsAre("State saved"));
    EXPECT_THAT(WrapNotice("State saved", 11), ElementsAre("State saved"));
    EXPECT_THAT(WrapNotice("", 40), ElementsAre(""));
}

TEST(NoticeLines, ALineEndsAtASpace) {
    EXPECT_THAT(WrapNotice("the saved state cannot be loaded", 16),
                ElementsAre("the saved state", "cannot be loaded"));
    EXPECT_THAT(WrapNotice("one two three", 7), ElementsAre("one two", "three"))
        << "the space may lie just after the line";
    EXPECT_THAT(WrapNotice("one two three", 6), ElementsAre("one", "two", "three"));
}

TEST(NoticeLines, AWordLongerThanALineIsCut) {
    EXPECT_THAT(WrapNotice("abcdefghij", 4), ElementsAre("abcd", "efgh", "ij"));
    EXPECT_THAT(WrapNotice("a bcdefghij", 4), ElementsAre("a", "bcde", "fghi", "j"));
}

// Every letter of these is two or three bytes long, so a cut by bytes would fall into one.
TEST(NoticeLines, NoCharacterIsCutInTwo) {
    EXPECT_THAT(WrapNotice("\u00E9t\u00E9\u00E0\u00E8\u00F9", 3),
                ElementsAre("\u00E9t\u00E9", "\u00E0\u00E8\u00F9"));
    EXPECT_THAT(WrapNotice("L\u2019\u00E9tat sauvegard\u00E9", 8),
                ElementsAre("L\u2019\u00E9tat", "sauvegar", "d\u00E9"));
    EXPECT_THAT(WrapNotice("\u6F22\u5B57\u6F22\u5B57", 2),
                ElementsAre("\u6F22\u5B57", "\u6F22\u5B57"));
}

TEST(NoticeLines, ALineFeedBeginsALine) {
    EXPECT_THAT(WrapNotice("one\ntwo three", 5), ElementsAre("one", "two", "three"));
    EXPECT_THAT(WrapNotice("one\n", 5), ElementsAre("one", ""));
}

TEST(NoticeLines, BytesThatAreNotUtf8AreCharactersToo) {
    EXPECT_THAT(WrapNotice("ab\xFF\xC3", 3), ElementsAre("ab\uFFFD", "\uFFFD"));
}

TEST(NoticeLines, NoWidthIsTooSmall) {
    EXPECT_THAT(WrapNotice("a\u00E9", 0), ElementsAre("a", "\u00E9"));
}

TEST(NoticeLines, PartsOfANoticeEndAtWordsAndSayThatTheyGoOn) {
    EXPECT_THAT(NoticeParts("State saved", 11), ElementsAre("State saved"));
    EXPECT_THAT(NoticeParts("the saved state cannot be loaded", 20),
                ElementsAre("the saved state ...", "cannot be loaded"));
    EXPECT_THAT(NoticeParts("one\ntwo", 20), ElementsAre("one two"));
}

TEST(NoticeLines, ANoticeHasThreePartsAtMost) {
    EXPECT_THAT(NoticeParts("aaaa bbbb cccc dddd eeee", 8),
                ElementsAre("aaaa ...", "bbbb ...", "cccc ..."));
}

TEST(NoticeLines, NoPartIsWiderThanTheLine) {
    const std::string text =
        "a screenshot could not be written: /home/someone/with/a/very/long/path";
    for (size_t letters = 8; letters < 80; ++letters) {
        for (const std::string& part : NoticeParts(text, letters)) {
            EXPECT_LE(part.size(), letters);
        }
    }
}

// For any text: lines of valid characters, none too long, and only spaces missing.
TEST(NoticeLines, NothingIsLostButSpaces) {
    std::mt19937 random(3);
    const std::wstring letters = L"ab  \u00E9\u6F22\U0001F3AE";
    for (int round = 0; round < 5000; ++round) {
        std::wstring text(random() % 40, L' ');
        for (wchar_t& c : text) {
            c = letters[random() % letters.size()];
        }
        const size_t width = 1 + random() % 12;
        std::wstring joined;
        for (const std::string& line : WrapNotice(Utf8FromWide(text), width)) {
            const std::wstring wide = WideFromUtf8(line);
            EXPECT_LE(wide.size(), width);
            EXPECT_EQ(wide.find(L'\uFFFD'), std::wstring::npos);
            joined += wide;
        }
        std::erase(joined, L' ');
        std::erase(text, L' ');
        EXPECT_EQ(joined, text);
    }
}

} // namespace
