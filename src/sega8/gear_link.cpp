#include "sega8/gear_link.h"

#include <algorithm>

namespace {

// Port 0.
constexpr uint8_t kStart = 0x80;  // 0: pressed
constexpr uint8_t kExport = 0x40; // 0: Japanese

constexpr uint8_t kLineBits = 0x7F;
constexpr uint8_t kNmiLine = 0x40;
constexpr uint8_t kNoNmi = 0x80;    // in `directions`
constexpr uint32_t kSpeedShift = 6; // in `serial`

// Ten bits at 4,800 baud in Z80 clocks; the other speeds are 2,400, 1,200 and 300 baud.
constexpr uint32_t kByteClocks = 7457;
constexpr uint32_t kSlowestByteClocks = kByteClocks * 16;

// By line: the partner's line at the other end of the cable.
constexpr std::array<uint8_t, 7> kCable{2, 3, 0, 1, 5, 4, 6};

// The levels that the cable brings to the seven lines.
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

// A write to `lines` or `directions`, and its effect on the partner's NMI.
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

// True for a receiver without a partner: its idle line reads as broken bytes.
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
    switch (serial >> kSpeedShift) {
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
    // The frame error is derived at every read. kGearSendFull without a byte would block the port
    // for ever.
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
    case kGearPortStart:
        return static_cast<uint8_t>((link.startDown ? 0 : kStart) | (link.japanese ? 0 : kExport));
    case kGearPortLines: {
        const auto inputs = static_cast<uint8_t>(link.directions & kLineBits);
        return static_cast<uint8_t>((link.lines & ~inputs) | (Incoming(link) & inputs));
    }
    case kGearPortDirections: return link.directions;
    case kGearPortSend: return link.sendByte;
    case kGearPortReceive:
        link.serial = static_cast<uint8_t>(link.serial & ~kGearReceived);
        return link.receivedByte;
    case kGearPortSerial: return ReadSerial(link);
    default: return 0xFF;
    }
}

void GearLinkWrite(GEAR_LINK& link, uint8_t port, uint8_t value) {
    switch (port) {
    case kGearPortLines: Drive(link, link.lines, value); break;
    case kGearPortDirections: Drive(link, link.directions, value); break;
    case kGearPortSend: Send(link, value); break;
    case kGearPortSerial:
        link.serial = static_cast<uint8_t>((link.serial & ~kGearSerialWritable) |
                                           (value & kGearSerialWritable));
        WaitForError(link);
        break;
    case kGearPortPanning: link.panning = value; break;
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
