#include "front/play.h"

#include "base/audio_rate.h"
#include "base/text.h"
#include "front/commands.h"
#include "front/demos.h"
#include "front/settings/settings.h"
#include "host/machine_list.h"
#include "library/convert.h"
#include "library/game_source.h"

#include <charconv>
#include <cstring>

namespace {

constexpr std::string_view kDemoPrefix = "demo:";

// Sets a setting of the store from text, by the type it was registered with.
bool SetSetting(const Setting& setting, const std::string& text) {
    const char* end = text.data() + text.size();
    int32_t number = 0;
    float real = 0.0f;
    switch (setting.type.load()) {
    case SettingType::kInt:
        if (std::from_chars(text.data(), end, number).ptr != end || text.empty()) {
            return false;
        }
        Settings().SetInt(setting.name, number);
        return true;
    case SettingType::kBool:
        if (text != "true" && text != "1" && text != "false" && text != "0") {
            return false;
        }
        Settings().SetBool(setting.name, text == "true" || text == "1");
        return true;
    case SettingType::kFloat:
        if (std::from_chars(text.data(), end, real).ptr != end || text.empty()) {
            return false;
        }
        Settings().SetFloat(setting.name, real);
        return true;
    case SettingType::kString: Settings().SetString(setting.name, WideFromUtf8(text)); return true;
    case SettingType::kInt2: break; // bindings have a screen of their own
    }
    return false;
}

// One NAME=VALUE: a machine option, the board of an arcade image, or a setting.
int ApplySetting(const std::string& text, OPENED_GAME& opened) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos) {
        Complain("--set " + text + ": is not NAME=VALUE");
        return kExitUsage;
    }
    const std::string name = text.substr(0, equals);
    const std::string value = text.substr(equals + 1);
    std::string error;
    if (SetMachineOption(opened.game.Header().system, name, value, opened.options, error)) {
        return kExitDone;
    }
    if (!error.empty()) {
        Complain("--set " + text + ": " + error);
        return kExitUsage;
    }
    const Setting* setting = Settings().Find(WideFromUtf8(name));
    if (setting == nullptr || !SetSetting(*setting, value)) {
        Complain("--set " + text + ": " +
                 (setting == nullptr ? "there is no such option or setting"
                                     : "is no value for that setting"));
        return kExitUsage;
    }
    return kExitDone;
}

bool OpenBios(const std::string& path, const GAME_SYSTEM* system, OPENED_GAME& opened) {
    std::string title;
    std::string error;
    if (!OpenGame(path, system, opened.bios, title, error)) {
        Complain(error);
        return false;
    }
    opened.hasBios = true;
    return true;
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

int OpenForPlay(const PLAY_OPTIONS& options, OPENED_GAME& opened) {
    const GAME_SYSTEM* system =
        options.machine.empty() ? nullptr : FindGameSystem(std::string_view(options.machine));
    if (options.game.starts_with(kDemoPrefix)) {
        if (!OpenDemo(options.game.substr(kDemoPrefix.size()), opened)) {
            Complain(options.game + ": there is no such demo; play --help lists them");
            return kExitFailed;
        }
    } else {
        std::string error;
        if (!OpenGame(options.game, system, opened.game, opened.title, error)) {
            Complain(error);
            return kExitFailed;
        }
    }
    const uint16_t number = opened.game.Header().system;
    if (!options.bios.empty() && !OpenBios(options.bios, FindGameSystem(number), opened)) {
        return kExitFailed;
    }
    opened.options = DefaultMachineOptions(opened.game);
    for (const std::string& setting : options.settings) {
        if (const int code = ApplySetting(setting, opened); code != kExitDone) {
            return code;
        }
    }
    ApplyAudioRate();
    if (EmuFindMachine(number) == nullptr) {
        const GAME_SYSTEM* entry = FindGameSystem(number);
        Complain(options.game + ": is a game of the " +
                 (entry != nullptr ? entry->name : "system " + std::to_string(number)) +
                 ", and that machine is not built in");
        return kExitFailed;
    }
    return kExitDone;
}

int PlayCommand(const PLAY_OPTIONS& options) {
    OPENED_GAME opened;
    if (const int code = OpenForPlay(options, opened); code != kExitDone) {
        return code;
    }
    if (!options.headless) {
        Complain("there is no window yet; play with --headless");
        return kExitFailed;
    }
    return PlayHeadless(options, opened);
}

std::string PlayHelp() {
    std::string help = "Machine options for --set:\n" + MachineOptionsHelp() +
                       "Any setting of config.xml can be set as well, for this run.\n"
                       "Regions for --dump: ram, vram, palette, sram; z80ram, vsram, oam where the "
                       "machine has them.\n"
                       "Games of our own, for GAME:\n";
    for (const DEMO& demo : Demos()) {
        help += "  demo:" + std::string(demo.name) + "  " + demo.title + "\n";
    }
    return help;
}
