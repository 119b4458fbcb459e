#include "screens/add_window.h"

#include "base/helper_thread.h"
#include "base/text.h"
#include "gui/button.h"
#include "settings/settings.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace {

constexpr ProgressWindow::CounterTexts kCounterTexts = {L"Added: ", L"Already there: ",
                                                        L"Machine unknown: ", L"Errors: "};
constexpr PROGRESS_LAYOUT kLayout{.plainHeight = 150, .bar = 38, .counters = 38, .log = 96};

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
    , window(kCounterTexts, kLayout) {
    signals.Watch(Button()->OnClick, [this](CGhostButton*, int, int, unsigned) { GoBack(); });
}

AddWindow::~AddWindow() {
    stop = true;
    if (worker.joinable()) {
        worker.join();
    }
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
        window.ClearLog();
    }
    Button()->SetCaption(L"Cancel");
    window.Open(L"Adding games...");
    Button()->SetFocus();
}

void AddWindow::Close() {
    window.Hide();
    calls.closed(total.systems);
}

void AddWindow::GoBack() {
    if (!worker.joinable()) {
        Close();
        return;
    }
    stop = true;
    waiting.clear();
    window.SetText(L"Stopping...");
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
    window.SetProgress(0);
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
    window.SetProgress(static_cast<int32_t>(part * ProgressWindow::kBarWidth));
    if (!stop && !file.empty()) {
        window.SetText(L"Adding " + file);
    }
    for (const std::wstring& line : said) {
        window.AddLine(line);
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
    window.ShowCounters(
        std::array<size_t, 4>{total.copied, total.alreadyThere, total.untold, total.failed});
    if (total.untold != 0) {
        window.AddLine(
            L"A file of unknown kind can be put into the folder of its machine by hand.");
    }
    if (total.waiting != 0) {
        window.AddLine(L"Some pieces of arcade boards wait for the others: drop these as well.");
    }
    if (total.copied + total.alreadyThere + total.untold + total.failed == 0) {
        window.AddLine(L"There was no game in it.");
    }
    window.SetText(stopped                            ? L"Stopped. What was added stays."
                   : total.copied != 0                ? L"Your games are in the library"
                   : total.alreadyThere != 0 && !told ? L"All of it was in the library before"
                                                      : L"Nothing was added");
    window.HideBar();
    window.ShowLog();
    Button()->SetCaption(L"Finish");
    window.Grow();
    Button()->SetFocus();
}
