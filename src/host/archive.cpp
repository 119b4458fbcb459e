#include "host/archive.h"

#include "base/files.h"
#include "base/text.h"
#include "host/report.h"
#include "host/session.h"

#include "formats/zip.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

// No archive of ours comes near these; they bound what a foreign file can make the program allocate.
constexpr uint64_t kReadLimit = uint64_t{1} << 26;
constexpr uint64_t kUnpackLimit = uint64_t{1} << 26;

using Bytes = std::vector<uint8_t>;
using SameContent = std::function<bool(const Bytes& kept)>;

// One for all archives: reading, carrying over and replacing must not interleave. Reports are
// gathered under it and spoken after it, since a sink may take a lock of the same rank.
RankedMutex<LockRank::kLeaf>& ArchiveLock() {
    static auto* lock = new RankedMutex<LockRank::kLeaf>;
    return *lock;
}

using Reports = std::vector<std::string>;

void Speak(const Reports& reports) {
    for (const std::string& report : reports) {
        HostReport(report);
    }
}

bool IsEntry(const std::string& rawName, const std::string& entryName) {
    return LowerAscii(rawName) == LowerAscii(entryName);
}

enum class EntryResult { kAbsent, kUnreadable, kRead };

// Reads the first entry of this name that holds anything.
EntryResult ReadEntry(const ZipReader& zip, const std::string& entryName, Bytes& state,
                      std::string& error) {
    for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
        ZIP_ENTRY entry;
        if (zip.Entry(i, entry) && entry.unpackedSize != 0 && IsEntry(entry.rawName, entryName)) {
            const bool read = zip.Unpack(i, state, error, kUnpackLimit) && !state.empty();
            return read ? EntryResult::kRead : EntryResult::kUnreadable;
        }
    }
    return EntryResult::kAbsent;
}

fs::path AsidePath(const fs::path& archive, const std::string& word, uint32_t number) {
    return archive.parent_path() /
           (archive.stem().string() + "." + word + "-" + std::to_string(number) + ".zip");
}

fs::path FreeAsidePath(const fs::path& archive, const std::string& word) {
    std::error_code code;
    uint32_t number = 1;
    // A path that cannot even be asked about ends the search: writing to it then says why.
    while (fs::exists(fs::symlink_status(AsidePath(archive, word, number), code))) {
        ++number;
    }
    return AsidePath(archive, word, number);
}

bool IsKeptAlready(const fs::path& archive, const std::string& word, const SameContent& same) {
    const std::string prefix = archive.stem().string() + "." + word + "-";
    std::error_code code;
    fs::directory_iterator entry(archive.parent_path(), code);
    for (; !code && entry != fs::directory_iterator(); entry.increment(code)) {
        const std::string name = entry->path().filename().string();
        Bytes kept;
        std::string ignored;
        if (name.starts_with(prefix) && name.ends_with(".zip") &&
            ReadFile(entry->path(), kept, ignored, kReadLimit) && same(kept)) {
            return true;
        }
    }
    return false;
}

// Keeps a copy of the archive beside it, unless there is one of the same content.
bool KeepCopy(const fs::path& archive, const std::string& word, const Bytes& content,
              const std::string& why, const SameContent& same, Reports& reports) {
    if (IsKeptAlready(archive, word, same)) {
        return true;
    }
    const fs::path aside = FreeAsidePath(archive, word);
    std::string error;
    if (!WriteFile(aside, content, error, WriteMode::kCreate)) {
        reports.push_back(archive.string() + ": " + why + ", and no copy can be kept: " + error);
        return false;
    }
    reports.push_back(archive.string() + ": " + why + "; a copy is kept as " + aside.string());
    return true;
}

bool KeepDamaged(const fs::path& archive, const Bytes& content, const std::string& why,
                 Reports& reports) {
    const auto same = [&](const Bytes& kept) { return kept == content; };
    return KeepCopy(archive, "damaged", content, why, same, reports);
}

