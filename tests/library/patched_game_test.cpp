#include "formats/checksums.h"
#include "formats/game_file.h"
#include "formats/hand_made.h"
#include "library/convert.h"
#include "library/patched_game.h"

#include "support/temporary_folder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

using testing::EndsWith;
using testing::HasSubstr;

namespace {

constexpr uint16_t kMasterSystem = 1;
constexpr uint16_t kArcade = 6;

// An IPS patch of one byte.
Bytes OneByte(uint8_t offset, uint8_t value) {
    return Text("PATCH") + Bytes{0, 0, offset, 0, 1, value} + Text("EOF");
}

void Append32(Bytes& to, uint32_t value) {
    to.resize(to.size() + 4);
    PutInteger(to, to.size() - 4, 4, value);
}

// A UPS patch that changes the first byte; sizes are below 128.
Bytes FirstByteUps(const Bytes& image, uint8_t value) {
    Bytes patched = image;
    patched[0] = value;
    const auto size = static_cast<uint8_t>(image.size() | 0x80);
    Bytes patch = Text("UPS1") + Bytes{size, size, 0x80, static_cast<uint8_t>(image[0] ^ value), 0};
    Append32(patch, Crc32(image));
    Append32(patch, Crc32(patched));
    Append32(patch, Crc32(patch));
    return patch;
}

MACHINE_RECORD Record(uint8_t board) {
    MACHINE_RECORD record{};
    record.bytes[20] = board;
    return record;
}

CGameFile GameOf(uint16_t system, const Bytes& image) {
    CGameFile game;
    EXPECT_TRUE(BuildKnownGame(system, "Title", image, Record(7), game));
    game.selectedName = 0;
    return game;
}

// Two variants with an image each.
CGameFile TwoVariants(const Bytes& first, const Bytes& second) {
    CGameFile game;
    game.Create(false, kMasterSystem);
    game.AddRom("first", Sha256(first), static_cast<uint32_t>(first.size()));
    game.AddRom("second", Sha256(second), static_cast<uint32_t>(second.size()));
    game.AddNameFromTitle("First", 0, 1, Record(1));
    game.AddNameFromTitle("Second", 0, 1, Record(2));
    EXPECT_TRUE(game.LinkRom(0, 0));
    EXPECT_TRUE(game.LinkRom(1, 1));
    EXPECT_TRUE(game.SetData(first + second));
    game.selectedName = 0;
    return game;
}

uint8_t BoardOf(const CGameFile& game) {
    MACHINE_RECORD record{};
    EXPECT_TRUE(game.SelectedMachineRecord(record));
    return record.bytes[20];
}

} // namespace

TEST(PatchedGame, HasTheNewImageAndTheOldTitleAndBoard) {
    const TemporaryFolder folder;
    const fs::path patch = folder.Write("x.ips", OneByte(2, 9));
    CGameFile game = GameOf(kMasterSystem, Bytes{1, 2, 3, 4});
    std::string error;
    ASSERT_TRUE(PatchGame(patch, game, error)) << error;
    EXPECT_EQ(game.AssembleSelectedImage(), (Bytes{1, 2, 9, 4}));
    EXPECT_EQ(BoardOf(game), 7);
    NAME_VIEW name;
    ASSERT_TRUE(game.GetName(0, name));
    EXPECT_EQ(name.title, "Title");
}

// Their key is the hash of the image.
TEST(PatchedGame, HasSavesOfItsOwn) {
    const TemporaryFolder folder;
    const fs::path patch = folder.Write("x.ips", OneByte(2, 9));
    CGameFile game = GameOf(kMasterSystem, Bytes{1, 2, 3, 4});
    std::string error;
    ASSERT_TRUE(PatchGame(patch, game, error)) << error;
    const Sha256Digest hash = Sha256(Bytes{1, 2, 9, 4});
    ASSERT_NE(game.SelectedRomHash(), nullptr);
    EXPECT_TRUE(std::equal(hash.begin(), hash.end(), game.SelectedRomHash()));
}

TEST(PatchedGame, APatchWithAChecksumChangesTheVariantThatItIsForAndSelectsIt) {
    const TemporaryFolder folder;
    const Bytes first{1, 2, 3};
    const Bytes second{4, 5, 6, 7};
    const fs::path patch = folder.Write("x.ups", FirstByteUps(second, 8));
    CGameFile game = TwoVariants(first, second);
    std::string error;
    ASSERT_TRUE(PatchGame(patch, game, error)) << error;
    EXPECT_EQ(game.selectedName, 1);
    EXPECT_EQ(BoardOf(game), 2);
    EXPECT_EQ(game.AssembleImage(0), first);
    EXPECT_EQ(game.AssembleImage(1), (Bytes{8, 5, 6, 7}));
}

