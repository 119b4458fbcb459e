// The file of a game's own memory: `<name>.<image>.sav` beside its archive, where `image` is the archive's
// entry name, so that two versions of a game don't share one. It holds the bytes and nothing else.
//
// It is read when a session starts, and written whenever the game has changed its memory and at the
// session's end, each time in one step. What a write replaces stays there under another name:
//
//     .before.sav        the file as the session found it; replaces that of the previous session
//     .before-state.sav  what the game itself had written, when a loaded state or rewinding brought older
//                        memory back; replaced when that happens again after the game has written
//     .other-<n>.sav     what another program has written meanwhile
//     .damaged-<n>.sav   a file that is not of this game's length
//
// An existing file that cannot be read is never touched.
//
// Knows a machine's memory and its file, but no session. Failure: one line through HostReport.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CBattery;

// What is known of the file. Written by the threads that start, stop and save sessions, `rolledBack`
// also by the session's thread: all under the session's `lock` while its thread runs.
struct BATTERY_FILE {
    std::string stem;             // path without ".sav", in the program's notation; never changes
    std::vector<uint8_t> onDisk;  // the file's contents, or those it would have
    std::vector<uint8_t> refused; // contents that could not be written last time
    bool formerKept = false;      // the found file has been copied, or needs no copy
    bool untouchable = false;     // exists but cannot be read
    bool isFile = false;          // `onDisk` was read from the file or written to it
    bool rolledBack =
        false; // a state or rewinding has brought older memory back since the last write
    bool fileRolledBack = false; // the file holds such older memory
};

// One write, separate from the session, so that the disk is written without the session's lock.
struct BATTERY_WRITE {
    std::string stem;
    bool formerKept;
    bool rolledBack;               // `contents` are older memory, restored
    bool fileRolledBack;           // so is what the file holds
    std::vector<uint8_t> expected; // the file's contents, as far as known
    std::vector<uint8_t> contents;
};

// Reads the file into the memory, before the session's thread runs.
void BatteryLoad(BATTERY_FILE& file, CBattery& memory);

// After a state was loaded at the start: restores the file's memory, if there is a file.
void BatteryPutBack(const BATTERY_FILE& file, CBattery& memory);

// Whether writes are ever due; the default is true. A run without a player must not overwrite the
// player's memory. Any thread.
void EmuWriteBatteries(bool write);

// A write in its three steps. The caller holds the session at a frame boundary for the first and the last;
// the second needs no lock.
[[nodiscard]] std::optional<BATTERY_WRITE> BatteryDue(BATTERY_FILE& file,
                                                      std::vector<uint8_t> contents);
[[nodiscard]] bool BatteryWrite(const BATTERY_WRITE& write);
void BatteryWritten(BATTERY_FILE& file, BATTERY_WRITE write, bool written);

// All three steps, for a session whose thread has ended. Tries refused contents again.
void BatterySave(BATTERY_FILE& file, const CBattery& memory);
