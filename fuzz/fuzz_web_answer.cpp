// Answers of a web service, of any bytes: taken apart in blocks of any size, and read as each of the
// things that the program asks for. The first byte is the size of a block.
#include "base/text.h"
#include "web/http_answer.h"
#include "web/media_archive.h"
#include "web/scram.h"
#include "web/service_texts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr size_t kHeaderLimit = 512;
constexpr size_t kBodyLimit = 32768;

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

struct READ_ANSWER {
    HttpAnswer answer{kHeaderLimit, kBodyLimit};
    bool whole = false;
};

void Read(std::span<const uint8_t> bytes, size_t block, READ_ANSWER& read) {
    bool taken = true;
    for (size_t at = 0; taken && at < bytes.size(); at += block) {
        taken = read.answer.Take(bytes.subspan(at, std::min(block, bytes.size() - at)));
    }
    read.whole = taken && read.answer.End();
    Require(read.whole == read.answer.Error().empty());
    Require(read.answer.Body().size() <= kBodyLimit);
}

void CheckText(const std::wstring& text) {
    Require(text.size() <= kLongestText);
    Require(std::none_of(text.begin(), text.end(), [](wchar_t c) {
        return (c < L' ' && c != L'\n') || (c >= 0x7F && c < 0xA0) || c == 0x202E;
    }));
}

void ReadTexts(std::span<const uint8_t> body) {
    CheckText(ReadNews(body).news);
    const GAME_INFORMATION game = ReadGameInformation(body);
    CheckText(game.cheats);
    CheckText(game.reviews);
    CheckText(game.trivia);

    SCRAM_CHALLENGE challenge;
    const std::string message = Utf8FromWide(GetTag(AnswerText(body), L"SCRAM", true));
    if (ReadScramChallenge(message, "abc", challenge)) {
        Require(challenge.iterations >= kFewestIterations);
        Require(challenge.iterations <= kMostIterations);
        Require(challenge.nonce.starts_with("abc"));
        (void)ServerIsProved(MakeScramProof("n=a,r=abc", challenge, {}), message);
    }
}

void ReadArchive(std::span<const uint8_t> body) {
    const PICTURE_CHECK check = {[](std::span<const uint8_t> file, PICTURE_SIZE& size) {
                                     size = {static_cast<uint32_t>(file.size()), 1};
                                     return true;
                                 },
                                 [](std::span<const uint8_t> file) { return !file.empty(); }};
    const auto decode = [](std::span<const uint8_t> file, MEDIA_PICTURE& picture) {
        picture.width = static_cast<uint32_t>(file.size());
        picture.coverKind = file.empty() ? kNoBoxArt : file[0];
        return true;
    };
    std::string error;
    const bool good = CheckMediaArchive(body, check, error);
    Require(good == error.empty());
    const LOCAL_MEDIA media = ReadLocalMedia(body, decode);
    Require(media.boxArt.size() <= kMostBoxArt);
    Require(media.screenshots.size() <= kMostMediaScreenshots);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::span<const uint8_t> bytes(data + 1, size - 1);
    READ_ANSWER inBlocks;
    READ_ANSWER atOnce;
    Read(bytes, size_t{data[0]} + 1, inBlocks);
    Read(bytes, bytes.size() + 1, atOnce);
    Require(inBlocks.whole == atOnce.whole && inBlocks.answer.Error() == atOnce.answer.Error());
    if (atOnce.whole) {
        Require(inBlocks.answer.Body() == atOnce.answer.Body());
        ReadTexts(atOnce.answer.Body());
        ReadArchive(atOnce.answer.Body());
    } else {
        ReadTexts(bytes);
    }
    return 0;
}
