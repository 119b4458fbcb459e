#include "megadrive/md_z80_ahead.h"

#include "megadrive/md_bus.h"
#include "sega8/z80_idle.h"
#include "sega8/z80_tick.h"

#include <algorithm>

namespace {

constexpr uint32_t kMostHalted = 1 << 17; // clocks; more than a frame of 313 lines
constexpr uint32_t kFmEnd = 0x6000;       // of the FM chip's addresses, which follow the RAM's
constexpr uint32_t kVdpPage = 0x7F00;
constexpr uint32_t kWindowStart = 0x8000;
constexpr uint32_t kFirstRamPage = 0xE0; // of the 68000's map, from where pages aren't ROM

// The Z80's bus as far as only the Z80 sees it. Any other access is left out and ends the run. The status of the
// FM chip doesn't change during a run.
struct PRIVATE_BUS {
    explicit PRIVATE_BUS(MEGA_DRIVE& mdValue)
        : md(mdValue) {
        ++md.z80Ahead.effects; // the status may be another than in the run before
    }

    MEGA_DRIVE& md;
    uint32_t clock = 0;
    enum class MET : uint32_t {
        kNothing,
        kRead,
        kWrite
    } met{}; // an access that others see, at `clock`

    void At(uint32_t now) { clock = now; }
    [[nodiscard]] bool Stops() const { return met != MET::kNothing; }
    uint32_t SkipIdle(Z80& z80, uint32_t now, uint32_t left) {
        return md.z80Ahead.idle.Skip(z80, md.z80Ahead.effects, now, left);
    }

    uint8_t Read(uint16_t address) {
        if (address < kMdZ80RamEnd) [[likely]] {
            return md.z80Ram[address % kMdZ80RamBytes];
        }
        return ReadBeyondRam(address);
    }
    uint8_t ReadOpcode(uint16_t address) {
        const uint8_t opcode = Read(address);
        if (Z80UsesRefresh(md.z80, opcode)) [[unlikely]] {
            ++md.z80Ahead.effects;
        }
        return opcode;
    }
    static uint8_t IoRead(uint16_t port) { return MD_Z80_BUS::IoRead(port); }
    static void IoWrite(uint16_t port, uint8_t value) { MD_Z80_BUS::IoWrite(port, value); }
    void Write(uint16_t address, uint8_t value) {
        if (address >= kMdZ80RamEnd) [[unlikely]] {
            met = MET::kWrite;
            return;
        }
        uint8_t& byte = md.z80Ram[address % kMdZ80RamBytes];
        if (byte != value) {
            MD_Z80_AHEAD& ahead = md.z80Ahead;
            ahead.log[ahead.writes++ % ahead.log.size()] = {address, byte};
            byte = value;
            ++md.z80Ahead.effects;
        }
    }

private:
    [[gnu::noinline]] uint8_t ReadBeyondRam(uint16_t address) {
        if (address < kFmEnd) {
            return md.fm.status;
        }
        if (address < kVdpPage) {
            return 0xFF; // nothing answers
        }
        const uint32_t page = md.z80Bank >> 16;
        if (address >= kWindowStart && page < kFirstRamPage && md.cpu.readPages[page] != nullptr) {
            return MdPeekByte(md, md.z80Bank | (address - kWindowStart));
        }
        met = MET::kRead;
        return 0;
    }
};

// Off its bus or in reset the Z80 does nothing.
bool IsHalted(const Z80& z80) {
    return z80.enabled == 0 || (z80.running == 0 && z80.busHold != 0);
}

// Clocks in which the FM chip's status stays. Clock n, counted from 0, comes before 68000 cycle
// (15 (n + 1) - z80Clock) / 7, because a 68000 instruction owes its master clocks from its start.
uint32_t ClocksOfFmStatus(MEGA_DRIVE& md) {
    uint32_t toStatus = Ym2612ClocksToStatus(md.fm);
    if (toStatus <= md.fmOwed) {
        MdCatchUpFm(md);
        toStatus = Ym2612ClocksToStatus(md.fm);
    }
    const uint32_t cycles = std::min(toStatus - md.fmOwed, kMdZ80MostAhead * 4);
    const int32_t clocks =
        (static_cast<int32_t>(cycles * kMdCycleClocks) + md.z80Clock) / kMdZ80Clocks;
    return static_cast<uint32_t>(std::max(clocks, 0));
}

void GoBack(MEGA_DRIVE& md) {
    MD_Z80_AHEAD& ahead = md.z80Ahead;
    while (ahead.writes != 0) {
        const MD_Z80_AHEAD::WRITE& last = ahead.log[--ahead.writes];
        md.z80Ram[last.address % kMdZ80RamBytes] = last.before;
    }
    md.z80 = ahead.start;
}

// Runs clocks of which is known that others don't see them.
void RunPrivate(MEGA_DRIVE& md, uint32_t clocks) {
    PRIVATE_BUS bus(md);
    static_cast<void>(Z80RunOn(md.z80, bus, clocks));
}

// Undoes the step whose write was left out. A write is the last that a step does; a push has moved SP before.
void StepBack(Z80& z80) {
    z80.queueIndex = (z80.queueIndex - 1) % kZ80QueueSize;
    const Z80Step step{z80.queue[z80.queueIndex]};
    if (step >= Z80Step::kPushWzLow && step <= Z80Step::kPushHigh) {
        z80_detail::Advance(z80.regs[kZ80Sp], 1);
    }
}

// Returns how far it came.
uint32_t RunToVisible(MEGA_DRIVE& md) {
    if (IsHalted(md.z80)) {
        return kMostHalted;
    }
    if (md.z80.running == 0 || md.z80.busHold != 0) {
        return 0;
    }
    const uint32_t most = std::min(ClocksOfFmStatus(md), kMdZ80MostAhead);
    md.z80Ahead.start = md.z80;
    md.z80Ahead.writes = 0;
    PRIVATE_BUS bus(md);
    static_cast<void>(Z80RunOn(md.z80, bus, most));
    if (bus.met == PRIVATE_BUS::MET::kWrite) {
        StepBack(md.z80);
    } else if (bus.met == PRIVATE_BUS::MET::kRead) {
        GoBack(md);
        RunPrivate(md, bus.clock);
    }
    return bus.Stops() ? bus.clock : most;
}

} // namespace

