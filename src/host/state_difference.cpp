#include "host/state_difference.h"

#include <lz4.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

// A difference before it is packed, for states that have n whole chunks in common:
//
//     n x u16              a bit for each block of the chunk, the lowest for the first: it has changed
//     changed blocks       XORed, in order
//     rest of the older    from the n-th chunk on, XORed as far as the newer state goes
//
// The map is in the processor's byte order, as a difference never leaves the process.
namespace {

// A processor compares a chunk in a few steps. Most are equal; in the others it looks at blocks.
constexpr size_t kBlockBytes = 64;
constexpr size_t kBlocks = 16;
constexpr size_t kChunkBytes = kBlockBytes * kBlocks;

using Block = std::array<uint64_t, kBlockBytes / sizeof(uint64_t)>;

Block XorBlock(const uint8_t* one, const uint8_t* other) {
    Block a;
    Block b;
    std::memcpy(a.data(), one, kBlockBytes);
    std::memcpy(b.data(), other, kBlockBytes);
    for (size_t i = 0; i < a.size(); ++i) {
        a[i] ^= b[i];
    }
    return a;
}

// Writes the changed blocks of a chunk behind `out`, which it moves on, and returns their map.
uint16_t PackChunk(const uint8_t* newer, const uint8_t* older, uint8_t*& out) {
    if (std::memcmp(newer, older, kChunkBytes) == 0) {
        return 0;
    }
    unsigned map = 0;
    for (size_t i = 0; i < kBlocks; ++i) {
        const size_t at = i * kBlockBytes;
        if (std::memcmp(newer + at, older + at, kBlockBytes) != 0) {
            const Block changed = XorBlock(newer + at, older + at);
            std::memcpy(out, changed.data(), kBlockBytes);
            out += kBlockBytes;
            map |= 1U << i;
        }
    }
    return static_cast<uint16_t>(map);
}

// Writes what comes after the chunks, and returns where it ends.
uint8_t* PackRest(std::span<const uint8_t> newer, std::span<const uint8_t> older, size_t from,
                  uint8_t* out) {
    const size_t both = std::min(newer.size(), older.size());
    for (size_t at = from; at < both; ++at) {
        *out++ = static_cast<uint8_t>(older[at] ^ newer[at]);
    }
    return std::copy(older.begin() + static_cast<ptrdiff_t>(both), older.end(), out);
}

void UnpackChunk(unsigned map, uint8_t* state, const uint8_t*& in) {
    for (size_t i = 0; map != 0; ++i, map >>= 1) {
        if ((map & 1) != 0) {
            uint8_t* const at = state + i * kBlockBytes;
            const Block older = XorBlock(at, in);
            std::memcpy(at, older.data(), kBlockBytes);
            in += kBlockBytes;
        }
    }
}

} // namespace

std::span<const uint8_t> StateDifference::Pack(std::span<const uint8_t> newer,
                                               std::span<const uint8_t> older) {
    const size_t chunks = std::min(newer.size(), older.size()) / kChunkBytes;
    const size_t most = chunks * sizeof(uint16_t) + older.size();
    if (most > LZ4_MAX_INPUT_SIZE) {
        return {};
    }
    const auto mostPacked = static_cast<size_t>(LZ4_compressBound(static_cast<int>(most)));
    if (plain.size() < most) {
        plain.resize(most);
    }
    if (packedBytes.size() < mostPacked) {
        packedBytes.resize(mostPacked);
    }
    uint8_t* out = plain.data() + chunks * sizeof(uint16_t);
    for (size_t chunk = 0; chunk < chunks; ++chunk) {
        const size_t at = chunk * kChunkBytes;
        const uint16_t map = PackChunk(newer.data() + at, older.data() + at, out);
        std::memcpy(plain.data() + chunk * sizeof map, &map, sizeof map);
    }
    out = PackRest(newer, older, chunks * kChunkBytes, out);
    const int packed = LZ4_compress_default(
        reinterpret_cast<const char*>(plain.data()), reinterpret_cast<char*>(packedBytes.data()),
        static_cast<int>(out - plain.data()), static_cast<int>(mostPacked));
    assert(packed > 0);
    return {packedBytes.data(), static_cast<size_t>(packed)};
}

void StateDifference::Unpack(std::span<const uint8_t> packed, uint8_t* state, size_t newerSize,
                             size_t olderSize) {
    [[maybe_unused]] const int unpacked = LZ4_decompress_safe(
        reinterpret_cast<const char*>(packed.data()), reinterpret_cast<char*>(plain.data()),
        static_cast<int>(packed.size()), static_cast<int>(plain.size()));
    assert(unpacked > 0);
    const size_t chunks = std::min(newerSize, olderSize) / kChunkBytes;
    const uint8_t* in = plain.data() + chunks * sizeof(uint16_t);
    for (size_t chunk = 0; chunk < chunks; ++chunk) {
        uint16_t map = 0;
        std::memcpy(&map, plain.data() + chunk * sizeof map, sizeof map);
        UnpackChunk(map, state + chunk * kChunkBytes, in);
    }
    for (size_t at = chunks * kChunkBytes; at < olderSize; ++at) {
        state[at] = static_cast<uint8_t>(*in++ ^ (at < newerSize ? state[at] : 0));
    }
}