TEST(PatchedGame, AnIpsPatchChangesAllVariantsAndKeepsTheSelectedOne) {
    const TemporaryFolder folder;
    const fs::path patch = folder.Write("x.ips", OneByte(0, 9));
    CGameFile game = TwoVariants(Bytes{1, 2, 3}, Bytes{4, 5});
    game.selectedName = 1;
    std::string error;
    ASSERT_TRUE(PatchGame(patch, game, error)) << error;
    EXPECT_EQ(game.selectedName, 1);
    EXPECT_EQ(game.AssembleImage(0), (Bytes{9, 2, 3}));
    EXPECT_EQ(game.AssembleImage(1), (Bytes{9, 5}));
}

TEST(PatchedGame, AGameWithoutASelectionGetsTheFirstPatchedOne) {
    const TemporaryFolder folder;
    CGameFile game = TwoVariants(Bytes{1, 2, 3}, Bytes{4, 5});
    game.selectedName = -1;
    std::string error;
    ASSERT_TRUE(PatchGame(folder.Write("x.ups", FirstByteUps(Bytes{4, 5}, 1)), game, error));
    EXPECT_EQ(game.selectedName, 1);
}

TEST(PatchedGame, APatchForAnotherGameChangesNothing) {
    const TemporaryFolder folder;
    const fs::path patch = folder.Write("x.ups", FirstByteUps(Bytes{7, 7, 7}, 8));
    CGameFile game = GameOf(kMasterSystem, Bytes{1, 2, 3, 4});
    std::string error;
    EXPECT_FALSE(PatchGame(patch, game, error));
    EXPECT_EQ(error, patch.string() + ": is for another game, or for another version of it");
    EXPECT_EQ(game.AssembleSelectedImage(), (Bytes{1, 2, 3, 4}));
}

TEST(PatchedGame, AMissingPatchIsNamed) {
    const TemporaryFolder folder;
    CGameFile game = GameOf(kMasterSystem, Bytes{1, 2});
    std::string error;
    EXPECT_FALSE(PatchGame(folder.Path() / "none.ips", game, error));
    EXPECT_THAT(error, HasSubstr("none.ips"));
}

// The pieces of a board are joined in their order, and the patch is for all of it.
TEST(PatchedGame, AnArcadeBoardIsPatchedAsOneImage) {
    const TemporaryFolder folder;
    CGameFile game;
    game.Create(false, kArcade);
    game.AddRom("a", Sha256(Bytes{1, 2}), 2);
    game.AddRom("b", Sha256(Bytes{3}), 1);
    game.AddNameFromTitle("Board", 0, 1, Record(1));
    EXPECT_TRUE(game.LinkRom(0, 1));
    EXPECT_TRUE(game.LinkRom(0, 0));
    EXPECT_TRUE(game.SetData(Bytes{1, 2, 3}));
    game.selectedName = 0;
    std::string error;
    ASSERT_TRUE(PatchGame(folder.Write("x.ips", OneByte(0, 9)), game, error)) << error;
    EXPECT_EQ(game.AssembleSelectedImage(), (Bytes{9, 1, 2}));
}

TEST(PatchBeside, HasTheNameOfTheGame) {
    const TemporaryFolder folder;
    const fs::path game = folder.Write("A game.v1.sms", Bytes{1});
    EXPECT_EQ(PatchBeside(game), fs::path());
    folder.Write("A game.ips", Bytes{1});
    EXPECT_EQ(PatchBeside(game), fs::path());
    folder.Write("A game.v1.IPS", Bytes{1});
    EXPECT_THAT(PatchBeside(game).string(), EndsWith("A game.v1.IPS"));
    folder.Write("A game.v1.ups", Bytes{1});
    EXPECT_THAT(PatchBeside(game).string(), EndsWith("A game.v1.ups"));
    folder.Write("A game.v1.bps", Bytes{1});
    EXPECT_THAT(PatchBeside(game).string(), EndsWith("A game.v1.bps"));
}

TEST(PatchBeside, IsNeverTheGameItselfNorAFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(PatchBeside(folder.Write("a.ips", Bytes{1})), fs::path());
    fs::create_directory(folder.Path() / "b.bps");
    EXPECT_EQ(PatchBeside(folder.Write("b.sms", Bytes{1})), fs::path());
}
