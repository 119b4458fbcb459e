// What floats: drop lists, menus, message boxes, hints.
#include "gui/control_rig.h"

namespace {

class PopupTest : public ControlTest {
protected:
    CGhostDropList* MakeDrop(int y, int rows, int most = 1000) {
        auto* const drop =
            new CGhostDropList(nullptr, 0, L"DROP", L"choose", most, {false, 100, y, 200, 28});
        for (int i = 0; i < rows; ++i) {
            drop->AddItem(L"item " + std::to_wstring(i));
        }
        drop->OnSelect.connect(
            [this](CGhostDropList*, int index, GHOSTLIST_ITEM*) { selections.push_back(index); });
        manager.Tick(0);
        return drop;
    }
    std::vector<int> selections;
};

using DropList = PopupTest;
using Popup = PopupTest;
using MessageBox = PopupTest;
using ToolTip = PopupTest;

} // namespace

TEST_F(DropList, OpensUnderItsControlWithItsContentsHeight) {
    CGhostDropList* const drop = MakeDrop(100, 5);
    ClickAt(120, 110);
    ASSERT_TRUE(drop->IsOpen());
    EXPECT_TRUE(drop->Arrow()->IsDown());
    const int height = 5 * drop->List()->RowHeight() + 2;
    EXPECT_EQ(OnScreen(drop->List()->window), (GUI_RECT{100, 128, 200, height}));
    EXPECT_EQ(manager.FocusWindow(), drop->List()->window);
    EXPECT_EQ(OnScreen(drop->Arrow()->window), (GUI_RECT{272, 100, 28, 28}));
    ClickAt(120, 110);
    EXPECT_FALSE(drop->IsOpen());
    EXPECT_FALSE(drop->Arrow()->IsDown());
    ClickAt(290, 110);
    EXPECT_TRUE(drop->IsOpen()) << "by its arrow";
    ClickAt(290, 110);
    EXPECT_FALSE(drop->IsOpen());
    EXPECT_EQ(manager.FocusWindow(), drop->window);
}

TEST_F(DropList, OpensUpwardsWhereThereIsMoreRoom) {
    CGhostDropList* const low = MakeDrop(600, 20); // 92 units below
    const int height = 20 * low->List()->RowHeight() + 2;
    low->Open();
    EXPECT_EQ(OnScreen(low->List()->window), (GUI_RECT{100, 600 - height, 200, height}));
    CGhostDropList* const middle = MakeDrop(400, 60);
    middle->Open();
    EXPECT_EQ(OnScreen(middle->List()->window), (GUI_RECT{100, 0, 200, 400})) << "cut above";
    CGhostDropList* const high = MakeDrop(100, 60);
    high->Open();
    EXPECT_EQ(OnScreen(high->List()->window), (GUI_RECT{100, 128, 200, 592})) << "cut below";
    CGhostDropList* const most = MakeDrop(100, 60, 90);
    most->Open();
    EXPECT_EQ(OnScreen(most->List()->window).height, 90);
}

TEST_F(DropList, AChoiceWritesTheCaptionAndCloses) {
    CGhostDropList* const drop = MakeDrop(100, 5);
    ClickAt(120, 110);
    ClickAt(120, 129 + drop->List()->RowHeight() + 3);
    EXPECT_FALSE(drop->IsOpen());
    EXPECT_EQ(drop->Caption(), L"item 1");
    EXPECT_EQ(selections, (std::vector<int>{1}));
    EXPECT_EQ(manager.FocusWindow(), drop->window);
    Key(kPageDown);
    EXPECT_EQ(drop->Caption(), L"item 2");
    manager.ActivateFocus();
    manager.Tick(0);
    manager.Navigate(GUI_DIRECTION::kDown);
    EXPECT_EQ(drop->Caption(), L"item 2") << "only aimed at";
    manager.ActivateFocus();
    manager.Tick(0);
    EXPECT_EQ(selections, (std::vector<int>{1, 2, 3}));
    EXPECT_FALSE(drop->IsOpen());
    manager.ActivateFocus();
    manager.Tick(0);
    EXPECT_TRUE(manager.CancelFocus());
    EXPECT_FALSE(drop->IsOpen());
}

