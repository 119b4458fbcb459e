// What has the keys: a message box before everything else, in every mode; then what lies over a screen, one escape for
// each.
#include "front/program_rig.h"
#include "front/virtual_joystick.h"
#include "gui/edit.h"

#include <memory>

namespace {

class ProgramMessages : public ProgramTest {
protected:
    // From the menu, to each of the modes.
    static void GoTo(Application& application, ProgramScreen& program, ProgramMode mode) {
        RoomScreen& room = program.Room();
        if (mode == ProgramMode::kPanel) {
            program.Menu().OnMenu(kPanelCredits);
        } else if (mode == ProgramMode::kBrowser) {
            ASSERT_TRUE(OpenBrowser(application, program));
        } else if (mode != ProgramMode::kMenu) {
            ASSERT_TRUE(OpenBrowser(application, program));
            room.Play(kFrontSet, Opened("demo:sms-luciole"));
            static_cast<void>(room.Take(ModeInput::kGameStarted));
            ASSERT_TRUE(RunUntilOn(application, room, kFrontSet));
            ASSERT_TRUE(application.Round()); // which sees that it is on
            static_cast<void>(room.Take(mode == ProgramMode::kWalking      ? ModeInput::kLeave
                                        : mode == ProgramMode::kFullScreen ? ModeInput::kTelevision
                                                                           : ModeInput::kUse));
        }
        for (int rounds = 0; rounds < 3; ++rounds) {
            ASSERT_TRUE(application.Round());
        }
        ASSERT_EQ(ModeOf(program), mode);
    }
};

constexpr ProgramMode kModes[] = {ProgramMode::kMenu,     ProgramMode::kPanel,
                                  ProgramMode::kBrowser,  ProgramMode::kWalking,
                                  ProgramMode::kStanding, ProgramMode::kFullScreen};

} // namespace

TEST_F(ProgramMessages, AMessageTakesEveryKeyInEveryMode) {
    for (const ProgramMode mode : kModes) {
        SCOPED_TRACE(static_cast<int>(mode));
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_NO_FATAL_FAILURE(GoTo(application, *program, mode));
        const GHOSTMANAGER_WINDOW* const focus = CGhostManager::Get().FocusWindow();
        const uint32_t set = program->Room().Selected().id;
        const GAME_VIEW view = application.View();
        const bool lamp = application.CeilingLight();

        ASSERT_NE(CGhostMessageBox::Show(L"Title", L"text"), nullptr);
        ASSERT_TRUE(application.Round());
        for (const SDL_Scancode key :
             {SDL_SCANCODE_F10, SDL_SCANCODE_F2, SDL_SCANCODE_F3, SDL_SCANCODE_F4, SDL_SCANCODE_F5,
              SDL_SCANCODE_F6, SDL_SCANCODE_E, SDL_SCANCODE_Q, SDL_SCANCODE_PAGEDOWN,
              SDL_SCANCODE_PAGEUP, SDL_SCANCODE_TAB, SDL_SCANCODE_DOWN, SDL_SCANCODE_F}) {
            ASSERT_TRUE(Press(application, key));
            EXPECT_EQ(ModeOf(*program), mode) << key;
            EXPECT_EQ(CGhostMessageBox::Count(), 1u) << key;
            EXPECT_EQ(InputActiveKey(), 0u) << key;
        }
        Click(SDL_BUTTON_MIDDLE);
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(ModeOf(*program), mode) << "nor the middle button";
        EXPECT_EQ(program->Room().Selected().id, set);
        EXPECT_EQ(application.View(), view);
        EXPECT_EQ(application.CeilingLight(), lamp);

        ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(CGhostMessageBox::Count(), 0u);
        EXPECT_EQ(ModeOf(*program), mode) << "one escape closes one thing";
        EXPECT_EQ(CGhostManager::Get().FocusWindow(), focus) << "as before";
    }
}

