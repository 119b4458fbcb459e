#include "base/files.h"
#include "base/text.h"
#include "formats/zip.h"
#include "gui/check_box.h"
#include "gui/drop_list.h"
#include "gui/edit.h"
#include "gui/list_view.h"
#include "gui/message_box.h"
#include "gui/multi_text.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "screens/rom_browser.h"
#include "screens/screen_picture.h"
#include "screens/screens_rig.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace {

std::vector<uint8_t> Image(uint8_t seed) {
    std::vector<uint8_t> image(8192);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i * seed >> 3);
    }
    return image;
}

constexpr int32_t kStarColumn = 7;
constexpr int32_t kStarMark = 4; // in the list's strip of images

class RomBrowser : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        RegisterDefaultSettings(Settings());
        area = new CGhostWindowEx(nullptr, 0, L"BATTLEMAIN", L"", CGhostWindowEx::kFrame,
                                  {false, 0, 60, 1280, 660});
    }
    void TearDown() override {
        browser.reset();
        Tick();
        ScreensTest::TearDown();
    }

    void Open() {
        browser = std::make_unique<CGUIRomBrowser>(area->window, host);
        browser->Layout(area->window->clientRect.width, area->window->clientRect.height);
        browser->SetActive(true);
        Scan();
    }
    // Waits for the scan and lets the browser see its end.
    void Scan() {
        browser->Library().WaitForScan();
        Round();
        Round();
    }
    void Round() {
        browser->Update();
        Tick();
    }
    [[nodiscard]] std::vector<std::wstring> Titles() const {
        std::vector<std::wstring> titles;
        for (int32_t row = 0; row < browser->List()->RowCount(); ++row) {
            titles.push_back(browser->List()->Cell(row, 0)->text);
        }
        std::sort(titles.begin(), titles.end());
        return titles;
    }
    [[nodiscard]] int32_t RowWith(const std::wstring& title) const {
        for (int32_t row = 0; row < browser->List()->RowCount(); ++row) {
            if (browser->List()->Cell(row, 0)->text == title) {
                return row;
            }
        }
        return -1;
    }
    static GAME_IDENTITY IdentityOf(const std::vector<uint8_t>& image) {
        return {kSystemMasterSystem, Sha256(image)};
    }
    // Of the message box that is open; empty without one.
    static std::wstring MessageText() {
        std::wstring text;
        Manager().ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
            for (const CGhostGUIHandler* one = window.handler; one != nullptr; one = one->next) {
                const auto* const box = dynamic_cast<const CGhostMessageBox*>(one);
                text = box != nullptr ? box->Message()->Text() : text;
            }
        });
        return text;
    }
    void Type(CGhostEdit* edit, const std::wstring& text) {
        edit->SetText(text);
        edit->OnChange(edit, text);
        Round();
    }

    TemporaryHome home;
    CGhostWindowEx* area = nullptr;
    std::unique_ptr<CGUIRomBrowser> browser;
};

using Titles = std::vector<std::wstring>;

TEST_F(RomBrowser, ListsTheGamesOfTheFolderAndTellsWhatWasConverted) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Moth Patrol.sms", Image(5));
    Open();
    EXPECT_EQ(this->Titles(), (::Titles{L"Moth Patrol", L"Paper Lamps"}));
    EXPECT_EQ(browser->Filters().Count()->Text(), L"Showing 2 games");
    EXPECT_TRUE(browser->Scan().IsShown());
    EXPECT_EQ(browser->Scan().Counter(1)->Text(), L"Auto Conversions: 2");
    KeepPicture("scan");
    Click(browser->Scan().Finish());
    EXPECT_FALSE(browser->Scan().IsShown());
    EXPECT_EQ(Manager().FocusWindow(), browser->List()->window);
    KeepPicture("browser");
}

TEST_F(RomBrowser, ShowsNoCountersWhenNothingWasConverted) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    browser.reset();
    Tick();
    Open();
    EXPECT_EQ(this->Titles(), ::Titles{L"Paper Lamps"});
    EXPECT_FALSE(browser->Scan().IsShown());
}

TEST_F(RomBrowser, AnEmptySystemSaysHowToAddGames) {
    home.Write("sms/readme.txt", std::string_view("no game"));
    Open();
    EXPECT_TRUE(browser->List()->RowCount() == 0);
    EXPECT_FALSE(browser->StartButton()->IsEnabled());
    KeepPicture("browser-empty");
}

TEST_F(RomBrowser, AMissingFolderIsTold) {
    Open();
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    EXPECT_NE(MessageText().find((home.Path() / "sms").wstring()), std::wstring::npos);
}

TEST_F(RomBrowser, FiltersByNameAsOneTypes) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Moth Patrol.sms", Image(5));
    Open();
    Type(browser->Filters().Name(), L"moth");
    EXPECT_EQ(this->Titles(), ::Titles{L"Moth Patrol"});
    EXPECT_EQ(browser->Filters().Count()->Text(), L"Showing 1 games");
    Type(browser->Filters().Name(), L"");
    EXPECT_EQ(this->Titles().size(), 2u);
}

