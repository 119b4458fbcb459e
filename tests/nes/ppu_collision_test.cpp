// A PPUDATA access during rendering.
#include "nes/ppu_rig.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

// Tile 0 is empty, all others solid, the nametable empty: a garbled tile number is visible.
void Start(PpuRig& rig) {
    rig.SetPalette();
    for (uint32_t tile = 1; tile < 256; ++tile) {
        rig.Tile(tile, 0xFF, 0x00);
    }
    rig.Write(1, 0x0A);
    rig.Scroll(0, 0);
    rig.Finish();
}

struct Memory {
    std::array<std::array<uint8_t, kPpuNametableBytes>, 4> nametables;
    std::array<uint8_t, 8192> patterns;
    bool operator==(const Memory&) const = default;
};

Memory MemoryOf(const PpuRig& rig) {
    return {rig.ppu->nametables, rig.patterns};
}

} // namespace

// A write after dot d is in progress on the next three dots. An odd one of these fetches a random byte; the last
// dot also writes it, to the address of the fetch.
TEST(PpuCollision, AWriteLeavesARandomByteAtTheAddressOfTheFetch) {
    uint32_t changed = 0;
    for (uint32_t dot = 64; dot < 80; ++dot) {
        PpuRig rig;
        Start(rig);
        rig.RunTo(100, dot);
        const Memory before = MemoryOf(rig);
        rig.Write(7, 0x5A);
        rig.Dots(3);
        EXPECT_EQ(rig.ppu->ioState, 0);
        Memory expected = before;
        if (dot % 2 == 0) {
            // The last dot is odd: the byte is stored at the address of the fetch, and nothing else
            // changes.
            const uint16_t at = rig.ppu->fetchAddress;
            const uint8_t now = at < 0x2000 ? rig.patterns[at] : rig.ppu->nametables[0][at & 0x3FF];
            uint8_t& cell =
                at < 0x2000 ? expected.patterns[at] : expected.nametables[0][at & 0x3FF];
            changed += cell != now ? 1 : 0;
            cell = now;
        }
        EXPECT_EQ(MemoryOf(rig), expected) << dot;
    }
    EXPECT_GE(changed, 4U); // of eight; a random byte may equal the old one
}

TEST(PpuCollision, ReadOnlyPagesAreNotChanged) {
    for (uint32_t dot = 64; dot < 80; ++dot) {
        PpuRig rig;
        Start(rig);
        for (auto& page : rig.pages.ppu) {
            page.writable = 0;
        }
        rig.RunTo(100, dot);
        const Memory before = MemoryOf(rig);
        rig.Write(7, 0x5A);
        rig.Dots(3);
        EXPECT_EQ(MemoryOf(rig), before);
    }
}

TEST(PpuCollision, AReadChangesNeitherMemoryNorBuffer) {
    for (uint32_t dot = 64; dot < 80; ++dot) {
        PpuRig rig;
        Start(rig);
        rig.RunTo(100, dot);
        const Memory before = MemoryOf(rig);
        rig.ppu->readBuffer = 0x77;
        EXPECT_EQ(rig.Read(7), 0x77);
        rig.Dots(3);
        EXPECT_EQ(rig.ppu->ioState, 0);
        EXPECT_EQ(rig.ppu->readBuffer, 0x77);
        EXPECT_EQ(MemoryOf(rig), before);
    }
}

// The tile number is fetched on dot 8n + 1 and drawn from pixel 8n + 16 on. A read also increments the address, so
// later fetches are one column further; all of them are empty.
TEST(PpuCollision, TheGarbledFetchIsSeen) {
    PpuRig rig;
    Start(rig);
    rig.RunTo(100, 64);
    (void)rig.Read(7);
    rig.Finish();
    uint32_t seen = 0;
    for (uint32_t y = 0; y < kPpuHeight; ++y) {
        for (uint32_t x = 0; x < kPpuWidth; ++x) {
            if (rig.At(x, y) != Shade(0)) {
                ++seen;
                EXPECT_EQ(y, 100U);
                EXPECT_GE(x, 80U);
                EXPECT_LT(x, 88U);
            }
        }
    }
    EXPECT_EQ(seen, 8U);
}

TEST(PpuCollision, TheBoardDoesntSeeTheAddressOfTheAccess) {
    PpuRig rig;
    Start(rig);
    rig.RunTo(100, 64);
    rig.ppu->vramAddress = 0x1234;
    rig.watching = true;
    rig.Write(7, 0x5A);
    rig.Dots(3);
    for (const Watched& watched : rig.log) {
        EXPECT_NE(watched.address, 0x1234);
    }
    EXPECT_EQ(rig.log.size(), 1U); // the address of dot 66
}

// An access is in progress on the next three dots and takes effect on the last. From dot 338 of the last line on
// that dot is after the picture. From 337 it is dot 340, which fetches nothing.
TEST(PpuCollision, AnAccessAcrossTheEndOfThePictureDependsOnItsLastDot) {
    for (uint32_t dot = 337; dot < 341; ++dot) {
        const bool arrives = dot != 337;
        PpuRig rig;
        Start(rig);
        rig.RunTo(239, dot);
        rig.ppu->vramAddress = 0x0155;
        Memory expected = MemoryOf(rig);
        rig.Write(7, 0x5A);
        rig.Dots(3);
        expected.patterns[0x155] = arrives ? 0x5A : expected.patterns[0x155];
        EXPECT_EQ(MemoryOf(rig), expected) << dot;
        EXPECT_EQ(rig.ppu->ioState, 0);

        rig.Finish();
        rig.RunTo(239, dot);
        rig.ppu->vramAddress = 0x0255;
        rig.patterns[0x255] = 0x3C;
        rig.ppu->readBuffer = 0x77;
        EXPECT_EQ(rig.Read(7), 0x77);
        rig.Dots(3);
        EXPECT_EQ(rig.ppu->readBuffer, arrives ? 0x3C : 0x77) << dot;
        EXPECT_EQ(rig.ppu->ioState, 0);
    }
}

TEST(PpuCollision, PaletteWritesDontCollide) {
    PpuRig rig;
    Start(rig);
    rig.RunTo(100, 64);
    rig.ppu->vramAddress = 0x3F05;
    const Memory before = MemoryOf(rig);
    rig.Write(7, 0x1D);
    EXPECT_EQ(rig.ppu->palette[5], 0x1D);
    EXPECT_EQ(rig.ppu->ioState, 0);
    rig.Dots(3);
    EXPECT_EQ(MemoryOf(rig), before);
}

TEST(PpuCollision, RunsRepeatAfterAReset) {
    PpuRig first;
    PpuRig second;
    for (PpuRig* rig : {&first, &second}) {
        if (rig == &second) {
            rig->ppu->randomState = 12345; // as after another game
            PpuReset(*rig->ppu, true, &rig->nmi);
            for (auto& page : rig->ppu->nametables) {
                page.fill(0);
            }
        }
        Start(*rig);
        for (int32_t line = 10; line < 200; ++line) {
            rig->RunTo(line, 64);
            rig->Write(7, 0x5A);
        }
        rig->Finish();
    }
    EXPECT_EQ(MemoryOf(first), MemoryOf(second));
    EXPECT_EQ(first.pixels, second.pixels);
}
