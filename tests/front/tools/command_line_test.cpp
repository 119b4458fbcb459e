// Drives the built program as a user does: arguments in; exit code, output and files out.

#include "base/files.h"
#include "formats/sha256.h"
#include "formats/zip.h"
#include "front/tools/gallery_pages.h"
#include "front/tools/run_ombrelune.h"

#include "support/least_images.h"
#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

std::vector<uint8_t> Image(size_t size) {
    std::vector<uint8_t> bytes(size);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

size_t Lines(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

// The lines of what was printed, without the spaces between columns.
std::vector<std::string> Words(const std::string& output) {
    std::istringstream text(output);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        std::string joined;
        for (std::string word; words >> word;) {
            joined += (joined.empty() ? "" : " ") + word;
        }
        lines.push_back(joined);
    }
    return lines;
}

} // namespace

TEST(CommandLine, HelpAndVersionAnswerOnStandardOutput) {
    const TemporaryFolder home;
    const PROGRAM_RESULT help = Ombrelune({"--help"}, home);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, AllOf(HasSubstr("play"), HasSubstr("convert"), HasSubstr("info"),
                                   HasSubstr("actions")));
    const PROGRAM_RESULT version = Ombrelune({"--version"}, home);
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_THAT(version.output, StartsWith("ombrelune 0."));
}

TEST(CommandLine, HelpOfPlayNamesTheKeysOfTheWindow) {
    const TemporaryFolder home;
    EXPECT_THAT(Ombrelune({"play", "--help"}, home).output,
                AllOf(HasSubstr("F3  whole picture"), HasSubstr("Alt + Return  full screen")));
}

TEST(CommandLine, WrongUsageIsExitCodeTwo) {
    const TemporaryFolder home;
    EXPECT_EQ(Ombrelune({"nonsense"}, home).exitCode, 2);
    EXPECT_EQ(Ombrelune({"convert"}, home).exitCode, 2);
    EXPECT_EQ(Ombrelune({"play", "x.sms", "--machine", "toaster"}, home).exitCode, 2);
    EXPECT_EQ(Ombrelune({"bench", "--screen", "--machine", "sms"}, home).exitCode, 2);
    for (const std::vector<std::string>& picture : std::vector<std::vector<std::string>>{
             {"--crt",      "101"     },
             {"--aspect",   "16:9"    },
             {"--scale",    "2"       },
             {"--overscan", "1,2,3"   },
             {"--overscan", "1,2,3,65"}
    }) {
        std::vector<std::string> arguments = {"play", "demo:sms-luciole", "--headless", "--frames",
                                              "1"};
        arguments.insert(arguments.end(), picture.begin(), picture.end());
        EXPECT_EQ(Ombrelune(arguments, home).exitCode, 2) << picture[0] << ' ' << picture[1];
    }
    EXPECT_EQ(Ombrelune({"play", "demo:sms-luciole", "--headless", "--frames", "1", "--crt", "100",
                         "--aspect", "4:3", "--scale", "fit", "--overscan", "8,8,8,64"},
                        home)
                  .exitCode,
              0);
}

