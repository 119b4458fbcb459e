// What the window shows of a game: the picture in every view, its size and place, the text over it.
#include "facts/machine_facts.h"
#include "formats/png_picture.h"
#include "front/demos.h"
#include "front/plain_machine.h"
#include "front/tools/key_injector.h"
#include "front/window_rig.h"
#include "host/session.h"
#include "library/convert.h"
#include "settings/bindings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// One of our arcade games on the board whose monitor is turned.
CGameFile OnDialBoard(const std::string& name) {
    constexpr uint32_t kDialBoard = 4;
    CGameFile game;
    for (const DEMO& demo : Demos()) {
        if (demo.name == name) {
            MACHINE_RECORD record{};
            ARC_RECORD arcade{};
            arcade.board = kDialBoard;
            std::memcpy(record.bytes, &arcade, sizeof arcade);
            EXPECT_TRUE(BuildKnownGame(kSystemArcade, demo.title, demo.image, record, game));
            game.selectedName = 0;
        }
    }
    return game;
}

void Key(SDL_Scancode scancode, bool down, SDL_Keymod modifiers = KMOD_NONE) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = scancode;
    event.key.keysym.mod = modifiers;
    SDL_PushEvent(&event);
}

bool IsFullScreen() {
    return (SDL_GetWindowFlags(SDL_GL_GetCurrentWindow()) & SDL_WINDOW_FULLSCREEN_DESKTOP) ==
           SDL_WINDOW_FULLSCREEN_DESKTOP;
}

// ---- The composed picture, by the rule of its placing: as high as the screen unless that makes it too
// wide, centred; with linear filtering the texture is cut by half a texel on each side.

struct EXPECTED_VIEW {
    double left, top, width, height;                // on the screen
    double texelX, texelY, texelWidth, texelHeight; // of the enlarged picture
};

EXPECTED_VIEW ExpectedView(const EMU_VIDEO_FRAME& frame, bool crop, uint32_t factor, int width,
                           int height) {
    const double aspect = crop ? frame.visibleAspect : frame.aspect;
    int shownHeight = height;
    int shownWidth = static_cast<int>(static_cast<float>(height) * static_cast<float>(aspect));
    if (shownWidth > width) {
        shownWidth = width;
        shownHeight = static_cast<int>(static_cast<float>(width) / static_cast<float>(aspect));
    }
    EXPECTED_VIEW view{};
    view.left = (width - shownWidth) / 2;
    view.top = (height - shownHeight) / 2;
    view.width = shownWidth;
    view.height = shownHeight;
    view.texelX = (crop ? frame.visibleX : 0) * factor;
    view.texelY = (crop ? frame.visibleY : 0) * factor;
    view.texelWidth = (crop ? frame.visibleWidth : frame.width) * factor;
    view.texelHeight = (crop ? frame.visibleHeight : frame.height) * factor;
    return view;
}

