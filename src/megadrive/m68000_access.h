// The processor's side of the bus: fetches through the one-word queue, data accesses that check for odd
// addresses, and direct access to pages of plain memory.
#pragma once

#include "base/bytes.h"
#include "megadrive/m68000.h"

// The lower bits of a function code; s is the upper one.
enum M68kSpace : uint32_t { kM68kData = 1, kM68kProgram = 2 };

// Records the fault and throws M68K_ADDRESS_ERROR.
[[noreturn]] void M68kAddressError(M68K_STATE& cpu, uint32_t address, M68kAccess access,
                                   uint32_t functionCode);

inline constexpr uint32_t kM68kAddressMask = 0xFFFFFF;
inline constexpr uint32_t kM68kPageMask = 0xFFFF;
// A long at the last word of a page reaches into the next one, so it goes to the callback.
inline constexpr uint32_t kM68kLastWordOfPage = 0xFFFE;

inline uint32_t M68kPageOf(uint32_t address) {
    return address >> 16 & (kM68kPages - 1);
}

inline const uint8_t* M68kInPage(const uint16_t* page, uint32_t offset) {
    return reinterpret_cast<const uint8_t*>(page) + offset;
}

inline uint8_t* M68kInPage(uint16_t* page, uint32_t offset) {
    return reinterpret_cast<uint8_t*>(page) + offset;
}

inline uint32_t M68kPageWord(const uint16_t* page, uint32_t offset) {
    return LoadLittleEndian<uint16_t>(M68kInPage(page, offset));
}

inline void M68kSetPageWord(uint16_t* page, uint32_t offset, uint32_t value) {
    StoreLittleEndian(M68kInPage(page, offset), static_cast<uint16_t>(value));
}

inline uint32_t M68kReadImmediate(const M68K_STATE& cpu, uint32_t address) {
    if (const uint16_t* page = cpu.readPages[M68kPageOf(address)]; page != nullptr) {
        return M68kPageWord(page, address & kM68kLastWordOfPage);
    }
    return cpu.readImmediate(cpu.owner, address & kM68kAddressMask) & 0xFFFF;
}

// The next word of the program, taken from the queue, which is refilled at once: a write to the word after a
// fetched one comes too late. pc is even here, since the tick checks it and an instruction moves it by whole
// words until its last fetch.
inline uint32_t M68kFetchWord(M68K_STATE& cpu) {
    if (cpu.pc != cpu.prefetchAddr) [[unlikely]] {
        cpu.prefetchAddr = cpu.pc;
        cpu.prefetchData = M68kReadImmediate(cpu, cpu.pc);
    }
    const uint32_t word = cpu.prefetchData & 0xFFFF;
    cpu.pc += 2;
    cpu.prefetchAddr = cpu.pc;
    cpu.prefetchData = M68kReadImmediate(cpu, cpu.pc);
    return word;
}

inline uint32_t M68kFetchLong(M68K_STATE& cpu) {
    const uint32_t high = M68kFetchWord(cpu);
    return high << 16 | M68kFetchWord(cpu);
}

inline uint32_t M68kReadByte(M68K_STATE& cpu, uint32_t address) {
    if (const uint16_t* page = cpu.readPages[M68kPageOf(address)]; page != nullptr) {
        return *M68kInPage(page, (address & kM68kPageMask) ^ 1);
    }
    return cpu.readByte(cpu.owner, address & kM68kAddressMask) & 0xFF;
}

inline uint32_t M68kReadWord(M68K_STATE& cpu, uint32_t address, M68kSpace space = kM68kData) {
    if ((address & 1) != 0) [[unlikely]] {
        M68kAddressError(cpu, address, kM68kReading, cpu.s | space);
    }
    if (const uint16_t* page = cpu.readPages[M68kPageOf(address)]; page != nullptr) {
        return M68kPageWord(page, address & kM68kPageMask);
    }
    return cpu.readWord(cpu.owner, address & kM68kAddressMask) & 0xFFFF;
}

inline uint32_t M68kReadLong(M68K_STATE& cpu, uint32_t address, M68kSpace space = kM68kData) {
    if ((address & 1) != 0) [[unlikely]] {
        M68kAddressError(cpu, address, kM68kReading, cpu.s | space);
    }
    const uint32_t offset = address & kM68kPageMask;
    const uint16_t* page = cpu.readPages[M68kPageOf(address)];
    if (page != nullptr && offset != kM68kLastWordOfPage) {
        return M68kPageWord(page, offset) << 16 | M68kPageWord(page, offset + 2);
    }
    return cpu.readLong(cpu.owner, address & kM68kAddressMask);
}

inline void M68kWriteByte(M68K_STATE& cpu, uint32_t address, uint32_t value) {
    if (uint16_t* page = cpu.writePages[M68kPageOf(address)]; page != nullptr) {
        *M68kInPage(page, (address & kM68kPageMask) ^ 1) = static_cast<uint8_t>(value);
        return;
    }
    cpu.writeByte(cpu.owner, address & kM68kAddressMask, value & 0xFF);
}

inline void M68kWriteWord(M68K_STATE& cpu, uint32_t address, uint32_t value) {
    if ((address & 1) != 0) [[unlikely]] {
        M68kAddressError(cpu, address, kM68kWriting, cpu.s | kM68kData);
    }
    if (uint16_t* page = cpu.writePages[M68kPageOf(address)]; page != nullptr) {
        M68kSetPageWord(page, address & kM68kPageMask, value);
        return;
    }
    cpu.writeWord(cpu.owner, address & kM68kAddressMask, value & 0xFFFF);
}

inline void M68kWriteLong(M68K_STATE& cpu, uint32_t address, uint32_t value) {
    if ((address & 1) != 0) [[unlikely]] {
        M68kAddressError(cpu, address, kM68kWriting, cpu.s | kM68kData);
    }
    const uint32_t offset = address & kM68kPageMask;
    uint16_t* page = cpu.writePages[M68kPageOf(address)];
    if (page != nullptr && offset != kM68kLastWordOfPage) {
        M68kSetPageWord(page, offset, value >> 16);
        M68kSetPageWord(page, offset + 2, value);
        return;
    }
    cpu.writeLong(cpu.owner, address & kM68kAddressMask, value);
}

inline void M68kPushWord(M68K_STATE& cpu, uint32_t value) {
    cpu.regs[kM68kA7] -= 2;
    M68kWriteWord(cpu, cpu.regs[kM68kA7], value);
}

inline void M68kPushLong(M68K_STATE& cpu, uint32_t value) {
    cpu.regs[kM68kA7] -= 4;
    M68kWriteLong(cpu, cpu.regs[kM68kA7], value);
}

inline uint32_t M68kPullWord(M68K_STATE& cpu) {
    const uint32_t value = M68kReadWord(cpu, cpu.regs[kM68kA7]);
    cpu.regs[kM68kA7] += 2;
    return value;
}

inline uint32_t M68kPullLong(M68K_STATE& cpu) {
    const uint32_t value = M68kReadLong(cpu, cpu.regs[kM68kA7]);
    cpu.regs[kM68kA7] += 4;
    return value;
}

// Counts time that depends on data; no tick gets longer.
inline void M68kSpend(M68K_STATE& cpu, int32_t clocks) {
    cpu.cyclesLeft =
        static_cast<int32_t>(static_cast<uint32_t>(cpu.cyclesLeft) - static_cast<uint32_t>(clocks));
}
