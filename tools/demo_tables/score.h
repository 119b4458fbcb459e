// A score: a song as text, and the tables that the demos' players read. demos/README.md has its words.
//
// The words are the same for every player. What a player can't do is refused with the line.
#pragma once

#include "demo_tables/source_lines.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

enum class SCORE_ITEM_KIND {
    kNote,    // value: semitones from C-0
    kRest,    //
    kDrums,   // value: bits of DRUM
    kNoise,   // value: what the noise channel is set to
    kSet,     // name and value
    kPhrase,  // name
    kLoop,    // where `again` goes to
    kRepeat,  // value: times
    kRepeated //
};

enum DRUM { kDrumKick = 1, kDrumSnare = 2, kDrumHat = 4, kDrumTom = 8, kDrumCymbal = 16 };

struct SCORE_ITEM {
    SCORE_ITEM_KIND kind = SCORE_ITEM_KIND::kRest;
    int line = 0;
    int value = 0;
    int length = 0;          // steps, of sounds and rests
    bool saysLength = false; // false: the length of the sound before
    std::string name;
};

enum class SCORE_ENDING { kAgain, kEnd };

struct SCORE_TRACK {
    int line = 0;
    std::string name;
    bool isPhrase = false; // played by tracks; has no ending of its own
    SCORE_ENDING ending = SCORE_ENDING::kEnd;
    int endingLine = 0; // 0: none yet
    std::vector<SCORE_ITEM> items;
};

struct SCORE {
    std::filesystem::path file;
    std::vector<SOURCE_LINE> settings; // the lines before the first phrase or track
    std::vector<SCORE_TRACK> tracks;   // and phrases
};

// All functions below set `error`, which names the file and the line.
[[nodiscard]] bool ParseScore(const std::filesystem::path& file, std::string_view text,
                              SCORE& score, std::string& error);

// The settings of a score, each a line: its name, then numbers or words.
class ScoreSettings {
public:
    explicit ScoreSettings(const SCORE& ofScore)
        : score(ofScore) {}

    // Nothing, without an error, if there is no such setting.
    [[nodiscard]] std::string Word(const std::string& name) const;
    // Refuses any name but these, and a name that comes twice.
    [[nodiscard]] bool Check(const std::vector<std::string>& names, std::string& error) const;
    // Refuses any but `count` numbers from `least` to `most`.
    [[nodiscard]] bool Numbers(const std::string& name, size_t count, int least, int most,
                               std::vector<int>& numbers, std::string& error) const;

private:
    [[nodiscard]] const SOURCE_LINE* Find(const std::string& name) const;

    const SCORE& score;
};

// "Fs5" for 66, and so on; the names of the players' headers.
[[nodiscard]] std::string NoteName(int semitones);

// For the players of the NES and the Master System: an array of pairs for each track, and the song.
[[nodiscard]] bool WritePairs(const SCORE& score, bool nes, std::string& text, std::string& error);
// For the player that the Game Gear and the arcade share: a string for each track, in the song.
[[nodiscard]] bool WriteStrings(const SCORE& score, std::string& text, std::string& error);
// For the Mega Drive's: streams of bytes, with the macros of its sound.inc.
[[nodiscard]] bool WriteStreams(const SCORE& score, std::string& text, std::string& error);

// Reads a file and writes it for the player that its line `player` names.
[[nodiscard]] bool ConvertScore(const std::filesystem::path& file, std::string& text,
                                std::string& error);
