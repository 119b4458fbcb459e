// Our own games are known like any others: by the databases that the library is given at start.
#include "front/demo_database.h"
#include "library/convert.h"
#include "library/database_file.h"
#include "library/folder_conversion.h"
#include "library/game_database.h"
#include "library/game_rows.h"
#include "library/game_source.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

// The library knows our games while it lives.
class DemoDatabases : public testing::Test {
protected:
    DemoDatabases() { SetBuiltInDatabase(DemoDatabase); }
    ~DemoDatabases() override { SetBuiltInDatabase(nullptr); }

    TemporaryHome home; // without database files
};

const CGameFile* EntryOf(const std::vector<CGameFile>& database, const DEMO& demo) {
    for (const CGameFile& entry : database) {
        if (entry.FindRom(Sha256(demo.image)) >= 0) {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace

TEST_F(DemoDatabases, EveryDemoIsKnownWithItsTitleAndYear) {
    for (const DEMO& demo : Demos()) {
        const std::vector<CGameFile> database = LoadDatabase(demo.system);
        const CGameFile* const entry = EntryOf(database, demo);
        ASSERT_NE(entry, nullptr) << demo.name;
        NAME_VIEW name;
        ASSERT_TRUE(entry->GetName(0, name));
        EXPECT_EQ(name.title, demo.title);
        EXPECT_EQ(name.raw.year, 126) << "2026, from 1900";
        EXPECT_THAT(name.regions, testing::AnyOf("EUJ", "UJ"));
        EXPECT_NE(name.raw.playTypes & 1, 0) << "each can be played alone";
        EXPECT_EQ(entry->GadaText(), demo.title);
        EXPECT_EQ(entry->Header().system, demo.system);
    }
}

TEST_F(DemoDatabases, AConvertedDemoHasItsRecords) {
    for (const DEMO& demo : Demos()) {
        if (demo.system == kSystemArcade) {
            continue; // sets are assembled, not converted
        }
        CGameFile game;
        bool known = false;
        ASSERT_TRUE(BuildGame(demo.system, "file's name", demo.image, LoadDatabase(demo.system),
                              game, known));
        EXPECT_TRUE(known) << demo.name;
        ASSERT_EQ(game.NameCount(), 1u);
        NAME_VIEW name;
        ASSERT_TRUE(game.GetName(0, name));
        EXPECT_EQ(name.title, demo.title);
        EXPECT_EQ(name.raw.year, 126);
        EXPECT_EQ(name.contentKey, demo.name);
        // The record is the one with which the demo is played.
        game.selectedName = 0;
        MACHINE_RECORD record{};
        ASSERT_TRUE(game.SelectedMachineRecord(record));
        const MACHINE_RECORD expected = DemoMachineRecord(demo.system);
        EXPECT_EQ(std::memcmp(record.bytes + 4, expected.bytes + 4, sizeof record - 4), 0)
            << demo.name;
    }
}

// As in the library's folder on the first start: the file's own name does not matter.
TEST_F(DemoDatabases, ADemoInAFolderBecomesAKnownGameOfItsName) {
    for (const DEMO& demo : Demos()) {
        CGameDatabase database(LoadDatabase(demo.system));
        const std::string folder(demo.name);
        const bool megaDrive = demo.system == kSystemMegaDrive;
        const std::string extension(megaDrive ? ".md"
                                    : demo.system == kSystemArcade
                                        ? ".rom"
                                        : FindMachineFacts(demo.system)->extensions.front());
        home.Write(folder + "/x" + extension, demo.image);
        CONVERSION conversion;
        conversion.folder = home.Path() / folder;
        conversion.system = demo.system;
        conversion.database = &database;
        EXPECT_EQ(ConvertFolder(conversion, {}), ConversionEnd::kDone);
        const auto file = conversion.folder / (std::string(demo.title) + ".game");
        CGameFile game;
        ASSERT_TRUE(LoadGameFile(false, file, game)) << demo.name;
        GameListRow row;
        ASSERT_TRUE(MakeRow(file, game, 0, database, row));
        EXPECT_TRUE(row.known) << demo.name;
        EXPECT_EQ(row.year, 2026);
        EXPECT_TRUE(std::ranges::equal(game.Data(), demo.image));
    }
}

TEST_F(DemoDatabases, LuciolePlaysOnTheFmChipAndGlimmerAgainstAnother) {
    for (const DEMO& demo : Demos()) {
        const std::vector<CGameFile> database = LoadDatabase(demo.system);
        const CGameFile* const entry = EntryOf(database, demo);
        ASSERT_NE(entry, nullptr);
        const uint8_t* record = nullptr;
        uint32_t length = 0;
        NAME_VIEW name;
        ASSERT_TRUE(entry->GetMachineRecord(0, record, length) && entry->GetName(0, name));
        if (std::string_view(demo.name) == "sms-luciole") {
            EXPECT_EQ(record[8], kSmsFeatureFm);
        }
        if (std::string_view(demo.name) == "gg-glimmer") {
            EXPECT_EQ(name.raw.playTypes, 5) << "over the link cable";
            EXPECT_EQ(record[20], 1) << "the usual board";
        }
        if (demo.system == kSystemArcade) {
            EXPECT_EQ(record[8], 3) << "a joystick panel";
        }
    }
}

// The browser knows an arcade game by the hash of its records.
TEST_F(DemoDatabases, EntriesAreWholeAndHaveTheirHash) {
    for (const uint16_t system :
         {kSystemMasterSystem, kSystemGameGear, kSystemMegaDrive, kSystemNes, kSystemArcade}) {
        std::vector<CGameFile> entries = LoadDatabase(system);
        EXPECT_FALSE(entries.empty()) << system;
        std::vector<CGameFile> read;
        std::string fault;
        EXPECT_TRUE(ReadDatabaseStrictly(WriteDatabase(entries), read, fault)) << fault;
        for (CGameFile& entry : entries) {
            const GAME_HEADER before = entry.Header();
            entry.ComputeHeaderHash();
            EXPECT_EQ(
                std::memcmp(before.headerHash, entry.Header().headerHash, sizeof before.headerHash),
                0);
        }
    }
}

TEST_F(DemoDatabases, EntriesOfAFileComeFirstAndTakeTheirImagesOver) {
    std::vector<CGameFile> own = DemoDatabase(kSystemMegaDrive);
    const size_t count = own.size();
    ASSERT_GE(count, 2u);
    // The player's file has another game, and the first of ours under another title.
    std::vector<CGameFile> file(2);
    file[0].Create(true, kSystemMegaDrive);
    file[0].AddNameFromTitle("A game", 0, 1, {});
    file[0].AddRom("v1.0", Sha256Digest{1}, 100);
    NAME_TEXTS texts;
    texts.title = "Renamed";
    own[0].SetNameText(0, texts);
    file[1] = std::move(own[0]);
    home.Write("dat/megadrive.dat", WriteDatabase(file));
    const std::vector<CGameFile> database = LoadDatabase(kSystemMegaDrive);
    ASSERT_EQ(database.size(), 1 + count);
    NAME_VIEW name;
    ASSERT_TRUE(database[0].GetName(0, name));
    EXPECT_EQ(name.title, "A game");
    ASSERT_TRUE(database[1].GetName(0, name));
    EXPECT_EQ(name.title, "Renamed");
    for (size_t i = 2; i < database.size(); ++i) {
        ASSERT_TRUE(database[i].GetName(0, name));
        EXPECT_NE(name.title, "Renamed");
        EXPECT_NE(name.title, "Mistral") << "whose image the file has";
    }
}

TEST_F(DemoDatabases, ADamagedFileLeavesOurGamesKnown) {
    home.Write("dat/nes.dat", "no database");
    EXPECT_EQ(LoadDatabase(kSystemNes).size(), DemoDatabase(kSystemNes).size());
    EXPECT_TRUE(LoadDatabase(3).empty());
}
