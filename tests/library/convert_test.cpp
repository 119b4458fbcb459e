#include "formats/hand_made.h"
#include "library/convert.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

constexpr uint16_t kMegaDrive = 4;

Bytes HashBytes(const Bytes& data) {
    const Sha256Digest digest = Sha256(data);
    return {digest.begin(), digest.end()};
}

Bytes RomOf(std::string_view name, const Bytes& image) {
    Bytes rom = HandRom(name, image.size());
    PutBytes(rom, 48, HashBytes(image));
    return rom;
}

std::vector<CGameFile> Database(const Bytes& bytes) {
    return ParseDatabase(bytes.data(), bytes.size());
}

// A conversion that must succeed, and the file's parts.
struct CONVERTED {
    bool known = false;
    Bytes records;
    CGameFile game;
};

CONVERTED Convert(uint16_t system, std::string_view stem, const Bytes& file,
                  const std::vector<CGameFile>& database = {}) {
    CONVERTED result;
    Bytes out;
    EXPECT_TRUE(ConvertImage(system, stem, file, database, out, result.known));
    EXPECT_TRUE(result.game.Parse(out.data(), out.size(), true));
    result.records = Slice(out, 0, GetInteger(out, 4, 4));
    return result;
}

// An interleaved dump's 512 bytes of header, without the mark.
Bytes Dump(const Bytes& body) {
    return Bytes(512, 0xCC) + body;
}

} // namespace

TEST(Extensions, BelongToTheirSystemsInAnyCase) {
    const std::tuple<const char*, uint16_t> rows[] = {
        {".sms",  1},
        {".sg",   1},
        {".gg",   2},
        {".bin",  4},
        {".smd",  4},
        {".gen",  4},
        {".md",   4},
        {".nes",  5},
        {".SmS",  1},
        {".NES",  5},
        {".game", 0},
        {".zip",  0},
        {"",      0},
        {".",     0},
        {"sms",   0},
    };
    for (const auto& [extension, system] : rows) {
        EXPECT_EQ(SystemOfExtension(extension), system) << extension;
    }
}

TEST(Extensions, AreValidForTheirOwnSystemAlone) {
    EXPECT_TRUE(ValidExtension(1, "folder.gg\\Game (E).SMS"));
    EXPECT_FALSE(ValidExtension(2, "folder.gg\\Game.sms"));
    EXPECT_FALSE(ValidExtension(1, "folder.sms/readme"));
    EXPECT_FALSE(ValidExtension(1, "a.sms.txt"));
    EXPECT_TRUE(ValidExtension(4, ".md"));
    EXPECT_TRUE(ValidExtension(5, "a.b.nes"));
    EXPECT_FALSE(ValidExtension(3, "a.sms"));
    EXPECT_FALSE(ValidExtension(0, "a.sms"));
}

TEST(Extensions, AnyIsValidForAnArcadeSet) {
    EXPECT_TRUE(ValidExtension(6, "epr-7345.ic7"));
    EXPECT_TRUE(ValidExtension(6, "noextension"));
    EXPECT_TRUE(ValidExtension(6, "a.sms"));
}

TEST(PrepareImage, InterleavedBlocksArePutInOrder) {
    // A block holds the odd bytes and then the even ones.
    Bytes body;
    Bytes expected;
    for (int block = 0; block < 2; ++block) {
        Bytes odd(8192);
        Bytes even(8192);
        for (size_t i = 0; i < 8192; ++i) {
            odd[i] = static_cast<uint8_t>(i * 3 + static_cast<size_t>(block));
            even[i] = static_cast<uint8_t>(i / 7);
            expected.push_back(even[i]);
            expected.push_back(odd[i]);
        }
        body = body + odd + even;
    }
    EXPECT_TRUE(PrepareImage(kMegaDrive, Dump(body)) == expected);
}

TEST(PrepareImage, PartialBlockStaysAsItWas) {
    CRandom random(1);
    const Bytes whole = Bytes(8192, 1) + Bytes(8192, 2);
    const Bytes rest = random.Fill(1024);
    const Bytes prepared = PrepareImage(kMegaDrive, Dump(whole + rest));
    ASSERT_EQ(prepared.size(), 16384u + 1024);
    EXPECT_EQ(Slice(prepared, 0, 4), (Bytes{2, 1, 2, 1}));
    EXPECT_EQ(Slice(prepared, 16384, 1024), rest);
    EXPECT_EQ(PrepareImage(kMegaDrive, Dump(rest)), rest);
    EXPECT_TRUE(PrepareImage(kMegaDrive, Dump({})).empty());
}

