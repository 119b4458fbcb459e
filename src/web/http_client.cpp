#include "web/http_client.h"

#include "base/text.h"
#include "web/http_answer.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <vector>

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using std::chrono::milliseconds;

namespace {

// How often a waiting transfer looks whether it is to end.
constexpr milliseconds kGlance{20};

constexpr size_t kBlock = size_t{16} << 10;

constexpr std::wstring_view kNoAnswer = L"The service does not answer";
constexpr std::wstring_view kBadAddress = L"The address has a character that is not allowed";
constexpr std::wstring_view kBadPort = L"The address has no valid port";

struct URL_PARTS {
    std::string hostAndPort; // as the Host header has it
    std::string host;
    std::string service = "http"; // or a port's digits
    std::string path;             // from the first slash on
};

// False without a text for another form of address.
bool SplitUrl(const std::wstring& url, URL_PARTS& parts, std::wstring& error) {
    constexpr std::string_view kScheme = "http://";
    const std::string text = Utf8FromWide(url);
    if (!text.starts_with(kScheme)) {
        return false;
    }
    const size_t slash = text.find('/', kScheme.size());
    if (slash == std::string::npos) {
        return false;
    }
    // A line end would begin a header of the address's own, a blank would end the path.
    if (std::any_of(text.begin(), text.end(),
                    [](char c) { return (c >= 0 && c <= ' ') || c == 0x7F; })) {
        error = kBadAddress;
        return false;
    }
    parts.hostAndPort = text.substr(kScheme.size(), slash - kScheme.size());
    parts.path = text.substr(slash);
    parts.host = parts.hostAndPort;
    // The colons within brackets are a number's of version 6.
    const size_t bracket = parts.host.find(']');
    const size_t colon = parts.host.find(':', bracket == std::string::npos ? 0 : bracket);
    if (colon != std::string::npos) {
        parts.service = parts.host.substr(colon + 1);
        parts.host.resize(colon);
        uint16_t port = 0;
        const char* const end = parts.service.data() + parts.service.size();
        const auto read = std::from_chars(parts.service.data(), end, port);
        if (read.ec != std::errc() || read.ptr != end || port == 0) {
            error = kBadPort;
            return false;
        }
    }
    if (parts.host.size() >= 2 && parts.host.front() == '[' && parts.host.back() == ']') {
        parts.host = parts.host.substr(1, parts.host.size() - 2);
    }
    return true;
}

std::wstring TextOf(const error_code& code) {
    return WideFromUtf8(code.message());
}

class Transfer {
public:
    Transfer(const FETCH_SURROUNDINGS& around, const std::atomic<uint32_t>* abortWord)
        : surroundings(around)
        , limits(around.limits)
        , abort(abortWord)
        , end(Now() + limits.whole) {}

    // False with the reason in Error().
    [[nodiscard]] bool Run(const URL_PARTS& url, HttpAnswer& answer) {
        return Connect(url) && Send(url) && Receive(answer);
    }
    [[nodiscard]] const std::wstring& Error() const { return error; }

private:
    [[nodiscard]] milliseconds Now() const {
        return surroundings.clock ? surroundings.clock()
                                  : std::chrono::duration_cast<milliseconds>(
                                        std::chrono::steady_clock::now().time_since_epoch());
    }

    [[nodiscard]] bool Fail(std::wstring_view why) {
        error = why;
        return false;
    }

    // False, with a reason, if the caller or the time ends the transfer.
    [[nodiscard]] bool GoesOn(milliseconds deadline) {
        const bool quit = surroundings.quit != nullptr && surroundings.quit->load();
        if (quit || (abort != nullptr && abort->load() != 0)) {
            return Fail(TextOf(asio::error::operation_aborted));
        }
        return Now() < std::min(deadline, end) || Fail(kNoAnswer);
    }

