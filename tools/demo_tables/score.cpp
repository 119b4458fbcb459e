#include "demo_tables/score.h"

#include "base/files.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr int kMostSteps = 64;
constexpr int kMostTimes = 255;
constexpr int kSemitones = 12; // of an octave

// 0 if the word names no drums.
int DrumsOf(std::string_view word) {
    int drums = 0;
    while (true) {
        const size_t end = word.find('+');
        const std::string_view name = word.substr(0, end);
        if (name == "kick") {
            drums |= kDrumKick;
        } else if (name == "snare") {
            drums |= kDrumSnare;
        } else if (name == "hat") {
            drums |= kDrumHat;
        } else if (name == "tom") {
            drums |= kDrumTom;
        } else if (name == "cymbal") {
            drums |= kDrumCymbal;
        } else {
            return 0;
        }
        if (end == std::string_view::npos) {
            return drums;
        }
        word.remove_prefix(end + 1);
    }
}

// "C-4" is 48, "C#4" and "Db4" are 49.
std::optional<int> SemitonesOf(std::string_view word) {
    constexpr int kWhite[] = {9, 11, 0, 2, 4, 5, 7}; // from A
    if (word.size() != 3 || word[0] < 'A' || word[0] > 'G' || word[2] < '0' || word[2] > '7') {
        return std::nullopt;
    }
    int semitone = kWhite[word[0] - 'A'];
    if (word[1] == '#' && word[0] != 'B' && word[0] != 'E') {
        ++semitone;
    } else if (word[1] == 'b' && word[0] != 'C' && word[0] != 'F') {
        --semitone;
    } else if (word[1] != '-') {
        return std::nullopt;
    }
    return (word[2] - '0') * kSemitones + semitone;
}

bool IsName(std::string_view word) {
    return !word.empty() && std::isalpha(static_cast<unsigned char>(word[0])) != 0 &&
           std::all_of(word.begin(), word.end(),
                       [](unsigned char c) { return std::isalnum(c) != 0; });
}

class Parser {
public:
    explicit Parser(SCORE& into)
        : score(into) {}

    [[nodiscard]] bool Read(const std::vector<SOURCE_LINE>& lines);

    std::string error;

private:
    [[nodiscard]] bool Refuse(const std::string& message);
    [[nodiscard]] bool ReadLine(const SOURCE_LINE& each);
    [[nodiscard]] bool BeginTrack(const SOURCE_LINE& each);
    [[nodiscard]] bool FinishTrack();
    [[nodiscard]] bool ReadWord(const std::string& word);
    [[nodiscard]] bool ReadSetting(const std::string& name, const std::string& value);
    [[nodiscard]] bool ReadSound(std::string_view word);
    void Add(SCORE_ITEM_KIND kind, int value, std::string name = "");

    SCORE& score;
    int line = 0;
    int length = 0; // of the sound before; 0 if unknown
    bool repeating = false;
};

bool Parser::Refuse(const std::string& message) {
    error = Fault(score.file, line, message);
    return false;
}

void Parser::Add(SCORE_ITEM_KIND kind, int value, std::string name) {
    score.tracks.back().items.push_back({kind, line, value, 0, false, std::move(name)});
}

bool Parser::Read(const std::vector<SOURCE_LINE>& lines) {
    for (const SOURCE_LINE& each : lines) {
        line = each.number;
        if (!ReadLine(each)) {
            return false;
        }
    }
    if (score.tracks.empty()) {
        return Refuse("the score ends without a track");
    }
    return FinishTrack();
}

bool Parser::ReadLine(const SOURCE_LINE& each) {
    if (each.words[0] == "track" || each.words[0] == "phrase") {
        return BeginTrack(each);
    }
    if (score.tracks.empty()) {
        score.settings.push_back(each);
        return true;
    }
    return std::all_of(each.words.begin(), each.words.end(),
                       [&](const std::string& word) { return ReadWord(word); });
}

bool Parser::FinishTrack() {
    if (score.tracks.empty()) {
        return true;
    }
    const SCORE_TRACK& track = score.tracks.back();
    if (!track.isPhrase && track.endingLine == 0) {
        return Refuse("track '" + track.name + "' needs 'again' or 'end' as its last word");
    }
    return !repeating || Refuse("')' is missing in '" + track.name + "'");
}

bool Parser::BeginTrack(const SOURCE_LINE& each) {
    if (!FinishTrack()) {
        return false;
    }
    if (each.words.size() != 2 || !IsName(each.words[1])) {
        return Refuse("a " + each.words[0] + " has one name, of letters and digits");
    }
    for (const SCORE_TRACK& track : score.tracks) {
        if (track.name == each.words[1]) {
            return Refuse("a second '" + track.name + "'");
        }
    }
    SCORE_TRACK track;
    track.line = line;
    track.name = each.words[1];
    track.isPhrase = each.words[0] == "phrase";
    score.tracks.push_back(track);
    length = 0;
    return true;
}

