#include "base/files.h"
#include "formats/zip.h"
#include "host/archive.h"
#include "host/host_fixture.h"
#include "host/report.h"

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <random>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;
using Entries = std::map<std::string, Bytes>;

class Archive : public HostTest {
protected:
    [[nodiscard]] fs::path Folder() const { return home.Path() / "sms" / "saves"; }
    [[nodiscard]] fs::path Path() const { return Folder() / "game.zip"; }

    void Put(const Bytes& bytes) const { home.Write("sms/saves/game.zip", bytes); }

    static Bytes Zip(const Entries& entries) {
        ZipWriter writer;
        std::string error;
        for (const auto& [name, bytes] : entries) {
            EXPECT_TRUE(writer.Add(name, bytes, error)) << error;
        }
        return writer.Finish(error);
    }

    static Bytes Content(const fs::path& path) {
        Bytes bytes;
        std::string error;
        EXPECT_TRUE(ReadFile(path, bytes, error)) << error;
        return bytes;
    }

    static Entries Unzip(const fs::path& path) {
        const Bytes bytes = Content(path);
        ZipReader zip;
        std::string error;
        EXPECT_TRUE(zip.Open(bytes, error)) << error;
        Entries entries;
        for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
            ZIP_ENTRY entry;
            Bytes content;
            EXPECT_TRUE(zip.Entry(i, entry));
            EXPECT_TRUE(zip.Unpack(i, content, error)) << error;
            EXPECT_EQ(entries.count(entry.rawName), 0u) << "twice: " << entry.rawName;
            entries[entry.rawName] = content;
        }
        return entries;
    }

    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Folder())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    static Bytes StateOf(EMU_THREAD& session) {
        uint32_t size = 0;
        const StateBlob blob = session.machine->SaveState(size);
        return {blob.get(), blob.get() + size};
    }

    static void RunFrames(EMU_THREAD& session, uint32_t count) {
        std::vector<uint32_t> pixels(size_t{320} * 240);
        std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
        EMU_VIDEO_FRAME video{};
        video.pixels = pixels.data();
        EMU_AUDIO_FRAME audio{samples.data(), 44100, 0};
        for (uint32_t i = 0; i < count; ++i) {
            session.machine->RunFrame(nullptr, &video, &audio);
        }
    }

    static Bytes Noise(size_t size, uint32_t seed) {
        std::mt19937 random(seed);
        Bytes bytes(size);
        for (uint8_t& byte : bytes) {
            byte = static_cast<uint8_t>(random());
        }
        return bytes;
    }
};

constexpr const char* kEntry = "a5a5a5a5a5a5";

// No file of this process may grow beyond `bytes`, as on a full disk: only writes fail.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before);
        handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before{};
    void (*handler)(int) = nullptr;
};

bool AnyMentions(const std::vector<std::string>& reports, const std::string& text) {
    return std::any_of(reports.begin(), reports.end(), [&](const std::string& report) {
        return report.find(text) != std::string::npos;
    });
}

} // namespace

TEST_F(Archive, SaveMakesTheFolderAndOneEntry) {
    const auto session = Create();
    RunFrames(*session, 5);
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*session)}
    }));
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(Archive, SavingTwiceLeavesOneEntryForTheImage) {
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    RunFrames(*session, 5);
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*session)}
    }));
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
}

TEST_F(Archive, TwoImagesOfOneNameKeepTheirOwnEntries) {
    const auto first = Create();
    const auto second = Create({}, "GAME", 1, 0x01);
    RunFrames(*first, 3);
    RunFrames(*second, 9);
    EXPECT_TRUE(EmuSaveToArchive(*first));
    EXPECT_TRUE(EmuSaveToArchive(*second));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry,         StateOf(*first) },
                                 {"010101010101", StateOf(*second)}
    }));

    const auto again = Create();
    EXPECT_TRUE(EmuLoadFromArchive(*again));
    EXPECT_EQ(MachineOf(*again).frame, 3u);
}

TEST_F(Archive, EntryNameIsComparedWithoutCase) {
    Put(Zip({
        {"A5A5A5A5A5A5", {1, 2, 3}},
        {"Other",        {4}      }
    }));
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry,  StateOf(*session)},
                                 {"Other", {4}              }
    }));

    Put(Zip({
        {"A5A5A5A5A5A5", StateOf(*session)}
    }));
    EXPECT_TRUE(EmuLoadFromArchive(*session));
}

