// The mouse in tables of situations: who is hit where, with a capture, with a modal window, with what is hidden;
// and what one record of several events brings about.
#include "gui/gui_rig.h"

#include <algorithm>
#include <functional>

namespace {

// What a situation consists of, beside the place of the cursor.
enum class With : uint8_t {
    kNothing,
    kPanelCaptured,      // by a press in its client area
    kPanelFrameCaptured, // by a press in its frame
    kChildCaptured,
    kPanelModal,
    kChildModal,
    kPanelHidden,
    kChildHidden,
    kCapturedChildHidden, // while it has the capture
    kOwned                // a window that floats for the panel, which is modal
};

// On the screen: `back` at (0, 0), 400 by 300. In front of it `panel` at (50, 50), 200 by 150, with a frame of 5,
// so that its client area is (55, 55) to (245, 195). In that `child` at (65, 65), 40 by 30, `corner` at (235, 185),
// 50 by 50, of which 10 by 10 are seen, and in the panel's frame `bar` at (60, 50), 100 by 5.
class HitTest : public GuiTest {
protected:
    void Build() {
        Make("back", nullptr, {0, 0, 400, 300});
        panel = Make("panel", nullptr, {50, 50, 200, 150});
        Frame(panel, 5);
        child = Make("child", panel, {10, 10, 40, 30});
        Make("corner", panel, {180, 130, 50, 50});
        Make("bar", panel, {10, 0, 100, 5}, true);
    }
    void PressAt(int32_t x, int32_t y) {
        now += 1000;
        MoveTo(x, y);
        Press();
    }
    void Prepare(With with) {
        switch (with) {
        case With::kNothing: break;
        case With::kPanelCaptured: PressAt(200, 150); break;
        case With::kPanelFrameCaptured: PressAt(52, 150); break;
        case With::kChildCaptured: PressAt(70, 70); break;
        case With::kPanelModal: manager.SetModal(panel); break;
        case With::kChildModal: manager.SetModal(child); break;
        case With::kPanelHidden: manager.ShowWindow(panel, false); break;
        case With::kChildHidden: manager.ShowWindow(child, false); break;
        case With::kCapturedChildHidden:
            PressAt(70, 70);
            manager.ShowWindow(child, false);
            break;
        case With::kOwned:
            manager.SetOwner(Make("float", nullptr, {300, 100, 50, 50}), panel);
            manager.SetModal(panel);
            break;
        }
        MoveTo(500, 500); // so that every row begins over nothing
        Told();
    }

