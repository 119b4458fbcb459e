// What changes in a block of memory when a newer state is written over an older one.
//
// From frame to frame most of a machine's memory stays as it is. The changes are runs of bytes, each XORed with what
// it was, so that they lead from the newer state back to the older one:
//
//     u32             unchanged bytes since the last run
//     u32             n, the length of the run
//     n bytes         XOR of both states
//
// in the processor's byte order, as changes never leave the process. Bytes after the end of a state count as well: what
// a longer state has left in the block stays there, or is noted when it goes.
//
// Units: bytes. Owner: whoever has the block. Thread: any, one at a time.
#pragma once

#include "machine/state_out.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class StateChanges {
public:
    // The changes of a block of this size are no longer than this.
    [[nodiscard]] static constexpr size_t MostBytes(size_t blockSize) {
        return blockSize + kHeaderBytes;
    }

    // Makes room for the changes of a block. Throws std::bad_alloc.
    void Reserve(size_t blockSize) { noted.resize(MostBytes(blockSize)); }

    // Begins with the block as it is. What is written to the result, from the start of the block on and not beyond
    // what was reserved, is noted here; that allocates nothing.
    [[nodiscard]] StateOut WriteOver(uint8_t* block);

    // What has been noted since. Valid until the next call.
    [[nodiscard]] std::span<const uint8_t> Noted() const { return {noted.data(), end}; }

    // The buffer that holds them, to be filled from elsewhere.
    [[nodiscard]] std::span<uint8_t> Buffer() { return noted; }
    [[nodiscard]] size_t BufferBytes() const { return noted.capacity(); }

    // Notes that these bytes come to `at`, where others are; behind everything noted before.
    void Note(const uint8_t* at, const uint8_t* bytes, size_t size);

private:
    static constexpr size_t kHeaderBytes = 2 * sizeof(uint32_t);

    std::vector<uint8_t> noted;
    size_t end = 0;                   // of what has been noted
    size_t run = 0;                   // where the last run's bytes begin
    const uint8_t* noticed = nullptr; // up to here the block's changes have been noted
};

// Puts back what these changes, noted before in `block`, have changed.
void TakeBackChanges(std::span<const uint8_t> changes, uint8_t* block);
