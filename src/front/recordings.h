// Recordings of inputs as the player meets them: the game that a recording is of, and what is told of it.
#pragma once

#include "host/recording_file.h"
#include "host/session.h"

#include <memory>
#include <string>

struct OPENED_GAME;

// Reads a recording. Null with one line that says why.
[[nodiscard]] std::shared_ptr<const RECORDING> OpenRecording(const std::string& path,
                                                             std::string& error);

// The recording's game, or its console's own image, for OpenForPlaying: one of our own, a file below the home folder,
// or one of that name beside the recording or in the current folder. Empty if there is none.
[[nodiscard]] std::string FindRecorded(const std::string& game, const std::string& recordingPath);

// Makes the game the recorded one: its variant and options, and the sound settings for this run. False, with one
// line, if the recording is of another game.
[[nodiscard]] bool PrepareReplay(std::shared_ptr<const RECORDING> recording, OPENED_GAME& opened,
                                 std::string& error);

// What a session of the game records and plays.
[[nodiscard]] SESSION_RECORDS RecordsOf(const OPENED_GAME& opened);
