#include "host/slot_worker.h"

#include "base/helper_thread.h"
#include "host/session.h"
#include "host/session_list.h"

#include <exception>
#include <mutex>
#include <utility>

namespace {

bool Do(const SLOT_ORDER& order, EMU_THREAD& session, SLOT_ANSWER& answer) {
    std::string& text = answer.text;
    switch (order.act) {
    case SlotAct::kList: return true;
    case SlotAct::kSave: return SaveToSlot(session, order.slot, order.stamp, text);
    case SlotAct::kLoad:
        return LoadFromSlot(session, order.slot, order.stamp, text, &answer.undoable);
    case SlotAct::kDelete: return DeleteSlot(SlotFolder(session), order.slot, text);
    case SlotAct::kUndoSlot: return UndoSlot(SlotFolder(session), order.slot, text);
    case SlotAct::kUndoLoad: return UndoLoad(session, order.stamp, text);
    }
    return false;
}

} // namespace

SlotWorker::SlotWorker()
    : thread([this] {
        HelperBegins();
        Run();
    }) {}

SlotWorker::~SlotWorker() {
    {
        const std::scoped_lock hold(lock);
        end = true;
    }
    changed.notify_all();
    thread.join();
}

void SlotWorker::Order(const SLOT_ORDER& order) {
    {
        const std::scoped_lock hold(lock);
        orders.push_back(order);
    }
    changed.notify_all();
}

std::optional<SLOT_ANSWER> SlotWorker::TakeAnswer() {
    const std::scoped_lock hold(lock);
    if (answers.empty()) {
        return std::nullopt;
    }
    SLOT_ANSWER answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

void SlotWorker::Run() {
    std::unique_lock hold(lock);
    while (true) {
        changed.wait(hold, [this] { return end || !orders.empty(); });
        if (orders.empty()) {
            return;
        }
        const SLOT_ORDER order = orders.front();
        orders.pop_front();
        hold.unlock();
        SLOT_ANSWER answer = Obey(order);
        hold.lock();
        answers.push_back(std::move(answer));
    }
}

SLOT_ANSWER SlotWorker::Obey(const SLOT_ORDER& order) {
    SLOT_ANSWER answer;
    answer.order = order;
    try {
        const SessionPin session = PinSession(order.key);
        if (!session || session->serial != order.serial) {
            answer.text = "The game is no longer on";
            return answer;
        }
        answer.done = Do(order, *session, answer);
        answer.list = ListSlots(SlotFolder(*session));
    } catch (const std::exception& error) {
        answer.done = false;
        answer.text = std::string("Saved states: ") + error.what();
    }
    return answer;
}