TEST(CommandLine, WrongValueIsNamedWithItsOptionAndWhatIsAllowed) {
    const TemporaryFolder home;
    const std::vector<std::pair<std::vector<std::string>, std::string>> rows = {
        {{"play", "x", "--machine", "toaster"},
         "--machine: toaster is not one of sms, gg, nes, arcade, md"                                                                      },
        {{"play", "x", "--frames", "few"},
         "--frames: few is not a whole number from 0 to 4294967295"                                                                       },
        {{"play", "x", "--frames", "-1"},
         "--frames: -1 is not a whole number from 0 to 4294967295"                                                                        },
        {{"bench", "--seconds", "0"},                                           "--seconds: 0 is not a number from 0.01 to 3600"          },
        {{"bench", "--machine", "x"},                                           "--machine: x is not one of sms, gg, nes, arcade, md, all"},
        {{"gallery", "--size", "640", "1e3"},                                   "--size: 1e3 is not a whole number from 640 to 8192"      },
        {{"room", "--turned", "7"},                                             "--turned: 7 is not a whole number from 0 to 6"           },
        {{"list", "--machine", "x"},                                            "--machine: x is not one of sms, gg, nes, arcade, md"     },
        {{"play", "demo:sms-luciole", "--headless", "--set", "fm=7"},
         "--set fm=7: fm is one of 0|1"                                                                                                   },
        {{"play", "demo:sms-luciole", "--headless", "--set", "audio_volume=x"},
         "--set audio_volume=x: audio_volume is a number"                                                                                 },
        {{"room", "--set", "app_vsync=maybe"},                                  "--set app_vsync=maybe: app_vsync is true or false"       },
        {{"play", "demo:sms-luciole", "--headless", "--peek", "here"},
         "--peek here: is not ADDRESS[:LENGTH]"                                                                                           },
        {{"play", "demo:sms-luciole", "--headless", "--dump", "rom=file"},
         "--dump rom=file: is not REGION=FILE; the regions of this machine are ram sram vram "
         "palette"                                                                                                                        },
    };
    for (const auto& [arguments, sentence] : rows) {
        const PROGRAM_RESULT result = Ombrelune(arguments, home);
        EXPECT_EQ(result.exitCode, 2) << sentence;
        EXPECT_EQ(result.error, "ombrelune: " + sentence + "\n");
        EXPECT_EQ(result.output, "");
    }
}

TEST(CommandLine, HelpOfPlayHasThePlayersOptionsFirstAndGamesApartFromTestCards) {
    const TemporaryFolder home;
    const std::string help = Ombrelune({"play", "--help"}, home).output;
    const auto at = [&](std::string_view text) {
        const size_t place = help.find(text);
        EXPECT_NE(place, std::string::npos) << text;
        return place;
    };
    EXPECT_LT(at("--set NAME=VALUE"), at("Options for tests"));
    EXPECT_LT(at("--entry NAME"), at("Options for tests"));
    EXPECT_LT(at("Options for tests"), at("--headless "));
    EXPECT_LT(at("Options for tests"), at("--peek"));
    for (const char* const game :
         {"sms-luciole", "gg-glimmer", "arcade-skywren", "nes-ecume", "nes-grelot", "md-mistral"}) {
        EXPECT_LT(at(game), at("Test cards and benchmarks:"));
    }
    for (const char* const card : {"sms-bench", "sms-torture", "nes-testcard", "md-testcard"}) {
        EXPECT_GT(at(card), at("Test cards and benchmarks:"));
    }
}

TEST(CommandLine, OptionsMayStandBeforeTheGameAndBeGivenOften) {
    const TemporaryFolder home;
    const PROGRAM_RESULT played =
        Ombrelune({"play", "--headless", "--frames", "1", "--set", "console=sms2-pal", "--set",
                   "fm=1", "demo:sms-luciole"},
                  home);
    EXPECT_EQ(played.exitCode, 0) << played.error;
}

namespace {

// A PNG begins with eight fixed bytes and a header with its width and height, most significant byte first.
std::pair<uint32_t, uint32_t> PngSize(const std::filesystem::path& file) {
    std::vector<uint8_t> bytes;
    std::string error;
    EXPECT_TRUE(ReadFile(file, bytes, error)) << error;
    if (bytes.size() < 24) {
        return {0, 0};
    }
    const auto number = [&](size_t at) {
        return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 |
               uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
    };
    return {number(16), number(20)};
}

using Size = std::pair<uint32_t, uint32_t>;

} // namespace

TEST(CommandLine, GalleryWritesAPageOfTheSizeAskedFor) {
    const TemporaryFolder home;
    const auto file = home.Path() / "page.png";
    struct ROW {
        std::vector<std::string> options;
        Size size;
    };
    const ROW rows[] = {
        {{},                                          {1280, 720} },
        {{"--density", "1.5"},                        {1920, 1080}},
        {{"--size", "1366", "768"},                   {1366, 768} },
        {{"--density", "2", "--size", "1024", "768"}, {1024, 768} },
    };
    for (const ROW& row : rows) {
        std::vector<std::string> arguments = {"gallery", "--page", "2", "--screenshot",
                                              file.string()};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const PROGRAM_RESULT result = Ombrelune(arguments, home);
        EXPECT_EQ(result.exitCode, 0) << result.error;
        EXPECT_EQ(PngSize(file), row.size) << row.size.first;
    }
    EXPECT_EQ(Ombrelune({"gallery", "--page", "99"}, home).exitCode, 2);
    EXPECT_EQ(Ombrelune({"gallery", "--density", "0.1"}, home).exitCode, 2);
    EXPECT_EQ(Ombrelune({"gallery", "--size", "12", "12"}, home).exitCode, 2);
}

