// The file of a game's own memory: `<name>.<image>.sav` beside its archive, where `image` is the archive's
// entry name, so that two versions of a game don't share one. It holds the bytes and nothing else.
//
// It is read when a session starts, and written whenever the game has changed its memory and at the
// session's end, each time in one step. What a write replaces stays there under another name:
//
//     .before.sav        the file as the session found it; that of the session before is replaced
//     .before-state.sav  what the game itself had written, when a loaded state or rewinding brought older
//                        memory back; replaced when that happens again after the game has written
//     .other-<n>.sav     what another program has written meanwhile
//     .damaged-<n>.sav   a file that is not of this game's length
//
// A file that is there and cannot be read is never touched.
//
// This knows a machine's memory and its file, and no session. Failure: one line through HostReport.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CBattery;

// What is known of the file. Written by the thread that starts, keeps and stops sessions, and
// `rolledBack` by the session's thread as well: all under the session's `lock` while its thread runs.
struct BATTERY_FILE {
    std::string stem;             // path without ".sav", in the program's notation; never changes
    std::vector<uint8_t> onDisk;  // what the file holds, or would hold if it were there
    std::vector<uint8_t> refused; // what could not be written the last time
    bool formerKept = false;      // the file as it was found needs no copy any more
    bool untouchable = false;     // it is there and cannot be read
    bool isFile = false;          // `onDisk` was read from the file or written to it
    bool rolledBack =
        false; // a state or rewinding has brought older memory back since the last write
    bool fileRolledBack = false; // what was last written was such older memory
};

// One write, apart from the session, which need not be held for as long as the disk takes.
struct BATTERY_WRITE {
    std::string stem;
    bool formerKept;
    bool rolledBack;               // `contents` are older memory that has come back
    bool fileRolledBack;           // what is in the file was such memory, too
    std::vector<uint8_t> expected; // what is in the file, as far as is known
    std::vector<uint8_t> contents;
};

// Reads the file into the memory, before the session's thread runs.
void BatteryLoad(BATTERY_FILE& file, CBattery& memory);

// After a state that was loaded at the start: the file's memory, if there is one, goes back.
void BatteryPutBack(const BATTERY_FILE& file, CBattery& memory);

// Whether anything is ever due; it is at first. A run with nobody at the keys writes no memory over the
// player's. Any thread.
void EmuWriteBatteries(bool write);

// A write in its three steps. The caller holds the session at a frame boundary for the first and the last;
// the second needs no lock.
[[nodiscard]] std::optional<BATTERY_WRITE> BatteryDue(BATTERY_FILE& file,
                                                      std::vector<uint8_t> contents);
[[nodiscard]] bool BatteryWrite(const BATTERY_WRITE& write);
void BatteryWritten(BATTERY_FILE& file, BATTERY_WRITE write, bool written);

// All three steps, for a session whose thread has ended. What could not be written before is tried again.
void BatterySave(BATTERY_FILE& file, const CBattery& memory);
