// A session's tape: what records its inputs (session_recorder.h), and what plays a recording instead of the player
// (session_replay.h).
//
// What else changes the machine must be told with TapeNoteReset or TapeNoteState. While a recording plays, both mean
// that the player has taken over.
//
// Threads: that of the machine's frames, or any under the session's lock; TapeKeep and TapeEnd one at a time. Failure: one line through HostReport.
#pragma once

#include "host/session.h"
#include "host/session_recorder.h"
#include "host/session_replay.h"
#include "settings/given_inputs.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SESSION_TAPE {
    std::vector<std::wstring_view> actions; // of the machine, bit by bit of FRAME_INPUTS::actions
    std::unique_ptr<SessionRecorder> recorder; // null: nothing is recorded
    std::unique_ptr<SessionReplay> replay;     // null: nothing is played
    std::filesystem::path file;                // that is recorded to; empty: none
    bool fileFailed = false;                   // it could not be written, which has been told
};

// Before the first frame and before anything is loaded: the machine is at power-on. With neither something to record
// nor to play the session gets no tape. `options` are kMachineOptionBytes.
void TapeBegin(EMU_THREAD& session, CGameFile* const games[2], const void* options,
               const SESSION_RECORDS& records);

void TapeNoteReset(EMU_THREAD& session);
void TapeNoteState(EMU_THREAD& session);

// One frame of the machine of a session with a tape. Gives the machine its inputs until the end of its life.
class TapedFrame {
public:
    // `input`: what the host has; null for none.
    TapedFrame(EMU_THREAD& session, const EMU_INPUT_STATE* input);
    [[nodiscard]] EMU_INPUT_STATE* Input() { return &pointers; }
    void Done(const EMU_VIDEO_FRAME& video, const EMU_AUDIO_FRAME& audio);

private:
    EMU_THREAD& session;
    EMU_INPUT_STATE pointers{};
    bool replayed = false;
    std::optional<GivenInputs> given;
};

// Writes the last minutes to a file of their own and tells its name. The session's own thread, between frames.
void TapeSaveLastMinutes(EMU_THREAD& session);

// Appends what was recorded since the last call to the session's file. With no lock held; the session is pinned, or
// has no thread.
void TapeKeep(EMU_THREAD& session);

// The end of the file, after the session's thread has ended. False if it could not be written whole.
bool TapeEnd(EMU_THREAD& session);

// What a recording says of a game: whose images these are.
[[nodiscard]] std::array<Sha256Digest, 2> TapeImages(CGameFile* const games[2]);
