#include "library/database_file.h"

#include "facts/machine_facts.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

constexpr size_t kTagBytes = 4;
constexpr uint8_t kNoRom = 255;

// Reads one entry record by record and knows where it is.
class EntryReader {
public:
    EntryReader(std::span<const uint8_t> file, size_t start)
        : bytes(file)
        , at(start) {}

    // False with `reason` filled; At() is then the byte that is wrong.
    bool Read(std::string& reason);
    [[nodiscard]] size_t At() const { return at; }
    [[nodiscard]] const GAME_HEADER& Header() const { return header; }
    [[nodiscard]] std::string Title() const;

private:
    // Copies the record here, which must end before `end`.
    template <typename Record>
    bool Take(Record& record, size_t end, std::string& reason);
    bool TakeRecord(size_t end, std::string& reason);
    bool TakeMachineRecord(size_t end, std::string& reason);
    bool CheckHash(size_t headerAt, std::string& reason);
    bool CheckSums(size_t headerAt, std::string& reason);
    bool Fits(size_t size, size_t end, std::string& reason) const;
    [[nodiscard]] std::string TagHere() const;

    std::span<const uint8_t> bytes;
    size_t at;
    GAME_HEADER header{};
    std::vector<NAME_RECORD> names;
    std::vector<size_t> nameOffsets;
    std::vector<ROM_RECORD> roms;
    size_t machineRecords = 0;
};

bool Fail(std::string& reason, std::string text) {
    reason = std::move(text);
    return false;
}

std::string EntryReader::Title() const {
    if (names.empty()) {
        return {};
    }
    const auto& title = names.front().title;
    return {std::begin(title), std::find(std::begin(title), std::end(title), '\0')};
}

// The four letters here; empty if fewer bytes are left.
std::string EntryReader::TagHere() const {
    if (bytes.size() - at < kTagBytes) {
        return {};
    }
    const auto tag = bytes.subspan(at, kTagBytes);
    return {tag.begin(), tag.end()};
}

bool EntryReader::Fits(size_t size, size_t end, std::string& reason) const {
    if (size > bytes.size() - at) {
        return Fail(reason, "the file ends within the record " + TagHere());
    }
    if (size > end - at) {
        return Fail(reason,
                    "the record " + TagHere() + " reaches beyond the size that the header states");
    }
    return true;
}

template <typename Record>
bool EntryReader::Take(Record& record, size_t end, std::string& reason) {
    if (!Fits(sizeof record, end, reason)) {
        return false;
    }
    std::memcpy(&record, bytes.data() + at, sizeof record);
    at += sizeof record;
    return true;
}

uint32_t MachineRecordSize(uint16_t system) {
    CGameFile game;
    game.Create(false, system);
    return game.FixedRecordSize();
}

bool EntryReader::TakeMachineRecord(size_t end, std::string& reason) {
    const size_t size = TagHere() == "GDF0" ? kTagBytes : MachineRecordSize(header.system);
    if (!Fits(size, end, reason)) {
        return false;
    }
    at += size;
    ++machineRecords;
    return true;
}

bool EntryReader::TakeRecord(size_t end, std::string& reason) {
    const std::string tag = TagHere();
    if (tag.empty()) {
        return Fail(reason, "the file ends before the entry does");
    }
    if (tag == "NAME") {
        nameOffsets.push_back(at);
        return Take(names.emplace_back(), end, reason);
    }
    if (tag == "ROM0") {
        return Take(roms.emplace_back(), end, reason);
    }
    if (tag == "SMS0" || tag == "GAG0" || tag == "GDF0" || tag == "ARC0") {
        return TakeMachineRecord(end, reason);
    }
    if (tag == "GAME" || tag == "GADA") {
        return Fail(reason,
                    "a record " + tag +
                        " is within an entry, whose header states more records than it has");
    }
    return Fail(reason, "no record begins here");
}

