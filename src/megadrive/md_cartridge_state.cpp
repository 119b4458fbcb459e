// A cartridge's piece of a state: nothing of a plain one; contents and protocol of the others. Range and wiring
// are written too, but a load keeps those of the cartridge's own header.
#include "machine/state_piece.h"
#include "megadrive/md_cartridge.h"

#include <algorithm>

namespace {

template <typename Visit>
void SramFields(MD_SRAM& sram, Visit& visit) {
    uint32_t end = sram.end;
    uint32_t start = sram.start;
    visit(end);
    visit(start);
    visit(sram.data);
}

// 23 bytes and the contents. The addresses of the lines aren't saved.
template <typename Visit>
void EepromFields(MD_EEPROM& eeprom, Visit& visit) {
    uint8_t addressBits = eeprom.addressBits;
    std::array<uint16_t, 2> masks{eeprom.sizeMask, eeprom.pageMask};
    std::array<uint8_t, 3> lineBits{eeprom.sdaInBit, eeprom.sdaOutBit, eeprom.sclBit};
    visit(eeprom.sda);
    visit(eeprom.scl);
    visit(eeprom.oldSda);
    visit(eeprom.oldScl);
    visit(eeprom.cycle);
    visit(eeprom.rw);
    visit(eeprom.slave);
    visit(eeprom.wordAddress);
    visit(eeprom.state);
    visit(addressBits);
    visit(masks);
    visit(lineBits);
    visit(eeprom.shift);
    visit(eeprom.data);
}

void Sanitize(MD_EEPROM& eeprom) {
    eeprom.sda &= 1;
    eeprom.scl &= 1;
    eeprom.oldSda &= 1;
    eeprom.oldScl &= 1;
    eeprom.rw &= 1;
    eeprom.cycle = std::min<uint8_t>(eeprom.cycle, 9);
    eeprom.state = static_cast<MD_EEPROM_STATE>(eeprom.state & 7);
}

// Runs `action` with the fields of the cartridge's kind.
template <typename Action>
auto WithFields(MD_CARTRIDGE& cart, Action&& action) {
    return action([&](auto& visit) {
        if (cart.cartKind == kMdCartSram) {
            SramFields(*cart.sram, visit);
        } else if (cart.cartKind == kMdCartEeprom) {
            EepromFields(*cart.eeprom, visit);
        }
    });
}

} // namespace

uint32_t MdCartStateSize(const MD_CARTRIDGE& cart) {
    if (cart.cartKind == kMdCartSvp) {
        return SvpStateSize();
    }
    // Counting and loading share this list of fields. Counting does not change them.
    return WithFields(const_cast<MD_CARTRIDGE&>(cart),
                      [](auto&& fields) { return StatePieceSize(fields); });
}

StateOut MdCartSaveState(const MD_CARTRIDGE& cart, StateOut out) {
    if (cart.cartKind == kMdCartSvp) {
        return SvpSaveState(*cart.svp, out);
    }
    return WithFields(const_cast<MD_CARTRIDGE&>(cart),
                      [&](auto&& fields) { return StatePieceWrite(out, fields); });
}

uint32_t MdCartLoadState(MD_CARTRIDGE& cart, const uint8_t* data, uint32_t size) {
    if (cart.cartKind == kMdCartSvp) {
        return SvpLoadState(*cart.svp, data, size);
    }
    const uint32_t used =
        WithFields(cart, [&](auto&& fields) { return StatePieceRead(data, size, fields); });
    if (used != 0 && cart.cartKind == kMdCartEeprom) {
        Sanitize(*cart.eeprom);
    }
    return used;
}
