#include "formats/packing.h"

#include <lzma.h>

#include <algorithm>

namespace {

constexpr uint64_t kLargestRatio = 8192;
constexpr uint32_t kPropertyBases[] = {9, 5}; // byte 0 is (pb * 5 + lp) * 9 + lc
constexpr uint32_t kMostLcAndLp = 4;          // the decoder's limit; we write less

// The file format's packer settings, spelled out because presets differ between versions.
lzma_options_lzma PackingSettings(uint64_t imageSize) {
    lzma_options_lzma settings{};
    settings.dict_size = uint32_t{1} << 22;
    settings.lc = 3;
    settings.lp = 0;
    settings.pb = 2;
    settings.mode = LZMA_MODE_FAST;
    settings.nice_len = 32;
    settings.mf = LZMA_MF_HC4;
    settings.depth = 16;
    settings.ext_flags = 0; // no end marker: the container knows the size
    settings.ext_size_low = static_cast<uint32_t>(imageSize);
    settings.ext_size_high = static_cast<uint32_t>(imageSize >> 32);
    return settings;
}

void PutProperties(const lzma_options_lzma& settings, uint8_t* bytes) {
    bytes[0] = static_cast<uint8_t>(
        (settings.pb * kPropertyBases[1] + settings.lp) * kPropertyBases[0] + settings.lc);
    for (int i = 0; i < 4; ++i) {
        bytes[i + 1] = static_cast<uint8_t>(settings.dict_size >> (8 * i));
    }
}

// False for invalid properties. The stated dictionary is capped at the image's size: no match can reach
// farther back, and a stream must not decide how much memory is used.
bool TakeProperties(const uint8_t* bytes, size_t imageSize, lzma_options_lzma& settings) {
    settings = {};
    const uint32_t packed = bytes[0];
    settings.lc = packed % kPropertyBases[0];
    settings.lp = packed / kPropertyBases[0] % kPropertyBases[1];
    settings.pb = packed / kPropertyBases[0] / kPropertyBases[1];
    for (int i = 0; i < 4; ++i) {
        settings.dict_size |= uint32_t{bytes[i + 1]} << (8 * i);
    }
    const auto most = static_cast<uint32_t>(std::min<uint64_t>(imageSize, kImageLimit));
    settings.dict_size = std::max<uint32_t>(std::min(settings.dict_size, most), LZMA_DICT_SIZE_MIN);
    return settings.pb <= LZMA_PB_MAX && settings.lc + settings.lp <= kMostLcAndLp;
}

} // namespace

uint64_t LargestUnpackedSize(uint64_t packedSize) {
    return packedSize >= kImageLimit / kLargestRatio ? kImageLimit : packedSize * kLargestRatio;
}

std::vector<uint8_t> PackImage(std::span<const uint8_t> image) {
    if (image.size() > kImageLimit) {
        return {};
    }
    lzma_options_lzma settings = PackingSettings(image.size());
    const lzma_filter filters[] = {
        {LZMA_FILTER_LZMA1EXT, &settings},
        {LZMA_VLI_UNKNOWN,     nullptr  }
    };
    // Data without any pattern grows by one or two per cent, and a tiny image by the coder's flush.
    size_t capacity = image.size() + image.size() / 32 + 1024;
    while (capacity <= 4 * kImageLimit) {
        std::vector<uint8_t> packed(kLzmaPropertyBytes + capacity);
        size_t end = kLzmaPropertyBytes;
        const lzma_ret result = lzma_raw_buffer_encode(filters, nullptr, image.data(), image.size(),
                                                       packed.data(), &end, packed.size());
        if (result == LZMA_OK) {
            PutProperties(settings, packed.data());
            packed.resize(end);
            return packed;
        }
        if (result != LZMA_BUF_ERROR) {
            return {};
        }
        capacity *= 2;
    }
    return {};
}

// Decodes a stream of unknown size until the image is full, with or without an end marker.
bool UnpackImage(std::span<const uint8_t> packed, std::span<uint8_t> image) {
    std::fill(image.begin(), image.end(), uint8_t{0});
    lzma_options_lzma settings{};
    if (packed.size() < kLzmaPropertyBytes ||
        !TakeProperties(packed.data(), image.size(), settings)) {
        return false;
    }
    if (image.empty()) {
        return true;
    }
    const lzma_filter filters[] = {
        {LZMA_FILTER_LZMA1, &settings},
        {LZMA_VLI_UNKNOWN,  nullptr  }
    };
    lzma_stream stream = LZMA_STREAM_INIT;
    if (lzma_raw_decoder(&stream, filters) != LZMA_OK) {
        return false;
    }
    stream.next_in = packed.data() + kLzmaPropertyBytes;
    stream.avail_in = packed.size() - kLzmaPropertyBytes;
    stream.next_out = image.data();
    stream.avail_out = image.size();
    lzma_ret result = LZMA_OK;
    while (result == LZMA_OK && stream.avail_out != 0) {
        result = lzma_code(&stream, LZMA_RUN);
    }
    lzma_end(&stream);
    return stream.avail_out == 0;
}
