#include "host/rewind.h"

#include <algorithm>
#include <utility>

namespace {

void DropOldest(EMU_THREAD& session) {
    REWIND_NODE* const newTail = session.rewindTail->newer;
    if (newTail == nullptr) {
        session.rewindHead.reset();
    } else {
        newTail->next.reset();
    }
    session.rewindTail = newTail;
}

} // namespace

uint64_t RewindLimitBytes(int32_t mebibytes) {
    return static_cast<uint64_t>(std::clamp(mebibytes, 0, 1024)) << 20;
}

void RewindPush(EMU_THREAD& session, StateBlob state, uint32_t size, uint64_t limitBytes) {
    if (!state || size == 0) {
        return;
    }
    auto node = std::make_unique<REWIND_NODE>();
    node->state = std::move(state);
    node->size = size;
    node->next = std::move(session.rewindHead);
    if (node->next) {
        node->next->newer = node.get();
    } else {
        session.rewindTail = node.get();
    }
    session.rewindHead = std::move(node);

    if (uint64_t{size} * session.rewindCount >= limitBytes) {
        DropOldest(session);
    } else {
        ++session.rewindCount;
    }
}

void RewindPop(EMU_THREAD& session) {
    session.rewindHead = std::exchange(session.rewindHead->next, nullptr);
    if (session.rewindHead) {
        session.rewindHead->newer = nullptr;
    } else {
        session.rewindTail = nullptr;
    }
    session.rewindCursor = session.rewindHead.get();
    --session.rewindCount;
}

// One node at a time: a chain that frees itself would recurse thousands deep.
void RewindClear(EMU_THREAD& session) {
    while (session.rewindHead) {
        session.rewindHead = std::exchange(session.rewindHead->next, nullptr);
    }
    session.rewindTail = nullptr;
    session.rewindCursor = nullptr;
    session.rewindCount = 0;
}
