#include "host/rewind.h"

#include <algorithm>
#include <utility>

namespace {

void DropOldest(REWIND_STACK& stack) {
    REWIND_NODE* const newTail = stack.rewindTail->newer;
    if (newTail == nullptr) {
        stack.rewindHead.reset();
    } else {
        newTail->next.reset();
    }
    stack.rewindTail = newTail;
}

} // namespace

REWIND_STACK::~REWIND_STACK() {
    RewindClear(*this);
}

uint64_t RewindLimitBytes(int32_t mebibytes) {
    return static_cast<uint64_t>(std::clamp(mebibytes, 0, 1024)) << 20;
}

void RewindPush(REWIND_STACK& stack, StateBlob state, uint32_t size, uint64_t limitBytes) {
    if (!state || size == 0) {
        return;
    }
    auto node = std::make_unique<REWIND_NODE>();
    node->state = std::move(state);
    node->size = size;
    node->next = std::move(stack.rewindHead);
    if (node->next) {
        node->next->newer = node.get();
    } else {
        stack.rewindTail = node.get();
    }
    stack.rewindHead = std::move(node);

    if (uint64_t{size} * stack.rewindCount >= limitBytes) {
        DropOldest(stack);
    } else {
        ++stack.rewindCount;
    }
}

void RewindPop(REWIND_STACK& stack) {
    stack.rewindHead = std::exchange(stack.rewindHead->next, nullptr);
    if (stack.rewindHead) {
        stack.rewindHead->newer = nullptr;
    } else {
        stack.rewindTail = nullptr;
    }
    stack.rewindCursor = stack.rewindHead.get();
    --stack.rewindCount;
}

// One node at a time: the default destructor would recurse thousands deep.
void RewindClear(REWIND_STACK& stack) {
    while (stack.rewindHead) {
        stack.rewindHead = std::exchange(stack.rewindHead->next, nullptr);
    }
    stack.rewindTail = nullptr;
    stack.rewindCursor = nullptr;
    stack.rewindCount = 0;
}
