// A folder converted with a database that was made of a list: the whole way from published list to played game.
#include "library/database_file.h"
#include "library/database_maker.h"
#include "library/game_folder.h"
#include "library/game_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

LOGIQX_GAME Listed(const std::string& name, const std::vector<NAMED_BYTES>& images) {
    LOGIQX_GAME game;
    game.name = name;
    game.year = 1990;
    for (const NAMED_BYTES& image : images) {
        LOGIQX_ROM& rom = game.roms.emplace_back();
        rom.name = image.name;
        rom.size = image.bytes.size();
        rom.sha256 = Sha256(image.bytes);
    }
    return game;
}

Bytes DatabaseOf(uint16_t system, const std::vector<LOGIQX_GAME>& games) {
    const LOGIQX_FILE list{"a list", games};
    DATABASE_SOURCES sources;
    sources.system = system;
    sources.list = &list;
    DATABASE_REPORT report;
    std::vector<CGameFile> entries = MakeDatabase(sources, report);
    return WriteDatabase(entries);
}

// The rows of a game, as "title regions known".
std::vector<std::string> RowsOf(const GameFolder& folder, const std::string& file) {
    CGameFile game;
    EXPECT_TRUE(LoadGameFile(true, folder.Path() / file, game)) << file;
    std::vector<std::string> rows;
    GameListRow row;
    for (uint32_t i = 0; MakeRow(folder.Path() / file, game, i, folder.database, row); ++i) {
        rows.push_back(Utf8FromWide(row.title) + " " + Utf8FromWide(row.regions) +
                       (row.known ? " known" : " unknown"));
    }
    return rows;
}

const Bytes kEurope = Noise(1, 32768);
const Bytes kRevised = Noise(2, 32768);
const Bytes kJapan = Noise(3, 16384);

Bytes ConsoleDatabase() {
    LOGIQX_GAME japan = Listed("Hotaru (Japan)", {
                                                     {"c.sms", kJapan}
    });
    japan.cloneOf = "Luciole (Europe)";
    LOGIQX_GAME revised = Listed("Luciole (Europe) (Rev A)", {
                                                                 {"b.sms", kRevised}
    });
    revised.cloneOf = "Luciole (Europe)";
    return DatabaseOf(kSystemMasterSystem,
                      {
                          Listed("Luciole (Europe)", {{"a.sms", kEurope}}
                           ), revised, japan
    });
}

} // namespace

TEST(MadeDatabase, AllVersionsOfAGameBecomeOneFileInWhichEachIsPlayed) {
    GameFolder folder(kSystemMasterSystem, ConsoleDatabase());
    folder.Write("x.sms", kJapan);
    folder.Write("y.sms", kEurope);
    folder.Write("z.sms", kRevised);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("Luciole.game"));
    EXPECT_THAT(RowsOf(folder, "Luciole.game"),
                ElementsAre("Luciole E known", "Luciole E known", "Hotaru J known"));
    CGameFile game;
    ASSERT_TRUE(LoadGameFile(false, folder.Path() / "Luciole.game", game));
    EXPECT_TRUE(game.AssembleImage(0) == kEurope);
    EXPECT_TRUE(game.AssembleImage(1) == kRevised);
    EXPECT_TRUE(game.AssembleImage(2) == kJapan);
    // Saves are kept by the piece of the name's index, which is the one that the name plays.
    for (int32_t i = 0; i < 3; ++i) {
        game.selectedName = i;
        const Sha256Digest played = Sha256(*game.AssembleSelectedImage());
        EXPECT_TRUE(std::equal(played.begin(), played.end(), game.SelectedRomHash())) << i;
    }
}

TEST(MadeDatabase, OneVersionAloneKeepsItsOwnName) {
    GameFolder folder(kSystemMasterSystem, ConsoleDatabase());
    folder.Write("whatever.sms", kJapan);
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Counts(), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(RowsOf(folder, "whatever.game"), ElementsAre("Hotaru J known"));
    EXPECT_EQ(folder.ImageOf("whatever.game"), kJapan);
}

TEST(MadeDatabase, AnArcadeSetIsAssembledInItsOrder) {
    const NAMED_BYTES first = {"epr-1.ic7", Noise(4, 1000)};
    const NAMED_BYTES second = {"epr-2.ic5", Noise(5, 500)};
    LOGIQX_GAME set = Listed("skywren", {first, second});
    set.description = "Skywren (Japan)";
    GameFolder folder(kSystemArcade, DatabaseOf(kSystemArcade, {set}));
    folder.Write("anything.zip", ZipOf({second, first}));
    EXPECT_EQ(folder.Convert(), ConversionEnd::kDone);
    EXPECT_THAT(folder.Names(), ElementsAre("skywren.game"));
    EXPECT_THAT(RowsOf(folder, "skywren.game"), ElementsAre("Skywren J known"));
    EXPECT_EQ(folder.ImageOf("skywren.game"), first.bytes + second.bytes);
}
