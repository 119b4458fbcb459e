// AddWindow: adds dropped files and folders to the library, and shows how far it is.
//
//   while it works       a bar, the file in hand and the button "Cancel"
//   if all went well     it closes by itself after a single file, and says what was added after more
//   if something is told the log and the button "Finish", until the player presses it
// What is dropped meanwhile is added after what is in hand. A cancel ends it between two files; what was added
// until then stays.
//
// Thread: main. One worker at a time adds the games; the window's end stops it and waits for the file in hand.
// Locks: what the worker says has one leaf lock.
#pragma once

#include "base/ranked_mutex.h"
#include "library/add_games.h"
#include "screens/progress_window.h"
#include "screens/screen_panel.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

struct ADD_WINDOW_CALLS {
    // The only file that was dropped is in the library now, or was there before, and nothing else was in it.
    std::function<void(const std::filesystem::path& file)> single;
    // The window has closed, and with it the focus. `systems`: the machines that have new games, each once.
    std::function<void(const std::vector<uint16_t>& systems)> closed;
};

class AddWindow {
public:
    explicit AddWindow(ADD_WINDOW_CALLS calls);
    ~AddWindow();
    AddWindow(const AddWindow&) = delete;
    AddWindow& operator=(const AddWindow&) = delete;

    void Add(std::vector<std::filesystem::path> paths);

    // Once a round, before the toolkit's tick.
    void Update();

    // As escape, and a controller's button to go back: cancels, or closes what has ended.
    void GoBack();

    [[nodiscard]] bool IsShown() const { return window.IsShown(); }
    [[nodiscard]] bool Works() const { return worker.joinable(); }
    [[nodiscard]] const CGhostTextBox* Text() const { return window.Text(); }
    [[nodiscard]] const CGhostTextBox* Counter(size_t index) const { return window.Counter(index); }
    [[nodiscard]] CGhostButton* Button() const { return window.Button(); } // "Cancel" or "Finish"
    [[nodiscard]] CGhostList* Log() const { return window.Log(); }

private:
    void Open();
    void Close();
    void Begin();
    void Work();
    void Say(const std::string& line, bool fault);
    void ShowProgress();
    void End();
    void TakeResult(bool stopped);
    void ShowLog(bool stopped);

    ADD_WINDOW_CALLS calls;
    ProgressWindow window;
    ScreenSignals signals;

    std::vector<std::filesystem::path> waiting; // for the worker in hand to end
    std::vector<std::filesystem::path> paths;   // in hand
    ADDED_GAMES total;                          // since the window opened
    size_t batches = 0;                         // since then
    bool told = false;                          // a fault since then
    bool keepSources = false;

    // The worker's, until it has ended.
    ADDED_GAMES result;
    std::atomic<bool> stop{false};
    std::atomic<bool> ended{false};

    // Guards what follows: the worker writes it, the window shows it.
    RankedMutex<LockRank::kLeaf> lock;
    std::vector<std::wstring> lines;
    std::wstring fileInHand;
    bool faults = false;
    double done = 0.0; // 0 to 1

    std::thread worker; // last, as it uses the others
};
