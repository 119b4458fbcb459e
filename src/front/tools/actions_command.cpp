// `ombrelune actions`: what can be pressed, as text or as JSON.

#include "facts/machine_facts.h"
#include "front/action_list.h"
#include "front/tools/commands.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

namespace {

using Json = nlohmann::ordered_json;

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text.append(text.empty() ? "" : ", ").append(word);
    }
    return text;
}

struct COLUMNS {
    size_t action = 0;
    size_t inputs = 0;
};

COLUMNS WidthsOf(const std::vector<ACTION_GROUP>& groups) {
    COLUMNS widths;
    for (const ACTION_GROUP& group : groups) {
        for (const ACTION_LINE& line : group.actions) {
            widths.action = std::max(widths.action, line.action.size());
            widths.inputs = std::max(widths.inputs, Joined(line.inputs).size());
        }
    }
    return widths;
}

// Two spaces in, two between the columns, none at the end of a line.
void PrintRow(const COLUMNS& widths, const std::string& action, const std::string& inputs,
              const std::string& controls) {
    std::string text = "  " + action;
    if (!inputs.empty() || !controls.empty()) {
        text.resize(std::max(text.size(), widths.action + 4), ' ');
        text += inputs;
    }
    if (!controls.empty()) {
        text.resize(std::max(text.size(), widths.action + widths.inputs + 6), ' ');
        text += controls;
    }
    std::printf("%s\n", text.c_str());
}

void PrintText() {
    const std::vector<ACTION_GROUP> groups = ListActions();
    const COLUMNS widths = WidthsOf(groups);
    for (const ACTION_GROUP& group : groups) {
        std::printf("%s\n", group.machine != nullptr ? group.machine->name : "Ombrelune");
        for (const ACTION_LINE& line : group.actions) {
            PrintRow(widths, line.action, Joined(line.inputs), Joined(line.controls));
        }
        std::printf("\n");
    }
    std::printf("Keys of the window, which cannot be bound\n");
    for (const WINDOW_KEY& key : ListWindowKeys()) {
        PrintRow(widths, key.key, key.does, {});
    }
}

Json JsonOf(const ACTION_GROUP& group) {
    Json actions = Json::array();
    for (const ACTION_LINE& line : group.actions) {
        Json one;
        one["action"] = line.action;
        one["inputs"] = line.inputs;
        one["controls"] = line.controls;
        actions.push_back(std::move(one));
    }
    return actions;
}

void PrintJson() {
    Json machines = Json::array();
    Json all;
    for (const ACTION_GROUP& group : ListActions()) {
        if (group.machine == nullptr) {
            all["program"] = JsonOf(group);
            continue;
        }
        Json machine;
        machine["machine"] = group.machine->shortName;
        machine["name"] = group.machine->name;
        machine["actions"] = JsonOf(group);
        machines.push_back(std::move(machine));
    }
    all["machines"] = std::move(machines);
    Json keys = Json::array();
    for (const WINDOW_KEY& key : ListWindowKeys()) {
        keys.push_back({
            {"key",  key.key },
            {"does", key.does}
        });
    }
    all["window"] = std::move(keys);
    std::printf("%s\n", all.dump(2).c_str());
}

} // namespace

int ActionsCommand(bool json) {
    json ? PrintJson() : PrintText();
    return kExitDone;
}
