// Containers assembled byte by byte, at the offsets of the file format, without the program's records.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

using Bytes = std::vector<uint8_t>;

inline void PutText(Bytes& bytes, size_t offset, std::string_view text) {
    std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

inline void PutBytes(Bytes& bytes, size_t offset, const Bytes& value) {
    std::copy(value.begin(), value.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

inline void PutInteger(Bytes& bytes, size_t offset, size_t width, uint64_t value) {
    for (size_t i = 0; i < width; ++i) {
        bytes.at(offset + i) = static_cast<uint8_t>(value >> (8 * i));
    }
}

inline uint64_t GetInteger(const Bytes& bytes, size_t offset, size_t width) {
    uint64_t value = 0;
    for (size_t i = 0; i < width; ++i) {
        value |= uint64_t{bytes.at(offset + i)} << (8 * i);
    }
    return value;
}

inline Bytes Slice(const Bytes& bytes, size_t offset, size_t length) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(offset),
            bytes.begin() + static_cast<std::ptrdiff_t>(offset + length)};
}

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline Bytes Text(std::string_view text) {
    return {text.begin(), text.end()};
}

inline Bytes HandGame(uint16_t system, size_t headerSize, size_t rawSize = 0,
                      size_t packedSize = 0) {
    Bytes bytes(88);
    PutText(bytes, 0, "GAME");
    PutInteger(bytes, 4, 4, headerSize);
    PutInteger(bytes, 8, 4, rawSize);
    PutInteger(bytes, 12, 4, packedSize);
    PutInteger(bytes, 16, 2, system);
    return bytes;
}

inline Bytes HandName(std::string_view title, std::initializer_list<uint8_t> romList) {
    Bytes bytes(368);
    PutText(bytes, 0, "NAME");
    PutText(bytes, 16, title);
    std::fill(bytes.begin() + 304, bytes.end(), uint8_t{255});
    std::copy(romList.begin(), romList.end(), bytes.begin() + 304);
    return bytes;
}

// The piece's hash is 32 times `hashByte`.
inline Bytes HandRom(std::string_view name, size_t size, uint8_t hashByte = 0) {
    Bytes bytes(80);
    PutText(bytes, 0, "ROM0");
    PutInteger(bytes, 4, 4, size);
    PutText(bytes, 16, name);
    std::fill(bytes.begin() + 48, bytes.end(), hashByte);
    return bytes;
}

inline Bytes HandGada(std::string_view text) {
    Bytes bytes(68);
    PutText(bytes, 0, "GADA");
    PutText(bytes, 4, text);
    return bytes;
}

// A machine record: its tag, then bytes 1, 2, 3...
inline Bytes HandMachine(std::string_view tag, size_t size) {
    Bytes bytes(size);
    for (size_t i = 4; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i - 3);
    }
    PutText(bytes, 0, tag);
    return bytes;
}

// A small generator of fixed sequences, so that a failing case can be run again.
class CRandom {
public:
    explicit CRandom(uint64_t seed)
        : state(seed) {}

    uint32_t Next() {
        state += 0x9E3779B97F4A7C15u;
        uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
        return static_cast<uint32_t>(mixed >> 32);
    }
    uint32_t Below(size_t limit) { return static_cast<uint32_t>(Next() % limit); }
    uint8_t Byte() { return static_cast<uint8_t>(Next()); }
    Bytes Fill(size_t size) {
        Bytes bytes(size);
        std::generate(bytes.begin(), bytes.end(), [this] { return Byte(); });
        return bytes;
    }

private:
    uint64_t state;
};
