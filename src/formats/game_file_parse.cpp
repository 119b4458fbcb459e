// Records and images read from memory and from files.
#include "base/bytes.h"
#include "formats/game_file.h"
#include "formats/packing.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <system_error>

namespace {

constexpr size_t kTagBytes = 4;
// Far more than any game has: a file of short records must not take many times its size in memory.
constexpr size_t kMostRecords = 65536;

bool HasTag(std::span<const uint8_t> bytes, const char* tag) {
    return std::memcmp(bytes.data(), tag, kTagBytes) == 0;
}

// Copies a record from the front of the bytes; 0 when it does not fit.
template <typename Record>
size_t TakeFixed(std::span<const uint8_t> bytes, Record& record) {
    if (bytes.size() < sizeof record) {
        return 0;
    }
    std::memcpy(&record, bytes.data(), sizeof record);
    return sizeof record;
}

// Appends a record from the front of the bytes; 0 when it does not fit.
template <typename Record>
size_t TakeListed(std::span<const uint8_t> bytes, std::vector<Record>& records) {
    Record record{};
    const size_t taken = TakeFixed(bytes, record);
    if (taken > 0) {
        records.push_back(record);
    }
    return taken;
}

bool ReadWhole(std::ifstream& file, std::span<uint8_t> bytes) {
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.gcount() == static_cast<std::streamsize>(bytes.size());
}

} // namespace

size_t CGameFile::TakeRecord(std::span<const uint8_t> rest) {
    const bool haveGame = HasTag({reinterpret_cast<const uint8_t*>(header.tag), kTagBytes}, "GAME");
    if (HasTag(rest, "GAME")) {
        return haveGame ? 0 : TakeFixed(rest, header);
    }
    if (HasTag(rest, "GADA")) {
        return HasGada() ? 0 : TakeFixed(rest, gada);
    }
    if (!haveGame) {
        return 0;
    }
    if (HasTag(rest, "NAME")) {
        return TakeListed(rest, names);
    }
    if (HasTag(rest, "ROM0")) {
        return TakeListed(rest, roms);
    }
    if (HasTag(rest, "GDF0")) {
        TakeDefaultMachineRecord();
        return kTagBytes;
    }
    if (HasTag(rest, "SMS0") || HasTag(rest, "GAG0") || HasTag(rest, "ARC0")) {
        return TakeMachineRecord(rest);
    }
    return 0;
}

// The length comes from the system, not from the tag.
size_t CGameFile::TakeMachineRecord(std::span<const uint8_t> rest) {
    const size_t size = FixedRecordSize();
    if (size == 0 || rest.size() < size) {
        return 0;
    }
    MACHINE_RECORD record{};
    std::memcpy(record.bytes, rest.data(), size);
    machineRecords.push_back(record);
    return size;
}

// "GDF0" is the tag alone: the default record of a Game Gear file.
void CGameFile::TakeDefaultMachineRecord() {
    MACHINE_RECORD record{};
    if (header.system == kSystemGameGear) {
        GAG_RECORD gameGear{};
        std::memcpy(gameGear.tag, "GAG0", kTagBytes);
        gameGear.board = 1;
        gameGear.unknown22 = 1;
        std::memcpy(record.bytes, &gameGear, sizeof gameGear);
    } else {
        std::memcpy(record.bytes, "GDF0", kTagBytes);
    }
    machineRecords.push_back(record);
}

// Reads records until they add up to headerSize.
bool CGameFile::TakeRecords(std::span<const uint8_t> bytes, size_t& consumed) {
    consumed = 0;
    while (bytes.size() - consumed >= kTagBytes) {
        if (names.size() + roms.size() + machineRecords.size() > kMostRecords) {
            return false;
        }
        const size_t taken = TakeRecord(bytes.subspan(consumed));
        if (taken == 0) {
            return false;
        }
        consumed += taken;
        if (header.tag[0] == '\0') {
            continue; // only GADA so far
        }
        const uint64_t expected =
            uint64_t{header.headerSize} + (HasGada() ? sizeof(GADA_RECORD) : 0);
        if (consumed >= expected) {
            headerParsed = consumed == expected;
            return headerParsed;
        }
    }
    return false;
}

bool CGameFile::Unpack(std::span<const uint8_t> packed) {
    if (header.rawSize > LargestUnpackedSize(packed.size())) {
        return false;
    }
    data.resize(header.rawSize);
    UnpackImage(packed, data);
    dataUnpacked = true;
    return true;
}

bool CGameFile::Parse(const uint8_t* bytes, size_t size, bool unpack) {
    Reset();
    const std::span<const uint8_t> input(bytes, size);
    size_t consumed = 0;
    if (!TakeRecords(input, consumed)) {
        return false;
    }
    if (!unpack) {
        return true;
    }
    const std::span<const uint8_t> packed = input.subspan(consumed);
    return header.packedSize == packed.size() && Unpack(packed);
}

uint32_t GameRecordBytes(std::span<const uint8_t> front, uint64_t fileSize) {
    if (fileSize < sizeof(GAME_HEADER) || front.size() < sizeof(GAME_HEADER) ||
        !HasTag(front, "GAME")) {
        return 0;
    }
    const auto headerSize =
        LoadLittleEndian<uint32_t>(front.data() + offsetof(GAME_HEADER, headerSize));
    const bool fits = headerSize >= sizeof(GAME_HEADER) && headerSize <= fileSize;
    return fits && headerSize <= kGameFileLimit ? headerSize : 0;
}

bool LoadGameFile(bool headerOnly, const std::filesystem::path& path, CGameFile& game) {
    std::error_code code;
    const uint64_t fileSize = std::filesystem::file_size(path, code);
    if (code || fileSize < sizeof(GAME_HEADER)) {
        return false;
    }
    std::ifstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0); // no read-ahead
    file.open(path, std::ios::binary);
    std::array<uint8_t, sizeof(GAME_HEADER)> head{};
    if (!file || !ReadWhole(file, head)) {
        return false;
    }
    uint64_t wanted = GameRecordBytes(head, fileSize);
    if (wanted == 0) {
        return false;
    }
    if (!headerOnly) {
        wanted += LoadLittleEndian<uint32_t>(head.data() + offsetof(GAME_HEADER, packedSize));
        if (wanted != fileSize || wanted > kGameFileLimit) {
            return false;
        }
    }
    std::vector<uint8_t> bytes(wanted);
    std::copy(head.begin(), head.end(), bytes.begin());
    if (!ReadWhole(file, std::span(bytes).subspan(head.size()))) {
        return false;
    }
    return game.Parse(bytes.data(), bytes.size(), !headerOnly);
}

std::vector<CGameFile> ParseDatabase(const uint8_t* data, size_t size) {
    std::vector<CGameFile> entries;
    size_t offset = 0;
    while (offset < size) {
        CGameFile entry;
        if (!entry.Parse(data + offset, size - offset, false)) {
            break;
        }
        // The entry's size in the file. A rewritten entry differs where a Game Gear database has short
        // default records. Never zero: it includes the header.
        offset += size_t{entry.Header().headerSize} + (entry.HasGada() ? sizeof(GADA_RECORD) : 0);
        entries.push_back(std::move(entry));
    }
    return entries;
}