TEST_F(RomBrowser, TheYearFilterTakesARange) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Type(browser->Filters().Year(), L"1980-1990");
    EXPECT_TRUE(this->Titles().empty()) << "an unknown year counts as 1900";
    Type(browser->Filters().Year(), L"1900");
    EXPECT_EQ(this->Titles().size(), 1u);
    EXPECT_TRUE(browser->Filters().MenuFilters());
}

TEST_F(RomBrowser, SystemsGoRoundAtBothEnds) {
    for (const char* const folder : {"sms", "gamegear", "nes", "arcade", "megadrive"}) {
        home.Write(std::string(folder) + "/none.txt", std::string_view("x"));
    }
    Open();
    EXPECT_EQ(browser->Switcher().Name()->Text(), L"Sega Master System (SMS)");
    Click(browser->Switcher().Left());
    Scan();
    EXPECT_EQ(browser->Switcher().Name()->Text(), L"Genesis / Megadrive (MD)");
    EXPECT_EQ(Settings().GetInt(L"gamebrowser_cursystem"), 4);
    EXPECT_NE(dynamic_cast<CGUIMDOptions*>(browser->Options()), nullptr);
    Click(browser->Switcher().Right());
    Scan();
    EXPECT_EQ(browser->Switcher().Name()->Text(), L"Sega Master System (SMS)");
    Click(browser->Switcher().Right());
    Scan();
    Click(browser->Switcher().Right());
    Scan();
    EXPECT_EQ(browser->Switcher().Name()->Text(), L"Nintendo (NES)");
    EXPECT_EQ(browser->Options(), nullptr);
}

TEST_F(RomBrowser, StartsTheChosenGameWithThePanelsBytes) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    auto* const panel = dynamic_cast<CGUISMSOptions*>(browser->Options());
    ASSERT_NE(panel, nullptr);
    panel->Console()->SetSelected(5);
    panel->FmChip()->SetChecked(true);
    Click(browser->Scan().Finish());
    Click(browser->StartButton());
    ASSERT_EQ(host.started.size(), 1u);
    EXPECT_EQ(host.started[0].title, "Paper Lamps");
    EXPECT_EQ(host.started[0].options[0], 32) << "the machine's own number of a Mark III";
    EXPECT_EQ(host.started[0].options[1], 1);
    const auto image = host.started[0].game.AssembleSelectedImage();
    ASSERT_TRUE(image.has_value());
    EXPECT_EQ(*image, Image(3));
}

TEST_F(RomBrowser, AGameThatIsGoneIsToldAndNotStarted) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Scan().Finish());
    std::filesystem::remove(home.Path() / "sms/Paper Lamps.game");
    Click(browser->StartButton());
    EXPECT_TRUE(host.started.empty());
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
}

TEST_F(RomBrowser, SavesIsTheSetting) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    EXPECT_EQ(browser->Saves()->Caption(), L"Auto Save & Load");
    browser->Saves()->SetSelected(2);
    EXPECT_EQ(Settings().GetInt(L"emu_autosaves"), 0);
    Settings().SetInt(L"emu_autosaves", 2);
    browser->SetActive(true);
    EXPECT_EQ(browser->Saves()->Caption(), L"Auto Save");
    EXPECT_EQ(Settings().GetInt(L"emu_autosaves"), 2) << "until the player chooses another";
    Settings().SetInt(L"emu_autosaves", 3);
}

TEST_F(RomBrowser, TabsShowOneOfThePanels) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Scan().Finish());
    for (const ContentTab tab :
         {ContentTab::kReviews, ContentTab::kHints, ContentTab::kTrivia, ContentTab::kMetaInfo}) {
        Click(browser->Content().TabButton(tab));
        EXPECT_TRUE(browser->Content().Text(tab)->IsVisible());
        EXPECT_FALSE(browser->Content().Box()->IsVisible());
    }
    KeepPicture("browser-meta");
    EXPECT_NE(browser->Content().Text(ContentTab::kMetaInfo)->Text().find(L"Paper Lamps.game"),
              std::wstring::npos);
    Click(browser->Content().TabButton(ContentTab::kCovers));
    EXPECT_TRUE(browser->Content().Box()->IsVisible());
}

TEST_F(RomBrowser, AStarMarksTheFavourites) {
    home.Write("sms/Moth Patrol.sms", Image(5));
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Scan().Finish());
    const int32_t lamps = RowWith(L"Paper Lamps");
    browser->List()->SetSelected(lamps);
    Round();
    EXPECT_EQ(browser->List()->Cell(lamps, kStarColumn)->image, -1);
    EXPECT_EQ(browser->StarButton()->Caption(), L"\x2606");
    Click(browser->StarButton());
    EXPECT_EQ(browser->List()->Cell(lamps, kStarColumn)->image, kStarMark);
    EXPECT_EQ(browser->List()->Cell(1 - lamps, kStarColumn)->image, -1);
    EXPECT_EQ(browser->StarButton()->Caption(), L"\x2605");
    EXPECT_TRUE(host.player.Find(IdentityOf(Image(3))).favourite);
    KeepPicture("browser-star");
    Click(browser->StarButton());
    EXPECT_EQ(browser->List()->Cell(lamps, kStarColumn)->image, -1);
    EXPECT_FALSE(host.player.Find(IdentityOf(Image(3))).favourite);
}

