// Containers built, serialised, written and read back.
#include "formats/game_file.h"
#include "formats/hand_made.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>

using testing::ElementsAre;

namespace {

Sha256Digest Digest(uint8_t byte) {
    Sha256Digest digest{};
    digest.fill(byte);
    return digest;
}

MACHINE_RECORD Machine(const Bytes& bytes) {
    MACHINE_RECORD record{};
    std::copy(bytes.begin(), bytes.end(), record.bytes);
    return record;
}

CGameFile Parsed(const Bytes& bytes) {
    CGameFile game;
    EXPECT_TRUE(game.Parse(bytes.data(), bytes.size(), false));
    return game;
}

// A NES game of three pieces and two names, written with its image.
const Bytes kImage = Text("aaaabbbbbbcc");

CGameFile ThreePieces() {
    CGameFile game;
    game.Create(false, kSystemNes);
    game.AddRom("a", Digest(1), 4);
    game.AddRom("b", Digest(2), 6);
    game.AddRom("c", Digest(3), 2);
    game.AddNameFromTitle("First", 0, 1, {});
    game.AddNameFromTitle("Second", 0, 1, {});
    return game;
}

CGameFile Unpacked(CGameFile game) {
    const Bytes file = game.WriteGame(kImage);
    CGameFile read;
    EXPECT_TRUE(read.Parse(file.data(), file.size(), true));
    return read;
}

} // namespace

TEST(GameFile, FreshObjectIsEmptyWithNothingSelected) {
    const CGameFile game;
    EXPECT_EQ(game.NameCount() + game.RomCount() + game.MachineRecordCount(), 0u);
    EXPECT_FALSE(game.HeaderParsed());
    EXPECT_FALSE(game.DataUnpacked());
    EXPECT_EQ(game.selectedName, -1);
}

TEST(GameFile, CreateWritesTagAndSystemAlone) {
    CGameFile game;
    game.Create(false, kSystemArcade);
    EXPECT_EQ(game.Serialise(true), HandGame(6, 88));
    EXPECT_FALSE(game.HasGada());
    EXPECT_EQ(game.GadaText(), "");
}

TEST(GameFile, CreateWithGadaPutsItsRecordInFront) {
    CGameFile game;
    game.Create(true, kSystemArcade);
    EXPECT_TRUE(game.HasGada());
    EXPECT_EQ(game.Serialise(true), HandGada("") + HandGame(6, 88));
    game.SetGadaText("set");
    EXPECT_EQ(game.Serialise(true), HandGada("set") + HandGame(6, 88));
    EXPECT_EQ(game.Serialise(false), HandGame(6, 88));
}

TEST(GameFile, GadaTextIsCutTo63Bytes) {
    CGameFile game;
    game.Create(true, kSystemArcade);
    game.SetGadaText(std::string(100, 'x'));
    EXPECT_EQ(game.GadaText(), std::string(63, 'x'));
    game.SetGadaText("y");
    EXPECT_EQ(game.Serialise(true), HandGada("y") + HandGame(6, 88));
}

TEST(GameFile, GadaTextThatFillsItsFieldEndsThere) {
    const CGameFile game = Parsed(HandGada(std::string(64, 'z')) + HandGame(6, 88));
    EXPECT_EQ(game.GadaText(), std::string(64, 'z'));
}

TEST(GameFile, ResetEmptiesEverythingButTheSelection) {
    CGameFile game = Unpacked(ThreePieces());
    game.selectedName = 1;
    game.Reset();
    EXPECT_EQ(game.NameCount() + game.RomCount() + game.MachineRecordCount(), 0u);
    EXPECT_FALSE(game.HeaderParsed());
    EXPECT_FALSE(game.DataUnpacked());
    EXPECT_TRUE(game.Data().empty());
    EXPECT_EQ(game.Header().system, 0);
    EXPECT_EQ(game.Header().tag[0], '\0');
    EXPECT_EQ(game.selectedName, 1);
}

