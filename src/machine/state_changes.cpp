#include "machine/state_changes.h"

#include <algorithm>

namespace {

// A processor compares a chunk in a few steps. Most are equal; in the others it looks at blocks.
constexpr size_t kBlockBytes = 64;
constexpr size_t kChunkBytes = 16 * kBlockBytes;

// Calls `action` (offset, length) for the pieces of `length` bytes in which the two differ.
template <size_t Length, typename Action>
void EachDifference(const uint8_t* one, const uint8_t* other, size_t size, Action&& action) {
    for (size_t from = 0; from < size; from += Length) {
        const size_t length = std::min(Length, size - from);
        if (std::memcmp(one + from, other + from, length) != 0) {
            action(from, length);
        }
    }
}

} // namespace

void StateOut::NoteChange(const uint8_t* bytes, size_t size) {
    changes->Note(at, bytes, size);
}

void StateOut::WriteChanged(const uint8_t* bytes, size_t size) {
    EachDifference<kChunkBytes>(at, bytes, size, [&](size_t chunk, size_t chunkSize) {
        EachDifference<kBlockBytes>(at + chunk, bytes + chunk, chunkSize,
                                    [&](size_t block, size_t blockSize) {
                                        const size_t from = chunk + block;
                                        changes->Note(at + from, bytes + from, blockSize);
                                        std::memcpy(at + from, bytes + from, blockSize);
                                    });
    });
}

StateOut StateChanges::WriteOver(uint8_t* block) {
    end = 0;
    noticed = block;
    return {block, this};
}

void StateChanges::Note(const uint8_t* at, const uint8_t* bytes, size_t size) {
    const auto gap = static_cast<size_t>(at - noticed);
    uint8_t* out = noted.data() + end;
    if (end != 0 && gap <= kHeaderBytes) {
        // A gap that is no longer than the header of a run goes into the run, as zeros.
        out = std::fill_n(out, gap, uint8_t{0});
    } else {
        const auto unchanged = static_cast<uint32_t>(gap);
        std::memcpy(out, &unchanged, sizeof unchanged);
        out += kHeaderBytes;
        run = end + kHeaderBytes;
    }
    for (size_t i = 0; i < size; ++i) {
        out[i] = static_cast<uint8_t>(at[i] ^ bytes[i]);
    }
    noticed = at + size;
    end = static_cast<size_t>(out + size - noted.data());
    const auto length = static_cast<uint32_t>(end - run);
    std::memcpy(noted.data() + run - sizeof length, &length, sizeof length);
}

void TakeBackChanges(std::span<const uint8_t> changes, uint8_t* block) {
    while (!changes.empty()) {
        uint32_t header[2]; // unchanged bytes, length of the run
        std::memcpy(header, changes.data(), sizeof header);
        const std::span<const uint8_t> run = changes.subspan(sizeof header, header[1]);
        block += header[0];
        for (const uint8_t change : run) {
            *block++ ^= change;
        }
        changes = changes.subspan(sizeof header + run.size());
    }
}
