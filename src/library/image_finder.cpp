#include "library/image_finder.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/packing.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/game_source.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

namespace fs = std::filesystem;

namespace {

constexpr size_t kNesHeader = 16;
constexpr std::string_view kNesMark = "NES\x1A";
constexpr uint64_t kNesUnit = 512; // a cartridge's banks, and a trainer, are multiples of it
constexpr uint64_t kCopierBit = 512;
constexpr uint64_t kCopierHeader = 512;

// Lists of NES games come with the files' headers and without.
bool IsWithoutNesHeader(uint16_t system, const LOGIQX_ROM& rom) {
    return system == kSystemNes && rom.size % kNesUnit == 0;
}

// The checksums of one span of bytes, each computed when it is first asked for.
class Checksums {
public:
    explicit Checksums(std::span<const uint8_t> data)
        : bytes(data) {}

    bool Match(const LOGIQX_ROM& rom) {
        if (bytes.size() != rom.size) {
            return false;
        }
        if (rom.sha256) {
            sha256 = sha256 ? sha256 : Sha256(bytes);
            return *sha256 == *rom.sha256;
        }
        if (rom.sha1) {
            sha1 = sha1 ? sha1 : Sha1(bytes);
            return *sha1 == *rom.sha1;
        }
        crc = crc ? crc : Crc32(bytes);
        return rom.crc && *crc == *rom.crc;
    }

private:
    std::span<const uint8_t> bytes;
    std::optional<Sha256Digest> sha256;
    std::optional<Sha1Digest> sha1;
    std::optional<uint32_t> crc;
};

class Finder {
public:
    Finder(uint16_t machine, std::span<const LOGIQX_ROM* const> images,
           const IMAGE_SEARCH_SINK& searchSink)
        : system(machine)
        , wanted(images)
        , sink(searchSink)
        , found(images.size()) {
        for (const LOGIQX_ROM* const rom : wanted) {
            sizes.insert(rom->size);
            if (IsWithoutNesHeader(system, *rom)) {
                sizes.insert(rom->size + kNesHeader);
            }
            if (system == kSystemMegaDrive) {
                sizes.insert(rom->size + kCopierHeader); // as an interleaved dump
            }
        }
    }

    void Walk(const fs::path& folder);
    std::vector<std::optional<KNOWN_IMAGE>> Take() { return std::move(found); }

private:
    [[nodiscard]] bool Stopped() const { return sink.stop != nullptr && *sink.stop; }
    void VisitFile(const fs::path& path);
    void VisitZip(const fs::path& path);
    void VisitImage(std::span<const uint8_t> file);

    uint16_t system;
    std::span<const LOGIQX_ROM* const> wanted;
    const IMAGE_SEARCH_SINK& sink;
    std::vector<std::optional<KNOWN_IMAGE>> found;
    std::set<uint64_t> sizes; // of files that may be one of them
};

void Finder::VisitImage(std::span<const uint8_t> file) {
    if (IsBareCopierHeader(system, file)) {
        return;
    }
    const std::vector<uint8_t> prepared = PrepareImage(system, file);
    const std::string_view mark(reinterpret_cast<const char*>(file.data()),
                                std::min(file.size(), kNesMark.size()));
    const bool hasHeader = system == kSystemNes && file.size() >= kNesHeader && mark == kNesMark;
    Checksums whole(file);
    Checksums inOrder(prepared);
    Checksums body(hasHeader ? file.subspan(kNesHeader) : std::span<const uint8_t>{});
    std::optional<KNOWN_IMAGE> image;
    for (size_t i = 0; i < wanted.size(); ++i) {
        const LOGIQX_ROM& rom = *wanted[i];
        const bool matches =
            IsWithoutNesHeader(system, rom)
                ? hasHeader && body.Match(rom)
                : whole.Match(rom) || (prepared.size() != file.size() && inOrder.Match(rom));
        if (!matches || found[i]) {
            continue;
        }
        if (!image) {
            image = {static_cast<uint32_t>(prepared.size()), Sha256(prepared)};
        }
        found[i] = image;
    }
}

void Finder::VisitZip(const fs::path& path) {
    std::vector<uint8_t> archive;
    std::string error;
    ZipReader reader;
    if (!ReadFile(path, archive, error)) {
        sink.complain(error);
        return;
    }
    if (!reader.Open(archive, error)) {
        sink.complain(path.string() + ": " + error);
        return;
    }
    for (uint32_t index = 0; index < reader.EntryCount(); ++index) {
        ZIP_ENTRY entry;
        std::vector<uint8_t> bytes;
        if (!reader.Entry(index, entry) || !sizes.contains(entry.unpackedSize)) {
            continue;
        }
        if (reader.Unpack(index, bytes, error, kLargestImage)) {
            VisitImage(bytes);
        } else {
            sink.complain(path.string() + ": " + error);
        }
    }
}

void Finder::VisitFile(const fs::path& path) {
    if (LowerAscii(std::string_view(path.extension().string())) == ".zip") {
        VisitZip(path);
        return;
    }
    std::error_code code;
    const uint64_t size = fs::file_size(path, code);
    std::vector<uint8_t> bytes;
    std::string error;
    if (code || !sizes.contains(size)) {
        return;
    }
    if (ReadFile(path, bytes, error, kLargestImage)) {
        VisitImage(bytes);
    } else {
        sink.complain(error);
    }
}

void Finder::Walk(const fs::path& folder) {
    std::error_code code;
    std::vector<fs::path> files;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied,
                                           code);
    for (; !code && !Stopped() && entry != fs::recursive_directory_iterator();
         entry.increment(code)) {
        std::error_code ignored;
        if (entry->is_regular_file(ignored)) {
            files.push_back(entry->path());
        }
    }
    if (code) {
        sink.complain(folder.string() + ": " + code.message());
    }
    std::ranges::sort(files);
    for (size_t i = 0; i < files.size() && !Stopped(); ++i) {
        sink.progress(i, files.size(), files[i].filename().string());
        VisitFile(files[i]);
    }
}

} // namespace

std::optional<KNOWN_IMAGE> ImageOfList(uint16_t system, const LOGIQX_ROM& rom) {
    // Only the bytes tell whether a Mega Drive file of such a size is interleaved.
    const bool maybeDump = system == kSystemMegaDrive && (rom.size & kCopierBit) != 0;
    const bool possible = rom.sha256 && rom.size > 0 && rom.size <= kImageLimit;
    if (!possible || maybeDump || IsWithoutNesHeader(system, rom)) {
        return std::nullopt;
    }
    return KNOWN_IMAGE{static_cast<uint32_t>(rom.size), *rom.sha256};
}

std::vector<std::optional<KNOWN_IMAGE>> FindImages(uint16_t system,
                                                   std::span<const LOGIQX_ROM* const> wanted,
                                                   const fs::path& folder,
                                                   const IMAGE_SEARCH_SINK& sink) {
    Finder finder(system, wanted, sink);
    finder.Walk(folder);
    return finder.Take();
}
