// What a session leaves on the disk: its autosave, the game's own memory and its resume file.
//
// The order matters, since all hold the game's memory. A loaded state restores the memory of its time;
// the file's contents then replace it, as the file is written last at a stop and is up to date even
// after a crash.
//
// Callers: session.cpp calls this for starts and stops; this calls archive.h, battery_file.h and
// resume_file.h, which know nothing of the list of sessions. The hotkeys call archive.h directly.
#pragma once

#include "host/archive.h"
#include "host/resume_file.h"

#include <optional>

struct EMU_THREAD;

// Reads the game's own memory, and loads the state of `resume` or, without one and if `emu_autosaves` says so, the
// autosave. Before the session's thread runs. False, with the last error in place, if the machine refuses the state of
// `resume`; the session is not to run then.
[[nodiscard]] bool SessionLoadSaves(EMU_THREAD& session, SESSION_RESUME&& resume);

// Instead: nothing is read, and the game's own memory is not written either. True.
[[nodiscard]] bool SessionWithoutSaves(EMU_THREAD& session);

// The state for the autosave, to be stored with EmuStoreState; without bytes if none is wanted. The
// caller holds the session's `lock`.
[[nodiscard]] TAKEN_STATE SessionTakeAutosave(EMU_THREAD& session);

// The last write of the game's own memory, after the session's thread has ended.
void SessionSaveBattery(EMU_THREAD& session);

// The state for the resume file; empty without such a file, for a machine that cannot go on, and after a failure. The
// session's thread has ended, or the session is pinned.
[[nodiscard]] std::optional<STATE_SNAPSHOT> SessionTakeResume(EMU_THREAD& session);

// The last write of the resume file, after the session's thread has ended. Unless the game is to go on with the next
// start of the program, and can, the file is deleted.
void SessionEndResume(EMU_THREAD& session, bool goesOn, std::optional<STATE_SNAPSHOT>&& resume);

// Writes the games' own memory where it has changed since the last call, for all sessions; no session
// waits for the disk. To be called about once a second, by one thread and with no lock held.
void EmuKeepBatteries();

// Appends to the files of sessions that are recorded, as often, by the same thread.
void EmuKeepRecordings();

// The same for resume files, about every ten seconds, by the same thread.
void EmuKeepResumeFiles();
