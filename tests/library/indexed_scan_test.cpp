// The catalogue's scan through the index.
#include "base/files.h"
#include "library/catalogue.h"
#include "library/index_fixture.h"

namespace {

class IndexedScan : public Library { // NOLINT(readability-identifier-naming): a test's name
protected:
    IndexedScan() { SetHomeFolder(home.Path()); }
    ~IndexedScan() override { SetHomeFolder(before); }

    // Scans the first system with an index that is opened for it, and returns "title index path" a row.
    std::vector<std::wstring> RowsOfAScan(uint64_t& filesRead) {
        LibraryIndex index;
        std::string error;
        EXPECT_TRUE(index.Open(ResolvePath(kLibraryIndexFile), error)) << error;
        CATALOGUE_HOOKS hooks;
        ReadThroughIndex(index, hooks);
        std::vector<std::wstring> rows;
        Catalogue catalogue(std::move(hooks));
        EXPECT_TRUE(catalogue.SwitchSystem(0, 1));
        catalogue.WaitForScan();
        for (const GameListRow& row : catalogue.Rows()) {
            rows.push_back(row.title + L' ' + std::to_wstring(row.nameIndex) + L' ' +
                           row.path.filename().wstring());
        }
        filesRead = index.FilesRead();
        return rows;
    }

private:
    fs::path before = HomeFolder();
};

} // namespace

TEST_F(IndexedScan, TheSecondScanReadsNoFileAndHasTheSameRows) {
    constexpr int kFiles = 100; // several parts of what is read at once
    std::vector<std::wstring> expected;
    for (int i = 0; i < kFiles; ++i) {
        const std::string number = std::to_string(100 + i);
        Put(number + ".game", "Title " + number, 2);
        for (const wchar_t* name : {L" 0 ", L" 1 "}) {
            const std::wstring wide(number.begin(), number.end());
            expected.push_back(L"Title " + wide + name + wide + L".game");
        }
    }
    uint64_t filesRead = 0;
    EXPECT_EQ(RowsOfAScan(filesRead), expected);
    EXPECT_EQ(filesRead, 100U);
    EXPECT_TRUE(fs::exists(Database()));
    EXPECT_EQ(RowsOfAScan(filesRead), expected);
    EXPECT_EQ(filesRead, 0U);
}

TEST_F(IndexedScan, AScanThatIsStoppedForgetsNothing) {
    constexpr int kFiles = 1000; // more than is read ahead
    for (int i = 0; i < kFiles; ++i) {
        Put(std::to_string(i) + ".game", "Some title");
    }
    uint64_t filesRead = 0;
    EXPECT_EQ(RowsOfAScan(filesRead).size(), 1000U);
    {
        LibraryIndex index;
        std::string error;
        ASSERT_TRUE(index.Open(ResolvePath(kLibraryIndexFile), error)) << error;
        CATALOGUE_HOOKS hooks;
        ReadThroughIndex(index, hooks);
        Catalogue* scanned = nullptr;
        hooks.gameFound = [&](const fs::path&, const CGameFile&) { scanned->StopScan(); };
        Catalogue catalogue(std::move(hooks));
        scanned = &catalogue;
        ASSERT_TRUE(catalogue.SwitchSystem(0, 1));
        catalogue.WaitForScan();
        EXPECT_EQ(catalogue.Rows().size(), 1U);
    }
    EXPECT_EQ(Rows(), 1000);
    EXPECT_EQ(RowsOfAScan(filesRead).size(), 1000U);
    EXPECT_EQ(filesRead, 0U);
}
