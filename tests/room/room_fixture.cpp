#include "room/room_fixture.h"

#include <array>

namespace {

uint32_t Crc(const Bytes& bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
        }
    }
    return ~crc;
}

Bytes BigEndian(uint32_t value) {
    return {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
            static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

Bytes PngChunk(std::string_view kind, const Bytes& data) {
    const Bytes body = Bytes(kind.begin(), kind.end()) + data;
    return BigEndian(static_cast<uint32_t>(data.size())) + body + BigEndian(Crc(body));
}

// Rows in blocks that are not compressed.
Bytes Stored(const Bytes& data) {
    constexpr size_t kLargestBlock = 65535;
    Bytes out{0x78, 0x01};
    uint32_t a = 1;
    uint32_t b = 0;
    for (size_t at = 0; at < data.size(); at += kLargestBlock) {
        const size_t length = std::min(kLargestBlock, data.size() - at);
        out.push_back(at + length == data.size() ? 1 : 0);
        out = out + Word(length) + Word(~length & 0xFFFF);
        out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
                   data.begin() + static_cast<std::ptrdiff_t>(at + length));
    }
    for (const uint8_t byte : data) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    return out + BigEndian(b << 16 | a);
}

} // namespace

Bytes PngFile(uint32_t width, uint32_t height, const std::vector<uint32_t>& pixels) {
    Bytes rows;
    for (uint32_t y = 0; y < height; ++y) {
        rows.push_back(0); // no filter
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t pixel = pixels[size_t{y} * width + x];
            const Bytes rgba = BigEndian(pixel << 8 | pixel >> 24);
            rows.insert(rows.end(), rgba.begin(), rgba.end());
        }
    }
    constexpr std::array<uint8_t, 8> kMark{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const Bytes head = BigEndian(width) + BigEndian(height) + Bytes{8, 6, 0, 0, 0};
    return Bytes(kMark.begin(), kMark.end()) + PngChunk("IHDR", head) +
           PngChunk("IDAT", Stored(rows)) + PngChunk("IEND", {});
}
