// Fetch against a server of the test's own, on this computer. Time is the test's too.
#include "web/http_client.h"
#include "web/loopback_server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

struct FETCHED {
    bool well = false;
    std::wstring error = L"unset";
    std::string body;
    bool hasData = false;
};

FETCHED Get(const std::wstring& url, const FETCH_SURROUNDINGS& surroundings = {},
            const std::atomic<uint32_t>* abort = nullptr) {
    FETCHED fetched;
    std::unique_ptr<uint8_t[]> data = std::make_unique<uint8_t[]>(1);
    uint32_t size = 1;
    fetched.well = Fetch(url, fetched.error, abort, data, size, surroundings);
    fetched.hasData = data != nullptr;
    if (fetched.hasData) {
        fetched.body.assign(data.get(), data.get() + size);
    }
    EXPECT_EQ(fetched.hasData, size > 0);
    EXPECT_FALSE(!fetched.well && fetched.hasData);
    return fetched;
}

constexpr std::string_view kHead = "HTTP/1.0 200 OK\r\nContent-Type: text/plain\r\n\r\n";

std::string Answer(std::string_view body) {
    return std::string(kHead) + std::string(body);
}

// What was looked up; the address is always the same.
struct LOOKUPS {
    std::vector<std::string> asked;
    LOOKUP_RESULT result;

    FETCH_SURROUNDINGS Surroundings() {
        FETCH_SURROUNDINGS surroundings;
        surroundings.lookUp = [this](const std::string& host, const std::string& service) {
            asked.push_back(host + " " + service);
            return result;
        };
        return surroundings;
    }
};

// A clock that stands still unless it is set forward, or runs: then each look at it takes a second.
struct CLOCK {
    std::atomic<milliseconds::rep> now{1000};
    std::atomic<bool> runs{false};

    void Advance(milliseconds time) { now += time.count(); }
    [[nodiscard]] FETCH_SURROUNDINGS Surroundings() {
        FETCH_SURROUNDINGS surroundings;
        surroundings.clock = [this] { return milliseconds(runs ? now += 1000 : now.load()); };
        return surroundings;
    }
};

} // namespace

TEST(HttpClient, SendsFourLinesAndNoMore) {
    std::string request;
    LoopbackServer server([&](LoopbackConnection& connection) {
        request = connection.ReadRequest();
        connection.Write(Answer("x"));
    });
    const FETCHED fetched = Get(server.Url(L"/a/b?m=3&n=x%20y"));
    EXPECT_TRUE(fetched.well);
    EXPECT_EQ(request,
              "GET /a/b?m=3&n=x%20y HTTP/1.0\r\nHost: 127.0.0.1:" + std::to_string(server.Port()) +
                  "\r\nAccept: */*\r\nConnection: close\r\n\r\n");
}

TEST(HttpClient, ReturnsTheBody) {
    std::string body;
    for (int i = 0; i < 200'000; ++i) {
        body += static_cast<char>(i * 7);
    }
    LoopbackServer server(Answering(Answer(body)));
    const FETCHED fetched = Get(server.Url(L"/"));
    EXPECT_TRUE(fetched.well);
    EXPECT_EQ(fetched.error, L"");
    EXPECT_EQ(fetched.body, body);
}

TEST(HttpClient, AnEmptyBodyIsASuccessWithoutData) {
    LoopbackServer server(Answering(Answer("")));
    const FETCHED fetched = Get(server.Url(L"/"));
    EXPECT_TRUE(fetched.well);
    EXPECT_EQ(fetched.error, L"");
    EXPECT_FALSE(fetched.hasData);
}

TEST(HttpClient, AnAddressOfAnotherFormFailsWithoutATextAndWithoutALookUp) {
    LOOKUPS lookups;
    for (const wchar_t* url : {L"", L"http://host", L"http://", L"https://host/", L"HTTP://host/",
                               L"host/", L"ftp://host/", L"http:/host/"}) {
        const FETCHED fetched = Get(url, lookups.Surroundings());
        EXPECT_FALSE(fetched.well) << url;
        EXPECT_EQ(fetched.error, L"") << url;
    }
    EXPECT_TRUE(lookups.asked.empty());
}

