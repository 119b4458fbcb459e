#include "web/download_list.h"

#include <algorithm>
#include <utility>

void DownloadList::Add(std::unique_ptr<CDownloadRequest> request) {
    request->id = ++lastId;
    requests.push_back(std::move(request));
}

const CDownloadRequest* DownloadList::FirstUnfinished() const {
    const auto found = std::find_if(requests.begin(), requests.end(),
                                    [](const auto& request) { return !request->finished; });
    return found == requests.end() ? nullptr : found->get();
}

// The request is found by its number: others before it were removed meanwhile.
void DownloadList::Finish(uint32_t id, CDownloadRequest outcome) {
    const auto found = std::find_if(requests.begin(), requests.end(),
                                    [id](const auto& request) { return request->id == id; });
    if (found == requests.end()) {
        return;
    }
    CDownloadRequest& request = **found;
    request.finished = true;
    request.result = outcome.result;
    request.data = std::move(outcome.data);
    request.size = outcome.size;
    request.errorText = std::move(outcome.errorText);
}

std::unique_ptr<CDownloadRequest> DownloadList::TakeFinished() {
    if (requests.empty() || !requests.front()->finished) {
        return nullptr;
    }
    std::unique_ptr<CDownloadRequest> first = std::move(requests.front());
    requests.erase(requests.begin());
    return first;
}
