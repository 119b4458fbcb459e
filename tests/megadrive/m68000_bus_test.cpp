// What the bus sees: the prefetch queue, orders of access, pages and address errors.
#include "megadrive/m68000_rig.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t kNop = 0x4E71;

TEST(M68000Bus, TheWordAheadIsFetchedBeforeTheInstructionRuns) {
    TEST_68000 rig{kNop, 0x1234, 0x5678};
    rig.Tick();
    EXPECT_EQ(rig.TakeLog(), "f 1002 1234; ");
    EXPECT_EQ(rig.cpu.prefetchAddr, kProgram + 2);
    EXPECT_EQ(rig.cpu.prefetchData, 0x1234U);
}

TEST(M68000Bus, AWriteToTheNextWordIsNotSeenAndOneToTheWordAfterItIs) {
    // MOVE.W D0,(A0) writes MOVEQ #5,D7 over a NOP.
    TEST_68000 near{0x3080, kNop, kNop};
    near.D(0) = 0x7E05;
    near.A(0) = kProgram + 2;
    near.Tick();
    near.Tick();
    EXPECT_EQ(near.D(7), 0U);

    TEST_68000 far{0x3080, kNop, kNop};
    far.D(0) = 0x7E05;
    far.A(0) = kProgram + 4;
    far.Tick();
    far.Tick();
    far.Tick();
    EXPECT_EQ(far.D(7), 5U);
}

struct TRACE {
    const char* name;
    std::vector<uint32_t> words;
    std::string bus;
};

// D0 is 11223344, A0 2000, A1 3000, with the long 89ABCDEF at 2000.
const std::vector<TRACE>& Traces() {
    static const std::vector<TRACE> kTraces{
        {"MOVE.L (A0)+,-(A1)",  {0x2318},         "f 1002 0000; rl 2000 89ABCDEF; wl 2FFC 89ABCDEF; "},
        {"MOVE.W #1234,(2,A0)",
         {0x317C, 0x1234, 0x0002},
         "f 1002 1234; f 1004 0002; f 1006 0000; ww 2002 1234; "                                     },
        {"ADD.B D0,(A0)",       {0xD110},         "f 1002 0000; rb 2000 89; wb 2000 CD; "            },
        {"CLR.W (A0)",          {0x4250},         "f 1002 0000; rw 2000 89AB; ww 2000 0000; "        },
        {"ST (A0)",             {0x50D0},         "f 1002 0000; rb 2000 89; wb 2000 FF; "            },
        {"MOVE SR,(A0)",        {0x40D0},         "f 1002 0000; rw 2000 89AB; ww 2000 2700; "        },
        {"TAS (A0)",            {0x4AD0},         "f 1002 0000; rb 2000 89; wb 2000 89; "            },
        {"MOVEP.L D0,(0,A0)",
         {0x01C8, 0},
         "f 1002 0000; f 1004 0000; wb 2000 11; wb 2002 22; wb 2004 33; wb 2006 44; "                },
        {"MOVEM.L D0/A0,-(A1)",
         {0x48E1, 0x8080},
         "f 1002 8080; f 1004 0000; wl 2FFC 00002000; wl 2FF8 11223344; "                            },
        {"MOVEM.W (A0)+,D1-D2",
         {0x4C98, 0x0006},
         "f 1002 0006; f 1004 0000; rw 2000 89AB; rw 2002 CDEF; rw 2004 0000; "                      },
        {"BSR *+16",            {0x610E},         "f 1002 0000; wl 7FFC 00001002; "                  },
        {"JSR 2000",            {0x4EB8, 0x2000}, "f 1002 2000; f 1004 0000; wl 7FFC 00001004; "     },
        {"PEA (4,PC)",          {0x487A, 0x0004}, "f 1002 0004; f 1004 0000; wl 7FFC 00001006; "     },
        {"LINK A0,#-8",         {0x4E50, 0xFFF8}, "f 1002 FFF8; f 1004 0000; wl 7FFC 00002000; "     },
        {"ADDX.B -(A0),-(A1)",  {0xD308},         "f 1002 0000; rb 1FFF 00; rb 2FFF 00; wb 2FFF 00; "},
        {"CMPM.W (A0)+,(A1)+",  {0xB348},         "f 1002 0000; rw 2000 89AB; rw 3000 0000; "        },
    };
    return kTraces;
}

