// Threads: what may be called where, and in which order locks are taken. Under the thread sanitizer these tests
// find what is read or written without its lock.
#include "gui/control_rig.h"

#include <atomic>
#include <set>
#include <thread>

namespace {

// Shows a box whenever its window changes its size.
class Shower : public CGhostGUIHandler {
public:
    void OnResize(int, int, int, int) override { CGhostMessageBox::Show(L"Title", L"Text"); }
};

// Runs a tick within its own.
class Nester : public CGhostGUIHandler {
public:
    void OnMouseDown(int, int, unsigned) override {
        CGhostManager& manager = CGhostManager::Get();
        manager.DestroyWindow(window);
        manager.Tick(0);
        manager.Tick(0);
        ++presses;
    }
    void Destroy() override { ended = true; }
    GHOSTMANAGER_WINDOW* window = nullptr;
    int presses = 0;
    bool ended = false;
};

class Painter : public CGhostGUIHandler {
public:
    void OnResize(int width, int, int, int) override { wide = width; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT&) override {
        surface->FillRect({0, 0, wide, 1}, 0xFFFFFFFF);
    }

private:
    int wide = 0;
};

using Locks = ControlTest;

} // namespace

TEST_F(Locks, ABoxMayBeShownWhenAWindowChangesItsSize) {
    Shower shower;
    GHOSTMANAGER_WINDOW* const window = manager.CreateWindow(nullptr, 0, &shower, false);
    manager.SetWindowPos(window, 0, 0, 100, 100);
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    manager.SetWindowFrame(window, nullptr);
    manager.RecalcClient(window);
    EXPECT_EQ(CGhostMessageBox::Count(), 3u);
    manager.Reset();
}

TEST_F(Locks, ATickWithinATickFreesNothing) {
    Nester nester;
    nester.window = manager.CreateWindow(nullptr, 0, &nester, false);
    manager.SetWindowPos(nester.window, 0, 0, 100, 100);
    MoveTo(50, 50);
    Press();
    EXPECT_EQ(nester.presses, 1);
    EXPECT_FALSE(nester.ended);
    manager.Tick(0);
    EXPECT_TRUE(nester.ended);
}

TEST_F(Locks, AWindowOfAnotherThreadGetsItsTextureWithTheNextTick) {
    std::vector<std::string> told;
    std::set<std::thread::id> threads;
    GUI_HOST_CALLBACKS host;
    host.create = [&](uint32_t, int32_t width, int32_t height) {
        told.push_back("create " + std::to_string(width) + " " + std::to_string(height));
        threads.insert(std::this_thread::get_id());
    };
    host.destroy = [&](uint32_t) {
        told.emplace_back("destroy");
        threads.insert(std::this_thread::get_id());
    };
    host.upload = [&](uint32_t, const uint32_t*, int32_t) {
        told.emplace_back("upload");
        threads.insert(std::this_thread::get_id());
    };
    manager.SetHost(host);
    GHOSTMANAGER_WINDOW* window = nullptr;
    std::thread([&] {
        window = manager.CreateWindow(nullptr, 0, nullptr, false);
        manager.SetWindowPos(window, 0, 0, 30, 20);
        manager.SetWindowPos(window, 0, 0, 31, 20);
    }).join();
    EXPECT_TRUE(told.empty());
    manager.SetWindowPos(window, 0, 0, 32, 20);
    manager.Tick(0);
    EXPECT_EQ(told, (std::vector<std::string>{"create 30 20", "destroy", "create 31 20", "destroy",
                                              "create 32 20", "upload"}));
    EXPECT_EQ(threads, (std::set<std::thread::id>{std::this_thread::get_id()}));
    manager.SetHost({});
}

TEST_F(Locks, OtherThreadsUseTheTreeAndShowBoxesDuringTheRound) {
    constexpr int kRounds = 100;
    Painter painter;
    GHOSTMANAGER_WINDOW* const window = manager.CreateWindow(nullptr, 0, &painter, false);
    manager.SetWindowPos(window, 0, 0, 100, 100);
    const std::thread::id own = std::this_thread::get_id();
    std::atomic<int> strange = 0;
    const auto check = [&] { strange += std::this_thread::get_id() == own ? 0 : 1; };
    GUI_HOST_CALLBACKS host;
    host.create = [&](uint32_t, int32_t, int32_t) { check(); };
    host.destroy = [&](uint32_t) { check(); };
    host.upload = [&](uint32_t, const uint32_t*, int32_t) { check(); };
    host.draw = [&](uint32_t, uint32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t) {
        check();
    };
    manager.SetHost(host);
    std::atomic<int> running = 2;
    std::atomic<int> events = 0;
    std::thread boxes([&] {
        for (int i = 0; i < kRounds; ++i) {
            const auto hold = manager.HoldRound();
            if (CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Some words.")) {
                box->Dismiss();
            }
        }
        --running;
    });
    std::thread tree([&] {
        for (int i = 0; i < kRounds; ++i) {
            manager.SetWindowPos(window, i, i, 50 + i % 50, 60);
            manager.SetWindowToolTip(window, std::to_wstring(i));
            manager.SetTabStop(window, i % 2 == 0);
            manager.ShowWindow(window, i % 3 != 0);
            manager.SetFocus(window);
            manager.Invalidate(window);
            manager.SetZOrder(window, -1);
            manager.SetClipboard(L"text");
            GUI_RECT rect;
            manager.GetScreenRect(window, &rect);
            events += manager.IsKeyDown(500) ? 1 : 0;
            manager.SetCursorIndex(static_cast<uint32_t>(manager.CursorX() & 1));
            manager.QueueEvent([&] { ++events; });
            manager.DestroyWindow(manager.CreateWindow(window, 0, nullptr, false));
        }
        --running;
    });
    // Meanwhile this thread measures, outside the round.
    while (running > 0) {
        auto* const button =
            new CGhostButton(nullptr, 0, L"BUTTON", L"ok", 0, {false, 5, 5, 80, 9});
        MoveTo(20, 20);
        Key(4);
        Wheel(true);
        manager.Navigate(GUI_DIRECTION::kDown);
        manager.CompositeAll();
        manager.DestroyWindow(button->window);
    }
    boxes.join();
    tree.join();
    for (int i = 0; i < 4; ++i) {
        manager.Tick(0);
    }
    EXPECT_EQ(events, kRounds);
    EXPECT_EQ(strange, 0) << "the host's callbacks are called on its own thread";
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_EQ(BrokenInvariant(), "");
    manager.SetHost({});
    manager.DestroyWindow(window);
    manager.Tick(0);
}

// Faces are made by one library, which makes one at a time.
TEST_F(Locks, FontsMayBeAddedWhileOthersAreMeasured) {
    std::ifstream file(OMBRELUNE_TEST_FONT, std::ios::binary);
    const std::vector<uint8_t> data(std::istreambuf_iterator<char>(file), {});
    CGhostFontManager fonts;
    ASSERT_GE(fonts.AddFont("a", data, 0, 0), 0);
    std::thread other([&] {
        for (int32_t height = 8; height < 40; ++height) {
            EXPECT_GT(fonts.GetFont("a", height)->Advance(L'W'), 0);
        }
    });
    for (int i = 0; i < 32; ++i) {
        EXPECT_GE(fonts.AddFont("b", data, 0, 0), 0);
    }
    other.join();
}
