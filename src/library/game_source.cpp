#include "library/game_source.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/game_file.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/game_database.h"
#include "library/image_check.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

BuiltInDatabase gBuiltInDatabase = nullptr;

bool HasImage(std::span<const CGameFile> database, const CGameFile& entry) {
    std::string name;
    ROM_RECORD rom{};
    if (!entry.GetRom(0, name, rom)) {
        return false;
    }
    Sha256Digest hash{};
    std::copy(std::begin(rom.sha256), std::end(rom.sha256), hash.begin());
    return std::ranges::any_of(database,
                               [&](const CGameFile& known) { return known.FindRom(hash) >= 0; });
}

// Every entry that knows an image gives a converted game one more copy of it, so an image is known once.
void AddUnlessKnown(std::vector<CGameFile> entries, std::vector<CGameFile>& database) {
    const size_t fromFile = database.size();
    for (CGameFile& entry : entries) {
        if (!HasImage(std::span(database).first(fromFile), entry)) {
            database.push_back(std::move(entry));
        }
    }
}

std::string LowerExtension(const fs::path& path) {
    return LowerAscii(std::string_view(path.extension().string()));
}

// A file name may hold any bytes, but a title is UTF-8.
std::string Utf8Of(const fs::path& path) {
    return Utf8FromWide(WideFromUtf8(path.string()));
}

std::string NameOf(const fs::path& path) {
    return Utf8Of(path.filename());
}

std::string StemOf(const fs::path& path) {
    return Utf8Of(path.stem());
}

struct ARCHIVE_ENTRY {
    uint32_t index;
    std::string entry; // with its folders
    fs::path name;
    uint16_t system;
    uint64_t unpackedSize;
};

// The entries that are files.
std::vector<ARCHIVE_ENTRY> FileEntries(const ZipReader& reader) {
    std::vector<ARCHIVE_ENTRY> files;
    for (uint32_t index = 0; index < reader.EntryCount(); ++index) {
        ZIP_ENTRY entry;
        if (!reader.Entry(index, entry) || entry.unpackedSize == 0) {
            continue;
        }
        const fs::path name(Utf8FromWide(LastPathComponent(entry.name)));
        if (!name.empty()) { // a folder
            std::string whole = Utf8FromWide(entry.name);
            std::ranges::replace(whole, '\\', '/');
            files.push_back({index, std::move(whole), name,
                             SystemOfExtension(name.extension().string()), entry.unpackedSize});
        }
    }
    return files;
}

// Those that are images; if none has the extension of a given `system`, the only file that is no archive.
std::vector<ARCHIVE_ENTRY> ImageEntries(std::vector<ARCHIVE_ENTRY> files,
                                        const MACHINE_FACTS* system) {
    std::vector<ARCHIVE_ENTRY> images;
    std::ranges::copy_if(files, std::back_inserter(images), [&](const ARCHIVE_ENTRY& entry) {
        return entry.system != 0 && (system == nullptr || system->system == entry.system);
    });
    std::erase_if(files,
                  [](const ARCHIVE_ENTRY& entry) { return LowerExtension(entry.name) == ".zip"; });
    if (images.empty() && files.size() == 1 && system != nullptr) {
        files.front().system = system->system;
        return files;
    }
    return images;
}

bool VisitEntries(const fs::path& path, const ZipReader& reader,
                  const std::vector<ARCHIVE_ENTRY>& entries, const IMAGE_VISITOR& visitor,
                  std::string& error) {
    uint64_t room = kLargestArchive;
    for (const ARCHIVE_ENTRY& entry : entries) {
        if (entry.unpackedSize > room) {
            error = path.string() + ": its images unpack to more than " +
                    std::to_string(kLargestArchive) + " bytes";
            return false;
        }
        room -= entry.unpackedSize;
        FOUND_IMAGE image;
        image.name = NameOf(entry.name);
        image.stem = StemOf(entry.name);
        image.entry = entry.entry;
        image.system = entry.system;
        std::string fault;
        if (!reader.Unpack(entry.index, image.bytes, fault, kLargestImage)) {
            visitor.fault(path.string() + ": " + fault);
            continue;
        }
        if (!visitor.image(image)) {
            break;
        }
    }
    return true;
}

bool OpenArchive(const fs::path& path, std::span<const uint8_t> archive, ZipReader& reader,
                 std::string& error) {
    if (!reader.Open(archive, error)) {
        error = path.string() + ": " + error;
        return false;
    }
    return true;
}

