// Completions in their shells: what is offered for the words so far.
#include "packaging/installed.h"
#include <gmock/gmock.h>

#include <sstream>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line.substr(0, line.find('\t'))); // fish explains each after a tab
    }
    return lines;
}

} // namespace

class Completion : public Installed {
protected:
    void SetUp() override {
        Installed::SetUp();
        for (const char* name : {"files/game.sms", "files/notes.txt", "files/shelf/a.gg"}) {
            folder.Write(name, std::string_view("x"));
        }
    }
    // The words as bash splits them; the last is the one that is typed.
    [[nodiscard]] std::vector<std::string> Bash(const std::string& words) const {
        const PROGRAM_RESULT result =
            System({"bash", "-c",
                    "cd " + (folder.Path() / "files").string() + " && . " + BashFile() +
                        "; compopt() { :; }; COMP_WORDS=(" + words +
                        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _ombrelune; printf '%s\\n' "
                        "\"${COMPREPLY[@]}\""});
        EXPECT_THAT(result.error, IsEmpty());
        std::vector<std::string> lines = LinesOf(result.output);
        std::erase(lines, "");
        return lines;
    }
    [[nodiscard]] std::vector<std::string> Fish(const std::string& line) const {
        const PROGRAM_RESULT result =
            System({"env", "HOME=" + folder.Path().string(), "fish", "--no-config", "-c",
                    "cd " + (folder.Path() / "files").string() + "; source " +
                        Share("fish/vendor_completions.d/ombrelune.fish").string() +
                        "; complete -C '" + line + "'"});
        EXPECT_EQ(result.exitCode, 0) << result.error;
        return LinesOf(result.output);
    }
    [[nodiscard]] std::string BashFile() const {
        return Share("bash-completion/completions/ombrelune").string();
    }
};

TEST_F(Completion, BashOffersCommands) {
    EXPECT_THAT(Bash("ombrelune ''"), IsSupersetOf({"play", "room", "add", "database"}));
    EXPECT_THAT(Bash("ombrelune pl"), ElementsAre("play"));
    EXPECT_THAT(Bash("ombrelune database ''"), ElementsAre("make", "show"));
}

TEST_F(Completion, BashOffersOptionsOfTheCommand) {
    EXPECT_THAT(Bash("ombrelune play --headl"), ElementsAre("--headless"));
    EXPECT_THAT(Bash("ombrelune list --headl"), IsEmpty());
    EXPECT_THAT(Bash("ombrelune database make --ro"), ElementsAre("--roms"));
    EXPECT_THAT(Bash("ombrelune play --ho"), ElementsAre("--home"));
}

TEST_F(Completion, BashOffersTheValuesOfAnOption) {
    EXPECT_THAT(Bash("ombrelune play --machine ''"),
                ElementsAre("sms", "gg", "nes", "arcade", "md"));
    EXPECT_THAT(Bash("ombrelune play --machine = s"), ElementsAre("sms"));
    EXPECT_THAT(Bash("ombrelune completion z"), ElementsAre("zsh"));
}

TEST_F(Completion, BashTakesAFolderOfTheProgramForNoCommand) {
    EXPECT_THAT(Bash("ombrelune --home play li"), ElementsAre("list"));
}

TEST_F(Completion, BashOffersGames) {
    EXPECT_THAT(Bash("ombrelune play ''"), UnorderedElementsAre("game.sms", "shelf"));
    EXPECT_THAT(Bash("ombrelune play de"), ElementsAre("demo:"));
    // The colon ends a word in bash.
    EXPECT_THAT(Bash("ombrelune play demo : gg"), ElementsAre("gg-glimmer"));
    EXPECT_THAT(Bash("ombrelune play demo :"), Contains("md-mistral"));
    EXPECT_THAT(Bash("ombrelune play demo:gg"), ElementsAre("demo:gg-glimmer"));
}

TEST_F(Completion, FishOffersTheSame) {
    EXPECT_THAT(Fish("ombrelune pl"), ElementsAre("play"));
    EXPECT_THAT(Fish("ombrelune play --headl"), ElementsAre("--headless"));
    EXPECT_THAT(Fish("ombrelune list --headl"), IsEmpty());
    EXPECT_THAT(Fish("ombrelune play --machine "),
                UnorderedElementsAre("sms", "gg", "nes", "arcade", "md"));
    EXPECT_THAT(Fish("ombrelune play demo:gg"), ElementsAre("demo:gg-glimmer"));
    EXPECT_THAT(Fish("ombrelune database "), UnorderedElementsAre("make", "show"));
    EXPECT_THAT(Fish("ombrelune play "), IsSupersetOf({"game.sms", "shelf/", "demo:md-mistral"}));
    EXPECT_THAT(Fish("ombrelune actions "), Not(Contains("notes.txt")));
}

TEST_F(Completion, ScriptsAreWellFormed) {
    EXPECT_EQ(System({"bash", "-n", BashFile()}).exitCode, 0);
    EXPECT_EQ(
        System({"fish", "-n", Share("fish/vendor_completions.d/ombrelune.fish").string()}).exitCode,
        0);
    EXPECT_EQ(System({"zsh", "-n", Share("zsh/site-functions/_ombrelune").string()}).exitCode, 0);
}
