#include "formats/default_records.h"
#include "library/database_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace {

std::vector<DATABASE_RULE> Parse(uint16_t system, const std::string& text) {
    std::vector<DATABASE_RULE> rules;
    std::string fault;
    EXPECT_TRUE(ParseDatabaseRules(text, system, rules, fault)) << fault;
    return rules;
}

std::string FaultOf(uint16_t system, const std::string& text) {
    std::vector<DATABASE_RULE> rules;
    std::string fault;
    EXPECT_FALSE(ParseDatabaseRules(text, system, rules, fault)) << text;
    EXPECT_TRUE(rules.empty());
    return fault;
}

} // namespace

TEST(DatabaseRules, EveryFieldOfAMasterSystemGameCanBeSet) {
    const auto rules =
        Parse(1, "<rules machine=\"sms\">\n<!-- a note -->\n"
                 "<game name=\"*\" year=\"1991\" regions=\"EB\" play=\"single,turns\" status=\"3\" "
                 "fm=\"1\" glasses=\"1\" input1=\"phaser\" input2=\"paddle\" board=\"korean\" "
                 "consoles=\"sms1-pal,mark3\" kind=\"3\"/>\n</rules>");
    ASSERT_EQ(rules.size(), 1u);
    NAME_RECORD name{};
    std::memcpy(name.regions, "JUK", 3);
    MACHINE_RECORD record = ToMachineRecord(DefaultSmsRecord());
    ApplyRule(rules[0], 1, name, record);
    EXPECT_EQ(name.year, 91);
    EXPECT_EQ(std::string(name.regions), "EB");
    EXPECT_EQ(name.playTypes, 9);
    EXPECT_EQ(name.status, 3);
    // The record's bytes: glasses are bit 0 of byte 8 and FM bit 1, devices at 12 and 16, the board at 20.
    const uint8_t expected[24] = {'S', 'M', 'S', '0', 0, 0, 0, 0, 3, 0, 0,  0,
                                  2,   0,   0,   0,   8, 0, 0, 0, 3, 0, 33, 3};
    EXPECT_EQ(std::memcmp(record.bytes, expected, sizeof expected), 0);
    EXPECT_EQ(PlayWords(name.playTypes), "single,turns");
    EXPECT_EQ(RecordWords(1, record.bytes),
              "fm=\"1\" glasses=\"1\" input1=\"phaser\" input2=\"paddle\" board=\"korean\" "
              "consoles=\"sms1-pal,mark3\" kind=\"3\"");
}

TEST(DatabaseRules, WhatARuleDoesNotNameStays) {
    const auto rules = Parse(1, "<rules machine=\"sms\"><game name=\"*\" fm=\"0\"/></rules>");
    NAME_RECORD name{};
    name.year = 90;
    name.playTypes = 4;
    std::memcpy(name.regions, "K", 1);
    SMS_RECORD sms = DefaultSmsRecord();
    sms.features = kSmsFeatureFm | kSmsFeatureGlasses;
    sms.board = 700;
    MACHINE_RECORD record = ToMachineRecord(sms);
    ApplyRule(rules.at(0), 1, name, record);
    sms.features = kSmsFeatureGlasses;
    EXPECT_EQ(std::memcmp(record.bytes, &sms, sizeof sms), 0);
    EXPECT_EQ(name.year, 90);
    EXPECT_EQ(name.playTypes, 4);
    EXPECT_EQ(std::string(name.regions), "K");
    EXPECT_THAT(RecordWords(1, record.bytes), testing::HasSubstr("board=\"700\""));
}

TEST(DatabaseRules, BoardsOfTheOtherMachines) {
    NAME_RECORD name{};
    const auto gear =
        Parse(2, "<rules machine=\"gg\"><game name=\"*\" board=\"codemasters\"/></rules>");
    MACHINE_RECORD record{};
    ApplyRule(gear.at(0), 2, name, record);
    EXPECT_EQ(record.bytes[20], 2);
    EXPECT_EQ(RecordWords(2, record.bytes), "board=\"codemasters\"");
    const auto arcade =
        Parse(6, "<rules machine=\"arcade\"><game name=\"*\" board=\"4\"/></rules>");
    record = {};
    ApplyRule(arcade.at(0), 6, name, record);
    EXPECT_EQ(record.bytes[8], 4);
    EXPECT_EQ(RecordWords(6, record.bytes), "board=\"4\"");
    EXPECT_EQ(RecordWords(5, record.bytes), "");
}

