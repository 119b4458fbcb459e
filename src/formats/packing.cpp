#include "formats/packing.h"

#include <LzmaDec.h>
#include <LzmaEnc.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr uint64_t kLargestRatio = 8192;

static_assert(kLzmaPropertyBytes == LZMA_PROPS_SIZE);

void* Allocate(void* /*unused*/, size_t size) {
    return std::malloc(size);
}

void Free(void* /*unused*/, void* address) {
    std::free(address);
}

CLzmaEncProps PackingSettings() {
    CLzmaEncProps settings;
    LzmaEncProps_Init(&settings);
    settings.level = 2;
    settings.dictSize = 1u << 22;
    settings.lc = 3;
    settings.lp = 0;
    settings.pb = 2;
    settings.fb = 32;
    settings.numThreads = 1;
    return settings;
}

// The SDK's stream decoder with its probabilities. The image itself is its dictionary, so that the
// dictionary size that a stream states allocates nothing.
class CDecoder {
public:
    explicit CDecoder(std::span<const uint8_t> properties) {
        LzmaDec_Construct(&state);
        ready =
            LzmaDec_AllocateProbs(&state, properties.data(),
                                  static_cast<unsigned>(properties.size()), &allocator) == SZ_OK;
    }
    ~CDecoder() { LzmaDec_FreeProbs(&state, &allocator); }
    CDecoder(const CDecoder&) = delete;
    CDecoder& operator=(const CDecoder&) = delete;

    [[nodiscard]] bool Decode(std::span<const uint8_t> stream, std::span<uint8_t> image) {
        if (!ready) {
            return false;
        }
        if (image.empty()) {
            return true;
        }
        LzmaDec_Init(&state);
        state.dic = image.data();
        state.dicBufSize = image.size();
        SizeT taken = stream.size();
        ELzmaStatus status = LZMA_STATUS_NOT_SPECIFIED;
        const SRes result = LzmaDec_DecodeToDic(&state, image.size(), stream.data(), &taken,
                                                LZMA_FINISH_ANY, &status);
        return result == SZ_OK && state.dicPos == image.size();
    }

private:
    ISzAlloc allocator{Allocate, Free};
    CLzmaDec state{};
    bool ready = false;
};

} // namespace

uint64_t LargestUnpackedSize(uint64_t packedSize) {
    return packedSize >= kImageLimit / kLargestRatio ? kImageLimit : packedSize * kLargestRatio;
}

std::vector<uint8_t> PackImage(std::span<const uint8_t> image) {
    if (image.size() > kImageLimit) {
        return {};
    }
    const CLzmaEncProps settings = PackingSettings();
    ISzAlloc allocator{Allocate, Free};
    // Data without any pattern grows by one or two per cent, and a tiny image by the coder's flush. A
    // buffer as large as the image would cut such a stream short; its capacity changes nothing else.
    size_t capacity = image.size() + image.size() / 32 + 1024;
    while (capacity <= 4 * kImageLimit) {
        std::vector<uint8_t> packed(kLzmaPropertyBytes + capacity);
        SizeT streamSize = capacity;
        SizeT propertySize = kLzmaPropertyBytes;
        const SRes result =
            LzmaEncode(packed.data() + kLzmaPropertyBytes, &streamSize, image.data(), image.size(),
                       &settings, packed.data(), &propertySize, 0, nullptr, &allocator, &allocator);
        if (result == SZ_OK) {
            packed.resize(kLzmaPropertyBytes + streamSize);
            return packed;
        }
        if (result != SZ_ERROR_OUTPUT_EOF) {
            return {};
        }
        capacity *= 2;
    }
    return {};
}

bool UnpackImage(std::span<const uint8_t> packed, std::span<uint8_t> image) {
    std::fill(image.begin(), image.end(), uint8_t{0});
    if (packed.size() < kLzmaPropertyBytes) {
        return false;
    }
    return CDecoder(packed.first(kLzmaPropertyBytes))
        .Decode(packed.subspan(kLzmaPropertyBytes), image);
}
