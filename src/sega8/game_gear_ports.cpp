// The port decoder of a Game Gear.
#include "sega8/game_gear.h"
#include "sega8/sega_ports.h"

uint8_t GearReadPort(GEAR_CONSOLE& console, uint16_t port) {
    const auto low = static_cast<uint8_t>(port);
    if (low <= kGearPortLast) {
        return GearLinkRead(console.link, low);
    }
    switch (low & kSegaPortLines) {
    case kSegaPortVCounter: return VdpVCounter(console.vdp);
    case kSegaPortHCounter: return console.vdp.hLatch;
    case kSegaPortVdpData: return VdpDataRead(console.vdp);
    case kSegaPortVdpControl: return VdpStatusRead(console.vdp);
    default: break;
    }
    // Published: from 0xC0 on only four ports answer, and 0xC1 and 0xDD have no pad.
    constexpr uint8_t kButtonPorts[] = {0xC0, 0xDC};
    return low == kButtonPorts[0] || low == kButtonPorts[1] ? console.buttons : 0xFF;
}

void GearWritePort(GEAR_CONSOLE& console, uint16_t port, uint8_t value) {
    const auto low = static_cast<uint8_t>(port);
    if (low <= kGearPortLast) {
        GearLinkWrite(console.link, low, value);
        if (low == kGearPortPanning) {
            GearRunSound(console);
            PsgStereoWrite(console.psg, value);
        }
        return;
    }
    switch (low & kSegaPortLines) {
    case kSegaPortMemoryControl: SegaMemoryWriteControl(console.memory, value); break;
    case kSegaPortIoControl:
        if ((value & ~console.ioControl & kSegaIoThLevels) != 0) {
            VdpLatchH(console.vdp);
        }
        console.ioControl = value;
        break;
    case kSegaPortPsg:
    case kSegaPortPsgMirror:
        GearRunSound(console);
        PsgWrite(console.psg, value);
        break;
    case kSegaPortVdpData: VdpDataWrite(console.vdp, value); break;
    case kSegaPortVdpControl: VdpControlWrite(console.vdp, value); break;
    default: break;
    }
}
