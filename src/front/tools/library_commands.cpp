// Putting games into the library, and making files of games.

#include "base/files.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/tools/commands.h"
#include "front/tools/interruption.h"
#include "front/tools/progress_bar.h"
#include "library/add_games.h"
#include "library/extract.h"
#include "library/free_name.h"
#include "library/game_source.h"
#include "settings/settings.h"

#include <functional>

namespace fs = std::filesystem;

namespace {

bool ExtractFile(const fs::path& path, const EXTRACT_OPTIONS& options, ProgressBar& bar) {
    CGameFile game;
    std::string error;
    if (!OpenGameFile(path, false, game, error)) {
        bar.Complain(error);
        return false;
    }
    const ImageForm form = options.interleaved ? ImageForm::kInterleaved : ImageForm::kPlain;
    std::vector<std::string> faults;
    for (const IMAGE_FILE& file : ImageFiles(game, path.stem(), form, faults)) {
        PLACED_FILE placed;
        if (WriteBesideOthers(options.outFolder, file.stem, file.extension, file.bytes, placed,
                              error)) {
            bar.Print(placed.path.string() + (placed.alreadyThere ? ", already there" : ""));
        } else {
            faults.push_back(error);
        }
    }
    for (const std::string& fault : faults) {
        bar.Complain(path.string() + ": " + fault);
    }
    return faults.empty();
}

// "3 added, 1 already there", and what else there was.
std::string SummaryOf(const ADDED_GAMES& added) {
    std::string text = std::to_string(added.copied) + " added, " +
                       std::to_string(added.alreadyThere) + " already there";
    const std::pair<size_t, const char*> rest[] = {
        {added.waiting, "waiting for other pieces of their boards"  },
        {added.untold,  "of an unknown machine (--machine names it)"},
        {added.failed,  "failed"                                    },
        {added.others,  "other files"                               },
    };
    for (const auto& [count, words] : rest) {
        if (count > 0) {
            text += ", " + std::to_string(count) + " " + words;
        }
    }
    return text;
}

// Does every file in turn, with progress. Ctrl-C ends it before the next one.
int ForEachFile(const std::vector<fs::path>& paths, const Interruption& interruption,
                ProgressBar& bar, const std::function<bool(const fs::path& path)>& file) {
    bool done = true;
    for (size_t i = 0; i < paths.size() && !interruption.Requested(); ++i) {
        bar.Show(i, paths.size(), paths[i].filename().string());
        done = file(paths[i]) && done;
    }
    if (interruption.Requested()) {
        return kExitInterrupted;
    }
    return done ? kExitDone : kExitFailed;
}

} // namespace

int ExtractCommand(const EXTRACT_OPTIONS& options) {
    const Interruption interruption;
    ProgressBar bar;
    return ForEachFile(options.paths, interruption, bar,
                       [&](const fs::path& path) { return ExtractFile(path, options, bar); });
}

int AddCommand(const ADD_OPTIONS& options) {
    const Interruption interruption;
    ProgressBar bar;
    ADD_REQUEST request;
    request.paths = options.paths;
    request.machine =
        options.machine.empty() ? nullptr : FindMachineFacts(std::string_view(options.machine));
    request.keepSources = Settings().GetBool(L"library_keepsources");
    request.stop = &interruption.Flag();
    ADD_SINK sink;
    sink.note = [&](const std::string& line) { bar.Print(line); };
    sink.fault = [&](const std::string& line) { bar.Complain(line); };
    sink.progress = [&](size_t done, size_t total, const std::string& name) {
        bar.Show(done, total, name);
    };
    const ADDED_GAMES added = AddGames(request, sink);
    bar.Print(SummaryOf(added));
    if (interruption.Requested()) {
        return kExitInterrupted;
    }
    return added.failed == 0 && added.untold == 0 ? kExitDone : kExitFailed;
}
