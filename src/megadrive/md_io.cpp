#include "megadrive/md_io.h"

namespace {

// Numbers of the registers; each kind has one for every port.
constexpr uint32_t kVersion = 0;
constexpr uint32_t kFirstData = 1;
constexpr uint32_t kLastData = 3;
constexpr uint32_t kFirstDirection = 4;
constexpr uint32_t kLastDirection = 6;
constexpr uint32_t kDataToDirection = kFirstDirection - kFirstData;

constexpr uint8_t kNoDiskDrive = 0x20; // of the version
constexpr uint8_t kPins = 0x7F;        // of data and direction
constexpr uint8_t kNotAPin = 0x80;     // of data: kept whatever the direction
constexpr uint8_t kSerialModes = 0xF8; // of serial control; the other bits are read only

// Pins of a pad. Low means pressed.
constexpr uint8_t kPinsBelowTh = 0x3F;
constexpr uint8_t kPinsWithoutLeftRight = 0x33;
constexpr uint8_t kPinsWithoutDirections = 0x30;

constexpr std::array<uint8_t, kMdIoRegisters> kAtReset = {0xA0, 0x7F, 0x7F, 0x7F, 0, 0,    0, 0xFF,
                                                          0,    0,    0xFF, 0,    0, 0xFB, 0, 0};

// Bit `n` if the button is pressed.
uint32_t Bit(uint8_t pressed, uint32_t n) {
    return uint32_t{pressed} << n;
}

uint32_t Directions(const MD_PAD& pad) {
    return Bit(pad.up, 0) | Bit(pad.down, 1) | Bit(pad.left, 2) | Bit(pad.right, 3);
}

// TH high: directions, B and C.
uint8_t ReadHigh(const MD_PAD& pad) {
    const uint32_t pressed = Directions(pad) | Bit(pad.b, 4) | Bit(pad.c, 5);
    return static_cast<uint8_t>(kMdIoTh | (kPinsBelowTh & ~pressed));
}

uint32_t AAndStart(const MD_PAD& pad) {
    return Bit(pad.a, 4) | Bit(pad.start, 5);
}

// TH low: up, down, A and Start. Left and right are both low, which tells a game that a pad is there.
uint8_t ReadLow(const MD_PAD& pad) {
    const uint32_t pressed = Bit(pad.up, 0) | Bit(pad.down, 1) | AAndStart(pad);
    return static_cast<uint8_t>(kPinsWithoutLeftRight & ~pressed);
}

// Which buttons the pins show depends on TH and on the number of its rising edges, modulo 4. After two of them
// TH low pulls all directions low, which tells a game that it is a six-button pad. After three, TH low lets them go
// high, and TH high shows X, Y, Z and Mode.
uint8_t ReadSixButtons(const MD_PAD& pad, uint8_t th, uint32_t edges) {
    const uint32_t state = (th != 0 ? 1U : 0U) + 2 * (edges & 3);
    switch (state) {
    case 0:
    case 2: return ReadLow(pad);
    case 4: return static_cast<uint8_t>(kPinsWithoutDirections & ~AAndStart(pad));
    case 6: return static_cast<uint8_t>(kPinsBelowTh & ~AAndStart(pad));
    case 7: {
        const uint32_t pressed = Bit(pad.z, 0) | Bit(pad.y, 1) | Bit(pad.x, 2) | Bit(pad.mode, 3) |
                                 Bit(pad.b, 4) | Bit(pad.c, 5);
        return static_cast<uint8_t>(kMdIoTh | (kPinsBelowTh & ~pressed));
    }
    default: return ReadHigh(pad);
    }
}

void WriteThreeButtons(MD_IO& io, uint32_t port, uint8_t value) {
    io.padTh[port] = value & kMdIoTh;
}

void WriteSixButtons(MD_IO& io, uint32_t port, uint8_t value, uint32_t now) {
    if (now - io.padLastWrite[port] > kMdPadTimeout) {
        io.padEdges[port] = 0;
    }
    if (io.padTh[port] == 0 && (value & kMdIoTh) != 0) {
        ++io.padEdges[port];
    }
    io.padTh[port] = value & kMdIoTh;
    io.padLastWrite[port] = now;
}

// The inputs of an empty port read as 1, its outputs as 0.
uint8_t ReadPort(const MD_IO& io, uint32_t port) {
    const auto empty = static_cast<uint8_t>(~uint32_t{io.ioPorts[kFirstDirection + port]} & kPins);
    if (port >= kMdPads) {
        return empty;
    }
    const MD_PAD& pad = io.pads[port];
    switch (io.devices[port]) {
    case kMdDevice3Button: return io.padTh[port] != 0 ? ReadHigh(pad) : ReadLow(pad);
    case kMdDevice6Button: return ReadSixButtons(pad, io.padTh[port], io.padEdges[port]);
    default: return empty;
    }
}

void WritePort(MD_IO& io, uint32_t port, uint8_t value, uint32_t now) {
    if (port >= kMdPads) {
        return;
    }
    if (io.devices[port] == kMdDevice3Button) {
        WriteThreeButtons(io, port, value);
    } else if (io.devices[port] == kMdDevice6Button) {
        WriteSixButtons(io, port, value, now);
    }
}

} // namespace

void MdIoReset(MD_IO& io) {
    io.ioPorts = kAtReset;
}

uint8_t MdReadIo(const MD_IO& io, uint32_t index) {
    if (index == kVersion) {
        return io.version | kNoDiskDrive;
    }
    if (index <= kLastData) {
        return static_cast<uint8_t>((ReadPort(io, index - kFirstData) & kPins) |
                                    (io.ioPorts[index] & kNotAPin));
    }
    return io.ioPorts[index % kMdIoRegisters];
}

void MdWriteIo(MD_IO& io, uint32_t index, uint8_t value, uint32_t now) {
    switch (index) {
    case kFirstData:
    case 2:
    case kLastData: {
        const uint32_t outputs = io.ioPorts[index + kDataToDirection] | kNotAPin;
        io.ioPorts[index] = static_cast<uint8_t>(outputs & value);
        WritePort(io, index - kFirstData, value, now);
        break;
    }
    case kFirstDirection:
    case 5:
    case kLastDirection: {
        uint8_t& data = io.ioPorts[index - kDataToDirection];
        io.ioPorts[index] = value;
        data = static_cast<uint8_t>(data & (value | kNotAPin));
        break;
    }
    case 7: // transmit
    case 10:
    case 13: io.ioPorts[index] = value; break;
    case 9: // serial control
    case 12:
    case 15: io.ioPorts[index] = value & kSerialModes; break;
    default: break; // the version and the receive registers are read only
    }
}
