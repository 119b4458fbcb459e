#include "machines/machine_options.h"

#include "facts/mega_drive_facts.h"
#include "facts/sms_facts.h"
#include "formats/game_file.h"
#include "settings/settings.h"

#include <cstddef>
#include <cstring>

namespace {

std::string ValueWords(const MACHINE_OPTION& option) {
    std::string words;
    for (const OPTION_VALUE& value : option.values) {
        words += words.empty() ? "" : "|";
        words += value.word;
    }
    return words;
}

std::span<const MACHINE_OPTION> OptionsOf(uint16_t system) {
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    return facts != nullptr ? facts->options : std::span<const MACHINE_OPTION>();
}

void PutGain(OptionBlock& options, size_t at, const wchar_t* setting) {
    const float gain = Settings().GetFloat(setting);
    std::memcpy(&options[at], &gain, sizeof gain);
}

// A Master System game's record names the FM chip, the glasses and the devices.
void TakeSmsRecord(const CGameFile& game, OptionBlock& block) {
    MACHINE_RECORD record{};
    SMS_RECORD sms{};
    if (!game.SelectedMachineRecord(record)) {
        return;
    }
    std::memcpy(&sms, record.bytes, sizeof sms);
    if (std::memcmp(sms.tag, "SMS0", sizeof sms.tag) != 0) {
        return;
    }
    SMS_OPTIONS options{};
    std::memcpy(&options, block.data(), sizeof options);
    options.fmChip = (sms.features & kSmsFeatureFm) != 0 ? 1 : 0;
    options.glasses = (sms.features & kSmsFeatureGlasses) != 0 ? 1 : 0;
    options.devices[0] = static_cast<uint8_t>(sms.input1);
    options.devices[1] = static_cast<uint8_t>(sms.input2);
    std::memcpy(block.data(), &options, sizeof options);
}

} // namespace

void TakeMachineSettings(uint16_t system, OptionBlock& options) {
    if (system == kSystemMegaDrive) {
        PutGain(options, offsetof(MD_OPTIONS, ymVolume), L"megadrive_ymvolume");
        PutGain(options, offsetof(MD_OPTIONS, psgVolume), L"megadrive_psgvolume");
    }
}

OptionBlock DefaultMachineOptions(const CGameFile& game) {
    const uint16_t system = game.Header().system;
    OptionBlock options{};
    for (const MACHINE_OPTION& option : OptionsOf(system)) {
        options[option.offset] = option.initial;
    }
    TakeMachineSettings(system, options);
    if (system == kSystemMasterSystem) {
        TakeSmsRecord(game, options);
    }
    return options;
}

bool SetMachineOption(uint16_t system, std::string_view name, std::string_view value,
                      OptionBlock& options, std::string& error) {
    error.clear();
    for (const MACHINE_OPTION& option : OptionsOf(system)) {
        if (option.name != name) {
            continue;
        }
        for (const OPTION_VALUE& known : option.values) {
            if (known.word == value) {
                options[option.offset] = known.byte;
                return true;
            }
        }
        error = std::string(name) + " is one of " + ValueWords(option);
        return false;
    }
    return false;
}

bool PortTakesPointer(uint16_t system, const OptionBlock& options, size_t player) {
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    if (facts == nullptr || player >= facts->pointers.size()) {
        return false;
    }
    const POINTER_PORT& port = facts->pointers[player];
    return options[port.offset] == port.byte;
}

std::string MachineOptionsHelp() {
    std::string help;
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        for (const MACHINE_OPTION& option : machine.options) {
            help += "  " + std::string(machine.name) + ": " + std::string(option.name) + "=" +
                    ValueWords(option) + "\n";
        }
    }
    return help;
}
