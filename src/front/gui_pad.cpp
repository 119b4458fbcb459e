#include "front/gui_pad.h"

#include "gui/manager.h"
#include "settings/bindings.h"
#include "settings/pad_defaults.h"

#include <array>

namespace {

constexpr int64_t kFirstRepeat = 400000; // microseconds
constexpr int64_t kRepeat = 90000;

constexpr uint64_t Bit(PadControl control) {
    return PadBit(0, control);
}

struct DIRECTION {
    uint64_t controls;
    GUI_DIRECTION direction;
};
constexpr std::array<DIRECTION, 4> kDirections = {
    {
     {Bit(kPadDpadUp) | Bit(kPadStickUp), GUI_DIRECTION::kUp},
     {Bit(kPadDpadDown) | Bit(kPadStickDown), GUI_DIRECTION::kDown},
     {Bit(kPadDpadLeft) | Bit(kPadStickLeft), GUI_DIRECTION::kLeft},
     {Bit(kPadDpadRight) | Bit(kPadStickRight), GUI_DIRECTION::kRight},
     }
};

// The controls of all players as if they were one's. Those that are bound to a game's action count as well: menus
// must not lose the button that takes.
uint64_t Controls(InputLooker& looker) {
    const InputFrame frame(looker, kApplicationKey);
    const uint64_t acting = InputPadsActing() | InputPadsDown();
    constexpr uint64_t kOnePlayer = (uint64_t{1} << kPadControls) - 1;
    return (acting | acting >> 32) & kOnePlayer;
}

} // namespace

PAD_PRESSES GuiPad::Update(bool active, int64_t now) {
    const uint64_t down = Controls(looker);
    const uint64_t pressed = down & ~held;
    held = down;
    PAD_PRESSES presses;
    if (!active) {
        direction = -1;
        return presses;
    }
    Steer(pressed, now);
    CGhostManager& manager = CGhostManager::Get();
    if ((pressed & Bit(kPadSouth)) != 0) {
        manager.ActivateFocus();
    }
    presses.back = (pressed & Bit(kPadEast)) != 0 && !manager.CancelFocus();
    presses.start = (pressed & Bit(kPadStart)) != 0;
    presses.favourite = (pressed & Bit(kPadWest)) != 0;
    presses.guide = (pressed & Bit(kPadGuide)) != 0;
    presses.shoulder = ((pressed & Bit(kPadRightShoulder)) != 0 ? 1 : 0) -
                       ((pressed & Bit(kPadLeftShoulder)) != 0 ? 1 : 0);
    return presses;
}

// The direction that was pressed last counts, as long as it is held.
void GuiPad::Steer(uint64_t pressed, int64_t now) {
    for (size_t i = 0; i < kDirections.size(); ++i) {
        if ((pressed & kDirections[i].controls) != 0) {
            direction = static_cast<int>(i);
            nextStep = now + kFirstRepeat;
            Step(false);
            return;
        }
    }
    if (direction < 0) {
        return;
    }
    const DIRECTION& way = kDirections[static_cast<size_t>(direction)];
    if ((held & way.controls) == 0) {
        direction = -1;
    } else if (now >= nextStep) {
        nextStep = now + kRepeat;
        Step(true);
    }
}

// Who holds a direction to reach the end of a list wants to be there, and not in what lies beyond it.
void GuiPad::Step(bool repeat) {
    CGhostManager& manager = CGhostManager::Get();
    GHOSTMANAGER_WINDOW* const before = manager.FocusWindow();
    manager.Navigate(kDirections[static_cast<size_t>(direction)].direction);
    const bool left = manager.FocusWindow() != before;
    if (repeat && within && left) {
        manager.SetFocus(before);
    } else {
        within = !left;
    }
}
