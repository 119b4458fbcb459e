// The window that offers to go on with the games that were on: by mouse, keys and controller, on every display.
#include "gui/text.h"
#include "screens/continue_window.h"
#include "screens/panels_rig.h"

#include <ctime>

namespace {

constexpr int64_t kNow = 1'700'000'000;

// Bars of a test picture, with a dark ring as a game might have.
std::vector<uint32_t> Bars(uint32_t width, uint32_t height, uint32_t seed) {
    std::vector<uint32_t> pixels;
    pixels.reserve(size_t{width} * height);
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t bar = (x * 8 / width + seed) % 8;
            const uint32_t colour =
                (bar & 1) * 0xC03020 + (bar >> 1 & 1) * 0x20A040 + (bar >> 2) * 0x1830D0;
            const int32_t dx = static_cast<int32_t>(x) - static_cast<int32_t>(width / 2);
            const int32_t dy = static_cast<int32_t>(y) - static_cast<int32_t>(height / 2);
            const bool ring = dx * dx + dy * dy < 2500 && dx * dx + dy * dy > 1600;
            pixels.push_back(0xFF000000 | (ring ? 0x101018 : colour));
        }
    }
    return pixels;
}

CONTINUE_GAME Game(const std::wstring& title, uint32_t width, uint32_t height, float aspect) {
    return {title,
            L"Master System",
            kNow - 90,
            width,
            height,
            aspect,
            Bars(width, height, static_cast<uint32_t>(title.size()))};
}

// As many as the room has sets, of all shapes.
std::vector<CONTINUE_GAME> Games(size_t count) {
    std::vector<CONTINUE_GAME> games = {
        Game(L"Luciole", 256, 192, 1.333F),
        Game(L"Mistral", 320, 224, 1.333F),
        Game(L"Glimmer", 160, 144, 1.111F),
        Game(L"Skywren", 192, 256, 0.75F),
        Game(L"A Game With a Title That Is Longer Than Any Picture", 256, 240, 1.306F),
        Game(L"Grelot", 256, 240, 1.306F),
        Game(L"Wide Link", 320, 144, 2.222F),
        Game(L"No Picture", 0, 0, 0.0F),
    };
    games.resize(count);
    return games;
}

class Continuing : public PanelsTest {
protected:
    void SetUp() override {
        PanelsTest::SetUp();
        Ask(3);
    }
    void TearDown() override {
        window.reset();
        PanelsTest::TearDown();
    }
    void Ask(size_t count) {
        window.reset();
        Tick();
        window = std::make_unique<ContinueWindow>(Games(count), kNow);
        Turn();
    }
    void Turn() {
        window->Update();
        Round();
    }
    [[nodiscard]] bool HasFocus(const CGhostButton* button) const {
        return Manager().FocusWindow() == button->window;
    }
    std::unique_ptr<ContinueWindow> window;
};

TEST_F(Continuing, BeginsOnContinue) {
    EXPECT_TRUE(HasFocus(window->ContinueButton()));
    EXPECT_EQ(window->Count(), 3u);
    EXPECT_EQ(window->Title(1)->Text(), L"Mistral");
    EXPECT_TRUE(window->Detail(1)->Text().starts_with(L"Master System, "));
    EXPECT_EQ(window->Words()->Text(), L"These 3 games were on when the program ended.");
    EXPECT_EQ(window->Choice(), ContinueChoice::kNone);
    Ask(1);
    EXPECT_EQ(window->Words()->Text(), L"This game was on when the program ended.");
}

TEST_F(Continuing, TakesClicks) {
    Click(window->ContinueButton());
    EXPECT_EQ(window->Choice(), ContinueChoice::kContinue);
    Ask(3);
    Click(window->NotNowButton());
    EXPECT_EQ(window->Choice(), ContinueChoice::kNotNow);
}