TEST_F(Archive, EmptyEntriesAreNotCarriedOver) {
    Put(Zip({
        {"folder/", {} },
        {"empty",   {} },
        {"full",    {1}}
    }));
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*session)},
                                 {"full", {1}              }
    }));
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
}

TEST_F(Archive, LoadRestoresTheStateAndEndsTheStatic) {
    const auto session = Create();
    RunFrames(*session, 7);
    ASSERT_TRUE(EmuSaveToArchive(*session));
    const auto fresh = Create();
    fresh->showStatic = 1;
    EXPECT_TRUE(EmuLoadFromArchive(*fresh));
    EXPECT_EQ(StateOf(*fresh), StateOf(*session));
    EXPECT_EQ(fresh->showStatic, 0);
}

TEST_F(Archive, WithoutArchiveOrEntryALoadChangesNothing) {
    const auto session = Create();
    RunFrames(*session, 7);
    session->showStatic = 1;
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    Put(Zip({
        {"somebody else", {1}},
        {kEntry,          {} }
    }));
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_EQ(session->showStatic, 1);
    EXPECT_EQ(MachineOf(*session).frame, 7u);
    EXPECT_EQ(MachineOf(*session).resets, 1u);
    EXPECT_TRUE(TakeReports().empty());
}

TEST_F(Archive, ARefusedStateResetsTheMachineAndIsKept) {
    const Bytes old = Zip({
        {kEntry,  {1, 2, 3}},
        {"other", {4}      }
    });
    Put(old);
    const auto session = Create();
    RunFrames(*session, 7);
    session->showStatic = 1;
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_EQ(MachineOf(*session).frame, 0u);
    EXPECT_EQ(MachineOf(*session).resets, 2u);
    EXPECT_EQ(session->showStatic, 0);
    EXPECT_EQ(Content(Folder() / "game.refused-1.zip"), old);
    EXPECT_EQ(Content(Path()), old); // the other entries are still there
    EXPECT_TRUE(AnyMentions(TakeReports(), "game.refused-1.zip"));
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry,  StateOf(*session)},
                                 {"other", {4}              }
    }));
    EXPECT_EQ(Content(Folder() / "game.refused-1.zip"), old);
}

TEST_F(Archive, AStateOfAnotherPieceSizeIsRefused) {
    const auto session = Create();
    Bytes state = StateOf(*session);
    state[1] = static_cast<uint8_t>(state[1] + 1);
    Put(Zip({
        {kEntry, state}
    }));
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_EQ(MachineOf(*session).resets, 2u);
}

TEST_F(Archive, ARefusedStateIsKeptOnceForItsContent) {
    Put(Zip({
        {kEntry, {1, 2, 3}}
    }));
    for (int start = 0; start < 3; ++start) {
        EXPECT_FALSE(EmuLoadFromArchive(*Create()));
    }
    Put(Zip({
        {kEntry,  {1, 2, 3}},
        {"other", {4}      }
    })); // the same state with another entry
    EXPECT_FALSE(EmuLoadFromArchive(*Create()));
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.refused-1.zip", "game.zip"}));
    Put(Zip({
        {kEntry, {9, 9, 9}}
    }));
    EXPECT_FALSE(EmuLoadFromArchive(*Create()));
    EXPECT_EQ(Names(),
              (std::vector<std::string>{"game.refused-1.zip", "game.refused-2.zip", "game.zip"}));
}

TEST_F(Archive, ARefusedStateThatCannotBeKeptIsNotReplaced) {
    const Bytes old = Zip({
        {kEntry, Noise(20000, 1)}
    });
    Put(old);
    const auto session = Create();
    {
        const FullDisk full(10000);
        EXPECT_FALSE(EmuLoadFromArchive(*session));
        EXPECT_FALSE(EmuSaveToArchive(*session));
    }
    EXPECT_EQ(Content(Path()), old);
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
    EXPECT_TRUE(EmuSaveToArchive(*session)); // there is room again
    EXPECT_EQ(Content(Folder() / "game.refused-1.zip"), old);
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*session)}
    }));
}

TEST_F(Archive, SomethingThatIsNoArchiveIsKeptBeforeItIsReplaced) {
    const Bytes old = {'n', 'o', ' ', 'z', 'i', 'p'};
    Put(old);
    const auto session = Create();
    session->showStatic = 1;
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_EQ(session->showStatic, 1);
    EXPECT_TRUE(AnyMentions(TakeReports(), Path().string()));
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Content(Folder() / "game.damaged-1.zip"), old);
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*session)}
    }));
    EXPECT_TRUE(AnyMentions(TakeReports(), "game.damaged-1.zip"));
}

