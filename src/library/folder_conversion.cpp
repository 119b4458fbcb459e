#include "library/folder_conversion.h"

#include "base/files.h"
#include "base/ordered_work.h"
#include "base/text.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/folder_list.h"
#include "library/folder_lock.h"
#include "library/game_database.h"
#include "library/game_source.h"
#include "library/game_writer.h"
#include "library/image_check.h"
#include "library/source_files.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace fs = std::filesystem;

namespace {

// Of the progress; packing takes most of the time.
constexpr double kGatherShare = 0.1;
// What a file costs besides its bytes, in bytes.
constexpr uint64_t kFileWeight = uint64_t{1} << 16;
// A file in hand is in memory as it is, prepared, packed and unpacked again.
constexpr uint64_t kCopiesInHand = 4;
constexpr uint64_t kMemoryInHand = uint64_t{1} << 29;

// One file of the conversion list.
struct SOURCE {
    fs::path path;
    std::string stem; // bytes of the name
    bool isZip = false;
    uint64_t size = 0;      // before it is read
    FILE_STAMP stamp;       // when it was read
    uint32_t queued = 0;    // its pending items
    uint32_t unused = 0;    // of these, those in no game of step 2
    uint32_t unwritten = 0; // and those of which a game is still to be written
    std::string leftOut;    // an entry of the zip that was not queued
    double progress = 0.0;  // 0 to 1
    bool stays = false;     // something in it goes into no game
    bool begun = false;     // step 3 has had it
    bool packed = false;    // step 3 has made a game of it
    bool gone = false;
    bool keptTold = false;
};

struct GATHERED_ITEM {
    std::wstring member;
    uint32_t size = 0;
    Sha256Digest sha256{};
    std::string noGame; // why it can be no game; a database that knows it overrules that
};

struct GATHERED {
    FILE_STAMP stamp;
    std::vector<GATHERED_ITEM> items;
    std::string leftOut;
    std::string error;
    bool isEmpty = false;
};

// A database entry whose pieces are all there.
struct PLAN {
    int entry = 0;
    std::string name;
    std::vector<PendingFile*> items;
    fs::file_time_type newestSource = fs::file_time_type::min();
    uint64_t size = 0;
    bool settled = false; // its game is there, or cannot be made
};

// A game that is ready to be written.
struct MADE_GAME {
    bool ready = false;
    bool known = false;
    std::vector<uint8_t> bytes; // the whole file
    fs::path there;             // or where it is already
    FILE_STAMP stamp;           // of its source
    std::string error;          // the source cannot be read
    std::string refusal;        // the source stays for this reason; may be empty
};

GATHERED_ITEM Hashed(uint16_t system, std::wstring member, std::span<const uint8_t> bytes) {
    return {std::move(member), static_cast<uint32_t>(bytes.size()), Sha256(bytes),
            CheckImage(system, bytes).reason};
}

void GatherZip(uint16_t system, std::span<const uint8_t> archive, GATHERED& gathered) {
    ZipReader reader;
    if (!reader.Open(archive, gathered.error)) {
        return;
    }
    uint64_t room = kLargestArchive;
    std::vector<uint8_t> bytes;
    for (uint32_t index = 0; index < reader.EntryCount(); ++index) {
        ZIP_ENTRY entry;
        if (!reader.Entry(index, entry)) {
            gathered.leftOut = "entry " + std::to_string(index);
            continue;
        }
        std::string cause;
        if (entry.unpackedSize == 0) {
            // A folder or an empty file, unless the archive states a wrong size.
            if (!reader.Unpack(index, bytes, cause, kLargestImage)) {
                gathered.leftOut = cause;
            }
            continue;
        }
        const std::string name = Utf8FromWide(LastPathComponent(entry.name));
        if (!ValidExtension(system, name) || entry.unpackedSize > room ||
            !reader.Unpack(index, bytes, cause, kLargestImage)) {
            gathered.leftOut = cause.empty() ? entry.rawName : cause;
            continue;
        }
        room -= entry.unpackedSize;
        gathered.items.push_back(Hashed(system, entry.name, bytes));
    }
}

GATHERED GatherSource(uint16_t system, const SOURCE& source) {
    GATHERED gathered;
    std::vector<uint8_t> bytes;
    if (!ReadSource(source.path, bytes, gathered.stamp, gathered.error)) {
        return gathered;
    }
    gathered.isEmpty = bytes.empty();
    if (source.isZip) {
        GatherZip(system, bytes, gathered);
        if (!gathered.error.empty()) {
            gathered.error = source.path.string() + ": " + gathered.error;
        }
    } else if (!bytes.empty()) {
        gathered.items.push_back(Hashed(system, {}, bytes));
    }
    return gathered;
}

class Conversion {
public:
    Conversion(const CONVERSION& what, const CONVERSION_SINK& where)
        : conversion(what)
        , sink(where)
        , database(*what.database) {}

