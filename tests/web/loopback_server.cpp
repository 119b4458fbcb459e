#include "web/loopback_server.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <atomic>
#include <thread>
#include <utility>

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

tcp::endpoint Loopback(uint16_t port) {
    return {asio::ip::address_v4::loopback(), port};
}

} // namespace

struct LoopbackConnection::SOCKET {
    tcp::socket stream;
};

std::string LoopbackConnection::ReadRequest() {
    std::string request;
    error_code code;
    asio::read_until(socket.stream, asio::dynamic_buffer(request), "\r\n\r\n", code);
    return request;
}

bool LoopbackConnection::Write(std::string_view bytes) {
    error_code code;
    asio::write(socket.stream, asio::buffer(bytes.data(), bytes.size()), code);
    return !code;
}

void LoopbackConnection::WaitUntilClientLeaves() {
    std::array<char, 256> bytes;
    error_code code;
    while (!code) {
        socket.stream.read_some(asio::buffer(bytes), code);
    }
}

void LoopbackConnection::Reset() {
    error_code ignored;
    socket.stream.set_option(asio::socket_base::linger(true, 0), ignored);
    socket.stream.close(ignored);
}

struct LoopbackServer::STATE {
    Script script;
    asio::io_context context;
    tcp::acceptor acceptor{context, Loopback(0)};
    uint16_t port = acceptor.local_endpoint().port();
    std::atomic<bool> end{false};
    std::atomic<int> connections{0};
    std::thread thread;

    void Run() {
        while (true) {
            LoopbackConnection::SOCKET socket{tcp::socket(context)};
            error_code code;
            acceptor.accept(socket.stream, code);
            if (end) {
                return;
            }
            if (!code) {
                ++connections;
                LoopbackConnection connection(socket);
                script(connection);
            }
        }
    }
};

LoopbackServer::LoopbackServer(Script connectionScript)
    : state(std::make_unique<STATE>()) {
    state->script = std::move(connectionScript);
    state->thread = std::thread([this] { state->Run(); });
}

LoopbackServer::~LoopbackServer() {
    state->end = true;
    asio::io_context context;
    tcp::socket waker(context); // accept returns for it
    error_code ignored;
    waker.connect(Loopback(state->port), ignored);
    state->thread.join();
}

uint16_t LoopbackServer::Port() const {
    return state->port;
}

std::wstring LoopbackServer::Url(std::wstring_view path) const {
    return L"http://127.0.0.1:" + std::to_wstring(state->port) + std::wstring(path);
}

int LoopbackServer::Connections() const {
    return state->connections;
}

LoopbackServer::Script Answering(std::string bytes) {
    return [bytes = std::move(bytes)](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write(bytes);
    };
}

struct RefusingPort::STATE {
    asio::io_context context;
    tcp::socket socket{context};
};

RefusingPort::RefusingPort()
    : state(std::make_unique<STATE>()) {
    state->socket.open(tcp::v4());
    state->socket.bind(Loopback(0)); // and no listen
}

RefusingPort::~RefusingPort() = default;

uint16_t RefusingPort::Port() const {
    return state->socket.local_endpoint().port();
}
