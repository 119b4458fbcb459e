// Sessions: one running machine each, with a thread of its own, told apart by the caller's key.
//
// A session reaches screen and sound device only through the eight callbacks of EMU_HOST_CALLBACKS, so
// a machine runs without either.
//
// Locks, in the order in which they may nest: the list of sessions (recursive), a session's `lock`,
// then the frame mutex or the sound mutex of host_data.h.
#pragma once

#include "base/ranked_mutex.h"
#include "host/emu_system.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

class CGameFile;
struct EMU_HOST_DATA;

// One state of the rewind stack.
struct REWIND_NODE {
    StateBlob state;
    uint32_t size = 0; // bytes
    std::unique_ptr<REWIND_NODE> next; // the older state
};

struct EMU_THREAD {
    uint32_t serial = 0; // unique over the process, from 1
    uint32_t key = 0;    // the caller's session key
    // Set by EmuStopSession, cleared by the thread as its very last act on this record.
    std::atomic<uint8_t> stopRequested{0};
    std::atomic<uint8_t> showStatic{1}; // 1 while television static runs
    uint8_t audible = 0;     // owned by the sound pump: this session is heard
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
    std::unique_ptr<REWIND_NODE> rewindHead;
    REWIND_NODE* rewindCursor = nullptr;
    uint32_t rewindCount = 0;
    uint32_t rewindSteps = 0; // taken back in the present rewind; 0 when not rewinding
    uint32_t frameWidth = 0;  // copies of the machine's
    uint32_t frameHeight = 0;
    std::atomic<EMU_HOST_DATA*> hostData{nullptr}; // set by the open callback
    RankedMutex<LockRank::kSession> lock;          // guards the machine
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
// never while a session runs.
void EmuSetHost(const EMU_HOST_CALLBACKS& callbacks);

// Starts the game on `key`, after stopping what ran there. `games[0]` must be there and have its
// image unpacked; `games[1]` may be null; both stay the caller's. `options` are kMachineOptionBytes.
// Gives the serial; 0 on failure, with the last error in place.
[[nodiscard]] uint32_t EmuStartSession(uint32_t key, CGameFile* const games[2],
                                       const void* options, const std::string& gameName);

// Stops the session, autosave included, and frees it. False when there is none on this key.
bool EmuStopSession(uint32_t key);

// Resets the machine at a frame boundary. False when there is none on this key.
bool EmuResetSession(uint32_t key);

// Calls `visit` for every session that the host has opened, under the list lock.
void EmuForEachSession(const std::function<void(EMU_THREAD&)>& visit);

// One line of statistics for the active session; empty without one.
[[nodiscard]] std::string EmuFormatStats();

// The largest gap between play and write cursor that the sound pump has seen, in milliseconds.
// Process-wide, never reset.
void EmuRaiseSoundGap(uint32_t milliseconds);
[[nodiscard]] uint32_t EmuSoundGapMs();
