// Saved states in the whole program: from the key to the disk and back.
#include "front/program_rig.h"
#include "front/saved_states.h"
#include "front/virtual_joystick.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "host/session_list.h"
#include "host/state_slots.h"
#include "screens/slot_cell.h"

#include <memory>

namespace {

using Bytes = std::vector<uint8_t>;

class ProgramSlots : public ProgramTest {
protected:
    static Bytes StateOf(uint32_t key) {
        const SessionPin session = PinSession(key);
        if (!session) {
            return {};
        }
        STATE_SNAPSHOT snapshot;
        EXPECT_TRUE(EmuTakeSnapshot(*session, snapshot));
        return snapshot.state;
    }

    static Bytes StateInSlot(uint32_t key, uint32_t slot) {
        const SessionPin session = PinSession(key);
        STATE_SNAPSHOT snapshot;
        std::string error;
        const std::string name = slot < 10 ? "slot-0" : "slot-";
        EXPECT_TRUE(session &&
                    ReadSnapshot(SlotFolder(*session) / (name + std::to_string(slot) + ".state"),
                                 snapshot, error))
            << error;
        return snapshot.state;
    }

    static bool IsPaused(uint32_t key) {
        const SessionPin session = PinSession(key);
        return session && session->paused;
    }

    // The panel, with its list.
    static testing::AssertionResult OpenPanel(Application& application, SavedStates& states) {
        const testing::AssertionResult pressed = Press(application, SDL_SCANCODE_F9);
        return pressed ? RunUntil(application,
                                  [&] { return states.IsShown() && !states.Panel().Waits(); })
                       : pressed;
    }

    // The order in hand has been answered, or has closed the panel.
    static testing::AssertionResult Finish(Application& application, SavedStates& states) {
        return RunUntil(application, [&] { return !states.IsShown() || !states.Panel().Waits(); });
    }

    static testing::AssertionResult PlayOn(Application& application, uint32_t key,
                                           const Bytes& state) {
        return RunUntil(application, [&] { return !IsPaused(key) && StateOf(key) != state; });
    }
};

} // namespace

TEST_F(ProgramSlots, SaveLoadAndUndoBringStatesBackByteForByte) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    SavedStates& states = program->States();

    ASSERT_TRUE(OpenPanel(application, states));
    ASSERT_TRUE(IsPaused(key));
    EXPECT_EQ(InputActiveKey(), 0u) << "the game gets no input";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RIGHT));
    EXPECT_EQ(states.Panel().Chosen(), 2u);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_TRUE(Finish(application, states));
    EXPECT_EQ(states.Panel().Message()->Text(), L"Saved to slot 2");
    EXPECT_TRUE(states.Panel().Cell(2)->HasPicture());
    const Bytes saved = StateOf(key);
    EXPECT_EQ(StateInSlot(key, 2), saved) << "nothing ran between";

    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(states.IsShown());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "escape closed the panel alone";
    ASSERT_TRUE(PlayOn(application, key, saved));

    ASSERT_TRUE(OpenPanel(application, states));
    EXPECT_EQ(states.Panel().Chosen(), 2u) << "the newest";
    const Bytes later = StateOf(key);
    EXPECT_NE(later, saved);
    // A key that is held keeps the game paused, so that what was loaded can be compared.
    Key(SDL_SCANCODE_LSHIFT, true);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_TRUE(RunUntil(application, [&] { return !states.IsShown(); }));
    ASSERT_TRUE(IsPaused(key));
    EXPECT_EQ(StateOf(key), saved);
    Key(SDL_SCANCODE_LSHIFT, false);
    ASSERT_TRUE(PlayOn(application, key, saved));

    ASSERT_TRUE(OpenPanel(application, states));
    Key(SDL_SCANCODE_LSHIFT, true);
    ASSERT_TRUE(ClickOn(application, states.Panel().Button(SlotButton::kUndoLoad)));
    ASSERT_TRUE(RunUntil(application, [&] { return !states.IsShown(); }));
    ASSERT_TRUE(IsPaused(key));
    EXPECT_EQ(StateOf(key), later);
    Key(SDL_SCANCODE_LSHIFT, false);
    ASSERT_TRUE(PlayOn(application, key, later));
}

TEST_F(ProgramSlots, AreOfferedWhereAGameIsPlayedAndNowhereElse) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    SavedStates& states = program->States();
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F9));
    EXPECT_FALSE(states.IsShown()) << "the main menu has no game";

    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    PointAt(30, 30, false);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(ClickOn(application, program->Overlay().Button(6)));
    EXPECT_TRUE(states.IsShown()) << "in the room";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "the panel has all input";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F9));
    EXPECT_FALSE(states.IsShown()) << "its key closes it";
    ASSERT_TRUE(RunUntil(application, [&] { return !IsPaused(key); }));

    program->Room().Take(ModeInput::kTelevision);
    ASSERT_TRUE(application.Round());
    ASSERT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    ASSERT_TRUE(OpenPanel(application, states));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    EXPECT_TRUE(IsPaused(key));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(states.IsShown());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
}

// What is held when the panel closes belongs to the panel.
TEST_F(ProgramSlots, TheGameWaitsUntilTheKeysAreReleased) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(OpenPanel(application, program->States()));
    Key(SDL_SCANCODE_ESCAPE, true);
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(program->States().IsShown());
    EXPECT_TRUE(IsPaused(key));
    Key(SDL_SCANCODE_ESCAPE, false);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(IsPaused(key));
}

TEST_F(ProgramSlots, AnEndedGameTakesThePanelWithIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(OpenPanel(application, program->States()));
    EmuStopSession(key, SessionEnd::kTurnedOff);
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(program->States().IsShown());
}

class ProgramSlotsPad : public ProgramSlots {
protected:
    void SetUp() override {
        ProgramSlots::SetUp();
        HearControllersInBackground();
    }
    void TearDown() override {
        pad.reset();
        ProgramSlots::TearDown();
    }

    testing::AssertionResult Push(Application& application, int button) const {
        pad->Button(button, true);
        const bool goesOn = application.Round();
        pad->Button(button, false);
        if (!goesOn || !application.Round()) {
            return testing::AssertionFailure() << "the program ended";
        }
        return RunUntil(application, [] { return InputPadsDown() == 0; });
    }

    std::unique_ptr<VirtualJoystick> pad;
};

// Buttons of the raw device of kController.
TEST_F(ProgramSlotsPad, AControllerAloneOpensSavesAndGoesBack) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    pad = std::make_unique<VirtualJoystick>(kController);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    SavedStates& states = program->States();
    ASSERT_TRUE(Push(application, kRightClick));
    ASSERT_TRUE(RunUntil(application, [&] { return states.IsShown() && !states.Panel().Waits(); }));
    ASSERT_TRUE(Push(application, kRight));
    EXPECT_EQ(states.Panel().Chosen(), 2u);
    ASSERT_TRUE(Push(application, kSouth));
    ASSERT_TRUE(Finish(application, states));
    EXPECT_EQ(states.Panel().Message()->Text(), L"Saved to slot 2");
    ASSERT_TRUE(Push(application, kEast));
    EXPECT_FALSE(states.IsShown());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
    EXPECT_TRUE(RunUntil(application, [&] { return !IsPaused(key); }));
}
