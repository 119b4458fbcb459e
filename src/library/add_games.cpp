#include "library/add_games.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "library/convert.h"
#include "library/extract.h"
#include "library/file_walk.h"
#include "library/folder_conversion.h"
#include "library/folder_list.h"
#include "library/free_name.h"
#include "library/game_database.h"
#include "library/game_source.h"
#include "library/image_check.h"
#include "library/image_identity.h"

#include <algorithm>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

using Digests = std::unordered_set<Sha256Digest, DIGEST_HASH>;

// One machine's part of the library.
struct SHELF {
    const MACHINE_FACTS* machine = nullptr;
    fs::path folder;
    CGameDatabase database;
    bool looked = false;
    Digests pieces;  // of the games that are there, and of what was copied
    Digests headers; // of the games that are there
    Digests copied;  // pieces of boards, which wait for the conversion
    std::vector<fs::path> copies;
};

Sha256Digest DigestOf(const uint8_t (&bytes)[32]) {
    Sha256Digest digest{};
    std::copy(std::begin(bytes), std::end(bytes), digest.begin());
    return digest;
}

std::vector<Sha256Digest> PiecesOf(const CGameFile& game) {
    std::vector<Sha256Digest> pieces;
    for (uint32_t index = 0; index < game.RomCount(); ++index) {
        std::string name;
        ROM_RECORD record{};
        if (game.GetRom(index, name, record)) {
            pieces.push_back(DigestOf(record.sha256));
        }
    }
    return pieces;
}

// Reads the records of every game in the folder, once.
void Look(SHELF& shelf) {
    if (shelf.looked) {
        return;
    }
    shelf.looked = true;
    std::vector<fs::path> names;
    std::string ignored; // a folder that is not there yet has no games
    static_cast<void>(ListFolder(shelf.folder, names, ignored));
    for (const fs::path& name : names) {
        CGameFile game;
        if (KindOfFile(shelf.machine->system, name) != FolderFile::kGame ||
            !LoadGameFile(true, shelf.folder / name, game)) {
            continue;
        }
        shelf.headers.insert(DigestOf(game.Header().headerHash));
        for (const Sha256Digest& piece : PiecesOf(game)) {
            shelf.pieces.insert(piece);
        }
    }
}

// A piece may belong to several boards: it is there once all of them are.
bool BoardsAreThere(const SHELF& shelf, const Sha256Digest& piece) {
    for (const CGameFile& entry : shelf.database.Entries()) {
        if (entry.FindRom(piece) >= 0 &&
            !shelf.headers.contains(DigestOf(entry.Header().headerHash))) {
            return false;
        }
    }
    return true;
}

// The hashes by which a file may be known: of its bytes, and of them in order if it is an interleaved dump.
struct IDENTITY {
    Sha256Digest plain;
    Sha256Digest inOrder;

    [[nodiscard]] const Sha256Digest& For(uint16_t system) const {
        return system == kSystemMegaDrive ? inOrder : plain;
    }
};

IDENTITY IdentityOf(std::span<const uint8_t> bytes) {
    const std::vector<uint8_t> inOrder = PrepareImage(kSystemMegaDrive, bytes);
    const Sha256Digest plain = Sha256(bytes);
    return {plain, inOrder.size() == bytes.size() ? plain : Sha256(inOrder)};
}

class GameAdder {
public:
    GameAdder(const ADD_REQUEST& addRequest, const ADD_SINK& addSink);

    ADDED_GAMES Run();

private:
    [[nodiscard]] bool Stopped() const { return request.stop != nullptr && *request.stop; }
    void Fault(const std::string& line);
    void TakeFile(const WALKED_FILE& file);
    void TakeImage(const WALKED_FILE& file, const FOUND_IMAGE& image);
    void TakeGame(const std::string& label, const FOUND_IMAGE& image);
    [[nodiscard]] SHELF* ShelfOf(const WALKED_FILE& file, const FOUND_IMAGE& image,
                                 const IDENTITY& identity);
    [[nodiscard]] bool MayPlace(const SHELF& shelf, bool named, const std::string& label,
                                const FOUND_IMAGE& image, const IDENTITY& identity);
    void Place(SHELF& shelf, const std::string& label, const FOUND_IMAGE& image,
               const IDENTITY& identity);
    [[nodiscard]] SHELF* FindShelf(uint16_t system);
    // False for what cannot be copied, which is counted.
    [[nodiscard]] bool Copy(SHELF& shelf, const fs::path& stem, const std::string& extension,
                            std::span<const uint8_t> bytes);
    void Convert(SHELF& shelf, size_t done, size_t total);
    void CountWaiting(const SHELF& shelf);

    const ADD_REQUEST& request;
    const ADD_SINK& sink;
    ADDED_GAMES result;
    std::vector<SHELF> shelves;
};

