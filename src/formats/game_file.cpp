#include "formats/game_file.h"

#include "formats/packing.h"

#include <algorithm>
#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little,
              "records are copied between memory and files unchanged");

static_assert(offsetof(GAME_HEADER, headerSize) == 4 && offsetof(GAME_HEADER, rawSize) == 8 &&
              offsetof(GAME_HEADER, packedSize) == 12 && offsetof(GAME_HEADER, system) == 16 &&
              offsetof(GAME_HEADER, dataHash) == 24 && offsetof(GAME_HEADER, headerHash) == 56);
static_assert(offsetof(NAME_RECORD, playTypes) == 5 && offsetof(NAME_RECORD, title) == 16 &&
              offsetof(NAME_RECORD, altTitle) == 112 && offsetof(NAME_RECORD, regions) == 208 &&
              offsetof(NAME_RECORD, contentKey) == 216 &&
              offsetof(NAME_RECORD, contentKey2) == 260 && offsetof(NAME_RECORD, romList) == 304);
static_assert(offsetof(ROM_RECORD, size) == 4 && offsetof(ROM_RECORD, name) == 16 &&
              offsetof(ROM_RECORD, sha256) == 48);
static_assert(offsetof(SMS_RECORD, features) == 8 && offsetof(SMS_RECORD, input1) == 12 &&
              offsetof(SMS_RECORD, board) == 20 && offsetof(SMS_RECORD, kind) == 23);
static_assert(offsetof(GAG_RECORD, board) == 20 && offsetof(ARC_RECORD, board) == 8);

namespace {

constexpr uint8_t kNoRom = 255;
// A title may run on into the second one, up to this many bytes.
constexpr size_t kLongestTitle = 127;
static_assert(kLongestTitle < sizeof(NAME_RECORD::title) + sizeof(NAME_RECORD::altTitle));

// A text field up to its NUL or its full width.
std::string FieldText(std::span<const char> field) {
    return {field.begin(), std::find(field.begin(), field.end(), '\0')};
}

// The text up to its first NUL and at most `width` bytes.
std::string_view CutText(std::string_view text, size_t width) {
    return text.substr(0, std::min(text.find('\0'), width));
}

template <typename Record>
void AppendRecord(std::vector<uint8_t>& bytes, const Record& record, size_t size = sizeof(Record)) {
    const size_t before = bytes.size();
    bytes.resize(before + size);
    std::memcpy(bytes.data() + before, &record, size);
}

const char* MachineTag(uint16_t system) {
    switch (system) {
    case kSystemMasterSystem: return "SMS0";
    case kSystemGameGear: return "GAG0";
    case kSystemMegaDrive:
    case kSystemNes: return "GDF0";
    case kSystemArcade: return "ARC0";
    default: return nullptr;
    }
}

} // namespace

CGameFile::CGameFile() = default;
CGameFile::~CGameFile() = default;
CGameFile::CGameFile(CGameFile&&) noexcept = default;
CGameFile& CGameFile::operator=(CGameFile&&) noexcept = default;

void CGameFile::Reset() {
    gada = {};
    header = {};
    names.clear();
    roms.clear();
    machineRecords.clear();
    data = {};
    headerParsed = false;
    dataUnpacked = false;
}

void CGameFile::Create(bool withGada, uint16_t system) {
    Reset();
    std::memcpy(header.tag, "GAME", 4);
    header.system = system;
    if (withGada) {
        std::memcpy(gada.tag, "GADA", 4);
    }
}

void CGameFile::SetGadaText(std::string_view text) {
    const std::string_view cut = CutText(text, sizeof gada.text - 1);
    std::memset(gada.text, 0, sizeof gada.text);
    std::copy(cut.begin(), cut.end(), gada.text);
}

uint32_t CGameFile::HeaderSize(bool withGada) const {
    const size_t size = sizeof(GAME_HEADER) + names.size() * sizeof(NAME_RECORD) +
                        roms.size() * sizeof(ROM_RECORD) +
                        machineRecords.size() * FixedRecordSize() +
                        (withGada && HasGada() ? sizeof(GADA_RECORD) : 0);
    return static_cast<uint32_t>(size);
}

uint32_t CGameFile::TotalSize(bool withGada) const {
    return HeaderSize(withGada) + header.rawSize;
}

uint32_t CGameFile::FixedRecordSize() const {
    switch (header.system) {
    case kSystemMasterSystem: return sizeof(SMS_RECORD);
    case kSystemGameGear: return sizeof(GAG_RECORD);
    case kSystemMegaDrive:
    case kSystemNes: return 4;
    case kSystemArcade: return sizeof(ARC_RECORD);
    default: return 0;
    }
}

