#include "web/download_queue.h"

#include "base/helper_thread.h"
#include "web/http_client.h"

#include <mutex>
#include <utility>

namespace {

bool FetchFromNetwork(const std::wstring& url, std::wstring& error,
                      const std::atomic<uint32_t>* abort, std::unique_ptr<uint8_t[]>& data,
                      uint32_t& size, const std::atomic<bool>& quit) {
    FETCH_SURROUNDINGS surroundings;
    surroundings.quit = &quit;
    return Fetch(url, error, abort, data, size, surroundings);
}

} // namespace

DownloadQueue::DownloadQueue()
    : DownloadQueue(FetchFromNetwork) {}

DownloadQueue::DownloadQueue(FetchFunction fetchFunction)
    : fetch(std::move(fetchFunction))
    , worker([this] { Run(); }) {}

DownloadQueue::~DownloadQueue() {
    Stop();
}

void DownloadQueue::QueueRequest(const std::wstring& url, const std::wstring& userText,
                                 uint32_t kind, AbortWord abortFlag, DownloadCallback callback,
                                 DownloadCheck check) {
    auto request = std::make_unique<CDownloadRequest>();
    request->url = url;
    request->userText = userText;
    request->kind = kind;
    request->abortFlag = std::move(abortFlag);
    request->callback = std::move(callback);
    request->check = std::move(check);
    {
        const std::scoped_lock hold(lock);
        requests.Add(std::move(request));
    }
    changed.notify_all();
}

void DownloadQueue::PumpRequests() {
    if (pumping) {
        return;
    }
    pumping = true;
    while (true) {
        std::unique_ptr<CDownloadRequest> request;
        {
            const std::scoped_lock hold(lock);
            request = requests.TakeFinished();
        }
        if (!request) {
            break;
        }
        if (request->callback) {
            request->callback(request->errorText, request->userText, request->kind,
                              request->abortFlag, request->data.get(), request->size);
        }
    }
    pumping = false;
}

bool DownloadQueue::WaitUntilIdle(std::chrono::milliseconds longest) {
    std::unique_lock hold(lock);
    return changed.wait_for(hold, longest,
                            [this] { return requests.FirstUnfinished() == nullptr; });
}

void DownloadQueue::Stop() {
    {
        const std::scoped_lock hold(lock);
        quit = true;
    }
    changed.notify_all();
    if (worker.joinable()) {
        worker.join();
    }
}

void DownloadQueue::Run() {
    HelperBegins();
    while (true) {
        uint32_t id = 0;
        std::wstring url;
        AbortWord abortFlag;
        DownloadCheck check;
        {
            std::unique_lock hold(lock);
            changed.wait(hold, [this] { return quit || requests.FirstUnfinished() != nullptr; });
            if (quit) {
                return;
            }
            const CDownloadRequest& request = *requests.FirstUnfinished();
            id = request.id;
            url = request.url;
            abortFlag = request.abortFlag;
            check = request.check;
        }
        CDownloadRequest outcome;
        outcome.result =
            fetch(url, outcome.errorText, abortFlag.get(), outcome.data, outcome.size, quit);
        if (outcome.data != nullptr && check &&
            !check({outcome.data.get(), outcome.size}, outcome.errorText)) {
            outcome.result = false;
            outcome.data.reset();
            outcome.size = 0;
        }
        {
            const std::scoped_lock hold(lock);
            requests.Finish(id, std::move(outcome));
        }
        changed.notify_all();
    }
}
