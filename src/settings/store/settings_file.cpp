// The document: declaration version "1.0", the root `Settings`, one child for each setting in list
// order. The child's name is the type ("int", "int2", "string", "bool", "float"), its attributes are
// `name`, `value` and, for "int2", `value2`. Numbers are written as "%d", floats as "%f" with a point
// in every locale, booleans as "true" and "false", texts as UTF-8. A child is a line of its own, four
// spaces in; a value that contains a double quote is in single quotes.
//
// A setting may have a reader of words (`SetWordReader`); its values are then numbers or words. What the file says in
// words is written again as it was, until the value changes.
//
// A file edited by hand may be invalid XML. Everything before the first error is still read.

#include "base/files.h"
#include "base/text.h"
#include "settings/settings.h"
#include "settings/store/settings_private.h"

#include <pugixml.hpp>

#include <algorithm>
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

// The conversions skip white space and a plus sign before a number.
std::string_view NumberText(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t\n\v\f\r");
    text.remove_prefix(begin == text.npos ? text.size() : begin);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

// Whether nothing but a decimal number is there.
bool IsNumber(std::string_view text) {
    text = NumberText(text);
    if (text.starts_with('-')) {
        text.remove_prefix(1);
    }
    const size_t end = text.find_last_not_of(" \t\n\v\f\r");
    return end != text.npos && text.find_first_not_of("0123456789") > end;
}

// The decimal number that the text begins with, clamped to the range; false if it begins with none.
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

// False if the text does not begin with a number, or with one too large for a finite float.
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

// Text as XML can hold it: characters that XML cannot represent become U+FFFD.
std::string DocumentText(std::wstring_view wide) {
    std::wstring clean(wide);
    for (wchar_t& c : clean) {
        if (c == L'\0' || c == 0xFFFE || c == 0xFFFF) {
            c = 0xFFFD;
        }
    }
    return Utf8FromWide(clean);
}

void AppendEscaped(std::string& out, char c) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    switch (c) {
    case '&': out += "&amp;"; break;
    case '<': out += "&lt;"; break;
    case '>': out += "&gt;"; break;
    case '"': out += "&quot;"; break;
    case '\'': out += "&apos;"; break;
    default:
        if (const auto byte = static_cast<uint8_t>(c); byte < ' ') {
            out.append("&#x").append(1, kDigits[byte >> 4u]).append(1, kDigits[byte & 15u]) += ';';
        } else {
            out += c;
        }
    }
}

void AppendAttribute(std::string& out, std::string_view name, std::string_view value) {
    const char quote = value.find('"') == value.npos ? '"' : '\'';
    out.append(" ").append(name).append("=").append(1, quote);
    for (const char c : value) {
        AppendEscaped(out, c);
    }
    out += quote;
}

// Parses the text and returns the error that stopped the parser, if any. Removes an element whose tag
// was not read to its end.
pugi::xml_parse_result Parse(std::string_view text, pugi::xml_document& document) {
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_escapes, pugi::encoding_utf8);
    if (result.status == pugi::status_bad_start_element ||
        result.status == pugi::status_bad_attribute) {
        pugi::xml_node last = document;
        while (last.last_child()) {
            last = last.last_child();
        }
        last.parent().remove_child(last);
    }
    return result;
}

std::string WhatStopped(std::string_view text, const pugi::xml_parse_result& result) {
    const auto offset = std::clamp<std::ptrdiff_t>(result.offset, 0, std::ssize(text));
    const auto line = std::count(text.begin(), text.begin() + offset, '\n') + 1;
    std::string what = result.description();
    if (!what.empty()) {
        what[0] = LowerAscii(what[0]);
    }
    return "line " + std::to_string(line) + ": " + what;
}

bool Complain(std::string& reason, const char* what) {
    reason = what;
    return false;
}

// The lines of places in a text, for places in rising order.
class LineCounter {
public:
    explicit LineCounter(std::string_view document)
        : text(document) {}

    size_t LineOf(std::ptrdiff_t offset) {
        const auto end =
            static_cast<size_t>(std::clamp<std::ptrdiff_t>(offset, 0, std::ssize(text)));
        for (; at < end; ++at) {
            line += text[at] == '\n' ? size_t{1} : size_t{0};
        }
        return line;
    }

private:
    std::string_view text;
    size_t at = 0;
    size_t line = 1;
};

// As a rule there is one root; what a second one holds is not lost.
void AddEntries(pugi::xml_node root, LineCounter& lines, std::vector<SETTING_ENTRY>& entries) {
    for (const pugi::xml_node child : root.children()) {
        const pugi::xml_attribute name = child.attribute("name");
        const pugi::xml_attribute value = child.attribute("value");
        const pugi::xml_attribute value2 = child.attribute("value2");
        if (!name || !value) {
            continue;
        }
        SETTING_ENTRY& entry = entries.emplace_back();
        entry.type = child.name();
        entry.name = name.value();
        entry.value = value.value();
        if (value2) {
            entry.value2 = value2.value();
        }
        entry.line = lines.LineOf(child.offset_debug());
    }
}

std::string UnknownWords(const SETTING_ENTRY& entry, const std::string& text) {
    return "line " + std::to_string(entry.line) + ": \"" + text + "\" of \"" + entry.name +
           "\" is no key, button or number; it stays in the file and does nothing";
}

// A value as the file has it: the words that were read, while they still say it.
std::string NumberOrWords(const Setting& setting, size_t which) {
    const int32_t value =
        (which == 0 ? setting.intValue : setting.intValue2).load(std::memory_order_relaxed);
    const std::optional<Setting::WORDS>& words = setting.words[which];
    return words && words->value == value ? words->text : std::to_string(value);
}