TEST_F(ProgramMessages, EscapeClosesTheWindowOfAddedGamesAndNothingBelowIt) {
    for (const ProgramMode mode : {ProgramMode::kStanding, ProgramMode::kFullScreen}) {
        SCOPED_TRACE(static_cast<int>(mode));
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        ASSERT_NO_FATAL_FAILURE(GoTo(application, *program, mode));
        Drop(folder.Write("letter.txt", std::string_view("no game")).string());
        ASSERT_TRUE(RunUntil(application, [&] {
            return program->Adding().IsShown() && !program->Adding().Works();
        }));
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(InputActiveKey(), 0u) << "the window has the keys, and no machine";
        ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
        EXPECT_FALSE(program->Adding().IsShown());
        EXPECT_EQ(ModeOf(*program), mode);
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(InputActiveKey(), kFrontSet) << "the game goes on";
    }
}

TEST_F(ProgramMessages, AWindowOfAddedGamesUnderAMessageComesAfterIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"text");
    Drop(folder.Write("letter.txt", std::string_view("no game")).string());
    ASSERT_TRUE(RunUntil(
        application, [&] { return program->Adding().IsShown() && !program->Adding().Works(); }));
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), box->Button()->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_TRUE(program->Adding().IsShown());
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), program->Adding().Button()->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_FALSE(program->Adding().IsShown());
}

TEST_F(ProgramMessages, EscapeInTheFieldOfANameClearsItThenLeavesIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    CGhostEdit* const name = browser->Filters().Name();
    const int32_t all = browser->List()->RowCount();
    name->SetFocus();
    ASSERT_TRUE(application.Round());
    Type("x");
    ASSERT_TRUE(RunUntil(application, [&] { return browser->List()->RowCount() < all; }));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    EXPECT_EQ(name->Text(), L"");
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), name->window);
    ASSERT_TRUE(RunUntil(application, [&] { return browser->List()->RowCount() == all; }));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), browser->List()->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
}

// The window of a scan is the browser's: it does not lie over the room, and is there again with the browser.
TEST_F(ProgramMessages, WhatAScanTellsStaysInTheBrowser) {
    folder.Write("sms/own.sms", LatchingRom()); // is converted
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    ScanWindow& scan = program->Menu().Browser()->Scan();
    ASSERT_TRUE(RunUntil(application, [&] { return scan.Finish()->IsVisible(); }));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    EXPECT_FALSE(scan.IsShown());
    EXPECT_NE(CGhostManager::Get().FocusWindow(), scan.Finish()->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    EXPECT_TRUE(scan.IsShown());
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), scan.Finish()->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_FALSE(scan.IsShown());
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser) << "one escape closes one thing";
}

// Held, the direction ends with the list; pressed anew it leads on.
TEST_F(ProgramMessages, AHeldDirectionStopsAtTheListsLastRow) {
    HearControllersInBackground();
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    const auto pad = std::make_unique<VirtualJoystick>(kController);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGhostListView* const list = program->Menu().Browser()->List();
    const int32_t last = list->RowCount() - 1;
    ASSERT_GT(last, 0);
    pad->Button(kDown, true);
    ASSERT_TRUE(RunUntil(application, [&] { return list->Selected() == last; }));
    const auto since = std::chrono::steady_clock::now();
    ASSERT_TRUE(RunUntil(application, [&] { // far longer than a repeat takes
        return std::chrono::steady_clock::now() - since > std::chrono::milliseconds(400);
    }));
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), list->window);
    pad->Button(kDown, false);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    pad->Button(kDown, true);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    EXPECT_NE(CGhostManager::Get().FocusWindow(), list->window);
}

// With the next system the options of this one's machine end, and with them the control that had the focus.
TEST_F(ProgramMessages, WhenTheControlWithTheFocusEndsTheListHasIt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    CGhostManager& manager = CGhostManager::Get();
    ASSERT_TRUE(manager.MoveFocus(GUI_DIRECTION::kDown));
    ASSERT_NE(manager.FocusWindow(), browser->List()->window);
    browser->SelectSystem(1, -1);
    ASSERT_TRUE(RunUntilListed(application, *program));
    EXPECT_EQ(manager.FocusWindow(), browser->List()->window);
}
