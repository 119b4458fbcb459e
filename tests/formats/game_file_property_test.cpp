// Properties of every container, tried on thousands of random ones from fixed seeds.
#include "formats/game_file.h"
#include "formats/hand_made.h"
#include "formats/packing.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

struct RANDOM_GAME {
    Bytes records;
    Bytes image;
    std::vector<Bytes> pieces;
    std::vector<std::vector<uint8_t>> lists; // each list up to its first invalid index
};

void AddRandomPieces(CRandom& random, RANDOM_GAME& game, Bytes& records) {
    for (uint32_t i = random.Below(5); i > 0; --i) {
        const uint32_t size = random.Below(40);
        game.pieces.push_back(random.Below(2) == 0 ? random.Fill(size)
                                                   : Bytes(size, random.Byte()));
        game.image = game.image + game.pieces.back();
        Bytes rom = HandRom("", size);
        PutBytes(rom, 8, random.Fill(72));
        records = records + rom;
    }
}

Bytes RandomName(CRandom& random, RANDOM_GAME& game, size_t romCount) {
    Bytes name = HandName("", {});
    PutBytes(name, 4, random.Fill(300));
    std::vector<uint8_t> listed;
    bool ended = false;
    for (uint32_t slot = random.Below(66), i = 0; i < std::min(slot, 64u); ++i) {
        const auto index = static_cast<uint8_t>(random.Below(romCount + 1));
        const uint8_t entry = index == romCount ? uint8_t{255} : index;
        name[304 + i] = entry;
        ended = ended || entry == 255;
        if (!ended) {
            listed.push_back(entry);
        }
    }
    game.lists.push_back(listed);
    return name;
}

// Valid records in the written order, with random bytes wherever the format allows any.
RANDOM_GAME RandomGame(CRandom& random) {
    struct KIND {
        uint16_t system;
        std::string_view tag;
        size_t size;
    };
    constexpr KIND kKinds[] = {
        {1, "SMS0", 24},
        {2, "GAG0", 23},
        {4, "GDF0", 4 },
        {5, "GDF0", 4 },
        {6, "ARC0", 16}
    };
    const KIND& kind = kKinds[random.Below(5)];
    RANDOM_GAME game;
    Bytes roms;
    AddRandomPieces(random, game, roms);
    Bytes names;
    Bytes machines;
    for (uint32_t i = random.Below(5); i > 0; --i) {
        names = names + RandomName(random, game, game.pieces.size());
        Bytes machine = random.Fill(kind.size);
        PutText(machine, 0, kind.tag);
        machines = machines + machine;
    }
    const size_t headerSize = 88 + names.size() + roms.size() + machines.size();
    Bytes header = HandGame(kind.system, headerSize, game.image.size());
    PutBytes(header, 18, random.Fill(70));
    game.records = header + names + roms + machines;
    return game;
}

Bytes WithBody(Bytes records, const Bytes& body) {
    PutInteger(records, 12, 4, body.size());
    return records + body;
}

// Calls everything that reads, with indices in and out of range.
void ReadEverything(CGameFile& game) {
    NAME_VIEW name;
    std::string text;
    ROM_RECORD rom{};
    MACHINE_RECORD machine{};
    const uint8_t* bytes = nullptr;
    uint32_t length = 0;
    for (uint32_t i = 0; i <= std::max(game.NameCount(), game.RomCount()); ++i) {
        game.selectedName = static_cast<int32_t>(i);
        EXPECT_EQ(game.GetName(i, name), i < game.NameCount());
        EXPECT_EQ(game.GetRom(i, text, rom), i < game.RomCount());
        EXPECT_EQ(game.GetMachineRecord(i, bytes, length), i < game.MachineRecordCount());
        EXPECT_EQ(game.SelectedMachineRecord(machine), i < game.MachineRecordCount());
        EXPECT_EQ(game.SelectedRomHash() != nullptr, i < game.RomCount());
        EXPECT_EQ(game.NamesUsingRom(i).back(), -1);
        EXPECT_LT(game.NameRomAt(i, i % 70), 255);
        const auto image = game.AssembleSelectedImage();
        EXPECT_LE(image ? image->size() : 0, 64 * game.Data().size());
    }
}

} // namespace

TEST(GameFileProperty, ValidRecordsSurviveByteForByte) {
    CRandom random(11);
    for (int round = 0; round < 5000; ++round) {
        const RANDOM_GAME made = RandomGame(random);
        CGameFile game;
        ASSERT_TRUE(game.Parse(made.records.data(), made.records.size(), false)) << round;
        ASSERT_TRUE(game.Serialise(true) == made.records) << round;
        ReadEverything(game);
    }
}

