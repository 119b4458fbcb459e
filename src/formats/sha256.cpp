#include "formats/sha256.h"

#include <openssl/evp.h>

#include <cstdio>
#include <cstdlib>

Sha256Digest Sha256(std::span<const uint8_t> bytes) {
    Sha256Digest digest{};
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) !=
        1) {
        // Only running out of memory gets here. A made-up digest would identify games wrongly.
        std::fputs("the crypto library cannot compute SHA-256\n", stderr);
        std::abort();
    }
    return digest;
}

std::string HexText(std::span<const uint8_t> bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}