TEST(GameFile, MachineRecordSizeFollowsTheSystem) {
    const std::tuple<uint16_t, uint32_t> rows[] = {
        {1, 24},
        {2, 23},
        {4, 4 },
        {5, 4 },
        {6, 16},
        {3, 0 },
        {0, 0 },
        {7, 0 }
    };
    for (const auto& [system, size] : rows) {
        CGameFile game;
        game.Create(false, system);
        EXPECT_EQ(game.FixedRecordSize(), size) << system;
        game.AddNameFromTitle("t", 0, 0, {});
        game.AddRom("r", {}, 1000);
        EXPECT_EQ(game.HeaderSize(true), 88 + 368 + 80 + size) << system;
        EXPECT_EQ(game.TotalSize(false), 88 + 368 + 80 + size + 1000) << system;
        EXPECT_EQ(game.Serialise(false).size(), game.HeaderSize(false)) << system;
    }
}

TEST(GameFile, HeaderSizeCountsGadaOnlyWhenAskedForAndPresent) {
    CGameFile game;
    game.Create(true, kSystemNes);
    EXPECT_EQ(game.HeaderSize(false), 88u);
    EXPECT_EQ(game.HeaderSize(true), 156u);
    EXPECT_EQ(game.TotalSize(true), 156u);
}

TEST(GameFile, SerialisesRecordsInTheOrderOfTheFormat) {
    CGameFile game;
    game.Create(false, kSystemMasterSystem);
    game.AddNameFromTitle("One", 0, 0, Machine(HandMachine("SMS0", 24)));
    game.AddRom("v1.0", Digest(9), 0x01020304);
    game.AddNameFromTitle("Two", 0, 0, Machine(HandMachine("SMS0", 24)));
    const size_t headerSize = 88 + 2 * 368 + 80 + 2 * 24;
    EXPECT_EQ(game.Serialise(false), HandGame(1, headerSize, 0x01020304) + HandName("One", {}) +
                                         HandName("Two", {}) + HandRom("v1.0", 0x01020304, 9) +
                                         HandMachine("SMS0", 24) + HandMachine("SMS0", 24));
    EXPECT_EQ(game.Header().headerSize, headerSize);
}

TEST(GameFile, NameFieldsLieAtTheirOffsets) {
    Bytes name = HandName("Title", {3, 1});
    name[4] = 1;
    name[5] = 2;
    name[6] = 91;
    name[7] = 0x84;
    PutText(name, 112, "Other");
    PutText(name, 208, "EJU");
    PutText(name, 216, "key");
    PutText(name, 260, "key2");
    const CGameFile game = Parsed(HandGame(5, 88 + 368) + name);
    NAME_VIEW view;
    ASSERT_TRUE(game.GetName(0, view));
    EXPECT_EQ(view.title, "Title");
    EXPECT_EQ(view.altTitle, "Other");
    EXPECT_EQ(view.regions, "EJU");
    EXPECT_EQ(view.contentKey, "key");
    EXPECT_EQ(view.contentKey2, "key2");
    EXPECT_EQ(view.raw.reserved4, 1);
    EXPECT_EQ(view.raw.playTypes, 2);
    EXPECT_EQ(view.raw.year, 91);
    EXPECT_EQ(view.raw.status, 0x84);
    EXPECT_EQ(view.raw.romList[0], 3);
    EXPECT_EQ(view.raw.romList[1], 1);
    EXPECT_EQ(view.raw.romList[63], 255);
    NAME_RECORD raw{};
    ASSERT_TRUE(game.GetRawName(0, raw));
    EXPECT_EQ(std::memcmp(&raw, name.data(), name.size()), 0);
    EXPECT_FALSE(game.GetName(1, view));
    EXPECT_FALSE(game.GetRawName(1, raw));
}

