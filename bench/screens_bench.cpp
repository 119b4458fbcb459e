// What a frame of the program's screens costs the processor: every screen, as it first appears and as it is used, on
// a display of 1920 by 1080 (density 1.5). One frame is to take no more than 4 ms.
//
// A frame is what the main thread does for the interface in a round: the input, the screens' Update, the toolkit's
// tick and its composite, whose draw calls lead nowhere. The time is that of the thread on its processor, so other
// programs count little. What goes to the graphics library is counted in pixels.
#include "formats/zip.h"
#include "gui/edit.h"
#include "gui/list.h"
#include "gui/list_view.h"
#include "gui/message_box.h"
#include "gui/slider.h"
#include "gui/window_ex.h"
#include "library/made_games.h"
#include "screens/add_window.h"
#include "screens/battle_ground.h"
#include "screens/game_overlay.h"
#include "screens/input_list.h"
#include "screens/input_tab.h"
#include "screens/options.h"
#include "screens/rom_browser.h"
#include "screens/screens_rig.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include "support/temporary_folder.h"
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <thread>
#include <utility>

namespace {

constexpr int32_t kWide = 1920;
constexpr int32_t kHigh = 1080;
constexpr int32_t kRows = 20'000;
constexpr double kLimit = 4.0; // milliseconds

double ThreadMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// In the order of their numbers.
std::string TitleOf(int32_t game) {
    const std::string digits = std::to_string(game);
    return "A Game of Some Length " + std::string(5 - digits.size(), '0') + digits;
}

// An archive of screenshots, box and texts, as our own games have one.
std::vector<uint8_t> MediaArchive() {
    ZipWriter writer;
    std::string error;
    for (const OBJECT_ASSET& asset : BuiltInMedia()) {
        if (asset.name.starts_with("sms-luciole")) {
            static_cast<void>(writer.Add(asset.name, asset.data, error));
        }
    }
    return writer.Finish(error);
}

class ScreensBench : public ScreensTest {
public:
    void TestBody() override {
        std::printf("%-46s %7s %8s %8s %8s %9s\n", "milliseconds of a frame", "frames", "best",
                    "median", "worst", "kpixels");
        Manager().SetHost(
            {[](uint32_t, int32_t, int32_t) {}, [](uint32_t) {},
             [this](uint32_t id, const uint32_t*, int32_t) { Uploaded(id); },
             [](uint32_t, uint32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t) {}});
        Manager().SetScreen(kWide, kHigh);
        Manager().SetPaintLimit(kSmoothPaintLimit);
        RegisterDefaultSettings(Settings());
        MakeLibrary();
        Menu();
        Options();
        Browser();
        Others();
        menu.reset();
        Tick();
        Manager().SetHost({});
    }
    void Start() { SetUp(); }
    void Stop() { TearDown(); }

private:
    using Action = std::function<void()>;

