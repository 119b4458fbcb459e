// Conversion of any image, with a database of any bytes and with one that has the image.
//
// Input: system (one byte), lengths of the stem (one byte) and the database (two), then stem, database
// and image.
#include "base/bytes.h"
#include "library/convert.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

std::span<const uint8_t> Take(std::span<const uint8_t>& input, size_t length) {
    const std::span<const uint8_t> taken = input.first(std::min(length, input.size()));
    input = input.subspan(taken.size());
    return taken;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 4) {
        return 0;
    }
    const auto system = static_cast<uint16_t>(data[0] % 8);
    std::span<const uint8_t> rest(data + 4, size - 4);
    const std::span<const uint8_t> stemBytes = Take(rest, data[1]);
    const std::span<const uint8_t> databaseBytes = Take(rest, LoadLittleEndian<uint16_t>(data + 2));
    const std::string stem(stemBytes.begin(), stemBytes.end());
    (void)SystemOfExtension(stem);
    (void)ValidExtension(system, stem);

    const std::vector<CGameFile> database =
        ParseDatabase(databaseBytes.data(), databaseBytes.size());
    CGameFile game;
    bool known = false;
    if (!BuildGame(system, stem, rest, database, game, known)) {
        Require(system == kSystemArcade);
        return 0;
    }
    // The game's own records as a database, which has the image.
    const std::vector<uint8_t> records = game.Serialise(false);
    const std::vector<CGameFile> own = ParseDatabase(records.data(), records.size());
    CGameFile again;
    Require(own.size() == 1 && BuildGame(system, stem, rest, own, again, known) && known);
    // Rarely, as packing takes most of the time.
    if (rest.size() % 64 == 1) {
        std::vector<uint8_t> file;
        Require(ConvertImage(system, stem, rest, database, file, known));
        Require(again.Parse(file.data(), file.size(), true));
        Require(std::ranges::equal(again.Data(), game.Data()));
    }
    return 0;
}
