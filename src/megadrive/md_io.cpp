#include "megadrive/md_io.h"

namespace {

constexpr uint8_t kTh = 0x40;
constexpr uint8_t kInternational = 0x20; // always set in the version: no disk drive is attached

constexpr std::array<uint8_t, kMdIoRegisters> kAtReset = {0xA0, 0x7F, 0x7F, 0x7F, 0, 0,    0, 0xFF,
                                                          0,    0,    0xFF, 0,    0, 0xFB, 0, 0};

// Bit `n` for a button that is down.
uint32_t Bit(uint8_t pressed, uint32_t n) {
    return uint32_t{pressed} << n;
}

uint32_t Directions(const MD_PAD& pad) {
    return Bit(pad.up, 0) | Bit(pad.down, 1) | Bit(pad.left, 2) | Bit(pad.right, 3);
}

// TH high: directions, B and C.
uint8_t ReadHigh(const MD_PAD& pad) {
    const uint32_t pressed = Directions(pad) | Bit(pad.b, 4) | Bit(pad.c, 5);
    return static_cast<uint8_t>(kTh | (0x3F & ~pressed));
}

// TH low: A and Start. Left and right, held low at once, are how a game knows that a pad is there.
uint32_t AAndStart(const MD_PAD& pad) {
    return Bit(pad.a, 4) | Bit(pad.start, 5);
}

uint8_t ReadLow(const MD_PAD& pad) {
    const uint32_t pressed = Bit(pad.up, 0) | Bit(pad.down, 1) | AAndStart(pad);
    return static_cast<uint8_t>(0x33 & ~pressed);
}

uint8_t ReadSixButtons(const MD_PAD& pad, uint8_t th, uint32_t edges) {
    const uint32_t state = (th != 0 ? 1U : 0U) + 2 * (edges & 3);
    switch (state) {
    case 0:
    case 2: return ReadLow(pad);
    case 4: return static_cast<uint8_t>(0x30 & ~AAndStart(pad));
    case 6: return static_cast<uint8_t>(0x3F & ~AAndStart(pad));
    case 7: {
        const uint32_t pressed = Bit(pad.z, 0) | Bit(pad.y, 1) | Bit(pad.x, 2) | Bit(pad.mode, 3) |
                                 Bit(pad.b, 4) | Bit(pad.c, 5);
        return static_cast<uint8_t>(kTh | (0x3F & ~pressed));
    }
    default: return ReadHigh(pad);
    }
}

void WriteThreeButtons(MD_IO& io, uint32_t port, uint8_t value) {
    io.padTh[port] = value & kTh;
}

void WriteSixButtons(MD_IO& io, uint32_t port, uint8_t value, uint32_t now) {
    if (now - io.padLastWrite[port] > kMdPadTimeout) {
        io.padEdges[port] = 0;
    }
    if (io.padTh[port] == 0 && (value & kTh) != 0) {
        ++io.padEdges[port];
    }
    io.padTh[port] = value & kTh;
    io.padLastWrite[port] = now;
}

// An empty port reads its inputs as high.
uint8_t ReadPort(const MD_IO& io, uint32_t port) {
    const auto empty = static_cast<uint8_t>(~uint32_t{io.ioPorts[4 + port]} & 0x7F);
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
    if (index == 0) {
        return io.version | kInternational;
    }
    if (index <= 3) {
        return static_cast<uint8_t>((ReadPort(io, index - 1) & 0x7F) | (io.ioPorts[index] & 0x80));
    }
    return io.ioPorts[index % kMdIoRegisters];
}

void MdWriteIo(MD_IO& io, uint32_t index, uint8_t value, uint32_t now) {
    switch (index) {
    case 1:
    case 2:
    case 3:
        // Bit 7 is kept whatever the direction.
        io.ioPorts[index] = static_cast<uint8_t>((io.ioPorts[index + 3] | 0x80U) & value);
        WritePort(io, index - 1, value, now);
        break;
    case 4:
    case 5:
    case 6:
        io.ioPorts[index] = value;
        io.ioPorts[index - 3] = static_cast<uint8_t>(io.ioPorts[index - 3] & (value | 0x80U));
        break;
    case 7:
    case 10:
    case 13: io.ioPorts[index] = value; break;
    case 9:
    case 12:
    case 15: io.ioPorts[index] = value & 0xF8; break;
    default: break; // the version, and what was received
    }
}
