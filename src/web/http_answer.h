// HttpAnswer: takes the answer to an HTTP request apart, block by block. It knows no socket.
//
// The answer is a stranger's: what it says of its own length is only a hint, and both its headers and
// its body have a limit. Once refused, an answer stays refused.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::wstring_view kInvalidResponse = L"Invalid response";
inline constexpr std::wstring_view kInvalidResponseCode = L"Invalid response code";
inline constexpr std::wstring_view kHeadersTooLarge = L"The answer's headers are too large";
inline constexpr std::wstring_view kAnswerTooLarge = L"The answer is too large";

class HttpAnswer {
public:
    HttpAnswer(size_t headerLimit,
               size_t bodyLimit); // bytes; the status line is one of the headers

    // The next bytes of the stream, however it is cut. False once the answer is refused.
    [[nodiscard]] bool Take(std::span<const uint8_t> block);
    // The stream has ended. False if that leaves no whole answer.
    [[nodiscard]] bool End();

    [[nodiscard]] const std::wstring& Error() const { return error; }
    [[nodiscard]] const std::vector<uint8_t>& Body() const { return body; }

private:
    enum class Part { kStatusLine, kHeaders, kBody, kRefused };

    [[nodiscard]] bool Refuse(std::wstring_view why);
    [[nodiscard]] bool TakeHead();
    [[nodiscard]] bool TakeStatusLine(std::string_view line);
    void TakeHeaders(std::string_view lines);
    [[nodiscard]] bool TakeBody(std::span<const uint8_t> block);

    size_t headerLimit;
    size_t bodyLimit;
    Part part = Part::kStatusLine;
    std::string head;    // everything before the body, until the body begins
    size_t searched = 0; // bytes of `head` in which no line end begins
    std::vector<uint8_t> body;
    std::wstring error;
};
