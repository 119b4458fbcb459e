// The login against services that are wrong, and its file. Right ones are in service_test.cpp.
#include "web/download_queue.h"
#include "web/member_login.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <string>

namespace {

const SERVICE_ADDRESSES kAddresses{L"http://host/", L""};

// The client's nonce in the address of a first message, whose other letters the address escapes.
std::string NonceIn(const std::wstring& url) {
    const size_t at = url.find(L"r%3D");
    std::string nonce;
    for (size_t i = at + 4; at != std::wstring::npos && i < url.size(); ++i) {
        if (url[i] == L'%') {
            nonce += static_cast<char>(std::stoi(url.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            nonce += static_cast<char>(url[i]);
        }
    }
    return nonce;
}

// A service that answers as the test says.
class Login : public testing::Test {
protected:
    using Answers = std::function<std::string(const std::wstring& url)>;

    DownloadQueue::FetchFunction Fetcher() {
        return [this](const std::wstring& url, std::wstring& error, const std::atomic<uint32_t>*,
                      std::unique_ptr<uint8_t[]>& data, uint32_t& size, const std::atomic<bool>&) {
            ++fetches;
            if (!url.starts_with(L"http://")) {
                error.clear(); // as Fetch does
                return false;
            }
            const std::string body = answers(url);
            if (body.empty()) {
                error = L"Connection refused";
                return false;
            }
            size = static_cast<uint32_t>(body.size());
            data = std::make_unique<uint8_t[]>(size);
            std::copy(body.begin(), body.end(), data.get());
            return true;
        };
    }
    // The text of the failure.
    std::wstring Failure(const Answers& service) {
        answers = service;
        login.Login(kAddresses, L"anna", "correct horse", true);
        EXPECT_TRUE(WaitUntil("the login", [&] {
            queue.PumpRequests();
            login.Update();
            return login.CurrentState() == MemberLogin::State::kOut || login.IsLoggedIn();
        }));
        EXPECT_FALSE(login.IsLoggedIn());
        EXPECT_EQ(login.Credentials().token, L"");
        EXPECT_FALSE(std::filesystem::exists(folder.Path() / "member.key"));
        return login.Error();
    }
    // A service whose challenge is right and whose last message is another.
    static Answers Ending(const std::string& last) {
        return [last](const std::wstring& url) {
            return url.find(L"?m=6") == std::wstring::npos
                       ? last
                       : "<SCRAM>r=" + NonceIn(url) + "more,s=AQID,i=4096</SCRAM>";
        };
    }

    TemporaryFolder folder;
    Answers answers; // before the login, then of the queue's thread
    std::atomic<int> fetches{0};
    DownloadQueue queue{Fetcher()};
    MemberLogin login{queue, folder.Path() / "member.key"};
};

constexpr std::string_view kNobodysSignature =
    "<SCRAM>v=AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=</SCRAM><TOKEN>abc</TOKEN>";

MEMBER_KEY SomeKey() {
    MEMBER_KEY key;
    key.service = "http://host/ with blanks";
    key.name = "anna b";
    key.salt = {1, 2, 3};
    key.iterations = 5000;
    key.keys.client.fill(7);
    key.keys.server.fill(9);
    return key;
}

} // namespace

TEST_F(Login, FailsWithAServiceThatDoesNotKnowTheMember) {
    EXPECT_EQ(Failure(Ending(std::string(kNobodysSignature))),
              L"The service could not show that it knows this member");
}

TEST_F(Login, FailsWithAnAnswerOfAnotherKind) {
    for (const char* last : {"<html>", "<SCRAM></SCRAM>", "<SCRAM>x</SCRAM>",
                             "<SCRAM>e=other-error</SCRAM><TOKEN>abc</TOKEN>"}) {
        EXPECT_EQ(Failure(Ending(last)), L"The service's answer is not that of a member login")
            << last;
    }
}

TEST_F(Login, FailsWithAChallengeOfAnotherKind) {
    for (const char* challenge :
         {"<html>", "<SCRAM>r=x,s=AQID,i=4096</SCRAM>", "<SCRAM>e=other-error</SCRAM>"}) {
        EXPECT_EQ(Failure([&](const std::wstring&) { return challenge; }),
                  L"The service's answer is not that of a member login")
            << challenge;
    }
    EXPECT_EQ(fetches, 3) << "and no proof is sent";
}

TEST_F(Login, MakesNoProofThatIsEasyToGuessFrom) {
    const auto weak = [](const std::wstring& url) {
        return "<SCRAM>r=" + NonceIn(url) + "more,s=AQID,i=1</SCRAM>";
    };
    EXPECT_EQ(Failure(weak), L"The service's answer is not that of a member login");
    EXPECT_EQ(fetches, 1);
}

TEST_F(Login, KeysOfAnAttemptThatWasGivenUpGoNowhere) {
    answers = Ending(std::string(kNobodysSignature));
    login.Login(kAddresses, L"anna", "correct horse", false);
    ASSERT_TRUE(queue.WaitUntilIdle(kLongestWait));
    queue.PumpRequests(); // the challenge comes, and the keys are begun
    EXPECT_EQ(fetches, 1) << "they are not made in the callback";
    login.Logout();
    login.Login(kAddresses, L"berta", "other horse", false);
    EXPECT_TRUE(WaitUntil("the second attempt", [&] {
        queue.PumpRequests();
        login.Update();
        return login.CurrentState() == MemberLogin::State::kOut;
    }));
    EXPECT_EQ(fetches, 3) << "one challenge of the first, two steps of the second";
}

TEST_F(Login, SaysWhyNothingCame) {
    EXPECT_EQ(Failure([](const std::wstring&) { return std::string(); }), L"Connection refused");
}

// The system refuses threads with a stack that is larger than any memory.
TEST_F(Login, SaysThatNoThreadCouldBeMade) {
    answers = Ending(std::string(kNobodysSignature));
    login.Login(kAddresses, L"anna", "correct horse", false);
    ASSERT_TRUE(queue.WaitUntilIdle(kLongestWait));
    pthread_attr_t before;
    pthread_attr_t huge;
    ASSERT_EQ(pthread_getattr_default_np(&before), 0);
    ASSERT_EQ(pthread_attr_init(&huge), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&huge, size_t{1} << 47), 0);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    queue.PumpRequests(); // the challenge comes
    EXPECT_EQ(pthread_setattr_default_np(&before), 0);
    pthread_attr_destroy(&huge);
    pthread_attr_destroy(&before);
    EXPECT_EQ(login.CurrentState(), MemberLogin::State::kOut);
    EXPECT_EQ(login.Error(), L"Resource temporarily unavailable");
    login.Update();
    EXPECT_EQ(fetches, 1) << "no proof was sent";
}

TEST_F(Login, SaysThatTheAddressIsOfAnotherForm) {
    login.Login({L"https://host/", L""}, L"anna", "correct horse", false);
    ASSERT_TRUE(queue.WaitUntilIdle(kLongestWait));
    queue.PumpRequests();
    EXPECT_EQ(login.Error(), L"The address of the web service must begin with http://");
}

TEST_F(Login, NeedsAServiceANameAndAPassword) {
    login.Login({}, L"anna", "correct horse", false);
    EXPECT_EQ(login.Error(), L"No web service is set");
    for (const auto& [name, password] : {
             std::pair{L"",     "secret"},
             std::pair{L"anna", ""      },
             std::pair{L"a\nb", "secret"}
    }) {
        login.Login(kAddresses, name, password, false);
        EXPECT_EQ(login.Error(), L"Please enter a name and a password");
        EXPECT_EQ(login.CurrentState(), MemberLogin::State::kOut);
    }
    EXPECT_EQ(fetches, 0);
}

TEST_F(Login, AnAnswerAfterItsEndTouchesNothing) {
    answers = Ending(std::string(kNobodysSignature));
    {
        MemberLogin gone(queue, folder.Path() / "other.key");
        gone.Login(kAddresses, L"anna", "correct horse", false);
    }
    login.Login(kAddresses, L"anna", "correct horse", false);
    login.Logout();
    EXPECT_EQ(login.CurrentState(), MemberLogin::State::kOut);
    ASSERT_TRUE(queue.WaitUntilIdle(kLongestWait));
    queue.PumpRequests();
    ASSERT_TRUE(queue.WaitUntilIdle(kLongestWait));
    EXPECT_EQ(login.CurrentState(), MemberLogin::State::kOut);
    EXPECT_EQ(login.Error(), L"");
    EXPECT_EQ(fetches, 2) << "no proof of either is sent";
}

TEST(MemberKey, WrittenKeysReadBack) {
    const TemporaryFolder folder;
    const auto path = folder.Path() / "member.key";
    std::string error;
    ASSERT_TRUE(WriteMemberKey(path, SomeKey(), error)) << error;
    MEMBER_KEY key;
    ASSERT_TRUE(ReadMemberKey(path, key));
    EXPECT_EQ(key.service, SomeKey().service);
    EXPECT_EQ(key.name, SomeKey().name);
    EXPECT_EQ(key.salt, SomeKey().salt);
    EXPECT_EQ(key.iterations, SomeKey().iterations);
    EXPECT_EQ(key.keys.client, SomeKey().keys.client);
    EXPECT_EQ(key.keys.server, SomeKey().keys.server);
}

TEST(MemberKey, ADamagedFileIsNoKey) {
    const TemporaryFolder folder;
    const auto path = folder.Path() / "member.key";
    std::string error;
    MEMBER_KEY key;
    EXPECT_FALSE(ReadMemberKey(path, key)) << "there is no file";
    ASSERT_TRUE(WriteMemberKey(path, SomeKey(), error));
    const auto bytes = folder.Read("member.key");
    for (size_t size = 0; size < bytes.size(); ++size) {
        folder.Write("cut.key", std::span(bytes).first(size));
        EXPECT_FALSE(ReadMemberKey(folder.Path() / "cut.key", key)) << size;
    }
    folder.Write("large.key", std::string(10'000, 'x'));
    EXPECT_FALSE(ReadMemberKey(folder.Path() / "large.key", key));
}

TEST(MemberKey, IsReadableByItsOwnerAlone) {
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    const fs::path path = folder.Write("member.key", std::string_view("an older file"));
    fs::permissions(path, fs::perms::all);
    std::string error;
    ASSERT_TRUE(WriteMemberKey(path, SomeKey(), error)) << error;
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}
