#include "web/http_answer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace {

constexpr size_t kRoom = 4096;

std::span<const uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

struct OUTCOME {
    bool whole = false;
    std::wstring error;
    std::string body;

    bool operator==(const OUTCOME&) const = default;
};

// The answer in blocks of a size, and then the end of the stream.
OUTCOME Read(std::string_view answer, size_t blockSize = kRoom, size_t headerLimit = kRoom,
             size_t bodyLimit = kRoom) {
    HttpAnswer reader(headerLimit, bodyLimit);
    bool taken = true;
    for (size_t at = 0; taken && at < answer.size(); at += blockSize) {
        taken = reader.Take(Bytes(answer.substr(at, blockSize)));
    }
    const bool whole = taken && reader.End();
    return {
        whole, reader.Error(), {reader.Body().begin(), reader.Body().end()}
    };
}

OUTCOME Whole(std::string_view body) {
    return {true, L"", std::string(body)};
}

OUTCOME Refused(std::wstring_view error) {
    return {false, std::wstring(error), ""};
}

} // namespace

TEST(HttpAnswer, HasTheBodyAfterTheEmptyLine) {
    EXPECT_EQ(Read("HTTP/1.0 200 OK\r\nServer: x\r\n\r\nbody\r\n\r\nrest"),
              Whole("body\r\n\r\nrest"));
    EXPECT_EQ(Read("HTTP/1.1 200\r\nServer: x\r\n\r\n"), Whole(""));
}

TEST(HttpAnswer, MayHaveNoHeaders) {
    EXPECT_EQ(Read("HTTP/1.0 200 OK\r\n\r\nbody"), Whole("body"));
}

TEST(HttpAnswer, IsTheSameHoweverItIsCut) {
    constexpr std::string_view kAnswer =
        "HTTP/1.0 200 OK\r\nA: b\r\r\nContent-Length: 9\r\n\r\n\r\nbody\r\n\r\n";
    for (size_t size = 1; size <= kAnswer.size(); ++size) {
        EXPECT_EQ(Read(kAnswer, size), Whole("\r\nbody\r\n\r\n")) << size;
    }
}

TEST(HttpAnswer, MustBeginWithTheProtocol) {
    EXPECT_EQ(Read("ICY 200 OK\r\n\r\n"), Refused(L"Invalid response"));
    EXPECT_EQ(Read(" HTTP/1.0 200 OK\r\n\r\n"), Refused(L"Invalid response"));
    EXPECT_EQ(Read("http/1.0 200 OK\r\n\r\n"), Refused(L"Invalid response"));
    EXPECT_EQ(Read("\r\n\r\n"), Refused(L"Invalid response"));
}

TEST(HttpAnswer, OfAnotherCodeThan200IsRefused) {
    for (const std::string code :
         {"404", "302", "201", "20", "2000", "-200", "", "OK", "x200", "99999999999999999999"}) {
        EXPECT_EQ(Read("HTTP/1.0 " + code + " Text\r\n\r\nbody"), Refused(L"Invalid response code"))
            << code;
    }
}

TEST(HttpAnswer, IsRefusedAtTheStatusLineBeforeTheHeadersCome) {
    HttpAnswer reader(kRoom, kRoom);
    EXPECT_TRUE(reader.Take(Bytes("HTTP/1.0 404 Not Found\r")));
    EXPECT_FALSE(reader.Take(Bytes("\n")));
    EXPECT_EQ(reader.Error(), L"Invalid response code");
    EXPECT_FALSE(reader.Take(Bytes("HTTP/1.0 200 OK\r\n\r\n"))) << "it stays refused";
    EXPECT_FALSE(reader.End());
}

TEST(HttpAnswer, ThatEndsBeforeItsBodyIsRefused) {
    constexpr std::string_view kHead = "HTTP/1.0 200 OK\r\nServer: x\r\n\r\n";
    for (size_t size = 0; size < kHead.size(); ++size) {
        EXPECT_EQ(Read(kHead.substr(0, size)), Refused(L"Invalid response")) << size;
    }
    EXPECT_EQ(Read(kHead), Whole(""));
}

TEST(HttpAnswer, IsAsLongAsItIsWhateverItsLengthIsSaidToBe) {
    for (const std::string length : {"0", "2", "4", "400", "4294967296", "18446744073709551615",
                                     "99999999999999999999999", "-1", "four", ""}) {
        EXPECT_EQ(Read("HTTP/1.0 200 OK\r\nCONTENT-Length: " + length + "\r\n\r\nbody"),
                  Whole("body"))
            << length;
    }
}

TEST(HttpAnswer, ReservesNoMoreThanAMegabyteOnAPromise) {
    HttpAnswer reader(kRoom, size_t{1} << 30);
    ASSERT_TRUE(reader.Take(Bytes("HTTP/1.0 200 OK\r\ncontent-length: 1000000000\r\n\r\n")));
    EXPECT_LE(reader.Body().capacity(), size_t{1} << 20);
}

TEST(HttpAnswer, HasAsManyBytesOfHeadersAsItMayAndNoMore) {
    constexpr std::string_view kHead = "HTTP/1.0 200 OK\r\nServer: x";
    std::string answer(kHead);
    answer += "\r\n\r\nbody";
    constexpr size_t kBytes = kHead.size() + 4;
    for (const size_t block : {size_t{1}, size_t{7}, kRoom}) {
        EXPECT_EQ(Read(answer, block, kBytes), Whole("body")) << block;
        EXPECT_EQ(Read(answer, block, kBytes - 1), Refused(L"The answer's headers are too large"));
    }
}

TEST(HttpAnswer, NeedsNotEndForItsHeadersToBeTooLong) {
    HttpAnswer status(100, kRoom);
    EXPECT_TRUE(status.Take(Bytes(std::string(99, 'x'))));
    EXPECT_FALSE(status.Take(Bytes("x")));
    EXPECT_EQ(status.Error(), L"The answer's headers are too large");

    HttpAnswer headers(100, kRoom);
    EXPECT_TRUE(headers.Take(Bytes("HTTP/1.0 200 OK\r\n")));
    bool taken = true;
    size_t bytes = 0;
    for (; taken && bytes < 1000; bytes += 6) {
        taken = headers.Take(Bytes("a: b\r\n"));
    }
    EXPECT_FALSE(taken);
    EXPECT_LT(bytes, 110u);
    EXPECT_EQ(headers.Error(), L"The answer's headers are too large");
}

// However many bytes come at once: also where the line would be refused for what it says.
TEST(HttpAnswer, HasNoLongerAStatusLineThanItsHeadersMayBe) {
    constexpr size_t kLimit = 100;
    std::string longest(kLimit, 'x');
    longest.replace(kLimit - 2, 2, "\r\n");
    const std::string longer = "x" + longest;
    for (const size_t block : {size_t{1}, size_t{2}, size_t{7}, kRoom}) {
        EXPECT_EQ(Read(longest, block, kLimit), Refused(L"Invalid response")) << block;
        EXPECT_EQ(Read(longer, block, kLimit), Refused(L"The answer's headers are too large"))
            << block;
    }
}

TEST(HttpAnswer, HasAsLongABodyAsItMayAndNoLonger) {
    const std::string head = "HTTP/1.0 200 OK\r\n\r\n";
    for (const size_t block : {size_t{1}, size_t{7}, kRoom}) {
        EXPECT_EQ(Read(head + std::string(50, 'b'), block, kRoom, 50), Whole(std::string(50, 'b')));
        EXPECT_EQ(Read(head + std::string(51, 'b'), block, kRoom, 50),
                  Refused(L"The answer is too large"));
    }
}
