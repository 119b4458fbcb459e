// The Mega Drive as a whole: its start, both buses, interrupts and frames.
#include "megadrive/md_rig.h"
#include "sega8/z80_steps.h"
#include "sega8/z80_tick.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace {

// A machine whose buses a test drives by hand.
class MegaDrive : public testing::Test {
protected:
    MegaDrive()
        : machine(StartMd(MdProgram().Stop()))
        , md(machine->Console()) {}

    uint32_t ReadWord(uint32_t address) { return MdReadWord(&md, address); }
    uint32_t ReadByte(uint32_t address) { return MdReadByte(&md, address); }
    uint32_t ReadLong(uint32_t address) { return MdReadLong(&md, address); }
    void WriteWord(uint32_t address, uint32_t value) { MdWriteWord(&md, address, value); }
    void WriteByte(uint32_t address, uint32_t value) { MdWriteByte(&md, address, value); }

    // Takes the Z80's bus. It is given away at an instruction's end, some clocks later.
    void TakeZ80Bus() {
        WriteWord(0xA11100, 0x100);
        for (int i = 0; i < 40; ++i) {
            Z80Tick(md.z80);
        }
        ASSERT_EQ(md.z80.running, 0u);
    }

    // What an undriven bus reads as: the word at the program counter, which is set to a known one.
    uint32_t OpenBus() {
        md.workRam[0x100] = 0x5AA5;
        md.cpu.pc = 0xFF0200;
        return 0x5AA5;
    }

    std::unique_ptr<CMegaDrive> machine;
    MEGA_DRIVE& md;
};

TEST(MegaDriveStart, AnImageOf511BytesIsRefusedAndOf512IsNot) {
    RegisterSettings();
    MdBuildTables();
    const std::vector<uint8_t> image = MdProgram().Stop().Image();
    for (const size_t size : {size_t{511}, size_t{512}}) {
        CGameFile game = MdGame({image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size)});
        CGameFile* const games[2] = {&game, nullptr};
        CMegaDrive machine(1);
        const MD_OPTIONS options = DefaultMdOptions();
        EmuSetLastError({});
        EXPECT_EQ(machine.Init(&options, games), size == 512) << size;
        EXPECT_EQ(EmuLastError(), size == 512 ? "" : "Invalid ROM file, less than 512 bytes");
    }
}

TEST(MegaDriveStart, RegionByHeaderAndOption) {
    struct ROW {
        std::string header;
        uint8_t console;
        uint8_t version;
    };
    const ROW rows[] = {
        {"JUE",                      0,  0x80},
        {"E  ",                      0,  0xC0},
        {"J  ",                      0,  0x00},
        {"U  ",                      0,  0x80},
        {"K  ",                      0,  0x00},
        {"JE ",                      0,  0x00},
        {"eur",                      0,  0xC0},
        {"Usa",                      0,  0x80},
        {"JAP",                      0,  0x00},
        {"   ",                      0,  0x80}, // none
        {"4  ",                      0,  0x80},
        {"1  ",                      0,  0x00},
        {"8  ",                      0,  0xC0},
        {"F  ",                      0,  0x80},
        {"A  ",                      0,  0xC0}, // 2 and 8
        {"2  ",                      0,  0x00},
        {std::string("\x04\x00\x00", 3), 0,    0x80},
        {"E  ",                          1,                        0x80 },
        {"E  ",                          2,                        0x00},
        {"U  ",                          3,                        0xC0 },
    };
    for (const ROW& row : rows) {
        MD_OPTIONS options = DefaultMdOptions();
        options.console = row.console;
        const auto machine = StartMd(MdProgram().Text(0x1F0, row.header).Stop(), options);
        MEGA_DRIVE& md = machine->Console();
        EXPECT_EQ(md.io.version, row.version) << row.header << ' ' << int{row.console};
        EXPECT_EQ(MdReadByte(&md, 0xA10001), row.version | 0x20u);
        const bool is50Hz = row.version == 0xC0;
        EXPECT_EQ(md.masterClock, is50Hz ? 53203425u : 53693175u);
        EXPECT_EQ(md.vdp.totalLines, is50Hz ? 313u : 262u);
    }
}

TEST(MegaDriveStart, AutomaticPadsFollowTheHeader) {
    for (const bool six : {false, true}) {
        MD_OPTIONS options = DefaultMdOptions();
        options.devices[1] = kMdDeviceNone;
        const auto machine = StartMd(MdProgram().Text(0x190, six ? "J6" : "J").Stop(), options);
        EXPECT_EQ(machine->Console().io.devices[0], six ? kMdDevice6Button : kMdDevice3Button);
        EXPECT_EQ(machine->Console().io.devices[1], kMdDeviceNone);
    }
}

TEST_F(MegaDrive, WorkRamIsMirroredAndBytesLieInTheirWords) {
    WriteWord(0xE01234, 0xABCD);
    EXPECT_EQ(ReadWord(0xFF1234), 0xABCDu);
    EXPECT_EQ(ReadByte(0xFF1234), 0xABu);
    EXPECT_EQ(ReadByte(0xFF1235), 0xCDu);
    WriteByte(0xFF1235, 0x11);
    WriteByte(0xFE1234, 0x22);
    EXPECT_EQ(ReadWord(0xE11234), 0x2211u);
    EXPECT_EQ(ReadWord(0xFFFF1234), 0x2211u) << "addresses have 24 bits";
}

