#include "base/files.h"
#include "formats/sha256.h"
#include "formats/zip.h"
#include "host/host_fixture.h"
#include "host/session_list.h"
#include "host/state_snapshot.h"
#include "library/full_disk.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <thread>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

Bytes BytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

STATE_SNAPSHOT SmallSnapshot() {
    STATE_SNAPSHOT snapshot;
    snapshot.state = {1, 2, 3, 0, 255};
    snapshot.picture = {
        2, 1, 4.0f / 3.0f, {0xFF102030, 0xFFFFFFFF}
    };
    snapshot.takenAt = 1234567890;
    snapshot.secondsPlayed = 3723;
    snapshot.texts = {
        {"game", "L\xC3\xBC"
                 "ciole <1> \"&\""},
        {"set",  "2"                              },
        {"game", "a second one"                   }
    };
    return snapshot;
}

std::vector<std::pair<std::string, std::string>> TextsOf(const STATE_SNAPSHOT& snapshot) {
    std::vector<std::pair<std::string, std::string>> texts;
    texts.reserve(snapshot.texts.size());
    for (const SNAPSHOT_TEXT& text : snapshot.texts) {
        texts.emplace_back(text.name, text.value);
    }
    return texts;
}

void ExpectSame(const STATE_SNAPSHOT& read, const STATE_SNAPSHOT& written) {
    EXPECT_EQ(read.state, written.state);
    EXPECT_EQ(read.picture.width, written.picture.width);
    EXPECT_EQ(read.picture.height, written.picture.height);
    EXPECT_EQ(read.picture.aspect, written.picture.aspect);
    EXPECT_EQ(read.picture.pixels, written.picture.pixels);
    EXPECT_EQ(read.takenAt, written.takenAt);
    EXPECT_EQ(read.secondsPlayed, written.secondsPlayed);
    EXPECT_EQ(TextsOf(read), TextsOf(written));
}

Bytes Pack(const STATE_SNAPSHOT& snapshot) {
    std::string error;
    Bytes file = PackSnapshot(snapshot, error);
    EXPECT_FALSE(file.empty()) << error;
    return file;
}

// The reason why these bytes are refused; empty if they are taken.
std::string Refusal(std::span<const uint8_t> file, SnapshotParts parts = SnapshotParts::kAll) {
    STATE_SNAPSHOT read = SmallSnapshot();
    std::string error;
    if (UnpackSnapshot(file, parts, read, error)) {
        return {};
    }
    EXPECT_TRUE(read.state.empty() && read.picture.pixels.empty() && read.texts.empty())
        << "something of a damaged file was returned";
    return error.empty() ? "no reason" : error;
}

// The entries of a snapshot, to be changed and packed again.
std::map<std::string, Bytes> Entries(const Bytes& file) {
    std::map<std::string, Bytes> entries;
    ZipReader zip;
    std::string error;
    EXPECT_TRUE(zip.Open(file, error)) << error;
    for (uint32_t i = 0; i < zip.EntryCount(); ++i) {
        ZIP_ENTRY entry;
        EXPECT_TRUE(zip.Entry(i, entry));
        EXPECT_TRUE(zip.Unpack(i, entries[entry.rawName], error)) << error;
    }
    return entries;
}

Bytes Zip(const std::map<std::string, Bytes>& entries) {
    ZipWriter writer;
    std::string error;
    for (const auto& [name, bytes] : entries) {
        EXPECT_TRUE(writer.Add(name, bytes, error)) << error;
    }
    return writer.Finish(error);
}

// The small snapshot with one place of its about.xml replaced.
Bytes WithAbout(const std::string& from, const std::string& to) {
    std::map<std::string, Bytes> entries = Entries(Pack(SmallSnapshot()));
    std::string about(entries["about.xml"].begin(), entries["about.xml"].end());
    const size_t at = about.find(from);
    EXPECT_NE(at, std::string::npos) << from << " is not in " << about;
    entries["about.xml"] = BytesOf(about.replace(at, from.size(), to));
    return Zip(entries);
}

} // namespace

