#include "formats/game_file.h"
#include "gui/button.h"
#include "gui/list_view.h"
#include "gui/text_box.h"
#include "host/machine_list.h"
#include "machine/emu_system.h"
#include "screens/benchmark.h"
#include "screens/panels_rig.h"

namespace {

// A machine that does nothing but count.
class Counter : public CEmuSystem {
public:
    explicit Counter(uint32_t key)
        : CEmuSystem(key, 256, 256) {}
    bool Init(const void* /*options*/, CGameFile* const /*games*/[2]) override { return true; }
    void Reset() override {}
    void RunFrame(EMU_INPUT_STATE*, EMU_VIDEO_FRAME*, EMU_AUDIO_FRAME*) override { ++gFrames; }
    bool LoadState(const uint8_t*, uint32_t) override { return false; }
    uint32_t StateSize() override { return 0; }
    void WriteState(StateOut) override {}
    static int gFrames;
};
int Counter::gFrames = 0;

class Benchmark : public PanelsTest {
protected:
    void SetUp() override {
        static constexpr MACHINE_ENTRY kEntries[] = {
            {1, "", [](uint32_t key) -> std::unique_ptr<CEmuSystem> {
                 return std::make_unique<Counter>(key);
             }}
        };
        EmuSetMachines({kEntries, nullptr});
        PanelsTest::SetUp();
        Counter::gFrames = 0;
        host.openGame = [](CGameFile&) { return true; };
        host.step = 10; // every look at the clock, so 500 frames
        Open(kPanelBenchmark);
    }
    void Composite() {
        picture.assign(size_t{1280} * 720, 0);
        Manager().SetCompositeBuffer(picture.data(), 1280, 720, 1280);
        Manager().CompositeAll();
    }
    // With the picture.
    void Round() {
        PanelsTest::Round();
        Composite();
    }
    CGUIBenchmark& Shown() { return PanelsTest::Shown<CGUIBenchmark>(); }
    std::vector<std::wstring> Rows() {
        std::vector<std::wstring> rows;
        for (int32_t row = 0; row < Shown().Results()->RowCount(); ++row) {
            rows.push_back(Shown().Results()->Cell(row, 0)->text);
        }
        return rows;
    }

    std::vector<uint32_t> picture;
};

TEST_F(Benchmark, ReportsARunInItsRows) {
    Click(Shown().StartButton());
    for (int round = 0; round < 4; ++round) {
        Round();
    }
    KeepPicture("report");
    EXPECT_FALSE(Shown().Running());
    ASSERT_EQ(Rows().size(), 9u);
    EXPECT_EQ(Rows()[1], L"Sega Master System Benchmark - Single Core");
    EXPECT_EQ(Rows()[2], L"   Frames Completed: " + std::to_wstring(Shown().Frames()));
    // The first frame is run and not counted.
    EXPECT_EQ(Shown().Frames(), static_cast<uint32_t>(Counter::gFrames) - 1);
    EXPECT_EQ(Shown().Frames(),
              499u); // the clock is read once before, and before each counted frame
}

TEST_F(Benchmark, ShowsThatItTakesFiveSecondsBeforeItStands) {
    const std::wstring before = Shown().Notice()->Text();
    Click(Shown().StartButton());
    EXPECT_NE(Shown().Notice()->Text(), before);
    EXPECT_NE(Shown().Notice()->Text().find(L"five seconds"), std::wstring::npos);
    // However many rounds pass, nothing runs before a picture was drawn.
    for (int round = 0; round < 5; ++round) {
        menu->Update();
        Tick();
    }
    EXPECT_TRUE(Shown().Running());
    EXPECT_EQ(Counter::gFrames, 0);
    KeepPicture("running");
    Composite();
    menu->Update();
    EXPECT_GT(Counter::gFrames, 0);
    EXPECT_EQ(Shown().Notice()->Text(), before);
}

TEST_F(Benchmark, IgnoresAnotherStartWhileItRuns) {
    Shown().Start();
    Round();
    Shown().Start(); // would ask for another picture
    Round();
    Round();
    EXPECT_FALSE(Shown().Running());
    const int frames = Counter::gFrames;
    Round();
    EXPECT_EQ(Counter::gFrames, frames);
    EXPECT_EQ(Rows().size(), 9u);
}

TEST_F(Benchmark, AClickOfItsStandstillStartsNoOther) {
    host.openGame = [this](CGameFile&) {
        EXPECT_EQ(host.inputsForgotten, 0) << "what comes during the run counts too";
        return true;
    };
    Click(Shown().StartButton());
    Round();
    menu->Update(); // the run, in the middle of a round
    ASSERT_EQ(Rows().size(), 9u);
    EXPECT_EQ(host.inputsForgotten, 1);
    Click(Shown().StartButton()); // of the events that this round began with
    EXPECT_EQ(Rows().size(), 9u);
    Round();
    const int frames = Counter::gFrames;
    for (int round = 0; round < 3; ++round) {
        Round();
    }
    EXPECT_EQ(Counter::gFrames, frames);
    Click(Shown().StartButton());
    EXPECT_TRUE(Shown().Running()) << "the next one is the player's wish";
}

TEST_F(Benchmark, EmptiesTheResultsOfTheRunBefore) {
    for (int run = 0; run < 2; ++run) {
        Shown().Start();
        EXPECT_TRUE(Rows().empty());
        EXPECT_EQ(Shown().Frames(), 0u);
        for (int round = 0; round < 3; ++round) {
            Round();
        }
        EXPECT_EQ(Rows().size(), 9u);
    }
}

TEST_F(Benchmark, ReportsZeroesWithoutAGame) {
    host.openGame = [](CGameFile&) { return false; };
    Shown().Start();
    for (int round = 0; round < 3; ++round) {
        Round();
    }
    EXPECT_EQ(Counter::gFrames, 0);
    ASSERT_EQ(Rows().size(), 9u);
    EXPECT_EQ(Rows()[2], L"   Frames Completed: 0");
}

TEST_F(Benchmark, StartsByReturnAlone) {
    EXPECT_EQ(Manager().FocusWindow(), Shown().StartButton()->window);
    PressKey(GHOSTGUIKey::kReturn);
    EXPECT_TRUE(Shown().Running());
}

TEST_F(Benchmark, NoLineOfTheReportIsCut) {
    GhostListViewStyle look;
    ASSERT_TRUE(CGhostTheme::Get().GetStyle(L"CREDITLIST", look));
    for (const wchar_t* const line :
         {L"        Total Score: 1234.567 Sega Master Systems on a single core with cycle accuracy",
          L"Congratulations! You seem to have a good enough PC to play Ombrelune comfortably"}) {
        EXPECT_LE(MeasureText(look.list.item2Normal.font, line).width,
                  Shown().Results()->ColumnWidth(0) - 16);
    }
}

} // namespace