TEST_F(RomBrowser, TheStarIsThereWithTheNextStart) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    host.player.SetFavourite(IdentityOf(Image(3)), true);
    Open();
    EXPECT_EQ(browser->List()->Cell(0, kStarColumn)->image, kStarMark);
    EXPECT_EQ(browser->StarButton()->Caption(), L"\x2605");
}

TEST_F(RomBrowser, TheKeyFIsTheStarOncePerPress) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Fog Lamps.sms", Image(5));
    Open();
    Click(browser->Scan().Finish());
    const int32_t lamps = RowWith(L"Paper Lamps");
    browser->List()->SetSelected(lamps);
    browser->TakeFocus();
    constexpr auto kF = static_cast<GHOSTGUIKey>(9);
    KeyDown(kF);
    for (int repeat = 0; repeat < 3; ++repeat) {
        TypeCharacter(L'f');
    }
    EXPECT_TRUE(host.player.Find(IdentityOf(Image(3))).favourite);
    EXPECT_EQ(browser->List()->Selected(), lamps);
    KeyUp(kF);
    Tick();
    KeyDown(kF);
    TypeCharacter(L'f');
    EXPECT_FALSE(host.player.Find(IdentityOf(Image(3))).favourite);
    KeyUp(kF);
    Tick();
    TypeCharacter(L'F');
    EXPECT_EQ(browser->List()->Selected(), RowWith(L"Fog Lamps")) << "a capital begins a title";
}

TEST_F(RomBrowser, FWithinATitleIsALetter) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Offing.sms", Image(5));
    Open();
    Click(browser->Scan().Finish());
    browser->TakeFocus();
    for (const wchar_t letter : {L'o', L'f', L'f'}) {
        TypeCharacter(letter);
    }
    EXPECT_EQ(browser->List()->Selected(), RowWith(L"Offing"));
    EXPECT_FALSE(host.player.Find(IdentityOf(Image(5))).favourite);
}

TEST_F(RomBrowser, AClickInTheColumnOfStarsIsTheStar) {
    home.Write("sms/Moth Patrol.sms", Image(5));
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Scan().Finish());
    const int32_t lamps = RowWith(L"Paper Lamps");
    const auto clickOn = [&](int32_t column) {
        GUI_RECT list;
        ASSERT_TRUE(Manager().GetScreenRect(browser->List()->window, &list));
        const GUI_RECT cell = browser->List()->CellPlace(lamps, column);
        MoveTo(list.x + cell.x + cell.width / 2, list.y + cell.y + cell.height / 2);
        PressMouse();
        Tick();
    };
    clickOn(0);
    EXPECT_FALSE(host.player.Find(IdentityOf(Image(3))).favourite);
    clickOn(kStarColumn);
    EXPECT_TRUE(host.player.Find(IdentityOf(Image(3))).favourite);
}

TEST_F(RomBrowser, ShowsTheFavouritesAlone) {
    home.Write("sms/Moth Patrol.sms", Image(5));
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Tide Mill.sms", Image(7));
    host.player.SetFavourite(IdentityOf(Image(3)), true);
    host.player.SetFavourite(IdentityOf(Image(7)), true);
    Open();
    EXPECT_FALSE(browser->Filters().MenuFilters());
    browser->Filters().Show()->SetSelected(1);
    Round();
    EXPECT_EQ(this->Titles(), (::Titles{L"Paper Lamps", L"Tide Mill"}));
    EXPECT_EQ(browser->Filters().Count()->Text(), L"Showing 2 games");
    EXPECT_TRUE(browser->Filters().MenuFilters());
    Type(browser->Filters().Name(), L"lamps");
    EXPECT_EQ(this->Titles(), ::Titles{L"Paper Lamps"}) << "the other filters choose among them";
    Type(browser->Filters().Name(), L"");
    browser->ToggleFavourite();
    Round();
    EXPECT_EQ(this->Titles().size(), 2u) << "a slip can be put right";
    browser->SetActive(false);
    browser->SetActive(true);
    Round();
    EXPECT_EQ(this->Titles().size(), 1u);
    browser->Filters().Show()->SetSelected(0);
    Round();
    EXPECT_EQ(this->Titles().size(), 3u);
}

TEST_F(RomBrowser, RecentlyPlayedBeginsWithTheLastOne) {
    home.Write("sms/Moth Patrol.sms", Image(5));
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Tide Mill.sms", Image(7));
    host.player.NoteStart(IdentityOf(Image(5)));
    host.wallClock += 100;
    host.player.NoteStart(IdentityOf(Image(7)));
    Open();
    browser->Filters().Show()->SetSelected(2);
    Round();
    ASSERT_EQ(browser->List()->RowCount(), 2);
    EXPECT_EQ(browser->List()->Cell(0, 0)->text, L"Tide Mill");
    EXPECT_EQ(browser->List()->Cell(1, 0)->text, L"Moth Patrol");
    host.wallClock += 100;
    browser->SetActive(false);
    host.player.NoteStart(IdentityOf(Image(3)));
    browser->SetActive(true);
    Round();
    ASSERT_EQ(browser->List()->RowCount(), 3);
    EXPECT_EQ(browser->List()->Cell(0, 0)->text, L"Paper Lamps");
}