TEST_F(DropList, ClosesWhenTheFocusGoesElsewhere) {
    CGhostDropList* const drop = MakeDrop(100, 100, 100);
    auto* const other = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 500, 0, 50, 30});
    drop->Open();
    manager.Tick(0);
    const GUI_RECT at = OnScreen(drop->List()->window);
    ClickAt(at.Right() - 5, at.y + 50);
    EXPECT_EQ(manager.FocusWindow(), drop->List()->ScrollbarWindow());
    EXPECT_TRUE(drop->IsOpen()) << "the bar is a part of it";
    Focus(other->window);
    EXPECT_FALSE(drop->IsOpen());
    EXPECT_EQ(manager.FocusWindow(), other->window);
    drop->Open();
    manager.Tick(0);
    drop->SetVisible(false);
    manager.Tick(0);
    EXPECT_FALSE(drop->IsOpen()) << "with its control";
}

TEST_F(DropList, ItsArrowStaysDownWhileTheListIsOpen) {
    CGhostDropList* const drop = MakeDrop(100, 5);
    ClickAt(290, 110);
    ASSERT_TRUE(drop->IsOpen());
    MoveTo(150, 140);
    EXPECT_TRUE(drop->Arrow()->IsDown());
    EXPECT_EQ(drop->Arrow()->GetState(), CGhostButton::kPressed);
    MoveTo(150, 110);
    MoveTo(800, 600);
    EXPECT_TRUE(drop->Arrow()->IsDown());
    drop->CloseList();
    EXPECT_EQ(drop->Arrow()->GetState(), CGhostButton::kNormal);
}

TEST_F(DropList, TheFaceIsHotAsAWhole) {
    CGhostDropList* const drop = MakeDrop(100, 5);
    MoveTo(120, 110);
    EXPECT_EQ(drop->Arrow()->GetState(), CGhostButton::kHot);
    MoveTo(800, 600);
    EXPECT_EQ(drop->Arrow()->GetState(), CGhostButton::kNormal);
    drop->SetEnabled(false);
    MoveTo(120, 110);
    EXPECT_EQ(drop->Arrow()->GetState(), CGhostButton::kDisabled);
}

TEST_F(DropList, WheelLettersAndPageKeysChangeTheChoiceWhileItIsClosed) {
    CGhostDropList* const drop = MakeDrop(100, 0);
    for (const wchar_t* const text : {L"Bike", L"Car", L"Cart", L"Dog"}) {
        drop->AddItem(text);
    }
    drop->Item(1)->flags = GHOSTLIST_ITEM::kDisabled;
    Focus(drop->window);
    Key(kHome);
    EXPECT_EQ(drop->Caption(), L"Bike");
    Type("ca");
    EXPECT_EQ(drop->Caption(), L"Cart") << "a disabled one is passed over";
    manager.Tick(1000000);
    Key(kPageDown);
    EXPECT_EQ(drop->Caption(), L"Dog");
    Key(kPageUp);
    Key(kPageUp);
    EXPECT_EQ(drop->Caption(), L"Bike");
    Key(kPageUp);
    EXPECT_EQ(drop->Caption(), L"Bike");
    Key(kEnd);
    EXPECT_EQ(drop->Caption(), L"Dog");
    MoveTo(290, 110); // the arrow
    Wheel(true);
    EXPECT_EQ(drop->Caption(), L"Cart");
    EXPECT_EQ(manager.FocusWindow(), drop->window);
    EXPECT_EQ(selections, (std::vector<int>{0, 2, 3, 2, 0, 3, 2}));
}

