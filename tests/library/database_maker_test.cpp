#include "base/text.h"
#include "formats/checksums.h"
#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/convert.h"
#include "library/database_file.h"
#include "library/database_maker.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Sha256Digest HashOf(const Bytes& bytes) {
    return Sha256(bytes);
}

LOGIQX_ROM Rom(const std::string& name, const Bytes& image) {
    LOGIQX_ROM rom;
    rom.name = name;
    rom.size = image.size();
    rom.sha256 = HashOf(image);
    return rom;
}

// As lists are that have no SHA-256.
LOGIQX_ROM OldRom(const std::string& name, const Bytes& image) {
    LOGIQX_ROM rom;
    rom.name = name;
    rom.size = image.size();
    rom.crc = Crc32(image);
    rom.sha1 = Sha1(image);
    return rom;
}

LOGIQX_GAME Game(const std::string& name, const LOGIQX_ROM& rom, const std::string& cloneOf = "") {
    LOGIQX_GAME game;
    game.name = name;
    game.cloneOf = cloneOf;
    game.roms = {rom};
    return game;
}

struct MADE {
    std::vector<CGameFile> entries;
    DATABASE_REPORT report;
    std::vector<std::string> complaints;
};

MADE Make(uint16_t system, const std::vector<LOGIQX_GAME>& games,
          const std::filesystem::path& roms = {}, const std::vector<DATABASE_RULE>& rules = {}) {
    MADE made;
    const LOGIQX_FILE list{"a list", games};
    DATABASE_SOURCES sources;
    sources.system = system;
    sources.list = &list;
    sources.rules = rules;
    sources.roms = roms;
    sources.search.complain = [&](const std::string& line) { made.complaints.push_back(line); };
    made.entries = MakeDatabase(sources, made.report);
    // Whatever is made is a whole database.
    const Bytes written = WriteDatabase(made.entries);
    std::vector<CGameFile> again;
    std::string fault;
    EXPECT_TRUE(ReadDatabaseStrictly(written, again, fault)) << fault;
    EXPECT_EQ(WriteDatabase(again), written);
    return made;
}

// "Title regions year [pieces]" of each name of an entry.
std::vector<std::string> NamesOf(const CGameFile& entry) {
    std::vector<std::string> names;
    for (uint32_t i = 0; i < entry.NameCount(); ++i) {
        NAME_VIEW name;
        EXPECT_TRUE(entry.GetName(i, name));
        std::string text = name.title + " " + name.regions + " " +
                           std::to_string(name.raw.year == 0 ? 0 : 1900 + name.raw.year) + " [";
        for (uint32_t slot = 0; entry.NameRomAt(i, slot) >= 0; ++slot) {
            text += std::to_string(entry.NameRomAt(i, slot));
        }
        names.push_back(text + "]");
    }
    return names;
}

std::vector<std::string> PiecesOf(const CGameFile& entry) {
    std::vector<std::string> pieces;
    for (uint32_t i = 0; i < entry.RomCount(); ++i) {
        std::string name;
        ROM_RECORD rom{};
        EXPECT_TRUE(entry.GetRom(i, name, rom));
        pieces.push_back(name + " " + std::to_string(rom.size));
    }
    return pieces;
}

NAME_VIEW NameOf(const CGameFile& entry, uint32_t index = 0) {
    NAME_VIEW name;
    EXPECT_TRUE(entry.GetName(index, name));
    return name;
}

Bytes Image(uint8_t seed, size_t size = 1024) {
    return CRandom(seed).Fill(size);
}

} // namespace

