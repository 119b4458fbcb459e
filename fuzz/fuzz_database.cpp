// Databases of any bytes, read strictly: what the strict reader takes, the program's own reader takes the same.
#include "library/database_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<CGameFile> strict;
    std::string fault;
    if (!ReadDatabaseStrictly({data, size}, strict, fault)) {
        Require(strict.empty() && fault.starts_with("entry "));
        return 0;
    }
    std::vector<CGameFile> lenient = ParseDatabase(data, size);
    Require(lenient.size() == strict.size());
    const std::vector<uint8_t> written = WriteDatabase(strict);
    Require(WriteDatabase(lenient) == written);
    // Once written, a database stays as it is.
    std::vector<CGameFile> again = ParseDatabase(written.data(), written.size());
    Require(again.size() == strict.size() && WriteDatabase(again) == written);
    return 0;
}
