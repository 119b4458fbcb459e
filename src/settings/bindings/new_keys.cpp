// Keys that came with a later program than the one that wrote the file of settings.
#include "settings/bindings.h"
#include "settings/bindings/action_notes.h"
#include "settings/settings.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace {

// The first action that no program wrote before player 2 had keys.
constexpr std::wstring_view kFirstNew = L"Pause";

const Setting* Find(const SettingsStore& store, size_t action) {
    return store.Find(kInputPrefix, InputActions()[action].name);
}

bool IsBoundTo(const Setting& setting, uint32_t binding) {
    const auto code = static_cast<int32_t>(binding);
    return setting.intValue.load(std::memory_order_relaxed) == code ||
           setting.intValue2.load(std::memory_order_relaxed) == code;
}

// Whether an action of the file that is read together with this one has the key of its first run.
bool KeyIsTaken(const SettingsStore& store, size_t action) {
    const auto owners = InputOwners();
    for (size_t other = 0; other < owners.size(); ++other) {
        const Setting* const setting = Find(store, other);
        const bool together =
            owners[other] == owners[action] || owners[other] == 0 || owners[action] == 0;
        if (other != action && together && setting != nullptr && setting->inFile &&
            IsBoundTo(*setting, InputActions()[action].defaultBinding)) {
            return true;
        }
    }
    return false;
}

void Bind(SettingsStore& store, size_t action, uint32_t binding) {
    store.SetInt2(BindingSetting(InputActions()[action]), static_cast<int32_t>(binding), 0);
}

bool IsOfSecondPlayer(size_t action) {
    return std::wstring_view(InputActions()[action].name).find(L" P2 ") != std::wstring_view::npos;
}

// Player 2 of one machine, if he has none at all and none of his keys is taken.
void GiveSecondPlayerKeys(SettingsStore& store, uint32_t owner) {
    std::vector<size_t> actions;
    actions.reserve(InputActions().size());
    for (size_t action = 0; action < InputActions().size(); ++action) {
        if (InputOwners()[action] == owner && IsOfSecondPlayer(action)) {
            actions.push_back(action);
        }
    }
    const bool free = std::ranges::all_of(actions, [&](size_t action) {
        const Setting* const setting = Find(store, action);
        return setting != nullptr && setting->intValue == 0 && setting->intValue2 == 0 &&
               !setting->words[0] && !setting->words[1] && !KeyIsTaken(store, action);
    });
    for (const size_t action : actions) {
        if (free) {
            Bind(store, action, InputActions()[action].defaultBinding);
        }
    }
}

} // namespace

void GiveNewKeys(SettingsStore& store) {
    bool hasBindings = false;
    bool older = true;
    for (size_t action = 0; action < InputActions().size(); ++action) {
        const Setting* const setting = Find(store, action);
        hasBindings |= setting != nullptr && setting->inFile;
        older &= setting == nullptr || !setting->inFile || kFirstNew != InputActions()[action].name;
    }
    if (!hasBindings || !older) {
        return;
    }
    for (size_t action = 0; action < InputActions().size(); ++action) {
        const Setting* const setting = Find(store, action);
        if (setting != nullptr && !setting->inFile && KeyIsTaken(store, action)) {
            Bind(store, action, 0);
        }
    }
    for (uint32_t owner = 1; owner < kInputOwners; ++owner) {
        GiveSecondPlayerKeys(store, owner);
    }
    RefreshActionNotes(store);
}
