// Sessions: each runs one machine on a thread of its own. The caller's key identifies a session.
//
// A session reaches screen and sound device only through the eight callbacks of EMU_HOST_CALLBACKS, so
// a machine runs without either.
//
// The life of a session, in order:
//
//     created    EmuCreateSession constructs the machine, which takes the game in its Init, and fills the
//                record. A headless driver stops here and calls EmuStep itself.
//     loaded     EmuStartSession reads the game's own memory and the autosave, or takes the state that it is given.
//     listed     It gets its serial and goes to the head of the list, and its thread starts.
//     opened     The thread calls threadStart, then open, which makes `hostData`. From now on
//                EmuForEachSession visits the session.
//     static     70 frames of television static, unless a state was loaded.
//     running    The frame loop, round after round.
//     stopping   EmuStopSession takes the state for the autosave, if the game is turned off, at a frame
//                boundary, sets `stopRequested` and stores the state while the thread ends its round.
//     ended      The thread clears `stopRequested`, its last act on the record, and hands its token to
//                threadEnd. EmuRunningThreads may stay above 0 a moment longer than the session exists.
//     closed     The stopping thread calls close, which frees `hostData`, and takes the session off the list.
//     freed      It writes the game's own memory, writes or deletes the resume file, and destroys the
//                machine, the rewind stack and the record.
//
// Starting or stopping a session never delays another. Starts and stops of one key wait for each other,
// those of different keys don't; no lock that another session, the display or the sound pump needs is
// held during Init, a frame or disk access.
//
// Locks, in the order in which they may nest: the turn of a key (turns.h), kept during a whole start or
// stop; the list of sessions (recursive); a session's `lock`; then the frame mutex or the sound mutex of
// host_data.h. An archive's turn (archive.cpp) is taken with none of the others but the key's.
#pragma once

#include "base/ranked_mutex.h"
#include "host/battery_file.h"
#include "host/resume_file.h"
#include "host/rewind.h"
#include "host/session_sound.h"
#include "host/session_statistics.h"
#include "machine/emu_system.h"
#include "settings/input_frame.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

class CGameFile;
struct EMU_HOST_DATA;

struct EMU_THREAD {
    // Identity: filled before the thread starts, never changed after that.
    uint32_t serial = 0; // unique over the process, from 1; 0 until the session is listed
    uint32_t key = 0;    // the caller's session key
    uint32_t system = 0;
    std::string gameName;       // as the caller gave it
    std::string archivePath;    // in the program's path notation, lower case
    std::string stateEntryName; // twelve hexadecimal digits, lower case
    bool fromAutosave = false;  // it goes on from what an earlier session has saved
    uint32_t frameWidth = 0;    // copies of the machine's
    uint32_t frameHeight = 0;

    // The machine and what changes with it: written under `lock`, by the session's thread and by
    // threads that start, stop, reset or save the session.
    RankedMutex<LockRank::kSession>
        lock; // held for one step of the machine, or to take or load a state
    std::unique_ptr<CEmuSystem> machine;
    InputLooker inputs; // of the machine's frames; used by the thread that steps it
    REWIND_STACK rewind;
    BATTERY_FILE battery;
    RESUME_FILE resume;                      // has a lock of its own for what changes
    uint32_t staticFrames = 0;               // of television static, shown so far
    std::atomic<uint8_t> showStatic{1};      // 1 while the static runs; anyone may read it
    std::atomic<uint32_t> lockWaiters{0};    // other threads that wait for `lock`
    std::atomic<bool> paused{false};         // no rounds: picture and machine stay as they are
    std::atomic<bool> waitsForFocus{false};  // the same, while another window has the keyboard
    std::atomic<bool> pausedByPlayer{false}; // rounds look at the keys, and run no frame
    std::atomic<int32_t> speed{1}; // of the last round: times the ordinary one; -1: backwards

    // What the host keeps. `hostData` is set by the open callback on the session's thread and cleared by
    // close on the stopping one, both under the list lock, close under `lock` as well.
    std::atomic<EMU_HOST_DATA*> hostData{nullptr};
    SESSION_SOUND sound;           // shared with the sound pump
    SESSION_STATISTICS statistics; // counted on the session's thread and the pump's

    // The archive may hold a state that could not be loaded and of which no copy could be made yet. A save
    // makes one before it replaces the archive. Written by the thread that saves or loads, in the
    // archive's turn.
    bool unloadedStateUnkept = false;

