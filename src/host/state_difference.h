// What changes from one saved state to the next, packed.
//
// From frame to frame most of a machine's memory stays as it is. A difference says which blocks of a state are not
// those of the state before it and holds them XORed, so that the bytes that are equal in them become zeros; LZ4 packs the
// result. It leads from the newer state back to the older one, whose size may be another.
//
// Units: bytes. Owner: whoever keeps the states; an object has the buffers that both functions work in. Thread: any, one
// at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class StateDifference {
public:
    // The difference of two states that are not empty, as bytes that are valid until the next call; none if a state is
    // larger than LZ4 takes. Throws std::bad_alloc when there is no memory for the buffers.
    [[nodiscard]] std::span<const uint8_t> Pack(std::span<const uint8_t> newer,
                                                std::span<const uint8_t> older);

    // Turns the newer state at `state` into the older one, in place: there must be room for both. `packed` must come
    // from this object's Pack. Allocates nothing.
    void Unpack(std::span<const uint8_t> packed, uint8_t* state, size_t newerSize,
                size_t olderSize);

    // The memory of the buffers.
    [[nodiscard]] size_t BufferBytes() const { return plain.capacity() + packedBytes.capacity(); }

private:
    std::vector<uint8_t> plain;       // a difference before it is packed; never shrinks
    std::vector<uint8_t> packedBytes; // and after that
};