TEST(CommandLine, GalleryWritesEveryPageWithItsNumber) {
    const TemporaryFolder home;
    const PROGRAM_RESULT result =
        Ombrelune({"gallery", "--screenshot", (home.Path() / "page.png").string()}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    for (size_t page = 1; page <= GalleryPages().size(); ++page) {
        const std::string number = (page < 10 ? "0" : "") + std::to_string(page);
        EXPECT_EQ(PngSize(home.Path() / ("page-" + number + ".png")), (Size{1280, 720})) << page;
    }
    EXPECT_FALSE(std::filesystem::exists(home.Path() / "page.png"));
}

// The built-in theme itself in the home folder changes nothing; another one does.
TEST(CommandLine, GalleryUsesTheThemeInTheHomeFolder) {
    const TemporaryFolder home;
    const auto page = [&](const std::string& name) {
        const auto file = home.Path() / name;
        const PROGRAM_RESULT result =
            Ombrelune({"gallery", "--page", "2", "--screenshot", file.string()}, home);
        EXPECT_EQ(result.exitCode, 0) << result.error;
        std::vector<uint8_t> bytes;
        std::string error;
        EXPECT_TRUE(ReadFile(file, bytes, error)) << error;
        return bytes;
    };
    const auto builtIn = page("built-in.png");
    std::vector<uint8_t> theme;
    std::string error;
    ASSERT_TRUE(ReadFile(OMBRELUNE_SOURCE_FOLDER "/assets/theme.xml", theme, error)) << error;
    ASSERT_TRUE(WriteFile(home.Path() / "theme.xml", theme, error)) << error;
    EXPECT_EQ(page("same.png"), builtIn);
    const auto write = [&](const std::string& text) {
        EXPECT_TRUE(WriteFile(home.Path() / "theme.xml",
                              {reinterpret_cast<const uint8_t*>(text.data()), text.size()}, error))
            << error;
    };
    write("<?xml version=\"1.0\"?><theme><button name=\"BUTTON\"></button></theme>");
    EXPECT_NE(page("other.png"), builtIn);
    // Nothing would be seen.
    for (const char* const text : {"<?xml version=\"1.0\"?><theme></theme>", "no theme"}) {
        write(text);
        EXPECT_EQ(page("built-in-again.png"), builtIn) << text;
    }
}

TEST(CommandLine, ActionsListsWhatHasAnEffectWithItsKeys) {
    const TemporaryFolder home;
    const PROGRAM_RESULT result = Ombrelune({"actions"}, home);
    EXPECT_EQ(result.exitCode, 0);
    const std::vector<std::string> lines = Words(result.output);
    EXPECT_THAT(lines, Contains("Move Forward W Pad1 Up"));
    EXPECT_THAT(lines, Contains("Rewind Shift+Tab Pad1 Left Trigger"));
    EXPECT_THAT(lines, Contains("SMS P1 BUTTON1 A Pad1 A"));
    EXPECT_THAT(lines, Contains("SMS P2 UP I Pad2 Up, Pad2 Stick Up"));
    EXPECT_THAT(lines, Contains("F11 full screen"));
    EXPECT_THAT(lines, Contains("F10 main menu"));
    // Of 22 of the program, 16 NES, 24 arcade, 22 Master System, 26 Mega Drive and 14 Game Gear all but 14 of the arcade
    // and the Mega Drive's pause and reset; nine fixed keys; six headings and empty lines and a last heading.
    EXPECT_EQ(Lines(result.output), 124u - 16 + 9 + 13);
    EXPECT_THAT(result.output, Not(HasSubstr("MEGADRIVE RESET")));
    EXPECT_THAT(result.output, Not(HasSubstr("Arcade P2")));
}

TEST(CommandLine, ActionsTellsJsonTheUsersOwnBindings) {
    const TemporaryFolder home;
    home.Write("config.xml",
               std::string_view("<Settings><int2 name=\"input nes p1 start\" value=\"Pad1 A\" "
                                "value2=\"Ctrl+5\"/></Settings>"));
    const PROGRAM_RESULT result = Ombrelune({"actions", "--json"}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    const auto json = nlohmann::json::parse(result.output);
    const auto find = [](const nlohmann::json& actions, const std::string& name) {
        for (const auto& one : actions) {
            if (one["action"] == name) {
                return one;
            }
        }
        return nlohmann::json();
    };
    const auto& nes = json["machines"][2];
    EXPECT_EQ(nes["machine"], "nes");
    const std::vector<std::string> bound{"Pad1 A", "Ctrl+5"};
    EXPECT_EQ(find(nes["actions"], "NES P1 START")["inputs"], bound);
    EXPECT_EQ(find(nes["actions"], "NES P1 START")["controls"], nlohmann::json::array());
    // The control does only that.
    EXPECT_EQ(find(nes["actions"], "NES P1 BUTTONA")["controls"], nlohmann::json::array());
    EXPECT_EQ(find(json["program"], "Pause")["inputs"], std::vector<std::string>{"P"});
    EXPECT_EQ(json["window"].size(), 9u);
    EXPECT_EQ(json["window"][0]["key"], "F2");
}

TEST(CommandLine, AWrongBindingIsNamedWithItsLine) {
    const TemporaryFolder home;
    home.Write("config.xml", std::string_view("<Settings>\n<int2 name=\"input pause\" value=\"Pp\" "
                                              "value2=\"0\"/></Settings>"));
    const PROGRAM_RESULT result = Ombrelune({"actions"}, home);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, HasSubstr("config.xml: line 2: \"Pp\" of \"input pause\""));
    EXPECT_THAT(Words(result.output), Contains("Pause P"));
}

TEST(CommandLine, ConvertMakesAGameAndKeepsTheSource) {
    const TemporaryFolder home;
    const auto image = Image(40000);
    const auto rom = home.Write("My Game.sms", image);
    const PROGRAM_RESULT result = Ombrelune({"convert", rom.string()}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(home.Read("My Game.sms"), image);
    EXPECT_EQ(home.Read("My Game.game").size() > 88, true);

    const PROGRAM_RESULT info = Ombrelune({"info", (home.Path() / "My Game.game").string()}, home);
    EXPECT_EQ(info.exitCode, 0) << info.error;
    EXPECT_THAT(info.output, AllOf(HasSubstr("Master System, 40000 bytes"), HasSubstr("My Game"),
                                   HasSubstr("v1.0"), HasSubstr(HexText(Sha256(image)))));
}

// Images of the Master System's predecessor, whose games it plays.
TEST(CommandLine, ConvertTakesAnSgImageForTheMasterSystem) {
    const TemporaryFolder home;
    const auto rom = home.Write("old.sg", Image(8192));
    const PROGRAM_RESULT result = Ombrelune({"convert", rom.string()}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    const PROGRAM_RESULT info = Ombrelune({"info", (home.Path() / "old.game").string()}, home);
    EXPECT_THAT(info.output, HasSubstr("Master System, 8192 bytes"));
}

TEST(CommandLine, ConvertingAgainAddsNothingAndAnotherGameOfTheNameReplacesNothing) {
    const TemporaryFolder home;
    const auto rom = home.Write("a.gg", Image(1100));
    ASSERT_EQ(Ombrelune({"convert", rom.string()}, home).exitCode, 0);
    const auto first = home.Read("a.game");
    EXPECT_THAT(Ombrelune({"convert", rom.string()}, home).output, HasSubstr("already there"));
    EXPECT_FALSE(std::filesystem::exists(home.Path() / "a0.game"));

    home.Write("a.gg", Image(1101));
    ASSERT_EQ(Ombrelune({"convert", rom.string()}, home).exitCode, 0);
    EXPECT_EQ(home.Read("a.game"), first);
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "a0.game"));
}

TEST(CommandLine, ConvertTakesEveryImageOutOfAZip) {
    const TemporaryFolder home;
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("folder/One.nes", Image(kLeastNesImage), error));
    ASSERT_TRUE(writer.Add("Two.md", Image(1100), error));
    ASSERT_TRUE(writer.Add("readme.txt", Image(10), error));
    const auto zip = home.Write("both.zip", writer.Finish(error));
    const PROGRAM_RESULT result =
        Ombrelune({"convert", zip.string(), "--out", (home.Path() / "out").string()}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "out" / "One.game"));
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "out" / "Two.game"));
    EXPECT_TRUE(std::filesystem::exists(zip));
    EXPECT_EQ(result.output, "made " + (home.Path() / "out/One.game").string() + "\nmade " +
                                 (home.Path() / "out/Two.game").string() +
                                 "\n2 made, 0 already there\n");
}

