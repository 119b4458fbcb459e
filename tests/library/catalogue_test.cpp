#include "library/catalogue.h"
#include "library/convert.h"
#include "library/folder_lock.h"
#include "library/game_folder.h"

#include "support/counted_helpers.h"
#include "support/least_images.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A home with the folders of all systems, and a catalogue whose hooks are noted.
class CatalogueTest : public testing::Test {
protected:
    CatalogueTest() {
        for (const char* folder : {"sms", "gamegear", "nes", "arcade", "megadrive"}) {
            fs::create_directory(home.Path() / folder);
        }
    }

    CATALOGUE_HOOKS Hooks() {
        CATALOGUE_HOOKS hooks;
        hooks.storeSelector = [this](int32_t selector) { Note("store", selector); };
        hooks.deletePanel = [this] { notes.emplace_back("delete panel"); };
        hooks.clearPanes = [this] { notes.emplace_back("clear panes"); };
        hooks.makePanel = [this](uint16_t system) { Note("make panel", system); };
        hooks.loadDatabase = [this](uint16_t system) {
            Note("load database", system);
            return ParseDatabase(entries.data(), entries.size());
        };
        hooks.scanBegins = [this] {
            workerNotes.emplace_back("begin");
            if (onBegin) {
                onBegin();
            }
        };
        hooks.gameFound = [this](const fs::path& path, const CGameFile& game) {
            workerNotes.push_back(path.filename().string() + " of " +
                                  std::to_string(game.Header().system));
            if (onGame) {
                onGame();
            }
        };
        return hooks;
    }
    void Note(const std::string& what, int value) {
        notes.push_back(what + " " + std::to_string(value));
    }

    // A game of one image of this system.
    void WriteGame(const std::string& path, uint16_t system, uint64_t seed) {
        CGameFile game;
        MACHINE_RECORD record{};
        const Bytes image = Noise(seed, 500);
        const std::string stem = fs::path(path).stem().string();
        ASSERT_TRUE(BuildKnownGame(system, stem, image, record, game));
        home.Write(path, game.WriteGame(image));
    }

    // The titles of the lines after a scan, joined.
    static std::wstring Titles(Catalogue& catalogue, const ROW_CHOICES& choices = {}) {
        std::wstring titles;
        for (const ROW_LINE& line : catalogue.ApplyFilters(choices)) {
            titles += std::wstring(line.title) + L" ";
        }
        return titles;
    }
    static std::vector<std::string> Log(Catalogue& catalogue) {
        std::vector<std::wstring> lines;
        catalogue.TakeLogLines(lines);
        std::vector<std::string> log;
        for (const std::wstring& line : lines) {
            log.push_back(Utf8FromWide(line));
        }
        return log;
    }

    TemporaryHome home;
    Bytes entries;
    std::vector<std::string> notes;
    std::vector<std::string> workerNotes;
    std::function<void()> onBegin;
    std::function<void()> onGame;
};

// Holds the worker at one of its hooks until the test lets it go on.
class Gate {
public:
    void Pass() {
        std::unique_lock guard(mutex);
        isThere = true;
        changed.notify_all();
        changed.wait(guard, [this] { return isOpen; });
    }
    void WaitForArrival() {
        std::unique_lock guard(mutex);
        changed.wait(guard, [this] { return isThere; });
    }
    void Open() {
        const std::scoped_lock guard(mutex);
        isOpen = true;
        changed.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isThere = false;
    bool isOpen = false;
};

} // namespace

TEST_F(CatalogueTest, TheScanIsAHelper) {
    const CountedHelpers helpers;
    Catalogue catalogue(Hooks(), 0);
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    EXPECT_EQ(CountedHelpers::Begun(), 1);
}

TEST_F(CatalogueTest, SelectorFollowsTheSystemsInTheirOrder) {
    const uint16_t systems[] = {1, 2, 5, 6, 4};
    for (int32_t selector = 0; selector < 5; ++selector) {
        Catalogue catalogue(Hooks(), selector);
        EXPECT_EQ(catalogue.System(), systems[selector]);
    }
    EXPECT_EQ(Catalogue(Hooks(), 5).Selector(), 0);
    EXPECT_EQ(Catalogue(Hooks(), -1).Selector(), 0);
}

TEST_F(CatalogueTest, SwitchWrapsAroundAtBothEnds) {
    struct CASE {
        int32_t start, selector, direction, expected;
    };
    const CASE cases[] = {
        {0, -1, 1,  1},
        {0, -1, 0,  1},
        {4, -1, 1,  0},
        {0, -1, -1, 4},
        {3, -1, -5, 2},
        {2, 4,  -1, 4},
        {2, 5,  0,  0},
        {2, -2, 0,  4},
    };
    for (const CASE& row : cases) {
        Catalogue catalogue(Hooks(), row.start);
        EXPECT_TRUE(catalogue.SwitchSystem(row.selector, row.direction));
        EXPECT_EQ(catalogue.Selector(), row.expected)
            << row.start << ' ' << row.selector << ' ' << row.direction;
    }
}

