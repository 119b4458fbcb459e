// A robot plays with the whole program: whatever a player does, whatever becomes of his files, the program keeps its
// promises and ends when it is told to. When it has ended it starts again in the same home folder.
//
// For a long run:
//   OMBRELUNE_PROGRAM_OPERATIONS  inputs a seed, 60 without it
//   OMBRELUNE_PROGRAM_SEEDS       number of seeds, 2 without it
//   OMBRELUNE_PROGRAM_SEED        the first of them, 1 without it
//   OMBRELUNE_PROGRAM_SECONDS     no new seed is begun after that time, and the last one ends; no limit without it
//   OMBRELUNE_PROGRAM_TELL        set: each operation is told before it is done
#include "front/program_robot.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "screens/member_panel.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <set>

namespace {

uint32_t Wanted(const char* name, uint32_t otherwise) {
    const char* const text = std::getenv(name);
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

class ProgramRobot : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        // A window off the screen never has the focus, without which the library drops a joystick's events.
        HearControllersInBackground();
    }

    // As a start of the program, except for what would only make it slow.
    static void ReadSettings() {
        RegisterDefaultSettings(Settings());
        std::string error;
        static_cast<void>(LoadSettingsFile(Settings(), error));
        Settings().SetBool(L"app_fullscreen", false);
        Settings().SetBool(L"app_vsync", false);
        Settings().SetBool(L"app_antialias", false);
        Settings().SetBool(L"app_lighting", false);
        Settings().SetInt(L"app_window_width", 640);
        Settings().SetInt(L"app_window_height", 360);
    }

    // What the robot has typed as the service's address must not be looked up anywhere.
    static void StayOnThisComputer(ProgramScreen& program) {
        CGhostEdit* const address = program.Menu().Member().Address();
        if (!address->Text().empty()) {
            address->SetText(L"127.0.0.1:9");
        }
    }

    // Eight games of our own on the room's sets.
    static void FillTheRoom(ProgramScreen& program) {
        constexpr const char* kGames[] = {"demo:sms-luciole", "demo:gg-glimmer", "demo:md-mistral",
                                          "demo:nes-ecume", "demo:arcade-skywren"};
        size_t next = 0;
        for (const uint32_t key : kAllSets) {
            program.Room().Play(key, Opened(kGames[next++ % std::size(kGames)]));
        }
    }

    static void CheckShown(ProgramScreen& program) {
        const ProgramModes& modes = program.Room().Modes();
        const ProgramMode mode = modes.Mode();
        ASSERT_LE(mode, ProgramMode::kFullScreen) << "a mode of the table";
        const CGUIBattleGround& menu = program.Menu();
        EXPECT_EQ(menu.MainWindow()->IsVisible(), modes.Covered());
        CGUIRomBrowser* const browser = menu.Browser();
        EXPECT_EQ(browser != nullptr && browser->IsActive(), mode == ProgramMode::kBrowser);
        EXPECT_EQ(menu.Panel() != nullptr, mode == ProgramMode::kPanel);
        EXPECT_EQ(menu.MenuButton(kPanelBrowser)->IsVisible(), mode == ProgramMode::kMenu);
        EXPECT_EQ(menu.BackButton()->IsVisible(),
                  mode == ProgramMode::kPanel || mode == ProgramMode::kBrowser);
        if (browser != nullptr && browser->Scan().IsShown()) {
            EXPECT_EQ(mode, ProgramMode::kBrowser) << "a scan is told in the browser alone";
        }
        for (uint32_t number = 1; number <= CGUIGameOverlay::kButtons; ++number) {
            EXPECT_FALSE(program.Overlay().Button(number)->IsVisible() &&
                         (modes.Covered() || modes.Walking()))
                << number;
        }
        EXPECT_EQ(program.Overlay().ShownHints().empty(), !modes.Walking());
    }

    static void CheckInput(ProgramScreen& program) {
        const ProgramModes& modes = program.Room().Modes();
        const bool message =
            CGhostManager::Get().ModalWindow() != nullptr || program.Adding().IsShown();
        if (modes.Covered() || message) {
            EXPECT_EQ(InputActiveKey(), 0u) << "no machine listens";
            EXPECT_FALSE(program.WantsInput());
        }
        if (modes.Mode() == ProgramMode::kFullScreen && !message) {
            EXPECT_NE(InputActiveKey(), 0u);
        }
        EXPECT_LE(CGhostMessageBox::Count(), CGhostMessageBox::kMost);
    }

    // A player without a mouse must find something to press.
    static void CheckFocus(ProgramScreen& program) {
        CGhostManager& manager = CGhostManager::Get();
        const GHOSTMANAGER_WINDOW* const focus = manager.FocusWindow();
        const GHOSTMANAGER_WINDOW* const modal = manager.ModalWindow();
        if (!program.Room().Modes().Covered() && modal == nullptr) {
            return;
        }
        ASSERT_NE(focus, nullptr) << "nothing has the focus";
        EXPECT_TRUE(manager.IsWindowVisible(focus)) << "what has the focus is not seen";
        const GHOSTMANAGER_WINDOW* within = focus;
        while (within != nullptr && within != modal) {
            within = within->parent != nullptr ? within->parent : within->owner;
        }
        EXPECT_EQ(within, modal) << "the focus is behind what takes the input";
    }

