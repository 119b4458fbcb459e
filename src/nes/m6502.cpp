#include "nes/m6502.h"

#include "machine/state_piece.h"

namespace {

struct CALLBACK_BUS {
    M6502& cpu;

    uint8_t Read(uint16_t address) const { return cpu.read(cpu.context, address); }
    void Write(uint16_t address, uint8_t value) const { cpu.write(cpu.context, address, value); }
};

template <typename Visit>
void VisitFields(M6502& cpu, Visit& visit) {
    visit(cpu.pc);
    visit(cpu.a);
    visit(cpu.x);
    visit(cpu.y);
    visit(cpu.sp);
    visit(cpu.p);
    visit(cpu.queue);
    visit(cpu.queueIndex);
    visit(cpu.cycles);
    visit(cpu.opcode);
    visit(cpu.operandRegister);
    visit(cpu.address);
    visit(cpu.data);
    visit(cpu.busValue);
    visit(cpu.nmiLine);
    visit(cpu.irqLines);
    visit(cpu.nmiSeen);
    visit(cpu.irqSeen);
}

// The queue runs without bounds checks: every entry must be a valid step and the last one kEnd.
bool IsRunnable(const M6502& cpu) {
    for (const M6502Step step : cpu.queue) {
        if (step >= M6502Step::kCount) {
            return false;
        }
    }
    return cpu.queue.back() == M6502Step::kEnd && cpu.queueIndex < kM6502QueueSize;
}

void Sanitize(M6502& cpu) {
    cpu.p = static_cast<uint8_t>((cpu.p & ~kM6502FlagB) | kM6502FlagOne);
    cpu.opcode &= 0xFF;
    cpu.operandRegister %= kM6502RegisterCount;
    cpu.data &= 0xFF;
}

} // namespace

void M6502Init(M6502& cpu, void* context, M6502ReadFunction read, M6502WriteFunction write) {
    cpu = M6502{};
    cpu.read = read;
    cpu.write = write;
    cpu.context = context;
}

void M6502Reset(M6502& cpu) {
    CALLBACK_BUS bus{cpu};
    M6502ResetOn(cpu, bus);
}

void M6502Tick(M6502& cpu) {
    CALLBACK_BUS bus{cpu};
    M6502Sample(cpu);
    M6502Cycle(cpu, bus);
}

bool M6502IsAlike(const M6502& one, const M6502& other) {
    const auto isAlike = [&](const auto... field) { return ((one.*field == other.*field) && ...); };
    return isAlike(&M6502::pc, &M6502::a, &M6502::x, &M6502::y, &M6502::sp, &M6502::p,
                   &M6502::queue, &M6502::queueIndex, &M6502::opcode, &M6502::operandRegister,
                   &M6502::address, &M6502::data, &M6502::busValue, &M6502::nmiLine,
                   &M6502::irqLines, &M6502::nmiSeen, &M6502::irqSeen);
}

uint32_t M6502StateSize() {
    M6502 cpu;
    return StatePieceSize([&](auto& visit) { VisitFields(cpu, visit); });
}

StateOut M6502SaveState(const M6502& cpu, StateOut out) {
    M6502 copy = cpu;
    return StatePieceWrite(out, [&](auto& visit) { VisitFields(copy, visit); });
}

uint32_t M6502LoadState(M6502& cpu, const uint8_t* data, uint32_t size) {
    M6502 loaded = cpu;
    const uint32_t used =
        StatePieceRead(data, size, [&](auto& visit) { VisitFields(loaded, visit); });
    if (used == 0 || !IsRunnable(loaded)) {
        return 0;
    }
    Sanitize(loaded);
    cpu = loaded;
    return used;
}
