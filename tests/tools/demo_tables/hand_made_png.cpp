#include "tools/demo_tables/hand_made_png.h"

#include <zlib.h>

#include <string_view>

namespace {

constexpr uint8_t kPalette = 3; // the format's types of colour
constexpr uint8_t kTrueColour = 2;

void Append32(std::vector<uint8_t>& bytes, uint32_t value) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes.push_back(static_cast<uint8_t>(value >> shift));
    }
}

void AppendChunk(std::vector<uint8_t>& file, std::string_view tag,
                 const std::vector<uint8_t>& content) {
    std::vector<uint8_t> chunk(tag.begin(), tag.end());
    chunk.insert(chunk.end(), content.begin(), content.end());
    Append32(file, static_cast<uint32_t>(content.size()));
    file.insert(file.end(), chunk.begin(), chunk.end());
    Append32(file, static_cast<uint32_t>(crc32(0, chunk.data(), static_cast<uInt>(chunk.size()))));
}

// `rows` are the rows' bytes, each after the number of its filter.
std::vector<uint8_t> Png(unsigned width, unsigned height, uint8_t kind, unsigned colours,
                         const std::vector<uint8_t>& rows) {
    std::vector<uint8_t> file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<uint8_t> header;
    Append32(header, width);
    Append32(header, height);
    header.insert(header.end(), {8, kind, 0, 0, 0}); // bits, kind, methods
    AppendChunk(file, "IHDR", header);
    if (colours != 0) {
        AppendChunk(file, "PLTE", std::vector<uint8_t>(size_t{colours} * 3));
    }
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    std::vector<uint8_t> packed(size);
    compress(packed.data(), &size, rows.data(), static_cast<uLong>(rows.size()));
    packed.resize(size);
    AppendChunk(file, "IDAT", packed);
    AppendChunk(file, "IEND", {});
    return file;
}

uint8_t NumberOf(char letter) {
    return static_cast<uint8_t>(letter <= '9' ? letter - '0' : letter - 'a' + 10);
}

} // namespace

std::vector<uint8_t> HandMadePng(const std::vector<std::string>& rows, unsigned colours) {
    std::vector<uint8_t> bytes;
    for (const std::string& row : rows) {
        bytes.push_back(0); // no filter
        for (const char letter : row) {
            bytes.push_back(NumberOf(letter));
        }
    }
    return Png(static_cast<unsigned>(rows[0].size()), static_cast<unsigned>(rows.size()), kPalette,
               colours, bytes);
}

std::vector<uint8_t> PngWithoutPalette(unsigned width, unsigned height) {
    const std::vector<uint8_t> rows((size_t{width} * 3 + 1) * height);
    return Png(width, height, kTrueColour, 0, rows);
}
