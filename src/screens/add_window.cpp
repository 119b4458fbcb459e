#include "screens/add_window.h"

#include "base/helper_thread.h"
#include "base/text.h"
#include "gui/button.h"
#include "gui/list.h"
#include "gui/manager.h"
#include "gui/text_box.h"
#include "gui/window_ex.h"
#include "settings/settings.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace {

// Units. The window looks as the one of a scan.
constexpr int32_t kWidth = 520;
constexpr int32_t kPlainHeight = 150;
constexpr int32_t kLogHeight = 420;
constexpr int32_t kBarWidth = 400;
constexpr int32_t kBarHeight = 25;
constexpr int32_t kRow = 25;
constexpr int32_t kButtonWidth = 100;

constexpr const wchar_t* kCounterTexts[] = {L"Added: ", L"Already there: ", L"Unknown: ",
                                            L"Errors: "};

void Join(ADDED_GAMES& sum, const ADDED_GAMES& more) {
    sum.copied += more.copied;
    sum.alreadyThere += more.alreadyThere;
    sum.waiting += more.waiting;
    sum.untold += more.untold;
    sum.failed += more.failed;
    sum.others += more.others;
    for (const uint16_t system : more.systems) {
        if (std::find(sum.systems.begin(), sum.systems.end(), system) == sum.systems.end()) {
            sum.systems.push_back(system);
        }
    }
}

} // namespace

AddWindow::AddWindow(ADD_WINDOW_CALLS windowCalls)
    : calls(std::move(windowCalls))
    , window(new CGhostWindowEx(nullptr, 0, L"PLEASEWAITBG", L"",
                                CGhostWindowEx::kFrame | CGhostWindowEx::kNoSignals, {}))
    , text(new CGhostTextBox(window->window, 0, L"PLEASEWAITTEXT", L"", {}))
    , barBack(new CGhostWindowEx(window->window, 0, L"PLEASEWAITPROGESSBG", L"",
                                 CGhostWindowEx::kNoSignals, {}))
    , bar(new CGhostWindowEx(barBack->window, 0, L"PLEASEWAITPROGESSBARBG", L"",
                             CGhostWindowEx::kNoSignals, {}))
    , log(new CGhostList(window->window, 0, L"LIST", 0, {}))
    , button(new CGhostButton(window->window, 0, L"BUTTON", L"Cancel", 0, {})) {
    for (CGhostTextBox*& counter : counters) {
        counter = new CGhostTextBox(window->window, 0, L"TEXT", L"", {});
    }
    signals.Watch(button->OnClick, [this](CGhostButton*, int, int, unsigned) { GoBack(); });
    window->SetVisible(false);
}

AddWindow::~AddWindow() {
    stop = true;
    if (worker.joinable()) {
        worker.join();
    }
    CGhostManager::Get().DestroyWindow(window->window);
}

bool AddWindow::IsShown() const {
    return window->IsVisible();
}

void AddWindow::Add(std::vector<std::filesystem::path> more) {
    waiting.insert(waiting.end(), std::make_move_iterator(more.begin()),
                   std::make_move_iterator(more.end()));
    if (waiting.empty() || worker.joinable()) {
        return;
    }
    Open();
    Begin();
}

void AddWindow::Open() {
    if (!IsShown()) {
        total = {};
        batches = 0;
        told = false;
        log->Clear();
    }
    text->SetText(L"Adding games...");
    for (CGhostTextBox* const counter : counters) {
        counter->SetVisible(false);
    }
    log->SetVisible(false);
    barBack->SetVisible(true);
    button->SetCaption(L"Cancel");
    Layout(false);
    window->SetVisible(true);
    window->SetZOrder(-1);
    button->SetFocus();
}

void AddWindow::Close() {
    window->SetVisible(false);
    calls.closed(total.systems);
}

void AddWindow::GoBack() {
    if (!worker.joinable()) {
        Close();
        return;
    }
    stop = true;
    waiting.clear();
    text->SetText(L"Stopping...");
}

