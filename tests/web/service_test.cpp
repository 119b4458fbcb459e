// The client and the service of tools/service together.
#include "formats/zip.h"
#include "web/download_queue.h"
#include "web/http_client.h"
#include "web/media_archive.h"
#include "web/member_login.h"
#include "web/served_folder.h"
#include "web/service_texts.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <mutex>
#include <string>

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

namespace {

// Notes the addresses that are fetched, from the queue's thread.
struct FETCHES {
    std::mutex lock;
    std::vector<std::wstring> urls;

    DownloadQueue::FetchFunction Noted() {
        return [this](const std::wstring& url, std::wstring& error,
                      const std::atomic<uint32_t>* abort, std::unique_ptr<uint8_t[]>& data,
                      uint32_t& size, const std::atomic<bool>& quit) {
            {
                const std::scoped_lock hold(lock);
                urls.push_back(url);
            }
            FETCH_SURROUNDINGS surroundings;
            surroundings.quit = &quit;
            return Fetch(url, error, abort, data, size, surroundings);
        };
    }
    // The last one with this in it; empty if there is none.
    [[nodiscard]] std::wstring Last(std::wstring_view part) {
        const std::scoped_lock hold(lock);
        for (size_t i = urls.size(); i-- > 0;) {
            if (urls[i].find(part) != std::wstring::npos) {
                return urls[i];
            }
        }
        return {};
    }
};

struct ANSWER {
    bool called = false;
    std::wstring error;
    std::vector<uint8_t> body;
};

class Service : public testing::Test {
protected:
    ANSWER Ask(const std::wstring& url) {
        ANSWER answer;
        queue.QueueRequest(url, {}, 0, nullptr,
                           [&](const std::wstring& errorText, const std::wstring&, uint32_t,
                               const AbortWord&, const uint8_t* data, uint32_t size) {
                               answer = {
                                   true, errorText, {data, data + size}
                               };
                           });
        EXPECT_TRUE(WaitUntil("an answer", [&] {
            queue.PumpRequests();
            return answer.called;
        }));
        return answer;
    }
    std::string TextOf(const std::wstring& url) {
        const ANSWER answer = Ask(url);
        return {answer.body.begin(), answer.body.end()};
    }
    std::string Reports() {
        const auto bytes = served.Files().Read("reports.txt");
        return {bytes.begin(), bytes.end()};
    }
    void FinishLogin() {
        EXPECT_TRUE(WaitUntil("the login", [&] {
            queue.PumpRequests();
            login.Update();
            return login.CurrentState() == MemberLogin::State::kOut || login.IsLoggedIn();
        }));
    }
    void FinishCheck() {
        EXPECT_TRUE(queue.WaitUntilIdle(kLongestWait));
        queue.PumpRequests();
    }
    void LogIn(const std::wstring& name, const std::string& password, bool keep = false) {
        login.Login(served.Addresses(), name, password, keep);
        FinishLogin();
    }
    [[nodiscard]] fs::path KeyFile() const { return home.Path() / "member.key"; }

    TemporaryFolder home;
    ServedFolder served;
    FETCHES fetches;
    DownloadQueue queue{fetches.Noted()};
    MemberLogin login{queue, home.Path() / "member.key"};
};

} // namespace

TEST_F(Service, SendsNews) {
    served.Files().Write("news.txt", "<NEWS>\nToday: caf\xC3\xA9\n</NEWS><VERSION>721</VERSION>");
    served.Start();
    const NEWS_ANSWER news = ReadNews(Ask(NewsUrl(served.Addresses())).body);
    EXPECT_EQ(news.news, L"Today: caf\u00e9");
    EXPECT_EQ(news.version, 721);
}

TEST_F(Service, KnowsGamesByTheirNames) {
    served.Files().Write("games/l'\xC3\xA9t\xC3\xA9_ part 2.txt",
                         "<CHEATS>c</CHEATS><REVIEWS>long enough</REVIEWS><COVER>2</COVER>");
    served.Start();
    const GAME_INFORMATION game =
        ReadGameInformation(Ask(GameUrl(served.Addresses(), L"L'\u00e9t\u00e9: Part 2")).body);
    EXPECT_EQ(game.cheats, L"c");
    EXPECT_EQ(game.reviews, L"long enough");
    EXPECT_TRUE(ContentAvailable(game, 1));
}

TEST_F(Service, AnUnknownGameIsNotInTheDatabase) {
    served.Start();
    const ANSWER answer = Ask(GameUrl(served.Addresses(), L"Nobody Knows"));
    EXPECT_TRUE(answer.body.empty());
    EXPECT_EQ(answer.error, L"Invalid response code");
    EXPECT_EQ(GameInformationFailure(answer.error).trivia, L"Game isn't in database");
}

