#include "base/file_lock.h"
#include "base/files.h"
#include "host/host_data.h"
#include "host/host_fixture.h"
#include "host/slot_worker.h"
#include "host/state_slots.h"
#include "library/full_disk.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<uint8_t>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Slots : public HostTest {
protected:
    static Bytes StateOf(EMU_THREAD& session) {
        uint32_t size = 0;
        const StateBlob blob = session.machine->SaveState(size);
        return {blob.get(), blob.get() + size};
    }

    // Another state than before.
    static void Play(EMU_THREAD& session) {
        std::vector<uint32_t> pixels(size_t{320} * 240);
        std::vector<int16_t> samples(size_t{kAudioFramePairs} * 2);
        EMU_VIDEO_FRAME video{};
        video.pixels = pixels.data();
        EMU_AUDIO_FRAME audio{samples.data(), 44100, 0};
        session.machine->RunFrame(nullptr, &video, &audio);
    }

    [[nodiscard]] fs::path Folder() const {
        return home.Path() / "sms" / "saves" / "game.a5a5a5a5a5a5.slots";
    }

    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Folder())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    [[nodiscard]] Bytes StateIn(const std::string& file) const {
        STATE_SNAPSHOT snapshot;
        std::string error;
        EXPECT_TRUE(ReadSnapshot(Folder() / file, snapshot, error)) << error;
        return snapshot.state;
    }

    // Saves, and returns the state that was saved.
    Bytes Save(EMU_THREAD& session, uint32_t slot, int64_t now = 1000) {
        EXPECT_TRUE(SaveToSlot(session, slot, {now, 60}, text)) << text;
        return StateOf(session);
    }

    static std::vector<uint32_t> Filled(const SLOT_LIST& list) {
        std::vector<uint32_t> filled;
        for (uint32_t slot = 1; slot <= kStateSlots; ++slot) {
            if (list.slots[slot - 1].filled) {
                filled.push_back(slot);
            }
        }
        return filled;
    }

    std::string text;
};

} // namespace

TEST_F(Slots, LieInAFolderOfTheirGameAndImage) {
    const auto session = Create();
    EXPECT_EQ(SlotFolder(*session), Folder());
    EXPECT_THAT(Filled(ListSlots(Folder())), IsEmpty());
    Save(*session, 3);
    EXPECT_EQ(text, "Saved to slot 3");
    Save(*session, 10);
    EXPECT_THAT(Names(), ElementsAre("slot-03.state", "slot-10.state"));
    EXPECT_THAT(Filled(ListSlots(Folder())), ElementsAre(3, 10));

    const auto other = Create({}, "Game", 1, 0xB6); // the same name, another image
    EXPECT_THAT(Filled(ListSlots(SlotFolder(*other))), IsEmpty());
}

TEST_F(Slots, AreListedWithTheirTimesAndTheirGame) {
    const auto session = Create();
    ASSERT_TRUE(SaveToSlot(*session, 2, {1234567890, 7384}, text));
    const SLOT_LIST list = ListSlots(Folder());
    const SLOT_FACTS& facts = list.slots[1];
    EXPECT_TRUE(facts.filled && facts.readable && !facts.hasBefore);
    EXPECT_EQ(facts.label.takenAt, 1234567890);
    EXPECT_EQ(facts.label.secondsPlayed, 7384u);
    EXPECT_EQ(SnapshotText(facts.label, "game"), "Game");
    EXPECT_TRUE(facts.label.state.empty()) << "a list needs no states";
    EXPECT_FALSE(list.hasLoadBefore);
}