TEST_F(RomBrowser, MetaInfoSaysWhenAndForHowLongItWasPlayed) {
    ASSERT_EQ(setenv("TZ", "UTC", 1), 0);
    tzset();
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    const CGhostMultiText* const meta = browser->Content().Text(ContentTab::kMetaInfo);
    EXPECT_NE(meta->Text().find(L"Last played: never"), std::wstring::npos);
    browser->SetActive(false);
    host.player.NoteStart(IdentityOf(Image(3)));
    host.player.NotePlayed(IdentityOf(Image(3)), 3 * 3600 + 25 * 60 + 59);
    browser->SetActive(true);
    EXPECT_NE(meta->Text().find(
                  L"Last played: 2023-11-14 22:13\nTime played: 3 h 25 min\nStarted: once\n"),
              std::wstring::npos);
    EXPECT_NE(meta->Text().find(L"File: Paper Lamps.game"), std::wstring::npos);
}

TEST_F(RomBrowser, TheOrderOfAHeadingStaysWhileOneFilters) {
    home.Write("sms/apple Orchard.sms", Image(3));
    home.Write("sms/Tide Mill.sms", Image(5));
    home.Write("sms/Moth Patrol.sms", Image(7));
    Open();
    const auto shown = [this] {
        std::vector<std::wstring> titles;
        for (int32_t row = 0; row < browser->List()->RowCount(); ++row) {
            titles.push_back(browser->List()->Cell(row, 0)->text);
        }
        return titles;
    };
    browser->List()->SetSelected(RowWith(L"Moth Patrol"));
    browser->List()->SortBy(0, true);
    EXPECT_EQ(shown(), (::Titles{L"Tide Mill", L"Moth Patrol", L"apple Orchard"}))
        << "capitals count for nothing";
    EXPECT_EQ(browser->List()->Selected(), 1) << "the game stays chosen";
    Type(browser->Filters().Name(), L"l");
    EXPECT_EQ(shown(), (::Titles{L"Tide Mill", L"Moth Patrol", L"apple Orchard"}));
    host.player.SetFavourite(IdentityOf(Image(7)), true);
    browser->List()->SortBy(kStarColumn, false);
    EXPECT_EQ(shown().front(), L"Moth Patrol");
    // What was played last has an order of its own.
    host.player.NoteStart(IdentityOf(Image(3)));
    host.wallClock += 100;
    host.player.NoteStart(IdentityOf(Image(5)));
    browser->Filters().Show()->SetSelected(2);
    Round();
    EXPECT_EQ(shown(), (::Titles{L"Tide Mill", L"apple Orchard"}));
    EXPECT_EQ(browser->List()->SortColumn(), -1);
}

namespace {

// The archive of one of our own games: its box, three screenshots and texts.
std::vector<uint8_t> OwnMedia() {
    ZipWriter writer;
    std::string error;
    for (const OBJECT_ASSET& asset : BuiltInMedia()) {
        if (asset.name.starts_with("sms-luciole")) {
            EXPECT_TRUE(writer.Add(asset.name, asset.data, error)) << error;
        }
    }
    return writer.Finish(error);
}

} // namespace

TEST_F(RomBrowser, PicturesOfTheChosenGameComeWhenTheyAreRead) {
    home.Write("sms/Moth Patrol.sms", Image(5));
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/media/Paper Lamps.zip", OwnMedia());
    Open();
    const auto read = [this] {
        browser->Media().Wait();
        Round();
    };
    browser->List()->SetSelected(RowWith(L"Moth Patrol"));
    read();
    EXPECT_EQ(browser->Content().ShotCount(), 0u);
    EXPECT_EQ(host.coverCount, 0u);
    browser->List()->SetSelected(RowWith(L"Paper Lamps"));
    read();
    EXPECT_EQ(browser->Content().ShotCount(), 3u);
    EXPECT_EQ(host.coverCount, 1u);
    EXPECT_FALSE(browser->Content().Text(ContentTab::kTrivia)->Text().empty());
    // The player has gone on before the pictures were there.
    browser->List()->SetSelected(RowWith(L"Moth Patrol"));
    browser->List()->SetSelected(RowWith(L"Paper Lamps"));
    browser->List()->SetSelected(RowWith(L"Moth Patrol"));
    read();
    EXPECT_EQ(browser->Content().ShotCount(), 0u);
    EXPECT_TRUE(browser->Content().Text(ContentTab::kTrivia)->Text().empty());
}

// A pipe is read until somebody has opened and closed its other end.
TEST_F(RomBrowser, PicturesOfTheGameBeforeGoWhileASlowDiskReads) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Tide Mill.sms", Image(5));
    home.Write("sms/media/Paper Lamps.zip", OwnMedia());
    const std::string pipe = (home.Path() / "sms/media/Tide Mill.zip").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Open();
    Click(browser->Scan().Finish());
    browser->Media().Wait();
    Round();
    ASSERT_EQ(browser->Content().ShotCount(), 3u);
    browser->List()->SetSelected(RowWith(L"Tide Mill"));
    Round();
    EXPECT_EQ(browser->Content().ShotCount(), 3u) << "nothing flickers";
    host.now += 300;
    Round();
    EXPECT_EQ(browser->Content().ShotCount(), 0u);
    EXPECT_EQ(host.coverCount, 0u);
    EXPECT_EQ(browser->Content().Text(ContentTab::kTrivia)->Text(), L"");
    EXPECT_FALSE(browser->Content().NoCover()->IsVisible()) << "that is not known yet";
    std::ofstream(pipe).close();
    browser->Media().Wait();
    Round();
    EXPECT_TRUE(browser->Content().NoCover()->IsVisible());
}

