// The windowed program: started, played by keys, looked at and ended, in this process.
#include "audio/sound.h"
#include "base/files.h"
#include "front/application.h"
#include "front/demos.h"
#include "front/key_injector.h"
#include "front/notices.h"
#include "front/play.h"
#include "front/processor_binder.h"
#include "front/run_settings.h"
#include "front/settings/bindings.h"
#include "front/settings/settings.h"
#include "host/machine_list.h"
#include "host/machines.h"
#include "library/convert.h"
#include "library/systems.h"
#include "sega8/machine_rig.h"

#include "support/temporary_folder.h"
#include <SDL.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <thread>

#ifdef OMBRELUNE_SANITIZED
// The graphics driver is unloaded with each window and leaves memory behind that no name is left for.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}
#endif

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

namespace {

constexpr uint32_t kRed = 0xFFFF0000;
constexpr uint32_t kBlue = 0xFF0000FF;

// Fills the screen with red until button 1 was pressed once, and with blue from then on.
std::vector<uint8_t> LatchingRom() {
    Program program;
    program.Bytes({0xF3, 0xED, 0x56, 0x31, 0xF0, 0xDF});
    program.VdpRegister(0xBF, 0, 0x04).VdpRegister(0xBF, 1, 0x80).VdpRegister(0xBF, 7, 0);
    const int loop = program.Here();
    program.Bytes({0xDB, 0xBF, 0xE6, 0x80, 0x28, 0xFA}); // until the frame is over
    program.Bytes({0xDB, 0xDC, 0xE6, 0x10, 0x20, 0x05}); // button 1 pulls its bit down
    program.Store(0xC100, 1);
    program.Out(0xBF, 0x10).Out(0xBF, 0xC0);
    program.Bytes({0x3A, 0x00, 0xC1, 0xB7, 0x3E, 0x03, 0x28, 0x02, 0x3E, 0x30, 0xD3, 0xBE});
    const int next = program.Here() + 2;
    program.Bytes({0x18, (loop - next) & 0xFF});
    return program.Image();
}

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

size_t ActionIndex(const std::wstring& name) {
    const auto actions = InputActions();
    for (size_t i = 0; i < actions.size(); ++i) {
        if (actions[i].name == name) {
            return i;
        }
    }
    ADD_FAILURE() << "no such action";
    return 0;
}

void Key(SDL_Scancode scancode, bool down) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = scancode;
    SDL_PushEvent(&event);
}

// Off the screen and without a device, unless whoever runs the tests wants others; the programs that
// tests start inherit it.
class Surroundings : public testing::Environment {
public:
    void SetUp() override {
        SDL_setenv("SDL_VIDEODRIVER", "offscreen", 0);
        SDL_setenv("SDL_AUDIODRIVER", "dummy", 0);
    }
};
testing::Environment* const kSurroundings =
    testing::AddGlobalTestEnvironment(new Surroundings); // the test library's own from here on

class WindowTest : public testing::Test {
protected:
    void SetUp() override {
        SetHomeFolder(folder.Path());
        RegisterDefaultSettings(Settings());
        Settings().SetBool(L"app_fullscreen", false);
        Settings().SetBool(L"app_vsync", false);
        Settings().SetInt(L"app_window_width", 640);
        Settings().SetInt(L"app_window_height", 480);
        EmuSetMachines(BuiltInMachines());
        folder.Write("latch.sms", LatchingRom());
    }

    void Start(Application& application) {
        std::string error;
        ASSERT_TRUE(application.Start(error)) << error;
        application.KeepPicture(true);
    }

    static void PlayGame(Application& application, const std::string& game,
                         const std::vector<std::string>& settings = {}) {
        PLAY_OPTIONS options;
        options.game = game;
        options.settings = settings;
        OPENED_GAME opened;
        std::string error;
        ASSERT_EQ(OpenForPlay(options, opened, error), 0) << error;
        ASSERT_TRUE(application.Play(opened, error)) << error;
    }

