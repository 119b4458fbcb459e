#include "library/game_source.h"

#include "base/files.h"
#include "base/text.h"
#include "library/convert.h"
#include "library/game_file.h"
#include "library/zip.h"

#include <algorithm>
#include <cstring>

namespace fs = std::filesystem;

namespace {

std::string LowerExtension(const fs::path& path) {
    return LowerAscii(std::string_view(path.extension().string()));
}

// Reads an archive's entries that are images. One that cannot be unpacked fails the whole: a user who
// asks for a game by name wants to know that it is broken.
bool ImagesOfArchive(const fs::path& path, std::span<const uint8_t> archive,
                     const GAME_SYSTEM* system, std::vector<FOUND_IMAGE>& images,
                     std::string& error) {
    ZipReader reader;
    if (!reader.Open(archive, error)) {
        error = path.string() + ": " + error;
        return false;
    }
    uint32_t files = 0;
    uint32_t onlyFile = 0;
    std::string onlyStem;
    const auto take = [&](uint32_t index, const std::string& stem, uint16_t number) {
        FOUND_IMAGE image;
        image.stem = stem;
        image.system = number;
        if (!reader.Unpack(index, image.bytes, error, kLargestImage)) {
            error = path.string() + ": " + error;
            return false;
        }
        images.push_back(std::move(image));
        return true;
    };
    for (uint32_t index = 0; index < reader.EntryCount(); ++index) {
        ZIP_ENTRY entry;
        if (!reader.Entry(index, entry) || entry.unpackedSize == 0) {
            continue;
        }
        const fs::path name(Utf8FromWide(LastPathComponent(entry.name)));
        ++files;
        onlyFile = index;
        onlyStem = name.stem().string();
        const uint16_t number = SystemOfExtension(name.extension().string());
        if (number == 0 || (system != nullptr && system->system != number)) {
            continue;
        }
        if (!take(index, onlyStem, number)) {
            return false;
        }
    }
    if (images.empty() && files == 1 && system != nullptr) {
        return take(onlyFile, onlyStem, system->system);
    }
    if (images.empty()) {
        error = path.string() + ": holds no game image";
        return false;
    }
    return true;
}

// Says in words why LoadGameFile refused a file.
std::string FaultOfGameFile(const fs::path& path, bool headerOnly) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadFile(path, bytes, error, kLargestImage * 2)) {
        return error;
    }
    const std::string name = path.string();
    GAME_HEADER header;
    if (bytes.size() < sizeof header) {
        return name + ": is too short to be a game file";
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (std::memcmp(header.tag, "GAME", sizeof header.tag) != 0) {
        return name + ": is not a game file";
    }
    if (header.headerSize > bytes.size()) {
        return name + ": is cut off within its records";
    }
    const uint64_t stated = uint64_t{header.headerSize} + header.packedSize;
    if (!headerOnly && stated != bytes.size()) {
        return name + ": is " + std::to_string(bytes.size()) + " bytes long, but its header says " +
               std::to_string(stated);
    }
    return name + ": its records or its image are damaged";
}

} // namespace

bool FindImages(const fs::path& path, const GAME_SYSTEM* system, std::vector<FOUND_IMAGE>& images,
                std::string& error) {
    images.clear();
    std::vector<uint8_t> bytes;
    const std::string extension = LowerExtension(path);
    const uint16_t number = system != nullptr ? system->system : SystemOfExtension(extension);
    if (!ReadFile(path, bytes, error, kLargestImage)) {
        return false;
    }
    if (bytes.empty()) {
        error = path.string() + ": is empty";
        return false;
    }
    if (extension == ".zip") {
        return ImagesOfArchive(path, bytes, system, images, error);
    }
    if (number == 0) {
        error = path.string() + ": is of no known kind; the extension tells the system";
        return false;
    }
    images.push_back({path.stem().string(), number, std::move(bytes)});
    return true;
}

bool OpenGame(const fs::path& path, const GAME_SYSTEM* system, CGameFile& game, std::string& title,
              std::string& error) {
    if (LowerExtension(path) == ".game") {
        if (!OpenGameFile(path, false, game, error)) {
            return false;
        }
    } else {
        std::vector<FOUND_IMAGE> images;
        if (!FindImages(path, system, images, error)) {
            return false;
        }
        const FOUND_IMAGE& image = images.front();
        const std::vector<CGameFile> database = LoadDatabase(image.system);
        bool known = false;
        if (!BuildGame(image.system, image.stem, image.bytes, database, game, known)) {
            error = path.string() + ": is no image that can be played by itself";
            return false;
        }
    }
    game.selectedName = 0;
    NAME_VIEW name;
    title = game.GetName(0, name) && !name.title.empty() ? name.title : path.stem().string();
    return true;
}

bool OpenGameFile(const fs::path& path, bool headerOnly, CGameFile& game, std::string& error) {
    if (!LoadGameFile(headerOnly, path, game)) {
        error = FaultOfGameFile(path, headerOnly);
        return false;
    }
    return true;
}

std::vector<CGameFile> LoadDatabase(uint16_t system) {
    const GAME_SYSTEM* entry = FindGameSystem(system);
    std::vector<uint8_t> bytes;
    std::string ignored;
    if (entry == nullptr || !ReadFile(ResolvePath(entry->databaseFile), bytes, ignored)) {
        return {};
    }
    return ParseDatabase(bytes.data(), bytes.size());
}