TEST_F(RomBrowser, NoPicturesComeOfASystemThatWasLeft) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/media/Paper Lamps.zip", OwnMedia());
    home.Write("gamegear/none.txt", std::string_view("x"));
    Open();
    browser->SelectSystem(1, -1);
    browser->Media().Wait();
    Scan();
    EXPECT_EQ(browser->Content().ShotCount(), 0u);
    EXPECT_EQ(host.coverCount, 0u);
}

TEST_F(RomBrowser, TheFilterMenuOpensOverTheList) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Scan().Finish());
    Click(browser->Filters().MenuButton());
    EXPECT_TRUE(browser->Filters().Menu()->IsVisible());
    KeepPicture("browser-filters");
    Click(browser->Filters().MenuButton());
    EXPECT_FALSE(browser->Filters().Menu()->IsVisible());
}

TEST_F(RomBrowser, TheChosenTabStaysDownWhenTheMouseLeavesIt) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Content().TabButton(ContentTab::kHints));
    MoveTo(300, 400);
    Round();
    EXPECT_TRUE(browser->Content().TabButton(ContentTab::kHints)->IsDown());
    EXPECT_FALSE(browser->Content().TabButton(ContentTab::kCovers)->IsDown());
    Click(browser->Content().TabButton(ContentTab::kHints));
    Round();
    EXPECT_TRUE(browser->Content().TabButton(ContentTab::kHints)->IsDown()) << "once more";
}

TEST_F(RomBrowser, AGameWithoutPicturesSaysSo) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    EXPECT_TRUE(browser->Content().NoCover()->IsVisible());
}

TEST_F(RomBrowser, AShortListTellsHowToAddGames) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    EXPECT_TRUE(browser->Hint().IsVisible());
    EXPECT_NE(browser->Hint().Text().find(L"Drop game files"), std::wstring::npos);
    Type(browser->Filters().Name(), L"zzz");
    EXPECT_EQ(browser->Hint().Text(), L"Nothing fits the filters.");
}

// ---- What the web service says of a game.

// A PNG file of one pixel.
constexpr uint8_t kRedPixel[] = {
    0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48,
    0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x02, 0x00, 0x00,
    0x00, 0x90, 0x77, 0x53, 0xDE, 0x00, 0x00, 0x00, 0x0C, 0x49, 0x44, 0x41, 0x54, 0x78,
    0xDA, 0x63, 0xF8, 0xCF, 0xC0, 0x00, 0x00, 0x03, 0x01, 0x01, 0x00, 0xF7, 0x03, 0x41,
    0x43, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82,
};

// One game, and a service that answers to its name and its cover as the test says. An answer that is not there fails
// with the text that Fetch gives.
class ServedBrowser : public RomBrowser {
protected:
    static constexpr std::string_view kLocalTexts = "<CHEATS>a local hint</CHEATS><REVIEWS>a local "
                                                    "review</REVIEWS><TRIVIA>a local fact</TRIVIA>";

    void SetUp() override {
        RomBrowser::SetUp();
        Settings().SetString(L"web_service", L"http://host/");
        Settings().SetString(L"web_images", L"http://host");
        home.Write("sms/Paper Lamps.sms", Image(3));
        host.fetch = [this](const std::wstring& url, std::wstring& error,
                            const std::atomic<uint32_t>*, std::unique_ptr<uint8_t[]>& data,
                            uint32_t& size, const std::atomic<bool>&) {
            const bool cover = url.find(L"/covers/") != std::wstring::npos;
            const std::scoped_lock hold(lock);
            covers += cover ? 1 : 0;
            const auto& answer = cover ? archive : texts;
            error = answer || !url.starts_with(L"http://") ? L"" : L"Invalid response code";
            if (!answer || answer->empty() || !url.starts_with(L"http://")) {
                return answer.has_value();
            }
            size = static_cast<uint32_t>(answer->size());
            data = std::make_unique<uint8_t[]>(size);
            std::copy(answer->begin(), answer->end(), data.get());
            return true;
        };
    }
    void TearDown() override {
        RegisterDefaultSettings(Settings());
        RomBrowser::TearDown();
    }

    // An archive with a picture of one pixel, and texts if there are any.
    static std::string Archive(std::string_view entry = {}) {
        ZipWriter zip;
        std::string error;
        EXPECT_TRUE(zip.Add("box.png", kRedPixel, error)) << error;
        if (!entry.empty()) {
            EXPECT_TRUE(
                zip.Add("texts.txt", std::vector<uint8_t>(entry.begin(), entry.end()), error))
                << error;
        }
        const std::vector<uint8_t> bytes = zip.Finish(error);
        return {bytes.begin(), bytes.end()};
    }
    void Answer(std::optional<std::string> information) {
        const std::scoped_lock hold(lock);
        texts = std::move(information);
    }
    // The game is chosen again, and the answers come.
    void Choose() {
        browser->List()->SetSelected(-1, false);
        browser->List()->SetSelected(0);
        TakeAnswers();
    }
    void TakeAnswers() {
        EXPECT_TRUE(host.downloads.WaitUntilIdle(kLongestWait));
        host.downloads.PumpRequests();
        browser->Media().Wait();
        Round();
    }
    [[nodiscard]] std::wstring Text(ContentTab tab) { return browser->Content().Text(tab)->Text(); }
    [[nodiscard]] bool Offers() { return browser->Content().ContentButton()->IsVisible(); }
    [[nodiscard]] std::string Key() const {
        return Utf8FromWide(browser->List()->Cell(0, kKeyColumn)->text);
    }
    [[nodiscard]] std::string Media() const { return "sms/media/" + Key() + ".zip"; }