struct ENLARGED {
    std::vector<uint32_t> pixels;
    int width = 0;
    int height = 0;
    [[nodiscard]] uint32_t At(int x, int y) const {
        x = std::clamp(x, 0, width - 1);
        y = std::clamp(y, 0, height - 1);
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
};

ENLARGED Enlarge(const Televisions::KEPT_PICTURE& picture, PictureScaler scaler) {
    const uint32_t factor = ScalerFactor(scaler);
    ENLARGED out;
    out.width = static_cast<int>(picture.frame.width * factor);
    out.height = static_cast<int>(picture.frame.height * factor);
    if (scaler == PictureScaler::kNone) {
        out.pixels = picture.pixels;
    } else {
        out.pixels.resize(static_cast<size_t>(out.width) * static_cast<size_t>(out.height));
        ScalePicture(scaler, picture.pixels.data(), picture.frame.width, picture.frame.height,
                     out.pixels.data());
    }
    return out;
}

int Channel(uint32_t colour, int shift) {
    return static_cast<int>(colour >> shift & 0xFF);
}

int Distance(uint32_t a, uint32_t b) {
    int most = 0;
    for (const int shift : {0, 8, 16}) {
        most = std::max(most, std::abs(Channel(a, shift) - Channel(b, shift)));
    }
    return most;
}

uint32_t Bilinear(const ENLARGED& picture, double u, double v) {
    const double x = u - 0.5;
    const double y = v - 0.5;
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    const double fx = x - column;
    const double fy = y - row;
    uint32_t colour = 0xFF000000;
    for (const int shift : {0, 8, 16}) {
        const double above = Channel(picture.At(column, row), shift) * (1 - fx) +
                             Channel(picture.At(column + 1, row), shift) * fx;
        const double below = Channel(picture.At(column, row + 1), shift) * (1 - fx) +
                             Channel(picture.At(column + 1, row + 1), shift) * fx;
        colour |= static_cast<uint32_t>(std::lround(above * (1 - fy) + below * fy)) << shift;
    }
    return colour;
}

// The mean of what lies between the two points, counted as squares.
uint32_t Even(const ENLARGED& picture, double fromX, double fromY, double toX, double toY) {
    uint32_t colour = 0xFF000000;
    for (const int shift : {0, 8, 16}) {
        double sum = 0;
        for (int y = static_cast<int>(fromY); y < toY; ++y) {
            for (int x = static_cast<int>(fromX); x < toX; ++x) {
                const double wide = std::min(x + 1.0, toX) - std::max<double>(x, fromX);
                const double high = std::min(y + 1.0, toY) - std::max<double>(y, fromY);
                const int code = Channel(picture.At(x, y), shift);
                sum += wide * high * code * code;
            }
        }
        const double mean = sum / ((toX - fromX) * (toY - fromY));
        colour |= static_cast<uint32_t>(std::lround(std::sqrt(mean))) << shift;
    }
    return colour;
}

// Counts the wrong pixels of the window.
void CompareWindow(Application& application, const GAME_VIEW& view) {
    const std::vector<uint32_t> window = application.ReadWindow();
    const auto width = static_cast<int>(application.MainWindow().PixelWidth());
    const auto height = static_cast<int>(application.MainWindow().PixelHeight());
    ASSERT_EQ(window.size(), static_cast<size_t>(width) * static_cast<size_t>(height));
    const Televisions::KEPT_PICTURE& picture = application.Sets().Kept();
    const ENLARGED source = Enlarge(picture, view.scaler);
    const EXPECTED_VIEW expected =
        ExpectedView(picture.frame, view.crop, ScalerFactor(view.scaler), width, height);
    // The software renderer weighs in steps of 1/256, twice. Otherwise only rounding may differ.
    const int tolerance = view.linear ? 4 : 1;
    int away = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint32_t shown = window[static_cast<size_t>(y) * static_cast<size_t>(width) +
                                          static_cast<size_t>(x)];
            const double across = (x + 0.5 - expected.left) / expected.width;
            const double down = (y + 0.5 - expected.top) / expected.height;
            if (across < 0 || across > 1 || down < 0 || down > 1) {
                away += shown != 0xFF000000 ? 1 : 0;
                continue;
            }
            if (!view.linear) {
                const double texelsAcross = expected.texelWidth / expected.width;
                const double texelsDown = expected.texelHeight / expected.height;
                const double u = expected.texelX + (x - expected.left) * texelsAcross;
                const double v = expected.texelY + (y - expected.top) * texelsDown;
                const uint32_t wanted = Even(source, u, v, u + texelsAcross, v + texelsDown);
                away += Distance(wanted, shown) <= tolerance ? 0 : 1;
                continue;
            }
            const double u = expected.texelX + 0.5 + across * (expected.texelWidth - 1);
            const double v = expected.texelY + 0.5 + down * (expected.texelHeight - 1);
            const auto fits = [&](double nudge, double lift) {
                return Distance(Bilinear(source, u + nudge, v + lift), shown) <= tolerance;
            };
            bool found = fits(0, 0);
            // On the border of two texels rounding decides.
            for (const double nudge : {-0.02, 0.0, 0.02}) {
                for (const double lift : {-0.02, 0.0, 0.02}) {
                    found = found || fits(nudge, lift);
                }
            }
            away += found ? 0 : 1;
        }
    }
    EXPECT_EQ(away, 0) << "of " << width * height;
}

void CompareAllViews(Application& application) {
    for (const PictureScaler scaler : {PictureScaler::kNone, PictureScaler::kEdge2x,
                                       PictureScaler::kEdge4x, PictureScaler::kSoft4x}) {
        for (const bool linear : {false, true}) {
            for (const bool crop : {false, true}) {
                SCOPED_TRACE(std::to_string(static_cast<int>(scaler)) +
                             (linear ? " linear" : " nearest") + (crop ? " cropped" : " whole"));
                const GAME_VIEW view{scaler, linear, crop, false};
                application.SetView(view);
                // The next picture comes through this scaler.
                const uint64_t shown = application.Sets().PicturesShown();
                ASSERT_TRUE(WindowTest::RunUntil(
                    application, [&] { return application.Sets().PicturesShown() != shown; }));
                CompareWindow(application, view);
            }
        }
    }
}

} // namespace