enum class FileState { kMissing, kSettings, kPartlySettings, kDamaged };

// Reads the file from the disk. `error` says why it cannot be used as settings.
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
    if (!reason.empty()) {
        error = path.string() + ": is read only in part: " + reason;
        return FileState::kPartlySettings;
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
    reason.clear();
    pugi::xml_document document;
    const pugi::xml_parse_result result = Parse(text, document);
    if (!result) {
        reason = WhatStopped(text, result);
    } else if (const size_t zero = text.find('\0'); zero != std::string_view::npos) {
        const auto lines =
            std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
        reason = "line " + std::to_string(lines + 1) + ": a zero byte ends the document";
    }
    LineCounter lines(text);
    for (const pugi::xml_node root : document.children()) {
        AddEntries(root, lines, entries);
    }
    return result || !entries.empty();
}

bool SettingsStore::Load(const uint8_t* bytes, size_t size) {
    std::string reason;
    return Load(bytes, size, reason);
}

bool SettingsStore::Load(const uint8_t* bytes, size_t size, std::string& reason,
                         std::vector<std::string>* unknownWords) {
    std::vector<SETTING_ENTRY> entries;
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    if (!ReadSettingsDocument(text, entries, reason)) {
        return false;
    }
    for (const SETTING_ENTRY& entry : entries) {
        Setting* setting = FindMutable(WideFromUtf8(entry.name));
        if (setting == nullptr || entry.type != TypeName(*setting)) {
            continue;
        }
        setting->inFile = true;
        if (setting->readWords == nullptr) {
            Apply(*setting, entry.value, entry.value2 ? &*entry.value2 : nullptr);
            continue;
        }
        for (size_t which = 0; which < 2; ++which) {
            const std::string* const value = which == 0     ? &entry.value
                                             : entry.value2 ? &*entry.value2
                                                            : nullptr;
            if (value != nullptr && !ApplyNumberOrWords(*setting, which, *value) &&
                unknownWords != nullptr) {
                unknownWords->push_back(UnknownWords(entry, *value));
            }
        }
    }
    return true;
}

// False for words that nothing knows.
bool SettingsStore::ApplyNumberOrWords(Setting& setting, size_t which, const std::string& text) {
    std::atomic<int32_t>& value = which == 0 ? setting.intValue : setting.intValue2;
    setting.words[which].reset();
    int32_t number = 0;
    if (IsNumber(text) && ParseInt(text, number)) {
        value.store(number, std::memory_order_relaxed);
        return true;
    }
    const std::optional<int32_t> known = setting.readWords(text);
    if (known) {
        value.store(*known, std::memory_order_relaxed);
    }
    setting.words[which] = {text, value.load(std::memory_order_relaxed)};
    return known.has_value();
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
    std::string elements;
    for (const Setting* setting = First(); setting != nullptr; setting = setting->next.get()) {
        elements.append("    <").append(TypeName(*setting));
        AppendAttribute(elements, "name", DocumentText(setting->name));
        const bool flag = setting->boolValue.load(std::memory_order_relaxed);
        const float real = setting->floatValue.load(std::memory_order_relaxed);
        switch (setting->type.load(std::memory_order_relaxed)) {
        case SettingType::kInt:
            AppendAttribute(elements, "value",
                            std::to_string(setting->intValue.load(std::memory_order_relaxed)));
            break;
        case SettingType::kInt2:
            AppendAttribute(elements, "value", NumberOrWords(*setting, 0));
            AppendAttribute(elements, "value2", NumberOrWords(*setting, 1));
            break;
        case SettingType::kString:
            AppendAttribute(elements, "value", DocumentText(ReadString(*setting)));
            break;
        case SettingType::kBool: AppendAttribute(elements, "value", flag ? "true" : "false"); break;
        case SettingType::kFloat: AppendAttribute(elements, "value", FloatText(real)); break;
        }
        elements += " />\n";
    }
    std::string text = "<?xml version=\"1.0\" ?>\n";
    const std::string root = kRootName;
    if (elements.empty()) {
        text.append("<").append(root).append(" />\n");
    } else {
        text.append("<").append(root).append(">\n").append(elements);
        text.append("</").append(root).append(">\n");
    }
    return {text.begin(), text.end()};
}

bool LoadSettingsFile(SettingsStore& store, std::string& error,
                      std::vector<std::string>* unknownWords) {
    error.clear();
    std::vector<uint8_t> bytes;
    const fs::path path = ResolvePath(kSettingsFile);
    const FileState state = ReadSettingsFile(path, bytes, error);
    std::string reason;
    std::vector<std::string> unknown;
    if ((state != FileState::kSettings && state != FileState::kPartlySettings) ||
        !store.Load(bytes.data(), bytes.size(), reason, &unknown)) {
        return false;
    }
    if (unknownWords != nullptr) {
        unknownWords->reserve(unknownWords->size() + unknown.size());
        for (const std::string& line : unknown) {
            unknownWords->push_back(path.string() + ": " + line);
        }
    }
    return true;
}

namespace {

// An unused name beside the settings file.
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

// Copies a damaged file, so that the settings file, which may also mark the home folder, exists at
// every moment. A folder or a pipe of that name cannot be copied and is moved out of the way.
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
    const FileState state = ReadSettingsFile(path, bytes, error);
    // What could not be read is not in the store and would be lost.
    const bool losesSomething = state == FileState::kDamaged || state == FileState::kPartlySettings;
    if (losesSomething && !KeepDamaged(path, error)) {
        return false;
    }
    error.clear();
    return WriteFile(path, store.Save(), error);
}
