// MemberLogin: logs a member in at the web service and out again.
//
// Three queries carry it, beside those of service_texts.h. `?m=6&c=` asks for a challenge with SCRAM's
// first message, `?m=7&c=` answers with the proof, `?m=8&u=&t=` ends the login. Answers hold SCRAM's
// messages in the tag SCRAM; the last one adds TOKEN, which play reports carry, and ACCOUNT, a line that
// is shown to the member. `?m=9&u=&t=` asks whether the token is still good; the tag LOGIN says "ended" if not.
// The password is wiped once the keys are made from it. The keys are kept in a file of their own if the
// member wants that.
// Thread: main; callbacks come from the queue's PumpRequests and from Update. The keys, which take many rounds of
// hashing, are made by a thread of their own.
#pragma once

#include "web/download_list.h"
#include "web/member_key.h"
#include "web/service_texts.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <string>

class DownloadQueue;

inline constexpr std::wstring_view kLoginWrong = L"The name or the password is wrong";
inline constexpr std::wstring_view kLoginTooLate = L"The login took too long. Please try again.";
inline constexpr std::wstring_view kLoginNoSense =
    L"The service's answer is not that of a member login";
inline constexpr std::wstring_view kServiceUnproved =
    L"The service could not show that it knows this member";
inline constexpr std::wstring_view kPasswordNeeded = L"Please enter the password again";
inline constexpr std::wstring_view kNameNeeded = L"Please enter a name and a password";
inline constexpr std::wstring_view kLoginEnded = L"The login has ended. Please log in again.";
inline constexpr std::wstring_view kLoginNeedsService = L"No web service is set";

class MemberLogin {
public:
    enum class State { kOut, kAsking, kProving, kIn };

    // Both must outlive this object's use. `keyFile` need not exist.
    MemberLogin(DownloadQueue& downloads, std::filesystem::path keyFilePath);
    ~MemberLogin(); // ends what is under way; does not log out
    MemberLogin(const MemberLogin&) = delete;
    MemberLogin& operator=(const MemberLogin&) = delete;

    // Runs at every change of the state. May be empty.
    std::function<void()> changed;

    // Starts a login; one that is under way ends. `keep` keeps the keys for the next start. What is
    // wrong is said by Error, perhaps at once.
    void Login(const SERVICE_ADDRESSES& addresses, const std::wstring& name, std::string password,
               bool keep);
    // Once a round: goes on when the keys are made.
    void Update();
    // Logs in with the keys that were kept. False if none were kept for this service.
    [[nodiscard]] bool LoginWithKey(const SERVICE_ADDRESSES& addresses);
    // Asks the service whether the login still holds, as it ends by itself after some hours. If not, the kept keys log
    // in again; without them the member is logged out, and told. Nothing while nobody is logged in.
    void Check();
    // Tells the service, if a member is logged in, and forgets the token. The keys stay.
    void Logout();
    // Deletes the kept keys.
    void ForgetKey() const;

    [[nodiscard]] State CurrentState() const { return state; }
    [[nodiscard]] bool IsLoggedIn() const { return state == State::kIn; }
    // Empty if no member is logged in.
    [[nodiscard]] const MEMBER_CREDENTIALS& Credentials() const { return credentials; }
    [[nodiscard]] const std::wstring& Account() const { return account; } // to be shown
    [[nodiscard]] const std::wstring& Error() const { return error; }     // of the last attempt

private:
    void Begin(const SERVICE_ADDRESSES& addresses, const std::string& name);
    void Ask(std::wstring_view query, std::string_view message,
             void (MemberLogin::*answer)(const std::wstring& body));
    void TakeChallenge(const std::wstring& body);
    void TakeVerdict(const std::wstring& body);
    void TakeCheck(const std::wstring& body);
    void MakeKeys();
    void Prove();
    void Fail(std::wstring_view why);
    void End(); // forgets everything of an attempt
    void Change(State next);

    DownloadQueue& queue;
    std::filesystem::path keyFile;
    AbortWord abortWord;
    State state = State::kOut;
    SERVICE_ADDRESSES service;
    std::string password;           // until the challenge comes
    SCRAM_CHALLENGE challenge;      // the last one
    std::future<SCRAM_KEYS> making; // valid while keys are made; its end waits for them
    bool keysAwaited = false;       // by the attempt that is under way
    bool keepKey = false;
    std::optional<MEMBER_KEY> key; // kept, or just made
    std::string memberName;
    std::string nonce;
    std::string firstMessage;
    SCRAM_PROOF proof;
    MEMBER_CREDENTIALS credentials;
    std::wstring account;
    std::wstring error;
};
