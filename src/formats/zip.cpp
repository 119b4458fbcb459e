#include "formats/zip.h"

#include "base/text.h"

#include <zip.h>

#include <algorithm>
#include <array>
#include <limits>
#include <list>

namespace {

// Every entry is dated 1 January 1980, midnight, the first day that the format knows, so that equal
// contents make equal bytes.
constexpr zip_uint16_t kFixedDate = (1u << 5) | 1u;
constexpr zip_uint16_t kFixedTime = 0;

// An end record that counts no entries: an archive of nothing.
constexpr std::array<uint8_t, 22> kEmptyArchive = {'P', 'K', 5, 6};

constexpr size_t kPiece = size_t{1} << 16;

struct ZIP_ERROR {
    ZIP_ERROR() { zip_error_init(&value); }
    ~ZIP_ERROR() { zip_error_fini(&value); }
    ZIP_ERROR(const ZIP_ERROR&) = delete;
    ZIP_ERROR& operator=(const ZIP_ERROR&) = delete;

    zip_error_t value{};
};

struct SOURCE_FREER {
    void operator()(zip_source_t* source) const { zip_source_free(source); }
};
using SourcePointer = std::unique_ptr<zip_source_t, SOURCE_FREER>;

struct ARCHIVE_DISCARDER {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ArchivePointer = std::unique_ptr<zip_t, ARCHIVE_DISCARDER>;

struct ENTRY_CLOSER {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using EntryPointer = std::unique_ptr<zip_file_t, ENTRY_CLOSER>;

bool IsSlash(wchar_t c) {
    return c == L'/' || c == L'\\';
}

bool HasDrive(std::wstring_view name) {
    const wchar_t letter = name.empty() ? L'\0' : LowerAscii(name[0]);
    return name.size() >= 2 && name[1] == L':' && letter >= L'a' && letter <= L'z';
}

// Where the text after the last step upwards begins; 0 if there is none.
size_t AfterLastStepUp(std::wstring_view name) {
    for (size_t i = name.size(); i >= 4; --i) {
        if (IsSlash(name[i - 4]) && name[i - 3] == L'.' && name[i - 2] == L'.' &&
            IsSlash(name[i - 1])) {
            return i;
        }
    }
    return 0;
}

ArchivePointer OpenArchive(SourcePointer source, int flags, std::string& error) {
    ZIP_ERROR cause;
    ArchivePointer archive(zip_open_from_source(source.get(), flags, &cause.value));
    if (!archive) {
        error = std::string("not a readable zip archive: ") + zip_error_strerror(&cause.value);
        return nullptr;
    }
    source.release(); // NOLINT(bugprone-unused-return-value): the archive owns it now
    return archive;
}

// Reads to the end of an entry, where the library compares the checksum. Does not allocate by the
// stated size; a stream of another size is damage.
bool ReadEntry(zip_file_t* file, uint64_t stated, uint64_t limit, std::vector<uint8_t>& bytes,
               std::string& error) {
    if (stated > limit) {
        error = "is larger than " + std::to_string(limit) + " bytes";
        return false;
    }
    while (true) {
        const size_t before = bytes.size();
        bytes.resize(before + kPiece);
        const zip_int64_t count = zip_fread(file, bytes.data() + before, kPiece);
        if (count < 0) {
            error = zip_error_strerror(zip_file_get_error(file));
            return false;
        }
        bytes.resize(before + static_cast<size_t>(count));
        if (bytes.size() > stated || (count == 0 && bytes.size() < stated)) {
            error = "is not of the " + std::to_string(stated) + " bytes that the archive states";
            return false;
        }
        if (count == 0) {
            return true;
        }
    }
}

bool ReadWholeSource(zip_source_t* source, std::vector<uint8_t>& bytes) {
    zip_stat_t stat;
    if (zip_source_stat(source, &stat) != 0 || (stat.valid & ZIP_STAT_SIZE) == 0 ||
        zip_source_open(source) != 0) {
        return false;
    }
    bytes.resize(static_cast<size_t>(stat.size));
    size_t done = 0;
    while (done < bytes.size()) {
        const zip_int64_t count = zip_source_read(source, bytes.data() + done, bytes.size() - done);
        if (count <= 0) {
            break;
        }
        done += static_cast<size_t>(count);
    }
    zip_source_close(source);
    return done == bytes.size();
}

} // namespace

struct ZipReader::ARCHIVE {
    ArchivePointer zip;
};

ZipReader::ZipReader() = default;
ZipReader::~ZipReader() = default;

bool ZipReader::Open(std::span<const uint8_t> bytes, std::string& error) {
    Close();
    ZIP_ERROR cause;
    SourcePointer source(zip_source_buffer_create(bytes.data(), bytes.size(), 0, &cause.value));
    if (bytes.empty() || !source) {
        error = "not a readable zip archive: " +
                std::string(bytes.empty() ? "no bytes" : zip_error_strerror(&cause.value));
        return false;
    }
    ArchivePointer zip = OpenArchive(std::move(source), ZIP_RDONLY, error);
    if (!zip) {
        return false;
    }
    archive = std::make_unique<ARCHIVE>();
    archive->zip = std::move(zip);
    return true;
}

void ZipReader::Close() {
    archive.reset();
}

uint32_t ZipReader::EntryCount() const {
    if (!archive) {
        return 0;
    }
    const zip_int64_t count = zip_get_num_entries(archive->zip.get(), 0);
    return static_cast<uint32_t>(
        std::clamp<zip_int64_t>(count, 0, std::numeric_limits<uint32_t>::max()));
}

bool ZipReader::Entry(uint32_t index, ZIP_ENTRY& entry) const {
    if (index >= EntryCount()) {
        return false;
    }
    zip_stat_t stat;
    const char* name = zip_get_name(archive->zip.get(), index, ZIP_FL_ENC_GUESS);
    if (name == nullptr || zip_stat_index(archive->zip.get(), index, 0, &stat) != 0) {
        return false;
    }
    entry.rawName = name;
    entry.name = CleanEntryName(WideFromUtf8(entry.rawName));
    entry.unpackedSize = (stat.valid & ZIP_STAT_SIZE) != 0 ? stat.size : 0;
    return true;
}

bool ZipReader::Unpack(uint32_t index, std::vector<uint8_t>& bytes, std::string& error,
                       uint64_t limit) const {
    bytes.clear();
    ZIP_ENTRY entry;
    if (!Entry(index, entry)) {
        error = "zip entry " + std::to_string(index) + " cannot be read";
        return false;
    }
    std::string cause;
    const EntryPointer file(zip_fopen_index(archive->zip.get(), index, 0));
    if (!file) {
        cause = zip_strerror(archive->zip.get());
    } else if (ReadEntry(file.get(), entry.unpackedSize, limit, bytes, cause)) {
        return true;
    }
    bytes.clear();
    bytes.shrink_to_fit();
    error = entry.rawName + ": " + cause;
    return false;
}

struct ZipWriter::ARCHIVE {
    std::list<std::vector<uint8_t>> copies; // of the entries, which are packed at the end
    SourcePointer bytes;                    // the growing archive
    ArchivePointer zip;                     // destroyed first: it refers to the others
};

ZipWriter::ZipWriter() = default;
ZipWriter::~ZipWriter() = default;

bool ZipWriter::Add(std::string_view name, std::span<const uint8_t> bytes, std::string& error) {
    if (!archive) {
        ZIP_ERROR cause;
        SourcePointer source(zip_source_buffer_create(nullptr, 0, 0, &cause.value));
        if (!source) {
            error = zip_error_strerror(&cause.value);
            return false;
        }
        zip_source_keep(source.get());
        SourcePointer kept(source.get());
        ArchivePointer zip = OpenArchive(std::move(source), ZIP_CREATE | ZIP_TRUNCATE, error);
        if (!zip) {
            return false;
        }
        archive = std::make_unique<ARCHIVE>();
        archive->bytes = std::move(kept);
        archive->zip = std::move(zip);
    }
    zip_t* zip = archive->zip.get();
    const std::string entryName(name);
    const std::vector<uint8_t>& copy = archive->copies.emplace_back(bytes.begin(), bytes.end());
    SourcePointer source(zip_source_buffer(zip, copy.data(), copy.size(), 0));
    if (!source) {
        error = entryName + ": " + zip_strerror(zip);
        return false;
    }
    const zip_int64_t index = zip_file_add(zip, entryName.c_str(), source.get(), ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        error = entryName + ": " + zip_strerror(zip);
        return false;
    }
    source.release(); // NOLINT(bugprone-unused-return-value): the archive owns it now
    const auto entry = static_cast<zip_uint64_t>(index);
    if (zip_set_file_compression(zip, entry, ZIP_CM_DEFLATE, 0) != 0 ||
        zip_file_set_dostime(zip, entry, kFixedTime, kFixedDate, 0) != 0) {
        error = entryName + ": " + zip_strerror(zip);
        zip_delete(zip, entry);
        return false;
    }
    return true;
}

std::vector<uint8_t> ZipWriter::Finish(std::string& error) {
    if (!archive) {
        return {kEmptyArchive.begin(), kEmptyArchive.end()};
    }
    const std::unique_ptr<ARCHIVE> finished = std::move(archive);
    if (zip_get_num_entries(finished->zip.get(), 0) == 0) {
        return {kEmptyArchive.begin(), kEmptyArchive.end()};
    }
    if (zip_close(finished->zip.get()) != 0) {
        error = std::string("zip archive cannot be written: ") + zip_strerror(finished->zip.get());
        return {};
    }
    finished->zip.release(); // NOLINT(bugprone-unused-return-value): closing has freed it
    std::vector<uint8_t> bytes;
    if (!ReadWholeSource(finished->bytes.get(), bytes)) {
        error = "zip archive cannot be written";
        return {};
    }
    return bytes;
}

std::wstring CleanEntryName(std::wstring_view name) {
    while (true) {
        const size_t start = AfterLastStepUp(name);
        if (start > 0) {
            name.remove_prefix(start);
        } else if (HasDrive(name)) {
            name.remove_prefix(2);
        } else if (!name.empty() && IsSlash(name.front())) {
            name.remove_prefix(1);
        } else {
            return std::wstring(name);
        }
    }
}

std::wstring LastPathComponent(std::wstring_view name) {
    const size_t slash = name.find_last_of(L"/\\");
    return std::wstring(slash == std::wstring_view::npos ? name : name.substr(slash + 1));
}