TEST(DatabaseMaker, ClonesAreVersionsOfTheirParent) {
    LOGIQX_GAME parent = Game("Luciole (Europe)", Rom("a.sms", Image(1)));
    parent.year = 1990;
    const MADE made =
        Make(1, {Game("Hotaru (Japan)", Rom("b.sms", Image(2)), "Luciole (Europe)"), parent,
                 Game("Luciole (Europe) (Rev A)", Rom("c.sms", Image(3, 2048)), "Luciole (Europe)"),
                 // Of the same title, but the list says what belongs together.
                 Game("Luciole (USA)", Rom("d.sms", Image(4)))});
    ASSERT_EQ(made.entries.size(), 2u);
    const CGameFile& entry = made.entries[0];
    EXPECT_THAT(NamesOf(entry),
                ElementsAre("Luciole E 1990 [0]", "Hotaru J 0 [1]", "Luciole E 0 [2]"));
    EXPECT_THAT(PiecesOf(entry), ElementsAre("v1.0 1024", "v1.0 1024", "Rev A 2048"));
    EXPECT_EQ(entry.FindRom(HashOf(Image(1))), 0);
    EXPECT_EQ(entry.FindRom(HashOf(Image(2))), 1);
    EXPECT_EQ(entry.FindRom(HashOf(Image(3, 2048))), 2);
    EXPECT_EQ(entry.GadaText(), "Luciole");
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(NameOf(entry, i).contentKey, "Luciole");
        EXPECT_EQ(NameOf(entry, i).raw.playTypes, 1);
        EXPECT_EQ(NameOf(entry, i).raw.reserved4, 0) << "1 is for unknown games";
    }
    EXPECT_EQ(NameOf(entry, 1).altTitle, "Hotaru (Japan)");
    EXPECT_THAT(NamesOf(made.entries[1]), ElementsAre("Luciole U 0 [0]"));
}

TEST(DatabaseMaker, ClonesOfClonesAndOfAMissingParentBelongTogether) {
    const MADE made = Make(
        5, {Game("A", Rom("a", Image(1, 1040))), Game("B", Rom("b", Image(2, 1040)), "A"),
            Game("C", Rom("c", Image(3, 1040)), "B"), Game("E", Rom("e", Image(4, 1040)), "D"),
            Game("F", Rom("f", Image(5, 1040)), "D"),
            // Each names the other.
            Game("G", Rom("g", Image(6, 1040)), "H"), Game("H", Rom("h", Image(7, 1040)), "G")});
    ASSERT_EQ(made.entries.size(), 3u);
    EXPECT_EQ(made.entries[0].NameCount(), 3u);
    EXPECT_EQ(made.entries[1].NameCount(), 2u);
    EXPECT_EQ(made.entries[2].NameCount(), 2u);
}

TEST(DatabaseMaker, WithoutParentsEqualTitlesAreOneGame) {
    const MADE made = Make(4, {Game("Mistral (Europe)", Rom("a.md", Image(1))),
                               Game("Other (Europe)", Rom("b.md", Image(2))),
                               Game("MISTRAL (Brazil) (v1.1)", Rom("c.md", Image(3)))});
    ASSERT_EQ(made.entries.size(), 2u);
    EXPECT_THAT(NamesOf(made.entries[0]), ElementsAre("Mistral E 0 [0]", "MISTRAL B 0 [1]"));
    EXPECT_THAT(PiecesOf(made.entries[0]), ElementsAre("v1.0 1024", "v1.1 1024"));
    EXPECT_THAT(NamesOf(made.entries[1]), ElementsAre("Other E 0 [0]"));
}

TEST(DatabaseMaker, AnImageIsOnePieceHoweverManyNamesItHas) {
    const MADE made = Make(4, {Game("Mistral (Europe)", Rom("a.md", Image(1))),
                               Game("Mistral (Brazil)", Rom("b.md", Image(1))),
                               Game("Vent (France)", Rom("c.md", Image(1))),
                               Game("Mistral (USA)", Rom("d.md", Image(2)))});
    ASSERT_EQ(made.entries.size(), 1u) << "games that share an image are one game";
    EXPECT_THAT(PiecesOf(made.entries[0]), ElementsAre("v1.0 1024", "v1.0 1024"));
    EXPECT_THAT(NamesOf(made.entries[0]),
                ElementsAre("Mistral EB 0 [0]", "Mistral U 0 [1]", "Vent E 0 [0]"));
}