TEST_F(MegaDrive, RomIsReadAndNotWritten) {
    EXPECT_EQ(ReadLong(0x100), 0x53454741u); // "SEGA"
    WriteWord(0x100, 0x1234);
    WriteByte(0x100, 0x12);
    EXPECT_EQ(ReadWord(0x100), 0x5345u);
    EXPECT_EQ(ReadWord(0x10100), 0x5345u) << "a small ROM repeats";
}

TEST_F(MegaDrive, NothingBelowTheZ80ReadsZero) {
    OpenBus();
    EXPECT_EQ(ReadWord(0x800000), 0u);
    EXPECT_EQ(ReadByte(0x9FFFFF), 0u);
}

TEST_F(MegaDrive, OpenBusIsTheWordAtTheProgramCounter) {
    const uint32_t open = OpenBus();
    for (const uint32_t address :
         {0xA11200u, 0xA15000u, 0xA13000u, 0xB00000u, 0xC00020u, 0xC10000u}) {
        EXPECT_EQ(ReadWord(address), open) << std::hex << address;
        EXPECT_EQ(ReadByte(address), open >> 8) << std::hex << address;
        EXPECT_EQ(ReadByte(address + 1), open >> 8) << std::hex << address;
    }
}

TEST_F(MegaDrive, OpenBusWithTheProgramCounterInNothingEnds) {
    md.cpu.pc = 0xA13000;
    EXPECT_EQ(ReadWord(0xA13000), 0u);
    EXPECT_EQ(ReadWord(0xA13000), 0u) << "and again";
}

TEST_F(MegaDrive, Z80SideIsClosedWhileTheZ80HasItsBus) {
    md.z80Ram[0x10] = 0x77;
    const uint32_t open = OpenBus();
    EXPECT_EQ(ReadWord(0xA00010), open);
    WriteByte(0xA00010, 1);
    EXPECT_EQ(md.z80Ram[0x10], 0x77);
    TakeZ80Bus();
    EXPECT_EQ(ReadWord(0xA00010), 0x7777u);
    EXPECT_EQ(ReadByte(0xA02011), 0u) << "its 8 KiB repeat";
    WriteWord(0xA02010, 0x1234);
    EXPECT_EQ(md.z80Ram[0x10], 0x12) << "the high byte of a word";
}

TEST_F(MegaDrive, BusStateShowsWhoHasIt) {
    const uint32_t open = OpenBus() & ~0x100u;
    EXPECT_EQ(ReadWord(0xA11100), open | 0x100);
    EXPECT_EQ(ReadByte(0xA11100), open >> 8 | 1);
    TakeZ80Bus();
    EXPECT_EQ(ReadWord(0xA11100), open);
    EXPECT_EQ(ReadByte(0xA11100), open >> 8);
    WriteWord(0xA11200, 0);
    EXPECT_EQ(ReadWord(0xA11100), open | 0x100) << "in reset, whatever was asked for";
    WriteByte(0xA11101, 0);
    EXPECT_EQ(md.z80.busHold, 1u) << "an odd byte reaches nothing";
    WriteByte(0xA11100, 0);
    EXPECT_EQ(md.z80.busHold, 0u);
}

TEST_F(MegaDrive, BusRequestLetsTheZ80GoOnForThreeClocks) {
    // NOPs: an instruction is four clocks, and the program counter is taken on by each fetch.
    const uint32_t before = md.z80.queueIndex;
    WriteWord(0xA11100, 0);
    EXPECT_EQ((md.z80.queueIndex - before) & 3, 3u);
}

TEST_F(MegaDrive, ReleasedResetDelaysTheZ80Once) {
    WriteWord(0xA11200, 0);
    EXPECT_EQ(md.z80.enabled, 0u);
    md.z80Clock = 7;
    WriteWord(0xA11200, 0x100);
    EXPECT_EQ(md.z80Clock, -45);
    EXPECT_EQ(md.z80.enabled, 1u);
    md.z80Clock = 7;
    WriteWord(0xA11200, 0x100);
    EXPECT_EQ(md.z80Clock, 7);
}

TEST_F(MegaDrive, ResetLineTakesTheFmChipAlong) {
    TakeZ80Bus();
    WriteByte(0xA04000, 0x2B);
    WriteByte(0xA04001, 0x80);
    EXPECT_NE(md.fm.dacEnabled, 0);
    WriteWord(0xA11200, 0);
    EXPECT_EQ(md.fm.dacEnabled, 0);
}

TEST_F(MegaDrive, BankRegisterTakesNineBitsFromBothSides) {
    MD_Z80_BUS bus{md};
    constexpr uint32_t kBank = 0xFF8000;
    for (int bit = 15; bit < 24; ++bit) {
        bus.Write(0x6000, static_cast<uint8_t>(kBank >> bit & 1));
    }
    EXPECT_EQ(md.z80Bank, kBank);
    TakeZ80Bus();
    for (int i = 0; i < 9; ++i) {
        WriteWord(0xA06000, i == 8 ? 0x100 : 0);
    }
    EXPECT_EQ(md.z80Bank, 0x800000u);
}

TEST_F(MegaDrive, Z80SeesThe68000sMapThroughItsWindow) {
    MD_Z80_BUS bus{md};
    md.z80Bank = 0;
    EXPECT_EQ(bus.Read(0x8100), 'S');
    EXPECT_EQ(bus.Read(0x8101), 'E');
    md.z80Bank = 0xFF8000;
    bus.Write(0x8010, 0x99);
    EXPECT_EQ(ReadByte(0xFF8010), 0x99u);
    EXPECT_EQ(bus.Read(0x8010), 0x99);
    md.z80Bank = 0xA10000;
    EXPECT_EQ(bus.Read(0x9100), 0xFF) << "the bus request is out of its reach";
    EXPECT_EQ(bus.Read(0x8001), 0xA0);
}

