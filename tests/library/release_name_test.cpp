#include "library/release_name.h"

#include <gtest/gtest.h>

TEST(ReleaseName, BracketsTellRegionsAndRevision) {
    struct ROW {
        const char* name;
        const char* title;
        const char* regions;
        const char* revision;
        bool bios = false;
    };
    const ROW rows[] = {
        {"Luciole (Europe)",                         "Luciole", "E",                                                                       ""     },
        {"Luciole (Brazil, Europe) (Rev A) (En,Fr)", "Luciole", "EB",                                                                      "Rev A"},
        {"Luciole (USA) (v1.1) (Beta)",              "Luciole", "U",                                                                       "v1.1" },
        {"Luciole (World)",                          "Luciole", "EJU",                                                                     ""     },
        {"Luciole (France, Germany)",                "Luciole", "E",                                                                       ""     },
        {"Luciole (Korea) (En)",                     "Luciole", "K",                                                                       ""     },
 // Canada and Australia have no letter, but these are the regions all the same.
        {"Luciole (Canada) (Japan)",                 "Luciole", "",                                                                        ""     },
        {"Luciole (USA, Australia)",                 "Luciole", "U",                                                                       ""     },
 // Not a region alone, so it is no list of regions.
        {"Luciole (Japan Edition) (Japan)",          "Luciole", "J",                                                                       ""     },
        {"Luciole (En,Fr)",                          "Luciole", "",                                                                        ""     },
        {"[BIOS] Console (Japan) (v2.1)",            "Console", "J",                                                                       "v2.1",  true},
        {"Luciole (Europe) [b]",                                          "Luciole",                              "E",                                                     ""                           },
        {"Title (Part 2) of it (Europe)",                                          "Title of it",                     "E",                                        ""},
        {"Open (bracket",                                          "Open (bracket",                                     "",                                                      ""                          },
        {"Legend of Fireflies, The - Night (Japan, Korea)",                                          "Legend of Fireflies, The - Night",
         "JK", ""                                                                                                                                     },
        {"(Europe)",                                          "",                                          "E",                                                                        ""},
        {"",                                          "",                                                  "",                                                                                ""                                                                                                                                      },
 // A version is a "v" with a digit.
        {"Luciole (Virtual Set)",                                          "Luciole",                             "",                                                    ""},
    };
    for (const ROW& row : rows) {
        const RELEASE_NAME parsed = ParseReleaseName(row.name);
        EXPECT_EQ(parsed.title, row.title) << row.name;
        EXPECT_EQ(parsed.regions, row.regions) << row.name;
        EXPECT_EQ(parsed.revision, row.revision) << row.name;
        EXPECT_EQ(parsed.bios, row.bios) << row.name;
    }
}

TEST(ReleaseName, CodesOfReleasesAreRegionsToo) {
    EXPECT_EQ(RegionLetters("EUR"), "E");
    EXPECT_EQ(RegionLetters("JPN"), "J");
    EXPECT_EQ(RegionLetters("BRA"), "B");
    EXPECT_EQ(RegionLetters("ASI"), "");
}

TEST(ReleaseName, RegionsAreJoinedInOneOrder) {
    EXPECT_EQ(JoinRegions("KJ", "UE"), "EJUK");
    EXPECT_EQ(JoinRegions("J", "J"), "J");
    EXPECT_EQ(JoinRegions("xJ", ""), "J");
}
