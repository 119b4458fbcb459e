// The file of a game's own memory: `<name>.<image>.sav` beside its archive, where `image` is the archive's
// entry name, so that two versions of a game don't share one. It holds the bytes and nothing else.
//
// Read when a session starts and written whenever the game has changed it and at the session's end, each
// time in one step. An autosave brings the memory of its own time with it; the file's is put back over that,
// since it is written last at a stop and goes on being written when there is no stop, as in a crash. What a
// write replaces stays there under another name:
//
//     .before.sav        the file as the session found it; the one of the session before goes
//     .before-state.sav  the game's own, when a state that was loaded or rewinding brought older memory back;
//                        goes when that happens again after the game itself has written
//     .other-<n>.sav     what somebody else has written meanwhile
//     .damaged-<n>.sav   a file that is not of this game's length
//
// One that is there and cannot be read is never touched.
//
// Threads: the one that starts and stops sessions. Failure: one line through HostReport.
#pragma once

struct EMU_THREAD;

// Before the session's thread runs.
void EmuLoadBattery(EMU_THREAD& session);

// Behind a state that was loaded at the start: the file's memory, where there is one, goes back.
void EmuBatteryAfterState(EMU_THREAD& session);

// Whether the two below do anything; they do at first. A run with nobody at the keys writes no memory over
// the player's.
void EmuWriteBatteries(bool write);

// Writes what has changed since the last time. The caller holds the session at a frame boundary.
void EmuSaveBattery(EMU_THREAD& session);

// The same for all sessions, none of which waits for the disk. To be called every second or so, with no
// lock held.
void EmuKeepBatteries();
