// Saved states over the game alone in its window.
#include "front/saved_states.h"
#include "front/window_rig.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "host/session_list.h"

namespace {

class WindowSlots : public WindowTest {
protected:
    void TearDown() override {
        CGhostManager::Get().Reset();
        WindowTest::TearDown();
    }

    static testing::AssertionResult Press(Application& application, SDL_Scancode key) {
        for (const bool down : {true, false}) {
            SDL_Event event{};
            event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
            event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
            event.key.keysym.scancode = key;
            SDL_PushEvent(&event);
            if (!application.Round()) {
                return testing::AssertionFailure() << "the program ended";
            }
        }
        return testing::AssertionSuccess();
    }

    static bool IsPaused() {
        const SessionPin session = PinSession(kFrontTelevision);
        return session && session->paused;
    }
};

} // namespace

TEST_F(WindowSlots, TheGameWaitsWhileItsSlotsAreShown) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F9));
    ASSERT_NE(application.States(), nullptr);
    CGUISlotsPanel& panel = application.States()->Panel();
    ASSERT_TRUE(RunUntil(application, [&] { return panel.IsShown() && !panel.Waits(); }));
    EXPECT_TRUE(IsPaused());

    // The first slot is empty.
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_TRUE(RunUntil(application, [&] { return !panel.Waits(); }));
    EXPECT_EQ(panel.Message()->Text(), L"Saved to slot 1");
    ASSERT_TRUE(Press(application, SDL_SCANCODE_A)); // the game's button 1
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(panel.IsShown());
    ASSERT_TRUE(RunUntil(application, [] { return !IsPaused(); }));
    ASSERT_TRUE(RunFrames(application, 10));
    EXPECT_EQ(MiddleOf(application), kRed) << "the game has not seen the button";

    // It sees it now, and loading brings the red screen back.
    ASSERT_TRUE(Press(application, SDL_SCANCODE_A));
    ASSERT_TRUE(RunUntilColour(application, kBlue));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F9));
    ASSERT_TRUE(RunUntil(application, [&] { return panel.IsShown() && !panel.Waits(); }));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_TRUE(RunUntil(application, [&] { return !panel.IsShown(); }));
    EXPECT_TRUE(RunUntilColour(application, kRed));
}

TEST_F(WindowSlots, WithoutAGameThereAreNone) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F9));
    EXPECT_FALSE(application.States()->IsShown());
}