TEST(CommandLine, AnArchiveIsTakenForTheMachineThatTheUserNames) {
    const TemporaryFolder home;
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("game.rom", Image(kLeastSegaImage), error));
    const auto zip = home.Write("one.zip", writer.Finish(error));
    EXPECT_EQ(Ombrelune({"convert", zip.string()}, home).exitCode, 1);
    ASSERT_EQ(Ombrelune({"convert", zip.string(), "--machine", "sms"}, home).exitCode, 0);
    const auto info = Ombrelune({"info", (home.Path() / "game.game").string()}, home);
    EXPECT_THAT(info.output, HasSubstr("Master System, 1024 bytes"));
}

TEST(CommandLine, ABrokenEntryOfAnArchiveLeavesTheOthers) {
    const TemporaryFolder home;
    ZipWriter writer;
    std::string error;
    // Data without a pattern is stored as it is, so that a changed byte is found by the checksum.
    std::vector<uint8_t> noise(kLeastSegaImage);
    uint32_t state = 1;
    for (uint8_t& byte : noise) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(state >> 24);
    }
    ASSERT_TRUE(writer.Add("broken.sms", noise, error));
    ASSERT_TRUE(writer.Add("whole.sms", Image(kLeastSegaImage), error));
    auto archive = writer.Finish(error);
    archive[200] = static_cast<uint8_t>(archive[200] ^ 0xFF);
    const auto zip = home.Write("two.zip", archive);
    const PROGRAM_RESULT result = Ombrelune({"convert", zip.string()}, home);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr(zip.string()));
    EXPECT_FALSE(std::filesystem::exists(home.Path() / "broken.game"));
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "whole.game"));
}

