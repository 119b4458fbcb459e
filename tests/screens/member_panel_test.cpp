// The main menu's place for a member: without a service, with one that fails, and with the one of tools/service.
#include "gui/check_box.h"
#include "gui/edit.h"
#include "gui/multi_text.h"
#include "gui/window_ex.h"
#include "screens/battle_ground.h"
#include "screens/first_steps.h"
#include "screens/member_panel.h"
#include "screens/screen_picture.h"
#include "screens/screens_rig.h"
#include "settings/settings.h"
#include "web/http_client.h"
#include "web/served_folder.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"

#include <memory>

namespace fs = std::filesystem;

namespace {

class Member : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        RegisterDefaultSettings(Settings());
    }
    void TearDown() override {
        menu.reset();
        Tick();
        RegisterDefaultSettings(Settings());
        ScreensTest::TearDown();
    }

    MemberPanel& Open(const std::wstring& service) {
        Settings().SetString(L"web_service", service);
        menu.reset();
        Tick();
        menu = std::make_unique<CGUIBattleGround>(host);
        Round();
        return menu->Member();
    }
    MemberPanel& OpenServed() {
        host.fetch = [](const std::wstring& url, std::wstring& error,
                        const std::atomic<uint32_t>* abort, std::unique_ptr<uint8_t[]>& data,
                        uint32_t& size, const std::atomic<bool>& quit) {
            FETCH_SURROUNDINGS surroundings;
            surroundings.quit = &quit;
            return Fetch(url, error, abort, data, size, surroundings);
        };
        return Open(served.Addresses().service);
    }
    void Round() {
        host.downloads.PumpRequests();
        menu->Update();
        Tick();
    }
    void LogIn(MemberPanel& panel, const std::wstring& name, const std::wstring& password) {
        panel.User()->SetText(name);
        panel.Password()->SetText(password);
        Click(panel.LoginButton());
        Finish(panel);
    }
    void Finish(const MemberPanel& panel) {
        EXPECT_TRUE(WaitUntil("the login", [&] {
            Round();
            return panel.Member().IsLoggedIn() ||
                   panel.Member().CurrentState() == MemberLogin::State::kOut;
        }));
    }
    [[nodiscard]] fs::path KeyFile() const { return home.Path() / "member.key"; }

    TemporaryHome home;
    ServedFolder served;
    std::unique_ptr<CGUIBattleGround> menu;
};

TEST_F(Member, WithoutAServiceTheMenuSaysHowToAddGames) {
    const MemberPanel& panel = Open(L"");
    EXPECT_EQ(panel.Header()->Text(), L"Your games");
    EXPECT_TRUE(panel.Help()->IsVisible());
    EXPECT_FALSE(panel.LoginBox()->IsVisible());
    EXPECT_FALSE(panel.MemberBox()->IsVisible());
    KeepPicture("menu");
}

TEST_F(Member, HasTheFieldsInTheirPlaces) {
    const MemberPanel& panel = Open(L"http://host/");
    const auto place = [](const GHOSTMANAGER_WINDOW* window) {
        return GUI_RECT{window->x, window->y, window->width, window->height};
    };
    EXPECT_EQ(panel.Header()->Text(), L"Member Login");
    EXPECT_EQ(place(panel.Header()->window), (GUI_RECT{20, 70, 350, 25}));
    EXPECT_EQ(place(panel.LoginBox()->window), (GUI_RECT{20, 95, 350, 180}));
    EXPECT_EQ(place(panel.MemberBox()->window), (GUI_RECT{20, 95, 350, 200}));
    EXPECT_TRUE(panel.LoginBox()->IsVisible());
    EXPECT_FALSE(panel.Help()->IsVisible());
    EXPECT_FALSE(panel.MemberBox()->IsVisible());
}

