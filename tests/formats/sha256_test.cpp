#include "formats/sha256.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

std::string HashOf(std::string_view text) {
    return HexText(Sha256({reinterpret_cast<const uint8_t*>(text.data()), text.size()}));
}

} // namespace

// The vectors are those published with FIPS 180.

TEST(Sha256, EmptyMessageHasItsPublishedHash) {
    EXPECT_EQ(HashOf(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(Sha256, ShortMessageHasItsPublishedHash) {
    EXPECT_EQ(HashOf("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Sha256, TwoBlockMessageHasItsPublishedHash) {
    EXPECT_EQ(HashOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Sha256, MillionLettersHaveTheirPublishedHash) {
    EXPECT_EQ(HashOf(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, HexTextIsLowerCaseWithLeadingZeros) {
    const uint8_t bytes[] = {0x00, 0x0A, 0xF0, 0xFF};
    EXPECT_EQ(HexText(bytes), "000af0ff");
}
