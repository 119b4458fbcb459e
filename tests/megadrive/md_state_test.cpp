// States of the Mega Drive with every kind of cartridge, and its two frame loops: what follows a load is
// what followed the save, and bytes of any kind do no harm.
#include "base/bytes.h"
#include "megadrive/md_rig.h"

#include "support/machine_states.h"

#include <initializer_list>
#include <ostream>
#include <random>

namespace {

// A program that keeps every chip busy. The 68000 writes random numbers to VRAM, to registers of scroll and
// window, to the cartridge and to its own RAM, and keeps DMA of all three kinds going, also while the picture
// is drawn; the Z80 plays both sound chips, reads and writes the VDP and the 68000's RAM through its
// windows. Interrupts of both levels change colour and scroll, and one takes the Z80's bus.
MdProgram Restless() {
    MdProgram program;
    const int registers[][2] = {
        {0,  0x14},
        {1,  0x74},
        {2,  0x30},
        {3,  0x2C},
        {4,  0x07},
        {5,  0x5C},
        {7,  0x05},
        {10, 0x13},
        {11, 0x03},
        {12, 0x89},
        {13, 0x2E},
        {15, 0x02},
        {16, 0x11},
        {17, 0x85},
        {18, 0x06},
    };
    for (const auto& [index, value] : registers) {
        program.VdpRegister(index, value);
    }
    // Noise in the colours, and in the first 32 KiB of video memory from the ROM.
    program.VdpAddress(3, 0).Words({0x303C, 63, 0x323C, 0x0123}); // move.w #63,d0; move.w #,d1
    program.Words({0x33C1}).Long(0xC00000).Words({0x0641, 0x0467, 0xE559, 0x51C8, 0xFFF2});
    program.VdpRegister(19, 0x00).VdpRegister(20, 0x40);
    program.VdpRegister(21, 0x00).VdpRegister(22, 0x01).VdpRegister(23, 0x00);
    program.StoreLong(0xC00004, 0x40000080);
    program.StartZ80(0x140);
    program.Words({0x46FC, 0x2300, 0x2E3C}).Long(0x12345678); // move #,sr; move.l #,d7
    program.Words({0x41F9}).Long(0xFF1000);                   // lea RAM,a0
    const uint32_t loop = program.Here();
    program.Words({0x2007, 0xE798, 0xB187, 0x0687}).Long(0x3C6EF35F); // a generator in d7, d0
    program.Words({0x3087, 0x3210, 0x33C7}).Long(0x200100);           // to RAM and the cartridge
    program.Words({0x13C7}).Long(0x200001).Words({0x3439}).Long(0x200100);
    program.Words({0xD487, 0x33C2}).Long(0xFF1002);
    // About every 256th pass starts a DMA: bits 8 and 9 of d7 choose, one in four does nothing.
    program.Words({0x3607, 0x0243, 0x00FF, 0x6600, 0}); // move.w d7,d3; andi; bne next
    const uint32_t branch = program.Here() - 2;
    program.VdpRegister(19, 0x40).VdpRegister(20, 0x00);
    program.Words({0x0807, 9, 0x6700, 0}); // btst #9,d7; beq other
    const uint32_t toOther = program.Here() - 2;
    program.VdpRegister(21, 0x80).VdpRegister(22, 0x00).VdpRegister(23, 0x7F);
    program.StoreLong(0xC00004, 0x60000082); // RAM to 0xA000
    program.Words({0x6000, 0});
    const uint32_t overOther = program.Here() - 2;
    const uint32_t other = program.Here();
    program.Words({0x0807, 8, 0x6700, 0}); // btst #8,d7; beq copy
    const uint32_t toCopy = program.Here() - 2;
    program.VdpRegister(23, 0x80).StoreLong(0xC00004, 0x50000083);
    program.Words({0x33C7}).Long(0xC00000); // a fill with d7
    program.Words({0x6000, 0});
    const uint32_t overCopy = program.Here() - 2;
    const uint32_t copy = program.Here();
    program.VdpRegister(21, 0x34).VdpRegister(22, 0x12).VdpRegister(23, 0xC0);
    program.StoreLong(0xC00004, 0x480000C2);
    const uint32_t next = program.Here();
    program.Words({0x33C7}).Long(0xC00000);         // move.w d7,data
    program.Words({0x3839}).Long(0xC00008);         // move.w counter,d4
    program.Words({0xDE84, 0x3839}).Long(0xC00004); // add.l; move.w status,d4
    program.Words({0x6000, static_cast<int>((loop - program.Here() - 2) & 0xFFFF)});
    const auto patch = [&](uint32_t at, uint32_t target) {
        const uint32_t back = program.Here();
        program.At(at).Words({static_cast<int>((target - at) & 0xFFFF)}).At(back);
    };
    patch(branch, next);
    patch(toOther, other);
    patch(overOther, next);
    patch(toCopy, copy);
    patch(overCopy, next);
    // Interrupts: a colour changes in the line, the planes scroll in the blank.
    program.At(kMdHorizontal).Words({0x33FC, 0x8700 | 0x25}).Long(0xC00004);
    program.Words({0x52B9}).Long(0xFF2000).Words({0x4E73});
    program.At(kMdVertical).VdpAddress(5, 0).Words({0x33F9}).Long(0xFF2002).Long(0xC00000);
    program.VdpRegister(7, 0x06).Words({0x52B9}).Long(0xFF2000);
    program.StoreWord(0xA11100, 0x100).Words({0x33F9}).Long(0xA01E10).Long(0xFF2004);
    program.StoreWord(0xA11100, 0).Words({0x4E73}); // a look at what the Z80 has seen
    // The Z80: im 1; sp; bank 0xFF8000; keys on, then a loop.
    program.Bytes(kMdZ80Code, {0xF3, 0xED, 0x56, 0x31, 0x00, 0x1F, 0xC3, 0x60, 0x00});
    program.Bytes(kMdZ80Code + 0x38, {0xF5, 0x3A, 0x00, 0x1E, 0x3C, 0x32, 0x00, 0x1E, // counts
                                      0x06, 40, 0x10, 0xFE, 0xF1, 0xFB, 0xED, 0x4D});
    std::vector<int> z80;
    const auto fm = [&](int index, int value) {
        for (const int byte : {0x3E, index, 0x32, 0x00, 0x40, 0x3E, value, 0x32, 0x01, 0x40}) {
            z80.push_back(byte);
        }
    };
    for (int bit = 15; bit < 24; ++bit) {
        for (const int byte : {0x3E, 0xFF8000 >> bit & 1, 0x32, 0x00, 0x60}) {
            z80.push_back(byte);
        }
    }
    fm(0xB0, 0x32);
    fm(0x40, 0x10);
    fm(0x4C, 0x00);
    fm(0x50, 0x1F);
    fm(0x5C, 0x1F);
    fm(0x30, 0x01);
    fm(0x3C, 0x02);
    fm(0xA4, 0x22);
    z80.push_back(0xFB);
    const int start = 0x60 + static_cast<int>(z80.size());
    const auto add = [&](std::initializer_list<int> bytes) { z80.insert(z80.end(), bytes); };
    add({0xED, 0x5F, 0x82, 0x07, 0x57});                                     // d = (r + d) turned
    add({0x3E, 0xA0, 0x32, 0x00, 0x40, 0x7A, 0x32, 0x01, 0x40});             // pitch of channel 1
    add({0x3E, 0x28, 0x32, 0x00, 0x40, 0x7A, 0xE6, 0xF0, 0x32, 0x01, 0x40}); // its keys
    add({0x7A, 0x32, 0x11, 0x7F});                                           // the PSG
    add({0x32, 0x10, 0x80, 0x3A, 0x12, 0x80});                               // the 68000's RAM
    add({0x3A, 0x00, 0x40, 0x32, 0x10, 0x1E}); // status of the FM chip
    add({0x3A, 0x05, 0x7F, 0x32, 0x11, 0x1E, 0x3A, 0x09, 0x7F, 0x32, 0x12, 0x1E}); // and the VDP
    add({0x7A, 0xE6, 0x3F, 0x20, 0x04, 0x7A, 0x32, 0x00, 0x7F}); // now and then a word for that
    add({0x06, 0x00, 0x10, 0xFE});
    z80.push_back(0xC3);
    z80.push_back(start & 0xFF);
    z80.push_back(start >> 8);
    EXPECT_LE(z80.size() + 0x60, 0x140u);
    uint32_t at = kMdZ80Code + 0x60;
    for (const int byte : z80) {
        program.Bytes(at++, {byte});
    }
    return program;
}

// The Z80 waits in loops of every kind: for a timer of the FM chip, for a byte from the 68000, in HALT and with the
// refresh counter; between them it plays and counts. The 68000 takes its bus, reads and writes its memory and plays
// the PSG at random moments.
MdProgram Waiting() {
    MdProgram program;
    program.VdpRegister(0, 0x14).VdpRegister(1, 0x74).VdpRegister(10, 0x25).VdpRegister(12, 0x81);
    program.StartZ80(0x100);
    program.Words({0x46FC, 0x2300, 0x2E3C}).Long(0x12345678); // move #,sr; move.l #,d7
    const uint32_t loop = program.Here();
    program.Words({0x2007, 0xE798, 0xB187, 0x0687}).Long(0x3C6EF35F); // a generator in d7, d0
    program.Words({0x3607, 0x0243, 0x01FF, 0x51CB, 0xFFFE});          // d3: some rounds of dbra
    program.Words({0x13C7}).Long(0xC00011);                           // the PSG
    program.StoreWord(0xA11100, 0x100);
    program.Words({0x33F9}).Long(0xA11100).Long(0xFF2006); // at once, so maybe not granted yet
    program.Words({0x33F9}).Long(0xA01E00).Long(0xFF2000); // what the Z80 has counted
    program.Words({0x33F9}).Long(0xA01E02).Long(0xFF2002);
    program.Words({0x33F9}).Long(0xA01FF0).Long(0xFF2008); // and its stack
    program.Words({0x13C7}).Long(0xA01E10);                // a byte for it
    program.StoreWord(0xA11100, 0);
    program.Words({0x6000, static_cast<int>((loop - program.Here() - 2) & 0xFFFF)});
    program.At(kMdHorizontal).Words({0x52B9}).Long(0xFF2010).Words({0x4E73});
    program.At(kMdVertical).Words({0x52B9}).Long(0xFF2014).Words({0x4E73});
    program.Bytes(kMdZ80Code, {0xF3, 0xED, 0x56, 0x31, 0xFF, 0x1F, 0xC3, 0x60, 0x00});
    program.Bytes(kMdZ80Code + 0x38, {0xF5, 0x3A, 0x01, 0x1E, 0x3C, 0x32, 0x01, 0x1E, // counts
                                      0xF1, 0xFB, 0xED, 0x4D});
    std::vector<int> z80;
    const auto add = [&](std::initializer_list<int> bytes) { z80.insert(z80.end(), bytes); };
    const auto fm = [&](int index, int value) {
        add({0x3E, index, 0x32, 0x00, 0x40, 0x3E, value, 0x32, 0x01, 0x40});
    };
    fm(0x24, 0xFC);
    fm(0x25, 0x02);
    fm(0x2B, 0x80);
    add({0xFB}); // ei
    const int start = 0x60 + static_cast<int>(z80.size());
    fm(0x27, 0x15);                                              // forgets the timer's mark
    add({0x3A, 0x00, 0x40, 0xE6, 0x01, 0x28, 0xF9});             // waits for the timer
    add({0x3E, 0x2A, 0x32, 0x00, 0x40, 0x7A, 0x32, 0x01, 0x40}); // a sample
    add({0xE5, 0xD5, 0xD1, 0xE1, 0x14});                         // stack; inc d
    add({0x21, 0x00, 0x1E, 0x34});                               // counts
    add({0x7A, 0xE6, 0x0F, 0x20, 0x0A});                         // fifteen in sixteen: on
    add({0xED, 0x5F, 0xE6, 0x1F, 0x20, 0xFA});                   // waits for R
    add({0x32, 0x11, 0x7F, 0x76});                               // the PSG; halt
    // Waits for a byte, and sets R in each round.
    add({0x21, 0x10, 0x1E, 0x7E, 0xED, 0x4F, 0xCD, 0xF8, 0x00, 0xA6, 0xE6, 0x03, 0x28, 0xF5});
    z80.push_back(0xC3);
    z80.push_back(start & 0xFF);
    z80.push_back(start >> 8);
    EXPECT_LE(z80.size() + 0x60, 0xF8u);
    uint32_t at = kMdZ80Code + 0x60;
    for (const int byte : z80) {
        program.Bytes(at++, {byte});
    }
    program.Bytes(kMdZ80Code + 0xF8, {0xC9});
    return program;
}

// The 68000 waits in loops of every kind: for an interrupt's count in its RAM, for a byte that the Z80 writes through
// its window, for a bit of the VDP's status, and for a DMA to end; between them it counts and takes the Z80's bus.
MdProgram Polling() {
    MdProgram program;
    program.VdpRegister(0, 0x14).VdpRegister(1, 0x74).VdpRegister(10, 0x25).VdpRegister(12, 0x81);
    program.VdpRegister(15, 2).StartZ80(0x100);
    program.Words({0x46FC, 0x2300, 0x41F9}).Long(0xFF2000); // move #,sr; lea RAM,a0
    const uint32_t loop = program.Here();
    program.Words({0x3010, 0xB050, 0x67FC});                         // move.w (a0),d0; cmp; beq
    program.Words({0x4A39}).Long(0xFF8010).Words({0x67F8});          // tst.b; beq
    program.Words({0x4239}).Long(0xFF8010).Words({0x5268, 0x0020});  // clr.b; addq.w #1,32(a0)
    program.Words({0x1228, 0x0001, 0x0201, 0x0003, 0x0C01, 0x0002}); // move.b; andi; cmpi
    program.Words({0x6600, 0xFFF2});                                 // bne.w to the move
    program.Words({0x0839, 0x0003}).Long(0xC00005).Words({0x67F6});  // btst #3,status; beq
    program.VdpRegister(19, 0x80).VdpRegister(20, 0x01);
    program.VdpRegister(21, 0x00).VdpRegister(22, 0x01).VdpRegister(23, 0x00);
    program.StoreLong(0xC00004, 0x40000080); // 384 words of the ROM to video memory
    program.StoreWord(0xA11100, 0x100).Words({0x33F9}).Long(0xA01E00).Long(0xFF2030);
    program.StoreWord(0xA11100, 0).Words({0x4DE8, 0x0010, 0x4A56}); // lea 16(a0),a6; tst.w (a6)
    program.Words({0x6000, static_cast<int>((loop - program.Here() - 2) & 0xFFFF)});
    program.At(kMdHorizontal).Words({0x52B9}).Long(0xFF2010).Words({0x4E73});
    program.At(kMdVertical).Words({0x5279}).Long(0xFF2000).Words({0x4E73});
    program.Bytes(kMdZ80Code, {0xF3, 0x31, 0xFF, 0x1F});
    uint32_t at = kMdZ80Code + 4;
    for (int bit = 15; bit < 24; ++bit, at += 5) {
        program.Bytes(at, {0x3E, 0xFF8000 >> bit & 1, 0x32, 0x00, 0x60});
    }
    // ld hl,1E00; loop: ld b,0; djnz; inc (hl); ld a,(hl); ld (8010),a; jr loop
    program.Bytes(
        at, {0x21, 0x00, 0x1E, 0x06, 0x00, 0x10, 0xFE, 0x34, 0x7E, 0x32, 0x10, 0x80, 0x18, 0xF5});
    return program;
}

struct CASE {
    const char* name;
    const char* title;   // of the header
    const char* memory;  // at 0x1B0, "RA" or nothing
    const char* product; // at 0x182
    uint8_t console;
};

// How a failing test names its case.
void PrintTo(const CASE& what, std::ostream* out) {
    *out << what.name;
}

constexpr CASE kCases[] = {
    {"Plain60", "TEST",          "",   "",        kMdConsoleGenesis},
    {"Plain50", "TEST",          "",   "",        kMdConsolePal    },
    {"Battery", "TEST",          "RA", "",        kMdConsoleJapan  },
    {"Eeprom",  "TEST",          "RA", "MK-1215", kMdConsoleGenesis},
    {"Svp",     "Virtua Racing", "",   "",        kMdConsoleGenesis},
};

MdProgram ProgramOf(const CASE& what) {
    MdProgram program = Restless();
    program.Text(0x150, what.title).Text(0x1B0, what.memory).Text(0x182, what.product);
    if (std::string(what.memory) == "RA") {
        program.PutLong(0x1B4, 0x200000).PutLong(0x1B8, 0x20FFFF);
    }
    // Words of any kind for the signal processor, which starts at 0x800.
    if (std::string(what.name) == "Svp") {
        std::mt19937 random(3);
        program.At(0x804);
        while (program.Here() < 0x1000) {
            program.Words({static_cast<int>(random() & 0xFFFF)});
        }
    }
    return program;
}

std::unique_ptr<CMegaDrive> Start(const CASE& what) {
    MD_OPTIONS options = DefaultMdOptions();
    options.console = what.console;
    return StartMd(ProgramOf(what), options);
}

// Runs frames with the same input for the same frame numbers.
std::vector<FRAME_RESULT> Play(CMegaDrive& machine, int from, int count) {
    auto rig = std::make_unique<MACHINE_RIG>();
    std::vector<FRAME_RESULT> results;
    for (int frame = from; frame < from + count; ++frame) {
        MACHINE_RIG::Press(L"MEGADRIVE P1 UP", (frame / 8 & 1) != 0);
        MACHINE_RIG::Press(L"MEGADRIVE P2 BUTTONZ", (frame / 16 & 1) != 0);
        rig->Frame(machine);
        results.push_back({rig->pictureHash, rig->soundHash, rig->audio.sampleCount});
    }
    return results;
}

class EveryMdState : public testing::TestWithParam<CASE> {};

} // namespace