TEST_F(Member, TheServiceIsEnteredInTheMenu) {
    host.answers[L"http://host:8080/?m=2"] = "<NEWS>Good evening</NEWS>";
    MemberPanel& panel = Open(L"");
    panel.Address()->SetText(L" host:8080 ");
    Click(panel.ConnectButton());
    EXPECT_EQ(Settings().GetString(L"web_service"), L"http://host:8080");
    EXPECT_EQ(Settings().GetString(L"web_images"), L"http://host:8080");
    EXPECT_EQ(panel.Address()->Text(), L"http://host:8080");
    EXPECT_EQ(host.saves, 1);
    EXPECT_TRUE(panel.LoginBox()->IsVisible());
    EXPECT_FALSE(panel.Help()->IsVisible());
    EXPECT_TRUE(host.downloads.WaitUntilIdle(kLongestWait));
    Round();
    EXPECT_EQ(menu->News()->Text(), L"Good evening");
    EXPECT_EQ(menu->NewsHeader()->Text(), L"News");
    EXPECT_TRUE(menu->News()->IsVisible());
    EXPECT_EQ(menu->Steps(), nullptr) << "the first steps lie where the news are";
    KeepPicture("member-service");

    panel.Address()->SetText(L"https://host");
    Click(panel.ConnectButton());
    EXPECT_EQ(panel.AddressNote()->Text(),
              L"The address of the web service must begin with http://");
    EXPECT_EQ(Settings().GetString(L"web_service"), L"http://host:8080") << "as before";
    KeepPicture("member-service-wrong");

    panel.Address()->SetText(L"");
    Click(panel.ConnectButton());
    EXPECT_EQ(Settings().GetString(L"web_service"), L"");
    EXPECT_EQ(panel.AddressNote()->Text(), L"Do your friends run one? Enter its address here.");
    EXPECT_TRUE(panel.Help()->IsVisible());
    EXPECT_EQ(menu->News()->Text(), kNoServiceText);
    EXPECT_EQ(menu->NewsHeader()->Text(), L"First steps");
    EXPECT_FALSE(menu->News()->IsVisible());
    ASSERT_NE(menu->Steps(), nullptr);
    EXPECT_TRUE(menu->Steps()->IsVisible());
    EXPECT_EQ(menu->Steps()->Place(), (GUI_RECT{390, 95, 870, 545}));
}

TEST_F(Member, NewsOfAServiceThatWasLeftDoNotCome) {
    std::atomic<bool> answer{false};
    host.fetch = [&](const std::wstring&, std::wstring&, const std::atomic<uint32_t>*,
                     std::unique_ptr<uint8_t[]>& data, uint32_t& size,
                     const std::atomic<bool>& quit) {
        while (!answer && !quit) {
            std::this_thread::yield();
        }
        constexpr std::string_view kNews = "<NEWS>First</NEWS>";
        size = static_cast<uint32_t>(kNews.size());
        data = std::make_unique<uint8_t[]>(size);
        std::copy(kNews.begin(), kNews.end(), data.get());
        return true;
    };
    MemberPanel& panel = Open(L"http://first/");
    panel.Address()->SetText(L"");
    Click(panel.ConnectButton());
    answer = true;
    EXPECT_TRUE(host.downloads.WaitUntilIdle(kLongestWait));
    Round();
    EXPECT_EQ(menu->News()->Text(), kNoServiceText);
}

TEST_F(Member, NewsSayWhenTheAddressIsOfAnotherForm) {
    host.fetch = [](const std::wstring&, std::wstring& error, const std::atomic<uint32_t>*,
                    std::unique_ptr<uint8_t[]>&, uint32_t&, const std::atomic<bool>&) {
        error.clear(); // as Fetch does
        return false;
    };
    Open(L"https://host/");
    EXPECT_TRUE(host.downloads.WaitUntilIdle(kLongestWait));
    Round();
    EXPECT_EQ(menu->News()->Text(), L"The address of the web service must begin with http://");
}

TEST_F(Member, TheAddressIsWithinTheMenuAndCoversNothing) {
    const MemberPanel& panel = Open(L"http://host/");
    const GHOSTMANAGER_WINDOW* const place = panel.Address()->window->parent;
    const GUI_RECT box{place->x, place->y, place->width, place->height};
    const GUI_RECT menuArea{0, 0, menu->MainWindow()->window->clientRect.width,
                            menu->MainWindow()->window->clientRect.height};
    EXPECT_EQ(Intersection(box, menuArea), box);
    EXPECT_GE(box.y, 95 + 200) << "below the member's box";
    EXPECT_LE(box.x + box.width, 390) << "beside the news";
}

TEST_F(Member, LeavesWithTheMenu) {
    const MemberPanel& panel = Open(L"http://host/");
    menu->OnMenu(kPanelCredits);
    EXPECT_FALSE(panel.Header()->IsVisible());
    EXPECT_FALSE(panel.LoginBox()->IsVisible());
    menu->Back();
    EXPECT_TRUE(panel.LoginBox()->IsVisible());
}