TEST(GameFile, TextsThatFillTheirFieldsComeBackEnded) {
    Bytes name = HandName(std::string(96, 't'), {});
    PutText(name, 112, std::string(96, 'a'));
    PutText(name, 208, "EJUBKEJU");
    PutText(name, 216, std::string(44, 'k'));
    PutText(name, 260, std::string(44, 'l'));
    const CGameFile game = Parsed(HandGame(5, 88 + 368) + name);
    NAME_VIEW view;
    ASSERT_TRUE(game.GetName(0, view));
    EXPECT_EQ(view.title, std::string(96, 't'));
    EXPECT_EQ(view.altTitle, std::string(96, 'a'));
    EXPECT_EQ(view.regions, "EJUBKEJU");
    EXPECT_EQ(view.contentKey, std::string(44, 'k'));
    EXPECT_EQ(view.contentKey2, std::string(44, 'l'));
}

TEST(GameFile, RomFieldsLieAtTheirOffsets) {
    const CGameFile game =
        Parsed(HandGame(5, 88 + 160) + HandRom("one", 10) + HandRom("two", 0x11223344, 7));
    std::string name;
    ROM_RECORD rom{};
    ASSERT_TRUE(game.GetRom(1, name, rom));
    EXPECT_EQ(name, "two");
    EXPECT_EQ(rom.size, 0x11223344u);
    EXPECT_EQ(rom.sha256[0], 7);
    EXPECT_EQ(rom.sha256[31], 7);
    EXPECT_FALSE(game.GetRom(2, name, rom));
}

TEST(GameFile, LongTitleRunsOnIntoTheSecondOne) {
    CGameFile game;
    game.Create(false, kSystemNes);
    std::string title(96, 'a');
    title += std::string(50, 'b');
    game.AddNameFromTitle(title, 1, 3, {});
    const Bytes bytes = game.Serialise(false);
    // 127 bytes from offset 16 of the record and a NUL after them.
    EXPECT_EQ(Slice(bytes, 88 + 16, 128),
              Text(std::string(96, 'a') + std::string(31, 'b')) + Bytes(1));
    NAME_VIEW view;
    ASSERT_TRUE(game.GetName(0, view));
    EXPECT_EQ(view.title, std::string(96, 'a'));
    EXPECT_EQ(view.altTitle, std::string(31, 'b'));
}

TEST(GameFile, NameFromTitleIsZeroButForWhatIsGiven) {
    CGameFile game;
    game.Create(false, kSystemNes);
    game.AddNameFromTitle("Title", 7, 9, {});
    Bytes name = HandName("Title", {});
    name[4] = 7;
    name[5] = 9;
    EXPECT_EQ(game.Serialise(false), HandGame(5, 88 + 368 + 4) + name + Text("GDF0"));
}

TEST(GameFile, NameCopyKeepsAllButItsList) {
    const CGameFile source = Parsed(HandGame(5, 88 + 368) + HandName("Copied", {0, 1, 2}));
    NAME_RECORD record{};
    ASSERT_TRUE(source.GetRawName(0, record));
    CGameFile game;
    game.Create(false, kSystemNes);
    game.AddNameCopy(record, {});
    EXPECT_EQ(Slice(game.Serialise(false), 88, 368), HandName("Copied", {}));
}

TEST(GameFile, MachineRecordGetsTheTagOfTheSystem) {
    const std::tuple<uint16_t, const char*, size_t> rows[] = {
        {1, "SMS0", 24},
        {2, "GAG0", 23},
        {4, "GDF0", 4 },
        {5, "GDF0", 4 },
        {6, "ARC0", 16}
    };
    for (const auto& [system, tag, size] : rows) {
        CGameFile game;
        game.Create(false, system);
        game.AddMachineRecord(Machine(HandMachine("????", 24)));
        const uint8_t* record = nullptr;
        uint32_t length = 0;
        ASSERT_TRUE(game.GetMachineRecord(0, record, length));
        EXPECT_EQ(Bytes(record, record + length), HandMachine(tag, size));
        EXPECT_FALSE(game.GetMachineRecord(1, record, length));
    }
}

TEST(GameFile, RomSizesAddUp) {
    const CGameFile game = ThreePieces();
    EXPECT_EQ(game.Header().rawSize, 12u);
    EXPECT_EQ(game.RomOffset(0), 0u);
    EXPECT_EQ(game.RomOffset(1), 4u);
    EXPECT_EQ(game.RomOffset(2), 10u);
    EXPECT_EQ(game.RomOffset(3), 12u);
    EXPECT_EQ(game.RomOffset(99), 12u);
}

