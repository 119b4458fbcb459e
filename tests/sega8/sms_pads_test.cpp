// The pad ports: each device as a program sees it.
#include "sega8/sms_pads.h"
#include "sega8/vdp.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// Pad ports with a VDP, and a clock that the test sets.
struct PORTS {
    explicit PORTS(PadDevice a, PadDevice b = PadDevice::kJoypad) {
        VdpInit(*vdp, &irq, &nmi, false, kVdpSecond);
        vdp->vram = vram.data();
        VdpReset(*vdp);
        pads.device = {a, b};
        PadsReset(pads);
    }
    uint8_t Dc() { return PadsReadDc(pads, *vdp, clock); }
    uint8_t Dd() { return PadsReadDd(pads, *vdp, clock); }
    void Control(uint8_t value) { PadsWriteControl(pads, *vdp, value, clock); }
    void Frame(uint32_t a, uint32_t b = 0) { PadsBeginFrame(pads, {a, b}, &pointers); }
    void Beam(uint32_t line, uint32_t dot) {
        vdp->line = dot >= kVdpEventDot ? line + 1 : line;
        vdp->dotCounter = dot * 2;
    }

    std::unique_ptr<VDP> vdp = std::make_unique<VDP>();
    std::array<uint8_t, kVdpVramBytes> vram{};
    uint32_t irq = 0;
    uint32_t nmi = 0;
    PAD_PORTS pads;
    EMU_INPUT_STATE pointers{};
    uint32_t clock = 100000;
};

// Port 0x3F with TH of A or of B as an output at a level; all other lines are inputs.
constexpr uint8_t kAllInputs = 0xFF;
constexpr uint8_t kThAHigh = 0xFD;
constexpr uint8_t kThALow = 0xDD;
constexpr uint8_t kThBHigh = 0xF7;
constexpr uint8_t kThBLow = 0x77;

constexpr uint32_t kButton(uint32_t number) {
    return kPadButton1 << (number - 1);
}

} // namespace

TEST(SmsPads, NothingPressedReadsOnes) {
    PORTS ports(PadDevice::kJoypad);
    EXPECT_EQ(ports.Dc(), 0xFF);
    EXPECT_EQ(ports.Dd(), 0xFF);
}

TEST(SmsPads, JoypadAPullsItsBits) {
    const struct {
        uint32_t input;
        uint8_t dc;
    } rows[] = {
        {kPadUp,      0xFE},
        {kPadDown,    0xFD},
        {kPadLeft,    0xFB},
        {kPadRight,   0xF7},
        {kPadButton1, 0xEF},
        {kPadButton2, 0xDF},
        {kButton(3),  0xFF},
    };
    for (const auto& row : rows) {
        PORTS ports(PadDevice::kJoypad);
        ports.Frame(row.input);
        EXPECT_EQ(ports.Dc(), row.dc);
        EXPECT_EQ(ports.Dd(), 0xFF);
    }
}

TEST(SmsPads, JoypadBIsSpreadOverBothPorts) {
    const struct {
        uint32_t input;
        uint8_t dc;
        uint8_t dd;
    } rows[] = {
        {kPadUp,      0xBF, 0xFF},
        {kPadDown,    0x7F, 0xFF},
        {kPadLeft,    0xFF, 0xFE},
        {kPadRight,   0xFF, 0xFD},
        {kPadButton1, 0xFF, 0xFB},
        {kPadButton2, 0xFF, 0xF7},
    };
    for (const auto& row : rows) {
        PORTS ports(PadDevice::kJoypad);
        ports.Frame(0, row.input);
        EXPECT_EQ(ports.Dc(), row.dc);
        EXPECT_EQ(ports.Dd(), row.dd);
    }
}

TEST(SmsPads, ResetButtonIsBitFour) {
    PORTS ports(PadDevice::kJoypad);
    ports.Frame(kPadReset);
    EXPECT_EQ(ports.Dd(), 0xEF);
}

