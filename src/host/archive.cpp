#include "host/archive.h"

#include "base/files.h"
#include "base/text.h"
#include "formats/zip.h"
#include "host/kept_copy.h"
#include "host/report.h"
#include "host/session.h"
#include "host/session_tape.h"
#include "host/turns.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <mutex>
#include <span>
#include <string>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Far above any archive of ours; these limit what a foreign file can make the program allocate.
constexpr uint64_t kReadLimit = uint64_t{1} << 26;
constexpr uint64_t kUnpackLimit = uint64_t{1} << 26;

using Bytes = std::vector<uint8_t>;

// One thread at a time reads an archive, copies its entries and replaces it.
using ArchiveTurns = Turns<std::string, LockRank::kArchive>;
using ArchiveTurn = Turn<std::string, LockRank::kArchive>;

ArchiveTurns& AllArchives() {
    static auto* turns = new ArchiveTurns;
    return *turns;
}

bool IsEntry(const std::string& rawName, const std::string& entryName) {
    return LowerAscii(rawName) == LowerAscii(entryName);
}

enum class EntryResult { kAbsent, kUnreadable, kRead };

// Reads the first entry of this name that is not empty.
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

bool KeepDamaged(const fs::path& archive, const Bytes& content, const std::string& why) {
    const auto same = [&](const Bytes& kept) { return kept == content; };
    return KeepCopy(archive, "damaged", content, why, same, kReadLimit);
}

// An earlier copy counts if it holds the same refused state, whatever its other entries.
bool KeepRefused(const fs::path& archive, const Bytes& content, const std::string& entryName,
                 const Bytes& state) {
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
                    kReadLimit);
}

// A file too large to be an archive of ours is moved, since it cannot be read to be copied. An
// archive that cannot be read for any other reason (a disk's fault, too many open files) may be whole:
// it stays where it is and the save fails.
bool MoveAside(const fs::path& archive, const std::string& why, fs::path& aside) {
    std::error_code code;
    if (!fs::is_regular_file(archive, code) || fs::file_size(archive, code) <= kReadLimit || code) {
        HostReport(why);
        return false;
    }
    aside = FreeAsidePath(archive, "damaged");
    fs::rename(archive, aside, code);
    if (code) {
        HostReport(why + ", and it cannot be moved: " + code.message());
        return false;
    }
    HostReport(why + "; it is kept as " + aside.string());
    return true;
}

// Copies every entry but the session's own into the new archive. False, with the cause, if something in
// the old one cannot be copied; the rest still is.
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
        // The session's own entry is read as well: a damaged one is still the user's and is kept.
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

// The archive that a save replaces, as it was read.
struct OLD_ARCHIVE {
    Bytes bytes;            // empty if there is no readable file
    std::string unreadable; // why the file cannot be read; empty if it can, or if there is none
    std::string damage;     // why something in it cannot be copied; empty if all can
};

// Reads the old archive and starts the new one with all entries that can be copied.
OLD_ARCHIVE ReadOld(const fs::path& path, const std::string& entryName, ZipWriter& writer) {
    OLD_ARCHIVE old;
    if (!FileMayExist(path)) {
        return old;
    }
    if (!ReadFile(path, old.bytes, old.unreadable, kReadLimit)) {
        old.bytes.clear();
    } else if (!CarryOver(old.bytes, entryName, writer, old.damage) && old.damage.empty()) {
        old.damage = "cannot be read";
    }
    return old;
}

// The whole new archive. Empty, with the cause, if it cannot be made.
Bytes FinishArchive(ZipWriter& writer, const std::string& entryName, std::span<const uint8_t> state,
                    std::string& error) {
    if (!writer.Add(entryName, state, error)) {
        return {};
    }
    Bytes archive = writer.Finish(error);
    if (archive.size() > kArchiveLimit) {
        error = "the archive would be " + std::to_string(archive.size()) +
                " bytes long, over its limit of " + std::to_string(kArchiveLimit);
        return {};
    }
    return archive;
}

// Makes all copies that must be safe before the old archive is replaced.
bool KeepWhatWouldBeLost(EMU_THREAD& session, const fs::path& path, const OLD_ARCHIVE& old) {
    if (!old.damage.empty() && !old.bytes.empty() && !KeepDamaged(path, old.bytes, old.damage)) {
        return false;
    }
    if (session.unloadedStateUnkept) {
        ZipReader zip;
        Bytes state;
        std::string ignored;
        if (zip.Open(old.bytes, ignored) &&
            ReadEntry(zip, session.stateEntryName, state, ignored) == EntryResult::kRead &&
            !KeepRefused(path, old.bytes, session.stateEntryName, state)) {
            return false;
        }
        session.unloadedStateUnkept = false;
    }
    return true;
}

