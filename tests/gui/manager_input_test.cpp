// Input: hit test, capture, modality, double click, focus, tab order, keys.
#include "gui/gui_rig.h"

namespace {

constexpr uint32_t kTab = 43;
constexpr uint32_t kLeftShift = 225;

} // namespace

using ManagerInput = GuiTest;

TEST_F(ManagerInput, TheFrontmostWindowUnderTheCursorGetsTheMouse) {
    Make("back", nullptr, {100, 100, 200, 200});
    GHOSTMANAGER_WINDOW* const front = Make("front", nullptr, {150, 150, 100, 100});
    Make("child", front, {20, 20, 30, 30});
    MoveTo(110, 120);
    EXPECT_EQ(Told(), (Log{"back enter", "back mousemove 10 20"}));
    MoveTo(155, 160);
    EXPECT_EQ(Told(), (Log{"back leave", "front enter", "front mousemove 5 10"}));
    MoveTo(170, 170);
    EXPECT_EQ(Told(), (Log{"front leave", "child enter", "child mousemove 0 0"}));
    MoveTo(200, 200);
    EXPECT_EQ(Told(), (Log{"child leave", "front enter", "front mousemove 50 50"}))
        << "the right and the lower edge are outside";
    MoveTo(500, 500);
    EXPECT_EQ(Told(), (Log{"front leave"}));
    EXPECT_EQ(manager.HoverWindow(), nullptr);
}

TEST_F(ManagerInput, TheCursorStopsSixteenBeforeTheScreenAndAtItsFarEdge) {
    MoveTo(-500, -500);
    EXPECT_EQ(manager.CursorX(), -16);
    EXPECT_EQ(manager.CursorY(), -16);
    MoveTo(5000, 5000);
    EXPECT_EQ(manager.CursorX(), 1280);
    EXPECT_EQ(manager.CursorY(), 720);
    GUI_INPUT_RECORD record;
    record.moved = true;
    record.dx = INT32_MAX;
    record.dy = INT32_MIN;
    manager.PostInput(record, now);
    EXPECT_EQ(manager.CursorX(), 1280);
    EXPECT_EQ(manager.CursorY(), -16);
}

TEST_F(ManagerInput, AChildIsCutToItsParentsClientArea) {
    GHOSTMANAGER_WINDOW* const parent = Make("parent", nullptr, {100, 100, 100, 100});
    Frame(parent, 10);
    Make("child", parent, {-5, 60, 200, 200});
    MoveTo(112, 172);
    EXPECT_EQ(Told(), (Log{"child enter", "child mousemove 7 2"}));
    MoveTo(105, 172);
    EXPECT_EQ(Told(), (Log{"child leave", "parent enter", "parent framemove 5 72"}));
    MoveTo(195, 195);
    EXPECT_EQ(Told(), (Log{"parent framemove 95 95"}));
    Make("bar", parent, {0, 0, 100, 10}, true);
    MoveTo(105, 105);
    EXPECT_EQ(Told(), (Log{"parent leave", "bar enter", "bar mousemove 5 5"}))
        << "a window of the frame lies in the outer rectangle";
}

TEST_F(ManagerInput, APressTakesFocusAndCaptureUntilTheRelease) {
    Make("a", nullptr, {0, 0, 100, 100});
    Make("b", nullptr, {200, 0, 100, 100});
    MoveTo(50, 50);
    Told();
    Press(2);
    EXPECT_EQ(Told(), (Log{"a activate", "a focus", "a down 50 50 2"}));
    MoveTo(250, 60);
    EXPECT_EQ(Told(), (Log{"a mousemove 250 60"})) << "beyond the window, in its own coordinates";
    Release(2);
    EXPECT_EQ(Told(), (Log{"a up 250 60 2"}));
    MoveTo(251, 60);
    EXPECT_EQ(Told(), (Log{"a leave", "b enter", "b mousemove 51 60"}));
    EXPECT_EQ(manager.CaptureWindow(), nullptr);
}

TEST_F(ManagerInput, APressInTheFrameIsAlwaysButtonOne) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    Frame(window, 4);
    MoveTo(2, 50);
    Told();
    Press(2);
    EXPECT_EQ(Told(), (Log{"a activate", "a focus", "a framedown 2 50 1"}));
    MoveTo(50, 50);
    EXPECT_EQ(Told(), (Log{"a framemove 50 50"})) << "the capture was taken in the frame";
    Release(2);
    EXPECT_EQ(Told(), (Log{"a frameup 50 50 1"}));
}

TEST_F(ManagerInput, TheWheelMovesTheFocusInTheClientAreaAlone) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    Frame(window, 4);
    MoveTo(2, 2);
    Told();
    Wheel(true);
    EXPECT_EQ(Told(), (Log{"a framewheelup 2 2"}));
    EXPECT_EQ(manager.FocusWindow(), nullptr);
    MoveTo(20, 20);
    Told();
    Wheel(false);
    EXPECT_EQ(Told(), (Log{"a activate", "a focus", "a wheeldown 16 16"}));
    EXPECT_EQ(manager.FocusWindow(), window);
}