TEST(SmsPads, ExportConsoleReadsThOutputsBack) {
    PORTS ports(PadDevice::kJoypad);
    ports.Control(0xF5);
    EXPECT_EQ(ports.Dd() & 0xC0, 0xC0);
    ports.Control(0x55);
    EXPECT_EQ(ports.Dd() & 0xC0, 0x00);
    ports.Control(kThALow);
    EXPECT_EQ(ports.Dd() & 0xC0, 0x80);
    ports.Control(kThBLow);
    EXPECT_EQ(ports.Dd() & 0xC0, 0x40);
    ports.Control(0x5F); // low levels on inputs
    EXPECT_EQ(ports.Dd() & 0xC0, 0xC0);
}

TEST(SmsPads, JapaneseConsoleDoesNotReadThOutputsBack) {
    PORTS ports(PadDevice::kJoypad);
    ports.pads.thReturns = false;
    ports.Control(0x55);
    EXPECT_EQ(ports.Dd() & 0xC0, 0xC0);
}

TEST(SmsPads, RisingThLatchesTheHCounter) {
    PORTS ports(PadDevice::kJoypad);
    ports.Control(0x55);
    ports.Beam(10, 100);
    ports.Control(0x75);
    EXPECT_EQ(ports.vdp->hLatch, 50);
    ports.Beam(10, 200);
    ports.Control(0x75);
    ports.Control(0x55);
    EXPECT_EQ(ports.vdp->hLatch, 50) << "neither a level nor a fall latches";
    ports.Control(0xD5);
    EXPECT_EQ(ports.vdp->hLatch, 100) << "TH of port B does so too";
}

TEST(SmsPads, PhaserTriggerIsButtonOneAndTheRestIsOpen) {
    PORTS ports(PadDevice::kLightPhaser);
    ports.Frame(kPadButton1 | kPadUp | kPadLeft | kPadButton2);
    EXPECT_EQ(ports.Dc(), 0xEF);
}

TEST(SmsPads, PhaserPullsThInItsSpotOnly) {
    PORTS ports(PadDevice::kLightPhaser);
    ports.pointers.pointer[0] = {100, 16 + 50}; // the picture begins 16 lines above line 0
    ports.Frame(0);
    const struct {
        uint32_t line;
        uint32_t dot;
        bool light;
    } rows[] = {
        {45, 111, false},
        {46, 110, false},
        {46, 111, true },
        {50, 180, true },
        {50, 260, true },
        {50, 261, false},
        {54, 111, true },
        {55, 111, false},
        {50, 330, false},
    };
    for (const auto& row : rows) {
        ports.Beam(row.line, row.dot);
        EXPECT_EQ((ports.Dd() & 0x40) == 0, row.light) << row.line << ' ' << row.dot;
        EXPECT_EQ(ports.Dd() & 0x80, 0x80);
    }
}

TEST(SmsPads, PhaserSeesNoLightAboveTheFirstLine) {
    PORTS ports(PadDevice::kLightPhaser);
    ports.pointers.pointer[0] = {200, 16 + 2};
    ports.Frame(0);
    ports.vdp->line = 0; // the counter of lines has begun the new frame, the beam has not
    ports.vdp->dotCounter = 330 * 2;
    EXPECT_EQ(ports.Dd() & 0x40, 0x40);
    ports.Beam(0, 250);
    EXPECT_EQ(ports.Dd() & 0x40, 0);
}

TEST(SmsPads, PhaserLatchesTheHCounterAtTheSpot) {
    PORTS ports(PadDevice::kLightPhaser);
    ports.pointers.pointer[0] = {100, 66};
    ports.Frame(0);
    ports.vdp->hLatch = 0x33;
    ports.Beam(46, 100);
    PadsLatchLight(ports.pads, *ports.vdp);
    EXPECT_EQ(ports.vdp->hLatch, 0x33);
    ports.Beam(46, 150);
    PadsLatchLight(ports.pads, *ports.vdp);
    EXPECT_EQ(ports.vdp->hLatch, 111 / 2);
    // A latch by the program stays until the beam enters the spot again.
    ports.vdp->hLatch = 0x33;
    PadsLatchLight(ports.pads, *ports.vdp);
    EXPECT_EQ(ports.vdp->hLatch, 0x33);
    ports.Beam(47, 330);
    PadsLatchLight(ports.pads, *ports.vdp);
    EXPECT_EQ(ports.vdp->hLatch, 111 / 2);
}

