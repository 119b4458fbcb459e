#include "web/service_texts.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

const SERVICE_ADDRESSES kAddresses{L"http://host/service", L"http://images/Path"};
const SERVICE_ADDRESSES kNowhere;
const MEMBER_CREDENTIALS kAnna{L"anna b", L"to/ken"};

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

NEWS_ANSWER News(std::string_view body) {
    return ReadNews(Bytes(body));
}

GAME_INFORMATION Game(std::string_view body) {
    return ReadGameInformation(Bytes(body));
}

} // namespace

TEST(ServiceUrls, AreThoseOfTheQueries) {
    EXPECT_EQ(NewsUrl(kAddresses), L"http://host/service?m=2");
    EXPECT_EQ(GameUrl(kAddresses, L"Luciole"), L"http://host/service?m=3&s=1&n=Luciole");
    EXPECT_EQ(PlayReportUrl(kAddresses, PlayReport::kStarted, 5, L"Grelot", kAnna),
              L"http://host/service?m=4&s=5&n=Grelot&u=anna%20b&t=to%2Fken");
    EXPECT_EQ(PlayReportUrl(kAddresses, PlayReport::kStopped, 1, L"Luciole", kAnna),
              L"http://host/service?m=5&s=1&n=Luciole&u=anna%20b&t=to%2Fken");
}

TEST(ServiceUrls, WithoutAnAddressAreEmpty) {
    EXPECT_EQ(NewsUrl(kNowhere), L"");
    EXPECT_EQ(GameUrl(kNowhere, L"Luciole"), L"");
    EXPECT_EQ(PlayReportUrl(kNowhere, PlayReport::kStarted, 1, L"Luciole", kAnna), L"");
    EXPECT_EQ(CoverUrl(kNowhere, 1, L"Luciole"), L"");
}

TEST(ServiceUrls, ReportsAreForMembersWhoAreLoggedIn) {
    EXPECT_EQ(PlayReportUrl(kAddresses, PlayReport::kStarted, 1, L"Luciole", {}), L"");
    EXPECT_EQ(PlayReportUrl(kAddresses, PlayReport::kStopped, 1, L"Luciole", {L"anna", L""}), L"");
}

TEST(ServiceUrls, AHostAloneGetsItsSlash) {
    EXPECT_EQ(NewsUrl({L"http://host:8080", L""}), L"http://host:8080/?m=2");
    EXPECT_EQ(NewsUrl({L"http://host:8080/", L""}), L"http://host:8080/?m=2");
    EXPECT_EQ(NewsUrl({L"http://host/a.php", L""}), L"http://host/a.php?m=2");
}

TEST(ServiceUrls, CoversOfTheMasterSystemHaveAFolder) {
    EXPECT_EQ(CoverUrl(kAddresses, 1, L"Luciole"), L"http://images/path/sms/covers/luciole.zip");
    for (const uint32_t system : {2u, 4u, 5u, 6u}) {
        EXPECT_EQ(CoverUrl(kAddresses, system, L"A"), L"http://images/path/covers/a.zip") << system;
    }
    EXPECT_EQ(CoverUrl({L"", L"http://images/"}, 1, L"A"), L"http://images/sms/covers/a.zip");
}

TEST(ServiceUrls, NamesCannotAddToThem) {
    EXPECT_EQ(GameUrl(kAddresses, L"A & B?m=2#\r\n%/"),
              L"http://host/service?m=3&s=1&n=A%20%26%20B%3Fm%3D2%23%0D%0A%25%2F");
    EXPECT_EQ(CoverUrl(kAddresses, 2, L"../../Up"), L"http://images/path/covers/..%2f..%2fup.zip");
}

TEST(ServiceUrls, TextIsEscapedAsUtf8) {
    EXPECT_EQ(UrlText(L"AZaz09-._~"), L"AZaz09-._~");
    EXPECT_EQ(UrlText(L"\u00e9\u20ac"), L"%C3%A9%E2%82%AC");
    EXPECT_EQ(UrlText(L" +,="), L"%20%2B%2C%3D");
}

