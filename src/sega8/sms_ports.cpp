// The port decoder of CSMS: address lines 7, 6 and 0 pick the chip.
#include "sega8/sms.h"

namespace {

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
    switch (low & 0xC1) {
    case 0x40: return VdpVCounter(vdp);
    case 0x41: PadsLatchLight(pads, vdp); return vdp.hLatch;
    case 0x80: return VdpDataRead(vdp);
    case 0x81: return VdpStatusRead(vdp);
    case 0xC0: return PadsReadDc(pads, vdp, clockCount);
    case 0xC1: return PadsReadDd(pads, vdp, clockCount);
    default: return 0xFF;
    }
}

void CSMS::WritePort(uint16_t port, uint8_t value) {
    const auto low = static_cast<uint8_t>(port);
    switch (low & 0xC1) {
    case 0x00: SegaMemoryWriteControl(memory, value); return;
    case 0x01: PadsWriteControl(pads, vdp, value, clockCount); return;
    case 0x40:
    case 0x41: PsgWrite(psg, value); return;
    case 0x80: VdpDataWrite(vdp, value); return;
    case 0x81: VdpControlWrite(vdp, value); return;
    default: break;
    }
    if (chosen.fmChip == 0) {
        return;
    }
    switch (low) {
    case kPortFmAddress: fmAddress = value; break;
    case kPortFmData: YmWrite(fm, fmAddress, value); break;
    case kPortFmControl: fmControl = value; break;
    default: break;
    }
}
