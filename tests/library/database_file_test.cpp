#include "formats/game_file.h"
#include "formats/hand_made.h"
#include "library/database_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr size_t kGada = 68;
constexpr size_t kHeader = 88;
constexpr size_t kName = 368;
constexpr size_t kRom = 80;

// An entry of one name and one piece of five bytes, for the NES.
Bytes Entry(std::string_view title) {
    return HandGame(5, kHeader + kName + kRom + 4, 5) + HandName(title, {0}) + HandRom("x", 5, 7) +
           Text("GDF0");
}

std::string FaultOf(const Bytes& bytes) {
    std::vector<CGameFile> entries;
    std::string fault;
    EXPECT_FALSE(ReadDatabaseStrictly(bytes, entries, fault));
    EXPECT_TRUE(entries.empty());
    return fault;
}

std::vector<CGameFile> Read(const Bytes& bytes) {
    std::vector<CGameFile> entries;
    std::string fault;
    EXPECT_TRUE(ReadDatabaseStrictly(bytes, entries, fault)) << fault;
    return entries;
}

// A database of every system as a program would make it.
std::vector<CGameFile> Made(uint16_t system) {
    std::vector<CGameFile> entries;
    for (uint8_t number = 0; number < 3; ++number) {
        CGameFile& entry = entries.emplace_back();
        entry.Create(number != 1, system);
        entry.SetGadaText("file");
        const Sha256Digest hash = {number};
        for (uint32_t i = 0; i <= number; ++i) {
            entry.AddNameFromTitle("A game", 0, 1, {});
            entry.AddRom("v1.0", hash, 100 + i);
            EXPECT_TRUE(entry.LinkRom(i, i));
        }
        entry.ComputeHeaderHash();
    }
    return entries;
}

} // namespace

TEST(DatabaseFile, WhatIsWrittenIsReadAndWrittenTheSame) {
    for (const GameSystem system :
         {kSystemMasterSystem, kSystemGameGear, kSystemMegaDrive, kSystemNes, kSystemArcade}) {
        std::vector<CGameFile> made = Made(system);
        const Bytes written = WriteDatabase(made);
        std::vector<CGameFile> strict = Read(written);
        ASSERT_EQ(strict.size(), 3u);
        EXPECT_EQ(strict[0].GadaText(), "file");
        EXPECT_FALSE(strict[1].HasGada());
        EXPECT_EQ(strict[2].NameCount(), 3u);
        EXPECT_EQ(WriteDatabase(strict), written);
        std::vector<CGameFile> lenient = ParseDatabase(written.data(), written.size());
        EXPECT_EQ(WriteDatabase(lenient), written);
    }
}

TEST(DatabaseFile, NothingIsADatabaseOfNoGames) {
    EXPECT_TRUE(Read({}).empty());
    std::vector<CGameFile> none;
    EXPECT_TRUE(WriteDatabase(none).empty());
}

TEST(DatabaseFile, EntriesOfBytesByHandAreRead) {
    const auto entries = Read(Entry("One") + HandGada("two") + Entry("Two"));
    ASSERT_EQ(entries.size(), 2u);
    NAME_VIEW name;
    ASSERT_TRUE(entries[1].GetName(0, name));
    EXPECT_EQ(name.title, "Two");
    EXPECT_EQ(entries[1].GadaText(), "two");
    // The short default record is four bytes in a Game Gear file too.
    const Bytes gear = HandGame(2, kHeader + kName + kRom + 4, 5) + HandName("Gear", {0}) +
                       HandRom("x", 5) + Text("GDF0");
    EXPECT_EQ(Read(gear + gear).size(), 2u);
}