TEST_F(WindowTest, ShowsTheMachinesPictureInEveryView) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:sms-luciole"));
    ASSERT_TRUE(RunFrames(application, 150));
    CompareAllViews(application);
}

TEST_F(WindowTest, ShowsAWidePictureAndANarrowWindow) {
    Settings().SetInt(L"app_window_width", 350);
    Settings().SetInt(L"app_window_height", 601);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:gg-glimmer"));
    ASSERT_TRUE(RunFrames(application, 150));
    CompareAllViews(application);
}

TEST_F(WindowTest, ShowsAPictureThatWasTurned) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:arcade-skywren"));
    ASSERT_TRUE(RunFrames(application, 100));
    const EMU_VIDEO_FRAME upright = application.Sets().Kept().frame;
    OPENED_GAME opened;
    ASSERT_TRUE(OpenDemo("arcade-skywren", opened));
    opened.game = OnDialBoard("arcade-skywren");
    std::string error;
    ASSERT_TRUE(application.Play(opened, error)) << error;
    ASSERT_TRUE(RunFrames(application, 100));
    // That it goes on from its autosave would lie over the picture.
    static_cast<void>(ProgramNotices().Lines(INT64_MAX));
    EXPECT_EQ(application.Sets().Kept().frame.width, upright.height);
    EXPECT_EQ(application.Sets().Kept().frame.height, upright.width);
    CompareAllViews(application);
}

TEST_F(WindowTest, WindowsShowWholeMultiplesUnlessASettingSaysOtherwise) {
    RegisterDefaultSettings(Settings());
    Settings().SetBool(L"app_fullscreen", false);
    Settings().SetInt(L"app_window_width", 640);
    Settings().SetInt(L"app_window_height", 480);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:sms-luciole"));
    ASSERT_TRUE(RunFrames(application, 150));
    const uint32_t rows = application.Sets().Kept().frame.visibleHeight;
    const auto rowsShown = [&] {
        const std::vector<uint32_t> window = application.ReadWindow();
        size_t shown = 0;
        for (size_t y = 0; y < 480; ++y) {
            const auto row = window.begin() + static_cast<std::ptrdiff_t>(y * 640);
            if (std::any_of(row, row + 640, [](uint32_t p) { return p != 0xFF000000; })) {
                ++shown;
            }
        }
        return shown;
    };
    ASSERT_EQ(rows, 192U);
    const size_t whole = rowsShown();
    EXPECT_LE(whole, 384U) << "twice";
    EXPECT_GT(whole, 340U);
    Settings().SetBool(L"video_integer_window", false);
    EXPECT_GT(rowsShown(), whole) << "at once";
}

TEST_F(WindowTest, ScalersAndTheCrtFilterActOnAPictureThatStandsStill) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:sms-luciole"));
    ASSERT_TRUE(RunFrames(application, 150));
    ASSERT_TRUE(EmuPauseSession(kFrontTelevision, true));
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(application.Round());
    }
    const uint64_t shown = application.Sets().PicturesShown();
    const std::vector<uint32_t> plain = application.ReadWindow();
    Settings().SetFloat(L"video_crt", 1.0f);
    ASSERT_TRUE(application.Round());
    const std::vector<uint32_t> crt = application.ReadWindow();
    EXPECT_NE(crt, plain);
    EXPECT_NE(application.Sets().Picture(kFrontTelevision).glow.glTexture, 0U);
    Settings().SetFloat(L"video_crt", 0.0f);
    application.SetView({PictureScaler::kSoft4x, false, true, false});
    ASSERT_TRUE(application.Round());
    EXPECT_NE(application.ReadWindow(), plain);
    EXPECT_EQ(application.Sets().Picture(kFrontTelevision).factor, 4U);
    application.SetView({PictureScaler::kNone, false, true, false});
    ASSERT_TRUE(application.Round());
    EXPECT_EQ(application.ReadWindow(), plain);
    EXPECT_EQ(application.Sets().PicturesShown(), shown) << "the machine has made none";
    ASSERT_TRUE(EmuPauseSession(kFrontTelevision, false));
}