TEST(HttpClient, AnAddressWithABlankOrALineEndIsRefused) {
    LOOKUPS lookups;
    for (const wchar_t* url : {L"http://host/a b", L"http://host/\r\nX: y", L"http://h\tost/",
                               L"http://host/\x7F", L"http://host:/", L"http://host:http/",
                               L"http://host:0/", L"http://host:65536/", L"http://host:80x/"}) {
        const FETCHED fetched = Get(url, lookups.Surroundings());
        EXPECT_FALSE(fetched.well) << url;
        EXPECT_NE(fetched.error, L"") << url;
    }
    EXPECT_TRUE(lookups.asked.empty());
}

TEST(HttpClient, LooksUpTheHostAndTheServiceOrThePort) {
    LOOKUPS lookups;
    lookups.result.error = "nothing there";
    for (const wchar_t* url : {L"http://some.host/x:1", L"http://some.host:8080/x",
                               L"http://[::1]/x", L"http://[fe80::1]:81/"}) {
        const FETCHED fetched = Get(url, lookups.Surroundings());
        EXPECT_FALSE(fetched.well);
        EXPECT_EQ(fetched.error, L"nothing there");
    }
    EXPECT_EQ(lookups.asked, (std::vector<std::string>{"some.host http", "some.host 8080",
                                                       "::1 http", "fe80::1 81"}));
}

TEST(HttpClient, WithoutAddressesTheHostIsNotFound) {
    LOOKUPS lookups;
    const FETCHED fetched = Get(L"http://host/", lookups.Surroundings());
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error.substr(0, 14), L"Host not found");
    EXPECT_EQ(Get(L"http:///x").error, fetched.error) << "the empty name is not this computer";
}

TEST(HttpClient, TriesEachAddressUntilOneAnswers) {
    const RefusingPort refusing;
    LoopbackServer server(Answering(Answer("second")));
    LOOKUPS lookups;
    lookups.result.addresses = {
        {"127.0.0.1", refusing.Port()},
        {"127.0.0.1", server.Port()  }
    };
    const FETCHED fetched = Get(L"http://host/", lookups.Surroundings());
    EXPECT_TRUE(fetched.well);
    EXPECT_EQ(fetched.body, "second");
    EXPECT_EQ(fetched.error, L"");
}

TEST(HttpClient, WithoutAConnectionTheLastErrorCounts) {
    const RefusingPort refusing;
    LOOKUPS lookups;
    lookups.result.addresses = {
        {"not an address", 80             },
        {"127.0.0.1",      refusing.Port()}
    };
    const FETCHED fetched = Get(L"http://host/", lookups.Surroundings());
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"Connection refused");
}

TEST(HttpClient, FindsThisComputerByItsName) {
    LoopbackServer server(Answering(Answer("x")));
    const FETCHED fetched = Get(L"http://localhost:" + std::to_wstring(server.Port()) + L"/x");
    EXPECT_TRUE(fetched.well);
    EXPECT_EQ(fetched.body, "x");
}

TEST(HttpClient, AnotherCodeIsAFailure) {
    LoopbackServer server(Answering("HTTP/1.0 404 Not Found\r\n\r\nno such page"));
    const FETCHED fetched = Get(server.Url(L"/"));
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"Invalid response code");
}

TEST(HttpClient, ARedirectIsNotFollowed) {
    LoopbackServer other(Answering(Answer("elsewhere")));
    LoopbackServer server(Answering("HTTP/1.0 302 Found\r\nLocation: http://127.0.0.1:" +
                                    std::to_string(other.Port()) + "/\r\n\r\n"));
    const FETCHED fetched = Get(server.Url(L"/"));
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"Invalid response code");
    EXPECT_EQ(other.Connections(), 0);
    EXPECT_EQ(server.Connections(), 1) << "and nothing is tried twice";
}

TEST(HttpClient, AnAnswerThatEndsAnywhereIsAFailureOrAShorterBody) {
    const std::string answer = Answer("0123456789");
    std::atomic<size_t> cut{0};
    LoopbackServer server([&](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write(answer.substr(0, cut));
    });
    for (cut = 0; cut <= answer.size(); ++cut) {
        const FETCHED fetched = Get(server.Url(L"/"));
        if (cut < kHead.size()) {
            EXPECT_FALSE(fetched.well) << cut;
            EXPECT_EQ(fetched.error, L"Invalid response") << cut;
        } else {
            EXPECT_TRUE(fetched.well) << cut;
            EXPECT_EQ(fetched.body, answer.substr(kHead.size(), cut - kHead.size()));
        }
    }
}

