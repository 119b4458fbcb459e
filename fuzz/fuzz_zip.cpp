// Archives of any bytes: opened, listed and unpacked.
#include "formats/zip.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr uint64_t kLimit = uint64_t{1} << 20;
    ZipReader reader;
    std::string error;
    if (!reader.Open({data, size}, error)) {
        if (error.empty()) {
            std::abort();
        }
        return 0;
    }
    for (uint32_t i = 0; i < std::min(reader.EntryCount(), 16u); ++i) {
        ZIP_ENTRY entry;
        std::vector<uint8_t> bytes;
        if (reader.Entry(i, entry)) {
            (void)LastPathComponent(entry.name);
        }
        error.clear();
        const bool unpacked = reader.Unpack(i, bytes, error, kLimit);
        if (bytes.size() > kLimit || (!unpacked && (!bytes.empty() || error.empty()))) {
            std::abort();
        }
    }
    return 0;
}
