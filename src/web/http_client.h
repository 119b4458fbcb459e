// Fetch: one plain HTTP/1.0 GET, from the address to the answer's body.
//
// It blocks the thread that calls it, which is the download queue's; a set abort word or quit flag ends
// it within a few hundredths of a second, also while a name is looked up. Nothing is trusted that the
// other side sends. Redirects are not followed: any code but 200 is a failure.
#pragma once

#include "web/name_lookup.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct FETCH_LIMITS {
    std::chrono::milliseconds connect{10'000}; // from the look-up to the connection
    std::chrono::milliseconds silence{30'000}; // without a byte
    std::chrono::milliseconds whole{600'000};  // for a server that sends a byte now and then
    size_t headerBytes = size_t{64} << 10;
    size_t bodyBytes = size_t{32} << 20;
};

// What a transfer meets outside of its arguments. The defaults are the program's; tests have their own.
struct FETCH_SURROUNDINGS {
    FETCH_LIMITS limits;
    const std::atomic<bool>* quit = nullptr; // ends a transfer like the abort word; may be null
    LookUpFunction lookUp = LookUpName;      // must outlive the transfer: see NameLookup
    std::function<std::chrono::milliseconds()> clock; // since any moment; empty: the system's
};

// The address is `http://HOST/PATH`, the host being a name or number, and perhaps a colon and a port;
// without a port that of the service `http` is taken. `abort` may be null. On failure `data` is null
// and `error` says why; it is empty if the address is of another form. An empty body is a success with
// null data.
[[nodiscard]] bool Fetch(const std::wstring& url, std::wstring& error,
                         const std::atomic<uint32_t>* abort, std::unique_ptr<uint8_t[]>& data,
                         uint32_t& size, const FETCH_SURROUNDINGS& surroundings = {});