TEST(DatabaseRules, FaultsAreToldWithTheirLine) {
    const std::tuple<uint16_t, const char*, const char*, const char*> rows[] = {
        {1, "sms",    "year=\"90\"",        "year=\"90\" is not 1900 to 2155"                        },
        {1, "sms",    "year=\"\"",          "year=\"\" is not 1900 to 2155"                          },
        {1, "sms",    "status=\"128\"",     "status=\"128\" is not 0 to 127"                         },
        {1, "sms",    "play=\"both\"",      "play=\"both\" is not a list of single|coop|versus|turns"},
        {1, "sms",    "play=\"single,\"",
         "play=\"single,\" is not a list of single|coop|versus|turns"                                },
        {1, "sms",    "regions=\"F\"",      "regions=\"F\" is not letters of EJUBK"                  },
        {1, "sms",    "fm=\"yes\"",         "fm=\"yes\" is not 0|1"                                  },
        {1, "sms",    "board=\"nintendo\"",
         "board=\"nintendo\" is not sega|codemasters|korean or a number"                             },
        {1, "sms",    "kind=\"256\"",       "kind=\"256\" is not 0 to 255"                           },
        {1, "sms",    "nonsense=\"1\"",     "a rule of this machine has no \"nonsense\""             },
        {1, "sms",    "name=\"\"",          "a rule has no name"                                     },
        {2, "gg",     "fm=\"1\"",           "a rule of this machine has no \"fm\""                   },
        {5, "nes",    "board=\"1\"",        "a rule of this machine has no \"board\""                },
        {6, "arcade", "board=\"8\"",        "board=\"8\" is not 1 to 7"                              },
        {6, "arcade", "board=\"sega\"",     "board=\"sega\" is not 1 to 7"                           },
    };
    for (const auto& [system, machine, rule, reason] : rows) {
        const std::string named = std::string(rule).starts_with("name") ? "" : "name=\"*\" ";
        EXPECT_EQ(FaultOf(system, "<rules machine=\"" + std::string(machine) + "\">\n<game " +
                                      named + rule + "/>\n</rules>"),
                  "line 2: " + std::string(reason));
    }
    EXPECT_EQ(FaultOf(1, "<rules machine=\"gg\"/>"),
              "line 1: the rules are for the machine \"gg\"");
    EXPECT_EQ(FaultOf(1, "<rules/>"), "line 1: the rules are for the machine \"\"");
    EXPECT_EQ(FaultOf(1, "<rules machine=\"sms\">\n\n<set name=\"x\"/></rules>"),
              "line 3: there is no rule <set>");
    EXPECT_EQ(FaultOf(1, "<rules machine=\"sms\">\n<game fm=\"1\"/></rules>"),
              "line 2: a rule has no name");
}

TEST(DatabaseRules, AStarStandsForAnyText) {
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"Luciole",   "Luciole",          true },
        {"Luciole",   "Luciole (Europe)", false},
        {"Luciole*",  "Luciole (Europe)", true },
        {"Luciole*",  "Luciole",          true },
        {"*(Korea)*", "A (Korea) (En)",   true },
        {"*(Korea)*", "A (Japan, Korea)", false},
        {"a*b*c",     "abbbcxbc",         true },
        {"a*b*c",     "abbbcxb",          false},
        {"*",         "",                 true },
        {"**",        "x",                true },
        {"",          "x",                false},
        {"luciole",   "Luciole",          false},
        {"?uciole",   "Luciole",          false},
    };
    for (const auto& [pattern, name, matches] : rows) {
        EXPECT_EQ(MatchesPattern(pattern, name), matches) << pattern << " " << name;
    }
}