TEST_F(MegaDrive, Z80MapHasHoles) {
    MD_Z80_BUS bus{md};
    EXPECT_EQ(bus.Read(0x6000), 0xFF);
    EXPECT_EQ(bus.Read(0x7000), 0xFF);
    EXPECT_EQ(bus.Read(0x7F20), 0xFF);
    bus.Write(0x2005, 0x31);
    EXPECT_EQ(bus.Read(0x0005), 0x31);
    EXPECT_EQ(MD_Z80_BUS::IoRead(0x1234), 0xFF);
}

TEST_F(MegaDrive, SoundChipLiesOnTheLowByte) {
    MD_Z80_BUS bus{md};
    WriteByte(0xC00011, 0x90 | 3);
    EXPECT_EQ(md.psg.attenuation[0], 3);
    WriteByte(0xC00010, 0x90 | 7);
    EXPECT_EQ(md.psg.attenuation[0], 3);
    WriteWord(0xC00016, 0xFF90 | 5);
    EXPECT_EQ(md.psg.attenuation[0], 5);
    bus.Write(0x7F11, 0x90 | 9);
    EXPECT_EQ(md.psg.attenuation[0], 9);
}

TEST_F(MegaDrive, LongReadsTakeTheLowWordFirst) {
    // Of the data port, which steps on by two with each word.
    md.vdp.vram[0] = 0x22;
    md.vdp.vram[1] = 0x11;
    md.vdp.vram[2] = 0x44;
    md.vdp.vram[3] = 0x33;
    WriteWord(0xC00004, 0x8F02);
    WriteWord(0xC00004, 0x0000);
    WriteWord(0xC00004, 0x0000);
    EXPECT_EQ(ReadLong(0xC00000), 0x33441122u);
}

TEST_F(MegaDrive, ControlPortHasTenBitsOfStatus) {
    const uint32_t open = OpenBus();
    const uint32_t word = ReadWord(0xC00004);
    EXPECT_EQ(word & 0xFC00, open & 0xFC00);
    EXPECT_NE(word & 0x200, 0u) << "the FIFO is empty";
    EXPECT_EQ(ReadByte(0xC00004), word >> 8);
    EXPECT_EQ(ReadWord(0xC00010), 0u);
    EXPECT_EQ(ReadWord(0xC00018), open);
}

TEST_F(MegaDrive, ByteWritesGoToBothHalves) {
    WriteWord(0xC00004, 0x8F02);
    WriteByte(0xC00004, 0x87); // 0x8787: register 7
    EXPECT_EQ(md.vdp.regs[7], 0x87);
}

TEST_F(MegaDrive, PeekChangesNothing) {
    WriteWord(0xC00004, 0x8F02);
    WriteWord(0xC00004, 0x4000);
    md.vdp.status |= kMdVdpCollision;
    const uint32_t pending = md.vdp.pendingSecond;
    const uint32_t address = md.vdp.address;
    uint8_t value = 0;
    for (uint32_t port = 0xC00000; port < 0xC00008; ++port) {
        EXPECT_TRUE(machine->Peek(port, value));
    }
    EXPECT_EQ(md.vdp.pendingSecond, pending);
    EXPECT_EQ(md.vdp.address, address);
    EXPECT_NE(md.vdp.status & kMdVdpCollision, 0);
    EXPECT_FALSE(machine->Peek(0x1000000, value));
}

TEST_F(MegaDrive, DmaReadsRomRamAndTheZ80sMemory) {
    md.z80Ram[0x21] = 0x3C;
    md.workRam[0x11] = 0xBEEF;
    EXPECT_EQ(MdReadForDma(&md, 0x100), 0x5345);
    EXPECT_EQ(MdReadForDma(&md, 0xA00021), 0x3C3C);
    EXPECT_EQ(MdReadForDma(&md, 0xFF0022), 0xBEEF);
    EXPECT_EQ(MdReadForDma(&md, 0xC00022), 0xBEEF);
}

TEST_F(MegaDrive, AcknowledgedInterruptsLowerTheirLines) {
    md.vdp.hPending = 1;
    md.vdp.vPending = 1;
    md.vdp.status |= kMdVdpVInterruptOccurred;
    M68kSetIrqLine(md.cpu, 4, 1);
    M68kSetIrqLine(md.cpu, 6, 1);
    EXPECT_EQ(md.cpu.intAck(&md, 4), 0xFFFFFFFFu);
    EXPECT_EQ(md.vdp.hPending, 0u);
    EXPECT_EQ(md.vdp.vPending, 0u) << "dropped with it";
    EXPECT_NE(md.vdp.status & kMdVdpVInterruptOccurred, 0);
    EXPECT_EQ(md.cpu.irqLines, 1u << 6);
    EXPECT_EQ(md.cpu.intAck(&md, 6), 0xFFFFFFFFu);
    EXPECT_EQ(md.vdp.status & kMdVdpVInterruptOccurred, 0);
    EXPECT_EQ(md.cpu.irqLines, 0u);
    M68kSetIrqLine(md.cpu, 2, 1);
    EXPECT_EQ(md.cpu.intAck(&md, 2), 0xFFFFFFFFu);
    EXPECT_EQ(md.cpu.irqLines, 1u << 2);
}