// Taken over the bytes of the file, which a rewritten entry may not have: a short default record grows.
bool EntryReader::CheckHash(size_t headerAt, std::string& reason) {
    if (std::ranges::all_of(header.headerHash, [](uint8_t byte) { return byte == 0; })) {
        return true;
    }
    std::vector<uint8_t> records(bytes.begin() + static_cast<std::ptrdiff_t>(headerAt),
                                 bytes.begin() + static_cast<std::ptrdiff_t>(at));
    GAME_HEADER blank = header;
    blank.packedSize = 0;
    std::memset(blank.dataHash, 0, sizeof blank.dataHash);
    std::memset(blank.headerHash, 0, sizeof blank.headerHash);
    std::memcpy(records.data(), &blank, sizeof blank);
    if (!std::ranges::equal(Sha256(records), header.headerHash)) {
        at = headerAt;
        return Fail(reason, "the records are not those of the header's hash");
    }
    return true;
}

bool EntryReader::CheckSums(size_t headerAt, std::string& reason) {
    const uint64_t size =
        std::accumulate(roms.begin(), roms.end(), uint64_t{0},
                        [](uint64_t sum, const ROM_RECORD& rom) { return sum + rom.size; });
    if (size != header.rawSize) {
        at = headerAt;
        return Fail(reason, "the header states images of " + std::to_string(header.rawSize) +
                                " bytes, the pieces add up to " + std::to_string(size));
    }
    if (names.size() != machineRecords) {
        at = headerAt;
        return Fail(reason, "has " + std::to_string(names.size()) + " names and " +
                                std::to_string(machineRecords) + " machine records");
    }
    for (size_t i = 0; i < names.size(); ++i) {
        for (const uint8_t piece : names[i].romList) {
            if (piece == kNoRom) {
                break;
            }
            if (piece >= roms.size()) {
                at = nameOffsets[i];
                return Fail(reason, "the name lists piece " + std::to_string(piece) + " of " +
                                        std::to_string(roms.size()));
            }
        }
    }
    return true;
}

bool EntryReader::Read(std::string& reason) {
    if (TagHere() == "GADA") {
        GADA_RECORD gada{};
        if (!Take(gada, bytes.size(), reason)) {
            return false;
        }
    }
    if (TagHere() != "GAME") {
        return Fail(reason, "no entry begins here");
    }
    const size_t headerAt = at;
    if (!Take(header, bytes.size(), reason)) {
        return false;
    }
    if (FindMachineFacts(header.system) == nullptr) {
        at = headerAt;
        return Fail(reason, "there is no system " + std::to_string(header.system));
    }
    if (header.headerSize < sizeof header) {
        at = headerAt;
        return Fail(reason, "the header states a size of " + std::to_string(header.headerSize) +
                                " bytes, less than its own");
    }
    const size_t end = headerAt + header.headerSize;
    while (at < end) {
        if (!TakeRecord(end, reason)) {
            return false;
        }
    }
    return CheckSums(headerAt, reason) && CheckHash(headerAt, reason);
}

std::string FaultAt(size_t number, const EntryReader& reader, const std::string& reason) {
    const std::string title = reader.Title();
    return "entry " + std::to_string(number) + (title.empty() ? "" : " (" + title + ")") +
           ", byte " + std::to_string(reader.At()) + ": " + reason;
}

} // namespace

std::vector<uint8_t> WriteDatabase(std::span<CGameFile> entries) {
    std::vector<uint8_t> bytes;
    for (CGameFile& entry : entries) {
        const std::vector<uint8_t> records = entry.Serialise(true);
        bytes.insert(bytes.end(), records.begin(), records.end());
    }
    return bytes;
}

bool ReadDatabaseStrictly(std::span<const uint8_t> bytes, std::vector<CGameFile>& entries,
                          std::string& fault) {
    entries.clear();
    std::vector<CGameFile> read;
    for (size_t at = 0; at < bytes.size();) {
        const size_t number = read.size() + 1;
        EntryReader reader(bytes, at);
        std::string reason;
        CGameFile entry;
        if (!reader.Read(reason)) {
            fault = FaultAt(number, reader, reason);
            return false;
        }
        if (!read.empty() && read.front().Header().system != reader.Header().system) {
            fault = FaultAt(number, EntryReader(bytes, at),
                            "is of another system than the entries before it");
            return false;
        }
        if (!entry.Parse(bytes.data() + at, reader.At() - at, false)) {
            fault = FaultAt(number, EntryReader(bytes, at), "has more records than a game can");
            return false;
        }
        read.push_back(std::move(entry));
        at = reader.At();
    }
    entries = std::move(read);
    return true;
}
