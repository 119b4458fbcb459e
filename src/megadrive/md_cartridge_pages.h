// The bus handlers of the four kinds of cartridge.
#pragma once

#include "megadrive/md_cartridge.h"

struct MD_CART_HANDLERS {
    MdCartReadByte readByte;
    MdCartReadWord readWord;
    MdCartWriteByte writeByte;
    MdCartWriteWord writeWord;
    uint32_t pages; // that the handlers serve, from page 0 on
};

[[nodiscard]] const MD_CART_HANDLERS& MdCartHandlers(MD_CART_KIND kind);
