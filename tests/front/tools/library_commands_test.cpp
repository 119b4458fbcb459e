// Games made of files and files of games, with the built program.

#include "formats/game_file.h"
#include "formats/hand_made.h"
#include "formats/zip.h"
#include "front/tools/run_ombrelune.h"

#include "support/least_images.h"
#include "support/run_on_terminal.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

namespace fs = std::filesystem;

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kCursorHidden = "\x1B[?25l";
constexpr const char* kCursorShown = "\x1B[?25h";

// No temporary file of a write that has not ended.
void ExpectNothingHalfWritten(const fs::path& folder) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        EXPECT_EQ(entry.path().string().find(".tmp"), std::string::npos) << entry.path();
    }
}

} // namespace

TEST(Extract, GivesBackWhatWasConverted) {
    const TemporaryFolder home;
    CRandom random(1);
    for (const char* const name : {"one.sms", "two.gg", "three.md", "four.nes"}) {
        const Bytes image = random.Fill(kLeastNesImage);
        const fs::path rom = home.Write(name, image);
        const fs::path games = home.Path() / "games";
        ASSERT_EQ(Ombrelune({"convert", rom.string(), "--out", games.string()}, home).exitCode, 0);
        const fs::path game = games / (rom.stem().string() + ".game");
        const PROGRAM_RESULT result =
            Ombrelune({"extract", game.string(), "--out", (home.Path() / "back").string()}, home);
        EXPECT_EQ(result.exitCode, 0) << result.error;
        EXPECT_EQ(result.output, (home.Path() / "back" / name).string() + "\n");
        EXPECT_TRUE(home.Read("back/" + std::string(name)) == image) << name;
        EXPECT_TRUE(fs::exists(game));
    }
}

TEST(Extract, DumpComesBackPlainOrAsACopierStoredIt) {
    const TemporaryFolder home;
    CRandom random(2);
    Bytes dump = random.Fill(512 + 32768);
    std::fill_n(dump.begin(), 512, uint8_t{0});
    const std::string game = (home.Path() / "a.game").string();
    ASSERT_EQ(Ombrelune({"convert", home.Write("a.smd", dump).string()}, home).exitCode, 0);
    const std::string out = (home.Path() / "out").string();
    ASSERT_EQ(Ombrelune({"extract", game, "--out", out}, home).exitCode, 0);
    EXPECT_EQ(home.Read("out/a.md").size(), 32768u);
    ASSERT_EQ(Ombrelune({"extract", game, "--out", out, "--interleaved"}, home).exitCode, 0);
    const Bytes back = home.Read("out/a.smd");
    ASSERT_EQ(back.size(), dump.size());
    EXPECT_TRUE(std::equal(back.begin() + 512, back.end(), dump.begin() + 512));
    // The same game again: the name is taken by the same bytes.
    const PROGRAM_RESULT again = Ombrelune(
        {"convert", (home.Path() / "out/a.smd").string(), "--out", home.Path().string()}, home);
    EXPECT_THAT(again.output,
                HasSubstr("already there " + (home.Path() / "a.game").string() + "\n"));
}

TEST(Convert, CopierHeaderWithoutAnImageIsNamed) {
    const TemporaryFolder home;
    const PROGRAM_RESULT result =
        Ombrelune({"convert", home.Write("a.smd", Bytes(512, 0)).string()}, home);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("a.smd: is only a copier's header"));
    EXPECT_FALSE(fs::exists(home.Path() / "a.game"));
}

TEST(Extract, ReplacesNoFileAndWritesNoneTwice) {
    const TemporaryFolder home;
    const Bytes image(1024, 5);
    ASSERT_EQ(Ombrelune({"convert", home.Write("a.sms", image).string()}, home).exitCode, 0);
    home.Write("a.sms", Bytes(1024, 6));
    const std::vector<std::string> command = {"extract", (home.Path() / "a.game").string(), "--out",
                                              home.Path().string()};
    EXPECT_THAT(Ombrelune(command, home).output, EndsWith("a0.sms\n"));
    EXPECT_EQ(home.Read("a.sms"), Bytes(1024, 6));
    EXPECT_EQ(home.Read("a0.sms"), image);
    EXPECT_THAT(Ombrelune(command, home).output, EndsWith("a0.sms, already there\n"));
    EXPECT_FALSE(fs::exists(home.Path() / "a00.sms"));
}

