#include "base/ranked_mutex.h"
#include "web/download_queue.h"
#include "web/loopback_server.h"

#include "support/wait_until.h"
#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <optional>
#include <set>

namespace {

// Answers that the test hands out, by address. A fetch waits until there is one, or the queue quits.
class Answers {
public:
    void Give(const std::wstring& url, std::optional<std::string> body) {
        const std::scoped_lock hold(lock);
        given[url] = std::move(body);
    }
    [[nodiscard]] bool WasAskedFor(const std::wstring& url) {
        const std::scoped_lock hold(lock);
        return asked.contains(url);
    }
    [[nodiscard]] DownloadQueue::FetchFunction Fetcher() {
        return [this](const std::wstring& url, std::wstring& error,
                      const std::atomic<uint32_t>* abort, std::unique_ptr<uint8_t[]>& data,
                      uint32_t& size, const std::atomic<bool>& quit) {
            {
                const std::scoped_lock hold(lock);
                asked.insert(url);
            }
            while (!quit && (abort == nullptr || *abort == 0)) {
                const std::scoped_lock hold(lock);
                if (given.contains(url)) {
                    const std::optional<std::string>& body = given[url];
                    error = body ? L"" : L"no answer";
                    size = body ? static_cast<uint32_t>(body->size()) : 0;
                    data = size > 0 ? std::make_unique<uint8_t[]>(size) : nullptr;
                    if (body) {
                        std::copy(body->begin(), body->end(), data.get());
                    }
                    return body.has_value();
                }
            }
            error = L"stopped";
            return false;
        };
    }

private:
    std::mutex lock;
    std::map<std::wstring, std::optional<std::string>> given;
    std::set<std::wstring> asked;
};

// A line for each callback.
struct LOG {
    std::vector<std::wstring> lines;

    DownloadCallback Writer() {
        return [this](const std::wstring& errorText, const std::wstring& userText, uint32_t kind,
                      const AbortWord& abortWord, const uint8_t* data, uint32_t size) {
            const std::wstring body = data == nullptr ? L"null" : std::wstring(data, data + size);
            lines.push_back(userText + L" " + std::to_wstring(kind) + L" " +
                            (abortWord ? std::to_wstring(*abortWord) : L"-") + L" " + body + L" " +
                            errorText);
        };
    }
};

testing::AssertionResult PumpUntil(DownloadQueue& queue, const LOG& log, size_t lines) {
    return WaitUntil("callbacks", [&] {
        queue.PumpRequests();
        return log.lines.size() >= lines;
    });
}

std::unique_ptr<CDownloadRequest> Request(const std::wstring& url) {
    auto request = std::make_unique<CDownloadRequest>();
    request->url = url;
    return request;
}

} // namespace

TEST(DownloadList, GivesResultsBackInTheOrderOfTheRequests) {
    DownloadList list;
    list.Add(Request(L"first"));
    list.Add(Request(L"second"));
    EXPECT_EQ(list.FirstUnfinished()->url, L"first");
    list.Finish(2, {});
    EXPECT_EQ(list.TakeFinished(), nullptr) << "the first one is not finished";
    EXPECT_EQ(list.FirstUnfinished()->url, L"first");
    list.Finish(1, {});
    EXPECT_EQ(list.FirstUnfinished(), nullptr);
    EXPECT_EQ(list.TakeFinished()->url, L"first");
    EXPECT_EQ(list.TakeFinished()->url, L"second");
    EXPECT_EQ(list.TakeFinished(), nullptr);
}

TEST(DownloadList, FindsARequestByItsNumberAfterOthersWereRemoved) {
    DownloadList list;
    for (const wchar_t* url : {L"first", L"second", L"third"}) {
        list.Add(Request(url));
    }
    list.Finish(1, {});
    ASSERT_NE(list.TakeFinished(), nullptr);
    CDownloadRequest outcome;
    outcome.result = true;
    outcome.errorText = L"text";
    outcome.data = std::make_unique<uint8_t[]>(3);
    outcome.size = 3;
    list.Finish(3, std::move(outcome));
    list.Finish(7, {}); // unknown
    EXPECT_EQ(list.FirstUnfinished()->url, L"second");
    list.Finish(2, {});
    ASSERT_NE(list.TakeFinished(), nullptr);
    const auto third = list.TakeFinished();
    EXPECT_TRUE(third->result);
    EXPECT_EQ(third->errorText, L"text");
    EXPECT_NE(third->data, nullptr);
    EXPECT_EQ(third->size, 3u);
    EXPECT_EQ(third->url, L"third");
}

