#include "screens/program_modes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <utility>

namespace {

constexpr MODE_FACTS kNoSet{};
constexpr MODE_FACTS kDarkSet{true, false, false};
constexpr MODE_FACTS kPlayingSet{true, true, false};
constexpr MODE_FACTS kPlayingSetFullScreen{true, true, true};

// In the room after a game was started on a set.
ProgramModes Playing() {
    ProgramModes modes(ProgramMode::kMenu);
    static_cast<void>(modes.Take(ModeInput::kPlayGames, kNoSet));
    static_cast<void>(modes.Take(ModeInput::kGameStarted, kPlayingSet));
    return modes;
}

TEST(ProgramModes, PlayGamesLeadsToTheBrowserAndPutsThePlayerAtTheDoor) {
    ProgramModes modes(ProgramMode::kMenu);
    EXPECT_EQ(modes.Take(ModeInput::kPlayGames, kNoSet), ModeOrder::kResetCamera);
    EXPECT_EQ(modes.Mode(), ProgramMode::kBrowser);
    EXPECT_EQ(modes.Take(ModeInput::kBack, kNoSet), ModeOrder::kNothing);
    EXPECT_EQ(modes.Mode(), ProgramMode::kMenu);
}

TEST(ProgramModes, APanelLeadsBackToTheMenuOnly) {
    for (const ModeInput way : {ModeInput::kBack, ModeInput::kMainMenu}) {
        ProgramModes modes(ProgramMode::kMenu);
        static_cast<void>(modes.Take(ModeInput::kOpenPanel, kNoSet));
        EXPECT_EQ(modes.Mode(), ProgramMode::kPanel);
        static_cast<void>(modes.Take(ModeInput::kGameRoom, kNoSet));
        EXPECT_EQ(modes.Mode(), ProgramMode::kPanel) << "a panel has no such button";
        static_cast<void>(modes.Take(way, kNoSet));
        EXPECT_EQ(modes.Mode(), ProgramMode::kMenu);
    }
}

TEST(ProgramModes, AStartedGamePlaysInTheRoomOrFullScreenAsTheSettingSays) {
    EXPECT_EQ(Playing().Mode(), ProgramMode::kStanding);
    ProgramModes modes(ProgramMode::kMenu);
    static_cast<void>(modes.Take(ModeInput::kPlayGames, kNoSet));
    static_cast<void>(modes.Take(ModeInput::kGameStarted, kPlayingSetFullScreen));
    EXPECT_EQ(modes.Mode(), ProgramMode::kFullScreen);
}

TEST(ProgramModes, EscapeTakesTheHandsFromTheMachineAndBack) {
    ProgramModes modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kStanding);
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kFullScreen);
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kStanding);
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking) << "escape in full screen leads into the room";
}

TEST(ProgramModes, SavedStatesAreShownWhereThePlayerIs) {
    ProgramModes modes(ProgramMode::kMenu);
    EXPECT_EQ(modes.Take(ModeInput::kSavedStates, kPlayingSet), ModeOrder::kNothing) << "the menu";
    modes = Playing();
    EXPECT_EQ(modes.Take(ModeInput::kSavedStates, kPlayingSet), ModeOrder::kSavedStates);
    EXPECT_EQ(modes.Mode(), ProgramMode::kStanding);
    EXPECT_EQ(modes.Take(ModeInput::kSavedStates, kDarkSet), ModeOrder::kNothing) << "no game";
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    EXPECT_EQ(modes.Take(ModeInput::kSavedStates, kPlayingSet), ModeOrder::kSavedStates);
    EXPECT_EQ(modes.Mode(), ProgramMode::kFullScreen);
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    EXPECT_EQ(modes.Take(ModeInput::kSavedStates, kPlayingSet), ModeOrder::kSavedStates);
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
}

