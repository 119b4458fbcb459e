#include "host/rewind.h"

#include <lz4.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <new>
#include <span>
#include <utility>

namespace {

// An allocator rounds a block up to 16 bytes and puts as much before it.
constexpr uint64_t kBlockUnit = 16;

// How quickly LZ4 gives up looking for repetitions: most of a frame's changes are sound, which has none. Beside 1 it
// takes up to a quarter less time, and the states a tenth more memory.
constexpr int kAcceleration = 8;

uint64_t BytesOf(const PACKED_STATE& state) {
    const uint64_t rounded = (state.packedBytes + kBlockUnit - 1) / kBlockUnit * kBlockUnit;
    return rounded + kBlockUnit + sizeof(PACKED_STATE);
}

// Makes room for states of this size, and for their changes. Throws std::bad_alloc.
void MakeRoom(REWIND_STACK& stack, uint32_t size) {
    if (size <= stack.rewindRoomBytes) {
        return;
    }
    const size_t most = StateChanges::MostBytes(size);
    assert(most <= LZ4_MAX_INPUT_SIZE);
    auto roomy = std::make_unique<uint8_t[]>(size);
    stack.changes.Reserve(size);
    stack.packed.resize(static_cast<size_t>(LZ4_compressBound(static_cast<int>(most))));
    std::copy_n(stack.rewindHead.get(), stack.rewindRoomBytes, roomy.get());
    stack.rewindHead = std::move(roomy);
    stack.rewindRoomBytes = size;
}

// Keeps the state that the noted changes lead back to. Throws std::bad_alloc, and has changed nothing then.
void KeepChanges(REWIND_STACK& stack) {
    const std::span<const uint8_t> noted = stack.changes.Noted();
    const int packed = LZ4_compress_fast(
        reinterpret_cast<const char*>(noted.data()), reinterpret_cast<char*>(stack.packed.data()),
        static_cast<int>(noted.size()), static_cast<int>(stack.packed.size()), kAcceleration);
    assert(packed > 0);
    PACKED_STATE state;
    state.packedBytes = static_cast<uint32_t>(packed);
    state.changes = std::make_unique_for_overwrite<uint8_t[]>(state.packedBytes);
    state.stateBytes = stack.rewindHeadBytes;
    std::memcpy(state.changes.get(), stack.packed.data(), state.packedBytes);
    const uint64_t bytes = BytesOf(state);
    stack.older.push_back(std::move(state));
    stack.packedBytes += bytes;
}

// Throws std::bad_alloc, and the states are as they were then.
void PushHead(REWIND_STACK& stack, CEmuSystem& machine, uint32_t size) {
    MakeRoom(stack, size);
    if (stack.rewindCount == 0) {
        machine.WriteState(stack.rewindHead.get());
    } else {
        const StateOut out = stack.changes.WriteOver(stack.rewindHead.get());
        try {
            machine.WriteState(out);
            KeepChanges(stack);
        } catch (const std::bad_alloc&) {
            TakeBackChanges(stack.changes.Noted(), stack.rewindHead.get());
            throw;
        }
    }
    stack.rewindHeadBytes = size;
    ++stack.rewindCount;
}

void DropOldest(REWIND_STACK& stack) {
    stack.packedBytes -= BytesOf(stack.older.front());
    stack.older.pop_front();
    --stack.rewindCount;
}

} // namespace

uint64_t RewindLimitBytes(int32_t mebibytes) {
    return static_cast<uint64_t>(std::clamp(mebibytes, 0, 1024)) << 20;
}

bool RewindPush(REWIND_STACK& stack, CEmuSystem& machine, uint64_t limitBytes) {
    const uint32_t size = machine.StateSize();
    if (size == 0) {
        return true;
    }
    try {
        PushHead(stack, machine, size);
    } catch (const std::bad_alloc&) {
        if (stack.rewindCount == 0) {
            RewindClear(stack);
        }
        return false;
    }
    while (!stack.older.empty() && RewindBytes(stack) > limitBytes) {
        DropOldest(stack);
    }
    return true;
}

void RewindPop(REWIND_STACK& stack) {
    --stack.rewindCount;
    if (stack.older.empty()) {
        RewindClear(stack);
        return;
    }
    const PACKED_STATE& state = stack.older.back();
    const std::span<uint8_t> room = stack.changes.Buffer();
    const int bytes = LZ4_decompress_safe(
        reinterpret_cast<const char*>(state.changes.get()), reinterpret_cast<char*>(room.data()),
        static_cast<int>(state.packedBytes), static_cast<int>(room.size()));
    assert(bytes >= 0);
    TakeBackChanges(room.first(static_cast<size_t>(bytes)), stack.rewindHead.get());
    stack.rewindHeadBytes = state.stateBytes;
    stack.packedBytes -= BytesOf(state);
    stack.older.pop_back();
}

uint64_t RewindBytes(const REWIND_STACK& stack) {
    return stack.packedBytes + stack.rewindRoomBytes + stack.changes.BufferBytes() +
           stack.packed.capacity();
}

void RewindClear(REWIND_STACK& stack) {
    stack.rewindHead.reset();
    stack.rewindHeadBytes = 0;
    stack.rewindRoomBytes = 0;
    stack.rewindCount = 0;
    stack.packedBytes = 0;
    stack.older.clear();
    stack.changes = {};
    stack.packed = std::vector<uint8_t>(); // frees it
}
