// Saved states on disk: a zip archive for each game name, with an entry for each game image.
//
// The archive is `EMU_THREAD::archivePath`, the entry `stateEntryName`; an entry is a machine's state
// as returned by SaveState. The archive is replaced in one step, so the old one stays until the whole
// new one is on the disk. What the program can't copy into the new archive is never lost: before it is
// replaced, the old file is kept beside it as
//
//     <name>.damaged-<n>.zip   not an archive, or one with unreadable entries
//     <name>.refused-<n>.zip   its state for this game did not fit the machine or could not be read
//                              when it was to be loaded
//
// with the smallest free n, and no second copy of the same content. An archive that exists and cannot
// be read at all is not touched: the save fails.
//
// A save takes the state at a frame boundary, under the session's `lock`, and writes it without that
// lock, so no other session waits for the disk. Sessions that share an archive take turns.
//
// Threads: any, with neither the list lock nor a session's `lock` held, unless said otherwise. Failure:
// by result, after one line through HostReport with the path and the cause.
#pragma once

#include "machine/emu_system.h"

#include <cstdint>

struct EMU_THREAD;

// A finished archive is at most this long, in bytes; a save that would exceed it fails.
inline constexpr uint32_t kArchiveLimit = 4194304;

// A machine's state on its way to the disk.
struct TAKEN_STATE {
    StateBlob bytes; // null: there is nothing to store
    uint32_t size = 0;
};

// The two steps of a save, for a caller that takes the session's `lock` itself: EmuTakeState under the
// lock; EmuStoreState, after it is released, writes the session's entry. All other entries stay.
[[nodiscard]] TAKEN_STATE EmuTakeState(EMU_THREAD& session);
bool EmuStoreState(EMU_THREAD& session, const TAKEN_STATE& state);

// Both steps, on the session's own thread or when it has none.
bool EmuSaveToArchive(EMU_THREAD& session);

// Loads the session's entry, on the session's own thread or before it has one. True when the machine took
// the state. One that it refuses resets it; in both cases the static is over. Without an entry nothing
// changes. After a false, `wasThere` tells whether there was something that could not be loaded.
bool EmuLoadFromArchive(EMU_THREAD& session, bool* wasThere = nullptr);