TEST_F(ManagerInput, TwoPressesWithin300MillisecondsAreADoubleClick) {
    Make("a", nullptr, {0, 0, 100, 100});
    MoveTo(10, 10);
    Press();
    Release();
    Told();
    now += 300;
    Press();
    EXPECT_EQ(Told(), (Log{"a double 10 10 1"})) << "and no second press";
    EXPECT_EQ(manager.CaptureWindow(), nullptr);
    Release();
    Told();
    now += 301;
    Press();
    EXPECT_EQ(Told(), (Log{"a down 10 10 1"}));
    Release();
    now += 100;
    Told();
    Press(2);
    EXPECT_EQ(Told(), (Log{"a down 10 10 2"})) << "another button";
}

TEST_F(ManagerInput, ADoubleClickInAFrameGoesOnToAWindowFartherBack) {
    Make("back", nullptr, {0, 0, 300, 300});
    GHOSTMANAGER_WINDOW* const front = Make("front", nullptr, {100, 100, 100, 100});
    Frame(front, 10);
    MoveTo(105, 150);
    Press();
    Release();
    Told();
    Press();
    EXPECT_EQ(Told(), (Log{"front leave", "back enter", "front blur", "front deactivate",
                           "back activate", "back focus", "back double 105 150 1"}));
}

TEST_F(ManagerInput, ConsumedEventsAreWrittenBack) {
    Make("a", nullptr, {0, 0, 100, 100});
    EXPECT_FALSE(MoveTo(10, 10).moved);
    EXPECT_FALSE(Press().buttonDown);
    Release();
    EXPECT_TRUE(MoveTo(500, 500).moved) << "over nothing";
}

