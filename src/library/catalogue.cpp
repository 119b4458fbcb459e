#include "library/catalogue.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "library/folder_conversion.h"
#include "library/folder_list.h"
#include "library/game_source.h"

#include <utility>

namespace fs = std::filesystem;

namespace {

int32_t LastSelector() {
    return static_cast<int32_t>(MachineFacts().size()) - 1;
}

} // namespace

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
    database =
        CGameDatabase(hooks.loadDatabase ? hooks.loadDatabase(system) : LoadDatabase(system));
    folder = HomeFolder() / machine.folder;
    keepSources = hooks.keepSources && hooks.keepSources();
    StartScan();
    return true;
}

void Catalogue::StartScan() {
    {
        const std::scoped_lock guard(rowsLock);
        rows.clear();
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
    worker = std::thread([this] { ScanWorker(); });
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
    std::vector<ROW_LINE> lines = ::ApplyFilters(rows, choices);
    scanState = kScanIdle;
    return lines;
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

void Catalogue::ReadGame(const fs::path& path) {
    CGameFile game;
    const bool loaded =
        hooks.loadGame ? hooks.loadGame(path, game) : LoadGameFile(true, path, game);
    if (!loaded || game.Header().system != system) {
        return;
    }
    if (hooks.gameFound) {
        hooks.gameFound(path, game);
    }
    GameListRow row;
    for (uint32_t index = 0; MakeRow(path, game, index, database, row); ++index) {
        const std::scoped_lock guard(rowsLock);
        rows.push_back(std::move(row));
    }
}

void Catalogue::ReadGames(const std::vector<fs::path>& names) {
    if (hooks.loadBegins) {
        hooks.loadBegins(folder);
    }
    for (size_t i = 0; i < names.size() && !stop; ++i) {
        if (KindOfFile(system, names[i]) == FolderFile::kGame) {
            ReadGame(folder / names[i]);
        }
        scanProgress =
            static_cast<int32_t>(static_cast<float>(i + 1) / static_cast<float>(names.size()) *
                                 static_cast<float>(kFullProgress));
    }
    if (hooks.loadEnds) {
        hooks.loadEnds();
    }
}

void Catalogue::ScanWorker() {
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
    // The last step: the rows are the screen's from here on.
    scanState = scanState == kScanConverting ? kScanConverted : kScanFinished;
}
