#include "sega8/sms_pads.h"

#include "sega8/sega_ports.h"
#include "sega8/vdp.h"

#include <algorithm>

namespace {

// Lines of a pad port, 1 when open.
enum PadLine : uint8_t {
    kLineDirections = 0x0F, // up, down, left, right from bit 0
    kLineTl = 0x10,
    kLineTr = 0x20,
    kLineTh = 0x40,
    kLinesOpen = 0x7F
};

// Port 0xDC has six lines of A and two of B, port 0xDD the rest.
constexpr uint32_t kDcLinesA = 0x3F; // directions, TL, TR
constexpr uint32_t kDcLinesB = 0x03; // up, down
constexpr uint32_t kDcShiftB = 6;
constexpr uint32_t kDdLinesB = 0x0F; // left, right, TL, TR
constexpr uint32_t kDdShiftB = 2;
constexpr uint32_t kDdReset = 0x10;  // 0 while the button is pressed
constexpr uint32_t kDdUnused = 0x20; // reads 1
constexpr uint32_t kDdThA = 0x40;
constexpr uint32_t kDdThB = 0x80;

constexpr uint32_t kPaddleStart = 127;
constexpr uint32_t kPaddleStep = 4;
constexpr uint32_t kAimStartX = 128;
constexpr uint32_t kAimStartY = 112;
constexpr uint32_t kAimStep = 2;
constexpr uint32_t kAimLast = 255;
constexpr uint32_t kSportsMovement = 10;
constexpr uint32_t kSportsRestart = 280; // clocks
constexpr uint32_t kSportsLastPhase = 3;
constexpr uint32_t kSixButtonTimeOut = 1956; // clocks
constexpr uint32_t kSixButtonPulses = 4;     // of TH; then the pad starts again
constexpr int32_t kSpotLines = 4;            // above and below the aim
constexpr int32_t kSpotDots = 150;           // 100 clocks

bool ThIsInput(uint8_t ioControl, uint32_t port) {
    return (ioControl & kSegaIoThInput << port * 2) != 0;
}

// The level of TH at the device; an input floats high.
bool ThHigh(uint8_t ioControl, uint32_t port) {
    return ThIsInput(ioControl, port) || (ioControl & kSegaIoThLevel << port * 2) != 0;
}

// ---- Light Phaser

struct BEAM_POINT {
    int32_t line = -1;
    int32_t dot = 0;
};

int32_t AimLine(const PAD_PORTS& pads, const VDP& vdp, uint32_t port) {
    return static_cast<int32_t>(pads.deviceY[port]) - static_cast<int32_t>(vdp.border);
}

int32_t AimDot(const PAD_PORTS& pads, uint32_t port) {
    return static_cast<int32_t>(pads.deviceX[port]) + static_cast<int32_t>(kVdpFirstPixelDot);
}

int32_t BeamDot(const VDP& vdp) {
    return static_cast<int32_t>(vdp.dotCounter / 2);
}

// The line being drawn. `line` steps after the last pixel.
int32_t BeamLine(const VDP& vdp) {
    return static_cast<int32_t>(vdp.line) - (vdp.dotCounter / 2 >= kVdpEventDot ? 1 : 0);
}

// True if the port's phaser can pull TH.
bool Sees(const PAD_PORTS& pads, uint32_t port) {
    return pads.device[port] == PadDevice::kLightPhaser && ThIsInput(pads.ioControl, port);
}

bool SeesBeam(const PAD_PORTS& pads, const VDP& vdp, uint32_t port) {
    const int32_t line = BeamLine(vdp);
    const int32_t down = line - AimLine(pads, vdp, port);
    const int32_t right = BeamDot(vdp) - AimDot(pads, port);
    return line >= 0 && line < static_cast<int32_t>(vdp.activeHeight) && down >= -kSpotLines &&
           down <= kSpotLines && right >= 0 && right < kSpotDots;
}

// The last point at which the beam has entered the spot in this frame and since the last call; line
// -1 if it has not.
BEAM_POINT NewHit(PAD_PORTS& pads, const VDP& vdp, uint32_t port) {
    if (!Sees(pads, port)) {
        return {};
    }
    const int32_t aim = AimLine(pads, vdp, port);
    const int32_t dot = AimDot(pads, port);
    const auto lastActive = static_cast<int32_t>(vdp.activeHeight) - 1;
    const int32_t reached = BeamLine(vdp) - (BeamDot(vdp) < dot ? 1 : 0);
    const int32_t line = std::min({reached, aim + kSpotLines, lastActive});
    if (line < aim - kSpotLines || line <= pads.lightLine[port]) {
        return {};
    }
    pads.lightLine[port] = line;
    return {line, dot};
}

// ---- The devices' lines

uint8_t Pressed(uint32_t input, uint32_t bit, uint8_t line) {
    return (input & bit) != 0 ? line : uint8_t{0};
}

uint8_t OpenWithout(uint32_t pulled) {
    return static_cast<uint8_t>(kLinesOpen & ~pulled);
}

uint8_t TwoButtons(uint32_t input) {
    return static_cast<uint8_t>(Pressed(input, kPadButton1, kLineTl) |
                                Pressed(input, kPadButton2, kLineTr));
}

uint8_t JoypadLines(uint32_t input) {
    return OpenWithout((input & kLineDirections) | TwoButtons(input));
}

uint8_t PhaserLines(const PAD_PORTS& pads, const VDP& vdp, uint32_t port) {
    const bool light = Sees(pads, port) && SeesBeam(pads, vdp, port);
    return OpenWithout(Pressed(pads.input[port], kPadButton1, kLineTl) |
                       (light ? uint32_t{kLineTh} : 0u));
}

uint32_t NibbleOf(uint32_t value, bool high) {
    return (high ? value >> 4 : value) & 15;
}

uint8_t SportsPadLines(PAD_PORTS& pads, uint32_t port, uint32_t clock) {
    if (clock - pads.lastEdgeClock[port] > kSportsRestart) {
        pads.deviceState[port] = 0;
    }
    const uint32_t phase = pads.deviceState[port] & kSportsLastPhase;
    const uint32_t moved = phase < 2 ? pads.deviceX[port] : pads.deviceY[port];
    const uint32_t nibble = NibbleOf(moved, phase % 2 == 0);
    const uint8_t buttons = TwoButtons(pads.input[port]);
    return static_cast<uint8_t>(OpenWithout(buttons | uint32_t{kLineDirections}) | nibble);
}

uint8_t PaddleLines(PAD_PORTS& pads, uint32_t port, bool flip) {
    const bool high = pads.deviceState[port] % 2 != 0;
    const uint32_t nibble = NibbleOf(pads.deviceX[port], high);
    if (flip) {
        pads.deviceState[port] ^= 1;
    }
    const uint32_t pulled = uint32_t{kLineDirections} | (high ? 0u : uint32_t{kLineTr}) |
                            Pressed(pads.input[port], kPadButton1, kLineTl);
    return static_cast<uint8_t>(OpenWithout(pulled) | nibble);
}

// The pad's buttons in the order B, C, A, X, Y, Z; start and mode have no action.
constexpr uint32_t kPadA = kPadButton1 << 2;
constexpr uint32_t kPadX = kPadButton1 << 3;
constexpr uint32_t kPadY = kPadButton1 << 4;
constexpr uint32_t kPadZ = kPadButton1 << 5;

uint8_t SixButtonLines(PAD_PORTS& pads, uint32_t port, uint32_t clock) {
    if (clock - pads.lastEdgeClock[port] > kSixButtonTimeOut) {
        pads.deviceState[port] = 0;
    }
    const uint32_t count = pads.deviceState[port] % kSixButtonPulses;
    const uint32_t input = pads.input[port];
    if (ThHigh(pads.ioControl, port)) {
        if (count < 3) {
            return JoypadLines(input);
        }
        return OpenWithout(Pressed(input, kPadZ, 1) | Pressed(input, kPadY, 2) |
                           Pressed(input, kPadX, 4) | TwoButtons(input));
    }
    const uint8_t a = Pressed(input, kPadA, kLineTl);
    switch (count) {
    case 2: return OpenWithout(uint32_t{kLineDirections} | a);
    case 3: return OpenWithout(a);
    default: return OpenWithout((input & (kPadUp | kPadDown)) | kPadLeft | kPadRight | a);
    }
}

// `flip`: this reading includes the TR line of `port`.
uint8_t DeviceLines(PAD_PORTS& pads, const VDP& vdp, uint32_t port, uint32_t clock, bool flip) {
    switch (pads.device[port]) {
    case PadDevice::kLightPhaser: return PhaserLines(pads, vdp, port);
    case PadDevice::kSportsPad: return SportsPadLines(pads, port, clock);
    case PadDevice::kPaddle: return PaddleLines(pads, port, flip);
    case PadDevice::kSixButton: return SixButtonLines(pads, port, clock);
    case PadDevice::kJoypad: break;
    }
    return JoypadLines(pads.input[port]);
}

// ---- TH

void ThEdge(PAD_PORTS& pads, uint32_t port, bool rising, uint32_t clock) {
    const uint32_t quiet = clock - pads.lastEdgeClock[port];
    pads.lastEdgeClock[port] = clock;
    uint32_t& state = pads.deviceState[port];
    if (pads.device[port] == PadDevice::kSportsPad) {
        state = !rising && quiet > kSportsRestart ? 0 : (state + 1) & kSportsLastPhase;
    } else if (pads.device[port] == PadDevice::kSixButton) {
        if (quiet > kSixButtonTimeOut) {
            state = 0;
        }
        state = (state + (rising ? 1 : 0)) % kSixButtonPulses;
    }
}

bool ThReadBack(const PAD_PORTS& pads, uint32_t port, uint8_t lines) {
    if (pads.thReturns && !ThIsInput(pads.ioControl, port)) {
        return ThHigh(pads.ioControl, port);
    }
    return (lines & kLineTh) != 0;
}

// ---- Moves of one frame

void MoveAim(uint32_t& value, bool back, bool forth) {
    if (back) {
        value -= std::min(value, kAimStep);
    } else if (forth) {
        value = std::min(value + kAimStep, kAimLast);
    }
}

void Aim(PAD_PORTS& pads, uint32_t port, const EMU_INPUT_STATE* pointers) {
    const uint32_t input = pads.input[port];
    if (pointers != nullptr && (pointers->pointer[port].x | pointers->pointer[port].y) != 0) {
        pads.deviceX[port] = std::min(pointers->pointer[port].x, kAimLast);
        pads.deviceY[port] = std::min(pointers->pointer[port].y, kAimLast);
        return;
    }
    MoveAim(pads.deviceX[port], (input & kPadLeft) != 0, (input & kPadRight) != 0);
    MoveAim(pads.deviceY[port], (input & kPadUp) != 0, (input & kPadDown) != 0);
}

void Turn(PAD_PORTS& pads, uint32_t port) {
    uint32_t& turn = pads.deviceX[port];
    if ((pads.input[port] & kPadLeft) != 0) {
        turn -= std::min(turn, kPaddleStep);
    } else if ((pads.input[port] & kPadRight) != 0) {
        turn = std::min(turn + kPaddleStep, 255u);
    }
}

uint32_t Movement(bool positive, bool negative) {
    if (positive) {
        return kSportsMovement;
    }
    return negative ? 0u - kSportsMovement : 0;
}

void Roll(PAD_PORTS& pads, uint32_t port) {
    const uint32_t input = pads.input[port];
    pads.deviceX[port] = Movement((input & kPadRight) != 0, (input & kPadLeft) != 0);
    pads.deviceY[port] = Movement((input & kPadUp) != 0, (input & kPadDown) != 0);
}

} // namespace