TEST_F(Slots, LoadingBringsTheStateBackAndCanBeUndoneAndDoneAgain) {
    const auto session = Create();
    Play(*session);
    const Bytes saved = Save(*session, 1);
    Play(*session);
    const Bytes later = StateOf(*session);
    session->showStatic = 1;

    bool undoable = false;
    ASSERT_TRUE(LoadFromSlot(*session, 1, {2000, 90}, text, &undoable)) << text;
    EXPECT_EQ(text, "Loaded slot 1");
    EXPECT_TRUE(undoable);
    EXPECT_EQ(StateOf(*session), saved);
    EXPECT_EQ(session->showStatic, 0);
    EXPECT_TRUE(ListSlots(Folder()).hasLoadBefore);

    ASSERT_TRUE(UndoLoad(*session, {2001, 91}, text)) << text;
    EXPECT_EQ(StateOf(*session), later);
    ASSERT_TRUE(UndoLoad(*session, {2002, 92}, text)) << text;
    EXPECT_EQ(StateOf(*session), saved) << "undone again";
}

// The file alone remembers, as after the program was ended by force.
TEST_F(Slots, ALoadIsUndoneByALaterProgram) {
    Bytes later;
    {
        const auto session = Create();
        Save(*session, 1);
        Play(*session);
        later = StateOf(*session);
        ASSERT_TRUE(LoadFromSlot(*session, 1, {}, text)) << text;
    }
    const auto session = Create();
    Play(*session);
    ASSERT_TRUE(UndoLoad(*session, {}, text)) << text;
    EXPECT_EQ(StateOf(*session), later);
}

TEST_F(Slots, WithoutALoadThereIsNothingToUndo) {
    const auto session = Create();
    const Bytes was = StateOf(*session);
    EXPECT_FALSE(UndoLoad(*session, {}, text));
    EXPECT_THAT(text, HasSubstr("nothing was loaded"));
    EXPECT_FALSE(UndoSlot(Folder(), 1, text));
    EXPECT_THAT(text, HasSubstr("nothing was there before"));
    EXPECT_FALSE(LoadFromSlot(*session, 1, {}, text));
    EXPECT_THAT(text, HasSubstr("it is empty"));
    EXPECT_FALSE(DeleteSlot(Folder(), 1, text));
    EXPECT_EQ(StateOf(*session), was);
}

TEST_F(Slots, OverwritingCanBeUndoneAndDoneAgain) {
    const auto session = Create();
    const Bytes first = Save(*session, 4, 1000);
    Play(*session);
    const Bytes second = Save(*session, 4, 2000);
    EXPECT_THAT(Names(), ElementsAre("slot-04.before.state", "slot-04.state"));
    EXPECT_EQ(StateIn("slot-04.state"), second);
    EXPECT_EQ(StateIn("slot-04.before.state"), first);
    EXPECT_TRUE(ListSlots(Folder()).slots[3].hasBefore);

    ASSERT_TRUE(UndoSlot(Folder(), 4, text)) << text;
    EXPECT_EQ(StateIn("slot-04.state"), first);
    EXPECT_EQ(ListSlots(Folder()).slots[3].label.takenAt, 1000);
    ASSERT_TRUE(UndoSlot(Folder(), 4, text)) << text;
    EXPECT_EQ(StateIn("slot-04.state"), second);
}

TEST_F(Slots, DeletingCanBeUndone) {
    const auto session = Create();
    const Bytes saved = Save(*session, 5);
    ASSERT_TRUE(DeleteSlot(Folder(), 5, text)) << text;
    EXPECT_EQ(text, "Deleted slot 5");
    const SLOT_LIST list = ListSlots(Folder());
    EXPECT_FALSE(list.slots[4].filled);
    EXPECT_TRUE(list.slots[4].hasBefore);
    ASSERT_TRUE(UndoSlot(Folder(), 5, text)) << text;
    EXPECT_EQ(StateIn("slot-05.state"), saved);
    EXPECT_FALSE(ListSlots(Folder()).slots[4].hasBefore);
}