TEST(SmsPads, PhaserBWorksOnItsOwnTh) {
    PORTS ports(PadDevice::kJoypad, PadDevice::kLightPhaser);
    ports.pointers.pointer[1] = {20, 30};
    ports.Frame(0, kPadButton1);
    ports.Beam(14, 40);
    EXPECT_EQ(ports.Dd(), 0x7B);
    EXPECT_EQ(ports.vdp->hLatch, 31 / 2);
}

TEST(SmsPads, PhaserWhoseThIsAnOutputSeesNothing) {
    PORTS ports(PadDevice::kLightPhaser);
    ports.pointers.pointer[0] = {100, 66};
    ports.Frame(0);
    ports.Control(kThAHigh);
    ports.vdp->hLatch = 0x33;
    ports.Beam(50, 150);
    EXPECT_EQ(ports.Dd() & 0x40, 0x40);
    EXPECT_EQ(ports.vdp->hLatch, 0x33);
}

TEST(SmsPads, LaterOfTwoPhasersOwnsTheLatch) {
    PORTS ports(PadDevice::kLightPhaser, PadDevice::kLightPhaser);
    ports.pointers.pointer[0] = {200, 66};
    ports.pointers.pointer[1] = {20, 66};
    ports.Frame(0);
    ports.Beam(50, 300);
    PadsLatchLight(ports.pads, *ports.vdp);
    EXPECT_EQ(ports.vdp->hLatch, 211 / 2);
}

TEST(SmsPads, DirectionsMoveTheAimAndItStays) {
    PORTS ports(PadDevice::kLightPhaser);
    EXPECT_EQ(ports.pads.deviceX[0], 128u);
    EXPECT_EQ(ports.pads.deviceY[0], 112u);
    ports.Frame(kPadLeft | kPadDown);
    ports.Frame(kPadLeft);
    ports.Frame(0);
    EXPECT_EQ(ports.pads.deviceX[0], 124u);
    EXPECT_EQ(ports.pads.deviceY[0], 114u);
    for (int i = 0; i < 200; ++i) {
        ports.Frame(kPadLeft | kPadDown);
    }
    EXPECT_EQ(ports.pads.deviceX[0], 0u);
    EXPECT_EQ(ports.pads.deviceY[0], 255u);
    ports.pointers.pointer[0] = {9999, 3};
    ports.Frame(kPadLeft);
    EXPECT_EQ(ports.pads.deviceX[0], 255u);
    EXPECT_EQ(ports.pads.deviceY[0], 3u);
}

namespace {

// The four nibbles as a program reads them, with the published waits in clocks.
std::array<int, 4> ReadSportsPad(PORTS& ports, bool portB = false) {
    std::array<int, 4> nibbles{};
    for (uint32_t phase = 0; phase < 4; ++phase) {
        const bool low = phase % 2 == 0;
        if (portB) {
            ports.Control(low ? kThBLow : kThBHigh);
        } else {
            ports.Control(low ? kThALow : kThAHigh);
        }
        ports.clock += phase == 0 ? 286 : 143;
        nibbles[phase] = portB ? (ports.Dc() >> 6 | (ports.Dd() & 3) << 2) : ports.Dc() & 15;
    }
    return nibbles;
}

using Nibbles = std::array<int, 4>;

} // namespace

TEST(SmsPads, SportsPadReturnsItsMovementInFourNibbles) {
    PORTS ports(PadDevice::kSportsPad);
    ports.Control(kThAHigh);
    ports.Frame(0);
    EXPECT_EQ(ReadSportsPad(ports), (Nibbles{0, 0, 0, 0}));
    ports.Frame(kPadRight | kPadDown);
    EXPECT_EQ(ReadSportsPad(ports), (Nibbles{0x0, 0xA, 0xF, 0x6})); // +10, -10
    ports.Frame(kPadLeft | kPadUp);
    EXPECT_EQ(ReadSportsPad(ports), (Nibbles{0xF, 0x6, 0x0, 0xA}));
}