void PadsReset(PAD_PORTS& pads) {
    pads.input = {};
    pads.lightLine = {-1, -1};
    pads.ioControl = 0xFF;
    pads.portDc = 0xFF;
    pads.portDd = 0xFF;
    pads.lastEdgeClock = {};
    for (uint32_t port = 0; port < 2; ++port) {
        const PadDevice device = pads.device[port];
        // So that the first edge starts a reading, whenever it comes.
        pads.deviceState[port] = device == PadDevice::kSportsPad ? kSportsLastPhase : 0;
        pads.deviceX[port] = device == PadDevice::kPaddle        ? kPaddleStart
                             : device == PadDevice::kLightPhaser ? kAimStartX
                                                                 : 0;
        pads.deviceY[port] = device == PadDevice::kPaddle        ? kPaddleStart
                             : device == PadDevice::kLightPhaser ? kAimStartY
                                                                 : 0;
    }
}

void PadsSanitize(PAD_PORTS& pads) {
    pads.lightLine = {-1, -1};
    for (uint32_t port = 0; port < 2; ++port) {
        if (pads.device[port] != PadDevice::kSportsPad) {
            pads.deviceX[port] &= 0xFF;
            pads.deviceY[port] &= 0xFF;
        }
    }
}

void PadsBeginFrame(PAD_PORTS& pads, const std::array<uint32_t, 2>& input,
                    const EMU_INPUT_STATE* pointers) {
    pads.input = input;
    pads.lightLine = {-1, -1};
    for (uint32_t port = 0; port < 2; ++port) {
        switch (pads.device[port]) {
        case PadDevice::kLightPhaser: Aim(pads, port, pointers); break;
        case PadDevice::kSportsPad: Roll(pads, port); break;
        case PadDevice::kPaddle: Turn(pads, port); break;
        case PadDevice::kJoypad:
        case PadDevice::kSixButton: break;
        }
    }
}

