// Saved states on disk: one zip archive a game name, one entry a game image in it.
//
// The archive is `EMU_THREAD::archivePath`, the entry `stateEntryName`; an entry is a machine's state
// as SaveState gives it. The archive is replaced in one step, so the old one stays until the new one
// is whole on the disk. What the program can't carry into the new archive is never lost: the old file
// is kept beside it, before anything replaces it, as
//
//     <name>.damaged-<n>.zip   no archive, or one with entries that cannot be read
//     <name>.refused-<n>.zip   its state for this game did not fit the machine, or could not be read
//                              when it was to be loaded
//
// with the smallest free n, and no second copy of the same content. An archive that exists and cannot
// be read at all is not touched: the save fails.
//
// Threads: any, under the session's lock (at a frame boundary). Sessions that share an archive take
// turns. Failure: by result, after one line through HostReport with the path and the cause.
#pragma once

#include <cstdint>

struct EMU_THREAD;

// A finished archive is at most this long, in bytes; a save that would exceed it fails.
inline constexpr uint32_t kArchiveLimit = 4194304;

// Saves the machine's state in the session's entry. All other entries stay.
bool EmuSaveToArchive(EMU_THREAD& session);

// Loads the session's entry. Without one nothing changes. A state that the machine refuses resets it.
// Either way the static is over. True when the state was taken; `wasThere` then and when one, or what may
// hold one, is there all the same.
bool EmuLoadFromArchive(EMU_THREAD& session, bool* wasThere = nullptr);
