// The whole program: every way between menu, panels, browser and room, by keys and mouse.
#include "front/program_rig.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/window_ex.h"
#include "host/host_data.h"
#include "screens/benchmark.h"
#include "screens/options.h"

#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

using testing::HasSubstr;

namespace {

using ProgramScreenTest = ProgramTest;

// A clock on which a benchmark is over after a few frames. Whenever its thread looks at it, the player presses
// keys.
std::thread::id gMain;
std::atomic<int64_t> gClock{0};
std::atomic<int> gLooks{0};

int64_t HastyClock() {
    if (std::this_thread::get_id() == gMain) {
        return gClock += 1000;
    }
    ++gLooks;
    for (const SDL_Scancode key : {SDL_SCANCODE_RETURN, SDL_SCANCODE_ESCAPE}) {
        Key(key, true);
        Key(key, false);
    }
    return gClock += 1000000;
}

} // namespace

TEST_F(ProgramScreenTest, AFreshHomeShowsTheMenuWithTheFocusOnItsFirstButton) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    EXPECT_FALSE(InputWalkingRoom());
    EXPECT_EQ(CGhostManager::Get().FocusWindow(),
              program->Menu().MenuButton(kPanelBrowser)->window);
    EXPECT_FALSE(program->Menu().BackButton()->IsVisible());
    EXPECT_EQ(CGhostMessageBox::Count(), 0u) << "1280 by 720 units are enough";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu) << "there is nothing to go back to";
}

TEST_F(ProgramScreenTest, OurOwnGamesComeWithAStartThatCanWriteThem) {
    folder.Write("nes", std::string_view("in the way"));
    {
        Application application;
        ASSERT_NE(Open(application), nullptr);
    }
    EXPECT_EQ(Settings().GetInt(L"library_owngames"), 0);
    std::filesystem::remove(folder.Path() / "nes");
    Application application;
    ASSERT_NE(Open(application), nullptr);
    EXPECT_EQ(Settings().GetInt(L"library_owngames"), 1);
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "nes" / "Ecume.game"));
}

TEST_F(ProgramScreenTest, KeysAloneLeadToAGameOfOurOwn) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    EXPECT_EQ(browser->List()->Cell(0, 0)->text, L"Luciole");
    EXPECT_TRUE(browser->StartButton()->IsVisible());
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), browser->List()->window);

    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    EXPECT_EQ(program->Room().Games().TitleOn(key), "Luciole");
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
    EXPECT_EQ(InputActiveKey(), key) << "the machine has the input";
    EXPECT_FALSE(InputWalkingRoom());
    EXPECT_FALSE(browser->StartButton()->window == CGhostManager::Get().FocusWindow());
    EXPECT_EQ(program->Room().HintText(), L"Arrow keys   move      A   1      S   2      "
                                          L"Space   pause      Esc   Walk on      F1   Menu");

    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding) << "the menu does not listen behind it";
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
}

// The picture of the menu's foot, and the box of the chosen game: no key is for them.
TEST_F(ProgramScreenTest, AClickBesideTheControlsLeavesThemTheKeys) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    const auto clickAt = [&](int32_t x, int32_t y) {
        PointAt(x, y, true);
        PointAt(x, y, false);
        return application.Round() && application.Round();
    };
    ASSERT_TRUE(clickAt(100, 340));
    ASSERT_TRUE(OpenBrowser(application, *program));
    GUI_RECT box;
    ASSERT_TRUE(CGhostManager::Get().GetScreenRect(
        program->Menu().Browser()->Content().Box()->window, &box));
    ASSERT_TRUE(clickAt((box.x + box.width / 2) / 2, (box.y + box.height / 2) / 2));
    uint32_t key = 0;
    EXPECT_TRUE(StartChosen(application, *program, key));
}

