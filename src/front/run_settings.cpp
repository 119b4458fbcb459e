#include "front/run_settings.h"

#include "base/text.h"
#include "settings/settings.h"

#include <charconv>
#include <cmath>
#include <variant>
#include <vector>

namespace {

using Value = std::variant<int32_t, bool, float, std::wstring>;

struct OVERRIDE {
    std::wstring name;
    Value before;
    Value during;
};

std::vector<OVERRIDE>& Overrides() {
    static std::vector<OVERRIDE> overrides;
    return overrides;
}

template <typename Number>
bool ReadNumber(const std::string& text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, number);
    return stop == end && code == std::errc() && std::isfinite(static_cast<double>(number));
}

bool ReadValue(SettingType type, const std::string& text, Value& value) {
    int32_t number = 0;
    float real = 0.0f;
    switch (type) {
    case SettingType::kInt: value = number; return ReadNumber(text, std::get<int32_t>(value));
    case SettingType::kBool:
        value = text == "true" || text == "1";
        return text == "true" || text == "1" || text == "false" || text == "0";
    case SettingType::kFloat: value = real; return ReadNumber(text, std::get<float>(value));
    case SettingType::kString: value = WideFromUtf8(text); return true;
    case SettingType::kInt2: break; // bindings have a screen of their own
    }
    return false;
}

Value Read(const SettingsStore& store, const std::wstring& name, SettingType type) {
    switch (type) {
    case SettingType::kBool: return store.GetBool(name);
    case SettingType::kFloat: return store.GetFloat(name);
    case SettingType::kString: return store.GetString(name);
    default: return store.GetInt(name);
    }
}

void Write(SettingsStore& store, const std::wstring& name, const Value& value) {
    if (const auto* number = std::get_if<int32_t>(&value)) {
        store.SetInt(name, *number);
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        store.SetBool(name, *flag);
    } else if (const auto* real = std::get_if<float>(&value)) {
        store.SetFloat(name, *real);
    } else {
        store.SetString(name, std::get<std::wstring>(value));
    }
}

// Into a store with the program's settings, which may be the program's own.
void WriteOldValues(SettingsStore& store) {
    std::vector<OVERRIDE>& overrides = Overrides();
    for (auto change = overrides.rbegin(); change != overrides.rend(); ++change) {
        const Setting* const setting = store.Find(change->name);
        if (setting != nullptr && Read(store, change->name, setting->type) == change->during) {
            Write(store, change->name, change->before);
        }
    }
}

} // namespace

RunSetting SetForThisRun(const std::string& name, const std::string& value) {
    const Setting* const setting = Settings().Find(WideFromUtf8(name));
    if (setting == nullptr) {
        return RunSetting::kUnknown;
    }
    const SettingType type = setting->type;
    Value during;
    if (!ReadValue(type, value, during)) {
        return RunSetting::kNoValue;
    }
    Overrides().push_back({setting->name, Read(Settings(), setting->name, type), during});
    Write(Settings(), setting->name, during);
    return RunSetting::kSet;
}

std::string RunSettingValues(const std::string& name) {
    const Setting* const setting = Settings().Find(WideFromUtf8(name));
    if (setting == nullptr) {
        return "no setting";
    }
    switch (setting->type) {
    case SettingType::kInt: return "a whole number";
    case SettingType::kBool: return "true or false";
    case SettingType::kFloat: return "a number";
    case SettingType::kString: return "a text";
    case SettingType::kInt2: break;
    }
    return "a key, which the options screen sets";
}

bool SaveWithoutRunSettings(std::string& error) {
    if (Overrides().empty()) {
        return SaveSettingsFile(Settings(), error);
    }
    // A copy, since running games read the settings all the time.
    SettingsStore copy;
    RegisterDefaultSettings(copy);
    const std::vector<uint8_t> document = Settings().Save();
    if (!copy.Load(document.data(), document.size(), error)) {
        return false;
    }
    WriteOldValues(copy);
    return SaveSettingsFile(copy, error);
}

void RestoreRunSettings() {
    WriteOldValues(Settings());
    Overrides().clear();
}