TEST_F(MegaDrive, MostOfTheZ80sUpperAddressesAreEmpty) {
    TakeZ80Bus();
    const uint32_t open = OpenBus();
    EXPECT_EQ(ReadByte(0xA07F11), 0u);
    EXPECT_EQ(ReadWord(0xA07FFE), 0u);
    EXPECT_EQ(ReadByte(0xA06000), open >> 8);
    EXPECT_EQ(ReadWord(0xA07EFE), open);
    md.fm.status = 3;
    EXPECT_EQ(ReadWord(0xA04000), 0x0303u);
    EXPECT_EQ(ReadByte(0xA05FFF), 3u);
}

TEST_F(MegaDrive, UnusedVideoPortsAreOpenBusInBothHalves) {
    const uint32_t open = OpenBus();
    for (uint32_t port = 0xC00018; port < 0xC00020; ++port) {
        EXPECT_EQ(ReadByte(port), open >> 8) << port;
    }
}

TEST_F(MegaDrive, Z80ReachesTheVideoChipOnBothWays) {
    MD_Z80_BUS bus{md};
    WriteWord(0xC00004, 0x8F02);
    bus.Write(0x7F04, 0x87); // a byte in both halves: register 7
    EXPECT_EQ(md.vdp.regs[7], 0x87);
    md.z80Bank = 0xC00000;
    bus.Write(0x8005, 0x86);
    EXPECT_EQ(md.vdp.regs[6], 0x86);
    EXPECT_EQ(bus.Read(0x8005), kMdVdpVBlank) << "as with any display that is off";
}

TEST_F(MegaDrive, Z80ResetRunsItOnAndResetsTheFmChipEachTime) {
    for (int time = 0; time < 2; ++time) {
        md.fm.dacEnabled = 0x80;
        WriteWord(0xA11200, 0);
        EXPECT_EQ(md.fm.dacEnabled, 0) << time;
        EXPECT_EQ(md.z80.regs[kZ80Pc], 0u) << "reset after its three clocks";
    }
}

// The Z80 itself asks for its bus through its window, and resets itself; what it loses is its own.
TEST_F(MegaDrive, Z80ReachesItsOwnControlRegistersThroughItsWindow) {
    MD_Z80_BUS bus{md};
    md.z80Bank = 0xA10000;
    bus.Write(0x9100, 1);
    EXPECT_EQ(md.z80.busHold, 1u);
    bus.Write(0x9101, 0); // an odd byte is ignored
    EXPECT_EQ(md.z80.busHold, 1u);
    bus.Write(0x9100, 0);
    EXPECT_EQ(md.z80.busHold, 0u);
    md.fm.dacEnabled = 0x80;
    md.z80Bank = 0xA10000;
    bus.Write(0x9200, 0);
    EXPECT_EQ(md.z80.enabled, 0u);
    EXPECT_EQ(md.fm.dacEnabled, 0);
}

// Steps that all write to the register which runs the Z80 on: no program makes such a queue, but a damaged
// state may hold one.
TEST_F(MegaDrive, AZ80ThatRunsItselfOnDoesSoOnce) {
    md.z80.enabled = 1;
    md.z80.running = 1;
    md.z80.queue.fill(static_cast<uint8_t>(Z80Step::kTToMemory));
    md.z80.wz = 0x9100;
    md.z80Bank = 0xA10000;
    const uint32_t before = md.z80.queueIndex;
    MD_Z80_BUS bus{md};
    Z80TickOn(md.z80, bus);
    EXPECT_EQ((md.z80.queueIndex - before) % kZ80QueueSize, 4u) << "its own step and three more";
    EXPECT_FALSE(md.z80HandingOver);
}

TEST_F(MegaDrive, UnusedVideoPortsAreTheSameFromTheZ80AndToALook) {
    const uint32_t open = OpenBus();
    MD_Z80_BUS bus{md};
    for (uint32_t port = 0x18; port < 0x20; ++port) {
        EXPECT_EQ(MdPeekByte(md, 0xC00000 | port), open >> 8) << port;
        EXPECT_EQ(bus.Read(static_cast<uint16_t>(0x7F00 | port)), open >> 8) << port;
    }
}

TEST_F(MegaDrive, PlainCartridgeHasNoMailbox) {
    const uint32_t open = OpenBus();
    WriteWord(0xA15000, 0x1234);
    EXPECT_EQ(ReadWord(0xA15000), open);
}

TEST(MegaDriveSvp, MailboxTakesWordsAtBothAddresses) {
    const auto machine = StartMd(MdProgram().Text(0x150, "Virtua Racing").Stop());
    MEGA_DRIVE& md = machine->Console();
    ASSERT_TRUE(md.cartridge.svp);
    EXPECT_EQ(md.vdp.svpDmaQuirk, 1u);
    MD_SVP& svp = *md.cartridge.svp;
    for (const uint32_t address : {0xA15000u, 0xA15002u}) {
        svp.gr[kSvpXst] = 0;
        svp.emuStatus = kSvpWaitsForPm0;
        MdWriteByte(&md, address, 0x55);
        EXPECT_EQ(svp.gr[kSvpXst] >> 16, 0u) << "a byte is nothing";
        EXPECT_EQ(svp.emuStatus, kSvpWaitsForPm0);
        MdWriteWord(&md, address, 0xABCD);
        EXPECT_EQ(svp.gr[kSvpXst] >> 16, 0xABCDu);
        EXPECT_EQ(svp.emuStatus & kSvpWaits, 0u);
    }
}

