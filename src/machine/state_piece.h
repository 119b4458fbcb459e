// State pieces: one function that names a chip's fields both writes and reads them.
//
// A piece is a version byte, its own size in bytes as a little-endian u32, header included, and
// the fields, packed and little-endian. A callable names the fields: it gets a visitor and passes every
// field to it, always in the same order:
//
//     auto fields = [&](auto& visit) { visit(chip.pc); visit(chip.ram); };
//
// Integers, enums, bools, floats, arrays of them, std::array and std::vector are fields. A bool is one byte. The
// length of a vector is not written: the loader's has it.
// A loaded value that becomes an index must be masked or refused by its owner after the read.
#pragma once

#include "base/bytes.h"
#include "machine/state_out.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <vector>

// A piece whose fields have changed since version 1 passes its version to StatePieceWrite and StatePieceRead.
inline constexpr uint8_t kStatePieceVersion = 1;
inline constexpr uint32_t kStatePieceHeader = 5;

namespace state_piece_detail {

template <typename T>
inline constexpr bool kIsArray = std::is_array_v<T>;
template <typename T, size_t N>
inline constexpr bool kIsArray<std::array<T, N>> = true;
template <typename T>
inline constexpr bool kIsArray<std::vector<T>> = true;

template <size_t Bytes>
using UnsignedOf = std::conditional_t<
    Bytes == 1, uint8_t,
    std::conditional_t<Bytes == 2, uint16_t, std::conditional_t<Bytes == 4, uint32_t, uint64_t>>>;

template <typename T>
inline constexpr bool kFlat =
    std::endian::native == std::endian::little&& std::is_arithmetic_v<T> &&
    !std::is_same_v<T, bool>;

// Calls `scalar` for every scalar of a field, or `block` for bytes that are already in file order.
template <typename T, typename Scalar, typename Block>
void EachScalar(T& field, Scalar&& scalar, Block&& block) {
    if constexpr (kIsArray<T>) {
        using Element = std::remove_reference_t<decltype(field[0])>;
        if constexpr (kFlat<Element>) {
            block(std::data(field), std::size(field) * sizeof(Element));
        } else {
            for (auto& element : field) {
                EachScalar(element, scalar, block);
            }
        }
    } else {
        static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T>, "not a field of a state");
        scalar(field);
    }
}

} // namespace state_piece_detail

// Adds up the size of the fields.
class StateCounter {
public:
    template <typename T>
    void operator()(T& field) {
        state_piece_detail::EachScalar(
            field, [this](auto& value) { bytes += static_cast<uint32_t>(sizeof value); },
            [this](void*, size_t size) { bytes += static_cast<uint32_t>(size); });
    }

    uint32_t bytes = 0;
};

// Writes fields to a block that the caller knows to be large enough.
class StateWriter {
public:
    explicit StateWriter(StateOut block)
        : out(block) {}

    template <typename T>
    void operator()(T& field) {
        state_piece_detail::EachScalar(
            field,
            [this](auto& value) {
                using Unsigned = state_piece_detail::UnsignedOf<sizeof value>;
                Unsigned bits = 0;
                if constexpr (std::is_same_v<std::remove_reference_t<decltype(value)>, bool>) {
                    bits = value ? 1 : 0;
                } else {
                    std::memcpy(&bits, &value, sizeof bits);
                }
                out.PutScalar(bits);
            },
            [this](const void* run, size_t size) { out.PutBytes(run, size); });
    }

    StateOut out;
};

// Reads fields from a block that the caller knows to be long enough. A bool is true for any byte but 0.
class StateReader {
public:
    explicit StateReader(const uint8_t* block)
        : in(block) {}

    template <typename T>
    void operator()(T& field) {
        state_piece_detail::EachScalar(
            field,
            [this](auto& value) {
                using Unsigned = state_piece_detail::UnsignedOf<sizeof value>;
                const auto bits = LoadLittleEndian<Unsigned>(in);
                if constexpr (std::is_same_v<std::remove_reference_t<decltype(value)>, bool>) {
                    value = bits != 0;
                } else {
                    std::memcpy(&value, &bits, sizeof bits);
                }
                in += sizeof bits;
            },
            [this](void* run, size_t size) {
                std::memcpy(run, in, size);
                in += size;
            });
    }

    const uint8_t* in;
};

// Size of the whole piece, header included.
template <typename Fields>
[[nodiscard]] uint32_t StatePieceSize(Fields&& fields) {
    StateCounter counter;
    fields(counter);
    return kStatePieceHeader + counter.bytes;
}

// Writes the piece and returns the position after it. `out` has room for StatePieceSize bytes.
template <typename Fields>
StateOut StatePieceWrite(StateOut out, Fields&& fields, uint8_t version = kStatePieceVersion) {
    out.PutScalar(version);
    out.PutScalar(StatePieceSize(fields));
    StateWriter writer(out);
    fields(writer);
    return writer.out;
}

// Reads a piece from the front of `size` bytes and returns its length; 0 if version or size do not fit,
// and then no field has changed.
template <typename Fields>
[[nodiscard]] uint32_t StatePieceRead(const uint8_t* data, uint32_t size, Fields&& fields,
                                      uint8_t version = kStatePieceVersion) {
    const uint32_t expected = StatePieceSize(fields);
    if (size < kStatePieceHeader || data[0] != version ||
        LoadLittleEndian<uint32_t>(data + 1) != expected || expected > size) {
        return 0;
    }
    StateReader reader(data + kStatePieceHeader);
    fields(reader);
    return expected;
}
