#include "library/logiqx.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string Datafile(const std::string& games) {
    return "<?xml version=\"1.0\"?>\n"
           "<!DOCTYPE datafile PUBLIC \"-//Logiqx//DTD ROM Management Datafile//EN\" "
           "\"http://www.logiqx.com/Dats/datafile.dtd\">\n"
           "<datafile>\n"
           "\t<header>\n\t\t<name>A list</name>\n\t\t<version>1</version>\n\t</header>\n" +
           games + "</datafile>\n";
}

// The lines before the games.
constexpr int kHeadLines = 7;

std::string FaultOf(const std::string& text) {
    LOGIQX_FILE file;
    std::string fault;
    EXPECT_FALSE(ParseLogiqx(text, file, fault)) << text;
    EXPECT_TRUE(file.games.empty());
    return fault;
}

LOGIQX_FILE Parse(const std::string& text) {
    LOGIQX_FILE file;
    std::string fault;
    EXPECT_TRUE(ParseLogiqx(text, file, fault)) << fault;
    return file;
}

} // namespace

TEST(Logiqx, EverythingOfAGameIsRead) {
    const LOGIQX_FILE file = Parse(Datafile(
        "<game name=\"One (Europe)\" cloneof=\"One &amp; only\">\n"
        "<category>Games</category><description>One, described</description>\n"
        "<year>1990</year><manufacturer>Us</manufacturer>\n"
        "<release name=\"Eins\" region=\"GER\" language=\"De\"/>\n"
        "<rom name=\"One (Europe).sms\" size=\"32768\" crc=\"CBF43926\" "
        "md5=\"900150983cd24fb0d6963f7d28e17f72\" "
        "sha1=\"a9993e364706816aba3e25717850c26c9cd0d89d\" "
        "sha256=\"BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD\" "
        "status=\"verified\"/>\n</game>\n"
        "<machine name=\"two\" isbios=\"yes\"><rom name=\"x\" size=\"1\" status=\"baddump\"/>"
        "<rom name=\"y\" status=\"nodump\"/></machine>\n"));
    EXPECT_EQ(file.name, "A list");
    ASSERT_EQ(file.games.size(), 2u);
    const LOGIQX_GAME& one = file.games[0];
    EXPECT_EQ(one.name, "One (Europe)");
    EXPECT_EQ(one.cloneOf, "One & only");
    EXPECT_EQ(one.description, "One, described");
    EXPECT_EQ(one.year, 1990);
    EXPECT_FALSE(one.bios);
    ASSERT_EQ(one.releases.size(), 1u);
    EXPECT_EQ(one.releases[0].name, "Eins");
    EXPECT_EQ(one.releases[0].region, "GER");
    ASSERT_EQ(one.roms.size(), 1u);
    EXPECT_EQ(one.roms[0].name, "One (Europe).sms");
    EXPECT_EQ(one.roms[0].size, 32768u);
    EXPECT_EQ(one.roms[0].crc, 0xCBF43926u);
    EXPECT_EQ(HexText(one.roms[0].sha1.value()), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(HexText(one.roms[0].sha256.value()),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_FALSE(one.roms[0].noDump);
    const LOGIQX_GAME& two = file.games[1];
    EXPECT_TRUE(two.bios);
    ASSERT_EQ(two.roms.size(), 2u);
    EXPECT_FALSE(two.roms[0].crc || two.roms[0].sha1 || two.roms[0].sha256);
    EXPECT_FALSE(two.roms[0].noDump) << "a bad dump is one that people have";
    EXPECT_TRUE(two.roms[1].noDump);
}

TEST(Logiqx, ParentsMayBeNamedByNumber) {
    const LOGIQX_FILE file =
        Parse(Datafile("<game name=\"Clone\" id=\"0002\" cloneofid=\"0001\"/>\n"
                       "<game name=\"Parent\" id=\"0001\"/>\n"
                       "<game name=\"Orphan\" id=\"0003\" cloneofid=\"0009\"/>\n"));
    EXPECT_EQ(file.games.at(0).cloneOf, "Parent");
    EXPECT_EQ(file.games.at(1).cloneOf, "");
    EXPECT_EQ(file.games.at(2).cloneOf, "");
}

TEST(Logiqx, OnlyAFullYearIsAYear) {
    const std::pair<const char*, uint16_t> rows[] = {
        {"1990",       1990},
        {"1990-05-12", 1990},
        {"19??",       0   },
        {"199x",       0   },
        {"",           0   },
        {"19901",      0   },
        {"1900",       0   },
        {"2155",       2155},
        {"2156",       0   },
        {"nineteen",   0   },
    };
    for (const auto& [text, year] : rows) {
        const LOGIQX_FILE file =
            Parse(Datafile("<game name=\"x\"><year>" + std::string(text) + "</year></game>"));
        EXPECT_EQ(file.games.at(0).year, year) << text;
        const LOGIQX_FILE dated = Parse(
            Datafile("<game name=\"x\"><release date=\"" + std::string(text) + "\"/></game>"));
        EXPECT_EQ(dated.games.at(0).year, year) << text;
    }
}

TEST(Logiqx, FaultsAreToldWithTheirLine) {
    const std::pair<const char*, const char*> rows[] = {
        {"<game/>",                                                                    "a game has no name"           },
        {"<game name=\"x\"><rom size=\"1\"/></game>",                                  "a rom has no name"            },
        {"<game name=\"x\"><rom name=\"r\"/></game>",                                  "the size of r is not a number"},
        {"<game name=\"x\"><rom name=\"r\" size=\"-1\"/></game>",                      "the size of r is not a number"},
        {"<game name=\"x\"><rom name=\"r\" size=\"1k\"/></game>",                      "the size of r is not a number"},
        {"<game name=\"x\"><rom name=\"r\" size=\"99999999999999999999999\"/></game>",
         "the size of r is not a number"                                                                              },
        {"<game name=\"x\"><rom name=\"r\" size=\"1\" crc=\"123\"/></game>",
         "crc is not of 8 hexadecimal digits"                                                                         },
        {"<game name=\"x\"><rom name=\"r\" size=\"1\" sha1=\"zz\"/></game>",
         "sha1 is not of 40 hexadecimal digits"                                                                       },
        {"<game name=\"x\"><rom name=\"r\" size=\"1\" sha256=\"00\"/></game>",
         "sha256 is not of 64 hexadecimal digits"                                                                     },
        {"<game name=\"x\"><rom name=\"r\" size=\"1\" crc=\"0x123456\"/></game>",
         "crc is not of 8 hexadecimal digits"                                                                         },
        {"<game name=\"x\"><rom name=\"r\" size=\"1\" status=\"fine\"/></game>",
         "there is no status \"fine\""                                                                                },
    };
    for (const auto& [game, reason] : rows) {
        const std::string text = Datafile("<game name=\"good\"/>\n" + std::string(game) + "\n");
        EXPECT_EQ(FaultOf(text), "line " + std::to_string(kHeadLines + 2) + ": " + reason);
    }
}

TEST(Logiqx, DamagedTextIsToldWithItsLine) {
    const std::string good = Datafile("<game name=\"x\"/>\n");
    EXPECT_THAT(FaultOf(Datafile("<game name=\"x\">\n")), StartsWith("line 9: "));
    EXPECT_THAT(FaultOf(good.substr(0, good.size() / 2)), StartsWith("line "));
    EXPECT_EQ(FaultOf("<datafile>\n\n\xFF</datafile>"), "line 3: is not UTF-8 text");
    EXPECT_EQ(FaultOf(std::string("<datafile>\n\0</datafile>", 23)),
              "line 2: a zero byte is within the text");
    EXPECT_THAT(FaultOf(""), StartsWith("line 1: "));
    EXPECT_EQ(FaultOf("\n<softwarelist/>"),
              "line 2: the root element is <softwarelist>, not one <datafile>");
    EXPECT_EQ(FaultOf("<datafile/>\n<datafile/>"),
              "line 2: the root element is <datafile>, not one <datafile>");
}

// Entities of a document type are not expanded: neither files nor memory can be had by them.
TEST(Logiqx, EntitiesOfTheDocumentTypeAreNotExpanded) {
    const LOGIQX_FILE file =
        Parse("<!DOCTYPE datafile [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>\n"
              "<datafile><game name=\"&a;\"/></datafile>");
    EXPECT_EQ(file.games.at(0).name, "&a;");
}
