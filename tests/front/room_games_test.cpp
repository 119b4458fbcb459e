// The room's sessions without its picture: eight sets that are turned on and off, saved and loaded beside the
// display and the sound pump.
#include "audio/sound.h"
#include "base/files.h"
#include "front/resume_games.h"
#include "front/resume_texts.h"
#include "front/room_games.h"
#include "front/session_callbacks.h"
#include "host/host_data.h"
#include "host/report.h"
#include "host/session_list.h"
#include "host/session_saves.h"
#include "machines/machines.h"
#include "megadrive/md_rig.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <random>
#include <set>

using testing::Each;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr uint32_t kSets = 8; // keys 4 to 11
constexpr uint32_t kFirstSet = 4;
constexpr const char* kGames[] = {"demo:sms-luciole", "demo:md-mistral", "demo:nes-ecume",
                                  "demo:gg-glimmer", "demo:arcade-skywren"};

std::mutex gReportLock;
std::vector<std::string> gReports; // under gReportLock

class RoomGamesTest : public testing::Test {
protected:
    void SetUp() override {
        SetHomeFolder(folder.Path());
        RegisterDefaultSettings(Settings());
        EmuSetMachines(BuiltInMachines());
        InstallSessionCallbacks();
        HostSetReportSink([](const std::string& text) {
            const std::scoped_lock hold(gReportLock);
            gReports.push_back(text);
        });
        std::string error;
        ASSERT_TRUE(OpenSoundLoopback(error)) << error;
        StartSoundPump();
        SoundSetRoomVisible(true);
    }
    void TearDown() override {
        StopSoundPump();
        CloseSoundDevice();
        SoundSetRoomVisible(false);
        HostSetReportSink(nullptr);
        EXPECT_TRUE(WaitUntil("the sessions' threads", [] { return EmuRunningThreads() == 0; }));
        const std::scoped_lock hold(gReportLock);
        EXPECT_THAT(gReports, IsEmpty());
        gReports.clear();
    }

    static std::vector<OPENED_GAME> Open(std::initializer_list<const char*> names) {
        std::vector<OPENED_GAME> games;
        for (const char* name : names) {
            std::string error;
            games.emplace_back();
            EXPECT_TRUE(OpenForPlaying(name, {}, games.back(), error)) << error;
        }
        return games;
    }

    // Mega Drive games that begin at these odd addresses, which the 68000 cannot.
    std::vector<OPENED_GAME> OpenThoseThatEnd(std::initializer_list<uint32_t> starts) {
        std::vector<OPENED_GAME> games;
        for (const uint32_t start : starts) {
            MdProgram program;
            program.PutLong(4, start);
            const auto path = folder.Write("ends" + std::to_string(start) + ".md", program.Image());
            std::string error;
            games.emplace_back();
            EXPECT_TRUE(OpenForPlaying(path.string(), {}, games.back(), error)) << error;
        }
        return games;
    }

    static bool HasEnded(uint32_t key) {
        const SessionPin session = PinSession(key);
        return session != nullptr && session->machine->ended;
    }

    static testing::AssertionResult WaitFor(RoomGames& games, uint32_t key, SetState state) {
        return WaitUntil("a set", [&] {
            static_cast<void>(games.Collect());
            return games.StateOf(key) == state;
        });
    }

    // What the display and the device do in a round.
    static void Look() {
        EmuForEachSession([](EMU_THREAD& session) {
            const std::scoped_lock hold(EmuFrameMutex());
            static_cast<void>(HostTakeFrame(*session.hostData.load()));
        });
        std::vector<int16_t> sound(size_t{512} * 2);
        RenderSound(sound.data(), 512);
    }

    TemporaryFolder folder;
};

// Some seconds' worth; a machine under a sanitizer is many times slower, and a stop waits for its frame.
#ifdef OMBRELUNE_SANITIZED
constexpr int kOperations = 24;
#else
constexpr int kOperations = 600;
#endif

