// KeyCard: the keys of a machine over a game that has just begun: the card of its controller, and below it how the menu
// is opened and the game left. It takes no input, and the game plays on below it.
//
// Style: KEYCARD. Units: those of the virtual screen. Lifetime: its windows end with it.
#pragma once

#include "gui/geometry.h"
#include "screens/controls_card.h"
#include "screens/key_line.h"

#include <cstdint>
#include <vector>

class CGhostWindowEx;

class KeyCard {
public:
    // `ways`: the line at its foot.
    KeyCard(uint16_t system, const PadNames& padNames, const std::vector<KEY_WORDS>& ways);
    ~KeyCard();
    KeyCard(const KeyCard&) = delete;
    KeyCard& operator=(const KeyCard&) = delete;

    void Update(); // once a round: its place on another screen

    [[nodiscard]] const CGhostWindowEx* Window() const { return box; }
    [[nodiscard]] const KeyLine* Ways() const { return foot; }
    [[nodiscard]] const ControlsCard* Card() const { return card; }

private:
    void Place();

    CGhostWindowEx* box;
    ControlsCard* card;
    KeyLine* foot;
    GUI_RECT screen; // that it was placed for
};
