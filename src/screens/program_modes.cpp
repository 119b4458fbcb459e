#include "screens/program_modes.h"

#include <algorithm>

namespace {

using Mode = ProgramMode;
using Input = ModeInput;
using Guard = ModeGuard;
using Order = ModeOrder;

// clang-format off
constexpr MODE_WAY kWays[] = {
    // from             input                  if                       to                 and
    // Who only looks into the menu keeps his place in the room; who comes from nowhere enters by its door.
    {Mode::kMenu,       Input::kPlayGames,     Guard::kCameFromRoom,    Mode::kBrowser,    Order::kNothing},
    {Mode::kMenu,       Input::kPlayGames,     Guard::kAlways,          Mode::kBrowser,    Order::kResetCamera},
    {Mode::kMenu,       Input::kOpenPanel,     Guard::kAlways,          Mode::kPanel,      Order::kNothing},
    {Mode::kMenu,       Input::kQuit,          Guard::kAlways,          Mode::kMenu,       Order::kQuit},
    // To where the player was when the program ended.
    {Mode::kMenu,       Input::kContinueFullScreen,    Guard::kSelectedOn,      Mode::kFullScreen, Order::kNothing},
    {Mode::kMenu,       Input::kContinueStanding,      Guard::kSelectedOn,      Mode::kStanding,   Order::kNothing},
    {Mode::kMenu,       Input::kContinueWalking,       Guard::kAlways,          Mode::kWalking,    Order::kResetCamera},
    // Back to the game or the room that the menu was called from.
    {Mode::kMenu,       Input::kBack,          Guard::kCameFromFullScreen,      Mode::kFullScreen, Order::kNothing},
    {Mode::kMenu,       Input::kBack,          Guard::kCameFromStanding,        Mode::kStanding,   Order::kNothing},
    {Mode::kMenu,       Input::kBack,          Guard::kCameFromRoom,    Mode::kWalking,    Order::kNothing},
    {Mode::kMenu,       Input::kMainMenu,      Guard::kCameFromFullScreen,      Mode::kFullScreen, Order::kNothing},
    {Mode::kMenu,       Input::kMainMenu,      Guard::kCameFromStanding,        Mode::kStanding,   Order::kNothing},
    {Mode::kMenu,       Input::kMainMenu,      Guard::kCameFromRoom,    Mode::kWalking,    Order::kNothing},

    {Mode::kPanel,      Input::kBack,          Guard::kAlways,          Mode::kMenu,       Order::kNothing},
    {Mode::kPanel,      Input::kMainMenu,      Guard::kAlways,          Mode::kMenu,       Order::kNothing},

    {Mode::kBrowser,    Input::kGameStarted,   Guard::kStartFullScreen, Mode::kFullScreen, Order::kNothing},
    {Mode::kBrowser,    Input::kGameStarted,   Guard::kAlways,          Mode::kStanding,   Order::kNothing},
    {Mode::kBrowser,    Input::kGameRoom,      Guard::kAlways,          Mode::kWalking,    Order::kNothing},
    // As from the menu: the browser that was opened for a set leads back to it. Its button MAIN MENU is the way on.
    {Mode::kBrowser,    Input::kBack,          Guard::kCameFromFullScreen,      Mode::kFullScreen, Order::kNothing},
    {Mode::kBrowser,    Input::kBack,          Guard::kCameFromStanding,        Mode::kStanding,   Order::kNothing},
    {Mode::kBrowser,    Input::kBack,          Guard::kCameFromRoom,    Mode::kWalking,    Order::kNothing},
    {Mode::kBrowser,    Input::kBack,          Guard::kAlways,          Mode::kMenu,       Order::kNothing},
    {Mode::kBrowser,    Input::kMainMenu,      Guard::kAlways,          Mode::kMenu,       Order::kNothing},

    {Mode::kWalking,    Input::kUse,           Guard::kSelected,        Mode::kBrowser,    Order::kChooseGame},
    {Mode::kWalking,    Input::kShowSet,       Guard::kSelected,        Mode::kFullScreen, Order::kNothing},
    {Mode::kWalking,    Input::kLeave,         Guard::kAlways,          Mode::kStanding,   Order::kNothing},
    {Mode::kWalking,    Input::kMiddleButton,  Guard::kSelectedOn,      Mode::kStanding,   Order::kNothing},
    {Mode::kWalking,    Input::kTurnOff,       Guard::kSelectedAndFullScreen, Mode::kBrowser, Order::kStopGame},
    {Mode::kWalking,    Input::kTurnOff,       Guard::kSelected,        Mode::kWalking,    Order::kStopGame},
    {Mode::kWalking,    Input::kSavedStates,   Guard::kSelectedOn,      Mode::kWalking,    Order::kSavedStates},
    {Mode::kWalking,    Input::kTelevision,    Guard::kSelectedOn,      Mode::kFullScreen, Order::kNothing},
    {Mode::kWalking,    Input::kLoadGame,      Guard::kSelected,        Mode::kBrowser,    Order::kChooseGame},
    {Mode::kWalking,    Input::kExitGame,      Guard::kSelectedAndFullScreen, Mode::kBrowser, Order::kStopGame},
    {Mode::kWalking,    Input::kExitGame,      Guard::kSelected,        Mode::kWalking,    Order::kStopGame},
    {Mode::kWalking,    Input::kResetGame,     Guard::kSelectedOn,      Mode::kWalking,    Order::kResetGame},
    {Mode::kWalking,    Input::kMainMenu,      Guard::kAlways,          Mode::kMenu,       Order::kNothing},
    {Mode::kWalking,    Input::kQuit,          Guard::kAlways,          Mode::kWalking,    Order::kQuit},

    {Mode::kStanding,   Input::kLeave,         Guard::kAlways,          Mode::kWalking,    Order::kNothing},
    {Mode::kStanding,   Input::kMiddleButton,  Guard::kSelectedOn,      Mode::kWalking,    Order::kNothing},
    {Mode::kStanding,   Input::kTelevision,    Guard::kSelectedOn,      Mode::kFullScreen, Order::kNothing},
    {Mode::kStanding,   Input::kLoadGame,      Guard::kSelected,        Mode::kBrowser,    Order::kChooseGame},
    {Mode::kStanding,   Input::kExitGame,      Guard::kSelectedAndFullScreen, Mode::kBrowser, Order::kStopGame},
    {Mode::kStanding,   Input::kExitGame,      Guard::kSelected,        Mode::kWalking,    Order::kStopGame},
    {Mode::kStanding,   Input::kResetGame,     Guard::kSelectedOn,      Mode::kStanding,   Order::kResetGame},
    {Mode::kStanding,   Input::kSavedStates,   Guard::kSelectedOn,      Mode::kStanding,   Order::kSavedStates},
    {Mode::kStanding,   Input::kMainMenu,      Guard::kAlways,          Mode::kMenu,       Order::kNothing},
    {Mode::kStanding,   Input::kQuit,          Guard::kAlways,          Mode::kStanding,   Order::kQuit},

    {Mode::kFullScreen, Input::kLeave,         Guard::kAlways,          Mode::kWalking,    Order::kNothing},
    {Mode::kFullScreen, Input::kMiddleButton,  Guard::kSelectedOn,      Mode::kWalking,    Order::kNothing},
    {Mode::kFullScreen, Input::kTelevision,    Guard::kAlways,          Mode::kStanding,   Order::kNothing},
    {Mode::kFullScreen, Input::kLoadGame,      Guard::kAlways,          Mode::kBrowser,    Order::kChooseGame},
    {Mode::kFullScreen, Input::kExitGame,      Guard::kStartFullScreen, Mode::kBrowser,    Order::kStopGame},
    {Mode::kFullScreen, Input::kExitGame,      Guard::kAlways,          Mode::kWalking,    Order::kStopGame},
    {Mode::kFullScreen, Input::kGameEnded,     Guard::kAlways,          Mode::kWalking,    Order::kNothing},
    {Mode::kFullScreen, Input::kResetGame,     Guard::kAlways,          Mode::kFullScreen, Order::kResetGame},
    {Mode::kFullScreen, Input::kSavedStates,   Guard::kAlways,          Mode::kFullScreen, Order::kSavedStates},
    {Mode::kFullScreen, Input::kMainMenu,      Guard::kAlways,          Mode::kMenu,       Order::kNothing},
    {Mode::kFullScreen, Input::kQuit,          Guard::kAlways,          Mode::kFullScreen, Order::kQuit},
};
// clang-format on

} // namespace

