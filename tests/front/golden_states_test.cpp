// States that were written once must load for ever: tests/golden has a game, a state and what follows.
#include "front/golden_files.h"

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

// A picture and its sound, as a line of hashes has them; "-" where nothing is said.
using LINE = std::array<std::string, 6>; // number, width, height, picture, pairs, sound

struct GOLDEN_CASE {
    std::vector<std::string> settings; // "name=value"
    std::vector<LINE> lines;
};

std::vector<LINE> ReadLines(std::istream& text) {
    std::vector<LINE> lines;
    for (LINE line; text >> line[0] >> line[1] >> line[2] >> line[3] >> line[4] >> line[5];) {
        lines.push_back(line);
    }
    return lines;
}

GOLDEN_CASE ReadCase(const std::filesystem::path& path) {
    std::ifstream file(path);
    GOLDEN_CASE what;
    std::string line;
    while (std::getline(file, line) && line.rfind('#', 0) == 0) {
    }
    std::istringstream words(line);
    std::string word;
    words >> word;
    EXPECT_EQ(word, "options");
    while (words >> word) {
        what.settings.push_back(word);
    }
    what.lines = ReadLines(file);
    return what;
}

class GoldenState : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(GoldenState, LoadsAndGoesOnAsItDid) {
    const GOLDEN_CASE what = ReadCase(kGoldenFolder / (GetParam() + ".txt"));
    ASSERT_GE(what.lines.size(), 3U);
    const TemporaryFolder folder;
    folder.Write("state", ReadGoldenState(GetParam()));
    std::vector<std::string> arguments = {"--home",
                                          folder.Path().string(),
                                          "play",
                                          (kGoldenFolder / (GetParam() + ".game")).string(),
                                          "--headless",
                                          "--load-state",
                                          (folder.Path() / "state").string(),
                                          "--frame-hashes",
                                          (folder.Path() / "hashes").string(),
                                          "--frames",
                                          what.lines.back()[0]};
    for (const std::string& setting : what.settings) {
        arguments.insert(arguments.end(), {"--set", setting});
    }
    const PROGRAM_RESULT result = RunProgram(OMBRELUNE_BUILD_FOLDER "/ombrelune", arguments);
    ASSERT_EQ(result.exitCode, 0) << result.error;
    std::ifstream hashes(folder.Path() / "hashes");
    const std::vector<LINE> got = ReadLines(hashes);
    for (const LINE& line : what.lines) {
        const size_t index = std::stoul(line[0]) - 1;
        ASSERT_LT(index, got.size());
        for (size_t i = 0; i < line.size(); ++i) {
            if (line[i] != "-") {
                EXPECT_EQ(got[index][i], line[i]) << "frame " << line[0] << ", word " << i;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, GoldenState, testing::ValuesIn(GoldenNames()),
                         [](const auto& testCase) {
                             std::string name = testCase.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

// What is there must stay; a new machine, board, option or version of a piece brings one more.
TEST(GoldenStates, AreThereForEveryMachineBoardAndKindOfSound) {
    const std::vector<std::string> names = GoldenNames();
    const std::set<std::string> known(names.begin(), names.end());
    for (const char* name : {"arcade-analog",    "arcade-dial",
                             "arcade-skywren",   "gg-full",
                             "gg-glimmer",       "gg-linked-japanese",
                             "gg-plain",         "md-battery",
                             "md-eeprom",        "md-mistral",
                             "md-pal",           "md-plain",
                             "md-svp",           "md-testcard",
                             "nes-board-0",      "nes-board-0-ram",
                             "nes-board-1",      "nes-board-1-ram",
                             "nes-board-2",      "nes-board-3",
                             "nes-board-4",      "nes-board-4-four-ram",
                             "nes-board-66",     "nes-board-7",
                             "nes-board-73",     "nes-board-9",
                             "nes-ecume",        "nes-grelot",
                             "nes-testcard",     "older-arcade-skywren",
                             "older-gg-glimmer", "older-md-mistral",
                             "older-nes-ecume",  "older-sms-luciole",
                             "sms-japanese-fm",  "sms-luciole",
                             "sms-mark3",        "sms-pal-fm-glasses-phaser-sportspad",
                             "sms-plain",        "sms-torture",
                             "sms1-pal",         "sms1-paddle-6button",
                             "sound-cutoff",     "sound-quality-0",
                             "sound-quality-2"}) {
        EXPECT_EQ(known.count(name), 1U) << name;
        for (const char* ending : {".game", ".state.gz"}) {
            EXPECT_TRUE(std::filesystem::exists(kGoldenFolder / (std::string(name) + ending)))
                << name << ending;
        }
    }
}
