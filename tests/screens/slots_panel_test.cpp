// The panel of saved states: what is shown, and how it is used by mouse, by keys and by a controller.
#include "gui/button.h"
#include "gui/text.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "gui/window_ex.h"
#include "screens/panels_rig.h"
#include "screens/slot_cell.h"
#include "screens/slots_panel.h"

#include <memory>
#include <utility>

namespace {

using Orders = std::vector<std::pair<SlotAct, uint32_t>>;

STATE_SNAPSHOT Label(int64_t takenAt, uint64_t played, uint32_t colour, float aspect) {
    STATE_SNAPSHOT label;
    label.takenAt = takenAt;
    label.secondsPlayed = played;
    label.picture = {256, 192, aspect, {}};
    for (uint32_t y = 0; y < 192; ++y) {
        for (uint32_t x = 0; x < 256; ++x) {
            const bool tile = ((x / 16) + (y / 16)) % 2 == 0;
            label.picture.pixels.push_back(tile ? colour : 0xFF202840 + y);
        }
    }
    return label;
}

class SlotsPanel : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        panel = std::make_unique<CGUISlotsPanel>(SLOTS_PANEL_CALLS{
            [this](SlotAct act, uint32_t slot) { orders.emplace_back(act, slot); },
            [this] { ++closes; }});
    }
    void TearDown() override {
        panel.reset();
        Tick();
        ScreensTest::TearDown();
    }

    void Round() {
        panel->Update();
        Tick();
    }

    void Fill(uint32_t slot, int64_t takenAt, float aspect = 4.0f / 3.0f) {
        SLOT_FACTS& facts = list.slots[slot - 1];
        facts.filled = facts.readable = true;
        facts.label = Label(takenAt, 4321, 0xFFFFB347 - slot * 16, aspect);
    }

    // The worker's answer to the last order.
    void Answer(bool done = true, const std::string& text = {}) {
        ASSERT_FALSE(orders.empty());
        SLOT_ANSWER answer;
        answer.order.act = orders.back().first;
        answer.order.slot = orders.back().second;
        answer.done = done;
        answer.text = text;
        answer.list = list;
        panel->Take(answer);
        Round();
    }

    void Open() {
        panel->Open(L"Luciole");
        Round();
        Answer();
        orders.clear();
    }

    [[nodiscard]] bool Can(SlotButton which) const { return panel->Button(which)->IsEnabled(); }

    std::unique_ptr<CGUISlotsPanel> panel;
    SLOT_LIST list;
    Orders orders;
    int closes = 0;
};

TEST_F(SlotsPanel, ShowsWhatIsInTheSlots) {
    Fill(2, 1'234'567'890);
    list.slots[2].filled = true; // a file that cannot be read
    panel->Open(L"Luciole");
    EXPECT_EQ(orders, (Orders{
                          {SlotAct::kList, 1}
    }));
    Round();
    EXPECT_EQ(panel->Cell(2)->Instead(), L"Empty") << "nothing is known yet";
    Answer();
    EXPECT_TRUE(panel->Cell(2)->HasPicture());
    EXPECT_EQ(panel->Cell(2)->Played(), L"1 h 12 min played");
    EXPECT_EQ(panel->Cell(2)->Date().substr(0, 7), L"2009-02"); // whatever the time zone
    EXPECT_EQ(panel->Cell(2)->Instead(), L"");
    EXPECT_EQ(panel->Cell(3)->Instead(), L"Cannot be read");
    EXPECT_EQ(panel->Cell(4)->Instead(), L"Empty");
    EXPECT_EQ(panel->Cell(4)->Date(), L"");
}

TEST_F(SlotsPanel, OpensAtTheSlotThatWasSavedLast) {
    Fill(2, 1000);
    Fill(7, 3000);
    Fill(9, 2000);
    Open();
    EXPECT_EQ(panel->Chosen(), 7u);
    EXPECT_EQ(Manager().FocusWindow(), panel->Cell(7)->window);
    EXPECT_TRUE(panel->Cell(7)->IsChosen());
    EXPECT_FALSE(panel->Cell(1)->IsChosen());
}

TEST_F(SlotsPanel, OffersWhatCanBeDoneWithTheChosenSlot) {
    Fill(1, 1000);
    list.slots[1].hasBefore = true; // deleted
    Open();
    EXPECT_TRUE(Can(SlotButton::kLoad) && Can(SlotButton::kSave) && Can(SlotButton::kDelete));
    EXPECT_FALSE(Can(SlotButton::kUndoSlot) || Can(SlotButton::kUndoLoad));
    Click(panel->Cell(2)->window);
    EXPECT_EQ(panel->Chosen(), 2u);
    EXPECT_FALSE(Can(SlotButton::kLoad) || Can(SlotButton::kDelete));
    EXPECT_TRUE(Can(SlotButton::kSave) && Can(SlotButton::kUndoSlot));
    EXPECT_EQ(panel->Button(SlotButton::kUndoSlot)->Caption(), L"Undo Delete");
    Click(panel->Cell(1)->window);
    EXPECT_EQ(panel->Button(SlotButton::kUndoSlot)->Caption(), L"Undo Save");
    Click(panel->Cell(3)->window);
    EXPECT_EQ(panel->Button(SlotButton::kUndoSlot)->Caption(), L"Undo Save");
    EXPECT_TRUE(orders.empty()) << "a click chooses, no more";
}

TEST_F(SlotsPanel, IsUsedByMouse) {
    Fill(4, 1000);
    list.slots[3].hasBefore = list.hasLoadBefore = true;
    Open();
    const std::pair<SlotButton, SlotAct> buttons[] = {
        {SlotButton::kSave,     SlotAct::kSave    },
        {SlotButton::kDelete,   SlotAct::kDelete  },
        {SlotButton::kUndoSlot, SlotAct::kUndoSlot},
    };
    for (const auto& [button, act] : buttons) {
        Click(panel->Button(button));
        EXPECT_EQ(orders.back(), (std::pair{act, 4u}));
        Answer(true, "Done");
        EXPECT_TRUE(panel->IsShown()) << "what was done is seen here";
        EXPECT_EQ(panel->Message()->Text(), L"Done");
    }
    GUI_RECT place;
    Manager().GetScreenRect(panel->Cell(5)->window, &place);
    DoubleClickAt(place.x + 50, place.y + 50);
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kSave, 5u})) << "it is empty";
    Answer();
    Manager().GetScreenRect(panel->Cell(4)->window, &place);
    DoubleClickAt(place.x + 50, place.y + 50);
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kLoad, 4u}));
    EXPECT_TRUE(panel->IsShown()) << "until it is loaded";
    Answer(true, "Loaded slot 4");
    EXPECT_FALSE(panel->IsShown());
    EXPECT_EQ(closes, 1);
}

