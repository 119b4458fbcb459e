#include "library/game_database.h"

#include "base/files.h"
#include "formats/packing.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

Sha256Digest DigestOf(const uint8_t (&bytes)[32]) {
    Sha256Digest digest;
    std::copy(std::begin(bytes), std::end(bytes), digest.begin());
    return digest;
}

template <typename Visit>
void ForEachRom(const CGameFile& entry, Visit visit) {
    std::string name;
    ROM_RECORD rom{};
    for (uint32_t i = 0; i < entry.RomCount(); ++i) {
        if (entry.GetRom(i, name, rom)) {
            visit(rom);
        }
    }
}

bool ReadItem(const PendingFile& item, const FileReader& readFile,
              const MemberReader& readZipMember, std::vector<uint8_t>& bytes) {
    return item.member.empty() ? readFile(item.path, bytes)
                               : readZipMember(item.path, item.member, bytes);
}

} // namespace

size_t DIGEST_HASH::operator()(const Sha256Digest& digest) const {
    size_t hash = 0;
    std::memcpy(&hash, digest.data(), sizeof hash); // the digest is a hash already
    return hash;
}

CGameDatabase::CGameDatabase() = default;

CGameDatabase::CGameDatabase(std::vector<CGameFile> games)
    : entries(std::move(games)) {
    for (const CGameFile& entry : entries) {
        headerHashes.insert(DigestOf(entry.Header().headerHash));
        ForEachRom(entry, [&](const ROM_RECORD& rom) { romHashes.insert(DigestOf(rom.sha256)); });
    }
}

CGameDatabase::~CGameDatabase() {
    ClearPending();
}

CGameDatabase::CGameDatabase(CGameDatabase&&) noexcept = default;

CGameDatabase& CGameDatabase::operator=(CGameDatabase&& other) noexcept {
    ClearPending();
    entries = std::move(other.entries);
    romHashes = std::move(other.romHashes);
    headerHashes = std::move(other.headerHashes);
    pending = std::move(other.pending);
    pendingOfHash = std::move(other.pendingOfHash);
    queuedCount = std::exchange(other.queuedCount, 0);
    producedCount = std::exchange(other.producedCount, 0);
    return *this;
}

bool CGameDatabase::FindKnownRom(const Sha256Digest& sha256) const {
    return romHashes.contains(sha256);
}

bool CGameDatabase::FindKnownHeader(const Sha256Digest& headerHash) const {
    return headerHashes.contains(headerHash);
}

void CGameDatabase::QueueFile(const std::filesystem::path& path, std::wstring_view member,
                              std::span<const uint8_t> data) {
    QueueHashed(path, member, static_cast<uint32_t>(data.size()), Sha256(data));
}

void CGameDatabase::QueueHashed(const std::filesystem::path& path, std::wstring_view member,
                                uint32_t size, const Sha256Digest& sha256) {
    auto item = std::make_unique<PendingFile>();
    item->path = path;
    item->member = member;
    item->size = size;
    item->sha256 = sha256;
    item->next = std::move(pending);
    pending = std::move(item);
    pendingOfHash[sha256].push_back(pending.get());
    ++queuedCount;
}

bool CGameDatabase::TakeNextPending(std::filesystem::path& path, bool& used) {
    if (!pending) {
        return false;
    }
    const std::unique_ptr<PendingFile> item = std::exchange(pending, std::move(pending->next));
    const auto found = pendingOfHash.find(item->sha256);
    found->second.pop_back(); // the head is the newest of its hash
    if (found->second.empty()) {
        pendingOfHash.erase(found);
    }
    path = item->path;
    used = item->used;
    return true;
}

void CGameDatabase::ClearPending() {
    pendingOfHash.clear();
    // One by one: a long chain must not be destroyed recursively.
    while (pending) {
        pending = std::exchange(pending->next, nullptr);
    }
    queuedCount = 0;
    producedCount = 0;
}

std::vector<PendingFile*> CGameDatabase::MatchEntry(int index) const {
    std::vector<PendingFile*> items;
    const CGameFile& entry = entries[static_cast<size_t>(index)];
    bool complete = true;
    ForEachRom(entry, [&](const ROM_RECORD& rom) {
        const auto found = pendingOfHash.find(DigestOf(rom.sha256));
        if (found == pendingOfHash.end() || found->second.back()->size != rom.size) {
            complete = false;
        } else {
            items.push_back(found->second.back());
        }
    });
    if (!complete) {
        items.clear();
    }
    return items;
}

bool CGameDatabase::ReadPieces(std::span<PendingFile* const> items, const FileReader& readFile,
                               const MemberReader& readZipMember, std::vector<uint8_t>& image) {
    image.clear();
    std::vector<uint8_t> piece;
    for (const PendingFile* item : items) {
        if (item->size > kImageLimit - image.size() ||
            !ReadItem(*item, readFile, readZipMember, piece) || piece.size() != item->size ||
            Sha256(piece) != item->sha256) {
            return false;
        }
        image.insert(image.end(), piece.begin(), piece.end());
    }
    return true;
}

std::vector<uint8_t> CGameDatabase::PackEntry(int index, std::span<const uint8_t> image) {
    return entries[static_cast<size_t>(index)].WriteGameKeepingHash(image);
}

std::string CGameDatabase::NameOfEntry(int index) const {
    const CGameFile& entry = entries[static_cast<size_t>(index)];
    std::string name = entry.GadaText();
    NAME_VIEW first;
    if (name.empty() && entry.GetName(0, first)) {
        name = first.title;
    }
    return FileNameFromTitle(name.empty() ? "unnamed" : name);
}

void CGameDatabase::MarkUsed(std::span<PendingFile* const> items) {
    for (PendingFile* item : items) {
        item->used = true;
    }
    ++producedCount;
}

int CGameDatabase::AssembleNextKnown(int startIndex, const FileReader& readFile,
                                     const MemberReader& readZipMember, std::string& outName,
                                     std::vector<uint8_t>& outData) {
    std::vector<uint8_t> image;
    for (int index = std::max(startIndex, 0); index < EntryCount(); ++index) {
        const std::vector<PendingFile*> items = MatchEntry(index);
        if (items.empty() || !ReadPieces(items, readFile, readZipMember, image)) {
            continue;
        }
        outData = PackEntry(index, image);
        if (!outData.empty()) {
            MarkUsed(items);
            outName = NameOfEntry(index);
            return index + 1;
        }
    }
    outData.clear();
    return -1;
}