TEST(MegaDriveSvp, DmaFromAPageWithoutAHandlerReadsWorkRam) {
    const auto machine = StartMd(MdProgram().Text(0x150, "Virtua Racing").Stop());
    MEGA_DRIVE& md = machine->Console();
    md.workRam[0x123] = 0x4711;
    EXPECT_EQ(MdReadForDma(&md, 0x400246), 0x4711);
    EXPECT_EQ(MdReadForDma(&md, 0x800246), 0x4711);
}

TEST_F(MegaDrive, ResetKeepsTheLinesOfTheZ80AndThePads) {
    WriteWord(0xA11100, 0x100);
    md.io.padTh[1] = 0x40;
    md.io.padEdges[1] = 2;
    machine->Reset();
    EXPECT_EQ(md.z80.busHold, 1u);
    EXPECT_EQ(md.io.padTh[1], 0x40);
    EXPECT_EQ(md.io.padEdges[1], 2u);
}

TEST_F(MegaDrive, ResetIsThePowerOnState) {
    WriteWord(0xFF0000, 1);
    md.z80Ram[0] = 1;
    md.z80Bank = 0x8000;
    MdWriteIo(md.io, 4, 0x40, 0);
    machine->Reset();
    EXPECT_EQ(md.workRam[0], 0);
    EXPECT_EQ(md.z80Ram[0], 0);
    EXPECT_EQ(md.z80Bank, 0u);
    EXPECT_EQ(md.io.ioPorts[4], 0);
    EXPECT_EQ(md.io.ioPorts[1], 0x7F);
    EXPECT_EQ(md.m68kBusCycles, 0u);
    EXPECT_EQ(md.cpu.pc, kMdCodeStart);
    EXPECT_EQ(md.cpu.regs[15], kMdStack);
}

TEST(MegaDriveFrame, LastsAsManyCyclesAsItsLines) {
    for (const bool is50Hz : {false, true}) {
        MD_OPTIONS options = DefaultMdOptions();
        options.console = is50Hz ? kMdConsolePal : kMdConsoleGenesis;
        const auto machine = StartMd(MdProgram().Stop(), options);
        MACHINE_RIG rig;
        rig.Frame(*machine); // the chip starts in mid-line
        const uint32_t start = machine->Console().m68kBusCycles;
        constexpr uint32_t kFrames = 20;
        uint32_t pairs = 0;
        for (uint32_t i = 0; i < kFrames; ++i) {
            rig.Frame(*machine);
            pairs += rig.audio.sampleCount;
        }
        const double cycles = machine->Console().m68kBusCycles - start;
        const double expected = kFrames * 3420.0 * (is50Hz ? 313 : 262) / 7;
        EXPECT_NEAR(cycles, expected, 12.0) << "the last instruction may run over";
        const double seconds = expected * 7 / machine->Console().masterClock;
        EXPECT_NEAR(pairs, seconds * rig.audio.sampleRate, 40.0);
    }
}

TEST(MegaDriveFrame, PictureRecordFollowsTheWidth) {
    const auto machine = StartMd(MdProgram().VdpRegister(1, 0x44).VdpRegister(12, 0x81).Stop());
    MACHINE_RIG rig;
    rig.Frame(*machine);
    rig.Frame(*machine);
    EXPECT_EQ(rig.video.width, 320u);
    EXPECT_EQ(rig.video.height, 240u);
    EXPECT_EQ(rig.video.visibleHeight, 224u);
    EXPECT_EQ(rig.video.visibleY, 8u);
    EXPECT_FLOAT_EQ(rig.video.aspect, 1.33F);
    EXPECT_FLOAT_EQ(rig.video.visibleAspect, 1.4F);
}

TEST(MegaDriveFrame, VerticalInterruptComesOnceAFrame) {
    MdProgram program;
    program.VdpRegister(1, 0x64).Words({0x46FC, 0x2300}).Stop();            // move #$2300,sr
    program.At(kMdVertical).Words({0x52B9}).Long(0xFF0000).Words({0x4E73}); // addq.l #1; rte
    const auto machine = StartMd(program);
    MACHINE_RIG rig;
    rig.Frame(*machine);
    const uint32_t first = MdReadLong(&machine->Console(), 0xFF0000);
    for (int i = 0; i < 10; ++i) {
        rig.Frame(*machine);
    }
    EXPECT_EQ(MdReadLong(&machine->Console(), 0xFF0000) - first, 10u);
}

TEST(MegaDriveFrame, HorizontalInterruptsByTheCounter) {
    for (const int interval : {0, 1, 9}) {
        MdProgram program;
        program.VdpRegister(10, interval).VdpRegister(0, 0x14).Words({0x46FC, 0x2300}).Stop();
        program.At(kMdHorizontal).Words({0x52B9}).Long(0xFF0000).Words({0x4E73});
        const auto machine = StartMd(program);
        MACHINE_RIG rig;
        rig.Frame(*machine);
        rig.Frame(*machine);
        const uint32_t first = MdReadLong(&machine->Console(), 0xFF0000);
        rig.Frame(*machine);
        // The counter runs on lines 0 to 224 as the chip counts them.
        EXPECT_EQ(MdReadLong(&machine->Console(), 0xFF0000) - first,
                  225u / static_cast<uint32_t>(interval + 1))
            << interval;
    }
}