    GHOSTMANAGER_WINDOW* panel = nullptr;
    GHOSTMANAGER_WINDOW* child = nullptr;
};

using Hit = HitTest;
using InputRecord = GuiTest;

struct ROW {
    With with;
    int32_t x, y;
    const char* told; // the last that is told; empty: nothing
};

constexpr ROW kRows[] = {
  // The back, up to where it ends.
    {With::kNothing,             0,   0,   "back mousemove 0 0"     },
    {With::kNothing,             49,  100, "back mousemove 49 100"  },
    {With::kNothing,             250, 100, "back mousemove 250 100" },
    {With::kNothing,             399, 299, "back mousemove 399 299" },
    {With::kNothing,             400, 100, ""                       },
    {With::kNothing,             100, 300, ""                       },
    {With::kNothing,             -1,  0,   ""                       },
 // The panel's frame and its client area, both half open.
    {With::kNothing,             50,  100, "panel framemove 0 50"   },
    {With::kNothing,             54,  100, "panel framemove 4 50"   },
    {With::kNothing,             55,  100, "panel mousemove 0 45"   },
    {With::kNothing,             244, 100, "panel mousemove 189 45" },
    {With::kNothing,             245, 100, "panel framemove 195 50" },
    {With::kNothing,             249, 199, "panel framemove 199 149"},
    {With::kNothing,             249, 200, "back mousemove 249 200" },
 // Children win, cut to the client area; a window of the frame to the outer one.
    {With::kNothing,             65,  65,  "child mousemove 0 0"    },
    {With::kNothing,             104, 94,  "child mousemove 39 29"  },
    {With::kNothing,             105, 94,  "panel mousemove 50 39"  },
    {With::kNothing,             244, 194, "corner mousemove 9 9"   },
    {With::kNothing,             245, 194, "panel framemove 195 144"},
    {With::kNothing,             60,  50,  "bar mousemove 0 0"      },
    {With::kNothing,             160, 52,  "panel framemove 110 2"  },
 // With a capture its window alone is told, wherever the cursor is.
    {With::kPanelCaptured,       70,  70,  "panel mousemove 15 15"  },
    {With::kPanelCaptured,       52,  100, "panel mousemove -3 45"  },
    {With::kPanelCaptured,       400, 10,  "panel mousemove 345 -45"},
    {With::kPanelFrameCaptured,  100, 100, "panel framemove 50 50"  },
    {With::kPanelFrameCaptured,  10,  10,  "panel framemove -40 -40"},
    {With::kChildCaptured,       300, 250, "child mousemove 235 185"},
    {With::kChildCaptured,       52,  100, "child mousemove -13 35" },
 // A modal window and what is in it take all; its ancestors do not.
    {With::kPanelModal,          10,  10,  ""                       },
    {With::kPanelModal,          52,  100, "panel framemove 2 50"   },
    {With::kPanelModal,          70,  70,  "child mousemove 5 5"    },
    {With::kPanelModal,          62,  52,  "bar mousemove 2 2"      },
    {With::kChildModal,          70,  70,  "child mousemove 5 5"    },
    {With::kChildModal,          200, 100, ""                       },
    {With::kChildModal,          240, 190, ""                       },
    {With::kOwned,               310, 110, "float mousemove 10 10"  },
    {With::kOwned,               10,  10,  ""                       },
 // What is hidden hides what is in it, and nothing stands in for it.
    {With::kPanelHidden,         70,  70,  "back mousemove 70 70"   },
    {With::kPanelHidden,         62,  52,  "back mousemove 62 52"   },
    {With::kChildHidden,         70,  70,  "panel mousemove 15 15"  },
    {With::kCapturedChildHidden, 70,  70,  "panel mousemove 15 15"  },
    {With::kCapturedChildHidden, 10,  10,  "back mousemove 10 10"   },
};

} // namespace

TEST_F(Hit, TheTableOfSituations) {
    for (const ROW& row : kRows) {
        manager.Reset();
        handlers.clear();
        Build();
        Prepare(row.with);
        MoveTo(row.x, row.y);
        const Log told = Told();
        EXPECT_EQ(told.empty() ? "" : told.back(), row.told)
            << "situation " << static_cast<int>(row.with) << " at " << row.x << " " << row.y;
    }
}

TEST_F(Hit, EveryButtonEventGoesWhereTheMoveWent) {
    struct PLACE {
        int32_t x, y;
        const char* down; // with the right button
        const char* up;
        const char* wheel;
    };
    constexpr PLACE kPlaces[] = {
        {70,  70,  "child down 5 5 2",       "child up 5 5 2",       "child wheelup 5 5"      },
        {52,  100, "panel framedown 2 50 1", "panel frameup 2 50 1", "panel framewheelup 2 50"},
        {10,  10,  "back down 10 10 2",      "back up 10 10 2",      "back wheelup 10 10"     },
        {240, 190, "corner down 5 5 2",      "corner up 5 5 2",      "corner wheelup 5 5"     },
    };
    for (const PLACE& place : kPlaces) {
        manager.Reset();
        handlers.clear();
        Build();
        MoveTo(place.x, place.y);
        Told();
        now += 1000;
        Press(2);
        EXPECT_EQ(Told().back(), place.down);
        Release(2);
        EXPECT_EQ(Told().back(), place.up);
        Wheel(true);
        EXPECT_EQ(Told().back(), place.wheel);
        Release(2);
        EXPECT_EQ(Told().back(), place.up) << "a release without a press, as it comes";
    }
}

