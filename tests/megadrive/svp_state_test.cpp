#include "base/bytes.h"
#include "megadrive/svp_rig.h"

#include <random>

namespace {

std::vector<uint8_t> Save(const SvpRig& rig) {
    std::vector<uint8_t> block(SvpStateSize());
    EXPECT_EQ(SvpSaveState(*rig.svp, block.data()).At(), block.data() + block.size());
    return block;
}

uint32_t Load(SvpRig& rig, const std::vector<uint8_t>& block) {
    return SvpLoadState(*rig.svp, block.data(), static_cast<uint32_t>(block.size()));
}

// Random words in all of program memory, and random registers.
void Shuffle(SvpRig& rig, uint32_t seed) {
    std::mt19937 random(seed);
    for (auto& word : rig.svp->iramRom) {
        word = static_cast<uint16_t>(random() & 0xFFFF);
    }
    for (auto& word : rig.svp->dram) {
        word = static_cast<uint16_t>(random() & 0xFFFF);
    }
}

void Wake(SvpRig& rig) {
    SvpWriteXst(*rig.svp, 0x1234);
    SvpWriteWord(*rig.svp, 0x30FE06, 1);
    SvpWriteWord(*rig.svp, 0x30FE08, 1);
}

} // namespace

TEST(SvpState, FieldsAreInTheirPlaces) {
    SvpRig rig;
    rig.svp->budget = 0x01020304;
    rig.svp->emuStatus = kSvpWaitsForPm0 | kSvpPmcSet;
    rig.svp->pc = 0x4321;
    rig.svp->gr[kSvpA] = 0x89ABCDEF;
    rig.svp->stack[1] = 0x1111;
    rig.svp->pmacRead[1] = 0x22222222;
    rig.svp->pmacWrite[1] = 0x33333333;
    rig.svp->ram[1][0] = 0x4444;
    rig.svp->r[0] = 0x55;
    rig.svp->iramRom[0] = 0x6666;
    rig.svp->dram[0xFFFF] = 0x7777;
    const std::vector<uint8_t> block = Save(rig);
    const auto at32 = [&](size_t offset) { return LoadLittleEndian<uint32_t>(&block[offset]); };
    const auto at16 = [&](size_t offset) { return LoadLittleEndian<uint16_t>(&block[offset]); };
    EXPECT_EQ(block[0], 1);
    EXPECT_EQ(at32(1), block.size());
    EXPECT_EQ(at32(5), 0x01020304u);
    EXPECT_EQ(at32(9), kSvpWaitsForPm0 | kSvpPmcSet);
    EXPECT_EQ(at32(13), 0x4321u);
    EXPECT_EQ(at32(17), 0xFFFF0000u);
    EXPECT_EQ(at32(17 + 3 * 4), 0x89ABCDEFu);
    // Triples of 10 bytes after the registers.
    EXPECT_EQ(at16(81 + 10), 0x1111);
    EXPECT_EQ(at32(81 + 12), 0x22222222u);
    EXPECT_EQ(at32(81 + 16), 0x33333333u);
    EXPECT_EQ(at16(141 + 512), 0x4444);
    EXPECT_EQ(at32(141 + 1024), 0u); // 30 spare words
    EXPECT_EQ(block[141 + 1024 + 120], 0x55);
    EXPECT_EQ(at16(141 + 1024 + 128), 0x6666);
    EXPECT_EQ(at16(block.size() - 2), 0x7777);
    EXPECT_EQ(block.size(), 141u + 1024 + 128 + 2 * 131072);
}

TEST(SvpState, LoadedProcessorGoesOnAsTheSavedOne) {
    for (uint32_t seed = 1; seed <= 30; ++seed) {
        SvpRig saved;
        Shuffle(saved, seed);
        for (int i = 0; i < 20; ++i) {
            SvpRun(*saved.svp, 50);
            Wake(saved);
        }
        const std::vector<uint8_t> block = Save(saved);
        SvpRig loaded;
        Shuffle(loaded, seed + 1000);
        SvpRun(*loaded.svp, 500);
        ASSERT_EQ(Load(loaded, block), block.size());
        EXPECT_EQ(Save(loaded), block) << seed;
        for (int i = 0; i < 20; ++i) {
            SvpRun(*loaded.svp, 50);
            SvpRun(*saved.svp, 50);
            Wake(loaded);
            Wake(saved);
        }
        EXPECT_EQ(Save(loaded), Save(saved)) << seed;
    }
}

TEST(SvpState, AnyBytesAreSafe) {
    std::mt19937 random(3);
    for (int trial = 0; trial < 60; ++trial) {
        SvpRig rig;
        std::vector<uint8_t> block = Save(rig);
        for (size_t i = 5; i < block.size(); ++i) {
            block[i] = trial == 0 ? 0xFF : static_cast<uint8_t>(random() & 0xFF);
        }
        ASSERT_EQ(Load(rig, block), block.size());
        EXPECT_EQ(rig.svp->gr[kSvpBlind], 0xFFFF0000u);
        EXPECT_LT(rig.svp->pc, 0x10000u);
        EXPECT_EQ(rig.Pc(), rig.svp->pc);
        EXPECT_LT(rig.Get(kSvpStack), kSvpStackDepth);
        EXPECT_EQ(rig.svp->rom, rig.rom.data());
        for (int i = 0; i < 20; ++i) {
            Wake(rig);
            SvpRun(*rig.svp, 200);
        }
        EXPECT_EQ(rig.svp->gr[kSvpBlind], 0xFFFF0000u);
        EXPECT_LT(rig.Get(kSvpStack), kSvpStackDepth);
    }
}
