// Sessions: one running machine each, with a thread of its own, told apart by the caller's key.
//
// A session reaches screen and sound device only through the eight callbacks of EMU_HOST_CALLBACKS, so
// a machine runs without either.
//
// A session's thread is detached. Clearing `stopRequested` is its last act on the record; after that
// it only hands its token to threadEnd, so EmuRunningThreads may stay above 0 a moment longer than
// the session exists.
//
// Locks, in the order in which they may nest: the list of sessions (recursive), a session's `lock`,
// then the frame mutex or the sound mutex of host_data.h.
#pragma once

#include "base/ranked_mutex.h"

#include "machine/emu_system.h"
#include "settings/input_frame.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class CGameFile;
struct EMU_HOST_DATA;

// One state of the rewind stack.
struct REWIND_NODE {
    StateBlob state;
    uint32_t size = 0;                 // bytes
    std::unique_ptr<REWIND_NODE> next; // the older state
    REWIND_NODE* newer = nullptr;      // null at the head
};

// What is known of the file of a game's own memory; see battery_file.h.
struct BATTERY_STATUS {
    std::vector<uint8_t> onDisk;  // what the file holds, or would hold if it were there
    std::vector<uint8_t> refused; // what could not be written the last time
    bool formerKept = false;      // the file as it was found needs no copy any more
    bool untouchable = false;     // it is there and cannot be read
    bool isFile = false;          // `onDisk` was read from the file or written to it
    // A saved state or rewinding has put older memory back since the last write; under the session's lock.
    bool rolledBack = false;
    bool fileRolledBack = false; // the same of what was last written
};

struct EMU_THREAD {
    EMU_THREAD();
    ~EMU_THREAD(); // frees the rewind stack without recursion
    EMU_THREAD(const EMU_THREAD&) = delete;
    EMU_THREAD& operator=(const EMU_THREAD&) = delete;

    uint32_t serial = 0; // unique over the process, from 1
    uint32_t key = 0;    // the caller's session key
    // Set by EmuStopSession, cleared by the thread as its very last act on this record.
    std::atomic<uint8_t> stopRequested{0};
    std::atomic<uint8_t> showStatic{1}; // 1 while television static runs
    uint8_t audible = 0;                // owned by the sound pump: this session is heard
    uint8_t directSound = 0; // owned by the sound pump: the stereo ring is the one playing
    uint32_t staticFrames = 0;
    std::unique_ptr<CEmuSystem> machine;
    std::atomic<uint32_t> framesMissed{0};     // frames overwritten before the display took them
    std::atomic<uint32_t> soundRepositions{0}; // times the sound write position was moved
    std::atomic<uint32_t> soundBytes{0};       // bytes waiting in `pending`; under the sound mutex
    uint32_t system = 0;
    std::string gameName;       // as the caller gave it
    std::string archivePath;    // in the program's path notation, lower case
    std::string stateEntryName; // twelve hexadecimal digits, lower case
    BATTERY_STATUS battery;
    std::unique_ptr<REWIND_NODE> rewindHead;
    REWIND_NODE* rewindCursor = nullptr;
    REWIND_NODE* rewindTail = nullptr; // the oldest state, so that dropping it walks nothing
    uint32_t rewindCount = 0;
    uint32_t rewindSteps = 0; // taken back in the present rewind; 0 when not rewinding
    uint32_t frameWidth = 0;  // copies of the machine's
    uint32_t frameHeight = 0;
    std::atomic<EMU_HOST_DATA*> hostData{nullptr}; // set by the open callback
    RankedMutex<LockRank::kSession> lock;          // guards the machine
    InputLooker inputs;                            // of the machine's frames; whoever steps it
    // Somebody is stopping this session; under the list lock.
    bool stopping = false;
    // The archive may hold a state that was not loaded, refused or unreadable at the time, and no copy of
    // it could be made yet; under `lock`. Nothing may replace it before there is one.
    bool unloadedStateUnkept = false;
    std::atomic<uint32_t> lockWaiters{0}; // other threads that want `lock` at the next boundary
    EMU_THREAD* next = nullptr;
};

struct EMU_HOST_CALLBACKS {
    void (*open)(EMU_THREAD* session);  // session thread, once, under the list lock
    void (*close)(EMU_THREAD* session); // the stopping thread, after the session thread has ended
    EMU_VIDEO_FRAME* (*getVideoFrame)(EMU_THREAD* session);
    void (*present)(EMU_THREAD* session, uint32_t microseconds);
    void (*submitAudio)(EMU_THREAD* session, EMU_AUDIO_FRAME* audio);
    EMU_INPUT_STATE* (*getInput)(EMU_THREAD* session);
    int (*threadStart)(int argument); // session thread, first act, with 0; gives a token
    void (*threadEnd)(int token);     // session thread, last act
};

// Stores the callbacks, then has the machines build the tables that chips share. Once at start, and
// never while a session runs. All eight are needed; without them no session starts.
void EmuSetHost(const EMU_HOST_CALLBACKS& callbacks);

// Constructs and initialises the machine of the game and fills a record around it: in no list, with
// no thread, nothing loaded and no host. A headless driver runs EmuStep on it; EmuStartSession puts
// it to a thread. Null on failure, with the last error in place.
[[nodiscard]] std::unique_ptr<EMU_THREAD> EmuCreateSession(uint32_t key, CGameFile* const games[2],
                                                           const void* options,
                                                           const std::string& gameName);

// Starts the game on `key`, after stopping what ran there. `games[0]` must be there and have its
// image unpacked; `games[1]` may be null; both stay the caller's. `options` are kMachineOptionBytes.
// Gives the serial; 0 on failure, with the last error in place. Not from a visit, a host callback or
// a machine.
[[nodiscard]] uint32_t EmuStartSession(uint32_t key, CGameFile* const games[2], const void* options,
                                       const std::string& gameName);

// Stops the session, autosave included, and frees it. False when there is none on this key. When
// another thread is stopping it already, waits until it is gone and gives true as well. Not from a
// visit, a host callback or a machine: it waits for the session's thread.
bool EmuStopSession(uint32_t key);

// Resets the machine at a frame boundary. False when there is none on this key.
bool EmuResetSession(uint32_t key);

// Calls `visit` for every session that the host has opened, under the list lock. A visit may take the
// locks further down and must neither start nor stop a session.
void EmuForEachSession(const std::function<void(EMU_THREAD&)>& visit);

// One line of statistics for the active session; empty without one.
[[nodiscard]] std::string EmuFormatStats();

// The largest gap between play and write cursor that the sound pump has seen, in milliseconds.
// Process-wide, never reset.
void EmuRaiseSoundGap(uint32_t milliseconds);
[[nodiscard]] uint32_t EmuSoundGapMs();

// Session threads that have not yet passed threadEnd. 0 some time after the last stop.
[[nodiscard]] uint32_t EmuRunningThreads();

// What the web service is told of a session. The hook decides whether the user is logged in and must
// return at once: a start is reported under the list lock, a stop under none. Null tells nobody.
enum class SessionReport : uint32_t { kStarted = 4, kEnded = 5 };
using SESSION_REPORT_HOOK = void (*)(SessionReport what, uint32_t system,
                                     const std::string& gameName);
void EmuSetSessionReport(SESSION_REPORT_HOOK hook);