TEST_F(Slots, ARefusedStateLeavesTheGameAndTheSlot) {
    const auto larger = Create({.stateBytes = 500});
    Save(*larger, 1);
    const auto session = Create(); // as with other options: its states have another size
    Play(*session);
    const Bytes was = StateOf(*session);
    const uint32_t resets = MachineOf(*session).resets;
    EXPECT_FALSE(LoadFromSlot(*session, 1, {}, text));
    EXPECT_THAT(text, HasSubstr("It stays in the slot"));
    EXPECT_EQ(StateOf(*session), was);
    EXPECT_EQ(MachineOf(*session).resets, resets);
    EXPECT_THAT(Names(), ElementsAre("slot-01.state")) << "nothing was left to undo";
}

TEST_F(Slots, AStateOfAnotherGameIsNotGivenToTheMachine) {
    const auto other = Create({}, "Game", 1, 0xB6);
    Save(*other, 1);
    fs::create_directories(Folder());
    fs::copy(SlotFolder(*other) / "slot-01.state", Folder() / "slot-01.state");
    const auto session = Create();
    Play(*session);
    const Bytes was = StateOf(*session);
    EXPECT_FALSE(LoadFromSlot(*session, 1, {}, text));
    EXPECT_THAT(text, HasSubstr("is of another game, Game"));
    EXPECT_EQ(StateOf(*session), was);
}

TEST_F(Slots, ADamagedOneIsKeptAndNamed) {
    const auto session = Create();
    Save(*session, 1);
    home.Write("sms/saves/game.a5a5a5a5a5a5.slots/slot-01.state", Bytes{'x'});
    const SLOT_LIST list = ListSlots(Folder());
    EXPECT_TRUE(list.slots[0].filled);
    EXPECT_FALSE(list.slots[0].readable);
    const Bytes was = StateOf(*session);
    EXPECT_FALSE(LoadFromSlot(*session, 1, {}, text));
    EXPECT_THAT(text, HasSubstr((Folder() / "slot-01.state").string()));
    EXPECT_EQ(StateOf(*session), was);
    Save(*session, 1);
    EXPECT_THAT(Names(), ElementsAre("slot-01.before.state", "slot-01.state"))
        << "what cannot be read is the player's too";
}

TEST_F(Slots, AFullDiskLeavesTheSlotAsItWas) {
    const auto session = Create();
    const Bytes first = Save(*session, 1);
    Play(*session);
    {
        const FullDisk full(100);
        EXPECT_FALSE(SaveToSlot(*session, 1, {}, text));
    }
    EXPECT_THAT(text, HasSubstr("Not saved to slot 1: "));
    EXPECT_THAT(Names(), ElementsAre("slot-01.state"));
    EXPECT_EQ(StateIn("slot-01.state"), first);
    {
        const FullDisk full(100);
        bool undoable = true;
        EXPECT_TRUE(LoadFromSlot(*session, 1, {}, text, &undoable)) << "that needs no room";
        EXPECT_FALSE(undoable);
    }
    EXPECT_THAT(text, HasSubstr("It cannot be undone"));
    EXPECT_EQ(StateOf(*session), first);
}

TEST_F(Slots, AMachineWithoutAStateSavesNothing) {
    const auto session = Create({.failSave = 1});
    EXPECT_FALSE(SaveToSlot(*session, 1, {}, text));
    EXPECT_THAT(text, HasSubstr("Not saved to slot 1"));
    EXPECT_FALSE(fs::exists(Folder()));
    TakeReports();
}