void AddWindow::Layout(bool withLog) {
    const GUI_RECT screen = CGhostManager::Get().ScreenRect();
    const int32_t height = withLog ? kLogHeight : kPlainHeight;
    window->SetPos((screen.width - kWidth) / 2, (screen.height - height) / 2, kWidth, height);
    const int32_t inner = window->window->clientRect.width;
    const int32_t foot = window->window->clientRect.height;
    text->SetPos(0, 0, inner, kRow);
    barBack->SetPos((inner - kBarWidth) / 2, 38, kBarWidth, kBarHeight);
    for (size_t i = 0; i < counters.size(); ++i) {
        const auto column = static_cast<int32_t>(i % 2);
        const auto row = static_cast<int32_t>(i / 2);
        counters[i]->SetPos(column * inner / 2, 38 + row * kRow, inner / 2, kRow);
    }
    log->SetPos(0, 96, inner, foot - 96 - 40);
    button->SetPos((inner - kButtonWidth) / 2, foot - kRow - 4, kButtonWidth, kRow);
}

void AddWindow::Begin() {
    paths = std::exchange(waiting, {});
    ++batches;
    keepSources = Settings().GetBool(L"library_keepsources");
    stop = false;
    ended = false;
    {
        const std::scoped_lock hold(lock);
        lines.clear();
        fileInHand.clear();
        faults = false;
        done = 0.0;
    }
    bar->SetPos(0, 0, 0, kBarHeight);
    worker = std::thread([this] {
        HelperBegins();
        Work();
    });
}

// On the worker.
void AddWindow::Work() {
    ADD_REQUEST request;
    request.paths = paths;
    request.keepSources = keepSources;
    request.stop = &stop;
    ADD_SINK sink;
    sink.note = [this](const std::string& line) { Say(line, false); };
    sink.fault = [this](const std::string& line) { Say(line, true); };
    sink.progress = [this](size_t files, size_t all, const std::string& name) {
        const std::scoped_lock hold(lock);
        fileInHand = WideFromUtf8(name);
        done = all == 0 ? 0.0 : static_cast<double>(files) / static_cast<double>(all);
    };
    result = AddGames(request, sink);
    ended = true;
}

void AddWindow::Say(const std::string& line, bool fault) {
    const std::scoped_lock hold(lock);
    lines.push_back(WideFromUtf8(line));
    faults = faults || fault;
}

void AddWindow::Update() {
    if (!worker.joinable()) {
        return;
    }
    const bool over = ended; // before the last lines are taken
    ShowProgress();
    if (over) {
        worker.join();
        End();
    }
}

// What the worker has said is taken first, as the toolkit has locks of its own.
void AddWindow::ShowProgress() {
    std::vector<std::wstring> said;
    std::wstring file;
    double part = 0.0;
    {
        const std::scoped_lock hold(lock);
        said = std::exchange(lines, {});
        file = fileInHand;
        part = done;
        told = told || faults;
    }
    bar->SetPos(0, 0, static_cast<int32_t>(part * kBarWidth), kBarHeight);
    if (!stop && !file.empty()) {
        text->SetText(L"Adding " + file);
    }
    for (const std::wstring& line : said) {
        log->AddItem(line);
    }
}

void AddWindow::End() {
    const bool stopped = stop;
    Join(total, result);
    if (!waiting.empty()) {
        Begin();
        return;
    }
    TakeResult(stopped);
}

// A file alone needs no word when it is there. It is played, which the player sees.
void AddWindow::TakeResult(bool stopped) {
    std::error_code ignored;
    const bool alone = batches == 1 && paths.size() == 1 && !stopped && !told &&
                       total.copied + total.alreadyThere == 1 && total.waiting == 0 &&
                       !std::filesystem::is_directory(paths.front(), ignored);
    if (!alone) {
        ShowLog(stopped);
        return;
    }
    Close();
    calls.single(paths.front());
}

void AddWindow::ShowLog(bool stopped) {
    const size_t values[] = {total.copied, total.alreadyThere, total.untold, total.failed};
    for (size_t i = 0; i < counters.size(); ++i) {
        counters[i]->SetText(kCounterTexts[i] + std::to_wstring(values[i]));
        counters[i]->SetVisible(true);
    }
    if (total.untold != 0) {
        log->AddItem(L"A file of unknown kind can be put into the folder of its machine by hand.");
    }
    if (total.waiting != 0) {
        log->AddItem(L"Some pieces of arcade boards wait for the others: drop these as well.");
    }
    if (total.copied + total.alreadyThere + total.untold + total.failed == 0) {
        log->AddItem(L"There was no game in it.");
    }
    text->SetText(stopped                            ? L"Stopped. What was added stays."
                  : total.copied != 0                ? L"Your games are in the library"
                  : total.alreadyThere != 0 && !told ? L"All of it was in the library before"
                                                     : L"Nothing was added");
    barBack->SetVisible(false);
    log->SetVisible(true);
    button->SetCaption(L"Finish");
    Layout(true);
    button->SetFocus();
}