TEST(SmsPads, SportsPadBeginsAgainAfterAPause) {
    PORTS ports(PadDevice::kSportsPad);
    ports.Frame(kPadRight);
    ports.Control(kThALow);
    ports.clock += 100;
    ports.Control(kThAHigh);
    ports.clock += 280;
    EXPECT_EQ(ports.Dc() & 15, 0xA) << "280 clocks are not over 280";
    ports.clock += 1;
    EXPECT_EQ(ports.Dc() & 15, 0x0) << "the high nibble again";
    ports.clock += 5000;
    EXPECT_EQ(ReadSportsPad(ports), (Nibbles{0, 0xA, 0, 0}));
}

TEST(SmsPads, SportsPadHasTwoButtons) {
    PORTS ports(PadDevice::kSportsPad, PadDevice::kSportsPad);
    ports.Frame(kPadButton1, kPadButton2);
    EXPECT_EQ(ports.Dc() & 0x30, 0x20);
    EXPECT_EQ(ports.Dd() & 0x0C, 0x04);
}

TEST(SmsPads, SportsPadWorksInPortB) {
    PORTS ports(PadDevice::kJoypad, PadDevice::kSportsPad);
    ports.Control(kThBHigh);
    ports.Frame(0, kPadLeft | kPadUp);
    EXPECT_EQ(ReadSportsPad(ports, true), (Nibbles{0xF, 0x6, 0x0, 0xA}));
}

TEST(SmsPads, PaddleAlternatesItsNibbles) {
    PORTS ports(PadDevice::kPaddle);
    EXPECT_EQ(ports.pads.deviceX[0], 127u);
    EXPECT_EQ(ports.pads.deviceY[0], 127u);
    for (int trial = 0; trial < 3; ++trial) {
        EXPECT_EQ(ports.Dc() & 0x2F, 0x0F) << "low nibble of 0x7F, TR 0";
        EXPECT_EQ(ports.Dc() & 0x2F, 0x27) << "high nibble, TR 1";
    }
}

TEST(SmsPads, PaddleTurnsByFourWithinItsRange) {
    PORTS ports(PadDevice::kPaddle);
    ports.Frame(kPadRight);
    EXPECT_EQ(ports.pads.deviceX[0], 131u);
    ports.Frame(kPadLeft);
    ports.Frame(kPadLeft);
    EXPECT_EQ(ports.pads.deviceX[0], 123u);
    for (int i = 0; i < 100; ++i) {
        ports.Frame(kPadLeft);
    }
    EXPECT_EQ(ports.pads.deviceX[0], 0u);
    for (int i = 0; i < 100; ++i) {
        ports.Frame(kPadRight);
    }
    EXPECT_EQ(ports.pads.deviceX[0], 255u);
}

TEST(SmsPads, PaddleHasOneButton) {
    PORTS ports(PadDevice::kPaddle);
    ports.Frame(kPadButton1);
    EXPECT_EQ(ports.Dc() & 0x10, 0x00);
    ports.Frame(kPadButton2);
    EXPECT_EQ(ports.Dc() & 0x10, 0x10);
}

TEST(SmsPads, PaddleInPortBFlipsWithTheSecondPort) {
    PORTS ports(PadDevice::kJoypad, PadDevice::kPaddle);
    ports.pads.deviceX[1] = 0xA5;
    EXPECT_EQ(ports.Dc() >> 6, 0x5 & 3);
    EXPECT_EQ(ports.Dc() >> 6, 0x5 & 3) << "the port without TR flips nothing";
    EXPECT_EQ(ports.Dd() & 0x0B, 0x5 >> 2);
    EXPECT_EQ(ports.Dc() >> 6, 0xA & 3);
    EXPECT_EQ(ports.Dd() & 0x0B, 0xA >> 2 | 0x08);
}