// The caller has the archive's turn.
bool StoreState(EMU_THREAD& session, std::span<const uint8_t> state) {
    const fs::path path = ResolvePath(session.archivePath);
    const std::string failed = path.string() + ": state not saved: ";
    ZipWriter writer;
    const OLD_ARCHIVE old = ReadOld(path, session.stateEntryName, writer);
    std::string error;
    const Bytes archive = FinishArchive(writer, session.stateEntryName, state, error);
    if (archive.empty()) {
        HostReport(failed + error);
        return false;
    }
    fs::path aside;
    const bool safe = old.unreadable.empty() ? KeepWhatWouldBeLost(session, path, old)
                                             : MoveAside(path, old.unreadable, aside);
    if (!safe) {
        HostReport(failed + "the old archive cannot be kept safe");
        return false;
    }
    if (!WriteFile(path, archive, error)) {
        HostReport("state not saved: " + error);
        if (!aside.empty()) {
            std::error_code ignored;
            fs::rename(aside, path, ignored);
        }
        return false;
    }
    return true;
}

// Reads the archive and the session's state in it. The caller has the archive's turn.
EntryResult FetchState(const EMU_THREAD& session, Bytes& archive, Bytes& state) {
    const fs::path path = ResolvePath(session.archivePath);
    if (!FileMayExist(path)) {
        return EntryResult::kAbsent;
    }
    std::string error;
    if (!ReadFile(path, archive, error, kReadLimit)) {
        HostReport("state not loaded: " + error);
        return EntryResult::kUnreadable;
    }
    ZipReader zip;
    if (!zip.Open(archive, error)) {
        HostReport(path.string() + ": state not loaded: " + error);
        return EntryResult::kUnreadable;
    }
    const EntryResult result = ReadEntry(zip, session.stateEntryName, state, error);
    if (result == EntryResult::kUnreadable) {
        HostReport(path.string() + ": state " + session.stateEntryName + " not loaded: " + error);
    }
    return result;
}

// Loads a state into the machine. A refused one leaves the machine reset, not half restored.
bool GiveState(EMU_THREAD& session, const Bytes& state) {
    const std::scoped_lock hold(session.lock);
    const bool loaded =
        session.machine->LoadState(state.data(), static_cast<uint32_t>(state.size()));
    if (loaded) {
        session.battery.rolledBack = true;
    } else {
        session.machine->Reset();
    }
    TapeNoteState(session);
    session.showStatic = 0;
    return loaded;
}

bool LoadState(EMU_THREAD& session, bool& wasThere) {
    Bytes archive;
    Bytes state;
    {
        const ArchiveTurn turn(AllArchives(), session.archivePath);
        const EntryResult result = FetchState(session, archive, state);
        wasThere = result != EntryResult::kAbsent;
        if (result != EntryResult::kRead) {
            // What cannot be read now may be readable at the next save, which must not lose it.
            session.unloadedStateUnkept |= result == EntryResult::kUnreadable;
            return false;
        }
    }
    const bool loaded = GiveState(session, state);
    const ArchiveTurn turn(AllArchives(), session.archivePath);
    session.unloadedStateUnkept = !loaded && !KeepRefused(ResolvePath(session.archivePath), archive,
                                                          session.stateEntryName, state);
    return loaded;
}

} // namespace

TAKEN_STATE EmuTakeState(EMU_THREAD& session) {
    std::string why = "the machine returned no state";
    try {
        TAKEN_STATE state;
        state.bytes = session.machine->SaveState(state.size);
        if (state.bytes) {
            return state;
        }
    } catch (const std::exception& error) {
        why = error.what();
    }
    HostReport(ResolvePath(session.archivePath).string() + ": state not saved: " + why);
    return {};
}

bool EmuStoreState(EMU_THREAD& session, const TAKEN_STATE& state) {
    if (!state.bytes) {
        return false;
    }
    try {
        const ArchiveTurn turn(AllArchives(), session.archivePath);
        return StoreState(session, std::span(state.bytes.get(), state.size));
    } catch (const std::exception& error) {
        HostReport(std::string("state not saved: ") + error.what());
        return false;
    }
}

bool EmuSaveToArchive(EMU_THREAD& session) {
    TAKEN_STATE state;
    {
        const std::scoped_lock hold(session.lock);
        state = EmuTakeState(session);
    }
    return EmuStoreState(session, state);
}

bool EmuLoadFromArchive(EMU_THREAD& session, bool* wasThere) {
    bool isThere = true;
    bool& there = wasThere != nullptr ? *wasThere : isThere;
    there = true;
    try {
        return LoadState(session, there);
    } catch (const std::exception& error) {
        const ArchiveTurn turn(AllArchives(), session.archivePath);
        session.unloadedStateUnkept = true;
        HostReport(std::string("state not loaded: ") + error.what());
        return false;
    }
}