TEST(DownloadQueue, HandsResultsToTheirCallbacks) {
    Answers answers;
    answers.Give(L"a", "body");
    answers.Give(L"b", std::nullopt);
    answers.Give(L"c", "");
    DownloadQueue queue(answers.Fetcher());
    LOG log;
    queue.QueueRequest(L"a", L"A", 1, nullptr, log.Writer());
    queue.QueueRequest(L"b", L"B", 2, std::make_shared<std::atomic<uint32_t>>(0), log.Writer());
    queue.QueueRequest(L"c", L"C", 3, nullptr, {}); // the answer is dropped
    queue.QueueRequest(L"c", L"C", 4, nullptr, log.Writer());
    ASSERT_TRUE(PumpUntil(queue, log, 3));
    EXPECT_EQ(log.lines,
              (std::vector<std::wstring>{L"A 1 - body ", L"B 2 0 null no answer", L"C 4 - null "}));
}

TEST(DownloadQueue, ChecksAnAnswerOnItsOwnThread) {
    Answers answers;
    answers.Give(L"good", "good");
    answers.Give(L"bad", "bad");
    answers.Give(L"empty", "");
    answers.Give(L"failed", std::nullopt);
    DownloadQueue queue(answers.Fetcher());
    LOG log;
    std::vector<std::string> checked; // read after the callbacks
    bool elsewhere = true;
    const DownloadCheck check =
        [&, here = std::this_thread::get_id()](std::span<const uint8_t> data, std::wstring& error) {
            elsewhere = elsewhere && std::this_thread::get_id() != here;
            checked.emplace_back(data.begin(), data.end());
            error = checked.back() == "good" ? L"" : L"refused";
            return checked.back() == "good";
        };
    for (const wchar_t* const url : {L"good", L"bad", L"empty", L"failed"}) {
        queue.QueueRequest(url, url, 0, nullptr, log.Writer(), check);
    }
    ASSERT_TRUE(PumpUntil(queue, log, 4));
    EXPECT_EQ(log.lines,
              (std::vector<std::wstring>{L"good 0 - good ", L"bad 0 - null refused",
                                         L"empty 0 - null ", L"failed 0 - null no answer"}));
    EXPECT_EQ(checked, (std::vector<std::string>{"good", "bad"}));
    EXPECT_TRUE(elsewhere);
}

TEST(DownloadQueue, WaitsForTheFirstRequestBeforeAnyCallback) {
    Answers answers;
    answers.Give(L"b", "b");
    DownloadQueue queue(answers.Fetcher());
    LOG log;
    queue.QueueRequest(L"a", L"A", 0, nullptr, log.Writer());
    queue.QueueRequest(L"b", L"B", 0, nullptr, log.Writer());
    ASSERT_TRUE(WaitUntil("the first fetch", [&] { return answers.WasAskedFor(L"a"); }));
    queue.PumpRequests();
    EXPECT_TRUE(log.lines.empty());
    answers.Give(L"a", "a");
    ASSERT_TRUE(PumpUntil(queue, log, 2));
    EXPECT_EQ(log.lines, (std::vector<std::wstring>{L"A 0 - a ", L"B 0 - b "}));
}