TEST(Extract, FileThatIsNoGameIsNamedAndTheOthersAreExtracted) {
    const TemporaryFolder home;
    ASSERT_EQ(Ombrelune({"convert", home.Write("a.sms", Bytes(kLeastSegaImage, 5)).string()}, home)
                  .exitCode,
              0);
    const fs::path text = home.Write("text.game", std::string(200, 'x'));
    const PROGRAM_RESULT result =
        Ombrelune({"extract", text.string(), (home.Path() / "a.game").string(), "--out",
                   (home.Path() / "out").string()},
                  home);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("text.game: is not a game file"));
    EXPECT_EQ(home.Read("out/a.sms"), Bytes(kLeastSegaImage, 5));
}

// A bit of the image has changed since the game was written.
TEST(Extract, DamagedImageIsNotWritten) {
    const TemporaryFolder home;
    CRandom random(4);
    ASSERT_EQ(
        Ombrelune({"convert", home.Write("a.sms", random.Fill(5000)).string()}, home).exitCode, 0);
    Bytes game = home.Read("a.game");
    game[game.size() - 1000] = static_cast<uint8_t>(game[game.size() - 1000] ^ 1);
    const PROGRAM_RESULT result = Ombrelune(
        {"extract", home.Write("a.game", game).string(), "--out", (home.Path() / "out").string()},
        home);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("a.game: v1.0: is damaged"));
    EXPECT_FALSE(fs::exists(home.Path() / "out" / "a.sms"));
}

TEST(Progress, IsSilentInAPipe) {
    const TemporaryFolder home;
    const PROGRAM_RESULT result =
        Ombrelune({"convert", home.Write("a.sms", Bytes(kLeastSegaImage, 5)).string()}, home);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output.find('\x1B'), std::string::npos);
}

TEST(Progress, ShowsOnATerminalWhichFileIsInHand) {
    const TemporaryFolder home;
    std::vector<std::string> arguments = {"convert"};
    for (const char* const name : {"a.sms", "b.sms", "c.sms"}) {
        arguments.push_back(home.Write(name, Bytes(kLeastSegaImage, 5)).string());
    }
    const TERMINAL_RESULT result = RunOnTerminal(OmbrelunePath(), WithHome(arguments, home));
    EXPECT_EQ(result.exitCode, 0) << result.screen;
    EXPECT_THAT(result.screen, AllOf(HasSubstr("0/3 [                    ] a.sms"),
                                     HasSubstr("a.game\r\n"), HasSubstr("c.game\r\n")));
    EXPECT_THAT(result.screen, EndsWith(kCursorShown));
    // After the last of its lines the bar is gone.
    const size_t last = result.screen.rfind("c.game");
    EXPECT_EQ(result.screen.find('[', last), result.screen.rfind("\x1B[?25h") + 1);
}

// An instrumented program takes its time to end, and a second Ctrl-C would kill it meanwhile.
bool WaitsAtThePipe(const std::string& screen) {
    return screen.find("pipe.sms") != std::string::npos && !screen.ends_with(kCursorShown);
}

// A pipe that nobody writes to keeps the command waiting until it is interrupted.
TEST(Progress, CtrlCEndsCleanly) {
    const TemporaryFolder home;
    const fs::path first = home.Write("a.sms", Bytes(kLeastSegaImage, 5));
    const fs::path pipe = home.Path() / "pipe.sms";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const fs::path last = home.Write("z.sms", Bytes(kLeastSegaImage, 6));
    const TERMINAL_RESULT result = RunOnTerminal(
        OmbrelunePath(), WithHome({"convert", first.string(), pipe.string(), last.string()}, home),
        WaitsAtThePipe);
    EXPECT_EQ(result.exitCode, 130) << result.screen;
    EXPECT_THAT(result.screen, HasSubstr(kCursorHidden));
    EXPECT_THAT(result.screen, EndsWith(kCursorShown));
    EXPECT_THAT(result.screen, Not(HasSubstr("cannot be opened")));
    EXPECT_TRUE(fs::exists(home.Path() / "a.game"));
    EXPECT_FALSE(fs::exists(home.Path() / "z.game"));
    ExpectNothingHalfWritten(home.Path());
}

