#include "sega8/z80_tables.h"

#include "z80_support.h"
#include <gtest/gtest.h>

namespace {

// A bus for the four callbacks.
struct CALLBACK_OWNER {
    RECORDING_BUS bus;

    static uint8_t Read(void* context, uint32_t address, uint32_t isOpcodeFetch) {
        RECORDING_BUS& bus = static_cast<CALLBACK_OWNER*>(context)->bus;
        const auto place = static_cast<uint16_t>(address);
        return isOpcodeFetch != 0 ? bus.ReadOpcode(place) : bus.Read(place);
    }
    static uint8_t IoRead(void* context, uint32_t port) {
        return static_cast<CALLBACK_OWNER*>(context)->bus.IoRead(static_cast<uint16_t>(port));
    }
    static void Write(void* context, uint32_t address, uint8_t value) {
        static_cast<CALLBACK_OWNER*>(context)->bus.Write(static_cast<uint16_t>(address), value);
    }
    static void IoWrite(void* context, uint32_t port, uint8_t value) {
        static_cast<CALLBACK_OWNER*>(context)->bus.IoWrite(static_cast<uint16_t>(port), value);
    }
};

} // namespace

TEST(Z80Tables, EntriesKnownByHand) {
    EXPECT_EQ(kZ80FlagsSz[0x00], 0x40);
    EXPECT_EQ(kZ80FlagsSz[0x28], 0x28);
    EXPECT_EQ(kZ80FlagsSz[0xFF], 0xA8);
    EXPECT_EQ(kZ80FlagsInc[0x00], 0x50);
    EXPECT_EQ(kZ80FlagsInc[0x10], 0x10);
    EXPECT_EQ(kZ80FlagsInc[0x80], 0x94);
    EXPECT_EQ(kZ80FlagsInc[0x01], 0x00);
    EXPECT_EQ(kZ80FlagsDec[0x00], 0x42);
    EXPECT_EQ(kZ80FlagsDec[0x7F], 0x3E);
    EXPECT_EQ(kZ80FlagsDec[0xFF], 0xBA);
    EXPECT_EQ(kZ80FlagsParity[0x00], 0x44);
    EXPECT_EQ(kZ80FlagsParity[0x01], 0x00);
    EXPECT_EQ(kZ80FlagsParity[0x03], 0x04);
    EXPECT_EQ(kZ80FlagsParity[0xFF], 0xAC);
    EXPECT_EQ(kZ80FlagsBit[0x00], 0x44);
    EXPECT_EQ(kZ80FlagsBit[0x80], 0x80);
    EXPECT_EQ(kZ80FlagsBit[0x08], 0x08);
    EXPECT_EQ(kZ80FlagsBit[0x01], 0x00);
}

TEST(Z80, CallbacksSeeWhatAMachinesBusSees) {
    const std::initializer_list<uint8_t> program{0xDD, 0xCB, 0x05, 0xC6, 0xED, 0x40,
                                                 0xED, 0x41, 0xCD, 0x00, 0x40};
    TEST_Z80 direct(program);
    CALLBACK_OWNER owner;
    owner.bus.memory = direct.bus.memory;
    Z80 z80 = direct.z80;
    z80.context = &owner;
    z80.read = CALLBACK_OWNER::Read;
    z80.ioRead = CALLBACK_OWNER::IoRead;
    z80.write = CALLBACK_OWNER::Write;
    z80.ioWrite = CALLBACK_OWNER::IoWrite;
    for (int i = 0; i < 200; ++i) {
        direct.Clocks(1);
        ++owner.bus.clock;
        Z80Tick(z80);
    }
    EXPECT_FALSE(direct.bus.trace.empty());
    EXPECT_EQ(owner.bus.trace, direct.bus.trace);
}

TEST(Z80, ScfAndCcfTakeXAndYFromA) {
    TEST_Z80 set{0x37};
    set.z80.regs[kZ80Af] = 0x28C4;
    set.Instruction();
    EXPECT_EQ(set.F(), 0xEDU);
    TEST_Z80 clear{0x3F};
    clear.z80.regs[kZ80Af] = 0x00ED;
    clear.Instruction();
    EXPECT_EQ(clear.F(), 0xD4U); // the old carry goes to H
}

TEST(Z80, BitOfMemoryTakesXAndYFromTheOperand) {
    TEST_Z80 test{0xCB, 0x46};
    test.bus.memory[0x5000] = 0x29;
    test.Instruction();
    EXPECT_EQ(test.F(), 0x38U);
}

