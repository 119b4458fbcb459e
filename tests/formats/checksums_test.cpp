#include "formats/checksums.h"
#include "formats/sha256.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

std::span<const uint8_t> BytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

} // namespace

// The check values that the algorithms are published with.
TEST(Checksums, AreThoseOfTheStandards) {
    EXPECT_EQ(Crc32(BytesOf("123456789")), 0xCBF43926u);
    EXPECT_EQ(Crc32({}), 0u);
    EXPECT_EQ(HexText(Sha1(BytesOf("abc"))), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(HexText(Sha1({})), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}