TEST_F(Continuing, ForgetsOnlyWhenAskedTwice) {
    Click(window->ForgetButton());
    EXPECT_EQ(window->Choice(), ContinueChoice::kNone);
    EXPECT_TRUE(window->Asks());
    EXPECT_EQ(window->Heading()->Text(), L"Forget where you were?");
    EXPECT_TRUE(HasFocus(window->NotNowButton())) << "the safe answer";
    EXPECT_FALSE(window->ContinueButton()->IsVisible());
    Click(window->NotNowButton());
    EXPECT_FALSE(window->Asks());
    EXPECT_EQ(window->Choice(), ContinueChoice::kNone);
    EXPECT_TRUE(HasFocus(window->ContinueButton()));
    Click(window->ForgetButton());
    Click(window->ForgetButton());
    EXPECT_EQ(window->Choice(), ContinueChoice::kForget);
}

TEST_F(Continuing, ADoubleClickForgetsNothing) {
    Click(window->ForgetButton());
    ASSERT_TRUE(window->Asks());
    PressMouse();
    Tick();
    EXPECT_EQ(window->Choice(), ContinueChoice::kNone);
    const GHOSTMANAGER_WINDOW& forget = *window->ForgetButton()->window;
    EXPECT_LT(forget.x + forget.width, window->Box()->window->clientRect.width / 2)
        << "it is no longer where it was";
}

TEST_F(Continuing, KeysAloneReachEveryAnswer) {
    PressKey(GHOSTGUIKey::kReturn);
    EXPECT_EQ(window->Choice(), ContinueChoice::kContinue);
    Ask(3);
    PressKey(GHOSTGUIKey::kRight);
    EXPECT_TRUE(HasFocus(window->NotNowButton()));
    PressKey(GHOSTGUIKey::kRight);
    EXPECT_TRUE(HasFocus(window->ForgetButton()));
    PressKey(GHOSTGUIKey::kReturn);
    ASSERT_TRUE(window->Asks());
    PressKey(GHOSTGUIKey::kEscape);
    EXPECT_FALSE(window->Asks());
    EXPECT_EQ(window->Choice(), ContinueChoice::kNone);
    PressKey(GHOSTGUIKey::kEscape);
    EXPECT_EQ(window->Choice(), ContinueChoice::kNotNow);
}

TEST_F(Continuing, AControllerAloneReachesEveryAnswer) {
    Manager().ActivateFocus();
    Tick();
    EXPECT_EQ(window->Choice(), ContinueChoice::kContinue);
    Ask(3);
    Manager().Navigate(GUI_DIRECTION::kRight);
    Manager().Navigate(GUI_DIRECTION::kRight);
    Manager().ActivateFocus();
    Tick();
    ASSERT_TRUE(window->Asks());
    EXPECT_TRUE(Manager().CancelFocus());
    Tick();
    EXPECT_FALSE(window->Asks());
    EXPECT_TRUE(Manager().CancelFocus());
    Tick();
    EXPECT_EQ(window->Choice(), ContinueChoice::kNotNow);
}

TEST_F(Continuing, NothingBehindItTakesInput) {
    Click(menu->MenuButton(kPanelOptions));
    EXPECT_EQ(menu->CurrentPanel(), kNoPanel);
    window.reset();
    Round();
    Click(menu->MenuButton(kPanelOptions));
    EXPECT_EQ(menu->CurrentPanel(), kPanelOptions);
}

TEST_F(Continuing, IsTidyOnEveryDisplayWithAnyNumberOfGames) {
    for (const DISPLAY& display : kDisplays) {
        window.reset();
        Make(display.width, display.height);
        for (size_t count = 1; count <= ContinueWindow::kMostGames; ++count) {
            Ask(count);
            const std::string where = "continue" + std::to_string(count) + "-" +
                                      std::to_string(display.width) + "x" +
                                      std::to_string(display.height);
            const GHOSTMANAGER_WINDOW& box = *window->Box()->window;
            const GUI_RECT place{box.x, box.y, box.width, box.height};
            EXPECT_EQ(Intersection(place, Manager().ScreenRect()), place) << where;
            ExpectTidy(box, where);
            for (size_t i = 0; i < count; ++i) {
                EXPECT_TRUE(
                    Fits(L"TEXT", window->Title(i)->Text(), window->Title(i)->window->width))
                    << where;
                EXPECT_TRUE(Fits(L"TEXT_SMALL", window->Detail(i)->Text(),
                                 window->Detail(i)->window->width))
                    << where;
            }
            EXPECT_TRUE(
                Fits(L"TEXT_TITLE", window->Heading()->Text(), window->Heading()->window->width));
            EXPECT_TRUE(
                Fits(L"TEXT_SMALL", window->Words()->Text(), window->Words()->window->width));
            KeepPicture(where);
        }
    }
    window.reset();
}

