// Windows: the tree, places, client areas, showing, freeing, tooltips, painting, composing.
#include "gui/blend.h"
#include "gui/gui_rig.h"

#include <functional>
#include <random>

using Manager = GuiTest;

TEST_F(Manager, IdsBeginAtFourAndGoUpByThree) {
    EXPECT_EQ(Make("a", nullptr, {})->id, 4u);
    EXPECT_EQ(Make("b", nullptr, {})->id, 7u);
}

TEST_F(Manager, StaleAndForeignHandlesAreRefused) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 10, 10});
    manager.DestroyWindow(window);
    Told();
    GHOSTMANAGER_WINDOW foreign;
    for (GHOSTMANAGER_WINDOW* const handle :
         {window, &foreign, static_cast<GHOSTMANAGER_WINDOW*>(nullptr)}) {
        EXPECT_FALSE(manager.DestroyWindow(handle));
        EXPECT_FALSE(manager.SetWindowPos(handle, 0, 0, 1, 1));
        EXPECT_FALSE(manager.ShowWindow(handle, true));
        EXPECT_FALSE(manager.SetFocus(handle));
        EXPECT_FALSE(manager.SetModal(handle));
        EXPECT_FALSE(manager.SetTabStop(handle, true));
        EXPECT_FALSE(manager.SetZOrder(handle, -1));
        EXPECT_FALSE(manager.SetWindowFrame(handle, nullptr));
        EXPECT_FALSE(manager.SetWindowToolTip(handle, L"x"));
        EXPECT_FALSE(manager.SetToolTipWindow(handle));
        EXPECT_FALSE(manager.RecalcClient(handle));
        EXPECT_FALSE(manager.IsWindowVisible(handle));
        GUI_RECT rect;
        EXPECT_FALSE(manager.GetScreenRect(handle, &rect));
        EXPECT_FALSE(manager.GetWindowRects(handle, &rect, nullptr, nullptr));
        EXPECT_EQ(manager.GetWindowFlags(handle), 0u);
    }
    EXPECT_EQ(manager.CreateWindow(&foreign, 0, nullptr, false)->parent, nullptr)
        << "an unknown parent makes it top-level";
}

TEST_F(Manager, SizesAreKeptWithinTheirLimits) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {10, 20, 30, 40});
    GUI_RECT rect;
    manager.SetWindowPos(window, kKeepValue, 5, kKeepValue, -7);
    manager.GetWindowRects(window, &rect, nullptr, nullptr);
    EXPECT_EQ(rect, (GUI_RECT{10, 5, 30, 0}));
    EXPECT_EQ(window->surface, nullptr);
    manager.SetWindowPos(window, 0, 0, 5000, 4001);
    manager.GetWindowRects(window, &rect, nullptr, nullptr);
    EXPECT_EQ(rect, (GUI_RECT{0, 0, 4000, 4000}));
    manager.SetWindowMinimum(window, 50, 0);
    manager.SetWindowPos(window, 0, 0, 10, 10);
    manager.GetWindowRects(window, &rect, nullptr, nullptr);
    EXPECT_EQ(rect, (GUI_RECT{0, 0, 50, 10}));
}

TEST_F(Manager, TheClientAreaIsTheFramesInsideLessTheInsets) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 80});
    GhostBorderStyle border;
    border.thickness = {3, 20, 5, 7};
    handlers[0]->insetRight = 16;
    handlers[0]->insetBottom = 4;
    log.clear();
    manager.SetWindowFrame(window, &border);
    EXPECT_EQ(window->frameClientRect, (GUI_RECT{3, 20, 92, 53}));
    EXPECT_EQ(window->clientRect, (GUI_RECT{3, 20, 76, 49}));
    EXPECT_EQ(window->insetRect, (GUI_RECT{79, 20, 16, 53}));
    EXPECT_EQ(log, (Log{"a resize 100 80 76 49"}));
    border.thickness = {90, 90, 90, 90};
    manager.SetWindowFrame(window, &border);
    EXPECT_EQ(window->clientRect.width, 0);
    EXPECT_EQ(window->clientRect.height, 0);
}

TEST_F(Manager, MovesAreToldToTheFirstHandlerAndSizesToAll) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 80});
    RecordingHandler second(log, "second");
    window->handler->next = &second;
    Frame(window, 2);
    manager.SetWindowPos(window, 5, 6, 100, 80);
    EXPECT_EQ(log, (Log{"a move 5 2"})) << "the client area's top, not y";
    log.clear();
    manager.SetWindowPos(window, 5, 6, 90, 80);
    EXPECT_EQ(log, (Log{"a resize 90 80 86 76", "second resize 90 80 86 76"}));
    window->handler->next = nullptr;
}