TEST_F(Archive, AnEarlierDamagedCopyIsNeverOverwritten) {
    home.Write("sms/saves/game.damaged-1.zip", "an earlier one");
    home.Write("sms/saves/game.damaged-3.zip", "a later one");
    Put({'b', 'a', 'd'});
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(home.Read("sms/saves/game.damaged-2.zip"), (Bytes{'b', 'a', 'd'}));
    Put({'b', 'a', 'd'});
    EXPECT_TRUE(EmuSaveToArchive(*session)); // the same once more needs no new copy
    Put({'w', 'o', 'r', 's', 'e'});
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(home.Read("sms/saves/game.damaged-4.zip"), (Bytes{'w', 'o', 'r', 's', 'e'}));
    EXPECT_EQ(home.Read("sms/saves/game.damaged-1.zip").size(), 14u);
    EXPECT_EQ(Names().size(), 5u);
}

TEST_F(Archive, AnEmptyFileIsReplacedWithoutACopy) {
    Put({});
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
}

// A broken byte in the middle of an entry's data: its checksum no longer fits.
TEST_F(Archive, AnArchiveWithAnUnreadableEntryIsKeptAndTheRestCarriedOver) {
    const Bytes noise = Noise(5000, 2);
    Bytes old = Zip({
        {"broken", noise },
        {"whole",  {1, 2}}
    });
    const auto at = std::search(old.begin(), old.end(), noise.begin() + 100, noise.begin() + 110);
    if (at != old.end()) {
        *at = static_cast<uint8_t>(*at ^ 0xFF);
    } else {
        old[1000] = static_cast<uint8_t>(old[1000] ^ 0xFF);
    }
    Put(old);
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry,  StateOf(*session)},
                                 {"whole", {1, 2}           }
    }));
    EXPECT_EQ(Content(Folder() / "game.damaged-1.zip"), old);
    EXPECT_TRUE(AnyMentions(TakeReports(), "broken"));
}

TEST_F(Archive, ADamagedStateOfTheGameItselfIsKeptToo) {
    Bytes old = Zip({
        {kEntry, Noise(5000, 3)}
    });
    old[1000] = static_cast<uint8_t>(old[1000] ^ 0xFF);
    Put(old);
    const auto session = Create();
    RunFrames(*session, 4);
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_EQ(MachineOf(*session).frame, 4u); // nothing was read, nothing changed
    EXPECT_TRUE(AnyMentions(TakeReports(), kEntry));
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Content(Folder() / "game.damaged-1.zip"), old);
}

TEST_F(Archive, ADamagedArchiveThatCannotBeKeptIsNotReplaced) {
    const Bytes old = Noise(20000, 4);
    Put(old);
    const auto session = Create();
    {
        const FullDisk full(10000);
        EXPECT_FALSE(EmuSaveToArchive(*session));
    }
    EXPECT_EQ(Content(Path()), old);
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
    EXPECT_TRUE(AnyMentions(TakeReports(), Path().string()));
}

TEST_F(Archive, AnArchiveOverItsLimitIsNotWritten) {
    const Bytes old = Zip({
        {"large", Noise(4190000, 5)}
    });
    ASSERT_LT(old.size(), kArchiveLimit);
    Put(old);
    const auto session = Create({.stateBytes = 4096});
    EXPECT_TRUE(EmuSaveToArchive(*session)); // zeroes pack well
    const auto other = Create({}, "Game", 1, 0x02);
    Put(Zip({
        {"large", Noise(4190000, 5)},
        {"more",  Noise(10000,   6)}
    }));
    const Bytes full = Content(Path());
    EXPECT_FALSE(EmuSaveToArchive(*other));
    EXPECT_EQ(Content(Path()), full);
    const std::vector<std::string> reports = TakeReports();
    EXPECT_TRUE(AnyMentions(reports, "4194304"));
    EXPECT_TRUE(AnyMentions(reports, Path().string()));
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
}

TEST_F(Archive, AFullDiskLeavesTheOldArchive) {
    const Bytes old = Zip({
        {"other", Noise(20000, 7)}
    });
    Put(old);
    const auto session = Create();
    {
        const FullDisk full(10000);
        EXPECT_FALSE(EmuSaveToArchive(*session));
    }
    EXPECT_EQ(Content(Path()), old);
    EXPECT_EQ(Names(), (std::vector<std::string>{"game.zip"}));
    EXPECT_TRUE(AnyMentions(TakeReports(), Path().string()));
}

