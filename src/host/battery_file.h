// The file of a game's own memory: `<name>.<image>.sav` beside its archive, where `image` is the archive's
// entry name, so that two versions of a game don't share one. It holds the bytes and nothing else.
//
// Read when a session starts, ahead of its autosave, and written whenever the game has changed it and at
// the session's end, each time in one step. An autosave brings the memory of its own time with it; the file's
// is put back where the file is the newer one, as after a crash. Before the first write of a session the file
// as it was found is kept as `<name>.<image>.before.sav`, the one of the session before going. What somebody
// else writes meanwhile is kept as `.other-<n>.sav`, and a file that is not of this game's length as
// `.damaged-<n>.sav`. One that is there and cannot be read is never touched.
//
// Threads: the one that starts and stops sessions. Failure: one line through HostReport.
#pragma once

struct EMU_THREAD;

// Before the session's thread runs.
void EmuLoadBattery(EMU_THREAD& session);

// Behind a state that was loaded at the start.
void EmuBatteryAfterState(EMU_THREAD& session);

// Writes what has changed since the last time. The caller holds the session at a frame boundary.
void EmuSaveBattery(EMU_THREAD& session);

// The same for all sessions, none of which waits for the disk. To be called every second or so, with no
// lock held.
void EmuKeepBatteries();
