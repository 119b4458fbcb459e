// What is dropped on the window: the worker, its window, and the browser afterwards.
#include "facts/machine_facts.h"
#include "gui/list.h"
#include "gui/list_view.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "screens/add_window.h"
#include "screens/rom_browser.h"
#include "screens/screen_picture.h"
#include "screens/screens_rig.h"
#include "settings/settings.h"

#include "support/counted_helpers.h"
#include "support/temporary_folder.h"
#include "support/wait_until.h"

#include <memory>

namespace fs = std::filesystem;

namespace {

std::vector<uint8_t> Image(uint8_t seed) {
    std::vector<uint8_t> image(8192);
    for (size_t i = 0; i < image.size(); ++i) {
        image[i] = static_cast<uint8_t>(i * seed >> 3);
    }
    return image;
}

class Adding : public ScreensTest {
protected:
    void SetUp() override {
        ScreensTest::SetUp();
        RegisterDefaultSettings(Settings());
        Open();
    }
    void TearDown() override {
        adding.reset();
        Tick();
        ScreensTest::TearDown();
    }

    void Open() {
        adding = std::make_unique<AddWindow>(
            ADD_WINDOW_CALLS{[this](const fs::path& file) { singles.push_back(file); },
                             [this](const std::vector<uint16_t>& systems) {
                                 ++closes;
                                 added = systems;
                             }});
    }
    void Finish() {
        EXPECT_TRUE(WaitUntil("the games", [&] {
            adding->Update();
            return !adding->Works();
        }));
        Tick();
    }
    void Add(const std::vector<fs::path>& paths) {
        adding->Add(paths);
        Finish();
    }
    [[nodiscard]] std::wstring LogText() const {
        std::wstring text;
        for (int32_t i = 0; i < adding->Log()->Count(); ++i) {
            text += adding->Log()->Item(i)->text + L"\n";
        }
        return text;
    }

