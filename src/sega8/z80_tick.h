// The Z80's clock, inlined into a machine's frame loop. Included by z80.h.
//
// Z80TickOn has the most frequent clocks: idle, fetch, decode and end. Operand accesses are in
// TransferStep; steps without an access are compiled once, in z80_operate.cpp.
#pragma once

#include "sega8/z80.h"
#include "sega8/z80_steps.h"
#include "sega8/z80_tables.h"

// The steps without an access; an unknown step does nothing.
void Z80Operate(Z80& z80, Z80Step step);
// Writes the template of the opcode that was fetched.
void Z80Decode(Z80& z80);
// Decoders of opcodes without a prefix, by the opcode.
using Z80DecodeTable = std::array<void (*)(Z80&), 256>;
extern const Z80DecodeTable kZ80BaseTable;
// The second decode of DD CB and FD CB.
void Z80DecodeIndexed(Z80& z80);
void Z80StartInterrupt(Z80& z80);

namespace z80_detail {

inline uint8_t LowByte(uint32_t word) {
    return static_cast<uint8_t>(word & 0xFF);
}

inline uint32_t SignExtended(uint8_t value) {
    return static_cast<uint32_t>(static_cast<int8_t>(value));
}

inline uint8_t HighByte(uint32_t word) {
    return static_cast<uint8_t>((word >> 8) & 0xFF);
}

inline void SetLowByte(uint32_t& word, uint8_t value) {
    word = (word & 0xFF00) | value;
}

inline void SetHighByte(uint32_t& word, uint8_t value) {
    word = (word & 0x00FF) | (uint32_t{value} << 8);
}

inline uint16_t Address(uint32_t word) {
    return static_cast<uint16_t>(word & 0xFFFF);
}

// Adds to a register, modulo 0x10000; 0xFFFF subtracts 1.
inline void Advance(uint32_t& word, uint32_t by) {
    word = (word + by) & 0xFFFF;
}

// The register that the steps work on. An invalid index of a state selects the spare word.
inline uint32_t& Indexed(Z80& z80) {
    return z80.regs[z80.regIndex < kZ80RegisterCount ? z80.regIndex : uint32_t{kZ80SparePrime}];
}

// A sampling point: releases the bus if the owner requests it.
inline void Sample(Z80& z80) {
    if (z80.busHold != 0) {
        z80.running = 0;
    }
}

inline void End(Z80& z80) {
    Sample(z80);
    z80.queueIndex = 0;
    if (z80.prefix != kZ80NoPrefix || (z80.nmiEdge | z80.irqLine) == 0) {
        return;
    }
    if (z80.nmiEdge != 0) {
        z80.nmiEdge = 0;
        z80.pendingInterrupt = kZ80Nmi;
    } else if (z80.irqLine != 0 && z80.iff1 != 0 && z80.eiDelay == 0) {
        z80.pendingInterrupt = kZ80Maskable;
    }
}

inline void Start(Z80& z80) {
    z80.eiDelay = 0;
    if (z80.pendingInterrupt != kZ80NoInterrupt) {
        Z80StartInterrupt(z80);
    } else {
        z80.queue[z80.queueIndex] = static_cast<uint8_t>(Z80Step::kFetch);
        z80.queue[z80.queueIndex + 1] = static_cast<uint8_t>(Z80Step::kDecode);
    }
    z80.program = nullptr; // until the decode: z80_run.h expects no decode in a program
}

template <typename Bus>
inline uint8_t ReadOperand(Z80& z80, Bus& bus) {
    const uint8_t value = bus.Read(Address(z80.regs[kZ80Pc]));
    Advance(z80.regs[kZ80Pc], 1);
    return value;
}

template <typename Bus>
inline void Push(Z80& z80, Bus& bus, uint8_t value) {
    Advance(z80.regs[kZ80Sp], 0xFFFF);
    bus.Write(Address(z80.regs[kZ80Sp]), value);
}

template <typename Bus>
inline uint8_t Pop(Z80& z80, Bus& bus) {
    const uint8_t value = bus.Read(Address(z80.regs[kZ80Sp]));
    Advance(z80.regs[kZ80Sp], 1);
    return value;
}

// The flags of IN r,(C). It keeps the carry.
inline void SetInputFlags(Z80& z80, uint8_t value) {
    const uint32_t carry = z80.regs[kZ80Af] & kZ80FlagC;
    SetLowByte(z80.regs[kZ80Af], static_cast<uint8_t>(kZ80FlagsParity[value] | carry));
}

// The steps that access an operand, the stack or a port.
template <typename Bus>
inline void TransferStep(Z80& z80, Bus& bus, Z80Step step) {
    using enum Z80Step;
    // Looked up by the steps that need it.
    const auto word = [&]() -> uint32_t& { return Indexed(z80); };
    const uint16_t address = Address(z80.wz);
    const uint16_t next = Address(z80.wz + 1);
    switch (step) {
    case kPortToLow: SetLowByte(word(), bus.IoRead(address)); break;
    case kPortToHigh: SetHighByte(word(), bus.IoRead(address)); break;
    case kPortToWzLow: SetLowByte(z80.wz, bus.IoRead(address)); break;
    case kPortToT: SetLowByte(z80.temp, bus.IoRead(address)); break;
    case kLowToPort: bus.IoWrite(address, LowByte(word())); break;
    case kHighToPort: bus.IoWrite(address, HighByte(word())); break;
    case kTToPort: bus.IoWrite(address, LowByte(z80.temp)); break;
    case kPortToLowFlags:
        SetLowByte(word(), bus.IoRead(address));
        SetInputFlags(z80, LowByte(word()));
        break;
    case kPortToHighFlags:
        SetHighByte(word(), bus.IoRead(address));
        SetInputFlags(z80, HighByte(word()));
        break;
    case kPortToTFlags:
        SetLowByte(z80.temp, bus.IoRead(address));
        SetInputFlags(z80, LowByte(z80.temp));
        break;
    case kOperandToWzLow: SetLowByte(z80.wz, ReadOperand(z80, bus)); break;
    case kOperandToWzHigh: SetHighByte(z80.wz, ReadOperand(z80, bus)); break;
    case kOperandToLow: SetLowByte(word(), ReadOperand(z80, bus)); break;
    case kOperandToHigh: SetHighByte(word(), ReadOperand(z80, bus)); break;
    case kOperandToT: SetLowByte(z80.temp, ReadOperand(z80, bus)); break;
    case kDisplacement: Advance(z80.wz, SignExtended(ReadOperand(z80, bus))); break;
    case kTempHighToNext: bus.Write(next, HighByte(z80.temp)); break;
    case kTToMemoryFirst:
    case kTToMemory: bus.Write(address, LowByte(z80.temp)); break;
    case kLowToMemoryFirst:
    case kLowToMemory: bus.Write(address, LowByte(word())); break;
    case kHighToNext: bus.Write(next, HighByte(word())); break;
    case kHighToMemory: bus.Write(address, HighByte(word())); break;
    case kMemoryToLowFirst:
    case kMemoryToLow: SetLowByte(word(), bus.Read(address)); break;
    case kNextToHigh: SetHighByte(word(), bus.Read(next)); break;
    case kMemoryToHigh: SetHighByte(word(), bus.Read(address)); break;
    case kMemoryToT: SetLowByte(z80.temp, bus.Read(address)); break;
    case kMemoryToWzLow: SetLowByte(z80.wz, bus.Read(address)); break;
    case kPushWzLow: Push(z80, bus, LowByte(z80.wz)); break;
    case kPushWzHigh: Push(z80, bus, HighByte(z80.wz)); break;
    case kPushLow: Push(z80, bus, LowByte(word())); break;
    case kPushHigh: Push(z80, bus, HighByte(word())); break;
    case kPopWzLow: SetLowByte(z80.wz, Pop(z80, bus)); break;
    case kPopWzHigh: SetHighByte(z80.wz, Pop(z80, bus)); break;
    case kPopLow: SetLowByte(word(), Pop(z80, bus)); break;
    case kPopHigh: SetHighByte(word(), Pop(z80, bus)); break;
    case kIndexedOpcode: z80.opcode = ReadOperand(z80, bus); break;
    default: Z80Operate(z80, step); break;
    }
}

} // namespace z80_detail

template <typename Bus>
inline void Z80TickOn(Z80& z80, Bus& bus) {
    using enum Z80Step;
    if (z80.enabled == 0) {
        return;
    }
    if (z80.running == 0) {
        z80.running = z80.busHold == 0 ? 1 : 0; // the restart takes this clock
        return;
    }
    const uint32_t index = z80.queueIndex % kZ80QueueSize;
    const Z80Step step{z80.queue[index]};
    z80.queueIndex = (index + 1) % kZ80QueueSize;
    if (step == kIdle) { // the most frequent step
        return;
    }
    switch (step) {
    case kFetch:
        z80.opcode = bus.ReadOpcode(z80_detail::Address(z80.regs[kZ80Pc]));
        z80_detail::Advance(z80.regs[kZ80Pc], 1);
        break;
    case kStart: z80_detail::Start(z80); break;
    case kSample:
    case kSampleAgain: z80_detail::Sample(z80); break;
    case kSampleAndEnd:
    case kEnd: z80_detail::End(z80); break;
    case kDecode:
        z80.r7 = (z80.r7 + 1) & 0xFF;
        Z80Decode(z80);
        break;
    default: z80_detail::TransferStep(z80, bus, step); break;
    }
}
