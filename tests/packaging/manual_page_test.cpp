// The manual page, held against what `--help` says.
#include "packaging/installed.h"
#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <set>

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// The first words of the lines of a list below this heading, up to the next empty line.
std::set<std::string> Listed(const std::string& help, const std::string& heading) {
    std::set<std::string> words;
    const size_t at = help.find("\n" + heading + ":\n");
    if (at == std::string::npos) {
        return words;
    }
    const size_t begin = at + heading.size() + 3;
    const std::string list = help.substr(begin, help.find("\n\n", begin) - begin);
    static const std::regex kFirst("(^|\n)  ([a-z]+)");
    for (std::sregex_iterator word(list.begin(), list.end(), kFirst), end; word != end; ++word) {
        words.insert((*word)[2]);
    }
    return words;
}

std::set<std::string> LongSwitches(const std::string& help) {
    static const std::regex kSwitch("(^|\n)  (-[a-z],)?(--[a-z-]+)");
    std::set<std::string> switches;
    for (std::sregex_iterator at(help.begin(), help.end(), kSwitch), end; at != end; ++at) {
        switches.insert((*at)[3]);
    }
    return switches;
}

} // namespace

class InstalledManual : public Installed {
protected:
    // The page as it is read, without the codes of bold letters.
    [[nodiscard]] std::string Page() const {
        return System({"mandoc", "-T", "ascii", "-O", "width=300", File()}).output;
    }
    [[nodiscard]] std::string File() const { return Share("man/man1/ombrelune.1").string(); }
    // A letter, a backspace and the letter again is a bold one; an underline is made the same way.
    [[nodiscard]] std::string PlainPage() const {
        return std::regex_replace(Page(), std::regex(".\b"), "");
    }
};

TEST_F(InstalledManual, HasNoMistakes) {
    const PROGRAM_RESULT checked = System({"mandoc", "-T", "lint", "-W", "warning", File()});
    EXPECT_EQ(checked.exitCode, 0);
    EXPECT_THAT(checked.output + checked.error, IsEmpty());
}

TEST_F(InstalledManual, NamesEveryCommandWithItsOptions) {
    const std::string page = PlainPage();
    const std::set<std::string> commands = Listed(Ombrelune({"--help"}).output, "Subcommands");
    EXPECT_GE(commands.size(), 10u);
    for (const std::string& command : commands) {
        EXPECT_THAT(page, HasSubstr("ombrelune " + command));
        for (const std::string& name : LongSwitches(Ombrelune({command, "--help"}).output)) {
            EXPECT_THAT(page, HasSubstr(name)) << command;
        }
    }
    EXPECT_EQ(LongSwitches(Ombrelune({"play", "--help"}).output).count("--headless"), 1u);
}

TEST_F(InstalledManual, TellsWhatAnOptionTakes) {
    const std::string page = PlainPage();
    EXPECT_THAT(page, HasSubstr("--home DIR"));
    EXPECT_THAT(page, HasSubstr("--machine sms|gg|nes|arcade|md"));
    EXPECT_THAT(page, HasSubstr("--peek ADDRESS[:LENGTH]"));
}

TEST_F(InstalledManual, KeepsTheListsOfTheHelp) {
    EXPECT_THAT(PlainPage(), HasSubstr("demo:gg-glimmer  Glimmer"));
}