TEST(DatabaseMaker, ReleasesOfOtherTitlesAreNames) {
    LOGIQX_GAME game = Game("Luciole (Europe)", Rom("a.sms", Image(1)));
    game.releases = {
        {"Luciole (Europe)", "EUR"},
        {"Firefly",          "USA"},
        {"Firefly",          "BRA"},
        {"Hotaru (Japan)",   ""   }
    };
    LOGIQX_GAME plain = Game("Grillon", Rom("b.sms", Image(2)));
    plain.releases = {
        {"Grillon", "KOR"},
        {"Grillon", "EUR"}
    };
    const MADE made = Make(1, {game, plain});
    EXPECT_THAT(NamesOf(made.entries.at(0)),
                ElementsAre("Luciole E 0 [0]", "Firefly UB 0 [0]", "Hotaru J 0 [0]"));
    EXPECT_THAT(NamesOf(made.entries.at(1)), ElementsAre("Grillon EK 0 [0]"));
}

TEST(DatabaseMaker, LongTitlesAreCutAtCharacters) {
    std::string title;
    while (title.size() < 150) {
        title += "\xE6\x97\xA5"; // three bytes
    }
    const MADE made = Make(5, {Game(title + " (Japan)", Rom("a.nes", Image(1, 1040)))});
    const NAME_VIEW name = NameOf(made.entries.at(0));
    EXPECT_EQ(name.title, title.substr(0, 93));
    EXPECT_EQ(name.altTitle, title.substr(0, 93));
    EXPECT_EQ(name.contentKey, title.substr(0, 42));
    EXPECT_EQ(made.entries[0].GadaText(), title.substr(0, 63));
}

TEST(DatabaseMaker, KeysAreNamesOfFiles) {
    const MADE made = Make(5, {Game("Who? (World)", Rom("a.nes", Image(1, 1040))),
                               Game("A/B: C.", Rom("b.nes", Image(2, 1040)))});
    EXPECT_EQ(NameOf(made.entries.at(0)).title, "Who?");
    EXPECT_EQ(NameOf(made.entries.at(0)).contentKey, "Who_");
    EXPECT_EQ(made.entries.at(0).GadaText(), "Who_");
    EXPECT_EQ(made.entries.at(1).GadaText(), "A_B_ C_");
}

TEST(DatabaseMaker, MachineRecordsFollowRegionsAndRules) {
    LOGIQX_GAME bios = Game("[BIOS] Console (Japan)", Rom("b.sms", Image(4)));
    DATABASE_RULE rule;
    rule.pattern = "Luciole*";
    rule.fm = true;
    rule.playTypes = 5;
    DATABASE_RULE dead;
    dead.pattern = "Nobody*";
    const MADE made = Make(1,
                           {Game("Luciole (Europe)", Rom("a.sms", Image(1))),
                            Game("Hotaru (Japan)", Rom("c.sms", Image(2))),
                            Game("Firefly (USA, Brazil)", Rom("d.sms", Image(3))), bios,
                            Game("Anywhere", Rom("e.sms", Image(5)))},
                           {}, {rule, dead});
    const auto record = [&](size_t index) {
        SMS_RECORD sms{};
        const uint8_t* bytes = nullptr;
        uint32_t length = 0;
        EXPECT_TRUE(made.entries.at(index).GetMachineRecord(0, bytes, length));
        EXPECT_EQ(length, sizeof sms);
        std::memcpy(&sms, bytes, sizeof sms);
        return sms;
    };
    // PAL consoles are 1 and 2, NTSC ones 4 and 8, the Japanese ones 16 and 32.
    EXPECT_EQ(record(0).consoles, 3);
    EXPECT_EQ(record(1).consoles, 48);
    EXPECT_EQ(record(2).consoles, 12);
    EXPECT_EQ(record(4).consoles, 63);
    EXPECT_EQ(record(0).features, 2);
    EXPECT_EQ(record(1).features, 0);
    EXPECT_EQ(record(3).kind, 3);
    EXPECT_EQ(record(0).kind, 0);
    EXPECT_EQ(NameOf(made.entries[0]).raw.playTypes, 5);
    EXPECT_THAT(made.report.deadRules, ElementsAre("Nobody*"));
}

