// The port decoder of CSMS.
#include "sega8/sega_ports.h"
#include "sega8/sms.h"

namespace {

// Ports of the FM unit, which decodes all eight address lines.
constexpr uint8_t kPortFmAddress = 0xF0;
constexpr uint8_t kPortFmData = 0xF1;
constexpr uint8_t kPortFmControl = 0xF2;

} // namespace

uint8_t CSMS::ReadPort(uint16_t port) {
    const auto low = static_cast<uint8_t>(port);
    if (low == kPortFmControl) {
        const bool ioOn = (memory.control & kSegaIoOff) == 0;
        return ioOn ? static_cast<uint8_t>(fmControl & PadsReadDc(pads, vdp, clockCount))
                    : fmControl;
    }
    switch (low & kSegaPortLines) {
    case kSegaPortVCounter: return VdpVCounter(vdp);
    case kSegaPortHCounter: PadsLatchLight(pads, vdp); return vdp.hLatch;
    case kSegaPortVdpData: return VdpDataRead(vdp);
    case kSegaPortVdpControl: return VdpStatusRead(vdp);
    case kSegaPortPadDc: return PadsReadDc(pads, vdp, clockCount);
    case kSegaPortPadDd: return PadsReadDd(pads, vdp, clockCount);
    default: return 0xFF;
    }
}

void CSMS::WritePort(uint16_t port, uint8_t value) {
    const auto low = static_cast<uint8_t>(port);
    switch (low & kSegaPortLines) {
    case kSegaPortMemoryControl: SegaMemoryWriteControl(memory, value); return;
    case kSegaPortIoControl: PadsWriteControl(pads, vdp, value, clockCount); return;
    case kSegaPortPsg:
    case kSegaPortPsgMirror:
        RunSound();
        PsgWrite(psg, value);
        return;
    case kSegaPortVdpData: VdpDataWrite(vdp, value); return;
    case kSegaPortVdpControl: VdpControlWrite(vdp, value); return;
    default: break;
    }
    if (chosen.fmChip == 0) {
        return;
    }
    switch (low) {
    case kPortFmAddress: fmAddress = value; break;
    case kPortFmData:
        RunSound();
        YmWrite(fm, fmAddress, value);
        break;
    case kPortFmControl: fmControl = value; break;
    default: break;
    }
}