// The same refused state counts as kept, whatever else the archive beside it held at the time.
bool KeepRefused(const fs::path& archive, const Bytes& content, const std::string& entryName,
                 const Bytes& state, Reports& reports) {
    const auto same = [&](const Bytes& kept) {
        ZipReader zip;
        Bytes keptState;
        std::string ignored;
        return kept == content ||
               (zip.Open(kept, ignored) &&
                ReadEntry(zip, entryName, keptState, ignored) == EntryResult::kRead &&
                keptState == state);
    };
    return KeepCopy(archive, "refused", content, "its state " + entryName + " was not loaded", same,
                    reports);
}

// A file too large to be an archive of ours is moved, since it cannot be read to be copied. An
// archive that cannot be read for any other reason (a disk's fault, too many open files) may be whole:
// it stays where it is and the save fails.
bool MoveAside(const fs::path& archive, const std::string& why, fs::path& aside, Reports& reports) {
    std::error_code code;
    if (!fs::is_regular_file(archive, code) || fs::file_size(archive, code) <= kReadLimit || code) {
        reports.push_back(why);
        return false;
    }
    aside = FreeAsidePath(archive, "damaged");
    fs::rename(archive, aside, code);
    if (code) {
        reports.push_back(why + ", and it cannot be moved: " + code.message());
        return false;
    }
    reports.push_back(why + "; it is kept as " + aside.string());
    return true;
}

// Copies every entry but the session's own into the new archive. False, with the cause, when
// something in the old one cannot be carried over; the rest is there all the same.
bool CarryOver(const Bytes& archive, const std::string& entryName, ZipWriter& writer,
               std::string& cause) {
    ZipReader zip;
    if (!zip.Open(archive, cause)) {
        return false;
    }
    bool whole = true;
    uint64_t room = kUnpackLimit;
    for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
        ZIP_ENTRY entry;
        std::string error;
        if (!zip.Entry(i, entry)) {
            whole = false;
            cause = "entry " + std::to_string(i) + " cannot be read";
            continue;
        }
        if (entry.unpackedSize == 0) {
            continue;
        }
        // The own entry is read as well: one that is damaged is the user's still.
        Bytes state;
        const bool read = zip.Unpack(i, state, error, room);
        const bool own = IsEntry(entry.rawName, entryName);
        if (!read || (!own && !writer.Add(entry.rawName, state, error))) {
            whole = false;
            cause = error;
            continue;
        }
        room -= std::min<uint64_t>(room, state.size());
    }
    return whole;
}

bool ArchiveExists(const fs::path& path) {
    std::error_code code;
    // One that cannot be asked about may well be there; reading it then tells.
    return fs::status(path, code).type() != fs::file_type::not_found;
}

// Everything that must be safe before the old archive goes.
bool KeepWhatWouldBeLost(EMU_THREAD& session, const fs::path& path, const Bytes& old,
                         const std::string& damage, Reports& reports) {
    if (!damage.empty() && !old.empty() && !KeepDamaged(path, old, damage, reports)) {
        return false;
    }
    if (session.unloadedStateUnkept) {
        ZipReader zip;
        Bytes state;
        std::string ignored;
        if (zip.Open(old, ignored) &&
            ReadEntry(zip, session.stateEntryName, state, ignored) == EntryResult::kRead &&
            !KeepRefused(path, old, session.stateEntryName, state, reports)) {
            return false;
        }
        session.unloadedStateUnkept = false;
    }
    return true;
}