TEST(M68000Bus, InstructionsAccessTheBusInTheirOrder) {
    for (const TRACE& trace : Traces()) {
        SCOPED_TRACE(trace.name);
        TEST_68000 rig(trace.words);
        rig.SetStatus(0x2700);
        rig.D(0) = 0x11223344;
        rig.A(0) = 0x2000;
        rig.A(1) = 0x3000;
        rig.SetLong(0x2000, 0x89ABCDEF);
        rig.Tick();
        EXPECT_EQ(rig.TakeLog(), trace.bus);
    }
}

TEST(M68000Bus, AddressesOnTheBusHave24Bits) {
    TEST_68000 rig{0x1010};
    rig.A(0) = 0xFF012345;
    rig.Tick();
    EXPECT_EQ(rig.TakeLog(), "f 1002 0000; rb 12345 00; ");
}

TEST(M68000Bus, ByteAccessesThroughA7MoveItByTwo) {
    TEST_68000 rig{0x101F, 0x1F00, 0x1E9F};
    rig.SetWord(kStack, 0xAB12);
    rig.Tick(); // MOVE.B (A7)+,D0
    EXPECT_EQ(rig.D(0), 0xABU);
    EXPECT_EQ(rig.A(7), kStack + 2);
    rig.Tick(); // MOVE.B D0,-(A7)
    EXPECT_EQ(rig.A(7), kStack);
}

struct FAULT {
    const char* name;
    std::vector<uint32_t> words;
    uint32_t status;
    uint32_t address;
    uint32_t mode;
    uint32_t code;
    uint32_t a7;
};

// A0 is 2001.
const std::vector<FAULT>& Faults() {
    static const std::vector<FAULT> kFaults{
        {"MOVE.W (A0),D0",                 {0x3010},         0x2700, 0x2001, 16, 5, kStack},
        {"MOVE.L (A0),D0",                 {0x2010},         0x2700, 0x2001, 16, 5, kStack},
        {"MOVE.W (A0),D0 in user state",   {0x3010},         0x0000, 0x2001, 16, 1, kStack},
        {"MOVE.W D0,(A0)",                 {0x3080},         0x2700, 0x2001, 0,  5, kStack},
        {"MOVE.L D0,(A0) in user state",   {0x2080},         0x0000, 0x2001, 0,  1, kStack},
        {"MOVE.W (1,PC),D0",               {0x303A, 0x0001}, 0x2700, 0x1003, 16, 6, kStack},
        {"MOVE.W (1,PC),D0 in user state", {0x303A, 0x0001}, 0x0000, 0x1003, 16, 2, kStack},
        {"CLR.W (A0), which reads",        {0x4250},         0x2700, 0x2001, 16, 5, kStack},
        {"TRAP with an odd stack",         {0x4E40},         0x2700, 0x7FFD, 0,  5, 0x8001},
        {"JSR (A0) with an odd stack",     {0x4E90},         0x2700, 0x7FFD, 0,  5, 0x8001},
        {"RTS with an odd stack",          {0x4E75},         0x2700, 0x8001, 16, 5, 0x8001},
    };
    return kFaults;
}

TEST(M68000Bus, AnOddAccessLeavesTheInstructionWithItsAddressModeAndCode) {
    for (const FAULT& fault : Faults()) {
        SCOPED_TRACE(fault.name);
        TEST_68000 rig(fault.words);
        rig.SetStatus(fault.status);
        rig.A(0) = 0x2001;
        rig.A(7) = fault.a7;
        EXPECT_TRUE(rig.StepFails());
        EXPECT_EQ(rig.cpu.aerrAddress, fault.address);
        EXPECT_EQ(rig.cpu.aerrMode, fault.mode);
        EXPECT_EQ(rig.cpu.aerrCode, fault.code);
        EXPECT_EQ(rig.cpu.prevPc, kProgram);
        // No frame and no vector.
        EXPECT_NE(rig.cpu.pc, HandlerOf(3));
    }
}

TEST(M68000Bus, ByteAccessesAtOddAddressesAreFine) {
    TEST_68000 rig{0x1010};
    rig.A(0) = 0x2001;
    rig.SetByte(0x2001, 0x5A);
    EXPECT_FALSE(rig.StepFails());
    EXPECT_EQ(rig.D(0), 0x5AU);
}

