#include "front/tools/inspection_options.h"

#include "facts/machine_facts.h"
#include "front/tools/number_text.h"
#include "front/tools/play.h"

#include <algorithm>

namespace {

bool CheckDump(const std::string& text, const MACHINE_FACTS& machine, std::string& error) {
    const size_t equals = text.find('=');
    const std::string_view region = std::string_view(text).substr(0, equals);
    const bool known = std::ranges::find(machine.regions, region) != machine.regions.end();
    if (known && equals != std::string::npos && equals + 1 < text.size()) {
        return true;
    }
    error = "--dump " + text + ": is not REGION=FILE; the regions of this machine are";
    for (const std::string_view name : machine.regions) {
        error += " " + std::string(name);
    }
    return false;
}

} // namespace

bool ReadPeek(std::string_view text, PEEK& peek) {
    peek = {};
    bool valid = TakeNumber(text, peek.address);
    if (valid && text.starts_with(':')) {
        text.remove_prefix(1);
        valid = TakeNumber(text, peek.length);
    }
    return valid && text.empty();
}

bool CheckInspections(const PLAY_OPTIONS& options, uint16_t system, std::string& error) {
    for (const std::string& text : options.peeks) {
        PEEK peek;
        if (!ReadPeek(text, peek)) {
            error = "--peek " + text + ": is not ADDRESS[:LENGTH]";
            return false;
        }
    }
    const MACHINE_FACTS* const machine = FindMachineFacts(system);
    return machine == nullptr || std::ranges::all_of(options.dumps, [&](const std::string& text) {
               return CheckDump(text, *machine, error);
           });
}