TEST(HttpClient, AConnectionThatIsResetAtAnyByteIsAFailure) {
    const std::string answer = Answer("0123456789");
    std::atomic<size_t> cut{0};
    LoopbackServer server([&](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write(answer.substr(0, cut));
        connection.Reset();
    });
    for (cut = 0; cut <= answer.size(); ++cut) {
        const FETCHED fetched = Get(server.Url(L"/"));
        EXPECT_FALSE(fetched.well) << cut;
        EXPECT_EQ(fetched.error, L"Connection reset by peer") << cut;
    }
}

TEST(HttpClient, AServerThatHangsUpBeforeTheRequestIsAFailure) {
    LoopbackServer server([](LoopbackConnection& connection) { connection.Reset(); });
    const FETCHED fetched = Get(server.Url(L"/"));
    EXPECT_FALSE(fetched.well);
    EXPECT_NE(fetched.error, L"");
}

TEST(HttpClient, EndlessHeadersAreCutOff) {
    LoopbackServer server([](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write("HTTP/1.0 200 OK\r\n");
        while (connection.Write("X-More: and more\r\n")) {
        }
    });
    EXPECT_EQ(Get(server.Url(L"/")).error, L"The answer's headers are too large");
}

TEST(HttpClient, AnEndlessLineIsCutOff) {
    LoopbackServer server([](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        while (connection.Write("HTTP/1.0 200 ")) {
        }
    });
    EXPECT_EQ(Get(server.Url(L"/")).error, L"The answer's headers are too large");
}

TEST(HttpClient, AnEndlessBodyIsCutOff) {
    LoopbackServer server([](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write("HTTP/1.0 200 OK\r\nContent-Length: 4\r\n\r\n");
        const std::string block(65536, 'x');
        while (connection.Write(block)) {
        }
    });
    EXPECT_EQ(Get(server.Url(L"/")).error, L"The answer is too large");
}

TEST(HttpClient, TheLimitsAreThoseOfTheProgram) {
    const FETCH_LIMITS limits;
    EXPECT_EQ(limits.connect, seconds(10));
    EXPECT_EQ(limits.silence, seconds(30));
    EXPECT_EQ(limits.bodyBytes, 32u * 1024 * 1024);
    EXPECT_EQ(limits.headerBytes, 64u * 1024);
}

TEST(HttpClient, ALengthOfFourGigabytesIsOnlyAPromise) {
    LoopbackServer server(Answering("HTTP/1.0 200 OK\r\nContent-Length: 4294967296\r\n\r\nfour"));
    EXPECT_EQ(Get(server.Url(L"/")).body, "four");
}

TEST(HttpClient, GivesUpAfterThirtySecondsWithoutAByte) {
    for (const std::string_view sent : {std::string_view(), kHead.substr(0, 5), kHead}) {
        CLOCK clock;
        LoopbackServer server([&](LoopbackConnection& connection) {
            (void)connection.ReadRequest();
            connection.Write(sent);
            clock.runs = true;
            connection.WaitUntilClientLeaves();
        });
        const milliseconds start(clock.now);
        const FETCHED fetched = Get(server.Url(L"/"), clock.Surroundings());
        EXPECT_FALSE(fetched.well);
        EXPECT_EQ(fetched.error, L"The service does not answer");
        const milliseconds passed = milliseconds(clock.now) - start;
        EXPECT_GE(passed, seconds(30));
        EXPECT_LE(passed, seconds(35)) << "but for the looks before the last byte";
    }
}