TEST(PrepareImage, BitNineOfTheSizeTellsADump) {
    for (const size_t size : {size_t{1024}, size_t{16384}, size_t{16384 + 1024}, size_t{511}}) {
        const Bytes plain(size, 0xCC);
        EXPECT_EQ(PrepareImage(kMegaDrive, plain), plain) << size;
    }
    EXPECT_EQ(PrepareImage(kMegaDrive, Bytes(1024 + 512, 0xCC)).size(), 1024u);
    EXPECT_EQ(PrepareImage(kMegaDrive, Bytes(1023, 0xCC)).size(), 511u);
    EXPECT_TRUE(PrepareImage(kMegaDrive, {}).empty());
}

TEST(PrepareImage, AnyLetterOfTheMarkInItsPlaceKeepsTheImage) {
    for (size_t i = 0; i < 4; ++i) {
        Bytes file = Dump(Bytes(16384, 0xCC));
        file[256 + i] = static_cast<uint8_t>("SEGA"[i]);
        EXPECT_TRUE(PrepareImage(kMegaDrive, file) == file) << i;
        // A letter in the wrong place does not count.
        file = Dump(Bytes(16384, 0xCC));
        file[256 + i] = static_cast<uint8_t>("ASEG"[i]);
        EXPECT_EQ(PrepareImage(kMegaDrive, file).size(), 16384u) << i;
    }
    Bytes marked = Dump(Bytes(16384, 0xCC));
    PutText(marked, 256, "SEGA");
    EXPECT_TRUE(PrepareImage(kMegaDrive, marked) == marked);
}

TEST(PrepareImage, OtherSystemsKeepTheirHeaders) {
    const Bytes file = Dump(Bytes(16384, 1));
    for (const uint16_t system : {uint16_t{1}, uint16_t{2}, uint16_t{5}}) {
        EXPECT_TRUE(PrepareImage(system, file) == file) << system;
    }
}

TEST(ConvertImage, UnknownGameGetsItsStemAndTheDefaults) {
    const Bytes image = Text("an image");
    const CONVERTED made = Convert(1, "My Game (E)", image);
    EXPECT_FALSE(made.known);
    Bytes name = HandName("My Game (E)", {0});
    name[4] = 1;
    name[5] = 1;
    PutText(name, 216, "My Game (E)");
    const Bytes machine = {'S', 'M', 'S', '0', 0, 0, 0, 0, 0, 0, 0,  0,
                           1,   0,   0,   0,   1, 0, 0, 0, 1, 0, 63, 0};
    EXPECT_EQ(Slice(made.records, 88, made.records.size() - 88),
              name + RomOf("v1.0", image) + machine);
    EXPECT_EQ(made.game.AssembleImage(0), image);
    EXPECT_EQ(made.game.Header().system, 1);
}

TEST(ConvertImage, UnknownGameOfOtherSystemsGetsTheBareDefaultRecord) {
    const std::tuple<uint16_t, Bytes> rows[] = {
        {2, Text("GAG0") + Bytes(19)},
        {4, Text("GDF0")            },
        {5, Text("GDF0")            }
    };
    for (const auto& [system, machine] : rows) {
        const CONVERTED made = Convert(system, "stem", Text("image"));
        EXPECT_FALSE(made.known);
        EXPECT_EQ(Slice(made.records, 88 + 368 + 80, made.records.size() - 88 - 368 - 80), machine);
    }
}

TEST(ConvertImage, HashesAreInTheHeader) {
    Bytes out;
    bool known = true;
    ASSERT_TRUE(ConvertImage(5, "stem", Text("image"), {}, out, known));
    const size_t headerSize = GetInteger(out, 4, 4);
    EXPECT_EQ(Slice(out, 24, 32), HashBytes(Slice(out, headerSize, out.size() - headerSize)));
    Bytes records = Slice(out, 0, headerSize);
    PutInteger(records, 12, 4, 0);
    PutBytes(records, 24, Bytes(64));
    EXPECT_EQ(Slice(out, 56, 32), HashBytes(records));
}

TEST(ConvertImage, ArcadeImageIsLeftAlone) {
    Bytes out = {1};
    bool known = true;
    EXPECT_FALSE(ConvertImage(6, "stem", Text("image"), {}, out, known));
    EXPECT_TRUE(out.empty());
    EXPECT_FALSE(known);
}

TEST(ConvertImage, EmptyImageIsAGameOfNothing) {
    const CONVERTED made = Convert(1, "stem", {});
    EXPECT_EQ(made.game.AssembleImage(0), Bytes());
}

