// Lists of games and rules of any bytes, made into a database: whatever is made of them is whole.
//
// Input: system (one byte), length of the rules (two), then rules and list.
#include "base/bytes.h"
#include "library/database_file.h"
#include "library/database_maker.h"

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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t kHead = 3;
    if (size < kHead) {
        return 0;
    }
    const auto system = static_cast<uint16_t>(data[0] % 7);
    const std::string_view text(reinterpret_cast<const char*>(data) + kHead, size - kHead);
    const size_t rulesSize = std::min<size_t>(LoadLittleEndian<uint16_t>(data + 1), text.size());
    std::vector<DATABASE_RULE> rules;
    LOGIQX_FILE list;
    std::string fault;
    if (!ParseDatabaseRules(text.substr(0, rulesSize), system, rules, fault)) {
        Require(rules.empty() && fault.starts_with("line "));
    }
    if (!ParseLogiqx(text.substr(rulesSize), list, fault)) {
        Require(list.games.empty() && fault.starts_with("line "));
        return 0;
    }
    if (FindMachineFacts(system) == nullptr) {
        return 0;
    }
    DATABASE_SOURCES sources;
    sources.system = system;
    sources.list = &list;
    sources.rules = rules;
    DATABASE_REPORT report;
    std::vector<CGameFile> entries = MakeDatabase(sources, report);
    const std::vector<uint8_t> written = WriteDatabase(entries);
    std::vector<CGameFile> read;
    Require(ReadDatabaseStrictly(written, read, fault));
    Require(WriteDatabase(read) == written);
    return 0;
}
