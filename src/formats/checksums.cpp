#include "formats/checksums.h"

#include <lzma.h>
#include <openssl/evp.h>

#include <cstdio>
#include <cstdlib>

uint32_t Crc32(std::span<const uint8_t> bytes) {
    return lzma_crc32(bytes.data(), bytes.size(), 0);
}

Sha1Digest Sha1(std::span<const uint8_t> bytes) {
    Sha1Digest digest{};
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha1(), nullptr) != 1) {
        std::fputs("the crypto library cannot compute SHA-1\n", stderr);
        std::abort();
    }
    return digest;
}