bool VisitArchive(const fs::path& path, std::span<const uint8_t> archive,
                  const MACHINE_FACTS* system, const IMAGE_VISITOR& visitor, std::string& error) {
    ZipReader reader;
    if (!OpenArchive(path, archive, reader, error)) {
        return false;
    }
    const std::vector<ARCHIVE_ENTRY> entries = ImageEntries(FileEntries(reader), system);
    if (entries.empty()) {
        error = path.string() + ": holds no game image";
        return false;
    }
    return VisitEntries(path, reader, entries, visitor, error);
}

// Reads a file that may be an image or an archive.
bool ReadSource(const fs::path& path, std::vector<uint8_t>& bytes, std::string& error) {
    const uint64_t limit = LowerExtension(path) == ".zip" ? kLargestZip : kLargestImage;
    if (!ReadFile(path, bytes, error, limit)) {
        return false;
    }
    if (bytes.empty()) {
        error = path.string() + ": is empty";
        return false;
    }
    return true;
}

// The reason why LoadGameFile refused a file.
std::string FaultOfGameFile(const fs::path& path, bool headerOnly) {
    const std::string name = path.string();
    std::error_code code;
    if (fs::is_directory(path, code)) {
        return name + ": is a folder";
    }
    std::ifstream file(path, std::ios::binary);
    const uint64_t size = fs::file_size(path, code);
    if (!file || code) {
        return name + ": cannot be opened";
    }
    GAME_HEADER header{};
    if (!file.read(reinterpret_cast<char*>(&header), sizeof header)) {
        return name + ": is too short to be a game file";
    }
    if (std::memcmp(header.tag, "GAME", sizeof header.tag) != 0) {
        return name + ": is not a game file";
    }
    if (header.headerSize > size) {
        return name + ": is cut off within its records";
    }
    const uint64_t stated = uint64_t{header.headerSize} + header.packedSize;
    if (!headerOnly && stated != size) {
        return name + ": is " + std::to_string(size) + " bytes long, but its header says " +
               std::to_string(stated);
    }
    return name + ": its records or its image are damaged";
}

using VisitFunction = std::function<bool(const IMAGE_VISITOR& visitor, std::string& error)>;

// Takes the game that was picked from the images of a visit, and counts what else it could have been.
class Picker {
public:
    Picker(const fs::path& file, const GAME_PICK& wanted, CGameFile& picked)
        : path(file)
        , pick(wanted)
        , game(picked) {}

    // False with the reason if no game could be taken.
    [[nodiscard]] bool Run(const VisitFunction& visit, std::string& error) {
        IMAGE_VISITOR visitor;
        visitor.image = [&](const FOUND_IMAGE& image) {
            Take(image);
            return true;
        };
        visitor.fault = [&](const std::string& fault) { Refuse(fault); };
        if (!visit(visitor, error)) {
            return false;
        }
        if (!taken) {
            error = refusal.empty() ? path.string() + ": holds no game " + pick.entry : refusal;
        }
        return taken;
    }

    [[nodiscard]] size_t Games() const { return games; }
    // Of the one that was taken, in an archive.
    [[nodiscard]] const std::string& Entry() const { return entry; }

private:
    void Refuse(const std::string& reason) { refusal = refusal.empty() ? reason : refusal; }

    void Take(const FOUND_IMAGE& image) {
        const bool wanted = pick.entry.empty() || image.entry == pick.entry;
        if (taken || !wanted) {
            // The others are only counted, without a look into the database.
            if (CheckImage(image.system, image.bytes).fault == ImageFault::kNone) {
                ++games;
            }
            return;
        }
        const std::string label =
            path.string() + (image.entry.empty() ? "" : ": " + image.entry) + ": ";
        bool known = false;
        CGameFile built;
        const bool whole = BuildGame(image.system, image.stem, image.bytes,
                                     LoadDatabase(image.system), built, known);
        const IMAGE_VERDICT verdict =
            known ? IMAGE_VERDICT{} : CheckImage(image.system, image.bytes);
        if (!whole || verdict.fault != ImageFault::kNone) {
            Refuse(label + (verdict.reason.empty() ? "is not an image that can be played by itself"
                                                   : verdict.reason));
            return;
        }
        game = std::move(built);
        entry = image.entry;
        taken = true;
        ++games;
    }

    const fs::path& path;
    const GAME_PICK& pick;
    CGameFile& game;
    bool taken = false;
    size_t games = 0;
    std::string entry;
    std::string refusal; // the first
};

