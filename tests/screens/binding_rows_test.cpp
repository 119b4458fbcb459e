#include "facts/machine_facts.h"
#include "screens/binding_rows.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

class BindingRows : public testing::Test {
protected:
    void SetUp() override { RegisterDefaultSettings(Settings()); }

    static size_t Action(std::wstring_view name) {
        for (size_t i = 0; i < InputActions().size(); ++i) {
            if (InputActions()[i].name == name) {
                return i;
            }
        }
        ADD_FAILURE() << std::string(name.begin(), name.end());
        return 0;
    }
    static std::vector<size_t> ActionsOfSystem(size_t system) {
        return ActionsOf(*InputSystems()[system].facts);
    }
};

TEST_F(BindingRows, SystemsAreInTheScreensOrder) {
    std::vector<std::wstring> names;
    for (const INPUT_SYSTEM& system : InputSystems()) {
        names.emplace_back(system.name);
    }
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Arcade", L"Game Gear", L"Nintendo",
                                                L"Sega Master System", L"Genesis / Megadrive"}));
}

TEST_F(BindingRows, EverySystemHasItsActionsAndTheProgramsOwn) {
    const wchar_t* const prefixes[] = {L"Arcade ", L"GG ", L"NES ", L"SMS ", L"MEGADRIVE "};
    std::set<size_t> seen;
    for (size_t system = 0; system < InputSystems().size(); ++system) {
        const std::vector<size_t> actions = ActionsOfSystem(system);
        for (const size_t action : actions) {
            seen.insert(action);
            const bool own =
                std::wstring_view(InputActions()[action].name).starts_with(prefixes[system]);
            EXPECT_NE(own, IsProgramAction(action));
        }
        EXPECT_EQ(std::count_if(actions.begin(), actions.end(), IsProgramAction), 22);
        EXPECT_TRUE(IsProgramAction(actions.back()));
        EXPECT_FALSE(IsProgramAction(actions.front()));
    }
    EXPECT_EQ(seen.size(), InputActions().size());
}

// A press that does two things on a first start would be a mistake of the tables.
TEST_F(BindingRows, TheDefaultsAreNotInEachOthersWay) {
    for (size_t system = 0; system < InputSystems().size(); ++system) {
        const std::vector<size_t> actions = ActionsOfSystem(system);
        for (const size_t action : actions) {
            EXPECT_TRUE(SharingBinding(actions, action, 0).empty());
            EXPECT_TRUE(SharingBinding(actions, action, 1).empty());
        }
    }
}

TEST_F(BindingRows, TheSameKeyTwiceInASystemIsSharedBothWays) {
    const std::vector<size_t> nes = ActionsOfSystem(2);
    const size_t up = Action(L"NES P1 UP");
    const size_t start = Action(L"NES P2 START");
    SetActionBinding(start, 1, ActionBinding(up, 0));
    EXPECT_EQ(SharingBinding(nes, up, 0), std::vector<size_t>{start});
    EXPECT_EQ(SharingBinding(nes, start, 1), std::vector<size_t>{up});
    EXPECT_TRUE(SharingBinding(nes, start, 0).empty()); // is not bound
    // Of another system it is no concern.
    EXPECT_TRUE(SharingBinding(ActionsOfSystem(1), Action(L"GG P1 UP"), 0).empty());
}

TEST_F(BindingRows, AnActionIsNotInItsOwnWay) {
    const size_t up = Action(L"NES P1 UP");
    SetActionBinding(up, 1, ActionBinding(up, 0));
    EXPECT_TRUE(SharingBinding(ActionsOfSystem(2), up, 0).empty());
}

TEST_F(BindingRows, WhatIsReadWhilePlayingSharesWithTheMachineAndWalkingDoesNot) {
    const std::vector<size_t> nes = ActionsOfSystem(2);
    const size_t up = Action(L"NES P1 UP");
    SetActionBinding(Action(L"Save State"), 0, ActionBinding(up, 0));
    SetActionBinding(Action(L"Use"), 0, ActionBinding(up, 0));
    EXPECT_EQ(SharingBinding(nes, up, 0), std::vector<size_t>{Action(L"Save State")});
    EXPECT_TRUE(SharingBinding(nes, Action(L"Use"), 0).empty());
}

// The volume is turned in both.
TEST_F(BindingRows, TheVolumeSharesWithTheMachineAndWithWalking) {
    const std::vector<size_t> nes = ActionsOfSystem(2);
    SetActionBinding(Action(L"Volume Up"), 0, 82);
    SetActionBinding(Action(L"Use"), 0, 82);
    const std::vector<size_t> both{Action(L"NES P1 UP"), Action(L"Use")};
    EXPECT_EQ(SharingBinding(nes, Action(L"Volume Up"), 0), both);
    EXPECT_EQ(SharingBinding(nes, Action(L"Use"), 0), std::vector<size_t>{Action(L"Volume Up")});
}

TEST_F(BindingRows, ChangeOneInputAndLeaveTheOther) {
    const size_t up = Action(L"NES P1 UP");
    SetActionBinding(up, 1, 99);
    EXPECT_EQ(Settings().GetInt2(L"INPUT NES P1 UP"), (std::pair<int32_t, int32_t>{82, 99}));
    SetActionBinding(up, 0, JoystickBinding(1, 700));
    EXPECT_EQ(ActionBinding(up, 0), JoystickBinding(1, 700));
    EXPECT_EQ(ActionBinding(up, 1), 99u);
}

TEST_F(BindingRows, DefaultsAndSnapshotsHoldEveryAction) {
    const BindingSnapshot first = TakeBindings();
    for (size_t action = 0; action < InputActions().size(); ++action) {
        SetActionBinding(action, 0, 7);
        SetActionBinding(action, 1, 9);
    }
    const BindingSnapshot changed = TakeBindings();
    EXPECT_NE(first, changed);
    SetDefaultBindings();
    EXPECT_EQ(TakeBindings(), first);
    PutBindings(changed);
    EXPECT_EQ(TakeBindings(), changed);
}

} // namespace
