#include "library/convert.h"

#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/default_records.h"
#include "formats/packing.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr size_t kCopierHeader = 512;
constexpr size_t kInterleaveBlock = 16384;
constexpr size_t kSmallestMegaDrive = 512; // vectors and header

// The extension from the last dot of the last component; empty without one.
std::string_view ExtensionOf(std::string_view path) {
    const size_t slash = path.find_last_of("/\\");
    const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    const size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot);
}

bool Accepts(const MACHINE_FACTS& system, std::string_view extension) {
    return std::find(system.extensions.begin(), system.extensions.end(), LowerAscii(extension)) !=
           system.extensions.end();
}

bool IsInterleaved(std::span<const uint8_t> file) {
    if ((file.size() & kCopierHeader) == 0) {
        return false;
    }
    // One matching letter is enough for a plain image.
    constexpr std::string_view kMark = "SEGA";
    for (size_t i = 0; i < kMark.size(); ++i) {
        if (file[256 + i] == static_cast<uint8_t>(kMark[i])) {
            return false;
        }
    }
    return true;
}

// A block holds its odd bytes first and then its even ones. The rest after the last whole block stays
// as it is.
std::vector<uint8_t> Deinterleave(std::span<const uint8_t> image) {
    constexpr size_t kHalf = kInterleaveBlock / 2;
    std::vector<uint8_t> out(image.begin(), image.end());
    for (size_t block = 0; image.size() - block >= kInterleaveBlock; block += kInterleaveBlock) {
        for (size_t i = 0; i < kHalf; ++i) {
            out[block + 2 * i] = image[block + kHalf + i];
            out[block + 2 * i + 1] = image[block + i];
        }
    }
    return out;
}

// Blocks of the image, and the marks by which copiers know their own files.
std::array<uint8_t, kCopierHeader> CopierHeader(size_t imageSize) {
    std::array<uint8_t, kCopierHeader> header{};
    header[0] = static_cast<uint8_t>(imageSize / kInterleaveBlock);
    header[1] = 3;
    header[8] = 0xAA;
    header[9] = 0xBB;
    header[10] = 6; // a Mega Drive program
    return header;
}

MACHINE_RECORD DefaultMachineRecord(uint16_t system) {
    if (system == kSystemMasterSystem) {
        return ToMachineRecord(DefaultSmsRecord());
    }
    MACHINE_RECORD record{};
    std::memcpy(record.bytes, "GDF0", 4);
    return record;
}

// Copies the names of a database entry that use this piece. False if the entry doesn't have it.
bool AddKnownGame(CGameFile& game, const CGameFile& entry, const Sha256Digest& hash,
                  uint32_t size) {
    const int found = entry.FindRom(hash);
    std::string romName;
    ROM_RECORD rom{};
    if (found < 0 || !entry.GetRom(static_cast<uint32_t>(found), romName, rom)) {
        return false;
    }
    game.AddRom(romName, hash, size);
    uint32_t position = 0;
    for (const int index : entry.NamesUsingRom(static_cast<uint32_t>(found))) {
        NAME_RECORD name{};
        if (index < 0 || !entry.GetRawName(static_cast<uint32_t>(index), name)) {
            break;
        }
        MACHINE_RECORD machine{};
        const uint8_t* bytes = nullptr;
        uint32_t length = 0;
        if (entry.GetMachineRecord(static_cast<uint32_t>(index), bytes, length)) {
            std::memcpy(machine.bytes, bytes, length);
        }
        game.AddNameCopy(name, machine);
        // The position counts within this entry, even if an earlier entry added names.
        (void)game.LinkRom(position, 0);
        ++position;
    }
    return true;
}

void AddUnknownGame(CGameFile& game, uint16_t system, std::string_view stem,
                    const Sha256Digest& hash, uint32_t size) {
    game.AddNameFromTitle(stem, 1, 1, DefaultMachineRecord(system));
    const std::string key(stem);
    NAME_TEXTS texts;
    texts.contentKey = key.c_str();
    game.SetNameText(0, texts);
    game.AddRom("v1.0", hash, size);
    (void)game.LinkRom(0, 0);
}

} // namespace

uint16_t SystemOfExtension(std::string_view extension) {
    for (const MACHINE_FACTS& system : MachineFacts()) {
        if (Accepts(system, extension)) {
            return system.system;
        }
    }
    return 0;
}

