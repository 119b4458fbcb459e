// Soft patches of any bytes, over an image of fixed bytes. A patch with checksums is given the right ones, or nearly all
// inputs would end there.
#include "base/bytes.h"
#include "formats/checksums.h"
#include "formats/soft_patch.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr uint64_t kLimit = uint64_t{1} << 16;
    constexpr std::array<uint8_t, 64> kImage{1, 2, 3, 4, 5, 6, 7, 8};
    std::vector<uint8_t> patch(data, data + size);
    if (patch.size() >= 16 && patch[0] != 'P') {
        uint8_t* const footer = patch.data() + patch.size() - 12;
        StoreLittleEndian(footer, Crc32(kImage));
        StoreLittleEndian(footer + 8, Crc32(std::span(patch).first(patch.size() - 4)));
    }
    std::vector<uint8_t> patched;
    std::string error;
    const bool done = ApplySoftPatch(patch, kImage, kLimit, patched, error);
    if (patched.size() > kLimit || done != error.empty() || (!done && !patched.empty())) {
        std::abort();
    }
    return 0;
}