TEST_P(EveryMdState, ContinuesAsTheUnbrokenRunInPictureAndSound) {
    ExpectTheRunThatWentOn([] { return Start(GetParam()); }, Play);
}

// VDP and FM chip catch up in one and are always up to date in the other.
TEST_P(EveryMdState, FastAndPlainFramesAreTheSame) {
    ExpectFastAndPlainAlike([] { return Start(GetParam()); }, Play);
}

// The Z80 runs ahead in one, skips the rounds of its loops, and is taken back when somebody looks.
TEST(MdState, FastAndPlainFramesOfAWaitingZ80AreTheSame) {
    const auto start = [] { return StartMd(Waiting()); };
    ExpectFastAndPlainAlike(start, Play);
    const auto machine = start();
    Play(*machine, 0, 60);
    EXPECT_GT(MdPeekByte(machine->Console(), 0xFF2000), 0U);
    EXPECT_GT(machine->Console().z80Ram[0x1E00], 0U);
    EXPECT_GT(machine->Console().z80Ram[0x1E01], 0U);
}

// The rounds of its loops are skipped in one.
TEST(MdState, FastAndPlainFramesOfAWaiting68000AreTheSame) {
    const auto start = [] { return StartMd(Polling()); };
    ExpectFastAndPlainAlike(start, Play);
    const auto machine = start();
    Play(*machine, 0, 60);
    EXPECT_GT(machine->Console().workRam[0x2020 / 2], 10U) << "it comes through all its loops";
    EXPECT_GT(machine->Console().workRam[0x2030 / 2], 0U);
    EXPECT_EQ(machine->Console().vdp.vram[1], 0x33U) << "the first word of the program";
}

