#include "settings/settings.h"

#include "base/text.h"

#include <mutex>

namespace {

constexpr SettingPrefix kNoPrefix{L""};

bool SameName(std::wstring_view lowered, std::wstring_view prefix, std::wstring_view name) {
    if (lowered.size() != prefix.size() + name.size()) {
        return false;
    }
    // Without an early exit the compiler vectorises the loops.
    uint32_t difference = 0;
    for (size_t i = 0; i < prefix.size(); ++i) {
        difference |=
            static_cast<uint32_t>(lowered[i]) ^ static_cast<uint32_t>(LowerAscii(prefix[i]));
    }
    const std::wstring_view rest = lowered.substr(prefix.size());
    for (size_t i = 0; i < name.size(); ++i) {
        difference |= static_cast<uint32_t>(rest[i]) ^ static_cast<uint32_t>(LowerAscii(name[i]));
    }
    return difference == 0;
}

} // namespace

// Open addressing with linear probing; at most half of the slots are used, and none is ever removed.
struct SettingsStore::Index {
    struct SLOT {
        uint64_t hash = 0;
        Setting* setting = nullptr;
    };

    std::vector<SLOT> slots = std::vector<SLOT>(512); // a power of two
    size_t used = 0;

    // Multiplied by 2^64 / golden ratio, so that every bit of the hash affects the upper bits.
    [[nodiscard]] size_t Start(uint64_t hash) const {
        return (hash * 0x9E3779B97F4A7C15 >> 32) & (slots.size() - 1);
    }
    [[nodiscard]] size_t After(size_t slot) const { return (slot + 1) & (slots.size() - 1); }

    [[nodiscard]] Setting* Find(uint64_t hash, std::wstring_view prefix,
                                std::wstring_view name) const {
        for (size_t i = Start(hash); slots[i].setting != nullptr; i = After(i)) {
            if (slots[i].hash == hash && SameName(slots[i].setting->name, prefix, name)) {
                return slots[i].setting;
            }
        }
        return nullptr;
    }

    void Add(uint64_t hash, Setting* setting) {
        if ((used + 1) * 2 > slots.size()) {
            std::vector<SLOT> before(slots.size() * 2);
            before.swap(slots);
            for (const SLOT& slot : before) {
                if (slot.setting != nullptr) {
                    Place(slot);
                }
            }
        }
        Place({hash, setting});
        ++used;
    }

private:
    void Place(const SLOT& slot) {
        size_t i = Start(slot.hash);
        while (slots[i].setting != nullptr) {
            i = After(i);
        }
        slots[i] = slot;
    }
};

SettingsStore::SettingsStore()
    : index(std::make_unique<Index>()) {}

SettingsStore::~SettingsStore() {
    // One by one: the default destructor would recurse once for each setting.
    while (head) {
        head = std::move(head->next);
    }
}

Setting& SettingsStore::Register(std::wstring_view name, SettingType type) {
    Setting* setting = FindMutable(name);
    if (setting == nullptr) {
        auto added = std::make_unique<Setting>();
        added->name = LowerAscii(name);
        added->next = std::move(head);
        head = std::move(added);
        setting = head.get();
        index->Add(SettingPrefix(setting->name).State(), setting);
    }
    setting->type.store(type, std::memory_order_relaxed);
    setting->words[0].reset();
    setting->words[1].reset();
    setting->inFile = false;
    return *setting;
}

void SettingsStore::RegisterInt(std::wstring_view name, int32_t value) {
    Register(name, SettingType::kInt).intValue.store(value, std::memory_order_relaxed);
}

void SettingsStore::RegisterInt2(std::wstring_view name, int32_t value, int32_t value2) {
    Setting& setting = Register(name, SettingType::kInt2);
    setting.intValue.store(value, std::memory_order_relaxed);
    setting.intValue2.store(value2, std::memory_order_relaxed);
}