TEST(GetTag, IsWhatLiesBetweenTheFirstOfEach) {
    EXPECT_EQ(GetTag(L"a<X>b</X>c<X>d</X>", L"X", false), L"b");
    EXPECT_EQ(GetTag(L"<X>b<X>c</X>", L"X", false), L"b<X>c");
    EXPECT_EQ(GetTag(L"<X></X>", L"X", false), L"");
    EXPECT_EQ(GetTag(L"<XY>a</XY><X>b</X>", L"X", false), L"b");
    EXPECT_EQ(GetTag(L"<x>b</x>", L"X", false), L"") << "case counts";
}

TEST(GetTag, IsEmptyWithoutEitherTag) {
    EXPECT_EQ(GetTag(L"<X>text", L"X", true), L"");
    EXPECT_EQ(GetTag(L"text</X>", L"X", true), L"");
    EXPECT_EQ(GetTag(L"", L"X", true), L"");
    EXPECT_EQ(GetTag(L"</X>text<X>", L"X", true), L"") << "the wrong way round";
    EXPECT_EQ(GetTag(L"</X><X>text</X>", L"X", true), L"") << "the first of each counts";
}

TEST(GetTag, TrimsLineEndsAndNothingElse) {
    EXPECT_EQ(GetTag(L"<X>\r\n\n a\r\nb \r\r\n</X>", L"X", true), L" a\r\nb ");
    EXPECT_EQ(GetTag(L"<X>\r\n\n</X>", L"X", true), L"");
    EXPECT_EQ(GetTag(L"<X>\na\n</X>", L"X", false), L"\na\n");
}

TEST(News, HasATextAndAVersion) {
    const NEWS_ANSWER news =
        News("<NEWS>\r\nCaf\xC3\xA9 opens\r\nat eight\r\n</NEWS><VERSION>721</VERSION>");
    EXPECT_EQ(news.news, L"Caf\u00e9 opens\nat eight");
    EXPECT_EQ(news.version, 721);
    EXPECT_GT(news.version, kProgramVersion);
}

TEST(News, WithoutItsClosingTagIsEmpty) {
    EXPECT_EQ(News("<NEWS>text").news, L"");
}

TEST(News, WithoutAVersionNamesNone) {
    EXPECT_EQ(News("<NEWS>text</NEWS>").version, 0);
    EXPECT_EQ(News("").version, 0);
    EXPECT_LE(News("").version, kProgramVersion) << "so that nothing is announced";
}

TEST(News, VersionIsReadAsFarAsItIsANumber) {
    const std::pair<const char*, int32_t> rows[] = {
        {"720",                  720       },
        {" \r\n\t+721 beta",     721       },
        {"-5",                   -5        },
        {"x720",                 0         },
        {"",                     0         },
        {"0x10",                 0         },
        {"7.21",                 7         },
        {"2147483648",           2147483647},
        {"99999999999999999999", 2147483647},
    };
    for (const auto& [text, version] : rows) {
        EXPECT_EQ(News("<VERSION>" + std::string(text) + "</VERSION>").version, version) << text;
    }
}

TEST(News, EndsAtANul) {
    const std::string body("<NEWS>a</NEWS>\0<VERSION>800</VERSION>", 38);
    EXPECT_EQ(News(body).news, L"a");
    EXPECT_EQ(News(body).version, 0);
}

TEST(News, IsPlainText) {
    // An escape sequence, a bell, a backspace, a C1 control, a mark that turns the writing round, bytes
    // that are no UTF-8.
    EXPECT_EQ(News("<NEWS>a\x1B[31m\x07\x08"
                   "b\xC2\x9B"
                   "c\xE2\x80\xAE"
                   "d\xFF\te\x7F</NEWS>")
                  .news,
              L"a[31mbcd\uFFFD e");
    EXPECT_EQ(News("<NEWS><b>a</b> &lt;</NEWS>").news, L"<b>a</b> &lt;");
}

TEST(PlainText, HasOneKindOfLineEnd) {
    EXPECT_EQ(PlainText(L"a\r\nb\rc\nd\r\r\n"), L"a\nb\nc\nd\n\n");
}