bool OpenImageFile(const fs::path& path, const GAME_PICK& pick, CGameFile& game, std::string& note,
                   std::string& error) {
    const auto visit = [&](const IMAGE_VISITOR& visitor, std::string& fault) {
        return VisitImages(path, pick.system, visitor, fault);
    };
    Picker picker(path, pick, game);
    if (!picker.Run(visit, error)) {
        return false;
    }
    if (!pick.entry.empty()) {
        note = path.string() + ": this is " + picker.Entry();
    } else if (picker.Games() > 1) {
        note = path.string() + ": holds " + std::to_string(picker.Games()) + " games; this is " +
               picker.Entry() + ", and --entry NAME takes another";
    }
    return true;
}

// Replaces a game whose image is an archive by the one in the archive.
bool OpenInside(const fs::path& path, const MACHINE_FACTS& system, const GAME_PICK& pick,
                CGameFile& game, std::string& note, std::string& error) {
    const auto archive = game.AssembleImage(0);
    if (!archive) {
        error = path.string() + ": its records or its image are damaged";
        return false;
    }
    const auto visit = [&](const IMAGE_VISITOR& visitor, std::string& fault) {
        return VisitArchive(path, *archive, &system, visitor, fault);
    };
    CGameFile inside;
    Picker picker(path, pick, inside);
    if (!picker.Run(visit, error)) {
        return false;
    }
    game = std::move(inside);
    note = path.string() + ": holds an archive; this is " + picker.Entry() + " in it";
    if (picker.Games() > 1 && pick.entry.empty()) {
        note += ", one of " + std::to_string(picker.Games()) + " games; --entry NAME takes another";
    }
    return true;
}

// The machine whose games are looked for in the image of a `.game`; null if that is no archive. An arcade game is the
// pieces of a board, which the database has named.
const MACHINE_FACTS* MachineOfArchive(const CGameFile& game, const MACHINE_FACTS* asked) {
    const MACHINE_FACTS* const machine =
        asked != nullptr ? asked : FindMachineFacts(game.Header().system);
    const bool searched = machine != nullptr && machine->system != kSystemArcade;
    return searched && HoldsArchive(game) ? machine : nullptr;
}

// Refuses a `.game` that an older program has made of what is no game.
bool CheckContainer(const fs::path& path, const CGameFile& game, std::string& error) {
    const auto image = game.AssembleImage(0);
    const IMAGE_VERDICT verdict =
        image ? CheckPreparedImage(game.Header().system, *image) : IMAGE_VERDICT{};
    if (verdict.fault == ImageFault::kNone) {
        return true;
    }
    const CGameDatabase database(LoadDatabase(game.Header().system));
    error = path.string() + ": " + verdict.reason;
    return database.FindKnownRom(Sha256(*image));
}

// A `.game`, and what lies in it if its image is an archive.
bool OpenContainer(const fs::path& path, const GAME_PICK& pick, CGameFile& game, std::string& note,
                   std::string& error) {
    if (!OpenGameFile(path, false, game, error)) {
        return false;
    }
    const MACHINE_FACTS* const machine = MachineOfArchive(game, pick.system);
    return machine != nullptr ? OpenInside(path, *machine, pick, game, note, error)
                              : CheckContainer(path, game, error);
}

// Changes the system of a game's image, as the user asked.
bool ChangeSystem(const fs::path& path, const MACHINE_FACTS& system, CGameFile& game,
                  std::string& error) {
    const auto image = game.AssembleImage(0);
    NAME_VIEW name;
    CGameFile changed;
    bool known = false;
    if (!image || !game.GetName(0, name) ||
        !BuildGame(system.system, name.title, *image, {}, changed, known)) {
        error = path.string() + ": holds no image that can be played on the " + system.name;
        return false;
    }
    game = std::move(changed);
    return true;
}

} // namespace

bool HoldsArchive(const CGameFile& game) {
    constexpr std::string_view kMark = "PK\x03\x04"; // that a zip begins with
    const int piece = game.NameRomAt(0, 0);
    const std::span<const uint8_t> data = game.Data();
    const size_t offset = piece < 0 ? data.size() : game.RomOffset(static_cast<uint32_t>(piece));
    return game.NameCount() > 0 && offset <= data.size() && data.size() - offset >= kMark.size() &&
           std::memcmp(data.data() + offset, kMark.data(), kMark.size()) == 0;
}