    static constexpr int32_t kKeyColumn = 6;
    std::mutex lock;
    std::optional<std::string> texts; // these under `lock`
    std::optional<std::string> archive;
    int covers = 0; // requests
};

TEST_F(ServedBrowser, ShowsTheServicesTexts) {
    Answer("<CHEATS>their hint</CHEATS><REVIEWS>their review</REVIEWS><TRIVIA>their fact</TRIVIA>");
    Open();
    TakeAnswers();
    EXPECT_EQ(Text(ContentTab::kHints), L"their hint");
    EXPECT_EQ(Text(ContentTab::kReviews), L"their review");
    EXPECT_EQ(Text(ContentTab::kTrivia), L"their fact");
    EXPECT_FALSE(Offers()) << "the service has no cover";
    Answer(std::nullopt);
    Choose();
    EXPECT_EQ(Text(ContentTab::kReviews), L"Game isn't in database");
}

TEST_F(ServedBrowser, AnswersThatSayNothingLeaveTheLocalTexts) {
    Open();
    home.Write(Media(), Archive(kLocalTexts));
    for (const char* const answer : {"", "<html>Please log in</html>"}) {
        Answer(answer);
        Choose();
        EXPECT_EQ(Text(ContentTab::kHints), L"a local hint") << answer;
        EXPECT_EQ(Text(ContentTab::kReviews), L"a local review") << answer;
        EXPECT_EQ(Text(ContentTab::kTrivia), L"a local fact") << answer;
    }
    Answer("<TRIVIA>their fact</TRIVIA>");
    Choose();
    EXPECT_EQ(Text(ContentTab::kHints), L"a local hint");
    EXPECT_EQ(Text(ContentTab::kTrivia), L"their fact");
}

TEST_F(ServedBrowser, AnAddressOfAnotherFormIsAFailure) {
    Settings().SetString(L"web_service", L"https://host/");
    Open();
    TakeAnswers();
    EXPECT_EQ(Text(ContentTab::kReviews),
              L"The address of the web service must begin with http://");
    home.Write(Media(), Archive(kLocalTexts));
    Choose();
    EXPECT_EQ(Text(ContentTab::kReviews), L"a local review");
}

TEST_F(ServedBrowser, FetchesACoverAndItsNextRevision) {
    archive = Archive();
    Answer("<TRIVIA>their fact</TRIVIA><COVER>1</COVER>");
    Open();
    Click(browser->Scan().Finish());
    TakeAnswers();
    ASSERT_TRUE(Offers());
    ASSERT_EQ(Text(ContentTab::kTrivia), L"their fact");
    Click(browser->Content().ContentButton());
    EXPECT_FALSE(Offers());
    TakeAnswers();
    EXPECT_EQ(Text(ContentTab::kTrivia), L"their fact") << "the pictures bring no texts";
    const auto bytes = home.Read(Media());
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), *archive);
    EXPECT_EQ(host.coverCount, 1u);
    Choose();
    EXPECT_FALSE(Offers()) << "that one is here";
    Answer("<COVER>2</COVER>");
    Choose();
    EXPECT_TRUE(Offers());
    home.Write(Media(), Archive(kLocalTexts));
    Choose();
    EXPECT_FALSE(Offers()) << "now it is the player's own";
}

TEST_F(ServedBrowser, OffersNothingThatItCannotFetch) {
    Settings().SetString(L"web_images", L"");
    Answer("<COVER>1</COVER>");
    Open();
    TakeAnswers();
    EXPECT_FALSE(Offers());
}

TEST_F(ServedBrowser, ABadArchiveIsToldAndNotStored) {
    archive = "<html>";
    Answer("<COVER>1</COVER>");
    Open();
    Click(browser->Scan().Finish());
    TakeAnswers();
    Click(browser->Content().ContentButton());
    TakeAnswers();
    EXPECT_EQ(CGhostMessageBox::Count(), 1u);
    EXPECT_TRUE(Offers()) << "it may be tried again";
    EXPECT_FALSE(std::filesystem::exists(home.Path() / Media()));
}

TEST_F(ServedBrowser, TheCoverOfOneSystemIsNotThatOfAnother) {
    home.Write("gamegear/Paper Lamps.gg", Image(7));
    archive = Archive();
    Answer("<COVER>1</COVER>");
    Open();
    Click(browser->Scan().Finish());
    TakeAnswers();
    const std::string key = Key();
    ASSERT_TRUE(Offers());
    Click(browser->Content().ContentButton());
    browser->SelectSystem(0, 1);
    Scan();
    ASSERT_EQ(browser->List()->RowCount(), 1);
    ASSERT_EQ(Key(), key) << "both games have one name";
    TakeAnswers();
    EXPECT_EQ(covers, 1);
    EXPECT_FALSE(std::filesystem::exists(home.Path() / "gamegear/media"));
}

