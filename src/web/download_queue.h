// DownloadQueue: the program's requests to its web service, one after the other, on one thread.
//
// Results come back on the main thread, in the order of the requests, whatever became of each. Nothing
// is tried twice. The owner of a request that goes away before the result sets the abort word; the
// callback still runs, and looks at the word before anything of its owner's.
// Threads: QueueRequest on any; the others on the main one.
// Locks: requests are queued and results handed back under any other lock of the program. That is why
// the queue's own, which is a leaf, is not held while a callback runs.
#pragma once

#include "base/ranked_mutex.h"
#include "web/download_list.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

class DownloadQueue {
public:
    // As Fetch of http_client.h, which is the default. A set `quit` ends the transfer like the abort
    // word, which may be null.
    using FetchFunction = std::function<bool(
        const std::wstring& url, std::wstring& error, const std::atomic<uint32_t>* abort,
        std::unique_ptr<uint8_t[]>& data, uint32_t& size, const std::atomic<bool>& quit)>;

    DownloadQueue(); // starts the thread
    explicit DownloadQueue(FetchFunction fetchFunction);
    ~DownloadQueue(); // stops
    DownloadQueue(const DownloadQueue&) = delete;
    DownloadQueue& operator=(const DownloadQueue&) = delete;

    void QueueRequest(const std::wstring& url, const std::wstring& userText, uint32_t kind,
                      AbortWord abortFlag, DownloadCallback callback, DownloadCheck check = {});

    // Runs the callbacks of finished requests, up to the first unfinished one. Once a frame. A callback
    // may queue requests; a call from within one does nothing.
    void PumpRequests();

    // True once every request is finished; waits at most so long. For the last report before the end.
    [[nodiscard]] bool WaitUntilIdle(std::chrono::milliseconds longest);

    // Ends the transfer in hand and the thread. Callbacks of what is left never run.
    void Stop();

private:
    void Run();

    FetchFunction fetch;
    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    DownloadList requests;         // under `lock`
    std::atomic<bool> quit{false}; // set under `lock`
    bool pumping = false;          // main thread
    std::thread worker;            // last, as it uses the others
};
