#include "screens/progress_window.h"

#include "gui/button.h"
#include "gui/list.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"

namespace {

// Units.
constexpr int32_t kWidth = 520;
constexpr int32_t kLogHeight = 420;
constexpr int32_t kBarHeight = 25;
constexpr int32_t kRow = 25;
constexpr int32_t kButtonWidth = 100;
constexpr int32_t kFoot = 40; // below the log

} // namespace

ProgressWindow::ProgressWindow(const CounterTexts& texts, const PROGRESS_LAYOUT& places)
    : counterTexts(texts)
    , layout(places)
    , window(new CGhostWindowEx(nullptr, 0, L"PLEASEWAITBG", L"",
                                CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {}))
    , text(new CGhostTextBox(window->window, 0, L"PLEASEWAITTEXT", L"", {}))
    , barBack(new CGhostWindowEx(window->window, 0, L"PLEASEWAITPROGESSBG", L"",
                                 CGhostWindowEx::kNoSignals, {}))
    , bar(new CGhostWindowEx(barBack->window, 0, L"PLEASEWAITPROGESSBARBG", L"",
                             CGhostWindowEx::kNoSignals, {}))
    , log(new CGhostList(window->window, 0, L"LIST", 0, {}))
    , button(new CGhostButton(window->window, 0, L"BUTTON", L"Finish", 0, {})) {
    for (CGhostTextBox*& counter : counters) {
        counter = new CGhostTextBox(window->window, 0, L"TEXT", L"", {});
    }
    window->SetVisible(false);
}

ProgressWindow::~ProgressWindow() {
    CGhostManager::Get().DestroyWindow(window->window);
}

void ProgressWindow::Open(const std::wstring& line) {
    text->SetText(line);
    for (size_t i = 0; i < counters.size(); ++i) {
        counters[i]->SetText(counterTexts[i] + std::wstring(L"0"));
        counters[i]->SetVisible(false);
    }
    log->SetVisible(false);
    barBack->SetVisible(true);
    Layout(layout.plainHeight);
    window->SetVisible(true);
    window->SetZOrder(-1);
}

void ProgressWindow::Show() {
    window->SetVisible(true);
}

void ProgressWindow::Hide() {
    window->SetVisible(false);
}

bool ProgressWindow::IsShown() const {
    return window->IsVisible();
}

void ProgressWindow::SetText(const std::wstring& line) {
    text->SetText(line);
}

void ProgressWindow::SetProgress(int32_t units) {
    bar->SetPos(0, 0, units, kBarHeight);
}

void ProgressWindow::HideBar() {
    barBack->SetVisible(false);
}

void ProgressWindow::AddLine(const std::wstring& line) {
    log->AddItem(line);
}

void ProgressWindow::ClearLog() {
    log->Clear();
}

void ProgressWindow::ShowLog() {
    log->SetVisible(true);
}

void ProgressWindow::ShowCounters(std::span<const size_t, kCounters> values) {
    for (size_t i = 0; i < counters.size(); ++i) {
        counters[i]->SetText(counterTexts[i] + std::to_wstring(values[i]));
        counters[i]->SetVisible(true);
    }
}

void ProgressWindow::Grow() {
    Layout(kLogHeight);
}

void ProgressWindow::Layout(int32_t height) {
    const GUI_RECT screen = CGhostManager::Get().ScreenRect();
    window->SetPos((screen.width - kWidth) / 2, (screen.height - height) / 2, kWidth, height);
    const int32_t inner = window->window->clientRect.width;
    const int32_t foot = window->window->clientRect.height;
    text->SetPos(0, 0, inner, kRow);
    barBack->SetPos((inner - kBarWidth) / 2, layout.bar, kBarWidth, kBarHeight);
    for (size_t i = 0; i < counters.size(); ++i) {
        const auto column = static_cast<int32_t>(i % 2);
        const auto row = static_cast<int32_t>(i / 2);
        counters[i]->SetPos(column * inner / 2, layout.counters + row * kRow, inner / 2, kRow);
    }
    log->SetPos(0, layout.log, inner, foot - layout.log - kFoot);
    button->SetPos((inner - kButtonWidth) / 2, foot - kRow - 4, kButtonWidth, kRow);
}