void SettingsStore::RegisterString(std::wstring_view name, std::wstring_view value) {
    StoreString(Register(name, SettingType::kString), value);
}

void SettingsStore::RegisterBool(std::wstring_view name, bool value) {
    Register(name, SettingType::kBool).boolValue.store(value, std::memory_order_relaxed);
}

void SettingsStore::RegisterFloat(std::wstring_view name, float value) {
    Register(name, SettingType::kFloat).floatValue.store(value, std::memory_order_relaxed);
}

int32_t SettingsStore::GetInt(std::wstring_view name) const {
    const Setting* setting = Find(name);
    return setting == nullptr ? 0 : setting->intValue.load(std::memory_order_relaxed);
}

std::pair<int32_t, int32_t> SettingsStore::GetInt2(std::wstring_view name) const {
    const Setting* setting = Find(name);
    if (setting == nullptr) {
        return {0, 0};
    }
    return {setting->intValue.load(std::memory_order_relaxed),
            setting->intValue2.load(std::memory_order_relaxed)};
}

std::wstring SettingsStore::GetString(std::wstring_view name) const {
    const Setting* setting = Find(name);
    return setting == nullptr ? std::wstring() : ReadString(*setting);
}

bool SettingsStore::GetBool(std::wstring_view name) const {
    const Setting* setting = Find(name);
    return setting != nullptr && setting->boolValue.load(std::memory_order_relaxed);
}

float SettingsStore::GetFloat(std::wstring_view name) const {
    const Setting* setting = Find(name);
    return setting == nullptr ? 0.0f : setting->floatValue.load(std::memory_order_relaxed);
}

void SettingsStore::SetInt(std::wstring_view name, int32_t value) {
    if (Setting* setting = FindMutable(name)) {
        setting->intValue.store(value, std::memory_order_relaxed);
    }
}

void SettingsStore::SetInt2(std::wstring_view name, int32_t value, int32_t value2) {
    if (Setting* setting = FindMutable(name)) {
        setting->intValue.store(value, std::memory_order_relaxed);
        setting->intValue2.store(value2, std::memory_order_relaxed);
    }
}

void SettingsStore::SetString(std::wstring_view name, std::wstring_view value) {
    if (Setting* setting = FindMutable(name)) {
        StoreString(*setting, value);
    }
}

void SettingsStore::SetBool(std::wstring_view name, bool value) {
    if (Setting* setting = FindMutable(name)) {
        setting->boolValue.store(value, std::memory_order_relaxed);
    }
}

void SettingsStore::SetFloat(std::wstring_view name, float value) {
    if (Setting* setting = FindMutable(name)) {
        setting->floatValue.store(value, std::memory_order_relaxed);
    }
}

void SettingsStore::SetWordReader(std::wstring_view name,
                                  std::optional<int32_t> (*reader)(std::string_view)) {
    if (Setting* setting = FindMutable(name)) {
        setting->readWords = reader;
    }
}

const Setting* SettingsStore::Find(std::wstring_view name) const {
    return Find(kNoPrefix, name);
}

const Setting* SettingsStore::Find(std::wstring_view prefix, std::wstring_view name) const {
    return Find(SettingPrefix(prefix), name);
}

const Setting* SettingsStore::Find(const SettingPrefix& prefix, std::wstring_view name) const {
    return index->Find(SettingPrefix::Hash(prefix.State(), name), prefix.Text(), name);
}

Setting* SettingsStore::FindMutable(std::wstring_view name) {
    return index->Find(SettingPrefix::Hash(kNoPrefix.State(), name), {}, name);
}

void SettingsStore::StoreString(Setting& setting, std::wstring_view value) {
    const std::lock_guard lock(stringLock);
    setting.stringValue = value;
}

std::wstring SettingsStore::ReadString(const Setting& setting) const {
    const std::lock_guard lock(stringLock);
    return setting.stringValue;
}

SettingsStore& Settings() {
    static auto* store = new SettingsStore;
    return *store;
}
