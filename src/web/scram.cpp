#include "web/scram.h"

#include "formats/sha256.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <algorithm>
#include <charconv>

namespace {

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

ScramKey Hmac(std::span<const uint8_t> key, std::string_view text) {
    ScramKey code{};
    unsigned size = 0;
    const std::span<const uint8_t> bytes = Bytes(text);
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), bytes.data(), bytes.size(),
         code.data(), &size);
    return code;
}

// In a name, '=' and ',' would be taken for the message's own.
std::string EscapedName(std::string_view name) {
    std::string out;
    for (const char c : name) {
        if (c == '=') {
            out += "=3D";
        } else if (c == ',') {
            out += "=2C";
        } else {
            out += c;
        }
    }
    return out;
}

// Takes "X=value" off the front of a message; false if it begins with something else.
bool TakeAttribute(std::string_view& message, char letter, std::string_view& value) {
    if (message.size() < 2 || message[0] != letter || message[1] != '=') {
        return false;
    }
    const size_t end = std::min(message.find(','), message.size());
    value = message.substr(2, end - 2);
    message.remove_prefix(std::min(end + 1, message.size()));
    return true;
}

} // namespace

std::string Base64Text(std::span<const uint8_t> bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0'); // it ends with a NUL
    const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                                     static_cast<int>(bytes.size()));
    text.resize(static_cast<size_t>(size));
    return text;
}

std::optional<std::vector<uint8_t>> Base64Bytes(std::string_view text) {
    if (text.size() % 4 != 0 || text.size() > size_t{1} << 16) {
        return std::nullopt;
    }
    std::vector<uint8_t> bytes(text.size() / 4 * 3 + 1);
    const int size =
        EVP_DecodeBlock(bytes.data(), Bytes(text).data(), static_cast<int>(text.size()));
    if (size < 0) {
        return std::nullopt;
    }
    // The padding counts as zero bytes there.
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    bytes.resize(static_cast<size_t>(size) - std::min(static_cast<size_t>(size), padding));
    if (Base64Text(bytes) != text) {
        return std::nullopt;
    }
    return bytes;
}

std::string MakeScramNonce() {
    std::array<uint8_t, 18> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        return {};
    }
    return Base64Text(bytes);
}

std::string ScramFirstMessage(std::string_view name, std::string_view nonce) {
    return "n=" + EscapedName(name) + ",r=" + std::string(nonce);
}

bool ReadScramChallenge(std::string_view text, std::string_view ownNonce,
                        SCRAM_CHALLENGE& challenge) {
    constexpr size_t kLongestChallenge = 1024;
    std::string_view rest = text;
    std::string_view nonce;
    std::string_view salt;
    std::string_view iterations;
    if (text.size() > kLongestChallenge || !TakeAttribute(rest, 'r', nonce) ||
        !TakeAttribute(rest, 's', salt) || !TakeAttribute(rest, 'i', iterations)) {
        return false;
    }
    const auto saltBytes = Base64Bytes(salt);
    uint32_t count = 0;
    const auto read =
        std::from_chars(iterations.data(), iterations.data() + iterations.size(), count);
    if (nonce.size() <= ownNonce.size() || !nonce.starts_with(ownNonce) || !saltBytes ||
        saltBytes->empty() || read.ec != std::errc() ||
        read.ptr != iterations.data() + iterations.size() || count < kFewestIterations ||
        count > kMostIterations) {
        return false;
    }
    challenge = {std::string(text), std::string(nonce), *saltBytes, count};
    return true;
}

SCRAM_KEYS DeriveScramKeys(std::string_view password, std::span<const uint8_t> salt,
                           uint32_t iterations) {
    ScramKey salted{};
    PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()), salt.data(),
                      static_cast<int>(salt.size()), static_cast<int>(iterations), EVP_sha256(),
                      static_cast<int>(salted.size()), salted.data());
    const SCRAM_KEYS keys{Hmac(salted, "Client Key"), Hmac(salted, "Server Key")};
    OPENSSL_cleanse(salted.data(), salted.size());
    return keys;
}

SCRAM_PROOF MakeScramProof(std::string_view firstMessage, const SCRAM_CHALLENGE& challenge,
                           const SCRAM_KEYS& keys) {
    // "biws" is the header "n,,": no channel binding.
    const std::string withoutProof = "c=biws,r=" + challenge.nonce;
    const std::string covered =
        std::string(firstMessage) + "," + challenge.text + "," + withoutProof;
    ScramKey proof = Hmac(Sha256(keys.client), covered);
    for (size_t i = 0; i < proof.size(); ++i) {
        proof[i] ^= keys.client[i];
    }
    return {withoutProof + ",p=" + Base64Text(proof), Hmac(keys.server, covered)};
}

bool ServerIsProved(const SCRAM_PROOF& proof, std::string_view lastMessage) {
    std::string_view value;
    if (!TakeAttribute(lastMessage, 'v', value)) {
        return false;
    }
    const auto signature = Base64Bytes(value);
    return signature && signature->size() == proof.serverSignature.size() &&
           CRYPTO_memcmp(signature->data(), proof.serverSignature.data(), signature->size()) == 0;
}

void WipeSecret(std::string& secret) {
    OPENSSL_cleanse(secret.data(), secret.size());
    secret.clear();
}
