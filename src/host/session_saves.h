// What a session leaves on the disk: its autosave and the game's own memory.
//
// The order matters where both hold memory of the game. An autosave brings the memory of its own time
// along; the file's goes back over it, since it is written last at a stop and goes on being written when
// there is no stop, as in a crash.
//
// Who calls whom: starts and stops (session.cpp) call this, and this calls archive.h and battery_file.h,
// which know no sessions' list. The hotkeys call archive.h directly.
#pragma once

#include "host/archive.h"

struct EMU_THREAD;

// Reads the game's own memory and, if `emu_autosaves` says so, the autosave. Before the session's thread
// runs.
void SessionLoadSaves(EMU_THREAD& session);

// The state for the autosave, to be stored with EmuStoreState; without bytes when none is wanted. The
// caller holds the session's `lock`.
[[nodiscard]] TAKEN_STATE SessionTakeAutosave(EMU_THREAD& session);

// The last write of the game's own memory, after the session's thread has ended.
void SessionSaveBattery(EMU_THREAD& session);

// Writes what games have changed in their own memory since the last time, for all sessions, none of which
// waits for the disk. To be called every second or so, by one thread and with no lock held.
void EmuKeepBatteries();