TEST(HttpClient, WaitsAlmostThirtySecondsForAByte) {
    CLOCK clock;
    LoopbackServer server([&](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        clock.Advance(milliseconds(29'900));
        connection.Write(Answer("at last"));
    });
    EXPECT_EQ(Get(server.Url(L"/"), clock.Surroundings()).body, "at last");
}

TEST(HttpClient, AByteNowAndThenDoesNotHoldTheQueueForEver) {
    CLOCK clock;
    LoopbackServer server([&](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write(kHead);
        while (connection.Write("x")) {
            clock.Advance(seconds(1));
        }
    });
    FETCH_SURROUNDINGS surroundings = clock.Surroundings();
    surroundings.limits.silence = std::chrono::hours(24); // the clock may run ahead of the reader
    const FETCHED fetched = Get(server.Url(L"/"), surroundings);
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"The service does not answer");
}

namespace {

// A look-up that blocks until the test lets it go. Kept alive by the look-up's thread as well.
struct BLOCKED_LOOKUP {
    std::mutex lock;
    std::condition_variable changed;
    bool entered = false;
    bool released = false;

    void Enter() {
        std::unique_lock hold(lock);
        entered = true;
        changed.notify_all();
        changed.wait(hold, [this] { return released; });
    }
    void Release() {
        const std::scoped_lock hold(lock);
        released = true;
        changed.notify_all();
    }
};

} // namespace

// As the system's does when no file descriptor is left.
TEST(HttpClient, ALookUpThatThrowsIsAFailure) {
    FETCH_SURROUNDINGS surroundings;
    surroundings.lookUp = [](const std::string&, const std::string&) -> LOOKUP_RESULT {
        throw std::system_error(EMFILE, std::generic_category());
    };
    const FETCHED fetched = Get(L"http://host/", surroundings);
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"Too many open files");
}

TEST(HttpClient, GivesUpOnALookUpAfterTenSeconds) {
    auto blocked = std::make_shared<BLOCKED_LOOKUP>();
    CLOCK clock;
    FETCH_SURROUNDINGS surroundings = clock.Surroundings();
    surroundings.lookUp = [&clock, blocked](const std::string&, const std::string&) {
        clock.Advance(seconds(10));
        blocked->Enter();
        return LOOKUP_RESULT{};
    };
    const FETCHED fetched = Get(L"http://host/", surroundings);
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"The service does not answer");
    blocked->Release();
}

TEST(HttpClient, QuittingDoesNotWaitForALookUp) {
    auto blocked = std::make_shared<BLOCKED_LOOKUP>();
    auto quit = std::make_shared<std::atomic<bool>>(false);
    FETCH_SURROUNDINGS surroundings;
    surroundings.quit = quit.get();
    surroundings.lookUp = [quit, blocked](const std::string&, const std::string&) {
        *quit = true;
        blocked->Enter(); // until after Fetch has returned
        return LOOKUP_RESULT{};
    };
    const FETCHED fetched = Get(L"http://host/", surroundings);
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"Operation canceled");
    blocked->Release();
}

TEST(HttpClient, QuittingEndsATransferThatHangs) {
    for (const std::string_view sent : {std::string_view(), kHead.substr(0, 5), kHead}) {
        std::atomic<bool> quit{false};
        LoopbackServer server([&](LoopbackConnection& connection) {
            (void)connection.ReadRequest();
            connection.Write(sent);
            quit = true;
            connection.WaitUntilClientLeaves(); // which it does although nothing more comes
        });
        FETCH_SURROUNDINGS surroundings;
        surroundings.quit = &quit;
        const FETCHED fetched = Get(server.Url(L"/"), surroundings);
        EXPECT_FALSE(fetched.well);
        EXPECT_EQ(fetched.error, L"Operation canceled");
    }
}

TEST(HttpClient, TheAbortWordEndsATransferBetweenBlocks) {
    std::atomic<uint32_t> abort{0};
    LoopbackServer server([&](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        connection.Write(kHead);
        abort = 7;
        while (connection.Write("block after block")) {
        }
    });
    const FETCHED fetched = Get(server.Url(L"/"), {}, &abort);
    EXPECT_FALSE(fetched.well);
    EXPECT_EQ(fetched.error, L"Operation canceled");
}

TEST(HttpClient, ASetAbortWordLooksNothingUp) {
    const std::atomic<uint32_t> abort{1};
    LOOKUPS lookups;
    EXPECT_FALSE(Get(L"http://host/", lookups.Surroundings(), &abort).well);
    EXPECT_TRUE(lookups.asked.empty());
}
