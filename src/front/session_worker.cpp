#include "front/session_worker.h"

#include "base/helper_thread.h"
#include "front/game_start.h"
#include "host/session.h"

#include <mutex>
#include <utility>

namespace {

SESSION_RESULT Do(const SESSION_ORDER& order) {
    SESSION_RESULT result{order.number, order.key, 0, {}};
    if (order.game != nullptr) {
        result.serial = StartGame(order.key, *order.game, result.error);
    } else {
        EmuStopSession(order.key);
    }
    return result;
}

} // namespace

SessionWorker::SessionWorker()
    : thread([this] { Run(); }) {}

SessionWorker::~SessionWorker() {
    {
        const std::scoped_lock hold(lock);
        end = true;
    }
    changed.notify_all();
    thread.join();
}

void SessionWorker::Order(SESSION_ORDER order) {
    {
        const std::scoped_lock hold(lock);
        orders.push_back(std::move(order));
    }
    changed.notify_all();
}

std::vector<SESSION_RESULT> SessionWorker::TakeResults() {
    const std::scoped_lock hold(lock);
    return std::exchange(results, {});
}

void SessionWorker::Finish() {
    std::unique_lock hold(lock);
    changed.wait(hold, [this] { return orders.empty(); });
}

void SessionWorker::Run() {
    HelperBegins();
    std::unique_lock hold(lock);
    while (true) {
        changed.wait(hold, [this] { return end || !orders.empty(); });
        if (orders.empty()) {
            return;
        }
        const SESSION_ORDER order = orders.front();
        hold.unlock();
        SESSION_RESULT result = Do(order);
        hold.lock();
        results.push_back(std::move(result));
        orders.pop_front();
        changed.notify_all();
    }
}