// Each row: the files that a program left when it ended at some moment, and what there must be then.
TEST_F(Slots, WhatWasBegunIsBroughtToAnEnd) {
    const auto session = Create();
    const Bytes one = Save(*session, 1);
    Play(*session);
    const Bytes two = Save(*session, 2);
    const fs::path oneFile = home.Path() / "one";
    const fs::path twoFile = home.Path() / "two";
    fs::rename(Folder() / "slot-01.state", oneFile);
    fs::rename(Folder() / "slot-02.state", twoFile);

    struct ROW {
        const char* left;   // holds the first state
        const char* second; // holds the second state
        const char* inSlot; // which one the slot must hold
        bool before;        // and whether the other one is there to be brought back
    };
    const ROW rows[] = {
        {"slot-01.new.state",    nullptr,                "one", false}, // saved to an empty slot
        {"slot-01.state",        "slot-01.new.state",    "two", true }, // saved over another
        {"slot-01.before.state", "slot-01.new.state",    "two", true },
        {"slot-01.swap.state",   "slot-01.before.state", "one", true }, // undone: not begun yet
        {"slot-01.swap.state",   "slot-01.state",        "two", true },
    };
    for (const ROW& row : rows) {
        fs::remove_all(Folder());
        fs::create_directories(Folder());
        fs::copy(oneFile, Folder() / row.left);
        if (row.second != nullptr) {
            fs::copy(twoFile, Folder() / row.second);
        }
        const SLOT_LIST list = ListSlots(Folder());
        ASSERT_TRUE(list.slots[0].filled) << row.left;
        EXPECT_EQ(StateIn("slot-01.state"), row.inSlot == std::string("one") ? one : two)
            << row.left;
        EXPECT_EQ(list.slots[0].hasBefore, row.before) << row.left;
        EXPECT_EQ(Names().size(), row.before ? 2u : 1u) << row.left;
    }
}

class SlotWorkerTest : public Slots {
protected:
    static SLOT_ANSWER Answer(SlotWorker& worker) {
        std::optional<SLOT_ANSWER> answer;
        EXPECT_TRUE(Eventually([&] {
            answer = worker.TakeAnswer();
            return answer.has_value();
        }));
        return answer.value_or(SLOT_ANSWER{});
    }

    static uint32_t FrameOf(uint32_t key) {
        uint32_t frame = 0;
        WithMachine(key, [&](CTestMachine& machine) { frame = machine.frame; });
        return frame;
    }
};

TEST_F(SlotWorkerTest, DoesWhatIsOrderedAndAnswersWithTheSlots) {
    const uint32_t serial = Start(4);
    ASSERT_TRUE(Eventually([] { return FrameOf(4) > 2; }));
    SlotWorker worker;
    worker.Order({SlotAct::kList, 4, serial, 0, {}});
    SLOT_ANSWER answer = Answer(worker);
    EXPECT_TRUE(answer.done);
    EXPECT_EQ(answer.text, "");
    EXPECT_THAT(Filled(answer.list), IsEmpty());

    worker.Order({
        SlotAct::kSave, 4, serial, 7, {1000, 60}
    });
    worker.Order({
        SlotAct::kLoad, 4, serial, 7, {1001, 61}
    });
    answer = Answer(worker);
    EXPECT_EQ(answer.order.act, SlotAct::kSave);
    EXPECT_EQ(answer.text, "Saved to slot 7");
    EXPECT_THAT(Filled(answer.list), ElementsAre(7));
    EXPECT_EQ(answer.list.slots[6].label.picture.width, 320u) << "a running game has a picture";
    answer = Answer(worker);
    EXPECT_EQ(answer.text, "Loaded slot 7");
    EXPECT_TRUE(answer.done && answer.list.hasLoadBefore);
}

TEST_F(SlotWorkerTest, AnOrderForAGameThatIsOffIsRefused) {
    const uint32_t serial = Start(4);
    SlotWorker worker;
    worker.Order({SlotAct::kSave, 4, serial + 1, 1, {}});
    EXPECT_EQ(Answer(worker).text, "The game is no longer on");
    EmuStopSession(4, SessionEnd::kTurnedOff);
    worker.Order({SlotAct::kSave, 4, serial, 1, {}});
    EXPECT_FALSE(Answer(worker).done);
    EXPECT_FALSE(fs::exists(Folder()));
}

TEST_F(SlotWorkerTest, EndsWhenAllIsDone) {
    const uint32_t serial = Start(4);
    {
        SlotWorker worker;
        for (uint32_t slot = 1; slot <= kStateSlots; ++slot) {
            worker.Order({SlotAct::kSave, 4, serial, slot, {}});
        }
    }
    EXPECT_EQ(Filled(ListSlots(Folder())).size(), kStateSlots);
}