TEST(Snapshot, ComesBackFromItsFile) {
    const STATE_SNAPSHOT written = SmallSnapshot();
    STATE_SNAPSHOT read;
    std::string error;
    ASSERT_TRUE(UnpackSnapshot(Pack(written), SnapshotParts::kAll, read, error)) << error;
    ExpectSame(read, written);
    EXPECT_EQ(SnapshotText(read, "set"), "2");
    EXPECT_EQ(SnapshotText(read, "game"), written.texts[0].value) << "the first of two";
    EXPECT_EQ(SnapshotText(read, "absent"), "");
}

TEST(Snapshot, ItsEntriesAreTheStateAPictureAndAbout) {
    const auto entries = Entries(Pack(SmallSnapshot()));
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries.at("state"), SmallSnapshot().state);
    EXPECT_THAT(entries.at("picture.png"), testing::Contains('P'));
    const Bytes& about = entries.at("about.xml");
    const std::string xml(about.begin(), about.end());
    EXPECT_THAT(xml, HasSubstr("version=\"1\" taken=\"1234567890\" played=\"3723\""));
    EXPECT_THAT(xml, HasSubstr("size=\"5\" sha256=\"" + HexText(Sha256(SmallSnapshot().state))));
}

TEST(Snapshot, MayHaveNoPictureAndNoTexts) {
    STATE_SNAPSHOT written;
    written.state = {7};
    written.takenAt = -1; // before 1970, as a wrong clock may say
    STATE_SNAPSHOT read;
    std::string error;
    ASSERT_TRUE(UnpackSnapshot(Pack(written), SnapshotParts::kAll, read, error)) << error;
    ExpectSame(read, written);
}

TEST(Snapshot, TextsKeepEveryByteButNul) {
    STATE_SNAPSHOT written = SmallSnapshot();
    std::string all;
    for (int c = 1; c < 256; ++c) {
        all += static_cast<char>(c);
    }
    written.texts = {
        {"bytes", all       },
        {"lines", "a\r\n b "}
    };
    STATE_SNAPSHOT read;
    std::string error;
    ASSERT_TRUE(UnpackSnapshot(Pack(written), SnapshotParts::kAll, read, error)) << error;
    EXPECT_EQ(TextsOf(read), TextsOf(written));
}

TEST(Snapshot, TheLabelIsReadWithoutTheState) {
    std::map<std::string, Bytes> entries = Entries(Pack(SmallSnapshot()));
    entries["state"] = {9}; // a wrong one is not noticed, since it is not read
    const Bytes file = Zip(entries);
    STATE_SNAPSHOT read;
    std::string error;
    ASSERT_TRUE(UnpackSnapshot(file, SnapshotParts::kLabel, read, error)) << error;
    STATE_SNAPSHOT label = SmallSnapshot();
    label.state.clear();
    ExpectSame(read, label);
    EXPECT_THAT(Refusal(file), HasSubstr("state is not the one"));
}

TEST(Snapshot, WhatCouldNotBeReadAgainIsNotWritten) {
    std::string error;
    const auto refused = [&](auto change) {
        STATE_SNAPSHOT snapshot = SmallSnapshot();
        change(snapshot);
        error.clear();
        return PackSnapshot(snapshot, error).empty() && !error.empty();
    };
    EXPECT_FALSE(refused([](STATE_SNAPSHOT&) {}));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) { s.state.clear(); }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) { s.state.resize(kLargestSnapshotState + 1); }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) { s.picture.pixels.pop_back(); }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) { s.picture.aspect = 0; }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) {
        s.picture.width = kLongestSnapshotSide + 1;
        s.picture.pixels.resize(kLongestSnapshotSide + 1);
    }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) { s.texts[0].name.clear(); }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) { s.texts[0].value += '\0'; }));
    EXPECT_TRUE(refused(
        [](STATE_SNAPSHOT& s) { s.texts[0].value = std::string(kLongestSnapshotText + 1, 'x'); }));
    EXPECT_TRUE(refused([](STATE_SNAPSHOT& s) {
        s.texts.resize(kMostSnapshotTexts + 1, {"a", "b"});
    }));
}