    static void CheckSessions() {
        std::set<uint32_t> keys;
        for (const SessionPin& session : PinSessions()) {
            const uint32_t key = session->key;
            EXPECT_TRUE(keys.insert(key).second) << "two machines on set " << key;
            EXPECT_NE(std::find(kAllSets.begin(), kAllSets.end(), key), kAllSets.end())
                << "a machine on no set: " << key;
        }
    }

    static void Check(ProgramScreen& program) {
        CheckShown(program);
        CheckInput(program);
        CheckFocus(program);
        CheckSessions();
    }

    // A file that a disk or a player has made unreadable stays so until it is written again.
    void CheckEnd() const {
        for (const uint32_t key : kAllSets) {
            EXPECT_FALSE(SessionRuns(key)) << key;
        }
        const std::filesystem::path file = folder.Path() / "config.xml";
        if (std::filesystem::is_directory(file)) {
            std::filesystem::remove_all(file);
            return;
        }
        SettingsStore stored;
        RegisterDefaultSettings(stored);
        std::vector<uint8_t> document;
        std::string error;
        ASSERT_TRUE(ReadFile(file, document, error, 1 << 20)) << error;
        EXPECT_TRUE(stored.Load(document.data(), document.size(), error)) << error;
    }

    static size_t Windows() {
        size_t count = 0;
        CGhostManager::Get().ForEachWindow([&](const GHOSTMANAGER_WINDOW&) { ++count; });
        return count;
    }

    // From a start of the program to its end. Returns the number of the next operation.
    uint32_t RunOnce(RobotHand& hand, Dice& dice, uint32_t operation, uint32_t last) {
        ReadSettings();
        const bool fill = dice.OneIn(2);
        Application application;
        ProgramScreen* const program = Open(application);
        if (program == nullptr) {
            ADD_FAILURE() << "the program does not start";
            return last;
        }
        if (fill) {
            FillTheRoom(*program);
        }
        const bool tell = std::getenv("OMBRELUNE_PROGRAM_TELL") != nullptr;
        bool runs = true;
        while (runs && operation < last && !HasFailure()) {
            ++operation;
            const std::string deed = hand.Act();
            if (tell) {
                std::cout << "operation " << operation << ": " << deed << std::endl;
            }
            const int rounds = dice.OneIn(16)
                                   ? 40
                                   : 3; // a click is a wish in the second, QUIT an end in the third
            for (int round = 0; runs && round < rounds; ++round) {
                alarm(kLongestRound);
                RobotClock::Go(dice.OneIn(100) ? kPause : kRound);
                runs = application.Round();
            }
            if (runs) {
                StayOnThisComputer(*program);
                SCOPED_TRACE(testing::Message()
                             << "after operation " << operation << ", " << deed << ", in mode "
                             << static_cast<int>(ModeOf(*program)));
                Check(*program);
            }
        }
        hand.LetGo();
        application.Stop();
        CheckEnd();
        return operation;
    }

    static constexpr unsigned kLongestRound = 280; // seconds
    // Microseconds. The machines make a frame in about three rounds, which is an operation: eight of them, instrumented,
    // cost far more than what is tried.
    static constexpr int64_t kRound = 6000;
    static constexpr int64_t kPause = 3100000; // what shows for a while goes meanwhile
    const RobotClock clock;
    TemporaryFolder drops;
};

} // namespace

TEST_F(ProgramRobot, RandomInputBreaksNoPromise) {
    using Clock = std::chrono::steady_clock;
    const auto end =
        Clock::now() + std::chrono::seconds(Wanted("OMBRELUNE_PROGRAM_SECONDS", 86400));
    const uint32_t last = Wanted("OMBRELUNE_PROGRAM_OPERATIONS", 60);
    const uint32_t first = Wanted("OMBRELUNE_PROGRAM_SEED", 1);
    const uint32_t seeds = Wanted("OMBRELUNE_PROGRAM_SEEDS", 2);
    for (uint32_t seed = first; seed - first < seeds && Clock::now() < end; ++seed) {
        Dice dice(seed);
        RobotHand hand(folder.Path(), drops, dice);
        uint32_t operation = 0;
        while (operation < last && !HasFailure() && Clock::now() < end) {
            std::cout << "seed " << seed << ", start after operation " << operation << std::endl;
            SCOPED_TRACE(testing::Message() << "seed " << seed);
            operation = RunOnce(hand, dice, operation, last);
            if (dice.OneIn(3)) {
                std::cout << "at rest: " << hand.HarmAtRest() << std::endl;
            }
        }
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ", operation " << operation;
    }
}