void PadsLatchLight(PAD_PORTS& pads, VDP& vdp) {
    const BEAM_POINT a = NewHit(pads, vdp, 0);
    const BEAM_POINT b = NewHit(pads, vdp, 1);
    const bool bIsLater = b.line > a.line || (b.line == a.line && b.dot > a.dot);
    const BEAM_POINT hit = bIsLater ? b : a;
    if (hit.line >= 0) {
        // Every dot of an aim is before the jump of the H counter.
        vdp.hLatch = static_cast<uint8_t>(hit.dot / 2);
    }
}

void PadsWriteControl(PAD_PORTS& pads, VDP& vdp, uint8_t value, uint32_t clock) {
    PadsLatchLight(pads, vdp);
    const uint8_t before = pads.ioControl;
    pads.ioControl = value;
    if ((value & ~before & kSegaIoThLevels) != 0) {
        VdpLatchH(vdp);
    }
    for (uint32_t port = 0; port < 2; ++port) {
        if (ThHigh(value, port) != ThHigh(before, port)) {
            ThEdge(pads, port, ThHigh(value, port), clock);
        }
    }
}

uint8_t PadsReadDc(PAD_PORTS& pads, VDP& vdp, uint32_t clock) {
    PadsLatchLight(pads, vdp);
    const uint32_t a = DeviceLines(pads, vdp, 0, clock, true);
    const uint32_t b = DeviceLines(pads, vdp, 1, clock, false);
    pads.portDc = static_cast<uint8_t>((a & kDcLinesA) | (b & kDcLinesB) << kDcShiftB);
    return pads.portDc;
}

uint8_t PadsReadDd(PAD_PORTS& pads, VDP& vdp, uint32_t clock) {
    PadsLatchLight(pads, vdp);
    const uint8_t a = DeviceLines(pads, vdp, 0, clock, false);
    const uint8_t b = DeviceLines(pads, vdp, 1, clock, true);
    const uint32_t reset = (pads.input[0] & kPadReset) != 0 ? 0 : kDdReset;
    pads.portDd = static_cast<uint8_t>((b >> kDdShiftB & kDdLinesB) | reset | kDdUnused |
                                       (ThReadBack(pads, 0, a) ? kDdThA : 0) |
                                       (ThReadBack(pads, 1, b) ? kDdThB : 0));
    return pads.portDd;
}
