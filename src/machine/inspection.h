// Inspection of a machine by a debugger, a test or the command line. A machine that supports it derives
// from this as well as from CEmuSystem. Nothing here changes the machine.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class CInspection {
public:
    virtual ~CInspection() = default;

    // The byte at an address as the main processor would read it, without side effects. False beyond
    // its address space.
    [[nodiscard]] virtual bool Peek(uint32_t address, uint8_t& value) const = 0;

    // A whole memory, in the chip's own numbering; empty for an unknown name.
    [[nodiscard]] virtual std::vector<uint8_t> Dump(std::string_view region) const = 0;

    // The names that Dump knows.
    [[nodiscard]] virtual std::span<const std::string_view> Regions() const = 0;
};