TEST(SmsPads, SixButtonPadIsAJoypadToAProgramThatKnowsNothingOfTh) {
    PORTS ports(PadDevice::kSixButton);
    ports.Frame(kPadUp | kPadRight | kPadButton2 | kButton(3) | kButton(4));
    EXPECT_EQ(ports.Dc(), 0xFF & ~0x01 & ~0x08 & ~0x20);
}

TEST(SmsPads, SixButtonPadFollowsItsTable) {
    PORTS ports(PadDevice::kSixButton);
    ports.Control(kThAHigh);
    ports.clock += 5000;
    const uint32_t inputs[] = {0,          kPadUp,     kPadDown,   kPadLeft,
                               kPadRight,  kButton(1), kButton(2), kButton(3),
                               kButton(4), kButton(5), kButton(6)};
    for (const uint32_t input : inputs) {
        ports.clock += 5000;
        ports.Frame(input);
        const auto pulled = [&](uint32_t bit, int line) { return (input & bit) != 0 ? line : 0; };
        const int directions = static_cast<int>(input & 0x0F);
        const int bc = pulled(kButton(1), 0x10) | pulled(kButton(2), 0x20);
        const int a = pulled(kButton(3), 0x10);
        const int plain = 0x3F & ~(directions | bc);
        const int plainLow = 0x3F & ~((directions & 3) | 0x0C | a);
        const int expected[8] = {
            plainLow,           // TH 0, no rising edge yet
            plain,              // TH 1, once
            plainLow,           //
            plain,              // twice
            0x3F & ~(0x0F | a), // TH 0: the mark
            0x3F & ~(pulled(kButton(6), 1) | pulled(kButton(5), 2) | pulled(kButton(4), 4) | bc),
            0x3F & ~a, // TH 0: all ones
            plain,     // and again
        };
        EXPECT_EQ(ports.Dc() & 0x3F, plain);
        for (int step = 0; step < 8; ++step) {
            ports.clock += 50;
            ports.Control(step % 2 == 0 ? kThALow : kThAHigh);
            EXPECT_EQ(ports.Dc() & 0x3F, expected[step]) << "input " << input << " step " << step;
        }
    }
}

TEST(SmsPads, SixButtonPadForgetsItsCountAfterAWhile) {
    PORTS ports(PadDevice::kSixButton);
    ports.Frame(kButton(6));
    ports.Control(kThAHigh);
    ports.clock += 5000;
    for (int i = 0; i < 3; ++i) {
        ports.Control(kThALow);
        ports.Control(kThAHigh);
    }
    EXPECT_EQ(ports.Dc() & 0x3F, 0x3E);
    ports.clock += 1956;
    EXPECT_EQ(ports.Dc() & 0x3F, 0x3E);
    ports.clock += 1;
    EXPECT_EQ(ports.Dc() & 0x3F, 0x3F);
}

TEST(SmsPads, UnknownDeviceIsAJoypad) {
    EXPECT_EQ(PadDeviceOf(0), PadDevice::kJoypad);
    EXPECT_EQ(PadDeviceOf(1), PadDevice::kJoypad);
    EXPECT_EQ(PadDeviceOf(2), PadDevice::kLightPhaser);
    EXPECT_EQ(PadDeviceOf(3), PadDevice::kJoypad);
    EXPECT_EQ(PadDeviceOf(4), PadDevice::kSportsPad);
    EXPECT_EQ(PadDeviceOf(8), PadDevice::kPaddle);
    EXPECT_EQ(PadDeviceOf(16), PadDevice::kSixButton);
    EXPECT_EQ(PadDeviceOf(255), PadDevice::kJoypad);
}

TEST(SmsPads, ThAsAnInputFloatsHigh) {
    PORTS ports(PadDevice::kJoypad);
    ports.Control(0x0F); // all inputs, low levels
    EXPECT_EQ(ports.Dd() & 0xC0, 0xC0);
    ports.Control(kAllInputs);
    EXPECT_EQ(ports.Dd() & 0xC0, 0xC0);
}
