#include "host/state_slots.h"

#include "base/file_lock.h"
#include "base/files.h"
#include "host/host_data.h"
#include "host/kept_copy.h"
#include "host/session.h"

#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr const char* kGameText = "game"; // names of a slot's texts
constexpr const char* kImageText = "image";

struct SLOT_FILES {
    fs::path slot;
    fs::path before;
    fs::path added;
    fs::path swap;
};

SLOT_FILES FilesOf(const fs::path& folder, uint32_t slot) {
    const std::string stem = (slot < 10 ? "slot-0" : "slot-") + std::to_string(slot);
    return {folder / (stem + ".state"), folder / (stem + ".before.state"),
            folder / (stem + ".new.state"), folder / (stem + ".swap.state")};
}

fs::path LoadBeforeFile(const fs::path& folder) {
    return folder / "load.before.state";
}

// One program at a time works on a folder of slots: others wait here until it has finished.
class FolderTurn {
public:
    explicit FolderTurn(const fs::path& folder) {
        constexpr int kPatience = 300;     // times
        constexpr uint32_t kPause = 10000; // microseconds
        std::error_code ignored;
        long holder = 0;
        std::string error; // a folder that cannot be written to is told by what is done there
        for (int i = 0; i < kPatience && fs::is_directory(folder, ignored); ++i) {
            held = lock.Take(folder / kLockFile, holder, error) == FileLock::Result::kHeld;
            if (!held) {
                return;
            }
            HostClock().sleepMicroseconds(kPause);
        }
    }
    // Another program has not finished, however long we waited.
    [[nodiscard]] bool IsHeldByOther() const { return held; }

private:
    static constexpr const char* kLockFile = "slots.lock";

    FileLock lock;
    bool held = false;
};

constexpr const char* kHeldByOther = "another running program is at work on these slots";

bool Rename(const fs::path& from, const fs::path& to, std::string& error) {
    std::error_code code;
    fs::rename(from, to, code);
    if (code) {
        error = from.string() + ": cannot be renamed to " + to.filename().string() + ": " +
                code.message();
    }
    return !code;
}

std::string SlotName(uint32_t slot) {
    return "slot " + std::to_string(slot);
}

// The new file takes the slot, and what was there stays beside it.
bool PutInPlace(const SLOT_FILES& files, std::string& error) {
    const bool wasFilled = FileMayExist(files.slot);
    if (wasFilled && !Rename(files.slot, files.before, error)) {
        return false;
    }
    if (!Rename(files.added, files.slot, error)) {
        std::string ignored;
        static_cast<void>(wasFilled && Rename(files.before, files.slot, ignored));
        return false;
    }
    return true;
}

// The slot and the one before change places.
bool Swap(const SLOT_FILES& files, std::string& error) {
    if (!FileMayExist(files.slot)) {
        return Rename(files.before, files.slot, error);
    }
    if (!Rename(files.slot, files.swap, error)) {
        return false;
    }
    if (!Rename(files.before, files.slot, error)) {
        std::string ignored;
        static_cast<void>(Rename(files.swap, files.slot, ignored));
        return false;
    }
    return Rename(files.swap, files.before, error);
}

// Brings to an end what a program that ended had begun.
void Finish(const SLOT_FILES& files) {
    std::string ignored;
    if (FileMayExist(files.swap)) {
        const bool out = FileMayExist(files.slot);
        static_cast<void>(Rename(files.swap, out ? files.before : files.slot, ignored));
    }
    if (FileMayExist(files.added)) {
        static_cast<void>(PutInPlace(files, ignored));
    }
}

SLOT_FILES FinishedFiles(const fs::path& folder, uint32_t slot) {
    SLOT_FILES files = FilesOf(folder, slot);
    Finish(files);
    return files;
}

void Describe(const EMU_THREAD& session, const SLOT_STAMP& stamp, STATE_SNAPSHOT& snapshot) {
    snapshot.takenAt = stamp.now;
    snapshot.secondsPlayed = stamp.secondsPlayed;
    snapshot.texts = {
        {kGameText, session.gameName.substr(0, kLongestSnapshotText)},
        {kImageText,         session.stateEntryName                        }
    };
}

// States of two games may look alike to a machine.
bool ReadForSession(const EMU_THREAD& session, const fs::path& path, STATE_SNAPSHOT& snapshot,
                    std::string& error) {
    if (!ReadSnapshot(path, snapshot, error)) {
        return false;
    }
    if (SnapshotText(snapshot, kImageText) != session.stateEntryName) {
        error = path.string() + ": is of another game, " + SnapshotText(snapshot, kGameText);
        return false;
    }
    return true;
}

// Gives the state and keeps what was played before. Without room for that on the disk the state is loaded all the
// same, and the text says so.
bool Give(EMU_THREAD& session, const STATE_SNAPSHOT& wanted, const SLOT_STAMP& stamp,
          std::string& trouble, bool& loaded) {
    STATE_SNAPSHOT before;
    loaded = EmuGiveState(session, wanted.state, &before);
    if (!loaded) {
        return false;
    }
    Describe(session, stamp, before);
    return WriteSnapshot(LoadBeforeFile(SlotFolder(session)), before, trouble);
}

} // namespace

fs::path SlotFolder(const EMU_THREAD& session) {
    const std::string& archive = session.archivePath;
    return ResolvePath(archive.substr(0, archive.rfind('.') + 1) + session.stateEntryName +
                       ".slots");
}

