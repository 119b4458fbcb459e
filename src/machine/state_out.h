// Where a state is written: a position in memory, which moves on with every write.
//
// With a StateChanges the memory holds an older state. What differs from it is noted before it is written over
// (state_changes.h), and memory that has not changed is only read.
#pragma once

#include "base/bytes.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

class StateChanges;

class StateOut {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): any memory will do, so a pointer to it is enough
    StateOut(uint8_t* block, StateChanges* changesValue = nullptr)
        : at(block)
        , changes(changesValue) {}

    // The position after what has been written.
    [[nodiscard]] const uint8_t* At() const { return at; }

    // Little-endian.
    template <std::unsigned_integral Unsigned>
    void PutScalar(Unsigned value) {
        if (changes != nullptr && LoadLittleEndian<Unsigned>(at) != value) {
            uint8_t bytes[sizeof value];
            StoreLittleEndian(bytes, value);
            NoteChange(bytes, sizeof value);
        }
        StoreLittleEndian(at, value);
        at += sizeof value;
    }

    void PutBytes(const void* bytes, size_t size) {
        if (changes != nullptr) {
            WriteChanged(static_cast<const uint8_t*>(bytes), size);
        } else {
            std::memcpy(at, bytes, size);
        }
        at += size;
    }

private:
    void NoteChange(const uint8_t* bytes, size_t size);
    void WriteChanged(const uint8_t* bytes, size_t size);

    uint8_t* at;
    StateChanges* changes;
};