TEST_F(InputRecord, EventsOfOneRecordComeInTheirOrderAndAreWrittenBack) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    GUI_INPUT_RECORD record;
    record.moved = record.wheel = record.buttonDown = record.buttonUp = true;
    record.button = 1;
    record.dx = 10;
    record.dy = 20;
    manager.PostInput(record, now);
    EXPECT_EQ(Told(), (Log{"a enter", "a mousemove 10 20", "a activate", "a focus",
                           "a wheelup 10 20", "a down 10 20 1", "a up 10 20 1"}));
    EXPECT_FALSE(record.moved || record.wheel || record.buttonDown || record.buttonUp);
    EXPECT_EQ(manager.CaptureWindow(), nullptr);
    EXPECT_EQ(manager.FocusWindow(), window);
}

TEST_F(InputRecord, WhatIsNotConsumedStays) {
    Make("a", nullptr, {0, 0, 100, 100});
    GUI_INPUT_RECORD record;
    record.moved = record.wheel = record.buttonDown = true;
    record.button = 1;
    record.dx = record.dy = 500;
    manager.PostInput(record, now);
    EXPECT_TRUE(record.moved && record.wheel && record.buttonDown);
    EXPECT_EQ(Told(), Log{});
}

TEST_F(InputRecord, ADoubleClickNeedsTheSameButtonAndEveryPressCounts) {
    Make("a", nullptr, {0, 0, 100, 100});
    MoveTo(10, 10);
    Told();
    struct STEP {
        uint64_t after; // milliseconds
        int32_t button;
        const char* told;
    };
    constexpr STEP kSteps[] = {
        {1000, 1, "a down 10 10 1"  },
        {300,  1, "a double 10 10 1"},
        {300,  1, "a double 10 10 1"}, // the time is that of any press
        {301,  1, "a down 10 10 1"  },
        {0,    2, "a down 10 10 2"  },
        {0,    1, "a down 10 10 1"  },
        {0,    1, "a double 10 10 1"},
    };
    for (const STEP& step : kSteps) {
        now += step.after;
        Press(step.button);
        EXPECT_EQ(Told().back(), step.told);
        Release(step.button);
        Told();
    }
}

TEST_F(InputRecord, ADoubleClickInTheClientAreaEndsACaptureOfTheFrame) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    Frame(window, 10);
    MoveTo(50, 50);
    Press();
    Release();
    Told();
    Press();
    EXPECT_EQ(Told().back(), "a double 40 40 1");
    EXPECT_EQ(manager.CaptureWindow(), nullptr) << "it is no press";
    MoveTo(5, 5);
    EXPECT_EQ(Told().back(), "a framemove 5 5");
}

TEST_F(InputRecord, TheTipHidesWithAnyMoveOrButtonThoughNothingIsHit) {
    GHOSTMANAGER_WINDOW* const tip = Make("tip", nullptr, {500, 500, 10, 10});
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    manager.SetToolTipWindow(tip);
    manager.SetWindowToolTip(window, L"help");
    for (int i = 0; i < 3; ++i) {
        MoveTo(10, 10);
        Told();
        manager.Tick(1000001);
        ASSERT_EQ(Told(), (Log{"a hover", "tip showtip help"})) << i;
        i == 0   ? static_cast<void>(MoveTo(300, 300))
        : i == 1 ? static_cast<void>(Press())
                 : Release();
        EXPECT_EQ(Told().front(), "tip hidetip") << i;
        Release();
        Told();
    }
    MoveTo(10, 10);
    manager.Tick(1000001);
    Told();
    Wheel(true);
    KeyDown(4);
    for (const std::string& line : Told()) {
        EXPECT_NE(line, "tip hidetip") << "neither a wheel nor a key is activity of the mouse";
    }
}