TEST_F(DropList, KeysAimThoughTheMouseRestsOverTheList) {
    CGhostDropList* const drop = MakeDrop(100, 100, 100);
    ClickAt(120, 110);
    MoveTo(150, 150);
    EXPECT_EQ(drop->List()->Hot(), 21 / drop->List()->RowHeight());
    Key(kEnd);
    EXPECT_GT(drop->List()->ScrollPixels(), 0);
    EXPECT_EQ(drop->List()->Hot(), 99);
    Key(kReturn);
    EXPECT_EQ(drop->Selected(), 99);
}

TEST_F(DropList, ItemsMayChangeWhileItIsOpen) {
    CGhostDropList* const drop = MakeDrop(100, 5);
    drop->Open();
    drop->AddItem(L"one more");
    EXPECT_EQ(OnScreen(drop->List()->window).height, 6 * drop->List()->RowHeight() + 2);
    drop->Clear();
    EXPECT_FALSE(drop->IsOpen());
}

TEST_F(DropList, WorksInFrontOfAModalWindowAndEndsWithIt) {
    auto* const dialog = new CGhostWindowEx(nullptr, 0, L"W", L"", 0, {false, 50, 50, 260, 90});
    auto* const drop =
        new CGhostDropList(dialog->window, 0, L"DROP", L"", 500, {false, 10, 10, 200, 28});
    for (int i = 0; i < 9; ++i) {
        drop->AddItem(L"item");
    }
    manager.SetModal(dialog->window);
    manager.Tick(0);
    ClickAt(70, 70);
    ASSERT_TRUE(drop->IsOpen());
    const GUI_RECT at = OnScreen(drop->List()->window);
    ClickAt(at.x + 10, at.Bottom() - 5);
    EXPECT_EQ(drop->Selected(), 8);
    manager.DestroyWindow(dialog->window);
    manager.Tick(0);
    EXPECT_EQ(WindowCount(), 0u);
}

TEST_F(Popup, OpensAtTheCursorAsWideAsItsWidestItemAnd35) {
    auto* const popup = new CGhostPopup(nullptr, 0);
    popup->AddItem(L"Cut");
    popup->AddItem(L"A longer one");
    int chosen = -1;
    popup->OnSelect.connect([&](CGhostPopup*, int index, GHOSTLIST_ITEM*) { chosen = index; });
    MoveTo(300, 200);
    popup->Show();
    manager.Tick(0);
    const int height = 2 * popup->List()->RowHeight() + 2;
    const GUI_RECT at = OnScreen(popup->List()->window);
    EXPECT_EQ(at, (GUI_RECT{300, 200, popup->List()->WidestItem() + 35, height}));
    EXPECT_EQ(manager.FocusWindow(), popup->List()->window);
    ClickAt(310, at.Bottom() - 4);
    EXPECT_EQ(chosen, 1);
    EXPECT_FALSE(popup->IsShown());
    MoveTo(300, 715);
    popup->Show();
    EXPECT_EQ(OnScreen(popup->List()->window).Bottom(), 715) << "upwards at the lower edge";
    manager.Tick(0);
    Key(kEscape);
    EXPECT_FALSE(popup->IsShown());
}

TEST_F(Popup, OpensAtItsStartAgain) {
    auto* const popup = new CGhostPopup(nullptr, 0);
    for (int i = 0; i < 100; ++i) {
        popup->AddItem(L"item");
    }
    popup->ShowAt(300, 100);
    manager.Tick(0);
    Key(kEnd);
    ASSERT_GT(popup->List()->ScrollPixels(), 0);
    Key(kEscape);
    ASSERT_FALSE(popup->IsShown());
    popup->ShowAt(300, 100);
    EXPECT_EQ(popup->List()->ScrollPixels(), 0);
}

TEST_F(MessageBox, OfOneShortWordIs450WideAndInTheMiddle) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Hi");
    const GUI_RECT at = OnScreen(box->Box()->window);
    EXPECT_EQ(at.width, 450);
    EXPECT_EQ(at.x, (1280 - 450) / 2);
    EXPECT_EQ(at.y, (720 - at.height) / 2);
    EXPECT_EQ(OnScreen(box->window), (GUI_RECT{0, 0, 1280, 720}));
    EXPECT_EQ(manager.ModalWindow(), box->window);
    EXPECT_EQ(manager.FocusWindow(), box->Button()->window);
    GUI_RECT client;
    manager.GetWindowRects(box->Box()->window, nullptr, &client, nullptr);
    EXPECT_EQ(box->Button()->GetRect(),
              (GUI_RECT{(client.width - 100) / 2, client.height - 35, 100, 25}));
    EXPECT_EQ(box->Message()->GetRect(), (GUI_RECT{0, 0, client.width, client.height - 35}));
}