    ConversionEnd Run();

private:
    [[nodiscard]] bool List();
    [[nodiscard]] bool Gather();
    void TakeGathered(SOURCE& source, const GATHERED& gathered);
    [[nodiscard]] bool AssembleKnown();
    [[nodiscard]] std::vector<PLAN> Plans();
    void NoteStaying(const std::vector<PLAN>& plans);
    [[nodiscard]] MADE_GAME MakeKnown(const PLAN& plan);
    void TakeKnown(PLAN& plan, const MADE_GAME& made);
    void CountUses(const std::vector<PLAN>& plans);
    [[nodiscard]] bool ConvertRest();
    [[nodiscard]] MADE_GAME MakeUnknown(const SOURCE& source) const;
    void TakeRest(SOURCE& source, bool used, bool repeated, const MADE_GAME& made);
    void TakeUnknown(SOURCE& source, const MADE_GAME& made);
    void FinishUsed();
    void RemoveUsed(SOURCE& source, bool mayStillConvert);
    void TellKept(SOURCE& source, const std::string& why);
    void Remove(SOURCE& source, const FILE_STAMP& stamp);

    [[nodiscard]] SOURCE& SourceOf(const fs::path& path) {
        return sources[indexOfPath.at(path.native())];
    }
    [[nodiscard]] const SOURCE& SourceOf(const fs::path& path) const {
        return sources[indexOfPath.at(path.native())];
    }
    [[nodiscard]] bool Stopped() const {
        return conversion.stop != nullptr && conversion.stop->load();
    }
    [[nodiscard]] WORK_LIMITS Limits() const { return {conversion.threads, kMemoryInHand, 256}; }
    void Report(ConversionCount count, const std::string& line);
    void Advance(SOURCE& source, double progress);
    void NowAt(const fs::path& path);