TEST(CommandLine, ASettingsFileIsWrittenAtTheEndOfTheRun) {
    const TemporaryFolder home;
    EXPECT_EQ(Ombrelune({}, home).exitCode, 0);
    const auto bytes = home.Read("config.xml");
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_THAT(text, HasSubstr("<bool name=\"app_720runonce\" value=\"true\""));
}

TEST(CommandLine, EveryBadFileGetsOneLineThatNamesItAndExitCodeOne) {
    const TemporaryFolder home;
    const std::vector<std::pair<std::filesystem::path, std::string>> files = {
        {home.Path() / "missing.sms",                 "cannot be opened"             },
        {home.Write("empty.sms",                      std::string_view()),             "is empty"},
        {home.Write("text.txt",                                           std::string_view("hello")),                                                      "is of an unknown kind"},
        {home.Write("broken.zip",                    std::string_view("PK\x03\x04 no archive")),"broken.zip"},
        {home.Write("short.game",std::string_view("GAME")),    "too short"},
        {home.Write("foreign.game",                     std::string(200,                                              'x')), "is not a game file"},
        {home.Path(),                                           "is a folder"                                                 },
    };
    for (const auto& [path, words] : files) {
        for (const char* command : {"info", "play"}) {
            const PROGRAM_RESULT result = Ombrelune({command, path.string()}, home);
            EXPECT_EQ(result.exitCode, 1) << command << path;
            EXPECT_THAT(result.error, AllOf(HasSubstr(path.string()), HasSubstr(words)));
            EXPECT_EQ(Lines(result.error), 1u) << result.error;
        }
    }
}

