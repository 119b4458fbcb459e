// What a resume file tells of its game beside the state: enough to open the game again and set its machine up as it
// was (docs/FORMATS.md lists the texts).
#pragma once

#include "host/state_snapshot.h"

#include <cstdint>
#include <string>
#include <vector>

class CGameFile;
struct OPENED_GAME;

// Where the player was when the file was written: at this game's set, or without a value elsewhere.
inline constexpr const char* kResumePlace = "place";
inline constexpr const char* kResumeFullScreen = "full screen";
inline constexpr const char* kResumeStanding = "standing";

// Of the name that is selected: 64 hexadecimal digits, lower case.
[[nodiscard]] std::string GameIdentityText(const CGameFile& game);
// Whether the file is of this game.
[[nodiscard]] bool IsResumeOf(const STATE_SNAPSHOT& label, const CGameFile& game);

[[nodiscard]] std::vector<SNAPSHOT_TEXT> ResumeTexts(uint32_t key, const OPENED_GAME& opened);

// The session key. 0 if there is none, as in the window of a single game.
[[nodiscard]] uint32_t ResumeKey(const STATE_SNAPSHOT& label);
// The machine's number; 0 if there is none.
[[nodiscard]] uint16_t ResumeSystem(const STATE_SNAPSHOT& label);

[[nodiscard]] std::string ResumeTitle(const STATE_SNAPSHOT& label);

// Opens the game and its second one, with the options that they had. False, with one line, if one of them is gone or
// another one than then.
[[nodiscard]] bool OpenResumed(const STATE_SNAPSHOT& label, OPENED_GAME& opened,
                               std::string& error);