// A loop of opcodes that write no memory, one of which is no instruction: its exception pushes what the loop looks at,
// and the handler puts the stack pointer back. So its first round ends as it began, but the second is another.
TEST(MdState, FastAndPlainFramesOfALoopThatPushesExceptionsAreTheSame) {
    constexpr int kHandler = 0x400;
    const auto start = [] {
        MdProgram program;
        program.VdpRegister(0, 0x14).VdpRegister(1, 0x44);
        program.Words({0x46FC, 0x2700, 0x4FF9}).Long(0xFF1006); // move #,sr; lea,a7
        const auto again = static_cast<int>(program.Here());
        program.Words({0x52B9}).Long(0xFF2000);                                   // addq.l #1
        program.Words({0x4279}).Long(0xFF1004);                                   // clr.w
        program.Words({0x6000, kHandler + 2 - static_cast<int>(program.Here())}); // to its bra
        const auto loop = static_cast<int>(program.Here());
        program.Words({0x4A79}).Long(0xFF1004); // tst.w of the program counter's low word
        program.Words({0x6600, (again - static_cast<int>(program.Here()) - 2) & 0xFFFF}); // bne
        program.Words({0x41C0});                                 // lea d0,a0
        program.At(kHandler).Words({0x4FEF, 0x0006});            // lea 6(a7),a7
        program.Words({0x6000, (loop - kHandler - 6) & 0xFFFF}); // bra
        program.PutLong(0x10, kHandler);
        return StartMd(program);
    };
    ExpectFastAndPlainAlike(start, Play);
    const auto machine = start();
    Play(*machine, 0, 10);
    EXPECT_GT(machine->Console().workRam[0x2002 / 2], 100U) << "it comes out of the loop";
}

