// Holds every machine to its row of facts: run with each value of each option, a machine polls the
// actions of its row and no others, and has the memories that the row names.

#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/demos.h"
#include "library/convert.h"
#include "machine/emu_system.h"
#include "machine/inspection.h"
#include "machines/machine_options.h"
#include "machines/machines.h"
#include "settings/bindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using Names = std::set<std::string>;

Names gPolled;

// Records every action read during its life.
class PollRecorder {
public:
    PollRecorder() {
        gPolled.clear();
        InputSetPollObserver([](std::wstring_view name) { gPolled.insert(Utf8FromWide(name)); });
    }
    ~PollRecorder() { InputSetPollObserver(nullptr); }
    PollRecorder(const PollRecorder&) = delete;
    PollRecorder& operator=(const PollRecorder&) = delete;
};

void Add(Names& names, std::span<const std::wstring_view> actions) {
    for (const std::wstring_view action : actions) {
        names.insert(Utf8FromWide(action));
    }
}

// The actions that a machine of this row must poll.
Names ActionsOf(const MACHINE_FACTS& facts) {
    Names names;
    Add(names, facts.playerActions[0]);
    Add(names, facts.playerActions[1]);
    if (facts.readsConsoleActions) {
        Add(names, facts.consoleActions);
    }
    return names;
}

// Our own game for a machine.
CGameFile GameFor(const MACHINE_FACTS& facts) {
    CGameFile game;
    const auto demo = std::find_if(Demos().begin(), Demos().end(), [&](const DEMO& candidate) {
        return candidate.system == facts.system;
    });
    if (demo == Demos().end()) {
        ADD_FAILURE() << "no game for the " << facts.name;
        return game;
    }
    MACHINE_RECORD record{};
    if (facts.system == kSystemArcade) {
        ARC_RECORD arcade{};
        arcade.board = 3; // joysticks
        std::memcpy(record.bytes, &arcade, sizeof arcade);
    }
    EXPECT_TRUE(BuildKnownGame(facts.system, demo->title, demo->image, record, game));
    game.selectedName = 0;
    return game;
}

std::unique_ptr<CEmuSystem> Start(const MACHINE_FACTS& facts, CGameFile& game,
                                  const OptionBlock& options) {
    for (const MACHINE_ENTRY& entry : BuiltInMachines().machines) {
        if (entry.system == facts.system) {
            auto machine = entry.construct(1);
            CGameFile* const games[2] = {&game, nullptr};
            EXPECT_TRUE(machine->Init(options.data(), games)) << facts.name << EmuLastError();
            return machine;
        }
    }
    return nullptr;
}

void RunFrames(CEmuSystem& machine, int frames) {
    std::vector<uint32_t> pixels(size_t{machine.width} * machine.height);
    std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
    for (int i = 0; i < frames; ++i) {
        EMU_INPUT_STATE input{};
        EMU_VIDEO_FRAME video{};
        EMU_AUDIO_FRAME audio{samples.data(), 44100, 0};
        video.pixels = pixels.data();
        machine.RunFrame(&input, &video, &audio);
    }
}

// The default block, and one for each value of each option.
std::vector<OptionBlock> EverySetting(const MACHINE_FACTS& facts, const CGameFile& game) {
    std::vector<OptionBlock> blocks = {DefaultMachineOptions(game)};
    for (const MACHINE_OPTION& option : facts.options) {
        for (const OPTION_VALUE& value : option.values) {
            blocks.push_back(blocks.front());
            blocks.back()[option.offset] = value.byte;
        }
    }
    return blocks;
}

class EveryMachine : public testing::TestWithParam<const MACHINE_FACTS*> {
protected:
    static void SetUpTestSuite() { BuiltInMachines().buildTables(); }
};

std::vector<const MACHINE_FACTS*> AllFacts() {
    std::vector<const MACHINE_FACTS*> all;
    for (const MACHINE_FACTS& facts : MachineFacts()) {
        all.push_back(&facts);
    }
    return all;
}

} // namespace

TEST(MachineFacts, EveryRowConstructsOneMachineAndEveryMachineHasARow) {
    std::multiset<uint32_t> rows;
    std::multiset<uint32_t> machines;
    for (const MACHINE_FACTS& facts : MachineFacts()) {
        rows.insert(facts.system);
    }
    for (const MACHINE_ENTRY& entry : BuiltInMachines().machines) {
        machines.insert(entry.system);
        EXPECT_EQ(entry.construct(7)->sessionKey, 7u);
    }
    EXPECT_EQ(machines, rows);
}

TEST_P(EveryMachine, PollsTheActionsOfItsRowAndNoOthers) {
    const MACHINE_FACTS& facts = *GetParam();
    CGameFile game = GameFor(facts);
    Names polled;
    for (const OptionBlock& options : EverySetting(facts, game)) {
        const auto machine = Start(facts, game, options);
        ASSERT_NE(machine, nullptr);
        const PollRecorder recorder;
        RunFrames(*machine, 2);
        polled.merge(gPolled);
    }
    EXPECT_EQ(polled, ActionsOf(facts));
}

TEST_P(EveryMachine, HasABindingForEachOfItsActions) {
    const auto actions = InputActions();
    for (const auto group :
         {GetParam()->consoleActions, GetParam()->playerActions[0], GetParam()->playerActions[1]}) {
        for (const std::wstring_view name : group) {
            EXPECT_EQ(
                std::count_if(actions.begin(), actions.end(),
                              [&](const INPUT_ACTION& action) { return action.name == name; }),
                1)
                << Utf8FromWide(name);
        }
    }
}

TEST_P(EveryMachine, HasTheMemoriesOfItsRow) {
    const MACHINE_FACTS& facts = *GetParam();
    CGameFile game = GameFor(facts);
    const auto machine = Start(facts, game, DefaultMachineOptions(game));
    const auto* inspection = dynamic_cast<const CInspection*>(machine.get());
    ASSERT_NE(inspection, nullptr);
    const auto present = inspection->Regions();
    for (const std::string_view region : present) {
        EXPECT_THAT(facts.regions, testing::Contains(region));
    }
    for (const std::string_view region : facts.regions) {
        const bool has = std::find(present.begin(), present.end(), region) != present.end();
        EXPECT_EQ(!inspection->Dump(region).empty(), has) << region;
        EXPECT_TRUE(has || region == "sram")
            << "only a cartridge's memory may be missing: " << region;
    }
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, EveryMachine, testing::ValuesIn(AllFacts()),
                         [](const auto& row) { return std::string(row.param->shortName); });
