// The screens that Application shows: who gets the input, when they are drawn, when they end.
#include "front/event_pump.h"
#include "front/light_gun.h"
#include "front/screen.h"
#include "front/window_rig.h"
#include "machine/emu_system.h"
#include "settings/bindings.h"

#include <SDL_opengl.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

constexpr uint32_t kGreen = 0xFF00FF00;

// What a test screen has seen. It outlives the screen, and so the application that may show it to the end.
struct SCREEN_LOG {
    bool wantsInput = false;
    bool news = false; // what Update returns
    int updates = 0;
    int draws = 0;
    DRAW_TARGET target{};
    std::vector<GUI_INPUT> input;
    bool endedWithContext = false;
    std::function<void()> whileUpdated;
};

// All green.
class TestScreen final : public Screen {
public:
    explicit TestScreen(SCREEN_LOG& seen)
        : log(seen) {}
    ~TestScreen() override { log.endedWithContext = SDL_GL_GetCurrentContext() != nullptr; }

    bool Update(const SCREEN_INPUT& input) override {
        ++log.updates;
        log.target = input.target;
        log.input.insert(log.input.end(), input.events.screen.begin(), input.events.screen.end());
        if (log.whileUpdated) {
            log.whileUpdated();
        }
        return log.news;
    }
    void Draw(const DRAW_TARGET& /*target*/) override {
        ++log.draws;
        glClearColor(0.0f, 1.0f, 0.0f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        glMatrixMode(GL_PROJECTION); // a projection of its own, as a room has
        glLoadIdentity();
    }
    [[nodiscard]] bool WantsInput() const override { return log.wantsInput; }

private:
    SCREEN_LOG& log;
};

void Key(SDL_Scancode scancode, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = scancode;
    SDL_PushEvent(&event);
}

uint32_t Middle(Application& application) {
    const std::vector<uint32_t> window = application.ReadWindow();
    return window[window.size() / 2 + application.MainWindow().PixelWidth() / 2];
}

bool Has(const SCREEN_LOG& log, SDL_Scancode key) {
    return std::ranges::any_of(log.input, [&](const GUI_INPUT& input) {
        return input.kind == GuiInputKind::kKeyDown && input.key == key;
    });
}

using ScreenTest = WindowTest;

} // namespace

TEST_F(ScreenTest, AScreenFillsTheWindowUntilTheGameIsShownAgain) {
    SCREEN_LOG log;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_EQ(Middle(application), kRed);
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(Middle(application), kGreen);
    EXPECT_EQ(log.target.width, application.MainWindow().PixelWidth());
    EXPECT_EQ(log.target.height, application.MainWindow().PixelHeight());
    application.ShowGame();
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(Middle(application), kRed);
}

TEST_F(ScreenTest, OneThatWantsInputGetsItAlone) {
    SCREEN_LOG log;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    log.wantsInput = true;
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(InputWalkingRoom());
    Key(SDL_SCANCODE_A, true); // button 1 of the game
    Key(SDL_SCANCODE_F2, true);
    ASSERT_TRUE(RunFrames(application, 5));
    EXPECT_TRUE(Has(log, SDL_SCANCODE_A));
    EXPECT_EQ(MiddleOf(application), kRed) << "the game does not see the key";
    EXPECT_FALSE(application.View().statistics) << "F2 is not the program's while it is captured";
    log.wantsInput = false;
    ASSERT_TRUE(RunUntilColour(application, kBlue)) << "now the game sees the key that is held";
    log.input.clear();
    Key(SDL_SCANCODE_A, false);
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(log.input.empty());
}

TEST_F(ScreenTest, WithoutNewsItIsNotDrawnAgain) {
    SCREEN_LOG log;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(RunUntil(application, [&] { return log.draws > 0; }));
    for (int round = 0; round < 20; ++round) { // the window's own events are over then
        ASSERT_TRUE(application.Round());
    }
    const int draws = log.draws;
    const int updates = log.updates;
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(application.Round());
    }
    EXPECT_EQ(log.draws, draws);
    EXPECT_EQ(log.updates, updates + 20);
    log.news = true;
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(log.draws, draws + 1);
}

TEST_F(ScreenTest, TheTextLiesOverItWhateverItsProjection) {
    SCREEN_LOG log;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(application.Round());
    const auto textPixels = [&] {
        const std::vector<uint32_t> window = application.ReadWindow();
        return std::ranges::count_if(window, [](uint32_t pixel) { return pixel != kGreen; });
    };
    EXPECT_EQ(textPixels(), 0);
    PostNotice("Over any screen");
    ASSERT_TRUE(application.Round());
    const auto shown = textPixels();
    EXPECT_GT(shown, 100);
    EXPECT_LT(shown, 10000);
}

TEST_F(ScreenTest, ItMayShowTheNextOneItself) {
    SCREEN_LOG first;
    SCREEN_LOG second;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    first.whileUpdated = [&] { application.Show(std::make_unique<TestScreen>(second)); };
    application.Show(std::make_unique<TestScreen>(first));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(first.updates, 1);
    EXPECT_EQ(second.updates, 0);
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(first.updates, 1);
    EXPECT_TRUE(first.endedWithContext);
    EXPECT_EQ(second.updates, 1);
}

TEST_F(ScreenTest, AfterTheGameScreenNobodyAims) {
    SCREEN_LOG log;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame(), {"port1=phaser"}));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    const auto aim = [] {
        EMU_INPUT_STATE input{};
        LightGun::HandPointers(input);
        return input.pointer[0].x | input.pointer[0].y;
    };
    PointAt(320, 240, false);
    ASSERT_TRUE(application.Round());
    EXPECT_NE(aim(), 0u);
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(aim(), 0u);
}

TEST_F(ScreenTest, TheMouseIsCapturedWhileAScreenWantsInput) {
    SCREEN_LOG log;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    if (std::string(SDL_GetCurrentVideoDriver()) == "offscreen") {
        GTEST_SKIP() << "off the screen no mouse can be captured; WindowUnderX runs this";
    }
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(SDL_GetRelativeMouseMode());
    log.wantsInput = true;
    ASSERT_TRUE(application.Round());
    EXPECT_TRUE(SDL_GetRelativeMouseMode());
    application.ShowGame();
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(SDL_GetRelativeMouseMode());
}

TEST_F(ScreenTest, TheLastOneEndsBeforeTheWindowAndGivesInputBack) {
    SCREEN_LOG log;
    log.wantsInput = true;
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    application.Show(std::make_unique<TestScreen>(log));
    ASSERT_TRUE(application.Round());
    application.Stop();
    EXPECT_TRUE(log.endedWithContext);
    EXPECT_FALSE(InputWalkingRoom());
}
