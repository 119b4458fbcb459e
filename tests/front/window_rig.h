// The windowed program in this process, for the tests that play it: a home folder of its own, a game
// that shows button presses, rounds until something happens.
#pragma once

#include "base/files.h"
#include "front/application.h"
#include "front/notices.h"
#include "front/session_callbacks.h"
#include "front/tools/play.h"
#include "host/machine_list.h"
#include "machines/machines.h"
#include "sega8/machine_rig.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <SDL.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <string>
#include <vector>

inline constexpr uint32_t kRed = 0xFFFF0000;
inline constexpr uint32_t kBlue = 0xFF0000FF;

// Fills the screen with red until button 1 is pressed, then with blue.
inline std::vector<uint8_t> LatchingRom() {
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

// Moves the mouse to a place in the window, then holds its left button there or lets go of it.
inline void PointAt(int32_t x, int32_t y, bool down) {
    SDL_Event move{};
    move.type = SDL_MOUSEMOTION;
    move.motion.x = x;
    move.motion.y = y;
    SDL_PushEvent(&move);
    SDL_Event button{};
    button.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    button.button.button = SDL_BUTTON_LEFT;
    button.button.state = down ? SDL_PRESSED : SDL_RELEASED;
    button.button.x = x;
    button.button.y = y;
    SDL_PushEvent(&button);
}

inline size_t ActionIndex(const std::wstring& name) {
    const auto actions = InputActions();
    for (size_t i = 0; i < actions.size(); ++i) {
        if (actions[i].name == name) {
            return i;
        }
    }
    ADD_FAILURE() << "no such action";
    return 0;
}

class WindowTest : public testing::Test {
protected:
    void SetUp() override {
        SetHomeFolder(folder.Path());
        RegisterDefaultSettings(Settings());
        Settings().SetBool(L"app_fullscreen", false);
        Settings().SetBool(L"video_integer_window", false); // pictures fill the window
        Settings().SetBool(L"app_vsync", false);
        Settings().SetInt(L"app_window_width", 640);
        Settings().SetInt(L"app_window_height", 480);
        Settings().SetInt(L"app_keycards",
                          3); // a player who knows the keys: no card lies over the picture
        Settings().SetString(L"app_window_place", L"");
        Settings().SetInt(L"emu_scaler", 0);
        Settings().SetBool(L"emu_smooth", false);
        Settings().SetBool(L"emu_crop", true);
        EmuSetMachines(BuiltInMachines());
        // Those of the test before would lie over the picture for some seconds.
        static_cast<void>(ProgramNotices().Lines(INT64_MAX));
        folder.Write("latch.sms", LatchingRom());
        EndIfItHangs();
    }

    void TearDown() override { alarm(0); }

    // To be called in ASSERT_NO_FATAL_FAILURE, like the two below: without a window a test cannot
    // continue.
    static void Start(Application& application) {
        std::string error;
        ASSERT_TRUE(application.Start(error)) << error;
        application.Sets().KeepPicture(true);
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

public:
    // Rounds until `done`. Fails if the program ends, or after far more rounds or time than a busy
    // computer takes.
    template <typename Done>
    static testing::AssertionResult RunUntil(Application& application, Done done) {
        constexpr int kMostRounds = 10000;
        const auto end = std::chrono::steady_clock::now() + kLongestWait;
        for (int rounds = 0; rounds < kMostRounds; ++rounds) {
            if (done()) {
                return testing::AssertionSuccess();
            }
            if (!application.Round()) {
                return testing::AssertionFailure() << "the program ended in round " << rounds;
            }
            if (std::chrono::steady_clock::now() >= end) {
                return testing::AssertionFailure() << "not within " << kLongestWait.count()
                                                   << " seconds, " << rounds << " rounds";
            }
        }
        return testing::AssertionFailure() << "not within " << kMostRounds << " rounds";
    }

    static testing::AssertionResult RunUntilColour(Application& application, uint32_t colour) {
        return RunUntil(application, [&] { return MiddleOf(application) == colour; });
    }

    static uint32_t MiddleOf(const Application& application) {
        const Televisions::KEPT_PICTURE& picture = application.Sets().Kept();
        if (picture.pixels.empty()) {
            return 0;
        }
        return picture.pixels[size_t{picture.frame.height / 2} * picture.frame.width +
                              picture.frame.width / 2];
    }

    static testing::AssertionResult RunFrames(Application& application, uint32_t frames) {
        const uint32_t end = FramesPresented() + frames;
        return RunUntil(application, [&] { return FramesPresented() >= end; });
    }

protected:
    TemporaryFolder folder;

private:
    // A call that waits forever for a display cannot be cancelled, so the process ends and names the
    // test.
    static void EndIfItHangs() {
        constexpr unsigned kLongestTest = 280; // seconds; less than the time limit of a test
        static std::string word;
        const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
        word = std::string(test.test_suite_name()) + "." + test.name() + " hangs and is ended\n";
        std::signal(SIGALRM, [](int) {
            [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, word.data(), word.size());
            _exit(1);
        });
        alarm(kLongestTest);
    }
};
