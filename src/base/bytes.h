// Little-endian integers in byte buffers, as every file and state of the program stores them.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <cstring>

// Reads an unsigned integer of sizeof(T) bytes; the caller has checked that they are there.
template <std::unsigned_integral T>
[[nodiscard]] inline T LoadLittleEndian(const uint8_t* bytes) {
    T value = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&value, bytes, sizeof value);
    } else {
        for (size_t i = 0; i < sizeof(T); ++i) {
            value = static_cast<T>(value | static_cast<T>(T{bytes[i]} << (8 * i)));
        }
    }
    return value;
}

template <std::unsigned_integral T>
inline void StoreLittleEndian(uint8_t* bytes, T value) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(bytes, &value, sizeof value);
    } else {
        for (size_t i = 0; i < sizeof(T); ++i) {
            bytes[i] = static_cast<uint8_t>(value >> (8 * i));
        }
    }
}
