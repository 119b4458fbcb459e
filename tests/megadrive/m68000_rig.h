// A 68000 on a megabyte of plain memory that repeats through its map, and a log of its bus.
#pragma once

#include "megadrive/m68000_private.h"
#include "megadrive/m68000_tick.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

inline constexpr uint32_t kProgram = 0x1000;
inline constexpr uint32_t kStack = 0x8000;
inline constexpr uint32_t kUserStack = 0x9000;

// Every vector leads to an address of its own.
constexpr uint32_t HandlerOf(uint32_t vector) {
    return 0x4000 + vector * 0x10;
}

struct TEST_68000 {
    static constexpr uint32_t kSize = 0x100000;

    // The words are at kProgram; everything after them is 0. The constructor resets the processor, and the log
    // starts after that.
    explicit TEST_68000(std::initializer_list<uint32_t> program)
        : TEST_68000(std::vector<uint32_t>(program)) {}
    explicit TEST_68000(const std::vector<uint32_t>& program) {
        SetLong(0, kStack);
        SetLong(4, kProgram);
        for (uint32_t vector = 2; vector < 256; ++vector) {
            SetLong(vector * 4, HandlerOf(vector));
        }
        uint32_t address = kProgram;
        for (const uint32_t word : program) {
            SetWord(address, word);
            address += 2;
        }
        Connect();
        M68kReset(cpu);
        resetLog = TakeLog();
    }
    TEST_68000(const TEST_68000&) = delete;
    TEST_68000& operator=(const TEST_68000&) = delete;

    uint32_t Tick() { return M68kTick(cpu); }
    // Returns whether the next tick ends in an address error.
    bool StepFails() {
        try {
            M68kTick(cpu);
        } catch (const M68K_ADDRESS_ERROR&) {
            return true;
        }
        return false;
    }
    void SetStatus(uint32_t status) { M68kSetStatus(cpu, status); }
    // User state, its stack at kUserStack.
    void EnterUserState() {
        cpu.stackSlots[0] = kUserStack;
        M68kSetStatus(cpu, 0);
    }
    uint32_t& D(uint32_t number) { return cpu.regs[number]; }
    uint32_t& A(uint32_t number) { return cpu.regs[kM68kA0 + number]; }
    uint32_t Conditions() const { return M68kStatus(cpu) & 0x1F; }

    uint32_t Byte(uint32_t address) const { return memory[address % kSize]; }
    uint32_t Word(uint32_t address) const { return Byte(address) << 8 | Byte(address + 1); }
    uint32_t Long(uint32_t address) const { return Word(address) << 16 | Word(address + 2); }
    void SetByte(uint32_t address, uint32_t value) {
        memory[address % kSize] = static_cast<uint8_t>(value);
    }
    void SetWord(uint32_t address, uint32_t value) {
        SetByte(address, value >> 8);
        SetByte(address + 1, value);
    }
    void SetLong(uint32_t address, uint32_t value) {
        SetWord(address, value >> 16);
        SetWord(address + 2, value);
    }

    // The accesses since the last call, such as "f 1002 4E71; ": kind, address and value.
    std::string TakeLog() {
        std::string taken;
        taken.swap(log);
        return taken;
    }

    M68K_STATE cpu;
    uint32_t answer = kM68kAutovector;  // intAck's answer
    std::vector<uint32_t> acknowledged; // levels, in order
    std::string resetLog;

private:
    void Connect() {
        cpu.owner = this;
        cpu.intAck = [](void* owner, uint32_t level) {
            auto& rig = *static_cast<TEST_68000*>(owner);
            rig.acknowledged.push_back(level);
            return rig.answer;
        };
        cpu.readImmediate = [](void* owner, uint32_t address) {
            return static_cast<TEST_68000*>(owner)->Log("f", address, 4, &TEST_68000::Word);
        };
        cpu.readByte = [](void* owner, uint32_t address) {
            return static_cast<TEST_68000*>(owner)->Log("rb", address, 2, &TEST_68000::Byte);
        };
        cpu.readWord = [](void* owner, uint32_t address) {
            return static_cast<TEST_68000*>(owner)->Log("rw", address, 4, &TEST_68000::Word);
        };
        cpu.readLong = [](void* owner, uint32_t address) {
            return static_cast<TEST_68000*>(owner)->Log("rl", address, 8, &TEST_68000::Long);
        };
        cpu.writeByte = [](void* owner, uint32_t address, uint32_t value) {
            auto& rig = *static_cast<TEST_68000*>(owner);
            rig.SetByte(address, value);
            rig.Log("wb", address, 2, &TEST_68000::Byte);
        };
        cpu.writeWord = [](void* owner, uint32_t address, uint32_t value) {
            auto& rig = *static_cast<TEST_68000*>(owner);
            rig.SetWord(address, value);
            rig.Log("ww", address, 4, &TEST_68000::Word);
        };
        cpu.writeLong = [](void* owner, uint32_t address, uint32_t value) {
            auto& rig = *static_cast<TEST_68000*>(owner);
            rig.SetLong(address, value);
            rig.Log("wl", address, 8, &TEST_68000::Long);
        };
    }

    uint32_t Log(const char* kind, uint32_t address, int digits,
                 uint32_t (TEST_68000::*value)(uint32_t) const) {
        std::ostringstream line;
        line << kind << ' ' << std::hex << std::uppercase << address << ' ';
        line.width(digits);
        line.fill('0');
        line << (this->*value)(address) << "; ";
        log += line.str();
        return (this->*value)(address);
    }

    std::vector<uint8_t> memory = std::vector<uint8_t>(kSize);
    std::string log;
};
