#include "front/recordings.h"

#include "base/files.h"
#include "front/notices.h"
#include "front/opened_game.h"
#include "front/run_settings.h"
#include "front/terminal.h"
#include "host/session_replay.h"
#include "host/session_tape.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDemoPrefix = "demo:";
constexpr std::string_view kHomePrefix = ".\\";
constexpr uint64_t kLargestFile = uint64_t{1} << 30;

// A recording is given to others, whom the player's folders do not concern: a file elsewhere is its name alone.
std::string GameText(const std::string& file) {
    if (file.empty() || file.starts_with(kDemoPrefix)) {
        return file;
    }
    std::error_code ignored;
    const fs::path below =
        fs::path(file).lexically_relative(fs::absolute(HomeFolder(), ignored).lexically_normal());
    if (below.empty() || *below.begin() == "..") {
        return fs::path(file).filename().string();
    }
    std::string text = below.generic_string();
    std::replace(text.begin(), text.end(), '/', '\\');
    return std::string(kHomePrefix) + text;
}

CGameFile* const* GamesOf(const OPENED_GAME& opened, CGameFile* (&games)[2]) {
    // Their readers do not change the games, though they take them as such.
    games[0] = const_cast<CGameFile*>(&opened.game);
    games[1] = opened.hasBios ? const_cast<CGameFile*>(&opened.bios) : nullptr;
    return games;
}

// The variant whose image was recorded becomes the selected one.
bool SelectVariant(const RECORDING_ABOUT& about, OPENED_GAME& opened) {
    CGameFile* games[2];
    const auto count = static_cast<int32_t>(opened.game.NameCount());
    const auto before = opened.game.selectedName;
    for (int32_t name = -1; name < count; ++name) {
        opened.game.selectedName = name < 0 ? before : name;
        if (TapeImages(GamesOf(opened, games)) == about.images) {
            return true;
        }
    }
    opened.game.selectedName = before;
    return false;
}

void UseSound(const SOUND_CHOICE& sound) {
    for (const auto& [name, value] : {
             std::pair{"audio_app_samplerate",    std::to_string(sound.rate)           },
             std::pair{"audio_app_quality",       std::to_string(sound.quality)        },
             std::pair{"emu_audiocutoff_enabled", std::string(sound.cutoff ? "1" : "0")},
             std::pair{"emu_audiocutoff_low",     std::to_string(sound.cutoffLow)      },
             std::pair{"emu_audiocutoff_high",    std::to_string(sound.cutoffHigh)     },
    }) {
        static_cast<void>(SetForThisRun(name, value));
    }
}

} // namespace

std::shared_ptr<const RECORDING> OpenRecording(const std::string& path, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadFile(path, bytes, error, kLargestFile)) {
        return nullptr;
    }
    auto recording = std::make_shared<RECORDING>();
    if (!ReadRecording(bytes, *recording, error)) {
        error = path + ": " + error;
        return nullptr;
    }
    return recording;
}

std::string FindRecorded(const std::string& game, const std::string& recordingPath) {
    if (game.starts_with(kDemoPrefix)) {
        return game;
    }
    std::error_code ignored;
    if (game.starts_with(kHomePrefix)) {
        const fs::path file = ResolvePath(game);
        return fs::exists(file, ignored) ? file.string() : std::string();
    }
    const fs::path name = fs::path(game).filename();
    if (name.empty()) {
        return {};
    }
    for (const fs::path& file : {fs::path(recordingPath).parent_path() / name, name}) {
        if (fs::exists(file, ignored)) {
            return file.string();
        }
    }
    return {};
}

bool PrepareReplay(std::shared_ptr<const RECORDING> recording, OPENED_GAME& opened,
                   std::string& error) {
    const RECORDING_ABOUT& about = recording->about;
    if (about.system != opened.game.Header().system || !SelectVariant(about, opened)) {
        error =
            "the recording is of another game, or of it with another patch or console image: \"" +
            about.title + "\"";
        return false;
    }
    if (about.program != RecordingProgram()) {
        const std::string line = "Version " + about.program +
                                 " of the program made this recording; this is version " +
                                 RecordingProgram() + ", which may play it otherwise";
        Complain(line);
        PostNotice(line);
    }
    std::copy(about.options.begin(), about.options.end(), opened.options.begin());
    UseSound(about.sound);
    opened.replay = std::move(recording);
    return true;
}

SESSION_RECORDS RecordsOf(const OPENED_GAME& opened) {
    SESSION_RECORDS records;
    records.game = GameText(opened.file);
    records.console = opened.hasBios ? GameText(opened.secondFile) : std::string();
    records.file = opened.recordTo;
    records.replay = opened.replay;
    return records;
}
