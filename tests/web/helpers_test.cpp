// The threads of this library let go of what they inherit from the main one.
#include "web/download_queue.h"
#include "web/member_login.h"
#include "web/name_lookup.h"

#include "support/counted_helpers.h"
#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>

namespace {

constexpr std::chrono::milliseconds kGlance{20};

TEST(WebHelpers, TheQueueIsOne) {
    const CountedHelpers helpers;
    const DownloadQueue queue;
    EXPECT_TRUE(WaitUntil("the queue's thread", [] { return CountedHelpers::Begun() == 1; }));
}

TEST(WebHelpers, ALookUpIsOne) {
    const CountedHelpers helpers;
    int begun = 0;
    NameLookup lookup(
        [&](const std::string&, const std::string&) {
            begun = CountedHelpers::Begun();
            return LOOKUP_RESULT{};
        },
        "host", "http");
    EXPECT_TRUE(WaitUntil("the look-up", [&] { return lookup.WaitFor(kGlance); }));
    EXPECT_EQ(begun, 1) << "before it begins";
}

TEST(WebHelpers, TheMakingOfKeysIsOne) {
    const TemporaryFolder folder;
    const CountedHelpers helpers;
    // A challenge that begins with the client's nonce, which the address has between "r%3D" and its end.
    DownloadQueue queue([](const std::wstring& url, std::wstring&, const std::atomic<uint32_t>*,
                           std::unique_ptr<uint8_t[]>& data, uint32_t& size,
                           const std::atomic<bool>&) {
        std::string body = "<SCRAM>r=";
        for (size_t i = url.find(L"r%3D") + 4; i < url.size(); ++i) {
            const bool escaped = url[i] == L'%';
            body += static_cast<char>(escaped ? std::stoi(url.substr(i + 1, 2), nullptr, 16)
                                              : static_cast<int>(url[i]));
            i += escaped ? 2 : 0;
        }
        body += "more,s=AQID,i=4096</SCRAM>";
        size = static_cast<uint32_t>(body.size());
        data = std::make_unique<uint8_t[]>(size);
        std::copy(body.begin(), body.end(), data.get());
        return true;
    });
    ASSERT_TRUE(WaitUntil("the queue's thread", [] { return CountedHelpers::Begun() == 1; }));
    MemberLogin login(queue, folder.Path() / "member.key");
    login.Login({L"http://host/", L""}, L"anna", "correct horse", false);
    EXPECT_TRUE(WaitUntil("the keys", [&] {
        queue.PumpRequests();
        login.Update();
        return CountedHelpers::Begun() == 2;
    }));
}

} // namespace
