// Zip archives held wholly in memory, over a zip library.
//
// Reading copies nothing: the buffer must outlive the reader. No name, size or offset in an archive is
// trusted; any bytes end in a result. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct ZIP_ENTRY {
    std::wstring name;         // cleaned: see ZipReader::Entry
    std::string rawName;       // as stored, UTF-8
    uint64_t unpackedSize = 0; // as the archive states it
};

class ZipReader {
public:
    ZipReader();
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    [[nodiscard]] bool Open(std::span<const uint8_t> archive, std::string& error);
    void Close();

    [[nodiscard]] uint32_t EntryCount() const;

    // False for an index out of range or a header that cannot be read. In the name a leading drive
    // part and leading slashes are dropped, and everything up to and including the last step upwards
    // ("/../" with either slash) is removed.
    [[nodiscard]] bool Entry(uint32_t index, ZIP_ENTRY& entry) const;

    // Unpacks an entry of at most `limit` bytes. False, with nothing in `bytes`, when it is larger,
    // damaged or encrypted; a wrong checksum or size counts as damage.
    [[nodiscard]] bool Unpack(uint32_t index, std::vector<uint8_t>& bytes, std::string& error,
                              uint64_t limit = uint64_t{1} << 28) const;

private:
    struct ARCHIVE;
    std::unique_ptr<ARCHIVE> archive;
};

// Builds an archive in memory. Entries are copied.
class ZipWriter {
public:
    ZipWriter();
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    [[nodiscard]] bool Add(std::string_view name, std::span<const uint8_t> bytes,
                           std::string& error);

    // The finished archive; empty on failure. The writer is empty afterwards.
    [[nodiscard]] std::vector<uint8_t> Finish(std::string& error);

private:
    struct ARCHIVE;
    std::unique_ptr<ARCHIVE> archive;
};

// The cleaning rule of ZipReader::Entry.
[[nodiscard]] std::wstring CleanEntryName(std::wstring_view name);

// The part after the last slash of either kind.
[[nodiscard]] std::wstring LastPathComponent(std::wstring_view name);