TEST(DatabaseMaker, WhatCannotBeKnownIsLeftOutAndCounted) {
    LOGIQX_GAME several = Game("Several", Rom("1.sms", Image(1)));
    several.roms.push_back(Rom("2.sms", Image(2)));
    LOGIQX_GAME notes = Game("With notes", Rom("3.sms", Image(3)));
    notes.roms.push_back(Rom("readme.txt", Image(4)));
    LOGIQX_ROM missing;
    missing.name = "x.sms";
    missing.noDump = true;
    LOGIQX_ROM huge = Rom("y.sms", Image(5));
    huge.size = uint64_t{1} << 40;
    LOGIQX_GAME empty;
    empty.name = "Empty";
    const MADE made = Make(1, {several, notes, Game("Not dumped", missing),
                               Game("Unknown", OldRom("z.sms", Image(6))), Game("Huge", huge),
                               Game("No bytes", Rom("n.sms", {})), empty});
    ASSERT_EQ(made.entries.size(), 1u);
    EXPECT_THAT(NamesOf(made.entries[0]), ElementsAre("With notes  0 [0]"));
    EXPECT_EQ(made.report.severalImages, 1u);
    EXPECT_EQ(made.report.notDumped, 1u);
    EXPECT_EQ(made.report.unknownImage, 3u) << "Unknown, No bytes, Empty";
    EXPECT_EQ(made.report.tooLarge, 1u);
}

TEST(DatabaseMaker, AKnownImageIsKnownThoughItsParentIsNot) {
    const MADE made = Make(1, {Game("Parent (Europe)", OldRom("a.sms", Image(1))),
                               Game("Child (USA)", Rom("b.sms", Image(2)), "Parent (Europe)")});
    ASSERT_EQ(made.entries.size(), 1u);
    EXPECT_THAT(NamesOf(made.entries[0]), ElementsAre("Child U 0 [0]"));
    EXPECT_EQ(NameOf(made.entries[0]).contentKey, "Parent");
    EXPECT_EQ(made.report.unknownImage, 1u);
}

TEST(DatabaseMaker, ImagesAreFoundInFoldersAndZips) {
    const TemporaryFolder folder;
    folder.Write("plain.sms", Image(1));
    folder.Write("deep/er/whatever.bin", Image(2));
    std::string error;
    ZipWriter zip;
    ASSERT_TRUE(zip.Add("inside/x.sms", Image(3), error));
    ASSERT_TRUE(zip.Add("other.txt", Image(9), error));
    folder.Write("pack.ZIP", zip.Finish(error));
    folder.Write("broken.zip", "no archive");
    folder.Write("decoy.sms", Image(8)); // of the same size
    LOGIQX_ROM onlyCrc = OldRom("c.sms", Image(3));
    onlyCrc.sha1.reset();
    LOGIQX_ROM wrongSha = OldRom("d.sms", Image(8));
    wrongSha.sha1 = Sha1Digest{};
    const MADE made = Make(1,
                           {Game("One", OldRom("a.sms", Image(1))),
                            Game("Two", OldRom("b.sms", Image(2))), Game("Three", onlyCrc),
                            Game("Four", wrongSha), Game("Five", OldRom("e.sms", Image(5)))},
                           folder.Path());
    ASSERT_EQ(made.entries.size(), 3u);
    EXPECT_EQ(made.entries[0].FindRom(HashOf(Image(1))), 0);
    EXPECT_EQ(made.entries[1].FindRom(HashOf(Image(2))), 0);
    EXPECT_EQ(made.entries[2].FindRom(HashOf(Image(3))), 0);
    EXPECT_EQ(made.report.unknownImage, 2u)
        << "one is not there, and the other's stronger checksum is wrong";
    ASSERT_EQ(made.complaints.size(), 1u);
    EXPECT_THAT(made.complaints[0], testing::HasSubstr("broken.zip: "));
}

