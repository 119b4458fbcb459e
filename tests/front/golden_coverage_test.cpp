// Every value of every option and every board has a golden state, so that a new one cannot be forgotten. What
// there is to cover comes from the machines' facts and the chips' own tables.
#include "facts/arcade_facts.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/golden_files.h"
#include "machines/machine_options.h"
#include "megadrive/md_cartridge.h"
#include "nes/board.h"
#include "nes/cartridge.h"
#include "sega8/game_image.h"
#include "sega8/sega_memory.h"
#include "settings/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using Names = std::set<std::string>;

struct GOLDEN_GAME {
    std::string name;
    CGameFile game;
    OptionBlock options{};

    [[nodiscard]] uint16_t System() const { return game.Header().system; }
};

// Those of older programs do not count: their sound pieces are passed over.
std::vector<GOLDEN_GAME> GoldenGames() {
    RegisterDefaultSettings(Settings());
    std::vector<GOLDEN_GAME> games;
    for (const std::string& name : GoldenNames()) {
        if (name.starts_with("older-")) {
            continue;
        }
        GOLDEN_GAME& golden = games.emplace_back();
        golden.name = name;
        EXPECT_TRUE(LoadGameFile(false, kGoldenFolder / (name + ".game"), golden.game)) << name;
        golden.game.selectedName = 0;
        golden.options = DefaultMachineOptions(golden.game);
        for (const std::string& setting : ReadGoldenCase(name).settings) {
            const size_t equals = setting.find('=');
            std::string error;
            // Another name is that of a setting.
            static_cast<void>(SetMachineOption(golden.System(), setting.substr(0, equals),
                                               setting.substr(equals + 1), golden.options, error));
            EXPECT_EQ(error, "") << name;
        }
    }
    return games;
}

template <typename Describe>
Names Describing(uint16_t system, Describe describe) {
    Names names;
    for (const GOLDEN_GAME& golden : GoldenGames()) {
        if (golden.System() == system) {
            names.insert(describe(golden));
        }
    }
    return names;
}

std::string MapperName(SegaMapper mapper) {
    return "mapper " + std::to_string(static_cast<int>(mapper));
}

Names EverySegaMapper() {
    Names names;
    for (uint32_t board = 0; board < 0x10000; ++board) {
        names.insert(MapperName(SegaMapperOf(static_cast<uint16_t>(board))));
    }
    return names;
}

std::string PanelName(uint32_t board) {
    switch (board) {
    case kBoardAnalog: return "analog";
    case kBoardDial: return "dial";
    default: return "joystick";
    }
}

std::string NesBoardOf(const GOLDEN_GAME& golden) {
    NES_CARTRIDGE cartridge;
    std::string error;
    EXPECT_TRUE(CartridgeLoad(cartridge, golden.game.Data(), error)) << golden.name << error;
    return std::to_string(cartridge.boardNumber);
}

std::string CartridgeKindOf(const GOLDEN_GAME& golden) {
    const auto cartridge = std::make_unique<MD_CARTRIDGE>();
    MdCartSetup(*cartridge, golden.game.Data());
    return std::to_string(cartridge->cartKind);
}

} // namespace

TEST(GoldenStates, CoverEveryValueOfEveryOption) {
    std::set<std::pair<uint16_t, std::string>> covered;
    for (const GOLDEN_GAME& golden : GoldenGames()) {
        for (const MACHINE_OPTION& option : FindMachineFacts(golden.System())->options) {
            for (const OPTION_VALUE& value : option.values) {
                if (golden.options[option.offset] == value.byte) {
                    covered.emplace(golden.System(),
                                    std::string(option.name) + "=" + std::string(value.word));
                }
            }
        }
    }
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        for (const MACHINE_OPTION& option : machine.options) {
            for (const OPTION_VALUE& value : option.values) {
                const std::string word = std::string(option.name) + "=" + std::string(value.word);
                EXPECT_TRUE(covered.contains({machine.system, word}))
                    << "no golden state of the " << machine.name << " with " << word;
            }
        }
    }
}

TEST(GoldenStates, CoverEveryMachine) {
    std::set<uint16_t> covered;
    for (const GOLDEN_GAME& golden : GoldenGames()) {
        covered.insert(golden.System());
    }
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        EXPECT_TRUE(covered.contains(machine.system)) << machine.name;
    }
}

TEST(GoldenStates, CoverEveryKindOfSound) {
    const Names kinds = {"quality 0", "quality 1", "quality 2", "cut-off filter"};
    RegisterDefaultSettings(Settings());
    const std::string byDefault =
        "quality " + std::to_string(Settings().GetInt(L"audio_app_quality"));
    ASSERT_TRUE(kinds.contains(byDefault));
    Names covered;
    for (const std::string& name : GoldenNames()) {
        if (name.starts_with("older-")) {
            continue;
        }
        std::string quality = byDefault;
        for (const std::string& setting : ReadGoldenCase(name).settings) {
            if (setting.starts_with("audio_app_quality=")) {
                quality = "quality " + setting.substr(setting.find('=') + 1);
            }
            if (setting == "emu_audiocutoff_enabled=1") {
                covered.insert("cut-off filter");
            }
        }
        covered.insert(quality);
    }
    EXPECT_EQ(covered, kinds);
}

TEST(GoldenStates, CoverEveryMapperOfBothHomeConsoles) {
    EXPECT_EQ(Describing(kSystemMasterSystem,
                         [](const GOLDEN_GAME& golden) {
                             return MapperName(SegaMapperOf(SmsRecordOf(golden.game).board));
                         }),
              EverySegaMapper());
    EXPECT_EQ(Describing(kSystemGameGear,
                         [](const GOLDEN_GAME& golden) {
                             return MapperName(SegaMapperOf(GearRecordOf(golden.game).board));
                         }),
              EverySegaMapper());
}

TEST(GoldenStates, CoverEveryPanelAndTheEncryptedProgramsOfSystemE) {
    EXPECT_EQ(Describing(kSystemArcade,
                         [](const GOLDEN_GAME& golden) {
                             return PanelName(ArcadeRecordOf(golden.game).board);
                         }),
              (Names{"analog", "dial", "joystick"}));
    EXPECT_TRUE(Describing(kSystemArcade,
                           [](const GOLDEN_GAME& golden) {
                               return std::to_string(golden.game.RomCount()) + " pieces";
                           })
                    .contains("2 pieces"))
        << "a program and its decrypted opcodes";
}

TEST(GoldenStates, CoverEveryNesBoard) {
    Names boards;
    for (size_t number = 0; number < kNesBoardNumbers; ++number) {
        if (NesBoard(static_cast<uint8_t>(number)).reset != nullptr) {
            boards.insert(std::to_string(number));
        }
    }
    EXPECT_EQ(Describing(kSystemNes, NesBoardOf), boards);
}

TEST(GoldenStates, CoverEveryKindOfMegaDriveCartridge) {
    EXPECT_EQ(Describing(kSystemMegaDrive, CartridgeKindOf),
              (Names{std::to_string(kMdCartPlain), std::to_string(kMdCartSram),
                     std::to_string(kMdCartEeprom), std::to_string(kMdCartSvp)}));
}