TEST_F(WindowTest, AMarkTellsOfFastForwardAndRewinding) {
    Settings().SetInt(L"emu_fastforward", 4);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    const auto press = [&](const wchar_t* action, bool down) {
        ASSERT_TRUE(InjectAction(ActionIndex(action), down));
    };
    EXPECT_EQ(application.Speed(), nullptr);
    press(L"Fast Forward", true);
    ASSERT_TRUE(RunUntil(application, [&] {
        return application.Speed() != nullptr && application.Speed()->Visible();
    }));
    EXPECT_EQ(application.Speed()->Factor(), L"4x");
    EXPECT_EQ(MiddleOf(application), kRed) << "no glyph over the picture";
    press(L"Fast Forward", false);
    ASSERT_TRUE(RunUntil(application, [&] { return !application.Speed()->Visible(); }));
    press(L"Rewind", true);
    ASSERT_TRUE(RunUntil(application, [&] { return application.Speed()->Visible(); }));
    EXPECT_EQ(application.Speed()->Factor(), L"");
    press(L"Rewind", false);
    ASSERT_TRUE(RunUntil(application, [&] { return !application.Speed()->Visible(); }));
}

TEST_F(WindowTest, AScreenshotOfTheWindowIsTheWindow) {
    Settings().SetBool(L"app_screenshotwindow", true);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(InjectAction(ActionIndex(L"Take ScreenShot"), true));
    const auto said = [] {
        return testing::Matches(testing::Contains(testing::StartsWith("Screenshot: ")))(
            ProgramNotices().Lines(0));
    };
    ASSERT_TRUE(RunUntil(application, said));
    ASSERT_TRUE(InjectAction(ActionIndex(L"Take ScreenShot"), false));
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path() / "screenshots")) {
        files.push_back(entry.path());
    }
    ASSERT_EQ(files.size(), 1U);
    std::vector<uint8_t> bytes;
    std::string error;
    ASSERT_TRUE(ReadFile(files[0], bytes, error)) << error;
    PNG_PICTURE picture;
    ASSERT_TRUE(DecodePng(bytes, 4096, picture));
    EXPECT_EQ(picture.width, application.MainWindow().PixelWidth());
    EXPECT_EQ(picture.height, application.MainWindow().PixelHeight());
    EXPECT_EQ(picture.pixels[picture.height / 2 * picture.width + picture.width / 2], kRed);
}

TEST_F(WindowTest, FunctionKeysChangeTheView) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    const auto tap = [&](SDL_Scancode key) {
        Key(key, true);
        Key(key, false);
        ASSERT_TRUE(application.Round());
    };
    EXPECT_FALSE(application.View().linear);
    tap(SDL_SCANCODE_F5);
    EXPECT_TRUE(application.View().linear);
    for (const PictureScaler next : {PictureScaler::kEdge2x, PictureScaler::kEdge4x,
                                     PictureScaler::kSoft4x, PictureScaler::kNone}) {
        tap(SDL_SCANCODE_F6);
        EXPECT_EQ(application.View().scaler, next);
    }
    EXPECT_TRUE(application.View().crop);
    tap(SDL_SCANCODE_F3);
    EXPECT_FALSE(application.View().crop);

    // The picture has one colour, so anything else near the top left is text.
    const auto textRows = [&] {
        const auto pixels = application.ReadWindow();
        const uint32_t width = application.MainWindow().PixelWidth();
        const std::vector<uint32_t> rows(pixels.begin() + width * 20, pixels.begin() + width * 70);
        return std::count_if(rows.begin(), rows.end(),
                             [](uint32_t pixel) { return pixel != kRed && pixel != 0xFF000000; });
    };
    EXPECT_EQ(textRows(), 0);
    tap(SDL_SCANCODE_F2);
    EXPECT_TRUE(application.View().statistics);
    ASSERT_TRUE(RunFrames(application, 70));
    EXPECT_GT(textRows(), 100) << "two lines of text";
}

