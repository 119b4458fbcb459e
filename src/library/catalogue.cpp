#include "library/catalogue.h"

#include "base/files.h"
#include "base/helper_thread.h"
#include "base/ordered_work.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "library/folder_conversion.h"
#include "library/folder_list.h"
#include "library/game_source.h"
#include "library/library_index.h"

#include <algorithm>
#include <cwctype>
#include <optional>
#include <utility>

namespace fs = std::filesystem;

namespace {

int32_t LastSelector() {
    return static_cast<int32_t>(MachineFacts().size()) - 1;
}

} // namespace

void ReadThroughIndex(LibraryIndex& index, CATALOGUE_HOOKS& hooks) {
    hooks.loadBegins = [&index](const fs::path& folder) { index.LoadFolder(folder); };
    hooks.loadGame = [&index](const fs::path& path, CGameFile& game) {
        return index.LoadGame(path, game);
    };
    hooks.loadEnds = [&index] { index.Commit(); };
}

Catalogue::Catalogue(CATALOGUE_HOOKS owner, int32_t start)
    : hooks(std::move(owner))
    , selector(start < 0 || start > LastSelector() ? 0 : start)
    , system(MachineFacts()[static_cast<size_t>(selector)].system) {}

Catalogue::~Catalogue() {
    StopScan();
    WaitForScan();
}

bool Catalogue::SwitchSystem(int32_t wanted, int32_t direction) {
    if (scanState != kScanIdle) {
        return false;
    }
    WaitForScan(); // joins the thread of the last one
    int32_t next = wanted == -1 ? selector + (direction >= 0 ? 1 : -1) : wanted;
    if (next < 0) {
        next = LastSelector();
    } else if (next > LastSelector()) {
        next = 0;
    }
    selector = next;
    const MACHINE_FACTS& machine = MachineFacts()[static_cast<size_t>(selector)];
    system = machine.system;
    if (hooks.storeSelector) {
        hooks.storeSelector(selector);
    }
    if (hooks.deletePanel) {
        hooks.deletePanel();
    }
    if (hooks.clearPanes) {
        hooks.clearPanes();
    }
    if (hooks.makePanel) {
        hooks.makePanel(system);
    }
    folder = HomeFolder() / machine.folder;
    keepSources = hooks.keepSources && hooks.keepSources();
    StartScan();
    return true;
}

void Catalogue::StartScan() {
    std::vector<GameListRow> before;
    {
        const std::scoped_lock guard(rowsLock);
        before = std::exchange(rows, {});
        rowsTaken = 0;
    }
    {
        const std::scoped_lock guard(logLock);
        counters = {};
        logLines.clear();
    }
    stop = false;
    folderError = false;
    scanProgress = 0;
    scanState = kScanScanning;
    worker = std::thread([this, gone = std::move(before)]() mutable {
        HelperBegins();
        gone = {};
        ScanWorker();
    });
}

void Catalogue::StopScan() {
    stop = true;
}

void Catalogue::WaitForScan() {
    if (worker.joinable()) {
        worker.join();
    }
}

bool Catalogue::ScanRuns() const {
    const int32_t state = scanState;
    return state == kScanScanning || state == kScanConverting;
}

SCAN_COUNTERS Catalogue::Counters() const {
    const std::scoped_lock guard(logLock);
    return counters;
}

void Catalogue::TakeLogLines(std::vector<std::wstring>& lines) {
    const std::scoped_lock guard(logLock);
    lines.insert(lines.end(), std::make_move_iterator(logLines.begin()),
                 std::make_move_iterator(logLines.end()));
    logLines.clear();
}

bool Catalogue::TakeFolderError() {
    return folderError.exchange(false);
}

void Catalogue::TakeNewRows(std::vector<GameListRow>& newRows) {
    const std::scoped_lock guard(rowsLock);
    newRows.insert(newRows.end(), rows.begin() + static_cast<std::ptrdiff_t>(rowsTaken),
                   rows.end());
    rowsTaken = rows.size();
}

std::vector<ROW_LINE> Catalogue::ApplyFilters(const ROW_CHOICES& choices) {
    if (ScanRuns()) {
        return {};
    }
    scanState = kScanIdle;
    return ::ApplyFilters(rows, choices);
}

std::vector<const GameListRow*> Catalogue::FilterRows(const ROW_CHOICES& choices) {
    if (ScanRuns()) {
        return {};
    }
    scanState = kScanIdle;
    return ::FilterRows(rows, choices);
}

void Catalogue::Report(ConversionCount count, const std::wstring& line) {
    const std::scoped_lock guard(logLock);
    if (!line.empty()) {
        logLines.push_back(line);
    }
    switch (count) {
    case ConversionCount::kGood: ++counters.good; break;
    case ConversionCount::kAuto: ++counters.automatic; break;
    case ConversionCount::kError: ++counters.errors; break;
    case ConversionCount::kSkipped: ++counters.skipped; break;
    case ConversionCount::kNone: break;
    }
}