// Nothing lies over anything else, and all lies within the main window.
TEST_F(RomBrowser, IsLaidOutWithoutOverlapOnEveryShapeOfScreen) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    struct SHAPE {
        int32_t width;
        int32_t height;
    };
    for (const SHAPE shape : {
             SHAPE{1280, 720},
             SHAPE{1280, 960},
             SHAPE{1280, 800},
             SHAPE{1720, 720}
    }) {
        Manager().SetScreen(shape.width, shape.height);
        area->SetPos(0, 60, shape.width, shape.height - 60);
        const GUI_RECT inner{0, 0, area->window->clientRect.width, area->window->clientRect.height};
        browser->Layout(inner.width, inner.height);
        std::vector<const GHOSTMANAGER_WINDOW*> shown;
        for (const GHOSTMANAGER_WINDOW* child = area->window->firstChild; child != nullptr;
             child = child->nextSibling) {
            // The hint lies over the free part of the list.
            if (child->visible && child->width > 0 && child != browser->Hint().window) {
                shown.push_back(child);
            }
        }
        for (size_t i = 0; i < shown.size(); ++i) {
            const GUI_RECT a{shown[i]->x, shown[i]->y, shown[i]->width, shown[i]->height};
            EXPECT_EQ(Intersection(a, inner), a)
                << shape.width << " by " << shape.height << ", window " << i;
            for (size_t j = 0; j < i; ++j) {
                const GUI_RECT b{shown[j]->x, shown[j]->y, shown[j]->width, shown[j]->height};
                EXPECT_TRUE(Intersection(a, b).Empty())
                    << shape.width << " by " << shape.height << ", windows " << i << " and " << j;
            }
        }
    }
}

TEST_F(RomBrowser, EveryControlIsReachedByDirectionsAlone) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    home.Write("sms/Moth Patrol.sms", Image(5));
    std::vector<uint8_t> picture;
    std::string error;
    ASSERT_TRUE(
        ReadFile(std::filesystem::path(OMBRELUNE_SOURCE_FOLDER) / "docs/pictures/browser.jpg",
                 picture, error, 1 << 24))
        << error;
    home.Write("sms/media/default.jpg", picture); // the box of games without one
    for (const char* const folder : {"gamegear", "nes", "arcade", "megadrive"}) {
        home.Write(std::string(folder) + "/none.txt", std::string_view("x"));
    }
    Open();
    Click(browser->Scan().Finish());
    Round();
    for (const ContentTab tab : {ContentTab::kCovers, ContentTab::kReviews, ContentTab::kHints,
                                 ContentTab::kTrivia, ContentTab::kMetaInfo}) {
        browser->Content().ShowTab(tab);
        browser->TakeFocus();
        Round();
        ExpectEveryControlIsReached("tab " + std::to_string(static_cast<int>(tab)));
    }
    browser->Content().ShowTab(ContentTab::kCovers);
    EXPECT_TRUE(browser->Content().CloserButton()->IsVisible());
    browser->Content().OfferContent(true);
    browser->Content().TurnButton()->SetFocus();
    Round();
    Manager().Navigate(GUI_DIRECTION::kRight);
    EXPECT_EQ(Manager().FocusWindow(), browser->Content().ContentButton()->window);
    Click(browser->Filters().MenuButton());
    Round();
    ExpectEveryControlIsReached("filters");
    EXPECT_TRUE(browser->TakeBack());
    for (const int32_t system : {1, 2, 3, 4}) {
        browser->SelectSystem(0, system);
        Scan();
        browser->TakeFocus();
        Round();
        ExpectEveryControlIsReached("system " + std::to_string(system));
    }
}

TEST_F(RomBrowser, CoversAreLookedAtAndTurnedWithoutAPointer) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    Click(browser->Scan().Finish());
    EXPECT_FALSE(browser->Content().CloserButton()->IsVisible()) << "it has none";
    browser->Content().OfferCovers(true);
    browser->Content().CloserButton()->SetFocus();
    Round();
    PressKey(GHOSTGUIKey::kReturn);
    EXPECT_EQ(host.closerLooks, 1);
    Manager().Navigate(GUI_DIRECTION::kRight);
    Round();
    Manager().ActivateFocus();
    Round();
    EXPECT_EQ(host.turnedCovers, 1);
    browser->Content().ShowTab(ContentTab::kHints);
    EXPECT_FALSE(browser->Content().CloserButton()->IsVisible());
}

TEST_F(RomBrowser, SaysNothingOfItsGamesWhileItLooksForThem) {
    home.Write("sms/readme.txt", std::string_view("no game"));
    home.Write("nes/readme.txt", std::string_view("no game"));
    Open();
    const auto says = [] {
        bool seen = false;
        Manager().ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
            const auto* const text = dynamic_cast<const CGhostTextBox*>(window.handler);
            seen = seen || (text != nullptr && Manager().IsWindowVisible(&window) &&
                            text->Text().find(L"No games yet") != std::wstring::npos);
        });
        return seen;
    };
    EXPECT_TRUE(says());
    browser->SelectSystem(0, 2);
    browser->SetActive(false);
    browser->SetActive(true);
    EXPECT_FALSE(says()) << "its end has not been seen yet";
    Scan();
    EXPECT_TRUE(says());
}