TEST(Add, ConvertsIntoTheLibraryAndListShowsIt) {
    const TemporaryFolder home;
    const TemporaryFolder from;
    from.Write("a/Alpha.sms", Bytes(1024, 1));
    from.Write("b/Beta.gg", Bytes(1024, 2));
    const PROGRAM_RESULT added = Ombrelune({"add", from.Path().string()}, home);
    EXPECT_EQ(added.exitCode, 0) << added.error;
    EXPECT_EQ(added.output, "Converted unknown game: Alpha.game\n"
                            "Converted unknown game: Beta.game\n"
                            "2 added, 0 already there\n");
    EXPECT_EQ(added.error, "");
    EXPECT_THAT(Ombrelune({"add", from.Path().string()}, home).output,
                EndsWith("0 added, 2 already there\n"));
    const PROGRAM_RESULT list = Ombrelune({"list"}, home);
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(list.output, "sms\tAlpha\t----\t\tunknown\t" +
                               (home.Path() / "sms/Alpha.game").string() + "\n" +
                               "gg\tBeta\t----\t\tunknown\t" +
                               (home.Path() / "gamegear/Beta.game").string() + "\n");
}

TEST(Add, AsksForTheMachineWithExitCodeOne) {
    const TemporaryFolder home;
    const TemporaryFolder from;
    const fs::path rom = from.Write("game.rom", Bytes(kLeastNesImage, 1));
    const PROGRAM_RESULT untold = Ombrelune({"add", rom.string()}, home);
    EXPECT_EQ(untold.exitCode, 1);
    EXPECT_THAT(untold.error, HasSubstr("game.rom: nothing tells which machine it is for"));
    EXPECT_EQ(untold.output,
              "0 added, 0 already there, 1 of an unknown machine (--machine names it)\n");
    EXPECT_EQ(Ombrelune({"add", rom.string(), "--machine", "nes"}, home).exitCode, 0);
    EXPECT_TRUE(fs::exists(home.Path() / "nes" / "game.game"));
    EXPECT_EQ(Ombrelune({"add"}, home).exitCode, 2);
    EXPECT_EQ(Ombrelune({"add", rom.string(), "--machine", "toaster"}, home).exitCode, 2);
}

TEST(Add, CtrlCEndsCleanlyAndKeepsWhatWasCopied) {
    const TemporaryFolder home;
    const TemporaryFolder from;
    const fs::path first = from.Write("a.sms", Bytes(1024, 5));
    const fs::path pipe = from.Path() / "pipe.sms";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const fs::path last = from.Write("z.sms", Bytes(1024, 6));
    const TERMINAL_RESULT result = RunOnTerminal(
        OmbrelunePath(), WithHome({"add", first.string(), pipe.string(), last.string()}, home),
        WaitsAtThePipe);
    EXPECT_EQ(result.exitCode, 130) << result.screen;
    EXPECT_THAT(result.screen, HasSubstr("1 added, 0 already there\r\n"));
    EXPECT_THAT(result.screen, EndsWith(kCursorShown));
    EXPECT_EQ(home.Read("sms/a.sms"), Bytes(1024, 5)) << "for the folder's next conversion";
    EXPECT_FALSE(fs::exists(home.Path() / "sms" / "z.sms"));
    ExpectNothingHalfWritten(home.Path());
    EXPECT_THAT(Ombrelune({"add", last.string()}, home).output,
                HasSubstr("Converted unknown game: a.game\n"));
}