TEST(Z80, BitOfIndexedMemoryTakesXAndYFromTheAddress) {
    TEST_Z80 test{0xDD, 0xCB, 0x05, 0x46};
    test.z80.regs[kZ80Ix] = 0x28FB; // with the displacement 2900
    test.bus.memory[0x2900] = 0x01;
    test.Instruction();
    EXPECT_EQ(test.F(), 0x38U);
}

TEST(Z80, IndexedBitFormsThatNameARegisterChangeMemoryOnly) {
    for (uint32_t name = 0; name < 8; ++name) {
        for (const uint32_t group : {0x00U, 0x80U, 0xC0U}) {
            TEST_Z80 test{0xDD, 0xCB, 0x01, static_cast<uint8_t>(group | name)};
            test.bus.memory[0x5201] = group == 0x80 ? 0xFF : 0x40;
            const uint8_t expected = group == 0x00 ? 0x80 : group == 0x80 ? 0xFE : 0x41;
            test.Instruction();
            EXPECT_EQ(test.bus.memory[0x5201], expected) << name;
            EXPECT_EQ(test.A(), 0x12U) << name;
            EXPECT_EQ(test.Word(kZ80Bc), 0x0210U) << name;
            EXPECT_EQ(test.Word(kZ80De), 0x5100U) << name;
            EXPECT_EQ(test.Word(kZ80Hl), 0x5000U) << name;
        }
    }
}

TEST(Z80, MemoryFormsBesideAnIndexUseTheRealHAndL) {
    TEST_Z80 load{0xDD, 0x66, 0x01}; // LD H,(IX+1)
    load.bus.memory[0x5201] = 0x77;
    load.Instruction();
    EXPECT_EQ(load.Word(kZ80Hl), 0x7700U);
    EXPECT_EQ(load.Word(kZ80Ix), 0x5200U);
    TEST_Z80 halves{0xDD, 0x6C}; // LD IXL,IXH
    halves.Instruction();
    EXPECT_EQ(halves.Word(kZ80Ix), 0x5252U);
    EXPECT_EQ(halves.Word(kZ80Hl), 0x5000U);
}

TEST(Z80, PrefixBeforeAnotherOpcodeIsFourClocksMore) {
    TEST_Z80 test{0xDD, 0xEB}; // EX DE,HL ignores the prefix
    EXPECT_EQ(test.Instruction(), 8U);
    EXPECT_EQ(test.Word(kZ80De), 0x5000U);
    EXPECT_EQ(test.Word(kZ80Hl), 0x5100U);
    EXPECT_EQ(test.Word(kZ80Ix), 0x5200U);
}

TEST(Z80, InterruptModesAndTheirMirrors) {
    struct MODE_ROW {
        uint8_t opcode;
        uint32_t mode;
    };
    for (const MODE_ROW& row : {
             MODE_ROW{0x46, 0},
             MODE_ROW{0x4E, 0},
             MODE_ROW{0x56, 1},
             MODE_ROW{0x5E, 2},
             MODE_ROW{0x66, 0},
             MODE_ROW{0x6E, 0},
             MODE_ROW{0x76, 1},
             MODE_ROW{0x7E, 2}
    }) {
        TEST_Z80 test{0xED, row.opcode};
        test.z80.im = row.mode == 0 ? 2 : 0;
        test.Instruction();
        EXPECT_EQ(test.z80.im, row.mode) << uint32_t{row.opcode};
    }
}

TEST(Z80, LoadFromRShowsIff2) {
    TEST_Z80 test{0xED, 0x5F};
    test.z80.iff2 = 1;
    test.z80.r7 = 0x10;
    test.z80.r8 = 0x80;
    test.Instruction();
    EXPECT_EQ(test.A(), 0x92U); // plus two fetches
    EXPECT_EQ(test.F(), 0x84U);
}

TEST(Z80, AddressesWrapAtTheEndOfMemory) {
    TEST_Z80 test;
    test.z80.regs[kZ80Pc] = 0xFFFF;
    test.z80.regs[kZ80Sp] = 0;
    test.bus.memory[0xFFFF] = 0xCD; // CALL 1234
    test.bus.memory[0x0000] = 0x34;
    test.bus.memory[0x0001] = 0x12;
    test.Instruction();
    EXPECT_EQ(test.bus.trace, "2fFFFF 6wFFFF=00 9wFFFE=02 13r0000 16r0001");
    EXPECT_EQ(test.Word(kZ80Pc), 0x1234U);
    EXPECT_EQ(test.Word(kZ80Sp), 0xFFFEU);
}