TEST_P(EveryMdState, LoadsAtAnyFrameOfItsOwnRun) {
    int inTransfer = 0;
    ExpectLoadsAtAnyFrame([] { return Start(GetParam()); }, Play, 60,
                          [&](CMegaDrive& machine) {
                              inTransfer += machine.Console().vdp.dmaState != kMdVdpNoDma ? 1 : 0;
                          });
    EXPECT_GT(inTransfer, 0);
}

TEST_P(EveryMdState, IsSavedAlikeAfterLoading) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 37);
    ExpectSavedAlike(Save(*machine), *Start(GetParam()));
}

TEST_P(EveryMdState, WithoutItsSoundLoadsWithEmptyResamplers) {
    ExpectLoadsWithoutItsSound([] { return Start(GetParam()); }, Play, 2);
}

TEST_P(EveryMdState, IsRefusedWhenItIsCutOrOfAnotherVersionOrSize) {
    const auto machine = Start(GetParam());
    const SAVED saved = Save(*machine);
    std::vector<uint32_t> sizes = AllPieceSizes(saved);
    sizes.resize(7); // the sound after them may be missing
    ExpectCutsAreRefused(*machine, saved, sizes);
    ExpectWrongHeadersAreRefused(*machine, saved, sizes);
}

TEST_P(EveryMdState, DamagedBytesLoadAndRunOrAreRefused) {
    const auto machine = Start(GetParam());
    Play(*machine, 0, 3);
    EXPECT_GT(LoadDamaged(*machine, Save(*machine), [&] { Play(*machine, 0, 2); }), 20);
    machine->Reset();
    Play(*machine, 0, 1);
    EXPECT_FALSE(machine->ended);
}

