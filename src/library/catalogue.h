// The library of one system at a time: its database, the scan of its folder, and the rows found.
//
// Owner: the game browser, or a command. SwitchSystem, ApplyFilters and the destructor belong to one
// thread, the screen's. A scan is one background thread at a time, the worker.
// Shared with the worker: scanState and scanProgress are atomic; the log and the four counters have one
// lock, the rows another.
// The rows belong to the worker while ScanRuns(), and to the screen's thread after that. TakeNewRows
// may be called at any time. What takes long with many games is the worker's: it reads the database, and
// frees the rows of the scan before.
#pragma once

#include "base/ranked_mutex.h"
#include "library/folder_conversion.h"
#include "library/game_database.h"
#include "library/game_rows.h"
#include "library/row_filter.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

class LibraryIndex;

// scanState
enum ScanState : int32_t {
    kScanIdle = 0,
    kScanScanning = 1,
    kScanConverting = 2,
    kScanConverted = 3, // a conversion has finished; its log stays up until the player leaves it
    kScanFinished = 10,
};

// The pixel width of a full progress bar.
inline constexpr int32_t kFullProgress = 400;

// The message for a folder that cannot be read.
inline constexpr const wchar_t* kFolderErrorTitle = L"Error";
inline constexpr const wchar_t* kFolderErrorText =
    L"There was some kind of file/folder related error, do the game directories exist?";

// What the catalogue asks of who owns it. Any may be empty.
struct CATALOGUE_HOOKS {
    // By SwitchSystem, in this order: stores "gamebrowser_cursystem"; deletes the old system's option
    // panel; clears the info panes and cover slots, and forgets all rows; makes the new panel.
    std::function<void(int32_t selector)> storeSelector;
    std::function<void()> deletePanel;
    std::function<void()> clearPanes;
    std::function<void(uint16_t system)> makePanel;
    // The setting `library_keepsources`, asked before a scan; empty: false.
    std::function<bool()> keepSources;

    // By the worker.
    // First of all, the entries of the system's database; empty: LoadDatabase (game_source.h).
    std::function<std::vector<CGameFile>(uint16_t system)> loadDatabase;
    // The option panel's slots 1 and 2:
    std::function<void()> scanBegins;
    std::function<void(const std::filesystem::path& path, const CGameFile& game)> gameFound;
    // The records of a `.game`, on several threads at once; empty: LoadGameFile, header only.
    std::function<bool(const std::filesystem::path& path, CGameFile& game)> loadGame;
    // Before the first and after the last loadGame of a scan.
    std::function<void(const std::filesystem::path& folder)> loadBegins;
    std::function<void()> loadEnds;
};

// The hooks that read games through an index, which outlives the catalogue.
void ReadThroughIndex(LibraryIndex& index, CATALOGUE_HOOKS& hooks);

struct SCAN_COUNTERS {
    uint32_t good = 0;
    uint32_t automatic = 0;
    uint32_t errors = 0;
    uint32_t skipped = 0;
};

class Catalogue {
public:
    // `selector` is the setting's value; one out of range is 0.
    explicit Catalogue(CATALOGUE_HOOKS hooks, int32_t selector = 0);
    ~Catalogue(); // stops a scan and waits for it
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    // Picks a system and starts its scan. Selector -1 steps by `direction`: up if it is not negative,
    // else down. Below 0 wraps to 4, above 4 to 0. While scanState is not 0 nothing happens and it
    // returns false: a system does not change under a running scan.
    bool SwitchSystem(int32_t selector, int32_t direction);
    [[nodiscard]] int32_t Selector() const { return selector; }
    [[nodiscard]] uint16_t System() const { return system; }

    // Ends a running scan after the file in hand. It finishes as any scan does, with the rows so far.
    void StopScan();
    // Waits until no worker runs.
    void WaitForScan();
    [[nodiscard]] bool ScanRuns() const;

    [[nodiscard]] int32_t State() const { return scanState.load(); }
    [[nodiscard]] int32_t Progress() const { return scanProgress.load(); } // 0 to kFullProgress
    [[nodiscard]] SCAN_COUNTERS Counters() const;
    // Moves the waiting log lines to the end of `lines`.
    void TakeLogLines(std::vector<std::wstring>& lines);
    // True once after the folder could not be read: the time to show kFolderErrorText.
    [[nodiscard]] bool TakeFolderError();

    // All rows of the last scan; not while ScanRuns().
    [[nodiscard]] std::span<const GameListRow> Rows() const { return rows; }
    // Appends copies of the rows found since the last call; any time.
    void TakeNewRows(std::vector<GameListRow>& newRows);
    // The lines of the rows that pass; sets scanState to 0. While ScanRuns() it returns none and leaves
    // the state as it is.
    [[nodiscard]] std::vector<ROW_LINE> ApplyFilters(const ROW_CHOICES& choices);
    // The same as rows.
    [[nodiscard]] std::vector<const GameListRow*> FilterRows(const ROW_CHOICES& choices);

private:
    using Lock = RankedMutex<LockRank::kLeaf>;

    struct READ_GAME {
        std::filesystem::path path;
        CGameFile game; // records only
    };

    void StartScan();
    void ScanWorker();
    void RankTitles();
    void Report(ConversionCount count, const std::wstring& line);
    void List(std::vector<std::filesystem::path>& names);
    [[nodiscard]] bool HasSources(const std::vector<std::filesystem::path>& names);
    void Convert();
    void ReadGames(const std::vector<std::filesystem::path>& names);
    // False for what is no game of the system.
    [[nodiscard]] bool LoadGame(const std::filesystem::path& name, READ_GAME& read) const;
    void AddRows(const READ_GAME& read);

    CATALOGUE_HOOKS hooks;
    int32_t selector = 0;
    uint16_t system = 0;
    CGameDatabase database; // the worker's
    std::filesystem::path folder;
    bool keepSources = false;

    std::atomic<int32_t> scanState{kScanIdle};
    std::atomic<int32_t> scanProgress{0};
    std::atomic<bool> stop{false};
    std::atomic<bool> folderError{false};

    mutable Lock logLock; // guards the two below
    std::vector<std::wstring> logLines;
    SCAN_COUNTERS counters;

    Lock rowsLock; // guards appending to the rows
    std::vector<GameListRow> rows;
    size_t rowsTaken = 0;

    std::thread worker;
};