TEST(M68000Bus, AnOddJumpFailsAtTheNextFetch) {
    TEST_68000 rig{0x4ED0}; // JMP (A0)
    rig.A(0) = 0x2001;
    EXPECT_FALSE(rig.StepFails());
    EXPECT_TRUE(rig.StepFails());
    EXPECT_EQ(rig.cpu.aerrAddress, 0x2001U);
    EXPECT_EQ(rig.cpu.aerrMode, 16U);
    EXPECT_EQ(rig.cpu.aerrCode, 6U);
}

TEST(M68000Bus, AnOddJumpInUserStateHasCodeTwo) {
    TEST_68000 rig{0x4ED0}; // JMP (A0)
    rig.SetStatus(0);
    rig.A(0) = 0x2001;
    EXPECT_FALSE(rig.StepFails());
    EXPECT_TRUE(rig.StepFails());
    EXPECT_EQ(rig.cpu.aerrAddress, 0x2001U);
    EXPECT_EQ(rig.cpu.aerrCode, 2U);
}

// The entry of the exception has just switched to the supervisor's stack, which is odd.
TEST(M68000Bus, AnOddStackAtAnEntryFromUserStateHasCodeFive) {
    TEST_68000 rig{0x4E40}; // TRAP #0
    rig.A(7) = 0x8001;
    rig.SetStatus(0);
    rig.A(7) = 0x7000;
    EXPECT_TRUE(rig.StepFails());
    EXPECT_EQ(rig.cpu.aerrAddress, 0x7FFDU);
    EXPECT_EQ(rig.cpu.aerrMode, 0U);
    EXPECT_EQ(rig.cpu.aerrCode, 5U);
}

TEST(M68000Bus, ABranchByMinusOneIsAnOddJumpNotALongBranch) {
    TEST_68000 rig{0x60FF, 0x0000, 0x0100};
    EXPECT_FALSE(rig.StepFails());
    EXPECT_EQ(rig.cpu.pc, kProgram + 1);
    EXPECT_TRUE(rig.StepFails());
}

TEST(M68000Bus, AnOddStartAddressFailsAtTheFirstStep) {
    TEST_68000 rig{kNop};
    rig.SetLong(4, 0x1001);
    M68kReset(rig.cpu);
    EXPECT_TRUE(rig.StepFails());
    EXPECT_EQ(rig.cpu.aerrAddress, 0x1001U);
    EXPECT_EQ(rig.cpu.aerrCode, 6U);
}

// Memory in the form that pages have.
struct PAGES {
    static constexpr uint32_t kWords = 0x8000;
    std::vector<uint16_t> words = std::vector<uint16_t>(kWords);

    explicit PAGES(TEST_68000& rig) {
        for (uint32_t i = 0; i < kWords; ++i) {
            words[i] = static_cast<uint16_t>(rig.Word(2 * i));
        }
        rig.cpu.readPages[0] = words.data();
        rig.cpu.writePages[0] = words.data();
    }
};

TEST(M68000Bus, APageTakesFetchesAndAccessesWithoutACall) {
    TEST_68000 rig{0x2290, 0x1340, 0x0003, 0x3010}; // MOVE.L (A0),(A1); MOVE.B D0,(3,A1)
    rig.A(0) = 0x2000;
    rig.A(1) = 0x3000;
    rig.D(0) = 0x77;
    rig.SetLong(0x2000, 0x89ABCDEF);
    PAGES pages(rig);
    rig.Tick();
    EXPECT_EQ(pages.words[0x1800], 0x89ABU);
    EXPECT_EQ(pages.words[0x1801], 0xCDEFU);
    rig.Tick();
    EXPECT_EQ(pages.words[0x1801], 0xCD77U); // the odd byte
    EXPECT_EQ(rig.TakeLog(), "");
}

TEST(M68000Bus, ALongOverTheEndOfAPageGoesToTheCallback) {
    TEST_68000 rig{0x2290}; // MOVE.L (A0),(A1)
    rig.A(0) = 0xFFFE;
    rig.A(1) = 0xFFFE;
    rig.SetLong(0xFFFE, 0x11223344);
    PAGES pages(rig);
    rig.Tick();
    EXPECT_EQ(rig.TakeLog(), "rl FFFE 11223344; wl FFFE 11223344; ");
}

} // namespace
