// The document: declaration version "1.0", the root `Settings`, one child for each setting in list
// order. The child's name is the type ("int", "int2", "string", "bool", "float"), its attributes are
// `name`, `value` and, for "int2", `value2`. Numbers are written as "%d", floats as "%f" with a point
// in every locale, booleans as "true" and "false", texts as UTF-8.

#include "base/files.h"
#include "base/text.h"

#include "settings/settings.h"
#include "settings/store/settings_private.h"
#include <tinyxml.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr const char* kSettingsFile = ".\\config.xml";
constexpr const char* kRootName = "Settings";
constexpr std::array<const char*, 5> kTypeNames = {"int", "int2", "string", "bool", "float"};

const char* TypeName(const Setting& setting) {
    return kTypeNames[static_cast<size_t>(setting.type.load(std::memory_order_relaxed))];
}

// What the conversions skip before a number: white space and a plus sign.
std::string_view NumberText(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t\n\v\f\r");
    text.remove_prefix(begin == text.npos ? text.size() : begin);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

// The number in base 10 that the text begins with, at the end of the range when it lies beyond; false
// when it begins with none.
bool ParseInt(std::string_view text, int32_t& value) {
    text = NumberText(text);
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 10);
    if (result.ec == std::errc::result_out_of_range) {
        value = text.starts_with('-') ? std::numeric_limits<int32_t>::min()
                                      : std::numeric_limits<int32_t>::max();
        return true;
    }
    return result.ec == std::errc();
}

// False when the text begins with no number, or with one that no finite float holds.
bool ParseFloat(std::string_view text, float& value) {
    text = NumberText(text);
    double wide = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), wide);
    if (result.ec != std::errc() || !(std::abs(wide) <= std::numeric_limits<float>::max())) {
        return false;
    }
    value = static_cast<float>(wide);
    return true;
}

std::string FloatText(float value) {
    std::array<char, 64> text{}; // The greatest float has 39 digits before the point.
    const auto result = std::to_chars(text.data(), text.data() + text.size(),
                                      static_cast<double>(value), std::chars_format::fixed, 6);
    return {text.data(), result.ptr};
}

constexpr std::string_view kHexReference = "&#x";
constexpr std::string_view kAmpersand = "&#x26;";

// The library as first published writes "&#x" as it stands, for the sake of references made by hand;
// some distributions repair that.
bool LibraryKeepsReferences() {
    std::string written;
    TiXmlBase::EncodeString(std::string(kAmpersand), &written);
    return written == kAmpersand;
}

// A text as the document can carry it: characters that XML has no way to write become U+FFFD, and an
// ampersand that the library would not write as a reference is made one here.
std::string DocumentText(std::wstring_view wide) {
    static const bool kKeepsReferences = LibraryKeepsReferences();
    std::wstring clean(wide);
    for (wchar_t& c : clean) {
        if (c == L'\0' || c == 0xFFFE || c == 0xFFFF) {
            c = 0xFFFD;
        }
    }
    std::string text = Utf8FromWide(clean);
    size_t at = kKeepsReferences ? text.find(kHexReference) : text.npos;
    while (at != text.npos) {
        text.replace(at, 1, kAmpersand);
        at = text.find(kHexReference, at + kAmpersand.size());
    }
    return text;
}

// Owned by the document from the moment that it is linked.
TiXmlElement* AddElement(TiXmlNode& parent, const char* name) {
    return parent.LinkEndChild(new TiXmlElement(name))->ToElement();
}

bool Complain(std::string& reason, const char* what) {
    reason = what;
    return false;
}

enum class FileState { kMissing, kSettings, kDamaged };

// Looks at the file as it stands on the disk. `error` names what keeps it from being settings.
FileState ReadSettingsFile(const fs::path& path, std::vector<uint8_t>& bytes, std::string& error) {
    std::error_code code;
    const fs::file_status status = fs::status(path, code);
    if (status.type() == fs::file_type::not_found) {
        return FileState::kMissing;
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        error = path.string() + ": is not a regular file";
        return FileState::kDamaged;
    }
    if (!ReadFile(path, bytes, error, kSettingsDocumentLimit)) {
        return FileState::kDamaged;
    }
    std::vector<SETTING_ENTRY> entries;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::string reason;
    if (!ReadSettingsDocument(text, entries, reason)) {
        error = path.string() + ": is not a settings file: " + reason;
        return FileState::kDamaged;
    }
    return FileState::kSettings;
}

} // namespace

bool ReadSettingsDocument(std::string_view text, std::vector<SETTING_ENTRY>& entries,
                          std::string& reason) {
    entries.clear();
    if (text.size() > kSettingsDocumentLimit) {
        return Complain(reason, "the document is too long");
    }
    if (!CheckXml(text, reason)) {
        return false;
    }
    TiXmlDocument document;
    document.Parse(std::string(text).c_str(), nullptr, TIXML_ENCODING_UTF8);
    const TiXmlElement* root = document.RootElement();
    if (document.Error() || root == nullptr) {
        return Complain(reason, document.ErrorDesc());
    }
    if (root->ValueStr() != kRootName) {
        return Complain(reason, "the root element is not Settings");
    }
    for (const TiXmlElement* child = root->FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
        const std::string* const name = child->Attribute(std::string("name"));
        const std::string* const value = child->Attribute(std::string("value"));
        const std::string* const value2 = child->Attribute(std::string("value2"));
        if (name == nullptr || value == nullptr) {
            continue;
        }
        SETTING_ENTRY& entry = entries.emplace_back();
        entry.type = child->ValueStr();
        entry.name = *name;
        entry.value = *value;
        if (value2 != nullptr) {
            entry.value2 = *value2;
        }
    }
    return true;
}

