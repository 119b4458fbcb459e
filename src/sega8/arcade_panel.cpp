// The control panels of the System E board and the ports that read them.
#include "sega8/system_e.h"

namespace {

// The wheel and throttle of the analog panel. Settled.
constexpr uint8_t kSteeringLow = 33;   // a left turn stops below this value
constexpr uint8_t kSteeringHigh = 224; // a right turn stops at this value
constexpr uint8_t kSteeringStep = 4;
constexpr uint8_t kRestLow = 123; // from here to below kRestHigh the wheel does not move back
constexpr uint8_t kRestHigh = 132;
constexpr uint8_t kReturnStep = 5;
constexpr uint8_t kThrottleHigh = 251;
constexpr uint8_t kThrottleStep = 4;
constexpr uint8_t kSelectSteering = 8;
constexpr uint8_t kSelectThrottle = 9;

// The dial. Its word has 12 bits of movement and the buttons, 0 while pressed. Settled.
constexpr int16_t kDialSpeed = 24;
constexpr int16_t kDialSlowing = 6;
constexpr int16_t kDialRange = 4095;
constexpr uint16_t kDialOpen = 0xF000;
constexpr uint16_t kDialButton1 = 0x4000;
constexpr uint16_t kDialButton2 = 0x1000;
constexpr uint32_t kDialSelectShift = 2; // of the panel select port

constexpr uint8_t kCoinSwitches = 0x11; // one coin, one credit in both slots
constexpr uint8_t kGameSwitches = 0xCC;
constexpr uint8_t kNothingPressed = 0xFF;

bool Holds(const ARCADE_PANEL& panel, uint32_t bit) {
    return (panel.inputP1 & bit) != 0;
}

bool HasJoystick(uint32_t board) {
    return board == 2 || board == 3 || (board >= 5 && board <= 7);
}

void MoveSteering(ARCADE_PANEL& panel) {
    const uint8_t at = panel.steering;
    int moved = at;
    if (Holds(panel, kArcadeLeft) && at >= kSteeringLow) {
        moved -= kSteeringStep;
    } else if (Holds(panel, kArcadeRight) && at < kSteeringHigh) {
        moved += kSteeringStep;
    } else if (at < kRestLow) {
        moved += kReturnStep;
    } else if (at >= kRestHigh) {
        moved -= kReturnStep;
    }
    panel.steering = static_cast<uint8_t>(moved);
}

void MoveThrottle(ARCADE_PANEL& panel) {
    int moved = panel.throttle;
    if (Holds(panel, kArcadeButton1) && panel.throttle < kThrottleHigh) {
        moved += kThrottleStep;
    } else if (panel.throttle > kThrottleStep) {
        moved -= kThrottleStep;
    }
    panel.throttle = static_cast<uint8_t>(moved);
}

void MoveDial(ARCADE_PANEL& panel) {
    if (Holds(panel, kArcadeLeft)) {
        panel.dialSpeed = -kDialSpeed;
    } else if (Holds(panel, kArcadeRight)) {
        panel.dialSpeed = kDialSpeed;
    } else if (panel.dialSpeed > 0) {
        panel.dialSpeed = static_cast<int16_t>(
            panel.dialSpeed > kDialSlowing ? panel.dialSpeed - kDialSlowing : 0);
    } else if (panel.dialSpeed < 0) {
        panel.dialSpeed = static_cast<int16_t>(
            panel.dialSpeed < -kDialSlowing ? panel.dialSpeed + kDialSlowing : 0);
    }
}

struct PULL {
    uint32_t input; // ArcadeInput
    uint8_t bit;    // of the port, 0 while the input is held
};

// 0xFF with the bits of the held inputs cleared.
template <size_t Count>
uint8_t Pulled(const ARCADE_PANEL& panel, const PULL (&pulls)[Count]) {
    uint32_t value = kNothingPressed;
    for (const PULL& pull : pulls) {
        value &= Holds(panel, pull.input) ? ~uint32_t{pull.bit} : 0xFFu;
    }
    return static_cast<uint8_t>(value);
}

uint8_t ReadCoins(const ARCADE_PANEL& panel) {
    static constexpr PULL kAnalog[] = {
        {kArcadeStart1, 0x10},
        {kArcadeCoin1,  0x01}
    };
    static constexpr PULL kOthers[] = {
        {kArcadeStart1, 0x40},
        {kArcadeStart2, 0x80},
        {kArcadeCoin1,  0x01},
        {kArcadeCoin2,  0x02}
    };
    if (panel.board == kBoardAnalog) {
        return Pulled(panel, kAnalog);
    }
    return panel.board >= 2 && panel.board <= 7 ? Pulled(panel, kOthers) : kNothingPressed;
}

uint8_t ReadJoystick(const ARCADE_PANEL& panel) {
    static constexpr PULL kJoystick[] = {
        {kArcadeUp,      0x01},
        {kArcadeDown,    0x02},
        {kArcadeLeft,    0x04},
        {kArcadeRight,   0x08},
        {kArcadeButton1, 0x10},
        {kArcadeButton2, 0x20}
    };
    return HasJoystick(panel.board) ? Pulled(panel, kJoystick) : kNothingPressed;
}

uint8_t ReadDial(const ARCADE_PANEL& panel) {
    auto word =
        static_cast<uint16_t>(panel.dialSpeed < 0 ? panel.dialSpeed + kDialRange : panel.dialSpeed);
    word |= kDialOpen;
    if (Holds(panel, kArcadeButton1)) {
        word = static_cast<uint16_t>(word & ~kDialButton1);
    }
    if (Holds(panel, kArcadeButton2)) {
        word = static_cast<uint16_t>(word & ~kDialButton2);
    }
    switch (panel.dialSelect) {
    case 0: return static_cast<uint8_t>(word);
    case 1: return static_cast<uint8_t>(word >> 8);
    default: return 0;
    }
}

uint8_t ReadAnalog(const ARCADE_PANEL& panel) {
    switch (panel.analogSelect) {
    case kSelectSteering: return panel.steering;
    case kSelectThrottle: return panel.throttle;
    default: return 0;
    }
}

} // namespace

void ArcadePanelMove(ARCADE_PANEL& panel) {
    if (panel.board == kBoardAnalog) {
        MoveSteering(panel);
        MoveThrottle(panel);
    } else if (panel.board == kBoardDial) {
        MoveDial(panel);
    }
}

uint8_t ArcadePanelRead(const ARCADE_PANEL& panel, uint8_t port) {
    switch (port) {
    case kArcadePortCoins: return ReadCoins(panel);
    case kArcadePortJoystick: return ReadJoystick(panel);
    case kArcadePortCoinSwitches: return kCoinSwitches;
    case kArcadePortGameSwitches: return kGameSwitches;
    case kArcadePortPanel:
        if (panel.board == kBoardAnalog) {
            return ReadAnalog(panel);
        }
        return panel.board == kBoardDial ? ReadDial(panel) : kNothingPressed;
    default: return 0;
    }
}

void ArcadePanelSelect(ARCADE_PANEL& panel, uint8_t value) {
    if (panel.board == kBoardAnalog) {
        panel.analogSelect = value;
    } else if (panel.board == kBoardDial) {
        panel.dialSelect = value >> kDialSelectShift & 3;
    }
}
