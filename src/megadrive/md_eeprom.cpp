#include "megadrive/md_eeprom.h"

namespace {

constexpr uint8_t kLastDataClock = 8;
constexpr uint8_t kAcknowledgeClock = 9;

// In the device byte 1010 A2 A1 A0 R/W.
constexpr uint8_t kFirstSelectClock = 5;
constexpr uint32_t kSelectShift = 15; // clock 5 sets address bit 10

template <typename T>
void SetBit(T& target, uint32_t bit, uint8_t value) {
    const uint32_t mask = uint32_t{1} << bit;
    target = static_cast<T>(value != 0 ? target | mask : target & ~mask);
}

// A word holds the byte of its even address in its high half.
uint32_t BitOfWord(uint32_t lineAddress, uint32_t address, uint32_t bit) {
    return ((lineAddress | address) & 1) != 0 ? bit : bit + 8;
}

void UpdateLine(uint8_t& line, uint32_t lineAddress, uint32_t bit, uint32_t address, uint16_t value,
                bool word) {
    if (word && (lineAddress | 1) == (address | 1)) {
        line = (value >> BitOfWord(lineAddress, address, bit)) & 1;
    } else if (!word && lineAddress == address) {
        line = (value >> bit) & 1;
    }
}

// The address bits of the device byte are ORed to the counter, so a sequential access stays in the block of 256
// bytes that the device byte named, unless that is the first one.
uint8_t& Cell(MD_EEPROM& eeprom) {
    return eeprom.data[static_cast<uint16_t>(eeprom.wordAddress | eeprom.slave)];
}

void NextAddress(MD_EEPROM& eeprom) {
    const uint32_t kept = eeprom.wordAddress & ~uint32_t{eeprom.pageMask};
    eeprom.wordAddress =
        static_cast<uint16_t>(kept | ((eeprom.wordAddress + 1u) & eeprom.pageMask));
}

void Start(MD_EEPROM& eeprom) {
    eeprom.cycle = 0;
    eeprom.slave = 0;
    if (eeprom.addressBits == 7) {
        eeprom.wordAddress = 0;
        eeprom.state = kMdEepromShortWord;
    } else {
        eeprom.state = kMdEepromDevice;
    }
}

void TakeDeviceBit(MD_EEPROM& eeprom) {
    if (eeprom.cycle == kLastDataClock) {
        eeprom.rw = eeprom.sda;
        return;
    }
    // The chip selects of a 16-bit part are tied on the cartridge and extend no address.
    const uint32_t bit = kSelectShift - eeprom.cycle;
    if (eeprom.cycle >= kFirstSelectClock && eeprom.addressBits == 8 &&
        ((eeprom.sizeMask >> bit) & 1) != 0) {
        SetBit(eeprom.slave, bit, eeprom.sda);
    }
}

// The part takes a bit when SCL rises.
void RisingClock(MD_EEPROM& eeprom) {
    if (eeprom.cycle < 1 || eeprom.cycle > kLastDataClock) {
        return;
    }
    const uint32_t bit = 8u - eeprom.cycle;
    switch (eeprom.state) {
    case kMdEepromDevice: TakeDeviceBit(eeprom); break;
    case kMdEepromShortWord:
        if (eeprom.cycle == kLastDataClock) {
            eeprom.rw = eeprom.sda;
        } else {
            SetBit(eeprom.wordAddress, bit - 1, eeprom.sda);
        }
        break;
    case kMdEepromHighWord: SetBit(eeprom.wordAddress, bit + 8, eeprom.sda); break;
    case kMdEepromLowWord: SetBit(eeprom.wordAddress, bit, eeprom.sda); break;
    case kMdEepromWriting: SetBit(eeprom.shift, bit, eeprom.sda); break;
    default: break;
    }
}

// After the acknowledge clock. One write may change both lines, so the SDA that counts is the one from before,
// while SCL was high.
void EndByte(MD_EEPROM& eeprom) {
    switch (eeprom.state) {
    case kMdEepromDevice:
        eeprom.state = eeprom.rw != 0             ? kMdEepromReading
                       : eeprom.addressBits == 16 ? kMdEepromHighWord
                                                  : kMdEepromLowWord;
        break;
    case kMdEepromShortWord:
        eeprom.wordAddress &= eeprom.sizeMask;
        eeprom.state = eeprom.rw != 0 ? kMdEepromReading : kMdEepromWriting;
        break;
    case kMdEepromHighWord: eeprom.state = kMdEepromLowWord; break;
    case kMdEepromLowWord:
        if (eeprom.addressBits == 8) {
            eeprom.wordAddress &= 0xFF;
        }
        eeprom.wordAddress &= eeprom.sizeMask;
        eeprom.state = kMdEepromWriting;
        break;
    case kMdEepromReading:
        if (eeprom.oldSda != 0) {
            eeprom.state = kMdEepromStandBy;
        }
        break;
    default: break;
    }
}

void FallingClock(MD_EEPROM& eeprom) {
    if (eeprom.state < kMdEepromDevice) {
        return;
    }
    if (eeprom.cycle == kLastDataClock && eeprom.state >= kMdEepromWriting) {
        if (eeprom.state == kMdEepromWriting) {
            Cell(eeprom) = eeprom.shift;
        }
        NextAddress(eeprom);
    }
    if (eeprom.cycle < kAcknowledgeClock) {
        ++eeprom.cycle;
    } else {
        eeprom.cycle = 1;
        EndByte(eeprom);
    }
}

} // namespace

