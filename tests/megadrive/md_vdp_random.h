// A busy picture and accesses of every kind, at random.
#pragma once

#include "megadrive/md_vdp_rig.h"

#include <cstdint>
#include <random>

inline void Randomize(MdVdpRig& rig, uint32_t seed) {
    std::mt19937 random(seed);
    const auto draw = [&random] { return static_cast<uint32_t>(random()); };
    rig.Setup((seed & 1) != 0);
    for (uint8_t& byte : rig.vdp->vram) {
        byte = static_cast<uint8_t>(draw() & draw());
    }
    // Sprites where lines get many of them, now and then in full chains.
    for (uint32_t i = 0; i < 80; ++i) {
        const uint32_t link = seed % 3 == 0 ? draw() % 90 : i + 1;
        rig.Sprite(i, draw() % 400 - 60, draw() % 260 - 20, draw() & 15, link, draw() & 0xFFFF);
        if (draw() % 16 == 0) {
            rig.Word(0x5000 + i * 8 + 6, 0);
        }
    }
    for (uint16_t& word : rig.vdp->vsram) {
        word = static_cast<uint16_t>(draw());
    }
    rig.Reg(11, draw() & 7);
    rig.Reg(12, ((seed & 1) != 0 ? 0x81 : 0) | (draw() & 8));
    rig.Reg(16, draw());
    rig.Reg(17, seed % 2 == 0 ? draw() : 0);
    rig.Reg(18, seed % 4 == 0 ? draw() : 0);
    rig.Reg(10, draw() % 20);
    rig.Reg(0, 0x10);
    rig.Reg(1, 0x74);
    rig.Finish();
}

// One access through a port; mostly such that a picture stays on. A DMA is begun now and then.
inline uint32_t Access(MdVdpRig& rig, std::mt19937& random) {
    const auto draw = [&random] { return static_cast<uint32_t>(random()); };
    const uint32_t value = draw();
    switch (draw() % 20) {
    case 0: rig.Reg(draw() % 19, value); return 0;
    case 1: rig.Reg(1, value % 4 == 0 ? 0x34 : value | 0x54); return 0; // display off now and then
    case 2: rig.Reg(12, value); return 0;
    case 3: rig.Reg(7, value); return 0;
    case 4: rig.Command(kCramCode, value & 0x7F); return 0;
    case 5: rig.Command(kVsramCode, value & 0x7F); return 0;
    case 6: rig.Command(kVramCode, value & 0xFFFF); return 0;
    case 7: rig.Control(value); return 0;
    case 8: return MdVdpReadData(*rig.vdp);
    case 9: return MdVdpReadHV(*rig.vdp);
    case 10:
        rig.Reg(15, 1 + value % 3);
        rig.Reg(19, value >> 8);
        rig.Reg(20, value >> 16 & 1);
        rig.Reg(21, draw());
        rig.Reg(22, draw());
        rig.Reg(23, draw());
        rig.Command(0x20 | (1 + value % 3 * 2), draw() & 0xFFFF);
        return 0;
    case 11:
    case 12:
    case 13: rig.Data(value); return 0;
    default: return MdVdpReadStatus(*rig.vdp);
    }
}
