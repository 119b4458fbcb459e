// What the service learns of the games that are played.
#include "web/download_queue.h"
#include "web/play_reports.h"

#include "support/wait_until.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mutex>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const SERVICE_ADDRESSES kAddresses{L"http://host/q", L""};
const MEMBER_CREDENTIALS kAnna{L"anna", L"abc"};
constexpr uint32_t kSet = 6;
constexpr uint32_t kOtherSet = 7;

class Reports : public testing::Test {
protected:
    // The addresses that were asked since the last look.
    std::vector<std::wstring> Sent() {
        EXPECT_TRUE(queue.WaitUntilIdle(kLongestWait));
        queue.PumpRequests();
        const std::scoped_lock hold(lock);
        return std::exchange(urls, {});
    }
    bool Note(uint32_t key, uint32_t serial, const MEMBER_CREDENTIALS& member = kAnna) {
        return reports.Note(kAddresses, member, key, serial, 5, L"Moth");
    }

    std::mutex lock;
    std::vector<std::wstring> urls;
    DownloadQueue queue{[this](const std::wstring& url, std::wstring&, const std::atomic<uint32_t>*,
                               std::unique_ptr<uint8_t[]>&, uint32_t&, const std::atomic<bool>&) {
        const std::scoped_lock hold(lock);
        urls.push_back(url);
        return true;
    }};
    PlayReports reports{queue};
};

const std::wstring kStart = L"http://host/q?m=4&s=5&n=Moth&u=anna&t=abc";
const std::wstring kStop = L"http://host/q?m=5&s=5&n=Moth&u=anna&t=abc";

} // namespace

TEST_F(Reports, TellAStartAndAStopOnce) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Note(kSet, 1), round == 0);
    }
    EXPECT_THAT(Sent(), ElementsAre(kStart));
    for (int round = 0; round < 3; ++round) {
        EXPECT_FALSE(Note(kSet, 0));
    }
    EXPECT_THAT(Sent(), ElementsAre(kStop));
}

TEST_F(Reports, AnotherGameOnTheSetStopsTheFirst) {
    Note(kSet, 1);
    Note(kSet, 2);
    EXPECT_THAT(Sent(), ElementsAre(kStart, kStop, kStart));
}

TEST_F(Reports, TellNothingOfAPlayerWhoIsNoMember) {
    EXPECT_FALSE(Note(kSet, 1, {}));
    Note(kSet, 0, {});
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(Reports, TellNoStopWhoseStartWasNotTold) {
    Note(kSet, 1, {});
    Note(kSet, 0);
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(Reports, StopEverySetAtTheEnd) {
    Note(kSet, 1);
    Note(kOtherSet, 2);
    reports.StopAll(kAddresses, kAnna);
    reports.StopAll(kAddresses, kAnna);
    EXPECT_THAT(Sent(), ElementsAre(kStart, kStart, kStop, kStop));
}
