// The windowed program: started, played with keys, checked and ended, in this process.
#include "audio/sound.h"
#include "front/notices.h"
#include "front/program_title.h"
#include "front/run_settings.h"
#include "front/tools/key_injector.h"
#include "front/unread_notices.h"
#include "front/window_rig.h"
#include "host/host_data.h"
#include "megadrive/md_rig.h"
#include "settings/bindings.h"

#include "support/least_images.h"
#include <gmock/gmock.h>

#include <atomic>

#ifdef OMBRELUNE_SANITIZED
// The graphics driver is unloaded with each window and leaks memory that cannot be attributed to it.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}
#endif

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

namespace {

void Drop(const std::string& path) {
    SDL_Event event{};
    event.type = SDL_DROPFILE;
    event.drop.file = SDL_strdup(path.c_str());
    SDL_PushEvent(&event);
}

std::string Title() {
    return SDL_GetWindowTitle(SDL_GL_GetCurrentWindow());
}

// Off the screen and without a device, unless the environment says otherwise; the programs that tests
// start inherit it.
class Surroundings : public testing::Environment {
public:
    void SetUp() override {
        SDL_setenv("SDL_VIDEODRIVER", "offscreen", 0);
        SDL_setenv("SDL_AUDIODRIVER", "dummy", 0);
    }
};
testing::Environment* const kSurroundings =
    testing::AddGlobalTestEnvironment(new Surroundings); // owned by the test library

} // namespace

TEST_F(WindowTest, IsPlayedByKeysAndResumesWhereItWasLeft) {
    {
        Application application;
        ASSERT_NO_FATAL_FAILURE(Start(application));
        ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
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
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntil(application, [&] { return application.Sets().PicturesShown() > 0; }));
    EXPECT_EQ(MiddleOf(application), kBlue) << "no static, and the button's colour at once";
}

// Press and release come in one batch of events. On a very busy computer a session may pause for longer
// than a tap is kept, so a few are made.
TEST_F(WindowTest, ATapWithinOneRoundPressesTheButton) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    for (int tap = 0; tap < 3 && MiddleOf(application) == kRed; ++tap) {
        ASSERT_TRUE(InjectAction(ActionIndex(L"SMS P1 BUTTON1"), true));
        ASSERT_TRUE(InjectAction(ActionIndex(L"SMS P1 BUTTON1"), false));
        ASSERT_TRUE(RunFrames(application, 6));
    }
    EXPECT_EQ(MiddleOf(application), kBlue);
}

TEST_F(WindowTest, SavesLoadsAndRewindsByHotkey) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
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
    EXPECT_TRUE(RunUntil(application, [&] { return application.Sets().Kept().pixels[0] == kRed; }));
    press(L"Rewind", false);
}

TEST_F(WindowTest, AFileDroppedOnItIsPlayed) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, "demo:sms-luciole"));
    ASSERT_TRUE(RunFrames(application, 20));
    folder.Write("broken.sms", "");
    Drop((folder.Path() / "broken.sms").string());
    const uint64_t before = application.Sets().PicturesShown();
    ASSERT_TRUE(
        RunUntil(application, [&] { return application.Sets().PicturesShown() > before + 5; }));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("broken.sms")));
    EXPECT_NE(MiddleOf(application), kRed) << "the game goes on";

    Drop(LatchGame());
    EXPECT_TRUE(RunUntilColour(application, kRed));
    EXPECT_THAT(Title(), HasSubstr("latch"));
}