TEST_F(SlotsPanel, GoesBackToTheGameWhenALoadIsUndone) {
    list.hasLoadBefore = true;
    Open();
    Click(panel->Button(SlotButton::kUndoLoad));
    EXPECT_EQ(orders.back().first, SlotAct::kUndoLoad);
    Answer();
    EXPECT_FALSE(panel->IsShown());
}

TEST_F(SlotsPanel, IsUsedByKeysAlone) {
    Fill(1, 1000);
    Open();
    PressKey(GHOSTGUIKey::kRight);
    EXPECT_EQ(panel->Chosen(), 2u);
    PressKey(GHOSTGUIKey::kReturn);
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kSave, 2u}));
    Fill(2, 2000);
    Answer();
    PressKey(GHOSTGUIKey::kDown);
    EXPECT_EQ(panel->Chosen(), 7u);
    PressKey(GHOSTGUIKey::kUp);
    PressKey(GHOSTGUIKey::kDelete);
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kDelete, 2u}));
    list.slots[1] = {};
    list.slots[1].hasBefore = true;
    Answer();
    const size_t count = orders.size();
    PressKey(GHOSTGUIKey::kDelete);
    EXPECT_EQ(orders.size(), count) << "there is nothing to delete";
    PressKey(GHOSTGUIKey::kLeft);
    PressKey(GHOSTGUIKey::kSpace);
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kLoad, 1u}));
}

// Every slot and every button that can do something, by directions alone.
TEST_F(SlotsPanel, IsUsedByAControllerAlone) {
    for (uint32_t slot = 1; slot <= kStateSlots; ++slot) {
        Fill(slot, 1000 - slot);
        list.slots[slot - 1].hasBefore = true;
    }
    list.hasLoadBefore = true;
    Open();
    EXPECT_EQ(panel->Chosen(), 1u);
    for (uint32_t slot = 2; slot <= 5; ++slot) {
        EXPECT_TRUE(Manager().Navigate(GUI_DIRECTION::kRight));
        Tick();
        EXPECT_EQ(panel->Chosen(), slot);
    }
    EXPECT_TRUE(Manager().Navigate(GUI_DIRECTION::kDown));
    Tick();
    EXPECT_EQ(panel->Chosen(), 10u);
    EXPECT_TRUE(Manager().ActivateFocus());
    Tick();
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kLoad, 10u}));
    Answer(false, "It does not fit");
    EXPECT_TRUE(panel->IsShown()) << "a load that failed leaves the player here";

    EXPECT_TRUE(Manager().Navigate(GUI_DIRECTION::kDown));
    Tick();
    EXPECT_EQ(Manager().FocusWindow(), panel->Button(SlotButton::kClose)->window);
    for (const SlotButton button : {SlotButton::kUndoLoad, SlotButton::kUndoSlot,
                                    SlotButton::kDelete, SlotButton::kSave, SlotButton::kLoad}) {
        EXPECT_TRUE(Manager().Navigate(GUI_DIRECTION::kLeft));
        Tick();
        EXPECT_EQ(Manager().FocusWindow(), panel->Button(button)->window);
        EXPECT_EQ(panel->Chosen(), 10u) << "a button is about the slot that was chosen";
    }
    EXPECT_TRUE(Manager().ActivateFocus());
    Tick();
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kLoad, 10u}));
}

