// Songs for the Mega Drive's player: each track a stream of bytes, written with the macros of its
// sound.inc. A length holds until the next one, in the score as in the stream.
#include "demo_tables/score.h"

#include <algorithm>

namespace {

constexpr int kRestByte = 0x60;

class Streams {
public:
    Streams(const SCORE& ofScore, std::string withPrefix)
        : score(ofScore)
        , prefix(std::move(withPrefix)) {}

    [[nodiscard]] bool Write(const SCORE_TRACK& track);

    std::string text;
    std::string error;

private:
    [[nodiscard]] bool Refuse(int line, const std::string& message);
    [[nodiscard]] bool WriteItem(const SCORE_ITEM& item);
    [[nodiscard]] bool WriteSound(const SCORE_ITEM& item);
    [[nodiscard]] bool WriteSetting(const SCORE_ITEM& item);
    [[nodiscard]] bool WritePhrase(const SCORE_ITEM& item);
    void Line(const std::string& words) { text += "    " + words + "\n"; }
    void Label(const std::string& name) { text += name + ":\n"; }

    const SCORE& score;
    std::string prefix;
    std::string label;   // the track's
    std::string again;   // where it begins again
    std::string repeats; // the label of what is repeated
    int repeatCount = 0;
};

bool Streams::Refuse(int line, const std::string& message) {
    error = Fault(score.file, line, message);
    return false;
}

bool Streams::Write(const SCORE_TRACK& track) {
    label = prefix + track.name;
    again = label;
    repeatCount = 0;
    Label(label);
    for (const SCORE_ITEM& item : track.items) {
        if (!WriteItem(item)) {
            return false;
        }
    }
    if (track.isPhrase) {
        Line("back");
    } else if (track.ending == SCORE_ENDING::kEnd) {
        Line("finish");
    } else {
        Line("again " + again);
    }
    return true;
}

bool Streams::WriteItem(const SCORE_ITEM& item) {
    switch (item.kind) {
    case SCORE_ITEM_KIND::kSet: return WriteSetting(item);
    case SCORE_ITEM_KIND::kPhrase: return WritePhrase(item);
    case SCORE_ITEM_KIND::kLoop:
        if (again != label) {
            return Refuse(item.line, "a second 'loop' in this track");
        }
        again = label + "Loop";
        Label(again);
        return true;
    case SCORE_ITEM_KIND::kRepeat:
        repeats = label + "Repeat" + std::to_string(++repeatCount);
        Line("times " + std::to_string(item.value));
        Label(repeats);
        return true;
    case SCORE_ITEM_KIND::kRepeated: Line("until " + repeats); return true;
    default: return WriteSound(item);
    }
}

bool Streams::WriteSound(const SCORE_ITEM& item) {
    if (item.saysLength) {
        Line("length " + std::to_string(item.length));
    }
    int value = item.value;
    if (item.kind == SCORE_ITEM_KIND::kRest) {
        value = kRestByte;
    } else if (item.kind == SCORE_ITEM_KIND::kDrums) {
        switch (item.value) {
        case kDrumKick: value = 0; break;
        case kDrumSnare: value = 1; break;
        case kDrumTom: value = 2; break;
        default: return Refuse(item.line, "this player has kick, snare and tom, one at a time");
        }
    }
    Line(".db " + std::to_string(value));
    return true;
}

bool Streams::WriteSetting(const SCORE_ITEM& item) {
    static const char* const kNames[] = {"voice", "level", "pan", "shift", "move", "fine"};
    if (std::none_of(std::begin(kNames), std::end(kNames),
                     [&](const char* name) { return item.name == name; })) {
        return Refuse(item.line,
                      "'" + item.name + "' is not one of voice, level, pan, shift, move, fine");
    }
    Line(item.name + " " + std::to_string(item.value));
    return true;
}

bool Streams::WritePhrase(const SCORE_ITEM& item) {
    const bool known =
        std::any_of(score.tracks.begin(), score.tracks.end(), [&](const SCORE_TRACK& track) {
            return track.isPhrase && track.name == item.name;
        });
    if (!known) {
        return Refuse(item.line, "no phrase '" + item.name + "' in this score");
    }
    Line("phrase " + prefix + item.name);
    return true;
}

} // namespace

bool WriteStreams(const SCORE& score, std::string& text, std::string& error) {
    const ScoreSettings settings(score);
    if (!settings.Check({"player", "song", "step"}, error)) {
        return false;
    }
    const std::string song = settings.Word("song");
    Streams streams(score, song);
    if (!song.empty()) {
        std::vector<int> step;
        if (!settings.Numbers("step", 1, 1, 255, step, error)) {
            return false;
        }
        streams.text = song + "Step = " + std::to_string(step[0]) + "\n";
    }
    for (const SCORE_TRACK& track : score.tracks) {
        if (!streams.Write(track)) {
            error = streams.error;
            return false;
        }
    }
    text = streams.text;
    return true;
}