std::span<const MODE_WAY> ModeWays() {
    return kWays;
}

bool ProgramModes::Holds(ModeGuard guard, const MODE_FACTS& facts) const {
    switch (guard) {
    case Guard::kAlways: return true;
    case Guard::kSelected: return facts.selected;
    case Guard::kSelectedOn: return facts.selectedOn;
    case Guard::kStartFullScreen: return facts.startFullScreen;
    case Guard::kSelectedAndFullScreen: return facts.selected && facts.startFullScreen;
    case Guard::kCameFromFullScreen: return before == ProgramMode::kFullScreen && facts.selectedOn;
    case Guard::kCameFromStanding: return before == ProgramMode::kStanding;
    case Guard::kCameFromRoom: return before != ProgramMode::kMenu;
    }
    return false;
}

ModeOrder ProgramModes::Take(ModeInput input, const MODE_FACTS& facts) {
    const auto* const way =
        std::find_if(std::begin(kWays), std::end(kWays), [&](const MODE_WAY& row) {
            return row.from == mode && row.input == input && Holds(row.guard, facts);
        });
    if (way == std::end(kWays)) {
        return ModeOrder::kNothing;
    }
    const bool wasCovered = Covered();
    const ProgramMode left = mode;
    mode = way->to;
    if (!wasCovered && Covered()) {
        before = left;
    }
    return way->order;
}