    [[nodiscard]] std::string LatchGame() const { return (folder.Path() / "latch.sms").string(); }

    // Rounds until `done`; false when the program ends or ten thousand rounds don't do.
    template <typename Done>
    static bool RunUntil(Application& application, Done done) {
        for (int rounds = 0; rounds < 10000; ++rounds) {
            if (done()) {
                return true;
            }
            if (!application.Round()) {
                return false;
            }
        }
        return false;
    }

    static bool RunUntilColour(Application& application, uint32_t colour) {
        return RunUntil(application, [&] { return MiddleOf(application) == colour; });
    }

    static uint32_t MiddleOf(const Application& application) {
        const Application::KEPT_PICTURE& picture = application.Picture();
        if (picture.pixels.empty()) {
            return 0;
        }
        return picture.pixels[size_t{picture.frame.height / 2} * picture.frame.width +
                              picture.frame.width / 2];
    }

    static bool RunFrames(Application& application, uint32_t frames) {
        const uint32_t end = Application::FramesPresented() + frames;
        return RunUntil(application, [&] { return Application::FramesPresented() >= end; });
    }

    TemporaryFolder folder;
};

// ---- The composed picture, by the rule of its placing: as high as the screen unless that makes it too
// wide, in the middle, the texture cut by half a texel on each side.

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

ENLARGED Enlarge(const Application::KEPT_PICTURE& picture, PictureScaler scaler) {
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

// Counts the pixels of the window that are not what it should show.
void CompareWindow(Application& application, const Application::VIEW& view) {
    const std::vector<uint32_t> window = application.ReadWindow();
    const auto width = static_cast<int>(application.MainWindow().PixelWidth());
    const auto height = static_cast<int>(application.MainWindow().PixelHeight());
    ASSERT_EQ(window.size(), static_cast<size_t>(width) * static_cast<size_t>(height));
    const Application::KEPT_PICTURE& picture = application.Picture();
    const ENLARGED source = Enlarge(picture, view.scaler);
    const EXPECTED_VIEW expected =
        ExpectedView(picture.frame, view.crop, ScalerFactor(view.scaler), width, height);
    // The software renderer weighs in steps of 1/256, twice.
    const int tolerance = view.linear ? 4 : 0;
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
            const double u = expected.texelX + 0.5 + across * (expected.texelWidth - 1);
            const double v = expected.texelY + 0.5 + down * (expected.texelHeight - 1);
            const auto fits = [&](double nudge, double lift) {
                const uint32_t wanted = view.linear
                                            ? Bilinear(source, u + nudge, v + lift)
                                            : source.At(static_cast<int>(std::floor(u + nudge)),
                                                        static_cast<int>(std::floor(v + lift)));
                return Distance(wanted, shown) <= tolerance;
            };
            bool found = fits(0, 0);
            // Just on the border of two texels rounding decides.
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
                const Application::VIEW view{scaler, linear, crop, false};
                application.SetView(view);
                // The next picture comes through this scaler.
                const uint64_t shown = application.PicturesShown();
                while (application.PicturesShown() == shown) {
                    ASSERT_TRUE(application.Round());
                }
                CompareWindow(application, view);
            }
        }
    }
}

} // namespace

TEST_F(WindowTest, ShowsTheMachinesPictureInEveryView) {
    Application application;
    Start(application);
    PlayGame(application, "demo:sms-luciole");
    ASSERT_TRUE(RunFrames(application, 150));
    CompareAllViews(application);
}

TEST_F(WindowTest, ShowsAWidePictureAndANarrowWindow) {
    Settings().SetInt(L"app_window_width", 350);
    Settings().SetInt(L"app_window_height", 601);
    Application application;
    Start(application);
    PlayGame(application, "demo:gg-glimmer");
    ASSERT_TRUE(RunFrames(application, 150));
    CompareAllViews(application);
}

