// States that were written once must load for ever: tests/golden has a game, a state and what follows.
#include "front/golden_files.h"

#include "support/run_program.h"
#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace {

class GoldenState : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(GoldenState, LoadsAndGoesOnAsItDid) {
    const GOLDEN_CASE what = ReadGoldenCase(GetParam());
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
    const std::vector<GOLDEN_LINE> got = ReadGoldenLines(hashes);
    for (const GOLDEN_LINE& line : what.lines) {
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

// What was written once must stay. golden_coverage_test.cpp says what must be there besides.
TEST(GoldenStates, NoneHasGone) {
    const std::vector<std::string> names = GoldenNames();
    const std::set<std::string> known(names.begin(), names.end());
    for (const char* name : {"arcade-analog",
                             "arcade-dial",
                             "arcade-encrypted",
                             "arcade-skywren",
                             "gg-board-2",
                             "gg-board-3",
                             "gg-full",
                             "gg-glimmer",
                             "gg-linked-japanese",
                             "gg-plain",
                             "md-6button-port2",
                             "md-battery",
                             "md-eeprom",
                             "md-genesis-none-3button",
                             "md-mistral",
                             "md-pal",
                             "md-plain",
                             "md-svp",
                             "md-testcard",
                             "nes-board-0",
                             "nes-board-0-ram",
                             "nes-board-1",
                             "nes-board-1-ram",
                             "nes-board-2",
                             "nes-board-3",
                             "nes-board-4",
                             "nes-board-4-four-ram",
                             "nes-board-66",
                             "nes-board-7",
                             "nes-board-73",
                             "nes-board-9",
                             "nes-ecume",
                             "nes-grelot",
                             "nes-testcard",
                             "older-arcade-skywren",
                             "older-gg-glimmer",
                             "older-md-mistral",
                             "older-nes-ecume",
                             "older-sms-luciole",
                             "sms-6button-paddle",
                             "sms-board-2",
                             "sms-board-3",
                             "sms-japanese-fm",
                             "sms-luciole",
                             "sms-mark3",
                             "sms-pal-fm-glasses-phaser-sportspad",
                             "sms-plain",
                             "sms-sportspad-phaser",
                             "sms-torture",
                             "sms1-paddle-6button",
                             "sms1-pal",
                             "sound-cutoff",
                             "sound-quality-0",
                             "sound-quality-2"}) {
        EXPECT_EQ(known.count(name), 1U) << name;
        for (const char* ending : {".game", ".state.gz"}) {
            EXPECT_TRUE(std::filesystem::exists(kGoldenFolder / (std::string(name) + ending)))
                << name << ending;
        }
    }
}
