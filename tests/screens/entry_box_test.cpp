// Which game of an archive: the box, its keys and its buttons.
#include "gui/list.h"
#include "screens/entry_box.h"
#include "screens/screen_picture.h"
#include "screens/screens_rig.h"

namespace {

class EntryBoxTest : public ScreensTest {
protected:
    EntryBox* Show(size_t count = 3) {
        std::vector<std::wstring> names;
        for (size_t i = 0; i < count; ++i) {
            names.push_back(L"folder/Game " + std::to_wstring(i + 1) + L".sms");
        }
        EntryBox* const box = EntryBox::Show(names);
        box->OnChosen.connect([this](int row) { chosen.push_back(row); });
        return box;
    }

    std::vector<int> chosen;
};

} // namespace

TEST_F(EntryBoxTest, ReturnTakesTheRowAndTheBoxGoes) {
    EntryBox* const box = Show();
    EXPECT_EQ(EntryBox::Open(), box);
    EXPECT_EQ(box->List()->Count(), 3);
    EXPECT_EQ(box->List()->Selected(), 0);
    Tick();
    KeepPicture("entry-box");
    PressKey(GHOSTGUIKey::kDown);
    PressKey(GHOSTGUIKey::kReturn);
    Tick();
    EXPECT_EQ(chosen, std::vector<int>{1});
    EXPECT_EQ(EntryBox::Open(), nullptr);
    EXPECT_EQ(CGhostManager::Get().ModalWindow(), nullptr);
}

TEST_F(EntryBoxTest, EscapeTakesNone) {
    Show();
    PressKey(GHOSTGUIKey::kEscape);
    Tick();
    EXPECT_EQ(chosen, std::vector<int>{-1});
    EXPECT_EQ(EntryBox::Open(), nullptr);
}

TEST_F(EntryBoxTest, ButtonsDoTheSame) {
    Click(Show()->PlayButton());
    Tick();
    Click(Show()->CancelButton());
    Tick();
    EXPECT_EQ(chosen, (std::vector<int>{0, -1}));
}

// More than fit scroll, and the buttons stay on the screen.
TEST_F(EntryBoxTest, ManyGamesScroll) {
    EntryBox* const box = Show(300);
    Tick();
    KeepPicture("entry-box-many");
    GUI_RECT play;
    ASSERT_TRUE(CGhostManager::Get().GetScreenRect(box->PlayButton()->window, &play));
    const GUI_RECT screen = CGhostManager::Get().ScreenRect();
    EXPECT_LE(play.y + play.height, screen.height);
    box->List()->SetSelected(299, false);
    Click(box->PlayButton());
    Tick();
    EXPECT_EQ(chosen, std::vector<int>{299});
}

TEST_F(EntryBoxTest, OneIsOpenAtATime) {
    EntryBox* const first = Show();
    EXPECT_EQ(EntryBox::Show({L"other"}), first);
    EXPECT_EQ(first->List()->Count(), 3);
}

TEST_F(EntryBoxTest, ControllerReachesEveryControl) {
    Show();
    ExpectEveryControlIsReached("the box");
}