SLOT_LIST ListSlots(const fs::path& folder) {
    SLOT_LIST list;
    const FolderTurn turn(folder);
    for (uint32_t slot = 1; slot <= kStateSlots; ++slot) {
        const SLOT_FILES files =
            turn.IsHeldByOther() ? FilesOf(folder, slot) : FinishedFiles(folder, slot);
        SLOT_FACTS& facts = list.slots[slot - 1];
        facts.filled = FileMayExist(files.slot);
        facts.hasBefore = FileMayExist(files.before);
        std::string ignored; // it is told when the player wants to load it
        facts.readable = facts.filled && ReadSnapshotLabel(files.slot, facts.label, ignored);
    }
    list.hasLoadBefore = FileMayExist(LoadBeforeFile(folder));
    return list;
}

bool SaveToSlot(EMU_THREAD& session, uint32_t slot, const SLOT_STAMP& stamp, std::string& text) {
    const fs::path folder = SlotFolder(session);
    const std::string failed = "Not saved to " + SlotName(slot) + ": ";
    STATE_SNAPSHOT snapshot;
    if (!EmuTakeSnapshot(session, snapshot)) {
        text = failed + "the machine returned no state";
        return false;
    }
    std::error_code ignored; // writing tells
    fs::create_directories(folder, ignored);
    const FolderTurn turn(folder);
    if (turn.IsHeldByOther()) {
        text = failed + kHeldByOther;
        return false;
    }
    const SLOT_FILES files = FinishedFiles(folder, slot);
    Describe(session, stamp, snapshot);
    std::string error;
    if (!WriteSnapshot(files.added, snapshot, error) || !PutInPlace(files, error)) {
        text = failed + error;
        return false;
    }
    FlushFolder(folder);
    text = "Saved to " + SlotName(slot);
    return true;
}

bool LoadFromSlot(EMU_THREAD& session, uint32_t slot, const SLOT_STAMP& stamp, std::string& text,
                  bool* undoable) {
    const std::string failed = "Not loaded from " + SlotName(slot) + ": ";
    const FolderTurn turn(SlotFolder(session));
    if (turn.IsHeldByOther()) {
        text = failed + kHeldByOther;
        return false;
    }
    const SLOT_FILES files = FinishedFiles(SlotFolder(session), slot);
    if (!FileMayExist(files.slot)) {
        text = failed + "it is empty";
        return false;
    }
    STATE_SNAPSHOT wanted;
    std::string error;
    if (!ReadForSession(session, files.slot, wanted, error)) {
        text = failed + error;
        return false;
    }
    bool loaded = false;
    const bool kept = Give(session, wanted, stamp, error, loaded);
    if (undoable != nullptr) {
        *undoable = kept;
    }
    if (kept) {
        text = "Loaded " + SlotName(slot);
    } else if (loaded) {
        text = "Loaded " + SlotName(slot) + ". It cannot be undone: " + error;
    } else {
        text = failed + "the machine does not take it with these options. It stays in the slot";
    }
    return loaded;
}

bool DeleteSlot(const fs::path& folder, uint32_t slot, std::string& text) {
    const FolderTurn turn(folder);
    if (turn.IsHeldByOther()) {
        text = "Not deleted, " + SlotName(slot) + ": " + kHeldByOther;
        return false;
    }
    const SLOT_FILES files = FinishedFiles(folder, slot);
    std::string error = "it is empty";
    if (!FileMayExist(files.slot) || !Rename(files.slot, files.before, error)) {
        text = "Not deleted, " + SlotName(slot) + ": " + error;
        return false;
    }
    FlushFolder(folder);
    text = "Deleted " + SlotName(slot);
    return true;
}

bool UndoSlot(const fs::path& folder, uint32_t slot, std::string& text) {
    const FolderTurn turn(folder);
    if (turn.IsHeldByOther()) {
        text = "Not undone in " + SlotName(slot) + ": " + kHeldByOther;
        return false;
    }
    const SLOT_FILES files = FinishedFiles(folder, slot);
    std::string error = "nothing was there before";
    if (!FileMayExist(files.before) || !Swap(files, error)) {
        text = "Not undone in " + SlotName(slot) + ": " + error;
        return false;
    }
    FlushFolder(folder);
    text = "In " + SlotName(slot) + " is what was there before";
    return true;
}

bool UndoLoad(EMU_THREAD& session, const SLOT_STAMP& stamp, std::string& text) {
    const fs::path file = LoadBeforeFile(SlotFolder(session));
    const FolderTurn turn(SlotFolder(session));
    if (turn.IsHeldByOther()) {
        text = std::string("Loading is not undone: ") + kHeldByOther;
        return false;
    }
    STATE_SNAPSHOT wanted;
    std::string error = "nothing was loaded";
    if (!FileMayExist(file) || !ReadForSession(session, file, wanted, error)) {
        text = "Loading is not undone: " + error;
        return false;
    }
    bool loaded = false;
    if (Give(session, wanted, stamp, error, loaded)) {
        text = "You are where you were before loading";
    } else if (loaded) {
        text = "You are where you were before loading. It cannot be undone: " + error;
    } else {
        text = "Loading is not undone: the machine does not take the state with these options";
    }
    return loaded;
}