TEST(Snapshot, AFileCutAnywhereIsRefused) {
    const Bytes file = Pack(SmallSnapshot());
    for (size_t length = 0; length < file.size(); ++length) {
        EXPECT_NE(Refusal({file.data(), length}), "") << length;
    }
}

TEST(Snapshot, AChangedByteNeverYieldsAnotherSnapshot) {
    const Bytes file = Pack(SmallSnapshot());
    for (size_t at = 0; at < file.size(); ++at) {
        Bytes changed = file;
        changed[at] ^= 0x10;
        STATE_SNAPSHOT read;
        std::string error;
        if (UnpackSnapshot(changed, SnapshotParts::kAll, read, error)) {
            ExpectSame(read, SmallSnapshot()); // bytes such as an entry's date say nothing
        }
    }
}

TEST(Snapshot, WhatAboutSaysIsChecked) {
    EXPECT_EQ(Refusal(WithAbout("set", "Set")), "") << "a text may say anything";
    EXPECT_THAT(Refusal(WithAbout("version=\"1\"", "version=\"2\"")), HasSubstr("is of version 2"));
    EXPECT_NE(Refusal(WithAbout("taken=\"1234567890\"", "taken=\"now\"")), "");
    EXPECT_NE(Refusal(WithAbout("taken=\"1234567890\"", "taken=\"12 \"")), "");
    EXPECT_NE(Refusal(WithAbout("played=\"3723\"", "played=\"-1\"")), "");
    EXPECT_NE(Refusal(WithAbout("size=\"5\"", "size=\"6\"")), "");
    EXPECT_NE(Refusal(WithAbout("size=\"5\"", "size=\"4\"")), "");
    EXPECT_NE(Refusal(WithAbout("size=\"5\"", "size=\"99999999999\"")), "");
    EXPECT_NE(Refusal(WithAbout("width=\"2\"", "width=\"1\"")), "");
    EXPECT_NE(Refusal(WithAbout("width=\"2\"", "width=\"4000000000\"")), "");
    EXPECT_NE(Refusal(WithAbout("aspect=\"1", "aspect=\"nan")), "");
    EXPECT_NE(Refusal(WithAbout("name=\"set\"", "name=\"\"")), "");
    EXPECT_NE(Refusal(WithAbout("<snapshot", "<snapshots")), "");
}

TEST(Snapshot, AnEntryThatIsMissingIsNamed) {
    for (const std::string name : {"about.xml", "picture.png", "state"}) {
        std::map<std::string, Bytes> entries = Entries(Pack(SmallSnapshot()));
        entries.erase(name);
        EXPECT_EQ(Refusal(Zip(entries)), "has no " + name);
    }
}

// A hundred megabytes of zeros pack into a hundred kilobytes.
TEST(Snapshot, AStateThatUnpacksWithoutEndIsRefused) {
    std::map<std::string, Bytes> entries = Entries(Pack(SmallSnapshot()));
    entries["state"] = Bytes(size_t{100} << 20);
    EXPECT_THAT(Refusal(Zip(entries)), HasSubstr("is larger than 5 bytes"));
}

class SnapshotFile : public HostTest {
protected:
    [[nodiscard]] fs::path Path() const { return home.Path() / "a folder" / "slot.state"; }
};

