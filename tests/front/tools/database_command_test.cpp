// Drives `ombrelune database` as a user does, with a list of our own games in the form in which such lists are
// published.

#include "formats/checksums.h"
#include "formats/sha256.h"
#include "formats/zip.h"
#include "front/demos.h"

#include "support/run_on_terminal.h"
#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class DatabaseCommand : public testing::Test {
protected:
    PROGRAM_RESULT Run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--home", Path("home"), "database"});
        return RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune", arguments);
    }
    [[nodiscard]] std::string Path(const std::string& name) const {
        return (folder.Path() / name).string();
    }
    PROGRAM_RESULT Make(const std::string& machine, const std::string& out,
                        std::vector<std::string> more = {}) const {
        std::vector<std::string> arguments = {"make",           "--machine", machine,  "--from",
                                              Path("list.xml"), "--out",     Path(out)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }

    TemporaryFolder folder;
};

const DEMO& Demo(std::string_view name) {
    for (const DEMO& demo : Demos()) {
        if (demo.name == name) {
            return demo;
        }
    }
    throw std::runtime_error("no demo " + std::string(name));
}

std::string CrcText(const DEMO& demo) {
    char text[9];
    std::snprintf(text, sizeof text, "%08x", Crc32(demo.image));
    return text;
}

// A `rom` element; without SHA-256 as the older lists are.
std::string RomElement(const std::string& name, const DEMO& demo, bool withSha256) {
    return "\t\t<rom name=\"" + name + "\" size=\"" + std::to_string(demo.image.size()) +
           "\" crc=\"" + CrcText(demo) + "\" sha1=\"" + HexText(Sha1(demo.image)) + "\"" +
           (withSha256 ? " sha256=\"" + HexText(Sha256(demo.image)) + "\"" : "") +
           " status=\"verified\"/>\n";
}

std::string Datafile(const std::string& games) {
    return "<?xml version=\"1.0\"?>\n"
           "<!DOCTYPE datafile PUBLIC \"-//Logiqx//DTD ROM Management Datafile//EN\" "
           "\"http://www.logiqx.com/Dats/datafile.dtd\">\n"
           "<datafile>\n\t<header>\n\t\t<name>Our own games</name>\n"
           "\t\t<description>Our own games (Parent-Clone)</description>\n"
           "\t\t<version>20260101-000000</version>\n\t\t<author>us</author>\n"
           "\t</header>\n" +
           games + "</datafile>\n";
}

std::string MasterSystemList() {
    return Datafile(
        "\t<game name=\"Luciole (Europe, Brazil) (En,Fr)\">\n"
        "\t\t<category>Games</category>\n"
        "\t\t<description>Luciole (Europe, Brazil) (En,Fr)</description>\n"
        "\t\t<year>2026</year>\n"
        "\t\t<release name=\"Luciole (Europe, Brazil) (En,Fr)\" region=\"EUR\"/>\n"
        "\t\t<release name=\"Luciole (Europe, Brazil) (En,Fr)\" region=\"BRA\"/>\n" +
        RomElement("Luciole (Europe, Brazil) (En,Fr).sms", Demo("sms-luciole"), true) +
        "\t</game>\n"
        "\t<game name=\"Hotaru (Japan) (Rev A)\" cloneof=\"Luciole (Europe, Brazil) (En,Fr)\">\n"
        "\t\t<description>Hotaru (Japan) (Rev A)</description>\n" +
        RomElement("Hotaru (Japan) (Rev A).sms", Demo("sms-bench"), false) +
        "\t</game>\n"
        "\t<game name=\"Lost (USA)\">\n\t\t<description>Lost (USA)</description>\n"
        "\t\t<rom name=\"Lost (USA).sms\" size=\"32768\" crc=\"00000000\"/>\n\t</game>\n");
}

} // namespace

