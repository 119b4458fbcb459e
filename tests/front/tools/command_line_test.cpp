// Drives the built program as a user does: arguments in; exit code, output and files out.

#include "base/files.h"
#include "formats/sha256.h"
#include "formats/zip.h"
#include "front/tools/gallery_pages.h"
#include "front/tools/run_ombrelune.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>

using testing::AllOf;
using testing::HasSubstr;
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

TEST(CommandLine, ActionsListsEveryActionWithItsKeys) {
    const TemporaryFolder home;
    const PROGRAM_RESULT result = Ombrelune({"actions"}, home);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.output, HasSubstr("Move Forward\tW\t<undefined>\n"));
    EXPECT_THAT(result.output, HasSubstr("Rewind\tSHIFT + TAB\t<undefined>\n"));
    EXPECT_THAT(result.output, HasSubstr("SMS P1 BUTTON1\tA\t<undefined>\n"));
    // 16 of the program, 16 NES, 24 arcade, 22 Master System, 26 Mega Drive, 14 Game Gear.
    EXPECT_EQ(Lines(result.output), 118u);
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
    const auto rom = home.Write("a.gg", Image(1000));
    ASSERT_EQ(Ombrelune({"convert", rom.string()}, home).exitCode, 0);
    const auto first = home.Read("a.game");
    EXPECT_THAT(Ombrelune({"convert", rom.string()}, home).output, HasSubstr("already there"));
    EXPECT_FALSE(std::filesystem::exists(home.Path() / "a0.game"));

    home.Write("a.gg", Image(1001));
    ASSERT_EQ(Ombrelune({"convert", rom.string()}, home).exitCode, 0);
    EXPECT_EQ(home.Read("a.game"), first);
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "a0.game"));
}

TEST(CommandLine, ConvertTakesEveryImageOutOfAZip) {
    const TemporaryFolder home;
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("folder/One.nes", Image(500), error));
    ASSERT_TRUE(writer.Add("Two.md", Image(1100), error));
    ASSERT_TRUE(writer.Add("readme.txt", Image(10), error));
    const auto zip = home.Write("both.zip", writer.Finish(error));
    const PROGRAM_RESULT result =
        Ombrelune({"convert", zip.string(), "--out", (home.Path() / "out").string()}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "out" / "One.game"));
    EXPECT_TRUE(std::filesystem::exists(home.Path() / "out" / "Two.game"));
    EXPECT_TRUE(std::filesystem::exists(zip));
    EXPECT_EQ(Lines(result.output), 2u);
}

TEST(CommandLine, AnArchiveIsTakenForTheMachineThatTheUserNames) {
    const TemporaryFolder home;
    ZipWriter writer;
    std::string error;
    ASSERT_TRUE(writer.Add("game.rom", Image(500), error));
    const auto zip = home.Write("one.zip", writer.Finish(error));
    EXPECT_EQ(Ombrelune({"convert", zip.string()}, home).exitCode, 1);
    ASSERT_EQ(Ombrelune({"convert", zip.string(), "--machine", "sms"}, home).exitCode, 0);
    const auto info = Ombrelune({"info", (home.Path() / "game.game").string()}, home);
    EXPECT_THAT(info.output, HasSubstr("Master System, 500 bytes"));
}

TEST(CommandLine, ABrokenEntryOfAnArchiveLeavesTheOthers) {
    const TemporaryFolder home;
    ZipWriter writer;
    std::string error;
    // Data without a pattern is stored as it is, so that a changed byte is found by the checksum.
    std::vector<uint8_t> noise(500);
    uint32_t state = 1;
    for (uint8_t& byte : noise) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(state >> 24);
    }
    ASSERT_TRUE(writer.Add("broken.sms", noise, error));
    ASSERT_TRUE(writer.Add("whole.sms", Image(700), error));
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
    EXPECT_EQ(Lines(result.output), 118u);
}