TEST(MegaDriveFrame, Z80RunsItsProgramAndIsInterruptedOnceAFrame) {
    MdProgram program;
    // im 1; ei; loop: inc c; jr loop. At 0x38: inc (0x100); ld b,40; djnz; ei; reti. The line stays
    // high for a whole line, 228 clocks, so the routine takes longer than that.
    program.Bytes(kMdZ80Code, {0xED, 0x56, 0xFB, 0x0C, 0x18, 0xFD});
    program.Bytes(kMdZ80Code + 0x38,
                  {0x21, 0x00, 0x01, 0x34, 0x06, 40, 0x10, 0xFE, 0xFB, 0xED, 0x4D});
    program.StartZ80(0x48).Stop();
    const auto machine = StartMd(program);
    MACHINE_RIG rig;
    rig.Frame(*machine);
    rig.Frame(*machine);
    const uint8_t first = machine->Console().z80Ram[0x100];
    for (int i = 0; i < 10; ++i) {
        rig.Frame(*machine);
    }
    EXPECT_EQ(machine->Console().z80Ram[0x100], first + 10);
}

TEST(MegaDriveFrame, PadsAreReadByTheirNames) {
    MdProgram program;
    program.StoreByte(0xA10009, 0x40).StoreByte(0xA10003, 0x40);
    const uint32_t loop = program.Here();
    // move.b $A10003,$FF0000; bra loop
    program.Words({0x13F9}).Long(0xA10003).Long(0xFF0000);
    program.Words({0x6000, static_cast<int>((loop - program.Here() - 2) & 0xFFFF)});
    const auto machine = StartMd(program);
    MACHINE_RIG rig;
    MACHINE_RIG::Press(L"MEGADRIVE P1 UP", true);
    MACHINE_RIG::Press(L"MEGADRIVE P1 BUTTONC", true);
    rig.Frame(*machine);
    EXPECT_EQ(MdReadByte(&machine->Console(), 0xFF0000), 0x5Eu);
    MACHINE_RIG::Press(L"MEGADRIVE P1 UP", false);
    MACHINE_RIG::Press(L"MEGADRIVE P1 BUTTONC", false);
    rig.Frame(*machine);
    EXPECT_EQ(MdReadByte(&machine->Console(), 0xFF0000), 0x7Fu);
}

TEST(MegaDriveFrame, MixIsScaledByTheOptions) {
    // A tone of the PSG alone.
    MdProgram program;
    program.StoreByte(0xC00011, 0x80).StoreByte(0xC00011, 0x20).StoreByte(0xC00011, 0x90).Stop();
    std::array<double, 3> power{};
    const float volumes[3] = {0.5F, 1.0F, 0.0F};
    for (size_t i = 0; i < power.size(); ++i) {
        MD_OPTIONS options = DefaultMdOptions();
        options.psgVolume = volumes[i];
        const auto machine = StartMd(program, options);
        MACHINE_RIG rig;
        for (int frame = 0; frame < 20; ++frame) {
            rig.Frame(*machine);
        }
        for (uint32_t value = 0; value < rig.audio.sampleCount * 2; ++value) {
            power[i] += std::abs(rig.audio.samples[value]);
        }
    }
    EXPECT_GT(power[0], 0);
    EXPECT_NEAR(power[1] / power[0], 2.0, 0.01);
    EXPECT_EQ(power[2], 0);
}

TEST(MegaDriveFrame, FmGainScalesTheFmChipAndTheMixIsClipped) {
    // The DAC's highest level on both sides of channel 6.
    MdProgram program;
    program.StoreWord(0xA11200, 0x100).StoreWord(0xA11100, 0x100);
    for (const auto& [index, value] : {
             std::pair{0x2B, 0x80},
             std::pair{0x2A, 0xFF}
    }) {
        program.StoreByte(0xA04000, index).StoreByte(0xA04001, value);
    }
    program.Stop();
    int16_t peaks[3] = {};
    const float gains[3] = {1.0F, 2.0F, 16.0F};
    for (size_t i = 0; i < 3; ++i) {
        MD_OPTIONS options = DefaultMdOptions();
        options.ymVolume = gains[i];
        const auto machine = StartMd(program, options);
        MACHINE_RIG rig;
        rig.Frame(*machine);
        rig.Frame(*machine);
        peaks[i] = rig.audio.samples[0];
    }
    EXPECT_NEAR(peaks[0], 127 * 64, 127);
    EXPECT_NEAR(peaks[1], 2 * peaks[0], 2);
    EXPECT_EQ(peaks[2], 32767);
}

TEST(MegaDriveFrame, MixesAsMuchAsTheChipThatIsAheadHas) {
    const auto machine = StartMd(MdProgram().Stop());
    MEGA_DRIVE& md = machine->Console();
    MACHINE_RIG rig;
    for (int i = 0; i < 120; ++i) {
        rig.Frame(*machine);
        EXPECT_TRUE(md.fmSound.Output().empty() || md.psgSound.Output().empty());
        EXPECT_LT(md.fmSound.Output().size(), AudioResampler::kKeptValues) << i;
        EXPECT_LT(md.psgSound.Output().size(), AudioResampler::kKeptValues) << i;
    }
}