// A Mega Drive file whose size has bit 9 set may be an interleaved dump, and only its bytes tell.
TEST(DatabaseMaker, MegaDriveDumpsAreKnownByTheImageThatTheMachineSees) {
    const Bytes dump = Bytes(512, 0xCC) + Image(1, 16384);
    const Bytes prepared = PrepareImage(4, dump);
    ASSERT_EQ(prepared.size(), 16384u);
    const LOGIQX_ROM rom = Rom("a.smd", dump);
    EXPECT_EQ(Make(4, {Game("One", rom)}).report.unknownImage, 1u);
    const TemporaryFolder folder;
    folder.Write("a.smd", dump);
    const MADE made = Make(4, {Game("One", rom)}, folder.Path());
    EXPECT_THAT(PiecesOf(made.entries.at(0)), ElementsAre("v1.0 16384"));
    EXPECT_EQ(made.entries[0].FindRom(HashOf(prepared)), 0);
    // The list has the plain image, and the player the dump.
    const MADE other = Make(4, {Game("One", OldRom("a.md", prepared))}, folder.Path());
    EXPECT_EQ(other.entries.at(0).FindRom(HashOf(prepared)), 0);
    // The conversion knows it by this.
    CGameFile game;
    bool known = false;
    ASSERT_TRUE(BuildGame(4, "a", dump, made.entries, game, known));
    EXPECT_TRUE(known);
}

// The machine needs the file's header, so a list without headers tells nothing by itself.
TEST(DatabaseMaker, NesListsWithoutHeadersNeedTheFiles) {
    const Bytes body = Image(1, 24576);
    const Bytes file = Text("NES\x1A\1\1") + Bytes(10) + body;
    const LOGIQX_ROM rom = Rom("a.nes", body);
    EXPECT_EQ(Make(5, {Game("One", rom)}).report.unknownImage, 1u);
    const TemporaryFolder folder;
    folder.Write("headerless.bin", body);
    EXPECT_EQ(Make(5, {Game("One", rom)}, folder.Path()).report.unknownImage, 1u)
        << "which the machine cannot play";
    folder.Write("a.nes", file);
    const MADE made = Make(5, {Game("One", rom)}, folder.Path());
    EXPECT_THAT(PiecesOf(made.entries.at(0)), ElementsAre("v1.0 24592"));
    EXPECT_EQ(made.entries[0].FindRom(HashOf(file)), 0);
    const MADE headered = Make(5, {Game("One", Rom("a.nes", file))});
    EXPECT_EQ(headered.entries.at(0).FindRom(HashOf(file)), 0);
}