TEST_F(Member, SaysWhyALoginFailed) {
    MemberPanel& panel = Open(L"http://host/"); // where nobody answers
    LogIn(panel, L"anna", L"");
    EXPECT_EQ(panel.State()->Text(), L"Please enter a name and a password");
    LogIn(panel, L"anna", L"correct horse");
    EXPECT_EQ(panel.State()->Text(), L"Invalid response code");
    EXPECT_EQ(panel.Password()->Text(), L"");
    EXPECT_EQ(panel.LoginButton()->Caption(), L"Login");
}

TEST_F(Member, ALoginCanBeCancelled) {
    std::atomic<bool> answered{false};
    host.fetch = [&](const std::wstring&, std::wstring&, const std::atomic<uint32_t>* abort,
                     std::unique_ptr<uint8_t[]>&, uint32_t&, const std::atomic<bool>& quit) {
        while (abort != nullptr && *abort == 0 && !quit) {
            std::this_thread::yield();
        }
        answered = true;
        return false;
    };
    MemberPanel& panel = Open(L"");
    Settings().SetString(L"web_service", L"http://host/");
    panel.SetVisible(true);
    panel.User()->SetText(L"anna");
    panel.Password()->SetText(L"correct horse");
    Click(panel.LoginButton());
    EXPECT_EQ(panel.LoginButton()->Caption(), L"Cancel");
    EXPECT_EQ(panel.State()->Text(), L"Logging in...");
    Click(panel.LoginButton());
    EXPECT_EQ(panel.LoginButton()->Caption(), L"Login");
    EXPECT_EQ(panel.State()->Text(), L"");
    EXPECT_TRUE(host.downloads.WaitUntilIdle(kLongestWait)) << "the transfer ends too";
    EXPECT_TRUE(answered);
}

TEST_F(Member, LogsInAtTheServiceAndOutAgain) {
    served.AddMember("anna", "correct horse", "A friend of the house");
    served.Start();
    MemberPanel& panel = OpenServed();
    LogIn(panel, L"anna", L"another horse");
    EXPECT_EQ(panel.State()->Text(), L"The name or the password is wrong");
    KeepPicture("member-wrong");
    LogIn(panel, L"anna", L"correct horse");
    EXPECT_TRUE(panel.MemberBox()->IsVisible());
    EXPECT_FALSE(panel.LoginBox()->IsVisible());
    EXPECT_EQ(panel.Account()->Text(), L"Logged in as anna.\nA friend of the house");
    EXPECT_FALSE(fs::exists(KeyFile())) << "nobody asked for it";
    KeepPicture("member");
    Click(panel.LogoutButton());
    Round();
    EXPECT_TRUE(panel.LoginBox()->IsVisible());
    EXPECT_FALSE(panel.Member().IsLoggedIn());
}

TEST_F(Member, ALoginThatIsNotToBeKeptForgetsTheKeptKey) {
    served.AddMember("anna", "correct horse");
    served.Start();
    MemberPanel& panel = OpenServed();
    panel.Remember()->SetChecked(true);
    LogIn(panel, L"anna", L"correct horse");
    ASSERT_TRUE(fs::exists(KeyFile()));
    panel.Member().Logout(); // as at the end of the program
    Round();
    panel.Remember()->SetChecked(false);
    LogIn(panel, L"anna", L"correct horse");
    ASSERT_TRUE(panel.Member().IsLoggedIn());
    EXPECT_FALSE(fs::exists(KeyFile()));
}

TEST_F(Member, IsLoggedInAtTheNextStartUntilTheLogout) {
    served.AddMember("anna", "correct horse");
    served.Start();
    MemberPanel& first = OpenServed();
    first.Remember()->SetChecked(true);
    LogIn(first, L"anna", L"correct horse");
    ASSERT_TRUE(first.Member().IsLoggedIn());
    EXPECT_TRUE(Settings().GetBool(L"login_connectstartup"));
    EXPECT_TRUE(fs::exists(KeyFile()));

    MemberPanel& next = OpenServed();
    Finish(next);
    EXPECT_TRUE(next.Member().IsLoggedIn());
    Click(next.LogoutButton());
    EXPECT_FALSE(fs::exists(KeyFile()));
    EXPECT_FALSE(Settings().GetBool(L"login_connectstartup"));

    const MemberPanel& last = OpenServed();
    EXPECT_EQ(last.Member().CurrentState(), MemberLogin::State::kOut);
}

} // namespace