TEST_F(DatabaseCommand, MakesADatabaseAndShowsIt) {
    folder.Write("list.xml", MasterSystemList());
    folder.Write("roms/sub/pond.sms", Demo("sms-bench").image);
    folder.Write("rules.xml", "<rules machine=\"sms\">\n"
                              "<game name=\"*\" fm=\"1\"/>\n"
                              "<game name=\"Luciole*\" play=\"single,turns\" input2=\"paddle\"/>\n"
                              "<game name=\"Nobody*\" fm=\"0\"/>\n"
                              "</rules>\n");
    const PROGRAM_RESULT made =
        Make("sms", "out/sms.dat", {"--roms", Path("roms"), "--rules", Path("rules.xml")});
    EXPECT_EQ(made.exitCode, 0) << made.error;
    EXPECT_EQ(made.output,
              Path("out/sms.dat") +
                  ": 1 game, 2 images, 2 names\n"
                  "left out: 1 game without a known image: not in the folder of images\n"
                  "no game is named as the rule says: Nobody*\n");
    const PROGRAM_RESULT shown = Run({"show", Path("out/sms.dat")});
    EXPECT_EQ(shown.exitCode, 0) << shown.error;
    EXPECT_EQ(shown.output,
              Path("out/sms.dat") +
                  ": 1 game of the Master System\n"
                  "game: Luciole\n"
                  "  name: Luciole\n"
                  "    second title: Luciole (Europe, Brazil) (En,Fr)\n"
                  "    regions: EB\n"
                  "    year: 2026\n"
                  "    play: single,turns\n"
                  "    key: Luciole\n"
                  "    pieces: 0\n"
                  "    machine: fm=\"1\" glasses=\"0\" input1=\"joypad\" input2=\"paddle\" "
                  "board=\"sega\" consoles=\"sms1-pal,sms2-pal,sms1-ntsc,sms2-ntsc\" kind=\"0\"\n"
                  "  name: Hotaru\n"
                  "    second title: Hotaru (Japan) (Rev A)\n"
                  "    regions: J\n"
                  "    play: single\n"
                  "    key: Luciole\n"
                  "    pieces: 1\n"
                  "    machine: fm=\"1\" glasses=\"0\" input1=\"joypad\" input2=\"joypad\" "
                  "board=\"sega\" consoles=\"japanese,mark3\" kind=\"0\"\n"
                  "  piece 0: v1.0, " +
                  std::to_string(Demo("sms-luciole").image.size()) +
                  " bytes\n    sha256: " + HexText(Sha256(Demo("sms-luciole").image)) +
                  "\n"
                  "  piece 1: Rev A, " +
                  std::to_string(Demo("sms-bench").image.size()) +
                  " bytes\n    sha256: " + HexText(Sha256(Demo("sms-bench").image)) + "\n");
}

// What the made database says of a game goes into the file that the conversion writes.
TEST_F(DatabaseCommand, AGameConvertedWithItHasItsNames) {
    folder.Write("list.xml", MasterSystemList());
    ASSERT_EQ(Make("sms", "home/dat/sms.dat").exitCode, 0);
    folder.Write("x.sms", Demo("sms-luciole").image);
    const PROGRAM_RESULT converted = RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune",
                                                {"--home", Path("home"), "convert", Path("x.sms")});
    EXPECT_EQ(converted.exitCode, 0) << converted.error;
    EXPECT_EQ(converted.output, "made " + Path("x.game") + "\n1 made, 0 already there\n");
    const PROGRAM_RESULT info = RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune",
                                           {"--home", Path("home"), "info", Path("x.game")});
    EXPECT_THAT(info.output, AllOf(HasSubstr("name: Luciole\n    regions: EB\n    year: 2026\n"),
                                   Not(HasSubstr("Hotaru"))));
}

TEST_F(DatabaseCommand, MakesAnArcadeSetOfItsZip) {
    const DEMO& demo = Demo("arcade-skywren");
    folder.Write("list.xml",
                 Datafile("\t<machine name=\"skywren\" sourcefile=\"x\">\n"
                          "\t\t<description>Skywren (Japan)</description>\n"
                          "\t\t<year>2026</year>\n\t\t<manufacturer>Us</manufacturer>\n" +
                          RomElement("program.ic7", demo, false) + "\t</machine>\n"));
    ZipWriter zip;
    std::string error;
    ASSERT_TRUE(zip.Add("program.ic7", demo.image, error)) << error;
    folder.Write("roms/skywren.zip", zip.Finish(error));
    EXPECT_EQ(Make("arcade", "a.dat").exitCode, 1) << "no SHA-256 without the images";
    EXPECT_EQ(Make("arcade", "a.dat", {"--roms", Path("roms")}).exitCode, 0);
    EXPECT_THAT(Run({"show", Path("a.dat")}).output,
                AllOf(HasSubstr("1 game of the System E\ngame: skywren\n  name: Skywren\n"),
                      HasSubstr("regions: J\n    year: 2026\n"), HasSubstr("piece 0: program.ic7"),
                      HasSubstr("machine: board=\"3\"\n")));
}