TEST_F(Manager, DestroyedWindowsAreFreedChildrenFirstAtTheEndOfATick) {
    GHOSTMANAGER_WINDOW* const top = Make("top", nullptr, {0, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const child = Make("child", top, {0, 0, 10, 10});
    Make("grandchild", child, {0, 0, 5, 5});
    RecordingHandler second(log, "second");
    top->handler->next = &second;
    manager.DestroyWindow(child);
    manager.DestroyWindow(top);
    EXPECT_TRUE(manager.IsWindowVisible(child));
    EXPECT_EQ(Told(),
              (Log{"grandchild destroy", "child destroy", "second destroy", "top destroy"}));
    EXPECT_FALSE(manager.IsWindowVisible(top));
    EXPECT_FALSE(manager.IsWindowVisible(child));
}

TEST_F(Manager, ToolTipsComeAfterASecondOfRestAndGoWithTheMouse) {
    GHOSTMANAGER_WINDOW* const tip = Make("tip", nullptr, {500, 500, 10, 10});
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 100, 100});
    manager.SetToolTipWindow(tip);
    manager.SetWindowToolTip(window, L"help");
    MoveTo(10, 10);
    Told();
    manager.Tick(1000000);
    EXPECT_EQ(Told(), Log{}) << "more than a second is wanted";
    manager.Tick(1);
    EXPECT_EQ(Told(), (Log{"a hover", "tip showtip help"}));
    manager.Tick(5000000);
    EXPECT_EQ(Told(), Log{}) << "once";
    MoveTo(11, 10);
    EXPECT_EQ(Told(), (Log{"tip hidetip", "a mousemove 11 10"}));
    manager.SetWindowToolTip(window, L"");
    manager.Tick(1000001);
    EXPECT_EQ(Told(), (Log{"a hover", "a hover"})) << "every tick, and no tip without a text";
}

TEST_F(Manager, SetZOrderBringsToTheFrontOfTheSiblings) {
    GHOSTMANAGER_WINDOW* const a = Make("a", nullptr, {0, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const b = Make("b", nullptr, {0, 0, 100, 100});
    EXPECT_TRUE(manager.SetZOrder(a, -1));
    EXPECT_EQ(b->nextSibling, a);
    EXPECT_EQ(a->nextSibling, nullptr);
    EXPECT_FALSE(manager.SetZOrder(a, 0));
    EXPECT_FALSE(manager.SetZOrder(a, 1));
}

TEST_F(Manager, OnlyDirtyWindowsArePaintedAndUploaded) {
    std::vector<uint32_t> uploads;
    GUI_HOST_CALLBACKS host;
    host.upload = [&](uint32_t id, const uint32_t*, int32_t) { uploads.push_back(id); };
    manager.SetHost(host);
    GHOSTMANAGER_WINDOW* const a = Make("a", nullptr, {0, 0, 10, 10});
    GHOSTMANAGER_WINDOW* const b = Make("b", a, {0, 0, 10, 10});
    manager.Tick(0);
    EXPECT_EQ(uploads, (std::vector<uint32_t>{a->id, b->id}));
    uploads.clear();
    manager.Tick(0);
    EXPECT_TRUE(uploads.empty());
    handlers[1]->dirty = true;
    manager.Tick(0);
    EXPECT_EQ(uploads, (std::vector<uint32_t>{b->id}));
    EXPECT_FALSE(handlers[1]->dirty);
    uploads.clear();
    manager.ShowWindow(b, false);
    handlers[1]->dirty = true;
    manager.Tick(0);
    EXPECT_TRUE(uploads.empty()) << "hidden";
    manager.ShowWindow(b, true);
    manager.Tick(0);
    EXPECT_EQ(uploads, (std::vector<uint32_t>{b->id}));
}

namespace {

// What a painting does beside painting.
class BusyPainter : public CGhostGUIHandler {
public:
    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        ++paintings;
        wide = surface->Width();
        if (also) {
            also();
        }
    }
    std::function<void()> also;
    int paintings = 0;
    int wide = 0;
};

} // namespace

TEST_F(Manager, DirtyFlagsAreClearedAfterThePainting) {
    BusyPainter painter;
    GHOSTMANAGER_WINDOW* const window = manager.CreateWindow(nullptr, 0, &painter, false);
    manager.SetWindowPos(window, 0, 0, 20, 20);
    painter.also = [&] {
        painter.dirty = true;
        manager.Invalidate(window);
    };
    for (int i = 0; i < 3; ++i) {
        manager.Tick(0);
    }
    EXPECT_EQ(painter.paintings, 1);
    EXPECT_FALSE(painter.dirty || window->dirty);
    manager.DestroyWindow(window);
    manager.Tick(0);
}

TEST_F(Manager, APaintingThatMakesAWindowInFrontDirtyIsFollowedAtOnce) {
    BusyPainter back;
    BusyPainter front;
    for (BusyPainter* const painter : {&back, &front}) {
        manager.SetWindowPos(manager.CreateWindow(nullptr, 0, painter, false), 0, 0, 20, 20);
    }
    manager.Tick(0);
    back.also = [&] { front.dirty = true; };
    front.also = [&] { back.dirty = true; };
    back.dirty = true;
    manager.Tick(0);
    EXPECT_EQ(back.paintings, 2);
    EXPECT_EQ(front.paintings, 2);
    EXPECT_TRUE(back.dirty) << "its turn has passed";
    front.also = nullptr;
    manager.Tick(0);
    EXPECT_EQ(back.paintings, 3);
    manager.Reset();
}

TEST_F(Manager, AWindowThatChangesItsShapeWhileItIsPaintedIsPaintedAgain) {
    BusyPainter painter;
    GHOSTMANAGER_WINDOW* const window = manager.CreateWindow(nullptr, 0, &painter, false);
    manager.SetWindowPos(window, 0, 0, 20, 20);
    painter.also = [&] { manager.SetWindowPos(window, 0, 0, 30, 20); };
    manager.Tick(0);
    EXPECT_EQ(painter.wide, 20);
    manager.Tick(0);
    EXPECT_EQ(painter.wide, 30);
    EXPECT_EQ(painter.paintings, 2);
    manager.Tick(0);
    EXPECT_EQ(painter.paintings, 2);
    manager.Reset();
}

TEST_F(Manager, AWindowThatMovesAndGrowsGetsOneNewTexture) {
    int creations = 0;
    GUI_HOST_CALLBACKS host;
    host.create = [&](uint32_t, int32_t, int32_t) { ++creations; };
    manager.SetHost(host);
    manager.SetScreen(1366, 768);
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {0, 0, 20, 20});
    creations = 0;
    manager.SetWindowPos(window, 7, 7, 50, 50);
    EXPECT_EQ(creations, 1);
}

