// A conversion that is killed at any instant loses nothing, and the next one finishes it.
#include "library/convert.h"
#include "library/game_folder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

constexpr uint16_t kMegaDrive = 4;
constexpr int kKills = 300;

// A folder of every kind of source, made from a number.
class Sources {
public:
    Sources(const fs::path& where, uint64_t seed)
        : folder(where) {
        CRandom random(seed);
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (int i = 0; i < 2; ++i) {
            const Bytes image = random.Fill(2048);
            Add("plain" + std::to_string(i) + ".bin", image, image);
        }
        Add("plain0.md", random.Fill(2048), {}); // a stem that is there twice
        const Bytes body = random.Fill(16384);
        const Bytes dump = Bytes(512, 0xCC) + body;
        Add("dump.smd", dump, PrepareImage(kMegaDrive, dump));
        const Bytes one = random.Fill(3072);
        const Bytes two = random.Fill(1024);
        Add("one.bin", one, one);
        Add("two.zip",
            ZipOf({
                {"two.bin", two}
        }),
            two);
        const Bytes zip = ZipOf({
            {"a.bin", random.Fill(2048)}
        });
        Add("unknown.zip", zip, zip);
        entries = EntryOf(kMegaDrive, "both",
                          {
                              {"one", one},
                              {"two", two}
        }) +
                  EntryOf(kMegaDrive, "known", {{"x", files[1].image}});
    }

    // Which file is in no game and not in its source either; empty if none is.
    [[nodiscard]] std::string Lost() const {
        const std::vector<Bytes> images = Images();
        for (const FILE& file : files) {
            if (!IsInGames(images, file.image) && !IsStillThere(file)) {
                return file.name;
            }
        }
        return {};
    }
    // What keeps the folder from being finished; empty if nothing does.
    [[nodiscard]] std::string Unfinished() const {
        const std::vector<Bytes> images = Images();
        for (const FILE& file : files) {
            if (!IsInGames(images, file.image)) {
                return file.name + " is in no game";
            }
        }
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() != ".game" && entry.path().filename() != "sources") {
                return entry.path().filename().string() + " is left";
            }
        }
        return {};
    }
    // Whether there are both games and sources.
    [[nodiscard]] bool IsMidway() const { return !Images().empty() && !Unfinished().empty(); }
    [[nodiscard]] const Bytes& Entries() const { return entries; }

private:
    struct FILE {
        std::string name;
        Bytes bytes;
        Bytes image;
    };

    void Add(const std::string& name, const Bytes& bytes, const Bytes& image) {
        std::ofstream(folder / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        files.push_back({name, bytes, image.empty() ? bytes : image});
    }

    // The pieces of every complete `.game`, whose hashes agree.
    [[nodiscard]] std::vector<Bytes> Images() const {
        std::vector<Bytes> images;
        for (const auto& entry : fs::directory_iterator(folder)) {
            CGameFile game;
            if (entry.path().extension() != ".game") {
                continue;
            }
            EXPECT_TRUE(LoadGameFile(false, entry.path(), game))
                << entry.path() << " is there, but not complete";
            std::string name;
            ROM_RECORD rom{};
            for (uint32_t i = 0; i < game.RomCount(); ++i) {
                EXPECT_TRUE(game.GetRom(i, name, rom));
                const auto piece = game.Data().subspan(game.RomOffset(i), rom.size);
                EXPECT_TRUE(std::ranges::equal(Sha256(piece), rom.sha256)) << entry.path();
                images.emplace_back(piece.begin(), piece.end());
            }
        }
        return images;
    }
    static bool IsInGames(const std::vector<Bytes>& images, const Bytes& image) {
        return std::find(images.begin(), images.end(), image) != images.end();
    }
    [[nodiscard]] bool IsStillThere(const FILE& file) const {
        std::ifstream stream(folder / file.name, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(stream), {}) == file.bytes;
    }

    fs::path folder;
    std::vector<FILE> files;
    Bytes entries;
};

ConversionEnd Convert(const fs::path& folder, const Bytes& entries, bool keepSources) {
    CGameDatabase database(ParseDatabase(entries.data(), entries.size()));
    CONVERSION conversion;
    conversion.folder = folder;
    conversion.system = kMegaDrive;
    conversion.database = &database;
    conversion.keepSources = keepSources;
    conversion.threads = 2;
    return ConvertFolder(conversion, {});
}

void Sleep(uint32_t microseconds) {
    const timespec time = {0, static_cast<long>(microseconds) * 1000};
    nanosleep(&time, nullptr);
}

// Converts in a child, which is killed after the time. Whether it was killed before it ended.
bool ConvertAndKill(const fs::path& folder, const Bytes& entries, bool keepSources,
                    uint32_t microseconds) {
    const pid_t child = fork();
    if (child == 0) {
        const ConversionEnd end = Convert(folder, entries, keepSources);
        _exit(end == ConversionEnd::kDone ? 0 : 1);
    }
    Sleep(microseconds);
    kill(child, SIGKILL);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
    return WIFSIGNALED(status);
}

} // namespace

TEST(FolderKill, NothingIsLostAtAnyInstant) {
    TemporaryFolder home;
    const fs::path folder = home.Path() / "megadrive";
    int killed = 0;
    int midway = 0;
    // The kills spread over about the time that a whole conversion takes, which differs from computer to
    // computer: it grows with each kill that came before the end, and shrinks with each that came after.
    uint32_t longest = 20000;
    for (int round = 0; round < kKills; ++round) {
        SCOPED_TRACE("round and seed " + std::to_string(round));
        const Sources sources(folder, static_cast<uint64_t>(round));
        CRandom random(static_cast<uint64_t>(round) + 1000);
        const bool keepSources = round % 4 == 3;
        const bool wasKilled =
            ConvertAndKill(folder, sources.Entries(), keepSources, random.Below(longest));
        killed += wasKilled ? 1 : 0;
        longest = wasKilled ? longest + longest / 16 : longest - longest / 8;
        longest = std::clamp(longest, 2000U, 900000U);
        ASSERT_EQ(sources.Lost(), "");
        midway += sources.IsMidway() ? 1 : 0;
        ASSERT_EQ(Convert(folder, sources.Entries(), keepSources), ConversionEnd::kDone);
        ASSERT_EQ(sources.Unfinished(), "");
    }
    EXPECT_GT(killed, kKills / 3) << "the kills come too late";
    EXPECT_GT(midway, kKills / 10) << "hardly any kill came between the first and the last game";
}
