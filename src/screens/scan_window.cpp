#include "screens/scan_window.h"

#include "gui/button.h"
#include "library/catalogue.h"

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr ProgressWindow::CounterTexts kCounterTexts = {
    L"Good Conversions: ", L"Auto Conversions: ", L"Errors: ", L"Skipped: "};
constexpr PROGRESS_LAYOUT kLayout{.plainHeight = 130, .bar = 34, .counters = 70, .log = 128};
static_assert(kFullProgress == ProgressWindow::kBarWidth);

} // namespace

ScanWindow::ScanWindow(std::function<void()> whenClosed)
    : closed(std::move(whenClosed))
    , window(kCounterTexts, kLayout) {
    signals.Watch(window.Button()->OnClick, [this](CGhostButton*, int, int, unsigned) { Close(); });
}

void ScanWindow::Open() {
    converted = false;
    waits = false;
    open = true;
    window.ClearLog();
    window.Button()->SetVisible(false);
    window.Open(L"Loading...");
    if (!active) {
        window.Hide();
    }
}

void ScanWindow::Close() {
    open = false;
    waits = false;
    window.Hide();
    closed();
}

void ScanWindow::SetActive(bool shown) {
    active = shown;
    if (active && open) {
        window.Show();
    } else {
        window.Hide();
    }
}

bool ScanWindow::TakeFocus() {
    if (waits) {
        window.Button()->SetFocus();
    }
    return waits;
}

bool ScanWindow::TakeBack() {
    const bool waited = waits;
    if (waited) {
        Close();
    }
    return waited;
}

bool ScanWindow::Update(Catalogue& catalogue) {
    const int32_t state = catalogue.State();
    if (state == kScanIdle) {
        return false;
    }
    if (!scanning) {
        scanning = true;
        Open();
    }
    // A short conversion may be over before anybody has looked.
    if (state == kScanConverting || state == kScanConverted) {
        BeginConversion();
    }
    ShowProgress(catalogue, converted);
    if (state != kScanConverted && state != kScanFinished) {
        return false;
    }
    scanning = false;
    if (converted) {
        window.HideBar();
        window.Button()->SetVisible(true);
        waits = true;
        if (active) {
            window.Button()->SetFocus();
        }
    } else {
        Close();
    }
    return true;
}

void ScanWindow::BeginConversion() {
    if (!converted) {
        converted = true;
        window.SetText(L"Converting files to GAME format");
        window.Grow();
    }
}

void ScanWindow::ShowProgress(Catalogue& catalogue, bool converting) {
    window.SetProgress(catalogue.Progress());
    std::vector<std::wstring> lines;
    catalogue.TakeLogLines(lines);
    for (const std::wstring& line : lines) {
        window.AddLine(line);
    }
    if (!converting) {
        return;
    }
    const SCAN_COUNTERS counts = catalogue.Counters();
    window.ShowCounters(
        std::array<size_t, 4>{counts.good, counts.automatic, counts.errors, counts.skipped});
    window.ShowLog();
}