TEST_F(Manager, TheDrawCallbackGetsClippedPiecesBackToFront) {
    std::vector<std::vector<int64_t>> drawn;
    GUI_HOST_CALLBACKS host;
    host.draw = [&](uint32_t id, uint32_t flags, int32_t sx, int32_t sy, int32_t x, int32_t y,
                    int32_t w, int32_t h) {
        drawn.push_back({id, flags, sx, sy, x, y, w, h});
    };
    manager.SetHost(host);
    GHOSTMANAGER_WINDOW* const top = Make("top", nullptr, {-20, 700, 100, 100});
    Frame(top, 5);
    GHOSTMANAGER_WINDOW* const child = Make("child", top, {80, -10, 50, 50});
    manager.Tick(0);
    manager.CompositeAll();
    const int64_t ones = kCompositeStart;
    EXPECT_EQ(drawn, (std::vector<std::vector<int64_t>>{
                         {ones,      ones, 0,  0,  0,  0,   0,  0 },
                         {top->id,   0,    20, 0,  0,  700, 80, 20},
                         {child->id, 0,    0,  10, 65, 705, 10, 15},
    }));
    EXPECT_TRUE(manager.DirtyRect().Empty());
}

TEST(Blend, IsTheRuleToTheBit) {
    EXPECT_EQ(BlendPixel(0x00123456, 0x80FFFFFF), 0x80FFFFFFu) << "nothing below: as it is";
    EXPECT_EQ(BlendPixel(0xFF123456, 0x00FFFFFF), 0xFF123456u) << "nothing on top";
    // Opaque over opaque: 255 * 255 >> 8 is 254.
    EXPECT_EQ(BlendPixel(0xFF000000, 0xFFFFFFFF), 0xFFFEFEFEu);
    // Half over opaque: alpha 127 * 255 / 255 + 128 = 255; weight 128 * 255 / 255 = 128.
    EXPECT_EQ(BlendPixel(0xFF000000, 0x80FFFFFF), 0xFF7F7F7Fu); // 255 * 128 >> 8
    // Half over half: alpha 127 * 128 / 255 + 128 = 191; weight 128 * 255 / 191 = 170.
    EXPECT_EQ(BlendPixel(0x80000000, 0x80FFFFFF), 0xBFA9A9A9u); // 255 * 170 >> 8 = 169
}