TEST_F(CatalogueTest, SwitchTellsItsOwnerInOrder) {
    Catalogue catalogue(Hooks());
    ASSERT_TRUE(catalogue.SwitchSystem(4, 0));
    catalogue.WaitForScan();
    EXPECT_THAT(notes, ElementsAre("store 4", "delete panel", "clear panes", "make panel 4",
                                   "load database 4"));
    EXPECT_THAT(workerNotes, ElementsAre("begin"));
}

TEST_F(CatalogueTest, FolderOfGamesGoesStraightToItsEnd) {
    WriteGame("sms/b.game", 1, 1);
    WriteGame("sms/a.game", 1, 2);
    WriteGame("sms/other.game", 2, 3);
    home.Write("sms/broken.game", "no game");
    home.Write("sms/media/c.game", home.Read("sms/a.game"));
    Catalogue catalogue(Hooks());
    std::vector<int32_t> states;
    onBegin = [&] { states.push_back(catalogue.State()); };
    onGame = [&] { states.push_back(catalogue.State()); };
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    EXPECT_THAT(states, ElementsAre(1, 1, 1)) << "never 2";
    EXPECT_EQ(catalogue.State(), 10);
    EXPECT_EQ(catalogue.Progress(), 400);
    EXPECT_THAT(workerNotes, ElementsAre("begin", "a.game of 1", "b.game of 1"));
    EXPECT_THAT(Log(catalogue), IsEmpty());
    EXPECT_EQ(catalogue.Counters().skipped, 0u);
    EXPECT_EQ(Titles(catalogue), L"a b ");
    EXPECT_EQ(catalogue.State(), 0);
}

TEST_F(CatalogueTest, ConversionCountsAndLogs) {
    const Bytes known = Noise(1, kLeastNesImage);
    entries = EntryOf(5, "known",
                      {
                          {"x", known}
    });
    home.Write("nes/k.nes", known);
    home.Write("nes/u.NES", Noise(2, kLeastNesImage));
    home.Write("nes/readme.txt", "text");
    home.Write("nes/e.nes", "");
    WriteGame("nes/old.game", 5, 3);
    Catalogue catalogue(Hooks());
    std::vector<int32_t> states;
    onGame = [&] { states.push_back(catalogue.State()); };
    ASSERT_TRUE(catalogue.SwitchSystem(2, 0));
    catalogue.WaitForScan();
    EXPECT_THAT(states, ElementsAre(2, 2, 2));
    EXPECT_EQ(catalogue.State(), 3);
    EXPECT_THAT(Log(catalogue),
                ElementsAre((home.Path() / "nes/e.nes").string() + ": is empty",
                            "Converted known.game", "Converted unknown game: u.game"));
    EXPECT_THAT(Log(catalogue), IsEmpty()) << "a line is taken once";
    const SCAN_COUNTERS counters = catalogue.Counters();
    EXPECT_EQ(counters.good, 1u);
    EXPECT_EQ(counters.automatic, 1u);
    EXPECT_EQ(counters.errors, 0u);
    EXPECT_EQ(counters.skipped, 2u) << "the text and the empty file";
    EXPECT_EQ(Titles(catalogue), L"Known known old u ");
    ASSERT_EQ(catalogue.Rows().size(), 3u);
    EXPECT_TRUE(catalogue.Rows()[0].known);
    EXPECT_FALSE(catalogue.Rows()[1].known);
}

TEST_F(CatalogueTest, KeepsSourcesIfTheSettingSaysSo) {
    home.Write("nes/u.nes", Noise(2, kLeastNesImage));
    CATALOGUE_HOOKS hooks = Hooks();
    hooks.keepSources = [] { return true; };
    Catalogue catalogue(std::move(hooks));
    ASSERT_TRUE(catalogue.SwitchSystem(2, 0));
    catalogue.WaitForScan();
    EXPECT_EQ(home.Read("nes/sources/u.nes"), Noise(2, kLeastNesImage));
    EXPECT_FALSE(fs::exists(home.Path() / "nes/u.nes"));
}

TEST_F(CatalogueTest, SystemDoesNotChangeUnderARunningScan) {
    WriteGame("sms/a.game", 1, 1);
    Gate gate;
    onGame = [&] { gate.Pass(); };
    Catalogue catalogue(Hooks());
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    gate.WaitForArrival();
    EXPECT_TRUE(catalogue.ScanRuns());
    EXPECT_FALSE(catalogue.SwitchSystem(-1, 1));
    EXPECT_EQ(catalogue.Selector(), 0);
    EXPECT_THAT(catalogue.ApplyFilters({}), IsEmpty());
    EXPECT_EQ(catalogue.State(), 1) << "the filters wait too";
    gate.Open();
    catalogue.WaitForScan();
    EXPECT_FALSE(catalogue.SwitchSystem(-1, 1)) << "the screen has not seen the end yet";
    EXPECT_EQ(Titles(catalogue), L"a ");
    EXPECT_TRUE(catalogue.SwitchSystem(-1, 1));
    EXPECT_EQ(catalogue.Selector(), 1);
    catalogue.WaitForScan();
    EXPECT_EQ(Titles(catalogue), L"") << "the list of the other system is gone";
}

