// DownloadList: the queue's requests in their order. No thread and no lock; the queue has both.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

// Non-zero ends the transfer. Shared, as a transfer may outlive the request's owner. May be null.
using AbortWord = std::shared_ptr<std::atomic<uint32_t>>;

// `data` is null on failure, and for an empty answer; it is freed after the return. User text, kind and
// abort word are those of the request.
using DownloadCallback =
    std::function<void(const std::wstring& errorText, const std::wstring& userText, uint32_t kind,
                       const AbortWord& abortWord, const uint8_t* data, uint32_t size)>;

// Looks at an answer on the queue's thread, which may take its time. False turns the request into a failure with
// that text.
using DownloadCheck = std::function<bool(std::span<const uint8_t> data, std::wstring& error)>;

struct CDownloadRequest {
    uint32_t id = 0;
    bool finished = false;
    bool result = false; // whether the transfer went well
    std::wstring url;
    std::wstring userText;
    uint32_t kind = 0;
    AbortWord abortFlag;
    DownloadCallback callback; // may be empty: the answer is dropped
    DownloadCheck check;       // may be empty
    std::wstring errorText;
    std::unique_ptr<uint8_t[]> data;
    uint32_t size = 0; // bytes of `data`
};

class DownloadList {
public:
    // Numbers the request.
    void Add(std::unique_ptr<CDownloadRequest> request);
    [[nodiscard]] const CDownloadRequest* FirstUnfinished() const;
    // Marks a request as finished, with the result, text and data of `outcome`.
    void Finish(uint32_t id, CDownloadRequest outcome);
    // Removes the first request if it is finished; null otherwise.
    [[nodiscard]] std::unique_ptr<CDownloadRequest> TakeFinished();

private:
    std::vector<std::unique_ptr<CDownloadRequest>> requests;
    uint32_t lastId = 0;
};