TEST_F(Service, SendsCovers) {
    ZipWriter zip;
    std::string error;
    const std::vector<uint8_t> picture(100'000, 'p');
    ASSERT_TRUE(zip.Add("box.png", picture, error));
    const std::vector<uint8_t> archive = zip.Finish(error);
    served.Files().Write("sms/covers/l'ann\xC3\xA9"
                         "e.zip",
                         archive);
    served.Start();
    const ANSWER answer = Ask(CoverUrl(served.Addresses(), 1,
                                       L"L'Ann\u00e9"
                                       L"e"));
    ASSERT_EQ(answer.body, archive);
}

TEST_F(Service, LogsAMemberIn) {
    served.AddMember("anna", "correct horse", "Founding member");
    served.Start();
    std::vector<MemberLogin::State> states;
    login.changed = [&] { states.push_back(login.CurrentState()); };
    LogIn(L"anna", "correct horse");
    EXPECT_TRUE(login.IsLoggedIn());
    EXPECT_EQ(login.Error(), L"");
    EXPECT_EQ(login.Account(), L"Founding member");
    EXPECT_EQ(login.Credentials().name, L"anna");
    EXPECT_NE(login.Credentials().token, L"");
    EXPECT_EQ(states, (std::vector{MemberLogin::State::kAsking, MemberLogin::State::kProving,
                                   MemberLogin::State::kIn}));
    EXPECT_FALSE(fs::exists(KeyFile())) << "the keys were not to be kept";
}

TEST_F(Service, ThePasswordNeverCrossesTheWire) {
    served.AddMember("anna", "correcthorse");
    served.Start();
    LogIn(L"anna", "correcthorse");
    ASSERT_TRUE(login.IsLoggedIn());
    EXPECT_EQ(fetches.Last(L"correcthorse"), L"");
}

TEST_F(Service, RefusesAWrongPasswordAndAnUnknownName) {
    served.AddMember("anna", "correct horse");
    served.Start();
    LogIn(L"anna", "wrong horse", true);
    EXPECT_FALSE(login.IsLoggedIn());
    EXPECT_EQ(login.Error(), L"The name or the password is wrong");
    EXPECT_FALSE(fs::exists(KeyFile()));
    LogIn(L"bert", "correct horse");
    EXPECT_EQ(login.Error(), L"The name or the password is wrong");
    EXPECT_EQ(login.Credentials().token, L"");
}

TEST_F(Service, RefusesAReplayedProof) {
    served.AddMember("anna", "correct horse");
    served.Start();
    LogIn(L"anna", "correct horse");
    ASSERT_TRUE(login.IsLoggedIn());
    const std::wstring proof = fetches.Last(L"?m=7&c=");
    ASSERT_NE(proof, L"");
    const std::string answer = TextOf(proof);
    EXPECT_THAT(answer, HasSubstr("e=unknown-challenge"));
    EXPECT_THAT(answer, Not(HasSubstr("TOKEN")));
}

TEST_F(Service, RefusesAProofThatComesTooLate) {
    served.AddMember("anna", "correct horse");
    served.Start({"--challenge-seconds", "0"});
    LogIn(L"anna", "correct horse");
    EXPECT_FALSE(login.IsLoggedIn());
    EXPECT_EQ(login.Error(), L"The login took too long. Please try again.");
}

TEST_F(Service, ReportsCarryTheToken) {
    served.AddMember("anna", "correct horse");
    served.Start();
    LogIn(L"anna", "correct horse");
    const SERVICE_ADDRESSES addresses = served.Addresses();
    MEMBER_CREDENTIALS forged = login.Credentials();
    forged.token += L"x";
    EXPECT_EQ(Ask(PlayReportUrl(addresses, PlayReport::kStarted, 1, L"Luciole", forged)).error,
              L"Invalid response code");
    EXPECT_FALSE(fs::exists(served.Files().Path() / "reports.txt"));
    const MEMBER_CREDENTIALS& anna = login.Credentials();
    EXPECT_EQ(Ask(PlayReportUrl(addresses, PlayReport::kStarted, 1, L"Luciole", anna)).error, L"");
    EXPECT_EQ(Ask(PlayReportUrl(addresses, PlayReport::kStopped, 5, L"A\tB", anna)).error, L"");
    EXPECT_THAT(Reports(), HasSubstr("\tanna\tstarted\t1\tLuciole\n"));
    EXPECT_THAT(Reports(), HasSubstr("\tanna\tstopped\t5\tAB\n"));
}

TEST_F(Service, ATokenEndsWithTheLogout) {
    served.AddMember("anna", "correct horse");
    served.Start();
    LogIn(L"anna", "correct horse");
    const std::wstring report =
        PlayReportUrl(served.Addresses(), PlayReport::kStarted, 1, L"Luciole", login.Credentials());
    EXPECT_EQ(Ask(report).error, L"");
    login.Logout();
    EXPECT_FALSE(login.IsLoggedIn());
    EXPECT_EQ(login.Credentials().token, L"");
    ASSERT_TRUE(queue.WaitUntilIdle(kLongestWait));
    EXPECT_EQ(Ask(report).error, L"Invalid response code");
}

TEST_F(Service, ATokenEndsInTime) {
    served.AddMember("anna", "correct horse");
    served.Start({"--token-seconds", "0"});
    LogIn(L"anna", "correct horse");
    EXPECT_TRUE(login.IsLoggedIn());
    EXPECT_EQ(Ask(PlayReportUrl(served.Addresses(), PlayReport::kStarted, 1, L"Luciole",
                                login.Credentials()))
                  .error,
              L"Invalid response code");
}

TEST_F(Service, ALoginThatHasEndedIsNoticed) {
    served.AddMember("anna", "correct horse");
    served.Start({"--token-seconds", "0"});
    LogIn(L"anna", "correct horse");
    ASSERT_TRUE(login.IsLoggedIn());
    login.Check();
    FinishCheck();
    EXPECT_FALSE(login.IsLoggedIn());
    EXPECT_EQ(login.Error(), L"The login has ended. Please log in again.");
}

TEST_F(Service, ALoginThatHasEndedBeginsAgainByItsKeptKeys) {
    served.AddMember("anna", "correct horse");
    served.Start({"--token-seconds", "0"});
    LogIn(L"anna", "correct horse", true);
    const std::wstring token = login.Credentials().token;
    login.Check();
    FinishCheck();
    FinishLogin();
    EXPECT_TRUE(login.IsLoggedIn());
    EXPECT_NE(login.Credentials().token, token);
}

TEST_F(Service, ALoginThatHoldsGoesOn) {
    served.AddMember("anna", "correct horse");
    served.Start();
    login.Check(); // nobody is logged in
    LogIn(L"anna", "correct horse");
    const std::wstring token = login.Credentials().token;
    login.Check();
    FinishCheck();
    EXPECT_TRUE(login.IsLoggedIn());
    EXPECT_EQ(login.Credentials().token, token);
    EXPECT_EQ(login.Error(), L"");
}

TEST_F(Service, KeptKeysLogInWithoutThePassword) {
    served.AddMember("anna", "correct horse");
    served.Start();
    EXPECT_FALSE(login.LoginWithKey(served.Addresses())) << "none are kept yet";
    LogIn(L"anna", "correct horse", true);
    ASSERT_TRUE(login.IsLoggedIn());
    EXPECT_EQ(fs::status(KeyFile()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    const auto bytes = home.Read("member.key");
    EXPECT_THAT(std::string(bytes.begin(), bytes.end()), Not(HasSubstr("horse")));

    MemberLogin next(queue, KeyFile());
    ASSERT_TRUE(next.LoginWithKey(served.Addresses()));
    EXPECT_TRUE(WaitUntil("the login", [&] {
        queue.PumpRequests();
        return next.IsLoggedIn();
    }));
    EXPECT_EQ(next.Credentials().name, L"anna");
    EXPECT_NE(next.Credentials().token, login.Credentials().token);
}

TEST_F(Service, KeptKeysEndWithANewPassword) {
    served.AddMember("anna", "correct horse");
    served.Start();
    LogIn(L"anna", "correct horse", true);
    ASSERT_TRUE(login.IsLoggedIn());
    served.AddMember("anna", "another horse");
    ASSERT_TRUE(login.LoginWithKey(served.Addresses()));
    FinishLogin();
    EXPECT_FALSE(login.IsLoggedIn());
    EXPECT_EQ(login.Error(), L"Please enter the password again");
}

TEST_F(Service, KeptKeysAreForOneService) {
    served.AddMember("anna", "correct horse");
    served.Start();
    LogIn(L"anna", "correct horse", true);
    EXPECT_FALSE(login.LoginWithKey({L"http://127.0.0.1:1/", L""}));
    EXPECT_FALSE(login.LoginWithKey({}));
    login.ForgetKey();
    EXPECT_FALSE(login.LoginWithKey(served.Addresses()));
}
