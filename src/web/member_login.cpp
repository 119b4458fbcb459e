#include "web/member_login.h"

#include "base/helper_thread.h"
#include "base/text.h"
#include "web/download_queue.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <system_error>
#include <utility>

namespace {

constexpr size_t kLongestName = 64;     // bytes
constexpr size_t kLongestToken = 256;   // characters
constexpr size_t kLongestAccount = 200; // characters

bool IsName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName &&
           std::none_of(name.begin(), name.end(),
                        [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; });
}

// Visible characters of ASCII, and not too many for an address.
bool IsToken(std::wstring_view token) {
    return !token.empty() && token.size() <= kLongestToken &&
           std::all_of(token.begin(), token.end(), [](wchar_t c) { return c > L' ' && c < 0x7F; });
}

std::wstring_view VerdictText(std::string_view message) {
    if (message == "e=invalid-proof" || message == "e=unknown-user") {
        return kLoginWrong;
    }
    return message == "e=unknown-challenge" ? kLoginTooLate : kLoginNoSense;
}

} // namespace

MemberLogin::MemberLogin(DownloadQueue& downloads, std::filesystem::path keyFilePath)
    : queue(downloads)
    , keyFile(std::move(keyFilePath)) {}

MemberLogin::~MemberLogin() {
    End();
}

void MemberLogin::Login(const SERVICE_ADDRESSES& addresses, const std::wstring& name,
                        std::string newPassword, bool keep) {
    Begin(addresses, Utf8FromWide(name));
    password = newPassword;
    WipeSecret(newPassword);
    keepKey = keep;
    key.reset();
    if (service.service.empty()) {
        Fail(kLoginNeedsService);
    } else if (!IsName(memberName) || password.empty()) {
        Fail(kNameNeeded);
    } else {
        Ask(L"?m=6&c=", "n,," + firstMessage, &MemberLogin::TakeChallenge);
        Change(State::kAsking);
    }
}

bool MemberLogin::LoginWithKey(const SERVICE_ADDRESSES& addresses) {
    MEMBER_KEY kept;
    if (addresses.service.empty() || !ReadMemberKey(keyFile, kept) ||
        kept.service != Utf8FromWide(addresses.service) || !IsName(kept.name)) {
        return false;
    }
    Begin(addresses, kept.name);
    keepKey = false;
    key = kept;
    Ask(L"?m=6&c=", "n,," + firstMessage, &MemberLogin::TakeChallenge);
    Change(State::kAsking);
    return true;
}

void MemberLogin::Logout() {
    if (IsLoggedIn()) {
        const std::wstring query =
            L"?m=8&u=" + UrlText(credentials.name) + L"&t=" + UrlText(credentials.token);
        queue.QueueRequest(QueryUrl(service, query), {}, 0, nullptr, {});
    }
    End();
    error.clear();
    Change(State::kOut);
}

void MemberLogin::Check() {
    if (!IsLoggedIn()) {
        return;
    }
    const std::wstring query =
        L"?m=9&u=" + UrlText(credentials.name) + L"&t=" + UrlText(credentials.token);
    queue.QueueRequest(QueryUrl(service, query), {}, 0, abortWord,
                       [this](const std::wstring&, const std::wstring&, uint32_t,
                              const AbortWord& word, const uint8_t* data, uint32_t size) {
                           if (*word == 0 && data != nullptr) {
                               TakeCheck(AnswerText({data, size}));
                           }
                       });
}

void MemberLogin::TakeCheck(const std::wstring& body) {
    if (GetTag(body, L"LOGIN", true) == L"ended" && !LoginWithKey(SERVICE_ADDRESSES(service))) {
        Fail(kLoginEnded);
    }
}

void MemberLogin::ForgetKey() const {
    std::error_code ignored;
    std::filesystem::remove(keyFile, ignored);
}

void MemberLogin::Begin(const SERVICE_ADDRESSES& addresses, const std::string& name) {
    End();
    error.clear();
    service = addresses;
    memberName = name;
    nonce = MakeScramNonce();
    firstMessage = ScramFirstMessage(memberName, nonce);
    abortWord = std::make_shared<std::atomic<uint32_t>>(0);
}