TEST_F(WindowTest, PlaysOnWithoutItsSoundDeviceAndFindsItAgain) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_TRUE(RunUntil(application, [] { return SoundDeviceNumber() != 0; }))
        << "SDL's dummy driver";
    const uint32_t device = SoundDeviceNumber();
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    SDL_Event event{};
    event.type = SDL_AUDIODEVICEREMOVED;
    event.adevice.which = device;
    event.adevice.iscapture = 0;
    SDL_PushEvent(&event);
    const auto said = [](const std::string& part) {
        return testing::Matches(Contains(HasSubstr(part)))(ProgramNotices().Lines(0));
    };
    ASSERT_TRUE(RunUntil(application, [&] { return said("sound device is gone"); }));
    ASSERT_TRUE(RunUntil(application, [&] { return said("Sound is back"); }));
    EXPECT_NE(SoundDeviceNumber(), 0u) << "the next output took over";
    EXPECT_TRUE(RunFrames(application, 20));
}

TEST_F(WindowTest, FindsASoundDriverThatWasMissingAtTheStart) {
    static std::atomic<int64_t> clock;
    clock = 1'000'000;
    HostSetClock({[] { return clock.load(); }, nullptr});
    const std::string driver = SDL_getenv("SDL_AUDIODRIVER");
    SDL_setenv("SDL_AUDIODRIVER", "nonesuch", 1);
    {
        Application application;
        ASSERT_NO_FATAL_FAILURE(Start(application));
        ASSERT_TRUE(RunUntil(application, [] {
            return testing::Matches(Contains(HasSubstr("no sound")))(ProgramNotices().Lines(0));
        }));
        EXPECT_EQ(SoundDeviceNumber(), 0u);
        SDL_setenv("SDL_AUDIODRIVER", driver.c_str(),
                   1); // time does not advance, so nothing retries
        clock += 2'000'000;
        EXPECT_TRUE(RunUntil(application, [] { return SoundDeviceNumber() != 0; }));
    }
    HostSetClock({nullptr, nullptr});
}

TEST_F(WindowTest, SizesThatCannotBeHadAreMadeUsableAndSaidSo) {
    for (const int size : {0, -7, 2000000000}) {
        Settings().SetInt(L"app_window_width", size);
        Settings().SetInt(L"app_window_height", size);
        Application application;
        ASSERT_NO_FATAL_FAILURE(Start(application));
        EXPECT_GE(application.MainWindow().PixelWidth(), 320u);
        const std::string asked = std::to_string(size) + " x " + std::to_string(size);
        EXPECT_THAT(ProgramNotices().Lines(0),
                    Contains(AllOf(HasSubstr("is not possible"), HasSubstr(asked))));
        ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
        EXPECT_TRUE(RunUntilColour(application, kRed));
    }
}

TEST_F(WindowTest, ADroppedGameThatCannotRunEndsTheOldOneAndSaysSo) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    ASSERT_TRUE(RunUntilColour(application, kRed));
    // A valid file, but the console does not know its board.
    const auto path = folder.Write("unknown.nes", NesImageOfAnUnknownBoard());
    Drop(path.string());
    ASSERT_TRUE(application.Round());
    EXPECT_FALSE(application.Playing());
    EXPECT_THAT(ProgramNotices().Lines(0),
                Contains(HasSubstr("Error loading game: NES Mapper #255 not supported")));
    EXPECT_EQ(Title(), ProgramTitle());
    ASSERT_TRUE(application.Round());
    const std::vector<uint32_t> pixels = application.ReadWindow();
    EXPECT_EQ(pixels[pixels.size() / 2 + 320], 0xFF000000) << "nothing of the old game";
}

TEST_F(WindowTest, AMachineThatEndsIsTurnedOffAndSaidSo) {
    MdProgram program;
    program.PutLong(4, kMdCodeStart + 1); // a program cannot start at an odd address
    const auto path = folder.Write("gone.md", program.Image());
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, path.string()));
    EXPECT_TRUE(application.Playing());
    EXPECT_EQ(Title(), "gone - Mega Drive - Ombrelune");
    ASSERT_TRUE(RunUntil(application, [&] { return !application.Playing(); }));
    EXPECT_THAT(ProgramNotices().Lines(0), Contains(HasSubstr("address error at 0x000201")));
    EXPECT_EQ(Title(), ProgramTitle());
    ASSERT_NO_FATAL_FAILURE(PlayGame(application, LatchGame()));
    EXPECT_TRUE(RunUntilColour(application, kRed)) << "another game can be played";
    EXPECT_THAT(Title(), HasSubstr("latch"));
}