// What the window's own keys send, as no text is asked for while the list has the focus.
TEST_F(ProgramScreenTest, LettersFindAGameAndFMakesItAFavourite) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser& browser = *program->Menu().Browser();
    const auto title = [&] { return browser.List()->Cell(browser.List()->Selected(), 0)->text; };
    ASSERT_EQ(title(), L"Luciole");
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F));
    EXPECT_EQ(browser.StarButton()->Caption(), L"\x2605");
    ASSERT_TRUE(Press(application, SDL_SCANCODE_T));
    EXPECT_EQ(title(), L"The pond");
    browser.Filters().Name()->SetFocus();
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F));
    EXPECT_EQ(browser.Filters().Name()->Text(), L"") << "a field's text comes apart from the keys";
    Type("f");
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(browser.Filters().Name()->Text(), L"f");
}

TEST_F(ProgramScreenTest, EscapeWalksAndStandsAgain) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    EXPECT_EQ(InputActiveKey(), key);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
    EXPECT_TRUE(InputWalkingRoom());
    EXPECT_THAT(program->Overlay().ShownHints(),
                testing::ElementsAre(L"Main Menu [F10]", L"Load Game [E]", L"Turn off Game [Q]",
                                     L"Attach to TV [ESC]"));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
    EXPECT_FALSE(InputWalkingRoom());
}

TEST_F(ProgramScreenTest, UseOpensTheBrowserForTheSetThatThePlayerLooksAt) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t first = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), first));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
    const uint32_t second = program->Room().Selected().id;
    ASSERT_NE(second, first);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_E));
    ASSERT_TRUE(RunUntilListed(application, *program));
    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    EXPECT_EQ(key, second);
    EXPECT_EQ(program->Room().Games().TitleOn(first), "latch") << "it plays on";
}

// The browser was opened for one set and left; the next time it is for the set that is looked at then.
TEST_F(ProgramScreenTest, ABrowserThatWasLeftForgetsItsSet) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    ASSERT_TRUE(ClickOn(application, program->Menu().Browser()->RoomButton()));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
    const uint32_t first = program->Room().Selected().id;
    ASSERT_TRUE(Press(application, SDL_SCANCODE_E));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
    const uint32_t second = program->Room().Selected().id;
    ASSERT_NE(second, first);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kMenu);
    ASSERT_TRUE(OpenBrowser(application, *program));
    uint32_t key = 0;
    ASSERT_TRUE(StartChosen(application, *program, key));
    EXPECT_EQ(key, second);
}

TEST_F(ProgramScreenTest, TurnOffLeavesTheSetDark) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_Q));
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
    EXPECT_FALSE(SessionRuns(key));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
}

TEST_F(ProgramScreenTest, F10LeadsToTheMenuAndBackFromEveryMode) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    const auto thereAndBack = [&](ProgramMode from) {
        ASSERT_EQ(ModeOf(*program), from);
        ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
        EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
        EXPECT_EQ(InputActiveKey(), 0u) << "no machine listens behind the menu";
        EXPECT_FALSE(InputWalkingRoom());
        ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
        EXPECT_EQ(ModeOf(*program), from);
        ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
        ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
        EXPECT_EQ(ModeOf(*program), from) << "escape does the same";
    };
    ASSERT_NO_FATAL_FAILURE(thereAndBack(ProgramMode::kStanding));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_NO_FATAL_FAILURE(thereAndBack(ProgramMode::kWalking));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    MoveMouse(1, 0);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(ClickOn(application, program->Overlay().Button(4)));
    ASSERT_NO_FATAL_FAILURE(thereAndBack(ProgramMode::kFullScreen));

    // From browser and panels it is the menu alone.
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    ASSERT_TRUE(OpenBrowser(application, *program));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    EXPECT_FALSE(program->Menu().Browser()->IsActive());
    for (const int32_t panel : {kPanelBenchmark, kPanelOptions, kPanelCredits}) {
        ASSERT_TRUE(ClickOn(application, program->Menu().MenuButton(panel)));
        ASSERT_EQ(ModeOf(*program), ProgramMode::kPanel) << panel;
        ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
        EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu) << panel;
        EXPECT_EQ(program->Menu().Panel(), nullptr) << panel;
        EXPECT_NE(CGhostManager::Get().FocusWindow(), nullptr) << panel;
    }
}