// The chip that is ahead sets the count, and the other one catches up with it.
TEST(MegaDriveFrame, MixesAtTheLargerCountAndPullsTheOtherChipUp) {
    for (const bool fmIsAhead : {true, false}) {
        SCOPED_TRACE(fmIsAhead ? "FM" : "PSG");
        const auto machine = StartMd(MdProgram().Stop());
        MEGA_DRIVE& md = machine->Console();
        MACHINE_RIG rig;
        for (int i = 0; i < 3; ++i) {
            rig.Frame(*machine); // the first ones fill the resamplers
        }
        const uint32_t usual = rig.audio.sampleCount;
        ChipSound& ahead = fmIsAhead ? md.fmSound : md.psgSound;
        ChipSound& behind = fmIsAhead ? md.psgSound : md.fmSound;
        // 20 pairs more than the frame brings, whatever the resampler makes of them.
        const int extra = fmIsAhead ? 20 * 53267 / 44100 : 20 * 223722 / 44100;
        for (int i = 0; i < extra; ++i) {
            ahead.pairs.Add(100, 100);
        }
        ahead.Flush();
        EXPECT_FALSE(ahead.Output().empty());
        rig.Frame(*machine);
        EXPECT_GE(rig.audio.sampleCount, usual + 18);
        EXPECT_LE(rig.audio.sampleCount, usual + 22);
        EXPECT_TRUE(ahead.Output().empty()) << "all of it is mixed";
        EXPECT_LT(behind.Output().size(), AudioResampler::kKeptValues);
    }
}

// The processor's STOP shares its flag with the VDP; here the VDP alone stops it.
TEST(MegaDriveFrame, HeldByATransferItTakesItsInterruptAfterwards) {
    MdProgram program;
    // 32 KiB of ROM to VRAM with the picture on takes longer than a frame.
    program.VdpRegister(15, 2).VdpRegister(19, 0).VdpRegister(20, 0x40);
    program.VdpRegister(21, 0).VdpRegister(22, 0).VdpRegister(23, 0);
    program.VdpRegister(1, 0x74).Words({0x46FC, 0x2300});
    program.StoreLong(0xC00004, 0x40000080);
    program.Words({0x23FC}).Long(0x600D600D).Long(0xFF0004).Stop();
    program.At(kMdVertical).Words({0x23F9}).Long(0xFF0004).Long(0xFF0008);
    program.Words({0x52B9}).Long(0xFF0000).Words({0x4E73});
    const auto machine = StartMd(program);
    MEGA_DRIVE& md = machine->Console();
    MACHINE_RIG rig;
    rig.Frame(*machine);
    ASSERT_EQ(md.cpu.stopped, 1u);
    EXPECT_EQ(md.cpu.irqLines, 1u << 6) << "it waits";
    EXPECT_EQ(MdReadLong(&md, 0xFF0000), 0u);
    for (int i = 0; i < 10 && md.cpu.stopped != 0; ++i) {
        rig.Frame(*machine);
    }
    rig.Frame(*machine);
    EXPECT_GT(MdReadLong(&md, 0xFF0000), 0u);
    EXPECT_EQ(MdReadLong(&md, 0xFF0004), 0x600D600Du);
}

TEST(MegaDriveFrame, ResetInstructionMovesNoOtherChip) {
    const auto machine = StartMd(MdProgram().Words({0x4E70, 0x4E70, 0x4E70, 0x4E71}).Stop());
    const auto other = StartMd(MdProgram().Words({0x4E71}).Stop());
    MACHINE_RIG rig;
    rig.Frame(*machine);
    rig.Frame(*other);
    EXPECT_EQ(machine->Console().m68kBusCycles, other->Console().m68kBusCycles);
    EXPECT_EQ(machine->Console().vdp.hCount, other->Console().vdp.hCount);
}

TEST(MegaDriveFrame, IllegalOpcodesDoNotHoldTheFrame) {
    // The illegal instruction's vector leads to an illegal instruction.
    const auto machine =
        StartMd(MdProgram().PutLong(16, 0x300).Words({0x4AFC}).At(0x300).Words({0x00FF}));
    MACHINE_RIG rig;
    for (int i = 0; i < 3; ++i) {
        rig.Frame(*machine);
    }
    EXPECT_FALSE(machine->ended);
    EXPECT_GT(machine->Console().m68kBusCycles, 3u * 120000);
}

TEST(MegaDriveFrame, EveryActionHasItsButton) {
    struct ROW {
        const wchar_t* name;
        uint8_t MD_PAD::*button;
    };
    constexpr ROW kRows[] = {
        {L"UP",      &MD_PAD::up   },
        {L"DOWN",    &MD_PAD::down },
        {L"LEFT",    &MD_PAD::left },
        {L"RIGHT",   &MD_PAD::right},
        {L"START",   &MD_PAD::start},
        {L"MODE",    &MD_PAD::mode },
        {L"BUTTONA", &MD_PAD::a    },
        {L"BUTTONB", &MD_PAD::b    },
        {L"BUTTONC", &MD_PAD::c    },
        {L"BUTTONX", &MD_PAD::x    },
        {L"BUTTONY", &MD_PAD::y    },
        {L"BUTTONZ", &MD_PAD::z    },
    };
    const auto machine = StartMd(MdProgram().Stop());
    MACHINE_RIG rig;
    for (uint32_t player = 0; player < kMdPads; ++player) {
        for (const ROW& row : kRows) {
            const std::wstring name =
                L"MEGADRIVE P" + std::to_wstring(player + 1) + L" " + row.name;
            MACHINE_RIG::Press(name.c_str(), true);
            rig.Frame(*machine);
            MACHINE_RIG::Press(name.c_str(), false);
            MD_PAD expected[2] = {};
            expected[player].*row.button = 1;
            EXPECT_EQ(0, std::memcmp(machine->Console().io.pads.data(), expected, sizeof expected));
        }
    }
}