TEST_F(Archive, AFileInPlaceOfTheFolderIsReported) {
    home.Write("sms", "in the way");
    const auto session = Create();
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_FALSE(EmuSaveToArchive(*session));
    const std::vector<std::string> reports = TakeReports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports[0].find(Folder().string()), std::string::npos);
    EXPECT_EQ(reports[0].find('\n'), std::string::npos);
}

TEST_F(Archive, AFolderInPlaceOfTheArchiveIsLeftAlone) {
    fs::create_directories(Path() / "inside");
    const auto session = Create();
    EXPECT_FALSE(EmuSaveToArchive(*session));
    EXPECT_FALSE(EmuLoadFromArchive(*session));
    EXPECT_TRUE(fs::exists(Path() / "inside"));
    EXPECT_TRUE(AnyMentions(TakeReports(), Path().string()));
}

// Larger than anything the program reads: it is moved, not copied.
TEST_F(Archive, AFileThatCannotBeReadIsMovedAside) {
    Put({1});
    fs::resize_file(Path(), uint64_t{1} << 27);
    const auto session = Create();
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(fs::file_size(Folder() / "game.damaged-1.zip"), uint64_t{1} << 27);
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*session)}
    }));
}

// No file can be opened while this lives, as when a process has too many open.
class NoOpenFiles {
public:
    NoOpenFiles() {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit limit{0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~NoOpenFiles() { setrlimit(RLIMIT_NOFILE, &before); }
    NoOpenFiles(const NoOpenFiles&) = delete;
    NoOpenFiles& operator=(const NoOpenFiles&) = delete;

private:
    rlimit before{};
};

TEST_F(Archive, AnArchiveThatCannotBeReadForNowStaysWhereItIs) {
    const auto session = Create();
    ASSERT_TRUE(EmuSaveToArchive(*session));
    const Bytes before = Content(Path());
    RunFrames(*session, 3);
    {
        const NoOpenFiles none;
        EXPECT_FALSE(EmuSaveToArchive(*session));
    }
    EXPECT_EQ(Content(Path()), before);
    EXPECT_EQ(Names(), std::vector<std::string>{"game.zip"});
    EXPECT_TRUE(AnyMentions(TakeReports(), Path().string()));
}

TEST_F(Archive, AStateThatCouldNotBeReadAtTheStartIsKeptAtTheNextSave) {
    const auto played = Create();
    RunFrames(*played, 9);
    ASSERT_TRUE(EmuSaveToArchive(*played));
    const Bytes before = Content(Path());

    const auto fresh = Create();
    {
        const NoOpenFiles none;
        EXPECT_FALSE(EmuLoadFromArchive(*fresh));
    }
    EXPECT_EQ(fresh->showStatic, 0) << "as Create left it";
    EXPECT_TRUE(EmuSaveToArchive(*fresh));
    EXPECT_EQ(Content(Folder() / "game.refused-1.zip"), before);
    EXPECT_EQ(Unzip(Path()), (Entries{
                                 {kEntry, StateOf(*fresh)}
    }));
}

TEST_F(Archive, AFileThatWasMovedAsideComesBackWhenTheSaveFails) {
    Put({1});
    fs::resize_file(Path(), uint64_t{1} << 27);
    const auto session = Create();
    {
        const FullDisk full(10);
        EXPECT_FALSE(EmuSaveToArchive(*session));
    }
    EXPECT_EQ(fs::file_size(Path()), uint64_t{1} << 27);
    EXPECT_EQ(Names(), std::vector<std::string>{"game.zip"});
}

TEST_F(Archive, AMachineWithoutAStateSavesNothing) {
    const auto session = Create({.failSave = 1});
    EXPECT_FALSE(EmuSaveToArchive(*session));
    EXPECT_FALSE(fs::exists(Path()));
    EXPECT_EQ(TakeReports().size(), 1u);
}

TEST_F(Archive, ArcadeSavesLieInTheHomeFolder) {
    const auto session = Create({}, "Game", 6);
    EXPECT_TRUE(EmuSaveToArchive(*session));
    EXPECT_EQ(Unzip(home.Path() / "saves" / "game.zip"), (Entries{
                                                             {kEntry, StateOf(*session)}
    }));
    EXPECT_FALSE(fs::exists(Folder())) << "no folder of another machine";
}

TEST_F(Archive, WithoutASinkReportsGoToStandardError) {
    const auto session = Create({.failSave = 1});
    HostSetReportSink(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(EmuSaveToArchive(*session));
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_NE(text.find(Path().string()), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}
