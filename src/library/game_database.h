// What is known of one system's games, and the files of its folder that wait to be converted.
//
// The entries are headers without data. An index of their hashes answers the two Find functions, which
// every row of a list asks.
// Pending files are a singly linked list, newest first. Their data is not kept: it is read again when
// it is needed, and counts only if it still has the size and hash that it was queued with.
// Owner: one thread at a time, but any number may call Find, MatchEntry, ReadPieces and PackEntry
// together while nothing is queued or taken and no two pack the same entry.
#pragma once

#include "formats/game_file.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// One input found in the folder.
struct PendingFile {
    bool used = false;          // a database entry has taken this file
    std::filesystem::path path; // on disk, with the bytes of its name
    std::wstring member;        // the entry's name inside a zip; empty for a plain file
    uint32_t size = 0;          // unpacked
    Sha256Digest sha256{};      // of the unpacked data
    std::unique_ptr<PendingFile> next;
};

struct DIGEST_HASH {
    size_t operator()(const Sha256Digest& digest) const;
};

// Reads a file, or an entry of a zip, whose name is compared in lower case. False when it cannot be read.
using FileReader =
    std::function<bool(const std::filesystem::path& path, std::vector<uint8_t>& bytes)>;
using MemberReader = std::function<bool(const std::filesystem::path& path, std::wstring_view member,
                                        std::vector<uint8_t>& bytes)>;

class CGameDatabase {
public:
    CGameDatabase();
    explicit CGameDatabase(std::vector<CGameFile> entries);
    ~CGameDatabase();
    CGameDatabase(CGameDatabase&&) noexcept;
    CGameDatabase& operator=(CGameDatabase&&) noexcept;

    [[nodiscard]] std::span<const CGameFile> Entries() const { return entries; }
    [[nodiscard]] int32_t EntryCount() const { return static_cast<int32_t>(entries.size()); }

    // Whether an entry has a piece of this hash.
    [[nodiscard]] bool FindKnownRom(const Sha256Digest& sha256) const;
    // Whether an entry's headerHash is this.
    [[nodiscard]] bool FindKnownHeader(const Sha256Digest& headerHash) const;

    // Adds a file at the head of the list. The second form is for data that has been hashed already.
    void QueueFile(const std::filesystem::path& path, std::wstring_view member,
                   std::span<const uint8_t> data);
    void QueueHashed(const std::filesystem::path& path, std::wstring_view member, uint32_t size,
                     const Sha256Digest& sha256);
    // Unlinks the head item. False when the list is empty.
    [[nodiscard]] bool TakeNextPending(std::filesystem::path& path, bool& used);
    [[nodiscard]] const PendingFile* FirstPending() const { return pending.get(); }
    // Empties the list and both counts.
    void ClearPending();

    // Assembles the first entry from `startIndex` on whose pieces are all pending and can be read, marks
    // their items as used and returns the index of the next entry; -1 when there is no further one. The
    // file keeps the entry's headerHash.
    [[nodiscard]] int AssembleNextKnown(int startIndex, const FileReader& readFile,
                                        const MemberReader& readZipMember, std::string& outName,
                                        std::vector<uint8_t>& outData);

    // The parts of AssembleNextKnown, so that several entries can be assembled at once. The caller marks
    // the items.
    // The pending items of an entry's pieces, in their order. Empty unless all are there, and for an
    // entry without pieces.
    [[nodiscard]] std::vector<PendingFile*> MatchEntry(int index) const;
    // The data of these items, joined. False when one cannot be read or has changed since it was queued.
    [[nodiscard]] static bool ReadPieces(std::span<PendingFile* const> items,
                                         const FileReader& readFile,
                                         const MemberReader& readZipMember,
                                         std::vector<uint8_t>& image);
    // An entry's `.game` from its image; empty when that is not of the entry's size.
    [[nodiscard]] std::vector<uint8_t> PackEntry(int index, std::span<const uint8_t> image);
    // The file name, without extension, of the game assembled from an entry: its GADA text, else its
    // first title. Never a path: it names a file in the folder whatever the database says.
    [[nodiscard]] std::string NameOfEntry(int index) const;
    void MarkUsed(std::span<PendingFile* const> items);

    [[nodiscard]] uint32_t QueuedCount() const { return queuedCount; }
    [[nodiscard]] uint32_t ProducedCount() const { return producedCount; } // `.game` images

private:
    std::vector<CGameFile> entries;
    std::unordered_set<Sha256Digest, DIGEST_HASH> romHashes;
    std::unordered_set<Sha256Digest, DIGEST_HASH> headerHashes;
    std::unique_ptr<PendingFile> pending;
    // The pending items of each hash, the newest last.
    std::unordered_map<Sha256Digest, std::vector<PendingFile*>, DIGEST_HASH> pendingOfHash;
    uint32_t queuedCount = 0;
    uint32_t producedCount = 0;
};