GameAdder::GameAdder(const ADD_REQUEST& addRequest, const ADD_SINK& addSink)
    : request(addRequest)
    , sink(addSink) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        SHELF& shelf = shelves.emplace_back();
        shelf.machine = &machine;
        shelf.folder = HomeFolder() / machine.folder;
        shelf.database = CGameDatabase(LoadDatabase(machine.system));
    }
}

void GameAdder::Fault(const std::string& line) {
    ++result.failed;
    sink.fault(line);
}

SHELF* GameAdder::FindShelf(uint16_t system) {
    const auto found = std::find_if(shelves.begin(), shelves.end(), [&](const SHELF& shelf) {
        return shelf.machine->system == system;
    });
    return found == shelves.end() ? nullptr : &*found;
}

// Whether a file of unknown kind that was found in a folder may be an image: their sizes are multiples of
// 512, with a copier's header too, and those of notes and pictures hardly ever are.
bool MayBeImage(size_t size) {
    return size % 512 == 0;
}

bool HasExtension(const fs::path& path, std::string_view extension) {
    return LowerAscii(std::string_view(path.extension().string())) == extension;
}

// Whether the user has named this very image.
bool IsNamed(const WALKED_FILE& file) {
    return file.named && !HasExtension(file.path, ".zip");
}

// Null if nothing tells the machine.
SHELF* GameAdder::ShelfOf(const WALKED_FILE& file, const FOUND_IMAGE& image,
                          const IDENTITY& identity) {
    const uint16_t asked = request.machine != nullptr ? request.machine->system : 0;
    if (asked != 0 && IsNamed(file)) {
        return FindShelf(asked);
    }
    for (SHELF& shelf : shelves) {
        if (shelf.database.FindKnownRom(identity.For(shelf.machine->system))) {
            return &shelf;
        }
    }
    if (SHELF* const told = FindShelf(IdentifyImage(image.name, image.bytes).system)) {
        return told;
    }
    return asked != 0 && MayBeImage(image.bytes.size()) ? FindShelf(asked) : nullptr;
}

bool GameAdder::Copy(SHELF& shelf, const fs::path& stem, const std::string& extension,
                     std::span<const uint8_t> bytes) {
    PLACED_FILE placed;
    std::string error;
    if (!WriteBesideOthers(shelf.folder, stem, extension, bytes, placed, error)) {
        Fault(error);
        return false;
    }
    // One that an interrupted run has left is converted now.
    ++(placed.alreadyThere ? result.alreadyThere : result.copied);
    if (shelf.copies.empty()) {
        result.systems.push_back(shelf.machine->system);
    }
    shelf.copies.push_back(placed.path);
    return true;
}

// A game that has been converted elsewhere.
void GameAdder::TakeGame(const std::string& label, const FOUND_IMAGE& image) {
    CGameFile game;
    std::vector<std::string> faults;
    const std::span<const uint8_t> bytes = image.bytes;
    const bool whole = game.Parse(bytes.data(), bytes.size(), true) && !game.HasGada();
    SHELF* const shelf = whole ? FindShelf(game.Header().system) : nullptr;
    if (shelf != nullptr) {
        static_cast<void>(ImageFiles(game, image.stem, ImageForm::kPlain, faults));
    }
    if (shelf == nullptr || !faults.empty()) {
        Fault(label + ": is damaged, or no game file" +
              (faults.empty() ? "" : ": " + faults.front()));
        return;
    }
    Look(*shelf);
    const std::vector<Sha256Digest> pieces = PiecesOf(game);
    const bool arcade = shelf->machine->system == kSystemArcade;
    const Sha256Digest header = DigestOf(game.Header().headerHash);
    const bool there =
        arcade ? shelf->headers.contains(header)
               : std::all_of(pieces.begin(), pieces.end(), [&](const Sha256Digest& piece) {
                     return shelf->pieces.contains(piece);
                 });
    if (there) {
        ++result.alreadyThere;
        return;
    }
    if (Copy(*shelf, FileNameFromTitle(image.stem), ".game", bytes)) {
        shelf->headers.insert(header);
        shelf->pieces.insert(pieces.begin(), pieces.end());
    }
}

void GameAdder::TakeImage(const WALKED_FILE& file, const FOUND_IMAGE& image) {
    const std::string label =
        file.path.string() + (file.path.filename() == image.name ? "" : ": " + image.name);
    if (HasExtension(image.name, ".game")) {
        TakeGame(label, image);
        return;
    }
    const IDENTITY identity = IdentityOf(image.bytes);
    if (SHELF* const shelf = ShelfOf(file, image, identity)) {
        if (MayPlace(*shelf, IsNamed(file), label, image, identity)) {
            Place(*shelf, label, image, identity);
        }
    } else if (IsNamed(file) || MayBeImage(image.bytes.size())) {
        ++result.untold;
        sink.fault(label + ": nothing tells which machine it is for");
    } else {
        ++result.others;
    }
}