TEST(GameFileProperty, ValidFilesGiveTheirImages) {
    CRandom random(12);
    for (int round = 0; round < 150; ++round) {
        const RANDOM_GAME made = RandomGame(random);
        const Bytes file = WithBody(made.records, PackImage(made.image));
        CGameFile game;
        ASSERT_TRUE(game.Parse(file.data(), file.size(), true)) << round;
        for (uint32_t name = 0; name < made.lists.size(); ++name) {
            Bytes expected;
            for (const uint8_t index : made.lists[name]) {
                expected = expected + made.pieces[index];
            }
            ASSERT_TRUE(game.AssembleImage(name) == expected) << round << " " << name;
        }
    }
}

TEST(GameFileProperty, DatabasesGiveEveryEntry) {
    CRandom random(13);
    for (int round = 0; round < 200; ++round) {
        std::vector<Bytes> entries(random.Below(8));
        Bytes all;
        for (Bytes& entry : entries) {
            entry = RandomGame(random).records;
            entry = random.Below(2) == 0 ? entry : HandGada("set") + entry;
            all = all + entry;
        }
        std::vector<CGameFile> read = ParseDatabase(all.data(), all.size());
        ASSERT_EQ(read.size(), entries.size());
        for (size_t i = 0; i < read.size(); ++i) {
            ASSERT_TRUE(read[i].Serialise(true) == entries[i]);
        }
    }
}

TEST(GameFileProperty, EveryTruncationIsRefused) {
    CRandom random(14);
    for (int round = 0; round < 8; ++round) {
        const RANDOM_GAME made = RandomGame(random);
        const Bytes whole = WithBody(made.records, PackImage(made.image));
        for (size_t length = 0; length < whole.size(); ++length) {
            const Bytes cut = Slice(whole, 0, length);
            CGameFile game;
            ASSERT_FALSE(game.Parse(cut.data(), cut.size(), true)) << length;
            ASSERT_EQ(game.Parse(cut.data(), cut.size(), false), length >= made.records.size());
            ASSERT_EQ(ParseDatabase(cut.data(), cut.size()).size(),
                      length >= made.records.size() ? 1u : 0u);
        }
    }
}

TEST(GameFileProperty, MutationsAreRefusedOrParsed) {
    CRandom random(15);
    constexpr std::string_view kTags[] = {"GAME", "GADA", "NAME", "ROM0",
                                          "SMS0", "GAG0", "GDF0", "ARC0"};
    size_t parsed = 0;
    size_t refused = 0;
    RANDOM_GAME made;
    Bytes whole;
    for (int round = 0; round < 100000; ++round) {
        if (round % 1000 == 0) {
            made = RandomGame(random);
            whole = WithBody(made.records, PackImage(made.image));
        }
        Bytes mutated = whole;
        for (uint32_t count = 1 + random.Below(3); count > 0; --count) {
            const uint32_t at = random.Below(mutated.size());
            switch (random.Below(5)) {
            case 0: mutated[at] = random.Byte(); break;
            case 1: mutated[random.Below(24)] = random.Byte(); break;
            case 2:
                mutated[made.records.size() + random.Below(whole.size() - made.records.size())] ^=
                    1;
                break;
            case 3:
                PutInteger(mutated, size_t{4} * (1 + random.Below(3)), 4,
                           random.Next() >> random.Below(32));
                break;
            default:
                PutText(mutated, std::min<size_t>(at, mutated.size() - 4), kTags[random.Below(8)]);
                break;
            }
        }
        CGameFile game;
        const bool whole0 = game.Parse(mutated.data(), mutated.size(), true);
        ASSERT_EQ(whole0, game.DataUnpacked());
        ASSERT_LE(game.Data().size(), LargestUnpackedSize(mutated.size()));
        ReadEverything(game);
        (whole0 ? parsed : refused) += 1;
        if (game.Parse(mutated.data(), mutated.size(), false)) {
            // What was read is written again as valid records.
            const Bytes again = game.Serialise(true);
            CGameFile second;
            ASSERT_TRUE(second.Parse(again.data(), again.size(), false));
            ASSERT_EQ(second.NameCount(), game.NameCount());
            ASSERT_EQ(second.RomCount(), game.RomCount());
        }
        ASSERT_LE(ParseDatabase(mutated.data(), mutated.size()).size(), mutated.size() / 88);
    }
    EXPECT_GT(parsed, 1000u);
    EXPECT_GT(refused, 1000u);
}
