#include "megadrive/md_console.h"

#include "machine/sound_settings.h"
#include "megadrive/md_bus.h"

#include <algorithm>

namespace {

constexpr uint32_t kPsgModel = 1;
constexpr uint32_t kPsgDivider = 15;
constexpr uint32_t kFmDivider = 7;
constexpr uint32_t kHorizontalLevel = 4;
constexpr uint32_t kVerticalLevel = 6;
constexpr uint32_t kFirstRamPage = 0xE0; // the work RAM and its mirrors go on to the last page

MEGA_DRIVE& Machine(void* owner) {
    return *static_cast<MEGA_DRIVE*>(owner);
}

// Either level clears vPending, so a horizontal interrupt that is taken drops a vertical one that still waits.
uint32_t AckInterrupt(void* owner, uint32_t level) {
    MEGA_DRIVE& md = Machine(owner);
    if (level != kHorizontalLevel && level != kVerticalLevel) {
        return kM68kAutovector;
    }
    MdCatchUpVdp(md);
    if (level == kHorizontalLevel) {
        md.vdp.hPending = 0;
    } else {
        md.vdp.status &= static_cast<uint16_t>(~kMdVdpVInterruptOccurred);
    }
    md.vdp.vPending = 0;
    M68kSetIrqLine(md.cpu, level, 0);
    return kM68kAutovector;
}

void ConnectCpu(MEGA_DRIVE& md) {
    md.cpu.owner = &md;
    md.cpu.intAck = AckInterrupt;
    md.cpu.readImmediate = MdReadWord;
    md.cpu.readByte = MdReadByte;
    md.cpu.readWord = MdReadWord;
    md.cpu.readLong = MdReadLong;
    md.cpu.writeByte = MdWriteByte;
    md.cpu.writeWord = MdWriteWord;
    md.cpu.writeLong = MdWriteLong;
    for (uint32_t page = 0; page < kFirstRamPage; ++page) {
        md.cpu.readPages[page] = MdCartPlainPage(md.cartridge, page);
        md.cpu.writePages[page] = nullptr;
    }
    for (uint32_t page = kFirstRamPage; page < md.cpu.readPages.size(); ++page) {
        md.cpu.readPages[page] = md.workRam.data();
        md.cpu.writePages[page] = md.workRam.data();
    }
}

void ConnectZ80(MEGA_DRIVE& md) {
    Z80Init(
        md.z80, &md,
        [](void* owner, uint32_t address, uint32_t /*isOpcodeFetch*/) {
            return MD_Z80_BUS{Machine(owner)}.Read(static_cast<uint16_t>(address));
        },
        [](void* /*owner*/, uint32_t port) {
            return MD_Z80_BUS::IoRead(static_cast<uint16_t>(port));
        },
        [](void* owner, uint32_t address, uint8_t value) {
            MD_Z80_BUS{Machine(owner)}.Write(static_cast<uint16_t>(address), value);
        },
        [](void* /*owner*/, uint32_t port, uint8_t value) {
            MD_Z80_BUS::IoWrite(static_cast<uint16_t>(port), value);
        });
}

void ForgetOwed(MEGA_DRIVE& md) {
    md.vdpOwed = 0;
    md.fmOwed = 0;
    md.psgOwed = 0;
    md.vdpToEvent = 0;
    md.z80Deadline = kMdZ80Clocks; // the Z80 isn't ahead
}

} // namespace

void MdConnect(MEGA_DRIVE& md) {
    md.cpu = {};
    ConnectCpu(md);
    ConnectZ80(md);
    PsgInit(md.psg, md.masterClock / kPsgDivider, kPsgModel, false);
    Ym2612SetClock(md.fm, md.masterClock / kFmDivider);
    md.psg.pairs = &md.psgSound.pairs;
    md.fm.pairs = &md.fmSound.pairs;
    const SOUND_CHOICE choice = SoundChoiceFromSettings();
    md.psgSound.Init(md.psg.clock / double{kPsgClocksPerPair}, choice);
    md.fmSound.Init(md.fm.clock / double{kYm2612ClocksPerSample}, choice);
    MdVdpInit(
        md.vdp, &md,
        [](void* owner, uint32_t line, uint32_t state) {
            M68kSetIrqLine(Machine(owner).cpu, line, state);
        },
        MdReadForDma, &md.z80.irqLine, &md.cpu.stopped, md.is50Hz ? kMdVdp50Hz : kMdVdp60Hz);
    md.vdp.svpDmaQuirk = md.cartridge.svpDmaQuirk;
}

void MdReset(MEGA_DRIVE& md) {
    md.workRam.fill(0);
    md.z80Ram.fill(0);
    md.z80Bank = 0;
    Ym2612Reset(md.fm);
    // The FM chip's own reset, which programs drive in mid-frame, keeps the samples of that frame.
    md.fm.tickCount = 0;
    md.fmSound.Reset();
    md.psgSound.Reset();
    MdVdpReset(md.vdp);
    PsgReset(md.psg);
    md.z80Clock = 0;
    ForgetOwed(md);
    MdIoReset(md.io);
    Z80Reset(md.z80);
    md.m68kBusCycles = 0;
    M68kReset(md.cpu);
    MdCartReset(md.cartridge);
}

void MdSanitize(MEGA_DRIVE& md) {
    constexpr int32_t kMostDebt = 1 << 20; // master clocks; far more than any instruction takes
    ForgetOwed(md);
    md.openBusRead = false;
    md.z80HandingOver = false;
    md.z80Clock = std::clamp(md.z80Clock, -kMostDebt, kMostDebt);
    md.z80Bank &= kMdZ80BankMask;
    for (size_t port = 0; port < kMdPads; ++port) {
        md.io.padTh[port] &= kMdIoTh;
    }
}