TEST_F(SlotsPanel, HasOneOrderAtATime) {
    Fill(1, 1000);
    Open();
    Click(panel->Button(SlotButton::kSave));
    Click(panel->Button(SlotButton::kDelete));
    EXPECT_EQ(orders, (Orders{
                          {SlotAct::kSave, 1}
    }));
    Answer();
    Click(panel->Button(SlotButton::kDelete));
    EXPECT_EQ(orders.back().first, SlotAct::kDelete);
}

TEST_F(SlotsPanel, ShowsTroubleInAnotherColourAndWhole) {
    Fill(1, 1000);
    Open();
    Click(panel->Button(SlotButton::kSave));
    const std::string trouble = "Not saved to slot 1: /home/player/" + std::string(200, 'x');
    Answer(false, trouble);
    EXPECT_EQ(panel->Message()->Text(), std::wstring(trouble.begin(), trouble.end()));
    ASSERT_NE(panel->Message()->window->toolTip, nullptr);
    EXPECT_EQ(*panel->Message()->window->toolTip, panel->Message()->Text());
    EXPECT_TRUE(panel->IsShown());
}

// The focus stays where it can be used.
TEST_F(SlotsPanel, AButtonThatHasDoneItsWorkHandsTheFocusToTheSlot) {
    Fill(3, 1000);
    Open();
    panel->Button(SlotButton::kDelete)->SetFocus();
    Round();
    PressKey(GHOSTGUIKey::kReturn);
    EXPECT_EQ(orders.back(), (std::pair{SlotAct::kDelete, 3u}));
    list.slots[2] = {};
    list.slots[2].hasBefore = true;
    Answer();
    EXPECT_EQ(Manager().FocusWindow(), panel->Cell(3)->window);
}

TEST_F(SlotsPanel, TakesAllInputWhileItIsOpenAndGivesItBack) {
    CGhostButton* const behind =
        new CGhostButton(nullptr, 0, L"BUTTON", L"Behind", 0, {false, 0, 0, 100, 25});
    behind->SetFocus();
    Tick();
    Open();
    EXPECT_NE(Manager().ModalWindow(), nullptr);
    panel->Close();
    Round();
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(Manager().ModalWindow(), nullptr);
    EXPECT_EQ(Manager().FocusWindow(), behind->window);
    panel->Take({}); // an answer that comes late
    panel->Close();
    EXPECT_EQ(closes, 1);
    Open();
    EXPECT_TRUE(panel->IsShown()) << "again";
}

class SlotsPanelLook : public PanelsTest {
protected:
    void TearDown() override {
        panel.reset();
        PanelsTest::TearDown();
    }

    std::unique_ptr<CGUISlotsPanel> panel;
};

TEST_F(SlotsPanelLook, IsTidyOnEveryDisplay) {
    for (const DISPLAY& display : kDisplays) {
        Make(display.width, display.height);
        panel =
            std::make_unique<CGUISlotsPanel>(SLOTS_PANEL_CALLS{[](SlotAct, uint32_t) {}, [] {}});
        panel->Open(L"Luciole");
        SLOT_ANSWER answer;
        answer.done = true;
        answer.text = "Saved to slot 3";
        answer.list.hasLoadBefore = true;
        for (const uint32_t slot : {1u, 2u, 3u, 5u, 6u}) {
            SLOT_FACTS& facts = answer.list.slots[slot - 1];
            facts.filled = true;
            facts.readable = slot != 6;
            facts.hasBefore = slot == 3;
            facts.label = Label(1'700'000'000 + slot % 4 * 100'000, slot * 1000, 0xFF4FC3C7,
                                slot == 2   ? 10.0f / 9.0f
                                : slot == 5 ? 0.75f
                                            : 4.0f / 3.0f);
        }
        panel->Take(answer);
        panel->Update();
        Tick();
        const std::string where =
            "slots-" + std::to_string(display.width) + "x" + std::to_string(display.height);
        const GHOSTMANAGER_WINDOW& box = *panel->Box()->window;
        ExpectTidy(box, where);
        GUI_RECT place;
        ASSERT_TRUE(Manager().GetScreenRect(&box, &place));
        EXPECT_EQ(Intersection(place, Manager().ScreenRect()), place) << where;
        KeepPicture(where);
        panel.reset();
        Tick();
    }
}

TEST_F(SlotsPanelLook, NoTextIsCut) {
    EXPECT_TRUE(Fits(L"SLOT_NUMBER", L"Slot 10", 60));
    EXPECT_TRUE(Fits(L"SLOT_DATE", L"2026-08-28 20:48", 140));
    EXPECT_TRUE(Fits(L"SLOT_PLAYED", L"9999 h 59 min played", 200));
    EXPECT_TRUE(Fits(L"SLOT_EMPTY", L"Cannot be read", 200));
}

} // namespace