// A text or a picture beside games, as every folder has them, is no failure unless the player has named it.
bool GameAdder::MayPlace(const SHELF& shelf, bool named, const std::string& label,
                         const FOUND_IMAGE& image, const IDENTITY& identity) {
    const uint16_t system = shelf.machine->system;
    const IMAGE_VERDICT verdict = CheckImage(system, image.bytes);
    if (verdict.fault == ImageFault::kNone || shelf.database.FindKnownRom(identity.For(system))) {
        return true;
    }
    if (verdict.fault == ImageFault::kOtherKind && !named) {
        ++result.others;
    } else {
        Fault(label + ": " + verdict.reason);
    }
    return false;
}

void GameAdder::Place(SHELF& shelf, const std::string& label, const FOUND_IMAGE& image,
                      const IDENTITY& identity) {
    const uint16_t system = shelf.machine->system;
    const bool arcade = system == kSystemArcade;
    const Sha256Digest& hash = identity.For(system);
    if (arcade && !shelf.database.FindKnownRom(hash)) {
        Fault(label + ": is no piece of a board that the database knows");
        return;
    }
    Look(shelf);
    // Copied once, a piece of a board goes into all games that need it. The sets of two boards may both have it, under
    // two names.
    if (arcade ? shelf.copied.contains(hash) || BoardsAreThere(shelf, hash)
               : shelf.pieces.contains(hash)) {
        ++result.alreadyThere;
        return;
    }
    const fs::path name(image.name);
    const std::string extension = ValidExtension(system, image.name)
                                      ? FileNameFromTitle(name.extension().string())
                                      : UsualExtension(system);
    if (Copy(shelf, FileNameFromTitle(image.stem), extension, image.bytes)) {
        (arcade ? shelf.copied : shelf.pieces).insert(hash);
    }
}

void GameAdder::TakeFile(const WALKED_FILE& file) {
    IMAGE_VISITOR visitor;
    visitor.image = [&](const FOUND_IMAGE& image) {
        TakeImage(file, image);
        return !Stopped();
    };
    visitor.fault = [&](const std::string& fault) { Fault(fault); };
    std::string error;
    if (!VisitAllFiles(file.path, visitor, error) && !Stopped()) {
        Fault(error);
    }
}

// `done` of the `total` copies have been converted before.
void GameAdder::Convert(SHELF& shelf, size_t done, size_t total) {
    CONVERSION conversion;
    conversion.folder = shelf.folder;
    conversion.system = shelf.machine->system;
    conversion.database = &shelf.database;
    conversion.keepSources = request.keepSources;
    conversion.stop = request.stop;
    CONVERSION_SINK conversionSink;
    conversionSink.report = [&](ConversionCount count, const std::wstring& line) {
        const std::string text = Utf8FromWide(line);
        switch (count) {
        case ConversionCount::kGood:
        case ConversionCount::kAuto: sink.note(text); break;
        case ConversionCount::kError: Fault(text); break;
        case ConversionCount::kNone: sink.fault(text); break; // more about the line before
        case ConversionCount::kSkipped: break;                // was in the folder before
        }
    };
    const auto share = static_cast<double>(shelf.copies.size());
    size_t doneHere = 0;
    conversionSink.progress = [&](double part) { doneHere = static_cast<size_t>(part * share); };
    conversionSink.file = [&](const fs::path& path) {
        sink.progress(done + doneHere, total, path.filename().string());
    };
    static_cast<void>(ConvertFolder(conversion, conversionSink)); // it has reported everything
    CountWaiting(shelf);
}

// Pieces that are still there have gone into no game.
void GameAdder::CountWaiting(const SHELF& shelf) {
    if (shelf.machine->system != kSystemArcade) {
        return;
    }
    for (const fs::path& copy : shelf.copies) {
        std::error_code code;
        result.waiting +=
            copy.extension() != ".game" && fs::exists(copy, code) ? size_t{1} : size_t{0};
    }
}

ADDED_GAMES GameAdder::Run() {
    std::vector<WALKED_FILE> files;
    std::vector<std::string> faults;
    WalkFiles(request.paths, files, faults, request.stop);
    for (const std::string& fault : faults) {
        Fault(fault);
    }
    for (size_t i = 0; i < files.size() && !Stopped(); ++i) {
        sink.progress(i, files.size(), files[i].path.filename().string());
        TakeFile(files[i]);
    }
    size_t total = 0;
    for (const SHELF& shelf : shelves) {
        total += shelf.copies.size();
    }
    size_t done = 0;
    for (SHELF& shelf : shelves) {
        if (!shelf.copies.empty() && !Stopped()) {
            Convert(shelf, done, total);
        }
        done += shelf.copies.size();
    }
    return result;
}

} // namespace

ADDED_GAMES AddGames(const ADD_REQUEST& request, const ADD_SINK& sink) {
    return GameAdder(request, sink).Run();
}