TEST(ConvertImage, LongStemRunsOnIntoTheSecondTitle) {
    const std::string stem(200, 's');
    const CONVERTED made = Convert(5, stem, Text("image"));
    NAME_VIEW name;
    ASSERT_TRUE(made.game.GetName(0, name));
    EXPECT_EQ(name.title, std::string(96, 's'));
    EXPECT_EQ(name.altTitle, std::string(31, 's'));
    EXPECT_EQ(name.contentKey, std::string(44, 's'));
}

TEST(ConvertImage, KnownGameGetsTheNamesThatUseItsImage) {
    const Bytes image = Text("image");
    Bytes first = HandName("First", {1, 0});
    first[6] = 90;
    PutText(first, 208, "EU");
    const Bytes other = HandName("Other", {0});
    const Bytes second = HandName("Second", {1});
    Bytes secondMachine = HandMachine("SMS0", 24);
    secondMachine[20] = 99;
    const size_t headerSize = 88 + 3 * 368 + 2 * 80 + 3 * 24;
    const Bytes entry = HandGame(1, headerSize, 7 + image.size()) + first + other + second +
                        HandRom("x", 7, 5) + RomOf("v1.2", image) + HandMachine("SMS0", 24) +
                        HandMachine("SMS0", 24) + secondMachine;
    const CONVERTED made = Convert(1, "stem", image, Database(HandGame(1, 88) + entry));
    EXPECT_TRUE(made.known);
    // Each name keeps its own bytes and machine record, and lists the one piece of this file.
    PutBytes(first, 304, {0, 255});
    EXPECT_EQ(Slice(made.records, 88, made.records.size() - 88),
              first + HandName("Second", {0}) + RomOf("v1.2", image) + HandMachine("SMS0", 24) +
                  secondMachine);
    EXPECT_EQ(made.game.AssembleImage(0), image);
    EXPECT_EQ(made.game.AssembleImage(1), image);
}

TEST(ConvertImage, MegaDriveImageIsKnownByItsBytesInOrder) {
    CRandom random(1);
    const Bytes body = random.Fill(16384);
    const Bytes prepared = PrepareImage(kMegaDrive, Dump(body));
    const Bytes entry = HandGame(4, 88 + 368 + 80 + 4, prepared.size()) + HandName("Known", {0}) +
                        RomOf("v1.0", prepared) + Text("GDF0");
    const CONVERTED made = Convert(kMegaDrive, "stem", Dump(body), Database(entry));
    EXPECT_TRUE(made.known);
    EXPECT_TRUE(made.game.AssembleImage(0) == prepared);
    EXPECT_FALSE(Convert(kMegaDrive, "stem", body, Database(entry)).known);
}

TEST(ConvertImage, EveryEntryThatKnowsTheImageIsTaken) {
    const Bytes image = Text("image");
    const Bytes first =
        HandGame(5, 88 + 368 + 80 + 4, 5) + HandName("A", {0}) + RomOf("one", image) + Text("GDF0");
    const Bytes second = HandGame(5, 88 + 2 * 368 + 80 + 8, 5) + HandName("B", {0}) +
                         HandName("C", {0}) + RomOf("two", image) + Text("GDF0GDF0");
    const CONVERTED made = Convert(5, "stem", image, Database(first + second));
    EXPECT_TRUE(made.known);
    // The positions restart in each entry: A is linked twice, C never.
    EXPECT_EQ(Slice(made.records, 88, made.records.size() - 88),
              HandName("A", {0, 0}) + HandName("B", {0}) + HandName("C", {}) + RomOf("one", image) +
                  RomOf("two", image) + Text("GDF0GDF0GDF0"));
    EXPECT_EQ(made.game.AssembleImage(1), image);
    // Each piece holds the bytes of its hash.
    EXPECT_EQ(Bytes(made.game.Data().begin(), made.game.Data().end()), image + image);
}

TEST(BuildGame, HoldsItsImageReadyToPlay) {
    CGameFile game;
    bool known = true;
    ASSERT_TRUE(BuildGame(5, "stem", Text("image"), {}, game, known));
    EXPECT_FALSE(known);
    game.selectedName = 0;
    EXPECT_EQ(game.AssembleSelectedImage(), Text("image"));
    ASSERT_NE(game.SelectedRomHash(), nullptr);
    EXPECT_EQ(Bytes(game.SelectedRomHash(), game.SelectedRomHash() + 32), HashBytes(Text("image")));
    EXPECT_FALSE(BuildGame(6, "stem", Text("image"), {}, game, known));
}