void MemberLogin::Ask(std::wstring_view query, std::string_view message,
                      void (MemberLogin::*answer)(const std::wstring& body)) {
    const std::wstring url =
        QueryUrl(service, std::wstring(query) + UrlText(WideFromUtf8(message)));
    queue.QueueRequest(
        url, {}, 0, abortWord,
        [this, url, answer](const std::wstring& errorText, const std::wstring&, uint32_t,
                            const AbortWord& word, const uint8_t* data, uint32_t size) {
            if (*word != 0) {
                return; // this attempt, or even this object, is gone
            }
            if (const auto why = WhyNothingCame(url, errorText, data); !why.empty()) {
                Fail(why);
                return;
            }
            (this->*answer)(AnswerText({data, size}));
        });
}

void MemberLogin::TakeChallenge(const std::wstring& body) {
    const std::string message = Utf8FromWide(GetTag(body, L"SCRAM", true));
    if (!ReadScramChallenge(message, nonce, challenge)) {
        Fail(message.starts_with("e=") ? VerdictText(message) : kLoginNoSense);
        return;
    }
    // The kept keys are of one salt and one count of iterations; new ones need the password.
    if (key && key->salt == challenge.salt && key->iterations == challenge.iterations) {
        Prove();
    } else if (password.empty()) {
        Fail(kPasswordNeeded);
    } else {
        MakeKeys();
    }
}

// The keys of an attempt that was given up, if they are still being made, are waited for.
void MemberLogin::MakeKeys() {
    const auto secret = std::make_shared<std::string>(password); // shared, so that no copy is left
    WipeSecret(password);
    const auto derive = [secret, salt = challenge.salt, iterations = challenge.iterations] {
        HelperBegins();
        const SCRAM_KEYS keys = DeriveScramKeys(*secret, salt, iterations);
        WipeSecret(*secret);
        return keys;
    };
    try {
        making = std::async(std::launch::async, derive);
        keysAwaited = true;
    } catch (const std::system_error& failure) { // the system gives no thread
        WipeSecret(*secret);
        Fail(WideFromUtf8(failure.what()));
    }
}

void MemberLogin::Update() {
    if (!making.valid() || making.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
        return;
    }
    const SCRAM_KEYS keys = making.get();
    if (std::exchange(keysAwaited, false)) {
        key = MEMBER_KEY{Utf8FromWide(service.service), memberName, challenge.salt,
                         challenge.iterations, keys};
        Prove();
    }
}

void MemberLogin::Prove() {
    proof = MakeScramProof(firstMessage, challenge, key->keys);
    Ask(L"?m=7&c=", proof.message, &MemberLogin::TakeVerdict);
    Change(State::kProving);
}

void MemberLogin::TakeVerdict(const std::wstring& body) {
    const std::string message = Utf8FromWide(GetTag(body, L"SCRAM", true));
    if (!message.starts_with("v=")) {
        Fail(VerdictText(message));
        return;
    }
    const std::wstring token = GetTag(body, L"TOKEN", true);
    if (!ServerIsProved(proof, message)) {
        Fail(kServiceUnproved);
        return;
    }
    if (!IsToken(token)) {
        Fail(kLoginNoSense);
        return;
    }
    credentials = {WideFromUtf8(memberName), token};
    account = PlainText(GetTag(body, L"ACCOUNT", true)).substr(0, kLongestAccount);
    std::string failure;
    if (keepKey && !WriteMemberKey(keyFile, *key, failure)) {
        error = WideFromUtf8(failure); // logged in all the same
    }
    key.reset();
    Change(State::kIn);
}

void MemberLogin::Fail(std::wstring_view why) {
    const std::wstring text(why);
    End();
    error = text;
    Change(State::kOut);
}

void MemberLogin::End() {
    if (abortWord) {
        *abortWord = 1;
        abortWord.reset();
    }
    WipeSecret(password);
    keysAwaited = false;
    key.reset();
    proof = {};
    credentials = {};
    account.clear();
}

void MemberLogin::Change(State next) {
    state = next;
    if (changed) {
        changed();
    }
}