TEST_F(SnapshotFile, IsWrittenAndRead) {
    std::string error;
    ASSERT_TRUE(WriteSnapshot(Path(), SmallSnapshot(), error)) << error;
    STATE_SNAPSHOT read;
    ASSERT_TRUE(ReadSnapshot(Path(), read, error)) << error;
    ExpectSame(read, SmallSnapshot());
    ASSERT_TRUE(ReadSnapshotLabel(Path(), read, error)) << error;
    EXPECT_TRUE(read.state.empty());
    EXPECT_EQ(read.picture.pixels, SmallSnapshot().picture.pixels);
}

TEST_F(SnapshotFile, AnErrorNamesTheFile) {
    STATE_SNAPSHOT read;
    std::string error;
    EXPECT_FALSE(ReadSnapshot(Path(), read, error));
    EXPECT_THAT(error, HasSubstr(Path().string()));
    home.Write("a folder/slot.state", BytesOf("no zip"));
    EXPECT_FALSE(ReadSnapshot(Path(), read, error));
    EXPECT_THAT(error, StartsWith(Path().string() + ": is not a saved state: "));
    EXPECT_FALSE(WriteSnapshot(Path(), {}, error));
    EXPECT_THAT(error, StartsWith(Path().string() + ": cannot be written: "));
}

TEST_F(SnapshotFile, AFullDiskLeavesTheOldFile) {
    std::string error;
    ASSERT_TRUE(WriteSnapshot(Path(), SmallSnapshot(), error)) << error;
    STATE_SNAPSHOT newer = SmallSnapshot();
    newer.secondsPlayed = 9999;
    {
        const FullDisk full(100);
        EXPECT_FALSE(WriteSnapshot(Path(), newer, error));
    }
    EXPECT_THAT(error, HasSubstr(Path().string()));
    STATE_SNAPSHOT read;
    ASSERT_TRUE(ReadSnapshot(Path(), read, error)) << error;
    ExpectSame(read, SmallSnapshot());
    EXPECT_EQ(std::distance(fs::directory_iterator(Path().parent_path()), {}), 1)
        << "a half file was left";
}

class TakenSnapshot : public HostTest {
protected:
    static Bytes StateOf(EMU_THREAD& session) {
        uint32_t size = 0;
        const StateBlob blob = session.machine->SaveState(size);
        return {blob.get(), blob.get() + size};
    }

    // Lets a session run until its machine has presented, and pins it.
    SessionPin StartAndPin(const TEST_BEHAVIOUR& behaviour = {}) {
        EXPECT_NE(Start(4, "Game", 1, behaviour), 0u);
        EXPECT_TRUE(Eventually([] { return FrameOf(4) > 2; }));
        return PinSession(4);
    }

    static uint32_t FrameOf(uint32_t key) {
        uint32_t frame = 0;
        WithMachine(key, [&](CTestMachine& machine) { frame = machine.frame; });
        return frame;
    }
};

TEST_F(TakenSnapshot, HasTheStateAndTheVisiblePictureOfARunningGame) {
    TEST_BEHAVIOUR behaviour;
    behaviour.visibleX = 8;
    behaviour.visibleWidth = 300;
    const SessionPin session = StartAndPin(behaviour);
    STATE_SNAPSHOT snapshot;
    snapshot.texts = {
        {"kept", "yes"}
    };
    ASSERT_TRUE(EmuTakeSnapshot(*session, snapshot));
    EXPECT_EQ(snapshot.picture.width, 300u);
    EXPECT_EQ(snapshot.picture.height, 240u);
    EXPECT_EQ(snapshot.picture.aspect, 1.25f) << "that of the visible window";
    ASSERT_EQ(snapshot.picture.pixels.size(), 300u * 240u);
    EXPECT_THAT(TextsOf(snapshot), ElementsAre(std::pair<std::string, std::string>("kept", "yes")));

    // The machine draws the number of its frame, which its state holds.
    const auto session2 = Create(behaviour);
    ASSERT_TRUE(session2->machine->LoadState(snapshot.state.data(),
                                             static_cast<uint32_t>(snapshot.state.size())));
    const uint32_t shown = snapshot.picture.pixels[0] - 0xFF000000;
    const uint32_t saved = MachineOf(*session2).frame;
    EXPECT_TRUE(shown == saved || shown + 1 == saved) << shown << " beside " << saved;
}