bool Parser::ReadWord(const std::string& word) {
    SCORE_TRACK& track = score.tracks.back();
    if (track.endingLine != 0) {
        return Refuse("'" + word + "' after the end of '" + track.name + "'");
    }
    if (word == "again" || word == "end") {
        if (track.isPhrase) {
            return Refuse("a phrase ends by itself, without '" + word + "'");
        }
        track.ending = word == "again" ? SCORE_ENDING::kAgain : SCORE_ENDING::kEnd;
        track.endingLine = line;
        return true;
    }
    if (word == "loop") {
        Add(SCORE_ITEM_KIND::kLoop, 0);
        return true;
    }
    if (word == ")") {
        if (!repeating) {
            return Refuse("')' without a '('");
        }
        repeating = false;
        Add(SCORE_ITEM_KIND::kRepeated, 0);
        return true;
    }
    if (word.ends_with("x(")) {
        const auto times = NumberOf(word.substr(0, word.size() - 2), 2, kMostTimes);
        if (!times || repeating) {
            return Refuse("'" + word + "': 2 to 255 times, and not within one another");
        }
        repeating = true;
        Add(SCORE_ITEM_KIND::kRepeat, *times);
        return true;
    }
    if (word.starts_with('@')) {
        Add(SCORE_ITEM_KIND::kPhrase, 0, word.substr(1));
        length = 0; // unknown after a phrase
        return true;
    }
    const size_t equals = word.find('=');
    return equals != std::string::npos
               ? ReadSetting(word.substr(0, equals), word.substr(equals + 1))
               : ReadSound(word);
}

bool Parser::ReadSetting(const std::string& name, const std::string& value) {
    const auto number = NumberOf(value, -128, 255);
    if (!number) {
        return Refuse("'" + value + "' is no number from -128 to 255");
    }
    Add(SCORE_ITEM_KIND::kSet, *number, name);
    return true;
}

bool Parser::ReadSound(std::string_view word) {
    const std::string_view name = word.substr(0, word.find(':'));
    const auto note = SemitonesOf(name);
    if (note) {
        Add(SCORE_ITEM_KIND::kNote, *note);
    } else if (name == "R") {
        Add(SCORE_ITEM_KIND::kRest, 0);
    } else if (const int drums = DrumsOf(name); drums != 0) {
        Add(SCORE_ITEM_KIND::kDrums, drums);
    } else if (name.starts_with("noise") && NumberOf(name.substr(5), 0, 7)) {
        Add(SCORE_ITEM_KIND::kNoise, *NumberOf(name.substr(5), 0, 7));
    } else {
        return Refuse("'" + std::string(word) + "' is no note and no word of a score");
    }
    SCORE_ITEM& item = score.tracks.back().items.back();
    if (name.size() != word.size()) {
        const auto steps = NumberOf(word.substr(name.size() + 1), 1, kMostSteps);
        if (!steps) {
            return Refuse("'" + std::string(word) + "': a length is 1 to 64 steps");
        }
        length = *steps;
        item.saysLength = true;
    }
    if (length == 0) {
        return Refuse("'" + std::string(word) + "' needs a length, as in " + std::string(name) +
                      ":2; there is none before it to go by");
    }
    item.length = length;
    return true;
}

} // namespace

bool ParseScore(const std::filesystem::path& file, std::string_view text, SCORE& score,
                std::string& error) {
    score = {};
    score.file = file;
    Parser parser(score);
    if (!parser.Read(SplitLines(text))) {
        error = parser.error;
        return false;
    }
    return true;
}

const SOURCE_LINE* ScoreSettings::Find(const std::string& name) const {
    const auto found = std::find_if(score.settings.begin(), score.settings.end(),
                                    [&](const SOURCE_LINE& line) { return line.words[0] == name; });
    return found == score.settings.end() ? nullptr : &*found;
}

std::string ScoreSettings::Word(const std::string& name) const {
    const SOURCE_LINE* line = Find(name);
    return line != nullptr && line->words.size() == 2 ? line->words[1] : "";
}

bool ScoreSettings::Check(const std::vector<std::string>& names, std::string& error) const {
    for (const SOURCE_LINE& line : score.settings) {
        const std::string& name = line.words[0];
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            error = Fault(score.file, line.number, "'" + name + "' is unknown to this player");
            return false;
        }
        if (Find(name) != &line) {
            error = Fault(score.file, line.number, "a second '" + name + "'");
            return false;
        }
    }
    return true;
}

bool ScoreSettings::Numbers(const std::string& name, size_t count, int least, int most,
                            std::vector<int>& numbers, std::string& error) const {
    const SOURCE_LINE* line = Find(name);
    numbers.clear();
    for (size_t i = 1; line != nullptr && i < line->words.size(); ++i) {
        const auto number = NumberOf(line->words[i], least, most);
        if (!number) {
            break;
        }
        numbers.push_back(*number);
    }
    if (line != nullptr && numbers.size() == count && line->words.size() == count + 1) {
        return true;
    }
    error = Fault(score.file, line != nullptr ? line->number : 1,
                  "'" + name + "' takes " +
                      (count == 1 ? "a number" : std::to_string(count) + " numbers") + " from " +
                      std::to_string(least) + " to " + std::to_string(most));
    return false;
}

std::string NoteName(int semitones) {
    static const char* const kNames[kSemitones] = {"C",  "Cs", "D",  "Ds", "E",  "F",
                                                   "Fs", "G",  "Gs", "A",  "As", "B"};
    return kNames[semitones % kSemitones] + std::to_string(semitones / kSemitones);
}

bool ConvertScore(const std::filesystem::path& file, std::string& text, std::string& error) {
    std::vector<uint8_t> bytes;
    SCORE score;
    if (!ReadFile(file, bytes, error) ||
        !ParseScore(file, std::string(bytes.begin(), bytes.end()), score, error)) {
        return false;
    }
    const std::string player = ScoreSettings(score).Word("player");
    if (player == "nes" || player == "master-system") {
        return WritePairs(score, player == "nes", text, error);
    }
    if (player == "tune") {
        return WriteStrings(score, text, error);
    }
    if (player == "mega-drive") {
        return WriteStreams(score, text, error);
    }
    error = Fault(file, 1, "a line 'player' names one of nes, master-system, tune, mega-drive");
    return false;
}
