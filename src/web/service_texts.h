// What the web service is asked, and what its answers mean.
//
// The service's two base addresses are the player's, and empty until one is entered. Every address that
// is built from an empty one is empty too, and Fetch refuses it before it looks a name up.
// Answers are UTF-8 with tags, from a stranger: their texts are cut to a length, lose what is no
// printable character, and are never anything but text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

inline constexpr int32_t kProgramVersion = 720;
inline constexpr std::wstring_view kNewVersionTitle = L"New version available";
inline constexpr std::wstring_view kNewVersionText =
    L"A newer version of Ombrelune can be downloaded.";
inline constexpr std::wstring_view kConnectingText = L"Connecting to server to collect news...";
inline constexpr std::wstring_view kNoServiceText =
    L"No web service is set, so there is no news. Everything else works without one.";
inline constexpr std::wstring_view kBadServiceAddress =
    L"The address of the web service must begin with http://";
inline constexpr std::wstring_view kEmptyAnswer = L"The service's answer is empty";
inline constexpr std::wstring_view kGameUnknownText = L"Game isn't in database";
inline constexpr std::wstring_view kReviewInvitation =
    L"Nobody has written about this game yet. What would you tell a friend about it?";

// Where the service is. The program's settings for them are `web_service` and `web_images`.
struct SERVICE_ADDRESSES {
    std::wstring service; // takes the queries
    std::wstring images;  // above the folders of cover images
};

// Of a member who is logged in; empty otherwise.
struct MEMBER_CREDENTIALS {
    std::wstring name;
    std::wstring token;
};

enum class PlayReport { kStarted, kStopped };

// The text as part of a query or path: UTF-8, with every byte but letters, digits and "-._~" as %XX.
[[nodiscard]] std::wstring UrlText(std::wstring_view text);

// The service's address with a query, which begins with '?'. A host alone gets the slash it lacks.
[[nodiscard]] std::wstring QueryUrl(const SERVICE_ADDRESSES& addresses, std::wstring_view query);

[[nodiscard]] std::wstring NewsUrl(const SERVICE_ADDRESSES& addresses);
[[nodiscard]] std::wstring GameUrl(const SERVICE_ADDRESSES& addresses, std::wstring_view game);
// Empty too if no member is logged in.
[[nodiscard]] std::wstring PlayReportUrl(const SERVICE_ADDRESSES& addresses, PlayReport report,
                                         uint32_t system, std::wstring_view game,
                                         const MEMBER_CREDENTIALS& member);
// `system` is a machine's number; only the Master System has a folder of its own.
[[nodiscard]] std::wstring CoverUrl(const SERVICE_ADDRESSES& addresses, uint32_t system,
                                    std::wstring_view game);

// Why a request for `url` brought nothing to read, from what its callback got; empty if it brought something. A
// failure has no text if Fetch does not take addresses of that form, nor is an empty answer a failure.
[[nodiscard]] std::wstring WhyNothingCame(std::wstring_view url, const std::wstring& errorText,
                                          const uint8_t* data);

// What lies between the first <NAME> and the first </NAME>; empty if either is missing, or if they are
// the wrong way round. `trim` drops line ends at both ends.
[[nodiscard]] std::wstring GetTag(std::wstring_view body, std::wstring_view name, bool trim);

// An answer's body as text, up to a NUL.
[[nodiscard]] std::wstring AnswerText(std::span<const uint8_t> body);

// The text without control characters and marks that turn the direction of writing, with plain line
// ends, and cut to kLongestText characters.
inline constexpr size_t kLongestText = 65536;
[[nodiscard]] std::wstring PlainText(std::wstring_view text);

struct NEWS_ANSWER {
    std::wstring news;
    int32_t version = 0; // 0 if the answer names none
};
[[nodiscard]] NEWS_ANSWER ReadNews(std::span<const uint8_t> body);

struct GAME_INFORMATION {
    std::wstring cheats;
    std::wstring reviews;
    std::wstring trivia;
    int32_t cover = 0; // the server's revision of the cover; 0 if it has none
};
[[nodiscard]] GAME_INFORMATION ReadGameInformation(std::span<const uint8_t> body);
// The answer's texts, and for those that it lacks the local ones.
[[nodiscard]] GAME_INFORMATION WithLocalTexts(GAME_INFORMATION answer,
                                              const GAME_INFORMATION& local);
// What the three panels show after a failed request.
[[nodiscard]] GAME_INFORMATION GameInformationFailure(std::wstring_view errorText);
// Whether the service has another cover than the local one.
[[nodiscard]] bool ContentAvailable(const GAME_INFORMATION& information, int32_t localRevision);