// What the service answers about the games of this folder.
class BrowserContent : public RomBrowser {
protected:
    void SetUp() override {
        RomBrowser::SetUp();
        Settings().SetString(L"web_service", L"http://host/");
        Settings().SetString(L"web_images", L"http://images/");
        home.Write("sms/Moth Patrol.sms", Image(5));
        home.Write("sms/Paper Lamps.sms", Image(3));
        host.fetch = [this](const std::wstring& url, std::wstring& error,
                            const std::atomic<uint32_t>* abort, std::unique_ptr<uint8_t[]>& data,
                            uint32_t& size, const std::atomic<bool>& quit) {
            const bool image = url.find(L"images") != std::wstring::npos;
            if (image && holdsImage) {
                while (abort != nullptr && *abort == 0 && !quit) {
                    std::this_thread::yield();
                }
                error = L"Aborted";
                return false;
            }
            const std::string answer =
                image ? imageAnswer
                      : "<CHEATS>Press both.</CHEATS><REVIEWS>A review that is long enough to be "
                        "shown.</REVIEWS><TRIVIA>Old.</TRIVIA><COVER>2</COVER>";
            size = static_cast<uint32_t>(answer.size());
            data = std::make_unique<uint8_t[]>(size);
            std::copy(answer.begin(), answer.end(), data.get());
            return true;
        };
    }
    void TearDown() override {
        RegisterDefaultSettings(Settings());
        RomBrowser::TearDown();
    }
    void OpenAndChoose(const std::wstring& title) {
        Open();
        Click(browser->Scan().Finish());
        browser->List()->SetSelected(RowWith(title));
    }
    void Answer() {
        ASSERT_TRUE(host.downloads.WaitUntilIdle(std::chrono::seconds(60)));
        host.downloads.PumpRequests();
        Round();
    }
    [[nodiscard]] std::wstring Hints() {
        return browser->Content().Text(ContentTab::kHints)->Text();
    }

    std::string imageAnswer = "no archive";
    std::atomic<bool> holdsImage{false};
};

TEST_F(BrowserContent, AnAnswerThatComesTooLateIsLeftAside) {
    OpenAndChoose(L"Paper Lamps");
    ASSERT_TRUE(host.downloads.WaitUntilIdle(std::chrono::seconds(60)));
    Type(browser->Filters().Name(), L"nothing has this name");
    Answer();
    EXPECT_EQ(Hints(), L"") << "no game is chosen";
    EXPECT_FALSE(browser->Content().ContentButton()->IsVisible());
    EXPECT_EQ(CGhostMessageBox::Count(), 0u);
}

TEST_F(BrowserContent, WithNoGameChosenNothingIsLeftOfTheLastOne) {
    OpenAndChoose(L"Paper Lamps");
    Answer();
    ASSERT_TRUE(browser->Content().ContentButton()->IsVisible());
    Type(browser->Filters().Name(), L"nothing has this name");
    EXPECT_EQ(Hints(), L"");
    EXPECT_FALSE(browser->Content().ContentButton()->IsVisible());
}

TEST_F(BrowserContent, ABrowserThatEndsAbandonsWhatItAskedFor) {
    holdsImage = true;
    OpenAndChoose(L"Paper Lamps");
    Answer();
    Click(browser->Content().ContentButton());
    browser.reset();
    Tick();
    EXPECT_TRUE(host.downloads.WaitUntilIdle(std::chrono::seconds(60))) << "the transfer ends";
    host.downloads.PumpRequests();
    EXPECT_EQ(CGhostMessageBox::Count(), 0u) << "nobody is told any more";
}

// A game without a record of its machine, and a file that cannot be read: nothing is known of them.
TEST_F(RomBrowser, OptionsOfAGameWithoutARecordAreAllFree) {
    home.Write("sms/Paper Lamps.sms", Image(3));
    Open();
    auto* const panel = dynamic_cast<CGUISMSOptions*>(browser->Options());
    ASSERT_NE(panel, nullptr);
    const auto forbidAll = [&] {
        panel->Glasses()->SetEnabled(false);
        panel->FmChip()->SetEnabled(false);
        for (int32_t item = 1; item < panel->Input(0)->Count(); ++item) {
            panel->Input(0)->Item(item)->flags = GHOSTLIST_ITEM::kDisabled;
        }
    };
    const auto expectFree = [&] {
        EXPECT_TRUE(panel->Glasses()->window->tabStop);
        EXPECT_TRUE(panel->FmChip()->window->tabStop);
        for (int32_t item = 0; item < panel->Input(0)->Count(); ++item) {
            EXPECT_EQ(panel->Input(0)->Item(item)->flags, 0u) << item;
        }
        EXPECT_EQ(panel->Input(0)->Selected(), 0);
    };
    forbidAll();
    panel->ConfigureForGame(CGameFile(), 0);
    expectFree();
    forbidAll();
    home.Write("sms/Paper Lamps.game", std::string_view("broken"));
    browser->List()->SetSelected(-1);
    browser->List()->SetSelected(0);
    expectFree();
}

} // namespace