    void Uploaded(uint32_t id) {
        Manager().ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
            if (window.id == id && window.surface != nullptr) {
                pixels += int64_t{window.surface->PixelWidth()} * window.surface->PixelHeight();
            }
        });
    }

    // One frame, in milliseconds.
    double Frame(const Action& input) {
        const double before = ThreadMilliseconds();
        if (input) {
            input();
        }
        if (menu != nullptr) {
            menu->Update();
        }
        if (adding != nullptr) {
            adding->Update();
        }
        if (overlay != nullptr) {
            OVERLAY_STATE state;
            state.shown = state.roomVisible = state.mouseUsed = true;
            overlay->Update(state);
        }
        Tick();
        Manager().CompositeAll();
        return ThreadMilliseconds() - before;
    }

    struct SAMPLES {
        std::vector<double> times;
        int64_t pixels = 0; // of the frame with the most
    };
    void Sample(SAMPLES& samples, const Action& input) {
        pixels = 0;
        samples.times.push_back(Frame(input));
        samples.pixels = std::max(samples.pixels, pixels);
    }
    static void Print(const char* name, SAMPLES samples) {
        std::sort(samples.times.begin(), samples.times.end());
        std::printf("%-46s %7zu %8.3f %8.3f %8.3f %9.0f%s\n", name, samples.times.size(),
                    samples.times.front(), samples.times[samples.times.size() / 2],
                    samples.times.back(), static_cast<double>(samples.pixels) / 1e3,
                    samples.times.back() > kLimit ? "  over 4" : "");
        std::fflush(stdout);
    }

    void Measure(const char* name, int frames, const std::function<void(int)>& input) {
        SAMPLES samples;
        for (int i = 0; i < frames; ++i) {
            Sample(samples, [&] { input(i); });
        }
        Print(name, samples);
    }

    // Opening: the frame of `open` and those after it count one by one.
    void MeasureOpening(const char* name, int times, const Action& open, const Action& close) {
        constexpr int kFramesAfter = 12;
        SAMPLES samples;
        for (int i = 0; i <= times; ++i) {
            if (i == 1) {
                Print((std::string(name) + ", the first time").c_str(), std::exchange(samples, {}));
            }
            Sample(samples, open);
            for (int after = 0; after < kFramesAfter; ++after) {
                Sample(samples, {});
            }
            close();
            Frame({});
            Frame({});
        }
        Print(name, samples);
    }

    void MeasureIdle(const char* name) {
        Measure(name, 100, [](int) {});
    }

    // Over the whole screen, in a path that meets every control.
    void MeasureMouse(const char* name) {
        Measure(name, 300, [this](int i) { MoveTo(i * 67 % 1280, 60 + i * 41 % 660); });
    }

    void MakeLibrary() {
        for (int32_t game = 0; game < kRows; ++game) {
            const std::filesystem::path file =
                home.Write("sms/" + TitleOf(game) + ".game", MadeGame(TitleOf(game), 1, 64));
            SetAge(file, std::chrono::hours(1));
        }
        std::vector<uint8_t> database;
        for (int32_t game = 0; game < kRows; ++game) {
            const std::vector<uint8_t> entry = MadeGame(TitleOf(game), 1, 0);
            database.insert(database.end(), entry.begin(), entry.end());
        }
        home.Write("dat/sms.dat", database);
        const std::vector<uint8_t> media = MediaArchive();
        for (int32_t game = 0; game < 400; ++game) {
            home.Write("sms/media/" + TitleOf(game) + ".zip", media);
        }
        for (const char* const folder : {"gamegear", "nes", "arcade", "megadrive"}) {
            home.Write(std::string(folder) + "/none.txt", std::string_view("x"));
        }
    }

    void Menu() {
        MeasureOpening(
            "menu: first paint", 10, [this] { menu = std::make_unique<CGUIBattleGround>(host); },
            [this] { menu.reset(); });
        menu = std::make_unique<CGUIBattleGround>(host);
        menu->SetNews(std::wstring(4000, L'n') + L" " + std::wstring(2000, L'w'));
        Frame({});
        MeasureMouse("menu: mouse over the controls");
        MeasureIdle("menu: idle");
        MeasureOpening(
            "credits: first paint", 10, [this] { menu->OnMenu(kPanelCredits); },
            [this] { menu->Back(); });
        MeasureOpening(
            "benchmark: first paint", 10, [this] { menu->OnMenu(kPanelBenchmark); },
            [this] { menu->Back(); });
    }

    void Options() {
        MeasureOpening(
            "options: first paint", 10, [this] { menu->OnMenu(kPanelOptions); },
            [this] { menu->Back(); });
        menu->OnMenu(kPanelOptions);
        Frame({});
        auto& options = dynamic_cast<CGUIOptions&>(*menu->Panel());
        constexpr std::pair<const char*, OptionTab> kTabs[] = {
            {"general",  OptionTab::kGeneral },
            {"graphics", OptionTab::kGraphics},
            {"sound",    OptionTab::kSound   },
            {"input",    OptionTab::kInput   },
        };
        for (const auto& [name, tab] : kTabs) {
            const std::string start = std::string("options, ") + name;
            Measure((start + ": the tab appears").c_str(), 20, [&](int i) {
                options.ShowTab(i % 2 == 0                 ? tab
                                : tab == OptionTab::kSound ? OptionTab::kGeneral
                                                           : OptionTab::kSound);
            });
            options.ShowTab(tab);
            Frame({});
            MeasureMouse((start + ": mouse over the controls").c_str());
        }
        Measure("options, input: a step of the list", 60,
                [&](int i) { options.Inputs().List()->SetSelected(i % 20); });
        options.ShowTab(OptionTab::kSound);
        Frame({});
        CGhostSlider* const volume = options.SliderOf(L"audio_volume");
        GUI_RECT place;
        static_cast<void>(Manager().GetScreenRect(volume->window, &place));
        MoveTo(place.x + place.width / 2, place.y + place.height / 2);
        Hold(true);
        Measure("options, sound: moving a slider", 200,
                [&](int i) { MoveTo(place.x + 10 + i * 7 % (place.width - 20), place.y + 8); });
        Hold(false);
        MeasureIdle("options: idle");
        menu->Back();
        Frame({});
    }

    void WaitForRows() {
        CGUIRomBrowser& browser = *menu->Browser();
        browser.Library().WaitForScan();
        for (int i = 0; i < 1000 && browser.List()->RowCount() == 0; ++i) {
            Frame({});
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        for (int i = 0; i < 100; ++i) {
            Frame({});
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    void MeasureScan(const char* name, const Action& begin) {
        SAMPLES samples;
        Sample(samples, begin);
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        const auto waits = [&] {
            return menu->Browser()->Library().ScanRuns() ||
                   menu->Browser()->List()->RowCount() == 0;
        };
        while (waits() && std::chrono::steady_clock::now() < end) {
            Sample(samples, {});
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        for (int i = 0; i < 100; ++i) {
            Sample(samples, {});
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        Print(name, samples);
    }

    void Browser() {
        MeasureScan("browser: first paint, cold scan, 20,000 rows",
                    [this] { menu->OnMenu(kPanelBrowser); });
        CGUIRomBrowser& browser = *menu->Browser();
        CGhostListView& list = *browser.List();
        std::printf("  (%d rows)\n", list.RowCount());
        MeasureOpening(
            "browser: shown again", 10, [&] { menu->OnMenu(kPanelBrowser); },
            [this] { menu->Back(); });
        menu->OnMenu(kPanelBrowser);
        Frame({});
        MeasureMouse("browser: mouse over the controls");
        MeasureIdle("browser: idle");
        list.SetFocus();
        Measure("browser: list scrolls by a row", 100,
                [&](int) { list.ScrollTo(list.ScrollPixels() + list.RowHeight()); });
        Measure("browser: list scrolls by a page", 100,
                [&](int) { list.ScrollTo(list.ScrollPixels() + 12 * list.RowHeight()); });
        list.ScrollTo(0);
        list.SetSelected(0);
        Frame({});
        Measure("browser: down one row, all panels filled", 350, [&](int) { Press(kDown); });
        for (const ContentTab tab : {ContentTab::kReviews, ContentTab::kMetaInfo}) {
            browser.Content().ShowTab(tab);
            Frame({});
            Measure(tab == ContentTab::kReviews ? "browser: down one row, reviews shown"
                                                : "browser: down one row, meta info shown",
                    100, [&](int i) { Press(i < 50 ? kDown : kUp); });
        }
        browser.Content().ShowTab(ContentTab::kCovers);
        Frame({});
        SAMPLES page;
        for (int i = 0; i < 60; ++i) { // the pictures come in the frames after
            Sample(page, [&] { Press(i < 30 ? kPageUp : kPageDown); });
            for (int after = 0; after < 6; ++after) {
                Sample(page, {});
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        }
        Print("browser: a page of rows, and its pictures", page);
        MeasureTyping(browser);
        Measure("browser: the list is sorted", 20, [&](int i) {
            list.SortBy(i % 3 == 0 ? 0 : i % 3 == 1 ? 4 : 7, i % 2 == 0);
        });
        list.ForgetOrder();
        Measure("browser: the filters open and close", 40, [&](int i) {
            const bool open = i % 2 == 0;
            browser.Filters().Menu()->SetVisible(open);
            browser.Filters().Menu()->SetZOrder(-1);
        });
        browser.Filters().CloseMenu();
        Measure("browser: a favourite", 20, [&](int) { browser.ToggleFavourite(); });
        MeasureSystems(browser);
        menu->Back();
        Frame({});
    }

    void MeasureTyping(CGUIRomBrowser& browser) {
        CGhostEdit& name = *browser.Filters().Name();
        SAMPLES samples;
        for (int times = 0; times < 4; ++times) {
            name.SetFocus();
            Frame({});
            for (const wchar_t letter : std::wstring_view(L"length 77")) {
                Sample(samples, [&] { Character(letter); });
                for (int after = 0; after < 20; ++after) {
                    Sample(samples, {});
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            }
            for (int letters = 9; letters > 0; --letters) {
                Sample(samples, [&] { Press(kBackspace); });
                for (int after = 0; after < 20; ++after) {
                    Sample(samples, {});
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            }
        }
        Print("browser: a letter in the filter", samples);
    }

    void MeasureSystems(CGUIRomBrowser& browser) {
        SAMPLES away;
        for (int times = 0; times < 3; ++times) {
            Sample(away, [&] { browser.SelectSystem(1, -1); });
            for (int after = 0; after < 50; ++after) {
                Sample(away, {});
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            browser.SelectSystem(0, 0);
            WaitForRows();
        }
        Print("browser: the system steps to an empty one", away);
        for (int times = 0; times < 2; ++times) {
            browser.SelectSystem(1, -1);
            browser.Library().WaitForScan();
            for (int after = 0; after < 50; ++after) {
                Frame({});
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            MeasureScan("browser: the system steps to 20,000 rows",
                        [&] { browser.SelectSystem(0, 0); });
        }
    }

    void Others() {
        MeasureOpening(
            "message box: first paint", 10,
            [] { CGhostMessageBox::Show(L"Warning", L"A message of some words that break."); },
            [this] { Press(kReturn); });
        MeasureDragging();
        const std::filesystem::path dropped = home.Write("dropped/Some.txt", "no game");
        MeasureOpening(
            "add window: first paint", 10,
            [&] {
                adding = std::make_unique<AddWindow>(ADD_WINDOW_CALLS{
                    [](const std::filesystem::path&) {}, [](const std::vector<uint16_t>&) {}});
                adding->Add({dropped});
            },
            [this] { adding.reset(); });
        menu->SetVisible(false);
        Frame({});
        MeasureOpening(
            "strip of buttons: first paint", 10,
            [this] { overlay = std::make_unique<CGUIGameOverlay>(host); },
            [this] { overlay.reset(); });
        overlay = std::make_unique<CGUIGameOverlay>(host);
        Frame({});
        MeasureMouse("strip of buttons: mouse over the controls");
        MeasureIdle("strip of buttons: idle");
        overlay.reset();
        Frame({});
        Measure("menu: shown again after the room", 20,
                [this](int i) { menu->SetVisible(i % 2 == 0); });
    }

    // No screen has such a window, but the toolkit does.
    void MeasureDragging() {
        auto* const window = new CGhostWindowEx(nullptr, 0, L"MESSAGEBOX", L"A window",
                                                CGhostWindowEx::kFrame | CGhostWindowEx::kTitle |
                                                    CGhostWindowEx::kDraggable,
                                                {false, 300, 150, 520, 420});
        auto* const lines =
            new CGhostList(window->window, 0, L"LIST", 0, {false, 10, 10, 480, 300});
        for (int i = 0; i < 40; ++i) {
            lines->AddItem(L"A line of the list, with a number: " + std::to_wstring(i));
        }
        for (int i = 0; i < 4; ++i) {
            new CGhostButton(window->window, 0, L"BUTTON", L"Button", 0,
                             {false, 10 + i * 120, 330, 110, 25});
        }
        Frame({});
        MoveTo(340, 158);
        Frame({});
        Hold(true);
        Measure("a window with a list: dragged", 200,
                [&](int i) { MoveTo(200 + i * 5 % 700, 100 + i * 3 % 400); });
        Hold(false);
        GUI_RECT place;
        static_cast<void>(Manager().GetScreenRect(window->window, &place));
        std::printf("  (dragged to %d %d)\n", place.x, place.y);
        Manager().DestroyWindow(window->window);
        Frame({});
        Frame({});
    }

    static constexpr auto kDown = GHOSTGUIKey::kDown;
    static constexpr auto kUp = GHOSTGUIKey::kUp;
    static constexpr auto kPageUp = GHOSTGUIKey::kPageUp;
    static constexpr auto kPageDown = GHOSTGUIKey::kPageDown;
    static constexpr auto kReturn = GHOSTGUIKey::kReturn;
    static constexpr auto kBackspace = GHOSTGUIKey::kBackspace;

    void Press(GHOSTGUIKey key) {
        KeyDown(key);
        KeyUp(key);
    }
    void Character(wchar_t letter) {
        GUI_INPUT_RECORD record;
        record.character = static_cast<int32_t>(letter);
        Manager().PostInput(record, 0);
    }
    void Hold(bool down) {
        GUI_INPUT_RECORD record;
        record.buttonDown = down;
        record.buttonUp = !down;
        record.button = 1;
        Manager().PostInput(record, 100'000);
        Frame({});
    }

    TemporaryHome home;
    std::unique_ptr<CGUIBattleGround> menu;
    std::unique_ptr<AddWindow> adding;
    std::unique_ptr<CGUIGameOverlay> overlay;
    int64_t pixels = 0; // uploaded in this frame
};

} // namespace

int main() {
    ScreensBench bench;
    bench.Start();
    bench.TestBody();
    bench.Stop();
    return 0;
}