TEST(CommandLine, ATruncatedGameIsRefusedWithItsLengths) {
    const TemporaryFolder home;
    const auto rom = home.Write("a.sms", Image(3000));
    ASSERT_EQ(Ombrelune({"convert", rom.string()}, home).exitCode, 0);
    auto bytes = home.Read("a.game");
    bytes.resize(bytes.size() - 1);
    const auto cut = home.Write("cut.game", bytes);
    const PROGRAM_RESULT result = Ombrelune({"play", cut.string()}, home);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("is " + std::to_string(bytes.size()) + " bytes long"));
}

TEST(CommandLine, ABrokenSettingsFileIsNamedAndTheProgramStarts) {
    const TemporaryFolder home;
    home.Write("config.xml", std::string_view("<Settings><int name="));
    const PROGRAM_RESULT result = Ombrelune({"actions"}, home);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, HasSubstr("config.xml"));
    EXPECT_THAT(Words(result.output), Contains("Pause P"));
}

// What cannot be a game is told by every command in the same words.
TEST(CommandLine, PlayConvertAndInfoAgreeOnWhatIsNoGame) {
    const TemporaryFolder home;
    auto cut = Image(20000);
    const std::string header = "NES\x1A\x02\x01";
    std::copy(header.begin(), header.end(), cut.begin());
    auto picture = Image(40000);
    const std::string mark = "\x89PNG\r\n\x1A\n";
    std::copy(mark.begin(), mark.end(), picture.begin());
    const std::vector<std::pair<std::filesystem::path, std::string>> files = {
        {home.Write("README.md", std::string(3000, 'n')),           "is a text, not a game"},
        {home.Write("picture.gg",                      picture),                "is a PNG picture" },
        {home.Write("tiny.sms",                      Image(100)),                  "has 100 bytes; no game of the"},
        {home.Write("cut.nes",                      cut),                   "is cut off: its NES header says"         },
    };
    for (const auto& [path, words] : files) {
        for (const std::vector<std::string>& command : {
                 std::vector<std::string>{"play",      "--headless", "--frames", "1"},
                 {"info"},
                 {"convert"          },
                 {"add"          }
        }) {
            std::vector<std::string> arguments = command;
            arguments.push_back(path.string());
            const PROGRAM_RESULT result = Ombrelune(arguments, home);
            EXPECT_EQ(result.exitCode, 1) << command.front() << path;
            EXPECT_THAT(result.error, StartsWith("ombrelune: " + path.string() + ": " + words));
            EXPECT_EQ(Lines(result.error), 1u) << result.error;
        }
    }
}

namespace {

std::filesystem::path WriteTwoGames(const TemporaryFolder& home) {
    ZipWriter writer;
    std::string error;
    EXPECT_TRUE(writer.Add("README.md", std::vector<uint8_t>(3000, 'n'), error));
    EXPECT_TRUE(writer.Add("a/One.sms", Image(2000), error));
    EXPECT_TRUE(writer.Add("Two.gg", Image(3000), error));
    return home.Write("two.zip", writer.Finish(error));
}

} // namespace

TEST(CommandLine, EntryChoosesTheGameOfAZip) {
    const TemporaryFolder home;
    const std::string zip = WriteTwoGames(home).string();
    const auto play = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"play", "--headless", "--frames", "1", zip});
        return Ombrelune(more, home);
    };
    EXPECT_EQ(play({}).error, "ombrelune: " + zip + ": holds 2 games; this is a/One.sms, and " +
                                  "--entry NAME takes another\n");
    const PROGRAM_RESULT second = play({"--entry", "two.GG", "--dump", "vram=/dev/null"});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_EQ(second.error, "ombrelune: " + zip + ": this is Two.gg\n");
    const PROGRAM_RESULT none = play({"--entry", "Three.gg"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.error, "ombrelune: --entry Three.gg: " + zip + " has a/One.sms, Two.gg\n");
    const PROGRAM_RESULT plain = Ombrelune(
        {"play", "--headless", home.Write("a.gg", Image(2000)).string(), "--entry", "x"}, home);
    EXPECT_EQ(plain.exitCode, 2);
    EXPECT_THAT(plain.error, HasSubstr("a.gg holds no games to choose from"));
}