TEST_F(InputRecord, NoTipAppearsWhileAButtonIsHeld) {
    GHOSTMANAGER_WINDOW* const tip = Make("tip", nullptr, {500, 500, 10, 10});
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    manager.SetToolTipWindow(tip);
    manager.SetWindowToolTip(window, L"help");
    MoveTo(10, 10);
    Press();
    Told();
    manager.Tick(2000000);
    EXPECT_EQ(Told(), Log{});
    Release();
    Told();
    manager.Tick(1000001);
    EXPECT_EQ(Told(), (Log{"a hover", "tip showtip help"}));
}

TEST_F(InputRecord, TheSecondHandlerOfAChainIsToldOfTheMouseToo) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    RecordingHandler second(log, "second");
    window->handler->next = &second;
    MoveTo(10, 10);
    Press();
    EXPECT_EQ(Told(), (Log{"a enter", "second enter", "a mousemove 10 10", "second mousemove 10 10",
                           "a activate", "second activate", "a focus", "second focus",
                           "a down 10 10 1", "second down 10 10 1"}));
    window->handler->next = nullptr;
}

TEST_F(InputRecord, WhatAHandlerQueuesRunsInTheSameTick) {
    Log order;
    manager.QueueEvent([&] {
        order.emplace_back("first");
        manager.QueueEvent([&] { order.emplace_back("third"); });
    });
    manager.QueueEvent([&] { order.emplace_back("second"); });
    manager.Tick(0);
    EXPECT_EQ(order, (Log{"first", "second", "third"}));
}

// Near the upper edge of the screen a tip lies under the cursor.
TEST_F(InputRecord, ATipUnderTheCursorLetsTheMouseThrough) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const tip = Make("tip", nullptr, {0, 0, 50, 50});
    Make("text", tip, {0, 0, 50, 50});
    manager.SetToolTipWindow(tip);
    manager.SetWindowToolTip(window, L"help");
    MoveTo(10, 10);
    EXPECT_EQ(Told(), (Log{"a enter", "a mousemove 10 10"}));
    manager.Tick(1000001);
    EXPECT_EQ(Told(), (Log{"a hover", "tip showtip help"}));
    Press();
    Release();
    const Log told = Told();
    EXPECT_NE(std::find(told.begin(), told.end(), "a down 10 10 1"), told.end());
    EXPECT_NE(std::find(told.begin(), told.end(), "a up 10 10 1"), told.end());
}

TEST_F(InputRecord, TheTipHidesWithItsWindow) {
    struct CASE {
        const char* what;
        std::function<void(GHOSTMANAGER_WINDOW*)> end;
    };
    const std::vector<CASE> cases = {
        {"hidden",    [&](GHOSTMANAGER_WINDOW* window) { manager.ShowWindow(window, false); }},
        {"destroyed", [&](GHOSTMANAGER_WINDOW* window) { manager.DestroyWindow(window); }    },
        {"covered",
         [&](GHOSTMANAGER_WINDOW*) {
             Make("cover", nullptr, {0, 0, 200, 200});
         }                                                                                   },
        {"moved",
         [&](GHOSTMANAGER_WINDOW* window) {
             manager.SetWindowPos(window, 700, 300, kKeepValue, kKeepValue);
         }                                                                                   },
        {"modal",
         [&](GHOSTMANAGER_WINDOW*) {
             manager.SetModal(Make("box", nullptr, {600, 0, 50, 50}));
         }                                                                                   },
    };
    for (const CASE& row : cases) {
        manager.Reset();
        GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
        GHOSTMANAGER_WINDOW* const tip = Make("tip", nullptr, {500, 500, 10, 10});
        manager.SetToolTipWindow(tip);
        manager.SetWindowToolTip(window, L"help");
        MoveTo(10, 10);
        Told();
        manager.Tick(1000001);
        Told();
        row.end(window);
        int hidden = 0;
        int shown = 0;
        for (int i = 0; i < 10; ++i) {
            manager.Tick(500000);
            for (const std::string& line : Told()) {
                hidden += line == "tip hidetip" ? 1 : 0;
                shown += line.starts_with("tip showtip") ? 1 : 0;
            }
        }
        EXPECT_EQ(hidden, 1) << row.what;
        EXPECT_EQ(shown, 0) << row.what;
    }
}