TEST(GameFile, LinkRomFillsTheFirstFreeSlots) {
    CGameFile game = ThreePieces();
    EXPECT_TRUE(game.LinkRom(1, 2));
    EXPECT_TRUE(game.LinkRom(1, 0));
    EXPECT_EQ(game.NameRomAt(1, 0), 2);
    EXPECT_EQ(game.NameRomAt(1, 1), 0);
    EXPECT_EQ(game.NameRomAt(1, 2), -1);
    EXPECT_EQ(game.NameRomAt(0, 0), -1);
}

TEST(GameFile, LinkRomRefusesIndicesOutOfRange) {
    CGameFile game = ThreePieces();
    EXPECT_FALSE(game.LinkRom(2, 0));
    EXPECT_FALSE(game.LinkRom(0, 3));
    EXPECT_EQ(game.NameRomAt(0, 0), -1);
}

TEST(GameFile, LinkRomStoresNothingWhenAllSlotsAreTaken) {
    CGameFile game = ThreePieces();
    for (int i = 0; i < 64; ++i) {
        ASSERT_TRUE(game.LinkRom(0, 1));
    }
    const Bytes before = game.Serialise(false);
    EXPECT_TRUE(game.LinkRom(0, 2));
    EXPECT_EQ(game.Serialise(false), before);
    EXPECT_EQ(game.NameRomAt(0, 63), 1);
}

TEST(GameFile, LinkRomRefusesAPieceThatNoSlotCanHold) {
    CGameFile game;
    game.Create(false, kSystemNes);
    game.AddNameFromTitle("t", 0, 0, {});
    for (int i = 0; i < 300; ++i) {
        game.AddRom("r", {}, 0);
    }
    EXPECT_TRUE(game.LinkRom(0, 254));
    EXPECT_FALSE(game.LinkRom(0, 255));
    EXPECT_FALSE(game.LinkRom(0, 256));
    EXPECT_FALSE(game.LinkRom(0, 299));
    EXPECT_EQ(game.NameRomAt(0, 0), 254);
    EXPECT_EQ(game.NameRomAt(0, 1), -1);
}

TEST(GameFile, NameRomAtTellsABadNameFromAnEmptySlot) {
    CGameFile game = ThreePieces();
    ASSERT_TRUE(game.LinkRom(0, 2));
    EXPECT_EQ(game.NameRomAt(2, 0), 0);
    EXPECT_EQ(game.NameRomAt(0, 64), -1);
    EXPECT_EQ(game.NameRomAt(0, 1), -1);
    EXPECT_EQ(game.NameRomAt(0, 0), 2);
}

TEST(GameFile, FindRomReturnsTheFirstOfItsHash) {
    CGameFile game = ThreePieces();
    game.AddRom("again", Digest(2), 5);
    ROM_RECORD rom{};
    EXPECT_EQ(game.FindRom(Digest(2), &rom), 1);
    EXPECT_EQ(rom.size, 6u);
    EXPECT_EQ(game.FindRom(Digest(3)), 2);
    EXPECT_EQ(game.FindRom(Digest(4)), -1);
    Sha256Digest nearly = Digest(3);
    nearly[31] = 0;
    EXPECT_EQ(game.FindRom(nearly), -1);
}

TEST(GameFile, NamesUsingRomSearchesEachListUpToItsEnd) {
    Bytes afterEnd = HandName("c", {0, 255, 1});
    const CGameFile game =
        Parsed(HandGame(5, 88 + 3 * 368) + HandName("a", {1, 0}) + HandName("b", {1}) + afterEnd);
    EXPECT_THAT(game.NamesUsingRom(1), ElementsAre(0, 1, -1));
    EXPECT_THAT(game.NamesUsingRom(0), ElementsAre(0, 2, -1));
    EXPECT_THAT(game.NamesUsingRom(2), ElementsAre(-1));
    EXPECT_THAT(game.NamesUsingRom(255), ElementsAre(-1));
    EXPECT_THAT(game.NamesUsingRom(256 + 1), ElementsAre(-1));
}

