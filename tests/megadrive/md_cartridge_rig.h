// Cartridges of our own making, and the 68000's accesses to them.
#pragma once

#include "megadrive/md_cartridge.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

// An image whose byte at n tells n, with a blank header.
class ImageRig {
public:
    explicit ImageRig(size_t size)
        : bytes(size) {
        for (size_t i = 0; i < size; ++i) {
            bytes[i] = Told(i);
        }
        for (size_t i = 0x100; i < 0x200; ++i) {
            bytes[i] = ' ';
        }
    }

    // Differs between the even and the odd byte of a word and between 64 KiB pages.
    static uint8_t Told(size_t offset) {
        return static_cast<uint8_t>((offset * 7 + (offset >> 8) * 13 + (offset >> 16) * 31) & 0xFF);
    }

    ImageRig& Text(size_t offset, std::string_view text) {
        for (const char letter : text) {
            bytes[offset++] = static_cast<uint8_t>(letter);
        }
        return *this;
    }

    ImageRig& Title(std::string_view text) { return Text(0x150, text); }

    ImageRig& Product(std::string_view text) { return Text(0x182, text); }

    ImageRig& Ram(uint32_t first, uint32_t last) {
        Text(0x1B0, "RA");
        for (size_t i = 0; i < 4; ++i) {
            bytes[0x1B4 + i] = static_cast<uint8_t>(first >> (24 - 8 * i) & 0xFF);
            bytes[0x1B8 + i] = static_cast<uint8_t>(last >> (24 - 8 * i) & 0xFF);
        }
        return *this;
    }

    std::vector<uint8_t> bytes;
};

class CartridgeRig {
public:
    explicit CartridgeRig(const ImageRig& image) { MdCartSetup(*cart, image.bytes); }

    bool Handled(uint32_t address) const { return cart->readWord[address >> 16] != nullptr; }

    int Byte(uint32_t address) { return cart->readByte[address >> 16](*cart, address); }

    int Word(uint32_t address) { return cart->readWord[address >> 16](*cart, address); }

    void PutByte(uint32_t address, int value) {
        cart->writeByte[address >> 16](*cart, address, static_cast<uint8_t>(value));
    }

    void PutWord(uint32_t address, int value) {
        cart->writeWord[address >> 16](*cart, address, static_cast<uint16_t>(value));
    }

    // What the ROM window holds, whichever handler lies over it.
    int Rom(uint32_t address) const { return MdCartRomByte(*cart, address); }

    std::vector<uint8_t> Save() const {
        std::vector<uint8_t> block(MdCartStateSize(*cart));
        EXPECT_EQ(MdCartSaveState(*cart, block.data()).At(), block.data() + block.size());
        return block;
    }

    uint32_t Load(const std::vector<uint8_t>& block) {
        return MdCartLoadState(*cart, block.data(), static_cast<uint32_t>(block.size()));
    }

    std::unique_ptr<MD_CARTRIDGE> cart = std::make_unique<MD_CARTRIDGE>();
};