TEST(DownloadQueue, ACallbackMayQueueAndMayTakeAnyLock) {
    Answers answers;
    answers.Give(L"a", "a");
    DownloadQueue queue(answers.Fetcher());
    LOG log;
    RankedMutex<LockRank::kGuiApi> outermost; // a checking build ends if a lock is held
    queue.QueueRequest(L"a", L"A", 0, nullptr,
                       [&](const std::wstring&, const std::wstring&, uint32_t, const AbortWord&,
                           const uint8_t*, uint32_t) {
                           const std::scoped_lock hold(outermost);
                           for (int i = 0; i < 100; ++i) {
                               queue.QueueRequest(L"a", L"again", 0, nullptr, log.Writer());
                           }
                           queue.PumpRequests(); // does nothing here
                           EXPECT_TRUE(log.lines.empty());
                       });
    ASSERT_TRUE(PumpUntil(queue, log, 100));
    EXPECT_EQ(log.lines.back(), L"again 0 - a ");
}

TEST(DownloadQueue, IsFilledFromManyThreads) {
    Answers answers;
    answers.Give(L"a", "a");
    DownloadQueue queue(answers.Fetcher());
    LOG log;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 50; ++k) {
                queue.QueueRequest(L"a", L"A", 0, nullptr, log.Writer());
            }
        });
    }
    ASSERT_TRUE(PumpUntil(queue, log, 200));
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(log.lines.size(), 200u);
}

TEST(DownloadQueue, TheAbortWordEndsOneRequestAndNotTheNext) {
    Answers answers;
    answers.Give(L"b", "b");
    DownloadQueue queue(answers.Fetcher());
    LOG log;
    const auto word = std::make_shared<std::atomic<uint32_t>>(0);
    queue.QueueRequest(L"a", L"A", 0, word, log.Writer());
    queue.QueueRequest(L"b", L"B", 0, nullptr, log.Writer());
    ASSERT_TRUE(WaitUntil("the first fetch", [&] { return answers.WasAskedFor(L"a"); }));
    *word = 1;
    ASSERT_TRUE(PumpUntil(queue, log, 2));
    EXPECT_EQ(log.lines, (std::vector<std::wstring>{L"A 0 1 null stopped", L"B 0 - b "}));
}

TEST(DownloadQueue, StopsWithATransferInHandAndCallsNobody) {
    Answers answers;
    LOG log;
    DownloadQueue queue(answers.Fetcher());
    queue.QueueRequest(L"a", L"A", 0, nullptr, log.Writer());
    queue.QueueRequest(L"b", L"B", 0, nullptr, log.Writer());
    ASSERT_TRUE(WaitUntil("the first fetch", [&] { return answers.WasAskedFor(L"a"); }));
    queue.Stop();
    queue.Stop();
    EXPECT_FALSE(answers.WasAskedFor(L"b"));
}

TEST(DownloadQueue, IsIdleOnceEverythingIsFetched) {
    Answers answers;
    DownloadQueue queue(answers.Fetcher());
    EXPECT_TRUE(queue.WaitUntilIdle(std::chrono::milliseconds(0)));
    queue.QueueRequest(L"a", {}, 0, nullptr, {});
    EXPECT_FALSE(queue.WaitUntilIdle(std::chrono::milliseconds(0)));
    answers.Give(L"a", "a");
    EXPECT_TRUE(queue.WaitUntilIdle(kLongestWait));
}

TEST(DownloadQueue, FetchesFromTheNetworkUnlessToldOtherwise) {
    LoopbackServer server(Answering("HTTP/1.0 200 OK\r\n\r\nhello"));
    DownloadQueue queue;
    LOG log;
    queue.QueueRequest(server.Url(L"/"), L"A", 0, nullptr, log.Writer());
    queue.QueueRequest(L"", L"B", 0, nullptr, log.Writer()); // no service is set
    ASSERT_TRUE(PumpUntil(queue, log, 2));
    EXPECT_EQ(log.lines, (std::vector<std::wstring>{L"A 0 - hello ", L"B 0 - null "}));
}

TEST(DownloadQueue, StopsWhileAServerKeepsItWaiting) {
    std::atomic<bool> hanging{false};
    LoopbackServer server([&](LoopbackConnection& connection) {
        (void)connection.ReadRequest();
        hanging = true;
        connection.WaitUntilClientLeaves();
    });
    DownloadQueue queue;
    queue.QueueRequest(server.Url(L"/"), {}, 0, nullptr, {});
    ASSERT_TRUE(WaitUntil("the server", [&] { return hanging.load(); }));
    queue.Stop();
}
