// The client's side of SCRAM-SHA-256 (RFC 5802, RFC 7677): a proof that one knows a password, which
// never crosses the wire.
//
// The client sends a name and a nonce of its own. The service answers with a challenge: a longer nonce, the
// member's salt and a count of iterations. From these and the password come two keys, by the first of
// which the client makes its proof, by the second the service shows that it knows the member. The keys
// stand for the password towards this one service and may be kept in its place.
// Any thread. Passwords are taken as their UTF-8 bytes, without the normalisation of RFC 4013.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using ScramKey = std::array<uint8_t, 32>;

struct SCRAM_KEYS {
    ScramKey client{};
    ScramKey server{};
};

struct SCRAM_CHALLENGE {
    std::string text; // as it came, since the proof covers it
    std::string nonce;
    std::vector<uint8_t> salt;
    uint32_t iterations = 0;
};

struct SCRAM_PROOF {
    std::string message;        // what the client answers
    ScramKey serverSignature{}; // what the service must answer in turn
};

// Fewer iterations would make a stolen message easy to guess from; more would hold up the program.
inline constexpr uint32_t kFewestIterations = 4096;
inline constexpr uint32_t kMostIterations = 200'000;

[[nodiscard]] std::string Base64Text(std::span<const uint8_t> bytes);
// Nothing if the text is not exactly what Base64Text makes.
[[nodiscard]] std::optional<std::vector<uint8_t>> Base64Bytes(std::string_view text);

// 24 characters of the system's random generator; empty if it fails.
[[nodiscard]] std::string MakeScramNonce();

// The first message without its header, "n,,".
[[nodiscard]] std::string ScramFirstMessage(std::string_view name, std::string_view nonce);

// False if the text is no challenge, is for another nonce, or asks for too few or too many iterations.
[[nodiscard]] bool ReadScramChallenge(std::string_view text, std::string_view ownNonce,
                                      SCRAM_CHALLENGE& challenge);

[[nodiscard]] SCRAM_KEYS DeriveScramKeys(std::string_view password, std::span<const uint8_t> salt,
                                         uint32_t iterations);

[[nodiscard]] SCRAM_PROOF MakeScramProof(std::string_view firstMessage,
                                         const SCRAM_CHALLENGE& challenge, const SCRAM_KEYS& keys);

// Whether the service's last message, "v=...", shows that it knows the member.
[[nodiscard]] bool ServerIsProved(const SCRAM_PROOF& proof, std::string_view lastMessage);

// Overwrites a secret in a way that no compiler leaves out.
void WipeSecret(std::string& secret);
