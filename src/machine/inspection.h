// Looking into a machine from outside: what a debugger, a test or the command line may ask of one.
// A machine that can be looked into derives from this beside CEmuSystem. Nothing here changes it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

class CInspection {
public:
    virtual ~CInspection() = default;

    // The byte at an address as the main processor would read it, with no side effect. False beyond
    // its address space.
    [[nodiscard]] virtual bool Peek(uint32_t address, uint8_t& value) const = 0;

    // A memory whole, in the chip's own numbering; nothing for a name that the machine does not have.
    [[nodiscard]] virtual std::vector<uint8_t> Dump(std::string_view region) const = 0;

    // The names that Dump knows.
    [[nodiscard]] virtual std::span<const std::string_view> Regions() const = 0;
};
