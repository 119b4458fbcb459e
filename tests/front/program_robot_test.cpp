// Random input over the whole program: whatever a player does, the program keeps its promises and ends when it is
// told to.
#include "front/program_rig.h"
#include "gui/window_ex.h"

#include <cstdlib>
#include <random>

namespace {

class ProgramRobot : public ProgramTest {
protected:
    // Keys that do something somewhere, and some that do nothing.
    static SDL_Scancode AnyKey(std::mt19937& random) {
        constexpr SDL_Scancode kKeys[] = {
            SDL_SCANCODE_RETURN, SDL_SCANCODE_RETURN, SDL_SCANCODE_RETURN, SDL_SCANCODE_ESCAPE,
            SDL_SCANCODE_ESCAPE, SDL_SCANCODE_TAB,    SDL_SCANCODE_TAB,    SDL_SCANCODE_UP,
            SDL_SCANCODE_DOWN,   SDL_SCANCODE_LEFT,   SDL_SCANCODE_RIGHT,  SDL_SCANCODE_SPACE,
            SDL_SCANCODE_F10,    SDL_SCANCODE_E,      SDL_SCANCODE_Q,      SDL_SCANCODE_W,
            SDL_SCANCODE_PAGEUP, SDL_SCANCODE_A,      SDL_SCANCODE_F2,     SDL_SCANCODE_F5,
            SDL_SCANCODE_F6,     SDL_SCANCODE_F7,     SDL_SCANCODE_HOME,   SDL_SCANCODE_PAGEDOWN,
            SDL_SCANCODE_END,    SDL_SCANCODE_X,      SDL_SCANCODE_DELETE, SDL_SCANCODE_BACKSPACE,
        };
        return kKeys[random() % std::size(kKeys)];
    }

    static void AnyInput(std::mt19937& random) {
        const auto x = static_cast<int32_t>(random() % 640);
        const auto y = static_cast<int32_t>(random() % 360);
        const SDL_Scancode key = AnyKey(random);
        switch (random() % 8) {
        case 0:
        case 1:
        case 2:
            Key(key, true);
            Key(key, false);
            break;
        case 3:
            PointAt(x, y, true);
            PointAt(x, y, false);
            break;
        case 4: // a drag
            PointAt(x, y, true);
            PointAt(640 - x, 360 - y, false);
            break;
        case 5: MoveMouse(x - 320, y - 180); break;
        case 6: Type(random() % 2 != 0 ? "l" : "\xC3\xA9"); break;
        default: Click(static_cast<uint8_t>(1 + random() % 3)); break;
        }
    }

    // What holds in every mode.
    static void Check(ProgramScreen& program) {
        const ProgramModes& modes = program.Room().Modes();
        const bool message = CGhostManager::Get().ModalWindow() != nullptr;
        if (modes.Covered() || message) {
            EXPECT_EQ(InputActiveKey(), 0u) << "no machine listens";
            EXPECT_FALSE(program.WantsInput());
        }
        EXPECT_EQ(program.Menu().MainWindow()->IsVisible(), modes.Covered());
        if (modes.Mode() == ProgramMode::kFullScreen && !message) {
            EXPECT_NE(InputActiveKey(), 0u);
        }
        CGUIRomBrowser* const browser = program.Menu().Browser();
        EXPECT_EQ(browser != nullptr && browser->IsActive(), modes.Mode() == ProgramMode::kBrowser);
        EXPECT_EQ(program.Menu().Panel() != nullptr, modes.Mode() == ProgramMode::kPanel);
    }

    static uint32_t Operations() {
        const char* const wanted = std::getenv("OMBRELUNE_PROGRAM_OPERATIONS");
        return wanted != nullptr ? static_cast<uint32_t>(std::strtoul(wanted, nullptr, 10)) : 150;
    }
};

} // namespace

TEST_F(ProgramRobot, RandomInputBreaksNoPromise) {
    for (const uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        Application application;
        ProgramScreen* const program = Open(application);
        ASSERT_NE(program, nullptr);
        int quits = 0;
        for (uint32_t operation = 0; operation < Operations() && quits == 0; ++operation) {
            AnyInput(random);
            quits += application.Round() ? 0 : 1;
            quits += quits == 0 && !application.Round() ? 1 : 0;
            if (quits != 0) {
                break; // the robot has found the way out
            }
            Check(*program);
            ASSERT_FALSE(HasFailure()) << "after operation " << operation;
        }
        application.Stop();
        for (const uint32_t key : kAllSets) {
            EXPECT_FALSE(SessionRuns(key)) << key;
        }
    }
}
