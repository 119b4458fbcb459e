// What a session leaves on the disk: its autosave and the game's own memory.
//
// The order matters, since both hold the game's memory. An autosave restores the memory of its time;
// the file's contents then replace it, as the file is written last at a stop and is up to date even
// after a crash.
//
// Callers: session.cpp calls this for starts and stops; this calls archive.h and battery_file.h, which
// know nothing of the list of sessions. The hotkeys call archive.h directly.
#pragma once

#include "host/archive.h"

struct EMU_THREAD;

// Reads the game's own memory and, if `emu_autosaves` says so, the autosave. Before the session's thread
// runs.
void SessionLoadSaves(EMU_THREAD& session);

// The state for the autosave, to be stored with EmuStoreState; without bytes if none is wanted. The
// caller holds the session's `lock`.
[[nodiscard]] TAKEN_STATE SessionTakeAutosave(EMU_THREAD& session);

// The last write of the game's own memory, after the session's thread has ended.
void SessionSaveBattery(EMU_THREAD& session);

// Writes the games' own memory where it has changed since the last call, for all sessions; no session
// waits for the disk. To be called about once a second, by one thread and with no lock held.
void EmuKeepBatteries();
