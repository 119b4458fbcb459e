#include "base/bytes.h"
#include "megadrive/m68000_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using STATE = std::array<uint8_t, kM68kStateSize>;

STATE Save(const M68K_STATE& cpu) {
    STATE state{};
    EXPECT_EQ(M68kSave(cpu, state.data()).At(), state.data() + state.size());
    return state;
}

uint32_t At(const STATE& state, size_t offset) {
    return LoadLittleEndian<uint32_t>(state.data() + offset);
}

TEST(M68000State, FieldsLieAtTheirOffsets) {
    M68K_STATE cpu;
    cpu.cpuType = 1;
    cpu.prevPc = 2;
    cpu.pc = 3;
    cpu.vbr = 4;
    cpu.sfc = 5;
    cpu.dfc = 6;
    cpu.cacr = 7;
    cpu.caar = 8;
    cpu.ir = 9;
    cpu.fpiar = 10;
    cpu.fpsr = 11;
    cpu.fpcr = 12;
    cpu.t1 = 13;
    cpu.t0 = 14;
    cpu.s = 15;
    cpu.m = 16;
    cpu.x = 17;
    cpu.n = 18;
    cpu.notZ = 19;
    cpu.v = 20;
    cpu.c = 21;
    cpu.intMask = 22;
    cpu.intLevel = 23;
    cpu.stopped = 24;
    cpu.prefetchAddr = 25;
    cpu.prefetchData = 26;
    cpu.srMask = 27;
    cpu.instrMode = 28;
    cpu.runMode = 29;
    cpu.cycBranchByte = 30;
    cpu.cycBranchWord = 31;
    cpu.cycLoopRound = 32;
    cpu.cycLoopEnd = 33;
    cpu.cycSetTrue = 34;
    cpu.cycMovemWord = 35;
    cpu.cycMovemLong = 36;
    cpu.cycShift = 37;
    cpu.cycReset = 38;
    cpu.intCycles = 39;
    cpu.cyclesLeft = 40;
    cpu.spare0 = 41;
    cpu.spare1 = 42;
    cpu.aerrAddress = 43;
    cpu.aerrMode = 44;
    cpu.aerrCode = 45;
    cpu.irqLines = 46;
    cpu.nmiPending = 47;
    cpu.spare2 = 48;
    cpu.fp[7] = 1.0;
    cpu.stackSlots = {101, 102, 103, 104, 105, 106, 107};
    for (uint32_t i = 0; i < 16; ++i) {
        cpu.regs[i] = 201 + i;
    }
    EXPECT_EQ(M68kStateSize(), 353U);
    const STATE state = Save(cpu);
    EXPECT_EQ(state[0], 1);
    EXPECT_EQ(At(state, 1), 353U);
    for (uint32_t i = 0; i < 48; ++i) {
        EXPECT_EQ(At(state, 5 + 4 * i), i + 1);
    }
    EXPECT_EQ(LoadLittleEndian<uint64_t>(state.data() + 197 + 7 * 8), 0x3FF0000000000000U);
    for (uint32_t i = 0; i < 7; ++i) {
        EXPECT_EQ(At(state, 261 + 4 * i), 101 + i);
    }
    for (uint32_t i = 0; i < 16; ++i) {
        EXPECT_EQ(At(state, 289 + 4 * i), 201 + i);
    }
}

TEST(M68000State, TimingConstantsAreSavedAsTheResetSetsThem) {
    TEST_68000 rig{0x4E71};
    const STATE state = Save(rig.cpu);
    constexpr std::array<int32_t, 9> kTimes{-2, 2, -2, 2, 2, 2, 3, 1, 132};
    for (size_t i = 0; i < kTimes.size(); ++i) {
        EXPECT_EQ(static_cast<int32_t>(At(state, 5 + 4 * (29 + i))), kTimes[i]);
    }
}

TEST(M68000State, APieceOfAnotherVersionOrSizeIsRefusedAndChangesNothing) {
    TEST_68000 rig{0x4E71};
    const STATE good = Save(rig.cpu);
    struct ROW {
        size_t offset;
        uint8_t value;
        uint32_t size;
    };
    for (const ROW& row : {
             ROW{0, 2,    353},
             ROW{1, 0x60, 353},
             ROW{2, 2,    353},
             ROW{0, 1,    352},
             ROW{0, 1,    4  },
             ROW{0, 1,    0  }
    }) {
        STATE bad = good;
        bad[row.offset] = row.value;
        bad[300] = 0x55; // in a register
        EXPECT_EQ(M68kLoad(rig.cpu, bad.data(), row.size), 0U);
        EXPECT_EQ(Save(rig.cpu), good);
    }
    EXPECT_EQ(M68kLoad(rig.cpu, good.data(), 1000), 353U);
}

// Registers, flags, queue and lines as they are amid a program of random words.
TEST(M68000State, LoadedItGoesOnExactly) {
    std::mt19937 random(3);
    for (int trial = 0; trial < 200; ++trial) {
        TEST_68000 first{};
        for (uint32_t i = 0; i < 400; ++i) {
            first.SetWord(kProgram + 2 * i, static_cast<uint32_t>(random()) & 0xFFFF);
        }
        M68kReset(first.cpu);
        for (uint32_t& value : first.cpu.regs) {
            value = static_cast<uint32_t>(random()) & 0xFFFFFFFE;
        }
        TEST_68000 second{};
        try {
            for (int step = 0; step < 10; ++step) {
                first.Tick();
            }
            for (uint32_t address = 0; address < TEST_68000::kSize; address += 2) {
                second.SetWord(address, first.Word(address));
            }
            const STATE state = Save(first.cpu);
            ASSERT_EQ(M68kLoad(second.cpu, state.data(), kM68kStateSize), kM68kStateSize);
            ASSERT_EQ(Save(second.cpu), state);
            for (int step = 0; step < 20; ++step) {
                first.TakeLog();
                second.TakeLog();
                ASSERT_EQ(first.Tick(), second.Tick());
                ASSERT_EQ(first.TakeLog(), second.TakeLog());
                ASSERT_EQ(Save(first.cpu), Save(second.cpu));
            }
        } catch (const M68K_ADDRESS_ERROR&) {
            continue; // random programs jump to odd addresses
        }
    }
}

// Under the sanitizers nothing leaves its bounds, whatever a piece holds.
TEST(M68000State, AnyBytesAreSafe) {
    std::mt19937 random(7);
    TEST_68000 rig{0x4E71};
    for (int trial = 0; trial < 3000; ++trial) {
        STATE state{};
        for (uint8_t& byte : state) {
            byte = static_cast<uint8_t>(random());
        }
        const STATE good = Save(rig.cpu);
        std::copy_n(good.begin(), 5, state.begin());
        ASSERT_EQ(M68kLoad(rig.cpu, state.data(), kM68kStateSize), kM68kStateSize);
        rig.cpu.stopped = 0;
        rig.cpu.pc &= ~uint32_t{1};
        for (int step = 0; step < 20; ++step) {
            rig.StepFails();
            M68kSetIrqLine(rig.cpu, static_cast<uint32_t>(random()) & 7, 1);
        }
        EXPECT_LE(rig.cpu.ir, 0xFFFFU);
        EXPECT_LE(rig.cpu.intLevel, 0x700U);
        EXPECT_EQ(rig.cpu.s & ~4U, 0U);
        EXPECT_EQ(rig.cpu.m & ~2U, 0U);
        rig.TakeLog();
    }
}

} // namespace
