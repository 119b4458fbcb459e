// What appears is painted over several ticks when it is large, and nothing is drawn before it is painted.
#include "gui/gui_rig.h"
#include "gui/surface.h"

#include <map>
#include <set>

namespace {

class PaintLimit : public testing::Test {
protected:
    void SetUp() override {
        manager.SetHost({[](uint32_t, int32_t, int32_t) {}, [](uint32_t) {},
                         [this](uint32_t id, const uint32_t*, int32_t) { ++uploads[id]; },
                         [this](uint32_t id, uint32_t, int32_t, int32_t, int32_t, int32_t, int32_t,
                                int32_t) { drawn.insert(id); }});
        manager.SetScreen(1280, 720);
    }
    GHOSTMANAGER_WINDOW* Make(GHOSTMANAGER_WINDOW* parent, int32_t width, int32_t height) {
        GHOSTMANAGER_WINDOW* const window = manager.CreateWindow(parent, 0, nullptr, false);
        manager.SetWindowPos(window, 0, 0, width, height);
        return window;
    }
    // Which windows are drawn after a tick.
    std::set<uint32_t> Round() {
        drawn.clear();
        uploads.clear();
        manager.Tick(0);
        manager.CompositeAll();
        drawn.erase(kCompositeStart);
        return drawn;
    }

    CGhostManager manager;
    std::map<uint32_t, int> uploads;
    std::set<uint32_t> drawn;
};

using Ids = std::set<uint32_t>;

} // namespace

TEST_F(PaintLimit, WithoutOneEverythingAppearsAtOnce) {
    const auto* const back = Make(nullptr, 1000, 700);
    const auto* const front = Make(nullptr, 1000, 700);
    EXPECT_EQ(Round(), (Ids{back->id, front->id}));
}

TEST_F(PaintLimit, WhatAppearsIsSpreadOverTicksFromBackToFront) {
    manager.SetPaintLimit(100'000);
    const auto* const large = Make(nullptr, 1000, 700); // has a tick of its own
    const auto* const second = Make(nullptr, 300, 200); // 60,000
    const auto* const third = Make(nullptr, 200, 200);  // 40,000
    const auto* const fourth = Make(nullptr, 10, 10);
    EXPECT_EQ(Round(), (Ids{large->id}));
    EXPECT_EQ(Round(), (Ids{large->id, second->id, third->id}));
    EXPECT_EQ(Round(), (Ids{large->id, second->id, third->id, fourth->id}));
    EXPECT_TRUE(Round().contains(fourth->id));
    EXPECT_TRUE(uploads.empty()) << "all is painted";
}

TEST_F(PaintLimit, WhatIsSeenAlreadyIsPaintedWhateverAppears) {
    manager.SetPaintLimit(100'000);
    auto* const seen = Make(nullptr, 1000, 700);
    EXPECT_EQ(Round(), (Ids{seen->id}));
    const auto* const appears = Make(nullptr, 300, 300);
    manager.Invalidate(seen);
    EXPECT_EQ(Round(), (Ids{seen->id, appears->id}));
    EXPECT_EQ(uploads[seen->id], 1);
}

TEST_F(PaintLimit, WhatLiesInAHiddenWindowIsPaintedWhenThatIsShown) {
    auto* const parent = Make(nullptr, 300, 200);
    const auto* const child = Make(parent, 100, 100);
    manager.ShowWindow(parent, false);
    EXPECT_EQ(Round(), Ids{});
    EXPECT_TRUE(uploads.empty());
    manager.ShowWindow(parent, true);
    EXPECT_EQ(Round(), (Ids{parent->id, child->id}));
    EXPECT_EQ(uploads[child->id], 1);
}