TEST_F(MessageBox, GrowsBy50UntilItIsMoreThanTwiceAsWideAsHigh) {
    std::wstring text;
    for (int i = 0; i < 260; ++i) {
        text += L"word ";
    }
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", text);
    const GUI_RECT at = OnScreen(box->Box()->window);
    EXPECT_GT(at.width, 450);
    EXPECT_EQ((at.width - 450) % 50, 0);
    EXPECT_GT(at.width, 2 * at.height);
}

TEST_F(MessageBox, FourMayBeOpenAndEachReturnsTheInput) {
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 5, 5, 50, 30});
    Focus(button->window);
    std::vector<CGhostMessageBox*> boxes;
    for (int i = 0; i < 4; ++i) {
        boxes.push_back(CGhostMessageBox::Show(L"Title", L"Text"));
        ASSERT_NE(boxes.back(), nullptr);
    }
    EXPECT_EQ(CGhostMessageBox::Show(L"Title", L"Text"), nullptr);
    manager.Tick(0);
    Key(kEscape);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 3u);
    EXPECT_EQ(manager.ModalWindow(), boxes[2]->window);
    EXPECT_EQ(manager.FocusWindow(), boxes[2]->Button()->window);
    Key(kReturn);
    manager.Tick(0);
    manager.CancelFocus();
    manager.Tick(0);
    const GUI_RECT at = OnScreen(boxes[0]->Button()->window);
    ClickAt(at.x + 5, at.y + 5);
    manager.Tick(0);
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
    EXPECT_EQ(manager.ModalWindow(), nullptr);
    EXPECT_EQ(manager.FocusWindow(), button->window);
}

TEST_F(MessageBox, MayBeMadeInsideAHandler) {
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 5, 5, 50, 30});
    button->OnClick.connect([](auto&&...) { CGhostMessageBox::Show(L"Title", L"Text"); });
    ClickAt(10, 10);
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
}

TEST_F(ToolTip, IsAboveTheCursorWithinTheScreen) {
    auto* const tip = new CGhostToolTipWindow();
    auto* const button = new CGhostButton(nullptr, 0, L"BUTTON", L"", 0, {false, 0, 0, 1280, 720});
    button->SetToolTip(L"What it does");
    EXPECT_FALSE(tip->IsVisible());
    MoveTo(600, 400);
    manager.Tick(1000001);
    ASSERT_TRUE(tip->IsVisible());
    const GUI_RECT at = tip->GetRect();
    EXPECT_EQ(at.x, 600 - at.width / 2);
    EXPECT_EQ(at.Bottom(), 400 - 10);
    MoveTo(3, 4);
    EXPECT_FALSE(tip->IsVisible());
    manager.Tick(1000001);
    EXPECT_EQ(tip->GetRect().x, 0);
    EXPECT_EQ(tip->GetRect().y, 0);
}

TEST_F(MessageBox, OneThatIsTakenAwayUnreadSaysSoOnce) {
    CGhostMessageBox* const box = CGhostMessageBox::Show(L"Title", L"Text");
    int told = 0;
    box->OnClosed.connect([&](CGhostMessageBox*) { ++told; });
    manager.Reset();
    EXPECT_EQ(told, 1);
    CGhostMessageBox* const other = CGhostMessageBox::Show(L"Title", L"Text");
    other->OnClosed.connect([&](CGhostMessageBox*) { ++told; });
    other->Dismiss();
    for (int i = 0; i < 3; ++i) {
        manager.Tick(0);
    }
    EXPECT_EQ(told, 2);
}
