    .include "common/md.inc"
    cartridge "MISTRAL                                         ", "MISTRAL                                         ", "GM 00000001-00", "J6              "
