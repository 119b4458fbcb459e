// A Z80 program around the bytes of an input, for the 8-bit machines of Sega.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

inline constexpr size_t kFuzzZ80Code =
    0x200; // where the bytes lie; after them the program jumps there again
inline constexpr size_t kFuzzZ80Bank = 0x4000;
inline constexpr size_t kFuzzZ80Banks = 4; // all with the same program

// Mode 4 with picture, frame and line interrupts, patterns and colours that differ.
inline void FuzzStartVideo(std::vector<uint8_t>& code, uint8_t port) {
    const auto control = static_cast<uint8_t>(port + 1);
    const auto out = [&](std::initializer_list<uint8_t> values) {
        for (const uint8_t value : values) {
            code.insert(code.end(), {0x3E, value, 0xD3, control}); // LD A; OUT
        }
    };
    out({0x16, 0x80, 0xE0, 0x81, 0x1F, 0x8A, 0x00, 0x40});
    code.insert(code.end(), {0x21, 0x00, 0x18, 0x7D, 0xAC, 0x07, 0xD3,
                             port});                         // LD HL; LD A,L; XOR H; RLCA; OUT
    code.insert(code.end(), {0x2B, 0x7C, 0xB5, 0x20, 0xF6}); // DEC HL; LD A,H; OR L; JR NZ
    out({0x00, 0xC0});
    code.insert(code.end(), {0x06, 0x40, 0x78, 0xD3, port, 0x10, 0xFB}); // LD B; LD A,B; OUT; DJNZ
}

[[nodiscard]] inline std::vector<uint8_t> FuzzZ80Image(std::span<const uint8_t> input,
                                                       std::initializer_list<uint8_t> videoPorts) {
    std::vector<uint8_t> code = {0xF3, 0xED, 0x56, 0x31, 0xF0,
                                 0xDF, 0xC3, 0x80, 0x00}; // DI; IM 1; LD SP; JP
    code.resize(0x38);
    code.push_back(0xF5); // PUSH AF
    for (const uint8_t port : videoPorts) {
        code.insert(code.end(), {0xDB, static_cast<uint8_t>(port + 1)}); // IN: ends the interrupt
    }
    code.insert(code.end(), {0xF1, 0xFB, 0xC9}); // POP AF; EI; RET
    code.resize(0x66);
    code.insert(code.end(), {0xED, 0x45}); // RETN
    code.resize(0x80);
    for (const uint8_t port : videoPorts) {
        FuzzStartVideo(code, port);
    }
    code.push_back(0xFB); // EI; on to the input's bytes
    code.resize(kFuzzZ80Code);
    const auto bytes = input.first(std::min(input.size(), kFuzzZ80Bank - kFuzzZ80Code - 8));
    code.insert(code.end(), bytes.begin(), bytes.end());
    code.insert(code.end(), {0, 0, 0, 0xC3, kFuzzZ80Code & 0xFF, kFuzzZ80Code >> 8}); // JP
    code.resize(kFuzzZ80Bank);
    std::vector<uint8_t> image;
    image.reserve(kFuzzZ80Banks * kFuzzZ80Bank);
    for (size_t bank = 0; bank < kFuzzZ80Banks; ++bank) {
        image.insert(image.end(), code.begin(), code.end());
    }
    return image;
}
