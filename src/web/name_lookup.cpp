#include "web/name_lookup.h"

#include "base/helper_thread.h"
#include "base/ranked_mutex.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace asio = boost::asio;

LOOKUP_RESULT LookUpName(const std::string& host, const std::string& service) {
    using asio::ip::tcp;
    asio::io_context context;
    tcp::resolver resolver(context);
    boost::system::error_code code;
    tcp::resolver::results_type found = resolver.resolve(host, service, code);
    if (code == asio::error::service_not_found && service == "http") {
        // A small system has no list of services.
        found = resolver.resolve(host, "80", code);
    }
    LOOKUP_RESULT result;
    if (code) {
        result.error = code.message();
        return result;
    }
    for (const auto& entry : found) {
        const tcp::endpoint endpoint = entry.endpoint();
        result.addresses.push_back({endpoint.address().to_string(), endpoint.port()});
    }
    return result;
}

std::string HostNotFoundText() {
    return make_error_code(asio::error::host_not_found).message();
}

struct NameLookup::SHARED {
    RankedMutex<LockRank::kLeaf> lock;
    std::condition_variable_any changed;
    bool done = false;    // under `lock`
    LOOKUP_RESULT result; // under `lock`
};

NameLookup::NameLookup(LookUpFunction lookUp, const std::string& host, const std::string& service)
    : shared(std::make_shared<SHARED>()) {
    const auto run = [state = shared, lookUp = std::move(lookUp), host, service] {
        HelperBegins();
        LOOKUP_RESULT result;
        try {
            result = lookUp(host, service);
        } catch (const std::exception& failure) {
            result.error = failure.what(); // no file descriptor is left, for one
        }
        {
            const std::scoped_lock hold(state->lock);
            state->result = std::move(result);
            state->done = true;
        }
        state->changed.notify_all();
    };
    try {
        std::thread(run).detach();
    } catch (const std::system_error& failure) {
        shared->result.error = failure.what();
        shared->done = true;
    }
}

bool NameLookup::WaitFor(std::chrono::milliseconds longest) {
    std::unique_lock hold(shared->lock);
    return shared->changed.wait_for(hold, longest, [this] { return shared->done; });
}

LOOKUP_RESULT NameLookup::TakeResult() {
    const std::scoped_lock hold(shared->lock);
    return std::exchange(shared->result, {});
}
