// ResumeGames: the games that were on when the program last ended, and the resume files of those that are on now.
//
// Who plays decides how a game goes on:
//
//   the whole program   asks at its start (continue_window.h); what the player then says "Not Now" to stays, until
//                       another game is played on its set
//   the command `room`, and the window of a single game
//                       ask nothing: a game that is started again goes on
// In the whole program, too, a game that is started again goes on where it was left, on whatever set. Nothing goes on
// by itself while the setting `emu_autosaves` says that no state is loaded at the start.
//
// Thread: main. Failure: a line through PostReport.
#pragma once

#include "host/resume_folder.h"
#include "host/state_snapshot.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

struct OPENED_GAME;

enum class ResumeKind : uint8_t { kProgram, kRoom, kWindow };

// A game that was on.
struct LEFT_GAME {
    std::filesystem::path file;
    uint32_t key = 0;     // of its set
    STATE_SNAPSHOT label; // without the state
};

// What a game that starts has to do with resume files.
struct GAME_RESUME {
    std::filesystem::path file; // where it is kept; empty: nowhere
    std::vector<SNAPSHOT_TEXT> texts;
    std::filesystem::path from; // it goes on from this file; empty: it does not
    bool wanted = false;        // by the player: then it does not start without `from`
};

class ResumeGames {
public:
    explicit ResumeGames(ResumeKind resumeKind);

    // By key. Those that can no longer be read have been set aside.
    [[nodiscard]] const std::vector<LEFT_GAME>& Left() const { return left; }

    // For a game that starts on this key in the place of what was left there.
    [[nodiscard]] GAME_RESUME Start(uint32_t key, const OPENED_GAME& opened);

    // For a game of the list, which leaves it.
    [[nodiscard]] GAME_RESUME GoOn(const LEFT_GAME& game, const OPENED_GAME& opened);
    // Sets its file aside; it leaves the list. Returns a line that names the file and says `why`.
    [[nodiscard]] std::string Refuse(const LEFT_GAME& game, const std::string& why);

    // Deletes the files of the list.
    void Forget();

private:
    [[nodiscard]] std::string NameFor(uint32_t key, const OPENED_GAME& opened) const;
    [[nodiscard]] std::filesystem::path LeftBy(const OPENED_GAME& opened,
                                               const std::filesystem::path& file);
    void ReadLeft();
    void Drop(const std::filesystem::path& file);

    ResumeKind kind;
    ResumeFolder folder;
    std::vector<LEFT_GAME> left;
};