TEST(CommandLine, InfoListsAllGamesOfAZipAndWhichCanBePlayed) {
    const TemporaryFolder home;
    const PROGRAM_RESULT info = Ombrelune({"info", "--json", WriteTwoGames(home).string()}, home);
    EXPECT_EQ(info.exitCode, 0) << info.error;
    const auto json = nlohmann::json::parse(info.output);
    ASSERT_EQ(json.size(), 1u);
    const auto& games = json[0]["games"];
    ASSERT_EQ(games.size(), 3u);
    EXPECT_EQ(games[0]["entry"], "README.md");
    EXPECT_EQ(games[0]["playable"], false);
    EXPECT_EQ(games[0]["reason"], "is a text, not a game");
    EXPECT_EQ(games[1]["entry"], "a/One.sms");
    EXPECT_EQ(games[1]["machine"], "Master System");
    EXPECT_EQ(games[1]["size"], 2000);
    EXPECT_EQ(games[1]["sha256"], HexText(Sha256(Image(2000))));
    EXPECT_EQ(games[1]["playable"], true);
    EXPECT_EQ(games[2]["names"][0]["title"], "Two");
}

// A board that is not built in: the image is whole, and the machine says why it cannot be played.
TEST(CommandLine, InfoSaysWhyAGameCannotBePlayed) {
    const TemporaryFolder home;
    std::vector<uint8_t> image(16 + 16384 + 8192);
    const std::string header = "NES\x1A\x01\x01\xF2\xF0"; // mapper 255, battery
    std::copy(header.begin(), header.end(), image.begin());
    const PROGRAM_RESULT info = Ombrelune({"info", home.Write("a.nes", image).string()}, home);
    EXPECT_EQ(info.exitCode, 0) << info.error;
    EXPECT_THAT(info.output,
                AllOf(HasSubstr("board: mapper 255, horizontal mirroring, 16 KB program, 8 KB "
                                "characters\n"),
                      HasSubstr("battery: yes\n"), HasSubstr("playable: no\n"),
                      HasSubstr("reason: NES Mapper #255 not supported")));
}

TEST(CommandLine, ConvertWalksFoldersAndCounts) {
    const TemporaryFolder home;
    home.Write("in/a/One.sms", Image(2000));
    home.Write("in/b/Two.gg", Image(2001));
    home.Write("in/b/README.md", std::string(3000, 'n'));
    home.Write("in/list.txt", "text");
    const std::string in = (home.Path() / "in").string();
    const PROGRAM_RESULT first = Ombrelune({"convert", in}, home);
    EXPECT_EQ(first.exitCode, 0) << first.error;
    EXPECT_EQ(first.error, "");
    EXPECT_EQ(first.output, "made " + in + "/a/One.game\nmade " + in +
                                "/b/Two.game\n2 made, 0 already there, 2 other files\n");
    const PROGRAM_RESULT again = Ombrelune({"convert", in}, home);
    EXPECT_THAT(again.output, HasSubstr("already there " + in + "/a/One.game\n"));
    EXPECT_THAT(again.output, EndsWith("0 made, 2 already there, 4 other files\n"))
        << "the games of before are no sources";
}

TEST(CommandLine, BenchHasAHeadingAndARowForEachMachine) {
    const TemporaryFolder home;
    const PROGRAM_RESULT bench = Ombrelune({"bench", "--machine", "gg", "--seconds", "0.01"}, home);
    EXPECT_EQ(bench.exitCode, 0) << bench.error;
    EXPECT_THAT(bench.output, AllOf(StartsWith("machine  game"), HasSubstr("\ngg       gg-glimmer"),
                                    Not(HasSubstr("rewind +")), Not(HasSubstr("rewind -"))));
}
