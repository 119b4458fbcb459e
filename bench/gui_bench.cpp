// The toolkit: a table of 20,000 rows, a screen full of controls, a tick with nothing to do.
#include "gui/font.h"
#include "gui/random_tree.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <vector>

namespace {

constexpr int kWide = 1920; // pixels at density 1.5
constexpr int kHigh = 1080;

void AddFont() {
    static std::vector<uint8_t> data;
    if (data.empty()) {
        std::ifstream file(OMBRELUNE_TEST_FONT, std::ios::binary);
        data.assign(std::istreambuf_iterator<char>(file), {});
        CGhostFontManager::Get().AddFont("Default", data, 0, 0);
    }
}

void Start() {
    AddFont();
    CGhostManager& manager = CGhostManager::Get();
    manager.Reset();
    manager.SetScreen(kWide, kHigh);
    CGhostTheme::Get().ParseTheme(kRandomTheme);
}

// A frame of scrolling: another row selected, and the whole table painted anew.
void TableFrame(benchmark::State& state) {
    constexpr int kRows = 20000;
    Start();
    auto* const view = new CGhostListView(nullptr, 0, L"VIEW", 0, {false, 0, 0, 1280, 720});
    for (int column = 0; column < 6; ++column) {
        view->AddColumn(L"Column", 200);
    }
    view->Reserve(kRows);
    for (int row = 0; row < kRows; ++row) {
        view->AddRow();
        for (int column = 0; column < 6; ++column) {
            view->SetCell(row, column, L"Row " + std::to_wstring(row * 6 + column));
        }
    }
    int row = 0;
    for (auto _ : state) {
        row = (row + 37) % kRows;
        view->SetSelected(row);
        CGhostManager::Get().Tick(16667);
    }
    CGhostManager::Get().Reset();
}

void MakeControls(int count) {
    for (int i = 0; i < count; ++i) {
        const GUI_PLACE place{false, i % 12 * 106, i / 12 * 28, 100, 26};
        switch (i % 4) {
        case 0: new CGhostButton(nullptr, 0, L"BUTTON", L"Button", 0, place); break;
        case 1: new CGhostEdit(nullptr, 0, L"EDIT", L"Text", 0, place); break;
        case 2: new CGhostCheckBox(nullptr, 0, L"BUTTON", L"Check", 0, place); break;
        default: new CGhostSlider(nullptr, 0, L"T", 0, 100, place); break;
        }
    }
}

void ScreenOfControls(benchmark::State& state) {
    Start();
    CGhostManager& manager = CGhostManager::Get();
    MakeControls(300);
    std::vector<uint32_t> pixels(size_t{kWide} * kHigh);
    std::vector<GHOSTMANAGER_WINDOW*> windows;
    manager.ForEachWindow([&](const GHOSTMANAGER_WINDOW& window) {
        windows.push_back(const_cast<GHOSTMANAGER_WINDOW*>(&window));
    });
    for (auto _ : state) {
        for (GHOSTMANAGER_WINDOW* const window : windows) {
            window->dirty = true;
        }
        manager.Tick(16667);
        manager.SetCompositeBuffer(pixels.data(), kWide, kHigh, kWide);
        manager.CompositeAll();
    }
    manager.SetCompositeBuffer(nullptr, 0, 0, 0);
    manager.Reset();
}

void IdleTick(benchmark::State& state) {
    Start();
    MakeControls(300);
    CGhostManager::Get().Tick(0);
    for (auto _ : state) {
        CGhostManager::Get().Tick(1);
    }
    CGhostManager::Get().Reset();
}

BENCHMARK(TableFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(ScreenOfControls)->Unit(benchmark::kMillisecond);
BENCHMARK(IdleTick)->Unit(benchmark::kMicrosecond);

} // namespace