std::string UsualExtension(uint16_t system) {
    if (system == kSystemMegaDrive) {
        return ".md"; // its list begins with ".bin", which says little
    }
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    return facts != nullptr && !facts->extensions.empty() ? std::string(facts->extensions.front())
                                                          : ".bin";
}

bool ValidExtension(uint16_t system, std::string_view path) {
    const MACHINE_FACTS* entry = FindMachineFacts(system);
    return entry != nullptr && (system == kSystemArcade || Accepts(*entry, ExtensionOf(path)));
}

std::vector<uint8_t> PrepareImage(uint16_t system, std::span<const uint8_t> file) {
    if (system == kSystemMegaDrive && IsInterleaved(file)) {
        return Deinterleave(file.subspan(kCopierHeader));
    }
    return {file.begin(), file.end()};
}

bool InterleaveImage(std::span<const uint8_t> image, std::vector<uint8_t>& dump) {
    dump.clear();
    if (image.size() < kSmallestMegaDrive || (image.size() & kCopierHeader) != 0) {
        return false;
    }
    constexpr size_t kHalf = kInterleaveBlock / 2;
    const auto header = CopierHeader(image.size());
    dump.assign(header.begin(), header.end());
    dump.insert(dump.end(), image.begin(), image.end());
    for (size_t block = 0; image.size() - block >= kInterleaveBlock; block += kInterleaveBlock) {
        uint8_t* const out = dump.data() + kCopierHeader + block;
        for (size_t i = 0; i < kHalf; ++i) {
            out[kHalf + i] = image[block + 2 * i];
            out[i] = image[block + 2 * i + 1];
        }
    }
    return true;
}

bool IsBareCopierHeader(uint16_t system, std::span<const uint8_t> file) {
    return system == kSystemMegaDrive && IsInterleaved(file) &&
           file.size() < kCopierHeader + kSmallestMegaDrive;
}

bool BuildGame(uint16_t system, std::string_view stem, std::span<const uint8_t> file,
               std::span<const CGameFile> database, CGameFile& game, bool& known) {
    game.Create(false, system);
    known = false;
    return file.size() <= kImageLimit &&
           BuildPreparedGame(system, stem, PrepareImage(system, file), database, game, known);
}

bool BuildPreparedGame(uint16_t system, std::string_view stem, std::vector<uint8_t> image,
                       std::span<const CGameFile> database, CGameFile& game, bool& known) {
    game.Create(false, system);
    known = false;
    if (system == kSystemArcade || image.size() > kImageLimit) {
        return false;
    }
    const Sha256Digest hash = Sha256(image);
    const auto size = static_cast<uint32_t>(image.size());
    // The search goes on after the first entry that knows the image.
    for (const CGameFile& entry : database) {
        known |= AddKnownGame(game, entry, hash, size);
    }
    if (!known) {
        AddUnknownGame(game, system, stem, hash, size);
    }
    // Every entry adds a piece of its own, so the data holds the image once for each.
    const uint64_t total = uint64_t{game.RomCount()} * size;
    if (total > kImageLimit) {
        return false;
    }
    image.resize(static_cast<size_t>(total));
    for (size_t offset = size; offset < image.size(); offset += size) {
        std::copy_n(image.begin(), size, image.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    game.ComputeHeaderHash();
    return game.SetData(std::move(image));
}

bool ConvertImage(uint16_t system, std::string_view stem, std::span<const uint8_t> file,
                  std::span<const CGameFile> database, std::vector<uint8_t>& out, bool& known) {
    out.clear();
    CGameFile game;
    if (BuildGame(system, stem, file, database, game, known)) {
        out = game.WriteGame(game.Data());
    }
    return !out.empty();
}

bool BuildKnownGame(uint16_t system, std::string_view title, std::span<const uint8_t> image,
                    const MACHINE_RECORD& record, CGameFile& game) {
    if (image.size() > kImageLimit) {
        return false;
    }
    game.Create(false, system);
    game.AddNameFromTitle(title, 1, 1, record);
    game.AddRom("v1.0", Sha256(image), static_cast<uint32_t>(image.size()));
    (void)game.LinkRom(0, 0);
    game.ComputeHeaderHash();
    return game.SetData({image.begin(), image.end()});
}