TEST_F(WindowTest, ShowsAPictureThatWasTurned) {
    Application application;
    Start(application);
    PlayGame(application, "demo:arcade-skywren");
    ASSERT_TRUE(RunFrames(application, 100));
    const EMU_VIDEO_FRAME upright = application.Picture().frame;
    OPENED_GAME opened;
    ASSERT_TRUE(OpenDemo("arcade-skywren", opened));
    opened.game = OnDialBoard("arcade-skywren");
    std::string error;
    ASSERT_TRUE(application.Play(opened, error)) << error;
    ASSERT_TRUE(RunFrames(application, 100));
    EXPECT_EQ(application.Picture().frame.width, upright.height);
    EXPECT_EQ(application.Picture().frame.height, upright.width);
    CompareAllViews(application);
}

TEST_F(WindowTest, IsPlayedByKeysAndResumesWhereItWasLeft) {
    {
        Application application;
        Start(application);
        PlayGame(application, LatchGame());
        ASSERT_TRUE(RunUntilColour(application, kRed));
        ASSERT_TRUE(InjectAction(ActionIndex(L"SMS P1 BUTTON1"), true));
        ASSERT_TRUE(RunUntilColour(application, kBlue));
        ASSERT_TRUE(InjectAction(ActionIndex(L"SMS P1 BUTTON1"), false));
        ASSERT_TRUE(RunFrames(application, 10));
        SDL_Event quit{};
        quit.type = SDL_QUIT;
        SDL_PushEvent(&quit);
        EXPECT_FALSE(RunUntil(application, [] { return false; }));
        application.Stop();
    }
    Application application;
    Start(application);
    PlayGame(application, LatchGame());
    ASSERT_TRUE(RunUntil(application, [&] { return application.PicturesShown() > 0; }));
    EXPECT_EQ(MiddleOf(application), kBlue) << "no static, and the button's colour at once";
}

TEST_F(WindowTest, SavesLoadsAndRewindsByHotkey) {
    Application application;
    Start(application);
    PlayGame(application, LatchGame());
    ASSERT_TRUE(RunUntilColour(application, kRed));
    ASSERT_TRUE(RunFrames(application, 20));
    const auto press = [&](const wchar_t* action, bool down) {
        ASSERT_TRUE(InjectAction(ActionIndex(action), down));
    };
    const auto lines = [] { return ProgramNotices().Lines(0); };

    press(L"Save State", true);
    ASSERT_TRUE(RunUntil(application, [&] { return !lines().empty(); }));
    EXPECT_THAT(lines(), Contains("State saved"));
    press(L"Save State", false);
    press(L"SMS P1 BUTTON1", true);
    ASSERT_TRUE(RunUntilColour(application, kBlue));
    press(L"SMS P1 BUTTON1", false);
    ASSERT_TRUE(RunFrames(application, 5));

    press(L"Load State", true);
    ASSERT_TRUE(RunUntilColour(application, kRed));
    EXPECT_THAT(lines(), Contains("State loaded"));
    press(L"Load State", false);
    ASSERT_TRUE(RunFrames(application, 5));

    press(L"SMS P1 BUTTON1", true);
    ASSERT_TRUE(RunUntilColour(application, kBlue));
    press(L"SMS P1 BUTTON1", false);
    ASSERT_TRUE(RunFrames(application, 5));
    press(L"Rewind", true); // Shift and Tab
    // The glyph stands in the middle of what is shown; a corner has the picture's colour.
    EXPECT_TRUE(RunUntil(application, [&] { return application.Picture().pixels[0] == kRed; }));
    press(L"Rewind", false);
}

TEST_F(WindowTest, FunctionKeysChangeTheView) {
    Application application;
    Start(application);
    PlayGame(application, LatchGame());
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

    // The picture is one colour, so whatever else is seen near the top left is text.
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
    InputSetWalkingRoom(true);
    tap(SDL_SCANCODE_F2);
    EXPECT_TRUE(application.View().statistics) << "not while the user walks the room";
}

