// Songs for the player that the Game Gear and the arcade share: each track a string. A step is two
// characters of a voice, or one of the drums.
#include "demo_tables/score.h"

#include <cctype>

namespace {

constexpr size_t kVoices = 3;
constexpr int kFirstNote = 33;
constexpr int kLastNote = 83;  // B-6
constexpr int kMostAttenuation = 15;

void AppendTimes(std::string& text, int times, const char* piece) {
    for (int i = 0; i < times; ++i) {
        text += piece;
    }
}

// A small letter is the sharp.
std::string NoteText(int semitones) {
    std::string name = NoteName(semitones);
    if (name[1] == 's') {
        name.erase(1, 1);
        name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    }
    return name;
}

bool AppendItem(const SCORE_ITEM& item, bool drums, std::string& text) {
    if (item.kind == SCORE_ITEM_KIND::kRest) {
        AppendTimes(text, item.length, drums ? "." : "..");
        return true;
    }
    if (!drums) {
        if (item.kind != SCORE_ITEM_KIND::kNote || item.value < kFirstNote ||
            item.value > kLastNote) {
            return false;
        }
        text += NoteText(item.value);
        AppendTimes(text, item.length - 1, "--");
        return true;
    }
    if (item.kind != SCORE_ITEM_KIND::kDrums) {
        return false;
    }
    switch (item.value) {
    case kDrumKick: text += 'k'; break;
    case kDrumSnare: text += 's'; break;
    case kDrumHat: text += 'h'; break;
    default: return false;
    }
    AppendTimes(text, item.length - 1, ".");
    return true;
}

bool WriteTrack(const SCORE& score, const SCORE_TRACK& track, bool drums, std::string& text,
                std::string& error) {
    if (track.isPhrase || track.ending != SCORE_ENDING::kAgain) {
        error = Fault(score.file, track.isPhrase ? track.line : track.endingLine,
                      "this player has no phrases, and plays every track again");
        return false;
    }
    int line = 0;
    for (const SCORE_ITEM& item : track.items) {
        if (item.line != line) {
            text += line == 0 ? "\n    \"" : "\"\n    \"";
            line = item.line;
        }
        if (!AppendItem(item, drums, text)) {
            error = Fault(score.file, item.line,
                          drums ? "here this player takes kick, snare, hat and rests, one at a time"
                                : "here this player takes notes from A-2 to B-6 and rests");
            return false;
        }
    }
    text += "\"";
    return true;
}

std::string ListOf(const std::vector<int>& numbers) {
    std::string text = "{";
    for (size_t i = 0; i < numbers.size(); ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
    }
    return text + "}";
}

} // namespace

bool WriteStrings(const SCORE& score, std::string& text, std::string& error) {
    const ScoreSettings settings(score);
    std::vector<int> step;
    std::vector<int> attenuation;
    std::vector<int> decay;
    if (!settings.Check({"player", "song", "step", "attenuation", "decay"}, error) ||
        !settings.Numbers("step", 1, 1, 255, step, error) ||
        !settings.Numbers("attenuation", kVoices, 0, kMostAttenuation, attenuation, error) ||
        !settings.Numbers("decay", kVoices, 1, 255, decay, error)) {
        return false;
    }
    const std::string song = settings.Word("song");
    if (song.empty()) {
        error = Fault(score.file, 1, "a line 'song' has its name");
        return false;
    }
    std::string voices;
    std::string drums;
    size_t count = 0;
    for (const SCORE_TRACK& track : score.tracks) {
        const bool isDrums = track.name == "drums";
        if (!isDrums && ++count > kVoices) {
            error = Fault(score.file, track.line, "this player has three voices and drums");
            return false;
        }
        voices += !isDrums && count > 1 ? "," : "";
        if (!WriteTrack(score, track, isDrums, isDrums ? drums : voices, error)) {
            return false;
        }
    }
    for (; count < kVoices; ++count) {
        voices += count == 0 ? "0" : ", 0";
    }
    text = "static const TUNE " + song + " = {\n    {" + voices + "},\n    " +
           (drums.empty() ? "0" : drums) + ",\n    " + ListOf(attenuation) + ", " + ListOf(decay) +
           ", " + std::to_string(step[0]) + "\n};\n";
    return true;
}