int Operations() {
    const char* const text =
        std::getenv("OMBRELUNE_ROOM_OPERATIONS"); // NOLINT(concurrency-mt-unsafe)
    return text != nullptr ? std::max(1, std::atoi(text)) : kOperations; // NOLINT(cert-err34-c)
}

} // namespace

TEST_F(RoomGamesTest, TheNextGameGoesRound) {
    RoomGames games(Open({"demo:sms-luciole", "demo:nes-ecume"}));
    EXPECT_EQ(games.NextTitle(), "Luciole");
    for (const uint32_t key : {6u, 7u, 8u}) {
        EXPECT_TRUE(games.StartNext(key));
        EXPECT_EQ(games.StateOf(key), SetState::kStarting);
        EXPECT_EQ(games.SerialOn(key), 0u) << "not before it plays";
    }
    EXPECT_EQ(games.TitleOn(6), "Luciole");
    EXPECT_EQ(games.TitleOn(8), "Luciole");
    EXPECT_NE(games.TitleOn(7), games.TitleOn(8));
    for (const uint32_t key : {6u, 7u, 8u}) {
        ASSERT_TRUE(WaitFor(games, key, SetState::kPlaying));
        const SessionPin session = PinSession(key);
        ASSERT_NE(session, nullptr);
        EXPECT_EQ(session->serial, games.SerialOn(key));
    }
}

TEST_F(RoomGamesTest, SaysWhichGamesPlay) {
    std::vector<OPENED_GAME> opened = Open({"demo:sms-luciole"});
    const auto image = opened[0].game.AssembleSelectedImage();
    ASSERT_TRUE(image.has_value());
    const GAME_IDENTITY luciole{kSystemMasterSystem, Sha256(*image)};
    RoomGames games(std::move(opened));
    ASSERT_TRUE(games.StartNext(6));
    EXPECT_TRUE(games.Playing().empty()) << "not before it plays";
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    ASSERT_EQ(games.Playing().size(), 1u);
    EXPECT_EQ(games.Playing()[0].serial, games.SerialOn(6));
    EXPECT_EQ(games.Playing()[0].identity, luciole);
    games.Stop(6);
    EXPECT_TRUE(games.Playing().empty());
}

TEST_F(RoomGamesTest, WithoutGamesNothingStarts) {
    RoomGames games({});
    EXPECT_FALSE(games.StartNext(6));
    EXPECT_EQ(games.StateOf(6), SetState::kOff);
    games.Stop(6);
    EXPECT_EQ(games.StateOf(6), SetState::kOff);
}

TEST_F(RoomGamesTest, TheLastOrderForASetCounts) {
    RoomGames games(Open({"demo:sms-luciole"}));
    ASSERT_TRUE(games.StartNext(6));
    games.Stop(6);
    ASSERT_TRUE(games.StartNext(6));
    games.Stop(6);
    EXPECT_EQ(games.StateOf(6), SetState::kStopping);
    EXPECT_EQ(games.TitleOn(6), "");
    ASSERT_TRUE(WaitFor(games, 6, SetState::kOff));
    EXPECT_EQ(PinSession(6), nullptr);
    ASSERT_TRUE(games.StartNext(6));
    ASSERT_TRUE(games.StartNext(6));
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    EXPECT_EQ(PinSession(6)->serial, games.SerialOn(6));
}

TEST_F(RoomGamesTest, AGameThatCannotStartLeavesItsSetOffAndSaysWhy) {
    std::vector<OPENED_GAME> list = Open({"demo:sms-luciole"});
    list.emplace_back(); // no game at all
    RoomGames games(std::move(list));
    ASSERT_TRUE(games.StartNext(6));
    ASSERT_TRUE(games.StartNext(7));
    std::vector<GAME_FAILURE> errors;
    ASSERT_TRUE(WaitUntil("the fault", [&] {
        for (GAME_FAILURE& error : games.Collect()) {
            errors.push_back(std::move(error));
        }
        return games.StateOf(7) == SetState::kOff;
    }));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(errors[0].starting);
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
}

