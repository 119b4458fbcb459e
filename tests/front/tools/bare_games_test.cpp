#include "front/tools/bare_games.h"
#include "front/tools/run_ombrelune.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using Arguments = std::vector<std::string>;

const Arguments kCommands = {"play", "room", "list"};

// What they become, or the error alone.
Arguments Implied(Arguments arguments) {
    std::string error;
    return AddImpliedCommand(arguments, kCommands, error) ? arguments : Arguments{error};
}

} // namespace

TEST(BareGames, OneIsPlayedWithThatCommandsOptions) {
    const TemporaryFolder folder;
    const std::string game = folder.Write("a.sms", std::string_view("x")).string();
    EXPECT_THAT(Implied({game}), ElementsAre("play", game));
    EXPECT_THAT(Implied({"--home", "somewhere", game, "--set", "fm=0"}),
                ElementsAre("--home", "somewhere", "play", game, "--set", "fm=0"));
    EXPECT_THAT(Implied({"--home=x", "demo:nes-grelot"}),
                ElementsAre("--home=x", "play", "demo:nes-grelot"));
}

TEST(BareGames, SeveralPlayInTheRoom) {
    const TemporaryFolder folder;
    const std::string one = folder.Write("a.sms", std::string_view("x")).string();
    const std::string two = folder.Write("b.nes", std::string_view("x")).string();
    EXPECT_THAT(Implied({one, two, "--dark"}), ElementsAre("room", one, two, "--dark"));
}

TEST(BareGames, ACommandStaysOneAndItsFileHasASlash) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("play", std::string_view("x")).string();
    EXPECT_THAT(Implied({"play", "x.sms"}), ElementsAre("play", "x.sms"));
    EXPECT_THAT(Implied({file}), ElementsAre("play", file));
    EXPECT_THAT(Implied({}), ElementsAre());
    EXPECT_THAT(Implied({"--version"}), ElementsAre("--version"));
    EXPECT_THAT(Implied({"--home"}), ElementsAre("--home"));
}

TEST(BareGames, NothingAndAFolderAreToldInOneSentence) {
    const TemporaryFolder folder;
    const std::string game = folder.Write("a.sms", std::string_view("x")).string();
    EXPECT_THAT(Implied({"nonsense"}),
                ElementsAre(HasSubstr("no command and no file \"nonsense\"")));
    EXPECT_THAT(Implied({game, "gone.nes"}), ElementsAre(HasSubstr("\"gone.nes\"")));
    EXPECT_THAT(Implied({folder.Path().string()}), ElementsAre(HasSubstr("is a folder")));
    const TemporaryFolder home;
    const PROGRAM_RESULT gone = Ombrelune({"gone.nes"}, home);
    EXPECT_EQ(gone.exitCode, 2);
    EXPECT_THAT(gone.error, AllOf(HasSubstr("gone.nes"), HasSubstr("--help")));
}

TEST(BareGames, ARunWithoutACommandPlays) {
    const TemporaryFolder home;
    EXPECT_EQ(Ombrelune({"demo:sms-luciole", "--headless", "--frames", "3"}, home).exitCode, 0);
}
