// Folders made at random, converted in rounds of which most are stopped or run out of disk: whatever was in a file is
// in a game or still in a file after each of them, and every board that was complete has its game in the end.
#include "library/full_disk.h"
#include "library/game_folder.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace fs = std::filesystem;

namespace {

constexpr uint16_t kSms = 1;
constexpr uint16_t kArcade = 6;
constexpr uint64_t kFolders = 30;
constexpr int kRounds = 4;

using Images = std::set<Bytes>;

// A folder with plain files and zips, and a database that knows some of what they hold.
class RandomFolder {
public:
    explicit RandomFolder(uint64_t seed)
        : random(seed)
        , system(Chance(2) ? kArcade : kSms)
        , folder(system, MakeEntries()) {
        folder.threads = 1 + random.Next() % 3;
        folder.keepSources = Chance(4);
        const uint32_t files = 3 + random.Next() % 6;
        for (uint32_t i = 0; i < files; ++i) {
            AddFile("file" + std::to_string(i));
        }
    }

    // Stopped or without room, unless it is the last one.
    void Round(bool last) {
        std::optional<FullDisk> disk;
        folder.stop = false;
        folder.onReport = nullptr;
        if (!last && Chance(2)) {
            disk.emplace(900 + random.Next() % 1500);
        } else if (!last) {
            folder.onReport = [this, left = random.Next() % 4]() mutable {
                folder.stop = left-- == 0;
            };
        }
        (void)folder.Convert();
    }

    // What was put in and is nowhere any more.
    [[nodiscard]] size_t Lost() const {
        Images found;
        for (const char* below : {"", "sources"}) {
            if (fs::exists(folder.Path() / below)) {
                CollectFolder(folder.Path() / below, found);
            }
        }
        return static_cast<size_t>(
            std::ranges::count_if(put, [&](const Bytes& image) { return !found.contains(image); }));
    }

    // The first board whose pieces were all there and that has no game; empty if none is missing.
    [[nodiscard]] std::string MissingBoard() const {
        for (const auto& [name, pieces] : boards) {
            const bool complete = std::ranges::all_of(
                pieces, [&](const Bytes& piece) { return put.contains(piece); });
            if (system == kArcade && complete && !fs::exists(folder.Path() / (name + ".game"))) {
                return name;
            }
        }
        return {};
    }

private:
    bool Chance(uint32_t of) { return random.Next() % of == 0; }
    Bytes AnImage() { return Noise(1 + random.Next() % 8, 1024); }

    Bytes MakeEntries() {
        Bytes entries;
        for (const char* name : {"one", "two", "three"}) {
            std::vector<NAMED_BYTES> pieces;
            const uint32_t count = 1 + random.Next() % 3;
            for (uint32_t i = 0; i < count; ++i) {
                pieces.push_back({"piece" + std::to_string(i), AnImage()});
                boards[name].push_back(pieces.back().bytes);
            }
            entries = entries + EntryOf(system, name, pieces);
        }
        return entries;
    }

    void AddFile(const std::string& name) {
        if (Chance(2)) {
            const Bytes image = AnImage();
            put.insert(image);
            folder.Write(name + ".sms", image);
            return;
        }
        std::vector<NAMED_BYTES> entries;
        const uint32_t count = 1 + random.Next() % 3;
        for (uint32_t i = 0; i < count; ++i) {
            const bool other = Chance(5);
            entries.push_back({"entry" + std::to_string(i) + (other ? ".txt" : ".sms"), AnImage()});
            put.insert(entries.back().bytes);
        }
        folder.Write(name + ".zip", ZipOf(entries));
    }

    // The bytes, and if they are a zip, what is in it.
    static void Collect(const Bytes& bytes, Images& found) {
        found.insert(bytes);
        ZipReader reader;
        std::string ignored;
        Bytes entry;
        if (!reader.Open(bytes, ignored)) {
            return;
        }
        for (uint32_t i = 0; i < reader.EntryCount(); ++i) {
            if (reader.Unpack(i, entry, ignored)) {
                found.insert(entry);
            }
        }
    }

    void CollectFolder(const fs::path& where, Images& found) const {
        for (const fs::directory_entry& file : fs::directory_iterator(where)) {
            CGameFile game;
            if (!file.is_regular_file()) {
                continue;
            }
            if (file.path().extension() != ".game") {
                Collect(folder.Read(fs::relative(file.path(), folder.Path()).string()), found);
                continue;
            }
            ASSERT_TRUE(LoadGameFile(false, file.path(), game)) << file.path();
            std::string name;
            ROM_RECORD rom{};
            for (uint32_t i = 0; game.GetRom(i, name, rom); ++i) {
                const auto piece = game.Data().subspan(game.RomOffset(i), rom.size);
                Collect({piece.begin(), piece.end()}, found);
            }
        }
    }

    CRandom random;
    uint16_t system;
    std::map<std::string, std::vector<Bytes>> boards;
    GameFolder folder;
    Images put;
};

} // namespace

TEST(FolderRandom, NothingIsLostAndEveryBoardIsMade) {
    for (uint64_t seed = 0; seed < kFolders && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomFolder folder(seed);
        for (int round = 1; round <= kRounds; ++round) {
            folder.Round(round == kRounds);
            EXPECT_EQ(folder.Lost(), 0u) << "after round " << round;
        }
        EXPECT_EQ(folder.MissingBoard(), "");
    }
}
