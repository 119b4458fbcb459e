// Songs for the players of the NES and the Master System: each track an array of pairs, a note and the
// steps that it lasts.
#include "demo_tables/score.h"

namespace {

constexpr size_t kTracks = 4;
constexpr int kFirstNote = 24; // C-2
constexpr int kLastNote = 83;  // B-6

struct DRUM_NAME {
    DRUM drum;
    const char* nes; // null: not supported
    const char* masterSystem;
};

// Names of the players' headers.
constexpr DRUM_NAME kDrumNames[] = {
    {kDrumKick,   "kKick",  "kBassDrum"},
    {kDrumSnare,  "kSnare", "kSnare"   },
    {kDrumHat,    "kHat",   "kHiHat"   },
    {kDrumTom,    nullptr,  "kTom"     },
    {kDrumCymbal, nullptr,  "kCymbal"  },
};

// Empty if the player lacks one of them.
std::string DrumsText(int drums, bool nes) {
    std::string text;
    for (const DRUM_NAME& each : kDrumNames) {
        if ((drums & each.drum) == 0) {
            continue;
        }
        const char* name = nes ? each.nes : each.masterSystem;
        if (name == nullptr) {
            return "";
        }
        text += text.empty() ? "" : " | ";
        text += name;
    }
    return text;
}

// Empty for what the player can't do in a track; the last one holds drums.
std::string ItemText(const SCORE_ITEM& item, bool drums, bool nes) {
    switch (item.kind) {
    case SCORE_ITEM_KIND::kNote:
        return drums || item.value < kFirstNote || item.value > kLastNote ? ""
                                                                          : NoteName(item.value);
    case SCORE_ITEM_KIND::kRest: return "0";
    case SCORE_ITEM_KIND::kDrums: return drums ? DrumsText(item.value, nes) : "";
    default: return "";
    }
}

bool WriteTrack(const SCORE& score, size_t number, const std::string& song, bool nes,
                std::string& text, std::string& error) {
    const SCORE_TRACK& track = score.tracks[number];
    if (track.isPhrase) {
        error = Fault(score.file, track.line, "this player has no phrases");
        return false;
    }
    const bool drums = number == kTracks - 1;
    text += std::string("static const ") + (nes ? "u8 " : "uint8_t ") + song + "_" + track.name +
            "[] = {";
    int line = 0;
    for (const SCORE_ITEM& item : track.items) {
        const std::string name = ItemText(item, drums, nes);
        if (name.empty()) {
            error = Fault(score.file, item.line,
                          drums ? "here this player takes its drums and rests"
                                : "here this player takes notes from C-2 to B-6 and rests");
            return false;
        }
        text += item.line == line ? " " : "\n    ";
        line = item.line;
        text += name + ", " + std::to_string(item.length) + ",";
    }
    if (nes && track.ending == SCORE_ENDING::kEnd) {
        error = Fault(score.file, track.endingLine, "this player plays every track again");
        return false;
    }
    text +=
        track.ending == SCORE_ENDING::kAgain ? "\n    kTrackLoop\n};\n" : "\n    kTrackEnd\n};\n";
    return true;
}

} // namespace

bool WritePairs(const SCORE& score, bool nes, std::string& text, std::string& error) {
    const ScoreSettings settings(score);
    const std::string sounds = nes ? "duties" : "voices";
    std::vector<int> step;
    std::vector<int> sound;
    if (!settings.Check({"player", "song", "step", sounds}, error) ||
        !settings.Numbers("step", 1, 1, 255, step, error) ||
        !settings.Numbers(sounds, nes ? 2 : 3, 0, 255, sound, error)) {
        return false;
    }
    const std::string song = settings.Word("song");
    if (song.empty() || score.tracks.size() != kTracks) {
        error = Fault(score.file, 1, "a song has a name, three tracks of notes and one of drums");
        return false;
    }
    text.clear();
    std::string names;
    for (size_t number = 0; number < kTracks; ++number) {
        if (!WriteTrack(score, number, song, nes, text, error)) {
            return false;
        }
        names += (number == 0 ? "" : ", ") + song + "_" + score.tracks[number].name;
    }
    text += std::string("const ") + (nes ? "SONG " : "Song ") + song + " = {{" + names + "}, " +
            std::to_string(step[0]) + ", {";
    for (size_t i = 0; i < sound.size(); ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(sound[i]);
    }
    text += "}};\n";
    return true;
}
