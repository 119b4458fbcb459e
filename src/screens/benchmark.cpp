#include "screens/benchmark.h"

#include "base/text.h"
#include "formats/game_file.h"
#include "gui/button.h"
#include "gui/list_view.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window.h"
#include "host/benchmark.h"
#include "screens/screen_host.h"

#include <algorithm>
#include <memory>
#include <string>

namespace {

constexpr const wchar_t* kBefore =
    L"Runs a game as fast as this computer can, for five seconds in which nothing else moves.";
constexpr const wchar_t* kDuring = L"Running. In five seconds everything moves again.";

// Units.
constexpr int32_t kColumn = 200;
constexpr int32_t kListWide = 864;
constexpr int32_t kListTop = 118;
constexpr int32_t kRows = 11; // of the report, and one to spare
constexpr int32_t kButtonWide = 180;
constexpr int32_t kHigh = 25;
constexpr int32_t kFoot = 20;

} // namespace

CGUIBenchmark::CGUIBenchmark(GHOSTMANAGER_WINDOW* parentWindow, ScreenHost& program)
    : CGUIPanel(parentWindow)
    , host(program)
    , title(Own(new CGhostTextBox(parent, 0, L"SECTIONTEXT", L"EMULATOR BENCHMARK", {})))
    , notice(Own(new CGhostTextBox(parent, 0, L"TEXT_CENTER", kBefore, {})))
    , results(
          Own(new CGhostListView(parent, 0, L"CREDITLIST",
                                 CGhostListView::kNoSelection | CGhostListView::kFixedColumns, {})))
    , start(Own(new CGhostButton(parent, 0, L"BUTTON", L"Start Benchmark", 0, {}))) {
    results->AddColumn(L"Results", kColumn);
    signals.Watch(start->OnClick, [this](CGhostButton*, int, int, unsigned) { Start(); });
}

// The column grows with the list, or it would cut the report's lines.
void CGUIBenchmark::Layout(int32_t width, int32_t height) {
    title->SetPos((width - 680) / 2, 10, 680, kHigh);
    notice->SetPos((width - kListWide) / 2, 42, kListWide, kHigh);
    start->SetPos((width - kButtonWide) / 2, 76, kButtonWide, kHigh);
    results->SetPos((width - kListWide) / 2, kListTop, kListWide,
                    std::min(height - kListTop - kFoot,
                             results->HeaderHeight() + kRows * results->RowHeight() + 2));
    results->SetColumnWidth(0, results->window->clientRect.width);
}

void CGUIBenchmark::TakeFocus() {
    start->SetFocus();
}

void CGUIBenchmark::Start() {
    if (running) {
        return;
    }
    running = true;
    announced = false;
    finished = false;
    results->Clear();
    frames = 0;
    notice->SetText(kDuring);
    notice->SetStyle(L"SECTIONTEXT");
}

// The notice is painted by the tick after it was set, and seen once nothing waits for the composite.
void CGUIBenchmark::Update() {
    if (!running) {
        return;
    }
    if (finished) {
        running = false;
    } else if (!announced) {
        announced = true;
    } else if (CGhostManager::Get().DirtyRect().Empty()) {
        Run();
    }
}

// Clicks that this round has read reach the button only after it, so the run ends with the next round.
void CGUIBenchmark::Run() {
    auto game = std::make_unique<CGameFile>();
    if (!host.OpenBenchmarkGame(*game)) {
        game.reset();
    }
    frames = RunBenchmark(game.get(), [this] { return host.Milliseconds(); });
    for (const std::string& line : BenchmarkReport(frames)) {
        const int32_t row = results->AddRow();
        results->SetCell(row, 0, WideFromUtf8(line));
        results->Cell(row, 0)->colourSet = 1; // in letters of one width
    }
    notice->SetText(kBefore);
    notice->SetStyle(L"TEXT_CENTER");
    finished = true;
    host.ForgetInput();
}
