#include "sega8/z80.h"

#include "machine/state_piece.h"
#include "sega8/z80_idle.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t kAfAtReset = 0x0040;
constexpr uint32_t kIndexAtReset = 0xFFFF;

// A bus of the four callbacks.
struct CALLBACK_BUS {
    Z80& z80;

    uint8_t Read(uint16_t address) const { return z80.read(z80.context, address, 0); }
    uint8_t ReadOpcode(uint16_t address) const { return z80.read(z80.context, address, 1); }
    uint8_t IoRead(uint16_t port) const { return z80.ioRead(z80.context, port); }
    void Write(uint16_t address, uint8_t value) const { z80.write(z80.context, address, value); }
    void IoWrite(uint16_t port, uint8_t value) const { z80.ioWrite(z80.context, port, value); }
};

// Visits a field in the width that a state has for it.
template <typename Saved, typename Visit>
void VisitAs(Visit& visit, uint32_t& field) {
    auto saved = static_cast<Saved>(field);
    visit(saved);
    field = saved;
}

// The fields of a state, in order.
template <typename Visit>
void VisitFields(Z80& z80, Visit& visit) {
    std::array<uint8_t, kZ80QueueSize> queue{};
    std::memcpy(queue.data(), z80.queue.data(), queue.size());
    visit(queue);
    std::memcpy(z80.queue.data(), queue.data(), queue.size());
    for (uint32_t* field :
         {&z80.queueIndex, &z80.r7, &z80.r8, &z80.iff1, &z80.iff2, &z80.halted, &z80.im, &z80.i,
          &z80.pendingInterrupt, &z80.irqLine, &z80.nmiEdge, &z80.prefix, &z80.busHold,
          &z80.running, &z80.enabled, &z80.eiDelay, &z80.opcode, &z80.regIndex}) {
        VisitAs<uint8_t>(visit, *field);
    }
    VisitAs<uint16_t>(visit, z80.temp);
    VisitAs<uint16_t>(visit, z80.wz);
    for (uint32_t i = 0; i < kZ80RegisterCount; ++i) {
        VisitAs<uint16_t>(visit, z80.regs[i]);
    }
}

// Brings what indexes the queue and the registers into range; other fields are masked where they
// are used.
void Sanitize(Z80& z80) {
    z80.queueIndex %= kZ80QueueSize;
    z80.regIndex = std::min(z80.regIndex, kZ80LastRegisterByte);
}

} // namespace

void Z80Init(Z80& z80, void* context, Z80ReadFunction read, Z80IoReadFunction ioRead,
             Z80WriteFunction write, Z80IoWriteFunction ioWrite) {
    z80 = Z80{};
    z80.read = read;
    z80.ioRead = ioRead;
    z80.write = write;
    z80.ioWrite = ioWrite;
    z80.context = context;
}

void Z80Reset(Z80& z80) {
    const Z80 before = z80;
    Z80Init(z80, before.context, before.read, before.ioRead, before.write, before.ioWrite);
    z80.irqLine = before.irqLine;
    z80.nmiEdge = before.nmiEdge;
    z80.busHold = before.busHold;
    z80.running = before.running;
    z80.enabled = before.enabled;
    z80.regs[kZ80Af] = kAfAtReset;
    z80.regs[kZ80Ix] = kIndexAtReset;
    z80.regs[kZ80Iy] = kIndexAtReset;
    z80.queue[0] = static_cast<uint8_t>(Z80Step::kStart);
}

void Z80Tick(Z80& z80) {
    CALLBACK_BUS bus{z80};
    Z80TickOn(z80, bus);
}

bool Z80IsAlike(const Z80& one, const Z80& other) {
    const auto isAlike = [&](const auto... field) { return ((one.*field == other.*field) && ...); };
    return isAlike(&Z80::regs, &Z80::queueIndex, &Z80::program, &Z80::programAt, &Z80::r8, &Z80::i,
                   &Z80::iff1, &Z80::iff2, &Z80::halted, &Z80::im, &Z80::temp, &Z80::wz,
                   &Z80::pendingInterrupt, &Z80::irqLine, &Z80::nmiEdge, &Z80::prefix,
                   &Z80::busHold, &Z80::running, &Z80::enabled, &Z80::eiDelay, &Z80::opcode,
                   &Z80::regIndex, &Z80::queue);
}

uint32_t Z80StateSize() {
    Z80 z80;
    return StatePieceSize([&](auto& visit) { VisitFields(z80, visit); });
}

StateOut Z80SaveState(const Z80& z80, StateOut out) {
    Z80 copy = z80;
    return StatePieceWrite(out, [&](auto& visit) { VisitFields(copy, visit); });
}

uint32_t Z80LoadState(Z80& z80, const uint8_t* data, uint32_t size) {
    Z80 loaded = z80;
    Z80Reset(loaded);
    const uint32_t used =
        StatePieceRead(data, size, [&](auto& visit) { VisitFields(loaded, visit); });
    if (used != 0) {
        Sanitize(loaded);
        z80 = loaded;
    }
    return used;
}