TEST(ProgramModes, TheMiddleButtonWorksOnlyAtASetThatIsOn) {
    ProgramModes modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    static_cast<void>(modes.Take(ModeInput::kMiddleButton, kDarkSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
    static_cast<void>(modes.Take(ModeInput::kMiddleButton, kPlayingSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kStanding);
}

TEST(ProgramModes, UseOpensTheBrowserForTheSetAndNothingElse) {
    ProgramModes modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    EXPECT_EQ(modes.Take(ModeInput::kUse, kNoSet), ModeOrder::kNothing);
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking) << "furniture";
    EXPECT_EQ(modes.Take(ModeInput::kUse, kDarkSet), ModeOrder::kChooseGame);
    EXPECT_EQ(modes.Mode(), ProgramMode::kBrowser);
    static_cast<void>(modes.Take(ModeInput::kBack, kDarkSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking) << "back to where the browser was opened";
}

TEST(ProgramModes, TurnOffStaysInTheRoomOrOpensTheBrowser) {
    ProgramModes modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kLeave, kPlayingSet));
    EXPECT_EQ(modes.Take(ModeInput::kTurnOff, kPlayingSet), ModeOrder::kStopGame);
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
    EXPECT_EQ(modes.Take(ModeInput::kTurnOff, kPlayingSetFullScreen), ModeOrder::kStopGame);
    EXPECT_EQ(modes.Mode(), ProgramMode::kBrowser);
}

TEST(ProgramModes, TheMenuLeadsBackToTheGameThatItWasCalledFrom) {
    for (const ModeInput way : {ModeInput::kBack, ModeInput::kMainMenu}) {
        ProgramModes modes = Playing();
        static_cast<void>(modes.Take(ModeInput::kMainMenu, kPlayingSet));
        EXPECT_EQ(modes.Mode(), ProgramMode::kMenu);
        static_cast<void>(modes.Take(ModeInput::kOpenPanel, kPlayingSet));
        static_cast<void>(modes.Take(ModeInput::kBack, kPlayingSet));
        static_cast<void>(modes.Take(way, kPlayingSet));
        EXPECT_EQ(modes.Mode(), ProgramMode::kStanding);
        static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
        static_cast<void>(modes.Take(ModeInput::kMainMenu, kPlayingSet));
        static_cast<void>(modes.Take(way, kPlayingSet));
        EXPECT_EQ(modes.Mode(), ProgramMode::kFullScreen);
    }
}

TEST(ProgramModes, TheMenuLeadsIntoTheRoomWhenTheGameHasEnded) {
    ProgramModes modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    static_cast<void>(modes.Take(ModeInput::kMainMenu, kPlayingSet));
    static_cast<void>(modes.Take(ModeInput::kBack, kDarkSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
}

TEST(ProgramModes, TheFirstMenuHasNothingToGoBackTo) {
    ProgramModes modes(ProgramMode::kMenu);
    static_cast<void>(modes.Take(ModeInput::kBack, kNoSet));
    static_cast<void>(modes.Take(ModeInput::kMainMenu, kNoSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kMenu);
}

TEST(ProgramModes, AGameThatEndsByItselfLeavesThePlayerInTheRoom) {
    ProgramModes modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    static_cast<void>(modes.Take(ModeInput::kGameEnded, kDarkSet));
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
}

TEST(ProgramModes, ExitGameTurnsTheSetOff) {
    ProgramModes modes = Playing();
    EXPECT_EQ(modes.Take(ModeInput::kExitGame, kPlayingSet), ModeOrder::kStopGame);
    EXPECT_EQ(modes.Mode(), ProgramMode::kWalking);
    modes = Playing();
    static_cast<void>(modes.Take(ModeInput::kTelevision, kPlayingSet));
    EXPECT_EQ(modes.Take(ModeInput::kExitGame, kPlayingSetFullScreen), ModeOrder::kStopGame);
    EXPECT_EQ(modes.Mode(), ProgramMode::kBrowser);
}

// From the main menu every mode can be reached, and from every mode the main menu.
TEST(ProgramModes, NoModeIsADeadEnd) {
    const auto reached = [](ProgramMode from) {
        std::set<ProgramMode> all{from};
        for (size_t before = 0; before != all.size();) {
            before = all.size();
            for (const MODE_WAY& way : ModeWays()) {
                if (all.contains(way.from)) {
                    all.insert(way.to);
                }
            }
        }
        return all;
    };
    for (const ProgramMode mode :
         {ProgramMode::kMenu, ProgramMode::kPanel, ProgramMode::kBrowser, ProgramMode::kWalking,
          ProgramMode::kStanding, ProgramMode::kFullScreen}) {
        EXPECT_TRUE(reached(ProgramMode::kMenu).contains(mode));
        EXPECT_TRUE(reached(mode).contains(ProgramMode::kMenu));
    }
}

// A row behind one that always fits would never count.
TEST(ProgramModes, EveryRowOfTheTableCounts) {
    const auto ways = ModeWays();
    for (size_t i = 0; i < ways.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            const bool same = ways[j].from == ways[i].from && ways[j].input == ways[i].input;
            EXPECT_FALSE(same &&
                         (ways[j].guard == ModeGuard::kAlways || ways[j].guard == ways[i].guard))
                << "row " << i;
        }
    }
}

} // namespace
