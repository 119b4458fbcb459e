// Counts the instructions that the calling thread executes in the program's own code, where the processor and the system
// let a program do that. Unlike time, they hardly depend on what else the computer does.
//
// Linux counts by perf_event_open. Virtual machines often have no such counter, and containers and the setting
// kernel.perf_event_paranoid may forbid it. Other systems: not counted.
//
// Thread: the one that made it; threads that it starts are not counted.
#pragma once

#include <cstdint>
#include <string>

class InstructionCounter {
public:
    InstructionCounter();
    ~InstructionCounter();
    InstructionCounter(const InstructionCounter&) = delete;
    InstructionCounter& operator=(const InstructionCounter&) = delete;

    [[nodiscard]] bool Works() const { return whyNot.empty(); }
    // Why not, as a short line; empty if it works.
    [[nodiscard]] const std::string& WhyNot() const { return whyNot; }

    // Instructions since the counter was made; 0 if it does not work.
    [[nodiscard]] uint64_t Count() const;

private:
    int file = -1;
    std::string whyNot;
};