TEST_F(WindowTest, AGameThatCannotRunLeavesTheProgramUp) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
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
        ASSERT_NO_FATAL_FAILURE(Start(application));
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

// As the options screen does while the program runs.
TEST_F(WindowTest, SettingsThatAreSavedMeanwhileLeaveThoseOfThisRunInUse) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    ASSERT_EQ(SetForThisRun("audio_volume", "0.25"), RunSetting::kSet);
    Settings().SetInt(L"emu_fastforward", 6);
    std::string error;
    ASSERT_TRUE(SaveWithoutRunSettings(error)) << error;
    EXPECT_FLOAT_EQ(Settings().GetFloat(L"audio_volume"), 0.25f);
    SettingsStore saved;
    RegisterDefaultSettings(saved);
    const std::vector<uint8_t> file = folder.Read("config.xml");
    ASSERT_TRUE(saved.Load(file.data(), file.size()));
    EXPECT_FLOAT_EQ(saved.GetFloat(L"audio_volume"), 1.0f);
    EXPECT_EQ(saved.GetInt(L"emu_fastforward"), 6);
}

TEST_F(WindowTest, TakesChangedOptionsAndLeavesWhatThePlayerDid) {
    Application application;
    ASSERT_NO_FATAL_FAILURE(Start(application));
    auto& window = const_cast<Window&>(application.MainWindow());
    WINDOW_OPTIONS options = WindowOptionsFromSettings();
    SDL_SetWindowSize(SDL_GL_GetCurrentWindow(), 500, 400); // by its border
    window.Take(options);
    EXPECT_EQ(window.PixelWidth(), 500u);
    options.width = 800;
    options.height = 600;
    window.Take(options);
    EXPECT_EQ(window.PixelWidth(), 800u);
    EXPECT_EQ(window.PixelHeight(), 600u);
    options.fullScreen = true;
    window.Take(options);
    EXPECT_NE(SDL_GetWindowFlags(SDL_GL_GetCurrentWindow()) & SDL_WINDOW_FULLSCREEN_DESKTOP, 0u);
    window.ToggleFullScreen(); // by its key, which the setting follows
    EXPECT_FALSE(window.FillsDisplay());
    options.fullScreen = false;
    window.Take(options);
    EXPECT_EQ(SDL_GetWindowFlags(SDL_GL_GetCurrentWindow()) & SDL_WINDOW_FULLSCREEN_DESKTOP, 0u);
    options.fullScreen = true;
    window.Take(options);
    EXPECT_NE(SDL_GetWindowFlags(SDL_GL_GetCurrentWindow()) & SDL_WINDOW_FULLSCREEN_DESKTOP, 0u);
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

constexpr size_t kWide = 100; // letters of the line

TEST(Notices, TheNewestAloneIsShownForItsTime) {
    Notices notices;
    notices.Post("one", 0);
    EXPECT_EQ(notices.Shown(0, kWide), "one");
    EXPECT_EQ(notices.Shown(3999999, kWide), "one");
    EXPECT_EQ(notices.Shown(4000000, kWide), "");
    notices.Post("two", 5000000);
    notices.Post("three", 5000000);
    EXPECT_EQ(notices.Shown(5000000, kWide), "three");
    notices.Post("four", 6000000);
    EXPECT_EQ(notices.Shown(6000000, kWide), "four") << "at once";
    notices.Post("four", 9000000);
    EXPECT_EQ(notices.Shown(12999999, kWide), "four") << "shown anew";
    EXPECT_EQ(notices.Shown(16999999, kWide), "") << "and nothing older after it";
}

TEST(Notices, ALongNoticeIsShownPartAfterPart) {
    Notices notices;
    notices.Post("the saved state cannot be loaded", 0);
    EXPECT_EQ(notices.Shown(0, 20), "the saved state ...");
    EXPECT_EQ(notices.Shown(3999999, 20), "the saved state ...");
    EXPECT_EQ(notices.Shown(4000000, 20), "cannot be loaded");
    EXPECT_EQ(notices.Shown(7999999, 20), "cannot be loaded");
    EXPECT_EQ(notices.Shown(8000000, 20), "");
}

TEST(Notices, AFaultComesBackWhenNewerNoticesAreOver) {
    Notices notices;
    notices.Post("fault", 0, Notices::Kind::kFault);
    EXPECT_EQ(notices.Shown(0, kWide), "fault");
    notices.Post("word", 1000000);
    EXPECT_EQ(notices.Shown(1000000, kWide), "word");
    EXPECT_EQ(notices.Shown(5000000, kWide), "fault");
    EXPECT_EQ(notices.Shown(8999999, kWide), "fault") << "for its whole time";
    EXPECT_EQ(notices.Shown(9000000, kWide), "");
}

TEST(Notices, TheTimeOfALineStartsWhenItIsShown) {
    Notices notices;
    notices.Post("the settings are damaged", 0, Notices::Kind::kFault);
    EXPECT_NE(notices.Shown(30000000, kWide), "") << "the start took half a minute";
    EXPECT_NE(notices.Shown(33999999, kWide), "");
    EXPECT_EQ(notices.Shown(34000000, kWide), "");
    notices.Post("never shown", 40000000, Notices::Kind::kFault);
    EXPECT_THAT(notices.UnreadFaults(90000000), testing::ElementsAre("never shown"));
}

TEST(Notices, FaultsThatHadNoTimeToBeReadAreUnread) {
    using enum Notices::Kind;
    Notices notices;
    notices.Post("read", 0, kFault);
    EXPECT_EQ(notices.Shown(0, kWide), "read");
    EXPECT_EQ(notices.Shown(4000000, kWide), "");
    notices.Post("unread", 5000000, kFault);
    notices.Post("a word", 5000000);
    EXPECT_EQ(notices.Shown(5000000, kWide), "a word");
    EXPECT_THAT(notices.UnreadFaults(6000000), testing::ElementsAre("unread"));
    EXPECT_THAT(notices.UnreadFaults(6000000), testing::IsEmpty()) << "asked once";
    EXPECT_EQ(notices.Shown(6000000, kWide), "a word");
}

TEST(Notices, AFaultThatMadeRoomIsUnreadToo) {
    Notices notices;
    notices.Post("fault", 0, Notices::Kind::kFault);
    for (const char* text : {"a", "b", "c", "d"}) {
        notices.Post(text, 1000000);
    }
    EXPECT_THAT(notices.Lines(1000000), testing::ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(notices.UnreadFaults(9000000), testing::ElementsAre("fault"));
}

TEST_F(WindowTest, AFaultOfAWindowClosedAtOnceIsToldAtTheNextStart) {
    const auto shown = [] { return ProgramNotices().Lines(HostClock().nowMicroseconds()); };
    static_cast<void>(ProgramNotices().UnreadFaults(0)); // those of other tests
    KeepUnreadNotices();
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "unread.txt")) << "nothing to tell";
    PostReport("the disk is full");
    KeepUnreadNotices();
    EXPECT_THAT(shown(), Not(Contains("the disk is full")));
    TellUnreadNotices();
    EXPECT_THAT(shown(), Contains("Last time: the disk is full"));
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "unread.txt"));
    KeepUnreadNotices(); // closed at once again
    TellUnreadNotices();
    EXPECT_THAT(shown(), Contains("Last time: the disk is full"));
    static_cast<void>(ProgramNotices().UnreadFaults(0));
}
