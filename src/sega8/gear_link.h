// The ports 0x00 to 0x06 of a Game Gear: start button and region, the seven lines and the serial
// port of the link plug, and the sound panning.
// Sources: C. MacDonald, SMS/GG hardware notes (2002); SMS Power, GearToGearCable.
//
// Link: two consoles are linked when each has the other as `partner`. The cable crosses the lines:
// 0 with 2, 1 with 3, 4 with 5; 6 is straight. An undriven line reads 1.
// Serial: a byte written to port 3 with kGearTransmitOn is sent for ten bit times and arrives at a
// partner with kGearReceiveOn; it overwrites a byte that was not read. Until then kGearSendFull is
// 1 and further writes to port 3 are lost (open: documents only say that a write sends while the
// bit is 0). A receiver without a partner sees kGearFrameError and, with kGearNmiOnByte, an NMI every
// ten bit times. Programs take that as "no partner".
//
// Clock: one tick (GearLinkTick) is one Z80 clock.
// Pins: `nmi` points to the nmiEdge of the console's own Z80.
// Owner: one machine, on its session's thread. Everything from `lines` on is in its state.
#pragma once

#include <array>
#include <cstdint>

// The ports.
enum GearPort : uint8_t {
    kGearPortStart = 0, // read: start button, region
    kGearPortLines = 1,
    kGearPortDirections = 2,
    kGearPortSend = 3,
    kGearPortReceive = 4, // read
    kGearPortSerial = 5,  // GearSerial; bits 6 and 7 are the speed
    kGearPortPanning = 6, // write
    kGearPortLast = kGearPortPanning
};

// Port 5.
enum GearSerial : uint8_t {
    kGearSendFull = 0x01,
    kGearReceived = 0x02,
    kGearFrameError = 0x04,
    kGearNmiOnByte = 0x08,
    kGearTransmitOn = 0x10,
    kGearReceiveOn = 0x20,
    kGearSerialWritable = 0xF8
};

struct GEAR_LINK {
    GEAR_LINK* partner = nullptr; // null without a cable
    uint32_t* nmi = nullptr;
    bool japanese = false;
    bool startDown = false; // as of this frame

    uint8_t lines = 0x7F;        // port 1: what this side drives; bit 7 is storage
    uint8_t directions = 0xFF;   // port 2: 1 input; bit 7: no NMI by line 6
    uint8_t sendByte = 0x00;     // port 3; being sent while kGearSendFull is set
    uint8_t receivedByte = 0xFF; // port 4
    uint8_t serial = 0x00;       // port 5
    uint8_t panning = 0xFF;      // port 6
    uint32_t sendClocks = 0;     // until the byte arrives; 0: no byte is sent
    uint32_t errorClocks = 0;    // until the next frame error; 0: no error is due
};

void GearLinkReset(GEAR_LINK& link);
// After a load: makes contradicting flags and times agree.
void GearLinkSanitize(GEAR_LINK& link);

// Ports 0 to 6; a write to port 6 is stored only.
[[nodiscard]] uint8_t GearLinkRead(GEAR_LINK& link, uint8_t port);
void GearLinkWrite(GEAR_LINK& link, uint8_t port, uint8_t value);

// The byte that is sent arrives.
void GearLinkDeliver(GEAR_LINK& link);
// A frame error of a receiver without a partner.
void GearLinkError(GEAR_LINK& link);

// Z80 clocks of a byte at the speed in port 5.
[[nodiscard]] uint32_t GearLinkByteClocks(uint8_t serial);

inline void GearLinkTick(GEAR_LINK& link) {
    if (link.sendClocks != 0 && --link.sendClocks == 0) [[unlikely]] {
        GearLinkDeliver(link);
    }
    if (link.errorClocks != 0 && --link.errorClocks == 0) [[unlikely]] {
        GearLinkError(link);
    }
}

// `clocks` calls of GearLinkTick; mostly nothing is on the line.
inline void GearLinkRun(GEAR_LINK& link, uint32_t clocks) {
    if ((link.sendClocks | link.errorClocks) == 0) {
        return;
    }
    for (; clocks != 0; --clocks) {
        GearLinkTick(link);
    }
}