TEST_F(ProgramScreenTest, NoMachineHearsTheKeysOfTheMenu) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    const auto hold = [&] {
        Key(SDL_SCANCODE_A, true); // button 1
        const testing::AssertionResult ran = RunFrames(application, 10);
        Key(SDL_SCANCODE_A, false);
        return ran && RunFrames(application, 10) ? testing::AssertionSuccess()
                                                 : testing::AssertionFailure();
    };
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    ASSERT_TRUE(hold());
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"text");
    ASSERT_TRUE(hold());
    box->Dismiss();
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(InputActiveKey(), key);
    ASSERT_TRUE(RunFrames(application, 10));
    EXPECT_EQ(MiddleOf(application), kRed) << "nor those of a message box";
    ASSERT_TRUE(hold());
    EXPECT_TRUE(RunUntilColour(application, kBlue)) << "but its own";
}

TEST_F(ProgramScreenTest, TheStripsButtonsShowTheSetFullScreenAndTheRoomAgain) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    MoveMouse(1, 0);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    CGhostButton* const television = program->Overlay().Button(4);
    EXPECT_EQ(television->Caption(), L"Fullscreen Mode");
    ASSERT_TRUE(ClickOn(application, television));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kFullScreen);
    EXPECT_EQ(InputActiveKey(), key);
    EXPECT_EQ(television->Caption(), L"TV Mode");
    EXPECT_EQ(program->Room().HintText(), L"Esc   Back to the room      F1   Menu");
    ASSERT_TRUE(ClickOn(application, television));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kStanding);
    ASSERT_TRUE(ClickOn(application, program->Overlay().Button(3))); // Exit Game
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking);
    ASSERT_TRUE(RunUntilOff(application, program->Room(), key));
}

TEST_F(ProgramScreenTest, OptionsThatAreClosedAreSaved) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_TAB));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_TAB));
    ASSERT_EQ(CGhostManager::Get().FocusWindow(),
              program->Menu().MenuButton(kPanelOptions)->window);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_EQ(ModeOf(*program), ProgramMode::kPanel);
    auto* const options = dynamic_cast<CGUIOptions*>(program->Menu().Panel());
    ASSERT_NE(options, nullptr);
    options->ListOf(L"emu_startfullscreen")->SetSelected(1, true);
    EXPECT_FALSE(Settings().GetBool(L"emu_startfullscreen")) << "not before it closes";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kMenu);
    EXPECT_EQ(program->Menu().Panel(), nullptr);
    EXPECT_TRUE(Settings().GetBool(L"emu_startfullscreen"));
    SettingsStore stored;
    RegisterDefaultSettings(stored);
    std::vector<uint8_t> document;
    std::string error;
    ASSERT_TRUE(ReadFile(folder.Path() / "config.xml", document, error, 1 << 20)) << error;
    ASSERT_TRUE(stored.Load(document.data(), document.size(), error)) << error;
    EXPECT_TRUE(stored.GetBool(L"emu_startfullscreen"));
}

TEST_F(ProgramScreenTest, KeysOfTheBenchmarksStandstillDoNothing) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(ClickOn(application, program->Menu().MenuButton(kPanelBenchmark)));
    const auto* const panel = dynamic_cast<const CGUIBenchmark*>(program->Menu().Panel());
    ASSERT_NE(panel, nullptr);
    gMain = std::this_thread::get_id();
    gClock = HostClock().nowMicroseconds();
    gLooks = 0;
    HostSetClock({HastyClock, nullptr});
    EXPECT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    EXPECT_TRUE(RunUntil(application, [&] { return panel->Results()->RowCount() > 0; }));
    const int looks = gLooks;
    for (int round = 0; round < 10; ++round) {
        EXPECT_TRUE(application.Round());
    }
    HostSetClock({});
    EXPECT_GT(looks, 0);
    EXPECT_EQ(gLooks, looks) << "no other run began";
    ASSERT_EQ(program->Menu().Panel(), panel) << "the results are still there";
    EXPECT_GT(panel->Results()->RowCount(), 0);
}

