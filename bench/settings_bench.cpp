// Lookup by name, which every machine does for every action whenever it polls its controllers.
#include "base/text.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::wstring_view kAction = L"MEGADRIVE P1 BUTTONA";

void Prepare() {
    RegisterDefaultSettings(Settings());
    InputClearAll();
}

// The list without its index, for comparison.
const Setting* FindByWalk(const SettingsStore& store, std::wstring_view prefix,
                          std::wstring_view name) {
    const std::wstring lowered = LowerAscii(std::wstring(prefix) + std::wstring(name));
    const Setting* setting = store.First();
    while (setting != nullptr && setting->name != lowered) {
        setting = setting->next.get();
    }
    return setting;
}

void InputIsDownOneAction(benchmark::State& state) {
    Prepare();
    std::wstring_view name = kAction;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(name);
        benchmark::DoNotOptimize(InputIsDown(kApplicationKey, name));
    }
}
BENCHMARK(InputIsDownOneAction);

void InputIsDownEveryAction(benchmark::State& state) {
    Prepare();
    for ([[maybe_unused]] auto _ : state) {
        for (const INPUT_ACTION& action : InputActions()) {
            benchmark::DoNotOptimize(InputIsDown(kApplicationKey, action.name));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(InputActions().size()));
}
BENCHMARK(InputIsDownEveryAction);

void InputIsDownRefused(benchmark::State& state) {
    Prepare();
    InputSetActiveKey(1);
    std::wstring_view name = kAction;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(name);
        benchmark::DoNotOptimize(InputIsDown(2, name));
    }
}
BENCHMARK(InputIsDownRefused);

void FindByIndex(benchmark::State& state) {
    Prepare();
    constexpr SettingPrefix kPrefix(L"INPUT ");
    std::wstring_view name = kAction;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(name);
        benchmark::DoNotOptimize(Settings().Find(kPrefix, name));
    }
}
BENCHMARK(FindByIndex);

void FindByPlainWalk(benchmark::State& state) {
    Prepare();
    std::wstring_view name = kAction;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(name);
        benchmark::DoNotOptimize(FindByWalk(Settings(), L"INPUT ", name));
    }
}
BENCHMARK(FindByPlainWalk);

void GetInt(benchmark::State& state) {
    Prepare();
    std::wstring_view name = L"emu_fastforward";
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(name);
        benchmark::DoNotOptimize(Settings().GetInt(name));
    }
}
BENCHMARK(GetInt);

void BindingIsDownKey(benchmark::State& state) {
    Prepare();
    uint32_t binding = 29;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(binding);
        benchmark::DoNotOptimize(BindingIsDown(binding, false));
    }
}
BENCHMARK(BindingIsDownKey);

void SaveDocument(benchmark::State& state) {
    Prepare();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(Settings().Save());
    }
}
BENCHMARK(SaveDocument);

void LoadDocument(benchmark::State& state) {
    Prepare();
    const std::vector<uint8_t> document = Settings().Save();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(Settings().Load(document.data(), document.size()));
    }
}
BENCHMARK(LoadDocument);

} // namespace