bool VisitImages(const fs::path& path, const MACHINE_FACTS* system, const IMAGE_VISITOR& visitor,
                 std::string& error) {
    std::vector<uint8_t> bytes;
    const std::string extension = LowerExtension(path);
    if (!ReadSource(path, bytes, error)) {
        return false;
    }
    if (extension == ".zip") {
        return VisitArchive(path, bytes, system, visitor, error);
    }
    const uint16_t number = system != nullptr ? system->system : SystemOfExtension(extension);
    if (number == 0) {
        error = path.string() + ": is of an unknown kind; the extension tells the system";
        return false;
    }
    visitor.image({NameOf(path), StemOf(path), {}, number, std::move(bytes)});
    return true;
}

bool VisitAllFiles(const fs::path& path, const IMAGE_VISITOR& visitor, std::string& error) {
    std::vector<uint8_t> bytes;
    const std::string extension = LowerExtension(path);
    if (!ReadSource(path, bytes, error)) {
        return false;
    }
    if (extension == ".zip") {
        ZipReader reader;
        return OpenArchive(path, bytes, reader, error) &&
               VisitEntries(path, reader, FileEntries(reader), visitor, error);
    }
    visitor.image({NameOf(path), StemOf(path), {}, SystemOfExtension(extension), std::move(bytes)});
    return true;
}

bool OpenGame(const fs::path& path, const GAME_PICK& pick, CGameFile& game, std::string& title,
              std::string& note, std::string& error) {
    note.clear();
    const bool container = LowerExtension(path) == ".game";
    if (container ? !OpenContainer(path, pick, game, note, error)
                  : !OpenImageFile(path, pick, game, note, error)) {
        return false;
    }
    if (pick.system != nullptr && pick.system->system != game.Header().system &&
        !ChangeSystem(path, *pick.system, game, error)) {
        return false;
    }
    error.clear();
    game.selectedName = 0;
    NAME_VIEW name;
    title = game.GetName(0, name) && !name.title.empty() ? name.title : StemOf(path);
    return true;
}

bool ListArchivedGames(const fs::path& path, const MACHINE_FACTS* system,
                       std::vector<ARCHIVED_GAME>& games, std::string& error) {
    games.clear();
    IMAGE_VISITOR visitor;
    visitor.image = [&](const FOUND_IMAGE& image) {
        if (!image.entry.empty() &&
            CheckImage(image.system, image.bytes).fault == ImageFault::kNone) {
            games.push_back({image.entry, image.system});
        }
        return true;
    };
    visitor.fault = [](const std::string&) {}; // the others can still be picked
    if (LowerExtension(path) != ".game") {
        return VisitImages(path, system, visitor, error);
    }
    CGameFile game;
    if (!OpenGameFile(path, false, game, error)) {
        return false;
    }
    const MACHINE_FACTS* const machine = MachineOfArchive(game, system);
    const auto archive = machine != nullptr ? game.AssembleImage(0) : std::nullopt;
    return !archive || VisitArchive(path, *archive, machine, visitor, error);
}

int FindArchivedGame(std::span<const ARCHIVED_GAME> games, std::string_view name) {
    int found = -1;
    const std::string wanted = LowerAscii(name);
    for (size_t i = 0; i < games.size(); ++i) {
        if (games[i].entry == name) {
            return static_cast<int>(i);
        }
        const std::string_view entry = games[i].entry;
        if (LowerAscii(entry) == wanted ||
            LowerAscii(entry.substr(entry.rfind('/') + 1)) == wanted) {
            constexpr int kSeveral = -2;
            found = found == -1 ? static_cast<int>(i) : kSeveral;
        }
    }
    return std::max(found, -1);
}

bool OpenGameFile(const fs::path& path, bool headerOnly, CGameFile& game, std::string& error) {
    if (!LoadGameFile(headerOnly, path, game)) {
        error = FaultOfGameFile(path, headerOnly);
        return false;
    }
    return true;
}

void SetBuiltInDatabase(BuiltInDatabase entries) {
    gBuiltInDatabase = entries;
}

std::vector<CGameFile> LoadDatabase(uint16_t system) {
    const MACHINE_FACTS* facts = FindMachineFacts(system);
    if (facts == nullptr) {
        return {};
    }
    std::vector<uint8_t> bytes;
    std::string ignored;
    std::vector<CGameFile> database;
    if (ReadFile(ResolvePath(facts->databaseFile), bytes, ignored)) {
        database = ParseDatabase(bytes.data(), bytes.size());
    }
    if (gBuiltInDatabase != nullptr) {
        AddUnlessKnown(gBuiltInDatabase(system), database);
    }
    return database;
}