TEST(GameFile, PiecesAreJoinedInTheOrderOfTheList) {
    CGameFile game = ThreePieces();
    for (const uint32_t rom : {2u, 0u, 2u}) {
        ASSERT_TRUE(game.LinkRom(1, rom));
    }
    game = Unpacked(std::move(game));
    EXPECT_EQ(game.AssembleImage(1), Text("ccaaaacc"));
    EXPECT_EQ(game.AssembleImage(2), std::nullopt);
}

TEST(GameFile, EmptyListAssemblesToAnImageOfNothing) {
    const CGameFile game = Unpacked(ThreePieces());
    EXPECT_EQ(game.AssembleImage(0), Bytes());
}

TEST(GameFile, FullListIsReadToItsEnd) {
    CGameFile game = ThreePieces();
    for (int i = 0; i < 64; ++i) {
        ASSERT_TRUE(game.LinkRom(0, 2));
    }
    game = Unpacked(std::move(game));
    EXPECT_EQ(game.AssembleImage(0), Text(std::string(128, 'c')));
    EXPECT_THAT(game.NamesUsingRom(2), ElementsAre(0, -1));
}

TEST(GameFile, ListEndsAtAnInvalidIndex) {
    CGameFile game = ThreePieces();
    Bytes file = game.WriteGame(kImage);
    const Bytes list = {0, 3, 1};
    PutBytes(file, 88 + 304, list);
    ASSERT_TRUE(game.Parse(file.data(), file.size(), true));
    EXPECT_EQ(game.AssembleImage(0), Text("aaaa"));
}

TEST(GameFile, NothingIsAssembledWithoutAnUnpackedImage) {
    CGameFile game = ThreePieces();
    ASSERT_TRUE(game.LinkRom(0, 0));
    EXPECT_EQ(game.AssembleImage(0), std::nullopt);
}

TEST(GameFile, PieceThatLiesOutsideTheImageIsRefused) {
    CGameFile game = ThreePieces();
    ASSERT_TRUE(game.LinkRom(0, 0));
    ASSERT_TRUE(game.LinkRom(1, 2));
    Bytes file = game.WriteGame(kImage);
    const size_t firstRom = 88 + 2 * 368;
    for (const uint64_t size : {uint64_t{0xFFFFFFFF}, uint64_t{0xFFFFFFF6}, uint64_t{5}}) {
        PutInteger(file, firstRom + 4, 4, size);
        ASSERT_TRUE(game.Parse(file.data(), file.size(), true));
        EXPECT_EQ(game.AssembleImage(1), std::nullopt) << size;
        EXPECT_EQ(game.AssembleImage(0).has_value(), size == 5) << size;
    }
}

TEST(GameFile, SelectionPicksImageAndMachineRecord) {
    CGameFile game = ThreePieces();
    ASSERT_TRUE(game.LinkRom(0, 0));
    ASSERT_TRUE(game.LinkRom(1, 1));
    game = Unpacked(std::move(game));
    MACHINE_RECORD record{};
    EXPECT_EQ(game.AssembleSelectedImage(), std::nullopt);
    EXPECT_FALSE(game.SelectedMachineRecord(record));
    game.selectedName = 1;
    EXPECT_EQ(game.AssembleSelectedImage(), Text("bbbbbb"));
    ASSERT_TRUE(game.SelectedMachineRecord(record));
    EXPECT_EQ(std::memcmp(record.bytes, "GDF0", 4), 0);
    game.selectedName = 2;
    EXPECT_EQ(game.AssembleSelectedImage(), std::nullopt);
    EXPECT_FALSE(game.SelectedMachineRecord(record));
}

TEST(GameFile, SelectedRomHashTakesTheNameIndexForAPieces) {
    CGameFile game = ThreePieces();
    ASSERT_TRUE(game.LinkRom(1, 0));
    EXPECT_EQ(game.SelectedRomHash(), nullptr);
    game.selectedName = 1;
    ASSERT_NE(game.SelectedRomHash(), nullptr);
    EXPECT_EQ(game.SelectedRomHash()[0],
              2); // of the second piece, although the name uses the first
    game.selectedName = 3;
    EXPECT_EQ(game.SelectedRomHash(), nullptr);
}