TEST(DatabaseMaker, AnArcadeSetHasItsPiecesInOrder) {
    const TemporaryFolder folder;
    std::string error;
    ZipWriter zip;
    ASSERT_TRUE(zip.Add("epr-1.ic7", Image(1, 512), error));
    ASSERT_TRUE(zip.Add("epr-2.ic5", Image(2, 256), error));
    folder.Write("skywren.zip", zip.Finish(error));
    LOGIQX_GAME set = Game("skywren", OldRom("epr-1.ic7", Image(1, 512)));
    set.roms.push_back(OldRom("epr-2.ic5", Image(2, 256)));
    set.roms.push_back(Rom("opcodes", Image(3, 128)));
    set.description = "Skywren (Rev A)";
    set.year = 1986;
    LOGIQX_GAME clone = Game("skywrenj", OldRom("epr-1.ic7", Image(1, 512)), "skywren");
    clone.description = "Sky Wren (Japan)";
    LOGIQX_GAME part = set;
    part.name = "missing";
    part.roms.push_back(OldRom("epr-9", Image(9)));
    DATABASE_RULE rule;
    rule.pattern = "skywren";
    rule.board = 5;
    const MADE made = Make(6, {set, clone, part}, folder.Path(), {rule});
    ASSERT_EQ(made.entries.size(), 2u);
    EXPECT_EQ(made.entries[0].GadaText(), "skywren");
    EXPECT_THAT(PiecesOf(made.entries[0]),
                ElementsAre("epr-1.ic7 512", "epr-2.ic5 256", "opcodes 128"));
    EXPECT_THAT(NamesOf(made.entries[0]), ElementsAre("Skywren  1986 [01]"));
    EXPECT_THAT(NamesOf(made.entries[1]), ElementsAre("Sky Wren J 0 [0]"));
    EXPECT_EQ(NameOf(made.entries[0]).contentKey, "skywren");
    EXPECT_EQ(made.report.unknownImage, 1u);
    const uint8_t* record = nullptr;
    uint32_t length = 0;
    ASSERT_TRUE(made.entries[0].GetMachineRecord(0, record, length));
    EXPECT_EQ(record[8], 5);
    ASSERT_TRUE(made.entries[1].GetMachineRecord(0, record, length));
    EXPECT_EQ(record[8], 3) << "a joystick panel";
}

TEST(DatabaseMaker, AnArcadeSetOfMorePiecesThanANameListsIsLeftOut) {
    LOGIQX_GAME set;
    set.name = "many";
    for (uint8_t i = 0; i < 65; ++i) {
        set.roms.push_back(Rom("piece", Image(i, 16)));
    }
    MADE made = Make(6, {set});
    EXPECT_THAT(made.entries, IsEmpty());
    EXPECT_EQ(made.report.tooLarge, 1u);
    set.roms.pop_back();
    made = Make(6, {set});
    ASSERT_EQ(made.entries.size(), 1u);
    EXPECT_EQ(made.entries[0].NameRomAt(0, 63), 63);
}

// The conversion copies the names that use an image.
TEST(DatabaseMaker, AConvertedGameHasTheNamesOfItsVersion) {
    LOGIQX_GAME game = Game("Luciole (Europe)", Rom("a.sms", Image(1)));
    game.year = 1990;
    const MADE made = Make(1, {game, Game("Luciole (Europe) (Rev A)", Rom("b.sms", Image(2)))});
    CGameFile converted;
    bool known = false;
    ASSERT_TRUE(BuildGame(1, "whatever", Image(2), made.entries, converted, known));
    EXPECT_TRUE(known);
    EXPECT_THAT(NamesOf(converted), ElementsAre("Luciole E 0 [0]"));
    EXPECT_THAT(PiecesOf(converted), ElementsAre("Rev A 1024"));
}

TEST(DatabaseSearch, TellsTheFileInHandAndEndsBetweenTwoFiles) {
    const TemporaryFolder folder;
    folder.Write("a.sms", Image(1));
    folder.Write("b.sms", Image(2));
    folder.Write("c.sms", Image(3));
    const LOGIQX_FILE list{
        "a list",
        {Game("A", OldRom("a", Image(1))), Game("B", OldRom("b", Image(2))),
          Game("C", OldRom("c", Image(3)))}
    };
    std::atomic<bool> stop{false};
    std::vector<std::string> told;
    DATABASE_SOURCES sources;
    sources.system = kSystemMasterSystem;
    sources.list = &list;
    sources.roms = folder.Path();
    sources.search.stop = &stop;
    sources.search.progress = [&](size_t done, size_t total, const std::string& name) {
        told.push_back(std::to_string(done) + "/" + std::to_string(total) + " " + name);
        stop = done == 1;
    };
    DATABASE_REPORT report;
    EXPECT_EQ(MakeDatabase(sources, report).size(), 2u);
    EXPECT_EQ(report.unknownImage, 1u) << "the third was not looked for";
    EXPECT_THAT(told, ElementsAre("0/3 a.sms", "1/3 b.sms"));
}
