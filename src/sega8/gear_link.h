// The ports 0x00 to 0x06 of a Game Gear: start button and country, the seven lines and the serial port
// of the link plug, and the sound panning.
//
// Link: two consoles are joined when each has the other as `partner`. The cable crosses the lines: 0
// with 2, 1 with 3, 4 with 5; 6 with itself. A line that nobody drives reads 1.
// Serial: a byte written to port 3 while bit 4 of port 5 is set arrives after ten bits at the speed of
// port 5, at a partner whose bit 5 is set; a byte that was not fetched is overwritten. Bit 0 of port 5
// stays 1 until then, and a write to port 3 in the meantime is lost: it cannot change the byte on its
// way (open in the published material, which lets a write send only while the bit is 0). Without a
// partner a receiver sees a frame error, bit 2, and, with bit 3 set, an NMI for every byte's time:
// programs take that as "nobody there".
//
// Clock: GearLinkTick is one Z80 clock.
// Pins: `nmi` is the console's own Z80's nmiEdge.
// Owner: the machine. Everything from `lines` on is in its state.
#pragma once

#include <array>
#include <cstdint>

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
    uint8_t directions = 0xFF;   // port 2: 1 input; bit 7 set keeps PC6 from raising NMI
    uint8_t sendByte = 0x00;     // port 3; while bit 0 of `serial` is 1, the byte on its way
    uint8_t receivedByte = 0xFF; // port 4
    uint8_t serial = 0x00;       // port 5
    uint8_t panning = 0xFF;      // port 6
    uint32_t sendClocks = 0;     // until the byte on its way arrives; 0: none
    uint32_t errorClocks = 0;    // until the next frame error; 0: none is due
};

void GearLinkReset(GEAR_LINK& link);
// After a state has been loaded: makes flags and times that contradict each other agree.
void GearLinkSanitize(GEAR_LINK& link);

// Ports 0 to 6; a write to port 6 is stored only.
[[nodiscard]] uint8_t GearLinkRead(GEAR_LINK& link, uint8_t port);
void GearLinkWrite(GEAR_LINK& link, uint8_t port, uint8_t value);

// The byte on its way has arrived.
void GearLinkDeliver(GEAR_LINK& link);
// A receiver without a partner: the next frame error is due.
void GearLinkError(GEAR_LINK& link);

// Clocks that a byte takes at the speed of port 5.
[[nodiscard]] uint32_t GearLinkByteClocks(uint8_t serial);

inline void GearLinkTick(GEAR_LINK& link) {
    if (link.sendClocks != 0 && --link.sendClocks == 0) [[unlikely]] {
        GearLinkDeliver(link);
    }
    if (link.errorClocks != 0 && --link.errorClocks == 0) [[unlikely]] {
        GearLinkError(link);
    }
}
