#include "sega8/gear_link.h"

#include <algorithm>

namespace {

constexpr uint8_t kStart = 0x80;
constexpr uint8_t kExport = 0x40;
constexpr uint8_t kLineBits = 0x7F;
constexpr uint8_t kNmiLine = 0x40;
constexpr uint8_t kNoNmi = 0x80; // in `directions`

// Ten bits at 4,800 baud, in Z80 clocks; the other speeds are 2, 4 and 16 times slower.
constexpr uint32_t kByteClocks = 7457;
constexpr uint32_t kSlowestByteClocks = kByteClocks * 16;

// The partner's line at the other end of each of ours.
constexpr std::array<uint8_t, 7> kCable{2, 3, 0, 1, 5, 4, 6};

// What comes in on all seven lines.
uint8_t Incoming(const GEAR_LINK& link) {
    if (link.partner == nullptr) {
        return kLineBits;
    }
    uint8_t incoming = 0;
    for (uint32_t line = 0; line < kCable.size(); ++line) {
        const uint32_t other = 1u << kCable[line];
        const bool driven = (link.partner->directions & other) == 0;
        if (!driven || (link.partner->lines & other) != 0) {
            incoming = static_cast<uint8_t>(incoming | 1u << line);
        }
    }
    return incoming;
}

void RaiseNmi(GEAR_LINK& link) {
    if (link.nmi != nullptr) {
        *link.nmi = 1;
    }
}

// A write to our lines, and what it does to the partner's NMI line.
void Drive(GEAR_LINK& link, uint8_t& field, uint8_t value) {
    GEAR_LINK* const partner = link.partner;
    const uint8_t before = partner != nullptr ? Incoming(*partner) : kLineBits;
    field = value;
    if (partner == nullptr) {
        return;
    }
    const auto falling = static_cast<uint8_t>(before & ~Incoming(*partner));
    const bool listens = (partner->directions & (kNmiLine | kNoNmi)) == kNmiLine;
    if ((falling & kNmiLine) != 0 && listens) {
        RaiseNmi(*partner);
    }
}

// A receiver hears nobody and takes that for broken bytes.
bool HearsErrors(const GEAR_LINK& link) {
    return link.partner == nullptr && (link.serial & kGearReceiveOn) != 0;
}

void WaitForError(GEAR_LINK& link) {
    link.errorClocks = HearsErrors(link) ? GearLinkByteClocks(link.serial) : 0;
}

void Send(GEAR_LINK& link, uint8_t value) {
    if ((link.serial & kGearSendFull) != 0) {
        return;
    }
    link.sendByte = value;
    if ((link.serial & kGearTransmitOn) != 0) {
        link.serial |= kGearSendFull;
        link.sendClocks = GearLinkByteClocks(link.serial);
    }
}

uint8_t ReadSerial(const GEAR_LINK& link) {
    return static_cast<uint8_t>(link.serial | (HearsErrors(link) ? kGearFrameError : 0));
}

} // namespace

uint32_t GearLinkByteClocks(uint8_t serial) {
    switch (serial >> 6) {
    case 1: return kByteClocks * 2;
    case 2: return kByteClocks * 4;
    case 3: return kSlowestByteClocks;
    default: return kByteClocks;
    }
}

void GearLinkReset(GEAR_LINK& link) {
    GEAR_LINK fresh;
    fresh.partner = link.partner;
    fresh.nmi = link.nmi;
    fresh.japanese = link.japanese;
    link = fresh;
}

void GearLinkSanitize(GEAR_LINK& link) {
    link.sendClocks = std::min(link.sendClocks, kSlowestByteClocks);
    link.errorClocks = std::min(link.errorClocks, kSlowestByteClocks);
    // The frame error is told from the partner at every read. A flag without its byte would block the
    // port for good.
    link.serial = static_cast<uint8_t>(link.serial & ~(kGearSendFull | kGearFrameError));
    if (link.sendClocks != 0) {
        link.serial |= kGearSendFull;
    }
    if (HearsErrors(link) != (link.errorClocks != 0)) {
        WaitForError(link);
    }
}

uint8_t GearLinkRead(GEAR_LINK& link, uint8_t port) {
    switch (port) {
    case 0:
        return static_cast<uint8_t>((link.startDown ? 0 : kStart) | (link.japanese ? 0 : kExport));
    case 1: {
        const auto inputs = static_cast<uint8_t>(link.directions & kLineBits);
        return static_cast<uint8_t>((link.lines & ~inputs) | (Incoming(link) & inputs));
    }
    case 2: return link.directions;
    case 3: return link.sendByte;
    case 4:
        link.serial = static_cast<uint8_t>(link.serial & ~kGearReceived);
        return link.receivedByte;
    case 5: return ReadSerial(link);
    default: return 0xFF;
    }
}

void GearLinkWrite(GEAR_LINK& link, uint8_t port, uint8_t value) {
    switch (port) {
    case 1: Drive(link, link.lines, value); break;
    case 2: Drive(link, link.directions, value); break;
    case 3: Send(link, value); break;
    case 5:
        link.serial = static_cast<uint8_t>((link.serial & ~kGearSerialWritable) |
                                           (value & kGearSerialWritable));
        WaitForError(link);
        break;
    case 6: link.panning = value; break;
    default: break;
    }
}

void GearLinkDeliver(GEAR_LINK& link) {
    link.serial = static_cast<uint8_t>(link.serial & ~kGearSendFull);
    GEAR_LINK* const partner = link.partner;
    if (partner == nullptr || (partner->serial & kGearReceiveOn) == 0) {
        return;
    }
    partner->receivedByte = link.sendByte;
    partner->serial |= kGearReceived;
    if ((partner->serial & kGearNmiOnByte) != 0) {
        RaiseNmi(*partner);
    }
}

void GearLinkError(GEAR_LINK& link) {
    WaitForError(link);
    if ((link.serial & kGearNmiOnByte) != 0) {
        RaiseNmi(link);
    }
}