TEST_F(WindowTest, TheStatusLinesAreAtTheirPlaces) {
    // As wide as SDL's offscreen display allows; positions depend on the height.
    constexpr uint32_t kWidth = 1024;
    Settings().SetInt(L"app_window_width", kWidth);
    Settings().SetInt(L"app_window_height", 720);
    EmuSetMachines(PlainMachines());
    gPlainShape = {1.44f, 1.44f}; // over the whole width, with four rows of black above
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_EQ(application.MainWindow().PixelWidth(), kWidth);
    ASSERT_EQ(application.MainWindow().PixelHeight(), 720u);
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kPlainColour));
    ASSERT_TRUE(application.Round());
    const std::vector<uint32_t> without = application.ReadWindow();
    const auto at = [](const std::vector<uint32_t>& window, uint32_t x, uint32_t y) {
        return window[size_t{y} * kWidth + x];
    };
    application.SetView({PictureScaler::kNone, false, true, true});
    ASSERT_TRUE(application.Round());
    // The rate in the first line is that of the last whole second.
    std::vector<uint32_t> with;
    ASSERT_TRUE(RunUntil(application, [&] {
        with = application.ReadWindow();
        for (uint32_t y = 0; y < 55; ++y) {
            if (at(with, 16, y) != at(without, 16, y)) {
                return true;
            }
        }
        return false;
    }));
    // The dark bar behind a line reaches two dots beyond its nine rows of dots, of two pixels each. From
    // the lines' tops at 43 and 63 that is from 39 to 64 and from 59 to 84; in column 16, two dots left
    // of the letters' first at 20, nothing else is drawn. Where the bars lie over each other it is darker.
    for (uint32_t y = 5; y < 200; ++y) {
        const bool first = y >= 39 && y <= 64;
        const bool second = y >= 59 && y <= 84;
        const uint32_t shown = at(with, 16, y) & 0xFF;
        const uint32_t once = at(with, 16, 40) & 0xFF;
        ASSERT_LT(once, kPlainColour & 0xFF);
        if (first && second) {
            EXPECT_LT(shown, once) << y;
        } else {
            EXPECT_EQ(shown, first || second ? once : kPlainColour & 0xFF) << y;
        }
        EXPECT_EQ(at(with, 15, y), at(without, 15, y)) << y << ": left of the bars";
    }
    // Letters: the tallest of each line begin at its top.
    constexpr uint32_t kLetters = 0xFFFFE080;
    const auto hasLetters = [&](uint32_t y) {
        return std::count(with.begin() + y * kWidth, with.begin() + (y + 1) * kWidth, kLetters) > 0;
    };
    EXPECT_FALSE(hasLetters(42));
    EXPECT_TRUE(hasLetters(43));
    EXPECT_FALSE(hasLetters(62));
    EXPECT_TRUE(hasLetters(63));
}

TEST_F(WindowTest, AResizedWindowIsDrawnInItsNewSize) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    if (std::strcmp(SDL_GetCurrentVideoDriver(), "offscreen") == 0) {
        GTEST_SKIP() << "off the screen what is drawn on keeps its size; WindowUnderX runs this";
    }
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    constexpr WINDOW_SIZE kSizes[] = {
        {800, 450},
        {420, 600},
    };
    for (const WINDOW_SIZE& size : kSizes) {
        SDL_SetWindowSize(SDL_GL_GetCurrentWindow(), size.width, size.height);
        ASSERT_TRUE(RunUntil(application, [&] {
            return application.MainWindow().PixelWidth() == static_cast<uint32_t>(size.width) &&
                   application.MainWindow().PixelHeight() == static_cast<uint32_t>(size.height);
        }));
        ASSERT_TRUE(RunFrames(application, 5));
        CompareWindow(application, application.View());
    }
}

TEST_F(WindowTest, FullScreenAndBack) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    // Without a window manager no window is given another size, so here it is only asked for.
    for (const SDL_Keymod modifier : {KMOD_NONE, KMOD_ALT}) {
        for (const bool full : {true, false}) {
            Key(modifier == KMOD_NONE ? SDL_SCANCODE_F11 : SDL_SCANCODE_RETURN, true, modifier);
            ASSERT_TRUE(application.Round());
            EXPECT_EQ(IsFullScreen(), full);
            EXPECT_EQ(Settings().GetBool(L"app_fullscreen"), full) << "what the options show";
            Key(modifier == KMOD_NONE ? SDL_SCANCODE_F11 : SDL_SCANCODE_RETURN, false, modifier);
            const uint64_t shown = application.Sets().PicturesShown();
            ASSERT_TRUE(RunUntil(application,
                                 [&] { return application.Sets().PicturesShown() > shown + 2; }));
            EXPECT_EQ(MiddleOf(application), kRed) << "the game goes on";
            EXPECT_EQ(IsFullScreen(), full) << "a key that is let go changes nothing";
        }
    }
}

TEST_F(WindowTest, AWindowThatStartsFullScreenIsDrawnInTheDisplaysSize) {
    Settings().SetBool(L"app_fullscreen", true);
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    EXPECT_TRUE(IsFullScreen());
    if (std::strcmp(SDL_GetCurrentVideoDriver(), "offscreen") != 0) {
        GTEST_SKIP() << "a display server may want a window manager for it; run off the screen";
    }
    SDL_DisplayMode display{};
    ASSERT_EQ(SDL_GetDesktopDisplayMode(0, &display), 0);
    EXPECT_EQ(application.MainWindow().PixelWidth(), static_cast<uint32_t>(display.w));
    EXPECT_EQ(application.MainWindow().PixelHeight(), static_cast<uint32_t>(display.h));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(application.Round());
    CompareWindow(application, application.View());
}