TEST_F(SlotWorkerTest, APausedSessionStaysWhereItIs) {
    EXPECT_FALSE(EmuPauseSession(4, true)) << "there is none";
    const uint32_t serial = Start(4);
    ASSERT_TRUE(Eventually([] { return FrameOf(4) > 2; }));
    ASSERT_TRUE(EmuPauseSession(4, true));
    const uint32_t frame = FrameOf(4);
    // The loop passes its pause again and again, as the clock of the tests shows.
    const int64_t before = HostClock().nowMicroseconds();
    ASSERT_TRUE(Eventually([&] { return HostClock().nowMicroseconds() > before + 1'000'000; }));
    EXPECT_LE(FrameOf(4), frame + 1) << "at most the round that was under way";

    const uint32_t stays = FrameOf(4);
    SlotWorker worker;
    worker.Order({SlotAct::kSave, 4, serial, 1, {}});
    EXPECT_TRUE(Answer(worker).done);
    EXPECT_EQ(FrameOf(4), stays);
    ASSERT_TRUE(EmuPauseSession(4, false));
    EXPECT_TRUE(Eventually([&] { return FrameOf(4) > stays + 2; }));
    ASSERT_TRUE(EmuPauseSession(4, true));
    EXPECT_TRUE(EmuStopSession(4, SessionEnd::kTurnedOff)) << "a paused session can be stopped";
}

// Another holder of the folder's lock, as another running program is one.
TEST_F(Slots, AreLeftAloneWhileAnotherProgramIsAtWorkOnThem) {
    const auto session = Create();
    const Bytes saved = Save(*session, 1);
    Play(*session);
    const Bytes later = StateOf(*session);
    const HOST_CLOCK clock = HostClock();
    HOST_CLOCK impatient = clock;
    impatient.sleepMicroseconds = [](uint32_t) {};
    HostSetClock(impatient);
    {
        FileLock other;
        long holder = 0;
        std::string error;
        ASSERT_EQ(other.Take(Folder() / "slots.lock", holder, error), FileLock::Result::kTaken);
        const std::string held = "another running program is at work on these slots";
        EXPECT_FALSE(SaveToSlot(*session, 1, {2000, 90}, text));
        EXPECT_EQ(text, "Not saved to slot 1: " + held);
        EXPECT_FALSE(LoadFromSlot(*session, 1, {2000, 90}, text));
        EXPECT_EQ(text, "Not loaded from slot 1: " + held);
        EXPECT_FALSE(DeleteSlot(Folder(), 1, text));
        EXPECT_EQ(text, "Not deleted, slot 1: " + held);
        EXPECT_FALSE(UndoSlot(Folder(), 1, text));
        EXPECT_FALSE(UndoLoad(*session, {2000, 90}, text));
        EXPECT_EQ(StateOf(*session), later);
        EXPECT_THAT(Filled(ListSlots(Folder())), ElementsAre(1)) << "looking disturbs nobody";
    }
    HostSetClock(clock);
    EXPECT_EQ(StateIn("slot-01.state"), saved);
    EXPECT_TRUE(SaveToSlot(*session, 1, {2000, 90}, text)) << text;
    EXPECT_THAT(Names(), ElementsAre("slot-01.before.state", "slot-01.state"));
}

TEST_F(Slots, WaitForAnotherProgramThatIsAtWorkOnThem) {
    const auto session = Create();
    Save(*session, 1);
    static FileLock other;
    long holder = 0;
    std::string error;
    ASSERT_EQ(other.Take(Folder() / "slots.lock", holder, error), FileLock::Result::kTaken);
    const HOST_CLOCK clock = HostClock();
    HOST_CLOCK patient = clock;
    patient.sleepMicroseconds = [](uint32_t) { other.Release(); }; // which has finished meanwhile
    HostSetClock(patient);
    EXPECT_TRUE(DeleteSlot(Folder(), 1, text)) << text;
    HostSetClock(clock);
}