TEST_F(WindowTest, TheMouseOverThePictureIsALightGun) {
    Application application;
    Start(application);
    PlayGame(application, LatchGame(), {"port1=phaser"});
    ASSERT_TRUE(RunUntilColour(application, kRed));
    SDL_Event move{};
    move.type = SDL_MOUSEMOTION;
    move.motion.x = 320;
    move.motion.y = 240;
    SDL_PushEvent(&move);
    SDL_Event press{};
    press.type = SDL_MOUSEBUTTONDOWN;
    press.button.button = SDL_BUTTON_LEFT;
    press.button.state = SDL_PRESSED;
    press.button.x = 320;
    press.button.y = 240;
    SDL_PushEvent(&press);
    EXPECT_TRUE(RunUntilColour(application, kBlue)) << "the trigger is button 1";
}

TEST_F(WindowTest, AFileDroppedOnItIsPlayed) {
    Application application;
    Start(application);
    PlayGame(application, "demo:sms-luciole");
    ASSERT_TRUE(RunFrames(application, 20));
    const auto drop = [](const std::string& path) {
        SDL_Event event{};
        event.type = SDL_DROPFILE;
        event.drop.file = SDL_strdup(path.c_str());
        SDL_PushEvent(&event);
    };
    folder.Write("broken.sms", "");
    drop((folder.Path() / "broken.sms").string());
    const uint64_t before = application.PicturesShown();
    ASSERT_TRUE(RunUntil(application, [&] { return application.PicturesShown() > before + 5; }));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("broken.sms")));
    EXPECT_NE(MiddleOf(application), kRed) << "the game goes on";

    drop(LatchGame());
    EXPECT_TRUE(RunUntilColour(application, kRed));
    EXPECT_THAT(SDL_GetWindowTitle(SDL_GL_GetCurrentWindow()), HasSubstr("latch"));
}

TEST_F(WindowTest, PlaysOnWithoutItsSoundDeviceAndFindsItAgain) {
    Application application;
    Start(application);
    const uint32_t device = SoundDeviceNumber();
    ASSERT_NE(device, 0u) << "SDL's dummy driver";
    PlayGame(application, LatchGame());
    ASSERT_TRUE(RunUntilColour(application, kRed));
    SDL_Event event{};
    event.type = SDL_AUDIODEVICEREMOVED;
    event.adevice.which = device;
    event.adevice.iscapture = 0;
    SDL_PushEvent(&event);
    ASSERT_TRUE(RunFrames(application, 20));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("sound device is gone")));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains("Sound is back"));
    EXPECT_NE(SoundDeviceNumber(), 0u) << "the next output took over";
}

TEST_F(WindowTest, SizesThatCannotBeHadAreMadeUsableAndSaidSo) {
    for (const int size : {0, -7, 2000000000}) {
        Settings().SetInt(L"app_window_width", size);
        Settings().SetInt(L"app_window_height", size);
        Application application;
        Start(application);
        EXPECT_GE(application.MainWindow().PixelWidth(), 320u);
        const std::string asked = std::to_string(size) + " x " + std::to_string(size);
        EXPECT_THAT(ProgramNotices().Lines(0),
                    Contains(AllOf(HasSubstr("cannot be had"), HasSubstr(asked))));
        PlayGame(application, LatchGame());
        EXPECT_TRUE(RunUntilColour(application, kRed));
    }
}

TEST_F(WindowTest, AGameThatCannotRunLeavesTheProgramUp) {
    Application application;
    Start(application);
    OPENED_GAME nothing;
    std::string error;
    EXPECT_FALSE(application.Play(nothing, error));
    EXPECT_THAT(error, HasSubstr("Error loading game"));
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(application.Round());
    }
}

