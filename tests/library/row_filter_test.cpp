#include "library/row_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

GameListRow Row(std::wstring title, std::wstring regions = L"E", int32_t year = 1990,
                uint32_t nameIndex = 0, uint8_t playTypes = 1) {
    GameListRow row;
    row.title = std::move(title);
    row.regions = std::move(regions);
    row.flagImages = FlagImages(row.regions);
    row.year = year;
    row.nameIndex = nameIndex;
    row.playTypes = playTypes;
    return row;
}

// The titles of the rows that pass, joined.
std::wstring Titles(const std::vector<GameListRow>& rows, const ROW_CHOICES& choices) {
    std::wstring titles;
    for (const ROW_LINE& line : ApplyFilters(rows, choices)) {
        titles += line.title;
    }
    return titles;
}

ROW_CHOICES Year(std::wstring text) {
    ROW_CHOICES choices;
    choices.year = std::move(text);
    return choices;
}

} // namespace

TEST(RowFilter, NoChoiceShowsEveryFirstName) {
    const std::vector<GameListRow> rows = {Row(L"a"), Row(L"b", L"", 1900, 0, 0),
                                           Row(L"c", L"E", 1990, 1)};
    EXPECT_EQ(Titles(rows, {}), L"ab");
}

TEST(RowFilter, GroupByGameHidesFurtherNames) {
    const std::vector<GameListRow> rows = {Row(L"a"), Row(L"b", L"E", 1990, 1),
                                           Row(L"c", L"E", 1990, 2)};
    ROW_CHOICES choices;
    choices.group = RowGroup::kByGame;
    EXPECT_EQ(Titles(rows, choices), L"a");
    choices.group = RowGroup::kNone;
    EXPECT_EQ(Titles(rows, choices), L"abc");
}

TEST(RowFilter, YearIsOneOrARange) {
    const std::vector<GameListRow> rows = {Row(L"a", L"E", 1900), Row(L"b", L"E", 1988),
                                           Row(L"c", L"E", 1990), Row(L"d", L"E", 1992)};
    EXPECT_EQ(Titles(rows, Year(L"")), L"abcd");
    EXPECT_EQ(Titles(rows, Year(L"1990")), L"c");
    EXPECT_EQ(Titles(rows, Year(L"1900")), L"a") << "an unknown year counts as 1900";
    EXPECT_EQ(Titles(rows, Year(L"1988-1990")), L"bc") << "both ends are included";
    EXPECT_EQ(Titles(rows, Year(L"1990x")), L"c");
    EXPECT_EQ(Titles(rows, Year(L"-1990")), L"abc") << "from year 0";
    EXPECT_EQ(Titles(rows, Year(L"1990-")), L"") << "to year 0";
    EXPECT_EQ(Titles(rows, Year(L"year")), L"") << "year 0";
    EXPECT_EQ(Titles(rows, Year(L"1988- 1992")), L"") << "a space is no digit";
    EXPECT_EQ(Titles(rows, Year(L"1989-19901")), L"cd") << "five characters are read";
    EXPECT_EQ(Titles(rows, Year(L"1989-019909")), L"c") << "year 01990";
    EXPECT_EQ(Titles(rows, Year(L"1989-001990")), L"") << "year 199";
    EXPECT_EQ(Titles(rows, Year(L"99999999999999999999")), L"");
    EXPECT_EQ(Titles(rows, Year(L"1990-99999999999999999999")), L"cd");
}

TEST(RowFilter, ReleasedInNeedsOneCommonRegion) {
    const std::vector<GameListRow> rows = {Row(L"a", L"E"),  Row(L"b", L"J"), Row(L"c", L"U"),
                                           Row(L"d", L"B"),  Row(L"e", L"K"), Row(L"f", L"X"),
                                           Row(L"g", L"EU"), Row(L"h", L"")};
    const std::pair<uint8_t, const wchar_t*> cases[] = {
        {kRegionEurope,                L"ag"      },
        {kRegionJapan,                 L"b"       },
        {kRegionUsa,                   L"cg"      },
        {kRegionBrazil,                L"d"       },
        {kRegionKorea,                 L"e"       },
        {kRegionOther,                 L"fh"      },
        {kRegionJapan | kRegionBrazil, L"bd"      },
        {kEveryRegion,                 L"abcdefgh"},
        {0,                            L""        },
    };
    for (const auto& [mask, titles] : cases) {
        ROW_CHOICES choices;
        choices.regions = mask;
        EXPECT_EQ(Titles(rows, choices), titles) << int{mask};
    }
}

