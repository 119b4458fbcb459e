#include "host/rewind.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

// An allocator rounds a block up to 16 bytes and puts as much before it.
constexpr uint64_t kBlockUnit = 16;

uint64_t BytesOf(const PACKED_STATE& packed) {
    const uint64_t rounded = (packed.differenceBytes + kBlockUnit - 1) / kBlockUnit * kBlockUnit;
    return rounded + kBlockUnit + sizeof(PACKED_STATE);
}

// Packs the present head as the state before `state`. Throws std::bad_alloc, and has changed nothing then. False if
// it cannot be packed.
bool PackHead(REWIND_STACK& stack, std::span<const uint8_t> state) {
    const std::span<const uint8_t> difference =
        stack.difference.Pack(state, {stack.rewindHead.get(), stack.rewindHeadBytes});
    if (difference.empty()) {
        return false;
    }
    PACKED_STATE packed;
    packed.difference = std::make_unique_for_overwrite<uint8_t[]>(difference.size());
    packed.differenceBytes = static_cast<uint32_t>(difference.size());
    packed.stateBytes = stack.rewindHeadBytes;
    std::memcpy(packed.difference.get(), difference.data(), difference.size());
    const uint64_t bytes = BytesOf(packed);
    stack.older.push_back(std::move(packed));
    stack.packedBytes += bytes;
    return true;
}

bool PushHead(REWIND_STACK& stack, StateBlob state, uint32_t size) {
    const uint32_t room = std::max(size, stack.rewindRoomBytes);
    if (room > size) {
        // The larger states below will be unpacked into this block.
        StateBlob roomy = std::make_unique_for_overwrite<uint8_t[]>(room);
        std::memcpy(roomy.get(), state.get(), size);
        state = std::move(roomy);
    }
    if (stack.rewindHead != nullptr && !PackHead(stack, {state.get(), size})) {
        return false;
    }
    stack.rewindHead = std::move(state);
    stack.rewindHeadBytes = size;
    stack.rewindRoomBytes = room;
    ++stack.rewindCount;
    return true;
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

bool RewindPush(REWIND_STACK& stack, StateBlob state, uint32_t size, uint64_t limitBytes) {
    if (!state || size == 0) {
        return true;
    }
    try {
        if (!PushHead(stack, std::move(state), size)) {
            return false;
        }
    } catch (const std::bad_alloc&) {
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
    const PACKED_STATE& packed = stack.older.back();
    stack.difference.Unpack({packed.difference.get(), packed.differenceBytes},
                            stack.rewindHead.get(), stack.rewindHeadBytes, packed.stateBytes);
    stack.rewindHeadBytes = packed.stateBytes;
    stack.packedBytes -= BytesOf(packed);
    stack.older.pop_back();
}

uint64_t RewindBytes(const REWIND_STACK& stack) {
    return stack.packedBytes + stack.rewindRoomBytes + stack.difference.BufferBytes();
}

void RewindClear(REWIND_STACK& stack) {
    stack.rewindHead.reset();
    stack.rewindHeadBytes = 0;
    stack.rewindRoomBytes = 0;
    stack.rewindCount = 0;
    stack.packedBytes = 0;
    stack.older.clear();
    stack.difference = {};
}
