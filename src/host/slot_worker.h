// SlotWorker: does the work on slots of saved states on a thread of its own, one order after the other, so that
// neither a picture nor a game waits for the disk.
//
// Each order is answered once, with the slots as they are then. What has been ordered is done before the worker
// ends.
//
// Threads: Order and TakeAnswer any. Locks: one leaf lock, never during an order.
#pragma once

#include "base/ranked_mutex.h"
#include "host/state_slots.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <thread>

enum class SlotAct : uint8_t { kList, kSave, kLoad, kDelete, kUndoSlot, kUndoLoad };

struct SLOT_ORDER {
    SlotAct act = SlotAct::kList;
    uint32_t key = 0;    // of the session
    uint32_t serial = 0; // another one on this key is another game
    uint32_t slot = 0;   // from 1, where the act is about a slot
    SLOT_STAMP stamp;
};

struct SLOT_ANSWER {
    SLOT_ORDER order;
    bool done = false;
    std::string text;      // for the player; empty after kList
    bool undoable = false; // after kLoad: what was played before it is kept
    SLOT_LIST list;
};

class SlotWorker {
public:
    SlotWorker();
    ~SlotWorker();
    SlotWorker(const SlotWorker&) = delete;
    SlotWorker& operator=(const SlotWorker&) = delete;

    void Order(const SLOT_ORDER& order);
    // The oldest answer that has not been taken.
    [[nodiscard]] std::optional<SLOT_ANSWER> TakeAnswer();

private:
    void Run();
    [[nodiscard]] static SLOT_ANSWER Obey(const SLOT_ORDER& order);

    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    std::deque<SLOT_ORDER> orders; // these under `lock`
    std::deque<SLOT_ANSWER> answers;
    bool end = false;
    std::thread thread; // last, as it uses the others
};
