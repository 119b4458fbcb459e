#include "megadrive/md_cartridge_pages.h"

namespace {

// What a word that straddles the end of battery RAM reads after the last byte. A store there is lost.
constexpr uint32_t kNoByte = 0xFF;

void IgnoreByte(MD_CARTRIDGE& cart, uint32_t address, uint8_t value) {
    static_cast<void>(cart);
    static_cast<void>(address);
    static_cast<void>(value);
}

void IgnoreWord(MD_CARTRIDGE& cart, uint32_t address, uint16_t value) {
    static_cast<void>(cart);
    static_cast<void>(address);
    static_cast<void>(value);
}

uint8_t ReadRomByte(MD_CARTRIDGE& cart, uint32_t address) {
    return MdCartRomByte(cart, address);
}

uint16_t ReadRomWord(MD_CARTRIDGE& cart, uint32_t address) {
    return MdCartRomWord(cart, address);
}

bool InRange(const MD_SRAM& sram, uint32_t address) {
    return address >= sram.start && address < sram.end;
}

uint32_t SramOffset(const MD_SRAM& sram, uint32_t address) {
    return (address - sram.start) & (kMdSramBytes - 1);
}

uint8_t ReadSramByte(MD_CARTRIDGE& cart, uint32_t address) {
    const MD_SRAM& sram = *cart.sram;
    if (!InRange(sram, address)) {
        return MdCartRomByte(cart, address);
    }
    return sram.data[SramOffset(sram, address) ^ 1];
}

// The offset of a word is odd if the range starts at an odd address.
uint16_t ReadSramWord(MD_CARTRIDGE& cart, uint32_t address) {
    const MD_SRAM& sram = *cart.sram;
    if (!InRange(sram, address)) {
        return MdCartRomWord(cart, address);
    }
    const uint32_t offset = SramOffset(sram, address);
    const uint32_t high = offset + 1 < kMdSramBytes ? sram.data[offset + 1] : kNoByte;
    return static_cast<uint16_t>(high << 8 | sram.data[offset]);
}

void WriteSramByte(MD_CARTRIDGE& cart, uint32_t address, uint8_t value) {
    MD_SRAM& sram = *cart.sram;
    if (InRange(sram, address)) {
        sram.data[SramOffset(sram, address) ^ 1] = value;
    }
}

void WriteSramWord(MD_CARTRIDGE& cart, uint32_t address, uint16_t value) {
    MD_SRAM& sram = *cart.sram;
    if (!InRange(sram, address)) {
        return;
    }
    const uint32_t offset = SramOffset(sram, address);
    sram.data[offset] = static_cast<uint8_t>(value & 0xFF);
    if (offset + 1 < kMdSramBytes) {
        sram.data[offset + 1] = static_cast<uint8_t>(value >> 8);
    }
}

uint32_t WordAddress(uint32_t lineAddress) {
    return lineAddress & 0xFFFFFE;
}

uint8_t ReadEepromByte(MD_CARTRIDGE& cart, uint32_t address) {
    const MD_EEPROM& eeprom = *cart.eeprom;
    if (address == eeprom.sdaOutAddress) {
        return static_cast<uint8_t>(MdEepromRead(eeprom, false) & 0xFF);
    }
    return MdCartRomByte(cart, address);
}

uint16_t ReadEepromWord(MD_CARTRIDGE& cart, uint32_t address) {
    const MD_EEPROM& eeprom = *cart.eeprom;
    return address == WordAddress(eeprom.sdaOutAddress) ? MdEepromRead(eeprom, true)
                                                        : MdCartRomWord(cart, address);
}

void WriteEepromByte(MD_CARTRIDGE& cart, uint32_t address, uint8_t value) {
    MD_EEPROM& eeprom = *cart.eeprom;
    if (address == eeprom.sclAddress || address == eeprom.sdaInAddress) {
        MdEepromWrite(eeprom, address, value, false);
    }
}

void WriteEepromWord(MD_CARTRIDGE& cart, uint32_t address, uint16_t value) {
    MD_EEPROM& eeprom = *cart.eeprom;
    if (address == WordAddress(eeprom.sclAddress) || address == WordAddress(eeprom.sdaInAddress)) {
        MdEepromWrite(eeprom, address, value, true);
    }
}

uint16_t ReadSvpWord(MD_CARTRIDGE& cart, uint32_t address) {
    uint16_t value = 0;
    return SvpReadWord(*cart.svp, address, value) ? value : MdCartRomWord(cart, address);
}

void WriteSvpWord(MD_CARTRIDGE& cart, uint32_t address, uint16_t value) {
    SvpWriteWord(*cart.svp, address, value);
}

// By MD_CART_KIND.
constexpr uint32_t kHalfWindowPages = kMdCartWindowPages / 2;
constexpr std::array<MD_CART_HANDLERS, 4> kHandlers{
    {{ReadRomByte, ReadRomWord, IgnoreByte, IgnoreWord, kMdCartWindowPages},
     {ReadSramByte, ReadSramWord, WriteSramByte, WriteSramWord, kMdCartWindowPages},
     {ReadEepromByte, ReadEepromWord, WriteEepromByte, WriteEepromWord, kHalfWindowPages},
     {ReadRomByte, ReadSvpWord, IgnoreByte, WriteSvpWord, kHalfWindowPages}}
};

bool ContainsAddress(uint32_t page, uint32_t address) {
    return address / kMdCartPageBytes == page;
}

bool OverlapsPage(const MD_SRAM& sram, uint32_t page) {
    const uint32_t first = page * kMdCartPageBytes;
    return sram.start < sram.end && sram.start < first + kMdCartPageBytes && sram.end > first;
}

// Pages in which the signal processor shows its DRAM: 128 KiB plain, and the two rearranged views (svp.cpp).
bool IsSvpPage(uint32_t page) {
    return page == 0x30 || page == 0x31 || page == 0x39 || page == 0x3A;
}

} // namespace

const MD_CART_HANDLERS& MdCartHandlers(MD_CART_KIND kind) {
    return kHandlers[kind % kHandlers.size()];
}

const uint16_t* MdCartPlainPage(const MD_CARTRIDGE& cart, uint32_t page) {
    if (page >= kMdCartWindowPages) {
        return nullptr;
    }
    bool plain = true;
    switch (cart.cartKind) {
    case kMdCartPlain: break;
    case kMdCartSram: plain = !OverlapsPage(*cart.sram, page); break;
    case kMdCartEeprom:
        plain = !ContainsAddress(page, cart.eeprom->sdaInAddress) &&
                !ContainsAddress(page, cart.eeprom->sdaOutAddress) &&
                !ContainsAddress(page, cart.eeprom->sclAddress);
        break;
    case kMdCartSvp: plain = !IsSvpPage(page); break;
    }
    return plain ? &cart.rom[size_t{page} * (kMdCartPageBytes / 2)] : nullptr;
}