TEST(PlainText, IsCutToALength) {
    EXPECT_EQ(PlainText(std::wstring(kLongestText + 10, L'x')).size(), kLongestText);
    EXPECT_EQ(PlainText(std::wstring(kLongestText, L'x')).size(), kLongestText);
}

TEST(GameInformation, FillsThePanels) {
    const GAME_INFORMATION game =
        Game("<CHEATS>\nup, down\n</CHEATS><REVIEWS>Eight ch</REVIEWS><TRIVIA>t</TRIVIA>"
             "<COVER>3</COVER>");
    EXPECT_EQ(game.cheats, L"up, down");
    EXPECT_EQ(game.reviews, L"Eight ch");
    EXPECT_EQ(game.trivia, L"t");
    EXPECT_EQ(game.cover, 3);
}

TEST(GameInformation, AShortReviewIsAnInvitation) {
    for (const char* body : {"", "<REVIEWS></REVIEWS>", "<REVIEWS>1234567</REVIEWS>",
                             "<REVIEWS>\r\n1234567\r\n</REVIEWS>"}) {
        EXPECT_EQ(Game(body).reviews, kReviewInvitation) << body;
    }
    EXPECT_EQ(Game("<REVIEWS>12345678</REVIEWS>").reviews, L"12345678");
}

TEST(GameInformation, AFailureSaysWhyInAllPanels) {
    GAME_INFORMATION game = GameInformationFailure(L"Invalid response code");
    EXPECT_EQ(game.cheats, L"Game isn't in database");
    EXPECT_EQ(game.reviews, L"Game isn't in database");
    EXPECT_EQ(game.trivia, L"Game isn't in database");
    game = GameInformationFailure(L"Connection refused");
    EXPECT_EQ(game.cheats, L"Connection refused");
    EXPECT_EQ(game.reviews, L"Connection refused");
    EXPECT_EQ(game.trivia, L"Connection refused");
    EXPECT_FALSE(ContentAvailable(game, 3));
}

TEST(GameInformation, LocalTextsStayWhereTheAnswerHasNone) {
    const GAME_INFORMATION local =
        Game("<CHEATS>here</CHEATS><REVIEWS>a local review</REVIEWS><TRIVIA>fact</TRIVIA>");
    const GAME_INFORMATION page = WithLocalTexts(Game("<html>Please log in</html>"), local);
    EXPECT_EQ(page.cheats, L"here");
    EXPECT_EQ(page.reviews, L"a local review");
    EXPECT_EQ(page.trivia, L"fact");
    const GAME_INFORMATION some =
        WithLocalTexts(Game("<REVIEWS>a newer review</REVIEWS><COVER>3</COVER>"), local);
    EXPECT_EQ(some.cheats, L"here");
    EXPECT_EQ(some.reviews, L"a newer review");
    EXPECT_EQ(some.cover, 3);
}

TEST(Answer, SaysWhyThereIsNothingToRead) {
    const uint8_t byte = 0;
    EXPECT_EQ(WhyNothingCame(L"http://host/", L"", &byte), L"");
    EXPECT_EQ(WhyNothingCame(L"http://host/", L"Connection refused", nullptr),
              L"Connection refused");
    EXPECT_EQ(WhyNothingCame(L"http://host/", L"", nullptr), L"The service's answer is empty");
    for (const wchar_t* const url : {L"https://host/", L"host:8080?m=2", L"HTTP://host/"}) {
        EXPECT_EQ(WhyNothingCame(url, L"", nullptr),
                  L"The address of the web service must begin with http://")
            << url;
    }
}

TEST(GameInformation, AnotherRevisionOfTheCoverIsContent) {
    EXPECT_TRUE(ContentAvailable(Game("<COVER>3</COVER>"), 2));
    EXPECT_TRUE(ContentAvailable(Game("<COVER>3</COVER>"), 4));
    EXPECT_FALSE(ContentAvailable(Game("<COVER>3</COVER>"), 3));
    EXPECT_FALSE(ContentAvailable(Game("<COVER>0</COVER>"), 3));
    EXPECT_FALSE(ContentAvailable(Game(""), 3));
}
