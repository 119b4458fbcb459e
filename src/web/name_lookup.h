// Looks up a host's addresses without ever holding up who asks.
//
// The system's look-up cannot be interrupted and may take a minute. It runs on a thread of its own, which
// shares only its result with the asker: one that has given up leaves, and the thread ends by itself.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct NET_ADDRESS {
    std::string address; // numeric
    uint16_t port = 0;
};

struct LOOKUP_RESULT {
    std::vector<NET_ADDRESS> addresses;
    std::string error; // why there are none
};

// `service` is a service's name or a port's digits. It runs on any thread and may block.
using LookUpFunction =
    std::function<LOOKUP_RESULT(const std::string& host, const std::string& service)>;

// The system's.
[[nodiscard]] LOOKUP_RESULT LookUpName(const std::string& host, const std::string& service);

// What a name that has no address is refused with: 11001 in Windows' numbers.
[[nodiscard]] std::string HostNotFoundText();

class NameLookup {
public:
    // `lookUp` and what it refers to must stay valid until it returns, which may be after the end of
    // this object.
    NameLookup(LookUpFunction lookUp, const std::string& host, const std::string& service);

    // Waits at most so long. True once the result is there.
    [[nodiscard]] bool WaitFor(std::chrono::milliseconds longest);
    [[nodiscard]] LOOKUP_RESULT TakeResult();

private:
    struct SHARED;
    std::shared_ptr<SHARED> shared;
};