namespace {

// One manager's screen, composed into pixels.
struct SCREEN {
    std::vector<uint32_t> pixels;
    SCREEN(CGhostManager& manager, int32_t width, int32_t height)
        : pixels(static_cast<size_t>(width) * static_cast<size_t>(height)) {
        manager.SetScreen(width, height);
        manager.SetCompositeBuffer(pixels.data(), width, height, width);
    }
};

} // namespace

TEST_F(Manager, DirtyPartsComposeToWhatTheWholeWould) {
    constexpr int32_t kWidth = 1366;
    constexpr int32_t kHeight = 768;
    SCREEN screen(manager, kWidth, kHeight);
    std::mt19937 random(7);
    const auto below = [&](int32_t limit) {
        return static_cast<int32_t>(random() % static_cast<uint32_t>(limit));
    };
    std::vector<GHOSTMANAGER_WINDOW*> windows;
    for (int i = 0; i < 12; ++i) {
        GHOSTMANAGER_WINDOW* const parent = i < 4 ? nullptr : windows[random() % windows.size()];
        windows.push_back(
            Make("w", parent, {below(900), below(500), 50 + below(400), 40 + below(300)}));
        handlers.back()->colour = static_cast<uint32_t>(random()) | 0x40000000;
        Frame(windows.back(), below(4));
    }
    for (int round = 0; round < 150; ++round) {
        GHOSTMANAGER_WINDOW* const window = windows[static_cast<size_t>(below(12))];
        switch (below(5)) {
        case 0:
            manager.SetWindowPos(window, below(1200) - 100, below(700) - 50, kKeepValue,
                                 kKeepValue);
            break;
        case 1: manager.SetWindowPos(window, kKeepValue, kKeepValue, below(500), below(400)); break;
        case 2: manager.ShowWindow(window, below(3) != 0); break;
        case 3: manager.SetZOrder(window, -1); break;
        default: Frame(window, below(6)); break;
        }
        manager.Tick(1000);
        manager.CompositeAll();
        if (round % 10 == 9) {
            const std::vector<uint32_t> byParts = screen.pixels;
            manager.SetCompositeBuffer(screen.pixels.data(), kWidth, kHeight, kWidth);
            manager.CompositeAll();
            ASSERT_TRUE(byParts == screen.pixels) << "round " << round;
        }
    }
}

TEST_F(Manager, NeighboursTouchWithoutGapOrOverlapAtEveryDensity) {
    for (const int32_t width : {1280, 1366, 1440, 1920, 2560, 3840, 800}) {
        const int32_t height = width * 9 / 16;
        Log ownLog;
        std::vector<std::unique_ptr<RecordingHandler>> row;
        CGhostManager own; // ends before its handlers
        SCREEN screen(own, width, height);
        const GUI_RECT bounds = own.ScreenRect();
        const size_t whole = static_cast<size_t>(width) * static_cast<size_t>(height - 1);
        int32_t x = 0;
        for (int i = 0; x < bounds.width; ++i) {
            const int32_t wide = std::min(1 + i % 7, bounds.width - x);
            row.push_back(std::make_unique<RecordingHandler>(ownLog, "w"));
            row.back()->colour = 0xFF00FF00;
            GHOSTMANAGER_WINDOW* const window =
                own.CreateWindow(nullptr, 0, row.back().get(), false);
            own.SetWindowPos(window, x, 0, wide, bounds.height);
            x += wide;
        }
        own.Tick(0);
        own.CompositeAll();
        size_t wrong = 0;
        for (size_t i = 0; i < whole; ++i) {
            // Two opaque fills over each other would dim to 0xFE.
            wrong += screen.pixels[i] != 0xFF00FF00 ? 1u : 0u;
        }
        EXPECT_EQ(wrong, 0u) << width;
    }
}

TEST_F(Manager, AFrameOfNegativeThicknessTakesNothingFromTheClientAreaAndAddsNothing) {
    GHOSTMANAGER_WINDOW* const window = Make("a", nullptr, {10, 10, 100, 80});
    Frame(window, -(1 << 20));
    GUI_RECT client;
    manager.GetWindowRects(window, nullptr, &client, nullptr);
    EXPECT_EQ(client, (GUI_RECT{0, 0, 100, 80}));
}

TEST_F(Manager, AWindowThatIsTakenOutHasNoParentAnyMore) {
    GHOSTMANAGER_WINDOW* const parent = Make("a", nullptr, {0, 0, 100, 100});
    GHOSTMANAGER_WINDOW* const child = Make("b", parent, {0, 0, 10, 10});
    ASSERT_TRUE(manager.SetZOrder(child, -2));
    EXPECT_EQ(child->parent, nullptr);
    delete child; // it is the manager's no longer
    manager.DestroyWindow(parent);
    manager.Tick(0);
}