TEST_F(CatalogueTest, FirstRowsCanBeTakenDuringTheScan) {
    WriteGame("sms/a.game", 1, 1);
    WriteGame("sms/b.game", 1, 2);
    Gate gate;
    int games = 0;
    onGame = [&] {
        if (++games == 2) {
            gate.Pass();
        }
    };
    Catalogue catalogue(Hooks());
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    gate.WaitForArrival();
    std::vector<GameListRow> rows;
    catalogue.TakeNewRows(rows);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].title, L"a");
    EXPECT_EQ(catalogue.Progress(), 200) << "one of two files";
    gate.Open();
    catalogue.WaitForScan();
    catalogue.TakeNewRows(rows);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1].title, L"b");
    catalogue.TakeNewRows(rows);
    EXPECT_EQ(rows.size(), 2u);
    EXPECT_EQ(catalogue.Rows().size(), 2u) << "all rows stay with the catalogue";
}

TEST_F(CatalogueTest, StoppedScanEndsWithTheRowsSoFar) {
    WriteGame("sms/a.game", 1, 1);
    WriteGame("sms/b.game", 1, 2);
    Catalogue catalogue(Hooks());
    onGame = [&] { catalogue.StopScan(); };
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    EXPECT_EQ(catalogue.State(), 10);
    EXPECT_EQ(Titles(catalogue), L"a ");
    onGame = nullptr;
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    EXPECT_EQ(Titles(catalogue), L"a b ") << "the next one is whole again";
}

TEST_F(CatalogueTest, FolderThatCannotBeReadIsTold) {
    fs::remove_all(home.Path() / "sms");
    Catalogue catalogue(Hooks());
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    EXPECT_EQ(catalogue.State(), 10);
    EXPECT_TRUE(catalogue.TakeFolderError());
    EXPECT_FALSE(catalogue.TakeFolderError());
    const std::vector<std::string> log = Log(catalogue);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_THAT(log[0], testing::HasSubstr((home.Path() / "sms").string() + ": cannot be read"));
}

TEST_F(CatalogueTest, FolderThatDisappearsWhileScannedIsTold) {
    // More than the scan reads ahead.
    constexpr size_t kGames = 700;
    WriteGame("sms/0.game", 1, 2);
    for (size_t i = 1; i < kGames; ++i) {
        fs::copy_file(home.Path() / "sms/0.game",
                      home.Path() / "sms" / (std::to_string(i) + ".game"));
    }
    home.Write("sms/a.sms", Noise(1, kLeastNesImage));
    Catalogue catalogue(Hooks());
    onGame = [&] { fs::remove_all(home.Path() / "sms"); };
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    const std::wstring titles = Titles(catalogue);
    EXPECT_FALSE(titles.empty());
    EXPECT_LT(catalogue.Rows().size(), kGames) << "the rows of games that are gone are missing";
    EXPECT_FALSE(catalogue.TakeFolderError());
    // Between the list and the conversion.
    home.Write("sms/a.sms", Noise(1, kLeastNesImage));
    onGame = nullptr;
    onBegin = [&] { fs::remove_all(home.Path() / "sms"); };
    ASSERT_TRUE(catalogue.SwitchSystem(0, 0));
    catalogue.WaitForScan();
    EXPECT_TRUE(catalogue.TakeFolderError());
    EXPECT_EQ(Titles(catalogue), L"");
}

TEST_F(CatalogueTest, SecondCatalogueConvertsNothingMeanwhile) {
    home.Write("nes/a.nes", Noise(1, kLeastNesImage));
    WriteGame("nes/old.game", 5, 2);
    FolderLock lock;
    std::string error;
    ASSERT_TRUE(lock.Take(home.Path() / "nes", error)) << error;
    Catalogue catalogue(Hooks());
    ASSERT_TRUE(catalogue.SwitchSystem(2, 0));
    catalogue.WaitForScan();
    EXPECT_EQ(home.Read("nes/a.nes"), Noise(1, kLeastNesImage));
    const std::vector<std::string> log = Log(catalogue);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_THAT(log[0], testing::HasSubstr("is being converted by process"));
    EXPECT_EQ(Titles(catalogue), L"old ") << "what is there already is listed";
}

TEST_F(CatalogueTest, TwoCataloguesConvertEachFileOnce) {
    for (uint64_t i = 0; i < 30; ++i) {
        home.Write("nes/f" + std::to_string(i) + ".nes", Noise(i, kLeastNesImage));
    }
    Catalogue first(Hooks());
    Catalogue second(CATALOGUE_HOOKS{});
    ASSERT_TRUE(first.SwitchSystem(2, 0));
    ASSERT_TRUE(second.SwitchSystem(2, 0));
    first.WaitForScan();
    second.WaitForScan();
    size_t games = 0;
    for (const auto& entry : fs::directory_iterator(home.Path() / "nes")) {
        EXPECT_EQ(entry.path().extension(), ".game");
        ++games;
    }
    EXPECT_EQ(games, 30u);
    EXPECT_EQ(first.Counters().automatic + second.Counters().automatic, 30u);
}
