#include "front/tools/machine_options.h"

#include "library/systems.h"

#include "formats/game_file.h"
#include "settings/settings.h"

#include <cstring>
#include <span>

namespace {

struct OPTION_VALUE {
    std::string_view name;
    uint8_t value;
};

struct MACHINE_OPTION {
    uint16_t system;
    std::string_view name;
    size_t offset; // in the option block
    std::span<const OPTION_VALUE> values;
};

constexpr OPTION_VALUE kSwitch[] = {
    {"0", 0},
    {"1", 1},
};
constexpr OPTION_VALUE kSmsConsoles[] = {
    {"sms1-pal",  1 },
    {"sms2-pal",  2 },
    {"sms1-ntsc", 4 },
    {"sms2-ntsc", 8 },
    {"japanese",  16},
    {"mark3",     32},
};
constexpr OPTION_VALUE kSmsDevices[] = {
    {"joypad",    1 },
    {"phaser",    2 },
    {"sportspad", 4 },
    {"paddle",    8 },
    {"6button",   16},
};
constexpr OPTION_VALUE kMdConsoles[] = {
    {"auto",    0},
    {"genesis", 1},
    {"japan",   2},
    {"pal",     3},
};
constexpr OPTION_VALUE kMdDevices[] = {
    {"auto",    0},
    {"none",    1},
    {"3button", 2},
    {"6button", 3},
};
constexpr OPTION_VALUE kGearModels[] = {
    {"export",   0},
    {"japanese", 1},
};

constexpr MACHINE_OPTION kOptions[] = {
    {kSystemMasterSystem, "console", 0, kSmsConsoles},
    {kSystemMasterSystem, "fm",      1, kSwitch     },
    {kSystemMasterSystem, "glasses", 2, kSwitch     },
    {kSystemMasterSystem, "port1",   3, kSmsDevices },
    {kSystemMasterSystem, "port2",   4, kSmsDevices },
    {kSystemGameGear,     "model",   0, kGearModels },
    {kSystemGameGear,     "link",    1, kSwitch     },
    {kSystemGameGear,     "full",    2, kSwitch     },
    {kSystemMegaDrive,    "console", 0, kMdConsoles },
    {kSystemMegaDrive,    "port1",   1, kMdDevices  },
    {kSystemMegaDrive,    "port2",   2, kMdDevices  },
};

std::string ValueNames(const MACHINE_OPTION& option) {
    std::string names;
    for (const OPTION_VALUE& value : option.values) {
        names += names.empty() ? "" : "|";
        names += value.name;
    }
    return names;
}

constexpr uint8_t kSms2Ntsc = 8;
constexpr uint8_t kJoypad = 1;
constexpr size_t kMdYmVolumeAt = 4;
constexpr size_t kMdPsgVolumeAt = 8;

void PutGain(OptionBlock& options, size_t at, const wchar_t* setting) {
    const float gain = Settings().GetFloat(setting);
    std::memcpy(&options[at], &gain, sizeof gain);
}

} // namespace

void TakeMachineSettings(uint16_t system, OptionBlock& options) {
    if (system == kSystemMegaDrive) {
        PutGain(options, kMdYmVolumeAt, L"megadrive_ymvolume");
        PutGain(options, kMdPsgVolumeAt, L"megadrive_psgvolume");
    }
}

OptionBlock DefaultMachineOptions(const CGameFile& game) {
    OptionBlock options{};
    TakeMachineSettings(game.Header().system, options);
    if (game.Header().system != kSystemMasterSystem) {
        return options;
    }
    options[0] = kSms2Ntsc;
    options[3] = kJoypad;
    options[4] = kJoypad;
    MACHINE_RECORD record{};
    SMS_RECORD sms{};
    if (!game.SelectedMachineRecord(record)) {
        return options;
    }
    std::memcpy(&sms, record.bytes, sizeof sms);
    if (std::memcmp(sms.tag, "SMS0", sizeof sms.tag) == 0) {
        options[1] = (sms.features & 2) != 0 ? 1 : 0;
        options[2] = (sms.features & 1) != 0 ? 1 : 0;
        options[3] = static_cast<uint8_t>(sms.input1);
        options[4] = static_cast<uint8_t>(sms.input2);
    }
    return options;
}

bool SetMachineOption(uint16_t system, std::string_view name, std::string_view value,
                      OptionBlock& options, std::string& error) {
    error.clear();
    for (const MACHINE_OPTION& option : kOptions) {
        if (option.system != system || option.name != name) {
            continue;
        }
        for (const OPTION_VALUE& known : option.values) {
            if (known.name == value) {
                options[option.offset] = known.value;
                return true;
            }
        }
        error = std::string(name) + " is one of " + ValueNames(option);
        return false;
    }
    return false;
}

std::string MachineOptionsHelp() {
    std::string help;
    for (const MACHINE_OPTION& option : kOptions) {
        const GAME_SYSTEM* system = FindGameSystem(option.system);
        help += "  " + std::string(system->name) + ": " + std::string(option.name) + "=" +
                ValueNames(option) + "\n";
    }
    return help;
}
