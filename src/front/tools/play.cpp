#include "front/tools/play.h"

#include "base/audio_rate.h"
#include "front/demos.h"
#include "front/tools/commands.h"
#include "front/tools/run_settings.h"
#include "host/machine_list.h"
#include "library/convert.h"
#include "library/game_source.h"

#include <cstring>

namespace {

constexpr std::string_view kDemoPrefix = "demo:";

// One NAME=VALUE: a machine option, the board of an arcade image, or a setting.
int ApplySetting(const std::string& text, OPENED_GAME& opened, std::string& error) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) {
        error = "--set " + text + ": is not NAME=VALUE";
        return kExitUsage;
    }
    const std::string name = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    std::string reason;
    if (SetMachineOption(opened.game.Header().system, name, value, opened.options, reason)) {
        return kExitDone;
    }
    if (reason.empty()) {
        switch (SetForThisRun(name, value)) {
        case RunSetting::kSet: return kExitDone;
        case RunSetting::kUnknown: reason = "no such option or setting"; break;
        case RunSetting::kNoValue: reason = "is not a value of that setting"; break;
        }
    }
    error = "--set " + text + ": " + reason;
    return kExitUsage;
}

bool OpenBios(const std::string& path, const MACHINE_FACTS* system, OPENED_GAME& opened,
              std::string& error) {
    std::string title;
    opened.hasBios = OpenGame(path, system, opened.bios, title, error);
    return opened.hasBios;
}

std::string RegionsHelp() {
    std::string help;
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        help += "  " + std::string(machine.name) + ":";
        for (const std::string_view region : machine.regions) {
            help += " " + std::string(region);
        }
        help += "\n";
    }
    return help;
}

} // namespace

bool OpenDemo(const std::string& name, OPENED_GAME& opened) {
    for (const DEMO& demo : Demos()) {
        if (demo.name != name) {
            continue;
        }
        MACHINE_RECORD record{};
        if (demo.system == kSystemArcade) {
            constexpr uint32_t kJoystickBoard = 3;
            ARC_RECORD arcade{};
            arcade.board = kJoystickBoard;
            std::memcpy(record.bytes, &arcade, sizeof arcade);
        } else if (demo.system == kSystemMasterSystem) {
            constexpr uint8_t kFmFeature = 2;
            SMS_RECORD sms{};
            sms.features = kFmFeature;
            sms.input1 = 1;
            sms.input2 = 1;
            sms.board = 1;
            sms.consoles = 63;
            std::memcpy(record.bytes, &sms, sizeof sms);
        }
        const bool built = BuildKnownGame(demo.system, demo.title, demo.image, record, opened.game);
        opened.game.selectedName = 0;
        opened.title = demo.title;
        return built;
    }
    return false;
}

int OpenForPlay(const PLAY_OPTIONS& options, OPENED_GAME& opened, std::string& error) {
    const MACHINE_FACTS* system =
        options.machine.empty() ? nullptr : FindMachineFacts(std::string_view(options.machine));
    if (options.game.starts_with(kDemoPrefix)) {
        if (!OpenDemo(options.game.substr(kDemoPrefix.size()), opened)) {
            error = options.game + ": no such demo; play --help lists them";
            return kExitFailed;
        }
    } else if (!OpenGame(options.game, system, opened.game, opened.title, error)) {
        return kExitFailed;
    }
    const uint16_t number = opened.game.Header().system;
    if (!options.bios.empty() && !OpenBios(options.bios, FindMachineFacts(number), opened, error)) {
        return kExitFailed;
    }
    opened.options = DefaultMachineOptions(opened.game);
    for (const std::string& setting : options.settings) {
        if (const int code = ApplySetting(setting, opened, error); code != kExitDone) {
            return code;
        }
    }
    TakeMachineSettings(number, opened.options);
    if (EmuFindMachine(number) == nullptr) {
        const MACHINE_FACTS* entry = FindMachineFacts(number);
        error = options.game + ": is a game of the " +
                (entry != nullptr ? entry->name : "system " + std::to_string(number)) +
                ", and that machine is not built in";
        return kExitFailed;
    }
    return kExitDone;
}

int PlayCommand(const PLAY_OPTIONS& options) {
    OPENED_GAME opened;
    std::string error;
    if (const int code = OpenForPlay(options, opened, error); code != kExitDone) {
        Complain(error);
        return code;
    }
    ApplyAudioRate();
    return options.headless ? PlayHeadless(options, opened) : PlayInWindow(options, opened);
}

std::string PlayHelp() {
    std::string help = "Machine options for --set:\n" + MachineOptionsHelp() +
                       "Any setting of config.xml can be set as well, for this run.\n"
                       "Regions for --dump:\n" +
                       RegionsHelp() + "Games of our own, for GAME:\n";
    for (const DEMO& demo : Demos()) {
        help += "  demo:" + std::string(demo.name) + "  " + demo.title + "\n";
    }
    return help;
}