    // Starts an operation and waits for its end; `start` is called with its completion handler. False if
    // the transfer is to end: the operation is then cancelled, and its handler has run all the same.
    template <typename Start>
    [[nodiscard]] bool Await(milliseconds deadline, error_code& result, size_t& count,
                             const Start& start) {
        if (!GoesOn(deadline)) {
            return false;
        }
        done = false;
        context.restart();
        start([&, this](const error_code& code, size_t moved = 0) {
            result = code;
            count = moved;
            done = true;
        });
        while (!done) {
            context.run_one_for(kGlance);
            if (!done && !GoesOn(deadline)) {
                error_code ignored;
                socket.close(ignored);
                while (!done) {
                    context.run_one();
                }
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool LookUp(const URL_PARTS& url, milliseconds deadline,
                              std::vector<NET_ADDRESS>& addresses) {
        if (url.host.empty()) {
            return Fail(WideFromUtf8(HostNotFoundText())); // the system would take this computer
        }
        if (!GoesOn(deadline)) {
            return false;
        }
        NameLookup lookup(surroundings.lookUp, url.host, url.service);
        while (!lookup.WaitFor(kGlance)) {
            if (!GoesOn(deadline)) {
                return false;
            }
        }
        LOOKUP_RESULT result = lookup.TakeResult();
        addresses = std::move(result.addresses);
        return result.error.empty() || Fail(WideFromUtf8(result.error));
    }

    // Tries one address after the other. Each has an equal part of the time that is left, so that one
    // which swallows everything does not hide the next.
    [[nodiscard]] bool Connect(const URL_PARTS& url) {
        const milliseconds deadline = Now() + limits.connect;
        std::vector<NET_ADDRESS> addresses;
        if (!LookUp(url, deadline, addresses)) {
            return false;
        }
        error = WideFromUtf8(HostNotFoundText());
        for (size_t i = 0; i < addresses.size(); ++i) {
            const milliseconds now = Now();
            const auto share =
                (deadline - now) / static_cast<milliseconds::rep>(addresses.size() - i);
            if (ConnectTo(addresses[i], now + share)) {
                return true;
            }
            const std::wstring why = error;
            if (!GoesOn(deadline)) {
                return false;
            }
            error = why;
        }
        return false;
    }

    [[nodiscard]] bool ConnectTo(const NET_ADDRESS& to, milliseconds deadline) {
        error_code code;
        size_t unused = 0;
        const asio::ip::address address = asio::ip::make_address(to.address, code);
        if (code) {
            return Fail(TextOf(code));
        }
        const tcp::endpoint endpoint(address, to.port);
        error_code ignored;
        socket.close(ignored);
        const auto start = [&](auto handler) { socket.async_connect(endpoint, handler); };
        if (!Await(deadline, code, unused, start)) {
            return false;
        }
        return !code || Fail(TextOf(code));
    }

    [[nodiscard]] bool Send(const URL_PARTS& url) {
        const std::string request = "GET " + url.path + " HTTP/1.0\r\nHost: " + url.hostAndPort +
                                    "\r\nAccept: */*\r\nConnection: close\r\n\r\n";
        error_code code;
        size_t sent = 0;
        const auto start = [&](auto handler) {
            asio::async_write(socket, asio::buffer(request), handler);
        };
        if (!Await(Now() + limits.silence, code, sent, start)) {
            return false;
        }
        return !code || Fail(TextOf(code));
    }

    // The other side ends the stream; what it said of the length does not count.
    [[nodiscard]] bool Receive(HttpAnswer& answer) {
        std::array<uint8_t, kBlock> block;
        const auto start = [&](auto handler) {
            socket.async_read_some(asio::buffer(block), handler);
        };
        while (true) {
            error_code code;
            size_t count = 0;
            if (!Await(Now() + limits.silence, code, count, start)) {
                return false;
            }
            if (!answer.Take({block.data(), count})) {
                return Fail(answer.Error());
            }
            if (code == asio::error::eof) {
                return answer.End() || Fail(answer.Error());
            }
            if (code) {
                return Fail(TextOf(code));
            }
        }
    }

    const FETCH_SURROUNDINGS& surroundings;
    const FETCH_LIMITS& limits;
    const std::atomic<uint32_t>* abort;
    milliseconds end;
    asio::io_context context{1};
    tcp::socket socket{context};
    bool done = false; // the operation that is awaited
    std::wstring error;
};

} // namespace

bool Fetch(const std::wstring& url, std::wstring& error, const std::atomic<uint32_t>* abort,
           std::unique_ptr<uint8_t[]>& data, uint32_t& size,
           const FETCH_SURROUNDINGS& surroundings) {
    data.reset();
    size = 0;
    error.clear();
    URL_PARTS parts;
    if (!SplitUrl(url, parts, error)) {
        return false;
    }
    HttpAnswer answer(surroundings.limits.headerBytes, surroundings.limits.bodyBytes);
    try {
        Transfer transfer(surroundings, abort);
        if (!transfer.Run(parts, answer)) {
            error = transfer.Error();
            return false;
        }
    } catch (const boost::system::system_error& failure) {
        error = TextOf(failure.code()); // no file descriptor is left, for one
        return false;
    }
    const std::vector<uint8_t>& body = answer.Body();
    if (!body.empty()) {
        data = std::make_unique<uint8_t[]>(body.size());
        std::copy(body.begin(), body.end(), data.get());
        size = static_cast<uint32_t>(body.size());
    }
    return true;
}