std::vector<uint8_t> CGameFile::Serialise(bool withGada) {
    std::vector<uint8_t> bytes;
    bytes.reserve(HeaderSize(withGada));
    if (withGada && HasGada()) {
        AppendRecord(bytes, gada);
    }
    std::memcpy(header.tag, "GAME", 4);
    header.headerSize = HeaderSize(false);
    AppendRecord(bytes, header);
    for (const NAME_RECORD& name : names) {
        AppendRecord(bytes, name);
    }
    for (const ROM_RECORD& rom : roms) {
        AppendRecord(bytes, rom);
    }
    for (const MACHINE_RECORD& record : machineRecords) {
        const bool isShort = std::memcmp(record.bytes, "GDF0", 4) == 0 && FixedRecordSize() > 4;
        // Under its own tag a default record would be read back as four bytes.
        AppendRecord(bytes, isShort ? FittedMachineRecord(record) : record, FixedRecordSize());
    }
    return bytes;
}

void CGameFile::ComputeHeaderHash() {
    std::memset(header.dataHash, 0, sizeof header.dataHash);
    std::memset(header.headerHash, 0, sizeof header.headerHash);
    const Sha256Digest hash = Sha256(Serialise(false));
    std::copy(hash.begin(), hash.end(), header.headerHash);
}

std::vector<uint8_t> CGameFile::WriteGame(std::span<const uint8_t> image) {
    header.packedSize = 0;
    ComputeHeaderHash();
    return WriteGameKeepingHash(image);
}

std::vector<uint8_t> CGameFile::WriteGameKeepingHash(std::span<const uint8_t> image) {
    if (image.size() != header.rawSize) {
        return {};
    }
    const std::vector<uint8_t> packed = PackImage(image);
    if (packed.empty()) {
        return {};
    }
    header.packedSize = static_cast<uint32_t>(packed.size());
    const Sha256Digest hash = Sha256(packed);
    std::copy(hash.begin(), hash.end(), header.dataHash);
    std::vector<uint8_t> file = Serialise(false);
    file.insert(file.end(), packed.begin(), packed.end());
    return file;
}

bool CGameFile::SetData(std::vector<uint8_t> image) {
    if (image.size() != header.rawSize) {
        return false;
    }
    data = std::move(image);
    dataUnpacked = true;
    return true;
}

void CGameFile::AddRom(std::string_view name, const Sha256Digest& sha256, uint32_t size) {
    ROM_RECORD rom{};
    std::memcpy(rom.tag, "ROM0", 4);
    rom.size = size;
    std::copy(sha256.begin(), sha256.end(), rom.sha256);
    roms.push_back(rom);
    header.rawSize += size;
    RenameRom(RomCount() - 1, name);
}

void CGameFile::AddNameFromTitle(std::string_view title, uint8_t reserved4, uint8_t playTypes,
                                 const MACHINE_RECORD& machineRecord) {
    std::array<char, sizeof(NAME_RECORD)> bytes{};
    const std::string_view cut = CutText(title, kLongestTitle);
    std::copy(cut.begin(), cut.end(), bytes.begin() + offsetof(NAME_RECORD, title));
    NAME_RECORD name{};
    std::memcpy(&name, bytes.data(), sizeof name);
    std::memcpy(name.tag, "NAME", 4);
    name.reserved4 = reserved4;
    name.playTypes = playTypes;
    AddNameCopy(name, machineRecord);
}

void CGameFile::AddNameCopy(const NAME_RECORD& nameRecord, const MACHINE_RECORD& machineRecord) {
    names.push_back(nameRecord);
    std::memset(names.back().romList, kNoRom, sizeof names.back().romList);
    AddMachineRecord(machineRecord);
}

void CGameFile::AddMachineRecord(const MACHINE_RECORD& record) {
    machineRecords.push_back(FittedMachineRecord(record));
}

// The record as this system's files hold it, cut to their length and with the system's tag.
MACHINE_RECORD CGameFile::FittedMachineRecord(const MACHINE_RECORD& record) const {
    MACHINE_RECORD fitted{};
    std::memcpy(fitted.bytes, record.bytes, FixedRecordSize());
    if (const char* tag = MachineTag(header.system)) {
        std::memcpy(fitted.bytes, tag, 4);
    }
    return fitted;
}

bool CGameFile::LinkRom(uint32_t nameIndex, uint32_t romIndex) {
    if (nameIndex >= names.size() || romIndex >= roms.size() || romIndex >= kNoRom) {
        return false;
    }
    auto& list = names[nameIndex].romList;
    const auto slot = std::find(std::begin(list), std::end(list), kNoRom);
    if (slot != std::end(list)) {
        *slot = static_cast<uint8_t>(romIndex);
    }
    return true;
}

bool CGameFile::GetName(uint32_t index, NAME_VIEW& name) const {
    if (!GetRawName(index, name.raw)) {
        return false;
    }
    name.title = FieldText(name.raw.title);
    name.altTitle = FieldText(name.raw.altTitle);
    name.contentKey = FieldText(name.raw.contentKey);
    name.contentKey2 = FieldText(name.raw.contentKey2);
    name.regions = FieldText(name.raw.regions);
    return true;
}

bool CGameFile::GetRawName(uint32_t index, NAME_RECORD& record) const {
    if (index >= names.size()) {
        return false;
    }
    record = names[index];
    return true;
}