TEST_F(Continuing, TheQuestionToForgetFits) {
    Ask(1);
    Click(window->ForgetButton());
    EXPECT_TRUE(Fits(L"TEXT_TITLE", window->Heading()->Text(), window->Heading()->window->width));
    EXPECT_TRUE(Fits(L"TEXT_SMALL", window->Words()->Text(), window->Words()->window->width));
    ExpectTidy(*window->Box()->window, "asking");
    KeepPicture("continue-asks");
}

TEST_F(Continuing, FollowsADisplayThatChanges) {
    Manager().SetScreen(2560, 1440);
    Turn();
    const GHOSTMANAGER_WINDOW& box = *window->Box()->window;
    const GUI_RECT screen = Manager().ScreenRect();
    EXPECT_LE(std::abs(2 * box.x + box.width - screen.width), 1) << "in the middle";
    const GUI_BITMAP& image = window->Image(0);
    EXPECT_EQ(image.pixelWidth, static_cast<int32_t>(image.width * Manager().Density()));
}

// Narrow ones have a margin at their sides, wide ones above and below.
TEST_F(Continuing, PicturesHaveTheirGamesShape) {
    Ask(8);
    const GUI_BITMAP& upright = window->Image(3);
    EXPECT_EQ(upright.height, 180);
    EXPECT_EQ(upright.width, 135);
    const GUI_BITMAP& wide = window->Image(6);
    EXPECT_EQ(wide.width, 240);
    EXPECT_EQ(wide.height, 108);
    for (size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(window->Screen(i)->window->width, 240);
        EXPECT_EQ(window->Screen(i)->window->height, 180);
    }
}

// Every pixel of the game is as wide as every other one, or one pixel of the display wider.
TEST_F(Continuing, APictureIsEnlargedEvenly) {
    window.reset();
    Make(1920, 1080); // one and a half pixels to a unit
    std::vector<CONTINUE_GAME> games = {Game(L"Stripes", 160, 144, 4.0F / 3)};
    for (size_t i = 0; i < games[0].pixels.size(); ++i) {
        games[0].pixels[i] = i % 2 == 0 ? 0xFF000000 : 0xFFFFFFFF;
    }
    window = std::make_unique<ContinueWindow>(games, kNow);
    const GUI_BITMAP& image = window->Image(0);
    ASSERT_EQ(image.pixelWidth, 720); // 4.5 to a pixel of the game
    int32_t dark = 0;
    int32_t mixed = 0;
    for (int32_t x = 0; x < image.pixelWidth; ++x) {
        const uint32_t grey = image.pixels[static_cast<size_t>(x)] & 0xFF;
        dark += grey == 0 ? 1 : 0;
        mixed += grey != 0 && grey != 0xFF ? 1 : 0;
    }
    EXPECT_EQ(mixed, 80) << "half of all edges lie within a pixel of the display";
    EXPECT_EQ(dark, (720 - 80) / 2);
}

TEST_F(Continuing, SaysTodayYesterdayOrTheDate) {
    std::tm noon{};
    noon.tm_year = 126;
    noon.tm_mon = 10;
    noon.tm_mday = 22;
    noon.tm_hour = 12;
    noon.tm_isdst = -1;
    const auto at = [&](int day, int hour) {
        std::tm time = noon;
        time.tm_mday = day;
        time.tm_hour = hour;
        return static_cast<int64_t>(std::mktime(&time));
    };
    const int64_t today = at(22, 12);
    EXPECT_EQ(WhenText(at(22, 9), today), L"today 09:00");
    EXPECT_EQ(WhenText(at(21, 23), today), L"yesterday 23:00");
    EXPECT_EQ(WhenText(at(20, 23), today), L"2026-11-20 23:00");
}

} // namespace
