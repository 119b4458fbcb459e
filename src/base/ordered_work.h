// Work on a list of items, on all processors, with the results in the order of the list.
//
// The caller's thread takes the results; the others work. Items have a weight, such as their size in
// bytes: items that are worked on, or that wait to be taken, weigh no more than a limit in all, unless
// a single one does.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

struct WORK_LIMITS {
    unsigned threads = 0;                  // 0: one for each processor
    uint64_t weight = uint64_t{256} << 20; // of all items in hand
    size_t items = 256;                    // in hand
};

// Calls `work(i)` for each index of `weights` on some thread, and `take(i, result)` with its result on
// the caller's, in order. When `take` returns false, no further item is begun, and those in hand are
// dropped. Returns whether all were taken.
template <typename Work, typename Take>
bool RunInOrder(const std::vector<uint64_t>& weights, const WORK_LIMITS& limits, Work&& work,
                Take&& take) {
    using Result = decltype(work(size_t{0}));
    std::mutex mutex;
    std::condition_variable roomIsFree;
    std::condition_variable resultIsReady;
    std::map<size_t, Result> results;
    size_t begun = 0;
    size_t taken = 0;
    uint64_t weightInHand = 0;
    bool stopped = false;

    const auto mayBegin = [&] {
        return stopped || begun == weights.size() || begun == taken ||
               (begun - taken < limits.items && weightInHand + weights[begun] <= limits.weight);
    };
    const auto worker = [&] {
        std::unique_lock lock(mutex);
        while (true) {
            roomIsFree.wait(lock, mayBegin);
            if (stopped || begun == weights.size()) {
                return;
            }
            const size_t index = begun++;
            weightInHand += weights[index];
            lock.unlock();
            Result result = work(index);
            lock.lock();
            results.emplace(index, std::move(result));
            resultIsReady.notify_one();
        }
    };

    const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
    const size_t wanted = limits.threads != 0 ? limits.threads : processors;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < std::min(wanted, weights.size()); ++i) {
        threads.emplace_back(worker);
    }
    bool goesOn = true;
    for (size_t index = 0; index < weights.size() && goesOn; ++index) {
        std::unique_lock lock(mutex);
        resultIsReady.wait(lock, [&] { return results.contains(index); });
        auto node = results.extract(index);
        lock.unlock();
        goesOn = take(index, std::move(node.mapped()));
        lock.lock();
        taken = index + 1;
        weightInHand -= weights[index];
        stopped = !goesOn;
        lock.unlock();
        roomIsFree.notify_all();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return goesOn;
}