TEST_F(ManagerInput, AModalWindowTakesTheInputOfAllOthersUntilItIsDestroyed) {
    Make("a", nullptr, {0, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const box = Make("box", nullptr, {200, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const button = Make("button", box, {10, 10, 20, 20});
    MoveTo(50, 50);
    Press();
    Told();
    EXPECT_TRUE(manager.SetModal(box));
    EXPECT_EQ(manager.CaptureWindow(), nullptr);
    EXPECT_EQ(manager.HoverWindow(), nullptr);
    EXPECT_EQ(manager.FocusWindow(), box);
    Told();
    MoveTo(51, 50);
    Press();
    EXPECT_EQ(Told(), Log{});
    MoveTo(215, 15);
    EXPECT_EQ(Told(), (Log{"button enter", "button mousemove 5 5"}));
    EXPECT_FALSE(manager.SetModal(nullptr));
    EXPECT_EQ(manager.ModalWindow(), box);
    manager.DestroyWindow(box);
    EXPECT_EQ(manager.ModalWindow(), box) << "until the end of a tick";
    Told();
    EXPECT_EQ(manager.ModalWindow(), nullptr);
    EXPECT_FALSE(manager.SetFocus(button)) << "gone with its parent";
    MoveTo(50, 50);
    EXPECT_EQ(Told(), (Log{"a enter", "a mousemove 50 50"}));
}

TEST_F(ManagerInput, FocusTellsTheOldTheTopWindowsAndTheNew) {
    GHOSTMANAGER_WINDOW* const top1 = Make("top1", nullptr, {0, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const a = Make("a", top1, {0, 0, 10, 10});
    GHOSTMANAGER_WINDOW* const b = Make("b", top1, {20, 0, 10, 10});
    GHOSTMANAGER_WINDOW* const top2 = Make("top2", nullptr, {200, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const c = Make("c", top2, {0, 0, 10, 10});
    manager.SetFocus(a);
    EXPECT_EQ(Told(), (Log{"top1 activate", "a focus"}));
    manager.SetFocus(a);
    EXPECT_EQ(Told(), Log{}) << "it has the focus";
    manager.SetFocus(b);
    EXPECT_EQ(Told(), (Log{"a blur", "b focus"}));
    manager.SetFocus(c);
    EXPECT_EQ(Told(), (Log{"b blur", "top1 deactivate", "top2 activate", "c focus"}));
    manager.ShowWindow(top1, false);
    manager.SetFocus(a);
    EXPECT_EQ(manager.FocusWindow(), nullptr) << "hidden windows get no focus";
    EXPECT_EQ(Told(), (Log{"c blur"}));
}

TEST_F(ManagerInput, TabGoesThroughTheVisibleTabStopsAmongTheSiblings) {
    GHOSTMANAGER_WINDOW* const top = Make("top", nullptr, {0, 0, 400, 100});
    std::vector<GHOSTMANAGER_WINDOW*> row;
    for (int i = 0; i < 5; ++i) {
        row.push_back(Make(std::string(1, static_cast<char>('a' + i)), top, {i * 20, 0, 10, 10}));
        manager.SetTabStop(row.back(), i != 1);
    }
    manager.ShowWindow(row[3], false);
    manager.SetFocus(row[0]);
    KeyDown(kTab);
    EXPECT_EQ(manager.FocusWindow(), row[2]);
    KeyDown(kTab);
    EXPECT_EQ(manager.FocusWindow(), row[4]);
    KeyDown(kTab);
    EXPECT_EQ(manager.FocusWindow(), row[0]) << "round";
    KeyDown(kLeftShift);
    KeyDown(kTab);
    EXPECT_EQ(manager.FocusWindow(), row[4]) << "backward";
    KeyUp(kLeftShift);
    for (GHOSTMANAGER_WINDOW* const window : row) {
        manager.SetTabStop(window, window == row[4]);
    }
    KeyDown(kTab);
    EXPECT_EQ(manager.FocusWindow(), row[4]) << "no other tab stop";
    for (const std::string& line : Told()) {
        EXPECT_EQ(line.find("keydown 43"), std::string::npos) << line;
    }
}

TEST_F(ManagerInput, TabOnATopLevelWindowIsAKeyLikeAnyOther) {
    GHOSTMANAGER_WINDOW* const top = Make("top", nullptr, {0, 0, 100, 100});
    manager.SetFocus(top);
    Told();
    KeyDown(kTab);
    EXPECT_EQ(Told(), (Log{"top keydown 43"}));
}

TEST_F(ManagerInput, KeysAndCharactersGoToEveryHandlerOfTheFocus) {
    GHOSTMANAGER_WINDOW* const top = Make("top", nullptr, {0, 0, 100, 100});
    RecordingHandler second(log, "second");
    top->handler->next = &second;
    manager.SetFocus(top);
    Told();
    GUI_INPUT_RECORD record;
    record.keyDown = true;
    record.key = 4;
    record.character = 'q';
    manager.PostInput(record, now);
    KeyUp(4);
    EXPECT_EQ(Told(), (Log{"top keydown 4", "second keydown 4", "top char 113", "second char 113",
                           "top keyup 4", "second keyup 4"}));
    top->handler->next = nullptr;
}

TEST_F(ManagerInput, KeysBeyondTheTableAreNeverDown) {
    KeyDown(511);
    EXPECT_TRUE(manager.IsKeyDown(511));
    KeyDown(512);
    EXPECT_FALSE(manager.IsKeyDown(512));
    EXPECT_FALSE(manager.IsKeyDown(0xFFFFFFFF));
    KeyUp(511);
    EXPECT_FALSE(manager.IsKeyDown(511));
}

TEST_F(ManagerInput, AHiddenWindowLosesHoverFocusAndCaptureAtOnce) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    MoveTo(50, 50);
    Press();
    Told();
    manager.ShowWindow(window, false);
    EXPECT_EQ(manager.HoverWindow(), nullptr);
    EXPECT_EQ(manager.FocusWindow(), nullptr);
    EXPECT_EQ(manager.CaptureWindow(), nullptr);
    EXPECT_EQ(Told(), (Log{"a blur", "a leave"}));
}

TEST_F(ManagerInput, FocusMovesToTheNearestTabStopInADirection) {
    GHOSTMANAGER_WINDOW* const top = Make("top", nullptr, {0, 0, 1280, 720});
    const auto stop = [&](const char* name, GUI_RECT place) {
        GHOSTMANAGER_WINDOW* const window = Make(name, top, place);
        manager.SetTabStop(window, true);
        return window;
    };
    GHOSTMANAGER_WINDOW* const a = stop("a", {100, 100, 100, 28});
    GHOSTMANAGER_WINDOW* const b = stop("b", {100, 140, 100, 28});
    GHOSTMANAGER_WINDOW* const c = stop("c", {100, 180, 100, 28});
    GHOSTMANAGER_WINDOW* const right = stop("right", {400, 150, 100, 28});
    using Direction = CGhostManager::Direction;
    EXPECT_TRUE(manager.MoveFocus(Direction::kRight)) << "without a focus the first is taken";
    EXPECT_EQ(manager.FocusWindow(), a);
    EXPECT_TRUE(manager.MoveFocus(Direction::kDown));
    EXPECT_EQ(manager.FocusWindow(), b);
    EXPECT_TRUE(manager.MoveFocus(Direction::kDown));
    EXPECT_EQ(manager.FocusWindow(), c);
    EXPECT_FALSE(manager.MoveFocus(Direction::kDown));
    EXPECT_TRUE(manager.MoveFocus(Direction::kUp));
    EXPECT_EQ(manager.FocusWindow(), b);
    EXPECT_TRUE(manager.MoveFocus(Direction::kRight));
    EXPECT_EQ(manager.FocusWindow(), right);
    EXPECT_TRUE(manager.MoveFocus(Direction::kLeft));
    EXPECT_EQ(manager.FocusWindow(), b) << "the one level with it";
    manager.ShowWindow(right, false);
    EXPECT_FALSE(manager.MoveFocus(Direction::kRight));
}
