// An interface that nobody touches costs nothing: nothing is painted, uploaded or composed.
#include "gui/control_rig.h"

using Rest = ControlTest;

TEST_F(Rest, EveryControlAtRestCostsNoUpload) {
    uint64_t uploads = 0;
    uint64_t creations = 0;
    GUI_HOST_CALLBACKS host;
    host.upload = [&](uint32_t, const uint32_t*, int32_t) { ++uploads; };
    host.create = [&](uint32_t, int32_t, int32_t) { ++creations; };
    manager.SetHost(host);
    new CGhostToolTipWindow();
    auto* const panel = new CGhostWindowEx(nullptr, 0, L"W", L"title",
                                           CGhostWindowEx::kFrame | CGhostWindowEx::kTitle,
                                           {false, 20, 20, 900, 600});
    GHOSTMANAGER_WINDOW* const parent = panel->window;
    auto* const button = new CGhostButton(parent, 0, L"BUTTON", L"ok", 0, {false, 10, 10, 80, 28});
    button->SetToolTip(L"What it does");
    new CGhostButton(parent, 0, L"BUTTON", L"latch", CGhostButton::kLatches,
                     {false, 100, 10, 80, 28});
    new CGhostCheckBox(parent, 0, L"BUTTON", L"check", 0, {false, 200, 10, 200, 24});
    new CGhostEdit(parent, 0, L"EDIT", L"text", 0, {false, 10, 50, 200, 28});
    new CGhostSlider(parent, 0, L"T", 0, 10, {false, 10, 90, 200, 28});
    new CGhostTextBox(parent, 0, L"T", L"label", {false, 10, 130, 200, 28});
    new CGhostMultiText(parent, 0, L"T", std::wstring(3000, L'w'), {false, 10, 170, 200, 100});
    auto* const list = new CGhostList(parent, 0, L"LIST", 0, {false, 300, 50, 200, 100});
    auto* const view = new CGhostListView(parent, 0, L"VIEW", 0, {false, 300, 170, 300, 200});
    auto* const drop = new CGhostDropList(parent, 0, L"DROP", L"", 100, {false, 10, 300, 200, 28});
    view->AddColumn(L"Name", 80);
    for (int i = 0; i < 40; ++i) {
        list->AddItem(L"row");
        drop->AddItem(L"row");
        view->SetCell(view->AddRow(), 0, L"row");
    }
    auto* const menu = new CGhostPopup(parent, 0);
    menu->AddItem(L"One");
    Focus(button->window);
    const auto rest = [&](const char* when) {
        for (int i = 0; i < 150; ++i) { // more than two seconds: the tip appears, once
            manager.Tick(16667);
            manager.CompositeAll();
        }
        const uint64_t before = uploads;
        const uint64_t made = creations;
        for (int i = 0; i < 300; ++i) {
            manager.Tick(16667);
            EXPECT_TRUE(manager.DirtyRect().Empty()) << when;
            manager.CompositeAll();
        }
        EXPECT_EQ(uploads, before) << when;
        EXPECT_EQ(creations, made) << when;
    };
    rest("untouched");
    const GUI_RECT at = OnScreen(button->window);
    MoveTo(at.x + 5, at.y + 5);
    rest("the mouse over a button with a tip");
    drop->Open();
    rest("a list is open");
    drop->CloseList();
    menu->Show();
    rest("a menu is open");
    CGhostMessageBox::Show(L"Title", L"Text");
    rest("a box is open");
    const uint64_t before = uploads;
    button->SetCaption(L"other");
    manager.Tick(16667);
    EXPECT_EQ(uploads, before + 1) << "one change, one upload";
    manager.SetHost({});
}