TEST_F(TakenSnapshot, WithoutADisplayThereIsNoPicture) {
    const auto session = Create();
    STATE_SNAPSHOT snapshot = SmallSnapshot();
    ASSERT_TRUE(EmuTakeSnapshot(*session, snapshot));
    EXPECT_EQ(snapshot.state, StateOf(*session));
    EXPECT_EQ(snapshot.picture.width, 0u);
    EXPECT_TRUE(snapshot.picture.pixels.empty());
}

TEST_F(TakenSnapshot, AMachineWithoutAStateIsReported) {
    const auto session = Create({.failSave = 1});
    STATE_SNAPSHOT snapshot;
    EXPECT_FALSE(EmuTakeSnapshot(*session, snapshot));
    EXPECT_THAT(TakeReports(), ElementsAre(HasSubstr("state not saved")));
}

// The lock of a pinned session keeps its pictures, also while it is being stopped.
TEST_F(TakenSnapshot, MayBeTakenWhileTheSessionStops) {
    for (int round = 0; round < 20; ++round) {
        SessionPin session = StartAndPin();
        std::thread stopper([] { EmuStopSession(4); });
        STATE_SNAPSHOT snapshot;
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(EmuTakeSnapshot(*session, snapshot));
            EXPECT_FALSE(snapshot.state.empty());
        }
        session.reset();
        stopper.join();
    }
}

TEST_F(TakenSnapshot, IsGivenBackAndBringsTheStateBefore) {
    const auto session = Create();
    MachineOf(*session).Reset();
    const Bytes early = StateOf(*session);
    std::vector<uint32_t> pixels(size_t{320} * 240);
    std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
    EMU_VIDEO_FRAME video{};
    video.pixels = pixels.data();
    EMU_AUDIO_FRAME audio{samples.data(), 44100, 0};
    session->machine->RunFrame(nullptr, &video, &audio);
    const Bytes late = StateOf(*session);
    session->showStatic = 1;

    STATE_SNAPSHOT before;
    EXPECT_TRUE(EmuGiveState(*session, early, &before));
    EXPECT_EQ(StateOf(*session), early);
    EXPECT_EQ(before.state, late);
    EXPECT_EQ(session->showStatic, 0) << "a loaded game shows no static";
    EXPECT_TRUE(session->battery.rolledBack) << "the game's memory is older than its file";
}

TEST_F(TakenSnapshot, ARefusedStateLeavesTheMachineAsItWas) {
    const auto session = Create();
    MachineOf(*session).battery = {1};
    const Bytes was = StateOf(*session);
    const uint32_t resets = MachineOf(*session).resets;
    session->showStatic = 1;
    Bytes wrong = was;
    wrong.pop_back();
    STATE_SNAPSHOT before;
    EXPECT_FALSE(EmuGiveState(*session, wrong, &before));
    EXPECT_FALSE(EmuGiveState(*session, {}));
    EXPECT_EQ(StateOf(*session), was);
    EXPECT_EQ(before.state, was);
    EXPECT_EQ(MachineOf(*session).resets, resets);
    EXPECT_EQ(session->showStatic, 1);
    EXPECT_FALSE(session->battery.rolledBack);
}

TEST_F(TakenSnapshot, AMachineThatHadEndedStaysEndedAfterARefusal) {
    const auto session = Create();
    session->machine->endReason = "the program has gone wrong";
    session->machine->ended = true;
    EXPECT_FALSE(EmuGiveState(*session, Bytes{1, 2, 3}));
    EXPECT_TRUE(session->machine->ended);
    EXPECT_EQ(session->machine->endReason, "the program has gone wrong");
}