bool CGameFile::GetRom(uint32_t index, std::string& name, ROM_RECORD& record) const {
    if (index >= roms.size()) {
        return false;
    }
    record = roms[index];
    name = FieldText(record.name);
    return true;
}

bool CGameFile::GetMachineRecord(uint32_t index, const uint8_t*& record, uint32_t& length) const {
    if (index >= machineRecords.size()) {
        return false;
    }
    record = machineRecords[index].bytes;
    length = FixedRecordSize();
    return true;
}

int CGameFile::FindRom(const Sha256Digest& sha256, ROM_RECORD* record) const {
    const auto found = std::find_if(roms.begin(), roms.end(), [&](const ROM_RECORD& rom) {
        return std::equal(sha256.begin(), sha256.end(), std::begin(rom.sha256));
    });
    if (found == roms.end()) {
        return -1;
    }
    if (record != nullptr) {
        *record = *found;
    }
    return static_cast<int>(found - roms.begin());
}

std::vector<int> CGameFile::NamesUsingRom(uint32_t romIndex) const {
    std::vector<int> users;
    for (size_t i = 0; i < names.size(); ++i) {
        const auto& list = names[i].romList;
        const auto* end = std::find(std::begin(list), std::end(list), kNoRom);
        if (std::find(std::begin(list), end, romIndex) != end) {
            users.push_back(static_cast<int>(i));
        }
    }
    users.push_back(-1);
    return users;
}

int CGameFile::NameRomAt(uint32_t nameIndex, uint32_t slot) const {
    if (nameIndex >= names.size()) {
        return 0;
    }
    if (slot >= sizeof(NAME_RECORD::romList) || names[nameIndex].romList[slot] == kNoRom) {
        return -1;
    }
    return names[nameIndex].romList[slot];
}

uint64_t CGameFile::LongRomOffset(size_t romIndex) const {
    uint64_t offset = 0;
    for (size_t i = 0; i < std::min(romIndex, roms.size()); ++i) {
        offset += roms[i].size;
    }
    return offset;
}

uint32_t CGameFile::RomOffset(uint32_t romIndex) const {
    return static_cast<uint32_t>(LongRomOffset(romIndex));
}

std::optional<std::vector<uint8_t>> CGameFile::AssembleImage(uint32_t nameIndex) const {
    if (!dataUnpacked || nameIndex >= names.size() ||
        std::memcmp(names[nameIndex].tag, "NAME", 4) != 0) {
        return std::nullopt;
    }
    // The sizes come from the file: every piece must lie inside the data before anything is allocated.
    std::vector<std::span<const uint8_t>> pieces;
    uint64_t total = 0;
    for (const uint8_t index : names[nameIndex].romList) {
        if (index == kNoRom || index >= roms.size()) {
            break;
        }
        const uint64_t offset = LongRomOffset(index);
        const uint32_t size = roms[index].size;
        total += size;
        if (offset > data.size() || size > data.size() - offset || total > kImageLimit) {
            return std::nullopt;
        }
        pieces.push_back(Data().subspan(static_cast<size_t>(offset), size));
    }
    std::vector<uint8_t> image;
    image.reserve(static_cast<size_t>(total));
    for (const std::span<const uint8_t> piece : pieces) {
        image.insert(image.end(), piece.begin(), piece.end());
    }
    return image;
}

std::optional<std::vector<uint8_t>> CGameFile::AssembleSelectedImage() const {
    if (selectedName < 0) {
        return std::nullopt;
    }
    return AssembleImage(static_cast<uint32_t>(selectedName));
}

bool CGameFile::SelectedMachineRecord(MACHINE_RECORD& record) const {
    if (selectedName < 0 || static_cast<size_t>(selectedName) >= machineRecords.size()) {
        return false;
    }
    record = machineRecords[static_cast<size_t>(selectedName)];
    return true;
}

const uint8_t* CGameFile::SelectedRomHash() const {
    if (selectedName < 0 || static_cast<size_t>(selectedName) >= roms.size()) {
        return nullptr;
    }
    return roms[static_cast<size_t>(selectedName)].sha256;
}

uint32_t CGameFile::NameCount() const {
    return static_cast<uint32_t>(names.size());
}

uint32_t CGameFile::RomCount() const {
    return static_cast<uint32_t>(roms.size());
}

uint32_t CGameFile::MachineRecordCount() const {
    return static_cast<uint32_t>(machineRecords.size());
}

const GAME_HEADER& CGameFile::Header() const {
    return header;
}

bool CGameFile::HasGada() const {
    return std::memcmp(gada.tag, "GADA", 4) == 0;
}

std::string CGameFile::GadaText() const {
    return FieldText(gada.text);
}

bool CGameFile::HeaderParsed() const {
    return headerParsed;
}

bool CGameFile::DataUnpacked() const {
    return dataUnpacked;
}

std::span<const uint8_t> CGameFile::Data() const {
    return data;
}