TEST(DatabaseFile, FaultsAreToldWithEntryByteAndReason) {
    const Bytes good = Entry("One");
    const auto changed = [&](size_t offset, size_t width, uint64_t value) {
        Bytes bytes = good;
        PutInteger(bytes, offset, width, value);
        return bytes;
    };
    const std::string at = "entry 2, byte " + std::to_string(good.size());
    const auto isFault = [](const Bytes& bytes, const std::string& fault) {
        EXPECT_EQ(FaultOf(bytes), fault);
    };
    isFault(Text("ROM0"), "entry 1, byte 0: no entry begins here");
    isFault(Text("x"), "entry 1, byte 0: no entry begins here");
    isFault(HandGada("set"), "entry 1, byte 68: no entry begins here");
    isFault(HandGada("set") + HandGada("set"), "entry 1, byte 68: no entry begins here");
    isFault(Slice(HandGada("set"), 0, 67), "entry 1, byte 0: the file ends within the record GADA");
    isFault(good + Text("GAM"), at + ": no entry begins here");
    isFault(good + Slice(good, 0, 87), at + ": the file ends within the record GAME");
    isFault(good + Slice(good, 0, kHeader + 300), "entry 2, byte " +
                                                      std::to_string(good.size() + kHeader) +
                                                      ": the file ends within the record NAME");
    isFault(Slice(good, 0, kHeader + kName + 79),
            "entry 1 (One), byte 456: the file ends within the record ROM0");
    isFault(Slice(good, 0, good.size() - 4),
            "entry 1 (One), byte 536: the file ends before the entry does");
    isFault(changed(kHeader + kName, 1, 'X'), "entry 1 (One), byte 456: no record begins here");
    isFault(changed(4, 4, 87),
            "entry 1, byte 0: the header states a size of 87 bytes, less than its own");
    isFault(changed(4, 4, 500), "entry 1 (One), byte 456: the record ROM0 reaches beyond the size "
                                "that the header states");
    isFault(changed(16, 2, 3), "entry 1, byte 0: there is no system 3");
    isFault(changed(8, 4, 6), "entry 1 (One), byte 0: the header states images of 6 bytes, the "
                              "pieces add up to 5");
    isFault(changed(kHeader + 304, 1, 1), "entry 1 (One), byte 88: the name lists piece 1 of 1");
    isFault(changed(56, 1, 1),
            "entry 1 (One), byte 0: the records are not those of the header's hash");
    isFault(changed(4, 4, good.size() + 88) + good,
            "entry 1 (One), byte " + std::to_string(good.size()) +
                ": a record GAME is within an entry, whose header states more records than it has");
    isFault(good + HandGame(4, 88), at + ": is of another system than the entries before it");
    isFault(HandGame(5, kHeader + kName) + HandName("One", {}),
            "entry 1 (One), byte 0: has 1 names and 0 machine records");
}

// Everything but the hash of the packed data, which a database does not have, is under the header's hash.
TEST(DatabaseFile, AnyChangedByteOfAMadeDatabaseIsFound) {
    std::vector<CGameFile> made = Made(1);
    const Bytes written = WriteDatabase(made);
    for (size_t at = 0; at < written.size(); ++at) {
        Bytes bytes = written;
        bytes[at] ^= 0x5A;
        const size_t inEntry = at - kGada; // the first entry has a file name before its header
        const bool unchecked = (inEntry >= 12 && inEntry < 16) || (inEntry >= 24 && inEntry < 56);
        const bool fileName = at >= 4 && at < kGada;
        if (at > 600 || unchecked || fileName) {
            continue;
        }
        EXPECT_THAT(FaultOf(bytes), StartsWith("entry 1")) << at;
    }
}

// What the strict reader takes, the program's own reader takes the same.
TEST(DatabaseFile, StrictAndLenientReaderAgreeOnWhatIsWhole) {
    CRandom random(3);
    const Bytes good = Entry("One") + HandGada("two") + Entry("Two") + Entry("Three");
    int taken = 0;
    for (int i = 0; i < 3000; ++i) {
        Bytes bytes = good;
        for (uint32_t change = random.Below(3); change > 0; --change) {
            bytes[random.Below(bytes.size())] = random.Byte();
        }
        bytes.resize(random.Below(4) == 0 ? random.Below(bytes.size()) : bytes.size());
        std::vector<CGameFile> strict;
        std::string fault;
        if (ReadDatabaseStrictly(bytes, strict, fault)) {
            ++taken;
            auto lenient = ParseDatabase(bytes.data(), bytes.size());
            ASSERT_EQ(lenient.size(), strict.size()) << i;
            EXPECT_EQ(WriteDatabase(lenient), WriteDatabase(strict)) << i;
        } else {
            EXPECT_THAT(fault, AllOf(StartsWith("entry "), HasSubstr(", byte "))) << i;
        }
    }
    EXPECT_GT(taken, 300) << "most changes are in titles";
    EXPECT_LT(taken, 2900);
}