TEST(GameFile, HeaderHashCoversTheRecordsWithHashesAndPackedSizeZero) {
    CGameFile game = ThreePieces();
    Bytes first = HandName("First", {});
    Bytes second = HandName("Second", {});
    first[5] = second[5] = 1;
    const Sha256Digest expected =
        Sha256(HandGame(5, 88 + 2 * 368 + 3 * 80 + 2 * 4, 12) + first + second +
               HandRom("a", 4, 1) + HandRom("b", 6, 2) + HandRom("c", 2, 3) + Text("GDF0GDF0"));
    game.ComputeHeaderHash();
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), game.Header().headerHash));
    const Bytes file = game.WriteGame(kImage);
    EXPECT_EQ(Slice(file, 56, 32), Bytes(expected.begin(), expected.end()));
    // A second writing finds the packed size of the first.
    EXPECT_EQ(game.WriteGame(kImage), file);
}

TEST(GameFile, WrittenFileIsRecordsAndPackedImage) {
    CGameFile game = ThreePieces();
    const Bytes file = game.WriteGame(kImage);
    const uint64_t headerSize = GetInteger(file, 4, 4);
    const uint64_t packedSize = GetInteger(file, 12, 4);
    ASSERT_EQ(headerSize, 88u + 2 * 368 + 3 * 80 + 2 * 4);
    ASSERT_EQ(file.size(), headerSize + packedSize);
    EXPECT_EQ(GetInteger(file, 8, 4), 12u);
    const Sha256Digest dataHash = Sha256(Slice(file, headerSize, packedSize));
    EXPECT_EQ(Slice(file, 24, 32), Bytes(dataHash.begin(), dataHash.end()));
    EXPECT_EQ(Slice(file, headerSize, 5), (Bytes{0x5D, 0x00, 0x00, 0x40, 0x00}));
    EXPECT_EQ(game.Serialise(false), Slice(file, 0, headerSize));
}

TEST(GameFile, WritingKeepsADatabaseEntrysHashWhenAskedTo) {
    CGameFile game = ThreePieces();
    Bytes entry = game.Serialise(false);
    PutBytes(entry, 56, Bytes(32, 0xAB));
    game = Parsed(entry);
    const Bytes file = game.WriteGameKeepingHash(kImage);
    EXPECT_EQ(Slice(file, 56, 32), Bytes(32, 0xAB));
    CGameFile read;
    ASSERT_TRUE(read.Parse(file.data(), file.size(), true));
    EXPECT_EQ(Bytes(read.Data().begin(), read.Data().end()), kImage);
}

TEST(GameFile, ImageOfAnotherSizeIsNotWritten) {
    CGameFile game = ThreePieces();
    EXPECT_TRUE(game.WriteGame(Slice(kImage, 0, 11)).empty());
    EXPECT_TRUE(game.WriteGame(kImage + Bytes(1)).empty());
    EXPECT_FALSE(game.SetData(Bytes(11)));
    EXPECT_FALSE(game.DataUnpacked());
    EXPECT_TRUE(game.SetData(kImage));
    EXPECT_TRUE(game.DataUnpacked());
}

TEST(GameFile, ImagesOfEverySizeSurviveTheFile) {
    CRandom random(5);
    for (const size_t size : {0u, 1u, 100u, 32768u, 131072u}) {
        const Bytes image = random.Fill(size);
        CGameFile game;
        game.Create(false, kSystemMegaDrive);
        game.AddNameFromTitle("t", 1, 1, {});
        game.AddRom("v1.0", Sha256(image), static_cast<uint32_t>(size));
        ASSERT_TRUE(game.LinkRom(0, 0));
        const Bytes file = game.WriteGame(image);
        CGameFile read;
        ASSERT_TRUE(read.Parse(file.data(), file.size(), true)) << size;
        EXPECT_TRUE(read.AssembleImage(0) == image) << size;
    }
}
