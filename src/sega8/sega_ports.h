// The I/O ports that the Master System, the Mark III and the Game Gear have in common.
// Source: C. MacDonald, SMS/GG hardware notes (2002).
#pragma once

#include <cstdint>

// The address lines that select a port: 7, 6 and 0.
inline constexpr uint8_t kSegaPortLines = 0xC1;

// A port by these lines. Reads and writes of one port may reach different chips.
enum SegaPort : uint8_t {
    kSegaPortMemoryControl = 0x00, // write: SegaMemoryControl
    kSegaPortIoControl = 0x01,     // write: the bits below
    kSegaPortVCounter = 0x40,      // read
    kSegaPortHCounter = 0x41,      // read: as last latched
    kSegaPortPsg = 0x40,           // write
    kSegaPortPsgMirror = 0x41,     // write
    kSegaPortVdpData = 0x80,
    kSegaPortVdpControl = 0x81, // read: status
    kSegaPortPadDc = 0xC0,      // read
    kSegaPortPadDd = 0xC1       // read
};

// I/O control, port 0x3F: the bits of pad port A. Those of port B are two bits higher.
inline constexpr uint8_t kSegaIoThInput = 0x02; // TH is an input, else an output
inline constexpr uint8_t kSegaIoThLevel = 0x20; // level of TH as an output
inline constexpr uint8_t kSegaIoThLevels = kSegaIoThLevel | kSegaIoThLevel << 2;