// The names so far when the folder cannot be read; the player is told.
void Catalogue::List(std::vector<fs::path>& names) {
    std::string error;
    if (!ListFolder(folder, names, error)) {
        Report(ConversionCount::kNone, WideFromUtf8(error));
        folderError = true;
    }
}

// Whether there is something to convert. Counts what is passed over.
bool Catalogue::HasSources(const std::vector<fs::path>& names) {
    bool found = false;
    for (const fs::path& name : names) {
        const FolderFile kind = KindOfFile(system, name);
        found |= kind == FolderFile::kSource;
        if (kind == FolderFile::kOther) {
            Report(ConversionCount::kSkipped, {});
        }
    }
    return found;
}

void Catalogue::Convert() {
    scanState = kScanConverting;
    CONVERSION conversion;
    conversion.folder = folder;
    conversion.system = system;
    conversion.database = &database;
    conversion.keepSources = keepSources;
    conversion.stop = &stop;
    CONVERSION_SINK sink;
    sink.report = [this](ConversionCount count, const std::wstring& line) { Report(count, line); };
    sink.progress = [this](double done) {
        scanProgress = static_cast<int32_t>(done * kFullProgress);
    };
    if (ConvertFolder(conversion, sink) == ConversionEnd::kNoFolder) {
        folderError = true;
    }
}

bool Catalogue::LoadGame(const fs::path& name, READ_GAME& read) const {
    if (KindOfFile(system, name) != FolderFile::kGame) {
        return false;
    }
    read.path = folder / name;
    const bool loaded = hooks.loadGame ? hooks.loadGame(read.path, read.game)
                                       : LoadGameFile(true, read.path, read.game);
    return loaded && read.game.Header().system == system;
}

void Catalogue::AddRows(const READ_GAME& read) {
    if (hooks.gameFound) {
        hooks.gameFound(read.path, read.game);
    }
    GameListRow row;
    for (uint32_t index = 0; MakeRow(read.path, read.game, index, database, row); ++index) {
        const std::scoped_lock guard(rowsLock);
        rows.push_back(std::move(row));
    }
}

// A disk reads several files at once far faster than one after the other; the rows are made in the
// order of the names.
void Catalogue::ReadGames(const std::vector<fs::path>& names) {
    constexpr size_t kFilesAtOnce = 32;
    constexpr WORK_LIMITS kReaders{.threads = 8, .items = 16};
    if (hooks.loadBegins) {
        hooks.loadBegins(folder);
    }
    const auto load = [&](size_t part) {
        const size_t first = part * kFilesAtOnce;
        std::vector<std::optional<READ_GAME>> games(std::min(kFilesAtOnce, names.size() - first));
        for (size_t i = 0; i < games.size() && !stop; ++i) {
            if (!LoadGame(names[first + i], games[i].emplace())) {
                games[i].reset();
            }
        }
        return games;
    };
    const auto take = [&](size_t part, const std::vector<std::optional<READ_GAME>>& games) {
        for (size_t i = 0; i < games.size() && !stop; ++i) {
            if (games[i]) {
                AddRows(*games[i]);
            }
            const auto done = static_cast<float>(part * kFilesAtOnce + i + 1);
            scanProgress = static_cast<int32_t>(done / static_cast<float>(names.size()) *
                                                static_cast<float>(kFullProgress));
        }
        return !stop;
    };
    const std::vector<uint64_t> parts((names.size() + kFilesAtOnce - 1) / kFilesAtOnce);
    RunInOrder(parts, kReaders, load, take);
    if (hooks.loadEnds) {
        hooks.loadEnds();
    }
}

// A list of any length is then sorted by numbers.
void Catalogue::RankTitles() {
    std::vector<std::pair<std::wstring, GameListRow*>> titles;
    titles.reserve(rows.size());
    for (GameListRow& row : rows) {
        titles.emplace_back(row.title, &row);
        for (wchar_t& character : titles.back().first) {
            character = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(character)));
        }
    }
    std::ranges::sort(titles, {}, &decltype(titles)::value_type::first);
    const std::scoped_lock guard(rowsLock); // TakeNewRows may copy them
    uint32_t rank = 0;
    for (size_t i = 0; i < titles.size(); ++i) {
        rank += i > 0 && titles[i].first != titles[i - 1].first ? 1u : 0u;
        titles[i].second->titleRank = rank;
    }
}

void Catalogue::ScanWorker() {
    database =
        CGameDatabase(hooks.loadDatabase ? hooks.loadDatabase(system) : LoadDatabase(system));
    if (hooks.scanBegins) {
        hooks.scanBegins();
    }
    std::vector<fs::path> names;
    List(names);
    if (HasSources(names) && !stop) {
        Convert();
        List(names);
    }
    int32_t idle = kScanIdle;
    scanState.compare_exchange_strong(idle, kScanScanning);
    ReadGames(names);
    if (stop) {
        Report(ConversionCount::kNone, L"Stopped");
    }
    RankTitles();
    // The last step: the rows are the screen's from here on.
    scanState = scanState == kScanConverting ? kScanConverted : kScanFinished;
}
