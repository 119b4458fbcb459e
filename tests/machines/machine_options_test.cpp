#include "formats/game_file.h"
#include "library/convert.h"
#include "machines/machine_options.h"
#include "settings/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <utility>

using testing::HasSubstr;

namespace {

CGameFile GameWith(uint8_t features, uint32_t input1, uint32_t input2) {
    SMS_RECORD sms{};
    sms.features = features;
    sms.input1 = input1;
    sms.input2 = input2;
    MACHINE_RECORD record{};
    std::memcpy(record.bytes, &sms, sizeof sms);
    CGameFile game;
    const std::vector<uint8_t> image(16);
    EXPECT_TRUE(BuildKnownGame(kSystemMasterSystem, "x", image, record, game));
    game.selectedName = 0;
    return game;
}

} // namespace

TEST(MachineOptions, TheGamesRecordPresetsThem) {
    const OptionBlock plain = DefaultMachineOptions(GameWith(0, 1, 1));
    EXPECT_EQ(plain[1], 0);
    EXPECT_EQ(plain[2], 0);
    const OptionBlock fm = DefaultMachineOptions(GameWith(2, 2, 8));
    EXPECT_EQ(fm[0], 8);
    EXPECT_EQ(fm[1], 1);
    EXPECT_EQ(fm[2], 0);
    EXPECT_EQ(fm[3], 2);
    EXPECT_EQ(fm[4], 8);
    EXPECT_EQ(DefaultMachineOptions(GameWith(1, 1, 1))[2], 1);
}

TEST(MachineOptions, NamesSetTheirBytes) {
    OptionBlock options{};
    std::string error;
    EXPECT_TRUE(SetMachineOption(1, "console", "sms2-pal", options, error));
    EXPECT_EQ(options[0], 2);
    EXPECT_TRUE(SetMachineOption(1, "console", "mark3", options, error));
    EXPECT_EQ(options[0], 32);
    EXPECT_TRUE(SetMachineOption(1, "port2", "6button", options, error));
    EXPECT_EQ(options[4], 16);
    EXPECT_TRUE(SetMachineOption(2, "link", "1", options, error));
    EXPECT_EQ(options[1], 1);
    EXPECT_TRUE(SetMachineOption(2, "full", "1", options, error));
    EXPECT_EQ(options[2], 1);
    EXPECT_TRUE(SetMachineOption(4, "console", "pal", options, error));
    EXPECT_EQ(options[0], 3);
    EXPECT_TRUE(SetMachineOption(4, "port1", "6button", options, error));
    EXPECT_EQ(options[1], 3);
    EXPECT_TRUE(SetMachineOption(4, "port2", "none", options, error));
    EXPECT_EQ(options[2], 1);
}

TEST(MachineOptions, MegaDriveTakesItsGainsFromTheSettings) {
    RegisterDefaultSettings(Settings());
    CGameFile game;
    game.Create(false, kSystemMegaDrive);
    for (const auto& [ym, psg] : {
             std::pair{1.0F, 1.25F},
             std::pair{0.5F, 2.0F }
    }) {
        Settings().SetFloat(L"megadrive_ymvolume", ym);
        Settings().SetFloat(L"megadrive_psgvolume", psg);
        const OptionBlock options = DefaultMachineOptions(game);
        float gains[2];
        std::memcpy(gains, &options[4], sizeof gains);
        EXPECT_EQ(gains[0], ym);
        EXPECT_EQ(gains[1], psg);
        EXPECT_EQ(options[0] | options[1] | options[2], 0) << "all automatic";
    }
    RegisterDefaultSettings(Settings());
}

TEST(MachineOptions, OnlyAPortWithALightPhaserTakesAPointer) {
    OptionBlock options{};
    std::string error;
    EXPECT_FALSE(PortTakesPointer(kSystemMasterSystem, options, 0));
    ASSERT_TRUE(SetMachineOption(kSystemMasterSystem, "port2", "phaser", options, error));
    EXPECT_FALSE(PortTakesPointer(kSystemMasterSystem, options, 0));
    EXPECT_TRUE(PortTakesPointer(kSystemMasterSystem, options, 1));
    EXPECT_FALSE(PortTakesPointer(kSystemMasterSystem, options, 2)) << "there are two ports";
    EXPECT_FALSE(PortTakesPointer(kSystemMasterSystem, options, SIZE_MAX));
    for (const uint16_t other :
         {kSystemGameGear, kSystemMegaDrive, kSystemNes, kSystemArcade, GameSystem{3}}) {
        OptionBlock twos;
        twos.fill(2);
        EXPECT_FALSE(PortTakesPointer(other, twos, 0)) << other;
        EXPECT_FALSE(PortTakesPointer(other, twos, 1)) << other;
    }
    ASSERT_TRUE(SetMachineOption(kSystemMasterSystem, "port2", "paddle", options, error));
    EXPECT_FALSE(PortTakesPointer(kSystemMasterSystem, options, 1));
}

TEST(MachineOptions, TheHelpNamesEveryOptionOfEveryMachine) {
    const std::string help = MachineOptionsHelp();
    EXPECT_THAT(help, HasSubstr("Master System: port1=joypad|phaser|sportspad|paddle|6button\n"));
    EXPECT_THAT(help, HasSubstr("Game Gear: link=0|1\n"));
    EXPECT_THAT(help, HasSubstr("Mega Drive: console=auto|genesis|japan|pal\n"));
}

TEST(MachineOptions, AWrongValueListsTheRightOnes) {
    OptionBlock options{};
    std::string error;
    EXPECT_FALSE(SetMachineOption(1, "console", "saturn", options, error));
    EXPECT_THAT(error, HasSubstr("sms1-pal|sms2-pal"));
    EXPECT_FALSE(SetMachineOption(2, "console", "sms2-pal", options, error));
    EXPECT_TRUE(error.empty()) << "another machine's option is no option here";
}
