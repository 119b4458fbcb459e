// The whole program in the window, for the tests that walk through it: from a fresh home folder, by keys, mouse and
// what the toolkit shows.
#pragma once

#include "front/program_screen.h"
#include "front/room_rig.h"
#include "gui/button.h"
#include "gui/list_view.h"
#include "gui/manager.h"
#include "gui/message_box.h"
#include "screens/rom_browser.h"

#include <string>

class ProgramTest : public RoomTest {
protected:
    void SetUp() override {
        RoomTest::SetUp();
        CGhostManager::Get().Reset();
        // Two of the toolkit's units are a pixel: a screen of 1280 by 720.
        Settings().SetInt(L"app_window_width", 640);
        Settings().SetInt(L"app_window_height", 360);
        Settings().SetBool(L"app_lighting", false);
    }
    void TearDown() override {
        CGhostManager::Get().Reset();
        RoomTest::TearDown();
    }

    // Null after a failure.
    ProgramScreen* Open(Application& application) {
        Start(application);
        if (HasFatalFailure()) {
            return nullptr;
        }
        ProgramScreen* const program = &application.ShowProgram();
        EXPECT_TRUE(application.Round());
        EXPECT_TRUE(application.Round());
        return HasFailure() ? nullptr : program;
    }

    static ProgramMode ModeOf(ProgramScreen& program) { return program.Room().Modes().Mode(); }

    // A key, and a round more, as the screens' wishes are done in the next one.
    static testing::AssertionResult Press(Application& application, SDL_Scancode key) {
        const testing::AssertionResult tapped = Tap(application, key);
        return tapped && !application.Round() ? testing::AssertionFailure() << "the program ended"
                                              : tapped;
    }

    // With the left mouse button, in the middle of a window of the toolkit.
    static testing::AssertionResult ClickOn(Application& application, const CGhostButton* button) {
        GUI_RECT place;
        if (!button->IsVisible() || !CGhostManager::Get().GetScreenRect(button->window, &place)) {
            return testing::AssertionFailure() << "it is not shown";
        }
        const double density = CGhostManager::Get().Density();
        const auto x = static_cast<int32_t>((place.x + place.width / 2) * density);
        const auto y = static_cast<int32_t>((place.y + place.height / 2) * density);
        PointAt(x, y, true);
        PointAt(x, y, false);
        for (int rounds = 0; rounds < 2; ++rounds) {
            if (!application.Round()) {
                return testing::AssertionFailure() << "the program ended";
            }
        }
        return testing::AssertionSuccess();
    }

    // From the menu; until the games of the system are listed.
    static testing::AssertionResult OpenBrowser(Application& application, ProgramScreen& program) {
        const testing::AssertionResult pressed = Press(application, SDL_SCANCODE_RETURN);
        return pressed ? RunUntilListed(application, program) : pressed;
    }
    static testing::AssertionResult RunUntilListed(Application& application,
                                                   ProgramScreen& program) {
        return RunUntil(application, [&] {
            CGUIRomBrowser* const browser = program.Menu().Browser();
            return ModeOf(program) == ProgramMode::kBrowser && browser != nullptr &&
                   !browser->Library().ScanRuns() && browser->List()->RowCount() > 0;
        });
    }

    // The game that is chosen in the browser, until its picture is on the set.
    static testing::AssertionResult StartChosen(Application& application, ProgramScreen& program,
                                                uint32_t& key) {
        testing::AssertionResult done = Press(application, SDL_SCANCODE_RETURN);
        key = program.Room().Selected().id;
        if (done && key == 0) {
            return testing::AssertionFailure() << "no set was chosen";
        }
        return done ? RunUntilOn(application, program.Room(), key) : done;
    }

    // The game that shows presses of button 1, on a set before which the player stands; from the menu.
    static testing::AssertionResult PlayDropped(Application& application, ProgramScreen& program,
                                                const std::string& path, uint32_t& key) {
        Drop(path);
        if (!application.Round()) {
            return testing::AssertionFailure() << "the program ended";
        }
        testing::AssertionResult started =
            RunUntil(application, [&] { return ModeOf(program) == ProgramMode::kStanding; });
        key = program.Room().Selected().id;
        return started ? RunUntilOn(application, program.Room(), key) : started;
    }

public:
    static void Drop(const std::string& path) {
        SDL_Event event{};
        event.type = SDL_DROPFILE;
        event.drop.file = SDL_strdup(path.c_str());
        SDL_PushEvent(&event);
    }

    static void Type(const char* text) {
        SDL_Event event{};
        event.type = SDL_TEXTINPUT;
        SDL_strlcpy(event.text.text, text, sizeof event.text.text);
        SDL_PushEvent(&event);
    }
};