    const CONVERSION& conversion;
    const CONVERSION_SINK& sink;
    CGameDatabase& database;
    std::vector<SOURCE> sources;
    std::unordered_map<fs::path::string_type, size_t> indexOfPath;
    std::unordered_set<std::string>
        gamesBefore; // names of the `.game` files that were there at first
    std::unordered_set<const PendingFile*> written;
    ZipMembers members;
    double totalWeight = 0.0;
    double doneWeight = 0.0;
};

void Conversion::Report(ConversionCount count, const std::string& line) {
    if (sink.report) {
        sink.report(count, WideFromUtf8(line));
    }
}

void Conversion::Advance(SOURCE& source, double progress) {
    if (progress > source.progress) {
        doneWeight += (progress - source.progress) * static_cast<double>(source.size + kFileWeight);
        source.progress = progress;
    }
    if (sink.progress) {
        sink.progress(std::min(doneWeight / totalWeight, 1.0));
    }
}

void Conversion::NowAt(const fs::path& path) {
    if (sink.file) {
        sink.file(path);
    }
}

bool Conversion::List() {
    std::vector<fs::path> names;
    std::string error;
    if (!ListFolder(conversion.folder, names, error)) {
        Report(ConversionCount::kError, error);
        return false;
    }
    for (const fs::path& name : names) {
        const FolderFile kind = KindOfFile(conversion.system, name);
        if (kind == FolderFile::kGame) {
            gamesBefore.insert(name.string());
        } else if (kind == FolderFile::kSource) {
            SOURCE source;
            source.path = conversion.folder / name;
            source.stem = StemOfName(name);
            source.isZip = IsZipName(name);
            std::error_code code;
            const uint64_t size = fs::file_size(source.path, code);
            source.size = code || size > kLargestZip ? 0 : size; // a larger one is not read
            totalWeight += static_cast<double>(source.size + kFileWeight);
            indexOfPath[source.path.native()] = sources.size();
            sources.push_back(std::move(source));
        }
    }
    return true;
}

// Step 1.
bool Conversion::Gather() {
    std::vector<uint64_t> weights;
    for (const SOURCE& source : sources) {
        weights.push_back(source.size * kCopiesInHand);
    }
    return RunInOrder(
        weights, Limits(),
        [&](size_t index) { return GatherSource(conversion.system, sources[index]); },
        [&](size_t index, const GATHERED& gathered) {
            NowAt(sources[index].path);
            TakeGathered(sources[index], gathered);
            return !Stopped();
        });
}

void Conversion::TakeGathered(SOURCE& source, const GATHERED& gathered) {
    source.stamp = gathered.stamp;
    source.leftOut = gathered.leftOut;
    std::string noGame;
    for (const GATHERED_ITEM& item : gathered.items) {
        if (!item.noGame.empty() && !database.FindKnownRom(item.sha256)) {
            noGame = item.noGame;
            source.leftOut = Utf8FromWide(item.member);
            continue;
        }
        ++source.queued;
        database.QueueHashed(source.path, item.member, item.size, item.sha256);
    }
    const std::string name = source.path.string();
    if (gathered.isEmpty) {
        Report(ConversionCount::kSkipped, name + ": is empty");
    } else if (!gathered.error.empty() && !source.isZip) {
        Report(ConversionCount::kError, "Failed to convert this unknown game: " + name);
        Report(ConversionCount::kNone, gathered.error);
    } else if (source.queued == 0 && !noGame.empty() && !source.isZip) {
        Report(ConversionCount::kSkipped, name + ": " + noGame);
    } else if (source.queued == 0) {
        Report(ConversionCount::kSkipped,
               gathered.error.empty() ? name + ": holds no game image" : gathered.error);
    }
    Advance(source, source.queued == 0 ? 1.0 : kGatherShare);
}

std::vector<PLAN> Conversion::Plans() {
    std::vector<PLAN> plans;
    for (int entry = 0; entry < database.EntryCount(); ++entry) {
        PLAN plan;
        plan.items = database.MatchEntry(entry);
        if (plan.items.empty()) {
            continue;
        }
        plan.entry = entry;
        plan.name = database.NameOfEntry(entry);
        for (const PendingFile* item : plan.items) {
            plan.size += item->size;
        }
        plans.push_back(std::move(plan));
    }
    NoteStaying(plans);
    for (PLAN& plan : plans) {
        for (const PendingFile* item : plan.items) {
            // What stays is found at every scan, and would make its game again until its time has passed.
            if (const SOURCE& source = SourceOf(item->path); !source.stays) {
                plan.newestSource = std::max(plan.newestSource, source.stamp.time);
            }
        }
    }
    return plans;
}

// An arcade zip stays if a piece in it goes into no game. Any other makes a game of the whole zip then, and stays
// only if all its images go into games and something else is left over.
void Conversion::NoteStaying(const std::vector<PLAN>& plans) {
    const bool arcade = conversion.system == kSystemArcade;
    std::unordered_set<const PendingFile*> planned;
    std::unordered_set<Sha256Digest, DIGEST_HASH> hashes;
    for (const PLAN& plan : plans) {
        for (const PendingFile* item : plan.items) {
            planned.insert(item);
            hashes.insert(item->sha256);
        }
    }
    for (SOURCE& source : sources) {
        source.stays = !source.leftOut.empty();
    }
    for (const PendingFile* item = database.FirstPending(); item != nullptr;
         item = item->next.get()) {
        if (arcade ? !hashes.contains(item->sha256) : !planned.contains(item)) {
            SourceOf(item->path).stays = arcade;
        }
    }
}

MADE_GAME Conversion::MakeKnown(const PLAN& plan) {
    MADE_GAME made;
    std::vector<uint8_t> image;
    const auto readFile = [](const fs::path& path, std::vector<uint8_t>& bytes) {
        FILE_STAMP stamp;
        std::string ignored;
        return ReadSource(path, bytes, stamp, ignored);
    };
    const auto readZipMember = [&](const fs::path& path, std::wstring_view member,
                                   std::vector<uint8_t>& bytes) {
        return members.Read(path, member, bytes);
    };
    if (!CGameDatabase::ReadPieces(plan.items, readFile, readZipMember, image)) {
        return made;
    }
    const CGameFile& entry = database.Entries()[static_cast<size_t>(plan.entry)];
    GAME_TO_WRITE game{.folder = conversion.folder,
                       .stem = plan.name,
                       .system = conversion.system,
                       .image = image,
                       .newestSource = plan.newestSource};
    std::ranges::copy(entry.Header().headerHash, game.headerHash.begin());
    made.there = FindWrittenGame(game, gamesBefore);
    if (made.there.empty()) {
        made.bytes = database.PackEntry(plan.entry, image);
    }
    made.ready = !made.there.empty() || UnpacksTo(made.bytes, image);
    return made;
}

// Step 2.
bool Conversion::AssembleKnown() {
    std::vector<PLAN> plans = Plans();
    std::vector<uint64_t> weights;
    for (const PLAN& plan : plans) {
        weights.push_back(plan.size * kCopiesInHand);
    }
    const bool whole = RunInOrder(
        weights, Limits(), [&](size_t index) { return MakeKnown(plans[index]); },
        [&](size_t index, const MADE_GAME& made) {
            if (Stopped()) {
                return false;
            }
            TakeKnown(plans[index], made);
            return true;
        });
    CountUses(plans);
    return whole;
}

void Conversion::TakeKnown(PLAN& plan, const MADE_GAME& made) {
    NowAt(plan.items.front()->path);
    plan.settled = !made.ready; // a piece could not be read any more
    if (plan.settled) {
        return;
    }
    database.MarkUsed(plan.items);
    const std::string name = plan.name + ".game";
    fs::path target;
    std::string error;
    bool isThere = true;
    if (!made.there.empty()) {
        FlushFolder(conversion.folder);
        Report(ConversionCount::kNone, "Already converted: " + name);
    } else if (WriteGameFile(conversion.folder, plan.name, made.bytes, target, error)) {
        Report(ConversionCount::kGood, "Converted " + name);
    } else {
        Report(ConversionCount::kError, "Failed to write " + name);
        Report(ConversionCount::kNone, error);
        isThere = false;
    }
    plan.settled = isThere;
    for (const PendingFile* item : plan.items) {
        SOURCE& source = SourceOf(item->path);
        const double share = (1.0 - kGatherShare) / source.queued;
        if (isThere && written.insert(item).second) {
            Advance(source, std::min(std::max(source.progress, kGatherShare) + share, 1.0));
        }
    }
}

// A piece of several boards is done with when all their games are there.
void Conversion::CountUses(const std::vector<PLAN>& plans) {
    std::unordered_set<const PendingFile*> open;
    for (const PLAN& plan : plans) {
        if (!plan.settled) {
            open.insert(plan.items.begin(), plan.items.end());
        }
    }
    // The zips of two boards may both hold a piece, of which one goes into the games.
    std::unordered_set<Sha256Digest, DIGEST_HASH> inGames;
    for (const PendingFile* item : written) {
        if (conversion.system == kSystemArcade && !open.contains(item)) {
            inGames.insert(item->sha256);
        }
    }
    for (const PendingFile* item = database.FirstPending(); item != nullptr;
         item = item->next.get()) {
        SOURCE& source = SourceOf(item->path);
        if (!item->used && !inGames.contains(item->sha256)) {
            ++source.unused;
        } else if (open.contains(item)) {
            ++source.unwritten;
        }
    }
}

MADE_GAME Conversion::MakeUnknown(const SOURCE& source) const {
    MADE_GAME made;
    std::vector<uint8_t> bytes;
    if (conversion.system == kSystemArcade) {
        // Assembled from the database or not at all; but it is an error if it is gone.
        (void)StampOf(source.path, made.stamp, made.error);
        return made;
    }
    if (!ReadSource(source.path, bytes, made.stamp, made.error)) {
        return made;
    }
    const std::string name = source.path.string();
    // An archive is no dump of a cartridge, whatever its size: reordering it would destroy it.
    std::vector<uint8_t> image =
        source.isZip ? std::move(bytes) : PrepareImage(conversion.system, bytes);
    const std::string title = Utf8FromWide(WideFromUtf8(source.stem));
    CGameFile game;
    if (image.empty() || !BuildPreparedGame(conversion.system, title, std::move(image),
                                            database.Entries(), game, made.known)) {
        made.refusal = name + ": is empty or too large for a game file";
        return made;
    }
    GAME_TO_WRITE toWrite{.folder = conversion.folder,
                          .stem = source.stem,
                          .system = conversion.system,
                          .image = game.Data(),
                          .newestSource = made.stamp.time};
    std::ranges::copy(game.Header().headerHash, toWrite.headerHash.begin());
    made.there = FindWrittenGame(toWrite, gamesBefore);
    if (made.there.empty()) {
        made.bytes = game.WriteGame(game.Data());
    }
    made.ready = !made.there.empty() || UnpacksTo(made.bytes, game.Data());
    if (!made.ready) {
        made.refusal = name + ": cannot be packed";
    }
    return made;
}

// Step 3.
bool Conversion::ConvertRest() {
    struct REST {
        SOURCE* source;
        bool used;
        bool repeated; // an earlier item of the same zip is converted
    };
    std::vector<REST> rest;
    std::vector<uint64_t> weights;
    for (const PendingFile* item = database.FirstPending(); item != nullptr;
         item = item->next.get()) {
        SOURCE& source = SourceOf(item->path);
        const bool repeated = !item->used && std::exchange(source.begun, true);
        rest.push_back({&source, item->used, repeated});
        weights.push_back(item->used || repeated ? 0 : source.size * kCopiesInHand);
    }
    return RunInOrder(
        weights, Limits(),
        [&](size_t index) {
            const REST& item = rest[index];
            return item.used || item.repeated ? MADE_GAME{} : MakeUnknown(*item.source);
        },
        [&](size_t index, const MADE_GAME& made) {
            if (Stopped()) {
                return false;
            }
            fs::path path;
            bool used = false;
            (void)database.TakeNextPending(path, used);
            TakeRest(*rest[index].source, used, rest[index].repeated, made);
            return true;
        });
}

void Conversion::TakeRest(SOURCE& source, bool used, bool repeated, const MADE_GAME& made) {
    NowAt(source.path);
    if (used) {
        RemoveUsed(source, true);
    } else {
        // For a zip each of its items reads the file again, which is gone after the first conversion. One that could
        // not be removed is not converted twice.
        if (!repeated) {
            TakeUnknown(source, made);
        } else if (!source.packed || source.gone) {
            TakeUnknown(source, MakeUnknown(source));
        }
    }
    Advance(source, 1.0);
}

void Conversion::TakeUnknown(SOURCE& source, const MADE_GAME& made) {
    if (conversion.system == kSystemArcade && source.gone) {
        return; // removed with another item of the same zip, as all of it is in games
    }
    if (!made.error.empty()) {
        Report(ConversionCount::kError,
               "Failed to convert this unknown game: " + source.path.string());
        Report(ConversionCount::kNone, source.packed
                                           ? source.path.string() + ": is in " + source.stem +
                                                 ".game as a whole, with every image"
                                           : made.error);
        return;
    }
    if (!made.ready) {
        if (!made.refusal.empty()) {
            Report(ConversionCount::kNone, made.refusal);
        }
        return;
    }
    const std::string name = source.stem + ".game";
    fs::path target;
    std::string error;
    if (!made.there.empty()) {
        FlushFolder(conversion.folder);
        Report(ConversionCount::kNone, "Already converted: " + name);
    } else if (!WriteGameFile(conversion.folder, source.stem, made.bytes, target, error)) {
        Report(ConversionCount::kError, "Failed to write unknown game: " + target.string());
        Report(ConversionCount::kNone, error);
        return;
    } else if (made.known) {
        Report(ConversionCount::kGood, "Converted: " + name);
    } else {
        Report(ConversionCount::kAuto, "Converted unknown game: " + name);
    }
    source.packed = true;
    Remove(source, made.stamp);
}

// A stop leaves the rest, but what has gone into games is removed.
void Conversion::FinishUsed() {
    fs::path path;
    bool used = false;
    while (database.TakeNextPending(path, used)) {
        if (used) {
            RemoveUsed(SourceOf(path), false);
        }
    }
}

// Removes a source that went into a game of step 2, if all of it did.
void Conversion::RemoveUsed(SOURCE& source, bool mayStillConvert) {
    if (source.gone) {
        return; // with another item of the same zip
    }
    if (source.unused > 0) {
        // An unused item makes a game of the whole zip. An arcade zip has none.
        if (mayStillConvert && conversion.system == kSystemArcade) {
            TellKept(source, "not everything in it is in a game file");
        }
    } else if (source.unwritten > 0) {
        // After a stop the game has not been tried.
        if (mayStillConvert) {
            TellKept(source, "its game file could not be written");
        }
    } else if (!source.leftOut.empty()) {
        TellKept(source, source.leftOut + " is in no game file");
    } else {
        Remove(source, source.stamp);
    }
}

void Conversion::TellKept(SOURCE& source, const std::string& why) {
    if (!std::exchange(source.keptTold, true)) {
        Report(ConversionCount::kNone, "Kept: " + source.path.string() + ": " + why);
    }
}

void Conversion::Remove(SOURCE& source, const FILE_STAMP& stamp) {
    FILE_STAMP now;
    std::string error;
    if (StampOf(source.path, now, error) && now != stamp) {
        TellKept(source, "has changed since it was read");
        return;
    }
    if (conversion.keepSources) {
        source.gone = KeepSource(source.path, error);
        if (!source.gone) {
            Report(ConversionCount::kError, error);
        }
        return;
    }
    source.gone = DeleteSource(source.path, error);
    if (!source.gone) {
        Report(ConversionCount::kError, "Failed to delete: " + source.path.string());
        Report(ConversionCount::kNone, error);
    }
}

ConversionEnd Conversion::Run() {
    FolderLock lock;
    std::string error;
    std::error_code ignored;
    if (!fs::is_directory(conversion.folder, ignored)) {
        Report(ConversionCount::kError, conversion.folder.string() + ": is not a folder");
        return ConversionEnd::kNoFolder;
    }
    if (!lock.Take(conversion.folder, error)) {
        Report(ConversionCount::kError, error);
        return ConversionEnd::kLocked;
    }
    database.ClearPending();
    if (!List()) {
        return ConversionEnd::kNoFolder;
    }
    const bool whole = Gather() && AssembleKnown() && ConvertRest();
    FinishUsed();
    database.ClearPending();
    return whole ? ConversionEnd::kDone : ConversionEnd::kStopped;
}

} // namespace

ConversionEnd ConvertFolder(const CONVERSION& conversion, const CONVERSION_SINK& sink) {
    return Conversion(conversion, sink).Run();
}