TEST_F(DatabaseCommand, NothingKnownWritesNothing) {
    folder.Write("list.xml", Datafile("<game name=\"x\"><rom name=\"x.sms\" size=\"7\" "
                                      "crc=\"00000000\"/></game>"));
    folder.Write("sms.dat", "the old one");
    const PROGRAM_RESULT made = Make("sms", "sms.dat");
    EXPECT_EQ(made.exitCode, 1);
    EXPECT_THAT(made.output, HasSubstr("left out: 1 game without a known SHA-256"));
    EXPECT_THAT(made.error, HasSubstr("not written"));
    const auto kept = folder.Read("sms.dat");
    EXPECT_EQ(std::string(kept.begin(), kept.end()), "the old one");
}

TEST_F(DatabaseCommand, DamagedFilesAreRefusedWithTheirPlace) {
    folder.Write("list.xml", "<datafile>\n<game name=\"x\">\n</datafile>\n");
    PROGRAM_RESULT result = Make("sms", "x.dat");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr(Path("list.xml") + ": line 3: "));
    EXPECT_FALSE(std::filesystem::exists(Path("x.dat")));

    folder.Write("list.xml", MasterSystemList());
    folder.Write("rules.xml", "<rules machine=\"sms\">\n<game name=\"*\" fm=\"maybe\"/></rules>");
    result = Make("sms", "x.dat", {"--rules", Path("rules.xml")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr(Path("rules.xml") + ": line 2: fm=\"maybe\" is not 0|1"));

    ASSERT_EQ(Make("sms", "x.dat").exitCode, 0);
    std::vector<uint8_t> bytes = folder.Read("x.dat");
    bytes.resize(bytes.size() - 30);
    folder.Write("x.dat", bytes);
    result = Run({"show", Path("x.dat")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr(Path("x.dat") + ": entry 1 (Luciole), byte "));
    EXPECT_EQ(Run({"show", Path("nowhere.dat")}).exitCode, 1);
    EXPECT_EQ(Make("sms", "x.dat", {"--roms", Path("nowhere")}).exitCode, 1);
}

TEST_F(DatabaseCommand, WrongUsageIsExitCodeTwo) {
    EXPECT_EQ(Run({}).exitCode, 2);
    EXPECT_EQ(Run({"make", "--machine", "toaster", "--from", "x", "--out", "y"}).exitCode, 2);
    EXPECT_EQ(Run({"make", "--machine", "sms"}).exitCode, 2);
    EXPECT_EQ(Run({"show"}).exitCode, 2);
}

TEST_F(DatabaseCommand, ShowsOnATerminalWhichImageIsInHand) {
    folder.Write("list.xml", MasterSystemList());
    folder.Write("roms/a.txt", std::string_view("no image"));
    folder.Write("roms/pond.sms", Demo("sms-bench").image);
    const TERMINAL_RESULT made =
        RunOnTerminal(OMBRELUNE_BUILD_FOLDER "/ombrelune",
                      {"--home", Path("home"), "database", "make", "--machine", "sms", "--from",
                       Path("list.xml"), "--out", Path("sms.dat"), "--roms", Path("roms")});
    EXPECT_EQ(made.exitCode, 0) << made.screen;
    EXPECT_THAT(made.screen, AllOf(HasSubstr("0/2 [                    ] a.txt"),
                                   HasSubstr("1/2 [==========          ] pond.sms"),
                                   HasSubstr("sms.dat: 1 game, 2 images, 2 names\r\n")));
}