TEST_F(ProgramScreenTest, QuitEndsTheRoundsAlsoWithAGameOn) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t key = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), key));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    program->Menu().MenuButton(kPanelQuit)->SetFocus();
    Key(SDL_SCANCODE_RETURN, true);
    Key(SDL_SCANCODE_RETURN, false);
    bool ended = false;
    for (int rounds = 0; rounds < 5 && !ended; ++rounds) {
        ended = !application.Round();
    }
    EXPECT_TRUE(ended);
    application.Stop();
    EXPECT_FALSE(SessionRuns(key));
}

TEST_F(ProgramScreenTest, AGameThatCannotBeReadIsToldAndTheBrowserStays) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    CGUIRomBrowser* const browser = program->Menu().Browser();
    for (const auto& file : std::filesystem::directory_iterator(folder.Path() / "sms")) {
        if (file.path().extension() == ".game") {
            folder.Write("sms/" + file.path().filename().string(), std::vector<uint8_t>{1, 2, 3});
        }
    }
    ASSERT_TRUE(Press(application, SDL_SCANCODE_RETURN));
    ASSERT_EQ(CGhostMessageBox::Count(), 1u);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser);
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser) << "the message goes first";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kBrowser) << "one escape closes one thing";
    EXPECT_EQ(CGhostManager::Get().FocusWindow(), browser->List()->window);
}

// The mouse is captured while walking: it comes free, so that the message can be closed.
TEST_F(ProgramScreenTest, AMessageOverTheRoomIsClosedBeforeThePlayerGoesOn) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    ASSERT_TRUE(OpenBrowser(application, *program));
    ASSERT_TRUE(ClickOn(application, program->Menu().Browser()->RoomButton()));
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(InputWalkingRoom());
    CGhostMessageBox::Show(L"Title", L"text");
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(InputWalkingRoom());
    const VECTOR3 from = program->Room().Camera().Position();
    Key(SDL_SCANCODE_W, true);
    for (int rounds = 0; rounds < 10; ++rounds) {
        ASSERT_TRUE(application.Round());
    }
    Key(SDL_SCANCODE_W, false);
    EXPECT_EQ(program->Room().Camera().Position(), from) << "nobody walks meanwhile";
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_EQ(ModeOf(*program), ProgramMode::kWalking) << "one escape closes one thing";
    EXPECT_TRUE(InputWalkingRoom());
}

TEST_F(ProgramScreenTest, TextIsAskedForOnlyWhileAFieldHasTheFocus) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    EXPECT_FALSE(SDL_IsTextInputActive());
    ASSERT_TRUE(OpenBrowser(application, *program));
    EXPECT_FALSE(SDL_IsTextInputActive());
    CGUIRomBrowser* const browser = program->Menu().Browser();
    const int32_t all = browser->List()->RowCount();
    ASSERT_GT(all, 1);
    browser->Filters().Name()->SetFocus();
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(SDL_IsTextInputActive());
    for (const char* const letter : {"l", "u", "c", "i", "o"}) {
        Type(letter);
    }
    ASSERT_TRUE(RunUntil(application, [&] { return browser->List()->RowCount() == 1; }));
    EXPECT_EQ(browser->List()->Cell(0, 0)->text, L"Luciole");
    ASSERT_TRUE(Press(application, SDL_SCANCODE_F10));
    EXPECT_FALSE(SDL_IsTextInputActive());
}

TEST_F(ProgramScreenTest, ADroppedGamePlaysFromTheMenuAndInTheRoom) {
    Application application;
    ProgramScreen* const program = Open(application);
    ASSERT_NE(program, nullptr);
    uint32_t first = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), first));
    EXPECT_EQ(program->Room().Games().TitleOn(first), "latch");
    ASSERT_TRUE(Press(application, SDL_SCANCODE_ESCAPE));
    ASSERT_TRUE(Press(application, SDL_SCANCODE_PAGEDOWN));
    const uint32_t looked = program->Room().Selected().id;
    ASSERT_NE(looked, first);
    uint32_t second = 0;
    ASSERT_TRUE(PlayDropped(application, *program, LatchGame(), second));
    EXPECT_EQ(second, looked) << "on the set that the player looks at";
    EXPECT_TRUE(SessionRuns(first));
    EXPECT_TRUE(SessionRuns(second));
    EXPECT_EQ(program->Room().Games().Count(), 0u) << "no image is kept for later";
}