TEST_F(WindowTest, SettingsOfThisRunAreNotSaved) {
    {
        Application application;
        Start(application);
        PLAY_OPTIONS options;
        options.game = LatchGame();
        options.settings = {"audio_volume=0.25", "fm=1"};
        OPENED_GAME opened;
        std::string error;
        ASSERT_EQ(OpenForPlay(options, opened, error), 0) << error;
        EXPECT_FLOAT_EQ(Settings().GetFloat(L"audio_volume"), 0.25f);
    }
    RegisterDefaultSettings(Settings());
    std::string error;
    ASSERT_TRUE(LoadSettingsFile(Settings(), error)) << error;
    EXPECT_FLOAT_EQ(Settings().GetFloat(L"audio_volume"), 1.0f);
    EXPECT_TRUE(Settings().GetBool(L"app_720runonce")) << "set at the end of every run";
}

TEST(WindowSize, IsKeptWherePossible) {
    const WINDOW_SIZE display{1920, 1080};
    const struct {
        WINDOW_SIZE wanted;
        WINDOW_SIZE given;
    } rows[] = {
        {{1280, 720},    {1280, 720} },
        {{1920, 1080},   {1920, 1080}},
        {{4000, 720},    {1920, 720} },
        {{0, 720},       {1280, 720} },
        {{1280, -1},     {1280, 720} },
        {{99999, 99999}, {1280, 720} },
        {{10, 10},       {320, 240}  },
    };
    for (const auto& row : rows) {
        std::string word;
        const WINDOW_SIZE size = UsableWindowSize(row.wanted, display, word);
        EXPECT_EQ(size.width, row.given.width);
        EXPECT_EQ(size.height, row.given.height);
        const bool same =
            row.wanted.width == row.given.width && row.wanted.height == row.given.height;
        EXPECT_EQ(word.empty(), same) << word;
    }
}

TEST(Notices, StayForTheirTimeAndMakeRoomForNewerOnes) {
    Notices notices;
    notices.Post("one", 0);
    notices.Post("two", 1000000);
    EXPECT_THAT(notices.Lines(3999999), testing::ElementsAre("one", "two"));
    EXPECT_THAT(notices.Lines(4000000), testing::ElementsAre("two"));
    notices.Post("two", 4500000);
    EXPECT_THAT(notices.Lines(5500000), testing::ElementsAre("two")) << "shown anew, once";
    for (const char* text : {"a", "b", "c", "d", "e"}) {
        notices.Post(text, 6000000);
    }
    EXPECT_THAT(notices.Lines(6000000), testing::ElementsAre("b", "c", "d", "e"));
}

TEST(ProcessorBinder, LeavesThreadsAloneUnlessAsked) {
    RegisterDefaultSettings(Settings());
    ProcessorBinderStart();
    EXPECT_EQ(BindProcessor(0), -1);
    for (uint32_t i = 0; i < ProcessorCount(); ++i) {
        EXPECT_EQ(BoundThreads(i), 0u);
    }
    ReleaseProcessor(-1);
    ReleaseProcessor(33);
    ReleaseProcessor(0);
    EXPECT_EQ(BoundThreads(0), 0u);
}

TEST(ProcessorBinder, TakesTheProcessorWithTheFewestThreads) {
    RegisterDefaultSettings(Settings());
    Settings().SetBool(L"app_managecpucores", true);
    ProcessorBinderStart();
    if (ProcessorCount() < 2) {
        EXPECT_EQ(BindProcessor(0), -1) << "one processor never binds";
        return;
    }
    std::vector<int> tokens;
    std::thread([&] {
        for (uint32_t i = 0; i <= ProcessorCount(); ++i) {
            tokens.push_back(BindProcessor(0));
        }
    }).join();
    for (uint32_t i = 0; i < ProcessorCount(); ++i) {
        EXPECT_EQ(tokens[i], static_cast<int>(i)) << "ties go to the lowest number";
    }
    EXPECT_EQ(tokens.back(), 0);
    EXPECT_EQ(BoundThreads(0), 2u);
    ReleaseProcessor(1);
    EXPECT_EQ(BoundThreads(1), 0u);
    std::thread([&] { EXPECT_EQ(BindProcessor(0), 1); }).join();
    Settings().SetBool(L"app_managecpucores", false);
}