// What is known of an ended machine does not depend on starts that happen meanwhile, nor on another one's end.
TEST_F(RoomGamesTest, EachMachineThatEndsTurnsItsSetOffAndSaysWhy) {
    RoomGames games(OpenThoseThatEnd({0x201, 0x203}));
    ASSERT_TRUE(games.StartNext(6));
    ASSERT_TRUE(games.StartNext(7));
    ASSERT_TRUE(WaitFor(games, 7, SetState::kPlaying));
    ASSERT_TRUE(WaitUntil("both ends", [] { return HasEnded(6) && HasEnded(7); }));
    EmuSetLastError("of another game");
    std::vector<GAME_FAILURE> errors;
    ASSERT_TRUE(WaitUntil("both sets", [&] {
        for (GAME_FAILURE& error : games.Collect()) {
            errors.push_back(std::move(error));
        }
        return games.StateOf(6) == SetState::kOff && games.StateOf(7) == SetState::kOff;
    }));
    EXPECT_THAT(errors, UnorderedElementsAre(Field(&GAME_FAILURE::reason, HasSubstr("0x000201")),
                                             Field(&GAME_FAILURE::reason, HasSubstr("0x000203"))));
    EXPECT_THAT(errors, Each(Field(&GAME_FAILURE::starting, false)));
    EXPECT_EQ(PinSession(6), nullptr);
    EXPECT_EQ(PinSession(7), nullptr);
}

TEST_F(RoomGamesTest, TheGameThatReplacesAnEndedOnePlaysOn) {
    RoomGames games(OpenThoseThatEnd({0x201}));
    ASSERT_TRUE(games.StartNext(6));
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    ASSERT_TRUE(WaitUntil("the end", [] { return HasEnded(6); }));
    games.Start(6, std::move(Open({"demo:sms-luciole"}).front()));
    EXPECT_THAT(games.Collect(), IsEmpty()) << "another game was chosen";
    EXPECT_EQ(games.StateOf(6), SetState::kStarting);
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    EXPECT_THAT(games.Collect(), IsEmpty());
    EXPECT_EQ(games.TitleOn(6), "Luciole");
    EXPECT_EQ(PinSession(6)->serial, games.SerialOn(6));
}

// A player may choose games all day.
TEST_F(RoomGamesTest, KeepsNoGameThatWasChosenOnce) {
    RoomGames games(Open({"demo:sms-luciole"}));
    games.Start(6, std::move(Open({"demo:nes-ecume"}).front()));
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    EXPECT_EQ(games.Count(), 1u);
    ASSERT_TRUE(games.StartNext(7));
    EXPECT_EQ(games.NextTitle(), "Luciole") << "the list goes round without it";
    games.StartAndKeep(6, std::move(Open({"demo:nes-ecume"}).front()));
    EXPECT_EQ(games.Count(), 2u);
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    ASSERT_TRUE(WaitFor(games, 7, SetState::kPlaying));
}

TEST_F(RoomGamesTest, TheEndStopsAllAndKeepsThemForTheNextStart) {
    {
        ResumeGames resume(ResumeKind::kRoom);
        RoomGames games(Open({"demo:sms-luciole", "demo:nes-ecume"}), &resume);
        ASSERT_TRUE(games.StartNext(6));
        ASSERT_TRUE(games.StartNext(7));
        ASSERT_TRUE(WaitFor(games, 7, SetState::kPlaying));
    }
    EXPECT_EQ(PinSession(6), nullptr);
    EXPECT_EQ(PinSession(7), nullptr);
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "sms" / "saves" / "luciole.zip"));
    const ResumeGames next(ResumeKind::kRoom);
    ASSERT_EQ(next.Left().size(), 2u);
    EXPECT_EQ(next.Left()[0].key, 6u);
    EXPECT_EQ(ResumeTitle(next.Left()[0].label), "Luciole");
    EXPECT_EQ(next.Left()[1].key, 7u);
    EXPECT_EQ(ResumeSystem(next.Left()[1].label), kSystemNes);
}

