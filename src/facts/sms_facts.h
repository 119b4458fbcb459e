// The Master System's row, and its options.
#pragma once

#include "facts/machine_facts.h"

#include <cstddef>
#include <cstdint>

enum SmsConsole : uint8_t {
    kSms1Pal = 1,
    kSms2Pal = 2,
    kSms1Ntsc = 4,
    kSms2Ntsc = 8, // also for 0 and every unknown number
    kSmsJapanese = 16,
    kMarkIii = 32
};
inline constexpr uint8_t kSmsEveryConsole =
    kSms1Pal | kSms2Pal | kSms1Ntsc | kSms2Ntsc | kSmsJapanese | kMarkIii;

enum class PadDevice : uint8_t {
    kJoypad = 1, // also for 0 and every unknown number
    kLightPhaser = 2,
    kSportsPad = 4,
    kPaddle = 8,
    kSixButton = 16
};
[[nodiscard]] constexpr uint8_t OptionByte(PadDevice device) {
    return static_cast<uint8_t>(device);
}
[[nodiscard]] constexpr PadDevice PadDeviceOf(uint8_t option) {
    switch (const auto device = static_cast<PadDevice>(option)) {
    case PadDevice::kLightPhaser:
    case PadDevice::kSportsPad:
    case PadDevice::kPaddle:
    case PadDevice::kSixButton: return device;
    default: return PadDevice::kJoypad;
    }
}

// The option block. All zero is a second-generation NTSC console with two joypads.
struct SMS_OPTIONS {
    uint8_t console;    // SmsConsole
    uint8_t fmChip;     // not 0: fitted
    uint8_t glasses;    // not 0: the 3D glasses, which halve the frame rate
    uint8_t devices[2]; // PadDevice of port A and B
    uint8_t reserved[251];
};
static_assert(sizeof(SMS_OPTIONS) == kMachineOptionBytes);
static_assert(offsetof(SMS_OPTIONS, devices) == 3);

inline constexpr OPTION_VALUE kSmsConsoleValues[] = {
    {"sms1-pal",  "SMS1 PAL",     kSms1Pal    },
    {"sms2-pal",  "SMS2 PAL",     kSms2Pal    },
    {"sms1-ntsc", "SMS1 NTSC",    kSms1Ntsc   },
    {"sms2-ntsc", "SMS2 NTSC",    kSms2Ntsc   },
    {"japanese",  "SMS JAPANESE", kSmsJapanese},
    {"mark3",     "MARKIII",      kMarkIii    },
};
inline constexpr OPTION_VALUE kSmsDeviceValues[] = {
    {"joypad",    "Joypad",                    OptionByte(PadDevice::kJoypad)     },
    {"phaser",    "LightPhaser",               OptionByte(PadDevice::kLightPhaser)},
    {"sportspad", "SportsPad",                 OptionByte(PadDevice::kSportsPad)  },
    {"paddle",    "Paddle",                    OptionByte(PadDevice::kPaddle)     },
    {"6button",   "6 Button Megadrive Joypad", OptionByte(PadDevice::kSixButton)  },
};

inline constexpr size_t kSmsConsoleAt = offsetof(SMS_OPTIONS, console);
inline constexpr size_t kSmsFmChipAt = offsetof(SMS_OPTIONS, fmChip);
inline constexpr size_t kSmsGlassesAt = offsetof(SMS_OPTIONS, glasses);
inline constexpr size_t kSmsPort1At = offsetof(SMS_OPTIONS, devices);
inline constexpr size_t kSmsPort2At = kSmsPort1At + 1;

inline constexpr MACHINE_OPTION kSmsOptions[] = {
    {"console", "Console:",   kSmsConsoleAt, kSms2Ntsc,                      kSmsConsoleValues},
    {"fm",      "FM Chip",    kSmsFmChipAt,  0,                              kSwitchValues    },
    {"glasses", "3D Glasses", kSmsGlassesAt, 0,                              kSwitchValues    },
    {"port1",   "INPUT 1:",   kSmsPort1At,   OptionByte(PadDevice::kJoypad), kSmsDeviceValues },
    {"port2",   "INPUT 2:",   kSmsPort2At,   OptionByte(PadDevice::kJoypad), kSmsDeviceValues },
};
inline constexpr POINTER_PORT kSmsPointers[kMachinePlayers] = {
    {kSmsPort1At, OptionByte(PadDevice::kLightPhaser)},
    {kSmsPort2At, OptionByte(PadDevice::kLightPhaser)},
};

inline constexpr std::wstring_view kSmsConsoleActions[] = {L"SMS PAUSE", L"SMS RESET"};
inline constexpr std::wstring_view kSmsPlayerActions[kMachinePlayers][10] = {
    {L"SMS P1 UP", L"SMS P1 DOWN", L"SMS P1 LEFT", L"SMS P1 RIGHT", L"SMS P1 BUTTON1",
     L"SMS P1 BUTTON2", L"SMS P1 BUTTON3", L"SMS P1 BUTTON4", L"SMS P1 BUTTON5", L"SMS P1 BUTTON6"},
    {L"SMS P2 UP", L"SMS P2 DOWN", L"SMS P2 LEFT", L"SMS P2 RIGHT", L"SMS P2 BUTTON1",
     L"SMS P2 BUTTON2", L"SMS P2 BUTTON3", L"SMS P2 BUTTON4", L"SMS P2 BUTTON5", L"SMS P2 BUTTON6"},
};

// The second is of the console before it, which had the same processor and video modes: those images run here.
inline constexpr std::string_view kSmsExtensions[] = {".sms", ".sg"};
inline constexpr std::string_view kSmsRegions[] = {"ram", "sram", "vram", "palette"};

inline constexpr MACHINE_FACTS kSmsFacts = {
    .system = kSystemMasterSystem,
    .name = "Master System",
    .shortName = "sms",
    .folder = "sms",
    .saveFolder = ".\\sms",
    .databaseFile = ".\\dat\\sms.dat",
    .extensions = kSmsExtensions,
    .options = kSmsOptions,
    .pointers = kSmsPointers,
    .consoleActions = kSmsConsoleActions,
    .playerActions = {kSmsPlayerActions[0], kSmsPlayerActions[1]},
    .regions = kSmsRegions,
};
