// The file of a game's own memory: `<name>.<image>.sav` beside its archive, where `image` is the archive's
// entry name, so that two versions of a game don't share one. It holds the bytes and nothing else.
//
// Read when a session starts, ahead of its autosave, and written whenever the game has changed it and at
// the session's end, each time in one step. Before the first write of a session the file as it was
// found is kept as `<name>.<image>.before.sav`, since an old state brings old memory with it. A file that
// is not of this game's length is kept as `<name>.<image>.damaged-<n>.sav`. One that is there and cannot be
// read is never touched.
//
// Threads: the one that starts and stops sessions. Failure: one line through HostReport.
#pragma once

struct EMU_THREAD;

// Before the session's thread runs.
void EmuLoadBattery(EMU_THREAD& session);

// Writes what has changed since the last time. The caller holds the session at a frame boundary.
void EmuSaveBattery(EMU_THREAD& session);

// The same for all sessions, none of which waits for the disk. To be called every second or so, with no
// lock held.
void EmuKeepBatteries();