    // Set by EmuStopSession under `lock`, cleared by the session's thread as its last access to the
    // record.
    std::atomic<uint8_t> stopRequested{0};
    std::atomic<uint32_t> pins{0}; // threads that use the session without the list lock; freed at 0
    EMU_THREAD* next = nullptr;    // in the list, under the list lock
};

struct EMU_HOST_CALLBACKS {
    void (*open)(EMU_THREAD* session); // session thread, once, under the list lock
    // The stopping thread, after the session thread has ended; under the list lock and the session's.
    void (*close)(EMU_THREAD* session);
    EMU_VIDEO_FRAME* (*getVideoFrame)(EMU_THREAD* session);
    void (*present)(EMU_THREAD* session, uint32_t microseconds);
    void (*submitAudio)(EMU_THREAD* session, EMU_AUDIO_FRAME* audio);
    EMU_INPUT_STATE* (*getInput)(EMU_THREAD* session);
    int (*threadStart)(int argument); // session thread, first act, with 0; returns a token
    void (*threadEnd)(int token);     // session thread, last act
};

// Stores the callbacks, then has the machines build the tables that chips share. Once at start, and
// never while a session runs. All eight are needed; without them no session starts.
void EmuSetHost(const EMU_HOST_CALLBACKS& callbacks);

// Constructs and initialises the machine of the game and fills a record around it: in no list, with
// no thread, nothing loaded and no host. A headless driver runs EmuStep on it; EmuStartSession gives
// it a thread. Null on failure, with the last error in place.
[[nodiscard]] std::unique_ptr<EMU_THREAD> EmuCreateSession(uint32_t key, CGameFile* const games[2],
                                                           const void* options,
                                                           const std::string& gameName);

// Starts the game on `key`, after turning off what ran there. `games[0]` must not be null and must have
// its image unpacked; `games[1]` may be null. The caller keeps both. `options` are kMachineOptionBytes.
// `resume`: where the session keeps its resume file, and the state that it goes on from.
// Returns the serial; 0 on failure, also if the machine refuses that state, with the last error in place. Not
// from a visit, a host callback or a machine, and with no lock held.
[[nodiscard]] uint32_t EmuStartSession(uint32_t key, CGameFile* const games[2], const void* options,
                                       const std::string& gameName, SESSION_RESUME resume = {});

// Why a session ends, and so what stays of it beside the game's own memory.
enum class SessionEnd : uint8_t {
    kTurnedOff, // by the player, or another game takes its place: the autosave, and no resume file
    kProgramEnds, // the game still runs: its resume file, and no autosave over what the player has saved
};

// Stops the session and frees it. False if there is none on this key, also if
// another thread was stopping it; it is gone by then. Not from a visit, a host callback or a machine,
// since it waits for the session's thread, and with no lock held.
bool EmuStopSession(uint32_t key, SessionEnd end);

// Changes a text of the session's resume file, which is written within ten seconds. False if there is none on
// this key. Waits for no frame. With no lock held.
bool EmuSetResumeText(uint32_t key, std::string_view name, std::string_view value);

// Whether the machine on this key has ended by itself, and if so, why. The session goes on, without pictures or
// sound, until somebody stops it. With no lock held.
[[nodiscard]] bool EmuHasEnded(uint32_t key, std::string& reason);

// Resets the machine at a frame boundary. False if there is none on this key. With no lock held.
bool EmuResetSession(uint32_t key);

// Stops the rounds of the session on this key, or lets them go on. What is saved and loaded meanwhile is as at any
// frame boundary; a round that is under way still ends. False if there is none. With no lock held.
bool EmuPauseSession(uint32_t key, bool paused);

// The same for all sessions that are open, while the player looks at another window.
void EmuWaitForFocus(bool waits);

// Calls `visit` for every session that the host has opened, under the list lock. A visit may take the
// locks further down, must neither start nor stop a session, and should be short: others wait for it.
void EmuForEachSession(const std::function<void(EMU_THREAD&)>& visit);

// Session threads that have not yet passed threadEnd. 0 some time after the last stop.
[[nodiscard]] uint32_t EmuRunningThreads();

// The hook that reports sessions to the web service; it checks itself whether the user is logged in.
// Called in the turn of the session's key, so it must return at once. Null: no report.
enum class SessionReport : uint32_t { kStarted = 4, kEnded = 5 };
using SESSION_REPORT_HOOK = void (*)(SessionReport what, uint32_t system,
                                     const std::string& gameName);
void EmuSetSessionReport(SESSION_REPORT_HOOK hook);