    TemporaryHome home;
    TemporaryFolder from;
    std::unique_ptr<AddWindow> adding;
    std::vector<fs::path> singles;
    std::vector<uint16_t> added;
    int closes = 0;
};

TEST_F(Adding, PlaysASingleGameWithoutAWord) {
    const fs::path file = from.Write("Paper Lamps.sms", Image(3));
    adding->Add({file});
    EXPECT_TRUE(adding->IsShown());
    EXPECT_EQ(adding->Button()->Caption(), L"Cancel");
    EXPECT_EQ(Manager().FocusWindow(), adding->Button()->window);
    Finish();
    EXPECT_FALSE(adding->IsShown());
    EXPECT_EQ(singles, std::vector{file});
    EXPECT_EQ(added, std::vector<uint16_t>{kSystemMasterSystem});
    EXPECT_TRUE(fs::exists(home.Path() / "sms" / "Paper Lamps.game"));
    EXPECT_TRUE(fs::exists(file)) << "the original stays";
}

TEST_F(Adding, ItsThreadIsAHelper) {
    const fs::path file = from.Write("Paper Lamps.sms", Image(3));
    host.downloads.QueueRequest(L"http://host/", L"", 0, nullptr, {});
    ASSERT_TRUE(host.downloads.WaitUntilIdle(kLongestWait)); // its thread has begun
    const CountedHelpers helpers;
    Add({file});
    EXPECT_EQ(CountedHelpers::Begun(), 1);
}

TEST_F(Adding, PlaysAGameThatWasThereBefore) {
    const fs::path file = from.Write("Paper Lamps.sms", Image(3));
    Add({file});
    Add({file});
    EXPECT_EQ(singles, (std::vector{file, file}));
    EXPECT_TRUE(added.empty()) << "nothing is new in the library";
}

TEST_F(Adding, CountsTheGamesOfAFolderAndPlaysNone) {
    from.Write("box/Paper Lamps.sms", Image(3));
    from.Write("box/Moth Patrol.gg", Image(5));
    Add({from.Path() / "box"});
    EXPECT_TRUE(singles.empty());
    ASSERT_TRUE(adding->IsShown());
    EXPECT_EQ(adding->Counter(0)->Text(), L"Added: 2");
    EXPECT_EQ(adding->Button()->Caption(), L"Finish");
    KeepPicture("adding");
    Click(adding->Button());
    EXPECT_FALSE(adding->IsShown());
    EXPECT_EQ(closes, 1);
    EXPECT_EQ(added.size(), 2u);
}

TEST_F(Adding, PlaysNothingOfAFolderWithASingleGame) {
    from.Write("box/Paper Lamps.sms", Image(3));
    Add({from.Path() / "box"});
    EXPECT_TRUE(singles.empty());
    EXPECT_TRUE(adding->IsShown());
}

TEST_F(Adding, SaysWhatItCouldNotTell) {
    Add({from.Write("riddle.rom", Image(7))});
    EXPECT_TRUE(singles.empty());
    ASSERT_TRUE(adding->IsShown());
    EXPECT_NE(LogText().find(L"riddle.rom: nothing tells which machine it is for"),
              std::wstring::npos)
        << std::string(LogText().begin(), LogText().end());
    EXPECT_EQ(adding->Counter(2)->Text(), L"Machine unknown: 1");
    EXPECT_EQ(adding->Text()->Text(), L"Nothing was added");
    KeepPicture("adding-unknown");
}

TEST_F(Adding, AddsWhatIsDroppedMeanwhile) {
    adding->Add({from.Write("Paper Lamps.sms", Image(3))});
    adding->Add({from.Write("Moth Patrol.gg", Image(5))});
    Finish();
    EXPECT_EQ(adding->Counter(0)->Text(), L"Added: 2");
    EXPECT_TRUE(singles.empty()) << "there were two";
}

TEST_F(Adding, EndsBetweenTwoFilesWhenItIsCancelled) {
    // No thread looks at the order of these: a cancel before the first look at the worker is one in time, or the
    // work was already done; either way the window says which, and no game is played.
    std::vector<fs::path> files;
    for (int i = 0; i < 200; ++i) {
        files.push_back(from.Write(std::to_string(i) + ".sms", Image(static_cast<uint8_t>(i + 1))));
    }
    adding->Add(files);
    adding->GoBack();
    Finish();
    ASSERT_TRUE(adding->IsShown());
    EXPECT_EQ(adding->Text()->Text(), L"Stopped. What was added stays.");
    adding->GoBack();
    EXPECT_FALSE(adding->IsShown());
}

TEST_F(Adding, WaitsForTheWorkerAtTheEnd) {
    std::vector<fs::path> files;
    for (int i = 0; i < 50; ++i) {
        files.push_back(from.Write(std::to_string(i) + ".sms", Image(static_cast<uint8_t>(i + 1))));
    }
    adding->Add(files);
    adding.reset();
    for (const auto& entry : fs::recursive_directory_iterator(home.Path())) {
        EXPECT_EQ(entry.path().filename().string().find(".tmp-"), std::string::npos)
            << entry.path() << " is half a file";
    }
    EXPECT_EQ(closes, 0) << "nobody is called any more";
}

TEST_F(Adding, TheBrowserReadsItsFolderAnew) {
    CGhostWindowEx* const area = new CGhostWindowEx(
        nullptr, 0, L"BATTLEMAIN", L"", CGhostWindowEx::kFrame, {false, 0, 60, 1280, 660});
    auto browser = std::make_unique<CGUIRomBrowser>(area->window, host);
    const auto scan = [&] {
        browser->Library().WaitForScan();
        for (int round = 0; round < 3; ++round) {
            browser->Update();
            browser->Library().WaitForScan();
            Tick();
        }
    };
    browser->SetActive(true);
    scan();
    EXPECT_EQ(browser->List()->RowCount(), 0);
    Add({from.Write("Paper Lamps.sms", Image(3))});
    browser->LibraryChanged(added);
    scan();
    ASSERT_EQ(browser->List()->RowCount(), 1);
    EXPECT_EQ(browser->List()->Cell(0, 0)->text, L"Paper Lamps");

    // Games of another system alone are shown in their own list.
    Add({from.Write("Moth Patrol.gg", Image(5))});
    browser->LibraryChanged(added);
    scan();
    EXPECT_EQ(browser->Library().System(), kSystemGameGear);
    EXPECT_EQ(browser->List()->RowCount(), 1);
    browser.reset();
}

} // namespace
