#include "front/resume_texts.h"

#include "base/files.h"
#include "base/text.h"
#include "front/opened_game.h"
#include "library/game_identity.h"
#include "library/game_source.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <span>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr const char* kSet = "set";
constexpr const char* kTitle = "title";
constexpr const char* kSystem = "system";
constexpr const char* kOptions = "options";
constexpr const char* kEntry = "entry"; // of the game, if its file is an archive

// One of the two games of a machine.
struct GAME_TEXTS {
    const char* file;
    const char* name;
    const char* identity;
};
constexpr GAME_TEXTS kGame = {"game", "name", "identity"};
constexpr GAME_TEXTS kSecond = {"second game", "second name", "second identity"};

// In the program's notation where the game is below the home folder, which may move.
std::string PathText(const std::string& file) {
    const fs::path below = fs::path(file).lexically_relative(HomeFolder());
    std::string text = below.generic_string();
    if (below.empty() || text.starts_with("..") || text.find('\\') != std::string::npos) {
        return file;
    }
    std::ranges::replace(text, '/', '\\');
    return ".\\" + text;
}

std::string FileOf(const std::string& text) {
    return text.starts_with(".\\") ? ResolvePath(text).string() : text;
}

void AddGame(std::vector<SNAPSHOT_TEXT>& texts, const GAME_TEXTS& names, const std::string& file,
             const CGameFile& game) {
    texts.push_back({names.file, PathText(file)});
    texts.push_back({names.name, std::to_string(game.selectedName)});
    texts.push_back({names.identity, GameIdentityText(game)});
}

// False for anything but digits.
template <typename Number>
bool ReadNumber(const std::string& text, Number& number, int base = 10) {
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && at == end && !text.empty();
}

bool ReadOptions(const std::string& text, OptionBlock& options) {
    if (text.size() != 2 * options.size()) {
        return false;
    }
    for (size_t i = 0; i < options.size(); ++i) {
        if (!ReadNumber(text.substr(2 * i, 2), options[i], 16)) {
            return false;
        }
    }
    return true;
}

// Picks the name in a game that has been opened, and compares it with what was played.
bool PickName(const STATE_SNAPSHOT& label, const GAME_TEXTS& names, const std::string& file,
              CGameFile& game, std::string& error) {
    uint32_t name = 0;
    if (!ReadNumber(SnapshotText(label, names.name), name)) {
        error = "does not say which game it is of";
        return false;
    }
    NAME_RECORD variant;
    game.selectedName = static_cast<int32_t>(name);
    if (!game.GetRawName(name, variant) ||
        GameIdentityText(game) != SnapshotText(label, names.identity)) {
        error = file + " is another game than it was";
        return false;
    }
    return true;
}

bool OpenSecond(const STATE_SNAPSHOT& label, OPENED_GAME& opened, std::string& error) {
    opened.secondFile = FileOf(SnapshotText(label, kSecond.file));
    if (opened.secondFile.empty()) {
        return true;
    }
    std::string title;
    std::string note;
    opened.hasBios = OpenGame(opened.secondFile, {}, opened.bios, title, note, error) &&
                     PickName(label, kSecond, opened.secondFile, opened.bios, error);
    return opened.hasBios;
}

} // namespace

std::string GameIdentityText(const CGameFile& game) {
    GAME_IDENTITY identity;
    static_cast<void>(IdentifyGame(game, static_cast<uint32_t>(game.selectedName), identity));
    return LowerAscii(HexText(identity.hash));
}

bool IsResumeOf(const STATE_SNAPSHOT& label, const CGameFile& game) {
    return ResumeSystem(label) == game.Header().system &&
           SnapshotText(label, kGame.identity) == GameIdentityText(game);
}

std::vector<SNAPSHOT_TEXT> ResumeTexts(uint32_t key, const OPENED_GAME& opened) {
    std::vector<SNAPSHOT_TEXT> texts = {
        {kSet,     std::to_string(key)                           },
        {kTitle,   opened.title                                  },
        {kSystem,  std::to_string(opened.game.Header().system)   },
        {kOptions, LowerAscii(HexText(std::span(opened.options)))}
    };
    AddGame(texts, kGame, opened.file, opened.game);
    if (!opened.entry.empty()) {
        texts.push_back({kEntry, opened.entry});
    }
    if (opened.hasBios) {
        AddGame(texts, kSecond, opened.secondFile, opened.bios);
    }
    return texts;
}

uint32_t ResumeKey(const STATE_SNAPSHOT& label) {
    uint32_t key = 0;
    return ReadNumber(SnapshotText(label, kSet), key) ? key : 0;
}

uint16_t ResumeSystem(const STATE_SNAPSHOT& label) {
    uint16_t system = 0;
    return ReadNumber(SnapshotText(label, kSystem), system) ? system : uint16_t{0};
}

std::string ResumeTitle(const STATE_SNAPSHOT& label) {
    return SnapshotText(label, kTitle);
}

bool OpenResumed(const STATE_SNAPSHOT& label, OPENED_GAME& opened, std::string& error) {
    const std::string file = FileOf(SnapshotText(label, kGame.file));
    OPENING opening;
    opening.entry = SnapshotText(label, kEntry);
    if (file.empty() || !OpenForPlaying(file, opening, opened, error)) {
        error = file.empty() ? "does not say which game it is of" : error;
        return false;
    }
    if (opened.game.Header().system != ResumeSystem(label)) {
        error = file + " is a game of another machine than it was";
        return false;
    }
    opened.title = ResumeTitle(label);
    if (!PickName(label, kGame, file, opened.game, error) || !OpenSecond(label, opened, error)) {
        return false;
    }
    if (!ReadOptions(SnapshotText(label, kOptions), opened.options)) {
        error = "does not say how the machine was set up";
        return false;
    }
    return true;
}