bool StoreState(EMU_THREAD& session, std::span<const uint8_t> state, Reports& reports) {
    const fs::path path = ResolvePath(session.archivePath);
    const std::string failed = path.string() + ": state not saved: ";
    Bytes old;
    ZipWriter writer;
    std::string unreadable;
    std::string damage;
    std::string error;
    if (ArchiveExists(path)) {
        if (!ReadFile(path, old, unreadable, kReadLimit)) {
            old.clear();
        } else if (!CarryOver(old, session.stateEntryName, writer, damage) && damage.empty()) {
            damage = "cannot be read";
        }
    }
    if (!writer.Add(session.stateEntryName, state, error)) {
        reports.push_back(failed + error);
        return false;
    }
    const Bytes archive = writer.Finish(error);
    if (archive.empty()) {
        reports.push_back(failed + error);
        return false;
    }
    if (archive.size() > kArchiveLimit) {
        reports.push_back(failed + "the archive would be " + std::to_string(archive.size()) +
                          " bytes long, over its limit of " + std::to_string(kArchiveLimit));
        return false;
    }
    fs::path aside;
    const bool safe = unreadable.empty() ? KeepWhatWouldBeLost(session, path, old, damage, reports)
                                         : MoveAside(path, unreadable, aside, reports);
    if (!safe) {
        reports.push_back(failed + "the old archive cannot be kept safe");
        return false;
    }
    if (!WriteFile(path, archive, error)) {
        reports.push_back("state not saved: " + error);
        if (!aside.empty()) {
            std::error_code ignored;
            fs::rename(aside, path, ignored);
        }
        return false;
    }
    return true;
}

// Reads the session's state and, with it, the archive around it.
EntryResult FetchState(const EMU_THREAD& session, const fs::path& path, Bytes& archive,
                       Bytes& state, Reports& reports) {
    if (!ArchiveExists(path)) {
        return EntryResult::kAbsent;
    }
    std::string error;
    if (!ReadFile(path, archive, error, kReadLimit)) {
        reports.push_back("state not loaded: " + error);
        return EntryResult::kUnreadable;
    }
    ZipReader zip;
    if (!zip.Open(archive, error)) {
        reports.push_back(path.string() + ": state not loaded: " + error);
        return EntryResult::kUnreadable;
    }
    const EntryResult result = ReadEntry(zip, session.stateEntryName, state, error);
    if (result == EntryResult::kUnreadable) {
        reports.push_back(path.string() + ": state " + session.stateEntryName +
                          " not loaded: " + error);
    }
    return result;
}

bool SaveState(EMU_THREAD& session) {
    uint32_t size = 0;
    const StateBlob state = session.machine->SaveState(size);
    if (!state) {
        HostReport(ResolvePath(session.archivePath).string() +
                   ": state not saved: the machine gives none");
        return false;
    }
    Reports reports;
    bool saved = false;
    {
        const std::scoped_lock hold(ArchiveLock());
        saved = StoreState(session, std::span(state.get(), size), reports);
    }
    Speak(reports);
    return saved;
}

bool LoadState(EMU_THREAD& session, bool& wasThere) {
    const fs::path path = ResolvePath(session.archivePath);
    Bytes archive;
    Bytes state;
    Reports reports;
    EntryResult result = EntryResult::kAbsent;
    {
        const std::scoped_lock hold(ArchiveLock());
        result = FetchState(session, path, archive, state, reports);
    }
    Speak(reports);
    wasThere = result != EntryResult::kAbsent;
    if (result != EntryResult::kRead) {
        // What could not be read now may be readable at the next save, which must not replace it.
        session.unloadedStateUnkept |= result == EntryResult::kUnreadable;
        return false;
    }
    const bool loaded =
        session.machine->LoadState(state.data(), static_cast<uint32_t>(state.size()));
    session.unloadedStateUnkept = false;
    if (!loaded) {
        session.machine->Reset();
        reports.clear();
        {
            const std::scoped_lock hold(ArchiveLock());
            session.unloadedStateUnkept =
                !KeepRefused(path, archive, session.stateEntryName, state, reports);
        }
        Speak(reports);
    }
    session.showStatic = 0;
    return loaded;
}

} // namespace

bool EmuSaveToArchive(EMU_THREAD& session) {
    try {
        return SaveState(session);
    } catch (const std::exception& error) {
        HostReport(std::string("state not saved: ") + error.what());
        return false;
    }
}

bool EmuLoadFromArchive(EMU_THREAD& session, bool* wasThere) {
    bool isThere = true;
    bool& there = wasThere != nullptr ? *wasThere : isThere;
    there = true;
    try {
        return LoadState(session, there);
    } catch (const std::exception& error) {
        session.unloadedStateUnkept = true;
        HostReport(std::string("state not loaded: ") + error.what());
        return false;
    }
}