void MdEepromInit(MD_EEPROM& eeprom, const MD_EEPROM_DEVICE& device) {
    eeprom.addressBits = static_cast<uint8_t>(device.addressBits);
    eeprom.sizeMask = device.sizeMask;
    eeprom.pageMask = device.pageMask;
    eeprom.sdaInAddress = device.sdaInAddress;
    eeprom.sdaOutAddress = device.sdaOutAddress;
    eeprom.sclAddress = device.sclAddress;
    eeprom.sdaInBit = device.sdaInBit;
    eeprom.sdaOutBit = device.sdaOutBit;
    eeprom.sclBit = device.sclBit;
    eeprom.data.fill(0xFF);
    MdEepromReset(eeprom);
}

void MdEepromReset(MD_EEPROM& eeprom) {
    eeprom.sda = 0;
    eeprom.scl = 0;
    eeprom.oldSda = 0;
    eeprom.oldScl = 0;
    eeprom.cycle = 0;
    eeprom.rw = 0;
    eeprom.slave = 0;
    eeprom.wordAddress = 0;
    eeprom.state = kMdEepromIdle;
    eeprom.shift = 0;
}

void MdEepromWrite(MD_EEPROM& eeprom, uint32_t address, uint16_t value, bool word) {
    UpdateLine(eeprom.scl, eeprom.sclAddress, eeprom.sclBit, address, value, word);
    UpdateLine(eeprom.sda, eeprom.sdaInAddress, eeprom.sdaInBit, address, value, word);
    if (eeprom.oldScl != 0 && eeprom.scl != 0) {
        if (eeprom.oldSda != 0 && eeprom.sda == 0) {
            Start(eeprom);
        } else if (eeprom.oldSda == 0 && eeprom.sda != 0) {
            eeprom.state = kMdEepromIdle;
        }
    } else if (eeprom.scl != 0) {
        RisingClock(eeprom);
    } else if (eeprom.oldScl != 0) {
        FallingClock(eeprom);
    }
    eeprom.oldScl = eeprom.scl;
    eeprom.oldSda = eeprom.sda;
}

uint16_t MdEepromRead(const MD_EEPROM& eeprom, bool word) {
    uint32_t line = eeprom.sda;
    if (eeprom.state == kMdEepromReading) {
        if (eeprom.cycle < kAcknowledgeClock) {
            const auto address = static_cast<uint16_t>(eeprom.slave | eeprom.wordAddress);
            line = (uint32_t{eeprom.data[address]} >> (8u - eeprom.cycle)) & 1;
        }
    } else if (eeprom.state >= kMdEepromDevice && eeprom.cycle == kAcknowledgeClock) {
        line = 0;
    }
    const uint32_t bit =
        word ? BitOfWord(eeprom.sdaOutAddress, 0, eeprom.sdaOutBit) : uint32_t{eeprom.sdaOutBit};
    return static_cast<uint16_t>(line << bit);
}
