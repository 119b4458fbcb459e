#include "front/tools/picture_options.h"

#include "facts/machine_facts.h"
#include "front/run_settings.h"

#include <CLI/CLI.hpp>

#include <array>

namespace {

constexpr size_t kEdges = 4;
constexpr std::array<const char*, kEdges> kEdgeNames = {"left", "top", "right", "bottom"};
constexpr uint32_t kMostCut = 64; // dots of an edge

void Set(const std::string& name, const std::string& value) {
    static_cast<void>(SetForThisRun(name, value)); // both are known to be right
}

std::string AspectValue(const std::string& name) {
    if (name == "4:3") {
        return "1";
    }
    return name == "square" ? "2" : "0";
}

} // namespace

void AddPictureOptions(CLI::App& command, PICTURE_OPTIONS& options) {
    command
        .add_option("--scale", options.scale,
                    "The picture in whole multiples of its rows, or as large as it fits")
        ->check(CLI::IsMember({"whole", "fit"}));
    command.add_option("--aspect", options.aspect, "The shape of the picture")
        ->check(CLI::IsMember({"machine", "4:3", "square"}));
    command
        .add_option("--overscan", options.overscan,
                    "Dots that are cut off at the edges, each up to 64")
        ->type_name("LEFT,TOP,RIGHT,BOTTOM")
        ->delimiter(',')
        ->expected(kEdges)
        ->check(CLI::Range(0U, kMostCut));
    command.add_option("--crt", options.crt, "The strength of the CRT filter, 0 to 100")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 100));
}

void ApplyPictureOptions(const PICTURE_OPTIONS& options, uint16_t system) {
    if (!options.scale.empty()) {
        const std::string whole = options.scale == "whole" ? "true" : "false";
        Set("video_integer_window", whole);
        Set("video_integer_full", whole);
    }
    if (!options.aspect.empty()) {
        Set("video_aspect", AspectValue(options.aspect));
    }
    if (options.crt) {
        Set("video_crt", std::to_string(*options.crt / 100) + "." +
                             std::to_string(*options.crt % 100 / 10) +
                             std::to_string(*options.crt % 10));
    }
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    for (size_t edge = 0; facts != nullptr && edge < options.overscan.size(); ++edge) {
        Set(std::string(facts->folder) + "_overscan_" + kEdgeNames[edge],
            std::to_string(options.overscan[edge]));
    }
}
