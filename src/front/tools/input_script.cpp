#include "front/tools/input_script.h"

#include "base/files.h"
#include "base/text.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <charconv>

namespace {

// Above the last code that a fifth joystick could have, below the end of the table.
constexpr uint32_t kFirstScriptCode = 1400;

std::string_view Trim(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

bool ParseLine(std::string_view line, INPUT_EVENT& event, std::string& error) {
    const auto [end, code] = std::from_chars(line.data(), line.data() + line.size(), event.frame);
    const auto digits = static_cast<size_t>(end - line.data());
    if (code != std::errc() || digits == line.size() ||
        (line[digits] != ' ' && line[digits] != '\t')) {
        error = "does not begin with a frame number";
        return false;
    }
    const std::string_view rest = Trim(line.substr(digits));
    const size_t space = rest.find_last_of(" \t");
    const std::string_view state = space == std::string_view::npos ? rest : rest.substr(space + 1);
    if (state != "down" && state != "up") {
        error = "does not end in \"down\" or \"up\"";
        return false;
    }
    event.down = state == "down";
    const std::string_view name =
        space == std::string_view::npos ? std::string_view{} : Trim(rest.substr(0, space));
    if (!FindAction(name, event.action)) {
        error = "unknown action: \"" + std::string(name) + "\"";
        return false;
    }
    return true;
}

} // namespace

bool FindAction(std::string_view name, size_t& index) {
    const std::wstring wanted = LowerAscii(std::wstring_view(WideFromUtf8(name)));
    const auto actions = InputActions();
    for (index = 0; index < actions.size(); ++index) {
        if (LowerAscii(std::wstring_view(actions[index].name)) == wanted) {
            return true;
        }
    }
    return false;
}

bool InputScript::Parse(std::string_view text, std::string& error) {
    events.clear();
    next = 0;
    uint32_t number = 0;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
        line = Trim(line.substr(0, line.find('#')));
        if (line.empty()) {
            continue;
        }
        INPUT_EVENT event{};
        std::string reason;
        if (!ParseLine(line, event, reason)) {
            error = "line " + std::to_string(number) + ": " + reason;
            return false;
        }
        events.push_back(event);
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const INPUT_EVENT& a, const INPUT_EVENT& b) { return a.frame < b.frame; });
    return true;
}

bool InputScript::Load(const std::string& path, std::string& error) {
    std::vector<uint8_t> bytes;
    constexpr uint64_t kLongestScript = uint64_t{1} << 26;
    if (!ReadFile(path, bytes, error, kLongestScript)) {
        return false;
    }
    std::string reason;
    if (!Parse({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, reason)) {
        error = path + ": " + reason;
        return false;
    }
    return true;
}

void InputScript::BindActions(SettingsStore& store) {
    const auto actions = InputActions();
    for (size_t i = 0; i < actions.size(); ++i) {
        const uint32_t code = kFirstScriptCode + static_cast<uint32_t>(i);
        store.SetInt2(BindingSetting(actions[i]), static_cast<int32_t>(JoystickBinding(0, code)),
                      0);
    }
}

std::span<const INPUT_EVENT> InputScript::TakeDue(uint32_t frame) {
    const size_t first = next;
    while (next < events.size() && events[next].frame <= frame) {
        ++next;
    }
    return std::span(events).subspan(first, next - first);
}

std::span<const INPUT_EVENT> InputScript::TakeEarliest(uint32_t frame) {
    return next < events.size() ? TakeDue(std::min(frame, events[next].frame))
                                : std::span<const INPUT_EVENT>{};
}

void InputScript::Feed(uint32_t frame) {
    for (const INPUT_EVENT& event : TakeDue(frame)) {
        InputSetCode(kFirstScriptCode + static_cast<uint32_t>(event.action), event.down);
    }
}
