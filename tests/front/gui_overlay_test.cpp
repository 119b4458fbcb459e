// The toolkit's windows over a running game.
#include "front/appearance.h"
#include "front/gui_overlay.h"
#include "front/session_callbacks.h"
#include "front/window_rig.h"
#include "gui/manager.h"
#include "gui/surface.h"

namespace {

constexpr uint32_t kTeal = 0xFF4FC3C7;

// One colour, and what it was told of the mouse.
class Panel : public CGhostGUIHandler {
public:
    void OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) override {
        ++paintings;
        surface->FillRect({0, 0, surface->Width(), surface->Height()}, colour);
    }
    void OnMouseDown(int x, int y, unsigned button) override {
        presses.push_back({x, y, static_cast<int>(button)});
    }

    uint32_t colour = kTeal;
    int paintings = 0;
    std::vector<std::vector<int>> presses;
};

class GuiOverlayTest : public WindowTest {
protected:
    ~GuiOverlayTest() override {
        CGhostManager::Get().DestroyWindow(window);
        CGhostManager::Get().Tick(0);
    }

    // Over the running game, in units; in a window of 640 by 480 two units are a pixel.
    void Show(const GUI_RECT& place) {
        window = CGhostManager::Get().CreateWindow(nullptr, 0, &panel, false);
        CGhostManager::Get().SetWindowPos(window, place.x, place.y, place.width, place.height);
    }

    static uint32_t At(Application& application, uint32_t x, uint32_t y) {
        return application.ReadWindow()[size_t{y} * application.MainWindow().PixelWidth() + x];
    }

    Panel panel;
    GHOSTMANAGER_WINDOW* window = nullptr;
};

} // namespace

TEST_F(GuiOverlayTest, AWindowLiesOverThePicture) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    Show({600, 400, 100, 60});
    ASSERT_TRUE(RunFrames(application, 3));
    EXPECT_EQ(At(application, 300, 200), kTeal);
    EXPECT_EQ(At(application, 349, 229), kTeal);
    EXPECT_EQ(At(application, 299, 200), kRed);
    EXPECT_EQ(At(application, 350, 200), kRed);
    EXPECT_EQ(At(application, 300, 230), kRed);
    CGhostManager::Get().ShowWindow(window, false);
    ASSERT_TRUE(RunFrames(application, 3));
    EXPECT_EQ(At(application, 300, 200), kRed);
}

TEST_F(GuiOverlayTest, AtRestNothingIsPaintedOrUploaded) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    Show({600, 400, 100, 60});
    ASSERT_TRUE(RunFrames(application, 3));
    const uint64_t uploads = application.Gui().Uploads();
    const int paintings = panel.paintings;
    EXPECT_EQ(uploads, 1u);
    ASSERT_TRUE(RunFrames(application, 20));
    EXPECT_EQ(application.Gui().Uploads(), uploads);
    EXPECT_EQ(panel.paintings, paintings);
    panel.dirty = true;
    ASSERT_TRUE(RunFrames(application, 3));
    EXPECT_EQ(application.Gui().Uploads(), uploads + 1);
}

TEST_F(GuiOverlayTest, TheMouseReachesItInUnits) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    Show({600, 400, 100, 60});
    PointAt(310, 205, false);
    ASSERT_TRUE(application.Round());
    PointAt(310, 205, true);
    ASSERT_TRUE(application.Round());
    ASSERT_TRUE(application.Round());
    ASSERT_EQ(panel.presses.size(), 1u);
    EXPECT_EQ(panel.presses[0], (std::vector<int>{20, 10, 1}));
    PointAt(310, 205, false);
    ASSERT_TRUE(application.Round());
}

// The display's own cursor until the theme is there, then the one that the window under the mouse wants.
TEST_F(GuiOverlayTest, TheCursorIsTheOneThatTheWindowUnderTheMouseWants) {
    LoadAppearance();
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    const SDL_Cursor* const system = SDL_GetDefaultCursor();
    if (system == nullptr) {
        GTEST_SKIP() << "this display has no cursor";
    }
    Show({600, 400, 100, 60});
    const auto cursorAt = [&](int x, int y) {
        PointAt(x, y, false);
        EXPECT_TRUE(application.Round());
        EXPECT_TRUE(application.Round());
        return SDL_GetCursor();
    };
    const SDL_Cursor* const normal = cursorAt(310, 205);
    EXPECT_NE(normal, system);
    CGhostManager::Get().SetCursorIndex(1);
    const SDL_Cursor* const hot = cursorAt(311, 205);
    EXPECT_NE(hot, normal);
    CGhostManager::Get().SetCursorIndex(2);
    const SDL_Cursor* const resize = cursorAt(310, 205);
    EXPECT_NE(resize, normal);
    EXPECT_NE(resize, hot);
    EXPECT_EQ(cursorAt(10, 10), normal) << "over no window, whatever the last one wanted";
    CGhostManager::Get().SetCursorIndex(0);
    application.Stop();
}

TEST_F(GuiOverlayTest, WindowsOutliveAProgramsWindow) {
    Show({600, 400, 100, 60});
    for (int run = 0; run < 2; ++run) {
        Application application;
        ASSERT_NO_FATAL_FAILURE(Start(application));
        ASSERT_TRUE(application.Round());
        EXPECT_EQ(At(application, 310, 205), kTeal) << run;
        application.Stop();
    }
}

TEST_F(GuiOverlayTest, AfterTheStopNothingOfTheWindowsIsLeft) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    Show({600, 400, 100, 60});
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(application.Gui().TextureCount(), 1u);
    application.Stop();
    EXPECT_EQ(application.Gui().TextureCount(), 0u);
    CGhostManager::Get().SetWindowPos(window, 0, 0, 50, 50);
    EXPECT_EQ(application.Gui().TextureCount(), 0u) << "the toolkit knows it no longer";
}

TEST_F(GuiOverlayTest, OneThatEndsByItselfLeavesTheToolkitUsable) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    {
        GuiOverlay overlay;
        overlay.Start({640, 480});
        Show({600, 400, 100, 60});
        EXPECT_EQ(overlay.TextureCount(), 1u);
    }
    CGhostManager::Get().SetWindowPos(window, 0, 0, 50, 50); // would call an overlay that is gone
    CGhostManager::Get().Tick(0);
    CGhostManager::Get().CompositeAll();
}