INSTANTIATE_TEST_SUITE_P(MdState, EveryMdState, testing::ValuesIn(kCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(MdState, PiecesAreInTheirOrder) {
    const std::vector<uint32_t> sizes = AllPieceSizes(Save(*Start(kCases[0])));
    ASSERT_EQ(sizes.size(), 9U);
    EXPECT_EQ(sizes[0], 73779U);
    EXPECT_EQ(sizes[1], 353U);
    EXPECT_EQ(sizes[2], kZ80StateSize);
    EXPECT_EQ(sizes[3], MdVdpStateSize());
    EXPECT_EQ(sizes[4], PsgStateSize());
    EXPECT_EQ(sizes[5], Ym2612StateSize());
    EXPECT_EQ(sizes[6], 5U) << "a plain cartridge keeps nothing";
    EXPECT_EQ(AllPieceSizes(Save(*Start(kCases[2])))[6], 5U + 8 + 65536);
    EXPECT_EQ(AllPieceSizes(Save(*Start(kCases[3])))[6], 5U + 23 + 65536);
}

TEST(MdState, OfAnotherCartridgeIsRefused) {
    const SAVED saved = Save(*Start(kCases[2]));
    EXPECT_FALSE(Start(kCases[0])->LoadState(saved.blob.get(), saved.size));
}

// Most cartridges have eight bits of memory, at the odd addresses: the first byte is the one at the start.
TEST(MdState, BatteryMemoryAtOddAddressesBeginsWithItsFirstByte) {
    MdProgram program;
    program.Text(0x1B0, "RA")
        .Bytes(0x1B2, {0xF8, 0x20})
        .PutLong(0x1B4, 0x200001)
        .PutLong(0x1B8, 0x203FFF);
    const auto machine = StartMd(program.Stop());
    MEGA_DRIVE& md = machine->Console();
    MdWriteByte(&md, 0x200001, 0x12);
    MdWriteByte(&md, 0x200003, 0x34);
    std::vector<uint8_t> bytes = machine->BatteryContents();
    ASSERT_GE(bytes.size(), 3U);
    EXPECT_EQ(bytes[0], 0x12);
    EXPECT_EQ(bytes[2], 0x34);
    bytes[2] = 0x78;
    EXPECT_TRUE(machine->SetBatteryContents(bytes));
    EXPECT_EQ(MdReadByte(&md, 0x200003), 0x78U);
    EXPECT_EQ(MdReadByte(&md, 0x200001), 0x12U);
}

TEST(MdState, BatteryMemoryGoesOutAndInInTheConsolesOrder) {
    const auto machine = Start(kCases[2]);
    MEGA_DRIVE& md = machine->Console();
    MdWriteWord(&md, 0x200000, 0x1234);
    MdWriteByte(&md, 0x200003, 0x56);
    std::vector<uint8_t> bytes = machine->BatteryContents();
    ASSERT_EQ(bytes.size(), 65536U);
    EXPECT_EQ(bytes[0], 0x12);
    EXPECT_EQ(bytes[1], 0x34);
    EXPECT_EQ(bytes[3], 0x56);
    bytes[2] = 0x78;
    EXPECT_TRUE(machine->SetBatteryContents(bytes));
    EXPECT_EQ(MdReadWord(&md, 0x200002), 0x7856U);
    EXPECT_EQ(MdReadForDma(&md, 0x200002), 0x7856U) << "a transfer goes by the cartridge's pages";
    EXPECT_FALSE(machine->SetBatteryContents(std::span(bytes).first(100)));
    EXPECT_TRUE(Start(kCases[0])->BatteryContents().empty());
    EXPECT_EQ(Start(kCases[3])->BatteryContents().size(), 128U) << "the size of the EEPROM";
}
