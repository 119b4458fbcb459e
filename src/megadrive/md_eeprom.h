// Serial EEPROM of a Mega Drive cartridge: a two-wire part of the 24C and X24C families.
//
// Clock: none of its own; it acts on the edges of the SCL line as the program writes them.
// Units: `cycle` counts the SCL clocks of a byte, 1 to 9, and is 0 between a start and the first falling
//   edge. Addresses of lines are 68000 addresses; addresses of contents count bytes.
// Owner: the cartridge (md_cartridge.h), on its session's thread.
// Kinds: 7 address bits (a start is followed by the word address, no device byte), 8 (device byte whose
//   low bits extend the address, then one address byte) and 16 (device byte, two address bytes).
// Differs: docs/HARDWARE.md, Mega Drive, EEPROM.
// Sources: Atmel AT24C01A to 16, Microchip 24C01B/02B, 24LC01B, 24AA128, Fairchild FM24C256, Siemens SLx
//   24C01/02, Xicor X24C01 (data sheets).
// Of the board: a word written to an even address also drives a line that is wired to the odd one, since the
//   board sees both halves of the bus.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

inline constexpr size_t kMdEepromBytes = 65536;

enum MD_EEPROM_STATE : uint32_t {
    kMdEepromIdle = 0,
    kMdEepromStandBy = 1,
    kMdEepromDevice = 2,    // device byte
    kMdEepromShortWord = 3, // word address of a 7-bit part, with R/W
    kMdEepromHighWord = 4,
    kMdEepromLowWord = 5,
    kMdEepromWriting = 6,
    kMdEepromReading = 7,
};

// How a part is built and wired.
struct MD_EEPROM_DEVICE {
    uint16_t addressBits; // 7, 8 or 16
    uint16_t sizeMask;    // bytes of the part - 1
    uint16_t pageMask;    // bytes of a page - 1
    uint16_t spare;
    uint32_t sdaInAddress; // where the program writes SDA
    uint32_t sdaOutAddress;
    uint32_t sclAddress;
    uint8_t sdaInBit; // 0 to 7, of the byte at the address
    uint8_t sdaOutBit;
    uint8_t sclBit;
    uint8_t spareByte;
};

static_assert(sizeof(MD_EEPROM_DEVICE) == 24);

struct MD_EEPROM {
    uint8_t sda = 0; // lines now
    uint8_t scl = 0;
    uint8_t oldSda = 0; // lines at the last write
    uint8_t oldScl = 0;
    uint8_t cycle = 0;  // 0 to 9
    uint8_t rw = 0;     // 1 for a read
    uint16_t slave = 0; // address bits from the device byte, at bits 8 to 10
    uint16_t wordAddress = 0;
    MD_EEPROM_STATE state = kMdEepromIdle;
    uint8_t addressBits = 0;
    uint16_t sizeMask = 0;
    uint16_t pageMask = 0;
    uint32_t sdaInAddress = 0;
    uint32_t sdaOutAddress = 0;
    uint32_t sclAddress = 0;
    uint8_t sdaInBit = 0;
    uint8_t sdaOutBit = 0;
    uint8_t sclBit = 0;
    uint8_t shift = 0; // the byte that is being received
    std::array<uint8_t, kMdEepromBytes> data{};
};

// Takes the part's configuration and fills the contents with 0xFF, as a part leaves the factory.
void MdEepromInit(MD_EEPROM& eeprom, const MD_EEPROM_DEVICE& device);

// Resets lines and protocol; the contents stay.
void MdEepromReset(MD_EEPROM& eeprom);

// A write of a byte, or with `word` of a word, to an address with a line.
void MdEepromWrite(MD_EEPROM& eeprom, uint32_t address, uint16_t value, bool word);

// The byte, or the word, with the data line in its bit and zeros around it.
[[nodiscard]] uint16_t MdEepromRead(const MD_EEPROM& eeprom, bool word);