bool SettingsStore::Load(const uint8_t* bytes, size_t size) {
    std::string reason;
    return Load(bytes, size, reason);
}

bool SettingsStore::Load(const uint8_t* bytes, size_t size, std::string& reason) {
    std::vector<SETTING_ENTRY> entries;
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    if (!ReadSettingsDocument(text, entries, reason)) {
        return false;
    }
    for (const SETTING_ENTRY& entry : entries) {
        Setting* setting = FindMutable(WideFromUtf8(entry.name));
        if (setting != nullptr && entry.type == TypeName(*setting)) {
            Apply(*setting, entry.value, entry.value2 ? &*entry.value2 : nullptr);
        }
    }
    return true;
}

void SettingsStore::Apply(Setting& setting, const std::string& value, const std::string* value2) {
    int32_t number = 0;
    float real = 0.0f;
    switch (setting.type.load(std::memory_order_relaxed)) {
    case SettingType::kInt:
        if (ParseInt(value, number)) {
            setting.intValue.store(number, std::memory_order_relaxed);
        }
        break;
    case SettingType::kInt2:
        if (ParseInt(value, number)) {
            setting.intValue.store(number, std::memory_order_relaxed);
        }
        if (value2 != nullptr && ParseInt(*value2, number)) {
            setting.intValue2.store(number, std::memory_order_relaxed);
        }
        break;
    case SettingType::kString: StoreString(setting, WideFromUtf8(value)); break;
    case SettingType::kBool:
        setting.boolValue.store(value == "true" || value == "1", std::memory_order_relaxed);
        break;
    case SettingType::kFloat:
        if (ParseFloat(value, real)) {
            setting.floatValue.store(real, std::memory_order_relaxed);
        }
        break;
    }
}

std::vector<uint8_t> SettingsStore::Save() const {
    TiXmlDocument document;
    document.LinkEndChild(new TiXmlDeclaration("1.0", "", ""));
    TiXmlElement* const root = AddElement(document, kRootName);
    for (const Setting* setting = First(); setting != nullptr; setting = setting->next.get()) {
        TiXmlElement* const element = AddElement(*root, TypeName(*setting));
        element->SetAttribute("name", DocumentText(setting->name));
        const int32_t number = setting->intValue.load(std::memory_order_relaxed);
        switch (setting->type.load(std::memory_order_relaxed)) {
        case SettingType::kInt: element->SetAttribute("value", std::to_string(number)); break;
        case SettingType::kInt2:
            element->SetAttribute("value", std::to_string(number));
            element->SetAttribute(
                "value2", std::to_string(setting->intValue2.load(std::memory_order_relaxed)));
            break;
        case SettingType::kString:
            element->SetAttribute("value", DocumentText(ReadString(*setting)));
            break;
        case SettingType::kBool:
            element->SetAttribute(
                "value", setting->boolValue.load(std::memory_order_relaxed) ? "true" : "false");
            break;
        case SettingType::kFloat:
            element->SetAttribute("value",
                                  FloatText(setting->floatValue.load(std::memory_order_relaxed)));
            break;
        }
    }
    TiXmlPrinter printer;
    document.Accept(&printer);
    const std::string& text = printer.Str();
    return {text.begin(), text.end()};
}

bool LoadSettingsFile(SettingsStore& store, std::string& error) {
    error.clear();
    std::vector<uint8_t> bytes;
    return ReadSettingsFile(ResolvePath(kSettingsFile), bytes, error) == FileState::kSettings &&
           store.Load(bytes.data(), bytes.size());
}

namespace {

// A name beside the settings file that nothing has.
fs::path FreeKeptName(const fs::path& path) {
    fs::path kept = path;
    kept += ".damaged";
    std::error_code code;
    for (int number = 2;
         fs::symlink_status(kept, code).type() != fs::file_type::not_found && number < 10000;
         ++number) {
        kept = path;
        kept += ".damaged-" + std::to_string(number);
    }
    return kept;
}

// Copies a damaged file, so that the settings file, which may also mark the home folder, is there at
// every moment. What is no file (a folder, a pipe) cannot be copied and is moved out of the way.
bool KeepDamaged(const fs::path& path, std::string& error) {
    const fs::path kept = FreeKeptName(path);
    std::error_code code;
    if (fs::is_regular_file(path, code)) {
        fs::copy_file(path, kept, code);
    } else {
        fs::rename(path, kept, code);
    }
    if (code) {
        error = path.string() + ": cannot be kept as " + kept.filename().string() + ": " +
                code.message();
    }
    return !code;
}

} // namespace

bool SaveSettingsFile(const SettingsStore& store, std::string& error) {
    const fs::path path = ResolvePath(kSettingsFile);
    std::vector<uint8_t> bytes;
    if (ReadSettingsFile(path, bytes, error) == FileState::kDamaged && !KeepDamaged(path, error)) {
        return false;
    }
    error.clear();
    return WriteFile(path, store.Save(), error);
}
