// A server on this computer that does what a test's script says, for good or ill.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// One client's connection, on the server's thread.
class LoopbackConnection {
public:
    struct SOCKET;
    explicit LoopbackConnection(SOCKET& socketOfServer)
        : socket(socketOfServer) {}

    // Up to the empty line.
    [[nodiscard]] std::string ReadRequest();
    // False if the client is gone.
    bool Write(std::string_view bytes);
    void WaitUntilClientLeaves();
    // Closes in a way that the client takes for an error.
    void Reset();

private:
    SOCKET& socket;
};

class LoopbackServer {
public:
    using Script = std::function<void(LoopbackConnection&)>;

    // Runs the script for each connection, one after the other, and then closes it.
    explicit LoopbackServer(Script connectionScript);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    [[nodiscard]] uint16_t Port() const;
    // Of a path that begins with a slash.
    [[nodiscard]] std::wstring Url(std::wstring_view path) const;
    [[nodiscard]] int Connections() const;

private:
    struct STATE;
    std::unique_ptr<STATE> state;
};

// A script that reads the request, sends the bytes and closes.
[[nodiscard]] LoopbackServer::Script Answering(std::string bytes);

// A port at which nothing listens, and nothing else can meanwhile.
class RefusingPort {
public:
    RefusingPort();
    ~RefusingPort();
    RefusingPort(const RefusingPort&) = delete;
    RefusingPort& operator=(const RefusingPort&) = delete;
    [[nodiscard]] uint16_t Port() const;

private:
    struct STATE;
    std::unique_ptr<STATE> state;
};
