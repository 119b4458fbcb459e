#include "screens/scan_window.h"

#include "gui/button.h"
#include "gui/list.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "library/catalogue.h"

namespace {

// Units.
constexpr int32_t kWidth = 520;
constexpr int32_t kPlainHeight = 130;
constexpr int32_t kLogHeight = 420;
constexpr int32_t kBarHeight = 25;
constexpr int32_t kRow = 25;

constexpr const wchar_t* kCounterTexts[] = {L"Good Conversions: ", L"Auto Conversions: ",
                                            L"Errors: ", L"Skipped: "};

} // namespace

ScanWindow::ScanWindow(std::function<void()> whenClosed)
    : closed(std::move(whenClosed))
    , window(new CGhostWindowEx(nullptr, 0, L"PLEASEWAITBG", L"",
                                CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {}))
    , text(new CGhostTextBox(window->window, 0, L"PLEASEWAITTEXT", L"Loading...", {}))
    , barBack(new CGhostWindowEx(window->window, 0, L"PLEASEWAITPROGESSBG", L"",
                                 CGhostWindowEx::kNoSignals, {}))
    , bar(new CGhostWindowEx(barBack->window, 0, L"PLEASEWAITPROGESSBARBG", L"",
                             CGhostWindowEx::kNoSignals, {}))
    , log(new CGhostList(window->window, 0, L"LIST", 0, {}))
    , finish(new CGhostButton(window->window, 0, L"BUTTON", L"Finish", 0, {})) {
    for (size_t i = 0; i < counters.size(); ++i) {
        counters[i] = new CGhostTextBox(window->window, 0, L"TEXT",
                                        kCounterTexts[i] + std::wstring(L"0"), {});
    }
    signals.Watch(finish->OnClick, [this](CGhostButton*, int, int, unsigned) { Close(); });
    window->SetVisible(false);
}

ScanWindow::~ScanWindow() {
    CGhostManager::Get().DestroyWindow(window->window);
}

bool ScanWindow::IsShown() const {
    return window->IsVisible();
}

void ScanWindow::Open() {
    converted = false;
    log->Clear();
    text->SetText(L"Loading...");
    for (size_t i = 0; i < counters.size(); ++i) {
        counters[i]->SetText(kCounterTexts[i] + std::wstring(L"0"));
        counters[i]->SetVisible(false);
    }
    log->SetVisible(false);
    finish->SetVisible(false);
    barBack->SetVisible(true);
    Layout(false);
    open = true;
    waits = false;
    window->SetVisible(active);
    window->SetZOrder(-1);
}

void ScanWindow::Close() {
    open = false;
    waits = false;
    window->SetVisible(false);
    closed();
}

void ScanWindow::SetActive(bool shown) {
    active = shown;
    window->SetVisible(active && open);
}

bool ScanWindow::TakeFocus() {
    if (waits) {
        finish->SetFocus();
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

void ScanWindow::Layout(bool withLog) {
    const GUI_RECT screen = CGhostManager::Get().ScreenRect();
    const int32_t height = withLog ? kLogHeight : kPlainHeight;
    window->SetPos((screen.width - kWidth) / 2, (screen.height - height) / 2, kWidth, height);
    const int32_t inner = window->window->clientRect.width;
    const int32_t foot = window->window->clientRect.height;
    text->SetPos(0, 0, inner, kRow);
    barBack->SetPos((inner - kFullProgress) / 2, 34, kFullProgress, kBarHeight);
    for (size_t i = 0; i < counters.size(); ++i) {
        const auto column = static_cast<int32_t>(i % 2);
        const auto row = static_cast<int32_t>(i / 2);
        counters[i]->SetPos(column * inner / 2, 70 + row * kRow, inner / 2, kRow);
    }
    log->SetPos(0, 128, inner, foot - 128 - 40);
    finish->SetPos((inner - 100) / 2, foot - kRow - 4, 100, kRow);
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
        barBack->SetVisible(false);
        finish->SetVisible(true);
        waits = true;
        if (active) {
            finish->SetFocus();
        }
    } else {
        Close();
    }
    return true;
}

void ScanWindow::BeginConversion() {
    if (!converted) {
        converted = true;
        text->SetText(L"Converting files to GAME format");
        Layout(true);
    }
}

void ScanWindow::ShowProgress(Catalogue& catalogue, bool converting) {
    bar->SetPos(0, 0, catalogue.Progress(), kBarHeight);
    std::vector<std::wstring> lines;
    catalogue.TakeLogLines(lines);
    for (const std::wstring& line : lines) {
        log->AddItem(line);
    }
    if (!converting) {
        return;
    }
    const SCAN_COUNTERS counts = catalogue.Counters();
    const uint32_t values[] = {counts.good, counts.automatic, counts.errors, counts.skipped};
    for (size_t i = 0; i < counters.size(); ++i) {
        counters[i]->SetText(kCounterTexts[i] + std::to_wstring(values[i]));
        counters[i]->SetVisible(true);
    }
    log->SetVisible(true);
}