TEST(RowFilter, OnlyReleasedInNeedsTheSameRegions) {
    const std::vector<GameListRow> rows = {Row(L"a", L"E"), Row(L"b", L"UE"), Row(L"c", L"EUJ"),
                                           Row(L"d", L"?")};
    ROW_CHOICES choices;
    choices.regionMode = RegionMode::kOnlyReleasedIn;
    choices.regions = kRegionEurope | kRegionUsa;
    EXPECT_EQ(Titles(rows, choices), L"b");
    choices.regions = kRegionOther;
    EXPECT_EQ(Titles(rows, choices), L"d");
    choices.regions = 0;
    EXPECT_EQ(Titles(rows, choices), L"");
}

TEST(RowFilter, NameIsFoundAnywhereInAnyCase) {
    const std::vector<GameListRow> rows = {Row(L"Moon Walk"), Row(L"THE MOON"), Row(L"Sun")};
    ROW_CHOICES choices;
    for (const wchar_t* text : {L"moon", L"MOON", L"oO"}) {
        choices.name = text;
        EXPECT_EQ(Titles(rows, choices), L"Moon WalkTHE MOON");
    }
    choices.name = L"moon w";
    EXPECT_EQ(Titles(rows, choices), L"Moon Walk");
    choices.name = L"Moon Walker";
    EXPECT_EQ(Titles(rows, choices), L"");
}

TEST(RowFilter, PlayTypeNeedsACommonBit) {
    const std::vector<GameListRow> rows = {Row(L"a", L"E", 1990, 0, 0), Row(L"b", L"E", 1990, 0, 1),
                                           Row(L"c", L"E", 1990, 0, 6),
                                           Row(L"d", L"E", 1990, 0, 9)};
    const std::pair<uint8_t, const wchar_t*> cases[] = {
        {kEveryPlayType, L"abcd"},
        {1,              L"bd"  },
        {2,              L"c"   },
        {4,              L"c"   },
        {8,              L"d"   },
    };
    for (const auto& [mask, titles] : cases) {
        ROW_CHOICES choices;
        choices.playTypes = mask;
        EXPECT_EQ(Titles(rows, choices), titles) << int{mask};
    }
}

TEST(RowFilter, LineHasTheColumnsOfItsRow) {
    GameListRow row = Row(L"Title", L"EUJ", 1991, 2);
    row.path = "folder/title.game";
    row.statusColour = 5;
    row.contentKey = L"key";
    ROW_CHOICES choices;
    choices.group = RowGroup::kNone;
    const std::vector<GameListRow> rows = {row};
    const std::vector<ROW_LINE> lines = ApplyFilters(rows, choices);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].title, L"Title");
    EXPECT_EQ(lines[0].statusColour, 5u);
    EXPECT_EQ(lines[0].images, (std::array<int32_t, 3>{12, 10, 9})) << "the last flag comes first";
    EXPECT_STREQ(lines[0].year.data(), L"1991");
    EXPECT_EQ(*lines[0].path, "folder/title.game");
    EXPECT_EQ(lines[0].nameIndex, 2u);
    EXPECT_EQ(lines[0].contentKey, L"key");
}

TEST(RowFilter, UnknownYearIsShownAsDashes) {
    const std::vector<GameListRow> rows = {Row(L"a", L"E", 1900)};
    EXPECT_STREQ(ApplyFilters(rows, {}).at(0).year.data(), L"----");
}

TEST(RowFilter, CountIsShown) {
    EXPECT_EQ(ShowingText(0), L"Showing 0 games");
    EXPECT_EQ(ShowingText(20000), L"Showing 20000 games");
}