namespace {

// A game with three names, the last without a year.
void WriteNamedGame(const TemporaryFolder& home, const std::string& file) {
    const Bytes image(1024, 7);
    CGameFile game;
    game.Create(false, kSystemNes);
    const struct {
        const char* title;
        const char* regions;
        uint8_t year;
    } names[] = {
        {"Night Walk",  "EU", 89},
        {"Yoru Aruki",  "J",  88},
        {"Walk\tNight", "",   0 },
    };
    uint32_t index = 0;
    for (const auto& row : names) {
        NAME_RECORD name{};
        std::memcpy(name.tag, "NAME", 4);
        name.year = row.year;
        name.playTypes = 3;
        game.AddNameCopy(name, {});
        NAME_TEXTS texts;
        texts.title = row.title;
        texts.regions = row.regions;
        game.SetNameText(index++, texts);
    }
    game.AddRom("v1.0", Sha256(image), static_cast<uint32_t>(image.size()));
    home.Write(file, game.WriteGame(image));
}

} // namespace

TEST(List, EveryNameIsALineAndTheTextIsSearchedInAnyCase) {
    const TemporaryFolder home;
    WriteNamedGame(home, "nes/walk.game");
    const std::string path = (home.Path() / "nes/walk.game").string();
    EXPECT_EQ(Ombrelune({"list"}, home).output,
              "nes\tNight Walk\t1989\tEU\tunknown\t" + path + "\n" +
                  "nes\tYoru Aruki\t1988\tJ\tunknown\t" + path + "\n" +
                  "nes\tWalk?Night\t----\t\tunknown\t" + path + "\n");
    EXPECT_EQ(Ombrelune({"list", "--name", "ARUKI"}, home).output,
              "nes\tYoru Aruki\t1988\tJ\tunknown\t" + path + "\n");
    EXPECT_EQ(Ombrelune({"list", "--machine", "md"}, home).output, "");
    EXPECT_EQ(Ombrelune({"list", "--name", "nothing"}, home).exitCode, 0);
    EXPECT_EQ(Ombrelune({"list", "--machine", "toaster"}, home).exitCode, 2);
}

TEST(List, JsonHoldsWhatARowHolds) {
    const TemporaryFolder home;
    WriteNamedGame(home, "nes/walk.game");
    const std::string path = (home.Path() / "nes/walk.game").string();
    EXPECT_EQ(Ombrelune({"list", "--json", "--name", "walk"}, home).output,
              R"([
  {
    "machine": "nes",
    "title": "Night Walk",
    "year": 1989,
    "regions": "EU",
    "playTypes": 3,
    "known": false,
    "nameIndex": 0,
    "contentKey": "",
    "path": ")" + path +
                  R"("
  },
  {
    "machine": "nes",
    "title": "Walk\tNight",
    "year": null,
    "regions": "",
    "playTypes": 3,
    "known": false,
    "nameIndex": 2,
    "contentKey": "",
    "path": ")" + path +
                  R"("
  }
]
)");
    EXPECT_EQ(Ombrelune({"list", "--json", "--machine", "md"}, home).output, "[]\n");
}

TEST(List, NameThatIsNoUtf8BreaksNoJson) {
    const TemporaryFolder home;
    WriteNamedGame(home, "nes/\xFF\xFEwalk.game");
    const PROGRAM_RESULT result = Ombrelune({"list", "--json"}, home);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_THAT(result.output, HasSubstr("\xEF\xBF\xBD\xEF\xBF\xBDwalk.game"));
}

TEST(List, GameThatCannotBeReadIsNamedAndTheOthersAreListed) {
    const TemporaryFolder home;
    WriteNamedGame(home, "nes/walk.game");
    home.Write("nes/a.game", std::string(100, 'x'));
    home.Write("nes/source.nes", std::string(100, 'x'));
    WriteNamedGame(home, "sms/of another machine.game");
    const PROGRAM_RESULT result = Ombrelune({"list"}, home);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.error, HasSubstr("a.game: is not a game file"));
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 3);
    EXPECT_TRUE(fs::exists(home.Path() / "nes" / "source.nes")) << "nothing is converted";
}
