// The resume file of a running game: from it the game goes on after the program's end, whatever ended that: the
// player, a crash or a power cut.
//
// It is a snapshot (state_snapshot.h): the machine's state and its picture, with texts by which the owner finds the
// game again. Nothing else has it: the player's saved state, and the autosave, which takes its place when a game is
// turned off, are in the game's archive (archive.h).
//
//     written    every ten seconds if the state or a text is another one than in the file, and when the program ends
//     deleted    when the game is turned off, unless its autosave was wanted and could not be written; and when the
//                machine cannot go on
//     set aside  by its owner, if the game cannot go on from it: as `<name>.refused-<n>.resume`
//
// Failure: one line through HostReport, and not another one until a write has succeeded.
#pragma once

#include "base/ranked_mutex.h"
#include "host/state_snapshot.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// How a session is to be kept, and what it goes on from.
struct SESSION_RESUME {
    std::filesystem::path file; // empty: none is kept
    std::vector<SNAPSHOT_TEXT> texts;
    std::vector<uint8_t>
        state; // in the place of the autosave; empty: the autosave or the game's start
    uint64_t secondsPlayed = 0; // before this session
};

// What a session knows of its file.
struct RESUME_FILE {
    std::filesystem::path path; // empty: none is kept. Never changes.

    // By whoever holds a pin on the session; one thread at a time keeps the files.
    std::vector<uint8_t> onDisk; // the state in the file
    bool failed = false;         // the last write, and that has been told
    uint64_t secondsBefore = 0;  // how long the game had been played when the session began
    int64_t began = 0;           // microseconds of the host's clock

    RankedMutex<LockRank::kLeaf> lock; // of what follows
    std::vector<SNAPSHOT_TEXT> texts;
    bool textsChanged = false; // since they were written
};

// Takes over what the owner says, before the session's thread runs. A state that the machine took is in the file.
void ResumeBegin(RESUME_FILE& file, SESSION_RESUME&& resume);

// Changes a text, or adds it.
void ResumeSetText(RESUME_FILE& file, std::string_view name, std::string_view value);

// Writes the snapshot with the file's texts, unless all of it is there already. True if the file holds it then.
bool ResumeWrite(RESUME_FILE& file, STATE_SNAPSHOT&& snapshot);

void ResumeDelete(const RESUME_FILE& file);

// Renames a file that no game can go on from. Returns a line for the user that says so, with `why`.
[[nodiscard]] std::string ResumeSetAside(const std::filesystem::path& file, const std::string& why);