// One that has not started yet is on as well.
TEST_F(RoomGamesTest, AGameThatStartsAtTheEndIsKept) {
    ResumeGames resume(ResumeKind::kRoom);
    {
        RoomGames games(Open({"demo:sms-luciole"}), &resume);
        ASSERT_TRUE(games.StartNext(6));
    }
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "resume" / "1" / "room-6.resume"));
}

TEST_F(RoomGamesTest, AGameThatIsTurnedOffIsSavedAndNotKept) {
    ResumeGames resume(ResumeKind::kRoom);
    RoomGames games(Open({"demo:sms-luciole"}), &resume);
    ASSERT_TRUE(games.StartNext(6));
    ASSERT_TRUE(WaitFor(games, 6, SetState::kPlaying));
    EmuKeepResumeFiles();
    const std::filesystem::path file = folder.Path() / "resume" / "1" / "room-6.resume";
    ASSERT_TRUE(std::filesystem::exists(file));
    games.Stop(6);
    ASSERT_TRUE(WaitFor(games, 6, SetState::kOff));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "sms" / "saves" / "luciole.zip"));
}

TEST_F(RoomGamesTest, EightSetsAtRandomLeaveNothingBehind) {
    RoomGames games(Open({kGames[0], kGames[1], kGames[2], kGames[3], kGames[4]}));
    std::mt19937 random(20);
    int starts = 0;
    int stops = 0;
    constexpr const wchar_t* kActions[] = {L"Save State", L"Load State", L"Rewind"};
    for (int i = 0; i < Operations(); ++i) {
        const uint32_t key = kFirstSet + random() % kSets;
        switch (random() % 4) {
        case 0:
        case 1: starts += games.StartNext(key) ? 1 : 0; break;
        case 2:
            stops += games.StateOf(key) != SetState::kOff ? 1 : 0;
            games.Stop(key);
            break;
        default: { // the player's hotkey at this set
            const wchar_t* const action = kActions[random() % std::size(kActions)];
            const auto binding =
                static_cast<uint32_t>(Settings().GetInt2(L"INPUT " + std::wstring(action)).first);
            InputSetActiveKey(key);
            InputBeginPump();
            InputKeyChanged(binding & 0xFFFF, true);
            Look();
            InputKeyChanged(binding & 0xFFFF, false);
            EmuKeepBatteries();
            break;
        }
        }
        if (random() % 8 == 0) { // sets that run for a while
            ASSERT_TRUE(WaitUntil("the orders", [&] {
                static_cast<void>(games.Collect());
                for (uint32_t set = kFirstSet; set < kFirstSet + kSets; ++set) {
                    const SetState state = games.StateOf(set);
                    if (state == SetState::kStarting || state == SetState::kStopping) {
                        return false;
                    }
                }
                return true;
            }));
            for (uint32_t set = kFirstSet; set < kFirstSet + kSets; ++set) {
                const SessionPin session = PinSession(set);
                ASSERT_EQ(session != nullptr, games.StateOf(set) == SetState::kPlaying) << set;
                ASSERT_EQ(session != nullptr ? session->serial : 0, games.SerialOn(set)) << set;
            }
        }
        Look();
        EXPECT_THAT(games.Collect(), IsEmpty());
    }
    EXPECT_GT(starts, 0);
    EXPECT_GT(stops, 0);
    games.StopAll();
    for (uint32_t set = kFirstSet; set < kFirstSet + kSets; ++set) {
        EXPECT_EQ(PinSession(set), nullptr) << set;
    }
    InputClearAll();
    InputSetActiveKey(0);
}