void MdCatchUpZ80(MEGA_DRIVE& md) {
    if (md.z80Deadline == kMdZ80Clocks) {
        return;
    }
    md.z80Deadline = kMdZ80Clocks;
    const auto clocks = static_cast<uint32_t>(std::max(md.z80Clock, 0) / kMdZ80Clocks);
    md.z80Clock -= static_cast<int32_t>(clocks) * kMdZ80Clocks;
    md.psgOwed += clocks;
    if (clocks != md.z80Ahead.clocks && !IsHalted(md.z80)) {
        GoBack(md);
        RunPrivate(md, clocks);
    }
}

uint32_t MdSettleZ80(MEGA_DRIVE& md, uint32_t cycles) {
    const auto added = static_cast<int32_t>(cycles * kMdCycleClocks);
    const int32_t before = md.z80Clock - added;
    const auto past = static_cast<uint32_t>(std::max(before, 0) / kMdZ80Clocks);
    const uint32_t here = md.z80Ahead.clocks - past;
    if (md.z80Clock >= md.z80Deadline && md.z80Deadline != kMdZ80Clocks &&
        md.vdpOwed + here < md.vdpToEvent) {
        md.z80Deadline = kMdZ80Clocks;
        md.z80Clock -= static_cast<int32_t>(md.z80Ahead.clocks) * kMdZ80Clocks;
        md.psgOwed += md.z80Ahead.clocks;
        md.vdpOwed += here;
        md.fmOwed += here;
        return here;
    }
    md.z80Clock = before;
    MdCatchUpZ80(md);
    md.z80Clock += added;
    return 0;
}

void MdRunZ80Ahead(MEGA_DRIVE& md) {
    if (md.z80Clock < kMdZ80Clocks) {
        md.z80Ahead.clocks = RunToVisible(md);
        md.z80Deadline = kMdZ80Clocks * static_cast<int32_t>(md.z80Ahead.clocks + 1);
    }
}