TEST(MegaDriveFrame, AddressErrorEndsTheMachineWithWords) {
    MdProgram program;
    program.Words({0x3039}).Long(0xFF0001); // move.w $FF0001,d0
    const auto machine = StartMd(program);
    MACHINE_RIG rig;
    EXPECT_FALSE(machine->ended);
    rig.Frame(*machine);
    EXPECT_TRUE(machine->ended);
    EXPECT_NE(machine->endReason.find("0xFF0001"), std::string::npos) << machine->endReason;
    EXPECT_NE(machine->endReason.find("0x000200"), std::string::npos) << machine->endReason;
    rig.Frame(*machine);
    EXPECT_EQ(rig.video.pixels[0], 0xFF000000u);
    machine->Reset();
    EXPECT_FALSE(machine->ended);
}

// The chips that the fast loop owes clocks get them before the machine stops.
TEST(MegaDriveFrame, AddressErrorLeavesTheSameStateInBothLoops) {
    MdProgram program;
    program.Words({0x303C, 999, 0x51C8, 0xFFFE, 0x3039}).Long(0xFF0001); // 1000 times dbra; move.w
    std::vector<std::vector<uint8_t>> states;
    for (const bool plain : {false, true}) {
        const auto machine = StartMd(program);
        machine->SetPlainLoop(plain);
        MACHINE_RIG rig;
        rig.Frame(*machine);
        EXPECT_TRUE(machine->ended);
        uint32_t size = 0;
        const StateBlob blob = machine->SaveState(size);
        states.emplace_back(blob.get(), blob.get() + size);
    }
    EXPECT_TRUE(states[0] == states[1]);
}

// The Z80 asks for its own bus and resets itself through its window, while the 68000 lets it go again.
TEST(MegaDriveFrame, AZ80ThatStopsItselfLeavesTheSameStateInBothLoops) {
    MdProgram program;
    // ld a,(count); inc a; ld (count),a; bank 0xA10000, bit by bit from bit 15; ld a,1; ld (0x9100),a with
    // something after it; then the same by HL, and a reset.
    std::vector<int> code{0x3A, 0x00, 0x01, 0x3C, 0x32, 0x00, 0x01, 0x21, 0x00, 0x60};
    for (const int bit : {0, 1, 0, 0, 0, 0, 1, 0, 1}) {
        code.insert(code.end(), {0x36, bit}); // ld (hl),bit
    }
    code.insert(code.end(),
                {0x3E, 0x01, 0x32, 0x00, 0x91, 0x04, 0x04, 0x04}); // and inc b three times
    code.insert(code.end(), {0x21, 0x00, 0x91, 0x36, 0x01, 0x05}); // ld hl,0x9100; ld (hl),1; dec b
    code.insert(code.end(),
                {0xAF, 0x32, 0x00, 0x92, 0x18, 0xFE}); // xor a; ld (0x9200),a; jr itself
    uint32_t place = kMdZ80Code;
    for (const int byte : code) {
        program.Bytes(place++, {byte});
    }
    program.StartZ80(static_cast<int>(code.size()));
    const uint32_t again = program.Here();
    // Some time; the bus back, the reset line up.
    program.Words({0x303C, 60, 0x51C8, 0xFFFE});
    program.StoreWord(0xA11100, 0).StoreWord(0xA11200, 0x100);
    program.Words({0x6000, static_cast<int>((again - program.Here() - 2) & 0xFFFF)});
    std::vector<std::vector<uint8_t>> states;
    std::vector<uint8_t> turns;
    for (const bool plain : {false, true}) {
        const auto machine = StartMd(program);
        machine->SetPlainLoop(plain);
        MACHINE_RIG rig;
        for (int frame = 0; frame < 3; ++frame) {
            rig.Frame(*machine);
            uint32_t size = 0;
            const StateBlob blob = machine->SaveState(size);
            states.emplace_back(blob.get(), blob.get() + size);
        }
        turns.push_back(machine->Console().z80Ram[0x100]);
    }
    EXPECT_GT(turns[0], 10) << "it gets that far again and again";
    for (size_t frame = 0; frame < 3; ++frame) {
        EXPECT_TRUE(states[frame] == states[frame + 3]) << frame;
    }
}

TEST(MegaDriveFrame, OddResetVectorEndsTheMachine) {
    const auto machine = StartMd(MdProgram().PutLong(4, 0x201).Stop());
    MACHINE_RIG rig;
    rig.Frame(*machine);
    EXPECT_TRUE(machine->ended);
}

// An illegal opcode takes no time, so its routine that begins with another one never gets anywhere. The frame
// ends all the same, at the same point in both loops.
TEST(MegaDriveFrame, EndsThoughItsInstructionsTakeNoTime) {
    constexpr int kNoSuchOpcode = 0x4E78;
    const MdProgram program =
        MdProgram().PutLong(0x10, kMdCodeStart).Words({kNoSuchOpcode, kNoSuchOpcode});
    ASSERT_EQ(m68kCycles[kNoSuchOpcode], 0);
    const auto fast = StartMd(program);
    const auto plain = StartMd(program);
    plain->SetPlainLoop(true);
    MACHINE_RIG rig;
    for (CMegaDrive* machine : {fast.get(), plain.get()}) {
        rig.Frames(*machine, 2);
        EXPECT_FALSE(machine->ended);
        EXPECT_EQ(rig.video.height, 224U + 16);
    }
    EXPECT_EQ(fast->Console().cpu.regs[kM68kA7], plain->Console().cpu.regs[kM68kA7]);
}

} // namespace
